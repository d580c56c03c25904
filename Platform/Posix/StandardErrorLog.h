#pragma once

#include "Platform/Log.h"

#include <string>
#include <string_view>

namespace farview
{

/// One line per message on standard error, where the journal of a session picks it up:
/// "2026-03-01T12:00:00.123Z program[pid] level: message".
///
/// Control characters, text-direction marks and broken bytes are shown as "\xNN" or "\u{NNNN}", so
/// a message is one harmless line whatever it holds. A message is cut at 2000 bytes. When nobody
/// reads, the line is lost; the program neither waits nor ends.
class StandardErrorLog final : public Log
{
public:
    explicit StandardErrorLog(const std::string& program) : StandardErrorLog(program, 2) {}
    /// Writes to that descriptor, which it does not own.
    StandardErrorLog(const std::string& program, int descriptor);

    void write(LogLevel level, std::string_view message) override;

private:
    std::string mProgram;
    int mDescriptor;
};

/// The text with everything that is no visible character spelled out, at most `limit` bytes.
std::string printableText(std::string_view text, std::size_t limit);

} // namespace farview
