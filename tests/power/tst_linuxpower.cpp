// The Linux side of the power modes: mains power from /sys/class/power_supply fixtures, the
// command-table rows for the scheme and settings-page command lines, and in a Plasma session the
// timeouts and the Meta shortcut in the user's files in KConfig's syntax, with the running
// services asked to read them again on a session bus of the test's own.
#include "commandtable.h"
#include "desktopsettings.h"
#include "gsettingskey.h"
#include "kconfigfile.h"
#include "kdedesktop.h"
#include "powercfgcommands.h"
#include "powercommands.h"
#include "powersupply.h"
#include "privatesystembus.h"
#include "textfile.h"

#include <QDBusConnection>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

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
} // namespace

class LinuxPowerTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_bus.start()); }
    void cleanup() { QDBusConnection::disconnectFromBus(QStringLiteral("plasma")); }
    // Before any other case: GIO stays unloaded only while nothing has asked for a key.
    void absentSchemaLoadsNoGio()
    {
        QTemporaryDir data;
        writeFile(data.filePath("glib-2.0/schemas/gschemas.compiled"),
                  "GVariant org.gnome.desktop.session\n");
        qputenv("XDG_DATA_DIRS", QFile::encodeName(data.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
        qunsetenv("GSETTINGS_SCHEMA_DIR");
        QVERIFY(!GSettingsKey("org.gnome.settings-daemon.plugins.power", "ambient-enabled")
                     .available());
        const QString maps = QStringLiteral("/proc/self/maps");
        QVERIFY(!readFile(maps).contains("libgio"));
        // Named by a compiled file, the schema is looked up through GIO itself.
        GSettingsKey("org.gnome.desktop.session", "idle-delay").available();
        QVERIFY(readFile(maps).contains("libgio"));
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
        row("other command", "tasklist /fi", "taskkill /fi", false);
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

private:
    bool serve(const char *service, const char *path, StandInService &standIn)
    {
        QDBusConnection bus =
            QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("plasma"));
        return bus.registerObject(QLatin1String(path), &standIn, QDBusConnection::ExportAllSlots) &&
               bus.registerService(QLatin1String(service));
    }
    PrivateSessionBus m_bus;
    QTemporaryDir m_config;
};

QTEST_GUILESS_MAIN(LinuxPowerTest)
#include "tst_linuxpower.moc"
