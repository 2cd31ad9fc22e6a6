#include "identity.h"
#include "instanceblock.h"
#include "platform.h"

#ifdef Q_OS_WIN
#include "sharedmemoryblock.h"
Platform windowsPlatform();
std::shared_ptr<UserIdentity> windowsIdentity();
#else
#include "linux/instancefile.h"
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

std::unique_ptr<InstanceBlockHost> nativeInstanceBlock(const QString &key)
{
#ifdef Q_OS_WIN
    return std::make_unique<SharedMemoryInstanceBlock>(key);
#else
    // System V blocks are named through key files in the shared temporary folder, which any
    // local user can create first or delete.
    return std::make_unique<FileInstanceBlock>(
        privateInstanceDirectory(instanceDirectoryCandidates()), key);
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
