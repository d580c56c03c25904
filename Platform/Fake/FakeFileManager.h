#pragma once

#include "Platform/FileManager.h"
#include "Platform/Types/Data.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// Files in memory: property lists, broken ones, and others of which only the name matters.
class FakeFileManager final : public FileManager
{
public:
    bool fileExistsAtPath(const std::string& path) override
    {
        return mLists.contains(path) || mData.contains(path) || mOthers.contains(path) ||
               mDirectories.contains(path);
    }

    bool createDirectoryAtPath(const std::string& path) override
    {
        if (mWritesFail)
            return mDirectories.contains(path);
        mDirectories.insert(path);
        return true;
    }

    std::optional<PropertyList> propertyListWithContentsOfFile(const std::string& path) override
    {
        const auto found = mLists.find(path);
        return found == mLists.end() ? std::nullopt : std::optional(found->second);
    }

    bool writePropertyList(const PropertyList& list, const std::string& path) override
    {
        if (mWritesFail)
            return false;
        if (mOthers.erase(path) + mData.erase(path) > 0)
            mSetAside.push_back(path);
        mWrites.push_back(path);
        mLists.insert_or_assign(path, list);
        return true;
    }

    bool writeData(std::span<const std::uint8_t> bytes, const std::string& path) override
    {
        if (mWritesFail)
            return false;
        mLists.erase(path);
        mOthers.erase(path);
        mWrites.push_back(path);
        mData.insert_or_assign(path, Data{{bytes.begin(), bytes.end()}});
        return true;
    }

    /// A file or folder of that path exists; it is no property list.
    void addFile(const std::string& path) { mOthers.insert(path); }
    /// As another process would write it; not counted.
    void putPropertyList(const std::string& path, PropertyList list)
    {
        mLists.insert_or_assign(path, std::move(list));
    }

    void removeFile(const std::string& path)
    {
        mLists.erase(path);
        mData.erase(path);
        mOthers.erase(path);
        mDirectories.erase(path);
    }

    /// While failing, nothing can be written or created.
    void setWritesFail(bool fail) { mWritesFail = fail; }

    /// What was written as bytes, by path.
    const std::map<std::string, Data>& data() const { return mData; }
    /// The paths written to, each time, in order.
    const std::vector<std::string>& writes() const { return mWrites; }
    /// Folders made through this interface, each once, without those above them.
    const std::set<std::string>& createdDirectories() const { return mDirectories; }
    /// Files that were no property list and were set aside by a write to their place.
    const std::vector<std::string>& setAside() const { return mSetAside; }

private:
    std::map<std::string, PropertyList> mLists;
    std::map<std::string, Data> mData;
    std::set<std::string> mOthers;
    std::set<std::string> mDirectories;
    std::vector<std::string> mWrites;
    std::vector<std::string> mSetAside;
    bool mWritesFail = false;
};

} // namespace farview
