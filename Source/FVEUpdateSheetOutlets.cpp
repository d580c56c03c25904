#include "Source/FVEUpdateSheetOutlets.h"

#include <array>

using farview::InterfaceOwner;
using farview::Outlet;
using farview::View;

namespace
{

#define FVE_OUTLET_ROW(Type, name, setName)                                                        \
    Outlet{#name, [](InterfaceOwner& owner) -> std::shared_ptr<View> {                             \
               auto control = std::make_shared<Type>();                                            \
               static_cast<FVEUpdateSheetOutlets&>(owner).setName(control);                        \
               return control;                                                                     \
           }},
constexpr auto outletTable = std::to_array<Outlet>({FVE_UPDATE_SHEET_OUTLETS(FVE_OUTLET_ROW)});
#undef FVE_OUTLET_ROW

} // namespace

std::span<const Outlet> FVEUpdateSheetOutlets::outlets() const { return outletTable; }
