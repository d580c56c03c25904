#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// A file's path or an address of the web, kept as its text.
class URL
{
public:
    URL() = default;

    /// An absolute path as an address. An empty path gives an address that leads nowhere.
    static URL fileURLWithPath(std::string path)
    {
        URL url;
        url.mIsFile = true;
        url.mText = std::move(path);
        return url;
    }

    /// An address with a scheme ("https://example.org/"), or nothing when there is no scheme.
    static std::optional<URL> URLWithString(std::string_view text)
    {
        const auto colon = text.find(':');
        if (colon == std::string_view::npos || colon == 0)
            return std::nullopt;
        constexpr std::string_view filePrefix = "file://";
        if (text.starts_with(filePrefix))
            return fileURLWithPath(std::string(text.substr(filePrefix.size())));
        URL url;
        url.mText = std::string(text);
        return url;
    }

    bool isFileURL() const { return mIsFile; }
    /// The path of a file address; empty for any other.
    std::string path() const { return mIsFile ? mText : std::string{}; }
    std::string absoluteString() const { return mIsFile ? "file://" + mText : mText; }
    bool operator==(const URL&) const = default;

private:
    std::string mText;
    bool mIsFile = false;
};

} // namespace farview
