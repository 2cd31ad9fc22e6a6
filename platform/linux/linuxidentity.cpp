#include "linuxidentity.h"

#include <pwd.h>
#include <unistd.h>

#include <vector>

QString LinuxIdentity::userName()
{
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<size_t>(size) : 16384);
    passwd entry{};
    passwd *result = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &result) != 0 || !result)
        return QString();
    return QString::fromLocal8Bit(result->pw_name);
}
