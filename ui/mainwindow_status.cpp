// The window's shared status block for the companion tools: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::startStatusPublisher()
{
}

void MainWindow::sharedmemtimer()
{
}

void MainWindow::loadIntoSharedMem(const QString &)
{
}

