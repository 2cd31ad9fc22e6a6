// The Linux backends, with a session bus for Plasma's stand-ins, a settings store for GNOME's
// settings and a sound server, each of the test's own.
#include "commandtable.h"
#include "desktoppower.h"
#include "desktopsettings.h"
#include "devicecommands.h"
#include "environmentoverride.h"
#include "gsettingskey.h"
#include "kconfigfile.h"
#include "kdedesktop.h"
#include "linuxregistry.h"
#include "powercfgcommands.h"
#include "powercommands.h"
#include "powersupply.h"
#include "privatesystembus.h"
#include "pulseaudioendpoint.h"
#include "pulselibrary.h"
#include "rfkillswitch.h"
#include "soundschemestore.h"
#include "textfile.h"
#include "touchpadpreference.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <pulse/def.h>

using namespace std::chrono_literals;

namespace {
class RecordingDesktop : public DesktopSettings {
public:
    bool setAmbientBrightness(bool enabled) override
    {
        return (calls << QStringLiteral("ambient %1").arg(enabled), true);
    }
    bool openDisplaySettings() override { return (calls << QStringLiteral("display"), true); }
    bool openPowerSettings() override { return (calls << QStringLiteral("power"), true); }
    QStringList calls;
};

// Count the reload requests the program sends to Plasma's services.
class StandInService : public QObject {
public:
    int calls = 0;
};

class StandInPowerManager : public StandInService {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.Solid.PowerManagement")
public slots:
    void refreshStatus() { ++calls; }
};

class StandInKwin : public StandInService {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.KWin")
public slots:
    void reconfigure() { ++calls; }
};

const QString kOtherProfile = QStringLiteral("[LowBattery][DPMSControl]\nidleTime=60\n");

// The window's touchpad key, which the native registry hands to the touchpad preference.
const QString kKey = QStringLiteral(
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\PrecisionTouchPad\\Status");
const QString kSchemes = QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes");

class ScriptedPreference : public TouchpadPreference {
public:
    std::optional<bool> enabled() override { return state; }
    bool setEnabled(bool on) override
    {
        sets << on;
        if (!accepts)
            return false;
        state = on;
        return true;
    }
    std::optional<bool> state;
    bool accepts = true;
    QList<bool> sets;
};

// Plasma's daemon as far as its touchpad module goes.
class StandInKded : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.touchpad")
public:
    std::atomic<bool> on{true};
public slots:
    bool isEnabled() { return on; }
    void enable() { on = true; }
    void disable() { on = false; }
};

const char kSink[] = "varnel_test";
const char kDescription[] = "Varnel Test Output";

// What a desktop tool prints: the settings store's and the sound server's own clients.
QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess p;
    p.start(program, arguments);
    p.waitForFinished(10000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

QString pactl(const QStringList &arguments)
{
    return outputOf(QStringLiteral("pactl"), arguments);
}

// A key as the desktop's own command-line tool reads it from the settings store.
QString stored(const char *schema, const char *key)
{
    return outputOf(QStringLiteral("gsettings"), {"get", schema, key}).trimmed();
}

} // namespace

class TestLinuxDesktop : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // A real sound server with one null sink, for the libpulse backend.
        QVERIFY(m_runtime.isValid());
        const QString server = QStandardPaths::findExecutable(QStringLiteral("pulseaudio"));
        QVERIFY2(!server.isEmpty(), "no pulseaudio program installed");
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), m_runtime.path());
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
        env.insert(QStringLiteral("PULSE_RUNTIME_PATH"), socketDir());
        env.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        m_server.setProcessEnvironment(env);
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.setStandardOutputFile(QProcess::nullDevice());
        // Bounded, so a crashed test leaves no server behind for long.
        m_server.start("timeout",
                       {"-k", "5", "300", server, "-n", "--daemonize=no", "--exit-idle-time=-1",
                        "--log-level=0", "-L", "module-native-protocol-unix auth-anonymous=1", "-L",
                        QStringLiteral("module-null-sink sink_name=%1 sink_properties="
                                       "\"device.description='%2'\"")
                            .arg(QLatin1String(kSink), QLatin1String(kDescription))});
        QVERIFY(m_server.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(socketDir() + QStringLiteral("/native")), 15000);
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socketDir()) + "/native");
        QTRY_VERIFY_WITH_TIMEOUT(pactl({QStringLiteral("info")}).contains(QLatin1String(kSink)),
                                 15000);
        QVERIFY(m_config.isValid());
        // Before GLib looks anything up: a private, file-backed settings store.
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path()));
        qputenv("GSETTINGS_BACKEND", "keyfile");
        QVERIFY(m_bus.start());
    }

    void cleanupTestCase()
    {
        if (m_server.state() != QProcess::NotRunning) {
            m_server.terminate();
            if (!m_server.waitForFinished(5000))
                m_server.kill();
        }
    }

    void init() { QFile::remove(UserStoreRegistry::storePath()); }
    void cleanup() { QDBusConnection::disconnectFromBus(QStringLiteral("plasma")); }

    // First: a schema no compiled file on GLib's search path names is not looked up through GIO,
    // which stays unloaded, and its key answers nothing.
    void absentSchemaLoadsNoGio()
    {
        QTemporaryDir data;
        writeFile(data.filePath("glib-2.0/schemas/gschemas.compiled"),
                  "GVariant org.gnome.desktop.session\n");
        EnvironmentOverride environment;
        environment.set("XDG_DATA_DIRS", QFile::encodeName(data.path()));
        environment.set("XDG_DATA_HOME", QFile::encodeName(data.path()));
        environment.set("GSETTINGS_SCHEMA_DIR", QByteArray());
        // Installed on GNOME, yet named by no file on that path; the program never asks for it.
        GSettingsKey missing("org.gnome.desktop.interface", "gtk-theme");
        QVERIFY(!missing.available());
        QCOMPARE(missing.text(), std::optional<QString>());
        QVERIFY(!missing.setBoolean(true));
        QVERIFY(!readFile(QStringLiteral("/proc/self/maps")).contains("libgio"));
    }

    void acLineStatus_data()
    {
        QTest::addColumn<QStringList>("supplies"); // name:type:online ("-" for no online file)
        QTest::addColumn<int>("status");
        QTest::newRow("mains online") << QStringList{"AC:Mains:1", "BAT0:Battery:-"} << 1;
        QTest::newRow("mains offline") << QStringList{"AC:Mains:0", "BAT0:Battery:-"} << 0;
        QTest::newRow("usb-c online")
            << QStringList{"ucsi-source-psy-USBC000:001:USB:1", "AC:Mains:0"} << 1;
        QTest::newRow("usb offline") << QStringList{"usb:USB:0"} << 0;
        QTest::newRow("battery only") << QStringList{"BAT0:Battery:-"} << 255;
        QTest::newRow("nothing") << QStringList{} << 255;
        QTest::newRow("mains without online file") << QStringList{"AC:Mains:-"} << 0;
    }

    void acLineStatus()
    {
        QFETCH(QStringList, supplies);
        QTemporaryDir dir;
        for (const QString &s : supplies) {
            const QStringList parts = s.split(':');
            const QString name = parts.mid(0, parts.size() - 2).join(':');
            writeFile(dir.filePath(name + "/type"), parts.at(parts.size() - 2).toUtf8() + '\n');
            if (parts.last() != "-")
                writeFile(dir.filePath(name + "/online"), parts.last().toUtf8() + '\n');
        }
        QTEST(SysfsPowerSupply(dir.path()).acLineStatus(), "status");
    }

    // One reader follows plugs, and supplies that go away: none left means no line supply.
    void oneReaderFollowsPlugsAndVanishedSupplies()
    {
        QTemporaryDir dir;
        for (const char *name : {"AC", "ADP2"}) {
            writeFile(dir.filePath(name + QStringLiteral("/type")), "Mains\n");
            writeFile(dir.filePath(name + QStringLiteral("/online")), "0\n");
        }
        SysfsPowerSupply supply(dir.path());
        QList<int> seen{supply.acLineStatus()};
        writeFile(dir.filePath("AC/online"), "1\n");
        seen << supply.acLineStatus();
        writeFile(dir.filePath("AC/online"), "0\n");
        seen << supply.acLineStatus();
        QVERIFY(QDir(dir.filePath(QStringLiteral("AC"))).removeRecursively());
        QVERIFY(QDir(dir.filePath(QStringLiteral("ADP2"))).removeRecursively());
        seen << supply.acLineStatus();
        QCOMPARE(seen, (QList<int>{0, 1, 0, 255}));
    }

    void tableRowsMatchWholeLines_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("matches");
        auto row = [](const char *name, const char *pattern, const char *line, bool matches) {
            QTest::newRow(name) << QString(pattern) << QString(line) << matches;
        };
        row("optional letter, left out", "powercfg -lists?x", "powercfg -listx", true);
        row("optional letter, given", "powercfg -lists?x", "powercfg -listsx", true);
        row("repeated letter", "net stops*x", "net stopx", true);
        row("counted letter", "ab{2}c", "abbc", true);
        row("inline case option", "(?i)WMIC Path", "wmic path", true);
        row("escaped dot", "explorer a\\.b", "explorer a.b", true);
        row("escaped dot, other text", "explorer a\\.b", "explorer axb", false);
        row("plain text keeps its case", "tasklist", "TASKLIST", false);
        row("longer line", "tasklist", "tasklist /v", false);
    }

    void tableRowsMatchWholeLines()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, line);
        QFETCH(bool, matches);
        CommandTable table;
        table.add(QStringLiteral("unrelated"),
                  [](const QRegularExpressionMatch &) { return QString(); });
        table.add(pattern, [](const QRegularExpressionMatch &) { return QStringLiteral("row"); });
        QCOMPARE(table.run(line),
                 matches ? std::optional<QString>(QStringLiteral("row")) : std::nullopt);
    }

    // Adaptive brightness and the settings pages reach the desktop; what needs root stays unknown.
    void powerRowsReachTheDesktop()
    {
        auto desktop = std::make_shared<RecordingDesktop>();
        CommandTable table;
        addPowerCommands(table, desktop);
        for (bool disable : {true, false}) {
            for (const QString &line : powercmd::adaptiveBrightness(disable))
                QCOMPARE(table.run(line), std::optional<QString>(QString()));
        }
        QVERIFY(table.run("explorer ms-settings:display"));
        QVERIFY(table.run("control.exe /name Microsoft.PowerOptions /page  pagePlanSettings"));
        QCOMPARE(desktop->calls, (QStringList{"ambient 0", "ambient 0", "ambient 1", "ambient 1",
                                              "display", "power"}));
        // The page name's two blanks are part of the line.
        QVERIFY(!table.knows("control.exe /name Microsoft.PowerOptions /page pagePlanSettings"));
        const powercmd::Pair privileged[] = {
            powercmd::processorMinimum(5), powercmd::processorMaximum(90), powercmd::screenOff(3),
            powercmd::sleepAfter(2),       powercmd::sleepAfter(7),        powercmd::lidClose(2),
            powercmd::schemeBrightness(50)};
        for (const powercmd::Pair &pair : privileged) {
            QVERIFY2(!table.knows(pair.ac), qPrintable(pair.ac));
            QVERIFY2(!table.knows(pair.dc), qPrintable(pair.dc));
        }
    }

    void timeoutsGoToTheProfilesAndReload_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        const QString set = QStringLiteral("[AC][DPMSControl]\nidleTime=900\n\n"
                                           "[Battery][SuspendSession]\nidleTime=1800000\n"
                                           "suspendType=1\n");
        QTest::newRow("a first file") << QString() << set;
        QTest::newRow("other profiles and keys kept")
            << kOtherProfile + QStringLiteral("\n[AC][DPMSControl]\nlockBeforeTurnOff=0\n"
                                              "idleTime=300\n\n[AC][SuspendSession]\nidleTime=1\n")
            << kOtherProfile +
                   QStringLiteral("\n[AC][DPMSControl]\nlockBeforeTurnOff=0\nidleTime=900\n\n"
                                  "[Battery][SuspendSession]\nidleTime=1800000\nsuspendType=1\n");
        QTest::newRow("never removes the action") << set << QString();
    }

    void timeoutsGoToTheProfilesAndReload()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        const QString file = m_config.filePath(QStringLiteral("powermanagementprofilesrc"));
        writeFile(file, before.toUtf8());
        StandInPowerManager powerManager;
        QVERIFY(
            serve("org.kde.Solid.PowerManagement", "/org/kde/Solid/PowerManagement", powerManager));

        KdeTimeouts timeouts(m_config.path());
        if (after.isEmpty()) { // the modes that never turn the screen off nor sleep
            QVERIFY(timeouts.setScreenOff(false, 0));
            QVERIFY(timeouts.setSleepAfter(true, 0));
        } else {
            QVERIFY(timeouts.setScreenOff(false, 15));
            QVERIFY(timeouts.setSleepAfter(true, 30));
            // The AC sleep profile of the second row is another mode's business.
            if (before.contains(QLatin1String("[AC][SuspendSession]")))
                QVERIFY(timeouts.setSleepAfter(false, 0));
        }
        QCOMPARE(readFile(file), after.toUtf8());
        QTRY_COMPARE(powerManager.calls,
                     before.contains(QLatin1String("[AC][SuspendSession]")) ? 3 : 2);
    }

    void metaKeyIsClearedAndGivenBack_data()
    {
        QTest::addColumn<QString>("before");
        QTest::newRow("no file") << QString();
        QTest::newRow("the user's own Meta action") << QStringLiteral(
            "[Windows]\nBorderlessMaximizedWindows=true\n\n[ModifierOnlyShortcuts]\n"
            "Meta=org.kde.krunner,/App,,toggleDisplay\n");
        QTest::newRow("other keys in the group")
            << QStringLiteral("[ModifierOnlyShortcuts]\nShift=\n");
    }

    void metaKeyIsClearedAndGivenBack()
    {
        QFETCH(QString, before);
        const QString file = m_config.filePath(QStringLiteral("kwinrc"));
        QFile::remove(file);
        if (!before.isEmpty())
            writeFile(file, before.toUtf8());
        StandInKwin kwin;
        QVERIFY(serve("org.kde.KWin", "/KWin", kwin));
        {
            KdeMetaKeyBlocker blocker(m_config.path());
            QVERIFY(blocker.install());
            QVERIFY(blocker.install()); // twice keeps the user's action, not the cleared one
            QCOMPARE(KConfigFile(file).value(QStringLiteral("ModifierOnlyShortcuts"),
                                             QStringLiteral("Meta")),
                     std::optional<QString>(QString()));
            blocker.uninstall();
            QCOMPARE(readFile(file), before.toUtf8());
            QVERIFY(blocker.install());
        } // the program ends with the box checked: given back all the same
        QCOMPARE(readFile(file), before.toUtf8());
        QTRY_COMPARE(kwin.calls, 5);
    }

    // index (4 bytes, host order), type, operation, soft block, hard block
    void switchWritesOneChangeAllEvent_data()
    {
        QTest::addColumn<int>("switchId");
        QTest::addColumn<int>("value");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("wlan off") << 2 << 0 << QByteArray("\0\0\0\0\x01\x03\x01\x00", 8);
        QTest::newRow("wlan on") << 2 << 1 << QByteArray("\0\0\0\0\x01\x03\x00\x00", 8);
        QTest::newRow("camera needs root") << 1 << 0 << QByteArray();
        QTest::newRow("touchpad follows the desktop") << 3 << 0 << QByteArray();
    }

    void switchWritesOneChangeAllEvent()
    {
        QFETCH(int, switchId);
        QFETCH(int, value);
        QFETCH(QByteArray, bytes);
        QTemporaryDir dir;
        const QString device = dir.filePath(QStringLiteral("rfkill"));
        writeFile(device, QByteArray());
        LinuxDeviceSwitches(device).setSwitch(switchId, value);
        QCOMPARE(readFile(device), bytes);
        // A missing device fails quietly.
        const QString missing = QStringLiteral("/nonexistent/rfkill");
        QVERIFY(!rfkill::write(missing, rfkill::changeAllEvent(1, true)));
        LinuxDeviceSwitches(missing).setSwitch(2, 1);
    }

    void valueReachesTheDesktopOrTheStore_data()
    {
        QTest::addColumn<bool>("desktop");
        QTest::addColumn<bool>("accepts");
        QTest::newRow("the desktop takes it") << true << true;
        QTest::newRow("a desktop that cannot say: the store") << true << false;
        QTest::newRow("no desktop: the store") << false << false;
    }

    void valueReachesTheDesktopOrTheStore()
    {
        QFETCH(bool, desktop);
        QFETCH(bool, accepts);
        auto preference = desktop ? std::make_shared<ScriptedPreference>() : nullptr;
        if (preference)
            preference->accepts = accepts;
        QCOMPARE(QLatin1String(TouchpadRegistry::key), kKey);
        auto store = std::make_shared<UserStoreRegistry>();
        TouchpadRegistry registry(preference, store);
        QVERIFY(!registry.value(kKey, QStringLiteral("Enabled"), QVariant()).isValid());
        for (const int value : {0, 1}) {
            registry.setValue(kKey, QStringLiteral("Enabled"), value);
            QCOMPARE(registry.value(kKey, QStringLiteral("Enabled"), QVariant()).toInt(), value);
            QCOMPARE(store->contains(kKey, QStringLiteral("Enabled")), !accepts);
            if (preference)
                QCOMPARE(preference->sets.last(), value == 1);
        }
    }

    // Plasma's backends are picked when the desktop list names KDE, in any case.
    void plasmaSessionWhenTheDesktopListNamesKde()
    {
        QStringList plasma;
        for (const char *desktops : {"KDE", "X-Test:kde", "ubuntu:GNOME", "KDE-like", ""}) {
            EnvironmentOverride environment;
            environment.set("XDG_CURRENT_DESKTOP", desktops);
            if (plasmaSession())
                plasma << desktops;
        }
        QCOMPARE(plasma, (QStringList{"KDE", "X-Test:kde"}));
    }

    // Plasma's daemon wins over GNOME's settings when it runs, the newer daemon first.
    void touchpadPreferenceOfTheRunningDesktop()
    {
        QVERIFY(dynamic_cast<GnomeTouchpad *>(TouchpadRegistry::sessionPreference().get()));
        QThread thread; // the preference waits for the daemon's answer
        StandInKded kded;
        kded.moveToThread(&thread);
        thread.start();
        QDBusConnection bus =
            QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("kded"));
        QVERIFY(bus.registerObject("/modules/touchpad", &kded, QDBusConnection::ExportAllSlots));
        QCOMPARE(KdeTouchpad(QStringLiteral("org.kde.kded5")).enabled(), std::optional<bool>());
        QVERIFY(bus.registerService(QStringLiteral("org.kde.kded5")));
        SessionTouchpad session;
        QCOMPARE(session.enabled(), std::optional<bool>(true));
        QVERIFY(session.setEnabled(false));
        QTRY_VERIFY(!kded.on);
        QCOMPARE(session.enabled(), std::optional<bool>(false));
        QVERIFY(session.setEnabled(true));
        QTRY_VERIFY(kded.on);
        QVERIFY(bus.registerService(QStringLiteral("org.kde.kded6")));
        QCOMPARE(KdeTouchpad::runningService(), QStringLiteral("org.kde.kded6"));
        QDBusConnection::disconnectFromBus(QStringLiteral("kded"));
        thread.quit();
        QVERIFY(thread.wait(5000));
    }

    // GNOME's touchpad switch, timeouts, Super key and ambient light.
    void gnomeSettings()
    {
        const char *power = "org.gnome.settings-daemon.plugins.power", *mutter = "org.gnome.mutter";
        GSettingsKey sendEvents("org.gnome.desktop.peripherals.touchpad", "send-events");
        GnomeTouchpad touchpad;
        GnomeTimeouts timeouts;
        QVERIFY2(sendEvents.available() && touchpad.available() && timeouts.available() &&
                     OverlayKeyBlocker::available(),
                 "GNOME's desktop, power and window-manager schemas are not installed");
        const QList<QPair<QString, bool>> modes = {
            {"enabled", true}, {"disabled", false}, {"disabled-on-external-mouse", true}};
        for (const auto &mode : modes) {
            QVERIFY(sendEvents.setText(mode.first));
            QCOMPARE(touchpad.enabled(), std::optional<bool>(mode.second));
        }
        QVERIFY(touchpad.setEnabled(false));
        QCOMPARE(sendEvents.text(), std::optional<QString>(QStringLiteral("disabled")));
        QVERIFY(touchpad.setEnabled(true));
        QCOMPARE(sendEvents.text(), std::optional<QString>(QStringLiteral("enabled")));

        QVERIFY(timeouts.setScreenOff(true, 10));
        QCOMPARE(stored("org.gnome.desktop.session", "idle-delay"), QStringLiteral("uint32 600"));
        QVERIFY(timeouts.setSleepAfter(true, 5));
        QVERIFY(timeouts.setSleepAfter(false, 0));
        QCOMPARE((QStringList{stored(power, "sleep-inactive-battery-timeout"),
                              stored(power, "sleep-inactive-battery-type"),
                              stored(power, "sleep-inactive-ac-timeout"),
                              stored(power, "sleep-inactive-ac-type")}),
                 (QStringList{"300", "'suspend'", "0", "'nothing'"}));

        // The user's own key comes back when unchecked and when the program ends.
        QVERIFY(GSettingsKey(mutter, "overlay-key").setText(QStringLiteral("Super_R")));
        {
            OverlayKeyBlocker blocker;
            QVERIFY(blocker.install());
            QVERIFY(blocker.install()); // twice keeps the user's key, not the cleared one
            QCOMPARE(stored(mutter, "overlay-key"), QStringLiteral("''"));
            blocker.uninstall();
            QCOMPARE(stored(mutter, "overlay-key"), QStringLiteral("'Super_R'"));
            QVERIFY(blocker.install());
        }
        QCOMPARE(stored(mutter, "overlay-key"), QStringLiteral("'Super_R'"));
        // Left empty by a run that ended without giving it back: the default comes back.
        QVERIFY(GSettingsKey(mutter, "overlay-key").setText(QString()));
        {
            OverlayKeyBlocker blocker;
            QVERIFY(blocker.install());
        }
        QCOMPARE(stored(mutter, "overlay-key"), QStringLiteral("'Super_L'"));

        QVERIFY(SessionDesktopSettings::hasAmbientBrightness());
        SessionDesktopSettings desktop;
        for (const bool on : {false, true}) {
            QVERIFY(desktop.setAmbientBrightness(on));
            QCOMPARE(stored(power, "ambient-enabled"), QLatin1String(on ? "true" : "false"));
        }
    }

    // Stand-ins on a PATH of their own record how they were started; the first one installed wins.
    void settingsPagesStartTheFirstInstalledProgram_data()
    {
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QString>("page"); // a command line, or the display or power page
        QTest::addColumn<QString>("started");
        const QString sound = "explorer ms-settings:sound";
        const QString touchpad = "explorer ms-settings:devices-touchpad";
        const QString camera = "explorer microsoft.windows.camera:";
        const QStringList desktops = {"gnome-control-center", "systemsettings", "kcmshell5"};
        const auto row = [](const QStringList &installed, const QString &page,
                            const QString &started) {
            QTest::addRow("%s with %s", qPrintable(page), qPrintable(installed.join('+')))
                << installed << page << started;
        };
        row(desktops + QStringList{"pavucontrol"}, sound, "gnome-control-center sound");
        row(desktops.mid(1), sound, "systemsettings kcm_pulseaudio");
        row({"kcmshell5", "pavucontrol"}, sound, "kcmshell5 kcm_pulseaudio");
        row({"pavucontrol"}, sound, "pavucontrol ");
        row({}, sound, "");
        row(desktops, touchpad, "gnome-control-center mouse");
        row(desktops.mid(1), touchpad, "systemsettings kcm_touchpad");
        row({"kcmshell5"}, touchpad, "kcmshell5 kcm_touchpad");
        row({"pavucontrol"}, touchpad, "");
        row({"snapshot", "cheese", "kamoso", "guvcview"}, camera, "snapshot ");
        row({"cheese", "kamoso", "guvcview"}, camera, "cheese ");
        row({"kamoso", "guvcview"}, camera, "kamoso ");
        row({"guvcview"}, camera, "guvcview ");
        row(desktops, "display", "gnome-control-center display");
        row(desktops, "power", "gnome-control-center power");
        row(desktops.mid(1), "display", "systemsettings kcm_kscreen");
        row(desktops.mid(1), "power", "systemsettings kcm_powerdevilprofilesconfig");
        row({"kcmshell5"}, "display", "kcmshell5 kcm_kscreen");
        row({"kcmshell5"}, "power", "kcmshell5 powerdevilprofilesconfig");
        row({"pavucontrol"}, "display", "");
        row({}, "power", "");
    }

    void settingsPagesStartTheFirstInstalledProgram()
    {
        QFETCH(QStringList, installed);
        QFETCH(QString, page);
        QFETCH(QString, started);
        QTemporaryDir bin;
        const QString log = bin.filePath(QStringLiteral("started"));
        for (const QString &name : installed)
            writeFile(bin.filePath(name),
                      "#!/bin/sh\necho \"${0##*/} $*\" > \"$0.log\"\n/bin/mv \"$0.log\" \"" +
                          QFile::encodeName(log) + "\"\n",
                      /*executable=*/true);
        EnvironmentOverride environment;
        environment.set("PATH", QFile::encodeName(bin.path()));
        bool ran = false;
        if (page == QLatin1String("display") || page == QLatin1String("power")) {
            SessionDesktopSettings desktop;
            ran = page == QLatin1String("display") ? desktop.openDisplaySettings()
                                                   : desktop.openPowerSettings();
        } else {
            CommandTable table;
            addDeviceCommands(table);
            ran = table.canRun(page);
            QCOMPARE(table.run(page), std::optional<QString>(QString()));
        }
        environment.restore();
        QCOMPARE(ran, !started.isEmpty());
        if (ran) {
            QTRY_COMPARE(QString::fromUtf8(readFile(log)), started + '\n');
        }
    }

    // The marker switches the desktop's event sounds; without one, the switch is read back.
    void markerDrivesEventSounds_data()
    {
        QTest::addColumn<QString>("marker"); // empty: none written
        QTest::addColumn<bool>("before");
        QTest::addColumn<bool>("after");
        QTest::addColumn<QString>("read");
        QTest::newRow("no sounds") << ".None" << true << false << ".None";
        QTest::newRow("stock") << ".Default" << false << true << ".Default";
        QTest::newRow("custom name leaves it") << "Jungle" << false << false << "Jungle";
        QTest::newRow("custom name leaves it on") << "Jungle" << true << true << "Jungle";
        QTest::newRow("none, sounds on") << QString() << true << true << ".Default";
        QTest::newRow("none, sounds off") << QString() << false << false << ".None";
    }

    void markerDrivesEventSounds()
    {
        QFETCH(QString, marker);
        QFETCH(bool, before);
        QFETCH(bool, after);
        auto eventSounds = SoundSchemeStore::sessionEventSounds();
        QVERIFY2(eventSounds->available(), "GNOME's sound schema is not installed");
        QVERIFY(eventSounds->setBoolean(before));
        SoundSchemeStore store(std::make_shared<UserStoreRegistry>(), eventSounds);
        if (!marker.isEmpty())
            store.setValue(kSchemes, QStringLiteral("Default"), marker);
        QCOMPARE(eventSounds->boolean(), std::optional<bool>(after));
        QTEST(store.value(kSchemes, QStringLiteral("Default"), QStringLiteral(".None")).toString(),
              "read");
    }

    // Of the sound events only the marker is kept.
    void onlyTheMarkerIsKept()
    {
        QCOMPARE(QLatin1String(SoundSchemeStore::prefix), "HKEY_CURRENT_USER\\AppEvents");
        const QString event = kSchemes + QStringLiteral("\\Apps\\.Default\\MailBeep\\.Current");
        auto userStore = std::make_shared<UserStoreRegistry>();
        SoundSchemeStore store(userStore, nullptr);
        QVERIFY(!store.contains(kSchemes, QStringLiteral("Default")));
        QCOMPARE(
            store.value(kSchemes, QStringLiteral("Default"), QStringLiteral(".None")).toString(),
            QStringLiteral(".None"));
        store.setValue(event, QStringLiteral("Default"), QString());
        store.setValue(kSchemes, QStringLiteral("Default"), QStringLiteral(".Default"));
        QVERIFY(!userStore->contains(event, QStringLiteral("Default")));
        QVERIFY(!store.contains(event, QStringLiteral("Default")));
        QCOMPARE(userStore->value(kSchemes, QStringLiteral("Default"), QVariant()).toString(),
                 QStringLiteral(".Default"));
    }

    // The slider is the loudest channel, as another client sees it.
    void settingKeepsTheBalance_data()
    {
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("right");
        QTest::addColumn<quint32>("shown");
        QTest::addColumn<float>("level");
        QTest::addColumn<QList<int>>("after");
        auto row = [](const char *name, const char *left, const char *right, quint32 shown,
                      float level, QList<int> after) {
            QTest::newRow(name) << QString(left) << QString(right) << shown << level << after;
        };
        row("one to two", "30%", "60%", 60, 0.9f, {45, 90});
        row("above nominal", "150%", "75%", 150, 1.0f, {100, 50});
    }

    void settingKeepsTheBalance()
    {
        QFETCH(QString, left);
        QFETCH(QString, right);
        QFETCH(float, level);
        pactl({QStringLiteral("set-sink-volume"), QLatin1String(kSink), left, right});
        PulseAudioEndpoint endpoint;
        QTEST(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), "shown");
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::SetVolume, level, false), 0u);
        const QString seen = pactl({QStringLiteral("get-sink-volume"), QLatin1String(kSink)});
        QList<int> after;
        auto it = QRegularExpression(QStringLiteral("/\\s*(\\d+)%"))
                      .globalMatch(seen.section('\n', 0, 0));
        while (it.hasNext())
            after << it.next().captured(1).toInt();
        QTEST(after, "after");
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                 quint32(qRound(level * 100)));
    }

    // The library is loaded only where a server may answer; the same places libpulse looks.
    void serverIsLookedForBeforeLoadingTheLibrary_data()
    {
        QTest::addColumn<QString>("where");
        QTest::addColumn<bool>("mayExist");
        QTest::newRow("nowhere") << QString() << false;
        QTest::newRow("session socket") << "pulse/native" << true;
        QTest::newRow("server's runtime path") << "runtime/native" << true;
        QTest::newRow("client configuration") << "config/pulse/client.conf" << true;
        QTest::newRow("named server") << "PULSE_SERVER" << true;
    }

    void serverIsLookedForBeforeLoadingTheLibrary()
    {
        QFETCH(QString, where);
        QFETCH(bool, mayExist);
        if (QFile::exists(QStringLiteral("/run/pulse/native")))
            QSKIP("a system-wide server runs here");
        QTemporaryDir home;
        EnvironmentOverride environment;
        environment.set("PULSE_SERVER",
                        where == QLatin1String("PULSE_SERVER") ? "tcp:localhost" : QByteArray());
        environment.set("PULSE_RUNTIME_PATH", QFile::encodeName(home.filePath("runtime")));
        environment.set("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
        environment.set("XDG_CONFIG_HOME", QFile::encodeName(home.filePath("config")));
        if (!where.isEmpty() && where != QLatin1String("PULSE_SERVER"))
            writeFile(home.filePath(where),
                      "; a comment\ndefault-server = unix:/somewhere/native\n");
        const bool found = PulseLibrary::serverMayExist();
        environment.restore();
        if (!mayExist && found)
            QSKIP("this machine's own client configuration names a server");
        QCOMPARE(found, mayExist);
    }

    // No server: no device at once, not after the time-out. A server that accepts and never
    // answers costs the given time-out, then nothing until the retry. The time-outs are far
    // from what is measured, so that a loaded machine cannot tip the comparisons.
    void noAnsweringServerMeansNoDevice()
    {
        EnvironmentOverride environment;
        environment.set("PULSE_SERVER",
                        "unix:" + QFile::encodeName(m_runtime.path()) + "/nothing-here");
        QElapsedTimer timer;
        timer.start();
        {
            PulseAudioEndpoint endpoint(30s, 60s);
            QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
            QCOMPARE(
                (QList<quint32>{endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                                endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false),
                                endpoint.volumeOperation(AudioEndpoint::SetVolume, 0.5f, false)}),
                (QList<quint32>{0, 0, 0}));
        }
        const qint64 none = timer.restart();
        QLocalServer silent;
        QVERIFY(silent.listen(m_runtime.path() + QStringLiteral("/silent")));
        environment.set("PULSE_SERVER", "unix:" + QFile::encodeName(silent.fullServerName()));
        PulseAudioEndpoint endpoint(2s, 60s);
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        const qint64 first = timer.restart();
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), 0u);
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        environment.restore();
        QVERIFY2(none < 10000, qPrintable(QString::number(none)));
        QVERIFY2(first >= 1900, qPrintable(QString::number(first))); // the default is 500 ms
        int attempts = 0;
        while (silent.waitForNewConnection(0) && silent.nextPendingConnection())
            ++attempts;
        QCOMPARE(attempts, 1); // the later calls waited for the retry
    }

    // The shown percent is the loudest channel; the others keep their share of a new level.
    void loudestChannelIsTheLevel_data()
    {
        QTest::addColumn<quint32>("left");
        QTest::addColumn<quint32>("right");
        QTest::addColumn<quint32>("percent");
        QTest::addColumn<float>("level");
        QTest::addColumn<quint32>("newLeft");
        QTest::addColumn<quint32>("newRight");
        const quint32 n = PA_VOLUME_NORM;
        auto row = [](const char *name, quint32 l, quint32 r, quint32 percent, float level,
                      quint32 nl, quint32 nr) {
            QTest::newRow(name) << l << r << percent << level << nl << nr;
        };
        row("from silence", 0, 0, 0, 0.5f, n / 2, n / 2);
        row("balanced", n / 2, n / 2, 50, 1.0f, n, n);
        row("level clamped", n, n, 100, 1.5f, n, n);
        row("one side silent", n, 0, 100, 0.25f, n / 4, 0);
        // Target 0.6 of 65536 is 39322: the louder channel takes it, the other keeps half of it.
        row("one to two", n / 4, n / 2, 50, 0.6f, 19661, 39322);
        row("to silence", n, n / 2, 100, 0.0f, 0, 0);
        row("left full, right half", n, n / 2, 100, 1.0f, n, n / 2);
        row("half step rounds up", 327, 0, 0, 1.0f, n, 0);
        row("just over half", 0, 328, 1, 0.5f, 0, n / 2);
        row("above nominal", n * 3 / 2, n * 3 / 2, 150, 1.0f, n, n);
        row("above nominal, unbalanced", n * 2, n, 200, 1.0f, n, n / 2);
    }

    void loudestChannelIsTheLevel()
    {
        pa_cvolume in{};
        in.channels = 2;
        QFETCH(quint32, left);
        QFETCH(quint32, right);
        QFETCH(float, level);
        in.values[0] = left;
        in.values[1] = right;
        QTEST(pulsevolume::percent(in), "percent");
        const pa_cvolume out = pulsevolume::scaledTo(in, level);
        QCOMPARE(out.channels, uint8_t(2));
        QTEST(out.values[0], "newLeft");
        QTEST(out.values[1], "newRight");
    }

    // Headphones by port type, or by name on an untyped port; the name the volume tab looks for.
    void headphonePorts()
    {
        const int phones = PA_DEVICE_PORT_TYPE_HEADPHONES, speaker = PA_DEVICE_PORT_TYPE_SPEAKER;
        const int yes = PA_PORT_AVAILABLE_YES;
        const struct {
            const char *tag;
            int type, available;
            const char *name;
            bool headphones;
        } rows[] = {
            {"plugged headphones", phones, yes, "analog-output", true},
            {"no jack detection", phones, PA_PORT_AVAILABLE_UNKNOWN, "x", true},
            {"unplugged", phones, PA_PORT_AVAILABLE_NO, "analog-output-headphones", false},
            {"speaker", speaker, yes, "analog-output-speaker", false},
            {"untyped, named", PA_DEVICE_PORT_TYPE_UNKNOWN, yes, "analog-output-headphones", true},
            {"typed speaker named like one", speaker, yes, "headphone-speaker", false},
        };
        for (const auto &r : rows) {
            QVERIFY2(pulsevolume::isHeadphonePort(r.type, r.available, QLatin1String(r.name)) ==
                         r.headphones,
                     r.tag);
        }
        QCOMPARE((QStringList{pulsevolume::deviceName("Built-in Audio", true),
                              pulsevolume::deviceName("Built-in Audio", false)}),
                 (QStringList{"Built-in Audio (Headphones)", "Built-in Audio"}));
    }

    // Last, as the sink goes away: its name and mute state, then no device without it.
    void namesTheSinkMutesItAndLosesIt()
    {
        PulseAudioEndpoint endpoint;
        QCOMPARE(endpoint.outputDeviceName(), QLatin1String(kDescription));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, true);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 999u);
        QVERIFY(pactl({QStringLiteral("get-sink-mute"), QLatin1String(kSink)}).contains("yes"));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, false);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 111u);
        pactl({QStringLiteral("unload-module"), QStringLiteral("module-null-sink")});
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        QCOMPARE((QList<quint32>{endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                                 endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false)}),
                 (QList<quint32>{0, 0}));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, true);
    }

private:
    bool serve(const char *service, const char *path, StandInService &standIn)
    {
        QDBusConnection bus =
            QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("plasma"));
        return bus.registerObject(QLatin1String(path), &standIn, QDBusConnection::ExportAllSlots) &&
               bus.registerService(QLatin1String(service));
    }
    QString socketDir() const { return m_runtime.path() + QStringLiteral("/pulse"); }

    PrivateSessionBus m_bus;
    QTemporaryDir m_config;
    QTemporaryDir m_runtime;
    QProcess m_server;
};

QTEST_GUILESS_MAIN(TestLinuxDesktop)
#include "tst_linuxdesktop.moc"
