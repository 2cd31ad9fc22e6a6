#include "linuxcommands.h"

#include "nativeprogram.h"
#include "qtprocess.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QPointer>
#include <QProcess>
#include <QTimer>

Q_LOGGING_CATEGORY(lcCommands, "varnel.commands")

LinuxCommandRunner::LinuxCommandRunner(std::shared_ptr<const CommandTable> table,
                                       QString installFolder)
    : m_table(std::move(table)), m_installFolder(std::move(installFolder))
{
    if (m_installFolder.isEmpty())
        m_installFolder = QCoreApplication::applicationDirPath();
}

QString LinuxCommandRunner::runAndRead(const QString &commandLine, int timeoutMs)
{
    if (auto output = m_table->run(commandLine, timeoutMs))
        return *output;
    qCDebug(lcCommands) << "no Linux equivalent for" << commandLine;
    return QString();
}

void LinuxCommandRunner::start(const QString &commandLine)
{
    if (m_table->knows(commandLine))
        m_table->run(commandLine);
    else
        startNative(commandLine);
}

void LinuxCommandRunner::startShown(const QString &commandLine, ShowMode)
{
    start(commandLine);
}

void LinuxCommandRunner::startNative(const QString &commandLine)
{
    const NativeProgram program = nativeProgramFor(commandLine, m_installFolder);
    if (program.path.isEmpty()) {
        qCDebug(lcCommands) << "no Linux equivalent for" << commandLine;
        return;
    }
    QProcess::startDetached(program.path, program.arguments, QDir::currentPath());
}

void LinuxCommandRunner::startDetached(const QString &program, const QStringList &arguments,
                                       const QString &workingDirectory)
{
    const QFileInfo info(program);
    if (!info.isFile() || !info.isExecutable()) {
        qCDebug(lcCommands) << "not an executable:" << program;
        return;
    }
    QProcess::startDetached(info.absoluteFilePath(), arguments, workingDirectory);
}

AsyncProcess *LinuxCommandRunner::createProcess(QObject *parent)
{
    return new LinuxAsyncProcess(m_table, parent);
}

LinuxAsyncProcess::LinuxAsyncProcess(std::shared_ptr<const CommandTable> table, QObject *parent)
    : AsyncProcess(parent), m_table(std::move(table)), m_real(new QtAsyncProcess(this))
{
    connect(m_real, &AsyncProcess::readyReadStandardOutput, this,
            &AsyncProcess::readyReadStandardOutput);
    connect(m_real, &AsyncProcess::finished, this, &AsyncProcess::finished);
}

void LinuxAsyncProcess::setWorkingDirectory(const QString &dir)
{
    m_real->setWorkingDirectory(dir);
}

void LinuxAsyncProcess::start(const QString &program, const QStringList &arguments)
{
    if (isRunning())
        return;
    // A program the table knows (the tuning client) is answered natively, like a command line.
    if (startFromTable(program + QLatin1Char(' ') + arguments.join(QLatin1Char(' '))))
        return;
    m_real->start(program, arguments);
}

void LinuxAsyncProcess::startCommand(const QString &commandLine)
{
    if (isRunning())
        return;
    if (startFromTable(commandLine))
        return;
    m_real->startCommand(commandLine);
}

bool LinuxAsyncProcess::startFromTable(const QString &commandLine)
{
    if (!m_table->knows(commandLine))
        return false;
    m_answering = true;
    const quint64 run = ++m_run;
    QPointer<LinuxAsyncProcess> self(this);
    m_table->start(commandLine, [self, run](const QString &output) {
        if (self && self->m_run == run)
            self->answer(output);
    });
    return true;
}

// Delivered from the event loop, as a real process would, so callers see the same order.
void LinuxAsyncProcess::answer(const QString &output)
{
    if (!m_answering)
        return;
    m_answer = output.toUtf8();
    const quint64 run = m_run;
    QTimer::singleShot(0, this, [this, run] {
        if (!m_answering || m_run != run)
            return;
        if (!m_answer.isEmpty())
            emit readyReadStandardOutput();
        m_answering = false;
        emit finished(0, QProcess::NormalExit);
    });
}

bool LinuxAsyncProcess::isRunning() const
{
    return m_answering || m_real->isRunning();
}

QByteArray LinuxAsyncProcess::readAllStandardOutput()
{
    if (!m_answer.isEmpty()) {
        QByteArray out;
        out.swap(m_answer);
        return out;
    }
    return m_real->readAllStandardOutput();
}

void LinuxAsyncProcess::write(const QByteArray &data)
{
    if (!m_answering)
        m_real->write(data);
}

void LinuxAsyncProcess::close()
{
    m_answering = false;
    ++m_run;
    m_answer.clear();
    m_real->close();
}
