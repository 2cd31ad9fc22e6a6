#include "identity.h"
#include "platform.h"

#ifdef Q_OS_WIN
Platform windowsPlatform();
std::shared_ptr<UserIdentity> windowsIdentity();
#else
#include "linux/linuxidentity.h"
#include "linux/workingfolder.h"
Platform linuxPlatform();
#endif

#include <QCoreApplication>
#include <QDir>

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

QString nativeWorkingFolder()
{
#ifdef Q_OS_WIN
    // Started by its log-on task or shortcut in the install folder, as administrator.
    return QDir::currentPath();
#else
    const QString installFolder = QCoreApplication::applicationDirPath();
    return prepareWorkingFolder(installFolder, userWorkingFolder(), folderWritable(installFolder));
#endif
}
