#include "powerlimits.h"

#include <QRegularExpression>

#include <cerrno>
#include <cstring>

namespace {

const QString powercap = QStringLiteral("sys/class/powercap/");
const QString longTerm = QStringLiteral("long_term");
const QString shortTerm = QStringLiteral("short_term");
const QString powerFile = QStringLiteral("_power_limit_uw");
const QString windowFile = QStringLiteral("_time_window_us");

Outcome noDomain()
{
    return Outcome::refuse(helpererror::notSupported,
                           QStringLiteral("This processor has no package power limits (RAPL)."));
}

Outcome powerOutOfRange(quint32 milliwatts)
{
    return Outcome::refuse(helpererror::outOfRange,
                           QStringLiteral("%1 mW is not a power limit between %2 and %3 mW.")
                               .arg(milliwatts)
                               .arg(PowerLimits::kMinMilliwatts)
                               .arg(PowerLimits::kMaxMilliwatts));
}

} // namespace

QString PowerLimits::packageDomain() const
{
    static const QRegularExpression topLevel(QStringLiteral("^intel-rapl:[0-9]+$"));
    for (const QString &name : m_tree.list(powercap, QStringLiteral("intel-rapl:*"))) {
        const QString domain = powercap + name + QLatin1Char('/');
        if (topLevel.match(name).hasMatch() && m_tree.read(domain + QStringLiteral("name"))
                                                   .value_or(QString())
                                                   .startsWith(QLatin1String("package")))
            return domain;
    }
    return QString();
}

// Constraint numbers differ between kernels; their names do not.
QString PowerLimits::constraint(const QString &domain, const QString &name) const
{
    for (int i = 0; i < 4; ++i) {
        const QString prefix = domain + QStringLiteral("constraint_%1").arg(i);
        if (m_tree.read(prefix + QStringLiteral("_name")) == name)
            return prefix;
    }
    return QString();
}

Outcome PowerLimits::readAttribute(const QString &constraintName, const QString &attribute,
                                   qint64 *value) const
{
    const QString domain = packageDomain();
    if (domain.isEmpty())
        return noDomain();
    const QString prefix = constraint(domain, constraintName);
    const auto number = prefix.isEmpty() ? std::nullopt : m_tree.readNumber(prefix + attribute);
    if (!number)
        return Outcome::refuse(
            helpererror::notSupported,
            QStringLiteral("The package's %1 limit cannot be read.")
                .arg(QString(constraintName).replace(QLatin1Char('_'), QLatin1Char('-'))));
    *value = *number;
    return Outcome::done();
}

bool PowerLimits::lockedByFirmware() const
{
    // Bit 63 of the package power limit register locks both limits until the next reset.
    quint64 value = 0;
    const QList<int> cpus = m_registers ? m_registers->cpus() : QList<int>();
    return !cpus.isEmpty() && m_registers->read(cpus.first(), kPackagePowerLimit, &value) == 0 &&
           (value >> 63) != 0;
}

Outcome PowerLimits::writeAttribute(const QString &constraintName, const QString &attribute,
                                    qint64 value, const QString &what) const
{
    const QString domain = packageDomain();
    if (domain.isEmpty())
        return noDomain();
    const QString prefix = constraint(domain, constraintName);
    if (prefix.isEmpty())
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("This processor has no %1.").arg(what));
    const int error =
        lockedByFirmware() ? EACCES : m_tree.write(prefix + attribute, QString::number(value));
    // The kernel answers a write to limits the firmware locked with "permission denied".
    if (error == EACCES || error == EPERM)
        return Outcome::refuse(helpererror::locked,
                               QStringLiteral("The firmware has locked the %1; it cannot be "
                                              "changed on this machine.")
                                   .arg(what));
    if (error)
        return Outcome::refuse(helpererror::failed,
                               QStringLiteral("The kernel refused the %1: %2.")
                                   .arg(what, QString::fromLocal8Bit(std::strerror(error))));
    return Outcome::done();
}

Outcome PowerLimits::read(quint32 *longTermMilliwatts, quint32 *windowMs) const
{
    qint64 microwatts = 0, microseconds = 0;
    Outcome outcome = readAttribute(longTerm, powerFile, &microwatts);
    if (outcome.ok())
        outcome = readAttribute(longTerm, windowFile, &microseconds);
    if (!outcome.ok())
        return outcome;
    *longTermMilliwatts = quint32(microwatts / 1000);
    *windowMs = quint32(microseconds / 1000);
    return Outcome::done();
}

Outcome PowerLimits::setLongTerm(quint32 milliwatts, quint32 *readBack) const
{
    if (milliwatts < kMinMilliwatts || milliwatts > kMaxMilliwatts)
        return powerOutOfRange(milliwatts);
    Outcome outcome = writeAttribute(longTerm, powerFile, qint64(milliwatts) * 1000,
                                     QStringLiteral("long-term power limit"));
    qint64 value = 0;
    if (outcome.ok())
        outcome = readAttribute(longTerm, powerFile, &value);
    *readBack = quint32(value / 1000);
    return outcome;
}

Outcome PowerLimits::setShortTerm(quint32 milliwatts, quint32 *readBack) const
{
    if (milliwatts < kMinMilliwatts || milliwatts > kMaxMilliwatts)
        return powerOutOfRange(milliwatts);
    Outcome outcome = writeAttribute(shortTerm, powerFile, qint64(milliwatts) * 1000,
                                     QStringLiteral("short-term power limit"));
    qint64 value = 0;
    if (outcome.ok())
        outcome = readAttribute(shortTerm, powerFile, &value);
    *readBack = quint32(value / 1000);
    return outcome;
}

Outcome PowerLimits::setWindow(quint32 windowMs, quint32 *readBack) const
{
    if (windowMs < kMinWindowMs || windowMs > kMaxWindowMs)
        return Outcome::refuse(helpererror::outOfRange,
                               QStringLiteral("%1 ms is not a time window between %2 and %3 ms.")
                                   .arg(windowMs)
                                   .arg(kMinWindowMs)
                                   .arg(kMaxWindowMs));
    Outcome outcome = writeAttribute(longTerm, windowFile, qint64(windowMs) * 1000,
                                     QStringLiteral("power limit's time window"));
    qint64 value = 0;
    if (outcome.ok())
        outcome = readAttribute(longTerm, windowFile, &value);
    *readBack = quint32(value / 1000);
    return outcome;
}
