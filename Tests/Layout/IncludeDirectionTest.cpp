#include "Tests/Layout/SourceTree.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace
{

const std::filesystem::path root = FARVIEW_SOURCE_DIR;

/// What one room of the house may include, besides its own files and the C++ standard library.
struct Room {
    std::set<std::string> rooms; ///< or single headers
    std::set<std::string> libraries;
};
using Rooms = std::map<std::string, Room>;

std::set<std::string> wordsOf(std::string text)
{
    std::erase(text, '`');
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// The table that the page for developers shows.
Rooms readRooms()
{
    static const std::regex row(R"(^\| `([^`]+)` \|([^|]*)\|([^|]*)\|$)");
    std::ifstream page(root / "docs/architecture.md");
    Rooms rooms;
    bool isInTable = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("## "))
            isInTable = line == "## What may include what";
        std::smatch match;
        if (isInTable && std::regex_match(line, match, row))
            rooms[match[1]] = {wordsOf(match[2]), wordsOf(match[3])};
    }
    return rooms;
}

const Rooms& rooms()
{
    static const Rooms all = readRooms();
    return all;
}

/// The room with the longest name that holds the file; empty: none does.
std::string roomOf(const std::string& path)
{
    std::string found;
    for (const auto& [name, room] : rooms()) {
        if (path.starts_with(name + "/") && name.size() > found.size())
            found = name;
    }
    return found;
}

bool isOf(const std::string& header, const std::set<std::string>& headers)
{
    return headers.contains(header);
}

/// Which library a header in angle brackets belongs to, in the words of the table; empty: the C++
/// standard library.
std::string libraryOf(const std::string& header)
{
    static const std::set<std::string> sockets = {"arpa/inet.h", "netinet/in.h", "netinet/tcp.h",
                                                  "sys/socket.h"};
    static const std::filesystem::path toolkit = FARVIEW_QT_HEADERS;
    for (const char* module :
         {"QtCore", "QtDBus", "QtGui", "QtNetwork", "QtUiTools", "QtWidgets"}) {
        if (header.starts_with(std::string(module) + "/") ||
            std::filesystem::exists(toolkit / module / header))
            return module;
    }
    if (isOf(header, sockets))
        return "sockets";
    if (!header.ends_with(".h"))
        return header.starts_with("Q") ? "an unknown module" : "";
    for (const char* library : {"avahi-common", "avahi-core", "libevdev", "xcb", "xkbcommon"}) {
        if (header.starts_with(std::string(library) + "/"))
            return library;
    }
    if (header.starts_with("wayland-"))
        return "wayland";
    // Its headers come in two families.
    if (header.starts_with("pipewire/") || header.starts_with("spa/"))
        return "pipewire";
    for (const char* library :
         {"archive", "expat", "openssl", "sodium", "turbojpeg", "zlib", "zstd"}) {
        if (header.starts_with(library))
            return library;
    }
    static const std::set<std::string> system = {"dirent.h", "fcntl.h", "ifaddrs.h", "poll.h",
                                                 "pwd.h",    "spawn.h", "unistd.h"};
    static const std::regex systemFolders("(linux|net|netinet|sys)/.*");
    return isOf(header, system) || std::regex_match(header, systemFolders) ? "system" : header;
}

bool mayInclude(const std::string& room, const std::string& include)
{
    const auto other = roomOf(include);
    const auto& allowed = rooms().at(room).rooms;
    return other == room || allowed.contains(other) || allowed.contains(include);
}

bool mayIncludeLibrary(const std::string& room, const std::string& library)
{
    const auto& allowed = rooms().at(room).libraries;
    return library.empty() || allowed.contains(library) ||
           (library == "sockets" && allowed.contains("system"));
}

/// Made by the build from sources of the same room.
bool isGenerated(const std::string& include) { return include.ends_with(".moc"); }

