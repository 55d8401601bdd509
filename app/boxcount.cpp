// app/boxcount.cpp - the incremental box-counting engine.
//
// A grid is all boxes of one size at one random offset; a pass runs the sizes
// from the start size down to the end size; an analysis is nsamples passes.
// Each step tests one box, scanning rows from the bottom up and each row from
// left to right; the settings are read afresh at every step. A box is tested
// in constant time from a summed-area table of the black pixels, so a whole
// analysis costs about as much as reading the image.
#include "app/boxcount.h"

#include "app/alloffsets.h"
#include "app/rowcount.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace {

Analysis make_current()
{
    Analysis a{};
    a.opt = &options;
    a.ext = &extras;
    a.boxsize = 1;
    return a;
}
Analysis current = make_current();

// Appends item, growing the array by exactly one element when it is full.
// False when it could not be grown.
template <typename T> bool append(T *&array, int &n, int &length, const T &item)
{
    if (n == length) {
        T *grown = (T *)realloc(array, sizeof(T) * (size_t)(n + 1));
        if (!grown) return false;
        array = grown;
        length = n + 1;
    }
    array[n++] = item;
    return true;
}

// The drand48 generator on a record's own state: x' = (a x + c) mod 2^48,
// returned as x' / 2^48. Seeding as srand48 does gives the same sequence.
void seed48(Analysis *a, long seed)
{
    a->rng[0] = 0x330E;
    a->rng[1] = (unsigned short)(seed & 0xFFFF);
    a->rng[2] = (unsigned short)((seed >> 16) & 0xFFFF);
}

double next48(Analysis *a)
{
    uint64_t x = (uint64_t)a->rng[2] << 32 | (uint64_t)a->rng[1] << 16 | a->rng[0];
    x = (x * 0x5DEECE66Dull + 0xB) & 0xFFFFFFFFFFFFull;
    a->rng[0] = (unsigned short)x;
    a->rng[1] = (unsigned short)(x >> 16);
    a->rng[2] = (unsigned short)(x >> 32);
    return (double)x / 281474976710656.0;  // exact: 48 bits fit a double
}

// Grid corners near the int limits. The corners are 32-bit; a step that
// would carry one past the largest int ends the row (or the grid) instead, as
// the corner would then lie beyond any region, and a box edge past the limit
// is held at it, which leaves the box test's answer and the stored extent
// within the image unchanged. Past the smallest int a corner is held there
// (only a negative box size walks that way, and it never finishes anyway).
inline int sat(long long v)
{
    return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : (int)v;
}

inline int edge(int corner, int s)
{
    int e;
    return __builtin_add_overflow(corner, s, &e) ? (s > 0 ? INT_MAX : INT_MIN) : e;
}

int start_size(const Analysis *a)
{
    const Options *o = a->opt;
    if (!a->ext->sizes.empty()) return a->ext->sizes.front();
    if (o->boxstart >= 0) return o->boxstart;
    const long long w = (long long)o->right - o->left;
    const long long h = (long long)o->top - o->bottom;
    return (int)((w < h ? w : h) / 5);
}

// Offset of a new grid, drawn from the box size held at this moment.
void draw_offset(Analysis *a)
{
    a->offsetx = (int)(a->boxsize * next48(a));
    a->offsety = (int)(a->boxsize * next48(a));
    a->left0 = sat((long long)a->opt->left - a->offsetx);
    a->bottom0 = sat((long long)a->opt->bottom - a->offsety);
}

