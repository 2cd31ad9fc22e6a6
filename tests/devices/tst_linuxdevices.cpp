#include "desktoppower.h"
#include "gsettingskey.h"
#include "linuxregistry.h"
#include "rfkillswitch.h"
#include "touchpadpreference.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString kKey = QLatin1String(TouchpadRegistry::key);

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

} // namespace

// The Linux device backends: the wireless switch and the touchpad preference.
class TestLinuxDevices : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_config.isValid());
        // Before GLib looks anything up: a private, file-backed settings store.
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path()));
        qputenv("GSETTINGS_BACKEND", "keyfile");
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
        QFile file(dir.filePath(QStringLiteral("rfkill")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        LinuxDeviceSwitches(file.fileName()).setSwitch(switchId, value);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), bytes);
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
        auto store = std::make_shared<UserStoreRegistry>();
        store->remove(kKey, QStringLiteral("Enabled"));
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

    void gnomeTimeoutsAndSuperKey()
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
    }

private:
    QTemporaryDir m_config;
};

QTEST_GUILESS_MAIN(TestLinuxDevices)
#include "tst_linuxdevices.moc"
