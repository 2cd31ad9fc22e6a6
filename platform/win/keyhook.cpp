#include "keyhook.h"

namespace varnel::win {

bool swallowKeyEvent(int code, WPARAM message, DWORD virtualKey)
{
    if (code != HC_ACTION)
        return false;
    const bool keyMessage = message == WM_KEYDOWN || message == WM_KEYUP ||
                            message == WM_SYSKEYDOWN || message == WM_SYSKEYUP;
    return keyMessage && (virtualKey == VK_LWIN || virtualKey == VK_RWIN);
}

LRESULT CALLBACK windowsKeyHookProc(int code, WPARAM message, LPARAM event)
{
    // The event data is only defined for action codes.
    if (code == HC_ACTION && event) {
        const auto *key = reinterpret_cast<const KBDLLHOOKSTRUCT *>(event);
        if (swallowKeyEvent(code, message, key->vkCode))
            return 1;
    }
    return CallNextHookEx(nullptr, code, message, event);
}

HHOOK installWindowsKeyHook(HINSTANCE module)
{
    return SetWindowsHookExW(WH_KEYBOARD_LL, windowsKeyHookProc, module, 0);
}

bool removeWindowsKeyHook(HHOOK hook)
{
    return hook && UnhookWindowsHookEx(hook) != FALSE;
}

} // namespace varnel::win
