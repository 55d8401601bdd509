// bench/bench_quiet.cpp - helper of scripts/bench_quiet.sh: makes the test
// images and runs the two measurements that the quiet analysis is compared
// against.
//
//   bench_quiet make walk|carpet|white SIDE FILE   write a SIDE x SIDE 24-bit TGA
//   bench_quiet floor FILE                         read and threshold only
//   bench_quiet literal FILE                       the quiet analysis, pixel scan
//   bench_quiet phases FILE                        seconds spent in each phase
//
// "floor" does what any run must do before counting: LoadTGA and the
// black/white image. "literal" is the quiet run of the program with the
// summed-area table dropped, so every box is tested pixel by pixel as in the
// plain scan; its output is that of "quorl -q -i FILE".
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "app/boxcount.h"
#include "app/estimate.h"
#include "app/images.h"
#include "app/options.h"
#include "app/results.h"

namespace {

// A fixed 64-bit linear congruential generator: the same images on every host.
struct Lcg {
    unsigned long long s;
    unsigned next(void)
    {
        s = s * 6364136223846793005ULL + 1442695040888963407ULL;
        return (unsigned)(s >> 33);
    }
};

// Carpet: white where, at some level, both base-3 digits are 1; about a third
// of the pixels are black at these sides, in clusters of every size.
bool carpet_black(unsigned x, unsigned y)
{
    for (; x || y; x /= 3, y /= 3)
        if (x % 3 == 1 && y % 3 == 1) return false;
    return true;
}

int make_image(const char *kind, int side, const char *name)
{
    if (side < 1 || side > 65535) return 0;
    std::vector<unsigned char> black((size_t)side * side, 0);
    if (!strcmp(kind, "walk")) {
        // A random walk of side x side / 8 steps, wrapping at the edges: thin
        // clusters with wide empty gaps, about 2.5% of the pixels black.
        Lcg rng{12345};
        long x = side / 2, y = side / 2;
        const long steps = 2L * side * side / 16;
        for (long i = 0; i < steps; i++) {
            black[(size_t)y * side + x] = 1;
            switch (rng.next() & 3) {
            case 0: x = (x + 1) % side; break;
            case 1: x = (x + side - 1) % side; break;
            case 2: y = (y + 1) % side; break;
            default: y = (y + side - 1) % side; break;
            }
        }
    } else if (!strcmp(kind, "carpet")) {
        for (int y = 0; y < side; y++)
            for (int x = 0; x < side; x++) black[(size_t)y * side + x] = carpet_black(x, y);
    } else if (strcmp(kind, "white") != 0) {
        return 0;
    }

    FILE *f = fopen(name, "wb");
    if (!f) return 0;
    const unsigned char header[18] = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                      (unsigned char)(side & 255), (unsigned char)(side >> 8),
                                      (unsigned char)(side & 255), (unsigned char)(side >> 8),
                                      24, 0};
    fwrite(header, 1, sizeof header, f);
    std::vector<unsigned char> row((size_t)side * 3);
    for (int y = 0; y < side; y++) {
        for (int x = 0; x < side; x++)
            memset(&row[(size_t)x * 3], black[(size_t)y * side + x] ? 0 : 255, 3);
        fwrite(row.data(), 1, row.size(), f);
    }
    return fclose(f) == 0;
}

int load(const char *name)
{
    StartupArgs args;
    SetDefaultOptions(&args);
    options.quiet = 1;
    return LoadTGA(name);
}

double seconds(void)
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

// Times reading, thresholding, building the black-pixel table and counting
// (the reset and all steps) separately, then prints them on one line.
int phases(const char *name)
{
    const double t0 = seconds();
    if (!load(name)) return 1;
    const double t1 = seconds();
    ThresholdImage();
    const double t2 = seconds();
    MakeBlackTable();
    const double t3 = seconds();
    options.left = options.bottom = 0;
    options.right = options.top = 100000;
    BoxCount(0);
    BoxCount(0);
    long steps = 1;
    while (!BoxCount(1)) steps++;
    const double t4 = seconds();
    long occupied = 0;  // each one appended to the box list
    for (int i = 0; i < nresults; i++) occupied += results[i].count;
    printf("read %.3f threshold %.3f table %.3f count %.3f s (%ld boxes, %ld occupied)\n", t1 - t0,
           t2 - t1, t3 - t2, t4 - t3, steps, occupied);
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc == 5 && !strcmp(argv[1], "make")) return make_image(argv[2], atoi(argv[3]), argv[4]) ? 0 : 1;
    if (argc == 3 && !strcmp(argv[1], "floor")) {
        if (!load(argv[2])) return 1;
        printf("%d\n", ThresholdImage());
        return 0;
    }
    if (argc == 3 && !strcmp(argv[1], "literal")) {
        if (!load(argv[2])) return 1;
        UpdateImages();
        FreeBlackTable();
        BoxCount(0);
        while (!BoxCount(1)) {
        }
        SaveResults();
        printf("Estimated fractal dimension: %6.3f\n", CalcSlope());
        return 0;
    }
    if (argc == 3 && !strcmp(argv[1], "phases")) return phases(argv[2]);
    fprintf(stderr, "usage: %s make walk|carpet|white SIDE FILE | floor FILE | literal FILE | phases FILE\n", argv[0]);
    return 2;
}
