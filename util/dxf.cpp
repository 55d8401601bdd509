// util/dxf.cpp - DXF and Radiance facet writers.
#include "util/dxf.h"

#include <climits>

namespace {

// The fixed part of a DXF file before the first entity. Group codes are
// right-aligned in three columns except the coordinate codes of the header
// variables, which carry two leading blanks ("  10"); readers accept both.
const char *const dxf_header =
    "  0\nSECTION\n  2\nHEADER\n"
    "  9\n$ACADVER\n  1\nAC1006\n"
    "  9\n$INSBASE\n  10\n0.0\n  20\n0.0\n  30\n0.0\n"
    "  9\n$EXTMIN\n  10\n0.0\n  20\n0.0\n"
    "  9\n$EXTMAX\n  10\n1000.0\n  20\n1000.0\n"
    "  0\nENDSEC\n"
    "  0\nSECTION\n  2\nTABLES\n"
    "  0\nTABLE\n  2\nLTYPE\n  70\n1\n"
    "  0\nLTYPE\n  2\nCONTINUOUS\n  70\n64\n  3\nSolid line\n  72\n65\n  73\n0\n  40\n0.000000\n"
    "  0\nENDTAB\n"
    "  0\nTABLE\n  2\nLAYER\n  70\n6\n"
    "  0\nLAYER\n  2\n1\n  70\n64\n  62\n7\n  6\nCONTINUOUS\n"
    "  0\nLAYER\n  2\n2\n  70\n64\n  62\n7\n  6\nCONTINUOUS\n"
    "  0\nENDTAB\n"
    "  0\nTABLE\n  2\nSTYLE\n  70\n0\n  0\nENDTAB\n"
    "  0\nENDSEC\n"
    "  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nENTITIES\n";

// Corner i of an entity: codes 10+i, 20+i and 30+i.
bool put_corner(FILE *fptr, int i, const Vec3 &v)
{
    return fprintf(fptr, "%3d\n%g\n%3d\n%g\n%3d\n%g\n", 10 + i, v.x, 20 + i, v.y, 30 + i, v.z) > 0;
}

int done(FILE *fptr, bool ok)
{
    return ok && !ferror(fptr) ? 1 : 0;
}

}  // namespace

int WriteDXFHeader(FILE *fptr, const char *source)
{
    if (!fptr) return 0;
    bool ok = fprintf(fptr, "999\nDXF from %s\n", source ? source : "") > 0;
    ok = fputs(dxf_header, fptr) >= 0 && ok;
    return done(fptr, ok);
}

int WriteDXFFacet(FILE *fptr, const Vec3 *p, int n)
{
    if (!fptr || !p || n < 1 || n > 4) return 0;
    static const char *const kind[5] = {"", "POINT", "LINE", "3DFACE", "3DFACE"};
    bool ok = fprintf(fptr, "  0\n%s\n  8\nLAYER1\n", kind[n]) > 0;
    for (int i = 0; i < n; i++) ok = put_corner(fptr, i, p[i]) && ok;
    if (n == 3) ok = put_corner(fptr, 3, p[2]) && ok;  // a face always has four corners
    return done(fptr, ok);
}

int WriteDXFFooter(FILE *fptr)
{
    if (!fptr) return 0;
    return done(fptr, fputs("  0\nENDSEC\n  0\nEOF\n", fptr) >= 0);
}

int WriteRadFacet(FILE *fptr, const Vec3 *p, int n, const char *material)
{
    if (!fptr || !p || !material || n < 3 || n > INT_MAX / 3) return 0;  // 3n must fit
    bool ok = fprintf(fptr, "%s polygon p\n0\n0\n%d", material, 3 * n) > 0;
    for (int i = 0; i < n; i++) ok = fprintf(fptr, "\t%g %g %g\n", p[i].x, p[i].y, p[i].z) > 0 && ok;
    return done(fptr, ok);
}
