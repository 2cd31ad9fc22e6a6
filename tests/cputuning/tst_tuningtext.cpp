// The tuning tab's texts and the parsers of the client's table output, on output shaped the way
// the client prints it. Its own program: the sanitizer lane builds it with Qt Core alone.
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

QString timeRow(const QString &value, const QString &minimum = QStringLiteral("1.0"),
                const QString &maximum = QStringLiteral("128.0"))
{
    return QStringLiteral("66           Turbo Boost Power Time Window  %1 Seconds %2 Seconds %3 "
                          "Seconds N/A         0         \n\r\n")
        .arg(value, minimum, maximum);
}

QString coreRow(int id, int cores, const QString &value, const QString &minimum = "8",
                const QString &maximum = "80")
{
    const QString name =
        cores == 1 ? QStringLiteral("1 Active Core") : QStringLiteral("%1 Active Cores").arg(cores);
    return QStringLiteral("%1%2%3%4%5N/A         0         \n\r\n")
        .arg(QString::number(id).leftJustified(13), name.leftJustified(31), value.leftJustified(12),
             minimum.leftJustified(11), maximum.leftJustified(11));
}

// What every parser takes from one output, so that a row read by the wrong parser shows too.
QString readings(const QString &output, int cores)
{
    QStringList out;
    if (const auto u = parseUndervolt(output))
        out << QStringLiteral("uv %1 %2 %3").arg(u->sliderValue).arg(u->label, u->readUndervolt);
    const TurboPowerParse power = parseTurboPower(output);
    if (const auto &p = power.reading)
        out << QStringLiteral("power %1 %2 %3")
                   .arg(p->sliderValue)
                   .arg(p->label, p->readTurboPower);
    if (const auto t = parseTurboTime(output))
        out << QStringLiteral("time %1 %2 max %3").arg(t->value).arg(t->label).arg(t->maximum);
    const CoreRatioParse ratio = parseCoreRatio(output, cores);
    if (const auto &r = ratio.reading)
        out << QStringLiteral("ratio %1 %2-%3").arg(r->value).arg(r->minimum).arg(r->maximum);
    if (ratio.invalidId)
        out << QStringLiteral("invalid id");
    if (power.decimalComma)
        out << QStringLiteral("comma");
    return out.join(QLatin1String("; "));
}

} // namespace

class TuningTextTest : public QObject {
    Q_OBJECT

private slots:
    void textsAndSavedFigures()
    {
        // The header is the client's exact text: every parser removes it.
        QCOMPARE(kClientTableHeader, kHeader);
        // Eighths of a watt with three decimals at most, none trailing; from 1000 W the fixed
        // whole figure; past the maximum the unlimited one.
        QStringList texts;
        for (int position : {7, 8, 9, 100, 163, 1000, 8000, 8001})
            texts << turboPowerTextFor(position, 8000, QStringLiteral("4095.875"));
        QCOMPARE(texts,
                 QStringList({"0.875", "1", "1.125", "12.5", "20.375", "125", "1000", "4095.875"}));
        // One is written as none.
        const QStringList undervolts = {"0", "0", "-2", "-135"};
        for (int position : {0, 1, 2, 135})
            QCOMPARE(undervoltTextFor(position), undervolts.at(qMin(position, 3)));
        // Saved turbo powers are range-checked like the client's before they move the slider.
        QCOMPARE(turboPowerPosition(QStringLiteral("4095.875")), std::optional<int>(32767));
        for (const char *none : {"nan", "inf", "-5", "4097", "1e10", "N/A"})
            QVERIFY2(!turboPowerPosition(QString(none)), none);
    }

