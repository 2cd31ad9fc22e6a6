// The Linux command rows for identification and the process list, over fixture trees.
#include "commandtable.h"
#include "cpuidentification.h"
#include "processcommands.h"

#include <QtTest>

namespace {

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

class Fixture {
public:
    Fixture()
    {
        writeFile(proc("cpuinfo"), "processor\t: 0\nvendor_id\t: GenuineIntel\nmodel name\t: "
                                   "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz\nflags\t\t: fpu\n\n"
                                   "processor\t: 1\nmodel name\t: Intel(R) Core(TM) i7-8750H CPU "
                                   "@ 2.20GHz\n");
        writeFile(m_dir.filePath("dmi/product_name"), "P95_96_97Ex\n");
        process(101, QByteArray("/usr/bin/varnel-helper\0--quiet\0", 31), 1000, "helper");
        process(102, QByteArray("C:\\Varnel\\ThrottleStop\\ThrottleStop.exe\0", 41), 1000,
                "ThrottleStop.ex");
        process(103, QByteArray("/opt/ts/throttlestop.exe\0", 25), 1000, "throttlestop.ex");
        process(104, QByteArray("ThrottleStop.exe\0", 17), 0, "ThrottleStop.ex");
        process(105, QByteArray(), 0, "kworker/0:1");
        writeFile(proc("sys/kernel"), "not a process");
    }

    ProcessRoots roots()
    {
        ProcessRoots r;
        r.proc = m_dir.filePath("proc");
        r.dmi = m_dir.filePath("dmi");
        r.uid = 1000;
        r.kill = [this](long long pid) {
            killed << pid;
            return true;
        };
        return r;
    }
    QString proc(const QString &relative) const { return m_dir.filePath("proc/" + relative); }
    QTemporaryDir m_dir;
    QList<long long> killed;

private:
    void process(int pid, const QByteArray &commandLine, int uid, const QByteArray &comm)
    {
        const QString dir = QString::number(pid) + '/';
        writeFile(proc(dir + "cmdline"), commandLine);
        writeFile(proc(dir + "comm"), comm + '\n');
        writeFile(proc(dir + "status"), "Name:\t" + comm + "\nUid:\t" + QByteArray::number(uid) +
                                            "\t" + QByteArray::number(uid) + "\t" +
                                            QByteArray::number(uid) + "\t" +
                                            QByteArray::number(uid) + "\nVmRSS:\t    2048 kB\n");
    }
};

} // namespace

class ProcessCommandsTest : public QObject {
    Q_OBJECT

private slots:
    void identificationInWmicShape();
    void missingFilesGiveAnEmptyValue();
    void taskListNamesRunningImages();
    void taskKill_data();
    void taskKill();
    void taskKillOfNothing();
};

void ProcessCommandsTest::identificationInWmicShape()
{
    Fixture fixture;
    CommandTable table;
    addProcessCommands(table, fixture.roots());
    const QString cpu = table.run("wmic cpu get Name").value_or(QString());
    QVERIFY(cpu.startsWith("Name "));
    QCOMPARE(cpu.count("\r\n"), 3);
    QCOMPARE(cleanWmicText(cpu, "Name"),
             QStringLiteral("Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"));
    const QString model = table.run("wmic computersystem get model").value_or(QString());
    QVERIFY(model.startsWith("Model "));
    QCOMPARE(cleanWmicText(model, "Model"), QStringLiteral("P95_96_97Ex"));
    // Other spellings are other commands.
    QVERIFY(!table.knows("wmic cpu get name"));
    QVERIFY(!table.knows("wmic cpu get Name,NumberOfCores"));
}

void ProcessCommandsTest::missingFilesGiveAnEmptyValue()
{
    QTemporaryDir empty;
    ProcessRoots roots;
    roots.proc = empty.filePath("proc");
    roots.dmi = empty.filePath("dmi");
    CommandTable table;
    addProcessCommands(table, roots);
    QCOMPARE(cleanWmicText(*table.run("wmic cpu get Name"), "Name"), QString());
    QCOMPARE(cleanWmicText(*table.run("wmic computersystem get model"), "Model"), QString());
    QVERIFY(!table.run("tasklist")->contains(".exe"));
}

void ProcessCommandsTest::taskListNamesRunningImages()
{
    Fixture fixture;
    CommandTable table;
    addProcessCommands(table, fixture.roots());
    const QString list = *table.run("tasklist");
    const QStringList lines = list.split("\r\n", Qt::SkipEmptyParts);
    QVERIFY(lines.value(0).startsWith("Image Name"));
    QVERIFY(lines.value(1).startsWith("====="));
    QStringList images;
    for (const QString &line : lines.mid(2))
        images << line.section(' ', 0, 0);
    QCOMPARE(images.size(), 5);
    for (const QString &image :
         {"varnel-helper", "ThrottleStop.exe", "throttlestop.exe", "kworker/0:1"})
        QVERIFY2(images.contains(image), qPrintable(image));
    QVERIFY(list.contains(QRegularExpression("ThrottleStop\\.exe +102 ")));
    QVERIFY(fixture.killed.isEmpty());
}

void ProcessCommandsTest::taskKill_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("force first") << "taskkill /f /im ThrottleStop.exe";
    QTest::newRow("force last") << "taskkill /im ThrottleStop.exe /f";
    QTest::newRow("quoted image") << "taskkill /f /im \"ThrottleStop.exe\"";
    QTest::newRow("image case") << "taskkill /f /im THROTTLESTOP.EXE";
}

void ProcessCommandsTest::taskKill()
{
    QFETCH(QString, command);
    Fixture fixture;
    CommandTable table;
    addProcessCommands(table, fixture.roots());
    const QString output = table.run(command).value_or(QString());
    // The user's two processes of that image, neither root's nor another program's.
    std::sort(fixture.killed.begin(), fixture.killed.end());
    QCOMPARE(fixture.killed, QList<long long>({102, 103}));
    QCOMPARE(output.count("SUCCESS:"), 2);
    QVERIFY(output.contains("with PID 102 has been terminated."));
}

void ProcessCommandsTest::taskKillOfNothing()
{
    Fixture fixture;
    CommandTable table;
    addProcessCommands(table, fixture.roots());
    QCOMPARE(*table.run("taskkill /f /im PhoneJack.exe"),
             QStringLiteral("ERROR: The process \"PhoneJack.exe\" not found.\r\n"));
    QVERIFY(fixture.killed.isEmpty());
    QVERIFY(!table.knows("taskkill /im ThrottleStop.exe"));
}

QTEST_GUILESS_MAIN(ProcessCommandsTest)
#include "tst_processcommands.moc"
