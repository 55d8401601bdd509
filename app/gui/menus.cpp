// app/gui/menus.cpp - the right-button pop-up menu. The letter keys reuse
// HandleMainMenu, so a key and its entry always do the same.
#include <GL/glut.h>

#include <cstdio>

#include "app/gui/commands.h"
#include "app/gui/gui.h"
#include "app/options.h"
#include "app/results.h"

void MakeMenus(void)
{
    fprintf(stderr, "Creating menus (Right mouse button)\n");
    const int process = glutCreateMenu(HandleProcessMenu);
    glutAddMenuEntry("Start (p)", 1);
    glutAddMenuEntry("Stop (P)", 2);

    glutCreateMenu(HandleMainMenu);
    glutAddMenuEntry("Open new TGA file", 1);
    glutAddMenuEntry("Invert image (i)", 2);
    glutAddMenuEntry("Options (o)", 3);
    glutAddSubMenu("Processing", process);
    glutAddMenuEntry("Show graph (g)", 4);
    glutAddMenuEntry("Save results (s)", 5);
    glutAddMenuEntry("Quit (ESC)", 9);
    glutAttachMenu(GLUT_RIGHT_BUTTON);
}

void HandleProcessMenu(int value)
{
    if (value == 1) StartProcessing();
    if (value == 2) StopProcessing();
}

void HandleMainMenu(int value)
{
    switch (value) {
    case 1:
        if (OpenImage(ChooseFile("TGA file"))) UpdateWindow();
        break;
    case 2:
        InvertImage();
        UpdateWindow();
        glutPostRedisplay();
        break;
    case 3: ShowOptionsForm(); break;
    case 4: ShowGraphForm(); break;
    case 5: SaveResults(); break;
    case 9: CleanExit();
    default: break;  // values without an action
    }
}
