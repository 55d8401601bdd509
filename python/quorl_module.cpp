// python/quorl_module.cpp - the Python module "quorl": the analysis of a
// quiet run, and the raster library's reading and writing, on numpy arrays.
// The one file that talks to pybind11.
//
// Every analysis has its own record (app/boxcount.h) and every load its own
// buffers, and none of them reads the program's globals, so the work runs
// with the interpreter's lock released and several threads may analyse at
// once. Nothing here prints or exits: every failure becomes an exception.
//
// Index
//   SECTION arguments   - Python values into settings, with clear errors
//   SECTION images      - file names and arrays into black/white images
//   SECTION analyse     - the steps of a quiet run and the report as a dict
//   SECTION read/write  - the raster library's reader and writer on arrays
//   SECTION module      - docstrings and definitions

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "app/arrays.h"
#include "app/boxcount.h"
#include "app/fit.h"
#include "app/load.h"
#include "app/prepare.h"
#include "app/report.h"
#include "bitmap/writer.h"

namespace py = pybind11;

namespace {

// ==== SECTION arguments =========================================================

std::string type_name(py::handle v)
{
    return Py_TYPE(v.ptr())->tp_name;
}

std::string text_of(py::handle v)
{
    return py::repr(v).cast<std::string>();
}

// A whole number (a Python or numpy integer, not a bool) in [lo, hi].
long long whole(py::handle v, const std::string &what, long long lo, long long hi, const std::string &want)
{
    if (PyBool_Check(v.ptr()) || !PyIndex_Check(v.ptr()))
        throw py::type_error(what + " must be " + want + ", not " + type_name(v));
    const py::object i = py::reinterpret_steal<py::object>(PyNumber_Index(v.ptr()));
    if (!i) throw py::error_already_set();
    int overflow = 0;
    const long long n = PyLong_AsLongLongAndOverflow(i.ptr(), &overflow);
    if (overflow || n < lo || n > hi) throw py::value_error(what + " must be " + want + ", not " + text_of(v));
    return n;
}

// A sequence of exactly n items (a tuple or list, say; not a string).
std::vector<py::object> items(py::handle v, size_t n, const std::string &what, const std::string &want)
{
    if (!PySequence_Check(v.ptr()) || py::isinstance<py::str>(v) || py::isinstance<py::bytes>(v))
        throw py::type_error(what + " must be " + want + ", not " + type_name(v));
    const py::sequence s = py::reinterpret_borrow<py::sequence>(v);
    if (s.size() != n) throw py::value_error(what + " must be " + want + ", not " + text_of(v));
    std::vector<py::object> out;
    for (size_t i = 0; i < n; i++) out.push_back(s[i]);
    return out;
}

// True or False (a Python or numpy bool).
bool flag(py::handle v, const std::string &what)
{
    if (PyBool_Check(v.ptr())) return v.ptr() == Py_True;
    if (py::isinstance(v, py::module_::import("numpy").attr("bool_"))) return v.cast<bool>();
    throw py::type_error(what + " must be True or False, not " + type_name(v));
}

// The settings of a quiet run with the program's defaults, then the
// keywords of analyse on top.
struct Settings {
    Options o{};
    ExtraOptions x;
};

struct Keywords {
    py::object start, end, factor, samples, seed, offsets, sizes, crop, region, threshold, invert, fit_range;
};

Settings settings_of(const Keywords &k)
{
    Settings s;
    Options &o = s.o;
    ExtraOptions &x = s.x;
    o.quiet = 1;
    o.windowwidth = 400, o.windowheight = 300;
    o.scale = 1;
    o.nsamples = 10;
    o.boxstart = -1, o.boxend = 6;
    o.boxfactor = 1.2f;
    o.left = 0, o.right = 100000, o.top = 100000, o.bottom = 0;

    if (!k.start.is_none())
        o.boxstart = (int)whole(k.start, "start", 2, INT_MAX, "a box size of 2 or more, or None for automatic");
    o.boxend = (int)whole(k.end, "end", 1, INT_MAX, "a box size of 1 or more");
    const py::object fv = py::reinterpret_steal<py::object>(
        PyBool_Check(k.factor.ptr()) || py::isinstance<py::str>(k.factor) ? nullptr : PyNumber_Float(k.factor.ptr()));
    if (!fv) {
        PyErr_Clear();
        throw py::type_error("factor must be a number above 1, not " + type_name(k.factor));
    }
    const double f = PyFloat_AsDouble(fv.ptr());
    if (!std::isfinite(f) || !((float)f > 1.0f))  // the factor is kept in single precision
        throw py::value_error("factor must be a number above 1 (such as 1.2), not " + text_of(k.factor));
    o.boxfactor = (float)f;
    o.nsamples = (int)whole(k.samples, "samples", 1, INT_MAX, "a number of passes of 1 or more");
    if (!k.seed.is_none()) {
        x.has_seed = 1;
        x.seed = (long)whole(k.seed, "seed", 0, 2147483647, "a whole number from 0 to 2147483647, or None");
    }
    const std::string offsets = py::isinstance<py::str>(k.offsets) ? k.offsets.cast<std::string>() : "";
    if (offsets != "random" && offsets != "all")
        throw py::value_error("offsets must be \"random\" or \"all\", not " + text_of(k.offsets));
    x.offsets_all = offsets == "all";
    if (!k.sizes.is_none()) {
        if (py::isinstance<py::str>(k.sizes) || !py::isinstance<py::iterable>(k.sizes))
            throw py::type_error("sizes must be a list of box sizes such as [2, 4, 8, 16], or None, not " +
                                 type_name(k.sizes));
        for (py::handle v : k.sizes)
            x.sizes.push_back((int)whole(v, "each of sizes", 1, INT_MAX, "a box size of 1 or more"));
        if (x.sizes.empty()) throw py::value_error("sizes must name at least one box size, or be None");
        std::sort(x.sizes.begin(), x.sizes.end(), std::greater<int>());
        x.sizes.erase(std::unique(x.sizes.begin(), x.sizes.end()), x.sizes.end());
    }
    x.crop = flag(k.crop, "crop");
    if (!k.region.is_none()) {
        const char *want = "(left, bottom, right, top) in pixels, with left < right and bottom < top";
        std::vector<py::object> r = items(k.region, 4, "region", want);
        int v[4];
        for (int i = 0; i < 4; i++) v[i] = (int)whole(r[i], "region", INT_MIN, INT_MAX, want);
        if (v[0] >= v[2] || v[1] >= v[3]) throw py::value_error(std::string("region must be ") + want +
                                                                ", not " + text_of(k.region));
        o.left = v[0], o.bottom = v[1], o.right = v[2], o.top = v[3];
        o.useregion = 1;
    }
    if (k.threshold.is_none() || (py::isinstance<py::str>(k.threshold) && k.threshold.cast<std::string>() == "fixed"))
        x.threshold = kThresholdFixed;
    else if (py::isinstance<py::str>(k.threshold) && k.threshold.cast<std::string>() == "otsu")
        x.threshold = kThresholdOtsu;
    else if (py::isinstance<py::str>(k.threshold))
        throw py::value_error("threshold must be None, \"otsu\" or a grey level from 0 to 255, not " +
                              text_of(k.threshold));
    else
        x.threshold = (int)whole(k.threshold, "threshold", 0, 255,
                                 "None, \"otsu\" or a grey level from 0 to 255");
    o.invert = flag(k.invert, "invert");
    if (!k.fit_range.is_none()) {
        const char *want = "(smallest, largest) box sizes of 1 or more, either may be None";
        std::vector<py::object> r = items(k.fit_range, 2, "fit_range", want);
        if (!r[0].is_none()) x.fit_min = (int)whole(r[0], "fit_range", 1, INT_MAX, want);
        if (!r[1].is_none()) x.fit_max = (int)whole(r[1], "fit_range", 1, INT_MAX, want);
        if (x.fit_min > x.fit_max) throw py::value_error(std::string("fit_range must be ") + want +
                                                         ", the smaller first, not " + text_of(k.fit_range));
    }
    return s;
}

// ==== SECTION images ============================================================

// A file name as the C library wants it, and as the report shows it.
struct FileName {
    std::string path;   // bytes for fopen; "-" becomes "./-", never standard input
    std::string shown;  // the name as given, for the report and error messages
};

bool is_file_name(py::handle v)
{
    return py::isinstance<py::str>(v) || py::isinstance<py::bytes>(v) || py::hasattr(v, "__fspath__");
}

FileName file_name(py::handle v)
{
    const py::module_ os = py::module_::import("os");
    const py::object p = os.attr("fspath")(v);
    FileName n;
    n.path = os.attr("fsencode")(p).cast<std::string>();
    n.shown = os.attr("fsdecode")(p).cast<std::string>();
    if (n.path.empty()) throw py::value_error("the file name is empty");
    if (n.path.find('\0') != std::string::npos) throw py::value_error("the file name holds a NUL character");
    if (n.path == "-") n.path = "./-";
    return n;
}

[[noreturn]] void raise_os_error(int err, const FileName &n)
{
    errno = err ? err : EIO;
    PyErr_SetFromErrnoWithFilenameObject(PyExc_OSError, py::str(n.shown).ptr());
    throw py::error_already_set();
}

// A failed load as the exception a Python user expects.
[[noreturn]] void raise_load_error(LoadStatus status, int err, const FileName &n, const std::string &why)
{
    if (status == LOAD_NO_FILE) raise_os_error(err, n);
    if (status == LOAD_NO_MEMORY)
        throw std::bad_alloc();  // MemoryError
    const std::string reason = why.empty() ? "the TGA file is damaged or truncated" : why;
    PyErr_SetString(PyExc_OSError, ("cannot read \"" + n.shown + "\": " + reason).c_str());
    throw py::error_already_set();
}

// An accepted numpy array, contiguous, with its layout.
struct ImageArray {
    py::array array;
    PixelArray pixels;
};

ImageArray image_array(py::handle v)
{
    const py::module_ np = py::module_::import("numpy");
    ImageArray out;
    out.array = np.attr("ascontiguousarray")(v);
    const py::array &a = out.array;
    const py::dtype dt = a.dtype();
    const char kind = dt.kind();
    const py::ssize_t item = dt.itemsize();
    std::string shape = "(";
    for (py::ssize_t i = 0; i < a.ndim(); i++) shape += (i ? ", " : "") + std::to_string(a.shape(i));
    shape += a.ndim() == 1 ? ",)" : ")";
    const std::string dtype = dt.attr("name").cast<std::string>();
    ArrayPixels layout;
    if (a.ndim() == 2) {
        if (kind == 'b')
            layout = ARRAY_BOOL;
        else if (kind == 'u' && item == 1)
            layout = ARRAY_GREY8;
        else if (kind == 'u' && item == 2)
            layout = ARRAY_GREY16;
        else
            throw py::type_error("a 2-D image array must hold bool (True is black), uint8 or uint16 grey, not " +
                                 dtype + "; convert it, e.g. with mask.astype(bool) or array.astype(numpy.uint8)");
    } else if (a.ndim() == 3) {
        if (kind != 'u' || item != 1)
            throw py::type_error("a 3-D image array must hold uint8 RGB or RGBA values, not " + dtype);
        if (a.shape(2) != 3 && a.shape(2) != 4)
            throw py::value_error("a 3-D image array must have 3 (RGB) or 4 (RGBA) channels, not shape " + shape);
        layout = a.shape(2) == 3 ? ARRAY_RGB8 : ARRAY_RGBA8;
    } else {
        throw py::value_error("an image array must be 2-D (grey or black/white) or 3-D (RGB or RGBA), not of shape " +
                              shape);
    }
    if (a.shape(0) < 1 || a.shape(1) < 1) throw py::value_error("the image array is empty: shape " + shape);
    if (a.shape(0) > INT_MAX || a.shape(1) > INT_MAX) throw py::value_error("the image array is too large: shape " +
                                                                            shape);
    if (layout == ARRAY_GREY16 && !dt.attr("isnative").cast<bool>())  // big-endian data on this host, say
        out.array = np.attr("ascontiguousarray")(v, py::arg("dtype") = "=u2");
    out.pixels = PixelArray{out.array.data(), layout, (int)a.shape(1), (int)a.shape(0)};
    return out;
}

// ==== SECTION analyse ===========================================================


// How an analysis went, decided without the interpreter's lock.
struct Outcome {
    enum { OK, NO_MEMORY, BAD_INPUT } status = OK;
    std::string text;  // the JSON report, or what is wrong
};

// The steps of a quiet run (and of a batch row) on the w x h black/white
// image bw, which the analysis takes over: the image and the region, a
// reset, the crop and another reset, one more reset, then the analysis.
// The report of a record that has been counted, or why there is none.
Outcome report_of(Analysis *a)
{
    Outcome out;
    if (a->failed) {
        out.status = Outcome::NO_MEMORY;
        return out;
    }
    FitSummary f;
    SummariseFit(a, &f);
    out.text = JsonReport(a, &f);
    return out;
}

const char *const no_black = "there are no black pixels in the analysed region";

Outcome analyse_bw(unsigned char *bw, int w, int h, const Settings &s, const char *name)
{
    Outcome out;
    AnalysisPtr a;
    int start = 0;
    switch (PrepareAnalysis(bw, w, h, &s.o, &s.x, name, &a, &start)) {
    case PREPARE_OK: break;
    case PREPARE_NO_MEMORY: out.status = Outcome::NO_MEMORY; return out;
    case PREPARE_NO_BLACK:
        out.status = Outcome::BAD_INPUT;
        out.text = no_black;
        return out;
    case PREPARE_CANNOT_FINISH:
        out.status = Outcome::BAD_INPUT;
        out.text = "the start box size is " + std::to_string(start) +
                   ", so the analysis cannot finish; give a start size of 2 or more (start=...)";
        return out;
    }
    if (!RunAnalysis(a.get())) {
        out.status = Outcome::NO_MEMORY;
        return out;
    }
    return report_of(a.get());
}

py::dict analyse(py::handle image, const Keywords &k)
{
    const Settings s = settings_of(k);
    Outcome out;
    std::string shown;
    if (py::isinstance<py::array>(image)) {
        ImageArray im = image_array(image);
        shown = "<array>";
        py::gil_scoped_release nogil;
        const PixelArray &p = im.pixels;
        unsigned char *bw = (unsigned char *)malloc((size_t)p.width * p.height);
        int otsu_level;
        if (!bw || ArrayToBlackWhite(&p, &s.o, &s.x, bw, &otsu_level) < 0) {
            free(bw);
            out.status = Outcome::NO_MEMORY;
        } else {
            out = analyse_bw(bw, p.width, p.height, s, shown.c_str());
        }
    } else if (is_file_name(image)) {
        const FileName n = file_name(image);
        shown = n.shown;
        LoadStatus status;
        int err;
        std::string why;
        {
            py::gil_scoped_release nogil;
            unsigned char *bw;
            int w, h;
            errno = 0;
            // Counted as the rows are read where it can be: the image is never held.
            PreparedCount ready{&s.o, &s.x, n.shown.c_str(), {}};
            CountAsRead counting{ReadyPrepared, &ready, false};
            const BwRowTaker taker = CountAsReadTaker(&counting);
            status = LoadBlackWhite(n.path.c_str(), &s.o, &s.x, &bw, &w, &h, &why, nullptr, &taker);
            err = errno;
            if (CountAsReadDone(&counting, status)) {
                out = ready.a->black == 0 ? Outcome{Outcome::BAD_INPUT, no_black} : report_of(ready.a.get());
            } else if (status == LOAD_OK) {
                out = analyse_bw(bw, w, h, s, n.shown.c_str());
            }
        }
        if (status != LOAD_OK) raise_load_error(status, err, n, why);
    } else {
        throw py::type_error("image must be a file name or a numpy array, not " + type_name(image));
    }
    if (out.status == Outcome::NO_MEMORY) throw std::bad_alloc();
    if (out.status == Outcome::BAD_INPUT) throw py::value_error(out.text);
    py::dict report = py::module_::import("json").attr("loads")(out.text);
    report["file"] = shown;  // in full: the record keeps at most 255 bytes of a name
    return report;
}

// ==== SECTION read/write ========================================================

struct BitmapFree {
    void operator()(BitmapPixel *p) const { free(p); }
};

py::array read_image(const py::object &name)
{
    if (!is_file_name(name)) throw py::type_error("name must be a file name, not " + type_name(name));
    const FileName n = file_name(name);
    BitmapPixel *bm = nullptr;
    std::string why;
    LoadInfo info;
    LoadStatus status;
    int err;
    {
        py::gil_scoped_release nogil;
        errno = 0;
        status = LoadRGBA(n.path.c_str(), &bm, &why, &info);
        err = errno;
    }
    const std::unique_ptr<BitmapPixel, void (*)(BitmapPixel *)> owned(bm, Destroy_Bitmap);
    if (status != LOAD_OK) raise_load_error(status, err, n, why);
    const int w = info.width, h = info.height;
    py::array_t<uint8_t> out({(py::ssize_t)h, (py::ssize_t)w, (py::ssize_t)4});
    uint8_t *dst = out.mutable_data();
    {
        py::gil_scoped_release nogil;
        // Top row first; alpha 255, as the analysis sees every pixel (the TGA
        // reader's alpha plays no part in it, other formats are flattened).
        for (int y = 0; y < h; y++) {
            const BitmapPixel *row = owned.get() + (size_t)(h - 1 - y) * w;
            uint8_t *o = dst + (size_t)y * w * 4;
            for (int x = 0; x < w; x++, o += 4) o[0] = row[x].r, o[1] = row[x].g, o[2] = row[x].b, o[3] = 255;
        }
    }
    return out;
}

// The writer's formats by name. The sign of each code puts the picture
// upright: bottom row first for TGA, BMP and the SGI-style header, top row
// first for PPM, TIFF, EPS and raw bytes (as the array keeps them).
struct Kind {
    const char *name;
    const char *extensions;  // that imply the kind when none is given
    int code;
    bool short_sides;        // the width and height go into 16-bit fields
};
const Kind kinds[] = {
    {"tga", ".tga", 1, true},        {"tga32", "", 11, true},         {"tga-rle", "", 12, true},
    {"tga-rle32", "", 13, true},     {"ppm", ".ppm", -2, false},      {"raw-header", "", 3, true},
    {"raw-grey", "", -4, false},     {"tiff", ".tif .tiff", -5, true}, {"eps", ".eps", -6, false},
    {"eps-grey", "", -7, false},     {"raw", ".raw", -8, false},      {"bmp", ".bmp", 9, false},
};

std::string kind_names()
{
    std::string s;
    for (const Kind &k : kinds) s += std::string(s.empty() ? "\"" : ", \"") + k.name + "\"";
    return s;
}

const Kind &kind_of(py::handle kind, const FileName &n)
{
    if (kind.is_none()) {
        const size_t dot = n.shown.rfind('.');
        std::string ext = dot == std::string::npos ? "" : n.shown.substr(dot);
        for (char &c : ext) c = (char)tolower((unsigned char)c);
        for (const Kind &k : kinds)
            if (!ext.empty() && (" " + std::string(k.extensions) + " ").find(" " + ext + " ") != std::string::npos)
                return k;
        throw py::value_error("cannot tell the format from the name \"" + n.shown + "\"; give kind, one of " +
                              kind_names());
    }
    if (!py::isinstance<py::str>(kind)) throw py::type_error("kind must be one of " + kind_names() + ", not " +
                                                             type_name(kind));
    const std::string k = kind.cast<std::string>();
    for (const Kind &c : kinds)
        if (k == c.name) return c;
    throw py::value_error("kind must be one of " + kind_names() + ", not " + text_of(kind));
}

void write_image(const py::object &array, const py::object &name, const py::object &kind)
{
    if (!py::isinstance<py::array>(array)) throw py::type_error("array must be a numpy array, not " +
                                                                type_name(array));
    ImageArray im = image_array(array);
    if (!is_file_name(name)) throw py::type_error("name must be a file name, not " + type_name(name));
    const FileName n = file_name(name);
    const Kind &k = kind_of(kind, n);
    const PixelArray &p = im.pixels;
    const uint64_t bytes = 3ull * (uint64_t)p.width * (uint64_t)p.height;
    if (k.short_sides && (p.width > 65535 || p.height > 65535))
        throw py::value_error(std::string("a \"") + k.name + "\" file holds at most 65535 x 65535 pixels");
    if ((k.code == 9 || k.code == -5) && bytes > UINT32_MAX - 256)
        throw py::value_error(std::string("a \"") + k.name + "\" file holds at most 4 GB of pixels");
    int err = 0;
    {
        py::gil_scoped_release nogil;
        std::unique_ptr<BitmapPixel, BitmapFree> bm(
            (BitmapPixel *)malloc((size_t)p.width * p.height * sizeof(BitmapPixel)));
        if (!bm) {
            err = ENOMEM;
        } else {
            ArrayToBitmap(&p, bm.get());
            FILE *f = fopen(n.path.c_str(), "wb");
            if (!f) {
                err = errno;
            } else {
                errno = 0;
                const int ok = Write_Bitmap(f, bm.get(), p.width, p.height, k.code);
                if (!ok) err = errno ? errno : EIO;
                struct stat st;
                const bool regular = fstat(fileno(f), &st) == 0 && S_ISREG(st.st_mode);
                if (fclose(f) != 0 && !err) err = errno ? errno : EIO;
                // No incomplete file is left to be taken for a picture; a
                // device or a pipe given as the name is of course kept.
                if (err && regular) remove(n.path.c_str());
            }
        }
    }
    if (err == ENOMEM) throw std::bad_alloc();
    if (err) raise_os_error(err, n);
}

// ==== SECTION module ============================================================

// A signature line ending in "--" lets help() and inspect.signature show
// the arguments by their names and defaults.
const char *module_doc = R"(Box-counting (fractal) dimension of the black pixels of an image.

The same analysis as the program's quiet run (quorl -q), on image files or
on numpy arrays, with the raster library's reader and writer:

