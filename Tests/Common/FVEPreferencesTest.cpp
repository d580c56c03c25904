#include "Common/FVEPreferences.h"

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::FakePlatform;
using farview::PreferencesHost;
using farview::PreferencesUser;
using farview::PropertyList;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using Synchronization = farview::FakePreferences::Synchronization;

namespace
{

constexpr const char* windowServer = "com.apple.windowserver";

class FVEPreferencesTest : public testing::Test
{
protected:
    void store(const char* key, PropertyList value)
    {
        fake.preferences.writeAsAnotherProcess(key, std::move(value), kApplicationID);
    }
    std::optional<PropertyList> stored(const char* key) const
    {
        return fake.preferences.storedValue(key, kApplicationID);
    }
    /// The posts so far, "will" and "did" each as a word.
    std::vector<std::string> announcements() const
    {
        std::vector<std::string> words;
        for (const auto& post : fake.distributedNotificationCenter.posts())
            words.emplace_back(post.name == kFVEPrefsWillChangeNotification  ? "will"
                               : post.name == kFVEPrefsDidChangeNotification ? "did"
                                                                             : post.name);
        return words;
    }
    std::size_t pairsAnnounced() const { return announcements().size() / 2; }
    void presetWindowServer(const char* key, PropertyList value)
    {
        fake.preferences.writeAsAnotherProcess(key, std::move(value), windowServer,
                                               PreferencesUser::any, PreferencesHost::current);
    }

