#include "Platform/Platform.h"

#include "Platform/Accessibility.h"
#include "Platform/Authorization.h"
#include "Platform/Bundle.h"
#include "Platform/Clock.h"
#include "Platform/DisplayConfiguration.h"
#include "Platform/FileManager.h"
#include "Platform/Firewall.h"
#include "Platform/GraphicsControl.h"
#include "Platform/IORegistry.h"
#include "Platform/LocalNotificationCenter.h"
#include "Platform/Log.h"
#include "Platform/LoginItem.h"
#include "Platform/NetService.h"
#include "Platform/NetworkCondition.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Preferences.h"
#include "Platform/ProcessTable.h"
#include "Platform/RunLoop.h"
#include "Platform/SearchPaths.h"
#include "Platform/SystemVersion.h"
#include "Platform/Text.h"
#include "Platform/Updater.h"
#include "Platform/VirtualScreens.h"
#include "Platform/Workspace.h"

#include <cerrno>

namespace farview
{
namespace
{

/// The body of an interface that does nothing and finds nothing.
template <typename Interface> class No;

template <> class No<Accessibility> final : public Accessibility
{
    void askWhetherEnabled(std::weak_ptr<void>, std::function<void(bool)> answer) override
    {
        answer(false);
    }
};

template <> class No<Application> final : public Application
{
    bool activateWithOptions(unsigned) override { return false; }
    bool reopen() override { return false; }
};

template <> class No<Authorization> final : public Authorization
{
    Obstacle obstacleOf(const URL& tool) override { return {Obstacle::Kind::missing, tool.path()}; }
    void foresee(const URL&, std::weak_ptr<void> target, Answer then) override
    {
        answer(target, then);
    }
    void create(const std::string&, const URL&, std::weak_ptr<void> target, Answer then) override
    {
        answer(target, then);
    }
    void executeWithPrivileges(const URL&, std::weak_ptr<void> target, Answer then) override
    {
        answer(target, then);
    }
    static void answer(const std::weak_ptr<void>& target, const Answer& then)
    {
        if (const auto kept = target.lock())
            then(Status::internal);
    }
};

template <> class No<Bundles> final : public Bundles
{
    std::shared_ptr<Bundle> bundleWithPath(const std::string&) override { return nullptr; }
    std::shared_ptr<Bundle> bundleWithIdentifier(const std::string&) override { return nullptr; }
};

template <> class No<Clock> final : public Clock
{
    std::chrono::system_clock::time_point date() override { return {}; }
};

class NoBrowser final : public NetServiceBrowser
{
    void setDelegate(std::weak_ptr<NetServiceBrowserDelegate>) override {}
    void searchForServicesOfType(const std::string&, const std::string&) override {}
    void stop() override {}
};

template <> class No<Discovery> final : public Discovery
{
    std::shared_ptr<NetServiceBrowser> makeBrowser() override
    {
        return std::make_shared<NoBrowser>();
    }
    void checkAgain() override {}
    DiscoveryCondition condition() const override { return DiscoveryCondition::unavailable; }
    Subscription observeCondition(std::function<void()>) override { return {}; }
};

template <> class No<DisplayConfiguration> final : public DisplayConfiguration
{
    Error onlineDisplayList(std::span<Display>, std::uint32_t&) override
    {
        return invalidConnection;
    }
    Error displayAliasList(Display, std::span<Display>, std::uint32_t&) override
    {
        return invalidConnection;
    }
    Display mainDisplay() override { return 0; }
    Error beginConfiguration(Transaction&) override { return invalidConnection; }
    Error configureMirrorOfDisplay(Transaction, Display, Display) override
    {
        return invalidConnection;
    }
    Error completeConfiguration(Transaction, std::uint32_t) override { return invalidConnection; }
};

template <> class No<DistributedNotificationCenter> final : public DistributedNotificationCenter
{
    void addObserver(std::weak_ptr<void>, NotificationHandler, std::string, std::string) override {}
    void removeObserver(const std::weak_ptr<void>&) override {}
    void removeObserver(const std::weak_ptr<void>&, const std::string&, const std::string&) override
    {
    }
    void postNotificationName(const std::string&, const std::string&, TextUserInfo,
                              unsigned) override
    {
    }
    void setSuspended(bool) override {}
    Subscription observeReconnection(std::function<void()>) override { return {}; }
};

template <> class No<FileManager> final : public FileManager
{
    bool fileExistsAtPath(const std::string&) override { return false; }
    bool createDirectoryAtPath(const std::string&) override { return false; }
    std::optional<PropertyList> propertyListWithContentsOfFile(const std::string&) override
    {
        return std::nullopt;
    }
    bool writePropertyList(const PropertyList&, const std::string&) override { return false; }
    bool writeData(std::span<const std::uint8_t>, const std::string&) override { return false; }
};

template <> class No<Firewall> final : public Firewall
{
    FirewallState state() override { return {}; }
};
/// A port to services, of which there are none.
template <> class No<GraphicsControl> final : public GraphicsControl
{
    Result masterPort(Object& port) override
    {
        port = 1;
        return success;
    }
    std::optional<PropertyList> serviceMatching(const std::string&) override
    {
        return PropertyList::Dictionary{};
    }
    Result getMatchingServices(Object, const PropertyList&, Object& iterator) override
    {
        iterator = 1;
        return success;
    }
    Object iteratorNext(Object) override { return 0; }
    void retain(Object) override {}
    void release(Object) override {}
    Result serviceOpen(Object, std::uint32_t, Object&) override { return noSuchDevice; }
    Result serviceClose(Object) override { return notOpen; }
    Result addInterestNotification(Object, Object, const std::string&, InterestCallback,
                                   void*) override
    {
        return unsupported;
    }
    Result callScalarMethod(Object, std::uint32_t, std::span<const std::uint64_t>,
                            std::span<std::uint64_t>&) override
    {
        return notOpen;
    }
};

template <> class No<IORegistry> final : public IORegistry
{
    Entry rootEntry() override { return 0; }
    std::vector<Entry> childEntries(Entry, const std::string&) override { return {}; }
    std::string nameInPlane(Entry, const std::string&) override { return {}; }
    std::optional<std::string> locationInPlane(Entry, const std::string&) override
    {
        return std::nullopt;
    }
    std::string className(Entry) override { return {}; }
    std::optional<std::string> superclassOf(const std::string&) override { return std::nullopt; }
    Entry entryFromPath(const std::string&) override { return 0; }
};

template <> class No<Log> final : public Log
{
    void write(LogLevel, std::string_view) override {}
};

template <> class No<LoginItem> final : public LoginItem
{
    bool isEnabled() override { return false; }
    bool enable(const Command&) override { return false; }
    bool disable() override { return true; }
};

template <> class No<NetworkCondition> final : public NetworkCondition
{
    void ask(std::weak_ptr<void> target, Answer then) override
    {
        if (const auto kept = target.lock())
            then(NetworkKind::absent);
    }
};

template <> class No<Preferences> final : public Preferences
{
    std::optional<PropertyList> copyValue(const std::string&, const std::string&, PreferencesUser,
                                          PreferencesHost) override
    {
        return std::nullopt;
    }
    void setAppValue(const std::string&, std::optional<PropertyList>, const std::string&) override
    {
    }
    bool synchronize(const std::string&, PreferencesUser, PreferencesHost) override
    {
        return false;
    }
    bool appSynchronize(const std::string&) override { return false; }
    Subscription observeLateWrites(std::function<void()>) override { return {}; }
};

template <> class No<ProcessTable> final : public ProcessTable
{
    int size(std::size_t&) override { return ENOSYS; }
    int contents(std::span<ProcessRecord>, std::size_t&) override { return ENOSYS; }
};

class Spent final : public Timer, public RunLoop::Wait
{
    void invalidate() override {}
    bool isValid() const override { return false; }
    void stop() override {}
};

template <> class No<RunLoop> final : public RunLoop
{
    std::shared_ptr<Timer> scheduledTimer(Duration, bool, std::weak_ptr<void>, Action) override
    {
        return std::make_shared<Spent>();
    }
    void performAfterDelay(Duration, std::weak_ptr<void>, Action) override {}
    std::shared_ptr<Wait> run(Duration, std::weak_ptr<void>, Action) override
    {
        return std::make_shared<Spent>();
    }
    void post(std::weak_ptr<void>, Action) override {}
    Duration now() const override { return Duration::zero(); }
};

template <> class No<SearchPaths> final : public SearchPaths
{
    std::vector<std::string> directories(SearchPathDirectory, unsigned) override { return {}; }
    std::string located(const std::string& path) override { return path; }
    std::string homeDirectory() override { return {}; }
};

template <> class No<SystemVersion> final : public SystemVersion
{
    std::optional<std::int32_t> gestalt(SystemVersionQuery) override { return std::nullopt; }
};

template <> class No<Text> final : public Text
{
    std::string lowercase(std::string_view text) const override { return std::string(text); }
    std::string uppercase(std::string_view text) const override { return std::string(text); }
};

/// Finds no place to get updates from.
class NoUpdater final : public Updater
{
    bool automaticallyChecksForUpdates() const override { return mChecks; }
    void setAutomaticallyChecksForUpdates(bool flag) override { mChecks = flag; }
    void setDelegate(std::weak_ptr<UpdaterDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }
    const UpdateStatus& status() const override { return mStatus; }
    void checkForUpdates() override
    {
        mStatus.stage = UpdateStatus::Stage::failed;
        mStatus.problem = UpdateProblem::notConfigured;
        if (const auto delegate = mDelegate.lock())
            delegate->didChangeStatus(*this);
    }
    void downloadUpdate() override {}
    void installUpdate() override {}
    void cancel() override {}

