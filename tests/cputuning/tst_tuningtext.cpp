// The tuning tab's texts and the parsers of the client's table output, on output shaped the way
// the client prints it.
#include "tuningformat.h"
#include "tuningparsers.h"

#include <QtTest>

namespace {

const QString kHeader =
    QStringLiteral("\r\nID           Name                           Value[Unit] "
                   "Min        Max        Multipliers Item Count\n\r\n");

QString undervoltRow(const QString &value)
{
    return QStringLiteral("34           Core Voltage Offset            %1-999 mV    999 mV     N/A "
                          "        0         \n\r\n")
        .arg(value.leftJustified(12));
}

QString powerRow(const QString &value, const QString &maximum = QStringLiteral("4095.875W"))
{
    return QStringLiteral(
               "48           Turbo Boost Power Max          %1 8W         %2 N/A         "
               "0         \n\r\n")
        .arg(value.leftJustified(11), maximum.leftJustified(10));
}

QString timeRow(const QString &value, const QString &minimum, const QString &maximum)
{
    return QStringLiteral("66           Turbo Boost Power Time Window  %1 Seconds %2 Seconds %3 "
                          "Seconds N/A         0         \n\r\n")
        .arg(value, minimum, maximum);
}

QString coreRow(int id, int cores, const QString &value, const QString &minimum,
                const QString &maximum)
{
    const QString name =
        cores == 1 ? QStringLiteral("1 Active Core") : QStringLiteral("%1 Active Cores").arg(cores);
    return QStringLiteral("%1%2%3%4%5N/A         0         \n\r\n")
        .arg(QString::number(id).leftJustified(13), name.leftJustified(31), value.leftJustified(12),
             minimum.leftJustified(11), maximum.leftJustified(11));
}

} // namespace

class TuningTextTest : public QObject {
    Q_OBJECT

private slots:
    void headerIsTheClientsExactText();

    void turboPowerText_data();
    void turboPowerText();
    void undervoltText_data();
    void undervoltText();

    void undervoltParser_data();
    void undervoltParser();
    void turboPowerParser_data();
    void turboPowerParser();
    void numbersThatAreNoneAreNoReading_data();
    void numbersThatAreNoneAreNoReading();
    void turboTimeParser_data();
    void turboTimeParser();
    void coreRatioParser_data();
    void coreRatioParser();
    void invalidIdFromAProcessorWithFewerCores();
    void rowSplitAcrossTwoReadsIsNotRecognised();
};

void TuningTextTest::headerIsTheClientsExactText()
{
    QCOMPARE(kClientTableHeader, kHeader);
}

void TuningTextTest::turboPowerText_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("turboPowerMax");
    QTest::addColumn<QString>("unlimited");
    QTest::addColumn<QString>("expected");

    const QString fallback = QStringLiteral("4095.875");
    QTest::newRow("lowest position, 1 W") << 8 << 360 << fallback << "1";
    QTest::newRow("one step up keeps three decimals") << 9 << 360 << fallback << "1.125";
    QTest::newRow("trailing zero stripped") << 100 << 360 << fallback << "12.5";
    QTest::newRow("whole watts lose the point") << 360 << 360 << fallback << "45";
    QTest::newRow("two-digit watts, three decimals") << 163 << 360 << fallback << "20.375";
    QTest::newRow("three-digit watts") << 1000 << 8000 << fallback << "125";
    QTest::newRow("below one watt") << 7 << 360 << fallback << "0.875";
    QTest::newRow("unlimited position") << 361 << 360 << fallback << "4095.875";
    QTest::newRow("unlimited from the profile") << 361 << 360 << "255"
                                                << "255";
    QTest::newRow("1000000 mW is the fixed whole figure") << 8000 << 8000 << fallback << "1000";
    QTest::newRow("above 1000000 mW likewise") << 8000 << 9000 << fallback << "1000";
    QTest::newRow("default top position is unlimited") << 8001 << 8000 << fallback << "4095.875";
}

void TuningTextTest::turboPowerText()
{
    QFETCH(int, position);
    QFETCH(int, turboPowerMax);
    QFETCH(QString, unlimited);
    QFETCH(QString, expected);
    QCOMPARE(turboPowerTextFor(position, turboPowerMax, unlimited), expected);
}

