#include "Platform/Posix/Environment.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace farview
{
namespace
{

std::string withoutTrailingSlash(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

} // namespace

std::string Environment::value(const char* name) const
{
    const char* found = mUse == EnvironmentUse::honoured ? std::getenv(name) : nullptr;
    return found ? found : "";
}

std::string Environment::folder(const char* name) const
{
    auto path = value(name);
    return path.starts_with('/') ? withoutTrailingSlash(std::move(path)) : std::string{};
}

std::string Environment::homeFolder() const
{
    if (auto home = folder("HOME"); !home.empty())
        return home;
    const auto* user = ::getpwuid(::geteuid());
    return user && user->pw_dir && user->pw_dir[0] == '/' ? user->pw_dir : "/";
}

std::string Environment::configHome() const
{
    const auto chosen = folder("XDG_CONFIG_HOME");
    return chosen.empty() ? homeFolder() + "/.config" : chosen;
}

std::string Environment::dataHome() const
{
    const auto chosen = folder("XDG_DATA_HOME");
    return chosen.empty() ? homeFolder() + "/.local/share" : chosen;
}

bool isX11Session()
{
    const Environment environment(EnvironmentUse::honoured);
    return environment.value("WAYLAND_DISPLAY").empty() && !environment.value("DISPLAY").empty();
}

} // namespace farview
