#include "batteryreadings.h"
#include "commandtable.h"
#include "linuxbattery.h"

#include <QtTest>

class BatteryReadingsTest : public QObject {
    Q_OBJECT
private slots:

    // Each state code's text, and the Linux status and level giving it (empty: none does).
    void stateCodes_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("level");
        // code|text|status|level, rows split by ';'
        const QString rows("-1|...||;0|...||;1|On Battery|Discharging|Normal;2|AC Power|Not "
                           "charging|Normal;2|AC Power|Unknown|;3|Full Battery|Full|Full;4|Low "
                           "Battery|Discharging|Low;5|Battery Critical|Discharging|Critical;6|"
                           "Battery Charging|Charging|Normal;7|Charging (High)|Charging|High;8|"
                           "Charging (Low)|Charging|Low;9|Charging (Critical)|Charging|Critical;"
                           "10|...||;11|Partially Charged||;12|...||");
        for (const QString &row : rows.split(';')) {
            const QStringList f = row.split('|');
            QTest::newRow(qPrintable(row)) << f[0].toInt() << f[1] << f[2] << f[3];
        }
    }

    void stateCodes()
    {
        QFETCH(int, code);
        QFETCH(QString, status);
        QFETCH(QString, level);
        QTEST(batteryStateText(code), "text");
        if (!status.isEmpty())
            QCOMPARE(batteryStatusCode(status, level), code);
    }

    void outputsAreParsed_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QString>("status"); // null: not a status answer
        QTest::addColumn<QString>("charge"); // null: not a charge answer
        const struct {
            const char *name, *output, *status, *charge;
        } rows[] = {
            {"status, blank lines", "BatteryStatus  \r\r\n2              \r\r\n\r\r\n", "AC Power",
             nullptr},
            {"code 10 shows nothing new", "BatteryStatus  \r\r\n10  \r\r\n", "...", nullptr},
            {"two batteries run together", "BatteryStatus\r\n2\r\n1\r\n", "...", nullptr},
            {"an error text", "No Instance(s) Available.\r\n", "...", nullptr},
            {"empty", "", "...", "%"},
            {"header only (no battery)", "BatteryStatus  \r\r\n", "...", nullptr},
            {"charge header only", "EstimatedChargeRemaining  \r\r\n", nullptr, "%"},
            {"charge", "EstimatedChargeRemaining  \r\r\n87                        \r\r\n\r\r\n",
             nullptr, "87%"},
            {"charge not checked for a number", "Error:\r\nnone\r\n", nullptr, "Error:none%"},
        };
        for (const auto &row : rows)
            QTest::newRow(row.name) << QByteArray(row.output) << QString::fromLatin1(row.status)
                                    << QString::fromLatin1(row.charge);
        // Redirected, the tool writes UTF-16 after a byte order mark.
        const QString wide = QStringLiteral("BatteryStatus  \r\r\n3  \r\r\n");
        QTest::newRow("UTF-16") << QByteArray("\xff\xfe", 2) +
                                       QByteArray(reinterpret_cast<const char *>(wide.utf16()),
                                                  wide.size() * 2)
                                << QString("Full Battery") << QString();
    }

    void outputsAreParsed()
    {
        QFETCH(QByteArray, output);
        QFETCH(QString, status);
        QFETCH(QString, charge);
        if (!status.isNull())
            QCOMPARE(parseBatteryStatus(toolOutputText(output)), status);
        if (!charge.isNull())
            QCOMPARE(parseBatteryCharge(toolOutputText(output)), charge);
    }

    void linuxRowsAnswerInTheToolsShape_data()
    {
        QTest::addColumn<QString>("tree");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("charge");
        QTest::newRow("charging") << "battery-charging" << QString("Battery Charging") << "87%";
        QTest::newRow("full, beside a mouse battery")
            << "battery-full" << QString("Full Battery") << "100%";
        QTest::newRow("low, on battery") << "battery-low" << QString("Low Battery") << "12%";
        QTest::newRow("absent: only a mouse battery") << "battery-absent" << QString("...") << "%";
    }

    void linuxRowsAnswerInTheToolsShape()
    {
        QFETCH(QString, tree);
        QFETCH(QString, status);
        QFETCH(QString, charge);
        CommandTable table;
        addBatteryCommands(
            table, QFINDTESTDATA(QStringLiteral("fixtures/") + tree + QStringLiteral("/sys")));
        const auto statusOutput =
            table.run(QStringLiteral("WMIC Path Win32_Battery Get BatteryStatus"));
        const auto chargeOutput =
            table.run(QStringLiteral("WMIC Path Win32_Battery Get EstimatedChargeRemaining"));
        QVERIFY(statusOutput && chargeOutput);
        QVERIFY(statusOutput->startsWith(QStringLiteral("BatteryStatus  \r\r\n")));
        QVERIFY(chargeOutput->startsWith(QStringLiteral("EstimatedChargeRemaining  \r\r\n")));
        QCOMPARE(parseBatteryStatus(*statusOutput), status);
        QCOMPARE(parseBatteryCharge(*chargeOutput), charge);
        // Matched without regard to case, and only these two queries.
        QVERIFY(table.knows(QStringLiteral("wmic path win32_battery get batterystatus")));
        QVERIFY(!table.knows(QStringLiteral("WMIC Path Win32_Battery Get BatteryStatus /value")));
        QVERIFY(!table.knows(QStringLiteral("WMIC Path Win32_Battery Get DesignCapacity")));
    }
};

QTEST_GUILESS_MAIN(BatteryReadingsTest)
#include "tst_batteryreadings.moc"
