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

    UndervoltReading reading;
    reading.sliderValue = magnitude.toInt();
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

    TurboTimeReading reading;
    reading.maximum = field(fields, 2).remove(QStringLiteral(".0")).toInt();
    reading.label = field(fields, 0) + QStringLiteral("Sec");
    reading.value =
        field(fields, 0).remove(QStringLiteral(".0")).remove(QStringLiteral(",0")).toInt();
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

    CoreRatioReading reading;
    reading.minimum = field(fields, 3).toInt();
    reading.maximum = field(fields, 4).toInt();
    reading.value = field(fields, 2).remove(QLatin1Char('x')).toInt();
    parse.reading = reading;
    return parse;
}
