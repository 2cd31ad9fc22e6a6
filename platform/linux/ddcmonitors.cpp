#include "ddcmonitors.h"

#include "vcprule.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QScreen>
#include <QWidget>

#include <ddcutil_c_api.h>

#include <cstdio>
#include <type_traits>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcDdc, "varnel.platform.ddc")

namespace ddc {

namespace {

QString normalizedConnector(QString name)
{
    name = name.toLower();
    // The kernel names the HDMI and DVI kinds ("HDMI-A-1", "DVI-D-1"); desktops often drop it.
    static const QRegularExpression kind(QStringLiteral("^(hdmi|dvi)-[a-z]-"));
    name.replace(kind, QStringLiteral("\\1-"));
    name.remove(QRegularExpression(QStringLiteral("[^a-z0-9]")));
    return name;
}

} // namespace

bool sameMonitor(const DdcDisplay &display, const ScreenIdentity &screen)
{
    if (!display.connector.isEmpty() && !screen.name.isEmpty() &&
        normalizedConnector(display.connector) == normalizedConnector(screen.name))
        return true;
    return !display.model.isEmpty() && display.model == screen.model &&
           (display.serial.isEmpty() || display.serial == screen.serial);
}

QString connectorForBus(int bus, const QString &drmRoot)
{
    const QString busName = QStringLiteral("i2c-%1").arg(bus);
    const QDir root(drmRoot);
    const QStringList entries = root.entryList({QStringLiteral("card*-*")}, QDir::Dirs);
    for (const QString &entry : entries) {
        const QString dir = root.filePath(entry);
        // Either a "ddc" link to the adapter or, for DisplayPort, the adapter as a child.
        const QFileInfo ddcLink(dir + QStringLiteral("/ddc"));
        const bool viaLink =
            ddcLink.exists() && QFileInfo(ddcLink.canonicalFilePath()).fileName() == busName;
        if (viaLink || QFileInfo::exists(dir + QLatin1Char('/') + busName))
            return entry.mid(entry.indexOf(QLatin1Char('-')) + 1);
    }
    return QString();
}

} // namespace ddc

namespace {

// libddcutil, loaded on the first exchange: the program runs without it, and the library's
// start-up remarks (about machines without video cards, for one) never reach the console.
struct Ddcutil {
    decltype(&ddca_set_fout) setFout = nullptr;
    decltype(&ddca_set_ferr) setFerr = nullptr;
    decltype(&ddca_get_display_info_list2) displayInfoList = nullptr;
    decltype(&ddca_free_display_info_list) freeDisplayInfoList = nullptr;
    decltype(&ddca_create_busno_display_identifier) busIdentifier = nullptr;
    decltype(&ddca_get_display_ref) displayRef = nullptr;
    decltype(&ddca_free_display_identifier) freeIdentifier = nullptr;
    decltype(&ddca_open_display2) open = nullptr;
    decltype(&ddca_close_display) close = nullptr;
    decltype(&ddca_get_non_table_vcp_value) getValue = nullptr;
    decltype(&ddca_set_non_table_vcp_value) setValue = nullptr;

