#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

// A whole file written, its folder made first; a file that cannot be written fails the test.
inline void writeFile(const QString &path, const QByteArray &content, bool executable = false)
{
    QVERIFY2(QDir().mkpath(QFileInfo(path).path()), qPrintable(path));
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    QCOMPARE(file.write(content), qint64(content.size()));
    if (executable)
        QVERIFY(file.setPermissions(file.permissions() | QFileDevice::ExeOwner));
}

// All bytes of a file; none when it cannot be read.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
