#pragma once

#include "Common/FVEPreferences.h"
#include "Platform/Log.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Tests/Support/TemporaryFolder.h"

#include <string>

namespace farview
{

/// The shared settings in files of their own below a folder, which go with the object. Changes are
/// announced to nobody.
class StoredSettings
{
public:
    explicit StoredSettings(const std::string& parent);

    FVEPreferences& settings() { return mSettings; }
    /// The file that holds the settings.
    std::string path() const;
    /// Stores a setting as another process does.
    void changeElsewhere(bool flag);

private:
    /// A folder for the settings, where the platform is told to look for it.
    class Folder
    {
    public:
        explicit Folder(const std::string& parent);
        ~Folder();
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        const std::string& path() const { return mPath; }

    private:
        std::string mPath;
    };

    class LoudLog final : public Log
    {
    public:
        void write(LogLevel level, std::string_view message) override;
    };

    Folder mFolder;
    ScopedEnvironment mConfiguration;
    LoudLog mLog;
    FilePreferences mPreferences;
    FVEPreferences mSettings;
};

} // namespace farview
