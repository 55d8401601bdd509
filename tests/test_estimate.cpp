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

// What fn writes to a stream, or what it leaves in the file at path.
template <class F> std::string written(F fn)
{
    char *buf = nullptr;
    size_t len = 0;
    FILE *f = open_memstream(&buf, &len);
    fn(f);
    fclose(f);
    std::string s(buf, len);
    free(buf);
    return s;
}

std::string slurp(const std::string &path)
{
    std::string s;
    if (FILE *f = fopen(path.c_str(), "r")) {
        for (int c; (c = fgetc(f)) != EOF;) s += (char)c;
        fclose(f);
    }
    return s;
}

class Estimate : public ::testing::Test {
protected:
    void SetUp() override { quiet_defaults(); }
};

}  // namespace

TEST_F(Estimate, SlopeFromTheSmallestCountPerSize)
{
    set_results({});
    EXPECT_EQ(CalcSlope(), -1.0);
    set_results({{10, 100}, {5, 400}, {2, 2500}});  // too few entries
    EXPECT_EQ(CalcSlope(), -1.0);
    set_results({{10, 100}, {5, 400}, {10, 90}, {5, 380}});  // two sizes only
    EXPECT_EQ(CalcSlope(), 0.0);

    set_results({{10, 100}, {5, 400}, {2, 2500}, {10, 90}, {5, 380}, {2, 2600}});
    float x[6], y[6];
    ASSERT_EQ(MakeLogPoints(x, y), 3);
    const double want[3][2] = {{log(0.1), log(90.0)}, {log(0.2), log(380.0)}, {log(0.5), log(2500.0)}};
    for (int i = 0; i < 3; i++) {
        EXPECT_FLOAT_EQ(x[i], (float)want[i][0]);
        EXPECT_FLOAT_EQ(y[i], (float)want[i][1]);
    }
    EXPECT_NEAR(CalcSlope(), 2.064968220922576, 1e-5);  // least squares through those points
}

TEST_F(Estimate, ZeroCountsAndCloseSizes)
{
    float x[4], y[4];
    set_results({{40, 1}, {20, 1}, {10, 1}, {5, 1}});  // one black pixel
    EXPECT_EQ(CalcSlope(), 0.0);
    set_results({{40, 5}, {20, 9}, {10, 30}, {40, 0}});  // a later zero count counts as 1
    ASSERT_EQ(MakeLogPoints(x, y), 3);
    EXPECT_EQ(y[0], 0.0f);
    set_results({{40, 0}, {20, 0}, {10, 0}, {5, 0}});  // a first zero gives 0, not an unset value
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
    const struct { std::vector<float> x, y; int ok; float a, b, r; } cases[] = {
        {{0, 1, 2}, {1, 3, 5}, 1, 1, 2, 1},
        {{2, 2, 2}, {1, 3, 5}, 0, 0, 0, 0},
        {{0}, {1}, 0, 0, 0, 0},
        {{0, 1, 2}, {4, 4, 4}, 1, 4, 0, 1},
        // The sums stay in double: a large offset in x does not wreck the slope.
        {{1000, 1001, 1002, 1003}, {0.5f, 2.5f, 4.5f, 6.5f}, 1, NAN, 2, 1},
    };
    for (const auto &c : cases) {
        float a = 9, b = 9, r = 9;
        EXPECT_EQ(LinRegressf(c.x.data(), c.y.data(), (int)c.x.size(), &a, &b, &r), c.ok) << c.x[0];
        if (!std::isnan(c.a)) {
            EXPECT_NEAR(a, c.a, 1e-6) << c.x[0];
        }
        EXPECT_NEAR(b, c.b, 1e-3) << c.x[0];
        EXPECT_NEAR(r, c.r, 1e-6) << c.x[0];
    }
}

TEST_F(Estimate, TableAndSaving)
{
    set_results({{60, 40}, {100, 1234567}, {60, 35}, {100, 1300000}});
    EXPECT_EQ(written(WriteResults), "60 35 -4.09434 3.55535\n100 1.23457e+06 -4.60517 14.0262\n");
    // Zero counts take no part; a size whose counts are all zero has no line.
    set_results({{60, 0}, {30, 0}, {60, 12}, {30, 0}});
    EXPECT_EQ(written(WriteResults), "60 12 -4.09434 2.48491\n");
    set_results({{60, 0}, {30, 0}, {60, 0}, {30, 0}});
    EXPECT_EQ(written(WriteResults), "");

    const std::string four = "60 35 -4.09434 3.55535\n30 90 -3.4012 4.49981\n";
    set_results({{60, 40}, {30, 100}, {60, 35}});
    ::testing::internal::CaptureStdout();
    SaveResults();  // quiet, three entries: nothing at all
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    set_results({{60, 40}, {30, 100}, {60, 35}, {30, 90}});
    ::testing::internal::CaptureStdout();
    SaveResults();  // quiet: standard output
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), four);

    // Interactive: the chosen file is replaced; cancelling says nothing;
    // failures to open and names too long for the buffer are reported.
    options.quiet = 0;
    static std::string chosen;
    results_choosefile = [](const char *prompt) -> const char * {
        EXPECT_STREQ(prompt, "Results file");
        return chosen.c_str();
    };
    char dir[] = "/tmp/quorl-results-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    const std::string out = std::string(dir) + "/out.txt";
    FILE *f = fopen(out.c_str(), "w");
    fputs("old content that must go\n", f);
    fclose(f);
    const struct { std::string name, stderr_has; } saves[] = {
        {out, ""}, {"", ""}, {std::string(dir) + "/no/such/dir/out.txt", "Failed to open results file"},
        {std::string(dir) + "/" + std::string(300, 'a'), "too long"},
    };
    for (const auto &s : saves) {
        chosen = s.name;
        ::testing::internal::CaptureStderr();
        SaveResults();
        const std::string err = ::testing::internal::GetCapturedStderr();
        EXPECT_TRUE(s.stderr_has.empty() ? err.empty() : err.find(s.stderr_has) != std::string::npos)
            << s.name << ": " << err;
    }
    EXPECT_EQ(slurp(out), four);
    remove(out.c_str());
    rmdir(dir);
    results_choosefile = nullptr;
}
