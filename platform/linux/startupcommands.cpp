#include "commandtable.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace {

const char kEntryName[] = "varnel.desktop";

// The log-on task of the install folder's binary, as an XDG autostart entry.
QString autostartEntry()
{
    const QString binary = QCoreApplication::applicationFilePath();
    const QString folder = QDir::currentPath();
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Varnel\n"
                          "Comment=Laptop control centre\n"
                          "Exec=\"%1\"\n"
                          "Path=%2\n"
                          "Icon=%2/branding/varnel_system_tray.png\n"
                          "Terminal=false\n"
                          "X-GNOME-Autostart-enabled=true\n")
        .arg(binary, folder);
}

} // namespace

void addStartupCommands(CommandTable &table)
{
    table.add(QStringLiteral(R"(schtasks /create /tn "Varnrel" /XML settings\\varnrel_task\.xml)"),
              [](const QRegularExpressionMatch &) {
                  QDir().mkpath(LinuxPaths::autostartDir());
                  QSaveFile file(LinuxPaths::autostartDir() + QLatin1Char('/') +
                                 QLatin1String(kEntryName));
                  if (file.open(QIODevice::WriteOnly)) {
                      file.write(autostartEntry().toUtf8());
                      file.commit();
                  }
                  return QString();
              });
    table.add(QStringLiteral(R"(schtasks /Delete /tn "Varnrel" /f)"),
              [](const QRegularExpressionMatch &) {
                  QFile::remove(LinuxPaths::autostartDir() + QLatin1Char('/') +
                                QLatin1String(kEntryName));
                  return QString();
              });
}
