#pragma once

// The application font's pixel size for a horizontal logical DPI; 0 means "leave the
// framework's font alone" (above 336). The jumps in the table are as designed.
int fontPixelSizeForDpi(int dpi);