void TuningTextTest::undervoltText_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << 0 << "0";
    QTest::newRow("one is written as none") << 1 << "0";
    QTest::newRow("two") << 2 << "-2";
    QTest::newRow("most") << 135 << "-135";
}

void TuningTextTest::undervoltText()
{
    QFETCH(int, position);
    QFETCH(QString, expected);
    QCOMPARE(undervoltTextFor(position), expected);
}

void TuningTextTest::undervoltParser_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("slider");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("read");

    QTest::newRow("100 mV undervolt") << kHeader + undervoltRow("-100 mV") << 100 << "-100mV"
                                      << "-100";
    QTest::newRow("no undervolt") << kHeader + undervoltRow("0 mV") << 0 << "0mV"
                                  << "0";
    QTest::newRow("unit attached") << kHeader + undervoltRow("-35mV") << 35 << "-35mV"
                                   << "-35";
    QTest::newRow("header missing") << undervoltRow("-80 mV") << 80 << "-80mV"
                                    << "-80";
}

void TuningTextTest::undervoltParser()
{
    QFETCH(QString, output);
    const auto reading = parseUndervolt(output);
    QVERIFY(reading);
    QTEST(reading->sliderValue, "slider");
    QTEST(reading->label, "label");
    QTEST(reading->readUndervolt, "read");
}

void TuningTextTest::turboPowerParser_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("comma");
    QTest::addColumn<QString>("label");
    QTest::addColumn<int>("slider");
    QTest::addColumn<QString>("read");

    QTest::newRow("whole watts") << kHeader + powerRow("45W") << false << "45W" << 360 << "45";
    QTest::newRow("eighths of a watt")
        << kHeader + powerRow("37.625W") << false << "37.625W" << 301 << "37,625";
    QTest::newRow("decimal comma")
        << kHeader + powerRow("45,5W", "4095,875W") << true << "45.5W" << 364 << "45,5";
    QTest::newRow("comma only in the limit column")
        << kHeader + powerRow("45W", "4095,875W") << true << "45W" << 360 << "45";
    QTest::newRow("unlimited") << kHeader + powerRow("4095.875W") << false << "4095.875W" << 32767
                               << "4095,875";
}

void TuningTextTest::turboPowerParser()
{
    QFETCH(QString, output);
    const TurboPowerParse parse = parseTurboPower(output);
    QTEST(parse.decimalComma, "comma");
    QVERIFY(parse.reading);
    QTEST(parse.reading->label, "label");
    QTEST(parse.reading->sliderValue, "slider");
    QTEST(parse.reading->readTurboPower, "read");
}

void TuningTextTest::numbersThatAreNoneAreNoReading_data()
{
    QTest::addColumn<QString>("output");
    const auto power = [](const char *value) { return kHeader + powerRow(value); };
    QTest::newRow("power not a number") << power("nanW");
    QTest::newRow("power infinite") << power("infW");
    QTest::newRow("power of ten gigawatts") << power("1e10W");
    QTest::newRow("power of thirty digits") << power("123456789012345678901234567890W");
    QTest::newRow("negative power") << power("-5W");
    QTest::newRow("power as text") << power("N/AW");
    QTest::newRow("undervolt as text") << kHeader + undervoltRow("-N/A mV");
    QTest::newRow("undervolt in exponent form") << kHeader + undervoltRow("-1e2 mV");
    QTest::newRow("undervolt beyond the client's range") << kHeader + undervoltRow("-5000 mV");
    QTest::newRow("time as text") << kHeader + timeRow("nan", "1.0", "128.0");
    QTest::newRow("fractional time") << kHeader + timeRow("2.5", "1.0", "128.0");
    QTest::newRow("time above its maximum") << kHeader + timeRow("200.0", "1.0", "128.0");
    QTest::newRow("maximum time as text") << kHeader + timeRow("28.0", "1.0", "-");
    QTest::newRow("fractional ratio") << kHeader + coreRow(30, 2, "44,5x", "8", "83");
    QTest::newRow("ratio limits as text") << kHeader + coreRow(30, 2, "45x", "-", "-");
    QTest::newRow("ratio above its maximum") << kHeader + coreRow(30, 2, "90x", "8", "80");
    QTest::newRow("ratio of thirty digits")
        << kHeader + coreRow(30, 2, "123456789012345678901234567890x", "8", "80");
}