// Clips [x1, x2) x [y1, y2) to the region and to the image. The reset clamps
// the region to the image; clamping again means no region, however set, can
// reach outside the image. False when nothing is left.
bool clip(const Options *o, int x1, int x2, int y1, int y2, int *xa, int *xb, int *ya, int *yb)
{
    const int L = o->left, R = o->right, B = o->bottom, T = o->top;
    if (R <= x1 || T <= y1) return false;
    *xa = x1 > L ? x1 : L;
    *xb = x2 < R ? x2 : R;
    *ya = y1 > B ? y1 : B;
    *yb = y2 < T ? y2 : T;
    if (*xa < 0) *xa = 0;
    if (*ya < 0) *ya = 0;
    if (*xb > o->imagewidth) *xb = o->imagewidth;
    if (*yb > o->imageheight) *yb = o->imageheight;
    return *xa < *xb && *ya < *yb;
}

[[gnu::noinline]] int scan(const unsigned char *bw, long w, int xa, int xb, int ya, int yb)
{
    auto black = [=](int x, int y) { return bw[y * w + x] < 128; };
    if (xb - xa == 1) {  // boundary: also the 1 x 1 box
        for (int y = ya; y < yb; y++)
            if (black(xa, y)) return 1;
        return 0;
    }
    if (yb - ya == 1) {
        for (int x = xa; x < xb; x++)
            if (black(x, ya)) return 1;
        return 0;
    }
    // Border first: structures that cross a box usually cross its edges.
    for (int y = ya; y < yb; y++)
        if (black(xa, y) || black(xb - 1, y)) return 1;
    for (int x = xa; x < xb; x++)
        if (black(x, ya) || black(x, yb - 1)) return 1;
    for (int x = xa + 1; x < xb - 1; x++)
        for (int y = ya + 1; y < yb - 1; y++)
            if (black(x, y)) return 1;
    return 0;
}

bool table_matches(const Analysis *a)
{
    return a->table.sum && a->table.of == a->bw && a->table.width == a->opt->imagewidth &&
           a->table.height == a->opt->imageheight;
}

inline int black_in_rect(const Analysis *a, int x1, int x2, int y1, int y2)
{
    int xa, xb, ya, yb;
    if (!clip(a->opt, x1, x2, y1, y2, &xa, &xb, &ya, &yb)) return 0;
    if (!table_matches(a)) return scan(a->bw, a->opt->imagewidth, xa, xb, ya, yb);
    return TableBlack(&a->table, xa, xb, ya, yb);
}

// The box of size s at (left0, bottom0) holds black.
[[gnu::noinline]] bool occupied(Analysis *a, int s)
{
    a->results[a->nresults - 1].count++;
    return append(a->boxlist, a->nboxlist, a->boxlistlength,
                  BoxRect{a->left0, edge(a->left0, s), edge(a->bottom0, s), a->bottom0, 1});
}

// An array could not be grown: the analysis ends here, marked failed.
int fail(Analysis *a)
{
    a->failed = 1;
    a->nboxlist = 0;
    return 1;
}

// Sets boxsize to the size after s in a pass; false when the pass is over.
// A size list gives its next smaller entry; otherwise s / boxfactor.
bool next_size(Analysis *a, int s)
{
    const std::vector<int> &list = a->ext->sizes;
    if (!list.empty()) {
        auto next = std::find_if(list.begin(), list.end(), [s](int v) { return v < s; });
        a->boxsize = next == list.end() ? 0 : *next;
        return next != list.end();
    }
    int n = (int)((float)s / a->opt->boxfactor);  // single precision, truncated
    if (n == s) n = s - 1;                        // a factor barely above 1 still progresses
    a->boxsize = n;
    return !(n < a->opt->boxend || n < 1);
}

// Moves on from a completed grid of size s: boxsize to the next size, or to
// the start size of the next pass. False when that was the last grid of
// the last pass (boxsize then holds the size computed last).
bool next_grid(Analysis *a, int s)
{
    if (next_size(a, s)) return true;
    if (a->noffset >= a->opt->nsamples) return false;
    a->boxsize = start_size(a);
    a->noffset++;
    return true;
}

