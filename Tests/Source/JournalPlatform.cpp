#include "Tests/Source/JournalPlatform.h"

#include <cmath>

using namespace farview;

namespace
{

/// Notification names without what all of them have in common.
std::string shortName(const std::string& name)
{
    constexpr std::string_view prefix = "com.quillon.Farview.";
    return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

class JournalDistributedCenter final : public DistributedNotificationCenter
{
public:
    JournalDistributedCenter(DistributedNotificationCenter& inner, Journal& journal)
        : mInner(inner), mJournal(journal)
    {
    }
    void addObserver(std::weak_ptr<void> observer, NotificationHandler handler, std::string name,
                     std::string object) override
    {
        mJournal.add("distributed observe " + shortName(name) + object);
        mInner.addObserver(observer, std::move(handler), name, object);
    }
    void removeObserver(const std::weak_ptr<void>& observer) override
    {
        mJournal.add("distributed remove all");
        mInner.removeObserver(observer);
    }
    void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                        const std::string& object) override
    {
        mInner.removeObserver(observer, name, object);
    }
    void postNotificationName(const std::string& name, const std::string& object,
                              TextUserInfo userInfo, unsigned options) override
    {
        mJournal.add("post " + shortName(name) + " " + std::to_string(options));
        mInner.postNotificationName(name, object, std::move(userInfo), options);
    }
    void setSuspended(bool suspended) override { mInner.setSuspended(suspended); }
    Subscription observeReconnection(std::function<void()> action) override
    {
        return mInner.observeReconnection(std::move(action));
    }

private:
    DistributedNotificationCenter& mInner;
    Journal& mJournal;
};

class JournalCenter final : public NotificationCenter
{
public:
    JournalCenter(NotificationCenter& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    void addObserver(std::weak_ptr<void> observer, NotificationHandler handler, std::string name,
                     const Object* object) override
    {
        mJournal.add("local observe " + name + (object ? " of one object" : ""));
        mInner.addObserver(observer, std::move(handler), name, object);
    }
    void removeObserver(const std::weak_ptr<void>& observer) override
    {
        mJournal.add("local remove all");
        mInner.removeObserver(observer);
    }
    void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                        const Object* object) override
    {
        mInner.removeObserver(observer, name, object);
    }
    void postNotificationName(const std::string& name, const Object* object,
                              UserInfo userInfo) override
    {
        mInner.postNotificationName(name, object, std::move(userInfo));
    }

private:
    NotificationCenter& mInner;
    Journal& mJournal;
};

class JournalPreferences final : public Preferences
{
public:
    JournalPreferences(Preferences& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    std::optional<PropertyList> copyAppValue(const std::string& key,
                                             const std::string& applicationID) override
    {
        return mInner.copyAppValue(key, applicationID);
    }
    std::optional<PropertyList> copyValue(const std::string& key, const std::string& applicationID,
                                          PreferencesUser user, PreferencesHost host) override
    {
        return mInner.copyValue(key, applicationID, user, host);
    }
    void setAppValue(const std::string& key, std::optional<PropertyList> value,
                     const std::string& applicationID) override
    {
        mJournal.add("set " + key);
        mInner.setAppValue(key, std::move(value), applicationID);
    }
    bool synchronize(const std::string& applicationID, PreferencesUser user,
                     PreferencesHost host) override
    {
        return mInner.synchronize(applicationID, user, host);
    }
    bool appSynchronize(const std::string& applicationID) override
    {
        mJournal.add("synchronize");
        return mInner.appSynchronize(applicationID);
    }

private:
    Preferences& mInner;
    Journal& mJournal;
};

class JournalWorkspace final : public Workspace
{
public:
    JournalWorkspace(Workspace& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    bool launchApplicationAtURL(const URL& url, unsigned options) override
    {
        const auto path = url.path();
        mJournal.add("launch " + path.substr(path.rfind('/') + 1));
        return mInner.launchApplicationAtURL(url, options);
    }
    bool openURL(const URL& url) override { return mInner.openURL(url); }

private:
    Workspace& mInner;
    Journal& mJournal;
};

class JournalDiscovery final : public Discovery
{
public:
    JournalDiscovery(Discovery& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    std::shared_ptr<NetServiceBrowser> makeBrowser() override
    {
        mJournal.add("make browser");
        return mInner.makeBrowser();
    }
    void checkAgain() override { mInner.checkAgain(); }
    DiscoveryCondition condition() const override { return mInner.condition(); }
    Subscription observeCondition(std::function<void()> changed) override
    {
        return mInner.observeCondition(std::move(changed));
    }

private:
    Discovery& mInner;
    Journal& mJournal;
};

class JournalRunLoop final : public RunLoop
{
public:
    JournalRunLoop(RunLoop& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    std::shared_ptr<Timer> scheduledTimer(Duration interval, bool repeats,
                                          std::weak_ptr<void> target, Action action) override
    {
        mJournal.add("timer " + std::to_string(std::lround(interval.count())) +
                     (repeats ? " repeating" : ""));
        return mInner.scheduledTimer(interval, repeats, target, std::move(action));
    }
    void performAfterDelay(Duration delay, std::weak_ptr<void> target, Action action) override
    {
        mJournal.add("perform after " + std::to_string(std::lround(delay.count() * 1000)) + " ms");
        mInner.performAfterDelay(delay, target, std::move(action));
    }
    std::shared_ptr<Wait> run(Duration limit, std::weak_ptr<void> target, Action then) override
    {
        return mInner.run(limit, target, std::move(then));
    }
    void post(std::weak_ptr<void> target, Action action) override
    {
        mInner.post(target, std::move(action));
    }
    Duration now() const override { return mInner.now(); }

private:
    RunLoop& mInner;
    Journal& mJournal;
};

class JournalFileManager final : public FileManager
{
public:
    JournalFileManager(FileManager& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    bool fileExistsAtPath(const std::string& path) override
    {
        return mInner.fileExistsAtPath(path);
    }
    bool createDirectoryAtPath(const std::string& path) override
    {
        mJournal.add("create folder " + path);
        return mInner.createDirectoryAtPath(path);
    }
    std::optional<PropertyList> propertyListWithContentsOfFile(const std::string& path) override
    {
        mJournal.add("read " + path);
        return mInner.propertyListWithContentsOfFile(path);
    }
    bool writePropertyList(const PropertyList& list, const std::string& path) override
    {
        mJournal.add("write " + path);
        return mInner.writePropertyList(list, path);
    }
    bool writeData(std::span<const std::uint8_t> bytes, const std::string& path) override
    {
        mJournal.add("write " + path);
        return mInner.writeData(bytes, path);
    }

private:
    FileManager& mInner;
    Journal& mJournal;
};

class JournalApplication final : public Application
{
public:
    JournalApplication(Application& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    bool activateWithOptions(unsigned options) override
    {
        mJournal.add("activate " + std::to_string(options));
        return mInner.activateWithOptions(options);
    }
    bool reopen() override { return mInner.reopen(); }

private:
    Application& mInner;
    Journal& mJournal;
};

class JournalRegistry final : public IORegistry
{
public:
    JournalRegistry(IORegistry& inner, Journal& journal) : mInner(inner), mJournal(journal) {}
    Entry rootEntry() override { return mInner.rootEntry(); }
    std::vector<Entry> childEntries(Entry entry, const std::string& plane) override
    {
        return mInner.childEntries(entry, plane);
    }
    std::string nameInPlane(Entry entry, const std::string& plane) override
    {
        return mInner.nameInPlane(entry, plane);
    }
    std::optional<std::string> locationInPlane(Entry entry, const std::string& plane) override
    {
        return mInner.locationInPlane(entry, plane);
    }
    std::string className(Entry entry) override { return mInner.className(entry); }
    std::optional<std::string> superclassOf(const std::string& className) override
    {
        return mInner.superclassOf(className);
    }
    Entry entryFromPath(const std::string& path) override
    {
        mJournal.add("look up " + path);
        return mInner.entryFromPath(path);
    }

private:
    IORegistry& mInner;
    Journal& mJournal;
};

class JournalBundle final : public Bundle
{
public:
    JournalBundle(std::shared_ptr<Bundle> inner, Journal& journal)
        : mInner(std::move(inner)), mJournal(journal)
    {
    }
    const std::string& bundlePath() const override { return mInner->bundlePath(); }
    std::optional<PropertyList> objectForInfoDictionaryKey(const std::string& key) const override
    {
        mJournal.add("info " + key);
        return mInner->objectForInfoDictionaryKey(key);
    }
    std::optional<std::string> pathForResource(const std::string& name,
                                               const std::string& type) const override
    {
        mJournal.add("resource " + name + "|" + type);
        return mInner->pathForResource(name, type);
    }
    std::string localizedString(const std::string& key, const std::string& value,
                                const std::string& table) const override
    {
        return mInner->localizedString(key, value, table);
    }

private:
    std::shared_ptr<Bundle> mInner;
    Journal& mJournal;
};

} // namespace

struct JournalPlatform::Bodies {
    Bodies(FakePlatform& fake, Journal& journal)
        : distributedCenter(fake.distributedNotificationCenter, journal),
          center(fake.notificationCenter, journal), preferences(fake.preferences, journal),
          workspace(fake.workspace, journal), discovery(fake.discovery, journal),
          runLoop(fake.runLoop, journal), fileManager(fake.fileManager, journal),
          application(*fake.application, journal), registry(fake.registry, journal)
    {
    }

