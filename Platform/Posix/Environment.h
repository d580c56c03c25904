#pragma once

#include <string>

namespace farview
{

/// Whether the variables of the environment are believed. A program that runs with more rights than
/// its caller ignores them: the caller chose them.
enum class EnvironmentUse { honoured, ignored };

/// Whether the session runs on an X server. False on Wayland, also where an X server serves older
/// programs there.
bool isX11Session();

/// Reads the variables that tell where the user's folders are.
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
