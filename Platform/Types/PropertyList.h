#pragma once

#include "Platform/Types/Data.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace farview
{

/// A moment, in seconds since 1970-01-01 00:00:00 UTC.
struct Date {
    double secondsSince1970 = 0;

    bool operator==(const Date&) const = default;
};

/// A property-list value: a boolean, an integer, a real, a text (UTF-8), data, a date, an array or
/// a dictionary. Each keeps its type: the boolean true is not the number 1.
class PropertyList
{
public:
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList>;
    using Value =
        std::variant<bool, std::int64_t, double, std::string, Data, Date, Array, Dictionary>;

    PropertyList() : mValue(std::string{}) {}
    PropertyList(bool value) : mValue(value) {}
    PropertyList(int value) : mValue(std::int64_t{value}) {}
    PropertyList(std::int64_t value) : mValue(value) {}
    PropertyList(double value) : mValue(value) {}
    PropertyList(const char* value) : mValue(std::string(value)) {}
    PropertyList(std::string value) : mValue(std::move(value)) {}
    PropertyList(Data value) : mValue(std::move(value)) {}
    PropertyList(Date value) : mValue(value) {}
    PropertyList(Array value) : mValue(std::move(value)) {}
    PropertyList(Dictionary value) : mValue(std::move(value)) {}

    /// The value when it is of exactly that type, else null. The pointer lives as long as this
    /// list.
    template <typename Type> const Type* get() const { return std::get_if<Type>(&mValue); }
    template <typename Type> Type* get() { return std::get_if<Type>(&mValue); }
    template <typename Type> bool is() const { return std::holds_alternative<Type>(mValue); }

    const Value& value() const { return mValue; }
    bool operator==(const PropertyList& other) const = default;

private:
    Value mValue;
};

} // namespace farview
