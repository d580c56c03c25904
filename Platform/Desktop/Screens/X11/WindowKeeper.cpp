#include "Platform/Desktop/Screens/X11/WindowKeeper.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace farview
{
namespace
{

using std::chrono::milliseconds;

/// Between two looks: dragging a window changes it all the time.
constexpr milliseconds pause{200};
/// For a window manager that is busy with the new monitor.
constexpr int mostTries = 25;
/// For each step of a window manager, unless it is slow or refuses: seven steps at most hold up the
/// end of a monitor.
constexpr milliseconds stepLimit{50};

WindowStand standOf(const DesktopWindow& window, const PixelRect& normalBefore)
{
    return {window.area, window.stretch.isAny() ? normalBefore : window.area, window.stretch};
}

bool isOnAny(const PixelRect& window, const std::vector<PixelRect>& screens)
{
    return std::any_of(screens.begin(), screens.end(),
                       [&](const auto& screen) { return isOn(window, screen); });
}

bool isInSight(const DesktopWindow& window, const std::vector<PixelRect>& screens)
{
    const auto outside = window.outside();
    if (window.stretch.isAny())
        return isOnAny(outside, screens);
    return std::any_of(screens.begin(), screens.end(),
                       [&](const auto& screen) { return isWhollyOn(outside, screen); });
}

/// Whether it is where it was before the monitor came: not there as its guest.
bool hasStayed(const WindowNote& note) { return note.home && note.home->area == note.there.area; }

/// How it is to be stretched where it goes.
WindowStretch stretchElsewhere(const WindowNote& note)
{
    return note.home ? note.home->stretch : note.there.stretch;
}

/// Most of it was on another screen.
bool onlyReachedIn(const WindowNote& note) { return !isOn(note.there.area, note.monitorArea); }

/// Window managers stretch a window a little differently each time, or not at once.
bool isWhereItWas(const DesktopWindow& window, const WindowStand& before)
{
    return window.stretch == before.stretch &&
           (window.area == before.area ||
            (window.stretch.isAny() && isOn(window.area, before.area)));
}

} // namespace

WindowKeeper::WindowKeeper(RandrServer& server, const std::string& monitorName, bool keeps)
    : mDesktop(server), mNumber(mDesktop.numberOf(monitorName)), mKeeps(keeps)
{
    for (const auto& window : mDesktop.windows()) {
        const auto& note = window.note;
        const bool hasHome = note && note->home;
        mHomes[window.id] = hasHome && note->isThere
                                ? *note->home
                                : standOf(window, hasHome ? note->home->normal : PixelRect{});
        if (mKeeps && hasHome && note->isKept && !note->isThere && note->monitor == mNumber &&
            isWhereItWas(window, *note->home))
            mReturning[window.id] = *note;
    }
}

void WindowKeeper::keep(bool flag)
{
    mKeeps = flag;
    windowsChanged();
}

void WindowKeeper::setMonitor(const PixelRect& area)
{
    mMonitor = area;
    for (const auto& window : mDesktop.windows()) {
        const auto& note = window.note;
        if (note && note->isThere && note->monitor == mNumber && !onlyReachedIn(*note))
            mReturning[window.id] = *note;
    }
    mTriesLeft = mostTries;
    windowsChanged();
}

void WindowKeeper::windowsChanged()
{
    if (!mDue)
        mDue = Clock::now() + pause;
}

int WindowKeeper::millisecondsLeft() const
{
    const auto left = std::chrono::ceil<milliseconds>(mDue.value_or(Clock::now()) - Clock::now());
    return static_cast<int>(std::max<std::int64_t>(0, left.count()));
}

void WindowKeeper::look()
{
    if (!mDue || Clock::now() < *mDue)
        return;
    mDue.reset();
    see();
    bringToMonitor();
}

void WindowKeeper::see()
{
    const bool isHeld = mDesktop.isButtonHeld();
    const auto windows = mDesktop.windows();
    for (const auto& window : windows) {
        if (mReturning.contains(window.id))
            continue;
        if (overlap(window.outside(), mMonitor))
            note(window);
        else
            leave(window, isHeld);
    }
    std::erase_if(mHomes, [&](const auto& home) {
        return std::none_of(windows.begin(), windows.end(),
                            [&](const auto& window) { return window.id == home.first; });
    });
    // Its release is no event that we hear.
    if (isHeld)
        windowsChanged();
}

/// Writes on a window of the monitor where it came from.
void WindowKeeper::note(const DesktopWindow& window)
{
    const bool isKnown = window.note && window.note->isThere && window.note->monitor == mNumber;
    const auto normal = isKnown ? window.note->there.normal : PixelRect{};
    const auto home = mHomes.find(window.id);
    WindowNote note{mNumber, true, mKeeps, mMonitor, standOf(window, normal)};
    if (mKeeps && home != mHomes.end())
        note.home = home->second;
    note.isKept = mKeeps && !hasStayed(note) && !onlyReachedIn(note);
    if (note != window.note)
        mDesktop.writeNote(window.id, note);
}

/// A window that is elsewhere is at home there, unless the user is just dragging it.
void WindowKeeper::leave(const DesktopWindow& window, bool isHeld)
{
    const auto before = mHomes.find(window.id);
    if (before == mHomes.end() || !isHeld)
        mHomes[window.id] =
            standOf(window, before == mHomes.end() ? PixelRect{} : before->second.normal);
    if (window.note && window.note->isThere && window.note->monitor == mNumber)
        mDesktop.removeNote(window.id);
}

/// Again and again, until the window manager knows the monitor.
void WindowKeeper::bringToMonitor()
{
    if (mReturning.empty() || mDesktop.isButtonHeld())
        return;
    for (const auto& window : mDesktop.windows()) {
        if (mReturning.contains(window.id) && hasArrived(window))
            mReturning.erase(window.id);
    }
    if (mTriesLeft-- <= 0)
        mReturning.clear();
    Stretches stretches;
    for (const auto& [window, note] : mReturning)
        stretches[window] = note.there.stretch;
    moveAll(stretches, [this](const auto& window) { return placeOfReturning(window); });
    windowsChanged();
}

PixelRect WindowKeeper::placeOfReturning(const DesktopWindow& window) const
{
    return placeOnMonitor(window.area, window.frame, mReturning.at(window.id), mMonitor);
}

bool WindowKeeper::hasArrived(const DesktopWindow& window) const
{
    const auto& note = mReturning.at(window.id);
    // Most window managers keep windows on a monitor that has another size.
    if (note.isThere)
        return isWhollyOn(window.outside(), mMonitor);
    return isWhereItWas(
        window,
        {window.stretch.isAny() ? mMonitor : placeOfReturning(window), {}, note.there.stretch});
}

void WindowKeeper::takeBack()
{
    if (mMonitor == PixelRect{})
        return;
    mReturning.clear();
    see();
    for (const auto& window : mDesktop.windows()) {
        if (window.note && window.note->isThere && window.note->monitor == mNumber)
            mGuests[window.id] = *window.note;
    }
    if (mKeeps)
        moveGuestsBack();
    // From here on no watcher takes them for abandoned.
    writeLastNotes(mDesktop.screens());
}

bool WindowKeeper::takeAbandonedBack()
{
    const auto screens = mDesktop.screens();
    bool areThereNotes = false;
    for (const auto& window : mDesktop.windows()) {
        if (!window.note)
            continue;
        areThereNotes = true;
        const bool isAbandoned =
            window.note->isThere && !isOnAny(window.note->monitorArea, screens);
        const bool isMovedAgain = mAdopted.contains(window.id) && window.note->home &&
                                  !isWhereItWas(window, *window.note->home);
        const bool isLost =
            !window.note->isThere && (isMovedAgain || !isOnAny(window.outside(), screens));
        if (isAbandoned)
            mAdopted.insert(window.id);
        if (isAbandoned || isLost)
            mGuests[window.id] = *window.note;
    }
    moveGuestsBack();
    settle();
    return areThereNotes;
}

void WindowKeeper::moveGuestsBack()
{
    auto screens = mDesktop.screens();
    std::erase_if(screens, [this](const auto& screen) { return overlap(screen, mMonitor); });
    Stretches stretches;
    for (const auto& [window, note] : mGuests) {
        const bool isToStay =
            hasStayed(note) || (onlyReachedIn(note) && note.there.stretch.isAny());
        if (!isToStay && !screens.empty())
            stretches[window] = onlyReachedIn(note) ? WindowStretch{} : stretchElsewhere(note);
    }
    moveAll(stretches, [&](const auto& window) { return placeOfGuest(window, screens); });
}

PixelRect WindowKeeper::placeOfGuest(const DesktopWindow& window,
                                     const std::vector<PixelRect>& screens)
{
    auto& note = mGuests.at(window.id);
    const auto nearest = std::find_if(screens.begin(), screens.end(), [&](const auto& screen) {
        return isOn(window.area, screen);
    });
    if (onlyReachedIn(note) && nearest != screens.end())
        return broughtIntoSight(window.area, window.frame, *nearest);
    if (isOn(window.area, note.monitorArea))
        note.there.normal = window.area;
    return placeBack(window.area, window.frame, note.home, screens);
}

void WindowKeeper::settle()
{
    const auto screens = mDesktop.screens();
    if (!mGuests.empty() && !screens.empty())
        bringIntoSight(screens);
    writeLastNotes(screens);
    mGuests.clear();
}

/// After the window manager had its own way.
void WindowKeeper::bringIntoSight(const std::vector<PixelRect>& screens)
{
    const auto isAtRest = [&](const DesktopWindow& window) {
        const auto& note = mGuests.at(window.id);
        return hasStayed(note) || (onlyReachedIn(note) && isOnAny(window.area, screens)) ||
               (note.home && note.home->area == window.area) || isInSight(window, screens);
    };
    Stretches guests;
    for (const auto& [window, note] : mGuests)
        guests[window] = note.there.stretch;
    waitFor(guests, isAtRest);
    Stretches lost;
    for (const auto& window : among(guests)) {
        if (!isAtRest(window))
            lost[window.id] = stretchElsewhere(mGuests.at(window.id));
    }
    moveAll(lost, [&](const auto& window) { return placeOfGuest(window, screens); });
}

/// Where the guests are now is where they must be found by a monitor that returns.
void WindowKeeper::writeLastNotes(const std::vector<PixelRect>& screens)
{
    for (const auto& window : mDesktop.windows()) {
        const auto guest = mGuests.find(window.id);
        if (guest == mGuests.end())
            continue;
        auto note = guest->second;
        note.isThere = false;
        // Where it was told to go, for a window manager that is slow.
        if (!note.home || !isOnAny(note.home->area, screens))
            note.home = WindowStand{window.area, PixelRect{}, note.there.stretch};
        mDesktop.writeNote(window.id, note);
    }
    mDesktop.finish();
}

/// Each to its place, then stretched as told.
void WindowKeeper::moveAll(const Stretches& windows, const Plan& plan)
{
    if (windows.empty())
        return;
    unstretch(windows);
    std::map<xcb_window_t, PixelRect> places;
    for (const auto& window : among(windows)) {
        places[window.id] = plan(window);
        mDesktop.move(window.id, places[window.id]);
    }
    waitFor(windows, [&](const auto& window) { return window.area == places[window.id]; });
    for (const auto& window : among(windows))
        mDesktop.stretch(window.id, windows.at(window.id), true);
    waitFor(windows, [&](const auto& window) { return window.stretch == windows.at(window.id); });
}

/// No window manager moves a window that is stretched.
void WindowKeeper::unstretch(const Stretches& windows)
{
    std::map<xcb_window_t, PixelRect> stretched;
    for (const auto& window : among(windows)) {
        mDesktop.stretch(window.id, window.stretch, false);
        if (window.stretch.isAny())
            stretched[window.id] = window.area;
    }
    // Some say that it is done before they do it.
    waitFor(windows, [&](const auto& window) {
        const auto before = stretched.find(window.id);
        return before == stretched.end() ||
               (!window.stretch.isAny() && window.area != before->second);
    });
}

/// Those that have not vanished.
std::vector<DesktopWindow> WindowKeeper::among(const Stretches& windows)
{
    auto found = mDesktop.windows();
    std::erase_if(found, [&](const auto& window) { return !windows.contains(window.id); });
    return found;
}

/// As long as a step may take.
void WindowKeeper::waitFor(const Stretches& windows, const Check& check)
{
    for (const auto end = Clock::now() + stepLimit; Clock::now() < end;) {
        const auto found = among(windows);
        if (std::all_of(found.begin(), found.end(), check))
            return;
        std::this_thread::sleep_for(milliseconds(5));
    }
}

} // namespace farview
