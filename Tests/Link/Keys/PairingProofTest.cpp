#include "Link/Keys/PairingProof.h"

#include "Tests/Link/MadeCertificate.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

// Made and looked at with the openssl command:
//   openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=vector
//   openssl x509 -noout -pubkey | openssl pkey -pubin -outform der | sha256sum
constexpr const char* vectorCertificate =
    "-----BEGIN CERTIFICATE-----\n"
    "MIIBejCCAR+gAwIBAgIUN7B8/kvh5yQL0Sbql+cDwk+RdSIwCgYIKoZIzj0EAwIw\n"
    "ETEPMA0GA1UEAwwGdmVjdG9yMCAXDTI2MTEyMjEyNTQ0NVoYDzIxMjYxMDI5MTI1\n"
    "NDQ1WjARMQ8wDQYDVQQDDAZ2ZWN0b3IwWTATBgcqhkjOPQIBBggqhkjOPQMBBwNC\n"
    "AAR00N8qtG2op6f3QHsdoBxCEz5lAFbOQ/XiewAZu02I6WrmlnloiEaDw23lvCyT\n"
    "7ejcAibIOMXDaPNjivz2sWAho1MwUTAdBgNVHQ4EFgQUAi2rnDprGIZWnytwH5Bm\n"
    "yoJVEG4wHwYDVR0jBBgwFoAUAi2rnDprGIZWnytwH5BmyoJVEG4wDwYDVR0TAQH/\n"
    "BAUwAwEB/zAKBggqhkjOPQQDAgNJADBGAiEAu4W46z0+mMR305g81qJuYiSl4EZP\n"
    "xkDvK6vVxJyGauYCIQCwaN78PUhyZbzJ4/RWJt0nYqSnK9Awoq6mYeLL6tsmdQ==\n"
    "-----END CERTIFICATE-----\n";
/// The same key in another certificate.
constexpr const char* renewedCertificate =
    "-----BEGIN CERTIFICATE-----\n"
    "MIIBeTCCAR+gAwIBAgIUJ3vp2gp83b9HgEs2kyxo364oCrIwCgYIKoZIzj0EAwIw\n"
    "EjEQMA4GA1UEAwwHYW5vdGhlcjAeFw0yNjExMjIxMjU0NDZaFw0yNjExMjMxMjU0\n"
    "NDZaMBIxEDAOBgNVBAMMB2Fub3RoZXIwWTATBgcqhkjOPQIBBggqhkjOPQMBBwNC\n"
    "AAR00N8qtG2op6f3QHsdoBxCEz5lAFbOQ/XiewAZu02I6WrmlnloiEaDw23lvCyT\n"
    "7ejcAibIOMXDaPNjivz2sWAho1MwUTAdBgNVHQ4EFgQUAi2rnDprGIZWnytwH5Bm\n"
    "yoJVEG4wHwYDVR0jBBgwFoAUAi2rnDprGIZWnytwH5BmyoJVEG4wDwYDVR0TAQH/\n"
    "BAUwAwEB/zAKBggqhkjOPQQDAgNIADBFAiEAyRl7WWHjiqC/pRscPm/koJb9M9AJ\n"
    "7CPAhribT/HsSpACIEGAD8E5mqRvOEvh+zJlmuAF/lJT1AXjeztJUXa5sGtv\n"
    "-----END CERTIFICATE-----\n";
constexpr const char* vectorFingerprint =
    "d76615f9edb3a4d5725221b0f1209b5f2cef79080a950bd9f2d18e16b4b3c9d8";
