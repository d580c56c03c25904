#pragma once

#include <string>

/// A private folder (0700) that goes with the object, and everything in it.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return mPath; }
    std::string path(const std::string& name) const { return mPath + "/" + name; }
    /// Writes a file below the folder, making the folders above it. Returns its path.
    std::string write(const std::string& name, const std::string& text, bool executable = false);

private:
    std::string mPath;
};

/// Sets an environment variable (or, with null, removes it) and restores it at the end of the
/// scope.
class ScopedEnvironment
{
public:
    ScopedEnvironment(const char* name, const char* value);
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::string mName;
    std::string mPrevious;
    bool mWasSet;
};
