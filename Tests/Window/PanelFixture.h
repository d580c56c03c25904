#pragma once

#include "Common/FVEDistributedNotifications.h"
#include "Common/Rules/PairingReport.h"
#include "Common/Rules/ScreenReport.h"
#include "Controls/Qt/AlertBoxes.h"
#include "Controls/Qt/Forms/BundleInterfaceLoader.h"
#include "Controls/Qt/Forms/InterfaceFile.h"
#include "Platform/Fake/FakePlatform.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Source/FVEPreferencePane.h"

#include <QApplication>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace farview::test
{

/// The real panel: the pane, its bundle as it was built and its window, on a scripted machine.
class PanelFixture : public testing::Test
{
protected:
    PanelFixture() : mInstalled(fake.platform())
    {
        fake.registry.publish("QLExGFX");
        fake.fileManager.createDirectoryAtPath("/home/user");
    }
    ~PanelFixture() override
    {
        pane.reset();
        view.reset();
        QApplication::setFont(mFont);
        QApplication::setPalette(mPalette);
        QApplication::setLayoutDirection(Qt::LeftToRight);
        qunsetenv("LANGUAGE");
        qunsetenv("LANG");
    }

    void load(const char* language = "en", const std::string& path = FARVIEW_PANE_BUNDLE)
    {
        // A language beyond "C" must be in force before the list of languages counts.
        qputenv("LANG", "en_US.UTF-8");
        qputenv("LANGUAGE", language);
        bundle = PosixBundles(EnvironmentUse::honoured, mLog).bundleWithPath(path);
        ASSERT_NE(bundle, nullptr);
        pane = std::make_shared<FVEPreferencePane>(fake.platform());
        ASSERT_TRUE(pane->initWithBundle(bundle));
        pane->setInterfaceLoader(std::make_shared<BundleInterfaceLoader>(bundle));
        pane->setAlertPresenter(std::make_shared<AlertBoxes>());
        std::string error;
        view = InterfaceFile(*bundle, pane->mainNibName()).load(pane, error);
        ASSERT_NE(view, nullptr) << error;
        pane->mainViewDidLoad();
    }
    void show()
    {
        pane->willSelect();
        view->show();
        pane->didSelect();
        settle();
    }
    /// As when the panel is closed for good.
    void close()
    {
        pane.reset();
        view.reset();
    }
    /// Lets the scripted machine and the window catch up.
    void settle()
    {
        fake.runLoop.advance(Duration(0.3));
        QCoreApplication::processEvents();
    }
    template <typename Widget> Widget* find(const char* name) const
    {
        auto* widget = view->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    void announce(const std::string& name, const std::string& hostName)
    {
        fake.discovery.announce({FakeDevice{name, hostName}});
        settle();
    }
    void serverPosts(const char* name, DistributedNotificationCenter::TextUserInfo userInfo)
    {
        fake.distributedNotificationCenter.postFromAnotherProcess(name, std::move(userInfo));
        settle();
    }
    void serverConnectedTo(const std::string& hostName)
    {
        serverPosts(kServerConnectedToDevice,
                    {{kDeviceNameKey, hostName}, {kDeviceAddressKey, "192.168.1.20"}});
    }
    void serverReports(const ScreenReport& report)
    {
        serverPosts(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(report)}});
    }
    void serverReports(const PairingReport& report)
    {
        serverPosts(kServerPairingDidChange, {{kPairingReportKey, textOfPairingReport(report)}});
        fake.runLoop.advance(Duration(1.0)); // no answer counts before
    }
    /// The user is asked to compare digits with that device.
    void compareWith(const std::string& device)
    {
        serverReports(PairingReport{PairingReport::State::comparing, "482913", device});
    }
    /// A monitor to the right of two screens of the user.
    static ScreenReport shownScreen()
    {
        return {.state = ScreenReport::State::shown,
                .width = 1920,
                .height = 1200,
                .rate = 60,
                .monitor = pixelRect(3200, 0, 1920, 1200),
                .screens = {pixelRect(0, 0, 1920, 1080), pixelRect(1920, 0, 1280, 1024)}};
    }
    void useLargeFont() { useFontScale(1.5); }
    /// Type of that size, in relation to the desktop's.
    void useFontScale(double scale)
    {
        QFont font = mFont;
        font.setPointSizeF(font.pointSizeF() * scale);
        QApplication::setFont(font);
    }
    void useDarkColors()
    {
        QPalette dark(QColor(53, 53, 53), QColor(42, 42, 42));
        QApplication::setPalette(dark);
    }

    FakePlatform fake;
    std::shared_ptr<Bundle> bundle;
    std::unique_ptr<QWidget> view;
    std::shared_ptr<FVEPreferencePane> pane;

private:
    Platform::Scope mInstalled;
    StandardErrorLog mLog{"panel_test"};
    QFont mFont = QApplication::font();
    QPalette mPalette = QApplication::palette();
};

} // namespace farview::test
