#pragma once

#include "Controls/Control.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace farview
{

class InterfaceOwner;

/// One control that an interface file must contain under that object name. `connect` makes the
/// control, stores it in the owner and returns it.
struct Outlet {
    std::string_view name;
    std::shared_ptr<View> (*connect)(InterfaceOwner& owner);
};

/// The owner of an interface file: its outlets are connected and its actions found by name when the
/// file is loaded. A name that is missing on either side is an error of the load.
class InterfaceOwner : public virtual Responder
{
public:
    virtual std::span<const Outlet> outlets() const = 0;
};

/// A control of an owner, null until the interface file is loaded. Read as every property is, by
/// calling it.
template <typename Kind> class OutletProperty
{
public:
    const std::shared_ptr<Kind>& operator()() const { return mControl; }
    void set(std::shared_ptr<Kind> control) { mControl = std::move(control); }

private:
    std::shared_ptr<Kind> mControl;
};

/// Makes the control of that property of `owner`, which is an `Owner`.
template <typename Owner, typename Kind>
std::shared_ptr<Kind> connectOutlet(InterfaceOwner& owner, OutletProperty<Kind> Owner::*property)
{
    auto control = std::make_shared<Kind>();
    (static_cast<Owner&>(owner).*property).set(control);
    return control;
}

/// A row of an owner's table: the property to which `property` points, by its name.
template <auto property> constexpr Outlet outlet(std::string_view name)
{
    return {name, [](InterfaceOwner& owner) -> std::shared_ptr<View> {
                return connectOutlet(owner, property);
            }};
}

/// Loads windows that are needed later than their owner, by the names of their interface files. The
/// windows live as long as the loader.
class InterfaceLoader
{
public:
    virtual ~InterfaceLoader() = default;

    /// Connects the owner's outlets and actions. False when the file is missing or does not fit;
    /// `error` then says why.
    virtual bool loadNibNamed(const std::string& name, const std::shared_ptr<InterfaceOwner>& owner,
                              std::string& error) = 0;
};

} // namespace farview
