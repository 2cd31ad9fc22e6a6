#include "versioncompare.h"

#include <QRegularExpression>
#include <QStringList>

#include <climits>

int compareVersions(const QString &installed, const QString &latest)
{
    const QStringList a = installed.split(QLatin1Char('.'));
    const QStringList b = latest.split(QLatin1Char('.'));
    const int common = qMin(a.size(), b.size());
    for (int i = 0; i < common; ++i) {
        // toInt() yields 0 for anything that is not a number, which is the intended rank.
        const int left = a.at(i).toInt(nullptr, 10);
        const int right = b.at(i).toInt(nullptr, 10);
        // Parts reach the whole int range ("-2147483648"): their difference may not.
        if (left != right)
            return static_cast<int>(qBound<qint64>(INT_MIN, qint64(left) - right, INT_MAX));
    }
    return a.size() - b.size();
}

QString versionFromAnswer(const QByteArray &body)
{
    // \z, not $: "$" also matches before a final line break.
    static const QRegularExpression version(QStringLiteral("\\A[0-9]{1,9}(\\.[0-9]{1,9}){0,7}\\z"));
    const int kLongestVersion = 8 * 10;
    const QByteArray trimmed = body.trimmed();
    if (trimmed.size() > kLongestVersion)
        return QString();
    // Every byte counts: the QByteArray overload would stop at the first zero byte.
    const QString text = QString::fromLatin1(trimmed.constData(), trimmed.size());
    return version.match(text).hasMatch() ? text : QString();
}
