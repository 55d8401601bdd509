// app/results.h - the results table: one line per distinct box size,
// "%d %g %g %g": size, smallest count over the passes, ln(1/size), ln(count).
#pragma once

#include <cstdio>

#include "app/boxcount.h"

// Asks the user for the file to save into; set by the interactive shell.
// Returns null or "" when cancelled.
extern const char *(*results_choosefile)(const char *prompt);

// Writes the lines of a results table to out. Entries with a zero count
// take no part.
void WriteResultsOf(const BoxResult *table, int n, FILE *out);
// The same for the current analysis; every entry's done mark ends set.
void WriteResults(FILE *out);
// Nothing for fewer than 4 results entries. Quiet: the table to standard
// output. Otherwise to a file the user chooses; a cancelled choice writes
// nothing, a file that cannot be opened is reported on standard error.
void SaveResults(void);
// The reports asked for by the long options of a finished analysis a: the
// JSON report (to a file, or to standard output for "-") and the plot.
// Failures are reported on standard error. Returns 1, or 0 when one could
// not be written.
int SaveReports(const Analysis *a);
