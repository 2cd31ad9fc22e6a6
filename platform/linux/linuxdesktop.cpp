#include "linuxdesktop.h"

#include <QDesktopServices>
#include <QFile>

void LinuxDesktop::openUrl(const QUrl &url)
{
    QDesktopServices::openUrl(url);
}

bool LinuxDesktop::systemFileExists(const QString &path)
{
    // Windows system paths ("C://...") name nothing here, but the tuning utility is installed
    // exactly when the helper that stands in for it is.
    if (path.size() > 1 && path.at(1) == QLatin1Char(':'))
        return path.endsWith(QLatin1String("\\XtuService.exe")) && m_helperAvailable();
    return QFile::exists(path);
}

bool LinuxDesktop::copySystemFile(const QString &from, const QString &to)
{
    if (to.size() > 1 && to.at(1) == QLatin1Char(':'))
        return false;
    return QFile::copy(from, to);
}

QString LinuxDesktop::windowsToolsUnavailable() const
{
    return QStringLiteral("ThrottleStop is a Windows program. On Linux the CPU Tuning tab tunes "
                          "the processor through the system helper.");
}
