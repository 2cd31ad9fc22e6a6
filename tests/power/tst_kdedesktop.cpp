// KDE Plasma's timeouts and Meta shortcut: the user's files in KConfig's syntax, and the
// running services asked to read them again, on a session bus of the test's own.
#include "kconfigfile.h"
#include "kdedesktop.h"

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

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

QString read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void write(const QString &path, const QString &text)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
}

const QString kOtherProfile = QStringLiteral("[LowBattery][DPMSControl]\nidleTime=60\n");

} // namespace

class TestKdeDesktop : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void timeoutsGoToTheProfilesAndReload_data();
    void timeoutsGoToTheProfilesAndReload();
    void metaKeyIsClearedAndGivenBack_data();
    void metaKeyIsClearedAndGivenBack();

private:
    bool serve(const char *service, const char *path, StandInService &standIn);

    QProcess m_daemon;
    QTemporaryDir m_config;
};

void TestKdeDesktop::initTestCase()
{
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--session"), QStringLiteral("--nofork"),
                    QStringLiteral("--print-address")});
    QVERIFY(m_daemon.waitForReadyRead(10000));
    // Before anything in the process opens the session bus.
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_daemon.readLine().trimmed());
}

void TestKdeDesktop::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(QStringLiteral("plasma"));
    m_daemon.kill();
    m_daemon.waitForFinished(5000);
}

bool TestKdeDesktop::serve(const char *service, const char *path, StandInService &standIn)
{
    QDBusConnection bus = QDBusConnection::connectToBus(
        QString::fromUtf8(qgetenv("DBUS_SESSION_BUS_ADDRESS")), QStringLiteral("plasma"));
    return bus.registerObject(QLatin1String(path), &standIn, QDBusConnection::ExportAllSlots) &&
           bus.registerService(QLatin1String(service));
}

void TestKdeDesktop::timeoutsGoToTheProfilesAndReload_data()
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

void TestKdeDesktop::timeoutsGoToTheProfilesAndReload()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    const QString file = m_config.filePath(QStringLiteral("powermanagementprofilesrc"));
    write(file, before);
    StandInPowerManager powerManager;
    QVERIFY(serve("org.kde.Solid.PowerManagement", "/org/kde/Solid/PowerManagement", powerManager));

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
    QCOMPARE(read(file), after);
    QTRY_COMPARE(powerManager.calls,
                 before.contains(QLatin1String("[AC][SuspendSession]")) ? 3 : 2);
    QDBusConnection::disconnectFromBus(QStringLiteral("plasma"));
}

void TestKdeDesktop::metaKeyIsClearedAndGivenBack_data()
{
    QTest::addColumn<QString>("before");
    QTest::newRow("no file") << QString();
    QTest::newRow("the user's own Meta action")
        << QStringLiteral("[Windows]\nBorderlessMaximizedWindows=true\n\n[ModifierOnlyShortcuts]\n"
                          "Meta=org.kde.krunner,/App,,toggleDisplay\n");
    QTest::newRow("other keys in the group") << QStringLiteral("[ModifierOnlyShortcuts]\nShift=\n");
}

void TestKdeDesktop::metaKeyIsClearedAndGivenBack()
{
    QFETCH(QString, before);
    const QString file = m_config.filePath(QStringLiteral("kwinrc"));
    QFile::remove(file);
    if (!before.isEmpty())
        write(file, before);
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
        QCOMPARE(read(file), before);
        QVERIFY(blocker.install());
    } // the program ends with the box checked: given back all the same
    QCOMPARE(read(file), before);
    QTRY_COMPARE(kwin.calls, 5);
    QDBusConnection::disconnectFromBus(QStringLiteral("plasma"));
}

QTEST_GUILESS_MAIN(TestKdeDesktop)
#include "tst_kdedesktop.moc"
