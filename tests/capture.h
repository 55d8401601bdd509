// Helpers shared by the tests of the file writers: bytes from hex text, what
// a function writes to a stream, the output of a shell command.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

// Parses "01da 00 01": hex digit pairs, blanks ignored.
inline Bytes hx(const std::string &s)
{
    Bytes out;
    std::string digits;
    for (char c : s)
        if (c != ' ') digits += c;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        out.push_back((unsigned char)std::stoi(digits.substr(i, 2), nullptr, 16));
    return out;
}

// Everything fn(FILE *) writes to an in-memory stream, as a T (Bytes or
// std::string); *result gets what fn returned.
template <class T = Bytes, class F> T capture(F fn, int *result = nullptr)
{
    char *buf = nullptr;
    size_t len = 0;
    FILE *f = open_memstream(&buf, &len);
    const int r = fn(f);
    fclose(f);
    if (result) *result = r;
    T out(buf, buf + len);
    free(buf);
    return out;
}

// Standard output of a shell command; *status gets its exit code (-1 when
// it did not exit normally).
inline std::string run(const std::string &cmd, int *status = nullptr)
{
    std::string out;
    FILE *p = popen(cmd.c_str(), "r");
    if (!p) return out;
    for (int ch; (ch = fgetc(p)) != EOF;) out += (char)ch;
    const int st = pclose(p);
    if (status) *status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
    return out;
}
