// The real panel, from version 1.0 to 1.1, released by the script that releases, tried by the real
// host.

#include "Applications/Update/FeedReader.h"
#include "Tests/Update/UpdateFixture.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

std::string contentsOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class UpdatePane : public UpdateFixture
{
protected:
    UpdatePane()
    {
        host = FARVIEW_BINARY_DIR "/farview-preferences";
        fs::remove_all(folder.path("installed"));
        bundle = pane("installed", "1.0");
        keyFile = folder.write("secret", key.text() + "\n");
        folder.write("notes", "<p>Faster & \"better\"</p><ul><li>This</li></ul>");
    }

    /// The pane of the build tree, as if it were of that version.
    std::string pane(const std::string& place, const std::string& version)
    {
        const auto copy = copyPane(FARVIEW_PANE_BUNDLE, folder.path(place));
        setInfo(copy, {{"CFBundleVersion", version},
                       {"SUFeedURL", server.address("updates.xml")},
                       {"SUPublicEDKey", key.publicKey()}});
        return copy;
    }
    /// Runs the script; its exit status.
    int runScript(const std::string& arguments)
    {
        const std::string command =
            FARVIEW_SOURCE_DIR "/scripts/make-release --build '" FARVIEW_BUILD_TREE "' --key " +
            keyFile + " --output " + folder.path("output") + " " + arguments + " </dev/null >" +
            folder.path("log") + " 2>&1";
        return std::system(command.c_str());
    }
    int makeRelease(const std::string& bundle, const std::string& more = {})
    {
        return runScript("--address " + server.address("") + " --notes " + folder.path("notes") +
                         " --bundle '" + bundle + "' " + more);
    }
    FeedDates datesOfFeed()
    {
        const auto feed = contentsOf(folder.path("output/updates.xml"));
        return FeedReader::read(verifiedFeed(feed, key.publicKey()).value_or("")).dates;
    }
    void serveOutput()
    {
        for (const auto& each : fs::directory_iterator(folder.path("output")))
            server.serve(each.path().filename(), contentsOf(each.path()));
    }

    std::string keyFile;
};

TEST_F(UpdatePane, IsReleasedAndInstalledAndPassesItsTrial)
{
    const auto released = pane("release", "1.1");
    ASSERT_EQ(makeRelease(released), 0) << contentsOf(folder.path("log"));
    serveOutput();
    const auto run = start();
    run->say("download");
    ASSERT_TRUE(run->says("found")) << run->printed();
    run->say("install");
    EXPECT_EQ(run->outcome(), "installed") << run->printed();
    EXPECT_NE(run->printed().find("Faster & \\\"better\\\"\\n\\n\xE2\x80\xA2 This"),
              std::string::npos)
        << run->printed();
    EXPECT_TRUE(snapshot(bundle) == snapshot(released));
    EXPECT_EQ(leftovers(), std::vector<std::string>());
}

TEST_F(UpdatePane, WhoseLibraryIsBrokenStaysAsItWas)
{
    const auto broken = pane("release", "1.1");
    fs::resize_file(broken + "/Contents/Linux/FarviewPreferences.so", 4096);
    before = snapshot(folder.path("installed"));
    publish(packed(entriesOf(broken)));
    EXPECT_EQ(update(), "unfit") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdatePane, AFeedGrowsWithEachReleaseAndKeepsTheOlderOnes)
{
    const auto second = bundleOf("1.1");
    const auto third = bundleOf("1.2");
    ASSERT_EQ(makeRelease(second), 0) << contentsOf(folder.path("log"));
    ASSERT_EQ(makeRelease(third, "--minimum-system 99.0"), 0) << contentsOf(folder.path("log"));
    EXPECT_NE(makeRelease(third), 0) << "a version is released once";
    serveOutput();
    bundle =
        makeBundle(folder.path("small"), "1.0", server.address("updates.xml"), key.publicKey());
    const auto check = start({"--check-only"});
    EXPECT_EQ(check->outcome(), "found");
    EXPECT_EQ(check->last()["version"], "1.1");
}

