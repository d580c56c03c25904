#include "Platform/Desktop/Screens/Wlroots/SwayConnection.h"

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocalServer>

#include <gtest/gtest.h>

#include <optional>

namespace farview
{
namespace
{

QByteArray numberBytes(std::uint32_t value)
{
    return QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
}
QByteArray message(std::uint32_t type, const QByteArray& payload)
{
    return "i3-ipc" + numberBytes(static_cast<std::uint32_t>(payload.size())) + numberBytes(type) +
           payload;
}

/// A sway whose words a test writes.
class SwayConnectionTest : public testing::Test
{
protected:
    SwayConnectionTest()
    {
        EXPECT_TRUE(mServer.listen(QString::fromStdString(mFolder.path("sway"))));
        mSway.emplace(mFolder.path("sway"));
        mSway->setEvents({[this] { ++mWindowChanges; }, [this] { ++mLosses; }});
        EXPECT_TRUE(waitUntil([&] { return mServer.hasPendingConnections(); }));
        mPeer = mServer.nextPendingConnection();
    }
    /// What was sent to it.
    bool hears(const QByteArray& text)
    {
        return waitUntil([&] {
            mHeard += mPeer->readAll();
            return mHeard == text;
        });
    }
    void say(const QByteArray& text)
    {
        mPeer->write(text);
        mPeer->flush();
    }
    bool isLost()
    {
        return waitUntil([&] { return mLosses > 0; });
    }

    TemporaryFolder mFolder;
    QLocalServer mServer;
    QLocalSocket* mPeer = nullptr;
    std::optional<SwayConnection> mSway;
    QByteArray mHeard;
    int mWindowChanges = 0;
    int mLosses = 0;
};

TEST_F(SwayConnectionTest, RunsCommandsAndHearsInOrderWhatBecameOfThem)
{
    std::vector<bool> answers;
    const auto note = [&](bool isDone) { answers.push_back(isDone); };
    mSway->run("create_output", note);
    mSway->run("a; b", note);
    mSway->run("c", note);
    EXPECT_TRUE(hears(message(0, "create_output") + message(0, "a; b") + message(0, "c")));
    const auto all = message(0, R"([{"success": true}])") +
                     message(0, R"([{"success": true}, {"success": false}])") + message(0, "[]");
    for (const char byte : all)
        say(QByteArray(1, byte));
    ASSERT_TRUE(waitUntil([&] { return answers.size() == 3; }));
    EXPECT_EQ(answers, (std::vector{true, false, false}));
}

TEST_F(SwayConnectionTest, AnswersThatAreNoneAreFailures)
{
    for (const char* answer :
         {"", "7", "{", "null", "[5]", R"([{"success": "true"}])", R"({"success": true})"}) {
        std::optional<bool> isDone;
        mSway->run("x", [&](bool flag) { isDone = flag; });
        say(message(0, answer));
        ASSERT_TRUE(waitUntil([&] { return isDone.has_value(); }));
        EXPECT_FALSE(*isDone) << answer;
    }
    EXPECT_EQ(mLosses, 0);
}

TEST_F(SwayConnectionTest, TellsOfWindowsThatChangeTheirPlace)
{
    mSway->watchWindows();
    mSway->watchWindows();
    EXPECT_TRUE(hears(message(2, R"(["window"])")));
    constexpr std::uint32_t windowEvent = 0x80000003;
    say(message(2, R"({"success": true})"));
    for (const char* change : {"title", "focus", "mark", "urgent"})
        say(message(windowEvent, QByteArray(R"({"change": ")") + change + R"("})"));
    say(message(windowEvent, "nonsense") + message(0x80000000, R"({"change": "new"})"));
    for (const char* change : {"new", "close", "move", "floating", "fullscreen_mode"})
        say(message(windowEvent, QByteArray(R"({"change": ")") + change + R"("})"));
    ASSERT_TRUE(waitUntil([&] { return mWindowChanges >= 5; }));
    EXPECT_EQ(mWindowChanges, 5);
}

TEST_F(SwayConnectionTest, IsLostWithItsPeer)
{
    mSway->run("x", [](bool) { FAIL() << "answered by nobody"; });
    mPeer->abort();
    ASSERT_TRUE(isLost());
    mSway->run("y");
    mSway->finish();
    runLoopFor(std::chrono::milliseconds(20));
    EXPECT_EQ(mLosses, 1);
}

TEST_F(SwayConnectionTest, IsLostWhenThePeerSpeaksAnotherLanguage)
{
    say("HTTP/1.1 400 Bad Request\r\n\r\n");
    EXPECT_TRUE(isLost());
}

TEST_F(SwayConnectionTest, IsLostWhenAMessageIsTooLong)
{
    say("i3-ipc" + numberBytes(0xFFFFFFFF) + numberBytes(0));
    EXPECT_TRUE(isLost());
}

TEST_F(SwayConnectionTest, IsLostWhenAnAnswerWasNotAskedFor)
{
    say(message(0, "[]"));
    EXPECT_TRUE(isLost());
}

TEST_F(SwayConnectionTest, FinishingDoesNotWaitForAPeerThatStandsStill)
{
    mSway->run("x");
    mSway->finish();
    EXPECT_TRUE(hears(message(0, "x")));
}

TEST(SwayConnectionWithoutASway, IsLostOnALaterTurn)
{
    int losses = 0;
    SwayConnection sway("/nowhere");
    sway.setEvents({{}, [&] { ++losses; }});
    EXPECT_EQ(losses, 0);
    EXPECT_TRUE(waitUntil([&] { return losses == 1; }));
}

} // namespace
} // namespace farview
