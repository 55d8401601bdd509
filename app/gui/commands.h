// app/gui/commands.h - what the window's keys, menu entries and panel inputs
// do to the program's state. Display-free: the GLUT and XForms callbacks
// translate one event into one of these calls, and tests call them directly.
#pragma once

#include <cstddef>

// Start (key p, "Start (p)"): processing on, analysis reset to its beginning.
void StartProcessing(void);
// Stop (key P, "Stop (P)"): processing off; nothing is reset.
void StopProcessing(void);

// Replaces the image by the file name (null or "" does nothing and returns
// 0). A file that cannot be read gives the blank image. Rebuilds the working
// images, which resets the analysis; processing and the region stay as they
// are. Returns 1 when the image was replaced, so the caller updates the window.
int OpenImage(const char *name);
// Complements r, g and b of the loaded image itself (alpha kept) and rebuilds
// the working images, which resets the analysis.
void InvertImage(void);

// The window title, "Quorl : <filename> (1:<scale>)", cut to fit out.
void FormatTitle(char *out, size_t n);

// The four inputs of the options panel, in the panel's order.
enum OptionField { OPTION_SAMPLES, OPTION_START, OPTION_END, OPTION_FACTOR };

// Reads text typed into a field into options, clamped: samples below 1 give
// 1, a start size below 2 gives -1 (automatic, so "Auto" reads as automatic),
// an end size below 1 gives 2, a factor of 1.0 or less gives 1.1.
void ApplyOptionInput(OptionField field, const char *text);
// The text a field shows for the value in force: "%d", "Auto" for an
// automatic start size, "%g" for the factor.
void FormatOptionField(OptionField field, char *out, size_t n);

// One idle call: steps the analysis once while processing (clearing
// processing when it finishes) and returns 1 when the window should be
// redrawn and the panels polled: at most every kIdleFrame seconds while
// idle, at most every 0.1 s of clock time while processing, and at once
// when the analysis has just finished. clock gives seconds.
int IdleStep(double (*clock)(void));
constexpr double kIdleFrame = 1.0 / 60;  // about 60 redraws a second while idle
// How long the idle loop may sleep before its next call has anything to
// do: while idle, until the next redraw is due; 0 while processing.
double IdleSleep(double (*clock)(void));
