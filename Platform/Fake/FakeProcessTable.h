#pragma once

#include "Platform/ProcessTable.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace farview
{

/// A process table that tests fill.
class FakeProcessTable final : public ProcessTable
{
public:
    int size(std::size_t& recordCount) override
    {
        ++mSizeCount;
        if (mSizeError != 0)
            return mSizeError;
        recordCount = mClaimedSize.value_or(mRecords.size());
        return 0;
    }

    int contents(std::span<ProcessRecord> records, std::size_t& recordCount) override
    {
        ++mContentsCount;
        if (const auto change = std::exchange(mBeforeContents, nullptr))
            change();
        if (!mContentsErrors.empty()) {
            const int error = mContentsErrors.front();
            mContentsErrors.pop_front();
            return error;
        }
        if (records.size() < mRecords.size())
            return ENOMEM;
        std::copy(mRecords.begin(), mRecords.end(), records.begin());
        recordCount = mRecords.size();
        return 0;
    }

    /// Adds a running process; its short name is the first 16 bytes of `name`.
    void add(std::int32_t pid, std::string_view name)
    {
        ProcessRecord record;
        record.pid = pid;
        const auto length = std::min(name.size(), record.shortName.size());
        std::copy_n(name.begin(), length, record.shortName.begin());
        mRecords.push_back(record);
    }

    void remove(std::int32_t pid)
    {
        std::erase_if(mRecords, [pid](const ProcessRecord& record) { return record.pid == pid; });
    }

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
