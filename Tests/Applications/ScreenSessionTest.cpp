#include "Applications/ScreenCapture/ScreenSession.h"

#include "Common/FVEConstants.h"
#include "Platform/Fake/FakePlatform.h"
#include "Screen/PictureReceiver.h"
#include "Tests/Applications/FakeDeviceLink.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using State = ScreenReport::State;

constexpr LinkDeviceScreen tablet{1280, 800, 100, 60};
const std::string kTablet = "tablet.local";

class AScreenSession : public testing::Test
{
protected:
    AScreenSession() : preferences(fake.preferences, fake.distributedNotificationCenter)
    {
        preferences.setRetinaResolutionsEnabled(true);
        makeSession();
    }

    void makeSession()
    {
        session = std::make_shared<ScreenSession>(
            ScreenSession::Services{fake.virtualScreens, fake.runLoop, preferences, link, packetLog,
                                    fake.log},
            kTablet, told, [this] { states.push_back(session->report().state); });
    }
    void open(const LinkDeviceScreen& screen = tablet)
    {
        session->deviceScreenIs(screen);
        fake.runLoop.runUntilIdle();
    }
    std::shared_ptr<FakeMonitor> monitor() { return fake.virtualScreens.monitors().back(); }
    void advance(Duration span) { fake.runLoop.advance(span); }
    void enableHiDPI()
    {
        fake.preferences.writeAsAnotherProcess(kDisplayResolutionEnabled, PropertyList(true),
                                               kWindowServerDomain, PreferencesUser::any,
                                               PreferencesHost::current);
    }
    RememberedScreen remembered() { return rememberedScreen(preferences.deviceScreen(kTablet)); }
    void remember(const RememberedScreen& screen)
    {
        preferences.setDeviceScreen(kTablet, storedScreen(screen));
    }
    /// Lets the picture's thread work until that is so.
    template <typename Condition> bool comesTrue(Condition condition)
    {
        return waitUntil([&] {
            fake.runLoop.runUntilIdle();
            return condition();
        });
    }
    std::vector<std::uint32_t> sentFrames() const
    {
        std::vector<std::uint32_t> numbers;
        for (const auto& frame : link.sent) {
            if (const auto* end = std::get_if<LinkFrameEnd>(&frame))
                numbers.push_back(end->number);
        }
        return numbers;
    }

    FakePlatform fake;
    FVEPreferences preferences;
    FakeDeviceLink link;
    LinkOptions told;
    PacketLog packetLog{fake.log};
    std::vector<State> states;
    std::shared_ptr<ScreenSession> session;
};

TEST_F(AScreenSession, HasNoMonitorBeforeTheDeviceToldItsScreen)
{
    fake.runLoop.runUntilIdle();
    EXPECT_THAT(fake.virtualScreens.monitors(), IsEmpty());
    EXPECT_EQ(session->report().state, State::none);
}

TEST_F(AScreenSession, MakesAMonitorOfTheDevicesSizeAndSaysWhereItIs)
{
    open();
    ASSERT_THAT(fake.virtualScreens.monitors(), SizeIs(1));
    EXPECT_THAT(states, ElementsAre(State::coming, State::shown));
    const auto& report = session->report();
    EXPECT_EQ(report.width, 1280);
    EXPECT_EQ(report.height, 800);
    EXPECT_EQ(report.rate, 60);
    EXPECT_EQ(report.monitor, pixelRect(1920, 0, 1280, 800));
    EXPECT_THAT(report.screens, ElementsAre(pixelRect(0, 0, 1920, 1080)));
}

TEST_F(AScreenSession, RemovesTheMonitorAtItsEnd)
{
    open();
    session.reset();
    EXPECT_THAT(fake.virtualScreens.monitors(), IsEmpty());
}

TEST_F(AScreenSession, SaysWhyThereIsNone)
{
    fake.virtualScreens.setObstacle(ScreenObstacle::noSpareOutput);
    open();
    EXPECT_THAT(states, ElementsAre(State::coming, State::missing));
    EXPECT_EQ(session->report().obstacle, ScreenObstacle::noSpareOutput);
    advance(Duration(60));
    EXPECT_THAT(fake.virtualScreens.monitors(), IsEmpty()) << "it asks only once";
}

TEST_F(AScreenSession, ComesBackAfterALock)
{
    open();
    monitor()->end(ScreenObstacle::locked);
    fake.virtualScreens.setObstacle(ScreenObstacle::locked);
    advance(3 * ScreenSession::lockedPause);
    EXPECT_EQ(session->report().state, State::missing);
    EXPECT_EQ(session->report().obstacle, ScreenObstacle::locked);
    fake.virtualScreens.setObstacle(std::nullopt);
    advance(ScreenSession::lockedPause);
    EXPECT_EQ(session->report().state, State::shown);
}

