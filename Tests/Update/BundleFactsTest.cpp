#include "Applications/Update/BundleFacts.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Update/Release.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

TEST(BundleFacts, AreThoseOfTheInfo)
{
    const TemporaryFolder folder;
    const auto bundle = makeBundle(folder.path(), "1.2", "https://example.org/feed", "key");
    const auto facts = readBundleFacts(bundle);
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->identifier, "com.quillon.Example");
    EXPECT_EQ(facts->version, "1.2");
    EXPECT_EQ(facts->feed, "https://example.org/feed");
    EXPECT_EQ(facts->publicKey, "key");
    setInfo(bundle, {{"CFBundleVersion", "one"}});
    EXPECT_EQ(readBundleFacts(bundle)->version, "");
}

TEST(BundleFacts, ThereAreNoneWithoutABundle)
{
    TemporaryFolder folder;
    EXPECT_FALSE(readBundleFacts(folder.path("nothing")));
    folder.write("Pane/Contents/Info.plist", "<plist><array/></plist>");
    EXPECT_FALSE(readBundleFacts(folder.path("Pane")));
}

TEST(BundleFacts, ABundlesOwnPathLeadsThroughNoLink)
{
    TemporaryFolder folder;
    const auto bundle = makeBundle(folder.path("real"), "1.0", "", "");
    fs::create_directory_symlink(folder.path("real"), folder.path("link"));
    const auto expected = fs::canonical(bundle).string();
    EXPECT_EQ(canonicalPath(folder.path("link/Example Pane.prefPane")), expected);
    EXPECT_EQ(canonicalPath(folder.path("link/Example Pane.prefPane/")), expected);
    EXPECT_EQ(canonicalPath(folder.path("link/../real/Example Pane.prefPane")), expected);
    EXPECT_EQ(canonicalPath(folder.path("link/nothing")),
              (fs::canonical(folder.path("real")) / "nothing").string());
}

} // namespace
} // namespace farview
