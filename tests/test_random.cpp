// Random number generators: the published sequence, seeding, skipping and
// stepping back, the derived generators' ranges and moments, and the noise hash.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "util/random.h"

namespace {

// After RandomInitialise(1802, 9373) and 20000 draws, the next six values
// times 2^24: the generator's published check values.
const long k_check[6] = {6533892, 14220222, 7275067, 6172232, 8354498, 10633180};

bool check_values_follow_20000(void)
{
    for (int i = 0; i < 20000; i++) RandomUniform();
    for (long want : k_check)
        if (rand24() != want) return false;
    return true;
}

std::vector<double> draw(int n)
{
    std::vector<double> v(n);
    for (double &x : v) x = RandomUniform();
    return v;
}

}  // namespace

TEST(Random, CheckValuesAndDefaultSeeding)
{
    // The published seeds, then out-of-range ones (either one, or negative),
    // which fall back to both defaults.
    const int seeds[][2] = {{1802, 9373}, {31329, 0}, {0, 30082}, {-1, 9373}, {1802, -5}};
    for (const auto &s : seeds) {
        RandomInitialise(s[0], s[1]);
        EXPECT_TRUE(check_values_follow_20000()) << s[0] << ", " << s[1];
    }
    RandomInitialise(0, 0);  // in range: a different stream
    EXPECT_FALSE(check_values_follow_20000());
}

TEST(RandomDeathTest, UnseededStreamUsesDefaults)
{
    // A fresh process, so that nothing has seeded the stream yet.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exit(check_values_follow_20000() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(Random, ForwardAndBackward)
{
    RandomInitialise(4711, 2222);
    const std::vector<double> seq = draw(6000);

    for (long n : {0L, 1L, 96L, 97L, 5000L}) {
        RandomInitialise(4711, 2222);
        ForwardRandomUniform(n);
        EXPECT_EQ(RandomUniform(), seq[n]) << "forward " << n;
    }

    // Step back over every value, newest first, then forward over them again.
    RandomInitialise(4711, 2222);
    draw(6000);
    for (int k = 5999; k >= 0; k--) ASSERT_EQ(UnRandomUniform(), seq[k]) << "unrandom " << k;
    EXPECT_EQ(draw(6000), seq);

    for (long n : {1L, 33L, 64L, 97L, 2500L, 6000L}) {
        BackupRandomUniform(n);
        EXPECT_EQ(RandomUniform(), seq[6000 - n]) << "backup " << n;
        ForwardRandomUniform(n - 1);
    }
    BackupRandomUniform(0);
    BackupRandomUniform(-3);
    EXPECT_EQ(UnRandomUniform(), seq[5999]);
    EXPECT_EQ(RandomUniform(), seq[5999]);  // the undone value comes again
    EXPECT_EQ(unRand24(), (long)(seq[5999] * 4096 * 4096));
}

TEST(Random, DerivedGenerators)
{
    RandomInitialise(1, 2);
    int seen[10] = {};
    for (int i = 0; i < 100000; i++) {
        const int k = RandomInt(-3, 6);
        ASSERT_TRUE(k >= -3 && k <= 6) << k;
        seen[k + 3]++;
        const double d = RandomDouble(2.5, 4.0);
        ASSERT_TRUE(d >= 2.5 && d < 4.0) << d;
        const long r = rand24();
        ASSERT_TRUE(r >= 0 && r < 16777216) << r;
    }
    for (int n : seen) EXPECT_NEAR(n, 10000, 600);  // about 6 standard deviations
    EXPECT_EQ(RandomInt(5, 5), 5);
    RandomInt(INT_MIN, INT_MAX);  // the widest range must not overflow (sanitizer build)
}

TEST(Random, GaussianMoments)
{
    RandomInitialise(1802, 9373);
    const int n = 200000;
    double sum = 0, sum2 = 0;
    int within1 = 0;
    for (int i = 0; i < n; i++) {
        const double g = RandomGaussian(3.0, 2.0);
        sum += g;
        sum2 += (g - 3.0) * (g - 3.0);
        within1 += fabs(g - 3.0) < 2.0;
    }
    EXPECT_NEAR(sum / n, 3.0, 0.025);  // standard error 0.0045
    EXPECT_NEAR(sqrt(sum2 / n), 2.0, 0.02);
    EXPECT_NEAR((double)within1 / n, 0.682689, 0.006);  // normal, not just two moments
}

TEST(Random, PrimeNoise)
{
    // Reference values from an independent 32-bit evaluation of the hash.
    static const struct { int x; double want; } cases[] = {
        {0, -0.2817909838631749}, {1, -0.30306936521083117}, {2, -0.4520180346444249},
        {3, -0.005339873023331165}, {-1, -0.26051260251551867}, {-7, -0.13284231442958117},
        {123457, -0.5032646777108312},
        // x^x vanishes mod 2^32 for even x from 8 on, so such x repeat x = 0.
        {1000, -0.2817909838631749},
    };
    for (const auto &c : cases) EXPECT_DOUBLE_EQ(PrimeNoise1(c.x), c.want) << c.x;
    for (int x = -500; x < 500; x++) {
        const double v = PrimeNoise1(x);
        EXPECT_TRUE(v > -1.0 && v <= 1.0) << x;
    }
}
