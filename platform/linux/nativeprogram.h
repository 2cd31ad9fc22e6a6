#pragma once

#include <QString>
#include <QStringList>

// A Windows program the window starts by command line ("Remote.exe", "updates\\Update.exe -q")
// and its native counterpart: the same relative path without ".exe" in the install folder.
struct NativeProgram {
    QString path; // absolute; empty when the line names no ".exe" or none is installed
    QStringList arguments;
    QString name; // the program's own name ("Remote"), also when it is missing
};

NativeProgram nativeProgramFor(const QString &commandLine, const QString &installFolder);
