#include "Platform/Posix/XMLReading.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace farview
{

/// What the parser calls.
struct XMLReading::Handlers {
    /// No exception may pass through the parser, which is C.
    template <typename Action> static void guarded(void* reading, Action action)
    {
        auto& self = *static_cast<XMLReading*>(reading);
        // A stopped parser still reports the end of the element it is in.
        if (!self.mReason.empty())
            return;
        try {
            action(self);
        } catch (...) {
            self.refuse("out of memory");
        }
    }

    static void onStart(void* reading, const XML_Char* name, const XML_Char** attributes)
    {
        guarded(reading, [&](XMLReading& self) { self.startElement(name, attributes); });
    }

    static void onEnd(void* reading, const XML_Char* name)
    {
        guarded(reading, [&](XMLReading& self) { self.endElement(name); });
    }

    static void onCharacters(void* reading, const XML_Char* text, int length)
    {
        guarded(reading, [&](XMLReading& self) {
            self.characters({text, static_cast<std::size_t>(length)});
        });
    }

    static void onDeclaration(void* reading, const XML_Char* version, const XML_Char* encoding, int)
    {
        guarded(reading, [&](XMLReading& self) { self.declaration(version, encoding); });
    }

    static void onDoctype(void* reading, const XML_Char*, const XML_Char*, const XML_Char*,
                          int hasSubset)
    {
        if (hasSubset)
            guarded(reading,
                    [](XMLReading& self) { self.refuse("declarations in the document type"); });
    }

    /// A reference to an entity that a document type elsewhere might declare: its text is unknown.
    static void onSkippedEntity(void* reading, const XML_Char*, int)
    {
        guarded(reading, [](XMLReading& self) { self.refuse("an unknown entity"); });
    }
};

namespace
{

struct EndParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

} // namespace

void XMLReading::refuse(std::string reason)
{
    if (!mReason.empty())
        return;
    mReason = std::move(reason);
    if (mParser)
        XML_StopParser(mParser, XML_FALSE);
}

void XMLReading::declaration(const char* version, const char* encoding)
{
    // The declaration of an entity has no version; the document's own always has.
    if (version && std::string_view(version) != "1.0")
        return refuse("not XML 1.0");
    std::string name = encoding ? encoding : "UTF-8";
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char each) { return each >= 'a' && each <= 'z' ? each - 'a' + 'A' : each; });
    if (name != "UTF-8")
        refuse("not UTF-8");
}

bool XMLReading::read(std::string_view bytes, std::size_t largestSize, Names names)
{
    try {
        if (bytes.size() > largestSize)
            refuse("too large");
        // Also keeps UTF-16 out, which the parser would recognise by its first bytes.
        else if (bytes.find('\0') != std::string_view::npos)
            refuse("a NUL byte");
        else
            parse(bytes, names);
    } catch (...) {
        refuse("out of memory");
    }
    return mReason.empty();
}

void XMLReading::parse(std::string_view bytes, Names names)
{
    const std::unique_ptr<XML_ParserStruct, EndParser> parser(
        names == Names::plain ? XML_ParserCreate("UTF-8") : XML_ParserCreateNS("UTF-8", '\n'));
    if (!parser)
        return refuse("out of memory");
    mParser = parser.get();
    XML_SetUserData(mParser, this);
    XML_SetElementHandler(mParser, Handlers::onStart, Handlers::onEnd);
    XML_SetCharacterDataHandler(mParser, Handlers::onCharacters);
    XML_SetXmlDeclHandler(mParser, Handlers::onDeclaration);
    XML_SetStartDoctypeDeclHandler(mParser, Handlers::onDoctype);
    XML_SetSkippedEntityHandler(mParser, Handlers::onSkippedEntity);
    const auto status = XML_Parse(mParser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    mParser = nullptr;
    if (status != XML_STATUS_OK)
        refuse(XML_ErrorString(XML_GetErrorCode(parser.get())));
}

} // namespace farview
