// Everything that somebody on the way, or at the server, could try. Whatever it is, the bundle
// stands there byte for byte as before, and nothing lies beside it.

#include "Tests/Update/UpdateFixture.h"

#include <cstdlib>
#include <functional>

namespace farview
{
namespace
{

using Kind = ArchiveEntry::Kind;
using UpdateAttack = UpdateFixture;

std::string changed(std::string text)
{
    text[text.size() / 2] = static_cast<char>(text[text.size() / 2] ^ 1);
    return text;
}

ArchiveEntry inBundle(const std::string& path, Kind kind, const std::string& contents)
{
    return {"Example Pane.prefPane/" + path, kind, contents, 0644, 0};
}

// The signature.

TEST_F(UpdateAttack, AnotherKey)
{
    const auto archive = packed(release("1.1"));
    publish(archive, offerOf(archive, "1.1", server.address("archive.tar.xz"),
                             SigningKey::generated().value()));
    EXPECT_EQ(update(), "wrong-signature") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, NoSignatureOrOneThatIsNone)
{
    const auto archive = packed(release("1.1"));
    for (const auto& signature : {std::string(), std::string("none"), std::string(88, 'A'),
                                  key.signatureOf("something else")}) {
        auto offered = offer(archive, "1.1");
        offered.signature = signature;
        publish(archive, offered);
        EXPECT_EQ(update(), "wrong-signature") << signature;
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, OneBitOfTheArchive)
{
    const auto archive = packed(release("1.1"));
    publish(changed(archive), offer(archive, "1.1"));
    EXPECT_EQ(update(), "wrong-signature") << printed;
    EXPECT_TRUE(isUntouched());
}

// The length.

TEST_F(UpdateAttack, AnArchiveThatIsCutOrHasMore)
{
    const auto archive = packed(release("1.1"));
    for (const auto& served : {archive.substr(0, archive.size() / 2), archive + "x"}) {
        publish(served, offer(archive, "1.1"));
        EXPECT_EQ(update(), "wrong-length") << printed;
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AConnectionThatEndsTooEarly)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    server.serve("archive.tar.xz",
                 UpdateServer::Answer{200, archive.substr(0, 100), {}, archive.size(), {}});
    EXPECT_EQ(update(), "server") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, FiveGigabytesAnnounced)
{
    const auto archive = packed(release("1.1"));
    auto offered = offer(archive, "1.1");
    for (const std::uint64_t length : {5'000'000'000ull, ~0ull}) {
        offered.length = length;
        publish(archive, offered);
        EXPECT_EQ(update(), "too-large") << printed;
    }
    EXPECT_FALSE(server.wasAskedFor("archive.tar.xz"));
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, FiveGigabytesFromTheServer)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    server.serve("archive.tar.xz", UpdateServer::Answer{200, archive, {}, 5'000'000'000, {}});
    EXPECT_EQ(update(), "wrong-length") << printed;
    server.serve("updates.xml", UpdateServer::Answer{200, "<rss/>", {}, 5'000'000'000, {}});
    EXPECT_EQ(update(), "too-large") << printed;
    EXPECT_TRUE(isUntouched());
}

// Archives that were signed, and are not what was asked for.

TEST_F(UpdateAttack, AnOlderVersionReplayed)
{
    for (const char* version : {"0.9", "1.0"}) {
        publish(packed(release(version)), "1.1");
        EXPECT_EQ(update(), "downgrade") << printed;
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AnotherVersionInItsPlace)
{
    publish(packed(release("1.2")), "1.1");
    EXPECT_EQ(update(), "wrong-version") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AnotherBundleInItsPlace)
{
    const auto other = bundleOf("1.1");
    setInfo(other, {{"CFBundleIdentifier", "com.quillon.Another"}});
    publish(packed(entriesOf(other)));
    EXPECT_EQ(update(), "archive") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, EntriesThatLeadOutOfTheBundle)
{
    const std::string target = folder.path("victim");
    const std::vector<std::vector<ArchiveEntry>> attacks = {
        {inBundle("link", Kind::symbolicLink, folder.path())},
        {inBundle("link", Kind::symbolicLink, "../.."), inBundle("link/victim", Kind::file, "x")},
        {inBundle("link", Kind::symbolicLink, "Contents")},
        {inBundle("link", Kind::hardLink, "/etc/passwd")},
        {inBundle("link", Kind::hardLink, "Example Pane.prefPane/Contents/Info.plist")},
        {inBundle("device", Kind::device, "")},
        {{target, Kind::file, "x", 0644, 0}},
        {inBundle("../../../../../.." + target, Kind::file, "x")},
        {inBundle("../victim", Kind::file, "x")},
        {inBundle("./victim", Kind::file, "x")},
        {inBundle("a//victim", Kind::file, "x")},
        {inBundle("Contents/Info.plist", Kind::file, "twice")},
        {inBundle("Contents/Info.plist/below a file", Kind::file, "x")},
        {inBundle("no/such/folder", Kind::file, "x")},
        {{"Second.prefPane", Kind::folder, "", 0755, 0}},
        {{"victim", Kind::file, "x", 0644, 0}},
        {inBundle(std::string(600, 'x'), Kind::file, "x")},
    };
    for (const auto& attack : attacks) {
        auto entries = release("1.1");
        entries.insert(entries.end(), attack.begin(), attack.end());
        publish(packed(entries));
        EXPECT_EQ(update(), "archive") << attack.front().path;
        EXPECT_TRUE(isUntouched()) << attack.front().path;
        EXPECT_FALSE(std::filesystem::exists(target)) << attack.front().path;
    }
}

TEST_F(UpdateAttack, WhatIsNoArchiveOfABundle)
{
    for (const auto& archive :
         {std::string("no archive at all"), packed({}), changed(packed(release("1.1"))),
          packed({{"file", Kind::file, "x", 0644, 0}}),
          packed({{"Empty.prefPane", Kind::folder, "", 0755, 0}})}) {
        publish(archive);
        EXPECT_EQ(update(), "archive") << printed;
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, ABombOfZeros)
{
    auto entries = release("1.1");
    entries.push_back({"Example Pane.prefPane/zeros", Kind::file, "", 0644, 600u << 20});
    const auto archive = packed(entries);
    EXPECT_LT(archive.size(), 1u << 20);
    publish(archive);
    EXPECT_EQ(update(), "archive") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, MoreFilesThanABundleHas)
{
    auto entries = release("1.1");
    for (int index = 0; index < 10000; ++index)
        entries.push_back(inBundle(std::to_string(index), Kind::file, ""));
    publish(packed(entries));
    EXPECT_EQ(update(), "archive") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, ProgramsThatWouldRunWithOthersRights)
{
    auto entries = release("1.1");
    for (auto& entry : entries)
        entry.mode |= 07000;
    publish(packed(entries));
    EXPECT_EQ(update(), "installed") << printed;
    for (const auto& each : std::filesystem::recursive_directory_iterator(bundle)) {
        const auto mode = each.status().permissions();
        EXPECT_TRUE(mode == std::filesystem::perms(0755) || mode == std::filesystem::perms(0644))
            << each.path();
    }
}

TEST_F(UpdateAttack, ABundleThatDoesNotWork)
{
    const auto broken = bundleOf("1.1");
    std::filesystem::remove(broken + "/Contents/Resources/Text.txt");
    publish(packed(entriesOf(broken)));
    EXPECT_EQ(update(), "unfit") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, ABundleThatCannotBeTried)
{
    publish(packed(release("1.1")));
    host = folder.path("no host");
    EXPECT_EQ(update(), "internal") << printed;
    EXPECT_TRUE(isUntouched());
}

// The way.

TEST_F(UpdateAttack, ARedirectionAwayFromHTTPS)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    folder.write("archive.tar.xz", archive);
    for (const auto& target :
         {std::string("http://127.0.0.1/archive.tar.xz"), "file://" + folder.path("archive.tar.xz"),
          std::string("ftp://127.0.0.1/x")}) {
        server.redirect("archive.tar.xz", target);
        EXPECT_EQ(update(), "insecure-address") << target;
    }
    server.redirect("updates.xml", "http://127.0.0.1/updates.xml");
    EXPECT_EQ(update(), "insecure-address") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, RedirectionsWithoutAnEnd)
{
    server.redirect("updates.xml", server.address("updates.xml"));
    EXPECT_EQ(update(), "server") << printed;
    EXPECT_LT(server.requests().size(), 30u);
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AddressesThatAreNotHTTPS)
{
    const auto archive = packed(release("1.1"));
    folder.write("archive.tar.xz", archive);
    for (const auto& address :
         {std::string("http://127.0.0.1/archive.tar.xz"), "file://" + folder.path("archive.tar.xz"),
          folder.path("archive.tar.xz"), std::string("ftp://127.0.0.1/x"), std::string("https://"),
          std::string("https:///etc/passwd"), std::string("data:text/plain,x")}) {
        publish(archive, offerOf(archive, "1.1", address, key));
        // A path alone is one at the server, where nothing is found.
        EXPECT_EQ(update(), address.starts_with('/') ? "server" : "insecure-address") << address;
    }
    for (const char* feed : {"http://127.0.0.1/updates.xml", "updates.xml", "ftp://127.0.0.1/x"}) {
        setInfo(bundle, {{"SUFeedURL", feed}});
        EXPECT_EQ(update(), "insecure-address") << feed;
    }
    setInfo(bundle, {{"SUFeedURL", server.address("updates.xml")}});
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, ACertificateOfAnotherAuthority)
{
    publish(packed(release("1.1")));
    const TestAuthority other;
    const std::vector<EngineRun::Environment> trusts = {
        trusting(other), {{"SSL_CERT_FILE", ""}}, {{"SSL_CERT_FILE", folder.path("no file")}}};
    for (const auto& trust : trusts) {
        EngineRun run({"--bundle", bundle, "--host", host}, trust);
        EXPECT_EQ(run.outcome(), "certificate") << run.printed();
    }
    EXPECT_TRUE(server.requests().empty());
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, ACertificateOfAnotherComputer)
{
    publish(packed(release("1.1")));
    setInfo(bundle, {{"SUFeedURL", server.address("127.0.0.2", "updates.xml")}});
    EXPECT_EQ(update(), "certificate") << printed;
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(UpdateAttack, AServerThatFallsSilent)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    server.serve("archive.tar.xz", UpdateServer::Answer{200, archive, {}, {}, 100});
    EXPECT_EQ(update({"--patience", "1"}), "stalled") << printed;
    server.serve("updates.xml", UpdateServer::Answer{200, std::string(100, ' '), {}, {}, 10});
    EXPECT_EQ(update({"--patience", "1"}), "stalled") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AServerThatTrickles)
{
    const std::string most(5000, ' ');
    publish(most);
    for (const char* path : {"archive.tar.xz", "updates.xml"}) {
        server.serve(path, UpdateServer::Answer{200, most, {}, {}, {}, true});
        // Silence would end it after two seconds, slowness does after four.
        const auto run = start({"--patience", "2"});
        run->say("download");
        EXPECT_EQ(run->outcome(), "stalled") << run->printed();
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AServerThatDoesNotDeliver)
{
    EXPECT_EQ(update(), "server") << printed;
    server.serve("updates.xml", UpdateServer::Answer{204, {}, {}, {}, {}});
    EXPECT_EQ(update(), "server") << printed;
    setInfo(bundle, {{"SUFeedURL", "https://127.0.0.1:1/updates.xml"}});
    EXPECT_EQ(update(), "server") << printed;
    EXPECT_EQ(update({}, {"unshare", "--net"}), "no-network") << printed;
    EXPECT_EQ(leftovers(), std::vector<std::string>());
}

// The feed.

TEST_F(UpdateAttack, AFeedThatIsNotSignedAsOne)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    const auto feed = feedOf({offer(archive, "1.1")});
    const auto genuine = key.signedFeed(feed);
    const auto line = genuine.substr(feed.size());
    auto asAnArchive = genuine;
    const auto signature = key.signatureOf(feed);
    asAnArchive.replace(genuine.size() - signature.size() - 5, signature.size(), signature);
    const auto other = feedOf({offer(archive, "1.1")}, -60);
    for (const auto& served :
         {feed, SigningKey::generated()->signedFeed(feed), asAnArchive, changed(genuine),
          genuine.substr(0, genuine.size() - 1), genuine.substr(0, genuine.size() / 2), line,
          genuine + "\n", other + line, feed + line + line}) {
        server.serve("updates.xml", served);
        EXPECT_EQ(update(), "wrong-signature") << served;
    }
    EXPECT_FALSE(server.wasAskedFor("archive.tar.xz"));
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AFeedThatHasExpired)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    publishFeed(feedOf({offer(archive, "1.1")}, -7200, -3600));
    EXPECT_EQ(update(), "feed-expired") << printed;
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, AFeedFromTheFuture)
{
    constexpr int hour = 3600;
    const auto archive = packed(release("1.1"));
    publish(archive);
    publishFeed(feedOf({offer(archive, "1.1")}, 25 * hour, 1000 * hour));
    EXPECT_EQ(update(), "clock") << printed;
    EXPECT_TRUE(isUntouched());
    // It does not count as one that was seen. As far as a time zone is no reason.
    publishFeed(feedOf({offer(archive, "1.1")}, 14 * hour, 1000 * hour));
    EXPECT_EQ(start({"--check-only"})->outcome(), "found");
}

TEST_F(UpdateAttack, AFeedThatWithholdsWhatANewerOneListed)
{
    const auto archive = packed(release("1.1"));
    const auto older = key.signedFeed(feedOf({offer("", "1.0")}, -60));
    publish(archive);
    const auto newest = key.signedFeed(feedOf({offer(archive, "1.1")}));
    for (int round = 0; round < 2; ++round) {
        server.serve("updates.xml", newest);
        EXPECT_EQ(start({"--check-only"})->outcome(), "found");
        server.serve("updates.xml", older);
        EXPECT_EQ(update(), "feed-replayed") << printed;
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateAttack, FeedsThatAreNone)
{
    std::string bomb = "<!DOCTYPE rss [<!ENTITY a0 \"x\">";
    for (int index = 1; index < 30; ++index)
        bomb += "<!ENTITY a" + std::to_string(index) + " \"&a" + std::to_string(index - 1) + ";&a" +
                std::to_string(index - 1) + ";\">";
    bomb += "]><rss><channel><item><description>&a29;</description></item></channel></rss>";
    std::string deep;
    for (int index = 0; index < 10000; ++index)
        deep += "<rss>";
    for (const auto& feed : {std::string(), std::string("garbage"), std::string(1000, '\0'),
                             std::string("<html/>"), std::string("<rss><channel>"), bomb, deep}) {
        publishFeed(feed);
        EXPECT_EQ(update(), "feed-unreadable") << feed.substr(0, 100);
    }
    server.serve("updates.xml", "<rss>" + std::string(2u << 20, ' ') + "</rss>");
    EXPECT_EQ(update(), "too-large") << printed;
    EXPECT_TRUE(isUntouched());
}

// The computer.

TEST_F(UpdateAttack, ADiskThatIsFull)
{
    const std::string place = folder.path("small");
    std::filesystem::create_directory(place);
    ASSERT_EQ(std::system(("mount -t tmpfs -o size=512k none " + place).c_str()), 0);
    bundle = makeBundle(place, "1.0", server.address("updates.xml"), key.publicKey());
    const auto installed = snapshot(place);

    // What is known before.
    auto entries = release("1.1");
    std::string noise(200'000, '\0');
    for (auto& each : noise)
        each = static_cast<char>(std::rand());
    entries.push_back({"Example Pane.prefPane/noise", Kind::file, noise, 0644, 0});
    publish(packed(entries));
    EXPECT_EQ(update(), "no-space") << printed;
    EXPECT_FALSE(server.wasAskedFor("archive.tar.xz"));
    EXPECT_EQ(snapshot(place), installed);

    // What shows when it is unpacked.
    entries.back() = {"Example Pane.prefPane/zeros", Kind::file, "", 0644, 4u << 20};
    publish(packed(entries));
    EXPECT_EQ(update(), "no-space") << printed;
    EXPECT_TRUE(server.wasAskedFor("archive.tar.xz"));
    EXPECT_EQ(snapshot(place), installed);
    EXPECT_EQ(std::system(("umount " + place).c_str()), 0);
}

TEST_F(UpdateAttack, APlaceThatSomebodyElseLaidOut)
{
    namespace fs = std::filesystem;
    publish(packed(release("1.1")));
    const fs::path staging = folder.path("installed") + "/.Example Pane.prefPane.update";
    folder.write("elsewhere/file", "stays");
    fs::create_directory_symlink(folder.path("elsewhere"), staging);
    EXPECT_EQ(update(), "installed") << printed;
    EXPECT_TRUE(fs::exists(folder.path("elsewhere/file")));
    EXPECT_EQ(leftovers(), std::vector<std::string>());
}

} // namespace
} // namespace farview
