#include "processcommands.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QVector>

#include <signal.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcProcessCommands, "varnel.commands.process")

namespace {

struct RunningProcess {
    long long pid = 0;
    QString image; // the program's file name, as Windows names an image
    long long uid = -1;
    QString residentKb;
};

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

// The value of "key: value" (or "key\t: value") on the first line that has the key.
QString fieldOf(const QString &text, const QString &key)
{
    const auto lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const int colon = line.indexOf(QLatin1Char(':'));
        if (colon > 0 && line.left(colon).trimmed() == key)
            return line.mid(colon + 1).trimmed();
    }
    return QString();
}

// wmic's layout: the header and the value in one padded column, lines ending in "\r\n".
QString wmicColumn(const QString &header, const QString &value)
{
    const int width = qMax(header.size(), value.size()) + 2;
    return header.leftJustified(width) + QStringLiteral("\r\n") + value.leftJustified(width) +
           QStringLiteral("\r\n\r\n");
}

// The file name of argv[0], with either separator (programs run under Wine keep Windows
// paths); the kernel's short name for processes without a command line.
QString imageName(const QString &processDir)
{
    const QByteArray commandLine = readFile(processDir + QStringLiteral("/cmdline"));
    QString program = QString::fromLocal8Bit(commandLine.left(commandLine.indexOf('\0')));
    if (program.isEmpty())
        return QString::fromLocal8Bit(readFile(processDir + QStringLiteral("/comm"))).trimmed();
    program.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return program.mid(program.lastIndexOf(QLatin1Char('/')) + 1);
}

QVector<RunningProcess> runningProcesses(const QString &procRoot)
{
    QVector<RunningProcess> processes;
    const QStringList entries = QDir(procRoot).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool numeric = false;
        const long long pid = entry.toLongLong(&numeric);
        if (!numeric)
            continue;
        const QString dir = procRoot + QLatin1Char('/') + entry;
        const QString status = QString::fromLocal8Bit(readFile(dir + QStringLiteral("/status")));
        RunningProcess process;
        process.pid = pid;
        process.image = imageName(dir);
        process.uid = fieldOf(status, QStringLiteral("Uid"))
                          .section(QLatin1Char('\t'), 0, 0)
                          .section(QLatin1Char(' '), 0, 0)
                          .toLongLong();
        process.residentKb =
            fieldOf(status, QStringLiteral("VmRSS")).section(QLatin1Char(' '), 0, 0);
        if (!process.image.isEmpty())
            processes << process;
    }
    return processes;
}

QString taskList(const QString &procRoot)
{
    QString out = QStringLiteral("\r\nImage Name                     PID Session Name        "
                                 "Session#    Mem Usage\r\n========================= ======== "
                                 "================ =========== ============\r\n");
    for (const RunningProcess &p : runningProcesses(procRoot)) {
        out += p.image.leftJustified(25) + QLatin1Char(' ') +
               QString::number(p.pid).rightJustified(8) + QStringLiteral(" Console          ") +
               QStringLiteral("          1 ") +
               (p.residentKb.isEmpty() ? QStringLiteral("0") : p.residentKb).rightJustified(10) +
               QStringLiteral(" K\r\n");
    }
    return out;
}

QString taskKill(const ProcessRoots &roots, const QString &image)
{
    const long long self = getpid();
    QString out;
    for (const RunningProcess &p : runningProcesses(roots.proc)) {
        if (p.pid == self || p.uid != roots.uid || p.image.compare(image, Qt::CaseInsensitive) != 0)
            continue;
        if (roots.kill(p.pid))
            out +=
                QStringLiteral("SUCCESS: The process \"%1\" with PID %2 has been terminated.\r\n")
                    .arg(p.image)
                    .arg(p.pid);
    }
    if (out.isEmpty())
        out = QStringLiteral("ERROR: The process \"%1\" not found.\r\n").arg(image);
    qCDebug(lcProcessCommands) << "taskkill" << image << out.trimmed();
    return out;
}

// The image named in a taskkill line, quoted or not.
QString imageArgument(const QRegularExpressionMatch &match)
{
    return match.captured(1).isEmpty() ? match.captured(2) : match.captured(1);
}

} // namespace

void addProcessCommands(CommandTable &table, ProcessRoots roots)
{
    if (roots.uid < 0)
        roots.uid = static_cast<long long>(getuid());
    if (!roots.kill)
        roots.kill = [](long long pid) { return ::kill(static_cast<pid_t>(pid), SIGKILL) == 0; };

    table.add(QStringLiteral("wmic cpu get Name"), [roots](const QRegularExpressionMatch &) {
        const QString cpuinfo = QString::fromLocal8Bit(readFile(roots.proc + "/cpuinfo"));
        return wmicColumn(QStringLiteral("Name"), fieldOf(cpuinfo, QStringLiteral("model name")));
    });
    table.add(
        QStringLiteral("wmic computersystem get model"), [roots](const QRegularExpressionMatch &) {
            const QByteArray product = readFile(roots.dmi + "/product_name");
            return wmicColumn(QStringLiteral("Model"), QString::fromLocal8Bit(product).trimmed());
        });
    table.add(QStringLiteral("tasklist"),
              [roots](const QRegularExpressionMatch &) { return taskList(roots.proc); });

    const QString image = QStringLiteral(R"re((?:"([^"]+)"|(\S+)))re");
    auto kill = [roots](const QRegularExpressionMatch &match) {
        return taskKill(roots, imageArgument(match));
    };
    table.add(QStringLiteral("taskkill /f /im ") + image, kill);
    table.add(QStringLiteral("taskkill /im ") + image + QStringLiteral(" /f"), kill);
}
