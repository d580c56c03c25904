#include "Applications/Update/FeedReader.h"

#include "Common/Rules/PlainNotes.h"
#include "Common/Rules/VersionOrder.h"
#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/XMLReading.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace farview
{
namespace
{

/// What the names of our own elements and attributes begin with.
constexpr std::string_view ownNamespace = "urn:x-farview:updates\n";
constexpr std::size_t depthOfItems = 3;

bool isOwn(std::string_view name, std::string_view local)
{
    return name.starts_with(ownNamespace) && name.substr(ownNamespace.size()) == local;
}

/// The largest number for one that is too large; 0 for what is no number.
std::uint64_t lengthFromText(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range)
        return std::numeric_limits<std::uint64_t>::max();
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

class Reading final : public XMLReading
{
public:
    FeedReader::Result run(std::string_view bytes);

private:
    void startElement(std::string_view name, const char** attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;

    void startFeed(std::string_view name, const char** attributes);
    std::string* fieldNamed(std::string_view name);
    void readEnclosure(const char** attributes);
    void endItem();

    std::vector<std::string> mOpen; ///< the names of the elements that are open
    std::optional<Date> mSignedAt;
    std::optional<Date> mExpires;
    std::vector<UpdateItem> mItems;
    UpdateItem mItem;
    std::string mNotes;            ///< of the item, as they stand in the feed
    std::string* mField = nullptr; ///< where the text of the open element goes
    bool mIsItem = false;
};

void Reading::startFeed(std::string_view name, const char** attributes)
{
    if (name != "rss")
        return refuse("no RSS");
    for (; attributes[0]; attributes += 2) {
        if (isOwn(attributes[0], "signed"))
            mSignedAt = dateFromText(attributes[1]);
        else if (isOwn(attributes[0], "expires"))
            mExpires = dateFromText(attributes[1]);
    }
    if (!mSignedAt || !mExpires)
        refuse("it does not say when it was signed and when it expires");
}

std::string* Reading::fieldNamed(std::string_view name)
{
    if (isOwn(name, "version"))
        return &mItem.version;
    if (isOwn(name, "minimumSystemVersion"))
        return &mItem.minimumSystemVersion;
    return name == "description" ? &mNotes : nullptr;
}

void Reading::readEnclosure(const char** attributes)
{
    for (; attributes[0]; attributes += 2) {
        const std::string_view name = attributes[0];
        const std::string_view value = trimmed(attributes[1]);
        if (name == "url")
            mItem.address = value;
        else if (name == "length")
            mItem.length = lengthFromText(value);
        else if (isOwn(name, "edSignature"))
            mItem.signature = value;
        else if (isOwn(name, "version") && mItem.version.empty())
            mItem.version = value;
    }
}

void Reading::startElement(std::string_view name, const char** attributes)
{
    if (mOpen.empty())
        startFeed(name, attributes);
    if (mOpen.size() == FeedReader::largestDepth)
        return refuse("nested too deeply");
    if (mOpen.size() + 1 == depthOfItems)
        mIsItem = name == "item" && mOpen.back() == "channel";
    if (mIsItem && mOpen.size() == depthOfItems) {
        mField = fieldNamed(name);
        if (mField)
            mField->clear();
        if (name == "enclosure")
            readEnclosure(attributes);
    }
    mOpen.emplace_back(name);
}

void Reading::endElement(std::string_view /*name*/)
{
    mOpen.pop_back();
    if (mOpen.size() == depthOfItems)
        mField = nullptr;
    if (mIsItem && mOpen.size() + 1 == depthOfItems)
        endItem();
}

void Reading::endItem()
{
    mIsItem = false;
    UpdateItem item = std::exchange(mItem, {});
    const std::string notes = std::exchange(mNotes, {});
    item.version = trimmed(item.version);
    item.minimumSystemVersion = trimmed(item.minimumSystemVersion);
    const auto& minimum = item.minimumSystemVersion;
    if (!isVersion(item.version) || item.address.empty() ||
        (!minimum.empty() && !isVersion(minimum)))
        return;
    if (mItems.size() == FeedReader::mostItems)
        return refuse("too many items");
    item.notes = plainNotes(notes);
    mItems.push_back(std::move(item));
}

void Reading::characters(std::string_view text)
{
    if (mField)
        mField->append(text);
}

FeedReader::Result Reading::run(std::string_view bytes)
{
    if (!read(bytes, FeedReader::largestSize, Names::namespaced))
        return {std::nullopt, {}, reason()};
    return {std::move(mItems), {*mSignedAt, *mExpires}, {}};
}

} // namespace

FeedReader::Result FeedReader::read(std::string_view bytes) { return Reading().run(bytes); }

} // namespace farview
