#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Programs/DesktopWorkspace.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeBundle.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Fake/FakeWorkspace.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace farview
{
namespace
{

/// Both have one application, "Test.app" in the folder.
struct FakeBench {
    explicit FakeBench(TemporaryFolder&) {}

    bool hasStarted() const { return !workspace.launches().empty(); }

    FakeWorkspace workspace;
};

struct DesktopBench {
    explicit DesktopBench(TemporaryFolder& folder) : started(folder.path("started"))
    {
        folder.write("Test.app/Contents/Linux/fvtest-script",
                     "#!/bin/sh\ntouch '" + started + "'\n", true);
        bundles.add(folder.path("Test.app"))
            ->setInfo("CFBundleExecutable", PropertyList("fvtest-script"));
    }

    bool hasStarted() const
    {
        return waitUntil([this] { return std::filesystem::exists(started); });
    }

    std::string started;
    OrphanCollector collector{"fvtest-script"};
    FakeBundles bundles;
    FakeLog log;
    QtRunLoop loop;
    TestBus bus{log};
    DesktopWorkspace workspace{bus, bundles, loop, log};
};

template <typename Bench> class WorkspaceContract : public testing::Test
{
protected:
    TemporaryFolder mFolder;
    Bench mBench{mFolder};
};

using Benches = testing::Types<FakeBench, DesktopBench>;
TYPED_TEST_SUITE(WorkspaceContract, Benches);
constexpr unsigned options = 0x10300;

TYPED_TEST(WorkspaceContract, AnApplicationIsStarted)
{
    Workspace& workspace = this->mBench.workspace;
    EXPECT_TRUE(workspace.launchApplicationAtURL(
        URL::fileURLWithPath(this->mFolder.path("Test.app")), options));
    EXPECT_TRUE(this->mBench.hasStarted());
}

TYPED_TEST(WorkspaceContract, AnAddressThatLeadsNowhereStartsNothing)
{
    Workspace& workspace = this->mBench.workspace;
    EXPECT_FALSE(workspace.launchApplicationAtURL(URL::fileURLWithPath(""), options));
    EXPECT_FALSE(workspace.launchApplicationAtURL(URL(), options));
}

} // namespace
} // namespace farview
