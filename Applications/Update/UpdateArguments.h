#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace farview
{

inline constexpr int wrongUseOfUpdate = 2;

struct UpdateArguments {
    enum class Wish { update, help, version, none };

    Wish wish = Wish::update;
    std::string bundle;
    std::string host;
    bool onlyChecks = false;
    std::chrono::seconds patience{30}; ///< with a server that is silent
    std::string mistake;               ///< of `none`, printable
};

UpdateArguments readUpdateArguments(const std::vector<std::string>& arguments);

/// What --help prints.
extern const char* const updateUsage;

} // namespace farview