void TuningTextTest::numbersThatAreNoneAreNoReading()
{
    QFETCH(QString, output);
    QVERIFY(!parseUndervolt(output));
    QVERIFY(!parseTurboPower(output).reading);
    QVERIFY(!parseTurboTime(output));
    const CoreRatioParse ratio = parseCoreRatio(output, 2);
    QVERIFY(!ratio.reading);
    QVERIFY(!ratio.invalidId);
    // Saved settings are range-checked the same way before they move the slider.
    QVERIFY(!turboPowerPosition(QStringLiteral("nan")));
    QCOMPARE(turboPowerPosition(QStringLiteral("4095.875")), std::optional<int>(32767));
}

void TuningTextTest::turboTimeParser_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("label");
    QTest::addColumn<int>("value");

    QTest::newRow("28.0 seconds") << kHeader + timeRow("28.0", "1.0", "128.0") << 128 << "28.0Sec"
                                  << 28;
    QTest::newRow("decimal comma")
        << kHeader + timeRow("56,0", "1,0", "128,0") << 128 << "56.0Sec" << 56;
    QTest::newRow("whole seconds") << kHeader + timeRow("8", "1", "96") << 96 << "8Sec" << 8;
}

void TuningTextTest::turboTimeParser()
{
    QFETCH(QString, output);
    const auto reading = parseTurboTime(output);
    QVERIFY(reading);
    QTEST(reading->maximum, "maximum");
    QTEST(reading->label, "label");
    QTEST(reading->value, "value");
}

void TuningTextTest::coreRatioParser_data()
{
    QTest::addColumn<int>("cores");
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("value");

    const int ids[] = {29, 30, 31, 32, 42, 43, 96, 97};
    for (int cores = 1; cores <= 8; ++cores) {
        const int ratio = 52 - cores;
        QTest::addRow("%d active", cores)
            << cores
            << kHeader + coreRow(ids[cores - 1], cores, QStringLiteral("%1x").arg(ratio), "8", "80")
            << 8 << 80 << ratio;
    }
}

void TuningTextTest::coreRatioParser()
{
    QFETCH(int, cores);
    QFETCH(QString, output);
    const CoreRatioParse parse = parseCoreRatio(output, cores);
    QVERIFY(!parse.invalidId);
    QVERIFY(parse.reading);
    QTEST(parse.reading->minimum, "minimum");
    QTEST(parse.reading->maximum, "maximum");
    QTEST(parse.reading->value, "value");
}

void TuningTextTest::invalidIdFromAProcessorWithFewerCores()
{
    const QString answer = QStringLiteral("Invalid Id\r\n");
    for (int cores = 1; cores <= 8; ++cores) {
        const CoreRatioParse parse = parseCoreRatio(answer, cores);
        QVERIFY(parse.invalidId);
        QVERIFY(!parse.reading);
    }
    // Another row's output is no answer for this one, and no error either.
    const CoreRatioParse other = parseCoreRatio(kHeader + coreRow(42, 5, "47x", "8", "80"), 7);
    QVERIFY(!other.reading);
    QVERIFY(!other.invalidId);
    QVERIFY(!parseUndervolt(answer));
    QVERIFY(!parseTurboPower(answer).reading);
    QVERIFY(!parseTurboTime(answer));
}

void TuningTextTest::rowSplitAcrossTwoReadsIsNotRecognised()
{
    const QString outputs[] = {kHeader + undervoltRow("-100 mV"), kHeader + powerRow("45W"),
                               kHeader + timeRow("28.0", "1.0", "128.0"),
                               kHeader + coreRow(30, 2, "45x", "8", "80")};
    const QString names[] = {"Core Voltage Offset", "Turbo Boost Power Max",
                             "Turbo Boost Power Time Window", "2 Active Cores"};
    for (int i = 0; i < 4; ++i) {
        // Cut in the middle of the row's name: neither part names the row.
        const int cut = outputs[i].indexOf(names[i]) + names[i].size() / 2;
        for (const QString &part : {outputs[i].left(cut), outputs[i].mid(cut)}) {
            QVERIFY(!parseUndervolt(part));
            QVERIFY(!parseTurboPower(part).reading);
            QVERIFY(!parseTurboTime(part));
            QVERIFY(!parseCoreRatio(part, 2).reading);
        }
    }
}

QTEST_GUILESS_MAIN(TuningTextTest)
#include "tst_tuningtext.moc"
