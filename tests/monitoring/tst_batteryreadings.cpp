#include "batteryreadings.h"
#include "commandtable.h"
#include "linuxbattery.h"

#include <QtTest>

// The battery widget's parsing, and the Linux rows that answer its two queries.
class BatteryReadingsTest : public QObject {
    Q_OBJECT
private slots:
    void stateCodesHaveTheirTexts_data();
    void stateCodesHaveTheirTexts();
    void statusOutputIsParsed_data();
    void statusOutputIsParsed();
    void chargeOutputIsParsed_data();
    void chargeOutputIsParsed();
    void utf16OutputIsDecoded();

    void powerSupplyStatusMapsToBatteryCodes_data();
    void powerSupplyStatusMapsToBatteryCodes();
    void linuxRowsAnswerInTheToolsShape_data();
    void linuxRowsAnswerInTheToolsShape();
    void linuxRowsMatchOnlyTheTwoQueries();

private:
    static QString fixture(const QString &name)
    {
        return QFINDTESTDATA(QStringLiteral("fixtures/") + name + QStringLiteral("/sys"));
    }
};

void BatteryReadingsTest::stateCodesHaveTheirTexts_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << "...";
    QTest::newRow("1") << 1 << "On Battery";
    QTest::newRow("2") << 2 << "AC Power";
    QTest::newRow("3") << 3 << "Full Battery";
    QTest::newRow("4") << 4 << "Low Battery";
    QTest::newRow("5") << 5 << "Battery Critical";
    QTest::newRow("6") << 6 << "Battery Charging";
    QTest::newRow("7") << 7 << "Charging (High)";
    QTest::newRow("8") << 8 << "Charging (Low)";
    QTest::newRow("9") << 9 << "Charging (Critical)";
    QTest::newRow("10") << 10 << "...";
    QTest::newRow("11") << 11 << "Partially Charged";
    QTest::newRow("12") << 12 << "...";
    QTest::newRow("-1") << -1 << "...";
}

void BatteryReadingsTest::stateCodesHaveTheirTexts()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(batteryStateText(code), text);
}

void BatteryReadingsTest::statusOutputIsParsed_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("status");
    QTest::newRow("header, value, blank lines")
        << "BatteryStatus  \r\r\n2              \r\r\n\r\r\n"
        << "AC Power";
    QTest::newRow("charging") << "BatteryStatus\r\n6\r\n"
                              << "Battery Charging";
    QTest::newRow("code 10 shows nothing new") << "BatteryStatus  \r\r\n10  \r\r\n"
                                               << "...";
    QTest::newRow("above 11") << "BatteryStatus  \r\r\n12  \r\r\n"
                              << "...";
    QTest::newRow("header only (no battery)") << "BatteryStatus  \r\r\n"
                                              << "...";
    QTest::newRow("empty") << ""
                           << "...";
    QTest::newRow("an error text") << "No Instance(s) Available.\r\n"
                                   << "...";
    QTest::newRow("two batteries run together") << "BatteryStatus\r\n2\r\n1\r\n"
                                                << "...";
}

void BatteryReadingsTest::statusOutputIsParsed()
{
    QFETCH(QString, output);
    QFETCH(QString, status);
    QCOMPARE(parseBatteryStatus(output), status);
}

void BatteryReadingsTest::chargeOutputIsParsed_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("charge");
    QTest::newRow("87") << "EstimatedChargeRemaining  \r\r\n87                        \r\r\n\r\r\n"
                        << "87%";
    QTest::newRow("full") << "EstimatedChargeRemaining\r\n100\r\n"
                          << "100%";
    QTest::newRow("empty reading") << ""
                                   << "%";
    QTest::newRow("header only") << "EstimatedChargeRemaining  \r\r\n"
                                 << "%";
    QTest::newRow("not checked for a number") << "Error:\r\nnone\r\n"
                                              << "Error:none%";
}

void BatteryReadingsTest::chargeOutputIsParsed()
{
    QFETCH(QString, output);
    QFETCH(QString, charge);
    QCOMPARE(parseBatteryCharge(output), charge);
}

