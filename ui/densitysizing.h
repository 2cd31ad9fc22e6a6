#pragma once

class QMainWindow;
namespace Ui {
class MainWindow;
}

// Sizes the window and its rows of controls for a horizontal logical DPI. Between 241 and
// 287 DPI nothing changes at all, as designed.
void applyDensityToForm(QMainWindow *window, Ui::MainWindow &form, int dpi);
