#include "Platform/Posix/StandardErrorLog.h"

#include "Platform/Posix/UTF8.h"

#include <csignal>
#include <ctime>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace farview
{
namespace
{

constexpr std::size_t longestMessage = 2000;

const char* nameOf(LogLevel level)
{
    switch (level) {
    case LogLevel::debug:
        return "debug";
    case LogLevel::info:
        return "info";
    case LogLevel::warning:
        return "warning";
    case LogLevel::error:
        return "error";
    }
    return "?";
}

struct Range {
    char32_t first;
    char32_t last;
};

/// Control characters, and those that reorder or hide the text around them.
constexpr std::array<Range, 9> invisible = {{{0x00, 0x1F},
                                             {0x7F, 0x9F},
                                             {0xAD, 0xAD},
                                             {0x061C, 0x061C},
                                             {0x200B, 0x200F},
                                             {0x2028, 0x202E},
                                             {0x2060, 0x206F},
                                             {0xFEFF, 0xFEFF},
                                             {0xE0000, 0xE007F}}};

bool isVisible(char32_t character)
{
    for (const auto& range : invisible) {
        if (character >= range.first && character <= range.last)
            return false;
    }
    return true;
}

std::string spelledOut(unsigned value, bool isCharacter)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), isCharacter ? "\\u{%X}" : "\\x%02X", value);
    return text.data();
}

std::string shown(std::string_view bytes, const DecodedCharacter& character)
{
    if (!character.value)
        return spelledOut(static_cast<unsigned char>(bytes.front()), false);
    if (*character.value == '\n')
        return "\\n";
    if (!isVisible(*character.value))
        return spelledOut(*character.value, *character.value > 0x7F);
    return std::string(bytes.substr(0, character.length));
}

std::string timeStamp()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    ::gmtime_r(&now.tv_sec, &parts);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03ldZ",
                  parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                  parts.tm_min, parts.tm_sec, now.tv_nsec / 1000000);
    return text.data();
}

/// Holds SIGPIPE back and takes it away, so that a reader that closed its end does not end us.
class WithoutBrokenPipeSignal
{
public:
    WithoutBrokenPipeSignal()
    {
        ::sigemptyset(&mPipe);
        ::sigaddset(&mPipe, SIGPIPE);
        sigset_t waiting;
        ::sigpending(&waiting);
        mWasWaiting = ::sigismember(&waiting, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &mPipe, &mBefore);
    }
    ~WithoutBrokenPipeSignal()
    {
        const timespec atOnce{};
        if (!mWasWaiting)
            ::sigtimedwait(&mPipe, nullptr, &atOnce);
        ::pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
    }
    WithoutBrokenPipeSignal(const WithoutBrokenPipeSignal&) = delete;
    WithoutBrokenPipeSignal& operator=(const WithoutBrokenPipeSignal&) = delete;

private:
    sigset_t mPipe{};
    sigset_t mBefore{};
    bool mWasWaiting = false;
};

bool canTakeALine(int descriptor)
{
    pollfd reader{descriptor, POLLOUT, 0};
    return ::poll(&reader, 1, 0) == 1 && (reader.revents & POLLOUT) != 0;
}

} // namespace

std::string printableText(std::string_view text, std::size_t limit)
{
    constexpr std::string_view cut = "\u2026";
    std::string output;
    std::size_t lastPlaceToCut = 0;
    while (!text.empty()) {
        const auto character = decodeCharacter(text);
        output += shown(text, character);
        text.remove_prefix(character.length);
        if (output.size() > limit)
            return output.replace(lastPlaceToCut, std::string::npos, cut);
        if (output.size() + cut.size() <= limit)
            lastPlaceToCut = output.size();
    }
    return output;
}

StandardErrorLog::StandardErrorLog(const std::string& program, int descriptor)
    : mProgram(printableText(program, 64)), mDescriptor(descriptor)
{
}

void StandardErrorLog::write(LogLevel level, std::string_view message)
{
    const auto line = timeStamp() + " " + mProgram + "[" + std::to_string(::getpid()) + "] " +
                      nameOf(level) + ": " + printableText(message, longestMessage) + "\n";
    if (!canTakeALine(mDescriptor))
        return;
    const WithoutBrokenPipeSignal guard;
    // One call, so that lines of several programs do not mix; what cannot be logged is lost.
    [[maybe_unused]] const auto count = ::write(mDescriptor, line.data(), line.size());
}

} // namespace farview
