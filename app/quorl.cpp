// app/quorl.cpp - start-up: settings, command line, the window system (unless
// quiet), image, and then either the interactive loop or the quiet run.
#include <cstdio>
#include <cstdlib>

#include "app/boxcount.h"
#include "app/estimate.h"
#include "app/images.h"
#include "app/options.h"
#include "app/results.h"
#include "bitmap/pixels.h"

#ifdef QUORL_GUI
#include "app/gui/gui.h"
#endif

int main(int argc, char **argv)
{
    StartupArgs args;
    SetDefaultOptions(&args);
    ParseCommandLine(argc, argv, &args);

    if (!options.quiet) {
#ifdef QUORL_GUI
        StartInteractive(argc, argv);
#else
        fprintf(stderr, "The interactive mode is not available in this build; use -q for a quiet analysis\n");
        return 0;
#endif
    }

    if (args.name && *args.name) {
        if (!LoadTGA(args.name)) {
            if (options.quiet) exit(-1);  // LoadTGA has said why
            fprintf(stderr, "Creating blank image\n");
            MakeTestImage();
        }
    } else {
        MakeTestImage();
    }
    UpdateImages();
    BoxCount(0);

#ifdef QUORL_GUI
    if (!options.quiet) RunInteractive();
#endif

    // A zero start size (automatic, on a region under 5 pixels across) never
    // advances the scan; say so rather than leave the user at a silent hang.
    if (results[0].size == 0 && options.right > options.left && options.top > options.bottom)
        fprintf(stderr, "Warning, start box size is 0: the analysis cannot finish; "
                        "give a start size with -b1\n");

    options.processing = 1;
    while (!BoxCount(1)) {
    }
    SaveResults();
    printf("Estimated fractal dimension: %6.3f", CalcSlope());
    if (options.useregion)
        printf(" in region: %d %d to %d %d\n", args.left, args.bottom, args.right, args.top);
    printf("\n");
    return 0;
}
