// app/prepare.h - an analysis record made ready for one image by the steps
// a quiet run takes: the settings' region (reset unless one was given), the
// image, a reset, the crop to the black pixels and another reset, one more
// reset. Batch rows, the server and the Python module all start here, so
// with the same seed they give the quiet run's numbers to the last digit.
#pragma once

#include <memory>

#include "app/boxcount.h"

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
