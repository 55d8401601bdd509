// app/gui/panels.cpp - the XForms options and graph panels, their polling
// from the idle loop, and the file selector.
#include <forms.h>

#include <cstdio>
#include <cstdlib>

#include "app/boxcount.h"
#include "app/estimate.h"
#include "app/gui/commands.h"
#include "app/gui/gui.h"

FD_optionsform *optionsform = nullptr;
FD_graphform *graphform = nullptr;
int optionsformvisible = 0;
int graphformvisible = 0;

namespace {

void set_field(FL_OBJECT *input, OptionField field)
{
    char text[256];
    FormatOptionField(field, text, sizeof text);
    fl_set_input(input, text);
}

FL_OBJECT *add_input(int x, int y, const char *label)
{
    FL_OBJECT *ob = fl_add_input(FL_NORMAL_INPUT, x, y, 50, 30, label);
    fl_set_object_color(ob, FL_WHITE, FL_WHITE);
    fl_set_object_lsize(ob, FL_NORMAL_SIZE);
    return ob;
}

// A panel closed from its window frame is hidden as its Hide button would
// hide it; left to XForms, that close would end the whole program.
int close_optionsform(FL_FORM *, void *)
{
    optionsformvisible = 0;
    return FL_OK;
}

int close_graphform(FL_FORM *, void *)
{
    graphformvisible = 0;
    return FL_OK;
}

// Reads a changed input into the settings and shows what was stored.
void accept_input(FL_OBJECT *input, OptionField field)
{
    ApplyOptionInput(field, fl_get_input(input));
    UpdateOptionForm();
}

}  // namespace

// ---------------------------------------------------------------- options panel

FD_optionsform *create_form_optionsform(void)
{
    FD_optionsform *fdui = (FD_optionsform *)fl_calloc(1, sizeof *fdui);
    fdui->form = fl_bgn_form(FL_NO_BOX, 331, 211);

    FL_OBJECT *ob = fl_add_box(FL_UP_BOX, 0, 0, 331, 211, "");
    fl_set_object_color(ob, FL_WHITE, FL_COL1);
    fl_set_object_resize(ob, FL_RESIZE_NONE);

    fdui->hidebutton = ob = fl_add_button(FL_NORMAL_BUTTON, 240, 160, 60, 30, "Hide");
    fl_set_object_color(ob, FL_WHITE, FL_COL1);
    fl_set_object_lsize(ob, FL_NORMAL_SIZE);
    fl_set_object_resize(ob, FL_RESIZE_NONE);

    ob = fl_add_text(FL_NORMAL_TEXT, 20, 10, 150, 20, "Options");
    fl_set_object_color(ob, FL_WHITE, FL_MCOL);
    fl_set_object_lsize(ob, FL_MEDIUM_SIZE);
    fl_set_object_lalign(ob, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);

    fdui->samplesinput = add_input(170, 40, "Number of offset samples");
    fdui->startinput = add_input(170, 80, "Box size range");
    fdui->endinput = add_input(250, 80, "to");
    fdui->factorinput = add_input(170, 120, "Box reduction factor");

    fl_end_form();
    fdui->form->fdui = fdui;
    fl_set_form_atclose(fdui->form, close_optionsform, nullptr);
    return fdui;
}

void ShowOptionsForm(void)
{
    fl_show_form(optionsform->form, FL_PLACE_CENTER, FL_FULLBORDER, nullptr);
    optionsformvisible = 1;
    UpdateOptionForm();
}

void UpdateOptionForm(void)
{
    if (!optionsformvisible) return;
    set_field(optionsform->samplesinput, OPTION_SAMPLES);
    set_field(optionsform->endinput, OPTION_END);
    set_field(optionsform->startinput, OPTION_START);
    set_field(optionsform->factorinput, OPTION_FACTOR);
}

// ---------------------------------------------------------------- graph panel