/// A key on secp256k1, which has as many bits as one on P-256.
constexpr const char* kCertificateOnAnotherCurve =
    "-----BEGIN CERTIFICATE-----\n"
    "MIIBdjCCARygAwIBAgIURL6MRO8LTBIRenl1RN8a+Llb1PQwCgYIKoZIzj0EAwIw\n"
    "ETEPMA0GA1UEAwwGdmVjdG9yMCAXDTI2MTEyMjEyNTQ0NVoYDzIxMjYxMDI5MTI1\n"
    "NDQ1WjARMQ8wDQYDVQQDDAZ2ZWN0b3IwVjAQBgcqhkjOPQIBBgUrgQQACgNCAATT\n"
    "y+q7yG5xFPVVPOlU1oysn9MjjNdLTSkIKrwCx/PQEE9SemJVMAKq3sMD1x3I+d5o\n"
    "WPNn71N6qodsxSPtvRhCo1MwUTAdBgNVHQ4EFgQUVSVIH/gv4i0op/555KNAULde\n"
    "ffEwHwYDVR0jBBgwFoAUVSVIH/gv4i0op/555KNAULdeffEwDwYDVR0TAQH/BAUw\n"
    "AwEB/zAKBggqhkjOPQQDAgNIADBFAiATroZJGcxxBnnpl/CDypf8OydI5yiRG/tN\n"
    "b41ih3MeQQIhALLWi4w8nN7uwPkRaUKIgeg8rPaHa/+TCFjKkzYAyvuC\n"
    "-----END CERTIFICATE-----\n";
/// The curve is P-256, but spelled out: whoever made it may have chosen other parameters.
constexpr const char* kCertificateOnASpelledOutCurve =
    "-----BEGIN CERTIFICATE-----\n"
    "MIICbjCCAhOgAwIBAgIUHYOts68IjuCxkPrHrFRKf24+BGAwCgYIKoZIzj0EAwIw\n"
    "ETEPMA0GA1UEAwwGdmVjdG9yMCAXDTI2MTEyMjEyNTQ0NloYDzIxMjYxMDI5MTI1\n"
    "NDQ2WjARMQ8wDQYDVQQDDAZ2ZWN0b3IwggFLMIIBAwYHKoZIzj0CATCB9wIBATAs\n"
    "BgcqhkjOPQEBAiEA/////wAAAAEAAAAAAAAAAAAAAAD///////////////8wWwQg\n"
    "/////wAAAAEAAAAAAAAAAAAAAAD///////////////wEIFrGNdiqOpPns+u9VXaY\n"
    "hrxlHQawzFOw9jvOPD4n0mBLAxUAxJ02CIbnBJNqZnjhE50mt4GffpAEQQRrF9Hy\n"
    "4SxCR/i85uVjpEDydwN9gS3rM6D0oTlF2JjClk/jQuL+Gn+bjufrSnwPnhYrzjNX\n"
    "azFezsu2QGg3v1H1AiEA/////wAAAAD//////////7zm+q2nF56E87nKwvxjJVEC\n"
    "AQEDQgAEvov34OuTafuKTtwud65eXOlvAfMjwJAtWWpy+LmgnZLQBtWf/6J3CVAQ\n"
    "OsUO5Ml2JkiaKcw6xB/v6hSR1e3WSKNTMFEwHQYDVR0OBBYEFIwnOIvxy8mZeCnG\n"
    "Xwow/53od4HfMB8GA1UdIwQYMBaAFIwnOIvxy8mZeCnGXwow/53od4HfMA8GA1Ud\n"
    "EwEB/wQFMAMBAf8wCgYIKoZIzj0EAwIDSQAwRgIhAK53w46xE6PMzeALiFUIHulS\n"
    "rP5annbmaBaokAUNI/XIAiEA4E/YAkgcqLGcnVnBR7I4XBewF6AB33whl/VIEgb1\n"
    "oD8=\n"
    "-----END CERTIFICATE-----\n";

LinkDigest digestOf(std::uint8_t byte)
{
    LinkDigest digest{};
    digest.fill(byte);
    return digest;
}

std::string printOf(const QSslCertificate& certificate)
{
    const auto print = fingerprint(certificate);
    return print ? hexadecimal(*print) : "none";
}
std::string printOf(const char* pem) { return printOf(QSslCertificate(QByteArray(pem))); }

