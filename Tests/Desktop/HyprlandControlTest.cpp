#include "Platform/Desktop/Screens/Wlroots/HyprlandControl.h"

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <QLocalServer>
#include <QLocalSocket>

#include <gtest/gtest.h>
#include <unistd.h>

#include <optional>

namespace farview
{
namespace
{

/// A Hyprland whose words a test writes: what its documentation says is all that is known of it
/// here.
class HyprlandControlTest : public testing::Test
{
protected:
    HyprlandControlTest()
    {
        EXPECT_TRUE(mServer.listen(QString::fromStdString(mFolder.path("socket"))));
        QObject::connect(&mServer, &QLocalServer::newConnection, [this] { serve(); });
    }
    void serve()
    {
        auto* peer = mServer.nextPendingConnection();
        QObject::connect(peer, &QLocalSocket::readyRead, [this, peer] {
            mHeard += peer->readAll();
            peer->write(mAnswer);
            peer->disconnectFromServer();
        });
    }
    CompositorControl::Answer answer()
    {
        return [this](bool isDone) { mIsDone = isDone; };
    }
    bool isDone()
    {
        EXPECT_TRUE(waitUntil([&] { return mIsDone.has_value(); }));
        return mIsDone.value_or(false);
    }

    TemporaryFolder mFolder;
    QLocalServer mServer;
    QByteArray mAnswer = "ok";
    QByteArray mHeard;
    std::optional<bool> mIsDone;
    HyprlandControl mControl{mFolder.path("socket")};
};

TEST_F(HyprlandControlTest, MakesOutputsThatSayWhoseTheyAre)
{
    mControl.create(answer());
    EXPECT_TRUE(isDone());
    EXPECT_EQ(mHeard, "/output create headless FARVIEW-" + QByteArray::number(::getpid()) + "-1");
}

TEST_F(HyprlandControlTest, SaysWhatAnOutputIsToBe)
{
    mControl.configure({"FARVIEW-1-1", 1024, 600, 1.5, std::nullopt}, answer());
    EXPECT_TRUE(isDone());
    EXPECT_EQ(mHeard, "/keyword monitor FARVIEW-1-1,1024x600@60.013,auto,1.5");
}

TEST_F(HyprlandControlTest, PlacesAnOutput)
{
    mControl.configure({"FARVIEW-1-1", 1024, 600, 1, pixelPoint(-1024, 20)}, answer());
    EXPECT_TRUE(isDone());
    EXPECT_EQ(mHeard, "/keyword monitor FARVIEW-1-1,1024x600@60.013,-1024x20,1");
}

TEST_F(HyprlandControlTest, RemovesAnOutput)
{
    mControl.remove("FARVIEW-1-1", answer());
    EXPECT_TRUE(isDone());
    EXPECT_EQ(mHeard, "/output remove FARVIEW-1-1");
}

TEST_F(HyprlandControlTest, EverythingButOkIsAFailure)
{
    for (const char* text : {"error", "", "unknown request"}) {
        mIsDone.reset();
        mAnswer = text;
        mControl.create(answer());
        EXPECT_FALSE(isDone()) << text;
    }
}

TEST_F(HyprlandControlTest, AnEndlessAnswerEnds)
{
    mAnswer = QByteArray(1 << 20, 'x');
    mControl.create(answer());
    EXPECT_FALSE(isDone());
}

TEST_F(HyprlandControlTest, WithoutAHyprlandIsAFailure)
{
    mServer.close();
    mControl.create(answer());
    EXPECT_FALSE(isDone());
}

} // namespace
} // namespace farview
