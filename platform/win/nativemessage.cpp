#include "nativemessage.h"

#include <windows.h>

namespace varnel::win {

bool readNativeMessage(const std::string &eventType, const void *message, NativeMessage &out)
{
    if (!message)
        return false;
    if (eventType != "windows_generic_MSG" && eventType != "windows_dispatcher_MSG")
        return false;
    const MSG *msg = static_cast<const MSG *>(message);
    out.id = msg->message;
    out.code = static_cast<std::uintptr_t>(msg->wParam);
    return true;
}

} // namespace varnel::win
