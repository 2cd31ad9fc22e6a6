#pragma once

#include "devices.h"

#include <QString>
#include <QVector>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

// A monitor that answers DDC/CI, with what identifies it against the desktop's screens.
struct DdcDisplay {
    int bus = -1;      // I2C bus number
    QString connector; // DRM connector ("DP-1", "HDMI-A-1"); empty when unknown
    QString model;     // from the EDID
    QString serial;    // from the EDID
};

// What the desktop tells about the screen a window is on.
struct ScreenIdentity {
    QString name; // output name ("DP-1", "HDMI1", "eDP-1")
    QString model;
    QString serial;
};

// The DDC/CI channel: libddcutil in the program, a scripted one in tests.
class DdcBus {
public:
    virtual ~DdcBus() = default;
    virtual QVector<DdcDisplay> displays() = 0;
    virtual bool read(const DdcDisplay &display, quint8 code, quint32 *current,
                      quint32 *maximum) = 0;
    virtual bool write(const DdcDisplay &display, quint8 code, quint32 value) = 0;
};

// libddcutil, found at run time; without it there are no displays.
class LibDdcutilBus : public DdcBus {
public:
    QVector<DdcDisplay> displays() override;
    bool read(const DdcDisplay &display, quint8 code, quint32 *current, quint32 *maximum) override;
    bool write(const DdcDisplay &display, quint8 code, quint32 value) override;
};

// DDC/CI on the monitors behind the screen that shows the window. The exchange runs on a
// thread of its own, so a slow monitor never holds the window; moves that arrive while one is
// under way collapse into the last, and each monitor is read before it is written (see
// vcprule.h). A screen without a DDC/CI monitor is left alone without a word.
class DdcMonitorControl : public MonitorControl {
public:
    explicit DdcMonitorControl(std::unique_ptr<DdcBus> bus,
                               std::chrono::milliseconds reprobeAfter = std::chrono::seconds(30));
    ~DdcMonitorControl() override;

    void setVcpFeature(quintptr windowId, quint8 code, quint32 value) override;
    // The same for a known screen; what setVcpFeature hands over after finding the screen.
    void request(const ScreenIdentity &screen, quint8 code, quint32 value);
    // Blocks until every request handed over so far is done (for tests and shutdown).
    void waitUntilIdle();

private:
    struct Request {
        ScreenIdentity screen;
        quint8 code;
        quint32 value;
    };
    void run();
    void carryOut(const Request &request);
    QVector<DdcDisplay> displaysFor(const ScreenIdentity &screen);

    std::unique_ptr<DdcBus> m_bus;
    std::chrono::milliseconds m_reprobeAfter;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::optional<Request> m_pending;
    bool m_busy = false;
    bool m_stopping = false;
    // Worker thread only (the thread itself: started by the first request, on the GUI thread).
    std::optional<QVector<DdcDisplay>> m_known;
    std::chrono::steady_clock::time_point m_probedAt{};
    std::thread m_worker;
};

namespace ddc {

// Whether a monitor is the one behind a screen: by connector name, which the desktop may spell
// differently from the kernel ("HDMI-A-1", "HDMI-1", "HDMI1"), or by EDID model and serial.
bool sameMonitor(const DdcDisplay &display, const ScreenIdentity &screen);
// The DRM connector whose DDC channel is the given I2C bus, from sysfs.
QString connectorForBus(int bus, const QString &drmRoot = QStringLiteral("/sys/class/drm"));

} // namespace ddc