TEST_F(UpdatePane, NothingIsReleasedThatItsUsersCouldNotUpdate)
{
    const auto released = bundleOf("1.1");
    setInfo(released, {{"SUPublicEDKey", SigningKey::generated()->publicKey()}});
    EXPECT_NE(makeRelease(released), 0);
    EXPECT_NE(makeRelease(released, "--changes-key"), 0) << "its feed has to be another one";
    setInfo(released, {{"SUFeedURL", server.address("new/updates.xml")}});
    EXPECT_EQ(makeRelease(released, "--changes-key"), 0) << contentsOf(folder.path("log"));
    setInfo(released, {{"CFBundleVersion", "1.2"}, {"SUPublicEDKey", ""}});
    EXPECT_NE(makeRelease(released), 0);
    setInfo(released, {{"CFBundleVersion", "one"}, {"SUPublicEDKey", key.publicKey()}});
    EXPECT_NE(makeRelease(released), 0);
    EXPECT_FALSE(fs::exists(folder.path("output/Farview-1.2.tar.xz")));
}

TEST_F(UpdatePane, AFeedIsSignedAnewForALongerTimeAndBegunWithoutItems)
{
    ASSERT_EQ(runScript("--feed-only --valid-for 1"), 0) << contentsOf(folder.path("log"));
    auto dates = datesOfFeed();
    EXPECT_EQ(dates.expires.secondsSince1970 - dates.signedAt.secondsSince1970, 24 * 3600);
    ASSERT_EQ(makeRelease(bundleOf("1.1"), "--valid-for 2"), 0) << contentsOf(folder.path("log"));
    ASSERT_EQ(runScript("--feed-only"), 0) << contentsOf(folder.path("log"));
    dates = datesOfFeed();
    EXPECT_EQ(dates.expires.secondsSince1970 - dates.signedAt.secondsSince1970, 90 * 24 * 3600);
    serveOutput();
    EXPECT_EQ(start({"--check-only"})->outcome(), "found");
}

TEST_F(UpdatePane, AFeedThatSomebodyElseChangedIsNotSigned)
{
    ASSERT_EQ(makeRelease(bundleOf("1.1")), 0) << contentsOf(folder.path("log"));
    auto feed = contentsOf(folder.path("output/updates.xml"));
    feed.replace(feed.find(">1.1<"), 5, ">1.9<");
    folder.write("output/updates.xml", feed);
    EXPECT_NE(runScript("--feed-only"), 0);
    EXPECT_NE(makeRelease(bundleOf("1.2")), 0);
    EXPECT_EQ(contentsOf(folder.path("output/updates.xml")), feed);
}

TEST_F(UpdatePane, AFeedIsNotSignedForATimeBeforeTheLastOne)
{
    const auto feed = key.signedFeed(feedOf({}, 3600, 7200));
    folder.write("output/updates.xml", feed);
    EXPECT_NE(runScript("--feed-only"), 0);
    EXPECT_NE(contentsOf(folder.path("log")).find("by this computer's clock"), std::string::npos);
    EXPECT_EQ(contentsOf(folder.path("output/updates.xml")), feed);
}

TEST_F(UpdatePane, KeysAreMadeForTheirOwnerAlone)
{
    const std::string tool = FARVIEW_BINARY_DIR "/farview-sign ";
    const auto path = folder.path("new key");
    const auto make = tool + "--make-key '" + path + "' >'" + folder.path("public") + "' 2>&1";
    EXPECT_EQ(std::system(make.c_str()), 0);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600));
    const auto made = SigningKey::fromText(contentsOf(path).substr(0, 44));
    ASSERT_TRUE(made);
    EXPECT_EQ(contentsOf(folder.path("public")), made->publicKey() + "\n");
    EXPECT_NE(std::system(make.c_str()), 0) << "a key is never overwritten";
}

} // namespace
} // namespace farview
