#include "commandtable.h"
#include "desktoppower.h"
#include "desktopsettings.h"
#include "devicecommands.h"
#include "gsettingskey.h"
#include "linuxregistry.h"
#include "privatesystembus.h"
#include "rfkillswitch.h"
#include "soundschemestore.h"
#include "textfile.h"
#include "touchpadpreference.h"

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <atomic>

namespace {

// The window's touchpad key, which the native registry hands to the touchpad preference.
const QString kKey = QStringLiteral(
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\PrecisionTouchPad\\Status");
const QString kSchemes = QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes");

// A key as the desktop's own command-line tool reads it from the settings store.
QString stored(const char *schema, const char *key)
{
    QProcess gsettings;
    gsettings.start(QStringLiteral("gsettings"), {"get", schema, key});
    gsettings.waitForFinished(10000);
    return QString::fromUtf8(gsettings.readAllStandardOutput()).trimmed();
}

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

} // namespace

// The Linux device backends: the wireless switch, the touchpad preference, the sound-scheme
// store and the desktop's settings programs.
class TestLinuxDevices : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_config.isValid());
        // Before GLib looks anything up: a private, file-backed settings store.
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path()));
        qputenv("GSETTINGS_BACKEND", "keyfile");
        QVERIFY(m_bus.start());
    }
    void init() { QFile::remove(UserStoreRegistry::storePath()); }

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

    void gsettingsKeysAndGnomeTouchpad()
    {
        GSettingsKey missing("org.example.varnel.nothing", "key");
        QVERIFY(!missing.available());
        QCOMPARE(missing.text(), std::optional<QString>());
        QVERIFY(!missing.setBoolean(true));
        GSettingsKey sendEvents("org.gnome.desktop.peripherals.touchpad", "send-events");
        GnomeTouchpad touchpad;
        if (!sendEvents.available() || !touchpad.available())
            QSKIP("GNOME's desktop schemas are not installed");
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

    void gnomeTimeoutsSuperKeyAndAmbientLight()
    {
        const char *power = "org.gnome.settings-daemon.plugins.power", *mutter = "org.gnome.mutter";
        GnomeTimeouts timeouts;
        QVERIFY2(timeouts.available() && OverlayKeyBlocker::available(),
                 "GNOME's power and window-manager schemas are not installed");
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
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(bin.path()));
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
        qputenv("PATH", path);
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

private:
    QTemporaryDir m_config;
    PrivateSessionBus m_bus;
};

QTEST_GUILESS_MAIN(TestLinuxDevices)
#include "tst_linuxdevices.moc"
