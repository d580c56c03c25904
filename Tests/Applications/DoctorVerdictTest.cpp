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
    Verdict verdict;
    bool isComplete = true;
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
    {"nothing found", {}, Verdict::works},
    {"notes do not matter", {finding(Area::devices, Severity::note, "none")}, Verdict::works},
    {"a device that answers", {ready}, Verdict::works},
    {"not all was answered", {ready}, Verdict::unknown, false},
    {"broken settings limit only", {problem(Area::preferences, "broken")}, Verdict::limited},
    {"no panel", {problem(Area::versions, "pane-missing")}, Verdict::blocked},
    {"no server", {problem(Area::versions, "server-missing")}, Verdict::blocked},
    {"no bus, though a device answers",
     {problem(Area::bus, "session-missing"), ready},
     Verdict::blocked},
    {"bus not running", {problem(Area::bus, "session-refused")}, Verdict::blocked},
    {"bus silent", {problem(Area::bus, "session-silent")}, Verdict::blocked},
    {"bus of another", {problem(Area::bus, "session-foreign")}, Verdict::blocked},
    {"driver missing", {problem(Area::driver, "missing"), ready}, Verdict::blocked},
    {"driver unusable", {problem(Area::driver, "unusable")}, Verdict::blocked},
    {"this computer's key cannot be used, though a device answers",
     {problem(Area::pairing, "key-unusable"), ready},
     Verdict::blocked},
    {"server does not run", {problem(Area::processes, "server-not-running")}, Verdict::blocked},
    {"server deaf", {problem(Area::processes, "server-deaf")}, Verdict::blocked},
    {"no monitor can be added, though a device answers",
     {problem(Area::screen, "no-spare-output"), ready},
     Verdict::blocked},
    {"started outside the desktop",
     {finding(Area::screen, Severity::note, "no-desktop"), ready},
     Verdict::works},
    {"discovery refused", {problem(Area::discovery, "refused")}, Verdict::blocked},
    {"discovery unavailable", {problem(Area::discovery, "unavailable")}, Verdict::blocked},
    {"no network", {problem(Area::discovery, "loopback-only")}, Verdict::blocked},
    {"no network, but a device on this computer",
     {problem(Area::discovery, "loopback-only"), ready},
     Verdict::limited},
    {"silent system bus, but a device answers",
     {problem(Area::bus, "system-silent"), ready},
     Verdict::limited},
    {"the only device is in use", {inUse}, Verdict::works},
    {"the only device cannot be reached", {portClosed}, Verdict::blocked},
    {"one device can be reached", {portClosed, ready}, Verdict::limited},
    {"one is in use, one cannot be reached", {portClosed, inUse}, Verdict::limited},
    {"blocked also when time was over",
     {problem(Area::driver, "missing")},
     Verdict::blocked,
     false},
    {"a name counts in its own area only",
     {problem(Area::preferences, "missing")},
     Verdict::limited},
};

TEST(DoctorVerdict, FollowsTheTable)
{
    for (const Case& each : cases) {
        const Report report{"1.0", "now", each.isComplete, each.findings};
        EXPECT_EQ(verdictOf(report), each.verdict) << each.says;
    }
}

TEST(DoctorVerdict, IsTheExitStatus)
{
    EXPECT_EQ(exitStatusFor(Verdict::works), 0);
    EXPECT_EQ(exitStatusFor(Verdict::limited), 0);
    EXPECT_EQ(exitStatusFor(Verdict::blocked), 1);
    EXPECT_EQ(exitStatusFor(Verdict::unknown), 3);
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
