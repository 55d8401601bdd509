// util/rle.cpp - byte run-length codec.
#include "util/rle.h"

namespace {

constexpr int max_packet = 127;  // longest run or literal the compressor writes

}  // namespace

int RLECompress(unsigned char *out, const unsigned char *in, int n)
{
    int p = 0, len = 0;
    while (p < n) {
        int run = 1;
        while (p + run < n && run < max_packet && in[p + run] == in[p]) run++;
        if (run >= 2) {
            out[len++] = (unsigned char)run;
            out[len++] = in[p];
            p += run;
            continue;
        }
        // A literal runs until three equal bytes in a row end at k, the input
        // ends, or it is max_packet long; a pair inside it stays in it. The
        // triple test starts at p + 2: none can end at p + 1, as in[p] differs
        // from in[p + 1], and in[p - 1] may not exist.
        int k = p + 1;
        while (k < n && k - p < max_packet &&
               !(k - p >= 2 && in[k - 2] == in[k - 1] && in[k - 1] == in[k]))
            k++;
        // Hand the stretch of equal bytes that stopped it to the next packet,
        // a run. in[p] != in[p + 1] here, so at least one byte stays.
        if (k < n)
            while (k > p + 1 && in[k] == in[k - 1]) k--;
        const int lit = k - p;
        out[len++] = (unsigned char)(-lit);
        for (int i = 0; i < lit; i++) out[len++] = in[p + i];
        p = k;
    }
    return len;
}

void RLEUncompress(unsigned char *out, const unsigned char *in, int n)
{
    int left = n;
    while (left > 0) {
        const int c = *in < 128 ? *in : *in - 256;  // the count byte is two's complement
        if (c > 0) {
            for (int i = 0; i < c; i++) *out++ = in[1];
            in += 2;
            left -= c;
        } else if (c < 0) {
            for (int i = 0; i < -c; i++) *out++ = in[1 + i];
            in += 1 - c;
            left += c;
        } else {
            in++;
        }
    }
}
