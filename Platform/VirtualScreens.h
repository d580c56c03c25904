#pragma once

#include "Platform/CursorSource.h"
#include "Platform/InputSink.h"
#include "Platform/ScreenSource.h"
#include "Platform/Types/ScreenObstacle.h"
#include "Platform/Types/ScreenWay.h"
#include "Platform/Types/WindowKeeping.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A way, or what is in its way.
struct ScreenAvailability {
    std::optional<ScreenWay> way;
    ScreenObstacle obstacle = ScreenObstacle::noDesktop; ///< where there is no way
};

/// The monitor that is wanted.
struct ScreenWish {
    /// What the user calls it; a desktop may show another name. A monitor that is opened again
    /// under it is the same one to the user.
    std::string name;
    int width = 0; ///< in pixels
    int height = 0;
    double scale = 1;         ///< how many pixels are one point; a desktop may know only 1
    bool input = false;       ///< whether input for it will be given, too
    bool keepsWindows = true; ///< as `setKeepsWindows`
};

/// The monitor as it is.
struct ScreenGeometry {
    /// What it shows of the desktop, in the desktop's own units.
    PixelRect area;
    int width = 0; ///< in pixels
    int height = 0;
    double scale = 1;
    double rate = 0; ///< frames per second; 0 when the desktop does not say
    /// All other screens, in the desktop's own units; the main one first, the user's own before
    /// other monitors of ours.
    std::vector<PixelRect> others = {};
    /// It is a screen of the user's own, which nothing that is asked here changes.
    bool isMirror = false;

    /// The upper left one of `area`.
    PixelPoint corner() const { return {area.x, area.y}; }
    bool operator==(const ScreenGeometry&) const = default;
};

/// Is told of one monitor. All on the main thread, on a later turn, never inside a call, and
/// nothing once the monitor's object is gone.
class VirtualScreenDelegate
{
public:
    virtual ~VirtualScreenDelegate() = default;

    /// The desktop is asking the user, who may take any time. Before `didAppear`.
    virtual void userIsAsked() {}
    /// Once, before everything else but `didEnd`.
    virtual void didAppear(const ScreenGeometry& geometry) = 0;
    /// It has another size, scale or place, whoever wanted that.
    virtual void didChange(const ScreenGeometry& geometry) = 0;
    /// There is a frame to take. Not told again until one was taken and released.
    virtual void frameReady() = 0;
    /// The pointer moved or looks different: there is something to ask the cursor source.
    virtual void cursorChanged() = 0;
    /// There is no such monitor, or none any more. Nothing follows.
    virtual void didEnd(ScreenObstacle reason) = 0;
};

/// A monitor that no plug has. The destructor removes it and leaves the user's own screens as they
/// were. Main thread only. What is asked of it is answered through the delegate; what the desktop
/// cannot do changes nothing.
class VirtualScreen
{
public:
    virtual ~VirtualScreen() = default;

    virtual void resize(int width, int height) = 0;
    virtual void setScale(double scale) = 0;
    /// Moves its upper left corner. Never moves a screen of the user.
    virtual void place(PixelPoint corner) = 0;
    /// Whether windows are taken back when the monitor goes, and to it when one of its name comes
    /// again. Counts where `windowKeeping` says that we do that.
    virtual void setKeepsWindows(bool flag) = 0;
    virtual WindowKeeping windowKeeping() const = 0;

    /// Live as long as the object.
    virtual ScreenSource& frames() = 0;
    virtual CursorSource& cursor() = 0;
    /// Passes nothing on before `didAppear`, nor without `ScreenWish::input`.
    virtual InputSink& input() = 0;
};

/// Makes monitors.
class VirtualScreens
{
public:
    using Answer = std::function<void(const ScreenAvailability&)>;
    using Delegate = std::weak_ptr<VirtualScreenDelegate>;

    virtual ~VirtualScreens() = default;

    /// Finds out what is possible now, without changing anything. The answer comes once: later, or
    /// before the operation returned; never when `target` is gone.
    virtual void availability(std::weak_ptr<void> target, Answer then) = 0;
    /// Begins to make a monitor; the delegate hears what becomes of it. Null where there is nobody
    /// to ask, which is `noDesktop`.
    virtual std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) = 0;
};

} // namespace farview
