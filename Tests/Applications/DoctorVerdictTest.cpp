#include "Applications/Doctor/Report.h"

#include "Tests/Applications/DoctorNames.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using namespace farview;

namespace
{

struct Case {
    std::string says;
    std::vector<Finding> findings;
    bool isComplete;
    Verdict verdict;
    int status;
};

Finding finding(Area area, Severity severity, const char* name)
{
    return {area, severity, name, {"text"}};
}

Finding problem(Area area, const char* name) { return finding(area, Severity::problem, name); }

const Finding ready = finding(Area::devices, Severity::ok, "ready");
const Finding inUse = finding(Area::devices, Severity::note, "in-use");
const Finding portClosed = problem(Area::devices, "port-closed");

const std::vector<Case> cases = {
    {"nothing found", {}, true, Verdict::works, 0},
    {"notes do not matter",
     {finding(Area::devices, Severity::note, "none")},
     true,
     Verdict::works,
     0},
    {"a device that answers", {ready}, true, Verdict::works, 0},
    {"not all was answered", {ready}, false, Verdict::unknown, 3},
    {"broken settings limit only",
     {problem(Area::preferences, "broken")},
     true,
     Verdict::limited,
     0},
    {"no panel", {problem(Area::versions, "pane-missing")}, true, Verdict::blocked, 1},
    {"no server", {problem(Area::versions, "server-missing")}, true, Verdict::blocked, 1},
    {"no bus, though a device answers",
     {problem(Area::bus, "session-missing"), ready},
     true,
     Verdict::blocked,
     1},
    {"bus not running", {problem(Area::bus, "session-refused")}, true, Verdict::blocked, 1},
    {"bus silent", {problem(Area::bus, "session-silent")}, true, Verdict::blocked, 1},
    {"bus of another", {problem(Area::bus, "session-foreign")}, true, Verdict::blocked, 1},
    {"driver missing", {problem(Area::driver, "missing"), ready}, true, Verdict::blocked, 1},
    {"driver unusable", {problem(Area::driver, "unusable")}, true, Verdict::blocked, 1},
    {"server does not run",
     {problem(Area::processes, "server-not-running")},
     true,
     Verdict::blocked,
     1},
    {"server deaf", {problem(Area::processes, "server-deaf")}, true, Verdict::blocked, 1},
    {"discovery refused", {problem(Area::discovery, "refused")}, true, Verdict::blocked, 1},
    {"discovery unavailable", {problem(Area::discovery, "unavailable")}, true, Verdict::blocked, 1},
    {"no network", {problem(Area::discovery, "loopback-only")}, true, Verdict::blocked, 1},
    {"no network, but a device on this computer",
     {problem(Area::discovery, "loopback-only"), ready},
     true,
     Verdict::limited,
     0},
    {"silent system bus, but a device answers",
     {problem(Area::bus, "system-silent"), ready},
     true,
     Verdict::limited,
     0},
    {"the only device is in use", {inUse}, true, Verdict::works, 0},
    {"the only device cannot be reached", {portClosed}, true, Verdict::blocked, 1},
    {"one device can be reached", {portClosed, ready}, true, Verdict::limited, 0},
    {"one is in use, one cannot be reached", {portClosed, inUse}, true, Verdict::limited, 0},
    {"blocked also when time was over",
     {problem(Area::driver, "missing")},
     false,
     Verdict::blocked,
     1},
    {"a name counts in its own area only",
     {problem(Area::preferences, "missing")},
     true,
     Verdict::limited,
     0},
};

TEST(DoctorVerdict, FollowsTheTable)
{
    for (const Case& each : cases) {
        const Report report{"1.0", "now", each.isComplete, each.findings};
        EXPECT_EQ(verdictOf(report), each.verdict) << each.says;
        EXPECT_EQ(exitStatusFor(verdictOf(report)), each.status) << each.says;
    }
}

TEST(DoctorVerdict, EachHasItsOwnNameAndWords)
{
    std::set<std::string> names;
    std::set<std::string> titles;
    for (const auto each : {Verdict::works, Verdict::limited, Verdict::blocked, Verdict::unknown}) {
        names.insert(nameOf(each));
        titles.insert(titleOf(each));
        expectTranslated(titleOf(each));
    }
    EXPECT_EQ(names, (std::set<std::string>{"works", "limited", "blocked", "unknown"}));
    EXPECT_EQ(titles.size(), 4u);
}

TEST(DoctorVerdict, EachAreaHasATranslatedTitle)
{
    for (int area = 0; area <= static_cast<int>(Area::devices); ++area)
        expectTranslated(titleOf(static_cast<Area>(area)));
}

} // namespace
