#include "Tests/Controls/Qt/SwitchSupport.h"

#include <QFile>

namespace farview::test
{
namespace
{

class ImageFilesTest : public testing::Test
{
protected:
    std::shared_ptr<FileImage> load(const char* name)
    {
        return std::dynamic_pointer_cast<FileImage>(pictures.files->imageWithContentsOfFile(
            (pictures.path(name) + u".tiff"_qs).toStdString()));
    }

    SwitchPictures pictures;
};

TEST_F(ImageFilesTest, ItsSizeIsInPointsWhateverTheScreen)
{
    const auto image = load("SliderKnob");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->size(), (Size{44, 34}));
    EXPECT_EQ(image->file().pixels(1).size(), QSize(44, 34));
    EXPECT_EQ(image->file().pixels(2).size(), QSize(88, 68));
}

TEST_F(ImageFilesTest, KeepsTransparency)
{
    const QColor color = load("SliderWell")->file().pixels(1).pixelColor(5, 5);
    EXPECT_EQ(color.alpha(), 200);
    EXPECT_NEAR(color.red(), 60, 1);
    EXPECT_NEAR(color.green(), 90, 1);
    EXPECT_EQ(load("SliderWell")->file().pixels(1).format(), QImage::Format_ARGB32_Premultiplied);
}

TEST_F(ImageFilesTest, WithoutASharpTwinTheOnlyOneServesEveryScreen)
{
    ASSERT_TRUE(QFile::remove(pictures.path("SliderKnob@2x.tiff")));
    EXPECT_EQ(load("SliderKnob")->file().pixels(2).size(), QSize(44, 34));
}

TEST_F(ImageFilesTest, DecodesAFileOnce)
{
    const auto first = load("SliderKnob");
    const auto second = load("SliderKnob");
    EXPECT_NE(first, second);
    EXPECT_EQ(first->file().pixels(1).constBits(), second->file().pixels(1).constBits());
}

TEST_F(ImageFilesTest, SeesAFileThatWasReplaced)
{
    EXPECT_EQ(load("SliderKnob")->size().width, 44);
    pictures.save("SliderKnob", {20, 10}, Qt::red);
    QFile file(pictures.path("SliderKnob.tiff"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(5),
                                 QFileDevice::FileModificationTime));
    EXPECT_EQ(load("SliderKnob")->size().width, 20);
}

TEST_F(ImageFilesTest, WhatIsNoPictureIsNothing)
{
    EXPECT_EQ(load("Missing"), nullptr);
    QFile file(pictures.path("Broken.tiff"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("II*");
    file.write(QByteArray(1000, '\xff'));
    file.close();
    EXPECT_EQ(load("Broken"), nullptr);
}

TEST_F(ImageFilesTest, RemembersWhatWasRegisteredLast)
{
    const auto first = load("SliderKnob");
    const auto second = load("SliderWell");
    pictures.files->setName(first, "picture");
    pictures.files->setName(second, "picture");
    EXPECT_EQ(pictures.files->imageNamed("picture"), second);
    EXPECT_EQ(pictures.files->imageNamed("another"), nullptr);
}

} // namespace
} // namespace farview::test
