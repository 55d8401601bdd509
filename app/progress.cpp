// app/progress.cpp - progress lines on standard error, from the engine's hooks.
#include "app/progress.h"

#include <cstdio>
#include <cstdlib>

#include "app/estimate.h"

namespace {

void banner(const Analysis *a)
{
    const Options *o = a->opt;
    fprintf(stderr, "Processing starting ");
    if (o->useregion)
        fprintf(stderr, "on region: (%d,%d) to (%d,%d)\n", o->left, o->bottom, o->right, o->top);
    fprintf(stderr, "\n");
}

void grid_line(const Analysis *a)
{
    fprintf(stderr, "   Box size: %4d [%3d]", a->boxsize, a->nresults);
    if (a->opt->nsamples >= 2)
        fprintf(stderr, ", Offset %3d of %3d: (%3d,%3d)", a->noffset, a->opt->nsamples, a->offsetx,
                a->offsety);
    fprintf(stderr, ", Total count = %d\n", a->results[a->nresults - 1].count);
}

void finish_line(const Analysis *a)
{
    fprintf(stderr, "Processing finished\n");
    fprintf(stderr, "Estimated fractal dimension: %6.3f\n", SlopeOf(a->results, a->nresults));
}

}  // namespace

void UseProgressLines(Analysis *a)
{
    a->hooks.started = banner;
    a->hooks.grid_done = grid_line;
    a->hooks.finished = finish_line;
}

void ExitIfAnalysisFailed(const Analysis *a)
{
    if (!a->failed) return;
    fprintf(stderr, "   Out of memory while counting boxes - fatal\n");
    exit(-1);
}
