#pragma once

#include <thread>

/// Reads the computer's fonts on another thread, beside the rest of the start. The toolkit would
/// read them when the first label asks for its size, which takes a third of the time until the
/// window is on the screen; now they are there by then, or at least on their way.
class FontReader
{
public:
    /// Begins with the configuration, for which no application object is needed.
    FontReader();
    /// Waits until nothing is read any more.
    ~FontReader();
    FontReader(const FontReader&) = delete;
    FontReader& operator=(const FontReader&) = delete;

    /// Goes on with the toolkit's list of fonts and its usual font, for which there must be an
    /// application object; its end must wait for the result's. Called once.
    [[nodiscard]] std::jthread listFonts();

private:
    std::thread mConfiguration;
};
