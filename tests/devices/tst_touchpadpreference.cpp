#include "gsettingskey.h"
#include "linuxregistry.h"
#include "touchpadpreference.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString kKey = QLatin1String(TouchpadRegistry::key);

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

class TestTouchpadPreference : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_config.isValid());
        // Before GLib looks anything up: a private, file-backed settings store.
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path()));
        qputenv("GSETTINGS_BACKEND", "keyfile");
    }

    void valueCarriedToTheDesktop_data()
    {
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<bool>("on");
        QTest::newRow("0 turns it off") << QVariant(0) << false;
        QTest::newRow("1 turns it on") << QVariant(1) << true;
    }

    void valueCarriedToTheDesktop()
    {
        QFETCH(QVariant, written);
        QFETCH(bool, on);
        auto desktop = std::make_shared<ScriptedPreference>();
        auto store = std::make_shared<UserStoreRegistry>();
        TouchpadRegistry registry(desktop, store);
        registry.setValue(kKey, QStringLiteral("Enabled"), written);
        QCOMPARE(desktop->sets, QList<bool>({on}));
        QCOMPARE(registry.value(kKey, QStringLiteral("Enabled"), QVariant()).toInt(), on ? 1 : 0);
        QVERIFY(!store->contains(kKey, QStringLiteral("Enabled")));
    }

    void desktopThatCannotSayFallsBackToTheStore()
    {
        auto desktop = std::make_shared<ScriptedPreference>();
        desktop->accepts = false;
        auto store = std::make_shared<UserStoreRegistry>();
        TouchpadRegistry registry(desktop, store);
        registry.setValue(kKey, QStringLiteral("Enabled"), 1);
        QCOMPARE(store->value(kKey, QStringLiteral("Enabled"), QVariant()).toInt(), 1);
        QCOMPARE(registry.value(kKey, QStringLiteral("Enabled"), QVariant()).toInt(), 1);
        registry.setValue(kKey, QStringLiteral("Enabled"), 0);
        QCOMPARE(registry.value(kKey, QStringLiteral("Enabled"), QVariant()).toInt(), 0);
    }

    void withoutDesktopTheStoreRemembers()
    {
        auto store = std::make_shared<UserStoreRegistry>();
        store->remove(kKey, QStringLiteral("Enabled"));
        TouchpadRegistry registry(nullptr, store);
        QVERIFY(!registry.value(kKey, QStringLiteral("Enabled"), QVariant()).isValid());
        registry.setValue(kKey, QStringLiteral("Enabled"), 1);
        QCOMPARE(registry.value(kKey, QStringLiteral("Enabled"), QVariant()).toInt(), 1);
    }

    void gnomeSendEvents_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("enabled") << "enabled" << true;
        QTest::newRow("disabled") << "disabled" << false;
        QTest::newRow("off only with a mouse") << "disabled-on-external-mouse" << true;
    }

    void gnomeSendEvents()
    {
        QFETCH(QString, mode);
        QFETCH(bool, enabled);
        GSettingsKey sendEvents("org.gnome.desktop.peripherals.touchpad", "send-events");
        if (!sendEvents.available())
            QSKIP("GNOME's desktop schemas are not installed");
        GnomeTouchpad touchpad;
        QVERIFY(sendEvents.setText(mode));
        QCOMPARE(touchpad.enabled(), std::optional<bool>(enabled));
    }

    void gnomeTouchpadWritesSendEvents()
    {
        GnomeTouchpad touchpad;
        if (!touchpad.available())
            QSKIP("GNOME's desktop schemas are not installed");
        GSettingsKey sendEvents("org.gnome.desktop.peripherals.touchpad", "send-events");
        QVERIFY(touchpad.setEnabled(false));
        QCOMPARE(sendEvents.text(), std::optional<QString>(QStringLiteral("disabled")));
        QVERIFY(touchpad.setEnabled(true));
        QCOMPARE(sendEvents.text(), std::optional<QString>(QStringLiteral("enabled")));
    }

    void missingSchemaIsAbsent()
    {
        GSettingsKey missing("org.example.varnel.nothing", "key");
        QVERIFY(!missing.available());
        QCOMPARE(missing.text(), std::optional<QString>());
        QVERIFY(!missing.setBoolean(true));
    }

private:
    QTemporaryDir m_config;
};

QTEST_GUILESS_MAIN(TestTouchpadPreference)
#include "tst_touchpadpreference.moc"
