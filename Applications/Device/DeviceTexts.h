#pragma once

#include <QString>

#include <map>
#include <string>
#include <vector>

namespace farview
{

/// What the device's window says, in the user's language. The catalogues are part of the program:
/// it runs on computers where nothing else of Farview is.
class DeviceTexts
{
public:
    /// `languages` are names of catalogues, the preferred one first.
    explicit DeviceTexts(const std::vector<std::string>& languages);

    /// The text for an English one, or that one itself; with `values` in the places of its "%@".
    QString text(const std::string& english, const std::vector<std::string>& values = {}) const;

private:
    std::map<std::string, std::string> mTexts;
};

} // namespace farview
