#include "Applications/Update/FeedReader.h"

#include "Common/Rules/PlainNotes.h"
#include "Common/Rules/VersionOrder.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>

namespace farview
{
namespace
{

// Elements and attributes of the appcast's own namespace come as "namespace\nname".
#define APPCAST "http://www.andymatuschak.org/xml-namespaces/sparkle\n"

constexpr std::size_t depthOfItems = 3;

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view space = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(space), text.size()));
    return text.substr(0, text.find_last_not_of(space) + 1);
}

/// A number that is too large is as large as a number can be; what is no number is 0.
std::uint64_t lengthFromText(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range)
        return std::numeric_limits<std::uint64_t>::max();
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

struct EndParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

/// One reading. Every handler stops the parser at the first thing that may not be.
class Reading
{
public:
    FeedReader::Result run(std::string_view bytes);

    void startElement(std::string_view name, const XML_Char** attributes);
    void endElement();
    void characters(std::string_view text);
    void declaration(const XML_Char* encoding);
    void refuse(std::string reason);
    bool isRefused() const { return !mReason.empty(); }

private:
    std::string* fieldNamed(std::string_view name);
    void readEnclosure(const XML_Char** attributes);
    void endItem();

    std::unique_ptr<std::remove_pointer_t<XML_Parser>, EndParser> mParser;
    std::vector<std::string> mOpen; ///< the names of the elements that are open
    std::vector<UpdateItem> mItems;
    UpdateItem mItem;
    std::string mNotes;            ///< of the item, as they stand in the feed
    std::string* mField = nullptr; ///< where the text of the open element goes
    bool mIsItem = false;
    std::string mReason;
};

void Reading::refuse(std::string reason)
{
    if (isRefused())
        return;
    mReason = std::move(reason);
    XML_StopParser(mParser.get(), XML_FALSE);
}

std::string* Reading::fieldNamed(std::string_view name)
{
    if (name == APPCAST "version")
        return &mItem.version;
    if (name == APPCAST "minimumSystemVersion")
        return &mItem.minimumSystemVersion;
    return name == "description" ? &mNotes : nullptr;
}

void Reading::readEnclosure(const XML_Char** attributes)
{
    for (; attributes[0]; attributes += 2) {
        const std::string_view name = attributes[0];
        const std::string_view value = trimmed(attributes[1]);
        if (name == "url")
            mItem.address = value;
        else if (name == "length")
            mItem.length = lengthFromText(value);
        else if (name == APPCAST "edSignature")
            mItem.signature = value;
        else if (name == APPCAST "version" && mItem.version.empty())
            mItem.version = value;
    }
}

void Reading::startElement(std::string_view name, const XML_Char** attributes)
{
    if (mOpen.empty() && name != "rss")
        return refuse("no RSS");
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

void Reading::endElement()
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

void Reading::declaration(const XML_Char* encoding)
{
    const std::string_view name = encoding ? encoding : "UTF-8";
    if (name != "UTF-8" && name != "utf-8")
        refuse("not UTF-8");
}

/// No exception may pass through the parser, which is C.
template <typename Action> void guarded(void* reading, Action action)
{
    auto& self = *static_cast<Reading*>(reading);
    // A stopped parser still reports the end of the element it is in.
    if (self.isRefused())
        return;
    try {
        action(self);
    } catch (...) {
        self.refuse("out of memory");
    }
}

void onStart(void* reading, const XML_Char* name, const XML_Char** attributes)
{
    guarded(reading, [&](Reading& self) { self.startElement(name, attributes); });
}

void onEnd(void* reading, const XML_Char*)
{
    guarded(reading, [](Reading& self) { self.endElement(); });
}

void onCharacters(void* reading, const XML_Char* text, int length)
{
    guarded(reading, [&](Reading& self) {
        self.characters({text, static_cast<std::size_t>(length)});
    });
}

void onDeclaration(void* reading, const XML_Char*, const XML_Char* encoding, int)
{
    guarded(reading, [&](Reading& self) { self.declaration(encoding); });
}

void onDoctype(void* reading, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    guarded(reading, [](Reading& self) { self.refuse("a document type"); });
}

FeedReader::Result Reading::run(std::string_view bytes)
{
    mParser.reset(XML_ParserCreateNS("UTF-8", '\n'));
    if (!mParser)
        return {std::nullopt, "out of memory"};
    XML_Parser parser = mParser.get();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, onStart, onEnd);
    XML_SetCharacterDataHandler(parser, onCharacters);
    XML_SetXmlDeclHandler(parser, onDeclaration);
    XML_SetStartDoctypeDeclHandler(parser, onDoctype);
    const auto status = XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (isRefused())
        return {std::nullopt, mReason};
    if (status != XML_STATUS_OK)
        return {std::nullopt, XML_ErrorString(XML_GetErrorCode(parser))};
    return {std::move(mItems), {}};
}

} // namespace

FeedReader::Result FeedReader::read(std::string_view bytes)
{
    if (bytes.size() > largestSize)
        return {std::nullopt, "too large"};
    // Also keeps UTF-16 out, which the parser would recognise by its first bytes.
    if (bytes.find('\0') != std::string_view::npos)
        return {std::nullopt, "a NUL byte"};
    try {
        return Reading().run(bytes);
    } catch (...) {
        return {std::nullopt, "out of memory"};
    }
}

} // namespace farview