    void parsers_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<int>("cores");
        QTest::addColumn<QString>("expected");
        const struct {
            const char *name;
            QString output;
            int cores;
            const char *expected;
        } rows[] = {
            {"100 mV undervolt", kHeader + undervoltRow("-100 mV"), 2, "uv 100 -100mV -100"},
            {"no undervolt", kHeader + undervoltRow("0 mV"), 2, "uv 0 0mV 0"},
            {"unit attached", kHeader + undervoltRow("-35mV"), 2, "uv 35 -35mV -35"},
            {"header missing", undervoltRow("-80 mV"), 2, "uv 80 -80mV -80"},
            {"whole watts", kHeader + powerRow("45W"), 2, "power 360 45W 45"},
            {"eighths of a watt", kHeader + powerRow("37.625W"), 2, "power 301 37.625W 37,625"},
            {"decimal comma", kHeader + powerRow("45,5W", "4095,875W"), 2,
             "power 364 45.5W 45,5; comma"},
            {"comma only in the limit column", kHeader + powerRow("45W", "4095,875W"), 2,
             "power 360 45W 45; comma"},
            {"28.0 seconds", kHeader + timeRow("28.0"), 2, "time 28 28.0Sec max 128"},
            {"time in commas", kHeader + timeRow("56,0", "1,0", "128,0"), 2,
             "time 56 56.0Sec max 128; comma"},
            {"whole seconds", kHeader + timeRow("8", "1", "96"), 2, "time 8 8Sec max 96"},
            {"another row's ratio is no answer", kHeader + coreRow(42, 5, "47x"), 7, ""},
            // Figures that are none are no reading: taken as 0 they would be written back later.
            // The power's figure is checked as a saved one is (above).
            {"power not a number", kHeader + powerRow("nanW"), 2, ""},
            {"undervolt as text", kHeader + undervoltRow("-N/A mV"), 2, ""},
            {"undervolt in exponent form", kHeader + undervoltRow("-1e2 mV"), 2, ""},
            {"undervolt beyond the client's range", kHeader + undervoltRow("-5000 mV"), 2, ""},
            {"time as text", kHeader + timeRow("nan"), 2, ""},
            {"fractional time", kHeader + timeRow("2.5"), 2, ""},
            {"time above its maximum", kHeader + timeRow("200.0"), 2, ""},
            {"maximum time as text", kHeader + timeRow("28.0", "1.0", "-"), 2, ""},
            {"fractional ratio", kHeader + coreRow(30, 2, "44,5x", "8", "83"), 2, "comma"},
            {"ratio limits as text", kHeader + coreRow(30, 2, "45x", "-", "-"), 2, ""},
            {"ratio above its maximum", kHeader + coreRow(30, 2, "90x"), 2, ""},
            {"ratio of thirty digits", kHeader + coreRow(30, 2, "123456789012345678901234567890x"),
             2, ""},
        };
        for (const auto &r : rows)
            QTest::newRow(r.name) << r.output << r.cores << QString(r.expected);

        const int ids[] = {29, 30, 31, 32, 42, 43, 96, 97};
        for (int cores = 1; cores <= 8; ++cores) {
            const int ratio = 52 - cores;
            QTest::addRow("%d active", cores)
                << kHeader + coreRow(ids[cores - 1], cores, QStringLiteral("%1x").arg(ratio))
                << cores << QStringLiteral("ratio %1 8-80").arg(ratio);
            QTest::addRow("invalid id, %d active", cores)
                << QStringLiteral("Invalid Id\r\n") << cores << QStringLiteral("invalid id");
        }

        // A row split across two reads is recognised in neither: each part has half its name.
        const QString whole[][2] = {{kHeader + undervoltRow("-100 mV"), "Core Voltage Offset"},
                                    {kHeader + powerRow("45W"), "Turbo Boost Power Max"},
                                    {kHeader + timeRow("28.0"), "Turbo Boost Power Time Window"},
                                    {kHeader + coreRow(30, 2, "45x"), "2 Active Cores"}};
        for (const auto &w : whole) {
            const int cut = w[0].indexOf(w[1]) + w[1].size() / 2;
            QTest::addRow("%s, first part", qPrintable(w[1])) << w[0].left(cut) << 2 << QString();
            QTest::addRow("%s, second part", qPrintable(w[1])) << w[0].mid(cut) << 2 << QString();
        }
    }

    void parsers()
    {
        QFETCH(QString, output);
        QFETCH(int, cores);
        QTEST(readings(output, cores), "expected");
    }
};

QTEST_GUILESS_MAIN(TuningTextTest)
#include "tst_tuningtext.moc"