void BatteryReadingsTest::utf16OutputIsDecoded()
{
    const QString text = QStringLiteral("BatteryStatus  \r\r\n3  \r\r\n");
    QByteArray bytes("\xff\xfe", 2);
    bytes.append(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    QCOMPARE(toolOutputText(bytes), text);
    QCOMPARE(parseBatteryStatus(toolOutputText(bytes)), QStringLiteral("Full Battery"));
    QCOMPARE(toolOutputText("BatteryStatus\r\n2\r\n"), QStringLiteral("BatteryStatus\r\n2\r\n"));
}

void BatteryReadingsTest::powerSupplyStatusMapsToBatteryCodes_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("level");
    QTest::addColumn<int>("code");
    QTest::newRow("discharging") << "Discharging"
                                 << "Normal" << 1;
    QTest::newRow("discharging low") << "Discharging"
                                     << "Low" << 4;
    QTest::newRow("discharging critical") << "Discharging"
                                          << "Critical" << 5;
    QTest::newRow("charging") << "Charging"
                              << "Normal" << 6;
    QTest::newRow("charging high") << "Charging"
                                   << "High" << 7;
    QTest::newRow("charging low") << "Charging"
                                  << "Low" << 8;
    QTest::newRow("charging critical") << "Charging"
                                       << "Critical" << 9;
    QTest::newRow("full") << "Full"
                          << "Full" << 3;
    QTest::newRow("held below a limit") << "Not charging"
                                        << "Normal" << 2;
    QTest::newRow("unknown") << "Unknown"
                             << "" << 2;
}

void BatteryReadingsTest::powerSupplyStatusMapsToBatteryCodes()
{
    QFETCH(QString, status);
    QFETCH(QString, level);
    QFETCH(int, code);
    QCOMPARE(batteryStatusCode(status, level), code);
}

void BatteryReadingsTest::linuxRowsAnswerInTheToolsShape_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("charge");
    QTest::newRow("charging") << "battery-charging"
                              << "Battery Charging"
                              << "87%";
    QTest::newRow("full, beside a mouse battery") << "battery-full"
                                                  << "Full Battery"
                                                  << "100%";
    QTest::newRow("absent: only a mouse battery") << "battery-absent"
                                                  << "..."
                                                  << "%";
}

void BatteryReadingsTest::linuxRowsAnswerInTheToolsShape()
{
    QFETCH(QString, tree);
    QFETCH(QString, status);
    QFETCH(QString, charge);
    CommandTable table;
    addBatteryCommands(table, fixture(tree));

    const auto statusOutput =
        table.run(QStringLiteral("WMIC Path Win32_Battery Get BatteryStatus"));
    const auto chargeOutput =
        table.run(QStringLiteral("WMIC Path Win32_Battery Get EstimatedChargeRemaining"));
    QVERIFY(statusOutput && chargeOutput);
    QVERIFY(statusOutput->startsWith(QStringLiteral("BatteryStatus  \r\r\n")));
    QVERIFY(chargeOutput->startsWith(QStringLiteral("EstimatedChargeRemaining  \r\r\n")));
    QCOMPARE(parseBatteryStatus(*statusOutput), status);
    QCOMPARE(parseBatteryCharge(*chargeOutput), charge);
}

void BatteryReadingsTest::linuxRowsMatchOnlyTheTwoQueries()
{
    CommandTable table;
    addBatteryCommands(table, fixture(QStringLiteral("battery-charging")));
    QVERIFY(table.knows(QStringLiteral("wmic path win32_battery get batterystatus")));
    QVERIFY(!table.knows(QStringLiteral("WMIC Path Win32_Battery Get BatteryStatus /value")));
    QVERIFY(!table.knows(QStringLiteral("WMIC Path Win32_Battery Get DesignCapacity")));
}

QTEST_GUILESS_MAIN(BatteryReadingsTest)
#include "tst_batteryreadings.moc"
