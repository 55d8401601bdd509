// Stream helpers: byte orders both ways, line and word input, string cleaning and copying; util/values.h.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "util/stream.h"
#include "util/values.h"

using std::string;

static FILE *stream_of(const string &bytes)  // a temporary stream holding bytes, rewound
{
    FILE *fp = tmpfile();
    fwrite(bytes.data(), 1, bytes.size(), fp);
    rewind(fp);
    return fp;
}

TEST(Stream, BinaryBigEndianBothWaysAndHostOrder)
{
    FILE *fp = tmpfile();
    EXPECT_TRUE(WriteLong(fp, 0x1122334455L, 1) && WriteULong(fp, 0xffffffffaabbccddUL, 1) && WriteShort(fp, -2, 1)
                && WriteUShort(fp, 0xabcd, 1) && WriteInt(fp, 0x01020304, 1) && WriteFloat(fp, 1.5f, 1)
                && WriteDouble(fp, -2.0, 1));
    char got[29] = {};
    rewind(fp);
    EXPECT_EQ(string(got, fread(got, 1, sizeof got, fp)),
              string("\x22\x33\x44\x55\xaa\xbb\xcc\xdd\xff\xfe\xab\xcd\x01\x02\x03\x04\x3f\xc0\0\0\xc0\0\0\0\0\0\0\0",
                     28));
    const uint16_t one = 1;  // swap reverses the bytes as they lie: for a big-endian file on a little-endian host
    const int swap = *(const unsigned char *)&one;
    long l = 0, l2 = 0;
    short s = 0, keep = 77;
    unsigned short us = 0;
    unsigned u = 0;
    int i = 0;
    float f = 0;
    double d = 0;
    rewind(fp);
    ASSERT_TRUE(ReadLong(fp, &l, swap) && ReadLong(fp, &l2, swap) && ReadShort(fp, &s, swap)
                && ReadUShort(fp, &us, swap) && ReadInt(fp, &i, swap) && ReadFloat(fp, &f, swap)
                && ReadDouble(fp, &d, swap));
    EXPECT_TRUE(l == 0x22334455 && l2 == (long)(int)0xaabbccdd && s == -2 && us == 0xabcd && i == 0x01020304
                && f == 1.5f && d == -2.0);  // ReadLong sign-extends its 4 bytes
    EXPECT_TRUE(!ReadShort(fp, &keep, 0) && keep == 77);  // end of file: value untouched
    rewind(fp);  // swap 0 is the host's order: it reads back with swap 0 on any host
    EXPECT_TRUE(WriteInt(fp, -123456, 0) && WriteDouble(fp, 0.1, 0) && WriteUInt(fp, 7u, 0));
    rewind(fp);
    EXPECT_TRUE(ReadInt(fp, &i, 0) && ReadDouble(fp, &d, 0) && ReadUInt(fp, &u, 0) && i == -123456 && d == 0.1 && u);
    fclose(fp);
}

TEST(Stream, TextInput)
{
    FILE *fp = stream_of("ab\r\ncd\n\rlonger line\nx");
    for (auto [ret, want] : {std::pair{1, "ab"}, {1, ""}, {1, "cd"}, {1, ""}, {1, "long"}, {1, "er l"}, {1, "ine"},
                             {0, "x"}, {0, ""}}) {
        char buf[5];  // max + 1
        EXPECT_TRUE(ReadLine(fp, buf, 4) == ret && !strcmp(buf, want)) << want;
    }
    fclose(fp);
    fp = stream_of(string("key=value;\0\n\x80z|tail", 19));
    char buf[32];
    EXPECT_TRUE(ReadUntil(fp, '=', buf) && !strcmp(buf, "key") && ReadString(fp, buf, 6) && !strcmp(buf, "value;"));
    EXPECT_TRUE(ReadString(fp, buf, 4) && string(buf, 4) == string("\0\n\x80z", 4));  // any byte value
    EXPECT_TRUE(SkipUntil(fp, '|') == '|' && !ReadString(fp, buf, 10) && !strcmp(buf, "tail"));
    EXPECT_TRUE(!ReadUntil(fp, ';', buf) && SkipUntil(fp, '|') == EOF && !ReadSkip(fp, 1));
    fclose(fp);
    const string longword(5000, 'w');  // longer than any fixed word buffer
    fp = stream_of("  HEADER\n" + longword + "\tSECTIONS ENTITIES 7 ENTITIES");
    EXPECT_EQ(ReadToString(fp, "SECTION"), -1);  // a prefix of a word is no match
    rewind(fp);
    EXPECT_TRUE(ReadToString(fp, longword.c_str()) == 0 && ReadToString(fp, "ENTITIES") == 0 && fgetc(fp) == ' ');
    EXPECT_EQ(ReadToString(fp, "ENTITIES"), 0);  // the last word, at end of file
    fclose(fp);
}

TEST(Stream, StringsFilesAndValues)
{
    for (auto [in, want] :
         {std::pair{"   ", ""}, {"\x7f\x01 a b \r\n", "a b"}, {"\xc3\xa9t\xc3\xa9", "t"}, {"a\x80z", "a\x80z"}}) {
        char buf[32];
        StringClean(strcpy(buf, in));
        EXPECT_STREQ(buf, want) << "from \"" << in << "\"";
    }
    char buf[32] = "tab\t \n  ";
    EXPECT_TRUE(RightTrim(buf) == 6 && !strcmp(buf, "tab\t \n"));
    StrToUpper(strcpy(buf, "Hello, World@[\xc4]"));
    EXPECT_STREQ(buf, "HELLO, WORLD@[\xc4]");
    EXPECT_STREQ((StrToLower(buf), buf), "hello, world@[\xc4]");
    for (auto [from, to, ret, want] : {std::tuple{1, 3, 1, "ell"}, {1, 6, 0, ""}, {3, 1, 1, ""}, {-2, 1, 0, ""}}) {
        std::vector<char> dst((size_t)std::max(to - from + 2, 1), '#');  // the room IndexCopy states
        EXPECT_TRUE(IndexCopy("hello", dst.data(), from, to) == ret && !strcmp(dst.data(), want)) << from << ".." << to;
    }
    char name[] = "quorl_echoXXXXXX";  // in the working (build) directory
    const int fd = mkstemp(name);
    FILE *out = tmpfile();
    ASSERT_TRUE(fd >= 0 && write(fd, "bin\0\xff\r\n", 7) == 7 && !close(fd) && EchoFile(name, out) && !remove(name));
    EXPECT_TRUE(!EchoFile(name, out) && ftell(out) == 7);  // gone: nothing more is written
    fclose(out);
    // ClipInteger(v, lower, upper); ClipDouble(v, upper, lower), the lower bound tested first.
    for (auto [v, ret, want] : {std::tuple{5, 1, 3}, {-1, 1, 0}, {3, 0, 3}}) {
        int iv = v;
        double dv = v;
        EXPECT_TRUE(ClipInteger(&iv, 0, 3) == ret && iv == want && ClipDouble(&dv, 3, 0) == ret && dv == want) << v;
    }
    double a = 2, b = 5;
    EXPECT_TRUE(ClipDouble(&a, 0, 3) == 1 && a == 3);  // crossed bounds: the lower one wins
    EXPECT_TRUE((SwapDouble(&a, &b), a == 5 && b == 3));
}
