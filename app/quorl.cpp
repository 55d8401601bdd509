// app/quorl.cpp - start-up: settings, command line, the window system (unless
// quiet), image, and then either the interactive loop or the quiet run.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "app/batch.h"
#include "app/boxcount.h"
#include "app/crop.h"
#include "app/estimate.h"
#include "app/fit.h"
#include "app/images.h"
#include "app/options.h"
#include "app/progress.h"
#include "app/results.h"
#include "app/serve.h"
#include "bitmap/pixels.h"

#ifdef QUORL_GUI
#include "app/gui/gui.h"
#endif

int main(int argc, char **argv)
{
    StartupArgs args;
    SetDefaultOptions(&args);
    ParseCommandLine(argc, argv, &args);
    if (!extras.batch.empty()) return RunBatch(&options, &extras);
    if (extras.serve) return RunServer(&options, &extras);

    if (!options.quiet) {
        if (!extras.json.empty() || !extras.plot.empty())
            fprintf(stderr, "Warning, --json and --plot write their files after quiet runs only; add -q\n");
        UseProgressLines(CurrentAnalysis());
#ifdef QUORL_GUI
        StartInteractive(argc, argv);
#else
        fprintf(stderr, "The interactive mode is not available in this build; use -q for a quiet analysis\n");
        return 0;
#endif
    }

    int counted = 0;  // a quiet run counts the rows as it reads them, when it can
    if (options.quiet && args.name && *args.name) {
        const int loaded = LoadBlackWhiteImage(args.name);
        if (!loaded) exit(-1);  // it has said why
        counted = loaded == 2;
    } else if (args.name && *args.name) {
        if (!LoadTGA(args.name)) {
            fprintf(stderr, "Creating blank image\n");
            MakeTestImage();
        }
    } else {
        MakeTestImage();
    }
    if (!options.quiet || !args.name || !*args.name) UpdateImages();
    if (!counted && extras.crop && CropToBlack(CurrentAnalysis())) {
        args.left = options.left, args.right = options.right, args.bottom = options.bottom, args.top = options.top;
        BoxCount(0);  // the start size follows the new region, as if it had been given
    }
    if (!counted) BoxCount(0);

#ifdef QUORL_GUI
    if (!options.quiet) RunInteractive();
#endif

    // An automatic start size below 1 (a region under 5 pixels across, or one
    // whose edges are crossed) never moves the scan up a row; say so rather
    // than leave the user at a silent hang.
    if (results[0].size < 1 && options.top > options.bottom)
        fprintf(stderr, "Warning, start box size is %d: the analysis cannot finish; "
                        "give a start size with -b1\n", results[0].size);

    options.processing = 1;
    if (!counted && !CountByRows(CurrentAnalysis()))  // the steps only where rows cannot do it
        while (!BoxCount(1)) {
        }
    ExitIfAnalysisFailed(CurrentAnalysis());
    if (extras.json != "-") {
        SaveResults();
        printf("Estimated fractal dimension: %6.3f", FittedSlope(CurrentAnalysis()));
        if (options.useregion)
            printf(" in region: %d %d to %d %d\n", args.left, args.bottom, args.right, args.top);
        printf("\n");
    }
    if (!SaveReports(CurrentAnalysis())) return -1;
    if (fflush(stdout) != 0 || ferror(stdout)) {
        fprintf(stderr, "Failed to write the estimate to standard output: %s\n",
                strerror(errno ? errno : EIO));
        return -1;
    }
    return 0;
}