// --offsets all: one pass in which each size's count is the smallest over
// every grid offset, found at once from the black-pixel table. The offset
// left in the record is the first that gives that count.
int count_all_offsets(Analysis *a)
{
    const Options *o = a->opt;
    const BlackTable *t = table_matches(a) ? &a->table : nullptr;
    for (;;) {
        const int s = a->boxsize;
        a->results[a->nresults - 1].count =
            MinBoxCount(t, a->bw, o->imagewidth, o->left, o->right, o->bottom, o->top, s, &a->offsetx,
                        &a->offsety);
        a->nboxlist = 0;
        if (a->hooks.grid_done) a->hooks.grid_done(a);
        if (!next_size(a, s)) break;
        if (a->hooks.between) a->hooks.between(a);
        if (!append(a->results, a->nresults, a->resultslength, BoxResult{a->boxsize, 0, 0})) return fail(a);
    }
    if (a->hooks.finished) a->hooks.finished(a);
    return 1;
}

// The grid of size s is complete: report it, then set up the next grid, the
// next pass, or finish (returns 1).
[[gnu::noinline]] int end_grid(Analysis *a, int s)
{
    a->nboxlist = 0;
    if (a->hooks.grid_done) a->hooks.grid_done(a);

    if (!next_grid(a, s)) {
        if (a->hooks.finished) a->hooks.finished(a);
        return 1;
    }
    if (a->hooks.between) a->hooks.between(a);
    if (!append(a->results, a->nresults, a->resultslength, BoxResult{a->boxsize, 0, 0})) return fail(a);
    draw_offset(a);
    return 0;
}

// The most grids a row count lists before it starts (16 bytes each); a run
// of more, which settings such as -n 100000000 ask for, is left to the steps.
constexpr size_t kRowCountGrids = (size_t)1 << 24;

}  // namespace

// Every grid of the analysis a has just been reset for, to be counted in one
// pass over its region's rows (app/rowcount.h). The grids and their offsets
// are found first, on a copy, exactly as end_grid would meet them; the copy
// then holds the record as the last grid leaves it.
struct RowPlan {
    std::vector<RowGrid> grids;
    Analysis end;
    RowCounter *counter = nullptr;
    bool columns = false;  // the lines fed are the image's columns
    ~RowPlan() { RowCountDone(counter); }
};

namespace {

// Null, with a untouched, when the steps must count: a table of all offsets,
// hooks that want every grid as it ends, an empty region or one outside the
// image, a start size below 1 (which never finishes), more grids than
// kRowCountGrids, or no memory.
RowPlan *plan_rows(Analysis *a, bool ascending, bool columns)
{
    const Options *o = a->opt;
    if (a->cycles != 0 || a->failed || a->ext->offsets_all || a->hooks.grid_done || a->hooks.between)
        return nullptr;
    if (o->left < 0 || o->right > o->imagewidth || o->bottom < 0 || o->top > o->imageheight || o->left >= o->right ||
        o->bottom >= o->top)
        return nullptr;
    std::unique_ptr<RowPlan> p(new (std::nothrow) RowPlan{{}, *a});  // shares a's arrays; only scalars change
    if (!p) return nullptr;
    Analysis &sim = p->end;
    for (;;) {
        const int s = sim.boxsize;
        if (s < 1 || p->grids.size() >= kRowCountGrids) return nullptr;
        p->grids.push_back(RowGrid{s, sim.offsetx, sim.offsety, 0});
        if (!next_grid(&sim, s)) break;
        draw_offset(&sim);
    }
    // Columns are counted as the rows of the image turned about its
    // diagonal: the same boxes, with x and y (and their offsets) swapped.
    p->columns = columns;
    if (columns) {
        for (RowGrid &g : p->grids) std::swap(g.offsetx, g.offsety);
        p->counter = StartRowCount(o->bottom, o->top, o->left, o->right, ascending, p->grids.data(), p->grids.size());
    } else {
        p->counter = StartRowCount(o->left, o->right, o->bottom, o->top, ascending, p->grids.data(), p->grids.size());
    }
    return p->counter ? p.release() : nullptr;
}

// Leaves a counted as the steps would: the same results, the generator drawn
// as far, the last size computed in boxsize.
int finish_rows(Analysis *a, RowPlan *plan)
{
    std::unique_ptr<RowPlan> p(plan);
    a->black = RowCountDone(p->counter);
    p->counter = nullptr;
    const Analysis &sim = p->end;
    const std::vector<RowGrid> &grids = p->grids;
    if (a->hooks.started) a->hooks.started(a);
    a->results[0].count = grids[0].count;
    for (size_t i = 1; i < grids.size(); i++)
        if (!append(a->results, a->nresults, a->resultslength, BoxResult{grids[i].size, grids[i].count, 0}))
            return fail(a);
    a->boxsize = sim.boxsize;
    a->offsetx = sim.offsetx;
    a->offsety = sim.offsety;
    a->left0 = sim.left0;
    a->bottom0 = a->opt->top;
    a->noffset = sim.noffset;
    std::copy(sim.rng, sim.rng + 3, a->rng);
    a->cycles = 1;
    a->nboxlist = 0;
    if (a->hooks.finished) a->hooks.finished(a);
    return 1;
}

int count_by_rows(Analysis *a)
{
    if (!a->bw) return 0;
    RowPlan *p = plan_rows(a, true, false);
    if (!p) return 0;
    const Options *o = a->opt;
    for (int y = o->bottom; y < o->top; y++) CountRow(p->counter, a->bw + (size_t)y * o->imagewidth + o->left);
    return finish_rows(a, p);
}

}  // namespace

