#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/ScreenPainter.h"
#include "Tests/Support/TemporaryFolder.h"

#include "Platform/Desktop/Screens/Mutter/DisplayState.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>
#include <string>
#include <vector>

/// GNOME's window manager without hardware, on Wayland, with a bus and a PipeWire of its own. Ends
/// with the object. For its length it is the desktop of this process, too.
class PrivateGnome
{
public:
    /// Starts it with monitors of those sizes and waits until it answers. `settings` is a key file
    /// of the user's.
    explicit PrivateGnome(const std::vector<std::string>& monitors = {"1920x1080"},
                          const std::string& settings = {});

    PrivateBus& bus() { return mBus; }
    ChildProcess& mutter() { return *mMutter; }
    ChildProcess& pipeWire() { return *mPipeWire; }

private:
    std::unique_ptr<ChildProcess> start(const std::string& command);

    PrivateBus mBus;
    TemporaryFolder mFolder;
    SessionBusScope mSession{mBus.address()};
    ScopedEnvironment mSystemBus{"DBUS_SYSTEM_BUS_ADDRESS", mBus.address().c_str()};
    ScopedEnvironment mRuntime{"XDG_RUNTIME_DIR", mFolder.path().c_str()};
    ScopedEnvironment mConfiguration{"XDG_CONFIG_HOME", mFolder.path().c_str()};
    ScopedEnvironment mSettings{"GSETTINGS_BACKEND", "keyfile"};
    ScopedEnvironment mWayland{"WAYLAND_DISPLAY", "wayland-test"};
    ScopedEnvironment mDisplay{"DISPLAY", nullptr};
    /// A window that still grows gets input in another place.
    ScopedEnvironment mAnimations{"MUTTER_DEBUG_DISABLE_ANIMATIONS", "1"};
    std::unique_ptr<ChildProcess> mPipeWire;
    std::unique_ptr<ChildProcess> mSessionManager;
    std::unique_ptr<ChildProcess> mMutter;
};

/// Other programs on that desktop: the painter, and one that arranges monitors and moves the
/// pointer, which waits for every answer.
class GnomeArranger : public QObject, public ScreenPainter
{
    Q_OBJECT

public:
    /// Without a mouse it cannot move the pointer.
    explicit GnomeArranger(PrivateGnome& desktop, bool hasMouse = true);
    ~GnomeArranger() override;
    GnomeArranger(const GnomeArranger&) = delete;
    GnomeArranger& operator=(const GnomeArranger&) = delete;

    farview::DisplayState state();
    /// Where which monitor is, in words.
    std::string layout();
    /// False when it is refused.
    bool apply(const farview::DisplayLayout& layout);
    /// How often anybody, or Mutter itself, has arranged the monitors.
    int arrangements() const { return mArrangements; }
    /// As a mouse would.
    void movePointer(int x, int y);

private Q_SLOTS:
    void noticeArrangement() { ++mArrangements; }

private:
    void bePointer();
    QDBusMessage call(const QString& service, const QString& path, const QString& interface,
                      const QString& member, const QVariantList& arguments = {});

    QDBusConnection mConnection;
    int mArrangements = 0;
    QString mPointer;
    int mPointerX = 0;
    int mPointerY = 0;
};