    bool loaded() const { return setValue != nullptr; }
};

// Runs f with the process's standard output and error pointed at /dev/null.
template <typename F> void withoutConsole(F f)
{
    std::fflush(stdout);
    std::fflush(stderr);
    const int savedOut = ::dup(STDOUT_FILENO);
    const int savedErr = ::dup(STDERR_FILENO);
    const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (null >= 0) {
        ::dup2(null, STDOUT_FILENO);
        ::dup2(null, STDERR_FILENO);
    }
    f();
    std::fflush(stdout);
    std::fflush(stderr);
    if (savedOut >= 0) {
        ::dup2(savedOut, STDOUT_FILENO);
        ::close(savedOut);
    }
    if (savedErr >= 0) {
        ::dup2(savedErr, STDERR_FILENO);
        ::close(savedErr);
    }
    if (null >= 0)
        ::close(null);
}

const Ddcutil &ddcutil()
{
    static const Ddcutil api = [] {
        Ddcutil a;
        void *handle = nullptr;
        withoutConsole([&handle] {
            for (const char *name : {"libddcutil.so.5", "libddcutil.so.4", "libddcutil.so"}) {
                handle = ::dlopen(name, RTLD_NOW | RTLD_LOCAL);
                if (handle)
                    break;
            }
        });
        if (!handle) {
            qCDebug(lcDdc) << "libddcutil not installed";
            return a;
        }
        const auto bind = [handle](auto &fn, const char *symbol) {
            fn = reinterpret_cast<std::remove_reference_t<decltype(fn)>>(::dlsym(handle, symbol));
            return fn != nullptr;
        };
        const bool complete =
            bind(a.setFout, "ddca_set_fout") && bind(a.setFerr, "ddca_set_ferr") &&
            bind(a.displayInfoList, "ddca_get_display_info_list2") &&
            bind(a.freeDisplayInfoList, "ddca_free_display_info_list") &&
            bind(a.busIdentifier, "ddca_create_busno_display_identifier") &&
            bind(a.displayRef, "ddca_get_display_ref") &&
            bind(a.freeIdentifier, "ddca_free_display_identifier") &&
            bind(a.open, "ddca_open_display2") && bind(a.close, "ddca_close_display") &&
            bind(a.getValue, "ddca_get_non_table_vcp_value") &&
            bind(a.setValue, "ddca_set_non_table_vcp_value");
        if (!complete) {
            qCDebug(lcDdc) << "libddcutil lacks a function this program uses";
            return Ddcutil();
        }
        return a;
    }();
    return api;
}

// An open display handle for one exchange.
class OpenDisplay {
public:
    OpenDisplay(const Ddcutil &api, int bus) : m_api(api)
    {
        DDCA_Display_Identifier id = nullptr;
        if (m_api.busIdentifier(bus, &id) != 0)
            return;
        DDCA_Display_Ref ref = nullptr;
        if (m_api.displayRef(id, &ref) == 0)
            m_api.open(ref, true, &m_handle);
        m_api.freeIdentifier(id);
    }
    ~OpenDisplay()
    {
        if (m_handle)
            m_api.close(m_handle);
    }
    DDCA_Display_Handle handle() const { return m_handle; }

private:
    const Ddcutil &m_api;
    DDCA_Display_Handle m_handle = nullptr;
};

} // namespace

QVector<DdcDisplay> LibDdcutilBus::displays()
{
    QVector<DdcDisplay> out;
    const Ddcutil &api = ddcutil();
    if (!api.loaded())
        return out;
    // Reports go to this thread's output streams; none belongs on the program's console.
    api.setFout(nullptr);
    api.setFerr(nullptr);
    DDCA_Display_Info_List *list = nullptr;
    if (api.displayInfoList(false, &list) != 0 || !list)
        return out;
    for (int i = 0; i < list->ct; ++i) {
        const DDCA_Display_Info &info = list->info[i];
        if (info.path.io_mode != DDCA_IO_I2C)
            continue;
        DdcDisplay d;
        d.bus = info.path.path.i2c_busno;
        d.connector = ddc::connectorForBus(d.bus);
        d.model = QString::fromLatin1(info.model_name).trimmed();
        d.serial = QString::fromLatin1(info.sn).trimmed();
        out << d;
    }
    api.freeDisplayInfoList(list);
    return out;
}

namespace {

// Runs f on an open handle of the display on bus; false when the library or the display is
// not there.
template <typename F> bool onDisplay(int bus, F f)
{
    const Ddcutil &api = ddcutil();
    if (!api.loaded())
        return false;
    OpenDisplay open(api, bus);
    return open.handle() && f(api, open.handle());
}

} // namespace

