// app/results.cpp - the results table.
#include "app/results.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <vector>

#include "app/boxcount.h"
#include "app/fit.h"
#include "app/plot.h"
#include "app/report.h"

const char *(*results_choosefile)(const char *prompt) = nullptr;

void WriteResultsOf(const BoxResult *table, int n, FILE *out)
{
    // done[i]: entry i is written already, or takes no part (no boxes).
    std::vector<char> done((size_t)n);
    for (int i = 0; i < n; i++) done[i] = !(table[i].size > 0 && table[i].count > 0);
    for (int i = 0; i < n; i++) {
        if (done[i]) continue;
        double m = 1e32;
        for (int j = i; j < n; j++) {
            if (done[j] || table[j].size != table[i].size) continue;
            if (table[j].count < m) m = table[j].count;
            done[j] = 1;
        }
        fprintf(out, "%d %g %g %g\n", table[i].size, m, log(1.0 / table[i].size), log(m));
    }
}

void WriteResults(FILE *out)
{
    WriteResultsOf(results, nresults, out);
    // Every entry ends marked, as the table's scratch field promises.
    for (int i = 0; i < nresults; i++) results[i].done = 1;
}

void SaveResults(void)
{
    if (nresults < 4) return;
    if (options.quiet) {
        // Flushed here so that a full disk or a closed pipe is reported now,
        // while the table is still the last thing written.
        errno = 0;
        WriteResults(stdout);
        if (fflush(stdout) != 0 || ferror(stdout))
            fprintf(stderr, "Failed to write results to standard output: %s\n",
                    strerror(errno ? errno : EIO));
        return;
    }
    const char *chosen = results_choosefile ? results_choosefile("Results file") : nullptr;
    if (!chosen || !*chosen) return;

    char name[256];
    if (strlen(chosen) >= sizeof name) {
        fprintf(stderr, "Results file name too long (%zu characters, at most %zu)\n",
                strlen(chosen), sizeof name - 1);
        return;
    }
    snprintf(name, sizeof name, "%s", chosen);
    FILE *f = fopen(name, "w");
    if (!f) {
        fprintf(stderr, "Failed to open results file \"%s\": %s\n", name, strerror(errno));
        return;
    }
    // A write can fail early (the error flag stays set) or only when the
    // buffer is flushed at the close; either way the file is incomplete.
    errno = 0;
    WriteResults(f);
    const bool failed = fflush(f) != 0 || ferror(f);
    int err = errno;
    const bool closefailed = fclose(f) != 0;
    if (!failed && !closefailed) return;
    if (!failed) err = errno;
    fprintf(stderr, "Failed to write results file \"%s\": %s\n", name, strerror(err ? err : EIO));
}

int SaveReports(const Analysis *a)
{
    const ExtraOptions *x = a->ext;
    if (x->json.empty() && x->plot.empty()) return 1;
    FitSummary fit;
    SummariseFit(a, &fit);
    int ok = 1;
    if (!x->json.empty()) {
        const std::string text = JsonReport(a, &fit);
        const bool out = x->json == "-";
        errno = 0;
        FILE *f = out ? stdout : fopen(x->json.c_str(), "w");
        if (!f || fwrite(text.data(), 1, text.size(), f) != text.size() || fflush(f) != 0 || ferror(f) ||
            (!out && fclose(f) != 0)) {
            fprintf(stderr, "Failed to write the JSON report to %s: %s\n",
                    out ? "standard output" : ("\"" + x->json + "\"").c_str(), strerror(errno ? errno : EIO));
            ok = 0;
        }
    }
    std::string error;
    if (!x->plot.empty() && !DrawFitPlot(&fit, x->plot.c_str(), &error)) {
        fprintf(stderr, "Failed to write the plot \"%s\": %s\n", x->plot.c_str(), error.c_str());
        ok = 0;
    }
    return ok;
}
