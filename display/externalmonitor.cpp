#include "externalmonitor.h"

#include "devices.h"

#include <QWidget>

ExternalMonitor::ExternalMonitor(MonitorControl &monitors, QWidget *window, QObject *parent)
    : QObject(parent), m_monitors(monitors), m_window(window)
{
}

void ExternalMonitor::setLuminance(int value)
{
    // The window the user dragged onto the monitor picks the monitor.
    m_monitors.setVcpFeature(static_cast<quintptr>(m_window->window()->winId()), luminanceCode,
                             static_cast<quint32>(value));
}
