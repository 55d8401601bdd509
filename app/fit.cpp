// app/fit.cpp - the fit statistics. The only file that uses Boost.Math.
#include "app/fit.h"

#include <boost/math/distributions/students_t.hpp>
#include <cmath>

#include "app/estimate.h"

double FittedSlopeOf(const BoxResult *table, int n, int fit_min, int fit_max)
{
    std::vector<BoxResult> kept;
    for (int i = 0; i < n; i++)
        if (table[i].size >= fit_min && table[i].size <= fit_max) kept.push_back(table[i]);
    return SlopeOf(kept.data(), (int)kept.size());
}

double FittedSlope(const Analysis *a)
{
    return FittedSlopeOf(a->results, a->nresults, a->ext->fit_min, a->ext->fit_max);
}

int FitLine(const double *x, const double *y, int n, LineFit *line)
{
    *line = LineFit{};
    line->points = n;
    if (n < 2) return 0;
    double mx = 0, my = 0;
    for (int i = 0; i < n; i++) {
        mx += x[i];
        my += y[i];
    }
    mx /= n;
    my /= n;
    // Sums about the means: no cancellation when x sits far from 0.
    double sxx = 0, syy = 0, sxy = 0;
    for (int i = 0; i < n; i++) {
        sxx += (x[i] - mx) * (x[i] - mx);
        syy += (y[i] - my) * (y[i] - my);
        sxy += (x[i] - mx) * (y[i] - my);
    }
    if (sxx == 0) return 0;
    line->fitted = 1;
    line->slope = sxy / sxx;
    line->intercept = my - line->slope * mx;
    line->r2 = syy == 0 ? 1.0 : sxy * sxy / (sxx * syy);
    if (n < 3) return 1;
    double residual = 0;
    for (int i = 0; i < n; i++) {
        const double e = y[i] - line->intercept - line->slope * x[i];
        residual += e * e;
    }
    line->has_interval = 1;
    line->stderr_slope = sqrt(residual / (n - 2) / sxx);
    const double half = StudentT975(n - 2) * line->stderr_slope;
    line->ci_low = line->slope - half;
    line->ci_high = line->slope + half;
    return 1;
}

double StudentT975(int df)
{
    return boost::math::quantile(boost::math::students_t_distribution<double>((double)df), 0.975);
}

void SummariseFit(const Analysis *a, FitSummary *f)
{
    const ExtraOptions *x = a->ext;
    f->dimension = FittedSlope(a);
    f->sizes.clear();
    f->local_slopes.clear();
    // One point per distinct size with its smallest nonzero count, in order
    // of first occurrence, as the results table lists them.
    for (int i = 0; i < a->nresults; i++) {
        const BoxResult &r = a->results[i];
        if (r.size <= 0 || r.count <= 0) continue;
        bool seen = false;
        for (SizePoint &p : f->sizes) {
            if (p.size != r.size) continue;
            seen = true;
            if (r.count < p.count) p.count = r.count;
        }
        if (!seen) f->sizes.push_back(SizePoint{r.size, r.count, 0, 0, r.size >= x->fit_min && r.size <= x->fit_max});
    }
    std::vector<double> fx, fy;
    for (SizePoint &p : f->sizes) {
        p.ln_inv_size = log(1.0 / p.size);
        p.ln_count = log((double)p.count);
        if (!p.in_fit) continue;
        fx.push_back(p.ln_inv_size);
        fy.push_back(p.ln_count);
    }
    FitLine(fx.data(), fy.data(), (int)fx.size(), &f->line);
    for (size_t i = 1; i < f->sizes.size(); i++) {
        const SizePoint &p = f->sizes[i - 1], &q = f->sizes[i];
        f->local_slopes.push_back(
            LocalSlope{p.size, q.size, (q.ln_count - p.ln_count) / (q.ln_inv_size - p.ln_inv_size)});
    }
}
