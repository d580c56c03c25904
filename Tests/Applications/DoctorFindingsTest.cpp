#include "Applications/Doctor/DevicesProbe.h"
#include "Applications/Doctor/Probes.h"
#include "Common/Rules/ScreenTexts.h"
#include "Tests/Applications/DoctorNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

VersionFacts wholeInstallation()
{
    const Piece piece{"/usr/lib/farview/Pane", "1.0"};
    return {"1.0", "Debian", "6.1", "6.4", piece, piece, piece};
}

BusFacts healthyBuses()
{
    BusFacts facts;
    facts.sessionAddress = "unix:path=/run/user/1000/bus";
    facts.session = BusAnswer::answers;
    facts.systemAddress = "unix:path=/run/dbus/system_bus_socket";
    facts.system = BusAnswer::answers;
    facts.isSessionUsed = true;
    return facts;
}

DeviceFact device(DeviceAnswer::Kind kind)
{
    return {"Desk", "desk.local", {{"192.0.2.7", 6001, 2}}, false, DeviceAnswer{kind}};
}

DeviceFacts seen(DeviceFact fact) { return {{std::move(fact)}, 0, {}}; }

PreferencesFileFact file(PreferencesFileFact::State state)
{
    return {"/home/anna/.config/farview/com.quillon.Farview.plist", state, "no element found"};
}

const InterfaceFact ethernet{"eth0", "192.0.2.2", false};
const InterfaceFact loopback{"lo", "127.0.0.1", true};

TEST(VersionFindings, NameEveryPieceThatIsThere)
{
    EXPECT_THAT(names(findingsAboutVersions(wholeInstallation())),
                ElementsAre("system", "pane", "server", "status-item"));
}

TEST(VersionFindings, SayWhatIsMissing)
{
    auto facts = wholeInstallation();
    facts.server.reset();
    facts.statusItem.reset();
    EXPECT_THAT(troubles(findingsAboutVersions(facts)),
                ElementsAre("server-missing", "status-item-missing"));
    facts.pane.reset();
    EXPECT_THAT(troubles(findingsAboutVersions(facts)), ElementsAre("pane-missing"));
}

TEST(VersionFindings, NoticeAMixture)
{
    auto facts = wholeInstallation();
    facts.statusItem->version = "0.9";
    EXPECT_THAT(troubles(findingsAboutVersions(facts)), ElementsAre("mixed"));
}

TEST(BusFindings, FollowTheTable)
{
    const std::vector<std::tuple<BusAnswer, bool, std::string>> cases = {
        {BusAnswer::answers, true, "session"},
        {BusAnswer::answers, false, "session-foreign"},
        {BusAnswer::noAddress, false, "session-missing"},
        {BusAnswer::refused, false, "session-refused"},
        {BusAnswer::silent, false, "session-silent"},
        {BusAnswer::rejects, false, "session-foreign"},
    };
    for (const auto& [answer, isUsed, name] : cases) {
        BusFacts facts = healthyBuses();
        facts.session = answer;
        facts.isSessionUsed = isUsed;
        EXPECT_THAT(names(findingsAboutBus(facts)), ElementsAre(name, "system"));
    }
}

TEST(BusFindings, TakeAMissingSystemBusLightlyAndASilentOneSeriously)
{
    BusFacts facts = healthyBuses();
    facts.system = BusAnswer::refused;
    EXPECT_EQ(findingsAboutBus(facts).back().severity, Severity::note);
    facts.system = BusAnswer::silent;
    EXPECT_EQ(findingsAboutBus(facts).back().severity, Severity::problem);
}

TEST(DiscoveryFindings, FollowTheTable)
{
    using Condition = DiscoveryCondition;
    const std::vector<std::tuple<bool, Condition, std::string>> cases = {
        {true, Condition::working, "daemon"},      {false, Condition::working, "embedded"},
        {false, Condition::refused, "refused"},    {false, Condition::unavailable, "unavailable"},
        {false, Condition::starting, "undecided"},
    };
    for (const auto& [daemon, condition, name] : cases)
        EXPECT_THAT(names(findingsAboutDiscovery({daemon, condition, {ethernet}})),
                    ElementsAre(name, "interface"));
}

