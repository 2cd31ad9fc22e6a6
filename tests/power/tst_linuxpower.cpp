// The Linux side of the power modes: mains power from /sys/class/power_supply fixtures, and the
// command-table rows for the scheme and settings-page command lines.
#include "commandtable.h"
#include "desktopsettings.h"
#include "powercfgcommands.h"
#include "powercommands.h"
#include "powersupply.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {
class RecordingDesktop : public DesktopSettings {
public:
    bool setAmbientBrightness(bool enabled) override
    {
        calls << QStringLiteral("ambient %1").arg(enabled);
        return true;
    }
    bool openDisplaySettings() override { return (calls << QStringLiteral("display"), true); }
    bool openPowerSettings() override { return (calls << QStringLiteral("power"), true); }
    QStringList calls;
};

void write(const QTemporaryDir &dir, const QString &supply, const char *file, const QString &text)
{
    QDir(dir.path()).mkpath(supply);
    QFile out(dir.filePath(supply + QLatin1Char('/') + QLatin1String(file)));
    QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
    out.write(text.toUtf8() + '\n');
}
} // namespace

class LinuxPowerTest : public QObject {
    Q_OBJECT

private slots:
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
            write(dir, name, "type", parts.at(parts.size() - 2));
            if (parts.last() != "-")
                write(dir, name, "online", parts.last());
        }
        QTEST(SysfsPowerSupply(dir.path()).acLineStatus(), "status");
    }

    // One reader follows plugs, and supplies that go away: none left means no line supply.
    void oneReaderFollowsPlugsAndVanishedSupplies()
    {
        QTemporaryDir dir;
        for (const char *name : {"AC", "ADP2"}) {
            write(dir, name, "type", "Mains");
            write(dir, name, "online", "0");
        }
        SysfsPowerSupply supply(dir.path());
        QList<int> seen{supply.acLineStatus()};
        write(dir, "AC", "online", "1");
        seen << supply.acLineStatus();
        write(dir, "AC", "online", "0");
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
};

QTEST_GUILESS_MAIN(LinuxPowerTest)
#include "tst_linuxpower.moc"
