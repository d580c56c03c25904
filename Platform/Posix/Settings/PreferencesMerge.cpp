#include "Platform/Posix/Settings/PreferencesMerge.h"

#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Platform/Posix/PropertyLists/PropertyListWriter.h"
#include "Platform/Posix/Settings/FileReplacement.h"
#include "Platform/Posix/Settings/LockFile.h"

#include <cerrno>

namespace farview
{
namespace
{

using Status = PreferencesMergeResult::Status;

PreferencesMergeResult failure(std::string reason)
{
    return {Status::failed, std::move(reason), {}, {}};
}

/// One change of one file, while its lock is held.
class Merge
{
public:
    Merge(const PreferencesLocation& location, const PreferencesChanges& changes)
        : mLocation(location), mChanges(changes), mTarget(resolvedLink(location.path))
    {
    }

    PreferencesMergeResult run();

private:
    void apply();
    void refuseWhatCannotBeWritten();
    PreferencesMergeResult replace(const std::string& bytes);

    const PreferencesLocation& mLocation;
    const PreferencesChanges& mChanges;
    std::string mTarget;
    PropertyListFile mStored;
    PropertyList::Dictionary mDictionary;
    PreferencesMergeResult mResult;
};

void Merge::apply()
{
    mDictionary =
        mStored.list ? *mStored.list->get<PropertyList::Dictionary>() : PropertyList::Dictionary{};
    for (const auto& [key, value] : mChanges) {
        if (mResult.refused.contains(key))
            continue;
        if (value)
            mDictionary.insert_or_assign(key, *value);
        else
            mDictionary.erase(key);
    }
}

/// One such value must not keep all others from the disk.
void Merge::refuseWhatCannotBeWritten()
{
    for (const auto& [key, value] : mChanges) {
        if (value && !PropertyListWriter::write(PropertyList::Dictionary{{key, *value}}).bytes)
            mResult.refused.insert(key);
    }
}

PreferencesMergeResult Merge::run()
{
    mStored = readDictionaryFile(mLocation.path);
    // A file that is still open when it is replaced costs the file system twice the work.
    mStored.file.descriptor = FileDescriptor();
    if (mTarget.empty() || mStored.status == PropertyListFile::Status::unreadable)
        return failure(mTarget.empty() ? "links in a circle" : mStored.reason);
    apply();
    auto written = PropertyListWriter::write(mDictionary);
    if (!written.bytes) {
        mResult.reason = written.reason;
        refuseWhatCannotBeWritten();
        apply();
        written = PropertyListWriter::write(mDictionary);
    }
    if (!written.bytes)
        return failure(written.reason);
    mResult.status = Status::done;
    const bool isUnchanged =
        mStored.list ? *mStored.list == PropertyList(mDictionary)
                     : mStored.status == PropertyListFile::Status::missing && mDictionary.empty();
    return isUnchanged ? mResult : replace(*written.bytes);
}

PreferencesMergeResult Merge::replace(const std::string& bytes)
{
    FileReplacement replacement(mTarget);
    if (const int error = replacement.write(bytes, mLocation.fileMode))
        return failure(errorText(error));
    if (mStored.status == PropertyListFile::Status::broken) {
        if (const int error = setAsideFile(mTarget, mResult.setAside))
            return failure("the broken file cannot be set aside: " + errorText(error));
    }
    if (const int error = replacement.commit())
        return failure(errorText(error));
    return mResult;
}

} // namespace

PreferencesMergeResult mergeIntoPreferences(const PreferencesLocation& location,
                                            const PreferencesChanges& changes,
                                            std::chrono::milliseconds patience)
{
    if (location.path.empty())
        return failure("no file can bear that name");
    if (const int error = makeFolders(parentFolder(location.path), location.folderMode))
        return failure(errorText(error));
    LockFile lock;
    if (const int error = lock.acquire(location.path + ".lock", patience)) {
        const auto status = error == EWOULDBLOCK ? Status::locked : Status::failed;
        return {status, errorText(error), {}, {}};
    }
    return Merge(location, changes).run();
}

} // namespace farview
