#include "Platform/Posix/Settings/PreferencesSnapshot.h"

#include <ctime>

namespace farview
{
namespace
{

/// File times advance in steps of some milliseconds. A file that was changed less than this before
/// it was read may change again without a sign.
constexpr double longestStep = 0.05;

double seconds(const timespec& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

bool isOlderThanAStep(const FileIdentity& identity)
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const double age = seconds(now) - seconds(identity.changed);
    // A clock that was set back makes files of the future; those cannot be judged either.
    return age > longestStep;
}

} // namespace

PreferencesSnapshot::PreferencesSnapshot(std::string path) : mPath(std::move(path)) {}

bool PreferencesSnapshot::isCurrent() const
{
    if (!mIsLoaded)
        return false;
    const auto now = FileIdentity::at(mPath);
    if (!mFile.file.descriptor.isOpen())
        return !now && mFile.status == PropertyListFile::Status::missing;
    return now && mIsSettled && *now == mFile.file.identity;
}

void PreferencesSnapshot::load()
{
    mFile = readDictionaryFile(mPath);
    mIsLoaded = true;
    mIsSettled = isOlderThanAStep(mFile.file.identity);
}

void PreferencesSnapshot::forget()
{
    mFile = {};
    mIsLoaded = false;
}

const PropertyList* PreferencesSnapshot::find(const std::string& key)
{
    if (mPath.empty())
        return nullptr;
    if (!isCurrent())
        load();
    if (!mFile.list)
        return nullptr;
    const auto& dictionary = *mFile.list->get<PropertyList::Dictionary>();
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : &found->second;
}

} // namespace farview
