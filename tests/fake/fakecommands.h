#pragma once

#include "commandrunner.h"
#include "operationlog.h"

#include <QHash>

#include <functional>

// Records every command line and answers runAndRead() from scripted outputs. Asynchronous
// processes are real child processes; programMap points a program path the window uses (the
// tuning client) at a test program.
class FakeCommandRunner : public CommandRunner {
public:
    explicit FakeCommandRunner(SharedLog log) : m_log(std::move(log)) {}

    QString runAndRead(const QString &commandLine, int timeoutMs) override;
    void start(const QString &commandLine) override;
    void startShown(const QString &commandLine, ShowMode mode) override;
    void startDetached(const QString &program, const QStringList &arguments,
                       const QString &workingDirectory) override;
    AsyncProcess *createProcess(QObject *parent) override;

    QHash<QString, QString> outputs;    // command line -> what it prints
    QHash<QString, QString> programMap; // program as the window names it -> real program
    // Answers for asynchronous command lines (startCommand) given without a child process.
    QHash<QString, QString> asyncOutputs;
    // Called after a waited-for command is recorded, while its caller still waits: where other
    // work (a timer tick, a tray click) can cut in.
    std::function<void(const QString &commandLine)> onRun;

    // Entry texts: "run: <cmd>", "start: <cmd>", "shown <mode>: <cmd>",
    // "detached: <program> <args joined by |> in <dir>", "process: <program> <args>".
private:
    SharedLog m_log;
};
