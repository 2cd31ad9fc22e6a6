#include "linuxdesktop.h"

#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>

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

bool LinuxDesktop::translucentWindows()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return true;
    int screen = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &screen);
    bool composited = false;
    if (!xcb_connection_has_error(connection)) {
        const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(screen);
        xcb_intern_atom_reply_t *atom = xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 1, name.size(), name.constData()), nullptr);
        if (atom && atom->atom != XCB_ATOM_NONE) {
            xcb_get_selection_owner_reply_t *owner = xcb_get_selection_owner_reply(
                connection, xcb_get_selection_owner(connection, atom->atom), nullptr);
            composited = owner && owner->owner != XCB_NONE;
            std::free(owner);
        }
        std::free(atom);
    }
    xcb_disconnect(connection);
    return composited;
}

QString LinuxDesktop::windowsToolsUnavailable() const
{
    return QStringLiteral("ThrottleStop is a Windows program. On Linux the CPU Tuning tab tunes "
                          "the processor through the system helper.");
}
