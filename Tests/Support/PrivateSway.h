#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocalSocket>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// sway without hardware. Ends with the object. For its length it is the desktop of this process,
/// too.
class PrivateSway
{
public:
    /// Starts it with monitors of those sizes, HEADLESS-1 and so on, and waits until it answers.
    /// `configuration` is lines of its configuration file.
    explicit PrivateSway(const std::vector<std::string>& monitors = {"1920x1080"},
                         const std::string& configuration = {});

    /// From version 1.8 on.
    static bool canRemoveOutputs();

    ChildProcess& process() { return *mSway; }
    /// Its socket for programs like swaymsg.
    std::string socket() const { return mFolder.path("sway"); }

private:
    TemporaryFolder mFolder; ///< sway's own, which runs as another user
    TemporaryFolder mOurs;
    ScopedEnvironment mRuntime{"XDG_RUNTIME_DIR", mOurs.path().c_str()};
    ScopedEnvironment mSocket{"SWAYSOCK", socket().c_str()};
    ScopedEnvironment mWayland{"WAYLAND_DISPLAY", mFolder.path("wayland-1").c_str()};
    ScopedEnvironment mDisplay{"DISPLAY", nullptr};
    std::unique_ptr<ChildProcess> mSway;
};

/// Another program on that desktop, like swaymsg. It waits for every answer.
class SwayArranger
{
public:
    explicit SwayArranger(PrivateSway& desktop);

    /// False when sway refuses it.
    bool run(const std::string& command);
    QJsonArray outputs();
    QJsonObject tree();
    /// Which monitor is where, in words: "HEADLESS-1 0,0 1920x1080 x1" and a line end each, by
    /// name.
    std::string layout();
    /// As a mouse would.
    void movePointer(int x, int y);

private:
    QByteArray ask(std::uint32_t type, const std::string& payload = {});
    QByteArray read(qint64 size);

    QLocalSocket mSocket;
};
