// app/plot.cpp - the log-log plot. The only file that uses cairo.
#include "app/plot.h"

#include <algorithm>
#include <cairo-svg.h>
#include <cairo.h>
#include <cmath>
#include <cstring>

// cairo draws text through fontconfig, which keeps what it loads for the
// life of the process; a leak check at exit should not report that.
#if defined(__SANITIZE_ADDRESS__)
#define QUORL_LEAK_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUORL_LEAK_CHECKED 1
#endif
#endif
#ifdef QUORL_LEAK_CHECKED
// The sanitizer looks for this name.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig.so\n";
}
#endif

namespace {

constexpr double kWidth = 640, kHeight = 600;                     // points (SVG) or pixels (PNG)
constexpr double kLeft = 70, kRight = 620;                        // both panels share the x axis
constexpr double kMainTop = 50, kMainBottom = 400;                // ln N(s)
constexpr double kSlopeTop = 450, kSlopeBottom = 550;             // local slopes

// Maps data [lo, hi] onto the page [a, b].
struct Axis {
    double lo, hi, a, b;
    double at(double v) const { return a + (v - lo) / (hi - lo) * (b - a); }
};

// Widens [lo, hi] by a margin, and to a unit when it is a single value.
void pad(double *lo, double *hi)
{
    if (*hi - *lo < 1e-9) {
        *lo -= 0.5;
        *hi += 0.5;
    }
    const double m = (*hi - *lo) * 0.06;
    *lo -= m;
    *hi += m;
}

// A tick step of 1, 2 or 5 times a power of ten giving about n ticks.
double tick_step(double span, int n)
{
    const double raw = span / n, p = pow(10, floor(log10(raw))), f = raw / p;
    return (f < 1.5 ? 1 : f < 3.5 ? 2 : f < 7.5 ? 5 : 10) * p;
}

void text(cairo_t *cr, double x, double y, const char *s, double align, double size)
{
    cairo_set_font_size(cr, size);
    cairo_text_extents_t e;
    cairo_text_extents(cr, s, &e);
    cairo_move_to(cr, x - align * e.x_advance, y);
    cairo_show_text(cr, s);
}

// Frame, ticks and tick labels of one panel.
void frame(cairo_t *cr, const Axis &x, const Axis &y, int yticks, bool xlabels)
{
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_set_line_width(cr, 1);
    cairo_rectangle(cr, x.a, y.b, x.b - x.a, y.a - y.b);
    cairo_stroke(cr);
    char label[32];
    const double xs = tick_step(x.hi - x.lo, 6);
    for (double v = ceil(x.lo / xs) * xs; v <= x.hi; v += xs) {
        cairo_move_to(cr, x.at(v), y.a);
        cairo_line_to(cr, x.at(v), y.a - 5);
        cairo_stroke(cr);
        snprintf(label, sizeof label, "%g", fabs(v) < xs * 1e-6 ? 0.0 : v);
        if (xlabels) text(cr, x.at(v), y.a + 15, label, 0.5, 11);
    }
    const double ys = tick_step(y.hi - y.lo, yticks);
    for (double v = ceil(y.lo / ys) * ys; v <= y.hi; v += ys) {
        cairo_move_to(cr, x.a, y.at(v));
        cairo_line_to(cr, x.a + 5, y.at(v));
        cairo_stroke(cr);
        snprintf(label, sizeof label, "%g", fabs(v) < ys * 1e-6 ? 0.0 : v);
        text(cr, x.a - 6, y.at(v) + 4, label, 1, 11);
    }
}

void point(cairo_t *cr, double x, double y, bool filled)
{
    cairo_new_sub_path(cr);
    cairo_arc(cr, x, y, 4, 0, 2 * M_PI);
    if (filled) {
        cairo_fill(cr);
        return;
    }
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_fill_preserve(cr);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_stroke(cr);
}

void draw(cairo_t *cr, const FitSummary *f)
{
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_source_rgb(cr, 0, 0, 0);
    text(cr, kWidth / 2, 30, PlotTitle(f).c_str(), 0.5, 16);

    double xlo = 0, xhi = 0, ylo = 0, yhi = 0;
    for (size_t i = 0; i < f->sizes.size(); i++) {
        const SizePoint &p = f->sizes[i];
        xlo = i ? std::min(xlo, p.ln_inv_size) : p.ln_inv_size;
        xhi = i ? std::max(xhi, p.ln_inv_size) : p.ln_inv_size;
        ylo = i ? std::min(ylo, p.ln_count) : p.ln_count;
        yhi = i ? std::max(yhi, p.ln_count) : p.ln_count;
    }
    pad(&xlo, &xhi);
    pad(&ylo, &yhi);
    const Axis x{xlo, xhi, kLeft, kRight}, y{ylo, yhi, kMainBottom, kMainTop};
    frame(cr, x, y, 6, true);
    text(cr, (kLeft + kRight) / 2, kMainBottom + 32, "ln(1/s)", 0.5, 12);
    cairo_save(cr);
    cairo_translate(cr, 22, (kMainTop + kMainBottom) / 2);
    cairo_rotate(cr, -M_PI / 2);
    text(cr, 0, 0, "ln N(s)", 0.5, 12);
    cairo_restore(cr);

    // The fitted line across the sizes in the fit, clipped to the panel.
    if (f->line.fitted) {
        double a = 0, b = 0;
        bool first = true;
        for (const SizePoint &p : f->sizes) {
            if (!p.in_fit) continue;
            a = first ? p.ln_inv_size : std::min(a, p.ln_inv_size);
            b = first ? p.ln_inv_size : std::max(b, p.ln_inv_size);
            first = false;
        }
        const double m = (b - a) * 0.05;
        cairo_save(cr);
        cairo_rectangle(cr, kLeft, kMainTop, kRight - kLeft, kMainBottom - kMainTop);
        cairo_clip(cr);
        cairo_set_source_rgb(cr, 0.8, 0.1, 0.1);
        cairo_set_line_width(cr, 1.5);
        cairo_move_to(cr, x.at(a - m), y.at(f->line.intercept + f->line.slope * (a - m)));
        cairo_line_to(cr, x.at(b + m), y.at(f->line.intercept + f->line.slope * (b + m)));
        cairo_stroke(cr);
        cairo_restore(cr);
    }
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_set_line_width(cr, 1.2);
    for (const SizePoint &p : f->sizes) point(cr, x.at(p.ln_inv_size), y.at(p.ln_count), p.in_fit);

    // Local slopes, each at the middle of its pair of sizes, against D.
    if (f->local_slopes.empty()) return;
    double slo = f->dimension, shi = f->dimension;
    for (const LocalSlope &s : f->local_slopes) {
        slo = std::min(slo, s.slope);
        shi = std::max(shi, s.slope);
    }
    pad(&slo, &shi);
    const Axis sy{slo, shi, kSlopeBottom, kSlopeTop};
    frame(cr, x, sy, 3, true);
    text(cr, (kLeft + kRight) / 2, kSlopeBottom + 32, "local slope between neighbouring sizes", 0.5, 12);
    const double dash[] = {4, 3};
    cairo_set_source_rgb(cr, 0.8, 0.1, 0.1);
    cairo_set_dash(cr, dash, 2, 0);
    cairo_move_to(cr, kLeft, sy.at(f->dimension));
    cairo_line_to(cr, kRight, sy.at(f->dimension));
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0);
    cairo_set_source_rgb(cr, 0, 0, 0);
    for (size_t i = 0; i < f->local_slopes.size(); i++) {
        const double mid = (f->sizes[i].ln_inv_size + f->sizes[i + 1].ln_inv_size) / 2;
        const double v = sy.at(f->local_slopes[i].slope);
        i ? cairo_line_to(cr, x.at(mid), v) : cairo_move_to(cr, x.at(mid), v);
    }
    cairo_stroke(cr);
    for (size_t i = 0; i < f->local_slopes.size(); i++) {
        const double mid = (f->sizes[i].ln_inv_size + f->sizes[i + 1].ln_inv_size) / 2;
        point(cr, x.at(mid), sy.at(f->local_slopes[i].slope), true);
    }
}

}  // namespace

