#include "Common/FVELogging.h"

#include "Platform/Fake/FakePlatform.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Tests/Posix/PreferencesFixture.h"
#include "Tests/Support/ForkedProcess.h"

#include <set>

namespace farview
{
namespace
{

/// Packet logging on a real home.
class FVELoggingFilesTest : public testing::Test
{
protected:
    FVELoggingFilesTest()
    {
        mFake.platform().fileManager = &mFiles;
        mFake.platform().searchPaths = &mPaths;
    }

    TemporaryFolder mHome;
    ScopedEnvironment mHomeVariable{"HOME", mHome.path().c_str()};
    PosixSearchPaths mPaths{EnvironmentUse::honoured};
    PosixFileManager mFiles;
    FakePlatform mFake;
    Platform::Scope mInstalled{mFake.platform()};
    const std::string mFolder = mHome.path("FarviewLogging (2026-01-02 03:04:05 +0000)");
};

TEST_F(FVELoggingFilesTest, PacketsLieInAFolderThatOnlyTheUserEnters)
{
    // Logging is never switched off again.
    inItsOwnProcess([] {
        farview::Bytes header;
        farview::appendScreenPacketHeader(header, {{}, QLScreenEncodingLibz, 5});
        EnableLoggingScreenRectangleLogging();
        for (const char* data : {"first", "other"})
            NSLogScreenRectangle(header.data(), reinterpret_cast<const std::uint8_t*>(data), 5);
    });
    EXPECT_EQ(modeOf(mFolder), 0700u);
    std::multiset<std::string> contents;
    for (const auto& file : std::filesystem::directory_iterator(mFolder)) {
        EXPECT_EQ(file.path().extension(), ".bits");
        EXPECT_EQ(modeOf(file.path()), 0600u);
        contents.insert(contentsOf(file.path()));
    }
    EXPECT_EQ(contents, (std::multiset<std::string>{"first", "other"}));
}

TEST_F(FVELoggingFilesTest, AHomeThatCannotBeWrittenLeavesLoggingOff)
{
    mHome.write("file", "");
    const ScopedEnvironment home("HOME", mHome.path("file").c_str());
    PosixSearchPaths paths(EnvironmentUse::honoured);
    mFake.platform().searchPaths = &paths;
    EnableLoggingScreenRectangleLogging();
    EXPECT_FALSE(IsEnableLoggingScreenRectangleLogging());
}

} // namespace
} // namespace farview
