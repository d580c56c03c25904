#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace farview
{

/// Row numbers from 0 on, as ranges.
class IndexSet
{
public:
    struct Range {
        std::int64_t location = 0;
        std::int64_t length = 0;

        bool operator==(const Range&) const = default;
    };

    IndexSet() = default;
    explicit IndexSet(std::int64_t index) : mRanges{{index, 1}} {}
    /// In ascending order, none empty, none touching another.
    explicit IndexSet(std::vector<Range> ranges) : mRanges(std::move(ranges)) {}

    bool isEmpty() const { return mRanges.empty(); }
    /// -1 when there is none.
    std::int64_t firstIndex() const { return isEmpty() ? -1 : mRanges.front().location; }
    const std::vector<Range>& ranges() const { return mRanges; }
    bool operator==(const IndexSet&) const = default;

private:
    std::vector<Range> mRanges;
};

} // namespace farview
