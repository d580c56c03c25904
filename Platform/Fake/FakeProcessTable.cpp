#include "Platform/Fake/FakeProcessTable.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace farview
{

int FakeProcessTable::size(std::size_t& recordCount)
{
    ++mSizeCount;
    if (mSizeError != 0)
        return mSizeError;
    recordCount = mClaimedSize.value_or(mRecords.size());
    return 0;
}

int FakeProcessTable::contents(std::span<ProcessRecord> records, std::size_t& recordCount)
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

void FakeProcessTable::add(std::int32_t pid, std::string_view name)
{
    ProcessRecord record;
    record.pid = pid;
    const auto length = std::min(name.size(), record.shortName.size());
    std::copy_n(name.begin(), length, record.shortName.begin());
    mRecords.push_back(record);
}

void FakeProcessTable::remove(std::int32_t pid)
{
    std::erase_if(mRecords, [pid](const ProcessRecord& record) { return record.pid == pid; });
}

} // namespace farview
