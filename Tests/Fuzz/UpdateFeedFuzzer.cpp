// Feeds of updates, which whoever answers for the server can write.

#include "Applications/Update/FeedReader.h"
#include "Common/Rules/PlainNotes.h"
#include "Common/Rules/VersionOrder.h"
#include "Tests/Fuzz/Expect.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace
{

using namespace farview;

void expectPlain(const std::string& notes)
{
    expect(notes.size() <= 16384, "notes are bounded");
    expect(std::none_of(notes.begin(), notes.end(),
                        [](char each) { return each != '\n' && each >= 0 && each < ' '; }),
           "notes hold no control characters");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    expectPlain(plainNotes(text));
    const auto feed = FeedReader::read(text);
    expect(feed.items.has_value() == feed.reason.empty(), "what is refused has a reason");
    if (!feed.items)
        return 0;
    for (const auto& item : *feed.items) {
        expect(isVersion(item.version), "an item has a version");
        expectPlain(item.notes);
    }
    const auto choice = chooseUpdate(*feed.items, "1.0", "10.9.0");
    expect(!choice.item || compareVersions(choice.item->version, "1.0") > 0,
           "what is chosen is newer");
    expect(!choice.item || compareVersions(choice.item->version, choice.offered) <= 0,
           "nothing chosen is newer than the newest");
    return 0;
}
