// app/load.cpp - choosing the reader by a file's first bytes, reading pipes
// into memory, and thresholding rows as they are decoded.
#include "app/load.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <sys/stat.h>

#include "app/decode.h"
#include "app/hugepages.h"
#include "app/threshold.h"
#include "bitmap/tga.h"

namespace {

// The largest input read into memory: a 65535 x 65535 TGA file of 32-bit
// run-length packets of one pixel each, with its header, ID and colour map.
constexpr uint64_t max_input = 5ull * 65535 * 65535 + 18 + 255 + 4ull * 65536;

struct FileCloser {
    void operator()(FILE *f) const { fclose(f); }
};
using File = std::unique_ptr<FILE, FileCloser>;

// A file by name, or the whole of a stream that cannot seek, in memory.
struct Source {
    const char *path = nullptr;  // a regular file (or anything else that seeks)
    unsigned char *data = nullptr;
    size_t size = 0;
    unsigned char head[18] = {0};  // enough for a TGA header's descriptor byte
    size_t nhead = 0;
    bool owned = true;  // data is ours to free (not a caller's buffer)
    ~Source()
    {
        if (owned) free(data);
    }
};

// Reads all of f into s. False when it is larger than max_input or memory.
bool slurp(FILE *f, Source *s)
{
    size_t cap = 1 << 16;
    s->data = (unsigned char *)malloc(cap);
    if (!s->data) return false;
    for (;;) {
        if (s->size == cap) {
            if (cap >= max_input) return false;
            unsigned char *more = (unsigned char *)realloc(s->data, cap * 2);
            if (!more) return false;
            s->data = more;
            cap *= 2;
        }
        const size_t got = fread(s->data + s->size, 1, cap - s->size, f);
        if (got == 0) return true;  // at the end, or a read error: a short file the reader refuses
        s->size += got;
    }
}

LoadStatus open_source(const char *name, Source *s, std::string *why)
{
    if (!strcmp(name, "-")) {
        if (!slurp(stdin, s)) {
            *why = "standard input holds more than can be kept in memory";
            return LOAD_NO_MEMORY;
        }
    } else {
        File f(fopen(name, "rb"));
        if (!f) return LOAD_NO_FILE;
        struct stat st;
        if (fstat(fileno(f.get()), &st) == 0 && !S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode)) {
            if (!slurp(f.get(), s)) {
                *why = "the stream holds more than can be kept in memory";
                return LOAD_NO_MEMORY;
            }
        } else {
            s->path = name;
            s->nhead = fread(s->head, 1, sizeof s->head, f.get());
            return LOAD_OK;
        }
    }
    s->nhead = s->size < sizeof s->head ? s->size : sizeof s->head;
    memcpy(s->head, s->data, s->nhead);
    return LOAD_OK;
}

// The source as a stream for the TGA reader, which seeks.
FILE *open_stream(const Source &s)
{
    if (s.path) return fopen(s.path, "rb");
    return s.size ? fmemopen(s.data, s.size, "rb") : tmpfile();
}

// A TGA read that fails on the image type of a file whose type byte is no
// TGA type at all was never a TGA file: say so. Real TGA files keep their
// one line.
void not_tga(const Source &s, std::string *why)
{
    const int t = s.nhead > 2 ? s.head[2] : 0;
    if (t != 0 && t != 1 && t != 2 && t != 3 && t != 9 && t != 10 && t != 11 && t != 32 && t != 33)
        *why = "not a known image format (TGA, PNG, TIFF, JPEG, BMP, PNM, GIF or WebP)";
}

// Rows into the black/white image: thresholded at once, or (Otsu) stored as
// grey levels and counted, to be thresholded when the histogram is whole.
struct BwRows {
    // cppcheck-suppress unsafeClassCanLeak ; LoadBlackWhite hands bw on or frees it
    unsigned char *bw = nullptr;
    int w = 0, h = 0;
    ThresholdRule rule{kThresholdFixed, 0};
    bool otsu = false;
    uint64_t hist[256] = {};
    unsigned char all = 255;
    // Columns (of an image turned a quarter) wait here, kColumns at a time,
    // row by row, so that they are set down a short run of bytes per row
    // rather than a byte per row each.
    static constexpr int kColumns = 32;
    std::vector<unsigned char> waiting;  // column k at k * h
    int xs[kColumns] = {};
    int nwaiting = 0;
    // Rows (or columns) handed on as they come rather than kept, each
    // thresholded into line first.
    const BwRowTaker *taker = nullptr;
    bool taken = false;
    std::vector<unsigned char> line;

    bool start(int width, int height, RowOrder order)
    {
        const bool columns = order == COLUMNS_RIGHTWARD || order == COLUMNS_LEFTWARD;
        if (taker && !otsu && order != ROWS_ANY_ORDER && width > 0 && height > 0 &&
            taker->begin(taker->ctx, width, height, order == ROWS_UPWARD || order == COLUMNS_RIGHTWARD, columns)) {
            w = width;
            h = height;
            line.resize((size_t)(columns ? h : w));
            return taken = true;
        }
        return allocate(width, height);
    }

