#include "Tests/Layout/SourceTree.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace
{

/// What one room of the house may include, besides its own files and the C++ standard library.
struct Room {
    std::string folder;
    std::vector<std::string> allowed; ///< prefixes of paths in the project
    bool core;                        ///< the standard library (and the socket headers) only
};

// The most particular folder first: the first that fits a file is its room.
const std::vector<Room> rooms = {
    {"Platform/Types/", {}, true},
    {"Platform/Posix/", {"Platform/"}, false},
    {"Platform/Desktop/", {"Platform/"}, false},
    {"Platform/Fake/", {"Platform/"}, true},
    {"Platform/", {"Platform/Types/"}, true},
    {"Controls/Qt/", {"Controls/", "Common/", "Platform/"}, false},
    {"Controls/", {"Platform/Types/"}, true},
    {"Common/Rules/", {"Platform/Types/"}, true},
    {"Common/", {"Common/Rules/", "Platform/", "Controls/"}, true},
    {"Source/", {"Common/", "Controls/", "Platform/"}, true},
    {"Link/", {"Platform/", "Common/"}, false},
    {"PaneBundle/",
     {"Source/", "Controls/", "Common/", "Platform/", "Applications/Preferences/PaneInterface.h"},
     false},
    {"Applications/Preferences/",
     {"Applications/TerminationSignals.h", "Platform/", "Common/", "Controls/"},
     false},
    {"Applications/", {"Platform/", "Common/", "Controls/", "Link/"}, false},
};

// The bodies that only their own rooms, composition roots and tests may know.
const std::vector<std::string> bodies = {"Platform/Posix/", "Platform/Desktop/", "Platform/Fake/",
                                         "Controls/Qt/"};

const std::set<std::string> standardHeaders = {"algorithm",     "any",
                                               "array",         "atomic",
                                               "bit",           "cctype",
                                               "cerrno",        "charconv",
                                               "chrono",        "clocale",
                                               "cmath",         "compare",
                                               "concepts",      "condition_variable",
                                               "csignal",       "cstddef",
                                               "cstdint",       "cstdio",
                                               "cstdlib",       "cstring",
                                               "ctime",         "cwchar",
                                               "cwctype",       "deque",
                                               "exception",     "filesystem",
                                               "forward_list",  "fstream",
                                               "functional",    "initializer_list",
                                               "iomanip",       "ios",
                                               "iosfwd",        "iostream",
                                               "istream",       "iterator",
                                               "limits",        "list",
                                               "locale",        "map",
                                               "memory",        "mutex",
                                               "new",           "numeric",
                                               "optional",      "ostream",
                                               "queue",         "random",
                                               "ranges",        "ratio",
                                               "regex",         "set",
                                               "span",          "sstream",
                                               "stack",         "stdexcept",
                                               "streambuf",     "string",
                                               "string_view",   "system_error",
                                               "thread",        "tuple",
                                               "type_traits",   "typeindex",
                                               "typeinfo",      "unordered_map",
                                               "unordered_set", "utility",
                                               "variant",       "vector"};
const std::set<std::string> socketHeaders = {"arpa/inet.h", "netinet/in.h", "sys/socket.h"};

bool startsWithAny(const std::string& text, const std::vector<std::string>& prefixes)
{
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](const auto& prefix) { return text.starts_with(prefix); });
}

const Room* roomOf(const std::string& path)
{
    const auto found = std::find_if(rooms.begin(), rooms.end(), [&](const Room& room) {
        return path.starts_with(room.folder);
    });
    return found == rooms.end() ? nullptr : &*found;
}

bool mayIncludeProjectFile(const Room& room, const std::string& include)
{
    if (roomOf(include) == &room)
        return true;
    if (!startsWithAny(include, room.allowed))
        return false;
    return !(room.core && startsWithAny(include, bodies));
}

bool mayIncludeSystemHeader(const Room& room, const std::string& include)
{
    return !room.core || standardHeaders.contains(include) || socketHeaders.contains(include);
}

bool isFakeForAProduct(const Room& room, const std::string& include)
{
    return include.starts_with("Platform/Fake/") && room.folder != "Platform/Fake/";
}

/// Generated files have no folder; anything else is written from the root.
bool isGenerated(const std::string& include)
{
    return include.ends_with(".moc") || include.starts_with("ui_") || include.starts_with("moc_");
}

std::vector<std::string> violations(const SourceFile& file)
{
    static const std::regex includeLine(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
    const Room* room = roomOf(file.path);
    if (!room)
        return {file.path + " belongs to no room"};
    std::vector<std::string> found;
    for (const auto& line : file.lines) {
        std::smatch match;
        if (!std::regex_search(line, match, includeLine))
            continue;
        const std::string include = match[2];
        const bool quoted = match[1] == "\"";
        const bool allowed = quoted
                                 ? isGenerated(include) || (mayIncludeProjectFile(*room, include) &&
                                                            !isFakeForAProduct(*room, include))
                                 : mayIncludeSystemHeader(*room, include);
        if (!allowed)
            found.push_back(file.path + " must not include " + include);
    }
    return found;
}

TEST(IncludeDirection, EveryIncludePointsDown)
{
    const auto files = productSources();
    ASSERT_GT(files.size(), 30u);
    for (const auto& file : files) {
        for (const auto& violation : violations(file))
            ADD_FAILURE() << violation;
    }
}

TEST(IncludeDirection, AToolkitHeaderInTheCoreIsFound)
{
    EXPECT_EQ(violations({"Common/Example.cpp", {"#include <QString>"}}).size(), 1u);
    EXPECT_EQ(violations({"Source/Example.cpp", {"#include <unistd.h>"}}).size(), 1u);
    EXPECT_EQ(violations({"Common/Example.cpp", {"#include <arpa/inet.h>"}}).size(), 0u);
}

TEST(IncludeDirection, AnArrowThatPointsUpIsFound)
{
    EXPECT_EQ(violations({"Common/Example.cpp", {"#include \"Source/FVEDisplay.h\""}}).size(), 1u);
    EXPECT_EQ(violations({"Controls/Example.h", {"#include \"Platform/RunLoop.h\""}}).size(), 1u);
    EXPECT_EQ(violations({"Link/Example.h", {"#include \"Platform/Fake/FakeLog.h\""}}).size(), 1u);
    EXPECT_EQ(violations({"Source/E.cpp", {"#include \"Platform/Posix/PosixBundle.h\""}}).size(),
              1u);
}

} // namespace