    analyse(image, ...)            the JSON report of a quiet run, as a dict
    read_image(name)               an image file as an RGBA array
    write_image(array, name, kind) an array as a TGA, PPM, TIFF, EPS, BMP or raw file

Arrays keep numpy's order, row 0 at the top. The program's image coordinates
(the region, and the report's region) have y upward from the bottom row.
An analysis releases the interpreter's lock, so several may run at once in
threads. Errors: TypeError or ValueError for bad arguments, OSError for a
file that cannot be read or written, MemoryError when an image does not fit.

Example:

    import numpy, quorl
    mask = numpy.zeros((512, 512), bool)
    mask[100:400, 250] = True
    report = quorl.analyse(mask, seed=1)
    print(report["fit"]["dimension"])        # about 1 for a line
)";

const char *analyse_doc = R"(analyse(image, *, start=None, end=6, factor=1.2, samples=10, seed=None, offsets='random', sizes=None, crop=False, region=None, threshold=None, invert=False, fit_range=None)
--

Box-counts the black pixels of image and returns the report of the quiet run
`quorl -q --json -` with the same settings: a dict with the same keys and
values ("file", "width", "height", "black_pixels", "region", "settings",
"sizes", "fit", "local_slopes"). report["fit"]["dimension"] is the estimate.

image: a file name (any format the program reads) or a numpy array, row 0
  at the top: 2-D bool (True is black), 2-D uint8 or uint16 grey (16-bit
  values keep their high byte, as 16-bit files do), or 3-D uint8 RGB or
  RGBA (alpha laid onto white). Grey and colour become black and white by
  the threshold rules, as a file of the same pixels would. For an array,
  report["file"] is "<array>".
start: the largest box size in pixels; None: a fifth of the region's
  smaller side. end: the smallest box size. factor: each size is the one
  before divided by factor. samples: passes, each with new grid offsets;
  each size keeps its smallest count.
seed: seeds the grid offsets (0 to 2147483647); None: the clock, as the
  program does. The report's settings hold the seed used.
offsets: "random", or "all" for the smallest count over every grid offset.
sizes: exactly these box sizes (a list), instead of start, end and factor.
crop: shrink the region to the bounding box of its black pixels first.
region: (left, bottom, right, top) in the program's image coordinates:
  columns left to right-1 and rows bottom to top-1, where row 0 is the
  BOTTOM row of the picture (array row height-1). Clamped to the image.
threshold: None (black when r*r + g*g + b*b < 16384), a grey level N
  (black when (299r + 587g + 114b)/1000 < N), or "otsu".
invert: swap black and white after thresholding.
fit_range: (smallest, largest) box sizes that enter the fit; either None.

Raises ValueError when no pixel of the region is black, TypeError or
ValueError for a bad argument, OSError when the file cannot be read.
)";

