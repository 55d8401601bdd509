// app/quorl.cpp - start-up: settings, command line, image, and the quiet run.
#include <cstdio>
#include <cstdlib>

#include "app/boxcount.h"
#include "app/estimate.h"
#include "app/images.h"
#include "app/options.h"
#include "app/results.h"
#include "bitmap/pixels.h"

int main(int argc, char **argv)
{
    StartupArgs args;
    SetDefaultOptions(&args);
    ParseCommandLine(argc, argv, &args);

    if (!options.quiet) {
        fprintf(stderr, "The interactive mode is not available in this build; use -q for a quiet analysis\n");
        return 0;
    }

    if (args.name && *args.name) {
        if (!LoadTGA(args.name)) exit(-1);  // LoadTGA has said why
    } else {
        MakeTestImage();
    }
    UpdateImages();
    BoxCount(0);

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
