// app/serve.h - quorl --serve: the browser front-end's HTTP server.
//
// One page (app/webassets.h) and a small JSON API over the same analysis as
// a quiet run (app/jobs.h):
//   POST /api/analyses?OPTIONS         body: an image file; answers {"id": ...}
//   GET  /api/analyses/ID              state, progress and, once finished, the report
//   GET  /api/analyses/ID/events       progress as server-sent events, at most 10 a second
//   GET  /api/analyses/ID/report.json  the report, as --json writes it
//   GET  /api/analyses/ID/plot.svg     the log-log plot, as --plot draws it
//   GET  /api/analyses/ID/image.pbm    the black/white image being counted
//   DELETE /api/analyses/ID            stops the analysis and forgets it
// Every refusal is a 4xx (or 503) answer with {"error": "what is wrong"}.
#pragma once

#include "app/longopts.h"
#include "app/options.h"

// Serves on x->bind:x->port (port 0: any free one) until SIGINT or SIGTERM,
// with o and x as every analysis's defaults. Prints the address to open on
// standard output. Returns the exit status: 0 after a signal, 2 when the
// address cannot be used.
int RunServer(const Options *o, const ExtraOptions *x);
