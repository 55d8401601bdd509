// app/plot.h - the log-log plot of an analysis's fit, as a paper would show
// it: ln N(s) against ln(1/s), the points in the fit filled and the others
// hollow, the fitted line, a title with D, its 95% interval and r², and
// below it a small panel of the local slopes.
#pragma once

#include <string>

#include "app/fit.h"

// Draws f into the file path, SVG or PNG by its name's ending (".svg",
// otherwise PNG). Returns 1; 0 with the reason in *error when the file
// could not be written.
int DrawFitPlot(const FitSummary *f, const char *path, std::string *error);
// The same plot as SVG text; "" with the reason in *error when it could not
// be drawn.
std::string FitPlotSvg(const FitSummary *f, std::string *error);
// The title line: "D = 1.827 ± 0.012 (95%), r² = 0.9993"; without an
// interval "D = 1.827".
std::string PlotTitle(const FitSummary *f);
