// Test helpers: bytes from hex text, what a function writes to a stream, and the output of a program.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

inline Bytes hx(const std::string &s)  // "01da 00 01": hex digit pairs, blanks ignored
{
    Bytes out;
    for (size_t i = 0; i < s.size(); i++)
        if (s[i] != ' ') out.push_back((unsigned char)std::stoi(s.substr(i++, 2), nullptr, 16));
    return out;
}

// Everything fn(FILE *) writes, as a T (Bytes or std::string); *result gets fn's result.
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

// Standard output of a shell command; *status gets its exit code (-1 when it did not exit). Callers assert
// status 0, so a reader scripts/setup.sh installs that is missing fails the case.
inline std::string run(const std::string &cmd, int *status)
{
    std::string out;
    FILE *p = popen(cmd.c_str(), "r");
    if (!p) return *status = -1, out;
    for (int ch; (ch = fgetc(p)) != EOF;) out += (char)ch;
    const int st = pclose(p);
    *status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
    return out;
}
