#include "densityfont.h"

int fontPixelSizeForDpi(int dpi)
{
    struct Band {
        int upTo;
        int pixels;
    };
    static const Band bands[] = {{96, 12},  {120, 14}, {144, 17}, {160, 19}, {180, 20},
                                 {192, 22}, {216, 24}, {240, 26}, {288, 34}, {336, 36}};
    for (const Band &band : bands) {
        if (dpi <= band.upTo)
            return band.pixels;
    }
    return 0;
}