TEST_F(AScreenSession, TellsTheDeviceThatThePictureIsOver)
{
    open();
    ASSERT_TRUE(comesTrue([&] { return !sentFrames().empty(); }));
    monitor()->end(ScreenObstacle::locked);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(link.sent.back(), LinkFrame(LinkPictureSize{}));
}

TEST_F(AScreenSession, EndsInTheMiddleOfALock)
{
    open();
    monitor()->end(ScreenObstacle::locked);
    fake.runLoop.runUntilIdle();
    session.reset();
    advance(Duration(10));
    EXPECT_THAT(fake.virtualScreens.monitors(), IsEmpty());
}

TEST_F(AScreenSession, DoesNotFightWhoeverTookTheMonitorAway)
{
    open();
    monitor()->end(ScreenObstacle::takenAway);
    advance(Duration(60));
    EXPECT_EQ(session->report().obstacle, ScreenObstacle::takenAway);
    EXPECT_THAT(fake.virtualScreens.monitors(), IsEmpty());
}

TEST_F(AScreenSession, FollowsADeviceThatTurns)
{
    open();
    open({800, 1280, 100, 60});
    advance(ScreenSession::settling);
    EXPECT_EQ(session->report().width, 800);
    EXPECT_EQ(session->report().height, 1280);
    EXPECT_EQ(remembered(), RememberedScreen{}) << "nobody chose that size";
}

TEST_F(AScreenSession, FollowsADeviceThatChangesAllTheTimeNowAndThen)
{
    open();
    int changes = 0;
    int width = 0;
    for (int round = 0; round < 50; ++round) {
        session->deviceScreenIs({static_cast<std::uint16_t>(1000 + round), 800, 100, 60});
        advance(Duration(0.02));
        changes += std::exchange(width, session->report().width) != session->report().width;
    }
    EXPECT_LE(changes, 5);
    advance(ScreenSession::settling);
    EXPECT_EQ(session->report().width, 1049);
}

TEST_F(AScreenSession, FollowsTheOptions)
{
    open({2560, 1600, 200, 60});
    EXPECT_EQ(session->report().width, 2560);
    preferences.setRetinaResolutionsEnabled(false);
    enableHiDPI();
    session->preferencesChanged(told);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(session->report().width, 1280);
    EXPECT_EQ(session->report().scale, 2);
}

TEST_F(AScreenSession, StandsWhereTheUserWantsIt)
{
    remember({.side = ScreenSide::below});
    open();
    EXPECT_EQ(session->report().monitor, pixelRect(0, 1080, 1280, 800));
    remember({.side = ScreenSide::left});
    session->preferencesChanged(told);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(session->report().monitor, pixelRect(-1280, 0, 1280, 800));
}

TEST_F(AScreenSession, RemembersWhatTheUserDidWithTheDesktopsOwnMeans)
{
    open();
    auto changed = monitor()->geometry();
    changed.width = 1024;
    changed.height = 768;
    changed.area = pixelRect(0, 1080, 1024, 768);
    monitor()->change(changed);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(remembered(), (RememberedScreen{ScreenSide::below, 1024, 768, 1, {1280, 800, 1}}));
    session->preferencesChanged(told);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(session->report().width, 1024) << "it is not taken back";

    makeSession();
    open();
    EXPECT_EQ(session->report().width, 1024);
    EXPECT_EQ(session->report().monitor.y, 1080);
}

TEST_F(AScreenSession, ForgetsTheSizeWhenTheUserChangesAnOption)
{
    remember({ScreenSide::below, 1024, 768, 1, {1280, 800, 1}});
    open();
    EXPECT_EQ(session->report().width, 1024);
    enableHiDPI();
    session->preferencesChanged(told);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(session->report().width, 1280);
    EXPECT_EQ(remembered(), (RememberedScreen{.side = ScreenSide::below}));
}

TEST_F(AScreenSession, FollowsADeviceThatTurnsAtOnceAndOneThatKeepsTurningInItsTime)
{
    open();
    session->deviceScreenIs({800, 1280, 100, 60});
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(session->report().width, 800);
    session->deviceScreenIs({1280, 800, 100, 60});
    session->deviceScreenIs({1024, 768, 100, 60});
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(session->report().width, 800);
    advance(ScreenSession::settling);
    EXPECT_EQ(session->report().width, 1024) << "straight to the last one";
}

