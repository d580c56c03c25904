#pragma once

#include "Platform/ProcessTable.h"

#include <deque>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace farview
{

/// A process table that tests fill.
class FakeProcessTable final : public ProcessTable
{
public:
    int size(std::size_t& recordCount) override;
    int contents(std::span<ProcessRecord> records, std::size_t& recordCount) override;

    /// Adds a running process; its short name is the first 16 bytes of `name`.
    void add(std::int32_t pid, std::string_view name);
    void remove(std::int32_t pid);
    void clear() { mRecords.clear(); }

    /// From now on the size query fails with this errno; 0 ends that.
    void setSizeError(int error) { mSizeError = error; }
    /// The next reads fail with these, one each.
    void setContentsErrors(std::deque<int> errors) { mContentsErrors = std::move(errors); }
    /// What the size query claims instead of the truth.
    void setClaimedSize(std::optional<std::size_t> size) { mClaimedSize = size; }
    /// Called between the next size query and its read, once: the table changes meanwhile.
    void setBeforeContents(std::function<void()> change) { mBeforeContents = std::move(change); }

    int sizeCount() const { return mSizeCount; }
    int contentsCount() const { return mContentsCount; }

private:
    std::vector<ProcessRecord> mRecords;
    std::deque<int> mContentsErrors;
    std::optional<std::size_t> mClaimedSize;
    std::function<void()> mBeforeContents;
    int mSizeError = 0;
    int mSizeCount = 0;
    int mContentsCount = 0;
};

} // namespace farview
