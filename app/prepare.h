// app/prepare.h - an analysis record made ready for one image by the steps
// a quiet run takes: the settings' region (reset unless one was given), the
// image, a reset, the crop to the black pixels and another reset, one more
// reset. Batch rows, the server and the Python module all start here, so
// with the same seed they give the quiet run's numbers to the last digit.
// Where the rows can be counted as they are read, the quiet run, batch rows
// and the module's file analyses do that instead (CountAsRead), and the
// image is never held.
#pragma once

#include <memory>

#include "app/boxcount.h"
#include "app/load.h"

// Frees a record when its owner goes out of scope.
struct AnalysisFree {
    void operator()(Analysis *a) const { FreeAnalysis(a); }
};
using AnalysisPtr = std::unique_ptr<Analysis, AnalysisFree>;

enum PrepareStatus {
    PREPARE_OK,
    PREPARE_NO_MEMORY,     // no record could be made
    PREPARE_NO_BLACK,      // no black pixel in the analysed region: nothing to fit
    PREPARE_CANNOT_FINISH  // a start size below 1 never leaves its first row of boxes
};

// Makes a record with the settings o and x (name as its file name) that
// takes over the w x h black/white image bw (from malloc, freed in every
// case), and resets it ready to run. On PREPARE_OK *a holds it; otherwise *a
// is empty, and *start is the start size (for PREPARE_CANNOT_FINISH).
PrepareStatus PrepareAnalysis(unsigned char *bw, int w, int h, const Options *o, const ExtraOptions *x,
                              const char *name, AnalysisPtr *a, int *start);

// The record PrepareAnalysis would make, for a w x h image that is not
// held, to be counted from its rows as they are read (CountAsRead); null
// with --crop, which needs the image whole, or without memory.
AnalysisPtr PrepareToCount(int w, int h, const Options *o, const ExtraOptions *x, const char *name);

struct RowPipe;

// Counting an image's rows as they are read, so that it is never held: pass
// CountAsReadTaker(&c) to LoadBlackWhite. Once the size is known,
// ready(ctx, width, height) returns the record that is to count the image,
// made ready as for PrepareAnalysis but with no image held (SetAnalysisImage
// with a null image), or null to have the image kept whole instead. Its
// grids are planned (PlanRowCount); when they can be, the rows are counted
// as they come, on a second thread when threaded is set.
struct CountAsRead {
    Analysis *(*ready)(void *ctx, int width, int height);
    void *ctx;
    bool threaded;
    Analysis *a = nullptr;  // what ready returned
    RowPlan *plan = nullptr;
    RowPipe *pipe = nullptr;
};
BwRowTaker CountAsReadTaker(CountAsRead *c);
// After the load, with its status: 1 when the record has been counted from
// the rows (finished as CountByRows leaves it); 0 when the load failed or
// kept the image, and then nothing was counted.
int CountAsReadDone(CountAsRead *c, LoadStatus status);

// For CountAsRead.ready, with ctx a PreparedCount: the record made by
// PrepareToCount, kept in a.
struct PreparedCount {
    const Options *o;
    const ExtraOptions *x;
    const char *name;
    AnalysisPtr a;
};
Analysis *ReadyPrepared(void *ctx, int width, int height);
