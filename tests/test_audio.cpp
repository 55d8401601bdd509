// tests/test_audio.cpp - AIFF, AU and WAVE writers.
//
// Focus: the exact header and sample bytes of each format, the normalisation
// of AIFF and AU and the clipping of WAVE, empty and bad arguments, write
// errors, and files decoded by sox (a reader nobody here wrote; the case skips
// when it is missing).
#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "util/audio.h"

namespace {

using Bytes = std::vector<unsigned char>;

// Parses "464f 524d": hex digit pairs, blanks ignored.
Bytes hx(const std::string &s)
{
    Bytes out;
    std::string digits;
    for (char c : s)
        if (c != ' ') digits += c;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        out.push_back((unsigned char)std::stoi(digits.substr(i, 2), nullptr, 16));
    return out;
}

// Everything fn writes to an in-memory stream; *result gets what fn returned.
template <class F> Bytes capture(F fn, int *result = nullptr)
{
    char *buf = nullptr;
    size_t len = 0;
    FILE *f = open_memstream(&buf, &len);
    const int r = fn(f);
    fclose(f);
    if (result) *result = r;
    Bytes out(buf, buf + len);
    free(buf);
    return out;
}

Bytes aiff(std::vector<double> x, int rate, long n = -2)
{
    return capture([&](FILE *f) { return Write_AIFF(f, x.data(), n == -2 ? (long)x.size() : n, rate); });
}

Bytes au(std::vector<double> x, int rate = 8000)
{
    return capture([&](FILE *f) { return Write_AU(f, x.data(), (long)x.size(), rate); });
}

// The 16-bit big-endian samples after a header of `skip` bytes.
std::vector<int> samples_be(const Bytes &b, size_t skip)
{
    std::vector<int> v;
    for (size_t i = skip; i + 1 < b.size(); i += 2) v.push_back((int16_t)(b[i] << 8 | b[i + 1]));
    return v;
}

}  // namespace

TEST(audio_bytes, WholeFiles)
{
    // Samples 0, 1, 2: mid 1, amplitude 1, so -32760, 0, 32760 (80 08, 00 00, 7f f8).
    EXPECT_EQ(aiff({0, 1, 2}, 8000), hx("464f524d 00000034 41494646 434f4d4d 00000012 0001 00000003 0010"
                                        "400eac44000000000000 53534e44 0000000e 00000000 00000000"
                                        "8008 0000 7ff8"));
    EXPECT_EQ(au({0, 1, 2}), hx("2e736e64 00000018 00000006 00000003 00001f40 00000001 8008 0000 7ff8"));
    const float w[6] = {1.5f, -2.0f, 0.5f, -0.25f, 0.0f, -1.0f};
    EXPECT_EQ(capture([&](FILE *f) { return Write_WAVE(f, w, 6, 22050); }),
              hx("52494646 30000000 57415645 666d7420 10000000 0100 0100 22560000 44ac0000 0200 1000"
                 "64617461 0c000000 f87f 0880 fc3f 02e0 0000 0880"));
}

TEST(audio_bytes, AiffRatePatterns)
{
    // Only 22050 and 11025 have their own exponent; any other rate reads as 44100.
    const struct { int rate; unsigned char exponent; } rates[] = {
        {22050, 0x0D}, {11025, 0x0C}, {44100, 0x0E}, {8000, 0x0E}, {48000, 0x0E}};
    for (const auto &r : rates) {
        const Bytes b = aiff({0.25}, r.rate);
        EXPECT_EQ(Bytes(b.begin() + 28, b.begin() + 38), (Bytes{0x40, r.exponent, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}))
            << r.rate;
    }
}

TEST(audio_bytes, Normalisation)
{
    const struct { const char *id; std::vector<double> x; std::vector<int> want; } cases[] = {
        {"norm-1.1 constant is silence", {7, 7, 7}, {0, 0, 0}},
        {"norm-1.2 off-centre", {-1, 3, 0, 1}, {-32760, 32760, -16380, 0}},
        {"norm-1.3 truncated toward 0", {0, 22, 1, 21}, {-32760, 32760, -29781, 29781}},
        {"norm-1.4 one sample", {-4.5}, {0}},
        {"norm-1.5 infinities clip, NaN is 0", {0, INFINITY, 2, NAN, -INFINITY}, {-32760, 32760, 32760, 0, -32760}},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(samples_be(aiff(c.x, 44100), 54), c.want) << c.id << " (AIFF)";
        EXPECT_EQ(samples_be(au(c.x), 24), c.want) << c.id << " (AU)";
    }
}

