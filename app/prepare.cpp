// app/prepare.cpp - an analysis record made ready for one image.
#include "app/prepare.h"

#include <cstdio>
#include <cstdlib>

#include "app/crop.h"

PrepareStatus PrepareAnalysis(unsigned char *bw, int w, int h, const Options *o, const ExtraOptions *x,
                              const char *name, AnalysisPtr *a, int *start)
{
    AnalysisPtr made(CreateAnalysis(o, x));
    if (!made) {
        free(bw);
        return PREPARE_NO_MEMORY;
    }
    Options *s = &made->own;
    snprintf(s->filename, sizeof s->filename, "%s", name);
    if (!s->useregion) s->left = 0, s->right = 100000, s->top = 100000, s->bottom = 0;
    SetAnalysisImage(made.get(), bw, w, h);
    ResetAnalysis(made.get());
    if (made->ext->crop && CropToBlack(made.get())) ResetAnalysis(made.get());
    ResetAnalysis(made.get());
    *start = made->results[0].size;
    if (BlackPixelsInRegion(made.get()) == 0) return PREPARE_NO_BLACK;
    if (*start < 1 && s->top > s->bottom) return PREPARE_CANNOT_FINISH;
    *a = std::move(made);
    return PREPARE_OK;
}
