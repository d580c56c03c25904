#pragma once

#include "Platform/Updater.h"

#include <memory>

/// The updater of the pane's own bundle, whatever program it is shown in. Passes everything on to
/// the platform's updater of that bundle and adds nothing. Main thread only.
class FVEUpdater final : public farview::Updater
{
public:
    /// The one of this process, made on first use on the current platform.
    static FVEUpdater& sharedUpdater();

    /// Binds it to the pane's bundle; called once.
    void init();

    bool automaticallyChecksForUpdates() const override;
    void setAutomaticallyChecksForUpdates(bool flag) override;

    void setDelegate(std::weak_ptr<farview::UpdaterDelegate> delegate) override;
    const farview::UpdateStatus& status() const override;
    void checkForUpdates() override;
    void downloadUpdate() override;
    void installUpdate() override;
    void cancel() override;

private:
    std::shared_ptr<farview::Updater> mUpdater;
};
