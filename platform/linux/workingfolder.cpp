#include "workingfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <unistd.h>

namespace {

// Points link at target unless something of the user's own is already there; a link left by
// an older install folder is replaced.
void linkTo(const QString &target, const QString &link)
{
    const QFileInfo existing(link);
    if (existing.isSymLink()) {
        if (existing.symLinkTarget() == target)
            return;
        QFile::remove(link);
    } else if (existing.exists()) {
        return;
    }
    QFile::link(target, link);
}

} // namespace

bool folderWritable(const QString &folder)
{
    return ::access(QFile::encodeName(folder).constData(), W_OK) == 0;
}

QString prepareWorkingFolder(const QString &installFolder, const QString &userFolder,
                             bool installFolderWritable)
{
    if (installFolderWritable)
        return installFolder;
    QDir user(userFolder);
    user.mkpath(QStringLiteral("settings"));
    user.mkpath(QStringLiteral("updates"));
    for (const char *shared : {"branding", "cpuprofiles"})
        linkTo(installFolder + QLatin1Char('/') + QLatin1String(shared),
               user.filePath(QLatin1String(shared)));
    // The shipped settings files are read, never written; the user's own files sit beside them.
    const QDir shipped(installFolder + QStringLiteral("/settings"));
    for (const QString &name : shipped.entryList(QDir::Files))
        linkTo(shipped.filePath(name), user.filePath(QStringLiteral("settings/") + name));
    return user.absolutePath();
}

QString userWorkingFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/varnel");
}
