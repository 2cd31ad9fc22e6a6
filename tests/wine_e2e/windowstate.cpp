// Finds the top-level window with the given title and tells its state, or clicks into it.
//   windowstate <title>             prints "visible", "hidden" or "none"
//   windowstate <title> size        prints the client area's width and height
//   windowstate <title> click X Y   a left click at client position X, Y; status 1 without window
// Clicks are posted as mouse messages, which reach the window with any graphics driver.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {
struct Search {
    std::wstring title;
    HWND found = nullptr;
};

BOOL CALLBACK match(HWND window, LPARAM context)
{
    auto *search = reinterpret_cast<Search *>(context);
    wchar_t text[256];
    const int length = GetWindowTextW(window, text, 256);
    if (search->title != std::wstring(text, length))
        return TRUE;
    // A visible match wins over the hidden helper windows of the same name.
    if (!search->found || IsWindowVisible(window))
        search->found = window;
    return !IsWindowVisible(window);
}

void click(HWND window, int x, int y)
{
    const LPARAM at = MAKELPARAM(x, y);
    PostMessageW(window, WM_MOUSEMOVE, 0, at);
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, at);
    PostMessageW(window, WM_LBUTTONUP, 0, at);
}
} // namespace

int wmain(int argc, wchar_t **argv)
{
    if (argc < 2)
        return 2;
    Search search{argv[1]};
    EnumWindows(match, reinterpret_cast<LPARAM>(&search));
    if (argc == 2) {
        std::puts(!search.found ? "none" : IsWindowVisible(search.found) ? "visible" : "hidden");
        return 0;
    }
    if (!search.found)
        return 1;
    if (argc == 3 && std::wcscmp(argv[2], L"size") == 0) {
        RECT client{};
        GetClientRect(search.found, &client);
        std::printf("%ld %ld\n", client.right, client.bottom);
        return 0;
    }
    if (argc == 5 && std::wcscmp(argv[2], L"click") == 0) {
        click(search.found, _wtoi(argv[3]), _wtoi(argv[4]));
        return 0;
    }
    return 2;
}
