// Finds the top-level window with the given title and tells its state, or clicks into it.
//   windowstate <title>             prints "visible", "hidden" or "none"
//   windowstate <title> click X Y   a left click at client position X, Y; status 1 without window
// Clicks are posted as mouse messages, which reach the window with any graphics driver.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <utility>

using Search = std::pair<std::wstring, HWND>; // the title, and the window found

int wmain(int argc, wchar_t **argv)
{
    if (argc < 2)
        return 2;
    Search search{argv[1], nullptr};
    auto match = [](HWND window, LPARAM context) -> BOOL {
        auto &[title, found] = *reinterpret_cast<Search *>(context);
        wchar_t text[256];
        if (title != std::wstring(text, GetWindowTextW(window, text, 256)))
            return TRUE;
        // A visible match wins over the hidden helper windows of the same name.
        if (!found || IsWindowVisible(window))
            found = window;
        return !IsWindowVisible(window);
    };
    EnumWindows(match, reinterpret_cast<LPARAM>(&search));
    const HWND found = search.second;
    if (argc == 2) {
        std::puts(!found ? "none" : IsWindowVisible(found) ? "visible" : "hidden");
        return 0;
    }
    if (!found)
        return 1;
    if (argc != 5 || std::wcscmp(argv[2], L"click") != 0)
        return 2;
    const LPARAM at = MAKELPARAM(_wtoi(argv[3]), _wtoi(argv[4]));
    PostMessageW(found, WM_MOUSEMOVE, 0, at);
    PostMessageW(found, WM_LBUTTONDOWN, MK_LBUTTON, at);
    PostMessageW(found, WM_LBUTTONUP, 0, at);
    return 0;
}
