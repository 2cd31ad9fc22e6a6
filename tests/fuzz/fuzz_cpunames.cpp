// The processor and model names the system reports, matched against the profile table.
#include "cpuidentification.h"
#include "fuzzcheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzzBytes(data, size);
    const int half = bytes.size() / 2;
    const QString cpuName =
        cleanWmicText(QString::fromLocal8Bit(bytes.left(half)), QStringLiteral("Name"));
    const QString model =
        cleanWmicText(QString::fromLocal8Bit(bytes.mid(half)), QStringLiteral("Model"));
    FUZZ_CHECK(!cpuName.contains(QLatin1String("Name")));
    if (const auto match = matchCpuProfile(cpuName, model)) {
        FUZZ_CHECK(match->file.startsWith(QLatin1String("cpuprofiles\\")));
        FUZZ_CHECK(match->cores >= 0 && match->cores <= 8);
    }
    return 0;
}
