#include "nativeprogram.h"

#include <QFileInfo>
#include <QProcess>

NativeProgram nativeProgramFor(const QString &commandLine, const QString &installFolder)
{
    NativeProgram program;
    QStringList words = QProcess::splitCommand(commandLine);
    if (words.isEmpty() || !words.first().endsWith(QLatin1String(".exe"), Qt::CaseInsensitive))
        return program;
    QString relative = words.takeFirst();
    relative.chop(4);
    relative.replace(QLatin1Char('\\'), QLatin1Char('/'));
    // A drive or a parent folder would leave the install folder, which is the only one trusted.
    if (relative.isEmpty() || relative.startsWith(QLatin1Char('/')) ||
        relative.contains(QLatin1Char(':')) || relative.split(QLatin1Char('/')).contains(".."))
        return program;
    program.name = QFileInfo(relative).fileName();
    program.arguments = words;
    const QFileInfo native(installFolder + QLatin1Char('/') + relative);
    if (native.isFile() && native.isExecutable())
        program.path = native.absoluteFilePath();
    return program;
}
