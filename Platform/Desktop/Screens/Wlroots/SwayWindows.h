#pragma once

#include "Platform/Desktop/Screens/Wlroots/SwayConnection.h"
#include "Platform/Desktop/Screens/Wlroots/SwayPlacing.h"

#include <memory>
#include <optional>

namespace farview
{

/// Remembers where the windows on a monitor come from, and brings them to it when it returns. What
/// it knows is written on the windows, so that it outlives the process. Main thread only.
class SwayWindows
{
public:
    /// The connection must live longer. Begin it before the monitor comes.
    SwayWindows(SwayConnection& sway, const std::string& monitorName, bool keeps);

    void keep(bool flag);
    /// The monitor has come, as that output.
    void begin(const std::string& output);
    /// Windows may have come, gone or moved.
    void look();

private:
    void use(const SwayTree& tree);
    void noteHomes(const SwayTree& tree);
    void run(const SwayCommands& commands);

    SwayConnection& mSway;
    std::uint32_t mNumber;
    bool mKeeps;
    std::optional<std::string> mOutput; ///< once it has come
    bool mIsReturning = false;
    bool mIsAsking = false;
    bool mIsToLookAgain = false;
    SwayHomes mHomes;
    std::shared_ptr<void> mLife = std::make_shared<int>();
};

/// Takes the windows of an output back to where they came from, then calls `then`.
void takeWindowsBack(SwayConnection& sway, const std::string& output, std::function<void()> then);

} // namespace farview