TEST(DiscoveryFindings, NoticeThatThereIsNoNetwork)
{
    const auto condition = DiscoveryCondition::working;
    EXPECT_THAT(troubles(findingsAboutDiscovery({false, condition, {loopback}})),
                ElementsAre("loopback-only"));
    EXPECT_THAT(troubles(findingsAboutDiscovery({false, condition, {}})),
                ElementsAre("loopback-only"));
    EXPECT_THAT(troubles(findingsAboutDiscovery({false, condition, {loopback, ethernet}})),
                IsEmpty());
}

TEST(DriverFindings, TellAMissingDriverFromAnUnusableOne)
{
    const ExtensionFact broken{"/usr/lib/farview/Extensions/QLExGFX.kext", "", false};
    const ExtensionFact other{"/usr/lib/farview/Extensions/QLVideoCard.kext", "1.0", true};
    EXPECT_THAT(names(findingsAboutDriver({false, {"/usr/lib/farview/Extensions"}, {other}})),
                ElementsAre("missing", "extension"));
    EXPECT_THAT(names(findingsAboutDriver({false, {"/usr"}, {broken, other}})),
                ElementsAre("unusable", "extension"));
    const ExtensionFact good{broken.path, "1.0", true};
    EXPECT_THAT(names(findingsAboutDriver({true, {"/usr"}, {good, broken}})),
                ElementsAre("published", "extension", "extension-unusable"));
}

TEST(DriverFindings, DoNotNeedAFolder)
{
    EXPECT_THAT(names(findingsAboutDriver({})), ElementsAre("missing"));
}

TEST(ProcessFindings, CompareWhatRunsWithWhatIsWanted)
{
    ProcessFacts facts;
    EXPECT_THAT(names(findingsAboutProcesses(facts)), ElementsAre("server-off", "status-item-off"));
    facts.isSwitchedOn = true;
    facts.showsStatusItem = true;
    EXPECT_THAT(names(findingsAboutProcesses(facts)),
                ElementsAre("server-not-running", "status-item-not-running"));
    facts.hasBus = true;
    facts.server = {{41}, true};
    facts.statusItem = {{42, 43}, true};
    const auto findings = findingsAboutProcesses(facts);
    EXPECT_THAT(names(findings), ElementsAre("server-running", "status-item-running"));
    EXPECT_EQ(findings.back().details.at("pids"), "42, 43");
}

TEST(ProcessFindings, NoticeAProgramThatNobodyCanReach)
{
    ProcessFacts facts;
    facts.hasBus = true;
    facts.server.pids = {41};
    facts.statusItem.pids = {42};
    EXPECT_THAT(troubles(findingsAboutProcesses(facts)),
                ElementsAre("server-deaf", "status-item-deaf"));
    facts.hasBus = false;
    EXPECT_THAT(troubles(findingsAboutProcesses(facts)), IsEmpty()) << "the bus is to blame";
}

TEST(ProcessFindings, SayWhenTheTableCannotBeRead)
{
    ProcessFacts facts;
    facts.isTableReadable = false;
    EXPECT_THAT(names(findingsAboutProcesses(facts)), ElementsAre("unreadable"));
}

TEST(PacketLogFindings, SayWhetherItIsOnAndWhereItLies)
{
    EXPECT_THAT(names(findingsAboutPacketLog({})), ElementsAre("packet-log-off"));
    EXPECT_THAT(troubles(findingsAboutPacketLog({})), IsEmpty());
    EXPECT_THAT(troubles(findingsAboutPacketLog({true, "/home/anna", ""})),
                ElementsAre("packet-log-on"));
    EXPECT_THAT(troubles(findingsAboutPacketLog({false, "/home/anna", "/home/anna/log"})),
                ElementsAre("packet-log"));
}

TEST(PreferencesFindings, FollowTheStateOfEachFile)
{
    using State = PreferencesFileFact::State;
    EXPECT_THAT(names(findingsAboutPreferences({file(State::missing)})), ElementsAre("none"));
    EXPECT_THAT(names(findingsAboutPreferences({file(State::good)})), ElementsAre("good"));
    EXPECT_THAT(names(findingsAboutPreferences({file(State::broken)})), ElementsAre("broken"));
    EXPECT_THAT(names(findingsAboutPreferences({file(State::unreadable)})),
                ElementsAre("unreadable"));
    EXPECT_EQ(findingsAboutPreferences({file(State::broken)}).front().details.at("reason"),
              "no element found");
}

TEST(PreferencesFindings, CareForRightsOfTheUsersOwnFilesOnly)
{
    auto mine = file(PreferencesFileFact::State::good);
    mine.isWritable = false;
    EXPECT_THAT(names(findingsAboutPreferences({mine})), ElementsAre("good", "not-writable"));
    mine.isOurs = false;
    EXPECT_THAT(names(findingsAboutPreferences({mine})), ElementsAre("good"));
}

