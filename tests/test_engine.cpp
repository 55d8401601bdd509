// The box-counting engine: sizes, counts and offsets of the grids, the box list, the region, settings changed
// mid-run, progress lines, further analyses beside the program's own, and the box test against the pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>
#include <tuple>

#include "app/progress.h"
#include "app/rowpipe.h"
#include "app_fixture.h"

using Engine = AppTest;

namespace {

struct Grid { int s, ox, oy, count; };  // a completed grid as the engine reports it
std::vector<Grid> grids;
void record_grid(const Analysis *a) { grids.push_back({a->boxsize, a->offsetx, a->offsety, a->results[a->nresults - 1].count}); }

// Black pixels of the box inside the region and the image, looked at one by one.
int brute(int x1, int x2, int y1, int y2)
{
    const int xa = std::max({x1, options.left, 0}), xb = std::min({x2, options.right, options.imagewidth});
    const int ya = std::max({y1, options.bottom, 0}), yb = std::min({y2, options.top, options.imageheight});
    for (int y = ya; y < yb; y++)
        for (int x = xa; x < xb; x++)
            if (bwimage[y * options.imagewidth + x] < 128) return 1;
    return 0;
}

}  // namespace

TEST_F(Engine, SizeSequencesAndCounts)
{
    const struct { int start; float factor; int end; std::vector<int> want; } cases[] = {
        {-1, 1.2f, 6, {60, 49, 40, 33, 27, 22, 18, 14, 11, 9, 7}},  // 60 / 1.2 is 49.999996 in single precision
        {100, 1.2f, 6, {100, 83, 69, 57, 47, 39, 32, 26, 21, 17, 14, 11, 9, 7}},
        {5, 1.2f, 6, {5}},            // start below the end: one grid anyway
        {4, 1.01f, 1, {4, 3, 2, 1}},  // factor barely above 1: still one smaller
    };
    CurrentAnalysis()->hooks.grid_done = record_grid;
    for (const auto &c : cases) {
        options.boxstart = c.start, options.boxfactor = c.factor, options.boxend = c.end, options.nsamples = 2;
        use_image(400, 300, [](int, int) { return true; });
        grids.clear();
        run_to_end();
        std::vector<int> want = c.want, got;
        want.insert(want.end(), c.want.begin(), c.want.end());
        for (const Grid &g : grids) {  // all black: each of the ceil((400 + ox) / s) x ceil((300 + oy) / s) boxes
            got.push_back(g.s);
            EXPECT_TRUE(g.ox >= 0 && g.ox < g.s && g.oy >= 0 && g.oy < g.s &&
                        g.count == (400 + g.ox + g.s - 1) / g.s * ((300 + g.oy + g.s - 1) / g.s))
                << "size " << g.s << " offset " << g.ox << "," << g.oy << " count " << g.count;
        }
        EXPECT_TRUE(got == want && nboxlist == 0) << c.start << " " << c.factor;
    }
    options.boxstart = 60, options.boxfactor = 2.0f, options.boxend = 6;  // settings changed mid-run: at the next grid
    use_image(300, 300, [](int x, int y) { return x == y; });
    grids.clear();
    while (grids.empty()) BoxCount(1);  // 60 done, 30 under way
    options.boxfactor = 3.0f, options.boxstart = 90;  // the factor from the next size on, the start from the next pass
    run_to_end();
    std::vector<int> got;
    for (const Grid &g : grids) got.push_back(g.s);
    EXPECT_EQ(got, std::vector<int>({60, 30, 10, 90, 30, 10}));
}

