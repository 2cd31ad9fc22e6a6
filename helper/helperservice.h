#pragma once

#include "camera.h"
#include "cpuregisters.h"
#include "msrbus.h"
#include "polkitauthority.h"
#include "powerlimits.h"
#include "processorlimits.h"

#include <QDBusContext>
#include <QObject>
#include <QTimer>
#include <QVariantList>

#include <functional>

// org.varnel.Helper on the system bus. Every method asks polkit first, then runs one verb whose
// arguments it checks itself; none takes a path or a command.
class HelperService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.varnel.Helper")
public:
    HelperService(const SysTree &tree, PolkitAuthority *authority, int idleExitMs,
                  QObject *parent = nullptr);

public slots:
    int ReadProcessorLimits(int &maximum);
    int SetProcessorMinimum(int percent);
    int SetProcessorMaximum(int percent);

    uint ReadPowerLimits(uint &windowMs);
    uint SetTurboPower(uint milliwatts);
    uint SetTurboTime(uint windowMs);
    uint SetShortTermPower(uint milliwatts);

    int ReadVoltageOffset();
    int SetVoltageOffset(int millivolts);
    QList<int> ReadTurboRatios();
    int SetTurboRatio(int activeCores, int ratio);

    bool ReadCamera();
    void SetCamera(bool enabled);

private:
    using Work = std::function<QVariantList(Outcome *)>;
    // Answers later, once polkit has: the bus keeps serving other callers meanwhile.
    void authorizeThen(const QString &actionId, Work work);

    ProcessorLimits m_processor;
    DevMsrBus m_msrBus;
    PowerLimits m_power;
    CpuRegisters m_registers;
    Camera m_camera;
    PolkitAuthority *m_authority;
    QTimer m_idle;
    int m_pending = 0;
};