TEST_F(AScreenSession, PassesOnWhatTheDevicesUserDoes)
{
    link.features.push_back(kLinkInputFeature);
    told = {.touch = true, .typing = true};
    makeSession();
    open();
    EXPECT_TRUE(monitor()->wish().input);
    session->deviceDid(LinkPointer{{256, 512, 1280, 800}, 0});
    EXPECT_THAT(monitor()->input().takeEvents(),
                ElementsAre(FakeInputSink::Event(InputPlace{1, 2, 1921, 2})));
    session->preferencesChanged({});
    session->deviceDid(LinkPointer{{256, 512, 1280, 800}, 0});
    EXPECT_THAT(monitor()->input().takeEvents(), IsEmpty());
}

TEST_F(AScreenSession, PassesNothingOnOfADeviceThatDidNotAgree)
{
    told = {.touch = true, .typing = true};
    makeSession();
    open();
    session->deviceDid(LinkKey{30, true});
    EXPECT_FALSE(monitor()->wish().input);
    EXPECT_THAT(monitor()->input().takeEvents(), IsEmpty());
}

TEST_F(AScreenSession, SaysForAWhileThatTheDevicesUserTypes)
{
    link.features.push_back(kLinkInputFeature);
    told = {.touch = true, .typing = true};
    makeSession();
    open();
    session->deviceDid(LinkPointer{{0, 0, 1280, 800}, 0});
    EXPECT_FALSE(session->report().isTyping);
    session->deviceDid(LinkKey{30, true});
    EXPECT_TRUE(session->report().isTyping);
    advance(ScreenSession::typingPause / 2);
    session->deviceDid(LinkKey{31, true});
    advance(ScreenSession::typingPause / 2);
    EXPECT_TRUE(session->report().isTyping);
    advance(ScreenSession::typingPause / 2);
    EXPECT_FALSE(session->report().isTyping);
}

TEST_F(AScreenSession, SaysWhetherSeveralFingersGetThroughAndWhoKeepsWindows)
{
    link.features.push_back(kLinkInputFeature);
    told = {.touch = true, .windowsMoveBack = true};
    makeSession();
    open();
    using Fingers = ScreenReport::Fingers;
    EXPECT_EQ(session->report().fingers, Fingers::several);
    EXPECT_EQ(session->report().windows, WindowKeeping::byFarview);
    EXPECT_TRUE(monitor()->keepsWindows());
    monitor()->input().setAbilities({.pointer = true});
    session->preferencesChanged({.touch = true});
    EXPECT_EQ(session->report().fingers, Fingers::one);
    EXPECT_FALSE(monitor()->keepsWindows());
    session->preferencesChanged({});
    EXPECT_EQ(session->report().fingers, Fingers::several) << "none gets through at all";
    monitor()->input().setAbilities({.pointer = true, .touchWithARight = true});
    session->preferencesChanged({.touch = true});
    EXPECT_EQ(session->report().fingers, Fingers::oneWithoutARight);
}

TEST_F(AScreenSession, SendsThePictureThatTheMonitorShows)
{
    open();
    monitor()->paint(pixelRect(10, 20, 300, 200), 0x00336699);
    ASSERT_TRUE(comesTrue([&] { return !sentFrames().empty(); }));
    EXPECT_TRUE(session->deviceShowed({sentFrames().front(), 1000}));
    ZlibCodec zlib;
    ZstdCodec zstd;
    JpegCodec jpeg;
    PictureReceiver receiver(1280, 800, zlib, {&zstd, &jpeg});
    EXPECT_EQ(std::get<LinkPictureSize>(link.sent.front()), (LinkPictureSize{1280, 800}));
    for (const auto& frame : link.sent) {
        if (const auto* packet = std::get_if<LinkScreenRectangle>(&frame)) {
            EXPECT_TRUE(receiver.apply(*packet));
        }
    }
    EXPECT_EQ(receiver.picture().view().row(100)[100], 0x00336699U);
}

TEST_F(AScreenSession, TakesNoWordForFramesThatWereNeverSent)
{
    open();
    ASSERT_TRUE(comesTrue([&] { return !sentFrames().empty(); }));
    EXPECT_FALSE(session->deviceShowed({sentFrames().back() + 1, 1000}));
}

TEST_F(AScreenSession, CountsFramesOnAfterALock)
{
    open();
    ASSERT_TRUE(comesTrue([&] { return sentFrames().size() == 1; }));
    monitor()->end(ScreenObstacle::locked);
    advance(ScreenSession::lockedPause);
    ASSERT_TRUE(comesTrue([&] { return sentFrames().size() == 2; }));
    EXPECT_THAT(sentFrames(), ElementsAre(1, 2));
    EXPECT_TRUE(session->deviceShowed({1, 1000})) << "late, but sent";
    EXPECT_TRUE(session->deviceShowed({2, 1000}));
}

} // namespace
} // namespace farview
