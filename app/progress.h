// app/progress.h - the progress lines of a running analysis on standard
// error: the start banner, one line per completed grid, and the finish line
// with the estimate. Quiet runs do without them.
#pragma once

#include "app/boxcount.h"

// Sets a's started, grid_done and finished hooks to write those lines.
void UseProgressLines(Analysis *a);

// An analysis whose arrays could not be grown cannot go on: says so and ends
// the process with status -1. Nothing when a has not failed.
void ExitIfAnalysisFailed(const Analysis *a);
