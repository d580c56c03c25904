#include "Applications/Device/PictureFile.h"

#include "Platform/Fake/FakeLog.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Tests/Screen/Scenes.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <QImage>

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class PictureFileTest : public testing::Test
{
protected:
    PictureFileTest()
    {
        Scenes scenes;
        scenes.writeText(frame, wholeOf(frame));
        received.apply(
            {wholeOf(frame), QLScreenEncodingLibz, zlib.encode(frame.view(), wholeOf(frame), 0)});
    }
    bool show(PictureFile& file)
    {
        bool isShown = false;
        file.beginPicture(received);
        file.showFrame({}, 0, [&] { isShown = true; });
        EXPECT_FALSE(isShown) << "never inside the call";
        runLoopFor(std::chrono::milliseconds(10));
        return isShown;
    }

    TemporaryFolder folder;
    FakeLog log;
    ZlibCodec zlib;
    Picture frame{64, 48};
    PictureReceiver received{64, 48, zlib, {}};
};

TEST_F(PictureFileTest, HoldsEachFrameBitForBit)
{
    for (const char* name : {"picture.png", "picture.ppm"}) {
        const auto path = QString::fromStdString(folder.path(name));
        PictureFile file(path, log);
        ASSERT_TRUE(show(file)) << name;
        const QImage image(path);
        ASSERT_EQ(image.size(), QSize(64, 48)) << name;
        for (int x = 0; x < 64; ++x)
            EXPECT_EQ(image.pixel(x, 7) & 0xffffff, frame.row(7)[x]) << name;
    }
}

TEST_F(PictureFileTest, ThatCannotBeWrittenShowsNothing)
{
    PictureFile file(QString::fromStdString(folder.path("none/picture.png")), log);
    EXPECT_FALSE(show(file));
    EXPECT_TRUE(log.contains("cannot be written"));
    PictureFile unknown(QString::fromStdString(folder.path("picture.text")), log);
    EXPECT_FALSE(show(unknown)) << "no format is called so";
}

} // namespace
} // namespace farview