TEST(PreferencesFindings, NameCopiesThatWereSetAside)
{
    auto fact = file(PreferencesFileFact::State::good);
    fact.setAside = {"/a.broken-1", "/a.broken-2"};
    const auto findings = findingsAboutPreferences({fact});
    EXPECT_THAT(names(findings), ElementsAre("good", "set-aside", "set-aside"));
    EXPECT_EQ(findings.back().details.at("copy"), "/a.broken-2");
}

TEST(PolkitFindings, FollowTheTable)
{
    using Kind = Authorization::Obstacle::Kind;
    using Status = AuthorizationStatus;
    const std::vector<std::tuple<Kind, std::optional<Status>, std::string>> cases = {
        {Kind::none, Status::success, "ready"},
        {Kind::none, Status::denied, "denied"},
        {Kind::none, Status::interactionNotAllowed, "no-agent"},
        {Kind::none, Status::internal, "unavailable"},
        {Kind::none, std::nullopt, "unanswered"},
        {Kind::missing, Status::success, "tool-missing"},
        {Kind::changeableByOthers, Status::success, "tool-changeable"},
    };
    for (const auto& [kind, status, name] : cases)
        EXPECT_THAT(names(findingsAboutPolkit({"/tool", {kind, "/"}, status})), ElementsAre(name));
}

TEST(DisplayFindings, NameTheDisplay)
{
    EXPECT_THAT(names(findingsAboutDisplay({})), ElementsAre("none"));
    EXPECT_THAT(names(findingsAboutDisplay({":0", "wayland-0", "GNOME"})),
                ElementsAre("wayland", "x11"));
}

TEST(ScreenFindings, NameTheWayInWhichAScreenIsAdded)
{
    for (const auto& [way, name] :
         {std::pair{ScreenWay::spareOutput, "spare-output"},
          std::pair{ScreenWay::namedMonitor, "named-monitor"},
          std::pair{ScreenWay::gnome, "desktop"}, std::pair{ScreenWay::portal, "portal"},
          std::pair{ScreenWay::existingScreen, "existing-screen"}}) {
        const auto findings = findingsAboutScreen(ScreenAvailability{way});
        ASSERT_FALSE(findings.empty());
        EXPECT_EQ(findings.front().name, name);
        EXPECT_EQ(findings.front().severity, Severity::ok);
        EXPECT_EQ(findings.front().area, Area::screen);
    }
}

TEST(ScreenFindings, NameWhatTheDesktopLacks)
{
    EXPECT_THAT(names(findingsAboutScreen(ScreenAvailability{ScreenWay::existingScreen})),
                ElementsAre("existing-screen", "no-new-screen"));
    EXPECT_THAT(names(findingsAboutScreen(ScreenAvailability{ScreenWay::gnome})),
                ElementsAre("desktop"));
}

TEST(ScreenFindings, SayWhatIsInTheWayAndWhatToDoInTheWordsOfThePanel)
{
    using enum ScreenObstacle;
    for (const auto obstacle : {noSpareOutput, protocolMissing, notPermitted, gone, failed}) {
        const auto findings = findingsAboutScreen(ScreenAvailability{{}, obstacle});
        ASSERT_EQ(names(findings).size(), 1u);
        EXPECT_EQ(findings.front().severity, Severity::problem) << findings.front().name;
        EXPECT_EQ(findings.front().text.key, obstacleTexts(obstacle).trouble);
        EXPECT_EQ(findings.front().advice.key, obstacleTexts(obstacle).remedy);
    }
    for (const auto obstacle : {noDesktop, locked})
        EXPECT_EQ(findingsAboutScreen(ScreenAvailability{{}, obstacle}).front().severity,
                  Severity::note);
}

TEST(ScreenFindings, AScreenThatFarviewHasAddedIsNoTrouble)
{
    const auto findings = findingsAboutScreen(ScreenAvailability{{}, ScreenObstacle::inUse});
    EXPECT_THAT(names(findings), ElementsAre("in-use"));
    EXPECT_THAT(troubles(findings), IsEmpty());
}

TEST(ScreenFindings, WhenNobodyAnswersThatIsSaid)
{
    EXPECT_THAT(names(findingsAboutScreen(std::nullopt)), ElementsAre("unanswered"));
}

