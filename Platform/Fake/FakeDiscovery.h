#pragma once

#include "Platform/Fake/FakeNetServiceBrowser.h"
#include "Platform/Types/Observers.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// A network that tests script: devices appear, change, leave or die.
class FakeDiscovery final : public Discovery
{
public:
    explicit FakeDiscovery(FakeRunLoop& loop);

    std::shared_ptr<NetServiceBrowser> makeBrowser() override;
    void checkAgain() override;
    DiscoveryCondition condition() const override { return mCondition; }
    Subscription observeCondition(std::function<void()> changed) override;

    /// The devices appear together: one batch for every running search.
    void announce(std::vector<FakeDevice> devices);
    /// The devices say goodbye together, in this order. Of two of one name the elder leaves.
    void remove(const std::vector<std::string>& names);
    /// The device vanishes without goodbye: it answers no more, and the next `checkAgain` ends it.
    void kill(const std::string& name);
    /// The device announces a new TXT record.
    void setTXTRecord(const std::string& name, std::map<std::string, Data> record);
    /// The same in wire form, for records that nobody sane would send.
    void setRawTXTRecord(const std::string& name, Data record);
    /// How the device answers from now on.
    void setResolve(const std::string& name, FakeResolve resolve);
    /// Who observes the condition hears of the change on the next turn.
    void setCondition(DiscoveryCondition condition);

    /// The living browsers, in the order in which they were made.
    std::vector<std::shared_ptr<FakeNetServiceBrowser>> browsers() const;
    int browserCount() const { return static_cast<int>(mBrowsers.size()); }
    /// What the latest living browser handed out for the device; null when it did not.
    std::shared_ptr<FakeNetService> service(const std::string& name) const;
    int checkAgainCount() const { return mCheckAgainCount; }

private:
    struct Present {
        std::shared_ptr<FakeDevice> device;
        bool dead = false;
    };

    Present* find(const std::string& name);
    FakeNetServiceBrowser::Devices presentDevices() const;
    void TXTRecordChanged(const std::shared_ptr<FakeDevice>& device);
    void removeDevices(const FakeNetServiceBrowser::Devices& devices);

    FakeRunLoop& mLoop;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    std::vector<Present> mPresent;
    std::vector<std::weak_ptr<FakeNetServiceBrowser>> mBrowsers;
    Observers<> mConditionObservers;
    int mCheckAgainCount = 0;
    DiscoveryCondition mCondition = DiscoveryCondition::working;
};

} // namespace farview
