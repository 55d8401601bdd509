// app/options.h - the settings record, the command line, the usage text and
// the normal exit.
#pragma once

#include <cstdio>

// The one global record of settings and window state. Fields keep this order.
struct Options {
    int quiet;           // 1: command-line mode (-q), no display at all
    int debug;           // 1: every redraw logs "Display update" (-d)
    int windowwidth;     // size of the image window and of viewimage
    int windowheight;
    int imagewidth;      // size of the loaded image
    int imageheight;
    int imagedepth;      // bits per pixel from the last TGA header (only printed)
    int scale;           // image pixels per window pixel, a power of two
    char filename[256];  // current image name, "No Image" for the blank image
    int wkeyflag;        // set by the W key; nothing reads it
    int mousebutton;     // last mouse button; nothing reads it
    int invert;          // 1: the next image build inverts black and white (-bw)
    int nsamples;        // offset passes per analysis, at least 1
    int processing;      // 1: the analysis is running
    int boxstart;        // largest box size; -1 automatic; never 0 or 1
    int boxend;          // smallest box size, at least 1
    float boxfactor;     // box reduction factor, always above 1
    int useregion;       // 1: a region switch was given; the region survives rebuilds
    int left;            // region, image pixels: columns left .. right-1,
    int right;           //   rows bottom .. top-1 (y grows upward);
    int top;             //   100000 stands for the image's edge
    int bottom;
};

extern Options options;
extern const int versionnumber;  // program version times 100

// What the command line gives start-up beside the settings record: the "-i"
// name (null when none) and the region exactly as typed, never clamped.
struct StartupArgs {
    const char *name;
    int left, right, top, bottom;
};

// Puts the defaults into options and args.
void SetDefaultOptions(StartupArgs *args);
// Reads the switches left to right into options and args, stopping at "-h".
// Returns 0 when "-h" was met (usage wanted; the settings read before it stay
// in place so the usage text can show them), 1 otherwise. Never prints and
// never exits. Unknown words are ignored; a missing value reads as "".
int ParseArguments(int argc, char **argv, StartupArgs *args);
// ParseArguments, then GiveUsage when "-h" was met.
void ParseCommandLine(int argc, char **argv, StartupArgs *args);
// Writes the usage text, showing the current settings as the defaults.
void WriteUsage(FILE *out, const char *progname);
// Usage text to standard error, then CleanExit. Never returns.
[[noreturn]] void GiveUsage(const char *progname);
// Ends the process with status 0; frees and saves nothing.
[[noreturn]] void CleanExit(void);
