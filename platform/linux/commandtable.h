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
    using Reply = std::function<void(const QString &output)>;
    // A row whose work ends later (a call to the system helper); it calls reply exactly once.
    using AsyncHandler = std::function<void(const QRegularExpressionMatch &match, Reply reply)>;

    // available tells whether the row can do its work on this machine (a program it starts
    // is installed); rows without one always can.
    void add(const QString &pattern, Handler handler, std::function<bool()> available = {});
    void addAsync(const QString &pattern, AsyncHandler handler);
    // The output of the matching row, or nothing when no row matches. A later row's output is
    // waited for up to timeoutMs in a local event loop, as a waited-for child process is.
    std::optional<QString> run(const QString &commandLine, int timeoutMs = 30000) const;
    // Starts the matching row; false when no row matches.
    bool start(const QString &commandLine, Reply reply) const;
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
        AsyncHandler asyncHandler;
        // A pattern that is plain text (such rows take no captures) is this text instead.
        std::optional<QString> literal;
        Qt::CaseSensitivity literalCase = Qt::CaseSensitive;
    };
    static Row makeRow(const QString &pattern);
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
