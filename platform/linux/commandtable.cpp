#include "commandtable.h"

#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <memory>

namespace {

// The text up to the first character with a meaning in a regular expression, or up to a
// character a quantifier could make optional.
QString literalStart(const QString &pattern)
{
    static const QString special = QStringLiteral("\\^$.|?*+()[]{}");
    int end = 0;
    while (end < pattern.size() && !special.contains(pattern.at(end)))
        ++end;
    if (end < pattern.size() && QStringLiteral("?*{").contains(pattern.at(end)) && end > 0)
        --end;
    return pattern.left(end);
}

// The text a pattern without any expression matches ("(?i)" first: in any case), or nothing.
std::optional<QString> wholeLiteral(QString pattern, Qt::CaseSensitivity *sensitivity)
{
    *sensitivity = Qt::CaseSensitive;
    if (pattern.startsWith(QLatin1String("(?i)"))) {
        pattern.remove(0, 4);
        *sensitivity = Qt::CaseInsensitive;
    }
    static const QString special = QStringLiteral("^$.|?*+()[]{}");
    QString text;
    for (int i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern.at(i);
        if (c == QLatin1Char('\\')) {
            if (i + 1 == pattern.size() || pattern.at(i + 1).isLetterOrNumber())
                return std::nullopt;
            text += pattern.at(++i);
        } else if (special.contains(c)) {
            return std::nullopt;
        } else {
            text += c;
        }
    }
    return text;
}

} // namespace

CommandTable::Row CommandTable::makeRow(const QString &pattern)
{
    Row row;
    Qt::CaseSensitivity sensitivity = Qt::CaseSensitive;
    if (const std::optional<QString> text = wholeLiteral(pattern, &sensitivity)) {
        row.literal = *text;
        row.literalCase = sensitivity;
    } else {
        row.pattern = QRegularExpression(QRegularExpression::anchoredPattern(pattern));
    }
    row.literalStart = literalStart(pattern);
    return row;
}

void CommandTable::add(const QString &pattern, Handler handler, std::function<bool()> available)
{
    Row row = makeRow(pattern);
    row.handler = std::move(handler);
    row.available = std::move(available);
    m_rows.push_back(std::move(row));
}

void CommandTable::addAsync(const QString &pattern, AsyncHandler handler)
{
    Row row = makeRow(pattern);
    row.asyncHandler = std::move(handler);
    m_rows.push_back(std::move(row));
}

const CommandTable::Row *CommandTable::find(const QString &commandLine,
                                            QRegularExpressionMatch *match) const
{
    for (const Row &row : m_rows) {
        // Most rows are plain text: compared as text, no expression engine is even loaded.
        if (row.literal) {
            if (commandLine.compare(*row.literal, row.literalCase) != 0)
                continue;
            *match = QRegularExpressionMatch();
            return &row;
        }
        if (!commandLine.startsWith(row.literalStart))
            continue;
        QRegularExpressionMatch m = row.pattern.match(commandLine);
        if (m.hasMatch()) {
            *match = m;
            return &row;
        }
    }
    return nullptr;
}

std::optional<QString> CommandTable::run(const QString &commandLine, int timeoutMs) const
{
    QRegularExpressionMatch match;
    const Row *row = find(commandLine, &match);
    if (!row)
        return std::nullopt;
    if (row->handler)
        return row->handler(match);
    auto output = std::make_shared<std::optional<QString>>();
    auto loop = std::make_shared<QEventLoop>();
    row->asyncHandler(match, [output, loop](const QString &text) {
        *output = text;
        loop->quit();
    });
    if (!output->has_value()) {
        if (timeoutMs >= 0)
            QTimer::singleShot(timeoutMs, loop.get(), &QEventLoop::quit);
        loop->exec();
    }
    return output->value_or(QString());
}

bool CommandTable::start(const QString &commandLine, Reply reply) const
{
    QRegularExpressionMatch match;
    const Row *row = find(commandLine, &match);
    if (!row)
        return false;
    if (row->handler)
        reply(row->handler(match));
    else
        row->asyncHandler(match, std::move(reply));
    return true;
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
