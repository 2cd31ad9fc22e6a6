#pragma once

#include "commandrunner.h"

#include <QProcess>

// An AsyncProcess backed by a real child process.
class QtAsyncProcess : public AsyncProcess {
    Q_OBJECT
public:
    explicit QtAsyncProcess(QObject *parent = nullptr);

    void setWorkingDirectory(const QString &dir) override;
    void start(const QString &program, const QStringList &arguments) override;
    void startCommand(const QString &commandLine) override;
    bool isRunning() const override;
    QByteArray readAllStandardOutput() override;
    void write(const QByteArray &data) override;
    void close() override;

    QProcess &process() { return m_process; }

private:
    QProcess m_process;
};

// Splits a command line at blanks the way QProcess does (double quotes group words).
QStringList splitCommandLine(const QString &commandLine);