FD_graphform *create_form_graphform(void)
{
    FD_graphform *fdui = (FD_graphform *)fl_calloc(1, sizeof *fdui);
    fdui->form = fl_bgn_form(FL_NO_BOX, 421, 461);

    FL_OBJECT *ob = fl_add_box(FL_UP_BOX, 0, 0, 421, 461, "");
    fl_set_object_color(ob, FL_WHITE, FL_COL1);
    fl_set_object_resize(ob, FL_RESIZE_NONE);

    fdui->xyplot = ob = fl_add_xyplot(FL_POINTS_XYPLOT, 20, 30, 380, 370, "");
    fl_set_object_color(ob, FL_WHITE, FL_BLACK);
    fl_set_object_lsize(ob, FL_SMALL_SIZE);
    fl_set_object_resize(ob, FL_RESIZE_NONE);

    fdui->hidebutton = ob = fl_add_button(FL_NORMAL_BUTTON, 340, 415, 60, 30, "Hide");
    fl_set_object_color(ob, FL_WHITE, FL_COL1);
    fl_set_object_lsize(ob, FL_NORMAL_SIZE);
    fl_set_object_resize(ob, FL_RESIZE_NONE);

    fdui->slopeoutput = ob = fl_add_input(FL_NORMAL_INPUT, 130, 410, 110, 30, "Slope estimate");
    fl_set_object_boxtype(ob, FL_NO_BOX);
    fl_set_object_lsize(ob, FL_NORMAL_SIZE);
    fl_set_object_resize(ob, FL_RESIZE_NONE);

    ob = fl_add_text(FL_NORMAL_TEXT, 5, 10, 100, 20, "log(N(s))");
    fl_set_object_color(ob, FL_WHITE, FL_MCOL);
    fl_set_object_lsize(ob, FL_NORMAL_SIZE);
    fl_set_object_lalign(ob, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);

    ob = fl_add_text(FL_NORMAL_TEXT, 250, 395, 70, 20, "log(1/s)");
    fl_set_object_color(ob, FL_WHITE, FL_MCOL);
    fl_set_object_lsize(ob, FL_NORMAL_SIZE);
    fl_set_object_lalign(ob, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);

    fl_end_form();
    fdui->form->fdui = fdui;
    fl_set_form_atclose(fdui->form, close_graphform, nullptr);
    return fdui;
}

void ShowGraphForm(void)
{
    fl_show_form(graphform->form, FL_PLACE_CENTER, FL_FULLBORDER, nullptr);
    graphformvisible = 1;
    UpdateGraphForm();
}

void UpdateGraphForm(void)
{
    float slope = -9999.0f;
    if (!graphformvisible || nresults < 4) return;

    float *x = (float *)malloc(sizeof(float) * (size_t)nresults);
    float *y = (float *)malloc(sizeof(float) * (size_t)nresults);
    if (!x || !y) {  // a skipped refresh is harmless; the next grid tries again
        free(x);
        free(y);
        return;
    }
    const int n = MakeLogPoints(x, y);

    FL_OBJECT *plot = graphform->xyplot;
    fl_set_xyplot_symbolsize(plot, 2);
    fl_set_xyplot_xtics(plot, 5, 2);
    fl_set_xyplot_ytics(plot, 5, 2);
    fl_set_xyplot_linewidth(plot, 1, 0);
    fl_set_xyplot_data(plot, x, y, n, "", "", "");

    // Unlike the printed estimate, the plot fits from two distinct sizes on.
    float a, b, r;
    if (LinRegressf(x, y, n, &a, &b, &r)) {
        fl_set_xyplot_overlay_type(plot, 1, FL_NORMAL_XYPLOT);
        float xmin, xmax;
        fl_get_xyplot_xbounds(plot, &xmin, &xmax);
        float lx[2] = {xmin, xmax};
        float ly[2] = {b * xmin + a, b * xmax + a};  // spans the plot's x range
        fl_set_xyplot_linewidth(plot, 1, 1);
        fl_add_xyplot_overlay(plot, 1, lx, ly, 2, FL_RED);
        slope = b;
    }

    char text[256];
    snprintf(text, sizeof text, "%6.3f", (double)slope);
    fl_set_input(graphform->slopeoutput, text);
    fl_redraw_form(graphform->form);
    free(x);
    free(y);
}

// ---------------------------------------------------------------- polling

void PollPanels(void)
{
    if (!optionsformvisible && !graphformvisible) return;  // XForms costs nothing then
    FL_OBJECT *ob = fl_check_forms();

    if (graphformvisible && ob == graphform->hidebutton) {
        fl_hide_form(graphform->form);
        graphformvisible = 0;
    }
    if (!optionsformvisible) return;
    if (ob == optionsform->hidebutton) {
        fl_hide_form(optionsform->form);
        optionsformvisible = 0;
    } else if (ob == optionsform->samplesinput) {
        accept_input(ob, OPTION_SAMPLES);
    } else if (ob == optionsform->startinput) {
        accept_input(ob, OPTION_START);
    } else if (ob == optionsform->endinput) {
        accept_input(ob, OPTION_END);
    } else if (ob == optionsform->factorinput) {
        accept_input(ob, OPTION_FACTOR);
    }
}

const char *ChooseFile(const char *prompt)
{
    return fl_show_fselector(prompt, "", "", "");
}
