// app/jobs.cpp - a server's analyses: request parameters, preparation as in
// a quiet run, counting in a thread, progress snapshots.
#include "app/jobs.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>


#include "app/boxcount.h"
#include "app/fit.h"
#include "app/load.h"
#include "app/plot.h"
#include "app/prepare.h"
#include "app/report.h"

namespace {

// A whole word as an int; false for anything else.
bool whole(const std::string &s, int *v)
{
    if (s.empty()) return false;
    char *end;
    errno = 0;
    const long n = strtol(s.c_str(), &end, 10);
    if (*end || errno || n < INT_MIN || n > INT_MAX) return false;
    *v = (int)n;
    return true;
}

// "", 1, true, yes, on: set; 0, false, no, off: clear.
bool flag(const std::string &s, int *v)
{
    const bool on = s.empty() || s == "1" || s == "true" || s == "yes" || s == "on";
    if (!on && s != "0" && s != "false" && s != "no" && s != "off") return false;
    *v = on;
    return true;
}

// A long option's value through the command line's own table, so the two
// accept the same words and refuse the rest in the same terms.
bool long_option(const std::string &key, const char *option, const std::string &value, ExtraOptions *x,
                 std::string *error)
{
    std::string word = option, text = value;
    char *argv[] = {word.data(), text.data()};
    int i = 0;
    if (ParseLongOption(2, argv, &i, x, error) == LONG_OK) return true;
    if (error->rfind(option, 0) == 0) *error = key + error->substr(strlen(option));  // "seed wants ..."
    return false;
}

// The black/white image as a PBM file: 1 is black, rows from the top.
std::string pbm_of(const Analysis *a)
{
    const int w = a->opt->imagewidth, h = a->opt->imageheight, stride = (w + 7) / 8;
    std::string out = "P4\n" + std::to_string(w) + " " + std::to_string(h) + "\n";
    const size_t head = out.size();
    out.resize(head + (size_t)stride * h, '\0');
    for (int y = 0; y < h; y++) {
        const unsigned char *row = a->bw + (size_t)(h - 1 - y) * w;
        char *bits = &out[head + (size_t)y * stride];
        for (int x = 0; x < w; x++)
            if (row[x] < 128) bits[x >> 3] |= (char)(0x80 >> (x & 7));
    }
    return out;
}

// "samples wants a whole number, not \"many\"".
void wants(const std::string &key, const char *what, const std::string &value, std::string *error)
{
    *error = key + " wants " + what + ", not \"" + value + "\"";
}


// The plot as SVG text. The plotter's fonts are set up once per process,
// not per thread, so one plot is drawn at a time.
std::string plot_svg(const FitSummary *f)
{
    static std::mutex one_at_a_time;
    std::lock_guard<std::mutex> lock(one_at_a_time);
    std::string why;
    return FitPlotSvg(f, &why);
}

// Copies where a's count stands into the job's view. Only the boxes found
// since the last copy are added, so a snapshot costs what is new.
void publish(Job *job, const Analysis *a)
{
    std::lock_guard<std::mutex> lock(job->m);
    JobView &v = job->view;
    if (v.grid != a->nresults || (int)v.boxes.size() / 2 > a->nboxlist) {
        v.grid = a->nresults;
        v.boxes.clear();
    }
    for (int i = (int)v.boxes.size() / 2; i < a->nboxlist; i++) {
        v.boxes.push_back(a->boxlist[i].left);
        v.boxes.push_back(a->boxlist[i].bottom);
    }
    v.size = a->nresults > 0 ? a->results[a->nresults - 1].size : 0;
    v.count = a->nresults > 0 ? a->results[a->nresults - 1].count : 0;
    v.pass = a->noffset;
    v.passes = a->ext->offsets_all ? 1 : a->opt->nsamples;
    v.version++;
    job->changed.notify_all();
}

void finish(Job *job, JobState state, const std::string &error, const Analysis *a)
{
    std::string report, svg;
    std::vector<double> t975;
    if (state == JOB_FINISHED) {
        FitSummary f;
        SummariseFit(a, &f);
        report = JsonReport(a, &f);
        svg = plot_svg(&f);
        t975.push_back(NAN);
        for (size_t df = 1; df <= f.sizes.size(); df++) t975.push_back(StudentT975((int)df));
    }
    std::lock_guard<std::mutex> lock(job->m);
    job->view.state = state;
    job->view.error = error;
    job->view.report = std::move(report);
    job->view.svg = std::move(svg);
    job->view.t975 = std::move(t975);
    job->view.boxes.clear();
    job->view.version++;
    job->changed.notify_all();
}

// The counting thread: one box a step, as a quiet run; a snapshot at most
// every 0.1 s (the clock is read every few thousand steps only).
void count(Job *job, AnalysisPtr a)
{
    using clock = std::chrono::steady_clock;
    auto next = clock::now();
    for (long step = 0; !StepAnalysis(a.get(), 1); step++) {
        if ((step & 4095) != 0) continue;
        if (job->cancel) return finish(job, JOB_FAILED, "the analysis was stopped", nullptr);
        if (clock::now() >= next) {
            publish(job, a.get());
            next = clock::now() + std::chrono::milliseconds(100);
        }
    }
    if (a->failed) return finish(job, JOB_FAILED, "Out of memory while counting boxes", nullptr);
    publish(job, a.get());
    finish(job, JOB_FINISHED, "", a.get());
}

}  // namespace

