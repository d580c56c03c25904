#pragma once

#include <QAnimationDriver>
#include <QCoreApplication>

namespace farview::test
{

/// The clock of all animations of the process, in the test's hand as long as this lives.
class HandDrivenAnimations : public QAnimationDriver
{
public:
    HandDrivenAnimations() { install(); }
    ~HandDrivenAnimations() override { uninstall(); }

    qint64 elapsed() const override { return mElapsed; }
    /// That many milliseconds pass.
    void pass(int time)
    {
        // What was begun joins in after some turns.
        for (int turns = 0; turns < 3; ++turns)
            QCoreApplication::processEvents();
        mElapsed += time;
        advanceAnimation();
    }

private:
    qint64 mElapsed = 0;
};

} // namespace farview::test
