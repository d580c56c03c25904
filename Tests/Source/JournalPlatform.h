#pragma once

#include "Platform/Fake/FakePlatform.h"

#include <string>
#include <vector>

/// What was done, one line each, in order.
class Journal
{
public:
    void add(std::string line) { mLines.push_back(std::move(line)); }
    void forget() { mLines.clear(); }
    const std::vector<std::string>& lines() const { return mLines; }

private:
    std::vector<std::string> mLines;
};

/// The services of a fake platform behind a journal: every call with an effect leaves a line, then
/// goes on to the fake.
class JournalPlatform
{
public:
    JournalPlatform(farview::FakePlatform& fake, Journal& journal);
    ~JournalPlatform();

    farview::Platform& platform() { return mPlatform; }
    /// The same for a bundle.
    std::shared_ptr<farview::Bundle> bundle(std::shared_ptr<farview::Bundle> inner);

private:
    struct Bodies;

    Journal& mJournal;
    std::unique_ptr<Bodies> mBodies;
    farview::Platform mPlatform;
};