const char *read_doc = R"(read_image(name)
--

Reads an image file of any format the program reads and returns what the
analysis sees: a uint8 array of shape (height, width, 4), RGBA, row 0 at the
top. Alpha is 255 throughout: a TGA file's alpha plays no part in the
analysis, and other formats are laid onto white, so
analyse(read_image(name)) agrees with analyse(name).
Raises OSError (FileNotFoundError and the like) when it cannot be read.
)";

const char *write_doc = R"(write_image(array, name, kind=None)
--

Writes an image array (any kind analyse takes; RGBA keeps its alpha in the
32-bit TGA kinds) with the raster library's writer, picture upright. kind:
  "tga", "tga32"            TGA, 24 or 32 bits
  "tga-rle", "tga-rle32"    TGA, run-length coded
  "ppm"                     binary PPM (P6)
  "tiff"                    TIFF, uncompressed RGB
  "eps", "eps-grey"         Encapsulated PostScript, colour or grey
  "bmp"                     BMP, 24 bits (rows are not padded)
  "raw", "raw-grey"         bytes r g b, or grey (r+g+b)/3, top row first
  "raw-header"              r g b bottom row first after a 48-byte header
None: by the name's ending (.tga .ppm .tif .tiff .eps .bmp .raw).
TGA, TIFF and raw-header files hold at most 65535 x 65535 pixels.
Raises OSError when the file cannot be written; no partial file is left.
)";

}  // namespace

