// Prints the state of the top-level window with the given title: "visible", "hidden" or "none".
//   windowstate <title>
#include <windows.h>

#include <cstdio>
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
} // namespace

int wmain(int argc, wchar_t **argv)
{
    if (argc != 2)
        return 2;
    Search search{argv[1]};
    EnumWindows(match, reinterpret_cast<LPARAM>(&search));
    std::puts(!search.found ? "none" : IsWindowVisible(search.found) ? "visible" : "hidden");
    return 0;
}
