// Greetings of hosts and answers of devices: the first bytes between strangers.

#include "Link/Wire/LinkCodec.h"
#include "Tests/Fuzz/Expect.h"

using farview::ByteView;
using farview::DecodeStatus;

namespace
{

template <typename Decoded, typename Encode, typename Decode>
void readAgain(const Decoded& decoded, std::size_t size, Encode encode, Decode decode)
{
    if (decoded.status != DecodeStatus::complete)
        return;
    expect(decoded.consumed <= size && decoded.consumed <= farview::kLinkGreetingLimit,
           "it ends within its bytes and its limit");
    const auto again = decode(encode(decoded.value));
    expect(again.status == DecodeStatus::complete && again.value == decoded.value,
           "it is read as it was written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const ByteView view(bytes, size);
    const auto greeting = farview::decodeGreeting(view);
    readAgain(greeting, size, farview::encodeGreeting, farview::decodeGreeting);
    if (greeting.status == DecodeStatus::complete)
        farview::agreementBetween(greeting.value, farview::ownGreeting());
    const auto answer = farview::decodeAnswer(view);
    readAgain(answer, size, farview::encodeAnswer, farview::decodeAnswer);
    if (const auto* agreement = std::get_if<farview::LinkAgreement>(&answer.value))
        expect(!farview::agreementFits(*agreement, farview::ownGreeting()) ||
                   agreement->has(farview::kLinkEncryptionFeature),
               "no agreement fits that goes on in clear");
    const auto* text = reinterpret_cast<const char*>(bytes);
    expect(farview::plainLinkText({text, size}, farview::kLinkTextLimit).size() <=
               farview::kLinkTextLimit,
           "a text keeps its limit");
    return 0;
}
