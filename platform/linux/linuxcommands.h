#pragma once

#include "commandrunner.h"
#include "commandtable.h"

#include <memory>

// Runs the program's command lines through the Linux command table. Programs given by path
// (companions, a tuning client) are started for real, and so is the native counterpart of a
// Windows helper the window starts ("Remote.exe" starts the install folder's "Remote").
class LinuxCommandRunner : public CommandRunner {
public:
    // An empty install folder is the folder of the running program.
    explicit LinuxCommandRunner(std::shared_ptr<const CommandTable> table,
                                QString installFolder = QString());

    QString runAndRead(const QString &commandLine, int timeoutMs) override;
    void start(const QString &commandLine) override;
    void startShown(const QString &commandLine, ShowMode mode) override;
    void startDetached(const QString &program, const QStringList &arguments,
                       const QString &workingDirectory) override;
    AsyncProcess *createProcess(QObject *parent) override;

private:
    void startNative(const QString &commandLine);

    std::shared_ptr<const CommandTable> m_table;
    QString m_installFolder;
};

// Answers known command lines from the table without a child process; anything else runs as
// a real process.
class LinuxAsyncProcess : public AsyncProcess {
    Q_OBJECT
public:
    LinuxAsyncProcess(std::shared_ptr<const CommandTable> table, QObject *parent);

    void setWorkingDirectory(const QString &dir) override;
    void start(const QString &program, const QStringList &arguments) override;
    void startCommand(const QString &commandLine) override;
    bool isRunning() const override;
    QByteArray readAllStandardOutput() override;
    void write(const QByteArray &data) override;
    void close() override;

private:
    bool startFromTable(const QString &commandLine);
    void answer(const QString &output);

    std::shared_ptr<const CommandTable> m_table;
    AsyncProcess *m_real;
    QByteArray m_answer;
    bool m_answering = false;
    quint64 m_run = 0; // a reply for a run that was closed meanwhile is dropped
};