TEST(audio_bytes, EmptyBadAndFailingStreams)
{
    int r = -1;
    // n = 0: the header alone, and the sample pointer is never read.
    EXPECT_EQ(capture([](FILE *f) { return Write_AIFF(f, nullptr, 0, 11025); }, &r),
              hx("464f524d 0000002e 41494646 434f4d4d 00000012 0001 00000000 0010"
                 "400cac44000000000000 53534e44 00000008 00000000 00000000"));
    EXPECT_EQ(r, 1);
    EXPECT_EQ(capture([](FILE *f) { return Write_AU(f, nullptr, 0, 8000); }).size(), 24u);
    EXPECT_EQ(capture([](FILE *f) { return Write_WAVE(f, nullptr, 0, 8000); }).size(), 44u);

    const double d[2] = {0, 1};
    const float w[2] = {0, 1};
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AIFF(f, d, -1, 8000); }, &r).empty());
    EXPECT_EQ(r, 0);
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AU(f, nullptr, 2, 8000); }, &r).empty());
    EXPECT_EQ(r, 0);
    EXPECT_TRUE(capture([&](FILE *f) { return Write_WAVE(f, w, -3, 8000); }, &r).empty());
    EXPECT_EQ(r, 0);

    FILE *ro = fopen("/dev/null", "r");  // every write to it fails
    ASSERT_TRUE(ro);
    EXPECT_EQ(Write_AIFF(ro, d, 2, 8000), 0);
    EXPECT_EQ(Write_AU(ro, d, 2, 8000), 0);
    EXPECT_EQ(Write_WAVE(ro, w, 2, 8000), 0);
    fclose(ro);
}

// ---- SECTION real readers -----------------------------------------------------

namespace {

std::string run(const std::string &cmd)
{
    std::string out;
    FILE *p = popen(cmd.c_str(), "r");
    if (!p) return out;
    for (int ch; (ch = fgetc(p)) != EOF;) out += (char)ch;
    pclose(p);
    return out;
}

// The samples sox decodes from path, as 16-bit integers.
std::vector<int> sox_samples(const std::string &path)
{
    std::istringstream in(run("/usr/bin/sox -V1 '" + path + "' -t dat - 2>&1"));
    std::vector<int> v;
    std::string line;
    while (std::getline(in, line)) {
        double t, x;
        if (line[0] != ';' && sscanf(line.c_str(), "%lf %lf", &t, &x) == 2) v.push_back((int)lround(x * 32768));
    }
    return v;
}

}  // namespace

TEST(audio_readers, SoxDecodesAllThree)
{
    if (access("/usr/bin/sox", X_OK) != 0 || access("/usr/bin/soxi", X_OK) != 0)
        GTEST_SKIP() << "sox is not installed (scripts/setup.sh)";
    // Four periods of a sine that reaches exactly -1 and 1, so that AIFF and AU
    // keep the scale (mid 0, amplitude 1) and all three agree.
    const int n = 160;
    std::vector<double> x(n);
    std::vector<float> xf(n);
    std::vector<int> want(n), wantf(n);
    for (int i = 0; i < n; i++) {
        x[i] = sin(2 * M_PI * i / 40);
        xf[i] = (float)x[i];
        want[i] = (int)(x[i] * 32760);
        wantf[i] = (int)(xf[i] * 32760.0f);
    }
    const std::string dir = (std::filesystem::temp_directory_path() / ("quorl-audio-" + std::to_string(getpid()))).string();
    std::filesystem::create_directories(dir);
    const struct { const char *name, *rate_read; int rate; } files[] = {
        {"s.aiff", "44100", 8000},  // any rate but two is recorded as 44100
        {"t.aiff", "22050", 22050},
        {"s.au", "8000", 8000},
        {"s.wav", "48000", 48000},
    };
    for (const auto &f : files) {
        const std::string path = dir + "/" + f.name;
        FILE *fp = fopen(path.c_str(), "wb");
        ASSERT_TRUE(fp) << path;
        const bool wav = std::string(f.name).ends_with(".wav");
        const bool isau = std::string(f.name).ends_with(".au");
        int ok = wav ? Write_WAVE(fp, xf.data(), n, f.rate)
                     : isau ? Write_AU(fp, x.data(), n, f.rate) : Write_AIFF(fp, x.data(), n, f.rate);
        fclose(fp);
        EXPECT_EQ(ok, 1) << f.name;
        const std::string q = " '" + path + "' 2>/dev/null";
        EXPECT_EQ(run("/usr/bin/soxi -r" + q), std::string(f.rate_read) + "\n") << f.name;
        EXPECT_EQ(run("/usr/bin/soxi -c" + q), "1\n") << f.name;
        EXPECT_EQ(run("/usr/bin/soxi -b" + q), "16\n") << f.name;
        EXPECT_EQ(run("/usr/bin/soxi -s" + q), std::to_string(n) + "\n") << f.name;
        EXPECT_EQ(run("/usr/bin/soxi -e" + q), "Signed Integer PCM\n") << f.name;
        EXPECT_EQ(sox_samples(path), wav ? wantf : want) << f.name;
    }
    std::filesystem::remove_all(dir);
}
