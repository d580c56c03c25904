#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// A file's path or an address of the web, kept as its text. What an address cannot carry as it is
/// stands in it as "%20"; in a path it stands as it is.
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
            return fileURLWithPath(decoded(text.substr(filePrefix.size())));
        URL url;
        url.mText = std::string(text);
        return url;
    }

    bool isFileURL() const { return mIsFile; }
    /// The path of a file address; empty for any other.
    std::string path() const { return mIsFile ? mText : std::string{}; }
    std::string absoluteString() const { return mIsFile ? "file://" + encoded(mText) : mText; }
    bool operator==(const URL&) const = default;

private:
    static constexpr std::string_view digits = "0123456789ABCDEF";

    static std::string encoded(std::string_view path)
    {
        std::string text;
        for (const char each : path) {
            text += each;
            if (std::string_view(" \"#%<>?").find(each) == std::string_view::npos)
                continue;
            text.back() = '%';
            text += {digits[static_cast<unsigned char>(each) / 16],
                     digits[static_cast<unsigned char>(each) % 16]};
        }
        return text;
    }
    static std::string decoded(std::string_view text)
    {
        std::string path;
        for (; !text.empty(); text.remove_prefix(1)) {
            const auto high = text.size() > 2 ? valueOf(text[1]) : std::nullopt;
            const auto low = text.size() > 2 ? valueOf(text[2]) : std::nullopt;
            const bool isCode = text.front() == '%' && high && low && *high + *low > 0;
            path += isCode ? static_cast<char>(*high * 16 + *low) : text.front();
            text.remove_prefix(isCode ? 2 : 0);
        }
        return path;
    }
    static std::optional<unsigned> valueOf(char digit)
    {
        constexpr std::string_view bothCases = "0123456789ABCDEFabcdef";
        const auto place = bothCases.find(digit);
        if (place == std::string_view::npos)
            return std::nullopt;
        return static_cast<unsigned>(place < 16 ? place : place - 6);
    }

    std::string mText;
    bool mIsFile = false;
};

} // namespace farview
