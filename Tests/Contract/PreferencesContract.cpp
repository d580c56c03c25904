#include "Platform/Fake/FakeLog.h"
#include "Platform/Fake/FakePreferences.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace farview
{
namespace
{

const std::string domain = "com.example.Domain";

/// Each scene makes the body and plays the part of another process and of a failing disk.
struct ScriptedPreferences {
    FakePreferences body;

    Preferences& preferences() { return body; }
    void writeElsewhere(const std::string& key, std::optional<PropertyList> value,
                        PreferencesUser user, PreferencesHost host)
    {
        body.writeAsAnotherProcess(key, std::move(value), domain, user, host);
    }
    std::optional<PropertyList> readElsewhere(const std::string& key)
    {
        return body.storedValue(key, domain);
    }
    void setWritesFail(bool fail) { body.setWritesFail(fail); }
};

struct PreferencesInFiles {
    TemporaryFolder folder;
    ScopedEnvironment config{"XDG_CONFIG_HOME", folder.path("config").c_str()};
    ScopedEnvironment system{"FARVIEW_SYSTEM_CONFIG", folder.path("system").c_str()};
    FakeLog log;
    PreferencesLocations locations{EnvironmentUse::honoured};
    FilePreferences body{locations, log};

    Preferences& preferences() { return body; }
    void writeElsewhere(const std::string& key, std::optional<PropertyList> value,
                        PreferencesUser user, PreferencesHost host)
    {
        const auto result =
            mergeIntoPreferences(locations.location(domain, user, host), {{key, std::move(value)}},
                                 std::chrono::milliseconds(1000));
        ASSERT_EQ(result.status, PreferencesMergeResult::Status::done) << result.reason;
    }
    std::optional<PropertyList> readElsewhere(const std::string& key)
    {
        FilePreferences other(locations, log);
        return other.copyValue(key, domain, PreferencesUser::current, PreferencesHost::any);
    }
    /// A folder in the place of the lock file: no writer can take the lock, root included.
    void setWritesFail(bool fail)
    {
        const auto lock =
            locations.location(domain, PreferencesUser::current, PreferencesHost::any).path +
            ".lock";
        std::filesystem::remove_all(lock);
        if (fail)
            std::filesystem::create_directories(lock);
    }
};

template <typename Scene> class PreferencesContract : public testing::Test
{
protected:
    std::optional<PropertyList> read(const std::string& key)
    {
        return mScene.preferences().copyAppValue(key, domain);
    }
    void set(const std::string& key, std::optional<PropertyList> value)
    {
        mScene.preferences().setAppValue(key, std::move(value), domain);
    }
    bool synchronize() { return mScene.preferences().appSynchronize(domain); }

    Scene mScene;
};

using Scenes = testing::Types<ScriptedPreferences, PreferencesInFiles>;
TYPED_TEST_SUITE(PreferencesContract, Scenes);

TYPED_TEST(PreferencesContract, AMissingKeyGivesNothing)
{
    EXPECT_EQ(this->read("key"), std::nullopt);
    EXPECT_TRUE(this->synchronize());
}

TYPED_TEST(PreferencesContract, AValueReadsBackAtOnceAndIsSeenElsewhereAfterASynchronize)
{
    this->set("key", true);
    EXPECT_EQ(this->read("key"), PropertyList(true));
    EXPECT_EQ(this->mScene.readElsewhere("key"), std::nullopt);
    EXPECT_TRUE(this->synchronize());
    EXPECT_EQ(this->mScene.readElsewhere("key"), PropertyList(true));
}

TYPED_TEST(PreferencesContract, EachValueKeepsItsType)
{
    const PropertyList::Dictionary values = {
        {"boolean", true},
        {"integer", 1},
        {"real", 1.0},
        {"text", "1"},
        {"data", Data::fromText("1")},
        {"date", Date{1}},
        {"array", PropertyList::Array{1, "a"}},
        {"dictionary", PropertyList::Dictionary{{"a", false}}}};
    for (const auto& [key, value] : values)
        this->set(key, value);
    EXPECT_TRUE(this->synchronize());
    for (const auto& [key, value] : values) {
        EXPECT_EQ(this->read(key), value) << key;
        EXPECT_EQ(this->mScene.readElsewhere(key), value) << key;
    }
}

TYPED_TEST(PreferencesContract, NothingRemovesAKey)
{
    this->set("key", 1);
    EXPECT_TRUE(this->synchronize());
    this->set("key", std::nullopt);
    EXPECT_EQ(this->read("key"), std::nullopt);
    EXPECT_EQ(this->mScene.readElsewhere("key"), PropertyList(1));
    EXPECT_TRUE(this->synchronize());
    EXPECT_EQ(this->mScene.readElsewhere("key"), std::nullopt);
}

TYPED_TEST(PreferencesContract, AChangeElsewhereIsSeenAtTheNextRead)
{
    EXPECT_EQ(this->read("key"), std::nullopt);
    this->mScene.writeElsewhere("key", 1, PreferencesUser::current, PreferencesHost::any);
    EXPECT_EQ(this->read("key"), PropertyList(1));
    this->mScene.writeElsewhere("key", std::nullopt, PreferencesUser::current,
                                PreferencesHost::any);
    EXPECT_EQ(this->read("key"), std::nullopt);
}

TYPED_TEST(PreferencesContract, AWriteKeepsWhatOthersWrote)
{
    this->set("mine", 1);
    this->mScene.writeElsewhere("theirs", 2, PreferencesUser::current, PreferencesHost::any);
    EXPECT_TRUE(this->synchronize());
    EXPECT_EQ(this->mScene.readElsewhere("theirs"), PropertyList(2));
    EXPECT_EQ(this->mScene.readElsewhere("mine"), PropertyList(1));
}

TYPED_TEST(PreferencesContract, APendingValueWinsOverAChangeElsewhere)
{
    this->set("key", 1);
    this->mScene.writeElsewhere("key", 2, PreferencesUser::current, PreferencesHost::any);
    EXPECT_EQ(this->read("key"), PropertyList(1));
    EXPECT_TRUE(this->synchronize());
    EXPECT_EQ(this->mScene.readElsewhere("key"), PropertyList(1));
}

TYPED_TEST(PreferencesContract, AnApplicationReadPrefersTheUserAndThenTheHost)
{
    this->mScene.writeElsewhere("key", 4, PreferencesUser::any, PreferencesHost::any);
    EXPECT_EQ(this->read("key"), PropertyList(4));
    this->mScene.writeElsewhere("key", 3, PreferencesUser::any, PreferencesHost::current);
    EXPECT_EQ(this->read("key"), PropertyList(3));
    this->mScene.writeElsewhere("key", 2, PreferencesUser::current, PreferencesHost::any);
    EXPECT_EQ(this->read("key"), PropertyList(2));
    this->mScene.writeElsewhere("key", 1, PreferencesUser::current, PreferencesHost::current);
    EXPECT_EQ(this->read("key"), PropertyList(1));
}

TYPED_TEST(PreferencesContract, AScopeIsReadAlone)
{
    auto& preferences = this->mScene.preferences();
    this->mScene.writeElsewhere("key", 1, PreferencesUser::any, PreferencesHost::current);
    EXPECT_EQ(preferences.copyValue("key", domain, PreferencesUser::any, PreferencesHost::current),
              PropertyList(1));
    EXPECT_EQ(preferences.copyValue("key", domain, PreferencesUser::current, PreferencesHost::any),
              std::nullopt);
    EXPECT_EQ(preferences.copyValue("key", "other", PreferencesUser::any, PreferencesHost::current),
              std::nullopt);
}

TYPED_TEST(PreferencesContract, ASynchronizeOfAnotherScopeLeavesAValuePending)
{
    this->set("key", 1);
    EXPECT_TRUE(this->mScene.preferences().synchronize(domain, PreferencesUser::current,
                                                       PreferencesHost::current));
    EXPECT_TRUE(this->mScene.preferences().synchronize(domain, PreferencesUser::any,
                                                       PreferencesHost::current));
    EXPECT_EQ(this->mScene.readElsewhere("key"), std::nullopt);
    EXPECT_TRUE(this->mScene.preferences().synchronize(domain, PreferencesUser::current,
                                                       PreferencesHost::any));
    EXPECT_EQ(this->mScene.readElsewhere("key"), PropertyList(1));
}

TYPED_TEST(PreferencesContract, AFailedWriteIsKeptAndRetried)
{
    this->set("key", "old");
    EXPECT_TRUE(this->synchronize());
    this->mScene.setWritesFail(true);
    this->set("key", "new");
    this->set("other", 1);
    EXPECT_FALSE(this->synchronize());
    EXPECT_FALSE(this->synchronize());
    EXPECT_EQ(this->read("key"), PropertyList("new"));
    EXPECT_EQ(this->mScene.readElsewhere("key"), PropertyList("old"));
    this->mScene.setWritesFail(false);
    EXPECT_TRUE(this->synchronize());
    EXPECT_EQ(this->mScene.readElsewhere("key"), PropertyList("new"));
    EXPECT_EQ(this->mScene.readElsewhere("other"), PropertyList(1));
}

} // namespace
} // namespace farview
