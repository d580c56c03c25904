#include "Applications/Update/Signature.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(Signature, VerifiesWhatTheKeySigned)
{
    const auto key = SigningKey::generated().value();
    const auto signature = key.signatureOf("bytes");
    EXPECT_TRUE(isSigned("bytes", signature, key.publicKey()));
    EXPECT_FALSE(isSigned("Bytes", signature, key.publicKey()));
    EXPECT_FALSE(isSigned("", signature, key.publicKey()));
    EXPECT_FALSE(isSigned("bytes", signature, SigningKey::generated()->publicKey()));
    EXPECT_TRUE(isSigned("", key.signatureOf(""), key.publicKey()));
}

// The first example of RFC 8032, section 7.1: what other tools signed is accepted here.
TEST(Signature, IsThatOfTheStandard)
{
    const std::string publicKey = "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=";
    const std::string signature = "5VZDAMNgrHKQhuLMgG6CioSHfx645dl02HPgZSJJAVVfuIIVkKM7rMYeOXAc"
                                  "+bRr0lv18FlbviRlUUFDjnoQCw==";
    const auto key = SigningKey::fromText("nWGxne/9WmC6hEr0kuwsxERJxWl7MmkZcDusAxyuf2A=").value();
    EXPECT_EQ(key.publicKey(), publicKey);
    EXPECT_EQ(key.signatureOf(""), signature);
    EXPECT_TRUE(isSigned("", signature, publicKey));
}

TEST(Signature, WhatIsNoneVerifiesNothing)
{
    const auto key = SigningKey::generated().value();
    const auto good = key.signatureOf("bytes");
    for (const auto& bad : {std::string(), std::string("="), good.substr(4), good + good,
                            std::string(88, 'A'), std::string("not base64 at all")}) {
        EXPECT_FALSE(isSigned("bytes", bad, key.publicKey())) << bad;
        EXPECT_FALSE(isSigned("bytes", good, bad)) << bad;
    }
    // A key of small order fits many signatures.
    EXPECT_FALSE(isSigned("bytes", std::string(86, 'A') + "==", std::string(43, 'A') + "="));
}

TEST(Signature, OfAFeedIsItsLastLine)
{
    const auto key = SigningKey::generated().value();
    for (const auto* feed : {"", "<rss/>\n", "<rss/>"}) {
        const auto whole = key.signedFeed(feed);
        EXPECT_TRUE(whole.starts_with(std::string(feed) + "<!-- farview:signature ")) << whole;
        EXPECT_TRUE(whole.ends_with("= -->\n")) << whole;
        EXPECT_EQ(verifiedFeed(whole, key.publicKey()), feed);
        EXPECT_FALSE(verifiedFeed(whole, SigningKey::generated()->publicKey()));
    }
}

TEST(Signature, AFeedCountsWholeAndUnchangedOnly)
{
    const auto key = SigningKey::generated().value();
    const auto whole = key.signedFeed("<rss/>\n");
    for (std::size_t index = 0; index < whole.size(); ++index) {
        auto damaged = whole;
        damaged[index] = static_cast<char>(damaged[index] ^ 1);
        EXPECT_FALSE(verifiedFeed(damaged, key.publicKey())) << damaged;
        EXPECT_FALSE(verifiedFeed(whole.substr(0, index), key.publicKey())) << index;
    }
    EXPECT_FALSE(verifiedFeed(" " + whole, key.publicKey()));
    EXPECT_FALSE(verifiedFeed(whole + "\n", key.publicKey()));
    EXPECT_FALSE(isSigned("<rss/>\n", whole.substr(whole.size() - 93, 88), key.publicKey()));
}

TEST(Signature, KnowsKeysWhenItSeesThem)
{
    const auto key = SigningKey::generated().value();
    EXPECT_TRUE(isPublicKey(key.publicKey()));
    for (const char* bad : {"", "AAAA", "not base64 at all"}) {
        EXPECT_FALSE(isPublicKey(bad)) << bad;
        EXPECT_FALSE(SigningKey::fromText(bad)) << bad;
    }
    EXPECT_EQ(SigningKey::fromText(key.text())->publicKey(), key.publicKey());
    EXPECT_NE(key.text(), SigningKey::generated()->text());
}

} // namespace
} // namespace farview
