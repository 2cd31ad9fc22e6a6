#include "tuningcommands.h"

#include "helperclient.h"

#include <QDBusArgument>
#include <QFile>
#include <QRegularExpression>

#include <cmath>

namespace {

const QString clientPattern =
    QStringLiteral("\"C:\\\\Program Files\\\\Varnel\\\\XTU\\\\Client\\\\XtuCLI\\.exe\" -t -id ");
const QString header =
    QStringLiteral("\r\nID           Name                           Value[Unit] Min "
                   "       Max        Multipliers Item Count\n\r\n");

constexpr int kUndervoltId = 34;
constexpr int kTurboPowerId = 48;
constexpr int kTurboTimeId = 66;
constexpr int kCoreIds[8] = {29, 30, 31, 32, 42, 43, 96, 97};

int coreIndex(int id)
{
    for (int i = 0; i < 8; ++i) {
        if (kCoreIds[i] == id)
            return i;
    }
    return -1;
}

QString coreName(int index)
{
    return index == 0 ? QStringLiteral("1 Active Core")
                      : QStringLiteral("%1 Active Cores").arg(index + 1);
}

int machineCores()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    if (!file.open(QIODevice::ReadOnly))
        return 8;
    return tuningtable::coreCount(QString::fromLatin1(file.readAll()));
}

bool failed(const QDBusMessage &reply)
{
    return reply.type() == QDBusMessage::ErrorMessage;
}

// A refused or failed read prints nothing, so the controls keep what they showed.
void read(HelperClient &helper, int id, const CommandTable::Reply &reply)
{
    if (id == kUndervoltId) {
        helper.call(QStringLiteral("ReadVoltageOffset"), {}, [reply](const QDBusMessage &answer) {
            if (failed(answer))
                return reply(QString());
            const int mv = answer.arguments().value(0).toInt();
            reply(header + tuningtable::row(kUndervoltId, QStringLiteral("Core Voltage Offset"),
                                            QString::number(mv) + QStringLiteral(" mV"),
                                            QStringLiteral("-250 mV"), QStringLiteral("0 mV")));
        });
    } else if (id == kTurboPowerId || id == kTurboTimeId) {
        helper.call(QStringLiteral("ReadPowerLimits"), {}, [reply, id](const QDBusMessage &answer) {
            if (failed(answer))
                return reply(QString());
            const double watts = answer.arguments().value(0).toUInt() / 1000.0;
            // The tab counts whole seconds.
            const double seconds = std::round(answer.arguments().value(1).toUInt() / 1000.0);
            if (id == kTurboPowerId)
                reply(header + tuningtable::row(id, QStringLiteral("Turbo Boost Power Max"),
                                                tuningtable::number(watts) + QLatin1Char('W'),
                                                QStringLiteral("1W"), QStringLiteral("4096W")));
            else
                reply(header + tuningtable::row(
                                   id, QStringLiteral("Turbo Boost Power Time Window"),
                                   tuningtable::number(seconds, 1) + QStringLiteral(" Seconds"),
                                   QStringLiteral("1.0 Seconds"), QStringLiteral("128.0 Seconds")));
        });
    } else if (const int index = coreIndex(id); index >= 0) {
        // As the client does, a processor with fewer cores has no rows for 5 ... 8 active
        // cores; the register holds all eight, so rows 1 ... 4 always come from it.
        if (index >= 4 && index >= machineCores())
            return reply(QStringLiteral("Invalid Id\r\n"));
        helper.call(
            QStringLiteral("ReadTurboRatios"), {}, [reply, id, index](const QDBusMessage &answer) {
                if (failed(answer))
                    return reply(QString());
                const auto ratios = qdbus_cast<QList<int>>(answer.arguments().value(0));
                reply(header +
                      tuningtable::row(id, coreName(index),
                                       QString::number(ratios.value(index)) + QLatin1Char('x'),
                                       QStringLiteral("8"), QStringLiteral("80")));
            });
    } else {
        reply(QStringLiteral("Invalid Id\r\n"));
    }
}

