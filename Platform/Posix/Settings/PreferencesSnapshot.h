#pragma once

#include "Platform/Posix/PropertyLists/PropertyListFile.h"

#include <string>

namespace farview
{

/// The parsed contents of one preferences file, read again only when the file has changed.
class PreferencesSnapshot
{
public:
    explicit PreferencesSnapshot(std::string path);

    /// The key's value as the file has it now, or null. Lives until the next call.
    const PropertyList* find(const std::string& key);
    /// Closes the file, which is about to be replaced; the next find() reads the new one.
    void forget();
    /// Why the file gives no values although there is one; empty when all is well.
    const std::string& reason() const { return mFile.reason; }

private:
    bool isCurrent() const;
    void load();

    std::string mPath;
    /// Its descriptor stays open, so that no other file gets the same identity.
    PropertyListFile mFile;
    bool mIsLoaded = false;
    bool mIsSettled = false; ///< a change after the reading would show in the file's times
};

} // namespace farview
