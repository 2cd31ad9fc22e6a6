#include "wintest.h"

#include "keyhook.h"

#include <string>
#include <thread>
#include <vector>

using namespace varnel::win;

namespace {

// The keys that came through: letters as themselves, the Windows keys as 'l' and 'r'.
std::string seen;

// Installed before the blocker, so it is called after it: it sees only what was passed on.
LRESULT CALLBACK observer(int code, WPARAM message, LPARAM event)
{
    const DWORD key = reinterpret_cast<const KBDLLHOOKSTRUCT *>(event)->vkCode;
    if (code == HC_ACTION && message == WM_KEYDOWN)
        seen += key == VK_LWIN ? 'l' : key == VK_RWIN ? 'r' : static_cast<char>(key);
    return CallNextHookEx(nullptr, code, message, event);
}

void press(WORD key)
{
    INPUT input[2] = {};
    input[0].type = INPUT_KEYBOARD;
    input[0].ki.wVk = key;
    input[1] = input[0];
    input[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, input, sizeof(INPUT));
}

// Types the keys from another thread while this one pumps its messages (the hooks run through
// them) until the last key arrives; what came through the hooks.
std::string typeThroughHooks(std::vector<WORD> keys, ULONGLONG patienceMs = 5000)
{
    seen.clear();
    std::thread typist([keys] {
        for (WORD key : keys)
            press(key);
    });
    for (const ULONGLONG deadline = GetTickCount64() + patienceMs;
         GetTickCount64() < deadline && (seen.empty() || seen.back() != char(keys.back()));) {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    }
    typist.join();
    return seen;
}

} // namespace

// Every message of both Windows keys is swallowed, and nothing else.
WINTEST_CASE(swallowRule)
{
    for (DWORD key : {VK_LWIN, VK_RWIN}) {
        for (WPARAM message : {WM_KEYDOWN, WM_KEYUP, WM_SYSKEYDOWN, WM_SYSKEYUP})
            CHECK(swallowKeyEvent(HC_ACTION, message, key));
        CHECK(!swallowKeyEvent(HC_ACTION, WM_CHAR, key));
        CHECK(!swallowKeyEvent(HC_ACTION, WM_MOUSEMOVE, key));
        CHECK(!swallowKeyEvent(HC_NOREMOVE, WM_KEYDOWN, key));
        CHECK(!swallowKeyEvent(-1, WM_KEYDOWN, key));
    }
    for (DWORD other : {DWORD('R'), DWORD(VK_APPS), DWORD(VK_LMENU)})
        CHECK(!swallowKeyEvent(HC_ACTION, WM_KEYDOWN, other));
}

WINTEST_CASE(installedHookSwallowsOnlyTheWindowsKeys)
{
    HINSTANCE module = GetModuleHandleW(nullptr);
    HHOOK watch = SetWindowsHookExW(WH_KEYBOARD_LL, observer, module, 0);
    CHECK(watch != nullptr);
    HHOOK blocker = installWindowsKeyHook(module);
    CHECK(blocker != nullptr);

    // Wine skips a low-level hook that has not answered within 2 s, and on a loaded machine
    // the first events of a fresh process (while the prefix's desktop starts) can be that
    // late: keys go through both hooks until one arrives, then the sequence starts.
    bool warm = false;
    for (int attempt = 0; attempt < 20 && !warm; ++attempt)
        warm = typeThroughHooks({'Q'}, 1000) == "Q";
    CHECK(warm);
    CHECK_EQ(typeThroughHooks({'A', VK_LWIN, 'R', VK_RWIN, 'Z'}), std::string("ARZ"));

    // Removed, the Windows keys come through again.
    CHECK(removeWindowsKeyHook(blocker));
    CHECK_EQ(typeThroughHooks({VK_LWIN, 'Z'}), std::string("lZ"));
    CHECK(!removeWindowsKeyHook(nullptr));
    UnhookWindowsHookEx(watch);
}
