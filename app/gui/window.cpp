// app/gui/window.cpp - start-up of the interactive shell, the GLUT callbacks
// and the drawing of the image window.
#include <GL/glut.h>

#include <cstdio>

#include <ctime>

#include "app/boxcount.h"
#include "app/gui/commands.h"
#include "app/gui/gui.h"
#include "app/images.h"
#include "app/options.h"
#include "app/results.h"
#include "util/timer.h"

namespace {

void screen_size(int *width, int *height)
{
    *width = glutGet(GLUT_SCREEN_WIDTH);
    *height = glutGet(GLUT_SCREEN_HEIGHT);
}

void set_title(void)
{
    char title[256];
    FormatTitle(title, sizeof title);
    glutSetWindowTitle(title);
}

}  // namespace

// ---------------------------------------------------------------- start-up

void StartInteractive(int argc, char **argv)
{
    fprintf(stderr, "Quorl - Veskan\n");
    fprintf(stderr, "Version %g\n", versionnumber / 100.0);

    fprintf(stderr, "Initialising GLUT\n");
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_RGBA | GLUT_DOUBLE | GLUT_DEPTH);

    fprintf(stderr, "Creating windows\n");
    glutCreateWindow("Quorl");
    glutReshapeWindow(options.windowwidth, options.windowheight);
    glutIdleFunc(HandleIdle);
    glutDisplayFunc(HandleDisplay);
    glutReshapeFunc(HandleReshape);
    glutKeyboardFunc(HandleKeyboard);
    glutSpecialFunc(HandleSpecialKeyboard);
    glutMouseFunc(HandleMouse);
    glutMotionFunc(HandleMouseMotion);
    glutPassiveMotionFunc(HandlePassiveMotion);
    glutVisibilityFunc(HandleVisibility);
    MakeMenus();

    int fl_argc = 1;  // XForms sees the program name only, none of the switches
    fl_initialize(&fl_argc, argv, "Quorl", nullptr, 0);
    optionsform = create_form_optionsform();
    graphform = create_form_graphform();
    fl_deactivate_object(graphform->slopeoutput);
    UpdateOptionForm();

    images_screensize = screen_size;
    CurrentAnalysis()->hooks.between = [](const Analysis *) { UpdateGraphForm(); };
    results_choosefile = ChooseFile;
}

void RunInteractive(void)
{
    PrepareOpenGL();
    UpdateWindow();
    glutMainLoop();
    CleanExit();  // not reached: the loop ends only through CleanExit
}

// ---------------------------------------------------------------- drawing

void PrepareOpenGL(void)
{
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_DITHER);
    glDisable(GL_LINE_SMOOTH);
    glDisable(GL_POINT_SMOOTH);
    glDisable(GL_POLYGON_SMOOTH);
    glDisable(GL_CULL_FACE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glFrontFace(GL_CW);
    glClearColor(0.5f, 0.0f, 0.0f, 0.0f);  // dark red shows wherever the image does not
    glDisable(GL_LIGHTING);
}

void HandleDisplay(void)
{
    glDrawBuffer(GL_BACK);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glViewport(0, 0, options.windowwidth, options.windowheight);

    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glRasterPos2f(-1.0f, -1.0f);
    glDisable(GL_BLEND);  // the screen copy's alpha is 0
    glDrawPixels(options.windowwidth, options.windowheight, GL_RGBA, GL_UNSIGNED_BYTE, viewimage);
    glEnable(GL_BLEND);

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, options.windowwidth, 0, options.windowheight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    DisplayBoxes();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();

    glutSwapBuffers();
    if (options.debug) fprintf(stderr, "Display update, nbox = %d\n", nboxlist);
}

namespace {

// A box of the list cut to the region, in window coordinates.
struct Quad {
    float x0, x1, yt, yb;
};

Quad clip_box(const BoxRect &b)
{
    const float s = (float)options.scale;
    const int x0 = b.left > options.left ? b.left : options.left;
    const int x1 = b.right < options.right ? b.right : options.right;
    const int yt = b.top < options.top ? b.top : options.top;
    const int yb = b.bottom > options.bottom ? b.bottom : options.bottom;
    return Quad{x0 / s, x1 / s, yt / s, yb / s};
}

}  // namespace

void DisplayBoxes(void)
{
    if (options.quiet) return;

    glColor4f(0.0f, 1.0f, 0.0f, 0.4f);
    for (int i = 0; i < nboxlist; i++) {
        if (!boxlist[i].occupied) continue;
        const Quad q = clip_box(boxlist[i]);
        glBegin(GL_QUADS);
        glVertex2f(q.x0, q.yb);
        glVertex2f(q.x0, q.yt);
        glVertex2f(q.x1, q.yt);
        glVertex2f(q.x1, q.yb);
        glEnd();
    }

    // Outlines only where a box is more than 4 window pixels across.
    glColor3f(1.0f, 0.0f, 0.0f);
    for (int i = 0; i < nboxlist; i++) {
        if (boxlist[i].right - boxlist[i].left <= 4 * options.scale) continue;
        const Quad q = clip_box(boxlist[i]);
        glBegin(GL_LINE_STRIP);
        glVertex2f(q.x0, q.yb);
        glVertex2f(q.x0, q.yt);
        glVertex2f(q.x1, q.yt);
        glVertex2f(q.x1, q.yb);
        glVertex2f(q.x0, q.yb);
        glEnd();
    }
}

void UpdateWindow(void)
{
    if (options.quiet) return;
    glutReshapeWindow(options.windowwidth, options.windowheight);
    set_title();
}

// ---------------------------------------------------------------- callbacks

void HandleIdle(void)
{
    if (!IdleStep(GetRunTime)) {
        const double wait = IdleSleep(GetRunTime);  // idle: no core spent spinning until the next frame
        if (wait > 0) {
            const struct timespec pause = {0, (long)(wait * 1e9)};  // under a frame: less than a second
            nanosleep(&pause, nullptr);
        }
        return;
    }
    glutPostRedisplay();
    PollPanels();
}

void HandleReshape(int width, int height)
{
    // The window is held at the size of the screen copy.
    if (width != options.windowwidth || height != options.windowheight)
        glutReshapeWindow(options.windowwidth, options.windowheight);
    glutPostRedisplay();
}

void HandleKeyboard(unsigned char key, int, int)
{
    switch (key) {
    case 27:
    case 'q':
    case 'Q': CleanExit();
    case 'g':
    case 'G': HandleMainMenu(4); break;
    case 'i':
    case 'I': HandleMainMenu(2); break;
    case 'o':
    case 'O': HandleMainMenu(3); break;
    case 's':
    case 'S': HandleMainMenu(5); break;
    case 'p': StartProcessing(); break;
    case 'P': StopProcessing(); break;
    case 'w':
    case 'W': options.wkeyflag = 1; break;
    default: break;
    }
}

void HandleSpecialKeyboard(int, int, int) {}

void HandleMouse(int button, int, int, int)
{
    options.mousebutton = button;
}

void HandleMouseMotion(int, int) {}

void HandlePassiveMotion(int, int) {}

void HandleVisibility(int state)
{
    // A hidden or iconified window pauses the analysis and the panel polling.
    glutIdleFunc(state == GLUT_VISIBLE ? HandleIdle : nullptr);
}
