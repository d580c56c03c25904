#include "Link/Wire/LinkCodec.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using namespace farview;
using testing::ElementsAre;

namespace
{

const Bytes kShortestGreeting{0x46, 0x56, 0x45, 0x4C, 0x49, 0x4E, 0x4B, 0x0A, 3, 0, 1, 1, 0};

Bytes withBody(Bytes body)
{
    Bytes bytes(kShortestGreeting.begin(), kShortestGreeting.begin() + 8);
    bytes.push_back(static_cast<std::uint8_t>(body.size() & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(body.size() >> 8));
    bytes.insert(bytes.end(), body.begin(), body.end());
    return bytes;
}

/// Every beginning of `bytes` must be incomplete, the whole complete.
template <typename Decode> void expectCompleteOnlyAtTheEnd(const Bytes& bytes, Decode decode)
{
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_EQ(decode(ByteView(bytes).first(size)).status, DecodeStatus::incomplete)
            << "after " << size << " bytes";
    }
    const auto whole = decode(bytes);
    EXPECT_EQ(whole.status, DecodeStatus::complete);
    EXPECT_EQ(whole.consumed, bytes.size());
}

DecodeStatus greetingStatus(const Bytes& bytes) { return decodeGreeting(bytes).status; }

DecodeStatus answerStatus(const Bytes& body) { return decodeAnswer(withBody(body)).status; }

DecodeStatus frameStatus(const Bytes& bytes) { return decodeFrame(bytes).status; }

LinkGreeting largestGreeting()
{
    LinkGreeting greeting{1, 255, {}};
    for (int index = 0; index < 16; ++index) {
        std::string name(kLinkFeatureNameLimit, 'x');
        name[0] = static_cast<char>('a' + index);
        greeting.features.push_back({name, index % 2 == 0});
    }
    return greeting;
}

std::vector<LinkFrame> everyFrame()
{
    return {LinkOptions{},
            LinkOptions{true, false, false, true},
            LinkOptions{false, true, true, false, true},
            LinkKeepAlive{},
            LinkGoodbye{LinkGoodbyeCode::quitting, "See you"},
            LinkStanding{true},
            LinkStanding{false},
            LinkCommitment{{1, 2, 3}},
            LinkNonce{{4, 5, 6}},
            LinkConfirmed{},
            LinkGoodbye{LinkGoodbyeCode::brokenRule, ""},
            LinkScreenRectangle{{-1, 2, 300, -4}, 4, {9, 8, 7}},
            LinkScreenRectangle{},
            LinkFrameEnd{0xfffefdfc},
            LinkShown{1, 16'667},
            LinkPictureSize{kLargestPictureSide, 1},
            LinkPictureSize{},
            LinkDeviceScreen{1920, 1200, 125, 60},
            LinkTouch{15, LinkTouchPhase::cancel, {256, 511, 2, 3}, 1, 40, 50},
            LinkTouch{},
            LinkPen{{1, 2, 3, 4}, false, true, true, 65535, -90, 90, 3},
            LinkPen{{}, true},
            LinkPointer{{16384 * 256 - 1, 0, 16384, 1}, 31},
            LinkWheel{{}, -120, 32767},
            LinkKey{255, true},
            LinkKey{1, false},
            LinkText{"Grüße"},
            LinkText{}};
}

} // namespace

TEST(GreetingCodec, WritesTheBytesOfTheDocument)
{
    EXPECT_EQ(encodeGreeting({1, 1, {}}), kShortestGreeting);
    EXPECT_EQ(encodeAnswer(LinkAgreement{1, {}}), kShortestGreeting);
}

TEST(GreetingCodec, ReadsBackWhatItWrote)
{
    const LinkGreeting greeting{2, 7, {{"encryption", true}, {"screen", false}}};
    const auto decoded = decodeGreeting(encodeGreeting(greeting));
    EXPECT_EQ(decoded.status, DecodeStatus::complete);
    EXPECT_EQ(decoded.value, greeting);
}

TEST(GreetingCodec, KeepsTheLargestGreetingWithinItsLimit)
{
    const Bytes bytes = encodeGreeting(largestGreeting());
    EXPECT_LE(bytes.size(), kLinkGreetingLimit);
    EXPECT_EQ(decodeGreeting(bytes).value, largestGreeting());
}

TEST(GreetingCodec, IsCompleteOnlyWithItsLastByte)
{
    expectCompleteOnlyAtTheEnd(encodeGreeting(largestGreeting()), decodeGreeting);
}

TEST(GreetingCodec, LeavesWhatFollowsAlone)
{
    Bytes bytes = kShortestGreeting;
    bytes.push_back(0xFF);
    EXPECT_EQ(decodeGreeting(bytes).consumed, kShortestGreeting.size());
}

TEST(GreetingCodec, RefusesAForeignProtocolAtItsFirstByte)
{
    EXPECT_EQ(greetingStatus({'G'}), DecodeStatus::malformed);
    EXPECT_EQ(greetingStatus({'F', 'V', 'X'}), DecodeStatus::malformed);
    EXPECT_EQ(greetingStatus({'F', 'V'}), DecodeStatus::incomplete);
}

TEST(GreetingCodec, RefusesASizeBeyondTheLimitBeforeItsBytesCome)
{
    Bytes bytes(kShortestGreeting.begin(), kShortestGreeting.begin() + 8);
    bytes.insert(bytes.end(), {0xF7, 0x01});
    EXPECT_EQ(greetingStatus(bytes), DecodeStatus::malformed) << "503 bytes";
    bytes[8] = 0xF6;
    EXPECT_EQ(greetingStatus(bytes), DecodeStatus::incomplete) << "502 bytes";
}

TEST(GreetingCodec, RefusesABadBody)
{
    Bytes nameTooLong{1, 1, 1, 0, 25};
    nameTooLong.insert(nameTooLong.end(), 25, 'a');
    const std::vector<std::pair<const char*, Bytes>> bodies = {
        {"no body", {}},
        {"cut after the versions", {1, 1}},
        {"version 0", {0, 1, 0}},
        {"range upside down", {3, 2, 0}},
        {"something behind", {1, 1, 0, 0}},
        {"feature promised, none there", {1, 1, 1}},
        {"feature without a name", {1, 1, 1, 0, 0}},
        {"feature cut short", {1, 1, 1, 0, 3, 'a', 'b'}},
        {"unknown flag", {1, 1, 1, 2, 1, 'a'}},
        {"capital letter", {1, 1, 1, 0, 1, 'A'}},
        {"control character", {1, 1, 1, 0, 1, 7}},
        {"wrong order", {1, 1, 2, 0, 1, 'b', 0, 1, 'a'}},
        {"twice the same", {1, 1, 2, 0, 1, 'a', 0, 1, 'a'}},
        {"17 features", {1, 1, 17}},
        {"name too long", nameTooLong}};
    for (const auto& [what, body] : bodies)
        EXPECT_EQ(greetingStatus(withBody(body)), DecodeStatus::malformed) << what;
}

TEST(GreetingCodec, WritesOnlyFeaturesThatCanBeRead)
{
    const LinkGreeting odd{
        1, 1, {{"screen", false}, {"Bad Name", true}, {"", true}, {"a", true}, {"a", true}}};
    const auto decoded = decodeGreeting(encodeGreeting(odd));
    ASSERT_EQ(decoded.status, DecodeStatus::complete);
    EXPECT_THAT(decoded.value.features,
                ElementsAre(LinkFeature{"a", true}, LinkFeature{"screen", false}));
}

TEST(AnswerCodec, ReadsBackWhatItWrote)
{
    const std::vector<LinkAnswer> answers{LinkAgreement{3, {"encryption", "screen"}},
                                          LinkRefusal{LinkRefusalCode::inUse, "In use"},
                                          LinkRefusal{LinkRefusalCode::noAgreement, ""}};
    for (const LinkAnswer& answer : answers) {
        expectCompleteOnlyAtTheEnd(encodeAnswer(answer), decodeAnswer);
        EXPECT_EQ(decodeAnswer(encodeAnswer(answer)).value, answer);
    }
}

TEST(AnswerCodec, RefusesWhatIsNeitherYesNorNo)
{
    EXPECT_EQ(answerStatus({}), DecodeStatus::malformed);
    EXPECT_EQ(answerStatus({3, 1, 0}), DecodeStatus::malformed);
    EXPECT_EQ(answerStatus({1, 0, 0}), DecodeStatus::malformed) << "version 0";
    EXPECT_EQ(answerStatus({1, 1, 1, 1, 1, 'a'}), DecodeStatus::malformed) << "flag in an answer";
    EXPECT_EQ(answerStatus({2, 1}), DecodeStatus::malformed);
    EXPECT_EQ(answerStatus({2, 1, 2, 'x'}), DecodeStatus::malformed) << "text cut short";
    EXPECT_EQ(answerStatus({2, 1, 0, 'x'}), DecodeStatus::malformed) << "something behind";
}

TEST(AnswerCodec, RefusesATextOf201Bytes)
{
    Bytes body{2, 1, 200};
    body.insert(body.end(), 200, 'x');
    EXPECT_EQ(answerStatus(body), DecodeStatus::complete);
    body[2] = 201;
    body.push_back('x');
    EXPECT_EQ(answerStatus(body), DecodeStatus::malformed);
}

TEST(AnswerCodec, TakesAnUnknownCodeForTheUsersRefusal)
{
    const auto decoded = decodeAnswer(withBody({2, 99, 2, 'n', 'o'}));
    EXPECT_EQ(decoded.value, LinkAnswer(LinkRefusal{LinkRefusalCode::byUser, "no"}));
}

TEST(AnswerCodec, ShowsAHostileReasonHarmlessly)
{
    const auto decoded = decodeAnswer(withBody({2, 2, 5, '\n', 0x1B, 0xFF, 'o', 'k'}));
    ASSERT_EQ(decoded.status, DecodeStatus::complete);
    EXPECT_EQ(std::get<LinkRefusal>(decoded.value).text, "  ?ok");
}

TEST(FrameCodec, WritesTheBytesOfTheDocument)
{
    EXPECT_THAT(encodeFrame(LinkOptions{true, false, false, true}),
                ElementsAre(1, 0, 0, 0, 4, 0, 0, 0, 9, 0, 0, 0));
    EXPECT_THAT(encodeFrame(LinkKeepAlive{}), ElementsAre(2, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(encodeFrame(LinkScreenRectangle{{-1, 2, 300, -4}, 4, {0xAB}}),
                ElementsAre(16, 0, 0, 0, 14, 0, 0, 0, 0xFF, 0xFF, 2, 0, 0x2C, 1, 0xFC, 0xFF, 4, 1,
                            0, 0, 0, 0xAB));
}

TEST(FrameCodec, WritesTheHeadOfAFrameWithoutAPicturesData)
{
    for (const LinkFrame& frame : everyFrame()) {
        const auto* picture = std::get_if<LinkScreenRectangle>(&frame);
        Bytes head = encodeFrame(frame);
        head.resize(head.size() - (picture ? picture->data.size() : 0));
        EXPECT_EQ(encodeFrameHead(frame), head);
    }
}

TEST(FrameCodec, ReadsBackEveryFrameWhateverThePieces)
{
    for (const LinkFrame& frame : everyFrame()) {
        expectCompleteOnlyAtTheEnd(encodeFrame(frame),
                                   [](ByteView bytes) { return decodeFrame(bytes); });
        EXPECT_EQ(decodeFrame(encodeFrame(frame)).value, frame);
    }
}

TEST(FrameCodec, ReadsFramesOneAfterTheOther)
{
    Bytes stream;
    for (const LinkFrame& frame : everyFrame()) {
        const Bytes bytes = encodeFrame(frame);
        stream.insert(stream.end(), bytes.begin(), bytes.end());
    }
    ByteView rest(stream);
    for (const LinkFrame& frame : everyFrame()) {
        const auto decoded = decodeFrame(rest);
        ASSERT_EQ(decoded.status, DecodeStatus::complete);
        EXPECT_EQ(decoded.value, frame);
        rest = rest.subspan(decoded.consumed);
    }
    EXPECT_TRUE(rest.empty());
}

TEST(FrameCodec, RefusesSizesThatDoNotFitTheKindWithTheHeaderAlone)
{
    EXPECT_EQ(frameStatus({1, 0, 0, 0, 5, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({2, 0, 0, 0, 1, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({3, 0, 0, 0, 1, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({3, 0, 0, 0, 203, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({16, 0, 0, 0, 12, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({16, 0, 0, 0, 0x0E, 0, 0, 1}), DecodeStatus::malformed) << "16 MiB + 1";
    EXPECT_EQ(frameStatus({16, 0, 0, 0, 0x0D, 0, 0, 1}), DecodeStatus::incomplete) << "16 MiB";
    EXPECT_EQ(frameStatus({16, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({18, 0, 0, 0, 4, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({20, 0, 0, 0, 9, 0, 0, 0}), DecodeStatus::malformed);
}

TEST(FrameCodec, RefusesWhatWasNotAgreed)
{
    EXPECT_EQ(frameStatus({0, 0, 0, 0, 0, 0, 0, 0}), DecodeStatus::malformed) << "kind 0";
    EXPECT_EQ(frameStatus({4, 0, 0, 0, 0, 0, 0, 0}), DecodeStatus::malformed) << "kind 4";
    EXPECT_EQ(frameStatus({2, 1, 0, 0, 0, 0, 0, 0}), DecodeStatus::malformed) << "reserved byte";
    EXPECT_EQ(frameStatus({1, 0, 0, 0, 4, 0, 0, 0, 32, 0, 0, 0}), DecodeStatus::malformed)
        << "unknown option";
}

TEST(FrameCodec, RefusesNumbersThatNoPictureOrScreenHas)
{
    const std::vector<std::pair<const char*, Bytes>> frames = {
        {"no width", {19, 0, 0, 0, 4, 0, 0, 0, 0, 0, 1, 0}},
        {"no height", {19, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0}},
        {"too wide", {19, 0, 0, 0, 4, 0, 0, 0, 1, 0x40, 1, 0}},
        {"a screen of 65535", {20, 0, 0, 0, 8, 0, 0, 0, 255, 255, 1, 0, 100, 0, 60, 0}},
        {"scale 0.49", {20, 0, 0, 0, 8, 0, 0, 0, 1, 0, 1, 0, 49, 0, 60, 0}},
        {"no refresh", {20, 0, 0, 0, 8, 0, 0, 0, 1, 0, 1, 0, 100, 0, 0, 0}},
        {"half a number", {17, 0, 0, 0, 2, 0, 0, 0, 1, 0}}};
    for (const auto& [what, bytes] : frames)
        EXPECT_EQ(frameStatus(bytes), DecodeStatus::malformed) << what;
}

TEST(FrameCodec, RefusesALongFrameWhereOnlyShortOnesAreSaid)
{
    const Bytes head = encodeFrameHead(LinkScreenRectangle{{0, 0, 1, 1}, 0, Bytes(4096)});
    EXPECT_EQ(decodeFrame(head).status, DecodeStatus::incomplete);
    EXPECT_EQ(decodeFrame(head, kLinkShortPayloadLimit).status, DecodeStatus::malformed);
    const LinkFrame longest = LinkGoodbye{LinkGoodbyeCode::byUser, std::string(5000, 'x')};
    EXPECT_EQ(decodeFrame(encodeFrame(longest), kLinkShortPayloadLimit).status,
              DecodeStatus::complete);
}

TEST(FrameCodec, RefusesInputThatNobodyCanGive)
{
    LinkTouch touch;
    touch.finger = mostLinkFingers;
    const auto phase = [] {
        Bytes bytes = encodeFrame(LinkTouch{});
        bytes[kLinkFrameHeaderSize + 1] = 4;
        return bytes;
    }();
    const std::vector<std::pair<const char*, Bytes>> frames = {
        {"a finger too many", encodeFrame(touch)},
        {"an unknown phase", phase},
        {"beside the picture", encodeFrame(LinkPointer{{256, 0, 1, 1}, 0})},
        {"below the picture", encodeFrame(LinkPointer{{0, 256, 1, 1}, 0})},
        {"on no picture", encodeFrame(LinkPointer{{0, 0, 0, 0}, 0})},
        {"a picture too large", encodeFrame(LinkWheel{{0, 0, 16385, 1}, 0, 0})},
        {"a sixth button", encodeFrame(LinkPointer{{}, 32})},
        {"a pen lying beyond", encodeFrame(LinkPen{{}, true, true, false, 0, 91, 0})},
        {"a pen of four buttons", encodeFrame(LinkPen{{}, true, true, false, 0, 0, 0, 4})},
        {"key 0", encodeFrame(LinkKey{0, true})},
        {"half a key", {36, 0, 0, 0, 1, 0, 0, 0, 30}},
        {"a key in between", {36, 0, 0, 0, 2, 0, 0, 0, 30, 2}},
        {"a text without its length", {37, 0, 0, 0, 0, 0, 0, 0}},
        {"an unknown kind", {38, 0, 0, 0, 0, 0, 0, 0}}};
    for (const auto& [what, bytes] : frames)
        EXPECT_EQ(frameStatus(bytes), DecodeStatus::malformed) << what;
}

TEST(FrameCodec, RefusesIntroductionsOfAnotherSize)
{
    EXPECT_EQ(frameStatus({4, 0, 0, 0, 1, 0, 0, 0, 2}), DecodeStatus::malformed) << "no truth";
    EXPECT_EQ(frameStatus({4, 0, 0, 0, 2, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({5, 0, 0, 0, 31, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({6, 0, 0, 0, 33, 0, 0, 0}), DecodeStatus::malformed);
    EXPECT_EQ(frameStatus({7, 0, 0, 0, 1, 0, 0, 0}), DecodeStatus::malformed);
}

TEST(LinkFrame, IsSaidByOneSideOrBoth)
{
    for (const LinkFrame& frame : everyFrame()) {
        const bool isAnyTime = std::holds_alternative<LinkKeepAlive>(frame) ||
                               std::holds_alternative<LinkGoodbye>(frame);
        const bool isForBoth = isAnyTime || (isOfIntroduction(frame) &&
                                             !std::holds_alternative<LinkCommitment>(frame));
        EXPECT_EQ(isFromHost(frame) && isFromDevice(frame), isForBoth);
        EXPECT_TRUE(isFromHost(frame) || isFromDevice(frame));
        const bool isOfBase =
            isAnyTime || isOfIntroduction(frame) || std::holds_alternative<LinkOptions>(frame);
        EXPECT_EQ(featureFor(frame), isOfBase           ? nullptr
                                     : isOfInput(frame) ? kLinkInputFeature
                                                        : kLinkScreenFeature);
    }
    EXPECT_FALSE(isFromHost(LinkCommitment{}));
    EXPECT_FALSE(isFromHost(LinkShown{}));
    EXPECT_FALSE(isFromHost(LinkKey{}));
    EXPECT_FALSE(isFromDevice(LinkFrameEnd{}));
}

TEST(FrameCodec, RefusesAScreenHeaderThatDisagreesWithItsFrame)
{
    Bytes bytes = encodeFrame(LinkScreenRectangle{{0, 0, 1, 1}, 0, {1, 2, 3}});
    bytes[8 + 9] = 2;
    EXPECT_EQ(frameStatus(bytes), DecodeStatus::malformed) << "a byte behind the data";
    bytes[8 + 9] = 4;
    EXPECT_EQ(frameStatus(bytes), DecodeStatus::malformed) << "a byte missing";
}

TEST(FrameCodec, SurvivesEverySingleChangedByte)
{
    for (const LinkFrame& frame : everyFrame()) {
        const Bytes good = encodeFrame(frame);
        for (std::size_t place = 0; place < good.size(); ++place) {
            for (int value = 0; value < 256; ++value) {
                Bytes bytes = good;
                bytes[place] = static_cast<std::uint8_t>(value);
                const auto decoded = decodeFrame(bytes);
                EXPECT_LE(decoded.consumed, bytes.size());
                EXPECT_EQ(decoded.consumed != 0, decoded.status == DecodeStatus::complete);
            }
        }
    }
}

TEST(LinkCodec, HasOneEncodingForEachValue)
{
    // Whatever random change still decodes must encode to the same bytes again, or two different
    // greetings could stand for one agreement.
    std::mt19937 random(7);
    int accepted = 0;
    const Bytes good = encodeGreeting({1, 3, {{"alpha", true}, {"screen", false}}});
    for (int round = 0; round < 20000; ++round) {
        Bytes bytes = good;
        for (int change = 0; change < 2; ++change)
            bytes[8 + random() % (bytes.size() - 8)] = static_cast<std::uint8_t>(random() % 128);
        const auto decoded = decodeGreeting(bytes);
        if (decoded.status != DecodeStatus::complete)
            continue;
        ++accepted;
        bytes.resize(decoded.consumed);
        EXPECT_EQ(encodeGreeting(decoded.value), bytes);
    }
    EXPECT_GT(accepted, 100);
}
