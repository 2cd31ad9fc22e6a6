#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

// Show modes of a started program, with the values the Windows loader uses.
enum class ShowMode : int { Hidden = 0, Normal = 1, ShowNoActivate = 4, Show = 5 };

// A child process that reports through signals. The tuning client's chains and the battery
// widget's queries drive these; on Linux some commands are answered natively without a process.
class AsyncProcess : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~AsyncProcess() override = default;

    virtual void setWorkingDirectory(const QString &dir) = 0;
    virtual void start(const QString &program, const QStringList &arguments) = 0;
    // The whole line is one string; the platform splits it into program and arguments.
    virtual void startCommand(const QString &commandLine) = 0;
    virtual bool isRunning() const = 0;
    virtual QByteArray readAllStandardOutput() = 0;
    virtual void write(const QByteArray &data) = 0;
    // Ends the process if it still runs and closes its channels.
    virtual void close() = 0;

signals:
    void readyReadStandardOutput();
    void finished(int exitCode, QProcess::ExitStatus exitStatus);
};

// Runs platform command lines (powercfg, schtasks, tasklist, ...). The program builds the exact
// command text; each backend decides how to carry it out.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;

    // Starts the command line, waits up to timeoutMs (negative: no limit) and returns everything
    // it wrote to standard output. A command that cannot start yields an empty text.
    virtual QString runAndRead(const QString &commandLine, int timeoutMs = 30000) = 0;
    // Starts the command line and does not wait for it.
    virtual void start(const QString &commandLine) = 0;
    // Starts the command line with a window show mode and does not wait (WinExec on Windows).
    virtual void startShown(const QString &commandLine, ShowMode mode) = 0;
    // Starts a program by path with its own working directory, independent of this process.
    virtual void startDetached(const QString &program, const QStringList &arguments,
                               const QString &workingDirectory) = 0;
    // A process object for asynchronous chains, owned by parent.
    virtual AsyncProcess *createProcess(QObject *parent) = 0;
};
