#include "qtprocess.h"

QtAsyncProcess::QtAsyncProcess(QObject *parent) : AsyncProcess(parent)
{
    connect(&m_process, &QProcess::readyReadStandardOutput, this,
            &AsyncProcess::readyReadStandardOutput);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &AsyncProcess::finished);
}

void QtAsyncProcess::setWorkingDirectory(const QString &dir)
{
    m_process.setWorkingDirectory(dir);
}

void QtAsyncProcess::start(const QString &program, const QStringList &arguments)
{
    m_process.start(program, arguments, QIODevice::ReadWrite);
}

void QtAsyncProcess::startCommand(const QString &commandLine)
{
    const QStringList parts = splitCommandLine(commandLine);
    if (parts.isEmpty()) {
        m_process.start(QString(), {}, QIODevice::ReadWrite);
        return;
    }
    start(parts.first(), parts.mid(1));
}

bool QtAsyncProcess::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

QByteArray QtAsyncProcess::readAllStandardOutput()
{
    return m_process.readAllStandardOutput();
}

void QtAsyncProcess::write(const QByteArray &data)
{
    m_process.write(data);
}

void QtAsyncProcess::close()
{
    m_process.close();
}

QStringList splitCommandLine(const QString &commandLine)
{
    return QProcess::splitCommand(commandLine);
}
