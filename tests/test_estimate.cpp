// The dimension estimate, its single-precision fit, and the results table.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/estimate.h"
#include "app/results.h"
#include "app_fixture.h"

namespace {

void set_results(const std::vector<std::pair<int, int>> &entries)
{
    nresults = 0;
    for (auto [size, count] : entries) {
        results = (BoxResult *)realloc(results, sizeof(BoxResult) * (size_t)(nresults + 1));
        results[nresults++] = BoxResult{size, count, 7};
    }
}

std::string table()
{
    char *buf = nullptr;
    size_t len = 0;
    FILE *f = open_memstream(&buf, &len);
    WriteResults(f);
    fclose(f);
    std::string s(buf, len);
    free(buf);
    return s;
}

std::string slurp(const std::string &path)
{
    std::string s;
    if (FILE *f = fopen(path.c_str(), "r")) {
        int c;
        while ((c = fgetc(f)) != EOF) s += (char)c;
        fclose(f);
    }
    return s;
}

class Estimate : public ::testing::Test {
protected:
    void SetUp() override { quiet_defaults(); }
};

}  // namespace

TEST_F(Estimate, TooFewEntriesOrSizes)
{
    set_results({});
    EXPECT_EQ(CalcSlope(), -1.0);
    set_results({{10, 100}, {5, 400}, {2, 2500}});
    EXPECT_EQ(CalcSlope(), -1.0);
    set_results({{10, 100}, {5, 400}, {10, 90}, {5, 380}});  // two passes over two sizes
    EXPECT_EQ(CalcSlope(), 0.0);
    char buf[16];
    snprintf(buf, sizeof buf, "%6.3f", -1.0);
    EXPECT_STREQ(buf, "-1.000");
}

TEST_F(Estimate, SmallestCountPerSize)
{
    set_results({{10, 100}, {5, 400}, {2, 2500}, {10, 90}, {5, 380}, {2, 2600}});
    float x[6], y[6];
    ASSERT_EQ(MakeLogPoints(x, y), 3);
    const double want_x[] = {log(0.1), log(0.2), log(0.5)};
    const double want_y[] = {log(90.0), log(380.0), log(2500.0)};
    for (int i = 0; i < 3; i++) {
        EXPECT_FLOAT_EQ(x[i], (float)want_x[i]);
        EXPECT_FLOAT_EQ(y[i], (float)want_y[i]);
    }
    // Least squares through those three points.
    const double mx = (want_x[0] + want_x[1] + want_x[2]) / 3, my = (want_y[0] + want_y[1] + want_y[2]) / 3;
    double sxy = 0, sxx = 0;
    for (int i = 0; i < 3; i++) {
        sxy += (want_x[i] - mx) * (want_y[i] - my);
        sxx += (want_x[i] - mx) * (want_x[i] - mx);
    }
    EXPECT_NEAR(CalcSlope(), sxy / sxx, 1e-5);
}

TEST_F(Estimate, ZeroCountsAndCloseSizes)
{
    // One black pixel: every count is 1, the slope 0.
    set_results({{40, 1}, {20, 1}, {10, 1}, {5, 1}});
    EXPECT_EQ(CalcSlope(), 0.0);

    // A zero count after the first entry of its size counts as 1.
    set_results({{40, 5}, {20, 9}, {10, 30}, {40, 0}});
    float x[4], y[4];
    ASSERT_EQ(MakeLogPoints(x, y), 3);
    EXPECT_EQ(y[0], 0.0f);

    // A first zero count gives 0 rather than an unset value.
    set_results({{40, 0}, {20, 0}, {10, 0}, {5, 0}});
    EXPECT_EQ(MakeLogPoints(x, y), 4);
    for (float v : y) EXPECT_EQ(v, 0.0f);
    EXPECT_EQ(CalcSlope(), 0.0);

    // Sizes closer than 0.0001 in the logarithm share a point. The difference
    // is taken in single precision: at 10000 and 10001 it rounds to 1.0014e-4,
    // so sizes up to 10000 never merge.
    set_results({{20000, 5}, {20001, 4}, {20, 7}, {30, 8}});
    EXPECT_EQ(MakeLogPoints(x, y), 3);
    EXPECT_FLOAT_EQ(y[0], (float)log(4.0));
    set_results({{10000, 5}, {10001, 4}, {20, 7}, {30, 8}});
    EXPECT_EQ(MakeLogPoints(x, y), 4);
}