    std::weak_ptr<UpdaterDelegate> mDelegate;
    UpdateStatus mStatus;
    bool mChecks = false;
};

template <> class No<Updaters> final : public Updaters
{
    std::shared_ptr<Updater> updaterForBundle(const std::string&) override
    {
        return std::make_shared<NoUpdater>();
    }
};

template <> class No<VirtualScreens> final : public VirtualScreens
{
    void availability(std::weak_ptr<void> target, Answer then) override
    {
        if (const auto kept = target.lock())
            then({});
    }
    std::unique_ptr<VirtualScreen> open(const ScreenWish&, Delegate) override { return nullptr; }
};

template <> class No<Workspace> final : public Workspace
{
    bool launchApplicationAtURL(const URL&, unsigned) override { return false; }
    bool openURL(const URL&) override { return false; }
};

template <> class No<NotificationCenter> final : public LocalNotificationCenter
{
};

Platform* installed = nullptr;
unsigned installations = 0;

} // namespace

template <typename Interface> Interface* nothingHere()
{
    static No<Interface> body;
    return &body;
}

template Accessibility* nothingHere();
template Application* nothingHere();
template Authorization* nothingHere();
template Bundles* nothingHere();
template Clock* nothingHere();
template Discovery* nothingHere();
template DisplayConfiguration* nothingHere();
template DistributedNotificationCenter* nothingHere();
template FileManager* nothingHere();
template Firewall* nothingHere();
template GraphicsControl* nothingHere();
template IORegistry* nothingHere();
template Log* nothingHere();
template LoginItem* nothingHere();
template NetworkCondition* nothingHere();
template NotificationCenter* nothingHere();
template Preferences* nothingHere();
template ProcessTable* nothingHere();
template RunLoop* nothingHere();
template SearchPaths* nothingHere();
template SystemVersion* nothingHere();
template Text* nothingHere();
template Updaters* nothingHere();
template VirtualScreens* nothingHere();
template Workspace* nothingHere();

Platform& Platform::current()
{
    static Platform empty;
    return installed ? *installed : empty;
}

unsigned Platform::generation() { return installations; }

Platform::Scope::Scope(Platform& platform) : mPrevious(installed)
{
    installed = &platform;
    ++installations;
}

Platform::Scope::~Scope()
{
    installed = mPrevious;
    ++installations;
}

} // namespace farview