std::vector<std::string> violations(const SourceFile& file)
{
    static const std::regex includeLine(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
    const auto room = roomOf(file.path);
    if (room.empty())
        return {file.path + " belongs to no room"};
    std::vector<std::string> found;
    for (const auto& line : file.lines) {
        std::smatch match;
        if (!std::regex_search(line, match, includeLine))
            continue;
        const std::string include = match[2];
        const bool allowed = match[1] == "\"" ? isGenerated(include) || mayInclude(room, include)
                                              : mayIncludeLibrary(room, libraryOf(include));
        if (!allowed)
            found.push_back(file.path + " must not include " + include);
    }
    return found;
}

TEST(IncludeDirection, EveryIncludeStandsInTheTable)
{
    const auto files = productSources();
    ASSERT_GT(files.size(), 30u);
    for (const auto& file : files) {
        for (const auto& violation : violations(file))
            ADD_FAILURE() << violation;
    }
}

TEST(IncludeDirection, TheTableNamesOnlyWhatIsThere)
{
    for (const auto& [name, room] : rooms()) {
        EXPECT_TRUE(std::filesystem::is_directory(root / name)) << name;
        for (const auto& other : room.rooms)
            EXPECT_TRUE(rooms().contains(other) || std::filesystem::is_regular_file(root / other))
                << name << " may include " << other;
    }
}

/// Room by room, all the rooms that can be reached from it.
void collectBelow(const std::string& name, std::set<std::string>& below)
{
    for (const auto& other : rooms().at(name).rooms) {
        if (rooms().contains(other) && below.insert(other).second)
            collectBelow(other, below);
    }
}

TEST(IncludeDirection, NoRoomIsBelowItself)
{
    for (const auto& [name, room] : rooms()) {
        std::set<std::string> below;
        collectBelow(name, below);
        EXPECT_FALSE(below.contains(name)) << name;
    }
}

TEST(IncludeDirection, EveryRoomSaysWhatItIs)
{
    std::set<std::string> folders = {"Tests", "Benchmarks"};
    for (const auto& [name, room] : rooms())
        folders.insert(name);
    for (const auto& folder : folders) {
        std::ifstream readme(root / folder / "README.md");
        EXPECT_TRUE(readme.good()) << folder << " has no README.md";
        const auto lines = std::count(std::istreambuf_iterator<char>(readme), {}, '\n');
        EXPECT_LE(lines, 8) << folder << "/README.md is longer than it may be";
    }
}

struct Forbidden {
    const char* path;
    const char* line;
};

class AForbiddenInclude : public testing::TestWithParam<Forbidden>
{
};

TEST_P(AForbiddenInclude, IsFound)
{
    EXPECT_EQ(violations({GetParam().path, {GetParam().line}}).size(), 1u)
        << GetParam().path << ": " << GetParam().line;
}

INSTANTIATE_TEST_SUITE_P(
    IncludeDirection, AForbiddenInclude,
    testing::Values(
        Forbidden{"Common/Example.cpp", "#include <QString>"},
        Forbidden{"Source/Example.cpp", "#include <unistd.h>"},
        Forbidden{"Common/Example.cpp", "#include \"Source/FVEDisplay.h\""},
        Forbidden{"Controls/Example.h", "#include \"Platform/RunLoop.h\""},
        Forbidden{"Link/Example.h", "#include \"Platform/Fake/FakeLog.h\""},
        Forbidden{"Source/Example.cpp", "#include \"Platform/Posix/PosixBundle.h\""},
        Forbidden{"Platform/Posix/Example.cpp", "#include <QString>"},
        Forbidden{"Platform/Posix/Example.cpp", "#include \"Platform/Desktop/QtRunLoop.h\""},
        Forbidden{"Platform/Desktop/Example.cpp", "#include <QWidget>"},
        Forbidden{"Platform/Desktop/Example.cpp", "#include <xcb/xcb.h>"},
        Forbidden{"Link/Example.cpp", "#include <QWidget>"},
        Forbidden{"Link/Wire/Example.h", "#include <QByteArray>"},
        Forbidden{"Link/Wire/Example.h", "#include \"Common/FVELogging.h\""},
        Forbidden{"Link/Example.cpp", "#include <QtWidgets/QWidget>"},
        Forbidden{"Controls/Qt/Example.cpp", "#include \"Common/FVEPreferences.h\""},
        Forbidden{"Controls/Qt/Example.cpp", "#include <QDBusMessage>"},
        Forbidden{"Applications/PrivilegedHelpers/Example.cpp",
                  "#include \"Controls/Qt/DesktopLook.h\""},
        Forbidden{"Applications/Update/Example.cpp", "#include \"Source/FVEDisplay.h\""},
        Forbidden{"Elsewhere/Example.cpp", ""}));

TEST(IncludeDirection, AllowedIncludesAreNotReported)
{
    EXPECT_EQ(violations({"Common/Example.cpp", {"#include <arpa/inet.h>"}}).size(), 0u);
    EXPECT_EQ(violations({"Link/Example.cpp", {"#include <QTcpSocket>"}}).size(), 0u);
    EXPECT_EQ(violations({"Source/Example.cpp", {"#include \"Controls/Menu.h\""}}).size(), 0u);
}

} // namespace
