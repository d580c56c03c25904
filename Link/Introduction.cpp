#include "Link/Introduction.h"

#include <utility>

namespace farview
{

Introduction::Introduction(LinkSide side, bool knowsPeer, PairingFacts facts)
    : mSide(side), mKnowsPeer(knowsPeer), mFacts(std::move(facts))
{
    ownNonce() = makeNonce();
}

LinkDigest& Introduction::ownNonce()
{
    return mSide == LinkSide::host ? mFacts.hostNonce : mFacts.deviceNonce;
}

Introduction::Step Introduction::take(const LinkFrame& frame, std::vector<LinkFrame>& reply)
{
    if (const auto* standing = std::get_if<LinkStanding>(&frame))
        return take(*standing);
    if (const auto* commitment = std::get_if<LinkCommitment>(&frame))
        return take(*commitment);
    if (const auto* nonce = std::get_if<LinkNonce>(&frame))
        return take(*nonce, reply);
    if (const auto* confirmed = std::get_if<LinkConfirmed>(&frame))
        return take(*confirmed);
    return Step::broken;
}

Introduction::Step Introduction::take(const LinkStanding& frame)
{
    if (std::exchange(mHasStanding, true))
        return Step::broken;
    if (mKnowsPeer && frame.knowsPeer)
        return Step::done;
    mIsStrange = true;
    return mSide == LinkSide::device ? Step::strange : Step::goesOn;
}

void Introduction::beginPairing(std::vector<LinkFrame>& reply)
{
    mIsPairing = true;
    if (mSide == LinkSide::device)
        reply.emplace_back(LinkCommitment{commitmentTo(mFacts.deviceNonce)});
    else if (mCommitment)
        reply.emplace_back(LinkNonce{ownNonce()});
}

Introduction::Step Introduction::take(const LinkCommitment& frame)
{
    if (mSide == LinkSide::device || !mIsStrange || mCommitment)
        return Step::broken;
    mCommitment = frame.value;
    return Step::strange;
}

Introduction::Step Introduction::take(const LinkNonce& frame, std::vector<LinkFrame>& reply)
{
    if (!mIsPairing || !mDigits.empty())
        return Step::broken;
    if (mSide == LinkSide::host && commitmentTo(frame.value) != *mCommitment)
        return Step::broken;
    (mSide == LinkSide::host ? mFacts.deviceNonce : mFacts.hostNonce) = frame.value;
    if (mSide == LinkSide::device)
        reply.emplace_back(LinkNonce{ownNonce()});
    mDigits = pairingDigits(mFacts);
    return Step::compare;
}

Introduction::Step Introduction::take(const LinkConfirmed& /*frame*/)
{
    if (mDigits.empty() || std::exchange(mIsConfirmedThere, true))
        return Step::broken;
    return nextStep();
}

Introduction::Step Introduction::confirm(std::vector<LinkFrame>& reply)
{
    if (mDigits.empty() || std::exchange(mIsConfirmedHere, true))
        return Step::goesOn;
    reply.emplace_back(LinkConfirmed{});
    return nextStep();
}

Introduction::Step Introduction::nextStep() const
{
    return mIsConfirmedHere && mIsConfirmedThere ? Step::done : Step::goesOn;
}

} // namespace farview
