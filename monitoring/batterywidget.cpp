#include "batterywidget.h"

#include "batteryreadings.h"
#include "commandrunner.h"
#include "keys.h"
#include "platform.h"
#include "scheduler.h"

#include <QLabel>
#include <QTimer>

namespace {

const char kStateQuery[] = "WMIC Path Win32_Battery Get BatteryStatus";
const char kChargeQuery[] = "WMIC Path Win32_Battery Get EstimatedChargeRemaining";

// A query still running from an earlier tick is left alone; its answer is as good as a new one.
void startQuery(AsyncProcess *query, const char *commandLine)
{
    if (!query->isRunning())
        query->startCommand(QLatin1String(commandLine));
}

} // namespace

BatteryWidget::BatteryWidget(const Platform &platform, QWidget *parent)
    : DesktopWidget(keys::batteryWindowGeometry, parent), m_commands(platform.commands),
      m_scheduler(platform.scheduler)
{
    restoreSavedGeometry();

    m_stateQuery = m_commands->createProcess(this);
    m_chargeQuery = m_commands->createProcess(this);
    connect(m_stateQuery, &AsyncProcess::readyReadStandardOutput, this,
            &BatteryWidget::driverreadOutput);
    connect(m_chargeQuery, &AsyncProcess::readyReadStandardOutput, this,
            &BatteryWidget::driverreadOutput2);

    m_scale = screenScaleFactor();
    m_state = whiteLabel(QStringLiteral("state"), this);
    m_charge = whiteLabel(QStringLiteral("charge"), this);
    m_timer = new QTimer(this);
    m_secondTimer = new QTimer(this);
    connect(m_timer, &QTimer::timeout, this, &BatteryWidget::timeout_slot);

    makeFloating(m_scale);
    m_state->move(0, 0);
    m_charge->move(0, static_cast<int>(5 * m_scale));

    m_interval = 1000;
    m_timer->start(1000);
    m_secondTimer->start(1000);
}

BatteryWidget::~BatteryWidget()
{
    m_timer->stop();
}

void BatteryWidget::timeout_slot()
{
    startQuery(m_stateQuery, kStateQuery);
    m_scheduler->singleShot(500, this, "updater2do");
    m_scheduler->singleShot(2000, this, "updatevalues");
}

void BatteryWidget::updater2do()
{
    startQuery(m_chargeQuery, kChargeQuery);
}

void BatteryWidget::updatevalues()
{
    if (m_statusText != QLatin1String("..."))
        m_state->setText(m_statusText);
    if (m_chargeText != QLatin1String("%"))
        m_charge->setText(m_chargeText);
    m_state->adjustSize();
    m_charge->adjustSize();
}

void BatteryWidget::driverreadOutput()
{
    m_statusText = parseBatteryStatus(toolOutputText(m_stateQuery->readAllStandardOutput()));
}

void BatteryWidget::driverreadOutput2()
{
    m_chargeText = parseBatteryCharge(toolOutputText(m_chargeQuery->readAllStandardOutput()));
}

void BatteryWidget::period1s_slot()
{
    m_interval = 1500;
    m_timer->start(m_interval);
}

void BatteryWidget::fontsize(int valor)
{
    // Qt refuses a size of 0 anyway; asking would only print a warning.
    if (valor > 0)
        m_state->setFont(QFont(QStringLiteral("Segoe UI"), valor));
    m_charge->setFont(QFont(QStringLiteral("Segoe UI"), valor + 8));
    m_charge->move(0, static_cast<int>((valor + 4) * m_scale));
    m_state->adjustSize();
    m_charge->adjustSize();
}

void BatteryWidget::color(int cor)
{
    applyTextColor({m_state, m_charge}, cor);
}

void BatteryWidget::closemainwidget()
{
    deleteLater();
}