// ---- the current instance -----------------------------------------------------

BoxResult *&results = current.results;
int &nresults = current.nresults;
BoxRect *&boxlist = current.boxlist;
int &nboxlist = current.nboxlist;
unsigned char *&bwimage = current.bw;

time_t (*boxcount_clock)(void) = [] { return time(nullptr); };

Analysis *CurrentAnalysis(void)
{
    return &current;
}

int BoxCount(int mode)
{
    current.clock = boxcount_clock;
    return StepAnalysis(&current, mode);
}

int BlackInRect(int x1, int x2, int y1, int y2)
{
    return black_in_rect(&current, x1, x2, y1, y2);
}

int BlackInRectScan(int x1, int x2, int y1, int y2)
{
    return AnalysisBlackInRectScan(&current, x1, x2, y1, y2);
}

int MakeBlackTable(void)
{
    return BuildBlackTable(&current.table, current.bw, options.imagewidth, options.imageheight);
}

void FreeBlackTable(void)
{
    FreeBlackTableOf(&current.table);
}

// ---- any instance -------------------------------------------------------------

Analysis *CreateAnalysis(const Options *settings, const ExtraOptions *ext)
{
    Analysis *a = new (std::nothrow) Analysis{};
    if (!a) return nullptr;
    a->own = *settings;
    a->opt = &a->own;
    if (ext) a->ownext = *ext;
    a->ext = &a->ownext;
    a->boxsize = 1;
    a->clock = [] { return time(nullptr); };
    return a;
}

void FreeAnalysis(Analysis *a)
{
    if (!a) return;
    FreeBlackTableOf(&a->table);
    free(a->bw);
    free(a->results);
    free(a->boxlist);
    if (a == &current) {
        current.bw = nullptr;
        current.results = nullptr;
        current.boxlist = nullptr;
        current.nresults = current.nboxlist = current.resultslength = current.boxlistlength = 0;
        return;
    }
    delete a;
}

void SetAnalysisImage(Analysis *a, unsigned char *bw, int w, int h)
{
    if (a->bw != bw) free(a->bw);
    FreeBlackTableOf(&a->table);  // built at the first step that needs it
    a->bw = bw;
    a->black = 0;
    a->opt->imagewidth = w;
    a->opt->imageheight = h;
}

