// What the server says of a monitor, which any program of the user's can say.

#include "Common/Rules/ScreenTexts.h"
#include "Tests/Fuzz/Expect.h"

using namespace farview;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(bytes, bytes + size);
    const ScreenReport report = screenReport(&text);
    const std::string written = textOfScreenReport(report);
    expect(screenReport(&written) == report, "a report is read as it was written");
    const auto inWords = [](const std::string& key) { return key; };
    expect(!screenSentence(report, inWords).empty(), "every report can be told");
    screenAdvice(report, true, inWords);
    if (report.screens.empty())
        return 0;
    const PixelRect& monitor = report.monitor;
    const auto side = sideOf(monitor, report.screens.front());
    cornerBeside(side, monitor.width, monitor.height, report.screens);
    return 0;
}