    FakePlatform fake;
    FVEPreferences preferences{fake.preferences, fake.distributedNotificationCenter};
};

TEST_F(FVEPreferencesTest, AWriteThatAnotherProgramHeldUpIsAnnouncedOnceItIsDone)
{
    fake.preferences.tellLateWrite();
    EXPECT_THAT(announcements(), ElementsAre("did"));
}

// One row per boolean of the key table.
struct BooleanKey {
    const char* name;
    const char* key;
    bool (FVEPreferences::*get)();
    void (FVEPreferences::*set)(bool);
};

std::ostream& operator<<(std::ostream& stream, const BooleanKey& row) { return stream << row.name; }

class FVEPreferencesBoolean : public FVEPreferencesTest,
                              public testing::WithParamInterface<BooleanKey>
{
protected:
    bool get() { return (preferences.*GetParam().get)(); }
    void set(bool flag) { (preferences.*GetParam().set)(flag); }
    const char* key() const { return GetParam().key; }
};

TEST_P(FVEPreferencesBoolean, IsYesAndWrittenAndAnnouncedOnceWhenMissing)
{
    EXPECT_TRUE(get());
    EXPECT_EQ(stored(key()), PropertyList(true));
    EXPECT_THAT(announcements(), ElementsAre("will", "did"));
    EXPECT_TRUE(get());
    EXPECT_EQ(pairsAnnounced(), 1U) << "once it is there, reading announces nothing";
}

TEST_P(FVEPreferencesBoolean, ReadsWhatIsStoredWithoutWriting)
{
    store(key(), false);
    EXPECT_FALSE(get());
    store(key(), true);
    EXPECT_TRUE(get());
    EXPECT_EQ(fake.preferences.setCount(), 0);
    EXPECT_THAT(announcements(), IsEmpty());
}

TEST_P(FVEPreferencesBoolean, ReplacesAValueOfAnotherType)
{
    for (const auto& wrong : {PropertyList(0), PropertyList("false"), PropertyList(0.0),
                              PropertyList(PropertyList::Array{false})}) {
        store(key(), wrong);
        EXPECT_TRUE(get());
        EXPECT_EQ(stored(key()), PropertyList(true));
    }
}

TEST_P(FVEPreferencesBoolean, IsStoredAsABooleanAndAnnounced)
{
    set(false);
    EXPECT_EQ(stored(key()), PropertyList(false));
    set(true);
    EXPECT_EQ(stored(key()), PropertyList(true));
    EXPECT_THAT(announcements(), ElementsAre("will", "did", "will", "did"));
}

TEST_P(FVEPreferencesBoolean, IsNeverCached)
{
    set(true);
    store(key(), false);
    EXPECT_FALSE(get());
}

INSTANTIATE_TEST_SUITE_P(
    KeyTable, FVEPreferencesBoolean,
    testing::Values(
        BooleanKey{"ShowInMenuBar", "showInMenuBar", &FVEPreferences::showInMenuBar,
                   &FVEPreferences::setShowInMenuBar},
        BooleanKey{"AutoConnectOption", "autoConnectOption", &FVEPreferences::autoConnectOption,
                   &FVEPreferences::setAutoConnectOption},
        BooleanKey{"AutoUpdateOption", "autoUpdateOption", &FVEPreferences::autoUpdateOption,
                   &FVEPreferences::setAutoUpdateOption},
        BooleanKey{"AutoMoveWindowsBack", "autoMoveWindowsBackOption",
                   &FVEPreferences::autoMoveWindowsBackOption,
                   &FVEPreferences::setAutoMoveWindowsBackOption},
        BooleanKey{"EnableTouchDisplay", "enableDisplayTouch", &FVEPreferences::enableTouchDisplay,
                   &FVEPreferences::setEnableTouchDisplay},
        BooleanKey{"RetinaResolutions", "enableRetinaDisplay",
                   &FVEPreferences::areRetinaResolutionsEnabled,
                   &FVEPreferences::setRetinaResolutionsEnabled},
        BooleanKey{"FirstRun", "firstRun", &FVEPreferences::firstRun, &FVEPreferences::setFirstRun},
        BooleanKey{"OpenPrefsInSettingsPane", "openPrefsInSettingsPane",
                   &FVEPreferences::openPrefsInSettingsPane,
                   &FVEPreferences::setOpenPrefsInSettingsPane}),
    [](const auto& info) { return std::string(info.param.name); });

struct TextKey {
    const char* name;
    const char* key;
    std::string (FVEPreferences::*get)();
    void (FVEPreferences::*set)(const std::string&);
};

std::ostream& operator<<(std::ostream& stream, const TextKey& row) { return stream << row.name; }

class FVEPreferencesText : public FVEPreferencesTest, public testing::WithParamInterface<TextKey>
{
protected:
    std::string get() { return (preferences.*GetParam().get)(); }
    const char* key() const { return GetParam().key; }
};

TEST_P(FVEPreferencesText, IsEmptyAndWrittenAndAnnouncedTwiceWhenMissing)
{
    EXPECT_EQ(get(), "");
    EXPECT_EQ(stored(key()), PropertyList(""));
    EXPECT_THAT(announcements(), ElementsAre("will", "did", "will", "did"));
    EXPECT_EQ(get(), "");
    EXPECT_EQ(pairsAnnounced(), 2U);
}

TEST_P(FVEPreferencesText, ReplacesAValueOfAnotherType)
{
    store(key(), 7);
    EXPECT_EQ(get(), "");
    EXPECT_EQ(stored(key()), PropertyList(""));
}

TEST_P(FVEPreferencesText, IsStoredAnnouncedOnceAndReadBack)
{
    (preferences.*GetParam().set)("Büro – desk.local");
    EXPECT_EQ(stored(key()), PropertyList("Büro – desk.local"));
    EXPECT_THAT(announcements(), ElementsAre("will", "did"));
    EXPECT_EQ(get(), "Büro – desk.local");
}

INSTANTIATE_TEST_SUITE_P(
    KeyTable, FVEPreferencesText,
    testing::Values(TextKey{"CurrentVirtualScreenDevice", "currentVirtualScreenDeviceName",
                            &FVEPreferences::currentVirtualScreenDevice,
                            &FVEPreferences::setCurrentVirtualScreenDevice},
                    TextKey{"LastOtherDevice", "lastOtherDeviceName",
                            &FVEPreferences::lastOtherDevice, &FVEPreferences::setLastOtherDevice}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(FVEPreferencesTest, AFreshDomainGetsItsEightDefaults)
{
    preferences.setupDefaultValues();
    EXPECT_THAT(fake.preferences.stored(kApplicationID),
                UnorderedElementsAre(Pair("currentState", PropertyList(0)),
                                     Pair("showInMenuBar", PropertyList(true)),
                                     Pair("currentVirtualScreenDeviceName", PropertyList("")),
                                     Pair("autoConnectOption", PropertyList(true)),
                                     Pair("autoUpdateOption", PropertyList(true)),
                                     Pair("autoMoveWindowsBackOption", PropertyList(true)),
                                     Pair("enableDisplayTouch", PropertyList(true)),
                                     Pair("enableRetinaDisplay", PropertyList(true))));
    EXPECT_EQ(pairsAnnounced(), 9U) << "one for each, two for the text";
}

TEST_F(FVEPreferencesTest, ADomainThatHasItsValuesIsLeftAlone)
{
    preferences.setupDefaultValues();
    preferences.setShowInMenuBar(false);
    const auto before = fake.preferences.stored(kApplicationID);
    fake.distributedNotificationCenter.forgetPosts();
    preferences.setupDefaultValues();
    EXPECT_EQ(fake.preferences.stored(kApplicationID), before);
    EXPECT_THAT(announcements(), IsEmpty());
}

TEST_F(FVEPreferencesTest, AnnouncementsCarryNothingAndReachEverySessionAtOnce)
{
    preferences.setFirstRun(false);
    using Post = farview::FakeDistributedNotificationCenter::Post;
    EXPECT_THAT(fake.distributedNotificationCenter.posts(),
                ElementsAre(Post{kFVEPrefsWillChangeNotification, "", {}, 3},
                            Post{kFVEPrefsDidChangeNotification, "", {}, 3}));
}

TEST_F(FVEPreferencesTest, AChangeIsStoredBetweenItsTwoAnnouncements)
{
    std::vector<std::optional<PropertyList>> found;
    const auto watch = fake.distributedNotificationCenter.observePosts(
        [&](const auto&) { found.push_back(stored(kFirstRun)); });
    preferences.setFirstRun(false);
    EXPECT_THAT(found, ElementsAre(std::nullopt, PropertyList(false)));
}

TEST_F(FVEPreferencesTest, TheLastLookForUpdatesIsNothingUntilItIsStoredWithItsOutcomeAtOnce)
{
    EXPECT_EQ(preferences.lastUpdateCheck(), std::nullopt);
    EXPECT_EQ(preferences.lastUpdateOutcome(), "");
    EXPECT_FALSE(preferences.autoUpdateOptionShown());
    EXPECT_EQ(fake.preferences.setCount(), 0) << "asking writes no default";
    preferences.setLastUpdateCheck({1'800'000'000}, "current");
    EXPECT_EQ(pairsAnnounced(), 1u);
    EXPECT_EQ(preferences.lastUpdateCheck(), farview::Date{1'800'000'000});
    EXPECT_EQ(preferences.lastUpdateOutcome(), "current");
    preferences.setAutoUpdateOptionShown(true);
    EXPECT_TRUE(preferences.autoUpdateOptionShown());
}

TEST_F(FVEPreferencesTest, ScreenPacketsAreLoggedOnlyOnceThatIsStored)
{
    EXPECT_FALSE(preferences.logsScreenPackets());
    EXPECT_EQ(fake.preferences.setCount(), 0) << "asking writes no default";
    preferences.setLogsScreenPackets(true);
    EXPECT_EQ(pairsAnnounced(), 1u);
    EXPECT_TRUE(preferences.logsScreenPackets());
    store(kLogScreenPackets, "yes");
    EXPECT_FALSE(preferences.logsScreenPackets());
}

TEST_F(FVEPreferencesTest, AllDevicesAreConnectedToOnlyOnceThatIsStored)
{
    EXPECT_FALSE(preferences.autoConnectAllDevices());
    EXPECT_EQ(fake.preferences.setCount(), 0) << "asking writes no default";
    preferences.setAutoConnectAllDevices(true);
    EXPECT_EQ(pairsAnnounced(), 1u);
    EXPECT_TRUE(preferences.autoConnectAllDevices());
    store(kAutoConnectAllDevices, "yes");
    EXPECT_FALSE(preferences.autoConnectAllDevices());
}

TEST_F(FVEPreferencesTest, AWronglyTypedLookForUpdatesIsNoneAndStays)
{
    store(kLastUpdateCheck, "yesterday");
    store(kLastUpdateOutcome, 7);
    store(kAutoUpdateOptionShown, 1);
    EXPECT_EQ(preferences.lastUpdateCheck(), std::nullopt);
    EXPECT_EQ(preferences.lastUpdateOutcome(), "");
    EXPECT_FALSE(preferences.autoUpdateOptionShown());
    EXPECT_EQ(stored(kLastUpdateCheck), PropertyList("yesterday"));
}

TEST_F(FVEPreferencesTest, ASynchronizeCoversThisHostThenTheWholeApplication)
{
    preferences.synchronize();
    EXPECT_THAT(fake.preferences.synchronizations(),
                ElementsAre(Synchronization{kApplicationID, PreferencesUser::current,
                                            PreferencesHost::current, false},
                            Synchronization{kApplicationID, PreferencesUser::current,
                                            PreferencesHost::any, true}));
    EXPECT_THAT(announcements(), IsEmpty());
}

TEST_F(FVEPreferencesTest, EachValidStateIsKept)
{
    for (const long state : {0L, 1L, 2L}) {
        preferences.setCurrentState(state);
        EXPECT_EQ(stored(kCurrentState), PropertyList(std::int64_t{state}));
        EXPECT_EQ(preferences.currentState(), state);
    }
    EXPECT_EQ(pairsAnnounced(), 3U);
}

TEST_F(FVEPreferencesTest, AnInvalidStateIsStoredAsOff)
{
    for (const long state : {3L, -1L, 1L << 40}) {
        preferences.setCurrentState(1);
        preferences.setCurrentState(state);
        EXPECT_EQ(stored(kCurrentState), PropertyList(0)) << state;
    }
}

TEST_F(FVEPreferencesTest, AMissingStateIsOffAndWritten)
{
    EXPECT_EQ(preferences.currentState(), 0);
    EXPECT_EQ(stored(kCurrentState), PropertyList(0));
    EXPECT_EQ(pairsAnnounced(), 1U);
}

TEST_F(FVEPreferencesTest, AStoredNumberOutOfRangeReadsAsOffAndStays)
{
    for (const auto& number :
         {PropertyList(7), PropertyList(-1), PropertyList(std::int64_t{1} << 32), PropertyList(1.5),
          PropertyList(1e300), PropertyList(-0.5)}) {
        store(kCurrentState, number);
        EXPECT_EQ(preferences.currentState(), 0);
        EXPECT_EQ(stored(kCurrentState), number);
    }
    EXPECT_THAT(announcements(), IsEmpty());
}

TEST_F(FVEPreferencesTest, AStoredRealThatIsAWholeNumberIsAState)
{
    store(kCurrentState, 1.0);
    EXPECT_EQ(preferences.currentState(), 1);
}

TEST_F(FVEPreferencesTest, AStateThatIsNoNumberIsRewrittenAsTheNumberZero)
{
    for (const auto& wrong : {PropertyList("1"), PropertyList(true)}) {
        store(kCurrentState, wrong);
        EXPECT_EQ(preferences.currentState(), 0);
        EXPECT_EQ(stored(kCurrentState), PropertyList(0));
    }
}

TEST_F(FVEPreferencesTest, AMissingDeviceListIsEmptyWrittenAndAnnouncedTwice)
{
    EXPECT_THAT(preferences.autoConnectDevices(), IsEmpty());
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(PropertyList::Array{}));
    EXPECT_THAT(announcements(), ElementsAre("will", "did", "will", "did"));
}

TEST_F(FVEPreferencesTest, ADeviceListThatIsADictionaryIsRewrittenAsAnEmptyList)
{
    store(kAutoConnectDevices, PropertyList::Dictionary{{"Desk", true}});
    EXPECT_THAT(preferences.autoConnectDevices(), IsEmpty());
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(PropertyList::Array{}));
}

TEST_F(FVEPreferencesTest, ADeviceListIsKeptWithWhateverItHolds)
{
    const PropertyList::Array devices{"Desk", 7, PropertyList::Array{"Sofa"}};
    preferences.setAutoConnectDevices(devices);
    EXPECT_EQ(pairsAnnounced(), 1U);
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(devices));
    EXPECT_EQ(preferences.autoConnectDevices(), devices);
}

TEST_F(FVEPreferencesTest, TheKeyboardDebuggingFlagIsReadAndNeverWritten)
{
    EXPECT_FALSE(preferences.debuggingDontSendKBEvents());
    EXPECT_EQ(stored(kDebuggingDontSendKBEvents), std::nullopt);
    store(kDebuggingDontSendKBEvents, 1);
    EXPECT_FALSE(preferences.debuggingDontSendKBEvents());
    EXPECT_EQ(stored(kDebuggingDontSendKBEvents), PropertyList(1));
    store(kDebuggingDontSendKBEvents, true);
    EXPECT_TRUE(preferences.debuggingDontSendKBEvents());
    store(kDebuggingDontSendKBEvents, false);
    EXPECT_FALSE(preferences.debuggingDontSendKBEvents());
    EXPECT_EQ(fake.preferences.setCount(), 0);
    EXPECT_THAT(announcements(), IsEmpty());
}

TEST_F(FVEPreferencesTest, HiDPIIsOffWhileNothingIsStored)
{
    EXPECT_FALSE(preferences.enableHiDPIResolutions());
    EXPECT_THAT(fake.preferences.synchronizations(),
                ElementsAre(Synchronization{windowServer, PreferencesUser::any,
                                            PreferencesHost::current, false}));
}

TEST_F(FVEPreferencesTest, HiDPIIsOnByThePresenceOfItsKeyWhateverItHolds)
{
    presetWindowServer("DisplayResolutionEnabled", false);
    EXPECT_TRUE(preferences.enableHiDPIResolutions());
    presetWindowServer("DisplayResolutionEnabled", "text");
    EXPECT_TRUE(preferences.enableHiDPIResolutions());
}

TEST_F(FVEPreferencesTest, HiDPIIsOffByThePresenceOfABooleanUnderTheOtherKey)
{
    presetWindowServer("DisplayResolutionEnabled", true);
    presetWindowServer("DisplayResolutionDisabled", false);
    EXPECT_FALSE(preferences.enableHiDPIResolutions());
    presetWindowServer("DisplayResolutionDisabled", true);
    EXPECT_FALSE(preferences.enableHiDPIResolutions());
}

TEST_F(FVEPreferencesTest, HiDPIIsOnWhenTheOtherKeyHoldsNoBoolean)
{
    presetWindowServer("DisplayResolutionDisabled", 1);
    EXPECT_TRUE(preferences.enableHiDPIResolutions());
}

TEST_F(FVEPreferencesTest, HiDPILooksAtTheStoreOfAllUsersOnly)
{
    fake.preferences.writeAsAnotherProcess("DisplayResolutionEnabled", PropertyList(true),
                                           windowServer);
    EXPECT_FALSE(preferences.enableHiDPIResolutions());
}

TEST_F(FVEPreferencesTest, SettingHiDPIKeepsExactlyOneKeyAndAnnouncesNothing)
{
    const auto value = [&](const char* key) {
        return fake.preferences.copyValue(key, windowServer, PreferencesUser::current,
                                          PreferencesHost::any);
    };
    preferences.setEnableHiDPIResolutions(true);
    EXPECT_EQ(value("DisplayResolutionEnabled"), PropertyList(true));
    EXPECT_EQ(value("DisplayResolutionDisabled"), std::nullopt);
    preferences.setEnableHiDPIResolutions(false);
    EXPECT_EQ(value("DisplayResolutionEnabled"), std::nullopt);
    EXPECT_EQ(value("DisplayResolutionDisabled"), PropertyList(true));
    const Synchronization once{windowServer, PreferencesUser::any, PreferencesHost::current, false};
    EXPECT_THAT(fake.preferences.synchronizations(), ElementsAre(once, once));
    EXPECT_THAT(announcements(), IsEmpty());
}

TEST(SharedPreferences, AreOneForAsLongAsThePlatformStays)
{
    FakePlatform fake;
    const farview::Platform::Scope scope(fake.platform());
    EXPECT_EQ(&FVEPreferences::sharedAppPrefs(), &FVEPreferences::sharedAppPrefs());
    EXPECT_EQ(fake.preferences.setCount(), 0) << "making them writes nothing";
    FVEPreferences::sharedAppPrefs().setFirstRun(false);
    EXPECT_EQ(fake.preferences.setCount(), 1);
}

TEST(SharedPreferences, FollowTheInstalledPlatform)
{
    FakePlatform first;
    FakePlatform second;
    const farview::Platform::Scope outer(first.platform());
    FVEPreferences::sharedAppPrefs().setCurrentState(1);
    {
        const farview::Platform::Scope inner(second.platform());
        EXPECT_EQ(FVEPreferences::sharedAppPrefs().currentState(), 0);
    }
    EXPECT_EQ(FVEPreferences::sharedAppPrefs().currentState(), 1);
}

} // namespace