    bool allocate(int width, int height)
    {
        w = width;
        h = height;
        const size_t n = (size_t)w * (size_t)h;
        bw = (unsigned char *)malloc(n ? n : 1);
        if (bw) AskHugePages(bw, n);  // before the rows fill it: far fewer page faults
        return bw != nullptr;
    }

    void set_down_columns()
    {
        if (nwaiting == 0) return;
        for (int y = 0; y < h; y++) {
            unsigned char *row = bw + (size_t)y * w;
            for (int k = 0; k < nwaiting; k++) row[xs[k]] = waiting[(size_t)k * h + y];
        }
        nwaiting = 0;
    }
};

// n pixels into out: thresholded, or (Otsu) grey levels counted.
void bw_pixels(BwRows *r, const BitmapPixel *px, unsigned char *out, size_t n)
{
    if (r->otsu)
        GreyLevels(px, out, n, r->hist);
    else
        r->all &= ThresholdPixels(px, out, n, r->rule);
}

void hand_on(BwRows *r, int index, const BitmapPixel *px)
{
    unsigned char *room = r->taker->room ? r->taker->room(r->taker->ctx) : nullptr;
    if (!room) room = r->line.data();
    bw_pixels(r, px, room, r->line.size());
    r->taker->row(r->taker->ctx, index, room);
}

void bw_row(void *ctx, int y, const BitmapPixel *px)
{
    BwRows *r = (BwRows *)ctx;
    if (r->taken) return hand_on(r, y, px);
    bw_pixels(r, px, r->bw + (size_t)y * r->w, (size_t)r->w);
}

// A column, for an image turned a quarter: thresholded like a row, and put
// with the columns waiting to be set down (or handed on).
void bw_column(void *ctx, int x, const BitmapPixel *px)
{
    BwRows *r = (BwRows *)ctx;
    if (r->taken) return hand_on(r, x, px);
    r->waiting.resize((size_t)r->h * BwRows::kColumns);
    bw_pixels(r, px, r->waiting.data() + (size_t)r->nwaiting * r->h, (size_t)r->h);
    r->xs[r->nwaiting++] = x;
    if (r->nwaiting == BwRows::kColumns) r->set_down_columns();
}

int bw_begin(void *ctx, int w, int h, int, RowOrder order)
{
    return ((BwRows *)ctx)->start(w, h, order);
}

struct RgbaRows {
    BitmapPixel *image;
    int w;
};

void rgba_row(void *ctx, int y, const BitmapPixel *px)
{
    RgbaRows *r = (RgbaRows *)ctx;
    memcpy(r->image + (size_t)y * r->w, px, sizeof(BitmapPixel) * (size_t)r->w);
}

struct RgbaBegin {
    BitmapPixel **image;
    RgbaRows rows;
    LoadInfo *info;
};

int rgba_begin(void *ctx, int w, int h, int depth, RowOrder)
{
    RgbaBegin *b = (RgbaBegin *)ctx;
    *b->info = LoadInfo{w, h, depth, 1};
    Destroy_Bitmap(*b->image);
    *b->image = Create_Bitmap(w, h);
    b->rows = RgbaRows{*b->image, w};
    return *b->image != nullptr;
}

void rgba_row_of(void *ctx, int y, const BitmapPixel *px)
{
    rgba_row(&((RgbaBegin *)ctx)->rows, y, px);
}

void rgba_column_of(void *ctx, int x, const BitmapPixel *px)
{
    const RgbaBegin *b = (const RgbaBegin *)ctx;
    for (int y = 0; y < b->info->height; y++) b->rows.image[(size_t)y * b->rows.w + x] = px[y];
}

LoadStatus decoded(int code)
{
    return code == DECODE_OK ? LOAD_OK : code == DECODE_NOMEMORY ? LOAD_NO_MEMORY : LOAD_FAILED;
}