PairingFacts vectorFacts(std::uint8_t deviceNonce, std::uint8_t hostNonce)
{
    const std::string words = "greeting and answer";
    return {digestOf(deviceNonce), digestOf(hostNonce), digestOf(3), digestOf(4),
            Bytes(words.begin(), words.end())};
}

TEST(PairingProofTest, AFingerprintIsTheHashOfThePublicKeyAsOtherToolsShowIt)
{
    EXPECT_EQ(printOf(vectorCertificate), vectorFingerprint);
}

TEST(PairingProofTest, ARenewedCertificateOfTheSameKeyIsTheSamePeer)
{
    EXPECT_EQ(printOf(renewedCertificate), vectorFingerprint);
}

TEST(PairingProofTest, OnlyKeysOnTheOneCurveHaveAFingerprint)
{
    for (const char* key : {"RSA", "P-384", "P-521", "Ed25519", "brainpoolP256r1"})
        EXPECT_EQ(printOf(MadeCertificate(key).shown()), "none") << key;
    EXPECT_EQ(printOf(kCertificateOnAnotherCurve), "none");
    EXPECT_EQ(printOf(kCertificateOnASpelledOutCurve), "none");
    EXPECT_EQ(printOf(QSslCertificate()), "none");
    EXPECT_NE(printOf(MadeCertificate("P-256").shown()), "none");
}

TEST(PairingProofTest, SurvivesAKeyThatCannotBeDecoded)
{
    QByteArray der = QSslCertificate(QByteArray(vectorCertificate)).toDer();
    const auto point = der.indexOf(QByteArray::fromHex("034200")) + 3;
    der[point] = 9; // no kind of point
    const QSslCertificate broken(der, QSsl::Der);
    ASSERT_FALSE(broken.isNull());
    EXPECT_EQ(printOf(broken), "none");
}

// HMAC-SHA-256 by the openssl command, over "farview code 1", both keys and the words.
TEST(PairingProofTest, TheDigitsAreThoseThatOthersCompute)
{
    EXPECT_EQ(pairingDigits(vectorFacts(1, 2)), "994469");
    EXPECT_EQ(pairingDigits(vectorFacts(2, 1)), "854492");
}

TEST(PairingProofTest, TheDigitsAreSixAlsoWhenTheyBeginWithZeroes)
{
    EXPECT_EQ(pairingDigits(vectorFacts(0, 13)), "000598");
    EXPECT_EQ(pairingDigits(vectorFacts(12, 39)), "000027");
    EXPECT_EQ(pairingDigits(vectorFacts(27, 95)), "000005");
}

TEST(PairingProofTest, EveryFactDecidesTheDigits)
{
    const PairingFacts facts = vectorFacts(1, 2);
    std::vector<PairingFacts> others(5, facts);
    others[0].deviceNonce[31] ^= 1;
    others[1].hostNonce[0] ^= 1;
    others[2].hostKey[31] ^= 1;
    others[3].deviceKey[0] ^= 1;
    others[4].agreement.push_back(0);
    for (const auto& other : others)
        EXPECT_NE(pairingDigits(other), pairingDigits(facts));
    std::swap(others[0].hostKey, others[0].deviceKey);
    EXPECT_NE(pairingDigits(others[0]), pairingDigits(facts));
}

TEST(PairingProofTest, ACommitmentIsAHashOfItsOwnKind)
{
    EXPECT_EQ(hexadecimal(commitmentTo(digestOf(5))),
              "525fe828ceaec634086636491e7c944887a7d28c0851d3c1f4ad7f2dd871ecc3");
    EXPECT_EQ(hexadecimal(sha256(Bytes{'a', 'b', 'c'})),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(PairingProofTest, NoNonceIsMadeTwice)
{
    EXPECT_NE(makeNonce(), makeNonce());
    EXPECT_NE(makeNonce(), LinkDigest{});
}

} // namespace
