#include "screenfit.h"

QRect fitOnScreen(QRect window, QSize screenSize, int screenLeft)
{
    const int W = screenSize.width();
    const int H = screenSize.height();
    // The walk always settles for sane sizes; the bound only guards against absurd input.
    for (int step = 0; step < 100000; ++step) {
        int x = window.x();
        int y = window.y();
        const int w = window.width();
        const int h = window.height();
        if (h < H) {
            if (y + h > H)
                y -= 20;
            if (y < 0)
                y += 2;
        }
        if (w < W) {
            if (x + w > screenLeft + W)
                x -= 2;
            if (x < screenLeft)
                x += 2;
        }
        if (x == window.x() && y == window.y())
            return window;
        window.moveTo(x, y);
    }
    return window;
}

QSize minimumSizeForDpi(int dpi)
{
    if (dpi < 97)
        return {800, 900};
    if (dpi <= 120)
        return {900, 980};
    if (dpi <= 144)
        return {1000, 1150};
    if (dpi <= 168)
        return {1100, 1400};
    if (dpi <= 192)
        return {1300, 1500};
    if (dpi <= 216)
        return {1550, 1650};
    if (dpi <= 240)
        return {1550, 1700};
    if (dpi <= 287)
        return {};
    return {1900, 2000};
}

QSize titleButtonSizeForDpi(int dpi)
{
    if (dpi >= 336)
        return {56, 56};
    if (dpi >= 288)
        return {52, 52};
    return {};
}

int rowHeightForDpi(int dpi)
{
    if (dpi < 97)
        return 27;
    if (dpi <= 120)
        return 32;
    if (dpi <= 144)
        return 38;
    if (dpi <= 168)
        return 44;
    if (dpi <= 192)
        return 50;
    if (dpi <= 240)
        return 58;
    if (dpi <= 287)
        return 0;
    return 70;
}
