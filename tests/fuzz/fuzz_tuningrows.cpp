// Whatever the tuning client prints, read as each of the eleven queries' output.
#include "fuzzcheck.h"
#include "tuningparsers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString output = QString::fromLocal8Bit(fuzzBytes(data, size));
    parseUndervolt(output);
    const TurboPowerParse power = parseTurboPower(output);
    // 4096 W in 1/8 W steps is the most a turbo-power row may stand for.
    if (power.reading)
        FUZZ_CHECK(power.reading->sliderValue >= 0 && power.reading->sliderValue <= 4096 * 8);
    parseTurboTime(output);
    for (int cores = 1; cores <= 8; ++cores) {
        const CoreRatioParse ratio = parseCoreRatio(output, cores);
        FUZZ_CHECK(!(ratio.reading && ratio.invalidId));
    }
    return 0;
}
