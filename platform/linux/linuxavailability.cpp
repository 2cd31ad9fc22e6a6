#include "linuxavailability.h"

#include "backlight.h"
#include "commandtable.h"
#include "keyboardlight.h"
#include "nativeprogram.h"
#include "nvmlgpu.h"
#include "systemhelper.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSystemTrayIcon>

#include <algorithm>

#include <dlfcn.h>
#include <unistd.h>

namespace {

QString needsHelper()
{
    return QStringLiteral("Needs the Varnel system helper, which is not installed.");
}

} // namespace

LinuxAvailability::LinuxAvailability(Probes probes, std::shared_ptr<const CommandTable> table)
    : m_probes(std::move(probes)), m_table(std::move(table))
{
}

bool LinuxAvailability::once(std::optional<bool> &answer, const std::function<bool()> &check)
{
    if (!answer)
        answer = check && check();
    return *answer;
}

QString LinuxAvailability::whyUnavailable(Feature feature)
{
    switch (feature) {
    case Feature::PanelBacklight:
        // Asked afresh: an external screen's backlight can come and go.
        if (m_probes.backlight && m_probes.backlight())
            return QString();
        return QStringLiteral("This screen has no backlight that can be adjusted.");
    case Feature::NvidiaGpu:
        if (!once(m_gpu, m_probes.nvidiaGpu))
            return QStringLiteral("No NVIDIA GPU in this computer.");
        if (!once(m_gpuLibrary, m_probes.nvidiaLibrary))
            return QStringLiteral("The NVIDIA driver, which reports the GPU's sensors, is not "
                                  "installed.");
        return QString();
    case Feature::LidShutdown:
        return QStringLiteral("Linux sets the lid's action for every user and every power mode at "
                              "once, so Varnel leaves it to the system settings.");
    case Feature::ProcessorLimits:
    case Feature::CameraSwitch:
    case Feature::CpuTuning:
        return once(m_helper, m_probes.systemHelper) ? QString() : needsHelper();
    case Feature::WindowsOnlyFix:
        return QStringLiteral("A Windows-only fix: Linux has no such setting.");
    case Feature::SuperKeyBlocker:
        return once(m_superKey, m_probes.superKeySetting)
                   ? QString()
                   : QStringLiteral("Blocking the Super key needs a GNOME or KDE Plasma desktop.");
    case Feature::ScreenTimeouts:
        return once(m_timeouts, m_probes.desktopTimeouts)
                   ? QString()
                   : QStringLiteral(
                         "Screen and sleep timeouts need a GNOME or KDE Plasma desktop.");
    case Feature::TouchpadSwitch:
        return once(m_touchpad, m_probes.touchpadSetting)
                   ? QString()
                   : QStringLiteral("Switching the touchpad needs a GNOME or KDE Plasma "
                                    "desktop.");
    case Feature::AmbientLight:
        return once(m_ambient, m_probes.ambientSetting)
                   ? QString()
                   : QStringLiteral("This desktop has no adaptive brightness setting.");
    case Feature::MonitorControl:
        return once(m_ddc, m_probes.monitorChannel)
                   ? QString()
                   : QStringLiteral("External monitors cannot be controlled: that needs "
                                    "libddcutil and access to /dev/i2c-* (the i2c group).");
    case Feature::EventSounds:
        return once(m_sounds, m_probes.eventSounds)
                   ? QString()
                   : QStringLiteral("This desktop has no switch for its event sounds.");
    case Feature::KeyboardLight:
        return m_probes.keyboardLight && m_probes.keyboardLight()
                   ? QString()
                   : QStringLiteral("This keyboard has no backlight.");
    case Feature::SystemTray:
        return m_probes.systemTray && m_probes.systemTray()
                   ? QString()
                   : QStringLiteral("This desktop shows no tray icons: a hidden window could "
                                    "only be brought back by starting the program again.");
    }
    return QString();
}

QString LinuxAvailability::whyCannotStart(const QString &commandLine)
{
    if (m_table && m_table->knows(commandLine)) {
        if (m_table->canRun(commandLine))
            return QString();
        return QStringLiteral("No program for this is installed on this computer.");
    }
    const NativeProgram program = nativeProgramFor(commandLine, m_probes.installFolder);
    if (!program.path.isEmpty())
        return QString();
    if (program.name.isEmpty())
        return QStringLiteral("Not available on Linux.");
    return QStringLiteral("%1 has no Linux version in %2.")
        .arg(program.name, QDir::toNativeSeparators(m_probes.installFolder));
}

LinuxAvailability::Probes LinuxAvailability::nativeProbes()
{
    Probes probes;
    probes.backlight = [] { return !SysfsBacklight().deviceName().isEmpty(); };
    probes.nvidiaGpu = [] {
        return !NvmlGpuSensors::scanPci(QStringLiteral("/sys")).devices.isEmpty();
    };
    probes.nvidiaLibrary = [] {
        // Loading the library wakes no GPU; only its calls do.
        void *library = dlopen("libnvidia-ml.so.1", RTLD_LAZY | RTLD_LOCAL);
        if (library)
            dlclose(library);
        return library != nullptr;
    };
    probes.systemHelper = systemHelperAvailable;
    probes.keyboardLight = [] { return !LedKeyboardLight().ledName().isEmpty(); };
    probes.systemTray = QSystemTrayIcon::isSystemTrayAvailable;
    probes.monitorChannel = [] {
        // The buses first: loading the library costs more than all the rest of start-up's
        // checks, and without a bus the user may open it answers nothing.
        // Filtered by hand: a name filter compiles a regular expression, and loads the engine.
        QStringList buses = QDir(QStringLiteral("/dev")).entryList(QDir::System);
        buses.erase(std::remove_if(buses.begin(), buses.end(),
                                   [](const QString &name) {
                                       return !name.startsWith(QLatin1String("i2c-"));
                                   }),
                    buses.end());
        const bool reachable = std::any_of(buses.begin(), buses.end(), [](const QString &bus) {
            return ::access(QFile::encodeName(QStringLiteral("/dev/") + bus).constData(),
                            R_OK | W_OK) == 0;
        });
        if (!reachable)
            return false;
        for (const char *name : {"libddcutil.so.5", "libddcutil.so.4", "libddcutil.so"}) {
            if (void *library = dlopen(name, RTLD_LAZY | RTLD_LOCAL)) {
                dlclose(library);
                return true;
            }
        }
        return false;
    };
    probes.installFolder = QCoreApplication::applicationDirPath();
    return probes;
}
