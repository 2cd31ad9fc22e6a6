#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>

// Maps the Windows command lines the program builds to native work on Linux. Each row matches a
// whole command line; its handler does the work and returns what the command would print.
// An unknown command behaves like a program that does not exist: nothing happens, no output.
class CommandTable {
public:
    using Handler = std::function<QString(const QRegularExpressionMatch &match)>;

    // available tells whether the row can do its work on this machine (a program it starts
    // is installed); rows without one always can.
    void add(const QString &pattern, Handler handler, std::function<bool()> available = {});
    // The output of the matching row, or nothing when no row matches.
    std::optional<QString> run(const QString &commandLine) const;
    bool knows(const QString &commandLine) const;
    // A known row that can do its work here.
    bool canRun(const QString &commandLine) const;

private:
    struct Row {
        QRegularExpression pattern;
        Handler handler;
        std::function<bool()> available;
        // The pattern's leading plain text: a line without it cannot match, and skipping the
        // row spares compiling its expression (a few dozen of them cost most of the first run).
        QString literalStart;
    };
    const Row *find(const QString &commandLine, QRegularExpressionMatch *match) const;
    QVector<Row> m_rows;
};

// Where the install folder's binary lives and where per-user files go; overridable in tests
// through the usual XDG variables.
struct LinuxPaths {
    static QString configHome();   // $XDG_CONFIG_HOME or ~/.config
    static QString autostartDir(); // configHome()/autostart
};

// Rows of each area; the native bundle registers them all.
void addStartupCommands(CommandTable &table);
