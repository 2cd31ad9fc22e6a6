#include "identity.h"
#include "platform.h"

#ifdef Q_OS_WIN
Platform windowsPlatform();
std::shared_ptr<UserIdentity> windowsIdentity();
#else
#include "linux/linuxidentity.h"
Platform linuxPlatform();
#endif

Platform nativePlatform()
{
#ifdef Q_OS_WIN
    return windowsPlatform();
#else
    return linuxPlatform();
#endif
}

std::shared_ptr<UserIdentity> nativeIdentity()
{
#ifdef Q_OS_WIN
    return windowsIdentity();
#else
    return std::make_shared<LinuxIdentity>();
#endif
}
