#pragma once

#include "Platform/DisplayConfiguration.h"

#include <map>
#include <string>
#include <vector>

namespace farview
{

/// Displays that tests set up. Displays with the same place show the same.
class FakeDisplayConfiguration final : public DisplayConfiguration
{
public:
    struct Shown {
        Display display = 0;
        int place = 0;
    };

    Error onlineDisplayList(std::span<Display> displays, std::uint32_t& count) override;
    Error displayAliasList(Display display, std::span<Display> displays,
                           std::uint32_t& count) override;
    Display mainDisplay() override;
    Error beginConfiguration(Transaction& transaction) override;
    Error configureMirrorOfDisplay(Transaction transaction, Display display,
                                   Display master) override;
    Error completeConfiguration(Transaction transaction, std::uint32_t option) override;

    /// The first one is the main display.
    void setDisplays(std::vector<Shown> displays) { mDisplays = std::move(displays); }
    /// The next calls of that name ("begin", "list", "aliases", "configure", "complete") give that
    /// error.
    void setError(const std::string& call, Error error) { mErrors[call] = error; }
    /// What was called with what, in order: "configure 1 5 0".
    const std::vector<std::string>& calls() const { return mCalls; }

private:
    struct Step {
        Display display;
        Display master;
    };
    struct Change {
        std::vector<Step> steps;
        Error error = success;
    };

    Error note(const std::string& call, std::vector<std::uint32_t> arguments);
    Shown* find(Display display);
    void apply(const Step& step);
    int freePlace() const;

    std::vector<Shown> mDisplays;
    std::map<Transaction, Change> mChanges;
    Transaction mNext = 1;
    std::map<std::string, Error> mErrors;
    std::vector<std::string> mCalls;
};

} // namespace farview
