#pragma once

#include <cstdint>
#include <string>

namespace varnel::win {

// The parts of a window message the sleep and resume handling looks at.
struct NativeMessage {
    unsigned id = 0;         // MSG::message
    std::uintptr_t code = 0; // MSG::wParam (for WM_POWERBROADCAST, the PBT_* event)
};

// Reads a message out of a native event as the application's event filters receive it: the
// event type names a MSG ("windows_generic_MSG" or "windows_dispatcher_MSG") and message points
// at it. False for any other event type or a null message.
bool readNativeMessage(const std::string &eventType, const void *message, NativeMessage &out);

} // namespace varnel::win