void write(HelperClient &helper, int id, const QString &value, const CommandTable::Reply &reply)
{
    const auto done = [reply](const QDBusMessage &) { reply(QString()); };
    const double number = QString(value).replace(QLatin1Char(','), QLatin1Char('.')).toDouble();
    if (id == kUndervoltId)
        helper.call(QStringLiteral("SetVoltageOffset"), {int(std::lround(number))}, done);
    else if (id == kTurboPowerId)
        helper.call(QStringLiteral("SetTurboPower"), {uint(std::llround(number * 1000))}, done);
    else if (id == kTurboTimeId)
        helper.call(QStringLiteral("SetTurboTime"), {uint(std::llround(number * 1000))}, done);
    else if (const int index = coreIndex(id); index >= 0)
        helper.call(QStringLiteral("SetTurboRatio"), {index + 1, int(std::lround(number))}, done);
    else
        reply(QStringLiteral("Invalid Id\r\n"));
}

} // namespace

namespace tuningtable {

QString row(int id, const QString &name, const QString &value, const QString &minimum,
            const QString &maximum)
{
    const auto column = [](const QString &text, int width) {
        return text + QString(qMax(1, width - text.size()), QLatin1Char(' '));
    };
    return column(QString::number(id), 13) + column(name, 31) + column(value, 12) +
           column(minimum, 11) + column(maximum, 11) + column(QStringLiteral("N/A"), 12) +
           column(QStringLiteral("0"), 10) + QStringLiteral("\n\r\n");
}

QString number(double value, int minimumDecimals)
{
    QString text = QString::number(value, 'f', 3);
    const int point = text.indexOf(QLatin1Char('.'));
    while (text.size() > point + 1 + minimumDecimals && text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

int coreCount(const QString &cpuinfo)
{
    static const QRegularExpression cores(QStringLiteral("^cpu cores\\s*:\\s*(\\d+)"),
                                          QRegularExpression::MultilineOption);
    const auto match = cores.match(cpuinfo);
    const int count = match.hasMatch() ? match.captured(1).toInt() : 0;
    return count > 0 ? qMin(count, 8) : 8;
}

} // namespace tuningtable

void addTuningCommands(CommandTable &table, std::shared_ptr<HelperClient> helper)
{
    table.addAsync(clientPattern + QStringLiteral("(\\d+)"),
                   [helper](const QRegularExpressionMatch &match, CommandTable::Reply reply) {
                       read(*helper, match.captured(1).toInt(), reply);
                   });
    table.addAsync(clientPattern + QStringLiteral("(\\d+) -v (\\S+)"),
                   [helper](const QRegularExpressionMatch &match, CommandTable::Reply reply) {
                       write(*helper, match.captured(1).toInt(), match.captured(2), reply);
                   });
    // The bus starts the helper on demand, so there is no service to start or stop and no
    // driver to install; the msr and powercap drivers come with the kernel.
    table.add(QStringLiteral("powershell -executionPolicy bypass \"(start|stop)-service -name "
                             "'XTU3SERVICE'"),
              [](const QRegularExpressionMatch &) { return QString(); });
    table.add(QStringLiteral("C:\\\\Program Files\\\\Varnel\\\\XTU\\\\IocDriver\\\\InstallDriver_"
                             "x64\\.exe"),
              [](const QRegularExpressionMatch &) { return QString(); });
}

void addProcessorLimitCommands(CommandTable &table, std::shared_ptr<HelperClient> helper)
{
    table.addAsync(
        QStringLiteral(
            "powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLE(MIN|MAX) "
            "(\\d+)"),
        [helper](const QRegularExpressionMatch &match, CommandTable::Reply reply) {
            const QString method = match.captured(1) == QLatin1String("MIN")
                                       ? QStringLiteral("SetProcessorMinimum")
                                       : QStringLiteral("SetProcessorMaximum");
            helper->call(
                method, {match.captured(2).toInt()},
                [reply](const QDBusMessage &) { reply(QString()); },
                HelperClient::Caller::ProcessorLimits);
        });
    // Linux keeps one limit for mains and battery; the AC line already wrote this value.
    table.add(QStringLiteral("powercfg -setdcvalueindex SCHEME_CURRENT SUB_PROCESSOR "
                             "PROCTHROTTLE(MIN|MAX) \\d+"),
              [](const QRegularExpressionMatch &) { return QString(); });
}
