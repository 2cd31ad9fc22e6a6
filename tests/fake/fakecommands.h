#pragma once

#include "commandrunner.h"
#include "operationlog.h"

#include <QHash>

#include <functional>

// Records every command line as "run: <cmd>", "start: <cmd>", "shown <mode>: <cmd>",
// "detached: <program> <args joined by |> in <dir>" or "process: <program> <args>", and answers
// runAndRead() from scripted outputs. Asynchronous processes are real child processes.
class FakeCommandRunner : public CommandRunner {
public:
    explicit FakeCommandRunner(SharedLog log) : m_log(std::move(log)) {}

    QString runAndRead(const QString &commandLine, int) override
    {
        m_log->add(QStringLiteral("run: ") + commandLine);
        if (onRun)
            onRun(commandLine);
        return outputs.value(commandLine);
    }
    void start(const QString &commandLine) override
    {
        m_log->add(QStringLiteral("start: ") + commandLine);
    }
    void startShown(const QString &commandLine, ShowMode mode) override
    {
        m_log->add(QStringLiteral("shown %1: %2").arg(int(mode)).arg(commandLine));
    }
    void startDetached(const QString &program, const QStringList &arguments,
                       const QString &workingDirectory) override
    {
        m_log->add(QStringLiteral("detached: %1 %2 in %3")
                       .arg(program, arguments.join('|'), workingDirectory));
    }
    AsyncProcess *createProcess(QObject *parent) override;

    QHash<QString, QString> outputs;      // command line -> what it prints
    QHash<QString, QString> programMap;   // program as the window names it -> real program
    QHash<QString, QString> asyncOutputs; // startCommand() lines answered without a process
    // Called after a waited-for command is recorded, while its caller still waits: where other
    // work (a timer tick, a tray click) can cut in.
    std::function<void(const QString &commandLine)> onRun;

private:
    SharedLog m_log;
};
