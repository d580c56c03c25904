#include "Platform/Posix/AutostartEntry.h"

#include "Platform/Posix/Settings/FileReplacement.h"
#include "Platform/Posix/WholeFile.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string_view>

namespace farview
{
namespace
{

constexpr std::size_t largestEntry = 64 * 1024;

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool isSetting(std::string_view line, std::string_view key, std::string_view value)
{
    const auto equals = line.find('=');
    return equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key &&
           trimmed(line.substr(equals + 1)) == value;
}

/// Both words are in use: the first is the standard's, the second what settings programs write.
bool switchesOff(std::string_view line)
{
    return isSetting(line, "Hidden", "true") ||
           isSetting(line, "X-GNOME-Autostart-enabled", "false");
}

bool isSwitchedOff(std::string_view entry)
{
    bool inEntry = false;
    while (!entry.empty()) {
        const auto end = std::min(entry.find('\n'), entry.size());
        const auto line = trimmed(entry.substr(0, end));
        entry.remove_prefix(std::min(end + 1, entry.size()));
        if (line.starts_with('['))
            inEntry = line == "[Desktop Entry]";
        else if (inEntry && switchesOff(line))
            return true;
    }
    return false;
}

/// Within quotes a shell's special characters are escaped; the backslash of each escape is then
/// doubled, because the line is a text value; a percent sign would begin a field code.
std::string inQuotes(std::string_view part)
{
    std::string result = "\"";
    for (const char letter : part) {
        if (letter == '\\')
            result += "\\\\\\\\";
        else if (letter == '"' || letter == '`' || letter == '$')
            result += std::string("\\\\") + letter;
        else
            result += letter == '%' ? "%%" : std::string(1, letter);
    }
    return result + "\"";
}

bool isControl(unsigned char letter) { return letter < 0x20 || letter == 0x7F; }

std::string entryFor(const std::string& exec)
{
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Version=1.0\n"
           "Name=Farview\n"
           "Comment=Use another device as an additional screen\n"
           "Comment[de]=Ein anderes Gerät als zusätzlichen Bildschirm benutzen\n"
           "Icon=farview-preferences\n"
           "Exec=" +
           exec +
           "\n"
           "Terminal=false\n"
           "StartupNotify=false\n"
           "NoDisplay=true\n";
}

} // namespace

std::string execLine(const LoginItem::Command& command)
{
    std::string line;
    for (const auto& part : command) {
        if (std::any_of(part.begin(), part.end(), isControl))
            return {};
        line += (line.empty() ? "" : " ") + inQuotes(part);
    }
    return line;
}

AutostartEntry::AutostartEntry(EnvironmentUse use)
    : mFolder(Environment(use).configHome() + "/autostart"),
      mPath(mFolder + "/com.quillon.Farview.desktop")
{
}

bool AutostartEntry::isEnabled()
{
    const auto file = readWholeFile(mPath, largestEntry);
    return file.status == WholeFile::Status::read && !isSwitchedOff(file.bytes);
}

bool AutostartEntry::enable(const Command& command)
{
    const std::string exec = execLine(command);
    if (exec.empty() || !command.front().starts_with('/') || makeFolders(mFolder, 0700) != 0)
        return false;
    const std::string target = resolvedLink(mPath);
    FileReplacement replacement(target);
    return !target.empty() && replacement.write(entryFor(exec), 0644) == 0 &&
           replacement.commit() == 0;
}

bool AutostartEntry::disable() { return ::unlink(mPath.c_str()) == 0 || errno == ENOENT; }

} // namespace farview
