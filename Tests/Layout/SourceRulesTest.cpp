#include "Tests/Layout/SourceTree.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace
{

std::string withoutComment(const std::string& line) { return line.substr(0, line.find("//")); }

bool mentions(const SourceFile& file, const std::regex& pattern)
{
    return std::any_of(file.lines.begin(), file.lines.end(), [&](const auto& line) {
        return std::regex_search(withoutComment(line), pattern);
    });
}

// Functions whose fixed name leaves no parameter for the platform live in these files; what
// composes a program installs it.
const std::set<std::string> filesThatFindThePlatform = {
    "Common/FVELogging.cpp",
    "Common/FVEPreferences.cpp",
    "Common/FVEUpdater.cpp",
    "Common/GetPID.cpp",
    "Common/NSApplication_Additions.cpp",
    "Common/NSString_Additions.cpp",
    "Common/NSURL_Additions.cpp",
    "Common/Registry/QLNRegistryExplorer.cpp",
    "Platform/Platform.cpp",
    "Source/FVEDisplay.cpp",
};

TEST(SourceRules, OnlyTheNamedFilesFindThePlatformByThemselves)
{
    const std::regex call(R"(Platform::(current|generation)\s*\()");
    for (const auto& file : productSources()) {
        if (mentions(file, call)) {
            EXPECT_TRUE(filesThatFindThePlatform.contains(file.path))
                << file.path << " should take the interfaces it needs in its constructor";
        }
    }
}

// The toolkit offers no drag without a loop of its own. This one is entered with nothing of ours
// below it that could be gone when it returns (docs/decisions/130).
const std::string dragLoop =
    "Controls/Qt/Table/RunningDrag.cpp:        mDrag->exec(Qt::MoveAction);";

TEST(SourceRules, NoLoopRunsInsideALoop)
{
    std::vector<std::string> loops;
    const std::regex nested(R"((->|\.)exec\s*\(|processEvents\s*\(|QEventLoop|waitFor\w+\s*\()");
    const std::regex application(
        R"((application|app|QApplication|QCoreApplication)(\.|->|::)exec\s*\()");
    for (const auto& file : productSources()) {
        for (const auto& line : file.lines) {
            const auto code = withoutComment(line);
            if (std::regex_search(code, nested) && !std::regex_search(code, application))
                loops.push_back(file.path + ":" + code);
        }
    }
    EXPECT_EQ(loops, std::vector<std::string>{dragLoop});
}

TEST(SourceRules, ThePlatformIsAskedAboutOnlyInItsOwnRooms)
{
    const std::regex condition(
        R"(^\s*#\s*(if|ifdef|ifndef|elif).*(__linux__|__unix__|_WIN32|__APPLE__|Q_OS_))");
    for (const auto& file : productSources()) {
        if (!file.path.starts_with("Platform/")) {
            EXPECT_FALSE(mentions(file, condition)) << file.path;
        }
    }
}

TEST(SourceRules, ASourceStaysReadableInOneSitting)
{
    for (const auto& file : productSources()) {
        const std::size_t limit = file.path.ends_with(".h") ? 200 : 400;
        EXPECT_LE(file.lines.size(), limit) << file.path;
    }
}

} // namespace
