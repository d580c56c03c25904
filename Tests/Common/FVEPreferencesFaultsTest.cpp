#include "Common/FVEPreferences.h"

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::FakePlatform;
using farview::Notification;
using farview::PropertyList;

namespace
{

/// Settings on a disk that cannot be written.
class FVEPreferencesOnABrokenDisk : public testing::Test
{
protected:
    FVEPreferencesOnABrokenDisk() { fake.preferences.setWritesFail(true); }

    std::size_t postCount() const { return fake.distributedNotificationCenter.posts().size(); }

    FakePlatform fake;
    FVEPreferences preferences{fake.preferences, fake.distributedNotificationCenter};
};

TEST_F(FVEPreferencesOnABrokenDisk, ADefaultIsAnnouncedOnceHoweverOftenItIsRead)
{
    preferences.setupDefaultValues();
    const auto once = postCount();
    EXPECT_EQ(once, 18U);
    for (int round = 0; round < 100; ++round)
        preferences.setupDefaultValues();
    EXPECT_EQ(postCount(), once);
}

TEST_F(FVEPreferencesOnABrokenDisk, AnObserverThatReadsOnEveryAnnouncementStartsNoStorm)
{
    const auto observer = std::make_shared<int>();
    int heard = 0;
    fake.distributedNotificationCenter.addObserver(
        observer,
        [&](const Notification&) {
            ++heard;
            preferences.setupDefaultValues();
            preferences.autoConnectDevices();
            preferences.lastOtherDevice();
        },
        kFVEPrefsDidChangeNotification, "");
    preferences.setFirstRun(false);
    ASSERT_NO_THROW(fake.runLoop.runUntilIdle());
    // The change itself, nine pairs for the eight defaults, two each for the list and the text.
    EXPECT_EQ(heard, 1 + 9 + 2 + 2);
}

TEST_F(FVEPreferencesOnABrokenDisk, WhatWasSetReadsBackAndIsStoredOnceTheDiskRecovers)
{
    preferences.setCurrentState(1);
    preferences.setLastOtherDevice("192.168.1.20");
    EXPECT_EQ(preferences.currentState(), 1);
    EXPECT_EQ(preferences.lastOtherDevice(), "192.168.1.20");
    EXPECT_TRUE(fake.preferences.stored(kApplicationID).empty());
    fake.preferences.setWritesFail(false);
    preferences.synchronize();
    EXPECT_EQ(fake.preferences.storedValue(kCurrentState, kApplicationID), PropertyList(1));
    EXPECT_EQ(fake.preferences.storedValue(kLastOtherDeviceName, kApplicationID),
              PropertyList("192.168.1.20"));
}

TEST_F(FVEPreferencesOnABrokenDisk, AWrongTypeIsReplacedAndAnnouncedOnce)
{
    fake.preferences.writeAsAnotherProcess(kShowInMenuBar, PropertyList(0), kApplicationID);
    for (int round = 0; round < 10; ++round)
        EXPECT_TRUE(preferences.showInMenuBar());
    EXPECT_EQ(postCount(), 2U);
}

/// Values of wrong types in the file of this host, which is read first and which no setter writes.
class FVEPreferencesWithAWrongHostFile : public testing::Test
{
protected:
    FVEPreferencesWithAWrongHostFile()
    {
        for (const char* key : {kShowInMenuBar, kCurrentVirtualScreenDeviceName,
                                kAutoConnectDevices, kLastUpdateCheck})
            write(key, 0);
        write(kCurrentState, "on");
    }

    void write(const char* key, PropertyList value)
    {
        fake.preferences.writeAsAnotherProcess(key, std::move(value), kApplicationID,
                                               farview::PreferencesUser::current,
                                               farview::PreferencesHost::current);
    }
    std::size_t postCount() const { return fake.distributedNotificationCenter.posts().size(); }

    FakePlatform fake;
    FVEPreferences preferences{fake.preferences, fake.distributedNotificationCenter};
};

TEST_F(FVEPreferencesWithAWrongHostFile, ADefaultIsWrittenOnceAndNeverAnnouncedAgain)
{
    for (int round = 0; round < 10; ++round) {
        EXPECT_TRUE(preferences.showInMenuBar());
        EXPECT_EQ(preferences.currentState(), 0);
        EXPECT_EQ(preferences.currentVirtualScreenDevice(), "");
        EXPECT_TRUE(preferences.autoConnectDevices().empty());
    }
    EXPECT_EQ(fake.preferences.setCount(), 4);
    EXPECT_EQ(postCount(), 2U * (1 + 1 + 2 + 2)) << "a text and a list are announced twice";
    EXPECT_EQ(fake.preferences.storedValue(kShowInMenuBar, kApplicationID), PropertyList(true));
}

TEST_F(FVEPreferencesWithAWrongHostFile, WhatTheUserSetsIsKeptAndReadBack)
{
    preferences.setShowInMenuBar(false);
    preferences.setCurrentState(1);
    preferences.setLastUpdateCheck({1'800'000'000}, "current");
    const auto posts = postCount();
    EXPECT_FALSE(preferences.showInMenuBar());
    EXPECT_EQ(preferences.currentState(), 1);
    EXPECT_EQ(preferences.lastUpdateCheck(), farview::Date{1'800'000'000});
    EXPECT_EQ(postCount(), posts);
}

TEST_F(FVEPreferencesWithAWrongHostFile, AValueOfTheRightTypeThereStillWins)
{
    preferences.setShowInMenuBar(true);
    write(kShowInMenuBar, false);
    EXPECT_FALSE(preferences.showInMenuBar());
    write(kCurrentState, 2.0);
    EXPECT_EQ(preferences.currentState(), 2);
}

TEST(FVEPreferencesWithPresets, AnAdministratorsValueIsReadAndNotOverwritten)
{
    FakePlatform fake;
    FVEPreferences preferences(fake.preferences, fake.distributedNotificationCenter);
    fake.preferences.writeAsAnotherProcess(kAutoConnectOption, PropertyList(false), kApplicationID,
                                           farview::PreferencesUser::any,
                                           farview::PreferencesHost::any);
    EXPECT_FALSE(preferences.autoConnectOption());
    EXPECT_EQ(fake.preferences.setCount(), 0);
    preferences.setAutoConnectOption(true);
    EXPECT_TRUE(preferences.autoConnectOption()) << "the user's own choice wins";
}

} // namespace
