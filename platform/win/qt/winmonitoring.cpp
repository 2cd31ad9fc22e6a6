#include "winmonitoring.h"

#include "battery.h"
#include "program_path.h"

#include <QThread>

bool WinSystemSampler::memoryStatus(quint64 *totalPhysical, quint64 *availablePhysical)
{
    uint64_t total = 0, available = 0;
    if (!varnel::win::memoryStatus(&total, &available))
        return false;
    *totalPhysical = total;
    *availablePhysical = available;
    return true;
}

bool WinSystemSampler::systemTimes(quint64 *idle, quint64 *kernel, quint64 *user)
{
    uint64_t i = 0, k = 0, u = 0;
    if (!varnel::win::systemTimes(&i, &k, &u))
        return false;
    *idle = i;
    *kernel = k;
    *user = u;
    return true;
}

QVector<InterfaceCounters> WinSystemSampler::interfaceTable()
{
    QVector<InterfaceCounters> rows;
    for (const varnel::win::InterfaceRow &row : m_table.rows())
        rows.push_back({row.type, row.inOctets, row.outOctets});
    return rows;
}

WinBatteryQueryProcess::~WinBatteryQueryProcess()
{
    if (m_worker)
        m_worker->wait();
}

// The process object would otherwise search the working folder and the path, and this program
// runs elevated.
void WinBatteryQueryProcess::start(const QString &program, const QStringList &arguments)
{
    const std::wstring resolved =
        varnel::win::resolveProgram(program.toStdWString(), varnel::win::programFolders());
    QtAsyncProcess::start(resolved.empty() ? QString() : QString::fromStdWString(resolved),
                          arguments);
}

void WinBatteryQueryProcess::startCommand(const QString &commandLine)
{
    const std::wstring property = varnel::win::batteryQueryProperty(commandLine.toStdWString());
    if (property.empty() || varnel::win::wmicInstalled()) {
        QtAsyncProcess::startCommand(commandLine);
        return;
    }
    if (isRunning())
        return;
    m_worker = QThread::create([this, property] {
        m_answer = QByteArray::fromStdString(varnel::win::batteryAnswerFromWmi(property));
    });
    connect(m_worker, &QThread::finished, this, [this] {
        m_worker->deleteLater();
        m_worker = nullptr;
        if (!m_answer.isEmpty())
            emit readyReadStandardOutput();
        emit finished(0, QProcess::NormalExit);
    });
    m_worker->start();
}

bool WinBatteryQueryProcess::isRunning() const
{
    return m_worker != nullptr || QtAsyncProcess::isRunning();
}

QByteArray WinBatteryQueryProcess::readAllStandardOutput()
{
    if (!m_answer.isEmpty()) {
        QByteArray out;
        out.swap(m_answer);
        return out;
    }
    return QtAsyncProcess::readAllStandardOutput();
}
