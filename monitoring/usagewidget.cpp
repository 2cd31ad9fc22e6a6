#include "usagewidget.h"

#include "keys.h"
#include "sampler.h"

#include <QLabel>
#include <QTime>
#include <QTimer>

namespace {

int wallClockMilliseconds()
{
    return QTime::currentTime().toString(QStringLiteral("zzz")).toInt();
}

void setTextIfChanged(QLabel *label, const QString &text)
{
    if (label->text() == text)
        return;
    label->setText(text);
    label->adjustSize();
}

} // namespace

UsageWidget::UsageWidget(std::shared_ptr<SystemSampler> sampler, QWidget *parent,
                         MillisecondClock clock)
    : DesktopWidget(keys::widgetGeometry, parent), m_sampler(std::move(sampler)),
      m_clock(clock ? std::move(clock) : MillisecondClock(wallClockMilliseconds))
{
    restoreSavedGeometry();

    m_scale = screenScaleFactor();
    m_processor = whiteLabel(QStringLiteral("processor"), this);
    m_memory = whiteLabel(QStringLiteral("memory"), this);
    m_disk = whiteLabel(QStringLiteral("disk"), this);
    m_upload = whiteLabel(QStringLiteral("upload"), this);
    m_download = whiteLabel(QStringLiteral("download"), this);
    m_timer = new QTimer(this);
    m_secondTimer = new QTimer(this);
    connect(m_timer, &QTimer::timeout, this, &UsageWidget::timeout_slot);

    makeFloating(m_scale);
    int y = 0;
    for (QLabel *label : labels()) {
        label->move(0, static_cast<int>(y * m_scale));
        y += 20;
    }

    m_previousOctets = OctetSums();
    m_previousMilliseconds = 0;
    m_interval = 1000;

    m_timer->start(1000);
    m_secondTimer->start(1000);
}

UsageWidget::~UsageWidget()
{
    m_timer->stop();
}

QList<QLabel *> UsageWidget::labels() const
{
    return {m_processor, m_memory, m_disk, m_upload, m_download};
}

void UsageWidget::period1s_slot()
{
    m_interval = 1000;
    m_timer->start(m_interval);
}

void UsageWidget::fontsize(int valor)
{
    int step = 1;
    for (QLabel *label : labels()) {
        // Qt refuses a size of 0 anyway; asking would only print a warning.
        if (valor > 0)
            label->setFont(QFont(QStringLiteral("Segoe UI"), valor));
        label->move(0, static_cast<int>(step * valor * m_scale));
        label->adjustSize();
        step += 2;
    }
}

void UsageWidget::color(int cor)
{
    applyTextColor(labels(), cor);
}

void UsageWidget::closemainwidget()
{
    deleteLater();
}

void UsageWidget::timeout_slot()
{
    sampleMemory();
    sampleProcessor();
    sampleNetwork();
    sampleDisk();
}

void UsageWidget::sampleMemory()
{
    quint64 total = 0;
    quint64 available = 0;
    if (!m_sampler->memoryStatus(&total, &available))
        return;
    const int use = memoryUsePercent(total, available);
    if (use >= 0)
        setTextIfChanged(m_memory, QStringLiteral("RAM %1").arg(use) + QLatin1Char('%'));
}

void UsageWidget::sampleProcessor()
{
    ProcessorTimes now;
    if (!m_sampler->systemTimes(&now.idle, &now.kernel, &now.user))
        return;
    if (isUsableSample(m_previousTimes)) {
        const int load = processorLoad(now, m_previousTimes);
        if (load != -1)
            setTextIfChanged(m_processor, QStringLiteral("CPU %1").arg(load) + QLatin1Char('%'));
    }
    m_previousTimes = now;
}

void UsageWidget::sampleNetwork()
{
    const QVector<InterfaceCounters> table = m_sampler->interfaceTable();
    const int milliseconds = m_clock();
    const OctetSums sums = firstBusyPerType(table);
    if (m_previousOctets.received != 0 && m_previousOctets.sent != 0) {
        const double elapsed = (m_interval - m_previousMilliseconds + milliseconds) / 1000.0;
        const qint64 download = octetRate(sums.received, m_previousOctets.received, elapsed);
        const qint64 upload = octetRate(sums.sent, m_previousOctets.sent, elapsed);
        const QStringList parts = formatRates(download, upload).split(QLatin1Char('|'));
        setTextIfChanged(m_upload, QStringLiteral("↑ ") + parts.value(0));
        setTextIfChanged(m_download, QStringLiteral("↓ ") + parts.value(1));
    }
    m_previousOctets = sums;
    m_previousMilliseconds = milliseconds;
}

void UsageWidget::sampleDisk()
{
    const quint64 freeMiB = m_sampler->freeBytesForUser() / 1024 / 1024;
    setTextIfChanged(m_disk, QStringLiteral("C: %1GB").arg(freeMiB >> 10));
}
