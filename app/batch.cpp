// app/batch.cpp - the batch driver: a list of images on N threads, rows out
// in list order.
#include "app/batch.h"

#include <atomic>
#include <cmath>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <unistd.h>

#include "app/crop.h"
#include "app/fit.h"
#include "app/load.h"
#include "app/prepare.h"
#include "app/report.h"

namespace {

// %.17g: every double reads back as the same double; empty when not known.
std::string number(double v)
{
    if (std::isnan(v)) return "";
    char buf[40];
    snprintf(buf, sizeof buf, "%.17g", v);
    return buf;
}

// A field quoted only when it holds a comma, a quote or a line break; a
// quote inside is doubled.
std::string field(const std::string &s)
{
    if (s.find_first_of(",\"\r\n") == std::string::npos) return s;
    std::string out = "\"";
    for (char c : s) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

// The names of the list, blank lines skipped. False when it cannot be read.
bool read_list(const std::string &list, std::vector<std::string> *names, std::string *why)
{
    FILE *f = list == "-" ? stdin : fopen(list.c_str(), "r");
    if (!f) {
        *why = "cannot open the list \"" + list + "\": " + strerror(errno);
        return false;
    }
    std::string line;
    for (int c; (c = fgetc(f)) != EOF;) {
        if (c != '\n') {
            line += (char)c;
            continue;
        }
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.find_first_not_of(" \t") != std::string::npos) names->push_back(line);
        line.clear();
    }
    if (!line.empty() && line.find_first_not_of(" \t") != std::string::npos) names->push_back(line);
    const bool ok = !ferror(f);
    if (!ok) *why = "cannot read the list \"" + list + "\": " + strerror(errno);
    if (f != stdin) fclose(f);
    return ok;
}

// Writes text and flushes it, so that a finished row is on disk at once.
bool put(FILE *f, const std::string &text)
{
    return fwrite(text.data(), 1, text.size(), f) == text.size() && fflush(f) == 0;
}

std::string clock_text(double seconds)
{
    char buf[32];
    const long s = lround(seconds);
    if (s >= 3600)
        snprintf(buf, sizeof buf, "%ldh%02ldm", s / 3600, s / 60 % 60);
    else
        snprintf(buf, sizeof buf, "%ldm%02lds", s / 60, s % 60);
    return buf;
}


}  // namespace

BatchRow AnalyseForBatch(const std::string &file, const Options *o, const ExtraOptions *x)
{
    BatchRow r;
    r.file = file;
    auto fail = [&](const std::string &error, const Analysis *a = nullptr, const FitSummary *f = nullptr) {
        r.status = "error";
        r.error = error;
        r.json = JsonBatchLine(file, a, f, r.width, r.height, error);
        return r;
    };
    unsigned char *bw = nullptr;
    int w = 0, h = 0;
    std::string why;
    LoadInfo info;
    // Counted as the rows are read where it can be, so a batch on every core
    // holds no images; the cores are busy, so no second thread per image.
    PreparedCount ready{o, x, file.c_str(), {}};
    CountAsRead counting{ReadyPrepared, &ready, false};
    const BwRowTaker taker = CountAsReadTaker(&counting);
    const LoadStatus status = LoadBlackWhite(file.c_str(), o, x, &bw, &w, &h, &why, &info, &taker);
    const bool counted = CountAsReadDone(&counting, status);
    if (info.has_size) r.width = info.width, r.height = info.height;
    if (status != LOAD_OK) return fail(LoadErrorText(status, file, why));

    AnalysisPtr a;
    if (counted) {
        a = std::move(ready.a);
        if (a->black == 0) return fail("no black pixels in the analysed region");
        if (a->failed) return fail("Out of memory while counting boxes");
    } else {
        int start = 0;
        switch (PrepareAnalysis(bw, w, h, o, x, file.c_str(), &a, &start)) {
        case PREPARE_OK: break;
        case PREPARE_NO_MEMORY: return fail("Failed to create image");
        case PREPARE_NO_BLACK: return fail("no black pixels in the analysed region");
        case PREPARE_CANNOT_FINISH:
            return fail("the start box size is " + std::to_string(start) +
                        ": the analysis cannot finish; give a start size with -b1");
        }
        if (!RunAnalysis(a.get())) return fail("Out of memory while counting boxes");
    }
    FitSummary f;
    SummariseFit(a.get(), &f);
    const LineFit &l = f.line;
    r.status = "ok";
    r.black_pixels = BlackPixelsInRegion(a.get());
    r.sizes = (int)f.sizes.size();
    r.dimension = f.dimension;
    r.intercept = l.fitted ? l.intercept : NAN;
    r.r2 = l.fitted ? l.r2 : NAN;
    r.stderr_ = l.has_interval ? l.stderr_slope : NAN;
    r.ci95_low = l.has_interval ? l.ci_low : NAN;
    r.ci95_high = l.has_interval ? l.ci_high : NAN;
    r.seed = a->seed;
    r.json = JsonBatchLine(file, a.get(), &f, r.width, r.height, "");
    return r;
}

