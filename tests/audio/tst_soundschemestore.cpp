#include "gsettingskey.h"
#include "linuxregistry.h"
#include "soundschemestore.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {
const QString kSchemes = QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes");
const QString kEvent =
    QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps\\.Default\\MailBeep\\.Current");
} // namespace

// The Linux stand-in for the user's sound-event registry values and the desktop's switch.
class TestSoundSchemeStore : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_config.isValid());
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path()));
        qputenv("GSETTINGS_BACKEND", "keyfile");
    }

    void init()
    {
        QFile::remove(UserStoreRegistry::storePath());
        QCOMPARE(QLatin1String(SoundSchemeStore::prefix), "HKEY_CURRENT_USER\\AppEvents");
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

    void onlyTheMarkerIsKept()
    {
        auto userStore = std::make_shared<UserStoreRegistry>();
        SoundSchemeStore store(userStore, nullptr);
        QVERIFY(!store.contains(kSchemes, QStringLiteral("Default")));
        QCOMPARE(
            store.value(kSchemes, QStringLiteral("Default"), QStringLiteral(".None")).toString(),
            QStringLiteral(".None"));
        store.setValue(kEvent, QStringLiteral("Default"), QString());
        store.setValue(kSchemes, QStringLiteral("Default"), QStringLiteral(".Default"));
        QVERIFY(!userStore->contains(kEvent, QStringLiteral("Default")));
        QVERIFY(!store.contains(kEvent, QStringLiteral("Default")));
        QCOMPARE(userStore->value(kSchemes, QStringLiteral("Default"), QVariant()).toString(),
                 QStringLiteral(".Default"));
    }

private:
    QTemporaryDir m_config;
};

QTEST_GUILESS_MAIN(TestSoundSchemeStore)
#include "tst_soundschemestore.moc"
