#include "fakecommands.h"

#include "qtprocess.h"

#include <QTimer>

namespace {

// A real process whose program may be redirected, and whose scripted command lines are
// answered without one.
class FakeAsyncProcess : public QtAsyncProcess {
public:
    FakeAsyncProcess(FakeCommandRunner *runner, SharedLog log, QObject *parent)
        : QtAsyncProcess(parent), m_runner(runner), m_log(std::move(log))
    {
    }

    void start(const QString &program, const QStringList &arguments) override
    {
        m_log->add(QStringLiteral("process: %1 %2").arg(program, arguments.join(QLatin1Char(' '))));
        QtAsyncProcess::start(m_runner->programMap.value(program, program), arguments);
    }

    void startCommand(const QString &commandLine) override
    {
        m_log->add(QStringLiteral("process: ") + commandLine);
        if (m_runner->asyncOutputs.contains(commandLine)) {
            m_answer = m_runner->asyncOutputs.value(commandLine).toUtf8();
            m_answering = true;
            QTimer::singleShot(0, this, [this] {
                m_answering = false;
                emit readyReadStandardOutput();
                emit finished(0, QProcess::NormalExit);
            });
            return;
        }
        QtAsyncProcess::startCommand(commandLine);
    }

    bool isRunning() const override { return m_answering || QtAsyncProcess::isRunning(); }

    QByteArray readAllStandardOutput() override
    {
        if (!m_answer.isEmpty()) {
            QByteArray out;
            out.swap(m_answer);
            return out;
        }
        return QtAsyncProcess::readAllStandardOutput();
    }

private:
    FakeCommandRunner *m_runner;
    SharedLog m_log;
    QByteArray m_answer;
    bool m_answering = false;
};

} // namespace

AsyncProcess *FakeCommandRunner::createProcess(QObject *parent)
{
    return new FakeAsyncProcess(this, m_log, parent);
}
