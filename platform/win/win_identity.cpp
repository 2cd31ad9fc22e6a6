#include "win_identity.h"

#include "win_text.h"

#include <windows.h>

namespace varnel::win {

bool currentUserName(std::string &name)
{
    name.clear();
    // UNLEN + 1: the longest user name Windows allows, with its terminator.
    wchar_t buffer[257];
    DWORD size = sizeof(buffer) / sizeof(buffer[0]);
    if (!GetUserNameW(buffer, &size) || size == 0)
        return false;
    // size counts the terminator.
    name = toUtf8(std::wstring(buffer, size - 1));
    return !name.empty();
}

} // namespace varnel::win
