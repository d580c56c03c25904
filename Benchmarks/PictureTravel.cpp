// How fast a picture goes from one display to another, and what that costs its sender: Farview and
// programs that do the same, in turn. DISPLAY is where it arrives: 1920x1080, and nothing else on
// it. Needs a network and a session bus of its own.
//
// usage: picture-travel [ROUNDS [SYSTEM...]]        (a system is one of PictureSystems.cpp)

#include "Benchmarks/Figures.h"
#include "Benchmarks/PictureObserver.h"
#include "Benchmarks/PictureSystems.h"
#include "Benchmarks/PictureUsers.h"
#include "Benchmarks/ShapedLink.h"
#include "Tests/Support/PrivateXServer.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <stdexcept>

namespace
{

using namespace farview;

const std::vector<std::string> scenes{"typing", "scrolling", "film", "nothing"};

using Records = std::map<std::string, PictureRecord>; ///< by scene

std::string exactness(const PictureRecord& record)
{
    if (record.exactAfter.size() < record.timePerPicture.size())
        return "not exact";
    return "exact after " + std::to_string(std::lround(median(record.exactAfter))) + " ms";
}

void print(const std::string& name, const PictureRecord& record)
{
    std::printf("  %-17s", name.c_str());
    if (!record.delays.empty())
        std::printf("%4.3g ms, 99 %% %4.3g ms, %4.3g pictures a second, %s; ",
                    median(record.delays), quantile(record.delays, 0.99),
                    1000 / median(record.timePerPicture), exactness(record).c_str());
    std::printf("%.3g Mbit/s; server %.3g %%, %.3g wake-ups a second, %.3g MB\n",
                median(record.megabits), median(record.processor), median(record.wakeUps),
                median(record.megabytes));
}

class Measurement
{
public:
    explicit Measurement(std::string viewer) : mViewer(std::move(viewer))
    {
        setBackground(mSource.display(), PictureObserver::background);
    }

    /// False, and nothing is left of it, when it cannot be measured here; says why.
    bool measure(const PictureSystem& system)
    {
        return attempt(system.name, [&] {
            if (const auto missing = missingPrograms(system); !missing.empty())
                throw std::runtime_error("not installed:" + missing);
            const RunningPictures pictures(system, mSource.display(), mViewer);
            if (system.name.starts_with(kFarview))
                mStarts[system.name].push_back(pick("127.0.0.1"));
            for (const auto& scene : scenes)
                mObserver.observe(pictures, scene, mRecords[system.name][scene]);
        });
    }
    void measureBadLink()
    {
        attempt("the bad link", [this] {
            const auto link = carryShapedLink();
            const RunningPictures pictures(pictureSystems().front(), mSource.display(), mViewer);
            pick(kShapedAddress);
            for (const auto* scene : {"typing", "scrolling", "film"}) {
                PictureRecord record;
                mObserver.observe(pictures, scene, record);
                print(scene, record);
                printAtMost(std::string(scene) + " over a bad link, delay of 99 %",
                            quantile(record.delays, 0.99), 150, "ms");
            }
        });
    }

    const std::map<std::string, Records>& records() const { return mRecords; }
    /// By system: from the user's choice to the first picture, in milliseconds.
    const std::map<std::string, PictureRecord::Samples>& starts() const { return mStarts; }

private:
    bool attempt(const std::string& name, const std::function<void()>& action)
    {
        try {
            action();
            return true;
        } catch (const std::exception& error) {
            std::printf("  %s is left out: %s\n", name.c_str(), error.what());
            mRecords.erase(name);
            return false;
        }
    }
    /// From the user's choice to the first picture, in milliseconds.
    double pick(const std::string& address)
    {
        chooseDevice(mPanel, address);
        return mObserver.waitForBackground();
    }

