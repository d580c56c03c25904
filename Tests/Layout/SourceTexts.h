#pragma once

#include <string>
#include <vector>

/// A string literal of a source, neighbours joined and escapes resolved.
struct Literal {
    std::string before; ///< the end of the code in front of it, without blanks
    std::string text;
};

/// The literals of a C++ source; those in comments and raw strings are left out.
std::vector<Literal> literalsIn(const std::string& source);

/// What a form asks to be translated.
std::vector<std::string> textsOfAForm(const std::string& xml);

/// The places in a text that are filled in later, sorted: "%@", "%1", "%s".
std::vector<std::string> placesIn(const std::string& text);

/// How many letters of a text are marked as its shortcut; "&&" is a written "&".
std::size_t shortcutsIn(const std::string& text);

std::string wholeText(const std::string& pathInTheProject);
