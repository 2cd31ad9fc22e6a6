#pragma once

#include <QRect>
#include <QSize>

// The keep-on-screen walk: moves a window rectangle back onto a screen of size screenSize whose
// geometry starts at screenLeft. The vertical test looks at the screen height alone and steps 20
// pixels up; every other step is 2 pixels. Both are deliberate.
QRect fitOnScreen(QRect window, QSize screenSize, int screenLeft);

// The window's minimum size for a horizontal logical DPI; an invalid size means "no change".
QSize minimumSizeForDpi(int dpi);
// Fixed size of the title-bar buttons for a DPI; an invalid size leaves them as built.
QSize titleButtonSizeForDpi(int dpi);
// Minimum height of rows of controls (sliders, combo boxes, check boxes) for a DPI.
int rowHeightForDpi(int dpi);
