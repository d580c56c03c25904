#include "Applications/Doctor/PermissionProbe.h"

#include "Platform/Bundle.h"
#include "Platform/Desktop/Screens/ScreenBackends.h"
#include "Platform/Posix/Environment.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

/// Where desktop files are, those of the user first.
std::vector<fs::path> folders()
{
    const Environment environment(EnvironmentUse::honoured);
    const auto own = environment.value("XDG_DATA_HOME");
    const auto shared = environment.value("XDG_DATA_DIRS");
    std::istringstream names((own.empty() ? environment.value("HOME") + "/.local/share" : own) +
                             ":" + (shared.empty() ? "/usr/local/share:/usr/share" : shared));
    std::vector<fs::path> all;
    for (std::string name; std::getline(names, name, ':');)
        all.push_back(fs::path(name) / "applications");
    return all;
}

/// The first word of a command, which may be quoted.
std::string programOf(const std::string& command)
{
    if (!command.starts_with('"'))
        return command.substr(0, command.find(' '));
    return command.substr(1, command.find('"', 1) - 1);
}

/// Whether the file says that the program, of which this is the true path, may add screens.
bool permits(const fs::path& file, const fs::path& program)
{
    const std::string command = "Exec=";
    const std::string interfaces = "X-KDE-Wayland-Interfaces=";
    bool isItsFile = false;
    bool hasInterface = false;
    std::error_code error;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(command))
            isItsFile =
                fs::weakly_canonical(programOf(line.substr(command.size())), error) == program;
        else if (line.starts_with(interfaces))
            hasInterface = line.find("zkde_screencast_unstable_v1") != std::string::npos;
    }
    return isItsFile && hasInterface;
}

} // namespace

std::string permissionFileOf(const std::string& program)
{
    std::error_code error;
    const auto path = fs::weakly_canonical(program, error);
    for (const auto& folder : folders()) {
        for (const std::string origin : {"farview-", "farview-build-"}) {
            const auto file = folder / (origin + path.filename().string() + ".desktop");
            if (permits(file, path))
                return file;
        }
    }
    return {};
}

PermissionFacts permissionFacts(const Bundle* pane)
{
    const auto server = pane ? pane->pathForResource("ScreenCapture", "app") : std::nullopt;
    if (!server || screenBackendFor(sessionFacts()) != ScreenBackend::kwin)
        return {};
    const auto program = *server + "/Contents/Linux/ScreenCapture";
    return {true, program, permissionFileOf(program)};
}

Findings findingsAboutPermission(const PermissionFacts& facts)
{
    if (!facts.isNeeded)
        return {};
    Finding found{
        Area::screen, Severity::ok, "kde-permission", {"KDE lets the screen server add screens."}};
    found.details = {{"program", facts.program}, {"path", facts.file}};
    if (facts.file.empty()) {
        found.severity = Severity::problem;
        found.name = "kde-permission-missing";
        found.text = {"KDE does not let the screen server add screens: no desktop file says that "
                      "it needs to."};
        found.advice = {"Install Farview again, so that its desktop files lie where KDE looks for "
                        "them, then log out and in again."};
    }
    return {found};
}

} // namespace farview
