#include "helperservice.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>

HelperService::HelperService(const SysTree &tree, PolkitAuthority *authority, int idleExitMs,
                             QObject *parent)
    : QObject(parent), m_processor(tree), m_msrBus(tree), m_power(tree, &m_msrBus),
      m_registers(m_msrBus), m_camera(tree), m_authority(authority)
{
    qDBusRegisterMetaType<QList<int>>();
    // Started on demand, so it leaves once nobody has needed it for a while.
    m_idle.setSingleShot(true);
    m_idle.setInterval(idleExitMs);
    connect(&m_idle, &QTimer::timeout, this, [this] {
        if (m_pending == 0)
            QCoreApplication::quit();
    });
    m_idle.start();
}

void HelperService::authorizeThen(const QString &actionId, Work work)
{
    setDelayedReply(true);
    const QDBusMessage call = message();
    QDBusConnection bus = connection();
    ++m_pending;
    m_authority->check(call.service(), actionId, [this, call, bus, work](const Outcome &auth) {
        QDBusConnection replyBus = bus;
        if (!auth.ok()) {
            replyBus.send(call.createErrorReply(auth.errorName, auth.message));
        } else {
            Outcome outcome;
            const QVariantList values = work(&outcome);
            replyBus.send(outcome.ok() ? call.createReply(values)
                                       : call.createErrorReply(outcome.errorName, outcome.message));
        }
        --m_pending;
        m_idle.start();
    });
}

int HelperService::ReadProcessorLimits(int &)
{
    authorizeThen(helperaction::read, [this](Outcome *outcome) {
        int minimum = 0, maximum = 0;
        *outcome = m_processor.read(&minimum, &maximum);
        return QVariantList{minimum, maximum};
    });
    return 0;
}

int HelperService::SetProcessorMinimum(int percent)
{
    authorizeThen(helperaction::processorLimits, [this, percent](Outcome *outcome) {
        int readBack = 0;
        *outcome = m_processor.setMinimum(percent, &readBack);
        return QVariantList{readBack};
    });
    return 0;
}

int HelperService::SetProcessorMaximum(int percent)
{
    authorizeThen(helperaction::processorLimits, [this, percent](Outcome *outcome) {
        int readBack = 0;
        *outcome = m_processor.setMaximum(percent, &readBack);
        return QVariantList{readBack};
    });
    return 0;
}

uint HelperService::ReadPowerLimits(uint &)
{
    authorizeThen(helperaction::read, [this](Outcome *outcome) {
        quint32 milliwatts = 0, windowMs = 0;
        *outcome = m_power.read(&milliwatts, &windowMs);
        return QVariantList{uint(milliwatts), uint(windowMs)};
    });
    return 0;
}

uint HelperService::SetTurboPower(uint milliwatts)
{
    authorizeThen(helperaction::tuning, [this, milliwatts](Outcome *outcome) {
        quint32 readBack = 0;
        *outcome = m_power.setLongTerm(milliwatts, &readBack);
        return QVariantList{uint(readBack)};
    });
    return 0;
}

uint HelperService::SetTurboTime(uint windowMs)
{
    authorizeThen(helperaction::tuning, [this, windowMs](Outcome *outcome) {
        quint32 readBack = 0;
        *outcome = m_power.setWindow(windowMs, &readBack);
        return QVariantList{uint(readBack)};
    });
    return 0;
}

uint HelperService::SetShortTermPower(uint milliwatts)
{
    authorizeThen(helperaction::tuning, [this, milliwatts](Outcome *outcome) {
        quint32 readBack = 0;
        *outcome = m_power.setShortTerm(milliwatts, &readBack);
        return QVariantList{uint(readBack)};
    });
    return 0;
}

int HelperService::ReadVoltageOffset()
{
    authorizeThen(helperaction::read, [this](Outcome *outcome) {
        int millivolts = 0;
        *outcome = m_registers.readOffset(&millivolts);
        return QVariantList{millivolts};
    });
    return 0;
}

int HelperService::SetVoltageOffset(int millivolts)
{
    authorizeThen(helperaction::tuning, [this, millivolts](Outcome *outcome) {
        int readBack = 0;
        *outcome = m_registers.setOffset(millivolts, &readBack);
        return QVariantList{readBack};
    });
    return 0;
}

QList<int> HelperService::ReadTurboRatios()
{
    authorizeThen(helperaction::read, [this](Outcome *outcome) {
        QVector<int> ratios;
        *outcome = m_registers.readRatios(&ratios);
        return QVariantList{QVariant::fromValue(QList<int>(ratios.begin(), ratios.end()))};
    });
    return {};
}

int HelperService::SetTurboRatio(int activeCores, int ratio)
{
    authorizeThen(helperaction::tuning, [this, activeCores, ratio](Outcome *outcome) {
        int readBack = 0;
        *outcome = m_registers.setRatio(activeCores, ratio, &readBack);
        return QVariantList{readBack};
    });
    return 0;
}

bool HelperService::ReadCamera()
{
    authorizeThen(helperaction::read, [this](Outcome *outcome) {
        bool enabled = false;
        *outcome = m_camera.read(&enabled);
        return QVariantList{enabled};
    });
    return false;
}

void HelperService::SetCamera(bool enabled)
{
    authorizeThen(helperaction::camera, [this, enabled](Outcome *outcome) {
        *outcome = m_camera.set(enabled);
        return QVariantList{};
    });
}
