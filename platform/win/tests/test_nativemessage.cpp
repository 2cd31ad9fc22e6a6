#include "wintest.h"

#include "nativemessage.h"

#include <windows.h>

using namespace varnel::win;

namespace {

constexpr UINT kDeviceMessage = 0xC08E;

// Posts a message to this thread and takes it off the queue as the event loop would.
MSG roundTrip(UINT id, WPARAM code)
{
    MSG msg{};
    // The first peek gives the thread its message queue.
    PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE);
    CHECK(PostThreadMessageW(GetCurrentThreadId(), id, code, 0));
    msg = MSG{};
    CHECK(GetMessageW(&msg, nullptr, id, id) > 0);
    return msg;
}

} // namespace

WINTEST_CASE(powerBroadcastsFromTheQueueCarryTheirEvent)
{
    for (WPARAM event : {WPARAM(PBT_APMSUSPEND), WPARAM(PBT_APMRESUMESUSPEND),
                         WPARAM(PBT_APMRESUMESTANDBY), WPARAM(PBT_APMRESUMEAUTOMATIC)}) {
        const MSG msg = roundTrip(WM_POWERBROADCAST, event);
        NativeMessage read;
        CHECK(readNativeMessage("windows_generic_MSG", &msg, read));
        CHECK_EQ(read.id, 0x218u);
        CHECK_EQ(read.code, static_cast<std::uintptr_t>(event));
    }
}

WINTEST_CASE(theDeviceMessageAndWideCodesArriveWhole)
{
    const WPARAM wide = static_cast<WPARAM>(0x0123456789ABCDEFull);
    const MSG msg = roundTrip(kDeviceMessage, wide);
    NativeMessage read;
    CHECK(readNativeMessage("windows_dispatcher_MSG", &msg, read));
    CHECK_EQ(read.id, 49294u);
    CHECK_EQ(read.code, static_cast<std::uintptr_t>(wide));
}

WINTEST_CASE(otherEventsAreNotMessages)
{
    const MSG msg = roundTrip(WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC);
    NativeMessage read;
    read.id = 7;
    CHECK(!readNativeMessage("xcb_generic_event_t", &msg, read));
    CHECK(!readNativeMessage("windows_generic_MSG", nullptr, read));
    CHECK(!readNativeMessage("", &msg, read));
    CHECK_EQ(read.id, 7u);
}
