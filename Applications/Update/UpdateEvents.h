#pragma once

#include "Applications/Update/UpdateFailure.h"
#include "Common/Rules/UpdateChoice.h"

#include <cstdint>
#include <cstdio>
#include <string>

class QJsonObject;

namespace farview
{

/// Says what happens, one JSON object per line, at once. Who listens may have gone: then it is said
/// to nobody.
class UpdateEvents
{
public:
    /// `output` is used, not owned.
    explicit UpdateEvents(std::FILE* output) : mOutput(output) {}

    void checking();
    void current(const std::string& version, const std::string& offered);
    void found(const UpdateItem& item);
    void downloading(std::uint64_t received, std::uint64_t length);
    void verifying();
    void ready(const std::string& version);
    void installing();
    void installed(const std::string& version);
    void cancelled();
    void failed(const UpdateFailure& failure);

private:
    void say(const char* event, QJsonObject details);

    std::FILE* mOutput;
};

} // namespace farview
