#include "commandtable.h"

#include <QDir>

void CommandTable::add(const QString &pattern, Handler handler, std::function<bool()> available)
{
    m_rows.push_back({QRegularExpression(QRegularExpression::anchoredPattern(pattern)),
                      std::move(handler), std::move(available)});
}

const CommandTable::Row *CommandTable::find(const QString &commandLine,
                                            QRegularExpressionMatch *match) const
{
    for (const Row &row : m_rows) {
        QRegularExpressionMatch m = row.pattern.match(commandLine);
        if (m.hasMatch()) {
            *match = m;
            return &row;
        }
    }
    return nullptr;
}

std::optional<QString> CommandTable::run(const QString &commandLine) const
{
    QRegularExpressionMatch match;
    const Row *row = find(commandLine, &match);
    if (!row)
        return std::nullopt;
    return row->handler(match);
}

bool CommandTable::knows(const QString &commandLine) const
{
    QRegularExpressionMatch match;
    return find(commandLine, &match) != nullptr;
}

bool CommandTable::canRun(const QString &commandLine) const
{
    QRegularExpressionMatch match;
    const Row *row = find(commandLine, &match);
    return row && (!row->available || row->available());
}

QString LinuxPaths::configHome()
{
    const QString xdg = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!xdg.isEmpty())
        return xdg;
    return QDir::homePath() + QStringLiteral("/.config");
}

QString LinuxPaths::autostartDir()
{
    return configHome() + QStringLiteral("/autostart");
}
