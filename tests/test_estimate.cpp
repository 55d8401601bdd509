// The dimension estimate, its single-precision fit, and the results lines where they are saved; the statistics
// behind a report: the t quantile, the double-precision fit and the minimum over every grid offset. (The fit
// range's estimate is checked end to end in tests/e2e/report.py.)
#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <vector>

#include "app/alloffsets.h"
#include "app/estimate.h"
#include "app/fit.h"
#include "app/results.h"
#include "app_fixture.h"

using Estimate = AppTest;

namespace {

std::vector<BoxResult> entries(const Table &t)
{
    std::vector<BoxResult> r;
    for (auto [size, count] : t) r.push_back({size, count, 7});  // a stale scratch mark
    return r;
}

void set_results(const Table &t)  // as the program's own results
{
    Analysis *a = CurrentAnalysis();
    a->results = (BoxResult *)realloc(a->results, sizeof(BoxResult) * (t.size() + 1));
    a->resultslength = (int)t.size() + 1, a->nresults = (int)t.size();
    std::copy_n(entries(t).begin(), t.size(), a->results);
}

}  // namespace

TEST_F(Estimate, OnePointPerSizeAndTheSlope)
{
    const double l4 = log(1 / 4e1), l2 = log(1 / 2e1), l1 = log(1 / 1e1);
    const struct { const char *id; Table t; std::vector<std::pair<double, double>> points; double slope; } cases[] = {
        {"est-1.1", {{10, 100}, {5, 400}, {2, 2500}, {10, 90}, {5, 380}, {2, 2600}},  // the smaller count per size
         {{l1, log(90.0)}, {log(0.2), log(380.0)}, {log(0.5), log(2500.0)}}, 2.064968},
        {"est-1.2", {{10, 100}, {5, 400}, {2, 2500}}, {{l1, log(1e2)}, {log(0.2), log(4e2)}, {log(0.5), log(2.5e3)}}, -1},
        {"est-1.3", {{10, 100}, {5, 400}, {10, 90}, {5, 380}}, {{l1, log(90.0)}, {log(0.2), log(380.0)}}, 0},  // 2 sizes
        {"est-1.4", {{40, 1}, {20, 1}, {10, 1}, {5, 1}}, {{l4, 0}, {l2, 0}, {l1, 0}, {log(0.2), 0}}, 0},
        {"est-1.5", {{40, 5}, {20, 9}, {10, 30}, {40, 0}}, {{l4, 0}, {l2, log(9.0)}, {l1, log(30.0)}}, 2.453445},  // a later zero counts as 1
        {"est-1.6", {{40, 0}, {40, 0}, {20, 0}, {10, 0}}, {{l4, 0}, {l2, 0}, {l1, 0}}, 0},  // a first zero gives 0
        // Logarithms closer than 0.0001 share a point. The difference is taken in single precision, where at 10000
        // and 10001 it comes to 1.0014e-4: no sizes up to 10000 merge, as none merge in the results lines.
        {"est-1.7", {{20000, 5}, {20001, 4}, {20, 7}, {30, 8}}, {{log(1 / 2e4), log(4.0)}, {l2, log(7.0)}, {log(1 / 30.0), log(8.0)}}, 0.092263},
        {"est-1.8", {{10000, 5}, {10001, 4}}, {{log(1e-4), log(5.0)}, {log(1 / 10001.0), log(4.0)}}, -1},
    };
    for (const auto &c : cases) {
        const auto r = entries(c.t);
        std::vector<float> x(r.size(), NAN), y(r.size(), NAN);
        ASSERT_EQ(MakeLogPointsOf(r.data(), (int)r.size(), x.data(), y.data()), (int)c.points.size()) << c.id;
        for (size_t i = 0; i < c.points.size(); i++)
            EXPECT_TRUE(x[i] == (float)c.points[i].first && y[i] == (float)c.points[i].second) << c.id << " point " << i;
        EXPECT_NEAR(SlopeOf(r.data(), (int)r.size()), c.slope, 1e-5) << c.id;
    }
}

TEST(LinRegressf, SinglePrecisionFit)
{
    const struct { std::vector<float> x, y; int ok; float a, b; } cases[] = {
        {{0, 1, 2}, {1, 3, 5}, 1, 1, 2},
        {{2, 2, 2}, {1, 3, 5}, 0, 0, 0},  // all x equal: no fit, every output 0
        {{1000, 1001, 1002, 1003}, {0.5f, 2.5f, 4.5f, 6.5f}, 1, -1999.5f, 2},  // sums in double: x far from 0 is fine
    };
    for (const auto &c : cases) {
        float a = 9, b = 9, r = 9;
        EXPECT_EQ(LinRegressf(c.x.data(), c.y.data(), (int)c.x.size(), &a, &b, &r), c.ok) << c.x[0];
        EXPECT_TRUE(std::fabs(a - c.a) < 0.5f && std::fabs(b - c.b) < 1e-3 && std::fabs(r - c.ok) < 1e-6) << c.x[0] << ": " << a << " " << b << " " << r;
    }
}

