#pragma once

#include <QString>

#include <thread>

/// What the window needs and nothing of it depends on: done on another thread, beside the rest of
/// the start. Who comes to it before it is done waits for it; nothing fails here, and what is wrong
/// is told by whoever asks for it in earnest.
class HeadStart
{
public:
    /// Begins with what needs no application object: the configuration of the fonts, then the
    /// library of the pane in `bundlePath`.
    explicit HeadStart(const QString& bundlePath);
    /// Waits until nothing is under way any more.
    ~HeadStart();
    HeadStart(const HeadStart&) = delete;
    HeadStart& operator=(const HeadStart&) = delete;

    /// Goes on with what needs an application object, whose end must wait for the result's: the
    /// toolkit's list of fonts, its usual font, and its connection to the session bus. Called once.
    [[nodiscard]] std::jthread goOn();

private:
    std::thread mFirst;
};
