#pragma once

#include "Benchmarks/PictureProbe.h"
#include "Benchmarks/PictureRun.h"
#include "Benchmarks/PictureSystems.h"
#include "Tests/Support/TemporaryFolder.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// One system in one scene: the delay of every picture, and a value for each round.
struct PictureRecord {
    using Samples = std::vector<double>;

    Samples delays{};         ///< in milliseconds
    Samples timePerPicture{}; ///< in milliseconds
    Samples exactAfter{};     ///< milliseconds of stillness; nothing for a round without
    Samples megabits{};       ///< a second
    Samples processor{};      ///< percent of one
    Samples wakeUps{};        ///< a second
    Samples megabytes{};
};

/// How long a touch took, each in milliseconds.
struct TouchRecord {
    PictureRecord::Samples all{};     ///< from the finger to the changed pixel, both on one glass
    PictureRecord::Samples picture{}; ///< from the program's drawing to that pixel
};

/// Shows scenes on one display, and looks how they arrive on another.
class PictureObserver
{
public:
    static constexpr std::uint32_t background = 0x336699;

    /// Of what arrives on that display. Throws when there is none.
    explicit PictureObserver(const std::string& display);

    /// Throws when the scene does not arrive.
    void observe(const RunningPictures& pictures, const std::string& scene, PictureRecord& record);
    /// Touches what is seen, so many times; `touch` puts a finger down, or lifts it. Throws when a
    /// touch changes nothing.
    void observeTouches(const RunningPictures& pictures, int count,
                        const std::function<void(bool isDown)>& touch, TouchRecord& record);
    /// How long it takes until an empty screen of the colour `background` is seen, in milliseconds.
    /// Throws when it is not.
    double waitForBackground();

private:
    /// Goes on when the scene has begun, and its first picture is seen.
    std::unique_ptr<ChildProcess> show(const RunningPictures& pictures, const std::string& scene);
    bool waitFor(const std::function<bool()>& isThere, std::chrono::milliseconds limit,
                 std::chrono::milliseconds pause = std::chrono::milliseconds(5));
    void collectDelays(PictureRecord::Samples& delays);
    void collect(const RunningPictures& pictures, PictureRecord& record);
    void waitForExactness(PictureRecord::Samples& exactAfter);
    bool showsLastPicture();

    TemporaryFolder mFolder;
    PictureRun* mRun;
    PictureProbe mProbe;
};

} // namespace farview
