// What a peer with a key of its own says before it is known: frames, and the introduction.

#include "Link/Introduction.h"
#include "Link/Wire/LinkCodec.h"
#include "Tests/Fuzz/Expect.h"

using namespace farview;

namespace
{

/// The user, and what of the peer's words decides whether it is trusted.
struct Facts {
    bool isKnown = false;
    bool areKnownToEachOther = false;
    bool hasUserConfirmed = false;
    bool hasPeerConfirmed = false;
    std::optional<LinkDigest> commitment = {};
    /// Whether the peer told the nonce that it was bound to; a device's peer is bound to none.
    bool isNonceAsPromised = false;
};

Introduction::Step answer(Introduction& introduction, Introduction::Step step, Facts& facts,
                          bool userConfirms)
{
    std::vector<LinkFrame> reply;
    if (step == Introduction::Step::strange)
        introduction.beginPairing(reply);
    if (step != Introduction::Step::compare || !userConfirms)
        return step;
    facts.hasUserConfirmed = true;
    return introduction.confirm(reply);
}

void note(const LinkFrame& frame, Facts& facts)
{
    if (const auto* standing = std::get_if<LinkStanding>(&frame))
        facts.areKnownToEachOther = facts.isKnown && standing->knowsPeer;
    if (const auto* commitment = std::get_if<LinkCommitment>(&frame))
        facts.commitment = commitment->value;
    if (const auto* nonce = std::get_if<LinkNonce>(&frame))
        facts.isNonceAsPromised |= facts.commitment == commitmentTo(nonce->value);
    if (std::holds_alternative<LinkConfirmed>(frame))
        facts.hasPeerConfirmed = true;
}

void introduce(LinkSide side, Facts facts, bool userConfirms, ByteView bytes)
{
    Introduction introduction(side, facts.isKnown, {});
    for (;;) {
        const auto frame = decodeFrame(bytes, kLinkShortPayloadLimit);
        expect(frame.status != DecodeStatus::incomplete ||
                   bytes.size() < kLinkFrameHeaderSize + kLinkShortPayloadLimit,
               "little is kept of a frame that is not complete");
        if (frame.status != DecodeStatus::complete)
            return;
        bytes = bytes.subspan(frame.consumed);
        note(frame.value, facts);
        std::vector<LinkFrame> reply;
        const auto said = introduction.take(frame.value, reply);
        const auto step = answer(introduction, said, facts, userConfirms);
        expect(side == LinkSide::device || introduction.digits().empty() || facts.isNonceAsPromised,
               "a nonce that was not promised shows no digits");
        expect(step != Introduction::Step::done || facts.areKnownToEachOther ||
                   (facts.hasUserConfirmed && facts.hasPeerConfirmed),
               "nobody is trusted unasked");
        if (step == Introduction::Step::done || step == Introduction::Step::broken)
            return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    const unsigned choice = bytes[0];
    introduce((choice & 1U) != 0 ? LinkSide::host : LinkSide::device,
              {.isKnown = (choice & 2U) != 0}, (choice & 4U) != 0, {bytes + 1, size - 1});
    return 0;
}
