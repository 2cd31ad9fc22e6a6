#include "wintest.h"

#include "keyhook.h"

#include <string>
#include <thread>
#include <vector>

using namespace varnel::win;

namespace {

std::vector<DWORD> &seen()
{
    static std::vector<DWORD> keys;
    return keys;
}

// The keys that came through, as text ("A R Z", Windows keys as "LWIN"/"RWIN").
std::string seenText()
{
    std::string out;
    for (DWORD key : seen()) {
        if (!out.empty())
            out += ' ';
        out += key == VK_LWIN   ? std::string("LWIN")
               : key == VK_RWIN ? std::string("RWIN")
                                : std::string(1, static_cast<char>(key));
    }
    return out;
}

// Installed before the blocker, so it is called after it: it sees only what was passed on.
LRESULT CALLBACK observer(int code, WPARAM message, LPARAM event)
{
    if (code == HC_ACTION && message == WM_KEYDOWN)
        seen().push_back(reinterpret_cast<const KBDLLHOOKSTRUCT *>(event)->vkCode);
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

// Pumps this thread's messages (the hooks run through them) until the marker key arrives.
bool pumpUntilSeen(DWORD marker, ULONGLONG patienceMs = 5000)
{
    const ULONGLONG deadline = GetTickCount64() + patienceMs;
    while (GetTickCount64() < deadline) {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        if (!seen().empty() && seen().back() == marker)
            return true;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    }
    return false;
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
    for (int attempt = 0; attempt < 20 && !warm; ++attempt) {
        std::thread warmUp([] { press('Q'); });
        warm = pumpUntilSeen('Q', 1000);
        warmUp.join();
    }
    CHECK(warm);

    seen().clear();
    std::thread typist([] {
        for (WORD key : {WORD('A'), WORD(VK_LWIN), WORD('R'), WORD(VK_RWIN), WORD('Z')})
            press(key);
    });
    pumpUntilSeen('Z');
    typist.join();
    CHECK_EQ(seenText(), std::string("A R Z"));

    // Removed, the Windows keys come through again.
    CHECK(removeWindowsKeyHook(blocker));
    seen().clear();
    std::thread again([] {
        press(VK_LWIN);
        press('Z');
    });
    pumpUntilSeen('Z');
    again.join();
    CHECK_EQ(seenText(), std::string("LWIN Z"));
    CHECK(!removeWindowsKeyHook(nullptr));
    UnhookWindowsHookEx(watch);
}
