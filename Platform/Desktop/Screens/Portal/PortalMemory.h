#pragma once

#include <functional>
#include <string>

namespace farview
{

/// Keeps the word by which a portal allows again what the user has allowed once: for each name of a
/// monitor, for this user's programs only.
struct PortalMemory {
    /// Empty when there is none.
    std::function<std::string(const std::string& name)> word = [](auto&) { return std::string(); };
    /// Each word counts once: the portal gives another one. Empty: there is none any more.
    std::function<void(const std::string& name, const std::string& word)> keep = [](auto&, auto&) {
    };
};

} // namespace farview
