#pragma once

#include <cstddef>
#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace farview
{

/// Reads one XML document that anyone may have written. A derived class handles the elements and
/// refuses what does not fit; the first refusal ends the reading.
///
/// UTF-8 and XML 1.0 only, no NUL byte, no declarations inside the document type and no entities
/// but XML's own: nothing grows, nothing is fetched. Never throws; what the handlers throw counts
/// as a lack of memory.
class XMLReading
{
public:
    enum class Names {
        plain,      ///< as they are written; declarations of namespaces are attributes
        namespaced, ///< "namespace\nname", or the name alone when it is in none
    };

    virtual ~XMLReading() = default;

    const std::string& reason() const { return mReason; } ///< why it was refused; else empty

protected:
    /// Whether all of it was read and nothing refused. Once only.
    bool read(std::string_view bytes, std::size_t largestSize, Names names);
    void refuse(std::string reason);

private:
    struct Handlers;

    /// `attributes` are names and values in turn, with a null pointer at their end.
    virtual void startElement(std::string_view name, const char** attributes) = 0;
    virtual void endElement(std::string_view name) = 0;
    /// The next piece of text; one text may come in several.
    virtual void characters(std::string_view text) = 0;

    void declaration(const char* version, const char* encoding);
    void parse(std::string_view bytes, Names names);

    XML_ParserStruct* mParser = nullptr; ///< while it runs
    std::string mReason;
};

} // namespace farview
