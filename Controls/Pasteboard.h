#pragma once

#include "Platform/Types/PropertyList.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// What is carried from one place to another: one property list per declared type.
class Pasteboard
{
public:
    /// Empties it and says what will be on it.
    void declareTypes(const std::vector<std::string>& types);
    std::vector<std::string> types() const;
    /// False for a type that was not declared.
    bool setPropertyList(PropertyList list, const std::string& type);
    /// Nothing when there is none of that type.
    std::optional<PropertyList> propertyListForType(const std::string& type) const;

private:
    std::map<std::string, std::optional<PropertyList>> mContent;
};

/// What is being dragged.
class DraggingInfo
{
public:
    explicit DraggingInfo(std::shared_ptr<const Pasteboard> pasteboard)
        : mPasteboard(std::move(pasteboard))
    {
    }
    const Pasteboard& draggingPasteboard() const { return *mPasteboard; }

private:
    std::shared_ptr<const Pasteboard> mPasteboard;
};

/// What a drop would do.
enum class DragOperation { none = 0, move = 16 };
/// Where it would land: on a row, or in the gap above it.
enum class DropOperation { on = 0, above = 1 };

} // namespace farview
