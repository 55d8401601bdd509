// Stream helpers: byte orders both ways, line and word input, string
// cleaning and copying; the value helpers of util/values.h.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "util/stream.h"
#include "util/values.h"

using std::string;

// A temporary stream holding the given bytes, rewound.
static FILE *stream_of(const string &bytes)
{
    FILE *fp = tmpfile();
    fwrite(bytes.data(), 1, bytes.size(), fp);
    rewind(fp);
    return fp;
}

static string contents(FILE *fp)
{
    rewind(fp);
    string s;
    for (int c; (c = fgetc(fp)) != EOF;) s += (char)c;
    return s;
}

TEST(StreamBinary, BigEndianBothWaysAndHostOrderRoundTrip)
{
    FILE *fp = tmpfile();
    EXPECT_TRUE(WriteLong(fp, 0x1122334455L, 1) && WriteULong(fp, 0xffffffffaabbccddUL, 1) &&
                WriteShort(fp, -2, 1) && WriteUShort(fp, 0xabcd, 1) && WriteInt(fp, 0x01020304, 1) &&
                WriteFloat(fp, 1.5f, 1) && WriteDouble(fp, -2.0, 1));
    const string be("\x22\x33\x44\x55\xaa\xbb\xcc\xdd\xff\xfe\xab\xcd\x01\x02\x03\x04\x3f\xc0\0\0\xc0\0\0\0\0\0\0\0", 28);
    EXPECT_EQ(contents(fp), be);
    fclose(fp);
    // Read with swap: the bytes as they lie, reversed; a big-endian file needs it on a little-endian host.
    const uint16_t one = 1;
    const int swap = *(const unsigned char *)&one == 1;
    fp = stream_of(be);
    long l = 0, l2 = 0;
    short s = 0;
    unsigned short us = 0;
    int i = 0;
    float f = 0;
    double d = 0;
    ASSERT_TRUE(ReadLong(fp, &l, swap) && ReadLong(fp, &l2, swap) && ReadShort(fp, &s, swap) &&
                ReadUShort(fp, &us, swap) && ReadInt(fp, &i, swap) && ReadFloat(fp, &f, swap) && ReadDouble(fp, &d, swap));
    EXPECT_TRUE(l == 0x22334455 && l2 == (long)(int)0xaabbccdd && s == -2 && us == 0xabcd && i == 0x01020304 &&
                f == 1.5f && d == -2.0);  // ReadLong sign-extends its 4 bytes
    short keep = 77;
    EXPECT_FALSE(ReadShort(fp, &keep, 0));  // end of file: value untouched
    EXPECT_EQ(keep, 77);
    fclose(fp);
    // swap 0 is the host's order: it reads back with swap 0 on any host.
    fp = tmpfile();
    EXPECT_TRUE(WriteInt(fp, -123456, 0) && WriteDouble(fp, 0.1, 0) && WriteUInt(fp, 7u, 0));
    rewind(fp);
    unsigned u = 0;
    EXPECT_TRUE(ReadInt(fp, &i, 0) && ReadDouble(fp, &d, 0) && ReadUInt(fp, &u, 0));
    EXPECT_TRUE(i == -123456 && d == 0.1 && u == 7);
    fclose(fp);
}

TEST(StreamText, LinesWordsAndStretches)
{
    FILE *fp = stream_of("ab\r\ncd\n\rlonger line\nx");
    const struct { int ret; const char *want; } lines[] = {
        {1, "ab"}, {1, ""}, {1, "cd"}, {1, ""}, {1, "long"}, {1, "er l"}, {1, "ine"}, {0, "x"}, {0, ""},
    };
    for (const auto &c : lines) {
        char buf[5];  // max + 1
        EXPECT_EQ(ReadLine(fp, buf, 4), c.ret) << c.want;
        EXPECT_STREQ(buf, c.want);
    }
    fclose(fp);

    fp = stream_of(string("key=value;\0\n\x80z|tail", 19));
    char buf[32];
    EXPECT_TRUE(ReadUntil(fp, '=', buf) && !strcmp(buf, "key"));
    EXPECT_TRUE(ReadString(fp, buf, 6) && !strcmp(buf, "value;"));
    EXPECT_TRUE(ReadString(fp, buf, 4));  // any byte value, NUL and newline included
    EXPECT_EQ(string(buf, 4), string("\0\n\x80z", 4));
    EXPECT_EQ(SkipUntil(fp, '|'), '|');
    EXPECT_TRUE(!ReadString(fp, buf, 10) && !strcmp(buf, "tail"));
    EXPECT_FALSE(ReadUntil(fp, ';', buf));
    EXPECT_EQ(SkipUntil(fp, '|'), EOF);
    EXPECT_FALSE(ReadSkip(fp, 1));
    fclose(fp);

    const string longword(5000, 'w');  // longer than any fixed word buffer
    fp = stream_of("  HEADER\n" + longword + "\tSECTIONS ENTITIES 7 ENTITIES");
    EXPECT_EQ(ReadToString(fp, "SECTION"), -1);  // a prefix of a word is no match
    rewind(fp);
    EXPECT_EQ(ReadToString(fp, longword.c_str()), 0);
    EXPECT_EQ(ReadToString(fp, "ENTITIES"), 0);
    EXPECT_EQ(fgetc(fp), ' ');  // left just after the word
    EXPECT_EQ(ReadToString(fp, "ENTITIES"), 0);  // the last word, at end of file
    fclose(fp);
}

