#include "Platform/Fake/FakeFileManager.h"

#include <utility>

namespace farview
{

bool FakeFileManager::fileExistsAtPath(const std::string& path)
{
    return mLists.contains(path) || mData.contains(path) || mOthers.contains(path) ||
           mDirectories.contains(path);
}

bool FakeFileManager::createDirectoryAtPath(const std::string& path)
{
    if (mWritesFail)
        return mDirectories.contains(path);
    mDirectories.insert(path);
    return true;
}

std::optional<PropertyList> FakeFileManager::propertyListWithContentsOfFile(const std::string& path)
{
    const auto found = mLists.find(path);
    return found == mLists.end() ? std::nullopt : std::optional(found->second);
}

bool FakeFileManager::writePropertyList(const PropertyList& list, const std::string& path)
{
    if (mWritesFail)
        return false;
    if (mOthers.erase(path) + mData.erase(path) > 0)
        mSetAside.push_back(path);
    mWrites.push_back(path);
    mLists.insert_or_assign(path, list);
    return true;
}

bool FakeFileManager::writeData(std::span<const std::uint8_t> bytes, const std::string& path)
{
    if (mWritesFail)
        return false;
    mLists.erase(path);
    mOthers.erase(path);
    mWrites.push_back(path);
    mData.insert_or_assign(path, Data{{bytes.begin(), bytes.end()}});
    return true;
}

void FakeFileManager::putPropertyList(const std::string& path, PropertyList list)
{
    mLists.insert_or_assign(path, std::move(list));
}

void FakeFileManager::removeFile(const std::string& path)
{
    mLists.erase(path);
    mData.erase(path);
    mOthers.erase(path);
    mDirectories.erase(path);
}

} // namespace farview
