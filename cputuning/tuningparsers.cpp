#include "tuningparsers.h"

#include "tuningformat.h"

#include <QStringList>

const QString kClientTableHeader = QStringLiteral(
    "\r\nID           Name                           Value[Unit] Min        Max        "
    "Multipliers Item Count\n\r\n");

namespace {

const QString kRowEnd = QStringLiteral("\n\r\n");
const QString kPaddedRowEnd = QStringLiteral("        \n\r\n");
const QString kComma = QStringLiteral(",");
const QString kPoint = QStringLiteral(".");

// Replaces each run of `from`, then from - 1, ... down to 2 blanks by one blank.
void collapseBlanks(QString &text, int from)
{
    for (int run = from; run >= 2; --run)
        text.replace(QString(run, QLatin1Char(' ')), QStringLiteral(" "));
}

// The row's fields: blanks become commas and the text is split on commas, empty parts dropped.
QStringList fieldsOf(QString text)
{
    text.replace(QLatin1Char(' '), QLatin1Char(','));
    return text.split(QLatin1Char(','), Qt::SkipEmptyParts);
}

QString field(const QStringList &fields, int index)
{
    return fields.value(index);
}

void removeWords(QString &text, std::initializer_list<const char *> words)
{
    for (const char *word : words)
        text.remove(QLatin1String(word));
}

// The column titles that the power and time parsers remove one by one ("Count" twice).
void removeColumnTitles(QString &text)
{
    removeWords(text,
                {"Name", "Value[Unit]", "Min", "Max", "Multipliers", "Item", "Count", "Count"});
    text.replace(QStringLiteral("Seconds"), QStringLiteral(" "));
}

// A whole number from the client, or none when the text is no number or lies outside what the
// setting can hold: a reading taken as 0 would later be written back as if the user chose it.
std::optional<int> wholeNumber(const QString &text, int lowest, int highest)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < lowest || value > highest)
        return std::nullopt;
    return value;
}

// The client's own limits: undervolt to 999 mV, time windows and ratios well below these.
constexpr int kMostMillivolts = 999;
constexpr int kMostSeconds = 4096;
constexpr int kMostRatio = 255;

} // namespace

std::optional<UndervoltReading> parseUndervolt(const QString &output)
{
    QString text = output;
    if (!text.contains(QLatin1String("Core Voltage Offset")))
        return std::nullopt;
    text.remove(kClientTableHeader);
    removeWords(text,
                {"34           Core Voltage Offset            ", "Core Voltage Offset", "-", "mV"});
    text.remove(kRowEnd);
    collapseBlanks(text, 8);
    const QString magnitude = field(fieldsOf(text), 0);
    const auto millivolts = wholeNumber(magnitude, 0, kMostMillivolts);
    if (!millivolts)
        return std::nullopt;

    UndervoltReading reading;
    reading.sliderValue = *millivolts;
    if (reading.sliderValue == 0) {
        reading.label = magnitude + QStringLiteral("mV");
        reading.readUndervolt = magnitude;
    } else {
        reading.label = QStringLiteral("-") + magnitude + QStringLiteral("mV");
        reading.readUndervolt = QStringLiteral("-") + magnitude;
    }
    return reading;
}

TurboPowerParse parseTurboPower(const QString &output)
{
    TurboPowerParse parse;
    QString text = output;
    parse.decimalComma = text.contains(kComma);
    if (!text.contains(QLatin1String("Turbo Boost Power Max")))
        return parse;
    text.replace(kComma, kPoint);
    collapseBlanks(text, 8);
    text.remove(QStringLiteral("\r\nID"));
    text.remove(kRowEnd);
    removeColumnTitles(text);
    collapseBlanks(text, 10);
    text.replace(QLatin1Char(' '), QLatin1Char(','));
    // Removing "Max" also shortened the row name, so its prefix goes in this form.
    text.replace(QStringLiteral("48,Turbo,Boost,Power,"), kComma);
    const QString value = field(text.split(QLatin1Char(','), Qt::SkipEmptyParts), 0);

    const QString watts = QString(value).remove(QLatin1Char('W'));
    // A figure that is no power at all ("nanW", "1e10W") is no reading: taking it as 0 would
    // later write 1 W to the processor.
    const auto position = turboPowerPosition(watts);
    if (!position)
        return parse;
    TurboPowerReading reading;
    reading.label = value;
    reading.sliderValue = *position;
    reading.readTurboPower = QString(watts).replace(kPoint, kComma);
    parse.reading = reading;
    return parse;
}

std::optional<TurboTimeReading> parseTurboTime(const QString &output)
{
    QString text = output;
    text.replace(kComma, kPoint);
    if (!text.contains(QLatin1String("Turbo Boost Power Time Window")))
        return std::nullopt;
    text.remove(kClientTableHeader);
    text.remove(kPaddedRowEnd);
    collapseBlanks(text, 8);
    text.remove(kClientTableHeader);
    text.remove(kRowEnd);
    removeColumnTitles(text);
    text.remove(QStringLiteral("66 Turbo Boost Power Time Window "));
    collapseBlanks(text, 9);
    const QStringList fields = fieldsOf(text);

    const auto maximum =
        wholeNumber(field(fields, 2).remove(QStringLiteral(".0")), 1, kMostSeconds);
    const auto seconds =
        wholeNumber(field(fields, 0).remove(QStringLiteral(".0")).remove(QStringLiteral(",0")), 0,
                    maximum.value_or(0));
    if (!maximum || !seconds)
        return std::nullopt;
    TurboTimeReading reading;
    reading.maximum = *maximum;
    reading.label = field(fields, 0) + QStringLiteral("Sec");
    reading.value = *seconds;
    return reading;
}

QString coreRowName(int activeCores)
{
    return QStringLiteral("%1 Active %2")
        .arg(activeCores)
        .arg(activeCores == 2 ? QStringLiteral("Cores") : QStringLiteral("Core"));
}

CoreRatioParse parseCoreRatio(const QString &output, int activeCores)
{
    CoreRatioParse parse;
    QString text = output;
    text.replace(kComma, kPoint);
    if (!text.contains(coreRowName(activeCores))) {
        parse.invalidId = text.contains(QLatin1String("Invalid Id"));
        return parse;
    }
    text.remove(kClientTableHeader);
    text.remove(kPaddedRowEnd);
    text.remove(kRowEnd);
    removeWords(text, {"Active", "Core"});
    if (activeCores > 1)
        text.remove(QLatin1Char('s'));
    collapseBlanks(text, 9);
    const QStringList fields = fieldsOf(text);

    const auto minimum = wholeNumber(field(fields, 3), 0, kMostRatio);
    const auto maximum = wholeNumber(field(fields, 4), minimum.value_or(0), kMostRatio);
    // A ratio outside the box's range would be clamped, and the clamped figure written.
    const auto ratio = wholeNumber(field(fields, 2).remove(QLatin1Char('x')), minimum.value_or(0),
                                   maximum.value_or(0));
    if (!minimum || !maximum || !ratio)
        return parse;
    parse.reading = CoreRatioReading{*minimum, *maximum, *ratio};
    return parse;
}