// The black/white image of an opened source, for both entry points below.
LoadStatus black_white(const Source &s, const Options *o, const ExtraOptions *x, unsigned char **bw, int *w,
                       int *h, std::string *why, LoadInfo *info, const BwRowTaker *taker)
{
    LoadStatus status;
    BwRows rows;
    rows.taker = taker;
    rows.otsu = x->threshold == kThresholdOtsu;
    rows.rule = ThresholdRule{rows.otsu ? kThresholdFixed : x->threshold, o->invert};
    if (DecodeFormatName(s.head, s.nhead)) {
        const DecodeSink sink = {bw_begin, bw_row, bw_column, &rows};
        status = decoded(DecodeImage(s.path, s.data, s.size, &sink, why));
        if (status == LOAD_OK) rows.set_down_columns();
        info->width = rows.w;
        info->height = rows.h;
        info->has_size = rows.bw != nullptr || rows.taken || status == LOAD_NO_MEMORY;
    } else {
        File f(open_stream(s));
        if (!f) return LOAD_NO_FILE;
        TGA_Info(f.get(), &info->width, &info->height, &info->depth);
        info->has_size = 1;
        // Rows come upward, or downward when the descriptor says the file is
        // stored top first.
        const bool down = s.nhead > 17 && (s.head[17] & 0x20) && info->height >= 2;
        if (!rows.start(info->width, info->height, down ? ROWS_DOWNWARD : ROWS_UPWARD)) return LOAD_NO_MEMORY;
        int tw, th;
        const int code = TGA_ReadRows(f.get(), &tw, &th, bw_row, &rows);
        status = code == TGA_OK ? LOAD_OK : LOAD_FAILED;
        if (code == TGA_BADTYPE) not_tga(s, why);
    }
    if (status != LOAD_OK) {
        free(rows.bw);
        return status;
    }
    if (rows.otsu) {
        info->otsu_level = OtsuLevel(rows.hist);
        rows.all = ThresholdGreyLevels(rows.bw, (size_t)rows.w * rows.h, info->otsu_level + 1, o->invert);
    }
    info->has_black = rows.all < 128;
    *bw = rows.bw;
    *w = rows.w;
    *h = rows.h;
    return LOAD_OK;
}

}  // namespace

LoadStatus LoadBlackWhite(const char *name, const Options *o, const ExtraOptions *x, unsigned char **bw, int *w,
                          int *h, std::string *why, LoadInfo *info, const BwRowTaker *taker)
{
    LoadInfo local;
    if (!info) info = &local;
    *info = LoadInfo{};
    *bw = nullptr;
    why->clear();
    Source s;
    const LoadStatus status = open_source(name, &s, why);
    if (status != LOAD_OK) return status;
    return black_white(s, o, x, bw, w, h, why, info, taker);
}

LoadStatus LoadBlackWhiteData(const void *data, size_t size, const Options *o, const ExtraOptions *x,
                              unsigned char **bw, int *w, int *h, std::string *why, LoadInfo *info)
{
    LoadInfo local;
    if (!info) info = &local;
    *info = LoadInfo{};
    *bw = nullptr;
    why->clear();
    Source s;
    s.data = (unsigned char *)const_cast<void *>(data);  // only read, never freed: owned is false
    s.owned = false;
    s.size = size;
    s.nhead = size < sizeof s.head ? size : sizeof s.head;
    if (s.nhead) memcpy(s.head, data, s.nhead);
    return black_white(s, o, x, bw, w, h, why, info, nullptr);
}

std::string LoadErrorText(LoadStatus status, const std::string &file, const std::string &why)
{
    if (status == LOAD_NO_FILE) return "Failed to open file \"" + file + "\"";
    if (status == LOAD_NO_MEMORY) return "Failed to create image";
    return why.empty() ? "Image read failed" : "Image read failed: " + why;
}

LoadStatus LoadRGBA(const char *name, BitmapPixel **image, std::string *why, LoadInfo *info)
{
    *info = LoadInfo{};
    why->clear();
    Source s;
    const LoadStatus status = open_source(name, &s, why);
    if (status != LOAD_OK) return status;

    if (DecodeFormatName(s.head, s.nhead)) {
        RgbaBegin b{image, {nullptr, 0}, info};
        const DecodeSink sink = {rgba_begin, rgba_row_of, rgba_column_of, &b};
        return decoded(DecodeImage(s.path, s.data, s.size, &sink, why));
    }
    File f(open_stream(s));
    if (!f) return LOAD_NO_FILE;
    TGA_Info(f.get(), &info->width, &info->height, &info->depth);
    info->has_size = 1;
    Destroy_Bitmap(*image);
    *image = Create_Bitmap(info->width, info->height);
    if (!*image) return LOAD_NO_MEMORY;
    const int code = TGA_Read(f.get(), *image, &info->width, &info->height);
    if (code == TGA_BADTYPE) not_tga(s, why);
    return code == TGA_OK ? LOAD_OK : LOAD_FAILED;
}

int ThresholdByRule(const BitmapPixel *image, size_t n, const Options *o, const ExtraOptions *x,
                    unsigned char *out, int *otsu_level)
{
    *otsu_level = -1;
    if (x->threshold != kThresholdOtsu)
        return ThresholdPixels(image, out, n, ThresholdRule{x->threshold, o->invert}) < 128;
    uint64_t hist[256] = {};
    GreyLevels(image, out, n, hist);
    *otsu_level = OtsuLevel(hist);
    return ThresholdGreyLevels(out, n, *otsu_level + 1, o->invert) < 128;
}
