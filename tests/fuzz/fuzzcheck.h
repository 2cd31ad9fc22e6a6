#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

// A property every input must keep; a broken one stops the fuzzer with the input saved.
#define FUZZ_CHECK(condition)                                                                      \
    do {                                                                                           \
        if (!(condition))                                                                          \
            __builtin_trap();                                                                      \
    } while (false)

inline QByteArray fuzzBytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size));
}