TEST(LinRegressf, SinglePrecisionFit)
{
    const float x1[] = {0, 1, 2}, y1[] = {1, 3, 5};
    float a = 9, b = 9, r = 9;
    EXPECT_EQ(LinRegressf(x1, y1, 3, &a, &b, &r), 1);
    EXPECT_FLOAT_EQ(a, 1);
    EXPECT_FLOAT_EQ(b, 2);
    EXPECT_FLOAT_EQ(r, 1);

    const float xs[] = {2, 2, 2};
    EXPECT_EQ(LinRegressf(xs, y1, 3, &a, &b, &r), 0);
    EXPECT_EQ(a + b + r, 0.0f);
    EXPECT_EQ(LinRegressf(x1, y1, 1, &a, &b, &r), 0);

    const float flat[] = {4, 4, 4};
    EXPECT_EQ(LinRegressf(x1, flat, 3, &a, &b, &r), 1);
    EXPECT_FLOAT_EQ(a, 4);
    EXPECT_EQ(b, 0.0f);
    EXPECT_EQ(r, 1.0f);

    // The sums stay in double: a large offset in x does not wreck the slope.
    const float xo[] = {1000.0f, 1001.0f, 1002.0f, 1003.0f}, yo[] = {0.5f, 2.5f, 4.5f, 6.5f};
    EXPECT_EQ(LinRegressf(xo, yo, 4, &a, &b, &r), 1);
    EXPECT_NEAR(b, 2.0f, 1e-3);
}

TEST_F(Estimate, TableLines)
{
    set_results({{60, 40}, {100, 1234567}, {60, 35}, {100, 1300000}});
    EXPECT_EQ(table(), "60 35 -4.09434 3.55535\n100 1.23457e+06 -4.60517 14.0262\n");

    // Zero counts take no part; a size whose counts are all zero has no line.
    set_results({{60, 0}, {30, 0}, {60, 12}, {30, 0}});
    EXPECT_EQ(table(), "60 12 -4.09434 2.48491\n");
    set_results({{60, 0}, {30, 0}, {60, 0}, {30, 0}});
    EXPECT_EQ(table(), "");
}

TEST_F(Estimate, QuietSaveWritesStandardOutput)
{
    set_results({{60, 40}, {30, 100}, {60, 35}});
    ::testing::internal::CaptureStdout();
    SaveResults();  // three entries: nothing at all
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");

    set_results({{60, 40}, {30, 100}, {60, 35}, {30, 90}});
    ::testing::internal::CaptureStdout();
    SaveResults();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "60 35 -4.09434 3.55535\n30 90 -3.4012 4.49981\n");
}

TEST_F(Estimate, InteractiveSaveGoesToTheChosenFile)
{
    options.quiet = 0;
    set_results({{60, 40}, {30, 100}, {60, 35}, {30, 90}});
    static std::string chosen;
    results_choosefile = [](const char *prompt) -> const char * {
        EXPECT_STREQ(prompt, "Results file");
        return chosen.c_str();
    };

    char dir[] = "/tmp/quorl-results-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    chosen = std::string(dir) + "/out.txt";
    FILE *f = fopen(chosen.c_str(), "w");
    fputs("old content that must go\n", f);
    fclose(f);
    SaveResults();
    EXPECT_EQ(slurp(chosen), "60 35 -4.09434 3.55535\n30 90 -3.4012 4.49981\n");

    // Cancelled: nothing written, nothing said.
    const std::string before = chosen;
    chosen = "";
    ::testing::internal::CaptureStderr();
    SaveResults();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");

    // A file that cannot be opened is reported.
    chosen = std::string(dir) + "/no/such/dir/out.txt";
    ::testing::internal::CaptureStderr();
    SaveResults();
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("Failed to open results file"), std::string::npos);

    // A name too long for the buffer is refused, not truncated.
    chosen = std::string(dir) + "/" + std::string(300, 'a');
    ::testing::internal::CaptureStderr();
    SaveResults();
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("too long"), std::string::npos);

    remove(before.c_str());
    rmdir(dir);
    results_choosefile = nullptr;
}
