// app/prepare.cpp - an analysis record made ready for one image, and counted
// as the image is read where it can be.
#include "app/prepare.h"

#include <cstdio>
#include <cstdlib>

#include "app/crop.h"
#include "app/rowpipe.h"

namespace {

void take_row(void *ctx, int y, const unsigned char *bw)
{
    CountPlannedRow((RowPlan *)ctx, y, bw);
}

int count_begin(void *ctx, int w, int h, bool ascending, bool columns)
{
    CountAsRead *c = (CountAsRead *)ctx;
    c->a = c->ready(c->ctx, w, h);
    if (!c->a) return 0;
    c->plan = PlanRowCount(c->a, ascending, columns);
    if (!c->plan) return 0;
    if (c->threaded) c->pipe = StartRowPipe(columns ? h : w, take_row, c->plan);
    return 1;
}

// With the pipe, rows are thresholded straight into its room.
unsigned char *count_room(void *ctx)
{
    const CountAsRead *c = (const CountAsRead *)ctx;
    return c->pipe ? RowPipeRoom(c->pipe) : nullptr;
}

void count_row(void *ctx, int y, const unsigned char *bw)
{
    CountAsRead *c = (CountAsRead *)ctx;
    if (c->pipe)
        PutRow(c->pipe, y);  // bw is its room
    else
        CountPlannedRow(c->plan, y, bw);
}


// A record with the settings o and x, named, over the whole image unless a
// region was given.
AnalysisPtr make_record(const Options *o, const ExtraOptions *x, const char *name)
{
    AnalysisPtr made(CreateAnalysis(o, x));
    if (!made) return made;
    Options *s = &made->own;
    snprintf(s->filename, sizeof s->filename, "%s", name);
    if (!s->useregion) s->left = 0, s->right = 100000, s->top = 100000, s->bottom = 0;
    return made;
}

}  // namespace

PrepareStatus PrepareAnalysis(unsigned char *bw, int w, int h, const Options *o, const ExtraOptions *x,
                              const char *name, AnalysisPtr *a, int *start)
{
    AnalysisPtr made = make_record(o, x, name);
    if (!made) {
        free(bw);
        return PREPARE_NO_MEMORY;
    }
    const Options *s = made->opt;
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

AnalysisPtr PrepareToCount(int w, int h, const Options *o, const ExtraOptions *x, const char *name)
{
    if (x->crop) return nullptr;  // cropping looks at the whole image first
    AnalysisPtr made = make_record(o, x, name);
    if (!made) return made;
    SetAnalysisImage(made.get(), nullptr, w, h);
    ResetAnalysis(made.get());
    ResetAnalysis(made.get());
    return made;
}

Analysis *ReadyPrepared(void *ctx, int width, int height)
{
    PreparedCount *p = (PreparedCount *)ctx;
    p->a = PrepareToCount(width, height, p->o, p->x, p->name);
    return p->a.get();
}

BwRowTaker CountAsReadTaker(CountAsRead *c)
{
    return BwRowTaker{count_begin, count_row, c, count_room};
}

int CountAsReadDone(CountAsRead *c, LoadStatus status)
{
    EndRowPipe(c->pipe);
    c->pipe = nullptr;
    RowPlan *plan = c->plan;
    c->plan = nullptr;
    if (!plan) return 0;
    if (status != LOAD_OK) {
        DropRowPlan(plan);
        return 0;
    }
    FinishRowPlan(c->a, plan);
    return 1;
}
