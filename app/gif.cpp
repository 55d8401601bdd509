// app/gif.cpp - GIF frames through giflib, a line at a time.
#include "app/gif.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <gif_lib.h>

namespace {

struct Input {  // where giflib reads from: a file, or bytes in memory
    FILE *file = nullptr;
    const unsigned char *data = nullptr;
    size_t size = 0, at = 0;
};

int read_input(GifFileType *gif, GifByteType *buf, int n)
{
    Input *in = (Input *)gif->UserData;
    if (in->file) return (int)fread(buf, 1, (size_t)n, in->file);
    const size_t got = std::min((size_t)n, in->size - in->at);
    memcpy(buf, in->data + in->at, got);
    in->at += got;
    return (int)got;
}

struct Close {
    void operator()(GifFileType *g) const { DGifCloseFile(g, nullptr); }
};

std::string damaged(int error)
{
    if (error == D_GIF_ERR_READ_FAILED || error == D_GIF_ERR_EOF_TOO_SOON)
        return "this GIF file is truncated: it ends before its image data does";
    const char *what = GifErrorString(error);
    return std::string("this GIF file is damaged and cannot be decoded") + (what ? std::string(" (") + what + ")" : "");
}

}  // namespace

int DecodeGif(const char *name, const void *data, size_t size, const DecodeSink *sink, std::string *why)
{
    Input in;
    std::unique_ptr<FILE, int (*)(FILE *)> file(name ? fopen(name, "rb") : nullptr, [](FILE *f) {
        return f ? fclose(f) : 0;
    });
    if (name && !file) return *why = "the GIF file cannot be opened", DECODE_FAILED;
    in.file = file.get();
    in.data = (const unsigned char *)data;
    in.size = size;

    int error = 0;
    std::unique_ptr<GifFileType, Close> gif(DGifOpen(&in, read_input, &error));
    if (!gif) return *why = damaged(error), DECODE_FAILED;

    // Up to the first image: its graphics control block says which index,
    // if any, is transparent.
    int transparent = NO_TRANSPARENT_COLOR;
    for (;;) {
        GifRecordType type;
        if (DGifGetRecordType(gif.get(), &type) == GIF_ERROR) return *why = damaged(gif->Error), DECODE_FAILED;
        if (type == IMAGE_DESC_RECORD_TYPE) break;
        if (type == TERMINATE_RECORD_TYPE) return *why = "this GIF file holds no image", DECODE_FAILED;
        if (type != EXTENSION_RECORD_TYPE) continue;
        int code;
        GifByteType *block;
        if (DGifGetExtension(gif.get(), &code, &block) == GIF_ERROR) return *why = damaged(gif->Error), DECODE_FAILED;
        if (code == GRAPHICS_EXT_FUNC_CODE && block && block[0] >= 4) {
            GraphicsControlBlock gcb;
            if (DGifExtensionToGCB(block[0], block + 1, &gcb) == GIF_OK) transparent = gcb.TransparentColor;
        }
        while (block)
            if (DGifGetExtensionNext(gif.get(), &block) == GIF_ERROR) return *why = damaged(gif->Error), DECODE_FAILED;
    }
    if (DGifGetImageDesc(gif.get()) == GIF_ERROR) return *why = damaged(gif->Error), DECODE_FAILED;

    const GifImageDesc &f = gif->Image;
    const ColorMapObject *map = f.ColorMap ? f.ColorMap : gif->SColorMap;
    if (f.Width < 1 || f.Height < 1 || f.Left < 0 || f.Top < 0) return *why = damaged(D_GIF_ERR_IMAGE_DEFECT), DECODE_FAILED;
    // The screen, grown to hold the frame should it reach beyond it.
    const int w = std::max<int>(gif->SWidth, f.Left + f.Width), h = std::max<int>(gif->SHeight, f.Top + f.Height);
    const BitmapPixel white = {255, 255, 255, 255};
    std::vector<BitmapPixel> colours(256, BitmapPixel{0, 0, 0, 255});
    for (int i = 0; map && i < map->ColorCount && i < 256; i++)
        colours[i] = BitmapPixel{map->Colors[i].Red, map->Colors[i].Green, map->Colors[i].Blue, 255};
    if (transparent >= 0 && transparent < 256) colours[transparent] = white;
    // Rows come from the top down only when the frame fills the screen and is
    // not interlaced.
    const bool in_order = !f.Interlace && f.Top == 0 && f.Height == h;
    if (!sink->begin(sink->ctx, w, h, transparent >= 0 ? 32 : 24, in_order ? ROWS_DOWNWARD : ROWS_ANY_ORDER))
        return DECODE_NOMEMORY;

    std::vector<BitmapPixel> row((size_t)w, white);
    for (int y = 0; y < h; y++)  // the screen off the frame, above and below it
        if (y < f.Top || y >= f.Top + f.Height) sink->row(sink->ctx, h - 1 - y, row.data());
    // An interlaced frame comes in four passes: every 8th line from 0, every
    // 8th from 4, every 4th from 2, every 2nd from 1.
    const int first[] = {0, 4, 2, 1}, step[] = {8, 8, 4, 2};
    std::vector<GifPixelType> line((size_t)f.Width);
    for (int pass = 0; pass < (f.Interlace ? 4 : 1); pass++)
        for (int j = f.Interlace ? first[pass] : 0; j < f.Height; j += f.Interlace ? step[pass] : 1) {
            if (DGifGetLine(gif.get(), line.data(), f.Width) == GIF_ERROR)
                return *why = damaged(gif->Error), DECODE_FAILED;
            for (int i = 0; i < f.Width; i++) row[(size_t)f.Left + i] = colours[line[i]];
            sink->row(sink->ctx, h - 1 - (f.Top + j), row.data());
        }
    return DECODE_OK;
}
