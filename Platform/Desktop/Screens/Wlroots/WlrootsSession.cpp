#include "Platform/Desktop/Screens/Wlroots/WlrootsSession.h"

#include "Platform/Desktop/Screens/Wlroots/HyprlandControl.h"
#include "Platform/Desktop/Screens/Wlroots/ScreenCopy.h"
#include "Platform/Desktop/Screens/Wlroots/SwayControl.h"
#include "Platform/Desktop/Screens/Wlroots/SwayWindows.h"
#include "Platform/Posix/Environment.h"

#include <fcntl.h>
#include <sys/file.h>
#include <wayland-client.h>
#include <wayland-protocols/xdg-output-unstable-v1.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace farview
{
namespace
{

/// From the order to the output.
constexpr Duration longestMaking{5.0};

/// Where older versions have it, and newer ones.
std::string hyprlandSocket(const Environment& environment)
{
    const auto end = "/hypr/" + environment.value("HYPRLAND_INSTANCE_SIGNATURE") + "/.socket.sock";
    const auto newer = environment.folder("XDG_RUNTIME_DIR") + end;
    std::error_code error;
    return std::filesystem::exists(newer, error) ? newer : "/tmp" + end;
}

/// Named by the compositor, and no plug.
bool isPlugless(const std::string& name)
{
    return name.starts_with("HEADLESS-") || name.starts_with("FARVIEW-") ||
           name.starts_with("WL-") || name.starts_with("X11-");
}

bool isOfFarview(const WaylandOutput& output)
{
    return isPlugless(output.name) && std::abs(output.rate - rateOfOurs) <= 1;
}

bool canRemoveOutputs(const QJsonDocument& version)
{
    const int major = version[QStringLiteral("major")].toInt();
    return major > 1 || (major == 1 && version[QStringLiteral("minor")].toInt() >= 8);
}

} // namespace

WlrootsSession::WlrootsSession(RunLoop& loop)
    : mLoop(loop),
      mWayland({[this] { useGlobals(); }, [this](const auto& global) { mOutputs.add(global); },
                [this](auto name) { mOutputs.remove(name); },
                [this] { lose(ScreenObstacle::noDesktop); }}),
      mOutputs(mWayland, [this] { noticeOutputs(); })
{
    const Environment environment(EnvironmentUse::honoured);
    const auto socket = environment.value("SWAYSOCK");
    if (socket.empty()) {
        mControl = std::make_unique<HyprlandControl>(hyprlandSocket(environment));
        return;
    }
    mSway = std::make_unique<SwayConnection>(socket);
    mSway->setEvents(
        {[this] { mWindowChanged.tell(); }, [this] { lose(ScreenObstacle::protocolMissing); }});
    mControl = std::make_unique<SwayControl>(*mSway);
}

WlrootsSession::~WlrootsSession()
{
    mWayland.flush();
    if (mSway)
        mSway->finish();
}

Subscription WlrootsSession::observe(std::function<void()> changed)
{
    return mChanged.add(std::move(changed));
}

std::optional<WaylandOutput> WlrootsSession::find(const std::string& name) const
{
    for (const auto& output : outputs()) {
        if (output.name == name)
            return output;
    }
    return std::nullopt;
}

void WlrootsSession::useGlobals()
{
    if (!ScreenCopy::isPossible(mWayland) || !mWayland.find(zxdg_output_manager_v1_interface))
        return decide(std::nullopt, ScreenObstacle::protocolMissing);
    for (const auto& global : mWayland.globals())
        mOutputs.add(global);
    mWayland.afterAll([this] {
        if (mSway)
            mSway->askForVersion([this](const auto& answer) { useVersion(answer); });
        else
            decide(ScreenWay::hyprland, {});
    });
}

void WlrootsSession::useVersion(const QJsonDocument& answer)
{
    decide(canRemoveOutputs(answer) ? ScreenWay::sway : ScreenWay::swayKept, {});
    mSway->watchWindows();
}

void WlrootsSession::decide(std::optional<ScreenWay> way, ScreenObstacle obstacle)
{
    if (mAvailability)
        return;
    mAvailability = ScreenAvailability{way, obstacle};
    if (way) {
        for (const auto& name : leftOver())
            giveBack(name);
    }
    tellSoon();
}

void WlrootsSession::lose(ScreenObstacle obstacle)
{
    decide(std::nullopt, obstacle);
    mHasEnded = true;
    tellSoon();
}

void WlrootsSession::noticeOutputs()
{
    const auto all = outputs();
    const auto made = std::find_if(all.begin(), all.end(), [this](const auto& output) {
        return !mBefore.contains(output.name) && isPlugless(output.name);
    });
    if (mMaking && made != all.end())
        give(made->name);
    tellSoon();
}

void WlrootsSession::tellSoon()
{
    if (!std::exchange(mIsToTell, true))
        mLoop.post(mLife, [this] {
            mIsToTell = false;
            mChanged.tell();
        });
}

/// Another Farview that lives has outputs of its own.
bool WlrootsSession::mayUseWhatOthersLeft()
{
    const auto folder = Environment(EnvironmentUse::honoured).folder("XDG_RUNTIME_DIR");
    if (!mLock.isOpen() && !folder.empty()) {
        FileDescriptor file(::open((folder + "/farview-monitors.lock").c_str(),
                                   O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
            mLock = std::move(file);
    }
    return mLock.isOpen();
}

std::vector<std::string> WlrootsSession::leftOver()
{
    std::vector<std::string> names;
    const bool mayUse = mayUseWhatOthersLeft();
    for (const auto& output : outputs()) {
        if (mayUse && isOfFarview(output) && !mTaken.contains(output.name))
            names.push_back(output.name);
    }
    return names;
}

void WlrootsSession::take(std::weak_ptr<void> target, Taker then)
{
    mRequests.push_back({std::move(target), std::move(then)});
    serveNext();
}

void WlrootsSession::serveNext()
{
    if (mMaking || mLeaving > 0)
        return;
    std::erase_if(mRequests, [](const auto& request) { return request.target.expired(); });
    if (mRequests.empty())
        return;
    if (const auto names = leftOver(); !names.empty())
        give(names.front());
    else
        make();
}

void WlrootsSession::make()
{
    mMaking = std::make_shared<int>();
    mBefore.clear();
    for (const auto& output : outputs())
        mBefore.insert(output.name);
    const auto giveUp = [this] { give({}); };
    mLoop.performAfterDelay(longestMaking, mMaking, giveUp);
    mControl->create([giveUp, making = std::weak_ptr(mMaking)](bool isDone) {
        if (!isDone && !making.expired())
            giveUp();
    });
}

void WlrootsSession::give(const std::string& name)
{
    mMaking.reset();
    const auto request = std::move(mRequests.front());
    mRequests.pop_front();
    const auto target = request.target.lock();
    if (!name.empty())
        mTaken.insert(name);
    if (target)
        request.then(name);
    else if (!name.empty())
        giveBack(name);
    serveNext();
}

void WlrootsSession::giveBack(const std::string& name)
{
    if (mHasEnded)
        return;
    mTaken.insert(name);
    ++mLeaving;
    const auto remove = [this, name] {
        mControl->remove(name, [this, name](bool isGone) {
            --mLeaving;
            // One that stays is used again.
            if (!isGone)
                mTaken.erase(name);
            serveNext();
        });
    };
    if (mSway)
        takeWindowsBack(*mSway, name, remove);
    else
        remove();
}

} // namespace farview
