#include "Common/FVELogging.h"

#include "Platform/Clock.h"
#include "Platform/FileManager.h"
#include "Platform/Log.h"
#include "Platform/Platform.h"
#include "Platform/SearchPaths.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <optional>
#include <random>
#include <span>

using farview::Platform;

namespace
{

struct EncodingNames {
    const char* name;
    const char* extension;
};

constexpr std::array<EncodingNames, 5> encodings = {{
    {"QLScreenEncodingLibz", "bits"},
    {"QLScreenEncodingCopyRect", "rect"},
    {"QLScreenEncodingMousePos", "mpos"},
    {"QLScreenEncodingMouseCursor", "cursor"},
    {"QLScreenEncodingJPG", "jpeg"},
}};
constexpr EncodingNames undefinedEncoding = {"Undefined encoding", "undefined"};

bool isLogging = false;
std::optional<std::string> loggingFolder;

const EncodingNames& namesOf(std::uint8_t encoding)
{
    return encoding < encodings.size() ? encodings[encoding] : undefinedEncoding;
}

std::string pair(const std::string& first, const std::string& second)
{
    return "{ " + first + ", " + second + " }";
}

std::string pair(int first, int second)
{
    return pair(std::to_string(first), std::to_string(second));
}

void logLine(const std::string& line)
{
    Platform::current().log->write(farview::LogLevel::info, line);
}

/// "2026-01-02 03:04:05 +0000"
std::string description(std::chrono::system_clock::time_point date)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const auto days = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day day(days);
    const std::chrono::hh_mm_ss time(seconds - days);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d +0000",
                  static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

/// A random one (version 4), in capitals.
std::string freshUUIDString()
{
    std::random_device random;
    std::array<std::uint32_t, 4> words = {random(), random(), random(), random()};
    words[1] = (words[1] & 0xFFFF0FFF) | 0x00004000;
    words[2] = (words[2] & 0x3FFFFFFF) | 0x80000000;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%08X-%04X-%04X-%04X-%04X%08X", words[0],
                  words[1] >> 16, words[1] & 0xFFFF, words[2] >> 16, words[2] & 0xFFFF, words[3]);
    return text.data();
}

std::string freshFolderPath()
{
    auto& platform = Platform::current();
    return platform.searchPaths->homeDirectory() + "/" + kFVELoggingFolderName + " (" +
           description(platform.clock->date()) + ")";
}

bool writeData(std::uint8_t encoding, farview::ByteView data)
{
    const auto name = freshUUIDString() + "." + NSStringExtensionFromEncoding(encoding);
    const bool isWritten =
        Platform::current().fileManager->writeData(data, loggingFolder.value_or("") + "/" + name);
    logLine("screenRectangle has buffer of size " + std::to_string(data.size()) + ", written to " +
            name);
    return isWritten;
}

} // namespace

void EnableLoggingScreenRectangleLogging()
{
    auto& files = *Platform::current().fileManager;
    const auto path = freshFolderPath();
    if (files.fileExistsAtPath(path) || files.createDirectoryAtPath(path))
        isLogging = true;
    else if (!isLogging)
        return;
    logLine("Logging screen packets to " + path);
    // Also when it could not be made: then nothing more goes to the earlier folder.
    loggingFolder = path;
}

bool IsEnableLoggingScreenRectangleLogging() { return isLogging; }

std::string NSStringFromEncoding(std::uint8_t encoding) { return namesOf(encoding).name; }

std::string NSStringExtensionFromEncoding(std::uint8_t encoding)
{
    return namesOf(encoding).extension;
}

std::string NSStringFromQLSimplePoint(const QLSimplePoint& point) { return pair(point.x, point.y); }

std::string NSStringFromQLSimpleRect(const QLSimpleRect& rect)
{
    return pair(pair(rect.x, rect.y), pair(rect.width, rect.height));
}

void NSLogScreenRectangle(const std::uint8_t* header, const std::uint8_t* data, std::int64_t length)
{
    const bool hasData = data && length > 0;
    farview::logScreenRectangle(
        header, {data, hasData ? static_cast<std::size_t>(length) : std::size_t{0}});
}

bool farview::logScreenRectangle(const std::uint8_t* header, ByteView data)
{
    if (!header || !isLogging)
        return false;
    ByteReader reader({header, kScreenPacketHeaderSize});
    const auto values = readScreenPacketHeader(reader);
    logLine("screenRectangle = " + NSStringFromQLSimpleRect(values.rectangle) +
            ", encoding: " + NSStringFromEncoding(values.encoding) +
            ", dataSize: " + std::to_string(static_cast<std::int32_t>(values.dataSize)));
    return data.empty() || writeData(values.encoding, data);
}