std::string CsvHeader(void)
{
    return "file,status,width,height,black_pixels,sizes,dimension,intercept,r2,stderr,ci95_low,"
           "ci95_high,seed,error\r\n";
}

std::string CsvRow(const BatchRow &r)
{
    const bool ok = r.status == "ok";
    auto num = [&](double v) { return ok ? number(v) : std::string(); };
    std::string s = field(r.file) + "," + r.status + ",";
    s += (r.width || r.height ? std::to_string(r.width) + "," + std::to_string(r.height) : ",") + ",";
    s += (ok ? std::to_string(r.black_pixels) + "," + std::to_string(r.sizes) : ",") + ",";
    s += num(r.dimension) + "," + num(r.intercept) + "," + num(r.r2) + "," + num(r.stderr_) + ",";
    s += num(r.ci95_low) + "," + num(r.ci95_high) + ",";
    s += (ok ? std::to_string(r.seed) : "") + "," + field(r.error) + "\r\n";
    return s;
}

int RunBatch(const Options *o, const ExtraOptions *x)
{
    std::vector<std::string> names;
    std::string why;
    if (!read_list(x->batch, &names, &why)) {
        fprintf(stderr, "quorl: %s\n", why.c_str());
        return 2;
    }
    FILE *csv = stdout, *jsonl = nullptr;
    if (!x->csv.empty() && x->csv != "-" && !(csv = fopen(x->csv.c_str(), "w"))) {
        fprintf(stderr, "quorl: cannot write the table \"%s\": %s\n", x->csv.c_str(), strerror(errno));
        return 2;
    }
    if (!x->jsonl.empty() && !(jsonl = x->jsonl == "-" ? stdout : fopen(x->jsonl.c_str(), "w"))) {
        fprintf(stderr, "quorl: cannot write \"%s\": %s\n", x->jsonl.c_str(), strerror(errno));
        return 2;
    }
    const bool csv_out = jsonl != stdout;  // JSON lines on standard output replace the table there
    bool write_failed = csv_out && !put(csv, CsvHeader());

    const size_t n = names.size();
    std::vector<BatchRow> rows(n);
    std::vector<char> done(n, 0);
    std::mutex m;
    std::condition_variable cv;
    std::atomic<size_t> next{0};
    auto work = [&] {
        for (size_t i; (i = next++) < n;) {
            BatchRow r = AnalyseForBatch(names[i], o, x);
            std::lock_guard<std::mutex> lock(m);
            rows[i] = std::move(r);
            done[i] = 1;
            cv.notify_one();
        }
    };
    int jobs = x->jobs > 0 ? x->jobs : (int)std::thread::hardware_concurrency();
    if (jobs < 1) jobs = 1;
    if ((size_t)jobs > n) jobs = (int)(n ? n : 1);
    std::vector<std::thread> workers;
    workers.reserve((size_t)jobs);
    for (int j = 0; j < jobs; j++) workers.emplace_back(work);

    // Rows go out in list order as soon as they and all before them are done.
    const bool progress = isatty(2);
    const auto t0 = std::chrono::steady_clock::now();
    int failed = 0;
    for (size_t i = 0; i < n; i++) {
        BatchRow r;
        {
            std::unique_lock<std::mutex> lock(m);
            cv.wait(lock, [&] { return done[i] != 0; });
            r = std::move(rows[i]);
        }
        if (r.status != "ok") failed = 1;
        if (!write_failed && csv_out && !put(csv, CsvRow(r))) write_failed = true;
        if (!write_failed && jsonl && !put(jsonl, r.json + "\n")) write_failed = true;
        if (progress) {
            const double t = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
            const double rate = (double)(i + 1) / (t > 0 ? t : 1e-9);
            fprintf(stderr, "\r%zu of %zu images, %.1f a second, %s left   ", i + 1, n, rate,
                    clock_text((double)(n - i - 1) / rate).c_str());
        }
    }
    for (auto &w : workers) w.join();
    if (progress) fprintf(stderr, "\n");
    if (csv != stdout && fclose(csv) != 0) write_failed = true;
    if (jsonl && jsonl != stdout && fclose(jsonl) != 0) write_failed = true;
    if (write_failed) {
        fprintf(stderr, "quorl: the results could not all be written: %s\n", strerror(errno ? errno : EIO));
        return 2;
    }
    return failed;
}
