#include "Platform/Desktop/Screens/Portal/PortalOffer.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

struct Case {
    const char* name;
    PortalOffer offer;
    bool wantsInput;
    PortalPlan plan;
};

class PortalPlanFor : public testing::TestWithParam<Case>
{
};

TEST_P(PortalPlanFor, TheOffer)
{
    EXPECT_EQ(portalPlan(GetParam().offer, GetParam().wantsInput), GetParam().plan);
}

PortalOffer offer(unsigned screenCast, unsigned sources, unsigned cursorModes,
                  unsigned remoteDesktop = 0, unsigned devices = 0)
{
    return {.screenCast = screenCast,
            .sources = sources,
            .cursorModes = cursorModes,
            .remoteDesktop = remoteDesktop,
            .devices = devices};
}

constexpr bool mirror = true;
constexpr bool apart = true;
constexpr bool remembers = true;

INSTANTIATE_TEST_SUITE_P(
    All, PortalPlanFor,
    testing::Values(
        Case{"nothing", {}, true, {}},
        Case{"ofGnome", offer(5, 7, 7, 2, 7), true, {4, !mirror, 4, apart, 7, remembers}},
        Case{"ofGnomeWithoutInput",
             offer(5, 7, 7, 2, 7),
             false,
             {4, !mirror, 4, apart, 0, remembers}},
        Case{"ofGnome43", offer(4, 3, 7, 1, 7), true, {1, mirror, 4, apart, 7, !remembers}},
        Case{"ofGnome43WithoutInput",
             offer(4, 3, 7, 1, 7),
             false,
             {1, mirror, 4, apart, 0, remembers}},
        Case{"ofSway", offer(4, 1, 3), true, {1, mirror, 2, !apart, 0, remembers}},
        Case{"withoutMemory", offer(3, 1, 3), false, {1, mirror, 2, !apart, 0, !remembers}},
        Case{"ofTheFirstVersion", offer(1, 1, 0), false, {1, mirror, 0, !apart, 0, !remembers}},
        Case{"ofWindowsOnly", offer(4, 2, 2), false, {0, !mirror, 2, !apart, 0, remembers}},
        Case{"withDevicesThatNobodyKnows",
             offer(4, 1, 2, 2, 8),
             true,
             {1, mirror, 2, !apart, 0, remembers}}),
    [](const auto& each) { return each.param.name; });

} // namespace
} // namespace farview