TEST(InputFindings, SayHowManyFingersAnXServerTakes)
{
    const auto one = findingsAboutInput({.isX11 = true, .mayMakeDevices = false});
    EXPECT_THAT(names(one), ElementsAre("one-finger"));
    EXPECT_EQ(one.front().severity, Severity::note);
    EXPECT_FALSE(one.front().advice.key.empty());
    const auto several = findingsAboutInput({.isX11 = true, .mayMakeDevices = true});
    EXPECT_THAT(names(several), ElementsAre("several-fingers"));
    EXPECT_THAT(troubles(several), IsEmpty());
}

TEST(InputFindings, AreNoneWhereTheDesktopTakesEverything)
{
    for (const bool mayMakeDevices : {false, true})
        EXPECT_THAT(findingsAboutInput({false, mayMakeDevices}), IsEmpty());
}

TEST(AccessibilityFindings, SayWhetherWindowsMayBeMoved)
{
    EXPECT_THAT(names(findingsAboutAccessibility({true})), ElementsAre("on"));
    EXPECT_THAT(names(findingsAboutAccessibility({false})), ElementsAre("off"));
}

TEST(DeviceFindings, FollowTheTable)
{
    using Kind = DeviceAnswer::Kind;
    const std::vector<std::tuple<Kind, std::string, Severity>> cases = {
        {Kind::ready, "ready", Severity::ok},
        {Kind::refuses, "refuses", Severity::problem},
        {Kind::tooOld, "too-old", Severity::problem},
        {Kind::noAddress, "no-address", Severity::problem},
        {Kind::portClosed, "port-closed", Severity::problem},
        {Kind::unreachable, "unreachable", Severity::problem},
        {Kind::noAnswer, "no-answer", Severity::problem},
        {Kind::silent, "silent", Severity::problem},
        {Kind::strange, "strange", Severity::problem},
    };
    for (const auto& [kind, name, severity] : cases) {
        const auto findings = findingsAboutDevices(seen(device(kind)));
        EXPECT_THAT(names(findings), ElementsAre(name));
        EXPECT_EQ(findings.front().severity, severity) << name;
        EXPECT_EQ(findings.front().details.at("name"), "Desk");
        EXPECT_EQ(findings.front().details.at("host"), "desk.local");
        EXPECT_EQ(findings.front().details.at("addresses"), "192.0.2.7:6001");
        EXPECT_EQ(findings.front().details.at("port"), "6001");
    }
}

TEST(DeviceFindings, KnowADeviceInUseByItsRecordAndByItsWord)
{
    auto busy = device(DeviceAnswer::Kind::ready);
    busy.isInUse = true;
    EXPECT_THAT(names(findingsAboutDevices(seen(busy))), ElementsAre("in-use"));
    busy = device(DeviceAnswer::Kind::refuses);
    busy.answer->code = LinkRefusalCode::inUse;
    EXPECT_THAT(names(findingsAboutDevices(seen(busy))), ElementsAre("in-use"));
}

TEST(DeviceFindings, TellDevicesThatWereNotAsked)
{
    auto late = device(DeviceAnswer::Kind::ready);
    late.answer.reset();
    EXPECT_THAT(names(findingsAboutDevices(seen(late))), ElementsAre("unasked"));
    late.hostName.reset();
    late.endpoints.clear();
    EXPECT_THAT(names(findingsAboutDevices(seen(late))), ElementsAre("unresolved"));
    EXPECT_THAT(names(findingsAboutDevices({{device(DeviceAnswer::Kind::ready)}, 3, {}})),
                ElementsAre("ready", "more"));
}

TEST(DeviceFindings, NameRememberedDevicesThatAreAway)
{
    EXPECT_THAT(names(findingsAboutDevices({})), ElementsAre("none"));
    const DeviceFacts facts{{device(DeviceAnswer::Kind::ready)}, 0, {"Desk", "Tablet"}};
    EXPECT_THAT(names(findingsAboutDevices(facts)), ElementsAre("ready", "away"));
}

TEST(DeviceFindings, WriteEachAddressOnceAndIPv6InBrackets)
{
    auto fact = device(DeviceAnswer::Kind::ready);
    fact.endpoints = {{"fe80::1", 6001, 2}, {"fe80::1", 6001, 3}, {"192.0.2.7", 6001, 2}};
    EXPECT_EQ(findingsAboutDevices(seen(fact)).front().details.at("addresses"),
              "[fe80::1]:6001, 192.0.2.7:6001");
}

} // namespace
