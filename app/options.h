// app/options.h - the settings record, the command line, the usage text and
// the normal exit.
#pragma once

#include <cstdio>
#include <string>

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
    std::string error;  // why the command line was refused (PARSE_ERROR)
};

// What the command line asks of start-up.
enum ParseResult {
    PARSE_USAGE = 0,  // "-h": the usage text
    PARSE_OK = 1,     // run
    PARSE_HELP,       // "--help": the full usage text on standard output
    PARSE_VERSION,    // "--version"
    PARSE_ERROR = -1  // a long option that is unknown or has a bad value
};

// Puts the defaults into options, extras (app/longopts.h) and args.
void SetDefaultOptions(StartupArgs *args);
// Reads the switches left to right into options, extras and args, stopping
// at "-h", "--help", "--version" or a bad long option. Returns what start-up
// is to do (PARSE_USAGE for "-h": the settings read before it stay in place
// so the usage text can show them). Never prints and never exits. Unknown
// short words are ignored; a missing value reads as "". Words that start
// with "--" are long options.
int ParseArguments(int argc, char **argv, StartupArgs *args);
// ParseArguments, then: GiveUsage for "-h"; the full usage on standard
// output and exit 0 for "--help"; the version and exit 0 for "--version";
// the reason on standard error and exit 2 for a bad long option.
void ParseCommandLine(int argc, char **argv, StartupArgs *args);
// Writes the usage text, showing the current settings as the defaults.
void WriteUsage(FILE *out, const char *progname);
// WriteUsage followed by the long options.
void WriteFullUsage(FILE *out, const char *progname);
// Usage text to standard error, then CleanExit. Never returns.
[[noreturn]] void GiveUsage(const char *progname);
// Ends the process with status 0; frees and saves nothing.
[[noreturn]] void CleanExit(void);
