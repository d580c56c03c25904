// Feeds of updates, which whoever answers for the server can write.

#include "Applications/Update/FeedReader.h"
#include "Applications/Update/Signature.h"
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

void expectThatOnlyTheKeySigns(std::string_view text)
{
    static const SigningKey key =
        SigningKey::fromText("nWGxne/9WmC6hEr0kuwsxERJxWl7MmkZcDusAxyuf2A=").value();
    expect(verifiedFeed(key.signedFeed(text), key.publicKey()) == text, "what was signed counts");
    const auto feed = verifiedFeed(text, key.publicKey());
    expect(!feed || key.signedFeed(*feed) == text, "nothing else does");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    expectPlain(plainNotes(text));
    expectThatOnlyTheKeySigns(text);
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
