// DXF and Radiance facets, AIFF, AU and WAVE sounds: whole files read by ezdxf and sox, the Radiance text and the
// normalisation no outside reader checks, the arguments that write nothing, and write errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "capture.h"
#include "util/audio.h"
#include "util/dxf.h"

namespace {

// Asymmetric corners, with the two number forms that matter: 0.5 and 1e+20.
const Vec3 k_quad[4] = {{0, 0, 0}, {1, 0.5, 0}, {1, 1, 1e20}, {-2.5, 1, 3}};
std::string temp_path(const std::string &name) { return testing::TempDir() + "quorl-export-" + name; }

}  // namespace

TEST(dxf, EzdxfReadsTheDrawing)
{
    const std::string path = temp_path("drawing.dxf");
    FILE *f = fopen(path.c_str(), "w");
    ASSERT_TRUE(f);
    int ok = WriteDXFHeader(f, "test_dxf");
    for (int n = 1; n <= 4; n++) ok &= WriteDXFFacet(f, k_quad, n);
    ASSERT_TRUE((ok & WriteDXFFooter(f)) && fclose(f) == 0);
    int status = -1;
    const std::string out = run("/usr/bin/python3 " QUORL_DXF_ENTITIES " " + path + " 2>&1", &status);
    remove(path.c_str());
    ASSERT_EQ(status, 0) << out << "(python3-ezdxf is installed by scripts/setup.sh)";
    // ezdxf adds its own default tables; ours must be among them, and the entities exactly ours.
    for (const char *line : {"LAYER 1\n", "LAYER 2\n", "LTYPE CONTINUOUS\n",
                             // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one block
                             "EXTMAX 1000 1000\nPOINT LAYER1 0 0 0\nLINE LAYER1 0 0 0 1 0.5 0\n"
                             "3DFACE LAYER1 0 0 0 1 0.5 0 1 1 1e+20 1 1 1e+20\n"  // a triangle repeats its last corner
                             "3DFACE LAYER1 0 0 0 1 0.5 0 1 1 1e+20 -2.5 1 3\n"})
        EXPECT_NE(out.find(line), std::string::npos) << line << " missing from\n" << out;
}

TEST(dxf, RadianceTextAndRefusals)
{
    // The count and the first vertex share a line; Radiance reads words, not lines.
    EXPECT_EQ(capture<std::string>([](FILE *f) { return WriteRadFacet(f, k_quad, 4, "glass"); }),
              "glass polygon p\n0\n0\n12\t0 0 0\n\t1 0.5 0\n\t1 1 1e+20\n\t-2.5 1 3\n");
    int r = -1;
    for (int n : {0, 5, -1})  // vertex counts that name no entity
        EXPECT_TRUE(capture<std::string>([&](FILE *f) { return WriteDXFFacet(f, k_quad, n); }, &r).empty() && !r) << n;
    EXPECT_TRUE(capture<std::string>([](FILE *f) { return WriteRadFacet(f, k_quad, 2, "m"); }, &r).empty() && !r);
    EXPECT_EQ(WriteDXFFacet(nullptr, k_quad, 3) + WriteRadFacet(stdout, k_quad, 3, nullptr), 0);
}

TEST(export_errors, EveryWriterReportsAFailingStream)
{
    const double d[2] = {0, 1};
    const float fw[2] = {0, 1};
    FILE *ro = fopen("/dev/null", "r");  // every write to it fails
    ASSERT_TRUE(ro);
    EXPECT_EQ(WriteDXFHeader(ro, "x") + WriteDXFFacet(ro, k_quad, 3) + WriteDXFFooter(ro) + 
                  + WriteRadFacet(ro, k_quad, 3, "") + Write_AIFF(ro, d, 2, 8000) + Write_AU(ro, d, 2, 8000)
                  + Write_WAVE(ro, fw, 2, 8000), 0);
    fclose(ro);
}

