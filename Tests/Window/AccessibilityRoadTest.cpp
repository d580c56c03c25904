// The whole road to moving windows back on a desktop whose accessibility is off: from the box in
// the panel over the alert and the accessibility pane, back to the box. Real bundles, a real second
// start of the host, a private bus; only the accessibility service is a test's.

#include "Applications/Preferences/PreferencesHost.h"
#include "Applications/Preferences/WindowOfTheSession.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/WaitUntil.h"

#include <QCheckBox>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace
{

const QString accessPane = QStringLiteral(FARVIEW_ACCESS_BUNDLE);
const QString farviewPane = QStringLiteral(FARVIEW_PANE_BUNDLE);

class AccessibilityRoad : public testing::Test
{
protected:
    AccessibilityRoad()
    {
        folder.write("tools/gsettings", "#!/bin/sh\nexit 1\n", true);
        // Nothing else is to be started.
        folder.write(
            "config/farview/com.quillon.Farview.plist",
            "<plist version=\"1.0\"><dict><key>showInMenuBar</key><false/></dict></plist>");
        std::filesystem::permissions(folder.path("config/farview"),
                                     std::filesystem::perms::owner_all);
        offerAccessibility("off");
        const auto open = [this](const WindowOfTheSession::Wish& wish) {
            wishes.append(wish.pane);
            return wish.pane.isEmpty() ? HostError{} : host.open(wish.pane);
        };
        bool isFirst = false;
        first.becomeFirst(open, [&](bool is) { isFirst = is; });
        EXPECT_TRUE(waitUntil([&] { return isFirst; }));
    }
    void offerAccessibility(const char* kind)
    {
        waitUntil([&] { return !isOffered(); });
        service.emplace(std::vector<std::string>{FARVIEW_TEST_PEER, "accessibility", kind});
        waitUntil([&] { return isOffered(); });
    }
    static bool isOffered()
    {
        // A name that was used for a connection once is not good for another.
        static int count = 0;
        const QString name = u"road-%1"_qs.arg(++count);
        const bool offered = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                                 .interface()
                                 ->isServiceRegistered(u"org.a11y.Bus"_qs);
        QDBusConnection::disconnectFromBus(name);
        return offered;
    }
    template <typename Widget> Widget* find(const char* name) const
    {
        return host.selected()->view()->template findChild<Widget*>(name);
    }
    QMessageBox* alert() { return host.window().findChild<QMessageBox*>(); }
    bool isShown(const char* title) const
    {
        return host.selected() && host.selected()->title() == QString::fromLatin1(title);
    }
    void openSettings()
    {
        ASSERT_EQ(host.open(farviewPane).status, HostStatus::success);
        find<QTabWidget>("tabView")->setCurrentIndex(1);
    }
    QString stored() const
    {
        QFile file(QString::fromStdString(folder.path("config/farview/com.quillon.Farview.plist")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).simplified()
                                              : QString();
    }
    bool isStored(const char* value) const
    {
        return stored().contains(QStringLiteral("<key>autoMoveWindowsBackOption</key> <%1/>")
                                     .arg(QString::fromLatin1(value)));
    }

    /// One bus for all: the bus library asks once per process where the session's is.
    static const std::string& busAddress()
    {
        static const PrivateBus bus;
        return bus.address();
    }

    TemporaryFolder folder;
    SessionBusScope scope{busAddress()};
    /// What is started when the window is not there to take the wish.
    OrphanCollector hosts{"farview-prefere"};
    ScopedEnvironment config{"XDG_CONFIG_HOME", folder.path("config").c_str()};
    ScopedEnvironment data{"XDG_DATA_HOME", folder.path("data").c_str()};
    ScopedEnvironment home{"HOME", folder.path().c_str()};
    ScopedEnvironment path{
        "PATH", (folder.path("tools") + ":" FARVIEW_BIN_FOLDER ":/usr/bin:/bin").c_str()};
    ScopedEnvironment display{"DISPLAY", nullptr};
    ScopedEnvironment wayland{"WAYLAND_DISPLAY", "wayland-0"};
    ScopedEnvironment desktop{"XDG_CURRENT_DESKTOP", "GNOME"};
    ScopedEnvironment session{"XDG_SESSION_ID", nullptr};
    ScopedEnvironment language{"LANGUAGE", "en"};
    std::optional<ChildProcess> service;
    farview::StandardErrorLog log{"host_test"};
    farview::PosixBundles bundles{farview::EnvironmentUse::honoured, log};
    PreferencesHost host{PaneLoader(bundles, false)};
    WindowOfTheSession first{log};
    QStringList wishes;
};

TEST_F(AccessibilityRoad, LeadsFromTheBoxOverTheAlertAndThePaneBackToTheBox)
{
    ASSERT_NO_FATAL_FAILURE(openSettings());
    EXPECT_TRUE(waitUntil([this] { return isStored("false"); })) << stored().toStdString();
    find<QCheckBox>("autoMoveWindowsBack")->click();
    ASSERT_TRUE(waitUntil([this] { return alert() != nullptr; }));
    alert()->buttons().first()->click();
    EXPECT_FALSE(find<QCheckBox>("autoMoveWindowsBack")->isChecked());
    ASSERT_TRUE(waitUntil([this] { return isShown("Accessibility"); }));
    EXPECT_EQ(wishes, QStringList{accessPane});

    auto* box = find<QCheckBox>("accessibilityCheckbox");
    ASSERT_TRUE(waitUntil([&] { return box->isEnabled(); }));
    EXPECT_FALSE(box->isChecked());
    EXPECT_TRUE(waitUntil(
        [this] { return find<QLabel>("lifetimeLabel")->text().contains(u"until you log out"); }));
    box->click();
    ASSERT_TRUE(waitUntil([&] { return box->isEnabled() && box->isChecked(); }));

    auto* back = host.window().findChild<QToolButton*>("backButton");
    EXPECT_EQ(back->text(), u"Farview"_qs);
    back->click();
    ASSERT_TRUE(isShown("Farview"));
    find<QTabWidget>("tabView")->setCurrentIndex(1);
    find<QCheckBox>("autoMoveWindowsBack")->click();
    EXPECT_TRUE(find<QCheckBox>("autoMoveWindowsBack")->isChecked());
    EXPECT_TRUE(waitUntil([this] { return isStored("true"); })) << stored().toStdString();
}

TEST_F(AccessibilityRoad, AnotherPaneThatTakesThePlaceTakesTheAlertAway)
{
    ASSERT_NO_FATAL_FAILURE(openSettings());
    EXPECT_TRUE(waitUntil([this] { return isStored("false"); })) << stored().toStdString();
    find<QCheckBox>("autoMoveWindowsBack")->click();
    ASSERT_TRUE(waitUntil([this] { return alert() && alert()->isVisible(); }));
    ASSERT_EQ(host.open(accessPane).status, HostStatus::success);
    EXPECT_TRUE(!alert() || !alert()->isVisible());
    host.window().findChild<QToolButton*>("backButton")->click();
    EXPECT_TRUE(waitUntil([this] { return !find<QCheckBox>("autoMoveWindowsBack")->isChecked(); }));
}

TEST_F(AccessibilityRoad, ThePaneAloneNeedsNoOther)
{
    ASSERT_EQ(host.open(accessPane).status, HostStatus::success);
    EXPECT_FALSE(host.window().findChild<QToolButton*>("backButton")->isVisible());
    service.reset();
    EXPECT_TRUE(waitUntil([this] { return !find<QLabel>("problemLabel")->text().isEmpty(); }));
    EXPECT_FALSE(find<QCheckBox>("accessibilityCheckbox")->isEnabled());
    host.window().close();
    EXPECT_EQ(host.selected(), nullptr);
}

} // namespace
