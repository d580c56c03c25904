#pragma once

#include "Tests/Support/Isolation.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Update/EngineRun.h"
#include "Tests/Update/Release.h"
#include "Tests/Update/UpdateServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// A small bundle, version 1.0, installed; a server with the feed of its updates; a host that takes
/// any bundle that says it is fit. What is there of version 1.1 is for the tests to say.
class UpdateFixture : public testing::Test
{
protected:
    UpdateFixture()
    {
        host = folder.write("host",
                            "#!/bin/sh\n"
                            "# farview-preferences --smoke-test --pane BUNDLE\n"
                            "[ \"$1 $2\" = '--smoke-test --pane' ] || exit 2\n"
                            "grep -q 'The text of version' "
                            "\"$3/Contents/Resources/Text.txt\"\n",
                            true);
        bundle = makeBundle(folder.path("installed"), "1.0", server.address("updates.xml"),
                            key.publicKey());
        before = snapshot(folder.path("installed"));
    }

    void SetUp() override
    {
        if (!whyNotIsolated().empty())
            GTEST_SKIP() << whyNotIsolated();
    }

    /// The bundle of another version, as it would be released.
    std::string bundleOf(const std::string& version)
    {
        return makeBundle(folder.path("release-" + version), version, server.address("updates.xml"),
                          key.publicKey());
    }
    std::vector<ArchiveEntry> release(const std::string& version)
    {
        return entriesOf(bundleOf(version));
    }
    Offer offer(const std::string& archive, const std::string& version)
    {
        return offerOf(archive, version, server.address("archive.tar.xz"), key);
    }
    /// Serves a feed, signed.
    void publishFeed(const std::string& feed) { server.serve("updates.xml", key.signedFeed(feed)); }
    /// Serves the archive, and a feed with that offer of it.
    void publish(const std::string& archive, const Offer& offer)
    {
        publishFeed(feedOf({offer}));
        server.serve("archive.tar.xz", archive);
    }
    void publish(const std::string& archive, const std::string& version = "1.1")
    {
        publish(archive, offer(archive, version));
    }

    EngineRun::Environment trusting(const TestAuthority& authority) const
    {
        return {{"SSL_CERT_FILE", authority.file()}, {"XDG_CONFIG_HOME", folder.path("settings")}};
    }
    std::unique_ptr<EngineRun> start(std::vector<std::string> more = {},
                                     const std::vector<std::string>& wrapper = {})
    {
        std::vector<std::string> arguments{"--bundle", bundle, "--host", host};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return std::make_unique<EngineRun>(arguments, trusting(server.authority()), wrapper);
    }
    /// A whole run in which the user agrees to everything; its outcome.
    std::string update(std::vector<std::string> more = {},
                       const std::vector<std::string>& wrapper = {})
    {
        const auto run = start(std::move(more), wrapper);
        run->say("download");
        run->say("install");
        const auto outcome = run->outcome();
        SCOPED_TRACE(run->printed());
        EXPECT_EQ(run->status(), outcome == "installed" || outcome == "current" ? 0 : 1);
        printed = run->printed();
        return outcome;
    }

    std::string version() const { return infoText(bundle, "CFBundleVersion"); }
    /// Whether the old bundle stands there byte for byte, and nothing beside it.
    bool isUntouched() const { return snapshot(folder.path("installed")) == before; }
    /// What lies beside the bundle, and should not.
    std::vector<std::string> leftovers() const
    {
        std::vector<std::string> names;
        for (const auto& each : std::filesystem::directory_iterator(folder.path("installed"))) {
            if (each.path() != bundle)
                names.push_back(each.path().filename());
        }
        return names;
    }

    TemporaryFolder folder;
    UpdateServer server;
    SigningKey key = SigningKey::generated().value();
    std::string host;
    std::string bundle;
    std::map<std::string, std::string> before;
    std::string printed; ///< by the last whole run
};

} // namespace farview
