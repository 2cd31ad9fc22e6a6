// Compiles the generated form header once so that its include folder exists for every user.
#include "ui_mainwindow.h"
