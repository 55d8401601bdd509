// app/options.cpp - defaults, command-line switches, usage text, exit.
#include "app/options.h"

#include <cstdlib>
#include <cstring>

#include "app/longopts.h"

Options options;
const int versionnumber = 101;

void SetDefaultOptions(StartupArgs *args)
{
    options.quiet = 0;
    options.debug = 0;
    options.windowwidth = 400;
    options.windowheight = 300;
    options.imagewidth = 0;
    options.imageheight = 0;
    options.imagedepth = 0;
    options.scale = 1;
    snprintf(options.filename, sizeof options.filename, "%s", "no image");
    options.wkeyflag = 0;
    options.mousebutton = -1;
    options.invert = 0;
    options.nsamples = 10;
    options.processing = 0;
    options.boxstart = -1;
    options.boxend = 6;
    options.boxfactor = 1.2f;
    options.useregion = 0;
    options.left = 0;
    options.right = 100000;
    options.top = 100000;
    options.bottom = 0;

    extras = ExtraOptions{};
    args->name = nullptr;
    args->error.clear();
    args->left = 0;
    args->right = 100000;
    args->top = 100000;
    args->bottom = 0;
}

int ParseArguments(int argc, char **argv, StartupArgs *args)
{
    for (int i = 1; i < argc; i++) {
        const char *w = argv[i];
        const char *value = i + 1 < argc ? argv[i + 1] : "";  // last word: empty value
        if (!strncmp(w, "--", 2)) {
            switch (ParseLongOption(argc, argv, &i, &extras, &args->error)) {
            case LONG_OK: break;
            case LONG_HELP: return PARSE_HELP;
            case LONG_VERSION: return PARSE_VERSION;
            case LONG_ERROR: return PARSE_ERROR;
            }
        } else if (!strcmp(w, "-h")) {
            return PARSE_USAGE;
        } else if (!strcmp(w, "-d")) {
            options.debug = 1;
        } else if (!strcmp(w, "-q")) {
            options.quiet = 1;
        } else if (!strcmp(w, "-p")) {
            options.processing = 1;
        } else if (!strcmp(w, "-i")) {
            args->name = value;
            i++;
        } else if (!strcmp(w, "-b1")) {
            options.boxstart = atoi(value);
            if (options.boxstart < 2) options.boxstart = -1;
            i++;
        } else if (!strcmp(w, "-b2")) {
            options.boxend = atoi(value);
            if (options.boxend < 1) options.boxend = 1;
            i++;
        } else if (!strcmp(w, "-bf")) {
            options.boxfactor = (float)atof(value);
            // Inverted test so that "nan" is refused too, as the options panel does.
            if (!(options.boxfactor > 1.0f)) options.boxfactor = 1.1f;
            i++;
        } else if (!strcmp(w, "-n")) {
            options.nsamples = atoi(value);
            if (options.nsamples < 1) options.nsamples = 1;
            i++;
        } else if (!strcmp(w, "-bw")) {
            options.invert = 1;
        // The region switches read the next word but do not skip it: it is
        // examined again as a switch on the next turn.
        } else if (!strcmp(w, "-sl")) {
            options.left = args->left = atoi(value);
            options.useregion = 1;
        } else if (!strcmp(w, "-sr")) {
            options.right = args->right = atoi(value);
            options.useregion = 1;
        } else if (!strcmp(w, "-sb")) {
            options.bottom = args->bottom = atoi(value);
            options.useregion = 1;
        } else if (!strcmp(w, "-st")) {
            options.top = args->top = atoi(value);
            options.useregion = 1;
        }
    }
    return PARSE_OK;
}

void ParseCommandLine(int argc, char **argv, StartupArgs *args)
{
    const char *prog = argc > 0 ? argv[0] : "quorl";
    switch (ParseArguments(argc, argv, args)) {
    case PARSE_USAGE: GiveUsage(prog);
    case PARSE_HELP: WriteFullUsage(stdout, prog); exit(fflush(stdout) ? 2 : 0);
    case PARSE_VERSION: printf("Quorl %g\n", versionnumber / 100.0); exit(fflush(stdout) ? 2 : 0);
    case PARSE_ERROR:
        fprintf(stderr, "%s: %s\nTry \"%s --help\" for every option.\n", prog, args->error.c_str(), prog);
        exit(2);
    default: break;
    }
}

void WriteUsage(FILE *out, const char *progname)
{
    fprintf(out, "Usage: %s [options]\n", progname);
    fprintf(out, "General options\n");
    fprintf(out, "     -h      this text (help)\n");
    fprintf(out, "     -i s    load input TGA file\n");
    fprintf(out, "     -bw     invert image\n");
    fprintf(out, "     -q      quiet, command line mode\n");
    fprintf(out, "     -p      start processing immediately\n");
    fprintf(out, "Box options\n");
    fprintf(out, "     -n  n   number of offset samples, default: %d\n", options.nsamples);
    fprintf(out, "     -b1 n   start box size (default: %d)\n", options.boxstart);
    fprintf(out, "     -b2 n   end box size (default: %d)\n", options.boxend);
    fprintf(out, "     -bf n   box reduction factor (default: %g)\n", (double)options.boxfactor);
    fprintf(out, "Region options\n");
    fprintf(out, "     -sl     left boundary (default: 0)\n");
    fprintf(out, "     -sr     right boundary (default: image width)\n");
    fprintf(out, "     -sb     bottom boundary (default: 0)\n");
    fprintf(out, "     -st     top boundary (default: image height)\n");
}

void WriteFullUsage(FILE *out, const char *progname)
{
    WriteUsage(out, progname);
    fprintf(out, "     -d      log every redraw of the window\n");
    fprintf(out, "Long options (two words: --name value)\n");
    WriteLongUsage(out);
}

void GiveUsage(const char *progname)
{
    WriteUsage(stderr, progname);
    CleanExit();
}

void CleanExit(void)
{
    exit(0);
}