TEST(StreamStrings, CleanTrimCaseCopy)
{
    const struct { const char *in, *want; } clean[] = {
        {"   ", ""}, {"\x7f\x01 a b \r\n", "a b"}, {"\xc3\xa9t\xc3\xa9", "t"}, {"a\x80z", "a\x80z"},
    };
    for (const auto &c : clean) {
        char buf[32];
        strcpy(buf, c.in);
        StringClean(buf);
        EXPECT_STREQ(buf, c.want) << "from \"" << c.in << "\"";
    }
    char buf[32] = "tab\t \n  ";
    EXPECT_TRUE(RightTrim(buf) == 6 && !strcmp(buf, "tab\t \n"));
    strcpy(buf, "Hello, World@[\xc4]");
    StrToUpper(buf);
    EXPECT_STREQ(buf, "HELLO, WORLD@[\xc4]");
    StrToLower(buf);
    EXPECT_STREQ(buf, "hello, world@[\xc4]");

    const struct { int from, to, ret; const char *want; } ic[] = {
        {1, 3, 1, "ell"}, {1, 6, 0, ""}, {3, 1, 1, ""}, {3, 5, 1, "lo"}, {-2, 1, 0, ""},
    };
    for (const auto &c : ic) {
        std::vector<char> dst(8, '#');
        EXPECT_EQ(IndexCopy("hello", dst.data(), c.from, c.to), c.ret) << c.from << ".." << c.to;
        EXPECT_STREQ(dst.data(), c.want) << c.from << ".." << c.to;
    }
    std::vector<char> tight(3);  // to - from + 2 bytes, terminator copied (checked by the sanitizer build)
    EXPECT_TRUE(IndexCopy("hello", tight.data(), 4, 5) && !strcmp(tight.data(), "o"));
}

TEST(StreamFiles, EchoFile)
{
    const string bytes("bin\0\xff\r\n", 7);
    char name[] = "quorl_echoXXXXXX";  // in the working (build) directory
    const int fd = mkstemp(name);
    ASSERT_GE(fd, 0);
    FILE *in = fdopen(fd, "wb");
    fwrite(bytes.data(), 1, bytes.size(), in);
    fclose(in);
    FILE *out = tmpfile();
    EXPECT_TRUE(EchoFile(name, out));
    remove(name);
    EXPECT_FALSE(EchoFile(name, out));  // gone: nothing more is written
    EXPECT_EQ(contents(out), bytes);
    fclose(out);
}

TEST(Values, ClipAndSwap)
{
    // ClipInteger(v, lower, upper); ClipDouble(v, upper, lower), the lower bound tested first.
    const struct { double v, lo, hi; int ret; double want; } clip[] = {{5, 0, 3, 1, 3}, {-1, 0, 3, 1, 0}, {3, 0, 3, 0, 3}};
    for (const auto &c : clip) {
        int iv = (int)c.v;
        double dv = c.v;
        EXPECT_TRUE(ClipInteger(&iv, (int)c.lo, (int)c.hi) == c.ret && iv == c.want) << c.v;
        EXPECT_TRUE(ClipDouble(&dv, c.hi, c.lo) == c.ret && dv == c.want) << c.v;
    }
    double a = 2, b = 5;
    EXPECT_TRUE(ClipDouble(&a, 0, 3) == 1 && a == 3);  // crossed bounds: the lower one wins
    SwapDouble(&a, &b);
    EXPECT_TRUE(a == 5 && b == 3);
}
