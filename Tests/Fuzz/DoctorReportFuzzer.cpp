// The reports of the diagnosis, whose values come from files, environments and the network.

#include "Applications/Doctor/Report.h"
#include "Applications/Doctor/Sentence.h"
#include "Tests/Fuzz/Expect.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using namespace farview;

namespace
{

/// Three texts from the input, NULs between them; the last one holds the rest.
std::vector<std::string> valuesFrom(std::string input)
{
    std::vector<std::string> values;
    for (int i = 0; i < 2; ++i) {
        const auto end = std::min(input.find('\0'), input.size());
        values.push_back(input.substr(0, end));
        input.erase(0, end + 1);
    }
    values.push_back(input);
    return values;
}

std::string same(const std::string& text) { return text; }

bool isControl(char letter)
{
    const auto byte = static_cast<unsigned char>(letter);
    return (byte < 0x20 && letter != '\n') || byte == 0x7F;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const auto values = valuesFrom({reinterpret_cast<const char*>(bytes), size});
    const Finding finding{Area::devices,
                          Severity::problem,
                          "refuses",
                          {"“%@” at %@ refuses this computer: %@", values},
                          {"Look at %@.", values},
                          {{"name", values[0]}, {"answer", values[2]}}};
    const Report report{"1.0", "2026-03-01T12:00:00Z", true, {finding}};

    const std::string text = renderedText(report, same);
    expect(std::count(text.begin(), text.end(), '\n') == 6, "a value stays on its line");
    expect(std::none_of(text.begin(), text.end(), isControl), "no control character is left");

    const std::string json = renderedJSON(report);
    expect(std::none_of(json.begin(), json.end(), isControl), "nor in the report for programs");
    const auto object = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
    const auto first = object["findings"].toArray().at(0).toObject();
    expect(first["id"].toString() == QLatin1String("devices.refuses"), "it can be read again");
    expect(first["text"].toString().toStdString() == shownSentence(finding.text, same),
           "and says the same");
    return 0;
}
