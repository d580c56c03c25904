#pragma once

#include "Tests/Support/TemporaryFolder.h"

#include <string>

/// A bundle that speaks two languages more, made from its English texts: "en-XA", accented and
/// longer by a third, and "ar-XB", written from right to left. So
/// a text that is cut, or a corner that was forgotten, is found before a translator meets it. The
/// bundle itself stays as it is: this one refers to its contents.
class PseudoLanguages
{
public:
    /// Throws when the bundle has no English catalogue.
    explicit PseudoLanguages(const std::string& bundle);

    const std::string& bundlePath() const { return mPath; }

    /// A text in those languages. What is filled in later, the mark of a shortcut, and blanks at
    /// its ends stay.
    static std::string accented(const std::string& text);
    static std::string fromRightToLeft(const std::string& text);

private:
    TemporaryFolder mFolder;
    std::string mPath = mFolder.path("Pseudo.prefPane");
};
