#pragma once

#include <string_view>

namespace farview
{

class Object;

/// The name of an operation, spelled with its colons: "takeVirtualScreenFrom:". Only ever made from
/// string literals, so the view it holds never dangles.
struct Selector {
    std::string_view name;

    bool isEmpty() const { return name.empty(); }
    bool operator==(const Selector&) const = default;
};

/// Something that can be called by name: the target of a control, the owner of an interface file,
/// the observer that a registration names.
class Responder
{
public:
    virtual ~Responder() = default;

    /// Whether `perform` would find an operation of that name.
    virtual bool respondsTo(Selector selector) const = 0;
    /// Calls the operation with its one argument (a sender or a notification, possibly null).
    /// Returns false, and does nothing, when there is no such operation.
    virtual bool perform(Selector selector, Object* argument) = 0;
};

} // namespace farview
