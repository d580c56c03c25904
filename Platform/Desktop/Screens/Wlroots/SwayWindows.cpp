#include "Platform/Desktop/Screens/Wlroots/SwayWindows.h"

#include <utility>

namespace farview
{

SwayWindows::SwayWindows(SwayConnection& sway, const std::string& monitorName, bool keeps)
    : mSway(sway), mNumber(swayMonitorNumber(monitorName)), mKeeps(keeps)
{
    look();
}

void SwayWindows::keep(bool flag)
{
    mKeeps = flag;
    look();
}

void SwayWindows::begin(const std::string& output)
{
    mOutput = output;
    mIsReturning = true;
    look();
}

void SwayWindows::look()
{
    mIsToLookAgain = mIsAsking;
    if (std::exchange(mIsAsking, true))
        return;
    mSway.askForTree([this, life = std::weak_ptr(mLife)](const QJsonDocument& answer) {
        if (life.expired())
            return;
        mIsAsking = false;
        use(swayTreeIn(answer));
        if (mIsToLookAgain)
            look();
    });
}

void SwayWindows::use(const SwayTree& tree)
{
    noteHomes(tree);
    if (!mOutput)
        return;
    if (std::exchange(mIsReturning, false) && mKeeps)
        run(broughtTo(tree, *mOutput, mNumber));
    else
        run(mKeeps ? notesFor(tree, *mOutput, mNumber, mHomes) : notesFor(tree, {}, mNumber, {}));
}

void SwayWindows::noteHomes(const SwayTree& tree)
{
    SwayHomes homes;
    for (const auto& window : tree.windows) {
        const auto known = mHomes.find(window.id);
        if (window.output != mOutput)
            homes[window.id] = window.stand;
        else if (known != mHomes.end())
            homes.insert(*known);
    }
    mHomes = std::move(homes);
}

void SwayWindows::run(const SwayCommands& commands)
{
    for (const auto& command : commands)
        mSway.run(command);
}

void takeWindowsBack(SwayConnection& sway, const std::string& output, std::function<void()> then)
{
    sway.askForTree([&sway, output, then = std::move(then)](const QJsonDocument& answer) {
        for (const auto& command : takenBack(swayTreeIn(answer), output))
            sway.run(command);
        then();
    });
}

} // namespace farview
