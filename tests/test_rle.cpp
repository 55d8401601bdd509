// Run-length codec: the packet bytes the compressor chooses, round trips
// within the worst-case size, and the buffer sizes rle.h promises.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "util/rle.h"

using Bytes = std::vector<unsigned char>;

static Bytes compress(const Bytes &in)
{
    Bytes out(in.size() + in.size() / 127 + 1);  // the stated worst case, exactly
    out.resize(RLECompress(out.data(), in.data(), (int)in.size()));
    return out;
}

static Bytes pattern(const char *s)
{
    return Bytes(s, s + strlen(s));
}

TEST(Rle, PacketBytes)
{
    Bytes alt126;
    for (int i = 0; i < 126; i++) alt126.push_back((unsigned char)(i & 1));
    Bytes limit = alt126;  // a literal at its 127-byte limit hands a pair on
    for (unsigned char b : {7, 7, 9}) limit.push_back(b);
    Bytes limit_want = {0x82};
    limit_want.insert(limit_want.end(), alt126.begin(), alt126.end());
    for (unsigned char b : {0x02, 0x07, 0xff, 0x09}) limit_want.push_back(b);

    const struct { const char *id; Bytes in, want; } cases[] = {
        {"rle-1.1", pattern("AAAAB"), {0x04, 0x41, 0xff, 0x42}},
        {"rle-1.2", Bytes(300, 0), {0x7f, 0, 0x7f, 0, 0x2e, 0}},
        {"rle-1.4", pattern("ABBC"), {0xfc, 'A', 'B', 'B', 'C'}},
        {"rle-1.5", pattern("ABBB"), {0xff, 'A', 0x03, 'B'}}, {"rle-1.6", pattern("A"), {0xff, 'A'}},
        {"rle-1.8", pattern("ABB"), {0xfd, 'A', 'B', 'B'}},  // a trailing pair stays
        {"rle-1.9", pattern("AABCCCD"), {0x02, 'A', 0xff, 'B', 0x03, 'C', 0xff, 'D'}},
        {"rle-1.10", Bytes(128, 5), {0x7f, 5, 0xff, 5}}, {"rle-1.11", limit, limit_want},
    };
    for (const auto &c : cases) EXPECT_EQ(compress(c.in), c.want) << c.id;

}

TEST(Rle, RoundTripsWithinWorstCase)
{
    // Byte sources from incompressible to run-heavy; alphabets of 2 and 3
    // make pairs and triples that cut literals short.
    std::mt19937 gen(1234);
    const int alphabets[] = {256, 3, 2, 1};
    const int lengths[] = {0, 1, 2, 127, 128, 129, 255, 1000, 16257};
    for (int alpha : alphabets) {
        std::uniform_int_distribution<int> pick(0, alpha - 1);
        for (int n : lengths) {
            for (int rep = 0; rep < 5; rep++) {
                Bytes in(n);
                for (auto &b : in) b = (unsigned char)pick(gen);
                const Bytes packed = compress(in);
                ASSERT_LE(packed.size(), in.size() + in.size() / 127 + 1) << alpha << " " << n;
                // Well-formed: runs of 2..127, literals of 1..127, no empty packets.
                for (size_t i = 0; i < packed.size();) {
                    const int c = packed[i] < 128 ? packed[i] : packed[i] - 256;  // signed count byte
                    ASSERT_TRUE((c >= 2) || (c <= -1 && c >= -127)) << alpha << " " << n << " @" << i;
                    i += c > 0 ? 2 : 1 - c;
                }
                Bytes back(n + 1, 0xee);  // n, and a guard: a complete stream needs no slack
                RLEUncompress(back.data(), packed.data(), n);
                in.push_back(0xee);
                ASSERT_EQ(back, in) << "alphabet " << alpha << " n " << n << " rep " << rep;
            }
        }
    }
}

TEST(Rle, UncompressBounds)
{
    const unsigned char empty_then_run[] = {0x00, 0x03, 'A'};
    unsigned char out[4] = {0, 0, 0, 0};
    RLEUncompress(out, empty_then_run, 3);  // an empty literal is skipped
    EXPECT_EQ(Bytes(out, out + 4), Bytes({'A', 'A', 'A', 0}));

    // Decoding a prefix writes the last packet whole: at most n + 127 bytes,
    // the worst being a 0x80 literal (128 bytes) when one byte is wanted.
    Bytes lit128(129, 'q');
    lit128[0] = 0x80;
    const struct { const char *id; Bytes in; int n; size_t written; } pre[] = {
        {"unrle-1.1", {0x7f, 'x'}, 1, 127},
        {"unrle-1.3", {0xfd, 'a', 'b', 'c', 0x02, 'z'}, 2, 3},
        {"unrle-1.4", lit128, 1, 128},
    };
    for (const auto &c : pre) {
        Bytes buf(c.n + 127 + 8, 0xee);  // stated room, then guard bytes
        RLEUncompress(buf.data(), c.in.data(), c.n);
        size_t used = buf.size();
        while (used > 0 && buf[used - 1] == 0xee) used--;
        EXPECT_EQ(used, c.written) << c.id;
    }
}