[[gnu::noinline]] int ResetAnalysis(Analysis *a)
{
    Options *o = a->opt;
    a->seed = a->ext->has_seed ? a->ext->seed : (long)a->clock();
    a->nboxlist = 0;
    a->failed = 0;
    // The clamped region stays in the settings: the panels and the banner
    // show it, and the next reset starts from it.
    if (o->left < 0) o->left = 0;
    if (o->right > o->imagewidth) o->right = o->imagewidth;
    if (o->bottom < 0) o->bottom = 0;
    if (o->top > o->imageheight) o->top = o->imageheight;
    seed48(a, a->seed);
    draw_offset(a);  // from the previous boxsize, before the new start size is set
    a->noffset = 1;
    a->boxsize = start_size(a);
    a->nresults = a->resultslength = 0;  // reallocated to one entry
    if (!append(a->results, a->nresults, a->resultslength, BoxResult{a->boxsize, 0, 0})) fail(a);
    a->cycles = 0;
    return 0;
}

int StepAnalysis(Analysis *a, int mode)
{
    if (mode == 0) return ResetAnalysis(a);
    if (a->failed) return 1;
    if (a->cycles == 0) {
        // The table is made when a box is first tested, so a run counted by
        // rows never holds it.
        if (!table_matches(a) && a->bw) BuildBlackTable(&a->table, a->bw, a->opt->imagewidth, a->opt->imageheight);
        if (mode == 1 && a->hooks.started) a->hooks.started(a);
        if (a->ext->offsets_all) return a->cycles++, count_all_offsets(a);
    }
    a->cycles++;

    // The one box of this step; everything else here is rare.
    const int s = a->boxsize;
    if (black_in_rect(a, a->left0, edge(a->left0, s), a->bottom0, edge(a->bottom0, s)) && !occupied(a, s))
        return fail(a);
    int next;
    const bool carried = __builtin_add_overflow(a->left0, s, &next);
    if (carried ? s > 0 : next >= a->opt->right) {
        a->left0 = sat((long long)a->opt->left - a->offsetx);
        if (__builtin_add_overflow(a->bottom0, s, &a->bottom0)) {
            if (s > 0) return end_grid(a, s);  // past the largest int: above any region
            a->bottom0 = INT_MIN;
        }
    } else {
        a->left0 = carried ? INT_MIN : next;
    }
    if (a->bottom0 < a->opt->top) return 0;
    return end_grid(a, s);
}

int CountByRows(Analysis *a)
{
    return count_by_rows(a);
}

int RunAnalysis(Analysis *a)
{
    if (a->nresults > 0 && a->results[0].size < 1 && a->opt->top > a->opt->bottom) return 0;
    if (count_by_rows(a)) return !a->failed;
    while (!StepAnalysis(a, 1)) {
    }
    return !a->failed;
}

RowPlan *PlanRowCount(Analysis *a, bool ascending, bool columns)
{
    return plan_rows(a, ascending, columns);
}

void CountPlannedRow(RowPlan *p, int line, const unsigned char *pixels)
{
    const Options *o = p->end.opt;
    if (p->columns) {
        if (line >= o->left && line < o->right) CountRow(p->counter, pixels + o->bottom);
    } else if (line >= o->bottom && line < o->top) {
        CountRow(p->counter, pixels + o->left);
    }
}

int FinishRowPlan(Analysis *a, RowPlan *p)
{
    return finish_rows(a, p);
}

void DropRowPlan(RowPlan *p)
{
    delete p;
}

int AnalysisBlackInRect(const Analysis *a, int x1, int x2, int y1, int y2)
{
    return black_in_rect(a, x1, x2, y1, y2);
}

int AnalysisBlackInRectScan(const Analysis *a, int x1, int x2, int y1, int y2)
{
    int xa, xb, ya, yb;
    if (!clip(a->opt, x1, x2, y1, y2, &xa, &xb, &ya, &yb)) return 0;
    return scan(a->bw, a->opt->imagewidth, xa, xb, ya, yb);
}
