// app/report.h - the JSON report of an analysis: the image and region, the
// settings that reproduce it (the seed included), one entry per box size and
// the fit with its statistics. A pure function of the record.
#pragma once

#include <string>

#include "app/boxcount.h"
#include "app/fit.h"

// The report of a finished analysis a, whose fit is f (SummariseFit), as
// one JSON object followed by a newline. Numbers keep full precision; a
// statistic that cannot be formed (too few points) is null.
std::string JsonReport(const Analysis *a, const FitSummary *f);
// One line of a batch's JSON lines for file: the report of a with f
// ("file" first when a is given), or, for an image that could not be
// analysed (a null), its size when known; then "status" ("ok" when error is
// empty, else "error") and "error" (null or the reason). No newline.
std::string JsonBatchLine(const std::string &file, const Analysis *a, const FitSummary *f, int width, int height,
                          const std::string &error);
