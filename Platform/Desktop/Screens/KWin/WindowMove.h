#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/RunLoop.h"
#include "Platform/Types/PixelRect.h"

#include <functional>
#include <memory>
#include <string>

namespace farview
{

/// The script that has KWin send all windows of the output in that corner of the desktop to the one
/// in the other, and then forget the script.
std::string windowMoveScript(PixelPoint from, PixelPoint to);

/// Has KWin move them, once. Made with `std::make_shared`. Main thread only; loop and bus must live
/// longer.
class WindowMove : public QObject, public std::enable_shared_from_this<WindowMove>
{
public:
    /// `then` is called on a later turn, when they are there, or KWin has not moved them within a
    /// second.
    WindowMove(RunLoop& loop, SessionBus& bus, std::function<void()> then);
    ~WindowMove() override;

    void begin(PixelPoint from, PixelPoint to);

private:
    void call(const char* member, const QVariantList& arguments,
              std::function<void(const QDBusMessage& reply)> then);
    void look();
    void conclude();

    RunLoop& mLoop;
    SessionBus& mBus;
    std::function<void()> mThen;
    std::string mFile; ///< with the script
};

} // namespace farview
