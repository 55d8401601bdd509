// app/boxcount.h - the incremental box-counting engine.
//
// A running analysis lives in one record, `Analysis`: its settings, the
// black/white image it counts with that image's black-pixel table, the
// results table, the box list of the grid being counted, and where the scan
// stands. A step tests exactly one box, so an interactive caller can step it
// from its idle loop; a reset prepares a new analysis.
//
// The program's own analysis is the current instance: the globals `results`,
// `nresults`, `boxlist`, `nboxlist` and `bwimage` are its fields, it reads the
// settings record `options` afresh at every step (so the options panel takes
// effect at the next grid), and `BoxCount`, `BlackInRect` and `MakeBlackTable`
// work on it. Other code (batch runs, tests) makes further instances with
// CreateAnalysis, each with its own copy of the settings; instances share
// nothing, so several may run in different threads at once.
//
// Coordinates are image pixels, y upward from the bottom row. The region in
// the settings is half-open: columns left..right-1, rows bottom..top-1.
#pragma once

#include <ctime>

#include "app/blacktable.h"
#include "app/longopts.h"
#include "app/options.h"

// One counted grid: its box size and the boxes found occupied so far.
struct BoxResult {
    int size;
    int count;
    int done;  // scratch mark of the results writer; the engine never sets it
};

// An occupied box of the current grid, unclipped: left = x, right = x + s,
// top = y + s, bottom = y.
struct BoxRect {
    int left, right, top, bottom;
    int occupied;
};

struct Analysis;

// What a front-end hears of a running analysis. Each may be null. They are
// called on the thread that steps the analysis, between two box tests.
struct AnalysisHooks {
    void (*started)(const Analysis *a);    // the first step after a reset
    void (*grid_done)(const Analysis *a);  // a grid is complete: the last results entry is final
    void (*between)(const Analysis *a);    // after every grid but the last, before the next begins
    void (*finished)(const Analysis *a);   // the last grid of the last pass is complete
    void *user;                            // for the front-end; the engine never reads it
};

struct Analysis {
    Options *opt;        // settings in force: &options, or &own
    Options own;         // the settings of an instance made by CreateAnalysis
    const ExtraOptions *ext;  // long-option settings: &extras, or &ownext
    ExtraOptions ownext;
    unsigned char *bw;   // black/white image, opt->imagewidth x opt->imageheight; 0 black, 255 white
    BlackTable table;    // of bw, when it matches bw; else boxes are tested pixel by pixel
    long long black;     // black pixels in the region, when counted by rows from an image not held

    BoxResult *results;  // one entry per grid, in counting order
    int nresults;
    BoxRect *boxlist;    // occupied boxes of the grid being counted
    int nboxlist;
    int resultslength;   // elements allocated in each array: the box list is emptied after
    int boxlistlength;   //   every grid but never shrunk; the reset reallocates results to one

    int boxsize;         // size of the grid being counted; 1 in a new record
    int left0, bottom0;  // lower-left corner of the next box to test
    int noffset;         // 1-based number of the current pass
    int offsetx, offsety;  // offset of the current grid
    int cycles;          // steps since the last reset
    int failed;          // 1 when an array could not be grown; the analysis ended there

    time_t (*clock)(void);  // seed of every reset without ext->has_seed; time() unless replaced
    long seed;              // the seed of the last reset
    unsigned short rng[3];  // the offset generator: the 48-bit state of drand48

    AnalysisHooks hooks;
};

// ---- the current instance -----------------------------------------------------

extern BoxResult *&results;
extern int &nresults;
extern BoxRect *&boxlist;
extern int &nboxlist;
extern unsigned char *&bwimage;  // the image the current instance counts

// The program's own analysis, bound to `options`.
Analysis *CurrentAnalysis(void);

// Where the current instance's seed comes from; time() by default. Tests may
// replace it.
extern time_t (*boxcount_clock)(void);