    std::string mViewer;
    PrivateXServer mSource;
    PictureObserver mObserver{mViewer};
    TestPanel mPanel;
    std::map<std::string, PictureRecord::Samples> mStarts;
    std::map<std::string, Records> mRecords;
};

using Kind = PictureRecord::Samples PictureRecord::*;

struct Target {
    const char* scene;
    const char* what;
    Kind kind;
    double share; ///< of the samples that have to hold it
    double limit;
    const char* unit;
};
const Target targets[] = {
    {"typing", "delay", &PictureRecord::delays, 0.5, 2, "ms"},
    {"typing", "delay of 99 %", &PictureRecord::delays, 0.99, 10, "ms"},
    {"scrolling", "delay", &PictureRecord::delays, 0.5, 20, "ms"},
    {"scrolling", "time for a picture", &PictureRecord::timePerPicture, 0.5, 1000.0 / 58, "ms"},
    {"scrolling", "on the wire", &PictureRecord::megabits, 0.5, 20, "Mbit/s"},
    {"scrolling", "exact after", &PictureRecord::exactAfter, 0.5, 300, "ms"},
    {"film", "delay", &PictureRecord::delays, 0.5, 45, "ms"},
    {"film", "time for a picture", &PictureRecord::timePerPicture, 0.5, 1000.0 / 50, "ms"},
    {"film", "on the wire", &PictureRecord::megabits, 0.5, 150, "Mbit/s"},
    {"film", "exact after", &PictureRecord::exactAfter, 0.5, 300, "ms"},
    {"film", "memory", &PictureRecord::megabytes, 0.5, 60, "MB"},
    {"nothing", "processor", &PictureRecord::processor, 0.5, 0.2, "%"},
    // A sign of life each way.
    {"nothing", "wake-ups", &PictureRecord::wakeUps, 0.5, 3, "a second"},
};

/// The best of the peers has the smallest median, of whichever kind it is.
void printAgainstPeers(const std::map<std::string, Records>& records, const std::string& scene,
                       const char* what, Kind kind)
{
    Comparison result{scene + ", " + what, "", "ms", records.at(kFarview).at(scene).*kind};
    for (const auto& [name, byScene] : records) {
        const auto& samples = byScene.at(scene).*kind;
        const bool isBetter = result.yardstick.empty() ||
                              (!samples.empty() && median(samples) < median(result.yardstick));
        if (!name.starts_with(kFarview) && isBetter) {
            result.yardstickName = name;
            result.yardstick = samples;
        }
    }
    if (!result.yardstick.empty() && !result.subject.empty())
        printRatio(result, 1);
}

void printVerdicts(const std::map<std::string, Records>& records)
{
    const auto& ours = records.at(kFarview);
    for (const auto& target : targets) {
        const auto what = std::string(target.scene) + ", " + target.what;
        const auto& samples = ours.at(target.scene).*target.kind;
        if (samples.empty())
            std::printf("%s: never: MISSED\n", what.c_str());
        else
            printAtMost(what, quantile(samples, target.share), target.limit, target.unit);
    }
    for (const auto* scene : {"typing", "scrolling", "film"})
        printAgainstPeers(records, scene, "delay", &PictureRecord::delays);
    for (const auto* scene : {"scrolling", "film"})
        printAgainstPeers(records, scene, "time for a picture", &PictureRecord::timePerPicture);
}

/// What 20 MB a second over the link cost a processor, in percent: those of host and device
/// together, as `link-load` prints them.
double linkLoad(const std::string& folder)
{
    const std::unique_ptr<FILE, decltype(&pclose)> output(
        popen((folder + "/link-load").c_str(), "r"), pclose);
    double first = 0;
    double second = 0;
    if (!output || std::fscanf(output.get(), "%lf %lf", &first, &second) != 2)
        throw std::runtime_error("link-load says nothing");
    return first + second;
}

/// Pictures change with the time that they have: this is the link alone, at one rate.
void printLoadOfEncryption(int rounds)
{
    PictureRecord::Samples more;
    for (int round = 0; round < rounds; ++round)
        more.push_back(linkLoad(FARVIEW_BENCHMARKS_DIR) -
                       linkLoad(FARVIEW_BENCHMARKS_DIR "/in-clear"));
    printAtMost("encryption, processor of both sides at 20 MB/s", median(more), 6, "%");
}

void printCostOfEncryption(const Measurement& measurement)
{
    if (!measurement.records().contains(kFarviewInClear))
        return;
    const auto start = [&](const char* name) { return median(measurement.starts().at(name)); };
    const auto delay = [&](const char* name) {
        return median(measurement.records().at(name).at("typing").delays);
    };
    printAtMost("encryption, pick to first picture", start(kFarview) - start(kFarviewInClear), 25,
                "ms");
    printAtMost("encryption, delay of typing", delay(kFarview) - delay(kFarviewInClear), 0.5, "ms");
    printLoadOfEncryption(3);
}

/// Leaves those out that cannot be measured. Whether Farview could.
bool measureAll(Measurement& measurement, int rounds, std::vector<PictureSystem> systems)
{
    for (int round = 0; round < rounds; ++round)
        std::erase_if(systems, [&](const auto& system) { return !measurement.measure(system); });
    for (const auto& scene : scenes) {
        std::printf(" %s\n", scene.c_str());
        for (const auto& system : systems)
            print(system.name, measurement.records().at(system.name).at(scene));
    }
    return !systems.empty() && systems.front().name == kFarview;
}

} // namespace

int main(int argc, char** argv)
{
    const char* viewer = std::getenv("DISPLAY");
    if (!viewer) {
        std::fprintf(stderr, "%s: there is no DISPLAY to show pictures on\n", argv[0]);
        return 2;
    }
    QCoreApplication application(argc, argv);
    auto systems = pictureSystems();
    if (argc > 2)
        std::erase_if(systems, [&](const auto& system) {
            return std::find(argv + 2, argv + argc, system.name) == argv + argc;
        });
    pairBothPrograms();
    Measurement measurement(viewer);
    if (!measureAll(measurement, argc > 1 ? std::atoi(argv[1]) : 3, systems))
        return 1;
    printVerdicts(measurement.records());
    printAtMost("pick to first picture", median(measurement.starts().at(kFarview)), 500, "ms");
    printCostOfEncryption(measurement);
    measurement.measureBadLink();
    return 0;
}
