// app/longopts.h - the long options: every switch beyond the short ones,
// written as two words ("--name value") or one ("--crop"). Unlike the short
// switches, an unknown or malformed long option is an error.
#pragma once

#include <climits>
#include <cstdio>
#include <string>
#include <vector>

constexpr int kThresholdFixed = -1;  // the r*r + g*g + b*b < 16384 rule
constexpr int kThresholdOtsu = -2;   // a grey level chosen by Otsu's method

// Settings of the long options, beside the settings record `options`.
struct ExtraOptions {
    int threshold = kThresholdFixed;  // --threshold: kThresholdFixed, kThresholdOtsu or a level 0..255
    int has_seed = 0;                 // --seed N: every reset seeds with N instead of the clock
    long seed = 0;
    int offsets_all = 0;              // --offsets all: the minimum over every grid offset
    std::vector<int> sizes;           // --sizes LIST: exactly these box sizes, largest first
    int crop = 0;                     // --crop: the region is the black pixels' bounding box
    int fit_min = 0, fit_max = INT_MAX;  // --fit-range MIN:MAX, box sizes in pixels, inclusive
    std::string json;                 // --json FILE ("-": standard output)
    std::string plot;                 // --plot FILE (.svg or .png)
    std::string batch;                // --batch LIST: one image name a line ("-": standard input)
    std::string csv;                  // --csv FILE: the batch table (default standard output)
    std::string jsonl;                // --jsonl FILE: the batch as JSON lines
    int jobs = 0;                     // --jobs N: images at once; 0 = the number of cores
    int serve = 0;                    // --serve: the HTTP server and its page
    int port = 8080;                  // --port N
    std::string bind = "127.0.0.1";   // --bind ADDR: where the server listens (loopback by default)
    long long max_upload = 512ll << 20;  // --max-upload SIZE: the largest image a client may send, bytes
};

extern ExtraOptions extras;  // those of the program's own analysis

// What a long option asks of start-up besides settings.
enum LongAction { LONG_OK, LONG_HELP, LONG_VERSION, LONG_ERROR };

// Reads the long option at argv[*i] (which starts with "--") into x,
// advancing *i past its value. On LONG_ERROR, *error says what is wrong in
// words for the user. Never prints, never exits.
LongAction ParseLongOption(int argc, char **argv, int *i, ExtraOptions *x, std::string *error);
// The long options, one line each, for the full usage text.
void WriteLongUsage(FILE *out);
