#pragma once

#include <string>

namespace farview
{

/// Whether the variables of the environment are believed. A program that runs with more rights than
/// its caller ignores them: the caller chose them.
enum class EnvironmentUse { honoured, ignored };

/// Whether the windows of this session are the X server's own affair: not so where it only serves
/// the older programs of another display server.
bool isX11Session();

/// What a process is told from outside about where its user's folders are.
class Environment
{
public:
    explicit Environment(EnvironmentUse use) : mUse(use) {}

    /// The variable's value; empty when it is not set or not believed.
    std::string value(const char* name) const;
    /// The same, when it is an absolute path; else empty.
    std::string folder(const char* name) const;

    /// The user's home, else what the user database says; absolute, never empty.
    std::string homeFolder() const;
    /// Where the user's settings are: $XDG_CONFIG_HOME, else ".config" in the home.
    std::string configHome() const;
    /// Where the user's data is: $XDG_DATA_HOME, else ".local/share" in the home.
    std::string dataHome() const;

private:
    EnvironmentUse mUse;
};

} // namespace farview
