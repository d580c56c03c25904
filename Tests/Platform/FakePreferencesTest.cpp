#include "Platform/Fake/FakePreferences.h"

#include <gtest/gtest.h>

using farview::FakePreferences;
using farview::PreferencesHost;
using farview::PreferencesUser;
using farview::PropertyList;

namespace
{

constexpr const char* domain = "com.example.Domain";

TEST(FakePreferences, AValueReadsBackAtOnceAndOthersSeeItAfterASynchronize)
{
    FakePreferences preferences;
    preferences.setAppValue("key", PropertyList(true), domain);
    EXPECT_EQ(preferences.copyAppValue("key", domain), PropertyList(true));
    EXPECT_EQ(preferences.storedValue("key", domain), std::nullopt);
    EXPECT_TRUE(preferences.appSynchronize(domain));
    EXPECT_EQ(preferences.storedValue("key", domain), PropertyList(true));
    EXPECT_EQ(preferences.writeCount(), 1);
}

TEST(FakePreferences, ReadsTheScopesFromTheMostParticularOn)
{
    FakePreferences preferences;
    using enum PreferencesHost;
    const auto put = [&](const char* value, PreferencesUser user, PreferencesHost host) {
        preferences.writeAsAnotherProcess("key", PropertyList(value), domain, user, host);
        return *preferences.copyAppValue("key", domain);
    };
    EXPECT_EQ(put("any user, any host", PreferencesUser::any, any), "any user, any host");
    EXPECT_EQ(put("any user, this host", PreferencesUser::any, current), "any user, this host");
    EXPECT_EQ(put("this user, any host", PreferencesUser::current, any), "this user, any host");
    EXPECT_EQ(put("this user, this host", PreferencesUser::current, current),
              "this user, this host");
}

TEST(FakePreferences, RemovesAValue)
{
    FakePreferences preferences;
    preferences.writeAsAnotherProcess("key", PropertyList(1), domain);
    preferences.setAppValue("key", std::nullopt, domain);
    EXPECT_EQ(preferences.copyAppValue("key", domain), std::nullopt);
    EXPECT_EQ(preferences.storedValue("key", domain), PropertyList(1));
    preferences.appSynchronize(domain);
    EXPECT_EQ(preferences.storedValue("key", domain), std::nullopt);
}

TEST(FakePreferences, AFailedWriteStaysPendingAndIsRetried)
{
    FakePreferences preferences;
    preferences.setWritesFail(true);
    preferences.setAppValue("key", PropertyList("value"), domain);
    EXPECT_FALSE(preferences.appSynchronize(domain));
    EXPECT_EQ(preferences.copyAppValue("key", domain), PropertyList("value"));
    EXPECT_TRUE(preferences.hasPending(domain));
    EXPECT_EQ(preferences.failedWriteCount(), 1);
    preferences.setWritesFail(false);
    EXPECT_TRUE(preferences.appSynchronize(domain));
    EXPECT_FALSE(preferences.hasPending(domain));
    EXPECT_EQ(preferences.storedValue("key", domain), PropertyList("value"));
}

TEST(FakePreferences, ANarrowSynchronizeStoresItsOwnScopeOnly)
{
    FakePreferences preferences;
    preferences.setAppValue("key", PropertyList(1), domain);
    EXPECT_TRUE(
        preferences.synchronize(domain, PreferencesUser::current, PreferencesHost::current));
    EXPECT_TRUE(preferences.hasPending(domain));
    EXPECT_TRUE(preferences.synchronize(domain, PreferencesUser::current, PreferencesHost::any));
    EXPECT_FALSE(preferences.hasPending(domain));
}

} // namespace