bool LibDdcutilBus::read(const DdcDisplay &display, quint8 code, quint32 *current, quint32 *maximum)
{
    return onDisplay(display.bus, [&](const Ddcutil &api, DDCA_Display_Handle handle) {
        DDCA_Non_Table_Vcp_Value value{};
        if (api.getValue(handle, code, &value) != 0)
            return false;
        *current = quint32(value.sh) << 8 | value.sl;
        *maximum = quint32(value.mh) << 8 | value.ml;
        return true;
    });
}

bool LibDdcutilBus::write(const DdcDisplay &display, quint8 code, quint32 value)
{
    return onDisplay(display.bus, [&](const Ddcutil &api, DDCA_Display_Handle handle) {
        return api.setValue(handle, code, quint8(value >> 8 & 0xff), quint8(value & 0xff)) == 0;
    });
}

DdcMonitorControl::DdcMonitorControl(std::unique_ptr<DdcBus> bus,
                                     std::chrono::milliseconds reprobeAfter)
    : m_bus(std::move(bus)), m_reprobeAfter(reprobeAfter)
{
}

DdcMonitorControl::~DdcMonitorControl()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        m_pending.reset();
    }
    m_wake.notify_all();
    if (m_worker.joinable())
        m_worker.join();
}

void DdcMonitorControl::setVcpFeature(quintptr windowId, quint8 code, quint32 value)
{
    QWidget *widget = QWidget::find(static_cast<WId>(windowId));
    QScreen *screen = widget ? widget->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    request({screen->name(), screen->model(), screen->serialNumber()}, code, value);
}

void DdcMonitorControl::request(const ScreenIdentity &screen, quint8 code, quint32 value)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_pending = Request{screen, code, value};
    }
    // Started by the first request: most laptops never set an external monitor's brightness,
    // and an idle thread still holds its stack and memory arena.
    if (!m_worker.joinable())
        m_worker = std::thread([this] { run(); });
    m_wake.notify_one();
}

void DdcMonitorControl::waitUntilIdle()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_idle.wait(lock, [this] { return !m_pending && !m_busy; });
}

void DdcMonitorControl::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stopping || m_pending; });
        if (m_stopping)
            break;
        const Request next = *m_pending;
        m_pending.reset();
        m_busy = true;
        lock.unlock();
        carryOut(next);
        lock.lock();
        m_busy = false;
        if (!m_pending)
            m_idle.notify_all();
    }
    m_busy = false;
    m_idle.notify_all();
}

QVector<DdcDisplay> DdcMonitorControl::displaysFor(const ScreenIdentity &screen)
{
    const auto matching = [&screen](const QVector<DdcDisplay> &known) {
        QVector<DdcDisplay> out;
        for (const DdcDisplay &d : known) {
            if (ddc::sameMonitor(d, screen))
                out << d;
        }
        return out;
    };
    // Probing every bus takes seconds, so the list is kept; a screen it does not know (a
    // monitor plugged in since) makes it look again, at most once per interval.
    QVector<DdcDisplay> found = m_known ? matching(*m_known) : QVector<DdcDisplay>();
    const auto now = std::chrono::steady_clock::now();
    if (found.isEmpty() && (!m_known || now - m_probedAt >= m_reprobeAfter)) {
        m_known = m_bus->displays();
        m_probedAt = now;
        found = matching(*m_known);
    }
    return found;
}

void DdcMonitorControl::carryOut(const Request &request)
{
    const QVector<DdcDisplay> displays = displaysFor(request.screen);
    if (displays.isEmpty())
        qCDebug(lcDdc) << "no DDC/CI monitor behind" << request.screen.name;
    for (const DdcDisplay &d : displays) {
        quint32 current = 0;
        quint32 maximum = 0;
        const bool ok = m_bus->read(d, request.code, &current, &maximum);
        if (vcpWriteWanted(ok, current, maximum, request.value))
            m_bus->write(d, request.code, request.value);
    }
}