// mode 0: reset and return 0. Otherwise one step: returns 1 when the last grid
// of the last pass has just been completed, else 0.
int BoxCount(int mode);
// 1 when the part of [x1, x2) x [y1, y2) inside the region holds a black
// pixel of bwimage. Answers from the black-pixel table in constant time when
// one matches bwimage, otherwise by BlackInRectScan; the answer is the same.
int BlackInRect(int x1, int x2, int y1, int y2);
// The same test by looking at pixels: the border before the interior,
// stopping at the first black pixel.
int BlackInRectScan(int x1, int x2, int y1, int y2);
// (Re)builds the black-pixel table of bwimage at options' image size; call
// it after every change to bwimage (UpdateImages does). Returns 1 when
// built, 0 when it could not be allocated, in which case BlackInRect scans
// pixels. FreeBlackTable releases it; BlackInRect then scans pixels until
// the next MakeBlackTable.
int MakeBlackTable(void);
void FreeBlackTable(void);

// ---- further instances --------------------------------------------------------

// A new analysis with its own copy of the settings (and of the long-option
// settings; defaults when ext is null) and no image; null when out of
// memory. Free it with FreeAnalysis.
Analysis *CreateAnalysis(const Options *settings, const ExtraOptions *ext = nullptr);
// Releases the image, the table and both arrays; the record itself too,
// unless it is the current instance (which is then empty and reusable).
void FreeAnalysis(Analysis *a);
// Hands a the w x h black/white image bw (from malloc; a frees it) and sets
// the settings' image size. The black-pixel table is built by the first
// step after a reset (boxes are tested pixel by pixel if it cannot be).
void SetAnalysisImage(Analysis *a, unsigned char *bw, int w, int h);
// The reset, as BoxCount(0): clamps the region to the image (the clamped
// region stays in the settings), seeds the generator (with ext->seed when
// given, else from the clock) and draws the first offset from the size held
// until now. Returns 0.
int ResetAnalysis(Analysis *a);
// One step, as BoxCount(mode). With ext->sizes a pass counts exactly the
// listed sizes; with ext->offsets_all the first step counts one pass, each
// size's count the smallest over every grid offset, and finishes.
int StepAnalysis(Analysis *a, int mode);
// Steps to the end; returns 1 when finished, 0 when the analysis cannot
// finish (a start size below 1 never leaves its first row) or failed. When
// no hook wants each grid as it ends, the grids are counted by rows
// instead (CountByRows): the same results, far sooner on large images.
int RunAnalysis(Analysis *a);
// Right after a reset, counts every grid in one pass over the region's rows,
// without the black-pixel table, and leaves the analysis finished exactly as
// the steps would (results, generator, sizes); calls the started and
// finished hooks. Returns 1 when it did (check a->failed), 0 when the steps
// must do it instead: with --offsets all, grid_done or between hooks, no
// image, a region that is empty or outside the image, a start size below 1,
// or more than 16 million grids.
int CountByRows(Analysis *a);
// The same while the image is being read, so that it need never be held:
// after SetAnalysisImage with a null image (its size only) and a reset,
// PlanRowCount lists the grids for rows that will come upward (ascending,
// from row 0) or downward (from the top row), or for columns (columns set)
// that will come from the left or from the right. Null when the steps must
// count (as for CountByRows) or memory is short: then keep the image whole.
// Every row y (imagewidth bytes, black below 128) or column x (imageheight
// bytes, bottom up) then goes to CountPlannedRow once, in that order (those
// outside the region are passed over), and FinishRowPlan leaves the
// analysis as CountByRows would; DropRowPlan frees a plan whose rows never
// all came.
struct RowPlan;
RowPlan *PlanRowCount(Analysis *a, bool ascending, bool columns);
void CountPlannedRow(RowPlan *p, int line, const unsigned char *pixels);
int FinishRowPlan(Analysis *a, RowPlan *p);
void DropRowPlan(RowPlan *p);
// BlackInRect and BlackInRectScan on a's image, region and table.
int AnalysisBlackInRect(const Analysis *a, int x1, int x2, int y1, int y2);
int AnalysisBlackInRectScan(const Analysis *a, int x1, int x2, int y1, int y2);
