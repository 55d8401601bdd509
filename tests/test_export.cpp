// tests/test_export.cpp - DXF and Radiance facets, AIFF, AU and WAVE sounds.
//
// Focus: the exact bytes of each format, the vertex counts and arguments that
// write nothing, write errors, the normalisation of AIFF and AU and the
// clipping of WAVE, and whole files read by ezdxf and sox (readers nobody here
// wrote; those cases skip when they are missing).
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "capture.h"
#include "util/audio.h"
#include "util/dxf.h"

namespace {

// Asymmetric corners, with the two number forms that matter: 0.5 and 1e+20.
const Vec3 k_quad[4] = {{0, 0, 0}, {1, 0.5, 0}, {1, 1, 1e20}, {-2.5, 1, 3}};

std::string temp_path(const std::string &name)
{
    return (std::filesystem::temp_directory_path() / ("quorl-" + std::to_string(getpid()) + "-" + name)).string();
}

}  // namespace

TEST(dxf_text, EntitiesHeaderFooterRadiance)
{
    const std::string xyz0 = " 10\n0\n 20\n0\n 30\n0\n", xyz1 = " 11\n1\n 21\n0.5\n 31\n0\n";
    const std::string xyz2 = " 12\n1\n 22\n1\n 32\n1e+20\n";
    const struct { int n; std::string want; } cases[] = {
        {1, "  0\nPOINT\n  8\nLAYER1\n" + xyz0},
        {2, "  0\nLINE\n  8\nLAYER1\n" + xyz0 + xyz1},
        {3, "  0\n3DFACE\n  8\nLAYER1\n" + xyz0 + xyz1 + xyz2 + " 13\n1\n 23\n1\n 33\n1e+20\n"},
        {4, "  0\n3DFACE\n  8\nLAYER1\n" + xyz0 + xyz1 + xyz2 + " 13\n-2.5\n 23\n1\n 33\n3\n"},
        {0, ""}, {5, ""}, {-1, ""},
    };
    for (const auto &c : cases) {
        int r = -1;
        EXPECT_EQ(capture<std::string>([&](FILE *f) { return WriteDXFFacet(f, k_quad, c.n); }, &r), c.want) << c.n;
        EXPECT_EQ(r, c.want.empty() ? 0 : 1) << c.n;
    }
    const std::string head = capture<std::string>([](FILE *f) { return WriteDXFHeader(f, "quorl"); });
    EXPECT_EQ(head.rfind("999\nDXF from quorl\n  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1006\n", 0), 0u);
    EXPECT_NE(head.find("  9\n$INSBASE\n  10\n0.0\n  20\n0.0\n  30\n0.0\n"), std::string::npos);
    EXPECT_TRUE(head.ends_with("  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n"));
    EXPECT_EQ(capture<std::string>(WriteDXFFooter), "  0\nENDSEC\n  0\nEOF\n");

    // The count and the first vertex share a line; Radiance reads words, not lines.
    EXPECT_EQ(capture<std::string>([](FILE *f) { return WriteRadFacet(f, k_quad, 4, "glass"); }),
              "glass polygon p\n0\n0\n12\t0 0 0\n\t1 0.5 0\n\t1 1 1e+20\n\t-2.5 1 3\n");
    int r = -1;
    EXPECT_EQ(capture<std::string>([](FILE *f) { return WriteRadFacet(f, k_quad, 2, "m"); }, &r), "");
    EXPECT_EQ(r, 0);
    FILE *ro = fopen("/dev/null", "r");  // every write to it fails
    ASSERT_TRUE(ro);
    EXPECT_EQ(WriteDXFHeader(ro, "x") + WriteDXFFacet(ro, k_quad, 3) + WriteDXFFooter(ro) +
                  WriteRadFacet(ro, k_quad, 3, "m"), 0);
    fclose(ro);
    EXPECT_EQ(WriteDXFFacet(nullptr, k_quad, 3) + WriteRadFacet(stdout, k_quad, 3, nullptr), 0);
}

TEST(dxf_readers, EzdxfLoadsTheDrawing)
{
    if (access("/usr/bin/python3", X_OK) != 0) GTEST_SKIP() << "/usr/bin/python3 is not installed";
    const std::string path = temp_path("drawing.dxf");
    FILE *f = fopen(path.c_str(), "w");
    ASSERT_TRUE(f);
    int ok = WriteDXFHeader(f, "test_dxf");
    for (int n = 1; n <= 4; n++) ok &= WriteDXFFacet(f, k_quad, n);
    ok &= WriteDXFFooter(f);
    fclose(f);
    ASSERT_EQ(ok, 1);
    int status = -1;
    const std::string out = run("/usr/bin/python3 " QUORL_DXF_ENTITIES " " + path, &status);
    std::filesystem::remove(path);
    if (status == 77) GTEST_SKIP() << "ezdxf (python3-ezdxf) is not installed";
    ASSERT_EQ(status, 0) << out;
    for (const char *line : {"LAYER 1\n", "LAYER 2\n", "LTYPE CONTINUOUS\n", "EXTMAX 1000 1000\n",
                             "POINT LAYER1 0 0 0\nLINE LAYER1 0 0 0 1 0.5 0\n"  // NOLINT(bugprone-suspicious-missing-comma): one block
                             "3DFACE LAYER1 0 0 0 1 0.5 0 1 1 1e+20 1 1 1e+20\n"
                             "3DFACE LAYER1 0 0 0 1 0.5 0 1 1 1e+20 -2.5 1 3\n"})
        EXPECT_NE(out.find(line), std::string::npos) << line << " missing from\n" << out;
}

