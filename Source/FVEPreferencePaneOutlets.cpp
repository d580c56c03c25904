#include "Source/FVEPreferencePaneOutlets.h"

#include <array>

using farview::InterfaceOwner;
using farview::Outlet;
using farview::View;

namespace
{

template <typename Control> std::shared_ptr<Control> make() { return std::make_shared<Control>(); }

template <typename Control> std::shared_ptr<Control> makeCheckBox()
{
    auto checkBox = std::make_shared<Control>();
    checkBox->setKind(farview::Button::Kind::checkBox);
    return checkBox;
}

#define FVE_OUTLET_ROW(Type, name, setName, maker)                                                 \
    Outlet{#name, [](InterfaceOwner& owner) -> std::shared_ptr<View> {                             \
               auto control = maker<Type>();                                                       \
               static_cast<FVEPreferencePaneOutlets&>(owner).setName(control);                     \
               return control;                                                                     \
           }},
constexpr auto outletTable = std::to_array<Outlet>({FVE_PREFERENCE_PANE_OUTLETS(FVE_OUTLET_ROW)});
#undef FVE_OUTLET_ROW

} // namespace

std::span<const Outlet> FVEPreferencePaneOutlets::outlets() const { return outletTable; }
