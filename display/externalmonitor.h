#pragma once

#include <QObject>

class MonitorControl;
class QWidget;

// The "External LCD" slider: luminance over DDC/CI on every physical monitor behind the display
// that shows the window. The monitor is never read back into the slider.
class ExternalMonitor : public QObject {
    Q_OBJECT
public:
    // The MCCS luminance control.
    static constexpr quint8 luminanceCode = 0x10;

    ExternalMonitor(MonitorControl &monitors, QWidget *window, QObject *parent);

    void setLuminance(int value);

private:
    MonitorControl &m_monitors;
    QWidget *m_window;
};
