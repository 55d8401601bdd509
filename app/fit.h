// app/fit.h - the fit behind the estimate, with the statistics a report
// needs: which sizes enter it, how well a line fits them, and how certain the
// slope is.
//
// The dimension itself is always the estimate's single-precision slope (so
// a report shows the number the program prints); the statistics come from
// an ordinary least-squares fit in double precision over the same points.
// Pure functions of an analysis record: no globals, no output.
#pragma once

#include <vector>

#include "app/boxcount.h"

// One distinct box size, in table order, with its smallest count (sizes
// whose counts are all 0 are left out, as in the results table).
struct SizePoint {
    int size;
    int count;
    double ln_inv_size;  // ln(1/size)
    double ln_count;     // ln(count)
    int in_fit;          // 1 when size lies in the fit range
};

// The slope between two neighbouring sizes: where it holds steady, the
// object scales.
struct LocalSlope {
    int from, to;  // box sizes, larger first
    double slope;
};

// y = intercept + slope * x by least squares, in double precision.
struct LineFit {
    int points;
    int fitted;        // 1 when at least 2 points with distinct x
    double slope, intercept;
    double r2;         // coefficient of determination; 1 when every y is equal
    int has_interval;  // 1 when at least 3 points: the following are set
    double stderr_slope;      // standard error of the slope
    double ci_low, ci_high;   // slope -/+ t(0.975, n - 2) * stderr_slope
};

struct FitSummary {
    double dimension;  // the printed estimate over the sizes in range
    LineFit line;      // over the in-fit points
    std::vector<SizePoint> sizes;
    std::vector<LocalSlope> local_slopes;
};

// The estimate from the entries whose size lies in [fit_min, fit_max], by
// the usual rules (-1.0 for fewer than 4 such entries, 0.0 for fewer than 3
// distinct sizes).
double FittedSlopeOf(const BoxResult *table, int n, int fit_min, int fit_max);
// The same with a's results and fit range: the estimate a quiet run prints.
double FittedSlope(const Analysis *a);
// Fits n points. Returns line->fitted.
int FitLine(const double *x, const double *y, int n, LineFit *line);
// The 97.5% quantile of Student's t with df degrees of freedom (df >= 1).
double StudentT975(int df);
// Everything a report or plot shows about a's fit.
void SummariseFit(const Analysis *a, FitSummary *f);
