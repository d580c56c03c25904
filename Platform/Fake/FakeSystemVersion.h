#pragma once

#include "Platform/SystemVersion.h"

#include <map>
#include <optional>

namespace farview
{

/// A platform level that tests set; it starts as 10.9.0.
class FakeSystemVersion final : public SystemVersion
{
public:
    FakeSystemVersion() { setVersion(10, 9, 0); }

    std::optional<std::int32_t> gestalt(SystemVersionQuery query) override
    {
        const auto found = mAnswers.find(query);
        return found == mAnswers.end() ? std::nullopt : found->second;
    }

    /// Answers all four queries, the packed one as decimal digits with at most 9 in its last two
    /// places.
    void setVersion(int major, int minor, int bugFix)
    {
        const auto digit = [](int number) { return number > 9 ? 9 : number; };
        mAnswers[SystemVersionQuery::packed] =
            (major / 10) << 12 | (major % 10) << 8 | digit(minor) << 4 | digit(bugFix);
        mAnswers[SystemVersionQuery::major] = major;
        mAnswers[SystemVersionQuery::minor] = minor;
        mAnswers[SystemVersionQuery::bugFix] = bugFix;
    }
    /// One query's answer; nothing: the platform does not answer it.
    void setAnswer(SystemVersionQuery query, std::optional<std::int32_t> answer)
    {
        mAnswers[query] = answer;
    }

private:
    std::map<SystemVersionQuery, std::optional<std::int32_t>> mAnswers;
};

} // namespace farview
