// Hostile input and scarce resources: the command-line seam, results that
// cannot be written, and pixel buffers that cannot be allocated.
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "app/results.h"
#include "app_fixture.h"

namespace {

class Limits : public ::testing::Test {
protected:
    void SetUp() override { quiet_defaults(); }
};

// Parses words as the program would see them after its own name.
int parse(std::vector<const char *> words, StartupArgs *args)
{
    words.insert(words.begin(), "quorl");
    SetDefaultOptions(args);
    return ParseArguments((int)words.size(), const_cast<char **>(words.data()), args);
}

// A run-length 24-bit TGA of w x h white pixels, written into a temporary
// file; small on disk whatever its size.
std::string white_rle_tga(int w, int h)
{
    char path[] = "/tmp/quorl-limits-XXXXXX";
    const int fd = mkstemp(path);
    FILE *f = fdopen(fd, "wb");
    const unsigned char header[18] = {0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                      (unsigned char)w, (unsigned char)(w >> 8),
                                      (unsigned char)h, (unsigned char)(h >> 8), 24, 0};
    fwrite(header, 1, sizeof header, f);
    std::vector<unsigned char> row;
    for (int x = 0; x < w; x += 128) {
        const int k = w - x < 128 ? w - x : 128;
        row.insert(row.end(), {(unsigned char)(0x80 | (k - 1)), 255, 255, 255});
    }
    for (int y = 0; y < h; y++) fwrite(row.data(), 1, row.size(), f);
    fclose(f);
    return path;
}

// Caps the address space at what the process maps now plus extra bytes, so
// that the next large allocation fails as it would on a machine without the
// memory.
void limit_address_space(long long extra)
{
    long long kb = 0;
    FILE *f = fopen("/proc/self/status", "r");
    char line[256];
    while (f && fgets(line, sizeof line, f))
        if (!strncmp(line, "VmSize:", 7)) kb = atoll(line + 7);
    if (f) fclose(f);
    const rlim_t cap = (rlim_t)(kb * 1024 + extra);
    const struct rlimit r = {cap, cap};
    setrlimit(RLIMIT_AS, &r);
}

}  // namespace

TEST_F(Limits, UsageStopsTheScanWithoutExiting)
{
    const struct { const char *id; std::vector<const char *> words; int ret, nsamples; } cases[] = {
        {"args-1.1", {"-n", "5", "-h", "-n", "7"}, 0, 5},  // settings before "-h" stay for the usage
        {"args-1.2", {"-h", "-n", "7"}, 0, 10},
        {"args-1.3", {"-n", "7", "-x", "--h"}, -1, 7},     // unknown short words pass, long ones do not
        {"args-1.4", {"-n"}, 1, 1},                         // missing value reads as ""
    };
    for (const auto &c : cases) {
        StartupArgs args;
        EXPECT_EQ(parse(c.words, &args), c.ret) << c.id;
        EXPECT_EQ(options.nsamples, c.nsamples) << c.id;
    }
}

TEST_F(Limits, FactorThatIsNotANumberIsRefused)
{
    const struct { const char *value; float want; } cases[] = {
        {"nan", 1.1f}, {"-nan", 1.1f}, {"1.0", 1.1f}, {"", 1.1f}, {"1.5", 1.5f}, {"1e9", 1e9f},
    };
    for (const auto &c : cases) {
        StartupArgs args;
        parse({"-bf", c.value}, &args);
        EXPECT_EQ(options.boxfactor, c.want) << c.value;
    }
}

TEST_F(Limits, ResultsThatCannotBeWrittenAreReported)
{
    use_image(40, 40, [](int x, int y) { return x == y; });
    options.boxstart = 16;
    options.boxend = 2;
    run_to_end();
    ASSERT_GE(nresults, 4);
    options.quiet = 0;

    const struct { const char *id, *path, *want; } cases[] = {
        {"save-1.1", "/dev/full", "Failed to write results file \"/dev/full\": No space left on device\n"},
        {"save-1.3", "/dev/null", ""},
    };
    static const char *chosen;
    results_choosefile = [](const char *) { return chosen; };
    for (const auto &c : cases) {
        chosen = c.path;
        ::testing::internal::CaptureStderr();
        SaveResults();
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), c.want) << c.id;
    }
    results_choosefile = nullptr;
}

// Each buffer in turn is the one that does not fit: the image itself (the load
// fails and quiet start-up ends with -1), the working image (fatal, -1), the
// screen copy (the program ends with status 0, as for the usage).
TEST(LimitsDeathTest, PixelBuffersThatCannotBeAllocated)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer needs an unlimited address space";
#else
    const int side = 8192;  // image 256 MB, working image 64 MB, screen copy 256 MB
    const long long mb = 1 << 20;
    const std::string path = white_rle_tga(side, side);
    const struct { const char *id; int quiet; long long extra; int status; const char *message; } cases[] = {
        {"alloc-1.1", 1, 64 * mb, 255, "^   Failed to create image\n$"},
        {"alloc-1.2", 1, 288 * mb, 255, "^   Failed to create image - fatal\n$"},
        {"alloc-1.3", 0, 352 * mb, 0, "   Failed to create image\n$"},
    };
    for (const auto &c : cases) {
        EXPECT_EXIT(
            {
                quiet_defaults();
                options.quiet = c.quiet;
                limit_address_space(c.extra);
                if (!LoadTGA(path.c_str())) exit(-1);
                UpdateImages();
                exit(3);
            },
            ::testing::ExitedWithCode(c.status), c.message)
            << c.id;
    }
    remove(path.c_str());
#endif
}