TEST_F(Engine, OffsetsAreDrawnFromTheSizeHeldAtTheReset)
{
    // Each reset seeds afresh, so draws the same two fractions; they scale the size held before the new start size.
    const double u1 = (srand48(fixed_clock()), drand48()), u2 = drand48();
    options.boxstart = 50, options.boxend = 40, options.nsamples = 1;
    Analysis *a = analysis_of(200, 200, [](int, int) { return true; }, options);
    for (int held : {1, 50, 34}) {  // a new record; the start size; after a run (50, 41), the size computed last
        if (held == 34) RunAnalysis(a);
        ResetAnalysis(a);
        EXPECT_TRUE(a->offsetx == (int)(held * u1) && a->offsety == (int)(held * u2)) << held;
    }
    // The box list holds the occupied boxes, unclipped, in scan order: rows upward, each left to right.
    const int ox = a->offsetx, oy = a->offsety, cols = (200 + ox + 49) / 50;
    for (int i = 0; i < 2 * cols + 1; i++) StepAnalysis(a, 1);
    ASSERT_EQ(a->nboxlist, 2 * cols + 1);
    for (int i = 0; i < a->nboxlist; i++) {
        const int x = -ox + i % cols * 50, y = -oy + i / cols * 50;
        EXPECT_TRUE(std::make_tuple(a->boxlist[i].left, a->boxlist[i].right, a->boxlist[i].bottom, a->boxlist[i].top,
                                    a->boxlist[i].occupied) == std::make_tuple(x, x + 50, y, y + 50, 1)) << i;
    }
    FreeAnalysis(a);
}

TEST_F(Engine, RegionIsClampedAndKept)
{
    options.useregion = 1, options.left = -20, options.right = 5000, options.bottom = -3, options.top = 12;
    for (int above : {0, 1}) {  // the region's last pixel is counted; the one above it is not
        use_image(100, 80, [=](int x, int y) { return x == 99 && y == 11 + above; });
        EXPECT_TRUE(options.left == 0 && options.right == 100 && options.bottom == 0 && options.top == 12);
        run_to_end();
        for (auto [size, count] : table_of(results, nresults)) EXPECT_EQ(count, 1 - above) << size;
    }
    options.useregion = 0;  // without one, every rebuild takes the whole image
    use_image(100, 80, [](int, int) { return true; });
    EXPECT_TRUE(options.right == 100 && options.top == 80);

    options.useregion = 1, options.bottom = 50, options.top = 40;  // empty: the first box is still tested
    options.boxstart = 10, options.boxend = 10, options.nsamples = 1;
    use_image(60, 60, [](int, int) { return true; });
    BoxCount(0);  // offset drawn from size 10: the first row starts at 41 or above, so one step ends it
    EXPECT_TRUE(BoxCount(1) == 1 && results[0].count == 0);
}

TEST_F(Engine, ProgressLines)
{
    UseProgressLines(CurrentAnalysis());
    options.boxstart = 20, options.boxfactor = 2.0f, options.boxend = 10, options.nsamples = 2;
    use_image(40, 40, [](int, int) { return true; });
    std::string err = stderr_of([] { run_to_end(); });
    size_t at = 0;  // offsets and counts follow from the seed; the lines' shape is what matters
    for (const char *l : {"Processing starting \n", "   Box size:   20 [  1], Offset   1 of   2: (", "   Box size:   10 [  2], Offset   1 of   2: (",
                          "   Box size:   20 [  3], Offset   2 of   2: (", "   Box size:   10 [  4], Offset   2 of   2: (",
                          "Processing finished\nEstimated fractal dimension:  0.000\n"})  // two sizes are too few for a fit
        ASSERT_NE(at = err.find(l, at), std::string::npos) << "missing: " << l << "\nin:\n" << err;

    options.nsamples = 1, options.useregion = 1, options.left = 3;  // no offsets; a region line and an empty one
    use_image(40, 40, [](int, int) { return true; });
    err = stderr_of([] { run_to_end(); });
    EXPECT_TRUE(err.find("Processing starting on region: (3,0) to (40,40)\n\n   Box size:   20 [  1], Total count = ") == 0
                && err.find("Offset") == std::string::npos) << err;
}