TEST_F(Estimate, SavingResults)
{
    // One line per size with its smallest count, "%g" to six digits; zero counts take no part.
    set_results({{60, 40}, {100, 1234567}, {30, 0}, {60, 35}, {100, 1300000}, {30, 0}, {60, 0}});
    const std::string lines = "60 35 -4.09434 3.55535\n100 1.23457e+06 -4.60517 14.0262\n";
    // Into the file the user chooses, replacing it; a cancelled choice writes nothing; a file that cannot be
    // written is reported. (Quiet runs write to standard output, which the end-to-end runs check.)
    options.quiet = 0;
    auto file = [](const std::string &path) { return (std::stringstream() << std::ifstream(path).rdbuf()).str(); };
    static std::string chosen;
    results_choosefile = [](const char *prompt) { return prompt == std::string("Results file") ? chosen.c_str() : ""; };
    std::string dir = ::testing::TempDir() + "quorl-results-XXXXXX";
    ASSERT_NE(mkdtemp(dir.data()), nullptr);
    const std::string out = dir + "/out.txt", missing = dir + "/no/out.txt", longer = dir + "/" + std::string(300, 'a');
    std::ofstream(out) << "old content that must go\n";
    const struct { std::string name, err; } saves[] = {
        {out, ""}, {"", ""}, {"/dev/null", ""},
        {"/dev/full", "Failed to write results file \"/dev/full\": No space left on device\n"},
        {missing, "Failed to open results file \"" + missing + "\": No such file or directory\n"},
        {longer, "Results file name too long (" + std::to_string(longer.size()) + " characters, at most 255)\n"},
    };
    for (const auto &s : saves) {
        chosen = s.name;
        EXPECT_EQ(stderr_of(SaveResults), s.err) << s.name;
    }
    EXPECT_EQ(file(out), lines);
    remove(out.c_str());
    rmdir(dir.c_str());
    results_choosefile = nullptr;
}

TEST(Stats, StudentQuantileKnownValues)
{
    const struct { int df; double want; } cases[] = {
        {1, 12.706204736174707}, {2, 4.302652729749464}, {10, 2.2281388519862744}, {30, 2.0422724563012373}};
    for (auto c : cases) EXPECT_NEAR(StudentT975(c.df), c.want, 1e-12) << "df " << c.df;
}

TEST(Stats, LineFitCases)
{
    const double x[] = {-4, -3, -2, -1}, line[] = {8, 6.5, 5, 3.5}, flat[] = {2, 2, 2, 2}, same[] = {1, 1, 1, 1};
    LineFit f;
    ASSERT_TRUE(FitLine(x, line, 4, &f));  // exact: no scatter, no interval width
    EXPECT_DOUBLE_EQ(f.slope, -1.5);
    EXPECT_DOUBLE_EQ(f.intercept, 2);
    EXPECT_DOUBLE_EQ(f.r2, 1);
    EXPECT_TRUE(f.has_interval && f.stderr_slope < 1e-12 && f.ci_low == f.ci_high);
    ASSERT_TRUE(FitLine(x, flat, 4, &f));
    EXPECT_EQ(f.r2, 1);
    ASSERT_TRUE(FitLine(x, line, 2, &f));  // boundary: two points fit, but give no interval
    EXPECT_FALSE(f.has_interval);
    EXPECT_FALSE(FitLine(same, line, 4, &f));
}

// The table and the pixel scan agree with each other and with counts known by
// hand; both are checked against a brute force over every offset end to end.
TEST(Stats, MinBoxCountTableAndPixels)
{
    const int w = 37, h = 29;
    std::vector<unsigned char> bw(w * h, 255);
    srand(16);
    for (auto &p : bw) p = rand() % 9 ? 255 : 0;
    BlackTable t;
    ASSERT_TRUE(BuildBlackTable(&t, bw.data(), w, h));
    const int regions[][4] = {{0, w, 0, h}, {3, 30, 5, 21}, {10, 12, 0, h}};
    for (auto &r : regions)
        for (int s : {1, 2, 3, 5, 8, 13, 40}) {
            int ox, oy, px, py;
            EXPECT_EQ(MinBoxCount(&t, bw.data(), w, r[0], r[1], r[2], r[3], s, &ox, &oy),
                      MinBoxCount(nullptr, bw.data(), w, r[0], r[1], r[2], r[3], s, &px, &py))
                << "size " << s << " region " << r[0] << "," << r[2];
            EXPECT_TRUE(ox == px && oy == py && ox < s && oy < s);
        }
    std::fill(bw.begin(), bw.end(), 255);
    for (int x = 5; x < 15; x++) bw[7 * w + x] = 0;  // a line of 10 pixels
    ASSERT_TRUE(BuildBlackTable(&t, bw.data(), w, h));
    int ox, oy;
    EXPECT_EQ(MinBoxCount(&t, bw.data(), w, 0, w, 0, h, 4, &ox, &oy), 3);
    EXPECT_EQ(MinBoxCount(&t, bw.data(), w, 0, w, 0, h, 5, &ox, &oy), 2);
    EXPECT_EQ((ox - 5 + 50) % 5, 0);  // the grid lines up with the line's start
    EXPECT_EQ(MinBoxCount(&t, bw.data(), w, 20, 20, 0, h, 5, &ox, &oy), 0);
    FreeBlackTableOf(&t);
}
