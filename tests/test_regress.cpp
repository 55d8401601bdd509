// The double-precision straight-line fit.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "util/regress.h"

TEST(LinRegress, KnownFits)
{
    const struct { const char *id; std::vector<double> x, y; int ok; double a, b, r; } cases[] = {
        {"fit-1.1", {0}, {1}, 0, 0, 0, 0}, {"fit-1.2", {0, 1, 2}, {1, 3, 5}, 1, 1, 2, 1},
        {"fit-1.3", {2, 2, 2}, {1, 3, 5}, 0, 0, 0, 0}, {"fit-1.4", {1, 2, 3}, {4, 4, 4}, 1, 4, 0, 1},
        {"fit-1.5", {0, 1, 2}, {0, 1, 0}, 1, 1.0 / 3, 0, 0}, {"fit-1.6", {0, 1, 2, 3}, {3, 1, -1, -3}, 1, 3, -2, -1},
    };
    for (const auto &c : cases) {
        double a = 9, b = 9, r = 9;
        EXPECT_TRUE(LinRegress(c.x.data(), c.y.data(), (int)c.x.size(), &a, &b, &r) == c.ok && fabs(a - c.a) < 1e-12
                    && fabs(b - c.b) < 1e-12 && fabs(r - c.r) < 1e-12) << c.id << ": " << a << " " << b << " " << r;
    }
}
