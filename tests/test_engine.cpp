// The box-counting engine: size sequences, grid geometry, counts, the box
// list and the progress output.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "app/progress.h"
#include "app_fixture.h"

namespace {

std::vector<int> sizes_of_pass(int pass, int per_pass)
{
    std::vector<int> s;
    for (int i = pass * per_pass; i < (pass + 1) * per_pass && i < nresults; i++) s.push_back(results[i].size);
    return s;
}

class Engine : public ::testing::Test {
protected:
    void SetUp() override { quiet_defaults(); }
};

}  // namespace

TEST_F(Engine, SizeSequences)
{
    const struct { const char *id; int start; float factor; int end; std::vector<int> want; } cases[] = {
        // 60 / 1.2 is 49.999996 in single precision: 49, not 50.
        {"seq-1.1", -1, 1.2f, 6, {60, 49, 40, 33, 27, 22, 18, 14, 11, 9, 7}},
        {"seq-1.2", 100, 1.2f, 6, {100, 83, 69, 57, 47, 39, 32, 26, 21, 17, 14, 11, 9, 7}},
        {"seq-1.3", 60, 2.0f, 6, {60, 30, 15, 7}},
        {"seq-1.4", 5, 1.2f, 6, {5}},                 // below the end size: one grid anyway
        {"seq-1.5", 4, 1.01f, 1, {4, 3, 2, 1}},       // barely above 1: still shrinks by one
    };
    for (const auto &c : cases) {
        options.boxstart = c.start;
        options.boxfactor = c.factor;
        options.boxend = c.end;
        options.nsamples = 3;
        use_image(400, 300, [](int x, int) { return x == 200; });
        run_to_end();
        const int n = (int)c.want.size();
        ASSERT_EQ(nresults, 3 * n) << c.id;
        for (int pass = 0; pass < 3; pass++) EXPECT_EQ(sizes_of_pass(pass, n), c.want) << c.id << " pass " << pass;
        EXPECT_EQ(nboxlist, 0) << c.id;
    }
}

TEST_F(Engine, CountsOnHandCheckedImages)
{
    // All black: every box of the grid is occupied, ceil((side + offset) / s) per axis.
    options.nsamples = 1;
    options.boxstart = 7;
    options.boxend = 7;
    use_image(30, 20, [](int, int) { return true; });
    BoxCount(0);  // the second reset draws the offset from size 7
    long steps = 0;
    while (!BoxCount(1)) steps++;
    EXPECT_EQ(nresults, 1);
    const int c = results[0].count;
    EXPECT_EQ(c, (int)(steps + 1));  // every tested box was occupied
    EXPECT_TRUE(c == 5 * 3 || c == 5 * 4 || c == 6 * 3 || c == 6 * 4) << c;

    // No black: every count is zero.
    options.boxstart = -1;
    options.boxend = 6;
    use_image(60, 60, [](int, int) { return false; });
    run_to_end();
    for (int i = 0; i < nresults; i++) EXPECT_EQ(results[i].count, 0);
}

TEST_F(Engine, ResetDrawsOffsetFromThePreviousSize)
{
    options.nsamples = 1;
    options.boxstart = 50;
    use_image(200, 200, [](int, int) { return true; });
    BoxCount(0);  // the current size is now 50
    BoxCount(1);
    ASSERT_EQ(nboxlist, 1);
    // The same seed gives the same two draws, scaled by 50.
    srand48(fixed_clock());
    const int ox = (int)(50 * drand48()), oy = (int)(50 * drand48());
    EXPECT_EQ(boxlist[0].left, -ox);
    EXPECT_EQ(boxlist[0].bottom, -oy);
    EXPECT_EQ(boxlist[0].right, -ox + 50);
    EXPECT_EQ(boxlist[0].top, -oy + 50);
    EXPECT_EQ(boxlist[0].occupied, 1);

    // The box list holds the occupied boxes of the grid in scan order: rows
    // upward, left to right within a row.
    while (nboxlist < 6) BoxCount(1);
    EXPECT_EQ(boxlist[1].left, boxlist[0].left + 50);
    EXPECT_EQ(boxlist[1].bottom, boxlist[0].bottom);
    const int cols = (int)std::ceil((200.0 + ox) / 50);
    EXPECT_EQ(boxlist[cols].left, boxlist[0].left);
    EXPECT_EQ(boxlist[cols].bottom, boxlist[0].bottom + 50);
}

TEST_F(Engine, RegionIsClampedAndKept)
{
    options.useregion = 1;
    options.left = -20;
    options.right = 5000;
    options.bottom = -3;
    options.top = 12;
    use_image(100, 80, [](int x, int y) { return x == 99 && y == 11; });
    EXPECT_EQ(options.left, 0);
    EXPECT_EQ(options.right, 100);
    EXPECT_EQ(options.bottom, 0);
    EXPECT_EQ(options.top, 12);

    // Without a region switch every rebuild restores the whole image.
    options.useregion = 0;
    use_image(100, 80, [](int, int) { return false; });
    EXPECT_EQ(options.right, 100);
    EXPECT_EQ(options.top, 80);
}