PYBIND11_MODULE(quorl, m)
{
    py::options signatures;
    signatures.disable_function_signatures();
    m.doc() = module_doc;
    m.attr("__version__") = QUORL_VERSION;
    m.def(
        "analyse",
        [](const py::object &image, const py::object &start, const py::object &end, const py::object &factor,
           const py::object &samples, const py::object &seed, const py::object &offsets, const py::object &sizes,
           const py::object &crop, const py::object &region, const py::object &threshold, const py::object &invert,
           const py::object &fit_range) {
            return analyse(image, Keywords{start, end, factor, samples, seed, offsets, sizes, crop, region,
                                           threshold, invert, fit_range});
        },
        analyse_doc, py::arg("image"), py::kw_only(), py::arg("start") = py::none(), py::arg("end") = 6,
        py::arg("factor") = 1.2, py::arg("samples") = 10, py::arg("seed") = py::none(),
        py::arg("offsets") = "random", py::arg("sizes") = py::none(), py::arg("crop") = false,
        py::arg("region") = py::none(), py::arg("threshold") = py::none(), py::arg("invert") = false,
        py::arg("fit_range") = py::none());
    m.def("read_image", &read_image, read_doc, py::arg("name"));
    m.def("write_image", &write_image, write_doc, py::arg("array"), py::arg("name"),
          py::arg("kind") = py::none());
}