namespace {

Bytes aiff(const std::vector<double> &x, int rate = 8000)
{
    return capture([&](FILE *f) { return Write_AIFF(f, x.empty() ? nullptr : x.data(), (long)x.size(), rate); });
}

Bytes au(const std::vector<double> &x)
{
    return capture([&](FILE *f) { return Write_AU(f, x.empty() ? nullptr : x.data(), (long)x.size(), 8000); });
}

// The 16-bit big-endian samples after a header of `skip` bytes.
std::vector<int> samples_be(const Bytes &b, size_t skip)
{
    std::vector<int> v;
    for (size_t i = skip; i + 1 < b.size(); i += 2) v.push_back((int16_t)(b[i] << 8 | b[i + 1]));
    return v;
}

}  // namespace

TEST(audio_bytes, WholeFilesAndNormalisation)
{
    // Samples 0, 1, 2: mid 1, amplitude 1, so -32760, 0, 32760 (80 08, 00 00, 7f f8).
    EXPECT_EQ(aiff({0, 1, 2}), hx("464f524d 00000034 41494646 434f4d4d 00000012 0001 00000003 0010"
                                  "400eac44000000000000 53534e44 0000000e 00000000 00000000 8008 0000 7ff8"));
    EXPECT_EQ(au({0, 1, 2}), hx("2e736e64 00000018 00000006 00000003 00001f40 00000001 8008 0000 7ff8"));
    const float w[6] = {1.5f, -2.0f, 0.5f, -0.25f, 0.0f, -1.0f};
    EXPECT_EQ(capture([&](FILE *f) { return Write_WAVE(f, w, 6, 22050); }),
              hx("52494646 30000000 57415645 666d7420 10000000 0100 0100 22560000 44ac0000 0200 1000"
                 "64617461 0c000000 f87f 0880 fc3f 02e0 0000 0880"));
    // n = 0: the header alone (AIFF's rate field is 11025 here), and the samples are never read.
    EXPECT_EQ(aiff({}, 11025), hx("464f524d 0000002e 41494646 434f4d4d 00000012 0001 00000000 0010"
                                  "400cac44000000000000 53534e44 00000008 00000000 00000000"));
    EXPECT_EQ(au({}).size(), 24u);
    EXPECT_EQ(capture([](FILE *f) { return Write_WAVE(f, nullptr, 0, 8000); }).size(), 44u);

    const struct { const char *id; std::vector<double> x; std::vector<int> want; } cases[] = {
        {"constant is silence", {7, 7, 7}, {0, 0, 0}},
        {"off-centre", {-1, 3, 0, 1}, {-32760, 32760, -16380, 0}},
        {"truncated toward 0", {0, 22, 1, 21}, {-32760, 32760, -29781, 29781}},
        {"one sample", {-4.5}, {0}},
        {"infinities clip, NaN is 0", {0, INFINITY, 2, NAN, -INFINITY}, {-32760, 32760, 32760, 0, -32760}},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(samples_be(aiff(c.x), 54), c.want) << c.id << " (AIFF)";
        EXPECT_EQ(samples_be(au(c.x), 24), c.want) << c.id << " (AU)";
    }

    // Negative counts and missing samples write nothing; failed writes are reported.
    int r = -1;
    const double d[2] = {0, 1};
    const float fw[2] = {0, 1};
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AIFF(f, d, -1, 8000); }, &r).empty() && r == 0);
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AU(f, nullptr, 2, 8000); }, &r).empty() && r == 0);
    FILE *ro = fopen("/dev/null", "r");
    ASSERT_TRUE(ro);
    EXPECT_EQ(Write_AIFF(ro, d, 2, 8000) + Write_AU(ro, d, 2, 8000) + Write_WAVE(ro, fw, 2, 8000), 0);
    fclose(ro);
}

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
    const struct { const char *name; int rate; const char *soxi; } files[] = {
        {"a.aiff", 8000, "44100 1 16 160 Signed Integer PCM"},  // recorded as 44100
        {"b.aiff", 22050, "22050 1 16 160 Signed Integer PCM"},
        {"c.au", 8000, "8000 1 16 160 Signed Integer PCM"},
        {"d.wav", 48000, "48000 1 16 160 Signed Integer PCM"},
    };
    for (const auto &f : files) {
        const std::string path = temp_path(f.name);
        FILE *fp = fopen(path.c_str(), "wb");
        ASSERT_TRUE(fp) << path;
        const char kind = f.name[0];
        EXPECT_EQ(kind == 'd'   ? Write_WAVE(fp, xf.data(), n, f.rate)
                  : kind == 'c' ? Write_AU(fp, x.data(), n, f.rate)
                                : Write_AIFF(fp, x.data(), n, f.rate), 1);
        fclose(fp);
        std::string info;
        for (const char *opt : {"-r", "-c", "-b", "-s", "-e"})
            info += run(std::string("/usr/bin/soxi ") + opt + " " + path + " 2>/dev/null");
        std::replace(info.begin(), info.end(), '\n', ' ');
        EXPECT_EQ(info, std::string(f.soxi) + " ") << f.name;
        // sox prints each sample as value / 32768, after "; " comment lines.
        EXPECT_EQ(run("/usr/bin/sox -V1 " + path +
                      " -t dat - | /usr/bin/awk '!/^;/ {printf \"%.0f\\n\", $2 * 32768}'"),
                  kind == 'd' ? wantf : want) << f.name;
        std::filesystem::remove(path);
    }
}
