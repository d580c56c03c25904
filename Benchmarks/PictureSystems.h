#pragma once

#include "Tests/Support/ChildProcess.h"

#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// Programs by which one display is seen on another, as lines for the shell: $A is the display
/// that is shown and $B the one that shows it, $NOTE a file of their own.
struct PictureSystem {
    std::string name;
    std::vector<std::string> needs; ///< programs
    std::string listener;           ///< waits for a connection at that port ...
    int port = 0;
    std::string caller;  ///< ... of this one
    std::string display; ///< set before a program that draws on what is shown
    /// Those that send the pictures, as the kernel shortens their names.
    std::vector<std::string> servers;
};

inline constexpr const char* kFarview = "Farview";
/// The same without encryption, which no product offers: to know what that costs.
inline constexpr const char* kFarviewInClear = "Farview in clear";

/// Farview, of the programs in that folder.
PictureSystem farviewIn(const std::string& folder, const std::string& name = kFarview);
/// Farview is the first.
const std::vector<PictureSystem>& pictureSystems();

/// The names of programs that it needs and that are not installed.
std::string missingPrograms(const PictureSystem& system);

/// What the senders of pictures have used until now, and hold.
struct PictureCost {
    double processor = 0; ///< in seconds
    double wakeUps = 0;   ///< how often they waited for something
    double bytes = 0;     ///< that went through this computer's own network, by whomever
    double megabytes = 0; ///< of memory; what they share with others by its share
};

/// Both programs of a system, from display A to display B. Asks them to end with the object.
class RunningPictures
{
public:
    /// Starts the listener, and, once it listens, the caller. Throws when it does not.
    RunningPictures(const PictureSystem& system, const std::string& displayA,
                    const std::string& displayB);
    ~RunningPictures();
    RunningPictures(const RunningPictures&) = delete;
    RunningPictures& operator=(const RunningPictures&) = delete;

    /// Starts a program that draws on what is shown.
    std::unique_ptr<ChildProcess> startSource(const std::string& command) const;
    PictureCost cost() const;

private:
    std::vector<pid_t> servers() const;
    std::unique_ptr<ChildProcess> start(const std::string& line) const;

    const PictureSystem& mSystem;
    ChildProcess::Environment mEnvironment;
    std::unique_ptr<ChildProcess> mListener;
    std::unique_ptr<ChildProcess> mCaller;
};

} // namespace farview
