// An update server's answer, whatever it sends.
#include "fuzzcheck.h"
#include "versioncompare.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray body = fuzzBytes(data, size);
    const QString latest = versionFromAnswer(body);
    // Shown in a one-line label: a version or nothing, never the body as it came.
    FUZZ_CHECK(latest.size() <= 80 && !latest.contains(QLatin1Char('\n')));
    FUZZ_CHECK(compareVersions(latest, latest) == 0);
    compareVersions(QStringLiteral("1.4.4"), latest);
    // The comparison itself takes any text.
    const QString raw = QString::fromUtf8(body);
    const int forward = compareVersions(QStringLiteral("1.4.4"), raw);
    const int backward = compareVersions(raw, QStringLiteral("1.4.4"));
    FUZZ_CHECK((forward < 0) == (backward > 0));
    return 0;
}
