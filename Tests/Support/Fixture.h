#pragma once

#include <fstream>
#include <iterator>
#include <string>

/// The text of a file in Tests/Fixtures; empty when there is none of that name. Needs
/// FARVIEW_SOURCE_DIR.
inline std::string fixtureText(const std::string& name)
{
    std::ifstream file(FARVIEW_SOURCE_DIR "/Tests/Fixtures/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
}
