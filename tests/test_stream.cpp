// Stream helpers: byte orders both ways, line and word input, string
// cleaning and copying, clipping.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "util/stream.h"
#include "util/values.h"
#include "util/vectors.h"

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

static const bool host_little = [] { const uint16_t one = 1; return *(const unsigned char *)&one == 1; }();

TEST(StreamBinary, ReadSwapReversesHostBytes)
{
    FILE *fp = stream_of(string("\x12\x34\x12\x34\x11\x22\x33\x44\xff\xff\xff\xfe\x3f\xc0\0\0", 16));
    short s0 = 0, s1 = 0;
    int i1 = 0;
    long l1 = 0;
    float f1 = 0;
    ASSERT_TRUE(ReadShort(fp, &s1, 1) && ReadShort(fp, &s0, 0) && ReadInt(fp, &i1, 1) &&
                ReadLong(fp, &l1, 1) && ReadFloat(fp, &f1, 1));
    if (host_little) {
        EXPECT_EQ(s1, 0x1234);
        EXPECT_EQ(s0, 0x3412);
        EXPECT_EQ(i1, 0x11223344);
        EXPECT_EQ(l1, -2);  // 4 bytes, sign-extended
        EXPECT_EQ(f1, 1.5f);
    }
    short keep = 77;
    EXPECT_FALSE(ReadShort(fp, &keep, 0));  // end of file: value untouched
    EXPECT_EQ(keep, 77);
    fclose(fp);

    fp = stream_of(string("\x40\x09\x21\xfb\x54\x44\x2d\x18\x01\x02\x03", 11));
    double d = 0;
    unsigned int u = 0;
    ASSERT_TRUE(ReadDouble(fp, &d, host_little));  // big-endian pi
    EXPECT_EQ(d, 3.141592653589793);
    EXPECT_FALSE(ReadUInt(fp, &u, 0));  // only 3 bytes left
    fclose(fp);
}

TEST(StreamBinary, WriteBigEndianOrHost)
{
    FILE *fp = tmpfile();
    EXPECT_TRUE(WriteLong(fp, 0x1122334455L, 1) && WriteULong(fp, 0xffffffffaabbccddUL, 1) &&
                WriteShort(fp, -2, 1) && WriteUShort(fp, 0xabcd, 1) && WriteInt(fp, 0x01020304, 1) &&
                WriteFloat(fp, 1.5f, 1) && WriteDouble(fp, -2.0, 1));
    EXPECT_EQ(contents(fp), string("\x22\x33\x44\x55\xaa\xbb\xcc\xdd\xff\xfe\xab\xcd\x01\x02\x03\x04"
                                   "\x3f\xc0\0\0\xc0\0\0\0\0\0\0\0", 28));
    fclose(fp);

    // swap 0 is the host's order, so it reads back with swap 0 on any host.
    fp = tmpfile();
    WriteInt(fp, -123456, 0);
    WriteDouble(fp, 0.1, 0);
    WriteLong(fp, -5, 0);
    rewind(fp);
    int i = 0;
    double d = 0;
    long l = 0;
    EXPECT_TRUE(ReadInt(fp, &i, 0) && ReadDouble(fp, &d, 0) && ReadLong(fp, &l, 0));
    EXPECT_TRUE(i == -123456 && d == 0.1 && l == -5);
    fclose(fp);
}

TEST(StreamText, ReadLineOnMixedEnds)
{
    FILE *fp = stream_of("ab\r\ncd\n\rlonger line\nx");
    const struct { int ret; const char *want; } lines[] = {
        {1, "ab"}, {1, ""}, {1, "cd"}, {1, ""}, {1, "long"}, {1, "er l"}, {1, "ine"}, {0, "x"}, {0, ""},
    };
    for (const auto &c : lines) {
        char buf[5];  // max + 1
        memset(buf, '#', sizeof buf);
        EXPECT_EQ(ReadLine(fp, buf, 4), c.ret) << c.want;
        EXPECT_STREQ(buf, c.want);
    }
    fclose(fp);
}

TEST(StreamText, UntilStringSkip)
{
    FILE *fp = stream_of(string("key=value;\0\n\x80z|tail", 19));
    char buf[32];
    EXPECT_TRUE(ReadUntil(fp, '=', buf));
    EXPECT_STREQ(buf, "key");
    EXPECT_TRUE(ReadString(fp, buf, 6));
    EXPECT_STREQ(buf, "value;");
    EXPECT_TRUE(ReadString(fp, buf, 4));  // any byte value, NUL and newline included
    EXPECT_EQ(string(buf, 4), string("\0\n\x80z", 4));
    EXPECT_EQ(SkipUntil(fp, '|'), '|');
    EXPECT_FALSE(ReadString(fp, buf, 10));
    EXPECT_STREQ(buf, "tail");
    EXPECT_FALSE(ReadUntil(fp, ';', buf));
    EXPECT_EQ(SkipUntil(fp, '|'), EOF);
    fclose(fp);
    fp = stream_of("abc");
    EXPECT_TRUE(ReadSkip(fp, 0));
    EXPECT_FALSE(ReadSkip(fp, 4));
    fclose(fp);
}

