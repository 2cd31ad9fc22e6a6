#include "autostartentries.h"

#include "commandtable.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

const QString AutostartEntries::runKey =
    QStringLiteral(R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run\)");

namespace {

struct Entry {
    bool exists = false;
    bool hidden = false;
    QString exec;
};

// Only the keys of the main group matter; desktop files may carry actions and translations.
Entry readEntry(const QString &path)
{
    Entry entry;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return entry;
    entry.exists = true;
    QTextStream in(&file);
    bool mainGroup = false;
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            mainGroup = line == QLatin1String("[Desktop Entry]");
            continue;
        }
        if (!mainGroup)
            continue;
        if (line.startsWith(QLatin1String("Exec=")))
            entry.exec = line.mid(5);
        else if (line.startsWith(QLatin1String("Hidden=")))
            entry.hidden = line.mid(7).trimmed() == QLatin1String("true");
    }
    return entry;
}

} // namespace

QString AutostartEntries::entryPath(const QString &name)
{
    QString file = name;
    file.replace(QLatin1Char('/'), QLatin1Char('_'));
    return LinuxPaths::autostartDir() + QLatin1Char('/') + file + QStringLiteral(".desktop");
}

QVariant AutostartEntries::value(const QString &, const QString &name, const QVariant &defaultValue)
{
    const Entry entry = readEntry(entryPath(name));
    if (!entry.exists || entry.hidden)
        return defaultValue;
    return entry.exec;
}

void AutostartEntries::setValue(const QString &, const QString &name, const QVariant &value)
{
    QDir().mkpath(LinuxPaths::autostartDir());
    QSaveFile file(entryPath(name));
    if (!file.open(QIODevice::WriteOnly))
        return;
    QTextStream out(&file);
    out << "[Desktop Entry]\n"
        << "Type=Application\n"
        << "Name=" << name << "\n"
        << "Exec=" << value.toString() << "\n"
        << "Terminal=false\n";
    out.flush();
    file.commit();
}

void AutostartEntries::remove(const QString &, const QString &name)
{
    QFile::remove(entryPath(name));
}

bool AutostartEntries::contains(const QString &, const QString &name)
{
    const Entry entry = readEntry(entryPath(name));
    return entry.exists && !entry.hidden;
}
