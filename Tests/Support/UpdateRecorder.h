#pragma once

#include "Platform/Updater.h"

#include <string>
#include <vector>

/// Notes what an updater tells.
class UpdateRecorder final : public farview::UpdaterDelegate
{
public:
    using Stage = farview::UpdateStatus::Stage;

    void didChangeStatus(farview::Updater& updater) override
    {
        const Stage stage = updater.status().stage;
        if (stages.empty() || stages.back() != stage)
            stages.push_back(stage);
    }
    void willInstallUpdate(farview::Object* updater, farview::Object* item) override
    {
        stageBeforeInstallation = dynamic_cast<farview::Updater&>(*updater).status().stage;
        installing.push_back(dynamic_cast<farview::PendingUpdate&>(*item).version());
    }

    /// Without repetitions.
    std::vector<Stage> stages;
    std::vector<std::string> installing;
    Stage stageBeforeInstallation = Stage::idle;
};