// Separate records share nothing: each gives the table the program's own analysis gives for the same image,
// settings and clock, whether they run one after the other or side by side in threads.
TEST_F(Engine, IndependentAnalysesMatchTheProgramsOwn)
{
    const std::vector<Shape> shapes = {[](int x, int y) { return (x ^ y) % 7 == 0; }, [](int x, int) { return x % 13 == 0; },
                                       [](int x, int y) { return x * x + y * y < 9000; }, [](int x, int y) { return (x & y) == 0; }};
    const Options settings = options;  // the region as it stands before a reset clamps it
    std::vector<Table> want, got(shapes.size());
    for (size_t i = 0; i < shapes.size(); i++) {
        use_image(150 + 20 * (int)i, 130, shapes[i]);
        BoxCount(0);  // start-up resets twice
        run_to_end();
        want.push_back(table_of(results, nresults));
    }
    auto analyse = [&](size_t i) {
        Analysis *a = analysis_of(150 + 20 * (int)i, 130, shapes[i], settings);
        ResetAnalysis(a), ResetAnalysis(a);
        EXPECT_TRUE(RunAnalysis(a));
        got[i] = table_of(a->results, a->nresults);
        FreeAnalysis(a);
    };
    for (size_t i = 0; i < shapes.size(); i++) analyse(i);
    EXPECT_EQ(got, want) << "in turn";
    std::vector<std::thread> threads;
    for (size_t i = 0; i < shapes.size(); i++) threads.emplace_back(analyse, i);
    for (auto &t : threads) t.join();
    EXPECT_EQ(got, want) << "in threads";
}

// A count of every grid in one pass over the rows gives what the steps give box by box, and leaves the record as
// they leave it (so the next reset draws the same offset), also when rows (from the top) or columns come as they are read.
TEST_F(Engine, RowsCountAsTheStepsDo)
{
    std::mt19937 rng(31);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    const float factors[] = {1.01f, 1.2f, 1.7f, 2.0f, 3.5f};
    int counted = 0;
    for (int n = 0; n < 400; n++) {
        const int w = pick(1, 90), h = pick(1, 90), density = pick(0, 4);
        std::vector<char> cell(w * h);
        for (char &c : cell) c = density == 4 || (density > 0 && pick(0, 999) < density * density * density);
        const Shape shape = [&](int x, int y) { return cell[y * w + x] != 0; };
        Options o = options;
        o.useregion = pick(0, 1);
        o.left = pick(-5, w - 1), o.right = pick(std::max(o.left, 0) + 1, w + 5);
        o.bottom = pick(-5, h - 1), o.top = pick(std::max(o.bottom, 0) + 1, h + 5);
        if (!o.useregion) o.left = 0, o.right = 100000, o.bottom = 0, o.top = 100000;
        o.boxstart = pick(0, 3) ? pick(1, 120) : -1, o.boxfactor = factors[pick(0, 4)];
        o.boxend = pick(1, 12), o.nsamples = pick(1, 4);
        Analysis *rows = analysis_of(w, h, shape, o), *steps = analysis_of(w, h, shape, o);
        steps->hooks.between = [](const Analysis *) {};  // wants every grid as it ends: counted by steps
        for (Analysis *a : {rows, steps}) ResetAnalysis(a), ResetAnalysis(a);
        if (rows->results[0].size >= 1) {  // a start size of 0 never finishes
            if (n % 3) {  // handed on as decoded, the image never held: rows from the top, or columns
                const std::vector<unsigned char> pixels(rows->bw, rows->bw + (size_t)w * h);
                SetAnalysisImage(rows, nullptr, w, h);
                const bool columns = n % 3 == 2, ascending = columns && n % 2;
                RowPlan *p = PlanRowCount(rows, ascending, columns);
                ASSERT_TRUE(p);
                std::vector<unsigned char> column(h);
                for (int i = 0; i < (columns ? w : h); i++) {
                    const int line = ascending ? i : (columns ? w : h) - 1 - i;
                    for (int y = 0; columns && y < h; y++) column[y] = pixels[(size_t)y * w + line];
                    CountPlannedRow(p, line, columns ? column.data() : pixels.data() + (size_t)line * w);
                }
                FinishRowPlan(rows, p);
            } else {
                ASSERT_TRUE(CountByRows(rows));
            }
            ASSERT_TRUE(RunAnalysis(steps));
            counted++;
            EXPECT_EQ(table_of(rows->results, rows->nresults), table_of(steps->results, steps->nresults)) << "case " << n;
            EXPECT_TRUE(rows->boxsize == steps->boxsize && rows->offsetx == steps->offsetx &&
                        rows->offsety == steps->offsety && rows->noffset == steps->noffset &&
                        std::equal(rows->rng, rows->rng + 3, steps->rng) && rows->nboxlist == 0) << "case " << n;
        }
        FreeAnalysis(rows), FreeAnalysis(steps);
    }
    EXPECT_GT(counted, 300);
}

