// The Linux side of the power modes: mains power from /sys/class/power_supply fixtures, and the
// command-table rows for the scheme and settings-page command lines.
#include "commandtable.h"
#include "desktopsettings.h"
#include "gsettingskey.h"
#include "powercfgcommands.h"
#include "powercommands.h"
#include "powersupply.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class LinuxPowerTest : public QObject {
    Q_OBJECT

private slots:
    void absentSchemaLoadsNoGio();
    void acLineStatus_data();
    void acLineStatus();
    void oneReaderFollowsPlugsAndVanishedSupplies();
    void tableRowsMatchWholeLines_data();
    void tableRowsMatchWholeLines();
    void adaptiveBrightnessSetsAmbientLight_data();
    void adaptiveBrightnessSetsAmbientLight();
    void settingsPagesOpenTheDesktopPanels();
    void privilegedLinesStayUnknown_data();
    void privilegedLinesStayUnknown();
};

namespace {
class RecordingDesktop : public DesktopSettings {
public:
    bool setAmbientBrightness(bool enabled) override
    {
        calls << QStringLiteral("ambient %1").arg(enabled);
        return true;
    }
    bool openDisplaySettings() override
    {
        calls << QStringLiteral("display");
        return true;
    }
    bool openPowerSettings() override
    {
        calls << QStringLiteral("power");
        return true;
    }
    QStringList calls;
};
} // namespace

void LinuxPowerTest::acLineStatus_data()
{
    QTest::addColumn<QStringList>("supplies"); // name:type:online ("-" for no online file)
    QTest::addColumn<int>("status");
    QTest::newRow("mains online") << QStringList{"AC:Mains:1", "BAT0:Battery:-"} << 1;
    QTest::newRow("mains offline") << QStringList{"AC:Mains:0", "BAT0:Battery:-"} << 0;
    QTest::newRow("usb-c online") << QStringList{"ucsi-source-psy-USBC000:001:USB:1", "AC:Mains:0"}
                                  << 1;
    QTest::newRow("usb offline") << QStringList{"usb:USB:0"} << 0;
    QTest::newRow("battery only") << QStringList{"BAT0:Battery:-"} << 255;
    QTest::newRow("nothing") << QStringList{} << 255;
    QTest::newRow("mains without online file") << QStringList{"AC:Mains:-"} << 0;
}

void LinuxPowerTest::acLineStatus()
{
    QFETCH(QStringList, supplies);
    QFETCH(int, status);
    QTemporaryDir dir;
    for (const QString &s : supplies) {
        const QStringList parts = s.split(':');
        const QString name = parts.mid(0, parts.size() - 2).join(':');
        QDir(dir.path()).mkpath(name);
        QFile type(dir.filePath(name + "/type"));
        QVERIFY(type.open(QIODevice::WriteOnly));
        type.write(parts.at(parts.size() - 2).toUtf8() + '\n');
        if (parts.last() != "-") {
            QFile online(dir.filePath(name + "/online"));
            QVERIFY(online.open(QIODevice::WriteOnly));
            online.write(parts.last().toUtf8() + '\n');
        }
    }
    QCOMPARE(SysfsPowerSupply(dir.path()).acLineStatus(), status);
}

void LinuxPowerTest::oneReaderFollowsPlugsAndVanishedSupplies()
{
    QTemporaryDir dir;
    auto write = [&](const QString &name, const QByteArray &file, const QByteArray &text) {
        QDir(dir.path()).mkpath(name);
        QFile out(dir.filePath(name + QLatin1Char('/') + QLatin1String(file)));
        QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(text + '\n');
    };
    write(QStringLiteral("AC"), "type", "Mains");
    write(QStringLiteral("AC"), "online", "0");
    write(QStringLiteral("ADP2"), "type", "Mains");
    write(QStringLiteral("ADP2"), "online", "0");
    SysfsPowerSupply supply(dir.path());
    QCOMPARE(supply.acLineStatus(), 0);

    write(QStringLiteral("AC"), "online", "1");
    QCOMPARE(supply.acLineStatus(), 1);
    write(QStringLiteral("AC"), "online", "0");
    QCOMPARE(supply.acLineStatus(), 0);

    // Supplies that go away are noticed: none left means no line supply at all.
    QVERIFY(QDir(dir.filePath(QStringLiteral("AC"))).removeRecursively());
    QVERIFY(QDir(dir.filePath(QStringLiteral("ADP2"))).removeRecursively());
    QCOMPARE(supply.acLineStatus(), 255);
}