int ParseJobParams(const JobParams &params, Options *o, ExtraOptions *x, std::string *name, std::string *error)
{
    for (const auto &param : params) {
        const std::string &key = param.first, &value = param.second;
        int n = 0;
        const bool number = whole(value, &n);
        auto not_number = [&] { wants(key, "a whole number", value, error); };
        if (key == "seed" || key == "offsets" || key == "sizes" || key == "threshold") {
            if (!long_option(key, ("--" + key).c_str(), value, x, error)) return 0;
        } else if (key == "fit_range") {
            if (!long_option(key, "--fit-range", value, x, error)) return 0;
        } else if (key == "crop" || key == "invert") {
            if (!flag(value, key == "crop" ? &x->crop : &o->invert)) {
                return wants(key, "1 or 0 (true or false)", value, error), 0;
            }
        } else if (key == "samples" || key == "start" || key == "end") {
            if (!number) return not_number(), 0;
            // Clamped as -n, -b1 and -b2 clamp them.
            if (key == "samples") o->nsamples = n < 1 ? 1 : n;
            if (key == "start") o->boxstart = n < 2 ? -1 : n;
            if (key == "end") o->boxend = n < 1 ? 1 : n;
        } else if (key == "factor") {
            char *end;
            const float f = strtof(value.c_str(), &end);
            if (value.empty() || *end) {
                return wants(key, "a number, such as 1.2", value, error), 0;
            }
            o->boxfactor = f > 1.0f ? f : 1.1f;  // as -bf: 1.0 or less (or nan) gives 1.1
        } else if (key == "left" || key == "right" || key == "bottom" || key == "top") {
            if (!number) return not_number(), 0;
            int *side = key == "left" ? &o->left : key == "right" ? &o->right : key == "bottom" ? &o->bottom : &o->top;
            *side = n;
            o->useregion = 1;
        } else if (key == "name") {
            *name = value.substr(0, sizeof o->filename - 1);
        } else {
            *error = "unknown parameter \"";
            *error += key + "\"";
            return 0;
        }
    }
    return 1;
}

std::shared_ptr<Job> StartJob(const std::string &id, const void *data, size_t size, const Options *o,
                              const ExtraOptions *x, const std::string &name, std::string *error)
{
    unsigned char *bw = nullptr;
    int w = 0, h = 0;
    std::string why;
    const LoadStatus status = LoadBlackWhiteData(data, size, o, x, &bw, &w, &h, &why);
    if (status != LOAD_OK) {
        *error = LoadErrorText(status, name, why);
        return nullptr;
    }
    AnalysisPtr a;
    int start = 0;
    switch (PrepareAnalysis(bw, w, h, o, x, name.c_str(), &a, &start)) {
    case PREPARE_OK: break;
    case PREPARE_NO_MEMORY: *error = "Failed to create image"; return nullptr;
    case PREPARE_NO_BLACK: *error = "no black pixels in the analysed region"; return nullptr;
    case PREPARE_CANNOT_FINISH:
        *error = "the start box size is " + std::to_string(start) +
                 ": the analysis cannot finish; give a start size";
        return nullptr;
    }
    auto job = std::make_shared<Job>();
    job->id = id;
    job->name = name;
    job->width = w, job->height = h;
    job->left = a->opt->left, job->bottom = a->opt->bottom, job->right = a->opt->right, job->top = a->opt->top;
    job->pbm = pbm_of(a.get());
    publish(job.get(), a.get());
    job->thread = std::thread(count, job.get(), std::move(a));
    return job;
}

void StopJob(Job *job)
{
    job->cancel = 1;
    if (job->thread.joinable()) job->thread.join();
}
