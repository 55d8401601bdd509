// app/batch.h - many images, one row each: quorl --batch LIST.
//
// Every image of the list is analysed with the same settings, several at
// once, each in its own analysis record. Rows come out in the order of the
// list, each written and flushed as soon as it and every row before it are
// done, so an interrupted batch keeps every finished row.
#pragma once

#include <string>

#include "app/longopts.h"
#include "app/options.h"

// One image's outcome. status "ok" or "error"; error says why in one line.
struct BatchRow {
    std::string file;
    std::string status = "error";
    std::string error;
    int width = 0, height = 0;
    long long black_pixels = 0;
    int sizes = 0;  // distinct box sizes counted
    double dimension = 0, intercept = 0, r2 = 0, stderr_ = 0, ci95_low = 0, ci95_high = 0;
    long seed = 0;
    std::string json;  // the report object, with status and error, on one line
};

// The CSV header line and a row, RFC 4180 (fields quoted only when needed),
// each ending in CR LF.
std::string CsvHeader(void);
std::string CsvRow(const BatchRow &row);

// Analyses one image with the settings o and x; never prints, never exits.
BatchRow AnalyseForBatch(const std::string &file, const Options *o, const ExtraOptions *x);

// Runs the batch over the names in x->batch ("-": standard input). Returns
// the exit status: 0 when every image was analysed, 1 when some were not,
// 2 when the list cannot be read or an output cannot be written.
int RunBatch(const Options *o, const ExtraOptions *x);
