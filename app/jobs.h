// app/jobs.h - analyses for the HTTP server: settings from a request's
// parameters, an uploaded image, one thread per analysis, and what watchers
// may read while it runs. Nothing here speaks HTTP (app/serve.cpp does).
//
// A job makes its analysis exactly as a quiet run does (the image, the
// region, the resets and the crop), so with the same seed its report equals
// `quorl -q --json -` in every number. Jobs share nothing but their own
// record, so any number may run at once.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "app/longopts.h"
#include "app/options.h"

using JobParams = std::vector<std::pair<std::string, std::string>>;

// Reads a request's parameters over the settings already in o and x: the
// long options by name (seed, offsets, sizes, threshold, crop, fit_range),
// samples, start, end, factor, invert, the region (left, right, bottom, top)
// and name (the image's name in the report). Numbers are clamped as the
// command line clamps them; a word that is not a number and an unknown
// parameter are refused. Returns 1; 0 with *error.
int ParseJobParams(const JobParams &params, Options *o, ExtraOptions *x, std::string *name, std::string *error);

enum JobState { JOB_RUNNING, JOB_FINISHED, JOB_FAILED };

// What a job shows its watchers. Guarded by the job's mutex.
struct JobView {
    JobState state = JOB_RUNNING;
    int size = 0;             // box size of the grid being counted
    int pass = 1, passes = 1;
    int grid = 0;             // number of that grid, from 1
    int count = 0;            // its occupied boxes so far
    std::vector<int> boxes;   // x, y (lower-left corners) of those boxes, in counting order
    std::string error;        // JOB_FAILED: why, in one line
    std::string report, svg;  // JOB_FINISHED: the JSON report and the plot
    std::vector<double> t975;  // t975[df]: Student's 97.5% quantile, df = 1 .. number of sizes
    long version = 0;          // grows at every change
};

// The fields before the mutex are set before the thread starts and never
// change.
struct Job {
    std::string id;
    std::string name;
    int width = 0, height = 0;         // of the image
    int left = 0, bottom = 0, right = 0, top = 0;  // the region counted, clamped to the image
    std::string pbm;                   // the black/white image counted, as a PBM file (P4)
    std::mutex m;
    std::condition_variable changed;  // notified at every change of view
    JobView view;
    std::atomic<int> cancel{0};       // set to stop the analysis early
    std::thread thread;
};

// Prepares the analysis of the size bytes at data with the settings o and
// x and starts counting in a thread of its own. Returns the job; null when
// the image cannot be analysed, with the reason a quiet run gives in *error.
std::shared_ptr<Job> StartJob(const std::string &id, const void *data, size_t size, const Options *o,
                              const ExtraOptions *x, const std::string &name, std::string *error);
// Stops a job's analysis (if it still runs) and waits for its thread.
void StopJob(Job *job);
