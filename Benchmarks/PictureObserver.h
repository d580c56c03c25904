#pragma once

#include "Benchmarks/PictureProbe.h"
#include "Benchmarks/PictureRun.h"
#include "Benchmarks/PictureSystems.h"
#include "Tests/Support/TemporaryFolder.h"

#include <chrono>
#include <functional>
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

/// Shows scenes on one display, and looks how they arrive on another.
class PictureObserver
{
public:
    static constexpr std::uint32_t background = 0x336699;

    /// Of what arrives on that display. Throws when there is none.
    explicit PictureObserver(const std::string& display);

    /// Throws when the scene does not arrive.
    void observe(const RunningPictures& pictures, const std::string& scene, PictureRecord& record);
    /// How long it takes until an empty screen of the colour `background` is seen, in milliseconds.
    /// Throws when it is not.
    double waitForBackground();

private:
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