// Rows handed to the counting thread arrive whole and in order, the last part-filled batch included, however the
// two threads keep pace.
TEST(RowPipe, RowsArriveInOrder)
{
    for (int n : {0, 1, 31, 32, 33, 1000}) {
        std::vector<int> got;
        bool intact = true;
        auto ctx = std::make_pair(&got, &intact);
        RowPipe *p = StartRowPipe(3, [](void *c, int y, const unsigned char *row) {
            auto *seen = (std::pair<std::vector<int> *, bool *> *)c;
            seen->first->push_back(y);
            if (row[0] != (unsigned char)y || row[2] != (unsigned char)(y * 7)) *seen->second = false;
            if (y % 97 == 0) std::this_thread::yield();  // now and then slower than the reader
        }, &ctx);
        ASSERT_TRUE(p);
        for (int y = 0; y < n; y++) {
            unsigned char *room = RowPipeRoom(p);
            room[0] = (unsigned char)y, room[1] = 0, room[2] = (unsigned char)(y * 7);
            PutRow(p, y);
        }
        EndRowPipe(p);
        std::vector<int> want(n);
        for (int y = 0; y < n; y++) want[y] = y;
        EXPECT_TRUE(got == want && intact) << n << " rows";
    }
}

TEST_F(Engine, BoxTestAgreesWithThePixels)
{
    std::mt19937 rng(20240611);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    for (int image_no = 0; image_no < 150; image_no++) {
        const int w = pick(1, image_no % 10 == 0 ? 700 : 60), h = pick(1, image_no % 10 == 0 ? 300 : 60);
        const int density = pick(0, 4);  // 0 all white ... 4 all black
        std::vector<int> cell(w * h);
        for (int &c : cell) c = density == 4 || (density > 0 && pick(0, 999) < density * density * density);
        stderr_of([&] { use_image(w, h, [&](int x, int y) { return cell[y * w + x] != 0; }); });
        for (int region_no = 0; region_no < 8; region_no++) {  // from well outside the image to beyond it, some empty
            options.left = pick(-10, w), options.right = pick(-10, w + 10);
            options.bottom = pick(-10, h), options.top = pick(-10, h + 10);
            for (int box = 0; box < 60; box++) {
                const int s = pick(0, box % 6 == 0 ? 800 : 40);  // 0: an empty box
                const int x1 = pick(-s, w + 2), y1 = pick(-s, h + 2), want = brute(x1, x1 + s, y1, y1 + s);
                ASSERT_TRUE(BlackInRect(x1, x1 + s, y1, y1 + s) == want && BlackInRectScan(x1, x1 + s, y1, y1 + s) == want)
                    << "image " << image_no << " region " << region_no << " box " << x1 << "," << y1 << " size " << s;
            }
        }
    }

    // The table counts modulo 65536: solid black of exactly 65536 or 131072 pixels is still found.
    for (auto [w, h] : {std::pair{512, 128}, {256, 256}, {256, 255}, {1024, 128}, {65536, 1}}) {
        use_image(w, h, [](int, int) { return true; });
        EXPECT_TRUE(BlackInRect(0, w, 0, h) && BlackInRect(-5, w + 5, -5, h + 5)) << w << "x" << h;
    }
    // Larger boxes are asked in pieces of 256 x 255: a black pixel on or beside a seam is found.
    stderr_of([] { use_image(700, 600, [](int, int) { return false; }); });
    for (int px : {0, 1, 255, 256, 257, 511, 512, 699})
        for (int py : {0, 254, 255, 256, 509, 510, 599}) {
            bwimage[py * 700 + px] = 0;
            MakeBlackTable();
            for (int from : {-3, 0, 1})
                EXPECT_EQ(BlackInRect(from, 700, from, 600), px >= from && py >= from) << px << "," << py << " " << from;
            bwimage[py * 700 + px] = 255;
        }
    bwimage[300 * 700 + 300] = 0;
    FreeBlackTable();  // as when it cannot be allocated: the pixels are scanned, not the stale table
    EXPECT_TRUE(BlackInRect(290, 310, 290, 310) && !BlackInRect(0, 300, 0, 600));
}
