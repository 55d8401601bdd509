// app/gui/commands.cpp - the state changes behind keys, menus and panel
// inputs. Uses only the display-free core.
#include "app/gui/commands.h"

#include <cstdio>
#include <cstdlib>

#include "app/boxcount.h"
#include "app/images.h"
#include "app/options.h"
#include "app/progress.h"

void StartProcessing(void)
{
    options.processing = 1;
    BoxCount(0);
}

void StopProcessing(void)
{
    options.processing = 0;
}

int OpenImage(const char *name)
{
    if (!name || !*name) return 0;  // selector cancelled
    // LoadTGA copies the name into options.filename only once it has read
    // the file, and refuses names too long for it.
    if (!LoadTGA(name)) {
        fprintf(stderr, "Creating blank image\n");
        MakeTestImage();
    }
    UpdateImages();
    return 1;
}

void InvertImage(void)
{
    const long n = (long)options.imagewidth * options.imageheight;
    for (long i = 0; i < n; i++) {
        image[i].r = 255 - image[i].r;
        image[i].g = 255 - image[i].g;
        image[i].b = 255 - image[i].b;
    }
    UpdateImages();
}

void FormatTitle(char *out, size_t n)
{
    snprintf(out, n, "Quorl : %s (1:%d)", options.filename, options.scale);
}

void ApplyOptionInput(OptionField field, const char *text)
{
    switch (field) {
    case OPTION_SAMPLES: {
        const int v = atoi(text);
        options.nsamples = v > 0 ? v : 1;
        break;
    }
    case OPTION_START: {
        const int v = atoi(text);
        options.boxstart = v >= 2 ? v : -1;
        break;
    }
    case OPTION_END: {  // the command line gives 1 here; the panel gives 2
        const int v = atoi(text);
        options.boxend = v > 0 ? v : 2;
        break;
    }
    case OPTION_FACTOR: {
        const float v = (float)atof(text);
        options.boxfactor = v > 1.0f ? v : 1.1f;
        break;
    }
    }
}

void FormatOptionField(OptionField field, char *out, size_t n)
{
    switch (field) {
    case OPTION_SAMPLES: snprintf(out, n, "%d", options.nsamples); break;
    case OPTION_START:
        if (options.boxstart < 0)
            snprintf(out, n, "Auto");
        else
            snprintf(out, n, "%d", options.boxstart);
        break;
    case OPTION_END: snprintf(out, n, "%d", options.boxend); break;
    case OPTION_FACTOR: snprintf(out, n, "%g", (double)options.boxfactor); break;
    }
}

namespace {
double tstart = -1.0;  // time of the last redraw
}

int IdleStep(double (*clock)(void))
{
    if (tstart < 0) tstart = clock();
    const bool finished = options.processing && BoxCount(1);
    if (finished) {
        options.processing = 0;
        ExitIfAnalysisFailed(CurrentAnalysis());
    }
    const double tstop = clock();
    // Drawing and panel polling cost far more than a box test: while the
    // analysis runs, do them only every 0.1 s. While idle, a frame rate is
    // enough; drawing faster only burns a core when vertical sync is off.
    if (options.processing && tstop - tstart < 0.1) return 0;
    if (!options.processing && !finished && tstop - tstart < kIdleFrame) return 0;
    tstart = tstop;
    return 1;
}

double IdleSleep(double (*clock)(void))
{
    if (options.processing || tstart < 0) return 0;
    const double left = tstart + kIdleFrame - clock();
    return left > 0 ? left : 0;
}
