// The battery widget's two query outputs, in any encoding a tool may write.
#include "batteryreadings.h"
#include "fuzzcheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = toolOutputText(fuzzBytes(data, size));
    parseBatteryStatus(text);
    FUZZ_CHECK(parseBatteryCharge(text).endsWith(QLatin1Char('%')));
    return 0;
}
