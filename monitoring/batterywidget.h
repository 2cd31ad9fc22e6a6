#pragma once

#include "desktopwidget.h"

#include <memory>

class AsyncProcess;
class CommandRunner;
class QLabel;
class QTimer;
class Scheduler;
struct Platform;

// The battery widget: the battery state in words and, below it, the charge in percent, asked
// of the platform's WMI tool once a second and shown two seconds after each query.
class BatteryWidget : public DesktopWidget {
    Q_OBJECT
public:
    explicit BatteryWidget(const Platform &platform, QWidget *parent = nullptr);
    ~BatteryWidget() override;

public slots:
    void timeout_slot();
    void period1s_slot();
    void driverreadOutput();
    void driverreadOutput2();
    void updatevalues();
    void updater2do();
    void fontsize(int valor);
    void color(int cor);
    void closemainwidget();

private:
    std::shared_ptr<CommandRunner> m_commands;
    std::shared_ptr<Scheduler> m_scheduler;

    QLabel *m_state = nullptr;
    QLabel *m_charge = nullptr;
    QString m_statusText;
    QString m_chargeText;
    AsyncProcess *m_stateQuery = nullptr;
    AsyncProcess *m_chargeQuery = nullptr;
    QTimer *m_timer = nullptr;
    QTimer *m_secondTimer = nullptr;
    float m_scale = 1;
    int m_interval = 1000;
};
