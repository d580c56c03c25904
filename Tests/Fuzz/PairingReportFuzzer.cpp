// What the server says of a device's key, which any program of the user's can say.

#include "Common/Rules/PairingTexts.h"
#include "Tests/Fuzz/Expect.h"

using namespace farview;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(bytes, bytes + size);
    const PairingReport report = pairingReport(&text);
    const std::string written = textOfPairingReport(report);
    expect(pairingReport(&written) == report, "a report is read as it was written");
    const bool isNothing = report.state == PairingReport::State::none;
    const auto inWords = [](const std::string& key) { return key; };
    expect(pairingSentence(report, inWords).empty() == isNothing, "every report can be told");
    expect(report.digits.empty() || arePairingDigits(report.digits), "digits are digits");
    return 0;
}
