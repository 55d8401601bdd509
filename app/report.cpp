// app/report.cpp - the JSON report. The only file that uses the JSON library.
#include "app/report.h"

#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "app/crop.h"

using nlohmann::ordered_json;

namespace {

// A value, or null when it is not known.
ordered_json maybe(bool known, double v)
{
    return known ? ordered_json(v) : ordered_json(nullptr);
}

ordered_json settings(const Analysis *a)
{
    const Options *o = a->opt;
    const ExtraOptions *x = a->ext;
    // The factor as the user would write it (1.2), not its float's expansion.
    char factor[32];
    snprintf(factor, sizeof factor, "%g", (double)o->boxfactor);
    ordered_json s;
    s["start"] = a->nresults > 0 ? a->results[0].size : o->boxstart;
    s["end"] = o->boxend;
    s["factor"] = atof(factor);
    s["samples"] = x->offsets_all ? 1 : o->nsamples;
    s["sizes"] = x->sizes.empty() ? ordered_json(nullptr) : ordered_json(x->sizes);
    s["offsets"] = x->offsets_all ? "all" : "random";
    s["seed"] = a->seed;
    s["threshold"] = x->threshold == kThresholdOtsu    ? ordered_json("otsu")
                     : x->threshold == kThresholdFixed ? ordered_json("fixed")
                                                       : ordered_json(x->threshold);
    s["fit_range"] = {x->fit_min > 0 ? ordered_json(x->fit_min) : ordered_json(nullptr),
                      x->fit_max < INT_MAX ? ordered_json(x->fit_max) : ordered_json(nullptr)};
    s["crop"] = x->crop != 0;
    return s;
}

ordered_json report(const Analysis *a, const FitSummary *f)
{
    const Options *o = a->opt;
    const LineFit &l = f->line;
    ordered_json r;
    r["file"] = o->filename;
    r["width"] = o->imagewidth;
    r["height"] = o->imageheight;
    r["black_pixels"] = BlackPixelsInRegion(a);
    r["region"] = {{"left", o->left}, {"bottom", o->bottom}, {"right", o->right}, {"top", o->top}};
    r["settings"] = settings(a);
    r["sizes"] = ordered_json::array();
    for (const SizePoint &p : f->sizes)
        r["sizes"].push_back({{"size", p.size},
                              {"count", p.count},
                              {"ln_inv_size", p.ln_inv_size},
                              {"ln_count", p.ln_count},
                              {"in_fit", p.in_fit != 0}});
    r["fit"] = {{"dimension", f->dimension},
                {"intercept", maybe(l.fitted, l.intercept)},
                {"r2", maybe(l.fitted, l.r2)},
                {"stderr", maybe(l.has_interval, l.stderr_slope)},
                {"ci95", l.has_interval ? ordered_json{l.ci_low, l.ci_high} : ordered_json(nullptr)},
                {"points", l.points}};
    r["local_slopes"] = ordered_json::array();
    for (const LocalSlope &s : f->local_slopes)
        r["local_slopes"].push_back({{"from", s.from}, {"to", s.to}, {"slope", s.slope}});
    return r;
}

}  // namespace

// Names that are not valid UTF-8 are written with replacement characters
// rather than refused.
std::string JsonReport(const Analysis *a, const FitSummary *f)
{
    return report(a, f).dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string JsonBatchLine(const std::string &file, const Analysis *a, const FitSummary *f, int width, int height,
                          const std::string &error)
{
    ordered_json r;
    if (a) {
        r = report(a, f);
    } else if (width || height) {
        r["width"] = width;
        r["height"] = height;
    }
    r["file"] = file;
    r["status"] = error.empty() ? "ok" : "error";
    r["error"] = error.empty() ? ordered_json(nullptr) : ordered_json(error);
    return r.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}