TEST(audio, NormalisationAndRefusals)
{
    // The 16-bit big-endian samples after the header (AIFF 54 bytes, AU 24).
    auto samples = [](const std::vector<double> &x, bool au) {
        const Bytes b = capture([&](FILE *f) {
            return (au ? Write_AU : Write_AIFF)(f, x.empty() ? nullptr : x.data(), (long)x.size(), 8000);
        });
        std::vector<int> v;
        for (size_t i = au ? 24 : 54; i + 1 < b.size(); i += 2) v.push_back((int16_t)(b[i] << 8 | b[i + 1]));
        return v;
    };
    const struct { const char *id; std::vector<double> x; std::vector<int> want; } cases[] = {
        {"constant is silence", {7, 7, 7}, {0, 0, 0}}, {"off-centre", {-1, 3, 0, 1}, {-32760, 32760, -16380, 0}},
        {"truncated toward 0", {0, 22, 1, 21}, {-32760, 32760, -29781, 29781}},
        {"infinities clip, NaN is 0", {0, INFINITY, 2, NAN, -INFINITY}, {-32760, 32760, 32760, 0, -32760}},
        {"no samples, none read", {}, {}},
    };
    for (const auto &c : cases) EXPECT_TRUE(samples(c.x, false) == c.want && samples(c.x, true) == c.want) << c.id;
    int r = -1;
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AIFF(f, cases[0].x.data(), -1, 8000); }, &r).empty() && r == 0);
    EXPECT_TRUE(capture([&](FILE *f) { return Write_AU(f, nullptr, 2, 8000); }, &r).empty() && r == 0);
    EXPECT_TRUE(capture([&](FILE *f) { return Write_WAVE(f, nullptr, 0, 8000); }, &r).size() == 44 && r == 1);
}

TEST(audio, SoxReadsAllThree)
{
    // Four periods of a sine reaching -1 and 1; WAVE gets 1.25 times that to clip, and scales in single precision.
    const int n = 160;
    std::vector<double> x(n);
    std::vector<float> xf(n);
    std::string want, wantf;
    for (int i = 0; i < n; i++) {
        x[i] = sin(2 * M_PI * i / 40), xf[i] = (float)(1.25 * x[i]);
        want += std::to_string((int)(x[i] * 32760)) + "\n";
        wantf += std::to_string((int)(std::clamp(xf[i], -1.0f, 1.0f) * 32760.0f)) + "\n";
    }
    const struct { const char *name; int rate; const char *soxi; } files[] = {  // soxi -r -c -b -s -e
        {"a.aiff", 8000, "44100 1 16 160 Signed Integer PCM"},  // the rate field knows three rates
        {"b.aiff", 22050, "22050 1 16 160 Signed Integer PCM"}, {"e.aiff", 11025, "11025 1 16 160 Signed Integer PCM"},
        {"c.au", 8000, "8000 1 16 160 Signed Integer PCM"}, {"d.wav", 48000, "48000 1 16 160 Signed Integer PCM"},
    };
    for (const auto &f : files) {
        const std::string path = temp_path(f.name);
        FILE *fp = fopen(path.c_str(), "wb");
        const char kind = f.name[0];
        ASSERT_TRUE(fp && (kind == 'd' ? Write_WAVE(fp, xf.data(), n, f.rate)
                                       : (kind == 'c' ? Write_AU : Write_AIFF)(fp, x.data(), n, f.rate))
                    && !fclose(fp));
        int status = -1;
        std::string info;
        for (const char *opt : {"-r", "-c", "-b", "-s", "-e"})  // (soxi -c exits with the channel count)
            info += run(std::string("/usr/bin/soxi ") + opt + " " + path, &status);
        std::replace(info.begin(), info.end(), '\n', ' ');
        EXPECT_EQ(info, std::string(f.soxi) + " ") << f.name << " (scripts/setup.sh installs sox)";
        // sox prints each sample as value / 32768, after "; " comment lines.
        const std::string dat =
            run("/usr/bin/sox -V1 " + path + " -t dat - | awk '!/^;/ {printf \"%.0f\\n\", $2*32768}'", &status);
        EXPECT_TRUE(status == 0 && dat == (kind == 'd' ? wantf : want)) << f.name << "\n" << dat;
        remove(path.c_str());
    }
}
