#include "Applications/Device/DeviceWindow.h"

#include <QApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::HasSubstr;

namespace
{

class DeviceWindowTest : public testing::Test
{
protected:
    DeviceWindowTest() { window.show(); }

    QLabel& label(const char* name)
    {
        return *window.findChild<QLabel*>(QString::fromLatin1(name));
    }
    std::string text(const char* name) { return label(name).text().toStdString(); }

    DeviceStatus status{"Desk", 6001, "", "", std::nullopt, std::nullopt};
    int closed = 0;
    DeviceWindow window{[this] { ++closed; }};
};

} // namespace

TEST_F(DeviceWindowTest, ShowsItsNameAndThatItIsFree)
{
    window.showStatus(status);
    EXPECT_EQ(text("deviceName"), "Desk");
    EXPECT_THAT(text("deviceUse"), HasSubstr("Not in use"));
    EXPECT_FALSE(label("deviceOptions").isVisible());
    EXPECT_FALSE(label("deviceTrouble").isVisible());
}

TEST_F(DeviceWindowTest, ShowsWhoUsesItAndWhatTheyWant)
{
    status.usedBy = "192.0.2.9";
    status.options = LinkOptions{true, false, false, true};
    window.showStatus(status);
    EXPECT_THAT(text("deviceUse"), HasSubstr("192.0.2.9"));
    EXPECT_EQ(text("deviceOptions"), "Touch: on\nRetina resolutions: off\n"
                                     "HiDPI resolutions: off\nWindows move back: on");
    EXPECT_TRUE(label("deviceOptions").isVisible());
}

TEST_F(DeviceWindowTest, ForgetsItsHostWhenThatHasGone)
{
    status.usedBy = "192.0.2.9";
    status.options = LinkOptions{};
    window.showStatus(status);
    status.usedBy.reset();
    status.options.reset();
    window.showStatus(status);
    EXPECT_THAT(text("deviceUse"), HasSubstr("Not in use"));
    EXPECT_FALSE(label("deviceOptions").isVisible());
}

TEST_F(DeviceWindowTest, ShowsTrouble)
{
    status.announcedName.clear();
    status.trouble = "No network";
    window.showStatus(status);
    EXPECT_EQ(text("deviceName"), "Not announced yet");
    EXPECT_EQ(text("deviceTrouble"), "No network");
    status.portWarning = "Another port";
    window.showStatus(status);
    EXPECT_EQ(text("deviceTrouble"), "No network\nAnother port");
    EXPECT_TRUE(label("deviceTrouble").isVisible());
}

TEST_F(DeviceWindowTest, TakesNoMarkupFromANetwork)
{
    status.announcedName = "<b>Desk</b>";
    window.showStatus(status);
    EXPECT_EQ(text("deviceName"), "<b>Desk</b>");
    for (const QLabel* each : window.findChildren<QLabel*>())
        EXPECT_EQ(each->textFormat(), Qt::PlainText) << each->objectName().toStdString();
}

TEST_F(DeviceWindowTest, TellsThatItWasClosed)
{
    window.close();
    EXPECT_EQ(closed, 1);
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