// First: GIO stays unloaded only while nothing in the process has asked for a key.
void LinuxPowerTest::absentSchemaLoadsNoGio()
{
    QTemporaryDir data;
    QDir(data.path()).mkpath(QStringLiteral("glib-2.0/schemas"));
    QFile compiled(data.path() + QStringLiteral("/glib-2.0/schemas/gschemas.compiled"));
    QVERIFY(compiled.open(QIODevice::WriteOnly));
    compiled.write("GVariant org.gnome.desktop.session");
    compiled.close();
    qputenv("XDG_DATA_DIRS", QFile::encodeName(data.path()));
    qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
    qunsetenv("GSETTINGS_SCHEMA_DIR");
    QVERIFY(
        !GSettingsKey("org.gnome.settings-daemon.plugins.power", "ambient-enabled").available());
    QFile maps(QStringLiteral("/proc/self/maps"));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    QVERIFY(!maps.readAll().contains("libgio"));
    // Named by a compiled file, the schema is looked up through GIO itself.
    GSettingsKey("org.gnome.desktop.session", "idle-delay").available();
    maps.seek(0);
    QVERIFY(maps.readAll().contains("libgio"));
}

void LinuxPowerTest::tableRowsMatchWholeLines_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("matches");
    QTest::newRow("optional letter, left out") << "powercfg -lists?x"
                                               << "powercfg -listx" << true;
    QTest::newRow("optional letter, given") << "powercfg -lists?x"
                                            << "powercfg -listsx" << true;
    QTest::newRow("repeated letter") << "net stops*x"
                                     << "net stopx" << true;
    QTest::newRow("counted letter") << "ab{2}c"
                                    << "abbc" << true;
    QTest::newRow("inline case option") << "(?i)WMIC Path"
                                        << "wmic path" << true;
    QTest::newRow("escaped dot") << "explorer a\\.b"
                                 << "explorer a.b" << true;
    QTest::newRow("escaped dot, other text") << "explorer a\\.b"
                                             << "explorer axb" << false;
    QTest::newRow("other command") << "tasklist /fi"
                                   << "taskkill /fi" << false;
    QTest::newRow("plain text keeps its case") << "tasklist"
                                               << "TASKLIST" << false;
    QTest::newRow("longer line") << "tasklist"
                                 << "tasklist /v" << false;
}

void LinuxPowerTest::tableRowsMatchWholeLines()
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

void LinuxPowerTest::adaptiveBrightnessSetsAmbientLight_data()
{
    QTest::addColumn<bool>("disable");
    QTest::addColumn<QString>("call");
    QTest::newRow("adaptive off") << true << "ambient 0";
    QTest::newRow("adaptive on") << false << "ambient 1";
}

void LinuxPowerTest::adaptiveBrightnessSetsAmbientLight()
{
    QFETCH(bool, disable);
    QFETCH(QString, call);
    auto desktop = std::make_shared<RecordingDesktop>();
    CommandTable table;
    addPowerCommands(table, desktop);
    for (const QString &line : powercmd::adaptiveBrightness(disable))
        QCOMPARE(table.run(line), std::optional<QString>(QString()));
    QCOMPARE(desktop->calls, (QStringList{call, call}));
}

void LinuxPowerTest::settingsPagesOpenTheDesktopPanels()
{
    auto desktop = std::make_shared<RecordingDesktop>();
    CommandTable table;
    addPowerCommands(table, desktop);
    QVERIFY(table.run("explorer ms-settings:display"));
    QVERIFY(table.run("control.exe /name Microsoft.PowerOptions /page  pagePlanSettings"));
    QCOMPARE(desktop->calls, (QStringList{"display", "power"}));
    // The page name's two blanks are part of the line.
    QVERIFY(!table.knows("control.exe /name Microsoft.PowerOptions /page pagePlanSettings"));
}

void LinuxPowerTest::privilegedLinesStayUnknown_data()
{
    QTest::addColumn<QString>("line");
    const powercmd::Pair lines[] = {powercmd::processorMinimum(5), powercmd::processorMaximum(90),
                                    powercmd::screenOff(3),        powercmd::sleepAfter(2),
                                    powercmd::sleepAfter(7),       powercmd::lidClose(2),
                                    powercmd::schemeBrightness(50)};
    for (const powercmd::Pair &pair : lines) {
        QTest::newRow(qPrintable(pair.ac)) << pair.ac;
        QTest::newRow(qPrintable(pair.dc)) << pair.dc;
    }
}

void LinuxPowerTest::privilegedLinesStayUnknown()
{
    QFETCH(QString, line);
    auto desktop = std::make_shared<RecordingDesktop>();
    CommandTable table;
    addPowerCommands(table, desktop);
    QVERIFY(!table.knows(line));
    QVERIFY(desktop->calls.isEmpty());
}

QTEST_GUILESS_MAIN(LinuxPowerTest)
#include "tst_linuxpower.moc"