    JournalDistributedCenter distributedCenter;
    JournalCenter center;
    JournalPreferences preferences;
    JournalWorkspace workspace;
    JournalDiscovery discovery;
    JournalRunLoop runLoop;
    JournalFileManager fileManager;
    JournalApplication application;
    JournalRegistry registry;
};

JournalPlatform::JournalPlatform(FakePlatform& fake, Journal& journal)
    : mJournal(journal), mBodies(std::make_unique<Bodies>(fake, journal)),
      mPlatform(fake.platform())
{
    mPlatform.distributedNotificationCenter = &mBodies->distributedCenter;
    mPlatform.notificationCenter = &mBodies->center;
    mPlatform.preferences = &mBodies->preferences;
    mPlatform.workspace = &mBodies->workspace;
    mPlatform.discovery = &mBodies->discovery;
    mPlatform.runLoop = &mBodies->runLoop;
    mPlatform.fileManager = &mBodies->fileManager;
    mPlatform.application = &mBodies->application;
    mPlatform.registry = &mBodies->registry;
}

JournalPlatform::~JournalPlatform() = default;

std::shared_ptr<Bundle> JournalPlatform::bundle(std::shared_ptr<Bundle> inner)
{
    return std::make_shared<JournalBundle>(std::move(inner), mJournal);
}
