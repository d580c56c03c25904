#include "Source/FVEEnableHiDPIOutlets.h"

#include <array>

using farview::InterfaceOwner;
using farview::Outlet;
using farview::View;

namespace
{

#define FVE_OUTLET_ROW(Type, name, setName)                                                        \
    Outlet{#name, [](InterfaceOwner& owner) -> std::shared_ptr<View> {                             \
               auto control = std::make_shared<Type>();                                            \
               static_cast<FVEEnableHiDPIOutlets&>(owner).setName(control);                        \
               return control;                                                                     \
           }},
constexpr auto outletTable = std::to_array<Outlet>({FVE_ENABLE_HIDPI_OUTLETS(FVE_OUTLET_ROW)});
#undef FVE_OUTLET_ROW

} // namespace

std::span<const Outlet> FVEEnableHiDPIOutlets::outlets() const { return outletTable; }
