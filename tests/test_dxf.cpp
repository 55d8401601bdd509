// tests/test_dxf.cpp - DXF and Radiance facet writers.
//
// Focus: the exact text of entities and Radiance polygons, the vertex counts
// that write nothing, write errors, and a whole drawing loaded by ezdxf (a
// reader nobody here wrote; the case skips when it is missing).
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "util/dxf.h"

namespace {

// Everything fn writes to an in-memory stream; *result gets what fn returned.
template <class F> std::string capture(F fn, int *result = nullptr)
{
    char *buf = nullptr;
    size_t len = 0;
    FILE *f = open_memstream(&buf, &len);
    const int r = fn(f);
    fclose(f);
    if (result) *result = r;
    std::string out(buf, len);
    free(buf);
    return out;
}

// Asymmetric corners, with the two number forms that matter: 0.5 and 1e+20.
const Vec3 k_quad[4] = {{0, 0, 0}, {1, 0.5, 0}, {1, 1, 1e20}, {-2.5, 1, 3}};

}  // namespace

TEST(dxf_text, EntitiesByVertexCount)
{
    const struct { const char *id; int n; const char *want; } cases[] = {
        {"dxf-1.1", 1, "  0\nPOINT\n  8\nLAYER1\n 10\n0\n 20\n0\n 30\n0\n"},
        {"dxf-1.2", 2, "  0\nLINE\n  8\nLAYER1\n 10\n0\n 20\n0\n 30\n0\n 11\n1\n 21\n0.5\n 31\n0\n"},
        {"dxf-1.3", 3, "  0\n3DFACE\n  8\nLAYER1\n 10\n0\n 20\n0\n 30\n0\n 11\n1\n 21\n0.5\n 31\n0\n"
                       " 12\n1\n 22\n1\n 32\n1e+20\n 13\n1\n 23\n1\n 33\n1e+20\n"},
        {"dxf-1.4", 4, "  0\n3DFACE\n  8\nLAYER1\n 10\n0\n 20\n0\n 30\n0\n 11\n1\n 21\n0.5\n 31\n0\n"
                       " 12\n1\n 22\n1\n 32\n1e+20\n 13\n-2.5\n 23\n1\n 33\n3\n"},
        {"dxf-1.5", 0, ""},
        {"dxf-1.6", 5, ""},
        {"dxf-1.7", -1, ""},
    };
    for (const auto &c : cases) {
        int r = -1;
        EXPECT_EQ(capture([&](FILE *f) { return WriteDXFFacet(f, k_quad, c.n); }, &r), c.want) << c.id;
        EXPECT_EQ(r, c.want[0] ? 1 : 0) << c.id;
    }
}

TEST(dxf_text, HeaderFooterAndRadiance)
{
    const std::string head = capture([](FILE *f) { return WriteDXFHeader(f, "quorl"); });
    EXPECT_EQ(head.rfind("999\nDXF from quorl\n  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1006\n", 0), 0u);
    EXPECT_NE(head.find("  9\n$INSBASE\n  10\n0.0\n  20\n0.0\n  30\n0.0\n"), std::string::npos);
    EXPECT_TRUE(head.ends_with("  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n"));
    EXPECT_EQ(capture([](FILE *f) { return WriteDXFFooter(f); }), "  0\nENDSEC\n  0\nEOF\n");

    // The count and the first vertex share a line; Radiance reads words, not lines.
    EXPECT_EQ(capture([](FILE *f) { return WriteRadFacet(f, k_quad, 3, "m"); }),
              "m polygon p\n0\n0\n9\t0 0 0\n\t1 0.5 0\n\t1 1 1e+20\n");
    EXPECT_EQ(capture([](FILE *f) { return WriteRadFacet(f, k_quad, 4, "glass"); }),
              "glass polygon p\n0\n0\n12\t0 0 0\n\t1 0.5 0\n\t1 1 1e+20\n\t-2.5 1 3\n");
    int r = -1;
    EXPECT_EQ(capture([](FILE *f) { return WriteRadFacet(f, k_quad, 2, "m"); }, &r), "");
    EXPECT_EQ(r, 0);
}

TEST(dxf_text, WriteErrorsAreReported)
{
    FILE *f = fopen("/dev/null", "r");  // every write to it fails
    ASSERT_TRUE(f);
    EXPECT_EQ(WriteDXFHeader(f, "x") + WriteDXFFacet(f, k_quad, 3) + WriteDXFFooter(f) +
                  WriteRadFacet(f, k_quad, 3, "m"), 0);
    fclose(f);
    EXPECT_EQ(WriteDXFFacet(nullptr, k_quad, 3) + WriteRadFacet(stdout, k_quad, 3, nullptr), 0);
}

TEST(dxf_readers, EzdxfLoadsTheDrawing)
{
    if (access("/usr/bin/python3", X_OK) != 0) GTEST_SKIP() << "/usr/bin/python3 is not installed";
    const std::string path =
        (std::filesystem::temp_directory_path() / ("quorl-dxf-" + std::to_string(getpid()) + ".dxf")).string();
    FILE *f = fopen(path.c_str(), "w");
    ASSERT_TRUE(f);
    int ok = WriteDXFHeader(f, "test_dxf");
    for (int n = 1; n <= 4; n++) ok &= WriteDXFFacet(f, k_quad, n);
    ok &= WriteDXFFooter(f);
    fclose(f);
    ASSERT_EQ(ok, 1);

    std::string out;
    FILE *p = popen(("/usr/bin/python3 " QUORL_DXF_ENTITIES " " + path).c_str(), "r");
    ASSERT_TRUE(p);
    for (int ch; (ch = fgetc(p)) != EOF;) out += (char)ch;
    const int st = pclose(p);
    std::filesystem::remove(path);
    if (WIFEXITED(st) && WEXITSTATUS(st) == 77) GTEST_SKIP() << "ezdxf (python3-ezdxf) is not installed";
    ASSERT_EQ(st, 0) << out;

    for (const char *line : {"LAYER 1\n", "LAYER 2\n", "LTYPE CONTINUOUS\n", "EXTMAX 1000 1000\n"})
        EXPECT_NE(out.find(line), std::string::npos) << line << " missing from\n" << out;
    EXPECT_NE(out.find("POINT LAYER1 0 0 0\n"
                       "LINE LAYER1 0 0 0 1 0.5 0\n"
                       "3DFACE LAYER1 0 0 0 1 0.5 0 1 1 1e+20 1 1 1e+20\n"
                       "3DFACE LAYER1 0 0 0 1 0.5 0 1 1 1e+20 -2.5 1 3\n"),
              std::string::npos)
        << out;
}
