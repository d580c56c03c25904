#include "Platform/Posix/PropertyLists/PropertyListReader.h"

#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/XMLReading.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace farview
{
namespace
{

enum class Element {
    none,
    plist,
    key,
    array,
    dictionary,
    yes,
    no,
    integer,
    real,
    text,
    data,
    date
};

Element elementNamed(std::string_view name)
{
    static constexpr std::array<std::pair<std::string_view, Element>, 11> names = {{
        {"plist", Element::plist},
        {"key", Element::key},
        {"array", Element::array},
        {"dict", Element::dictionary},
        {"true", Element::yes},
        {"false", Element::no},
        {"integer", Element::integer},
        {"real", Element::real},
        {"string", Element::text},
        {"data", Element::data},
        {"date", Element::date},
    }};
    const auto* found = std::find_if(names.begin(), names.end(),
                                     [&](const auto& each) { return each.first == name; });
    return found == names.end() ? Element::none : found->second;
}

template <typename Value> std::optional<PropertyList> listOf(std::optional<Value> value)
{
    if (!value)
        return std::nullopt;
    return PropertyList(std::move(*value));
}

std::optional<PropertyList> emptyElement(bool value, std::string_view text)
{
    return trimmed(text).empty() ? std::optional(PropertyList(value)) : std::nullopt;
}

std::optional<PropertyList> scalar(Element element, std::string text)
{
    switch (element) {
    case Element::yes:
    case Element::no:
        return emptyElement(element == Element::yes, text);
    case Element::integer:
        return listOf(integerFromText(text));
    case Element::real:
        return listOf(realFromText(text));
    case Element::text:
        return PropertyList(std::move(text));
    case Element::data:
        return listOf(dataFromBase64(text));
    case Element::date:
        return listOf(dateFromText(text));
    default:
        return std::nullopt;
    }
}

class Reading final : public XMLReading
{
public:
    PropertyListReader::Result run(std::string_view bytes);

private:
    void startElement(std::string_view name, const char** attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;

    struct Container {
        PropertyList value;
        std::optional<std::string> key; ///< the key whose value is awaited
    };

    void beginPlist();
    void beginKey();
    void beginValue(Element element);
    void endPlist();
    void endKey();
    void endContainer();
    void add(PropertyList value);
    bool expectsValue() const;

    std::vector<Container> mOpen;
    std::optional<PropertyList> mResult;
    std::string mText;
    Element mLeaf = Element::none; ///< the element whose text is being collected
    bool mIsInPlist = false;
};

bool hasOnlyVersionOne(const char** attributes)
{
    return !attributes[0] || (std::string_view(attributes[0]) == "version" &&
                              std::string_view(attributes[1]) == "1.0" && !attributes[2]);
}

void Reading::startElement(std::string_view name, const char** attributes)
{
    const auto element = elementNamed(name);
    if (element == Element::none || mLeaf != Element::none)
        return refuse("an element where none may be");
    if (element == Element::plist ? !hasOnlyVersionOne(attributes) : attributes[0] != nullptr)
        return refuse("an unknown attribute or version");
    if (element == Element::plist)
        return beginPlist();
    if (!mIsInPlist)
        return refuse("the root is no plist");
    if (element == Element::key)
        return beginKey();
    beginValue(element);
}

void Reading::beginPlist()
{
    if (mIsInPlist)
        return refuse("a plist within a plist");
    mIsInPlist = true;
}

void Reading::beginKey()
{
    const bool isExpected =
        !mOpen.empty() && mOpen.back().value.is<PropertyList::Dictionary>() && !mOpen.back().key;
    if (!isExpected)
        return refuse("a key where none may be");
    mLeaf = Element::key;
    mText.clear();
}

bool Reading::expectsValue() const
{
    if (mOpen.empty())
        return !mResult;
    return mOpen.back().value.is<PropertyList::Array>() || mOpen.back().key;
}

void Reading::beginValue(Element element)
{
    if (!expectsValue())
        return refuse("a value where none may be");
    if (mOpen.size() + 1 > PropertyListReader::largestDepth)
        return refuse("nested too deeply");
    if (element == Element::array)
        mOpen.emplace_back().value = PropertyList::Array{};
    else if (element == Element::dictionary)
        mOpen.emplace_back().value = PropertyList::Dictionary{};
    else
        mLeaf = element;
    mText.clear();
}

void Reading::endElement(std::string_view name)
{
    const auto element = elementNamed(name);
    if (element == Element::plist)
        return endPlist();
    if (element == Element::key)
        return endKey();
    if (element == Element::array || element == Element::dictionary)
        return endContainer();
    mLeaf = Element::none;
    auto value = scalar(element, std::move(mText));
    if (!value)
        return refuse("a malformed " + std::string(name));
    add(std::move(*value));
}

void Reading::endPlist()
{
    if (!mResult)
        refuse("no value");
}

void Reading::endKey()
{
    mLeaf = Element::none;
    auto& container = mOpen.back();
    if (container.value.get<PropertyList::Dictionary>()->contains(mText))
        return refuse("a key twice");
    container.key = std::move(mText);
}

void Reading::endContainer()
{
    if (mOpen.back().key)
        return refuse("a key without a value");
    auto value = std::move(mOpen.back().value);
    mOpen.pop_back();
    add(std::move(value));
}

void Reading::add(PropertyList value)
{
    if (mOpen.empty()) {
        mResult = std::move(value);
        return;
    }
    auto& container = mOpen.back();
    if (auto* array = container.value.get<PropertyList::Array>()) {
        array->push_back(std::move(value));
        return;
    }
    container.value.get<PropertyList::Dictionary>()->emplace(std::move(*container.key),
                                                             std::move(value));
    container.key.reset();
}

void Reading::characters(std::string_view text)
{
    if (mLeaf != Element::none)
        mText.append(text);
    else if (!trimmed(text).empty())
        refuse("text outside of a value");
}

PropertyListReader::Result Reading::run(std::string_view bytes)
{
    if (!read(bytes, PropertyListReader::largestSize, Names::plain))
        return {std::nullopt, reason()};
    return {std::move(mResult), {}};
}

} // namespace

PropertyListReader::Result PropertyListReader::read(std::string_view bytes)
{
    return Reading().run(bytes);
}

} // namespace farview
