#include "wintest.h"

#include "audio_endpoint.h"

#include <windows.h>

using namespace varnel::win;

// Under Wine the null ALSA sink is the default playback device: reading works, setting the
// level is not implemented.
WINTEST_CASE(readsTheNullSink)
{
    long status = 0;
    const unsigned volume = endpointVolume(1, 0.0f, false, &status);
    CHECK_EQ(status, S_OK);
    CHECK(volume <= 100);
    const unsigned mute = endpointVolume(4, 0.0f, false, &status);
    CHECK_EQ(status, S_OK);
    CHECK(mute == 999 || mute == 111);
    const std::string name = outputDeviceName();
    CHECK(!name.empty());
    CHECK(name != "No Audio Device");
}

WINTEST_CASE(settingReportsZeroAndWineRefuses)
{
    long status = 0;
    CHECK_EQ(endpointVolume(2, 0.5f, false, &status), 0u);
    CHECK_EQ(status, E_NOTIMPL);
    CHECK_EQ(endpointVolume(3, 0.0f, false, &status), 0u);
    CHECK_EQ(endpointVolume(7, 0.0f, false, &status), 0u);
    CHECK_EQ(status, E_INVALIDARG);
}

WINTEST_CASE(jackRule)
{
    struct Row {
        unsigned long mapping;
        int connection;
        bool connected;
        bool headphones;
    };
    // Mapping 3 is front left and right; connection type 1 the 3.5 mm jack.
    const Row rows[] = {
        {3, 1, true, true},   {3, 1, false, false}, {4, 1, true, false},
        {63, 1, true, false}, {3, 2, true, false},  {3, 0, true, false},
    };
    for (const Row &r : rows)
        CHECK_EQ(jackIsHeadphones(r.mapping, r.connection, r.connected), r.headphones);
}
