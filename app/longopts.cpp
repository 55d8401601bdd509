// app/longopts.cpp - the table of long options and their parsing.
#include "app/longopts.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>

ExtraOptions extras;

namespace {

// Reads a whole word as an integer in [lo, hi]; false for anything else.
bool integer(const char *s, long lo, long hi, long *v)
{
    if (!*s) return false;
    char *end;
    errno = 0;
    const long n = strtol(s, &end, 10);
    if (*end || errno || n < lo || n > hi) return false;
    *v = n;
    return true;
}

// integer() with the reason for the user: "<wants>, not "<v>"".
bool number_in(const char *v, long lo, long hi, const char *wants, long *n, std::string *err)
{
    if (integer(v, lo, hi, n)) return true;
    *err = std::string(wants) + ", not \"" + v + "\"";
    return false;
}

using Setter = std::function<bool(ExtraOptions *, const char *, std::string *)>;

struct LongOption {
    const char *name;   // without the leading "--"
    const char *value;  // the value's name in the usage text; null for a flag
    const char *help;
    Setter set;         // false after setting the error
};

bool threshold(ExtraOptions *x, const char *v, std::string *err)
{
    long n;
    if (!strcmp(v, "otsu")) {
        x->threshold = kThresholdOtsu;
    } else if (integer(v, 0, 255, &n)) {
        x->threshold = (int)n;
    } else {
        *err = "--threshold wants a grey level from 0 to 255 or \"otsu\", not \"" + std::string(v) + "\"";
        return false;
    }
    return true;
}

bool seed(ExtraOptions *x, const char *v, std::string *err)
{
    long n;
    if (!number_in(v, 0, 2147483647, "--seed wants a whole number from 0 to 2147483647", &n, err)) return false;
    x->has_seed = 1;
    x->seed = n;
    return true;
}

bool offsets(ExtraOptions *x, const char *v, std::string *err)
{
    if (strcmp(v, "random") != 0 && strcmp(v, "all") != 0) {
        *err = "--offsets wants \"random\" or \"all\", not \"" + std::string(v) + "\"";
        return false;
    }
    x->offsets_all = !strcmp(v, "all");
    return true;
}

bool sizes(ExtraOptions *x, const char *v, std::string *err)
{
    std::vector<int> list;
    const std::string text(v);
    size_t at = 0;
    for (;;) {
        const size_t comma = text.find(',', at);
        const std::string word = text.substr(at, comma == std::string::npos ? std::string::npos : comma - at);
        long n;
        if (!integer(word.c_str(), 1, INT_MAX, &n)) {
            *err = "--sizes wants box sizes of 1 pixel or more separated by commas, such as "
                   "2,4,8,16; \"" + word + "\" is not one";
            return false;
        }
        list.push_back((int)n);
        if (comma == std::string::npos) break;
        at = comma + 1;
    }
    std::sort(list.begin(), list.end(), std::greater<int>());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    x->sizes = list;
    return true;
}

bool fit_range(ExtraOptions *x, const char *v, std::string *err)
{
    const char *colon = strchr(v, ':');
    long lo = 0, hi = INT_MAX;
    const std::string min = colon ? std::string(v, colon) : "", max = colon ? colon + 1 : "";
    if (!colon || (!min.empty() && !integer(min.c_str(), 1, INT_MAX, &lo)) ||
        (!max.empty() && !integer(max.c_str(), 1, INT_MAX, &hi)) || lo > hi) {
        *err = "--fit-range wants MIN:MAX in pixels, either side may be empty (such as 4:64 or 8:), not \"" +
               std::string(v) + "\"";
        return false;
    }
    x->fit_min = (int)lo;
    x->fit_max = (int)hi;
    return true;
}

bool jobs(ExtraOptions *x, const char *v, std::string *err)
{
    long n;
    if (!number_in(v, 1, 4096, "--jobs wants a number of images at once from 1 to 4096", &n, err)) return false;
    x->jobs = (int)n;
    return true;
}

bool plot(ExtraOptions *x, const char *v, std::string *err)
{
    const size_t n = strlen(v);
    if (n < 5 || (strcmp(v + n - 4, ".svg") != 0 && strcmp(v + n - 4, ".png") != 0)) {
        *err = "--plot wants a file name ending in .svg or .png, not \"" + std::string(v) + "\"";
        return false;
    }
    x->plot = v;
    return true;
}

bool port(ExtraOptions *x, const char *v, std::string *err)
{
    long n;
    if (!number_in(v, 0, 65535, "--port wants a port number from 0 to 65535 (0: any free port)", &n, err)) return false;
    x->port = (int)n;
    return true;
}

// A number of bytes, with an optional K, M or G (powers of 1024).
bool max_upload(ExtraOptions *x, const char *v, std::string *err)
{
    std::string digits(v);
    int shift = 0;
    const char unit = digits.empty() ? 0 : (char)toupper((unsigned char)digits.back());
    if (unit == 'K' || unit == 'M' || unit == 'G') {
        shift = unit == 'K' ? 10 : unit == 'M' ? 20 : 30;
        digits.pop_back();
    }
    long n;
    if (!integer(digits.c_str(), 1, (LONG_MAX >> 30) - 1, &n)) {
        *err = "--max-upload wants a size in bytes, or with K, M or G (such as 64M), not \"" + std::string(v) +
               "\"";
        return false;
    }
    x->max_upload = (long long)n << shift;
    return true;
}

const LongOption table[] = {
    {"help", nullptr, "this text, every switch (on standard output)", nullptr},
    {"version", nullptr, "the version", nullptr},
    {"threshold", "N|otsu", "black is grey level (299r+587g+114b)/1000 below N; otsu chooses N", threshold},
    {"seed", "N", "seed the grid offsets with N instead of the clock", seed},
    {"offsets", "random|all", "all: the smallest count over every grid offset of each size", offsets},
    {"sizes", "LIST", "count exactly these box sizes, such as 2,3,4,6,8,12,16,32,64", sizes},
    {"crop", nullptr, "analyse the bounding box of the black pixels",
     [](ExtraOptions *x, const char *, std::string *) { return (x->crop = 1); }},
    {"fit-range", "MIN:MAX", "fit only box sizes from MIN to MAX pixels (either may be empty)", fit_range},
    {"json", "FILE", "write a JSON report to FILE (- for standard output)",
     [](ExtraOptions *x, const char *v, std::string *) { return (x->json = v), true; }},
    {"plot", "FILE", "draw the log-log plot into FILE (.svg or .png)", plot},
    {"batch", "LIST", "analyse every image named in LIST (- for standard input), one CSV row each",
     [](ExtraOptions *x, const char *v, std::string *) { return (x->batch = v), true; }},
    {"csv", "FILE", "write the batch table to FILE instead of standard output",
     [](ExtraOptions *x, const char *v, std::string *) { return (x->csv = v), true; }},
    {"jsonl", "FILE", "also write the batch as one JSON object a line to FILE",
     [](ExtraOptions *x, const char *v, std::string *) { return (x->jsonl = v), true; }},
    {"jobs", "N", "analyse N images at once (default: one per core)", jobs},
    {"serve", nullptr, "serve the browser front-end and its API over HTTP (on 127.0.0.1 unless --bind)",
     [](ExtraOptions *x, const char *, std::string *) { return (x->serve = 1); }},
    {"port", "N", "the port of --serve (default 8080; 0 picks a free one)", port},
    {"bind", "ADDR", "the address --serve listens on (0.0.0.0: every interface)",
     [](ExtraOptions *x, const char *v, std::string *) { return (x->bind = v), true; }},
    {"max-upload", "SIZE", "refuse images larger than SIZE bytes (K, M, G allowed; default 512M)", max_upload},
};

}  // namespace

LongAction ParseLongOption(int argc, char **argv, int *i, ExtraOptions *x, std::string *error)
{
    const char *name = argv[*i] + 2;
    for (const LongOption &o : table) {
        if (strcmp(o.name, name) != 0) continue;
        if (!strcmp(name, "help")) return LONG_HELP;
        if (!strcmp(name, "version")) return LONG_VERSION;
        const char *value = "";
        if (o.value) {
            if (*i + 1 >= argc) {
                *error = "--" + std::string(name) + " wants a value (" + o.value + ")";
                return LONG_ERROR;
            }
            value = argv[++*i];
        }
        return o.set(x, value, error) ? LONG_OK : LONG_ERROR;
    }
    *error = "unknown option \"" + std::string(argv[*i]) + "\"";
    return LONG_ERROR;
}

void WriteLongUsage(FILE *out)
{
    for (const LongOption &o : table) {
        std::string left = std::string("--") + o.name + (o.value ? std::string(" ") + o.value : "");
        fprintf(out, "     %-22s %s\n", left.c_str(), o.help);
    }
}
