#include "Link/PairingGuard.h"

#include <gtest/gtest.h>

#include <vector>

using namespace farview;

namespace
{

struct GuardedMoment {
    std::vector<double> failures; ///< in seconds
    double now;
    bool isClosed;
};

TEST(PairingGuardTest, IsClosedFromTheThirdFailureUntilTheFirstOfThreeIsTenMinutesOld)
{
    const std::vector<GuardedMoment> moments{
        {{}, 0, false},
        {{0, 1}, 2, false},
        {{0, 1, 2}, 2, true},
        {{0, 1, 2}, 599.9, true},
        {{0, 1, 2}, 600, false},
        {{0, 300, 599}, 599, true},
        {{0, 300, 600}, 600, false},
        {{0, 300, 600, 601}, 601, true},
        {{0, 300, 600, 601}, 899.9, true},
        {{0, 300, 600, 601}, 900, false},
        {{0, 1, 2, 3}, 600.5, true},
        {{0, 700, 1400, 2100}, 2100, false},
        {{-5, -4, -3}, 0, true},
    };
    for (const auto& moment : moments) {
        PairingGuard guard;
        for (const double failure : moment.failures)
            guard.failed(Duration(failure));
        EXPECT_EQ(guard.isClosed(Duration(moment.now)), moment.isClosed)
            << moment.failures.size() << " failures, at " << moment.now;
    }
}

} // namespace
