#pragma once

#include "Platform/Desktop/Screens/X11/RandrConnection.h"
#include "Platform/DisplayConfiguration.h"

#include <map>
#include <vector>

namespace farview
{

/// The outputs of an X server. A display is an output, and displays show the same when their parts
/// of the screen overlap; the main one is the primary output, or the first.
///
/// In a session of another kind, and where the server is gone or too old, everything fails with
/// `invalidConnection`. Each call asks the server anew and may wait for it as long as the limit. A
/// change lasts as long as the X server, whatever was asked for. Main thread only.
class RandrDisplays final : public DisplayConfiguration
{
public:
    static constexpr RandrConnection::Limit usualLimit = std::chrono::seconds(3);

    explicit RandrDisplays(RandrConnection::Limit limit = usualLimit) : mLimit(limit) {}

    Error onlineDisplayList(std::span<Display> displays, std::uint32_t& count) override;
    Error displayAliasList(Display display, std::span<Display> displays,
                           std::uint32_t& count) override;
    Display mainDisplay() override;
    Error beginConfiguration(Transaction& transaction) override;
    Error configureMirrorOfDisplay(Transaction transaction, Display display,
                                   Display master) override;
    Error completeConfiguration(Transaction transaction, std::uint32_t option) override;

private:
    struct Step {
        Display display;
        Display master;
    };
    struct Change {
        std::vector<Step> steps;
        Error error = success;
    };

    std::optional<RandrLayout> currentLayout() const;
    Error check(Display display, Display master) const;
    Error make(const std::vector<Step>& steps) const;
    static Error make(const std::vector<Step>& steps, RandrConnection& server);

    RandrConnection::Limit mLimit;
    std::map<Transaction, Change> mChanges;
    Transaction mNext = 1;
};

} // namespace farview
