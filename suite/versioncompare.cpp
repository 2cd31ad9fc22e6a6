#include "versioncompare.h"

#include <QStringList>

int compareVersions(const QString &installed, const QString &latest)
{
    const QStringList a = installed.split(QLatin1Char('.'));
    const QStringList b = latest.split(QLatin1Char('.'));
    const int common = qMin(a.size(), b.size());
    for (int i = 0; i < common; ++i) {
        // toInt() yields 0 for anything that is not a number, which is the intended rank.
        const int left = a.at(i).toInt(nullptr, 10);
        const int right = b.at(i).toInt(nullptr, 10);
        if (left != right)
            return left - right;
    }
    return a.size() - b.size();
}
