// The message a second start sends to the first, as the first receives it from anyone.
#include "fuzzcheck.h"
#include "instancekey.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString name = QStringLiteral("a1b2c3d4e5f6-lsb");
    const QByteArray bytes = fuzzBytes(data, size);
    decodeConnectionMessage(bytes, name);

    // Whatever type and number a sender picks, its own message reads back whole.
    if (size >= 5) {
        const quint8 type = data[0];
        const quint32 number = quint32(data[1]) | quint32(data[2]) << 8 | quint32(data[3]) << 16 |
                               quint32(data[4]) << 24;
        const ConnectionMessage back =
            decodeConnectionMessage(encodeConnectionMessage(name, type, number), name);
        FUZZ_CHECK(back.valid && back.type == type && back.instanceId == number);
    }
    return 0;
}
