#pragma once

#include "Platform/Updater.h"

#include <map>
#include <string>
#include <vector>

namespace farview
{

/// Downloads and changes nothing: a test says how far it is. Goes by the rules of every updater.
class FakeUpdater final : public Updater
{
public:
    using Stage = UpdateStatus::Stage;

    bool automaticallyChecksForUpdates() const override { return mChecks; }
    void setAutomaticallyChecksForUpdates(bool flag) override { mChecks = flag; }
    void setDelegate(std::weak_ptr<UpdaterDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }
    const UpdateStatus& status() const override { return mStatus; }
    void checkForUpdates() override
    {
        if (isUnderWay(mStatus.stage))
            return;
        mCalls.push_back("check");
        mStatus = {};
        reach(Stage::checking);
    }
    void downloadUpdate() override
    {
        if (mStatus.stage != Stage::found)
            return;
        mCalls.push_back("download");
        reach(Stage::downloading);
    }
    void installUpdate() override
    {
        if (mStatus.stage != Stage::ready)
            return;
        PendingUpdate item(mStatus.version);
        if (const auto delegate = mDelegate.lock())
            delegate->willInstallUpdate(this, &item);
        mCalls.push_back("install");
        reach(Stage::installing);
    }
    void cancel() override
    {
        if (!isUnderWay(mStatus.stage) || mStatus.stage == Stage::installing)
            return;
        mCalls.push_back("cancel");
        reach(Stage::cancelled);
    }

    // How it goes on. Each fits one stage only; elsewhere it is ignored.
    void findNothing() { from(Stage::checking, Stage::current); }
    void find(const std::string& version, const std::string& notes)
    {
        if (mStatus.stage == Stage::checking || mStatus.stage == Stage::downloading)
            report({Stage::found, version, notes, 0, 1000, {}});
    }
    void receive(std::int64_t received, std::int64_t length)
    {
        mStatus.received = received;
        mStatus.length = length;
        from(Stage::downloading, Stage::downloading);
    }
    void verify() { from(Stage::downloading, Stage::verifying); }
    void getReady() { from(Stage::verifying, Stage::ready); }
    void finishInstallation() { from(Stage::installing, Stage::installed); }
    void fail(UpdateProblem problem)
    {
        if (!isUnderWay(mStatus.stage))
            return;
        mStatus.problem = problem;
        reach(Stage::failed);
    }

    /// What it was told to do, in order.
    const std::vector<std::string>& calls() const { return mCalls; }

private:
    void from(Stage before, Stage after)
    {
        if (mStatus.stage == before)
            reach(after);
    }
    void reach(Stage stage)
    {
        auto status = mStatus;
        status.stage = stage;
        report(std::move(status));
    }
    void report(UpdateStatus status)
    {
        mStatus = std::move(status);
        if (const auto delegate = mDelegate.lock())
            delegate->didChangeStatus(*this);
    }

    std::weak_ptr<UpdaterDelegate> mDelegate;
    UpdateStatus mStatus;
    bool mChecks = false;
    std::vector<std::string> mCalls;
};

/// One fake for each bundle.
class FakeUpdaters final : public Updaters
{
public:
    std::shared_ptr<Updater> updaterForBundle(const std::string& bundlePath) override
    {
        return fakeForBundle(bundlePath);
    }
    std::shared_ptr<FakeUpdater> fakeForBundle(const std::string& bundlePath)
    {
        auto& updater = mUpdaters[bundlePath];
        if (!updater)
            updater = std::make_shared<FakeUpdater>();
        return updater;
    }

private:
    std::map<std::string, std::shared_ptr<FakeUpdater>> mUpdaters;
};

} // namespace farview
