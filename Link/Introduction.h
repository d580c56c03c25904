#pragma once

#include "Link/Keys/PairingProof.h"

#include <string>
#include <vector>

namespace farview
{

/// What two sides say to each other once each has proved its key: whether they know each other and,
/// when one does not, what their users compare. Knows no socket and no clock.
class Introduction
{
public:
    enum class Step {
        goesOn,  ///< the other's turn, or the user's
        strange, ///< one does not know the other: `beginPairing`, or leave
        compare, ///< the digits are known now: the user is to be asked
        done,    ///< each trusts the other
        broken,  ///< the other broke a rule, or its nonce is not what it was bound to
    };

    /// The keys and the bytes of greeting and answer; the nonces are the introduction's own affair.
    Introduction(LinkSide side, bool knowsPeer, PairingFacts facts);

    /// What to send first.
    LinkFrame standing() const { return LinkStanding{mKnowsPeer}; }
    /// Takes in what the other side said; `reply` gets what to send.
    Step take(const LinkFrame& frame, std::vector<LinkFrame>& reply);
    /// The user may be asked; once, after `strange`.
    void beginPairing(std::vector<LinkFrame>& reply);
    /// This side's user has compared the digits; nothing before there are any, or twice.
    Step confirm(std::vector<LinkFrame>& reply);

    /// Empty until both nonces are known.
    const std::string& digits() const { return mDigits; }
    /// Whether the other side could know the digits by now.
    bool isGuessSpent() const { return mCommitment.has_value() || !mDigits.empty(); }

private:
    Step take(const LinkStanding& frame);
    Step take(const LinkCommitment& frame, std::vector<LinkFrame>& reply);
    Step take(const LinkNonce& frame, std::vector<LinkFrame>& reply);
    Step take(const LinkConfirmed& frame);
    LinkDigest& ownNonce();
    Step nextStep() const;

    LinkSide mSide;
    bool mKnowsPeer;
    PairingFacts mFacts;
    bool mHasStanding = false; ///< the other's
    bool mIsPairing = false;
    std::optional<LinkDigest> mCommitment; ///< the device's, on the host's side
    std::string mDigits;
    bool mIsConfirmedHere = false;
    bool mIsConfirmedThere = false;
};

} // namespace farview
