#pragma once

#include <windows.h>

namespace varnel::win {

// The Windows-key blocker: a low-level keyboard hook that swallows every event of the two
// Windows keys, so their combinations (Win+R, ...) go too.

// Whether the hook swallows an event: an action code, a key-down or key-up message (plain or
// system) and the left or right Windows key.
bool swallowKeyEvent(int code, WPARAM message, DWORD virtualKey);

// The hook procedure; it keeps no state and returns at once.
LRESULT CALLBACK windowsKeyHookProc(int code, WPARAM message, LPARAM event);

// SetWindowsHookExW(WH_KEYBOARD_LL, ..., module, 0); nullptr when refused.
HHOOK installWindowsKeyHook(HINSTANCE module);
bool removeWindowsKeyHook(HHOOK hook);

} // namespace varnel::win