std::string PlotTitle(const FitSummary *f)
{
    char title[128];
    const LineFit &l = f->line;
    if (l.has_interval)
        snprintf(title, sizeof title, "D = %.3f \u00b1 %.3f (95%%), r\u00b2 = %.4f", f->dimension,
                 (l.ci_high - l.ci_low) / 2, l.r2);
    else
        snprintf(title, sizeof title, "D = %.3f", f->dimension);
    return title;
}

namespace {

cairo_status_t append_to(void *closure, const unsigned char *data, unsigned int length)
{
    static_cast<std::string *>(closure)->append((const char *)data, length);
    return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::string FitPlotSvg(const FitSummary *f, std::string *error)
{
    std::string svg;
    cairo_surface_t *surface = cairo_svg_surface_create_for_stream(append_to, &svg, kWidth, kHeight);
    cairo_t *cr = cairo_create(surface);
    draw(cr, f);
    cairo_status_t status = cairo_status(cr);
    cairo_destroy(cr);
    cairo_surface_finish(surface);  // the SVG is written out here
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface);
    cairo_surface_destroy(surface);
    if (status == CAIRO_STATUS_SUCCESS) return svg;
    *error = cairo_status_to_string(status);
    return "";
}

int DrawFitPlot(const FitSummary *f, const char *path, std::string *error)
{
    const size_t n = strlen(path);
    const bool svg = n >= 4 && !strcmp(path + n - 4, ".svg");
    cairo_surface_t *surface = svg ? cairo_svg_surface_create(path, kWidth, kHeight)
                                   : cairo_image_surface_create(CAIRO_FORMAT_RGB24, (int)kWidth, (int)kHeight);
    cairo_t *cr = cairo_create(surface);
    draw(cr, f);
    cairo_status_t status = cairo_status(cr);
    cairo_destroy(cr);
    if (status == CAIRO_STATUS_SUCCESS && !svg) status = cairo_surface_write_to_png(surface, path);
    cairo_surface_finish(surface);  // an SVG is written out here
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface);
    cairo_surface_destroy(surface);
    if (status == CAIRO_STATUS_SUCCESS) return 1;
    *error = cairo_status_to_string(status);
    return 0;
}
