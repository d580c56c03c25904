// The device's window on a real Mutter, which tells less of its monitors than others.
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/PipeWireStream.h"
#include "Tests/Applications/ShownCheckerboard.h"
#include "Tests/Support/PrivateGnome.h"

#include <QApplication>
#include <QDBusObjectPath>

#include <gtest/gtest.h>

namespace farview
{
namespace
{

/// Started before Qt connects to it.
std::optional<PrivateGnome> gnome;

/// What one of its monitors shows.
class MonitorRecording final : public QObject
{
    Q_OBJECT

public:
    MonitorRecording(int width, int height) : mWidth(width), mHeight(height)
    {
        const auto session =
            path(call("/org/gnome/Mutter/ScreenCast", "", "CreateSession", {QVariantMap()}));
        const auto stream = path(
            call(session, ".Session", "RecordMonitor", {QStringLiteral("Meta-0"), QVariantMap()}));
        mBus.connect(kScreenCast, stream, kScreenCast + QStringLiteral(".Stream"),
                     QStringLiteral("PipeWireStreamAdded"), this, SLOT(begin(uint)));
        call(session, ".Session", "Start");
    }
    const QImage& newest()
    {
        if (const auto frame = mStream.screen().takeFrame())
            mNewest =
                QImage(reinterpret_cast<const uchar*>(frame->view.pixels), frame->view.width,
                       frame->view.height, frame->view.stride * qsizetype(4), QImage::Format_RGB32)
                    .copy();
        return mNewest;
    }

private slots:
    void begin(uint node)
    {
        mStream.connect({node}, mWidth, mHeight);
        mStream.show(mWidth, mHeight, false);
    }

private:
    static QString path(const QDBusMessage& reply)
    {
        return reply.arguments().value(0).value<QDBusObjectPath>().path();
    }
    QDBusMessage call(const QString& object, const char* interface, const char* member,
                      const QVariantList& arguments = {})
    {
        auto message = QDBusMessage::createMethodCall(
            kScreenCast, object, kScreenCast + QLatin1String(interface), QLatin1String(member));
        message.setArguments(arguments);
        return mBus.call(message);
    }

    const QString kScreenCast = QStringLiteral("org.gnome.Mutter.ScreenCast");
    QDBusConnection mBus = QDBusConnection::connectToBus(
        QString::fromStdString(gnome->bus().address()), QStringLiteral("recording"));
    int mWidth;
    int mHeight;
    QImage mNewest;
    QtRunLoop mLoop;
    PipeWireStream mStream{mLoop, {[] {}, [] {}, [](auto) {}}};
};

using DeviceOnGnomeTest = ShownCheckerboard;

TEST_F(DeviceOnGnomeTest, ShowsEachPixelOfThePictureAsOneOfTheScreen)
{
    GnomeArranger desk(*gnome, false);
    for (const double scale : {1.5, 1.25, 2.0, 1.0}) {
        DisplayLayout layout = desk.state().layout;
        layout[0].scale = scale;
        ASSERT_TRUE(desk.apply(layout));
        const auto hundredths = static_cast<std::uint16_t>(scale * 100);
        open({1920, 1080, hundredths, 60});
        drawCheckerboard(0xffffff);
        send();
        MonitorRecording monitor(1920, 1080);
        EXPECT_TRUE(waitUntil([&] { return isEqual(monitor.newest()); })) << scale;
    }
}

} // namespace
} // namespace farview

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    farview::gnome.emplace(std::vector<std::string>{"1920x1080"},
                           "[org/gnome/mutter]\n"
                           "experimental-features=['scale-monitor-framebuffer']\n");
    qputenv("QT_QPA_PLATFORM", "wayland");
    int status = 0;
    {
        const QApplication application(argc, argv);
        status = RUN_ALL_TESTS();
    }
    farview::gnome.reset();
    return status;
}

#include "DeviceOnGnomeTest.moc"
