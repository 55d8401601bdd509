// tests/test_audio.cpp - AIFF, AU and WAVE writers.
//
// Focus: the exact header and sample bytes of each format, the normalisation
// of AIFF and AU and the clipping of WAVE, empty and bad arguments, write
// errors, and files decoded by sox (a reader nobody here wrote; the case skips
// when it is missing).
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
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

Bytes aiff(const std::vector<double> &x)
{
    return capture([&](FILE *f) { return Write_AIFF(f, x.data(), (long)x.size(), 8000); });
}

Bytes au(const std::vector<double> &x)
{
    return capture([&](FILE *f) { return Write_AU(f, x.data(), (long)x.size(), 8000); });
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
    EXPECT_EQ(aiff({0, 1, 2}), hx("464f524d 00000034 41494646 434f4d4d 00000012 0001 00000003 0010"
                                        "400eac44000000000000 53534e44 0000000e 00000000 00000000"
                                        "8008 0000 7ff8"));
    EXPECT_EQ(au({0, 1, 2}), hx("2e736e64 00000018 00000006 00000003 00001f40 00000001 8008 0000 7ff8"));
    const float w[6] = {1.5f, -2.0f, 0.5f, -0.25f, 0.0f, -1.0f};
    EXPECT_EQ(capture([&](FILE *f) { return Write_WAVE(f, w, 6, 22050); }),
              hx("52494646 30000000 57415645 666d7420 10000000 0100 0100 22560000 44ac0000 0200 1000"
                 "64617461 0c000000 f87f 0880 fc3f 02e0 0000 0880"));
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
        EXPECT_EQ(samples_be(aiff(c.x), 54), c.want) << c.id << " (AIFF)";
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
    // Negative counts and missing samples write nothing; failed writes are reported.
    const double d[2] = {0, 1};
    const float w[2] = {0, 1};
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AIFF(f, d, -1, 8000); }, &r).empty() && r == 0);
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AU(f, nullptr, 2, 8000); }, &r).empty() && r == 0);
    FILE *ro = fopen("/dev/null", "r");
    ASSERT_TRUE(ro);
    EXPECT_EQ(Write_AIFF(ro, d, 2, 8000) + Write_AU(ro, d, 2, 8000) + Write_WAVE(ro, w, 2, 8000), 0);
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

}  // namespace

TEST(audio_readers, SoxDecodesAllThree)
{
    if (access("/usr/bin/sox", X_OK) != 0 || access("/usr/bin/soxi", X_OK) != 0)
        GTEST_SKIP() << "sox is not installed (scripts/setup.sh)";
    // Four periods of a sine reaching exactly -1 and 1: AIFF and AU keep its scale.
    const int n = 160;
    std::vector<double> x(n);
    std::vector<float> xf(n);
    std::string want, wantf;
    for (int i = 0; i < n; i++) {
        x[i] = sin(2 * M_PI * i / 40);
        xf[i] = (float)x[i];
        want += std::to_string((int)(x[i] * 32760)) + "\n";
        wantf += std::to_string((int)(xf[i] * 32760.0f)) + "\n";
    }
    const std::string dir = (std::filesystem::temp_directory_path() / ("quorl-audio-" + std::to_string(getpid()))).string();
    std::filesystem::create_directories(dir);
    const struct { const char *name; int rate; const char *soxi; } files[] = {
        {"a.aiff", 8000, "44100 1 16 160 Signed Integer PCM"},  // recorded as 44100
        {"b.aiff", 22050, "22050 1 16 160 Signed Integer PCM"},
        {"c.au", 8000, "8000 1 16 160 Signed Integer PCM"},
        {"d.wav", 48000, "48000 1 16 160 Signed Integer PCM"},
    };
    for (const auto &f : files) {
        const std::string path = dir + "/" + f.name;
        FILE *fp = fopen(path.c_str(), "wb");
        ASSERT_TRUE(fp) << path;
        const char kind = f.name[0];
        EXPECT_EQ(kind == 'd' ? Write_WAVE(fp, xf.data(), n, f.rate)
                  : kind == 'c' ? Write_AU(fp, x.data(), n, f.rate) : Write_AIFF(fp, x.data(), n, f.rate), 1);
        fclose(fp);
        std::string info;
        for (const char *opt : {"-r", "-c", "-b", "-s", "-e"}) info += run(std::string("/usr/bin/soxi ") + opt + " " + path + " 2>/dev/null");
        std::replace(info.begin(), info.end(), '\n', ' ');
        EXPECT_EQ(info, std::string(f.soxi) + " ") << f.name;
        // sox prints each sample as value / 32768, after "; " comment lines.
        const std::string dat = run("/usr/bin/sox -V1 " + path + " -t dat - | /usr/bin/awk '!/^;/ {printf \"%.0f\\n\", $2 * 32768}'");
        EXPECT_EQ(dat, kind == 'd' ? wantf : want) << f.name;
    }
    std::filesystem::remove_all(dir);
}
