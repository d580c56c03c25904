#include "Applications/Doctor/ScreenTrial.h"

#include "Applications/Doctor/Probes.h"

#include <cmath>
#include <string_view>
#include <utility>

namespace farview
{
namespace
{

constexpr int width = 1024;
constexpr int height = 768;

constexpr Duration longestAnswer{5.0};
constexpr Duration longestStart{15.0};
/// The user reads what the desktop asks.
constexpr Duration longestQuestion{120.0};
constexpr Duration span{5.0};
/// So long the desktop has for taking it away, and we for putting back what it moved.
constexpr Duration afterwards{1.0};

constexpr Duration stepOfPointer{0.2};
constexpr int stepsOfPointer = 10;

std::string milliseconds(Duration duration)
{
    constexpr double thousand = 1000;
    return std::to_string(std::lround(duration.count() * thousand));
}

const char* yesOrNo(bool flag) { return flag ? "yes" : "no"; }

Finding finding(Severity severity, const char* name, Sentence text)
{
    return {Area::screen, severity, name, std::move(text)};
}

const char* nameOf(WindowKeeping windows)
{
    switch (windows) {
    case WindowKeeping::desktop:
        return "desktop";
    case WindowKeeping::byFarview:
        return "farview";
    case WindowKeeping::nobody:
        break;
    }
    return "nobody";
}

std::string described(const std::vector<PixelRect>& areas)
{
    std::string text;
    for (const auto& area : areas)
        text += (text.empty() ? "" : " ") + std::to_string(area.width) + "x" +
                std::to_string(area.height) + "+" + std::to_string(area.x) + "+" +
                std::to_string(area.y);
    return text;
}

Finding aboutScreen(const ScreenTrialFacts& facts)
{
    const auto& screen = *facts.geometry;
    auto found = finding(Severity::ok, "trial-appeared",
                         {"A screen of %@ × %@ pixels appeared after %@ ms.",
                          {std::to_string(screen.width), std::to_string(screen.height),
                           milliseconds(facts.appearedAfter)}});
    found.details = {{"milliseconds", milliseconds(facts.appearedAfter)},
                     {"area", described({screen.area})},
                     {"pixels", std::to_string(screen.width) + "x" + std::to_string(screen.height)},
                     {"scale", std::to_string(screen.scale)},
                     {"rate", std::to_string(screen.rate)},
                     {"others", described(screen.others)},
                     {"windows", nameOf(facts.windows)}};
    return found;
}

Finding aboutFrames(const ScreenTrialFacts& facts)
{
    if (facts.frames == 0)
        return finding(Severity::problem, "trial-no-picture",
                       {"The screen appeared, but no picture of it arrived."});
    auto found = finding(Severity::ok, "trial-pictures",
                         {"Pictures arrived: %@, the first after %@ ms.",
                          {std::to_string(facts.frames), milliseconds(facts.firstFrameAfter)}});
    found.details = {{"count", std::to_string(facts.frames)},
                     {"milliseconds", milliseconds(facts.firstFrameAfter)},
                     {"different", std::to_string(facts.differentFrames)},
                     {"one-colour", yesOrNo(facts.isOneColour)}};
    return found;
}

Finding aboutPointer(const ScreenTrialFacts& facts)
{
    if (facts.isPointerInFrames)
        return finding(Severity::ok, "trial-pointer-in-pictures",
                       {"The pointer is part of the pictures."});
    auto found = facts.hasPointerPlace
                     ? finding(Severity::ok, "trial-pointer", {"The pointer arrived, too."})
                     : finding(Severity::note, "trial-no-pointer",
                               {"The pointer was not seen on the screen."});
    found.details = {{"image", yesOrNo(facts.hasPointerImage)},
                     {"place", yesOrNo(facts.hasPointerPlace)}};
    return found;
}

Finding aboutInput(const InputAbilities& input)
{
    auto found = input.pointer ? finding(Severity::ok, "trial-input",
                                         {"The desktop takes input for the screen."})
                               : finding(Severity::note, "trial-no-input",
                                         {"The desktop takes no input for the screen."});
    found.details = {{"pointer", yesOrNo(input.pointer)},
                     {"touch", yesOrNo(input.touch)},
                     {"pen", yesOrNo(input.pen)},
                     {"keys", yesOrNo(input.keys)}};
    return found;
}

} // namespace

Findings findingsAboutTrial(const ScreenTrialFacts& facts)
{
    auto findings = findingsAboutScreen(facts.availability);
    if (!facts.availability || !facts.availability->way || facts.isBrokenOff)
        return findings;
    if (facts.geometry) {
        findings.push_back(aboutScreen(facts));
        findings.push_back(aboutFrames(facts));
        findings.push_back(aboutPointer(facts));
        findings.push_back(aboutInput(facts.input));
    } else if (!facts.end) {
        findings.push_back(finding(Severity::problem, "trial-none",
                                   {"No screen appeared, and the desktop did not say why."}));
    }
    if (facts.end)
        for (auto& each : findingsAboutScreen(ScreenAvailability{std::nullopt, *facts.end}))
            findings.push_back(std::move(each));
    return findings;
}

void ScreenTrial::start(std::function<void()> ended)
{
    mEnded = std::move(ended);
    mScreens.availability(weak_from_this(), [this](const auto& found) {
        if (mEnded && !std::exchange(mFacts.availability, found))
            open(found);
    });
    if (!mFacts.availability)
        stopAfter(longestAnswer);
}

void ScreenTrial::open(const ScreenAvailability& found)
{
    if (!found.way)
        return stop();
    const bool asksUser =
        *found.way == ScreenWay::portal || *found.way == ScreenWay::existingScreen;
    stopAfter(asksUser ? longestQuestion : longestStart);
    mSince = mLoop.now();
    mScreen = mScreens.open({.name = "Farview Trial",
                             .width = width,
                             .height = height,
                             .input = true,
                             .keepsWindows = false},
                            weak_from_this());
    if (!mScreen)
        didEnd(ScreenObstacle::noDesktop);
}

void ScreenTrial::stopAfter(Duration delay)
{
    if (const auto before = mEnding.lock())
        before->invalidate();
    mEnding = mLoop.scheduledTimer(delay, false, weak_from_this(), [this] { stop(); });
}

void ScreenTrial::breakOff()
{
    mFacts.isBrokenOff = true;
    stop();
}

void ScreenTrial::stop()
{
    if (mScreen)
        mFacts.isPointerInFrames = mScreen->cursor().isInFrames();
    mScreen.reset();
    if (const auto ended = std::exchange(mEnded, nullptr))
        mLoop.performAfterDelay(afterwards, weak_from_this(), ended);
}

void ScreenTrial::didAppear(const ScreenGeometry& geometry)
{
    mFacts.geometry = geometry;
    mFacts.appearedAfter = mLoop.now() - mSince;
    mSince = mLoop.now();
    mFacts.input = mScreen->input().abilities();
    mFacts.windows = mScreen->windowKeeping();
    stopAfter(span);
    movePointer(1);
}

void ScreenTrial::didChange(const ScreenGeometry& geometry) { mFacts.geometry = geometry; }

void ScreenTrial::movePointer(int step)
{
    if (!mScreen || step >= stepsOfPointer)
        return;
    const auto& monitor = *mFacts.geometry;
    const double part = static_cast<double>(step) / stepsOfPointer;
    mScreen->input().movePointer({.x = part * monitor.width,
                                  .y = part * monitor.height,
                                  .desktopX = monitor.area.x + part * monitor.area.width,
                                  .desktopY = monitor.area.y + part * monitor.area.height});
    mLoop.performAfterDelay(stepOfPointer, weak_from_this(),
                            [this, step] { movePointer(step + 1); });
}

void ScreenTrial::frameReady()
{
    const auto frame = mScreen ? mScreen->frames().takeFrame() : std::nullopt;
    if (!frame)
        return;
    if (mFacts.frames++ == 0)
        mFacts.firstFrameAfter = mLoop.now() - mSince;
    use(frame->view);
}

void ScreenTrial::use(const FrameView& frame)
{
    constexpr std::uint32_t colours = 0x00FFFFFF;
    const std::uint32_t first = frame.row(0)[0] & colours;
    std::size_t all = 0;
    for (int y = 0; y < frame.height; ++y) {
        const auto* row = frame.row(y);
        const auto bytes = static_cast<std::size_t>(frame.width) * sizeof *row;
        all = all * 31 + std::hash<std::string_view>()({reinterpret_cast<const char*>(row), bytes});
        for (int x = 0; x < frame.width && mFacts.isOneColour; ++x)
            mFacts.isOneColour = (row[x] & colours) == first;
    }
    if (std::exchange(mLastFrame, all) != all && mFacts.frames > 1)
        ++mFacts.differentFrames;
}

void ScreenTrial::cursorChanged()
{
    if (!mScreen)
        return;
    auto& cursor = mScreen->cursor();
    const auto image = cursor.takeImage();
    mFacts.hasPointerImage = mFacts.hasPointerImage || (image && image->width > 0);
    mFacts.hasPointerPlace = mFacts.hasPointerPlace || cursor.position().has_value();
}

void ScreenTrial::didEnd(ScreenObstacle reason)
{
    mFacts.end = reason;
    stop();
}

} // namespace farview