TEST(StreamText, ReadToStringWords)
{
    const string longword(5000, 'w');  // longer than any fixed word buffer
    FILE *fp = stream_of("  HEADER\n" + longword + "\tSECTIONS ENTITIES 7 ENTITIES");
    EXPECT_EQ(ReadToString(fp, "SECTION"), -1);  // a prefix of a word is no match
    rewind(fp);
    EXPECT_EQ(ReadToString(fp, "ENTITIES"), 0);
    EXPECT_EQ(fgetc(fp), ' ');  // left just after the word
    EXPECT_EQ(ReadToString(fp, "ENTITIES"), 0);  // the last word, at end of file
    EXPECT_EQ(ReadToString(fp, "ENTITIES"), -1);
    rewind(fp);
    EXPECT_EQ(ReadToString(fp, longword.c_str()), 0);
    fclose(fp);
}

TEST(StreamStrings, CleanTrimCase)
{
    const struct { const char *in, *want; } clean[] = {
        {"  x\t", "x"}, {"   ", ""}, {"", ""}, {"\x7f\x01 a b \r\n", "a b"},
        {"\xc3\xa9t\xc3\xa9", "t"},  // bytes of 128 and above go at both ends
        {"\xff", ""}, {"a\x80z", "a\x80z"},
    };
    for (const auto &c : clean) {
        char buf[32];
        strcpy(buf, c.in);
        StringClean(buf);
        EXPECT_STREQ(buf, c.want) << "from \"" << c.in << "\"";
    }
    char buf[32] = "tab\t \n  ";
    EXPECT_EQ(RightTrim(buf), 6);
    EXPECT_STREQ(buf, "tab\t \n");
    strcpy(buf, "Hello, World@[\xc4]");
    StrToUpper(buf);
    EXPECT_STREQ(buf, "HELLO, WORLD@[\xc4]");
    StrToLower(buf);
    EXPECT_STREQ(buf, "hello, world@[\xc4]");
}

TEST(StreamStrings, IndexCopyBounds)
{
    const struct { const char *id; int from, to, ret; const char *want; } ic[] = {
        {"icopy-1.1", 1, 3, 1, "ell"}, {"icopy-1.2", 1, 6, 0, ""}, {"icopy-1.3", 3, 1, 1, ""},
        {"icopy-1.4", 0, 4, 1, "hello"}, {"icopy-1.5", 3, 5, 1, "lo"}, {"icopy-1.6", -2, 1, 0, ""},
    };
    for (const auto &c : ic) {
        std::vector<char> dst(8, '#');
        EXPECT_EQ(IndexCopy("hello", dst.data(), c.from, c.to), c.ret) << c.id;
        EXPECT_STREQ(dst.data(), c.want) << c.id;
    }
    // to - from + 2 bytes suffice even when the terminator is copied (the
    // sanitizer build checks the heap block's end).
    std::vector<char> tight(3);
    EXPECT_TRUE(IndexCopy("hello", tight.data(), 4, 5));
    EXPECT_STREQ(tight.data(), "o");
}

TEST(StreamValues, ClipAndBounds)
{
    // ClipInteger(v, lower, upper); ClipDouble(v, upper, lower), lower first.
    const struct { const char *id; double v, a, b; int ret; double want; } clip[] = {
        {"clip-1.1", 5, 0, 3, 1, 3}, {"clip-1.2", -1, 0, 3, 1, 0}, {"clip-1.3", 3, 0, 3, 0, 3},
    };
    for (const auto &c : clip) {
        int iv = (int)c.v;
        double dv = c.v;
        EXPECT_EQ(ClipInteger(&iv, (int)c.a, (int)c.b), c.ret) << c.id;
        EXPECT_EQ(iv, c.want) << c.id;
        EXPECT_EQ(ClipDouble(&dv, c.b, c.a), c.ret) << c.id;
        EXPECT_EQ(dv, c.want) << c.id;
    }
    double dv = 2;
    EXPECT_EQ(ClipDouble(&dv, 0, 3), 1);  // crossed bounds: the lower one wins
    EXPECT_EQ(dv, 3);

    Vec3 lo{1, 1, 1}, hi{1, 1, 1};
    MinMaxXYZ(&lo, &hi, {-2, 5, 1});
    MinMaxXYZ(&lo, &hi, {0, -3, 4});
    EXPECT_TRUE(lo.x == -2 && lo.y == -3 && lo.z == 1 && hi.x == 1 && hi.y == 5 && hi.z == 4);
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
