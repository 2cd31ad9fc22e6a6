#include "kconfigfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

KConfigFile::KConfigFile(QString path) : m_path(std::move(path))
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    m_lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    if (!m_lines.isEmpty() && m_lines.last().isEmpty())
        m_lines.removeLast();
}

int KConfigFile::headerLine(const QString &group) const
{
    return m_lines.indexOf(QLatin1Char('[') + group + QLatin1Char(']'));
}

int KConfigFile::groupEnd(int header) const
{
    int end = header + 1;
    while (end < m_lines.size() && !m_lines.at(end).startsWith(QLatin1Char('[')))
        ++end;
    return end;
}

int KConfigFile::keyLine(const QString &group, const QString &key) const
{
    const int header = headerLine(group);
    if (header < 0)
        return -1;
    const QString prefix = key + QLatin1Char('=');
    for (int line = header + 1; line < groupEnd(header); ++line) {
        if (m_lines.at(line).startsWith(prefix))
            return line;
    }
    return -1;
}

std::optional<QString> KConfigFile::value(const QString &group, const QString &key) const
{
    const int line = keyLine(group, key);
    if (line < 0)
        return std::nullopt;
    return m_lines.at(line).mid(key.size() + 1);
}

void KConfigFile::setValue(const QString &group, const QString &key, const QString &value)
{
    const QString entry = key + QLatin1Char('=') + value;
    const int line = keyLine(group, key);
    if (line >= 0) {
        m_lines[line] = entry;
        return;
    }
    int header = headerLine(group);
    if (header < 0) {
        if (!m_lines.isEmpty() && !m_lines.last().isEmpty())
            m_lines << QString();
        m_lines << QLatin1Char('[') + group + QLatin1Char(']');
        header = m_lines.size() - 1;
    }
    // After the group's last key, before the blank line that ends it.
    int at = groupEnd(header);
    while (at > header + 1 && m_lines.at(at - 1).trimmed().isEmpty())
        --at;
    m_lines.insert(at, entry);
}

void KConfigFile::remove(const QString &group, const QString &key)
{
    const int line = keyLine(group, key);
    if (line < 0)
        return;
    m_lines.removeAt(line);
    const int header = headerLine(group);
    const int end = groupEnd(header);
    for (int at = header + 1; at < end; ++at) {
        if (!m_lines.at(at).trimmed().isEmpty())
            return;
    }
    for (int at = end - 1; at >= header; --at)
        m_lines.removeAt(at);
    if (header > 0 && header == m_lines.size() && m_lines.last().isEmpty())
        m_lines.removeLast();
}

bool KConfigFile::save() const
{
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    file.write(m_lines.join(QLatin1Char('\n')).toUtf8());
    if (!m_lines.isEmpty())
        file.write("\n");
    return file.commit();
}

bool plasmaSession()
{
    const QStringList desktops =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    return desktops.contains(QStringLiteral("KDE"), Qt::CaseInsensitive);
}