TEST_F(Engine, GridStartingAboveTheRegionTakesOneStep)
{
    options.useregion = 1;
    options.bottom = 50;
    options.top = 40;  // empty region: the first box is still tested
    options.boxstart = 10;
    options.nsamples = 1;
    options.boxend = 10;
    use_image(60, 60, [](int, int) { return true; });
    BoxCount(0);  // offset drawn from size 10: the first row starts at 41 or above
    EXPECT_EQ(BoxCount(1), 1);
    EXPECT_EQ(results[0].count, 0);
}

TEST_F(Engine, SettingsChangedMidRunApplyAtTheNextGrid)
{
    options.boxstart = 60;
    options.boxfactor = 2.0f;
    options.nsamples = 2;
    use_image(300, 300, [](int x, int y) { return x == y; });
    while (nresults < 2) BoxCount(1);  // the first grid (60) is done, 30 under way
    options.boxfactor = 3.0f;          // used from the next size on
    options.boxstart = 90;             // used from the next pass on
    run_to_end();
    const std::vector<int> want = {60, 30, 10, 90, 30, 10};
    std::vector<int> got;
    for (int i = 0; i < nresults; i++) got.push_back(results[i].size);
    EXPECT_EQ(got, want);
}

TEST_F(Engine, ProgressLines)
{
    options.quiet = 0;
    UseProgressLines(CurrentAnalysis());
    options.boxstart = 20;
    options.boxfactor = 2.0f;
    options.boxend = 10;
    options.nsamples = 2;
    use_image(40, 40, [](int, int) { return true; });
    BoxCount(0);
    ::testing::internal::CaptureStderr();
    run_to_end();
    const std::string err = ::testing::internal::GetCapturedStderr();
    // Offsets and counts follow from the fixed seed; the shape is what matters.
    const char *lines[] = {"Processing starting \n", "   Box size:   20 [  1], Offset   1 of   2: (",
                           "   Box size:   10 [  2], Offset   1 of   2: (",
                           "   Box size:   20 [  3], Offset   2 of   2: (",
                           "   Box size:   10 [  4], Offset   2 of   2: (", "Processing finished\n",
                           "Estimated fractal dimension: "};
    size_t at = 0;
    for (const char *l : lines) {
        size_t found = err.find(l, at);
        ASSERT_NE(found, std::string::npos) << "missing: " << l << "\nin:\n" << err;
        at = found;
    }
    // Two distinct sizes are too few for a fit.
    EXPECT_NE(err.find("Estimated fractal dimension:  0.000\n"), std::string::npos) << err;

    // One sample: no offset part; a region adds its own line and an empty one.
    options.nsamples = 1;
    options.useregion = 1;
    options.left = 3;
    use_image(40, 40, [](int, int) { return true; });
    ::testing::internal::CaptureStderr();
    run_to_end();
    const std::string one = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(one.rfind("Processing starting on region: (3,0) to (40,40)\n\n   Box size:   20 [  1], Total count = ", 0), 0u) << one;
    EXPECT_EQ(one.find("Offset"), std::string::npos);
}

// Separate records share nothing: each gives the table the program's own
// analysis gives for the same image, settings and clock, whether they run
// one after the other or side by side in threads.
TEST_F(Engine, IndependentAnalysesMatchTheProgramsOwn)
{
    struct Want { int w, h; std::vector<std::pair<int, int>> table; };
    const auto shapes = std::vector<std::function<bool(int, int)>>{
        [](int x, int y) { return (x ^ y) % 7 == 0; }, [](int x, int y) { return x * x + y * y < 9000; },
        [](int x, int) { return x % 13 == 0; }, [](int x, int y) { return (x & y) == 0; }};
    std::vector<Want> want;
    for (size_t i = 0; i < shapes.size(); i++) {
        use_image(150 + 20 * (int)i, 130, shapes[i]);
        BoxCount(0);
        run_to_end();
        Want w{options.imagewidth, options.imageheight, {}};
        for (int j = 0; j < nresults; j++) w.table.push_back({results[j].size, results[j].count});
        want.push_back(w);
    }
    auto analyse = [&](size_t i) {
        Options settings = options;
        settings.useregion = 0, settings.left = settings.bottom = 0, settings.right = settings.top = 100000;
        Analysis *a = CreateAnalysis(&settings);
        a->clock = fixed_clock;
        unsigned char *bw = (unsigned char *)malloc((size_t)want[i].w * want[i].h);
        for (int y = 0; y < want[i].h; y++)
            for (int x = 0; x < want[i].w; x++) bw[y * want[i].w + x] = shapes[i](x, y) ? 0 : 255;
        SetAnalysisImage(a, bw, want[i].w, want[i].h);
        ResetAnalysis(a);  // as the program: two resets, the second draws from the start size
        ResetAnalysis(a);
        EXPECT_TRUE(RunAnalysis(a));
        std::vector<std::pair<int, int>> got;
        for (int j = 0; j < a->nresults; j++) got.push_back({a->results[j].size, a->results[j].count});
        FreeAnalysis(a);
        return got;
    };
    for (size_t i = 0; i < shapes.size(); i++) EXPECT_EQ(analyse(i), want[i].table) << "in turn, image " << i;
    std::vector<std::vector<std::pair<int, int>>> got(shapes.size());
    std::vector<std::thread> threads;
    for (size_t i = 0; i < shapes.size(); i++) threads.emplace_back([&, i] { got[i] = analyse(i); });
    for (auto &t : threads) t.join();
    for (size_t i = 0; i < shapes.size(); i++) EXPECT_EQ(got[i], want[i].table) << "in threads, image " << i;
}
