// app/gui/gui.h - the interactive shell: one GLUT window showing the screen
// copy and the boxes of the grid being counted, a right-button menu, single
// key commands, and two XForms panels (options and graph).
//
// Nothing here is reached in quiet mode: the program calls StartInteractive
// and RunInteractive only when not quiet, so a quiet run never touches the
// display. Every callback hands its event to app/gui/commands.h or the core.
#pragma once

#include <forms.h>

// -- Start-up ----------------------------------------------------------------

// Banner, GLUT window and callbacks, menus, XForms and both panels; sets the
// core's hooks (screen size, graph refresh, file choice). Call before the
// image is loaded.
void StartInteractive(int argc, char **argv);
// OpenGL state, window size and title, then the GLUT main loop. The process
// ends through CleanExit.
[[noreturn]] void RunInteractive(void);

// -- Window (window.cpp) -------------------------------------------------------

// Window coordinates are image coordinates divided by options.scale, origin
// at the lower-left corner.
void PrepareOpenGL(void);
void HandleDisplay(void);
void DisplayBoxes(void);
// Resizes the window to the screen copy and sets the title; nothing when quiet.
void UpdateWindow(void);

void HandleIdle(void);
void HandleReshape(int width, int height);
void HandleKeyboard(unsigned char key, int x, int y);
void HandleSpecialKeyboard(int key, int x, int y);
void HandleMouse(int button, int state, int x, int y);
void HandleMouseMotion(int x, int y);
void HandlePassiveMotion(int x, int y);
void HandleVisibility(int state);

// -- Menus (menus.cpp) ---------------------------------------------------------

void MakeMenus(void);
// Main menu values: 1 open, 2 invert, 3 options, 4 graph, 5 save, 9 quit.
// The keys i, o, g and s call it with 2 to 5.
void HandleMainMenu(int value);
// 1 start, 2 stop.
void HandleProcessMenu(int value);

// -- Panels (panels.cpp) -------------------------------------------------------

// Each record's form has its fdui pointing back at the record.

struct FD_optionsform {
    FL_FORM *form;
    FL_OBJECT *hidebutton;
    FL_OBJECT *samplesinput;
    FL_OBJECT *startinput;
    FL_OBJECT *endinput;
    FL_OBJECT *factorinput;
};

struct FD_graphform {
    FL_FORM *form;
    FL_OBJECT *xyplot;
    FL_OBJECT *hidebutton;
    FL_OBJECT *slopeoutput;
};

extern FD_optionsform *optionsform;
extern FD_graphform *graphform;
extern int optionsformvisible;  // 1 while the panel is shown
extern int graphformvisible;

// Both are allocated with fl_calloc and kept for the whole run.
FD_optionsform *create_form_optionsform(void);
FD_graphform *create_form_graphform(void);
// Shows a panel (again) and fills it from the current state.
void ShowOptionsForm(void);
void ShowGraphForm(void);
// Writes the settings in force into the four inputs; nothing while hidden.
void UpdateOptionForm(void);
// Plots the log-log points, the fitted line and the slope; nothing while
// hidden or with fewer than 4 results entries.
void UpdateGraphForm(void);
// Handles pending panel events without waiting: Hide buttons and inputs.
void PollPanels(void);
// The XForms file selector; null or "" when cancelled.
const char *ChooseFile(const char *prompt);
