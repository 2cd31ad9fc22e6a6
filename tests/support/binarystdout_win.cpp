// Linked into stand-in programs of the Windows build: their output reaches the program under
// test byte for byte, as the real tools' output does, instead of every \n becoming \r\n.
#include <cstdio>
#include <fcntl.h>
#include <io.h>

namespace {
const bool binaryStdout = [] {
    _setmode(_fileno(stdout), _O_BINARY);
    return true;
}();
} // namespace
