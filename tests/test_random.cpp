// Random number generators: the published sequence, seeding, skipping and stepping back, the derived
// generators' ranges and moments, and the noise hash.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "util/random.h"

// After RandomInitialise(1802, 9373) and 20000 draws, the next six values times 2^24 are the published check values.
static bool check_values_follow_20000(void)
{
    for (int i = 0; i < 20000; i++) RandomUniform();
    for (long want : {6533892L, 14220222L, 7275067L, 6172232L, 8354498L, 10633180L})
        if (rand24() != want) return false;
    return true;
}

TEST(RandomDeathTest, UnseededStreamUsesDefaults)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a fresh process: nothing has seeded the stream
    EXPECT_EXIT(exit(check_values_follow_20000() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(Random, SeedingForwardAndBackward)
{
    // The published seeds, then out-of-range ones, which fall back to both defaults; (0, 0) is in range.
    for (auto [s1, s2, ok] : {std::tuple{1802, 9373, true}, {31329, 0, true}, {0, 30082, true}, {-1, 9373, true},
                              {1802, -5, true}, {0, 0, false}}) {
        RandomInitialise(s1, s2);
        EXPECT_EQ(check_values_follow_20000(), ok) << s1 << ", " << s2;
    }
    RandomInitialise(4711, 2222);
    std::vector<double> seq(6000);
    for (double &x : seq) x = RandomUniform();
    for (long n : {0L, 1L, 97L, 5000L, 6000L}) {
        RandomInitialise(4711, 2222);
        ForwardRandomUniform(n);
        EXPECT_TRUE(n == 6000 || RandomUniform() == seq[n]) << "forward " << n;
    }
    for (int k = 5999; k >= 0; k--) ASSERT_EQ(UnRandomUniform(), seq[k]) << "unrandom " << k;  // newest first
    for (int k = 0; k < 6000; k++) ASSERT_EQ(RandomUniform(), seq[k]) << "again " << k;
    for (long n : {1L, 64L, 97L, 2500L, 6000L}) {
        BackupRandomUniform(n);
        EXPECT_EQ(RandomUniform(), seq[6000 - n]) << "backup " << n;
        ForwardRandomUniform(n - 1);
    }
    BackupRandomUniform(-3);  // nothing
    EXPECT_TRUE(UnRandomUniform() == seq[5999] && unRand24() == (long)(seq[5998] * 4096 * 4096));
}

TEST(Random, DerivedGeneratorsAndNoise)
{
    RandomInitialise(1, 2);
    int seen[10] = {};
    for (int i = 0; i < 100000; i++) {
        const int k = RandomInt(-3, 6);
        const double d = RandomDouble(2.5, 4.0);
        const long r = rand24();
        ASSERT_TRUE(k >= -3 && k <= 6 && d >= 2.5 && d < 4.0 && r >= 0 && r < 16777216) << k << " " << d << " " << r;
        seen[k + 3]++;
    }
    for (int n : seen) EXPECT_NEAR(n, 10000, 600);  // about 6 standard deviations
    EXPECT_EQ(RandomInt(5, 5), 5);
    RandomInt(INT_MIN, INT_MAX);  // the widest range must not overflow (sanitizer build)
    RandomInitialise(1802, 9373);
    const int n = 200000;
    double sum = 0, sum2 = 0, within1 = 0;
    for (int i = 0; i < n; i++) {
        const double g = RandomGaussian(3.0, 2.0);
        sum += g, sum2 += (g - 3.0) * (g - 3.0), within1 += fabs(g - 3.0) < 2.0;
    }
    // Mean (standard error 0.0045), deviation, and the share within one deviation: normal, not just two moments.
    EXPECT_TRUE(fabs(sum / n - 3) < 0.025 && fabs(sqrt(sum2 / n) - 2) < 0.02 && fabs(within1 / n - 0.682689) < 0.006);
    // PrimeNoise1 against an independent 32-bit evaluation; x^x vanishes mod 2^32 for even x from 8 on.
    for (auto [x, want] : {std::pair{0, -0.2817909838631749}, {3, -0.005339873023331165}, {-7, -0.13284231442958117},
                           {123457, -0.5032646777108312}, {1000, -0.2817909838631749}})
        EXPECT_DOUBLE_EQ(PrimeNoise1(x), want) << x;
    for (int x = -500; x < 500; x++) EXPECT_TRUE(PrimeNoise1(x) > -1.0 && PrimeNoise1(x) <= 1.0) << x;
}
