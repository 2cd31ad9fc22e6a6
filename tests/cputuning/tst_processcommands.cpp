// The Linux command rows for identification and the process list, over fixture trees.
#include "commandtable.h"
#include "cpuidentification.h"
#include "fakesystree.h"
#include "processcommands.h"

#include <QtTest>

namespace {

// A /proc and DMI tree: the user (1000) runs the helper and two copies of ThrottleStop; root
// runs another and a kernel thread.
struct Fixture : FakeSysTree {
    Fixture()
    {
        put(QStringLiteral("proc/cpuinfo"),
            "processor\t: 0\nvendor_id\t: GenuineIntel\nmodel name\t: Intel(R) Core(TM) i7-8750H "
            "CPU @ 2.20GHz\nflags\t\t: fpu\n\nprocessor\t: 1\nmodel name\t: Intel(R) Core(TM) "
            "i7-8750H CPU @ 2.20GHz\n");
        put(QStringLiteral("dmi/product_name"), "P95_96_97Ex\n");
        process(101, QByteArray("/usr/bin/varnel-helper\0--quiet\0", 31), 1000, "helper");
        process(102, QByteArray("C:\\Varnel\\ThrottleStop\\ThrottleStop.exe\0", 41), 1000,
                "ThrottleStop.ex");
        process(103, QByteArray("/opt/ts/throttlestop.exe\0", 25), 1000, "throttlestop.ex");
        process(104, QByteArray("ThrottleStop.exe\0", 17), 0, "ThrottleStop.ex");
        process(105, QByteArray(), 0, "kworker/0:1");
        put(QStringLiteral("proc/sys/kernel"), "not a process");
        ProcessRoots roots{root() + "/proc", root() + "/dmi", 1000, [this](long long pid) {
                               killed << pid;
                               return true;
                           }};
        addProcessCommands(table, roots);
    }

    void process(int pid, const QByteArray &commandLine, int uid, const QByteArray &comm)
    {
        const QString at = QStringLiteral("proc/%1/").arg(pid);
        const QByteArray id = QByteArray::number(uid) + '\t';
        put(at + "cmdline", commandLine);
        put(at + "comm", comm + '\n');
        put(at + "status",
            "Name:\t" + comm + "\nUid:\t" + id + id + id + id + "\nVmRSS:\t    2048 kB\n");
    }

    CommandTable table;
    QList<long long> killed;
};

} // namespace

class ProcessCommandsTest : public QObject {
    Q_OBJECT

private slots:

    void identificationAndTaskListInWindowsShape()
    {
        Fixture fixture;
        QCOMPARE(fixture.table.run("wmic cpu get Name").value_or(QString()),
                 QStringLiteral("Name%1\r\nIntel(R) Core(TM) i7-8750H CPU @ 2.20GHz  \r\n\r\n")
                     .arg(QString(38, ' ')));
        QCOMPARE(fixture.table.run("wmic computersystem get model").value_or(QString()),
                 QStringLiteral("Model        \r\nP95_96_97Ex  \r\n\r\n"));
        // Other spellings are other commands.
        QVERIFY(!fixture.table.knows("wmic cpu get name"));
        QVERIFY(!fixture.table.knows("wmic cpu get Name,NumberOfCores"));

        const QString list = *fixture.table.run("tasklist");
        const QStringList lines = list.split("\r\n", Qt::SkipEmptyParts);
        QVERIFY(lines.value(0).startsWith("Image Name"));
        QVERIFY(lines.value(1).startsWith("====="));
        QStringList images;
        for (const QString &line : lines.mid(2))
            images << line.section(' ', 0, 0);
        images.sort();
        QCOMPARE(images, QStringList({"ThrottleStop.exe", "ThrottleStop.exe", "kworker/0:1",
                                      "throttlestop.exe", "varnel-helper"}));
        QVERIFY(list.contains(QRegularExpression("ThrottleStop\\.exe +102 ")));
        QVERIFY(fixture.killed.isEmpty());

        // Missing files give an empty value and an empty list.
        CommandTable empty;
        addProcessCommands(empty, {fixture.root() + "/none", fixture.root() + "/none", -1, {}});
        QCOMPARE(cleanWmicText(*empty.run("wmic cpu get Name"), "Name"), QString());
        QCOMPARE(cleanWmicText(*empty.run("wmic computersystem get model"), "Model"), QString());
        QVERIFY(!empty.run("tasklist")->contains(".exe"));
    }

    void taskKill_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QList<long long>>("killed");
        QTest::addColumn<QString>("output");
        // The user's two processes of that image, neither root's nor another program's.
        const QList<long long> both = {102, 103};
        // Each named as it runs.
        const QString done =
            QStringLiteral("SUCCESS: The process \"%1\" with PID %2 has been terminated.\r\n");
        const QString twoDone =
            done.arg("ThrottleStop.exe").arg(102) + done.arg("throttlestop.exe").arg(103);
        QTest::newRow("force first") << "taskkill /f /im ThrottleStop.exe" << both << twoDone;
        QTest::newRow("force last") << "taskkill /im ThrottleStop.exe /f" << both << twoDone;
        QTest::newRow("quoted image") << "taskkill /f /im \"ThrottleStop.exe\"" << both << twoDone;
        QTest::newRow("image case") << "taskkill /f /im THROTTLESTOP.EXE" << both << twoDone;
        QTest::newRow("nothing of that image")
            << "taskkill /f /im PhoneJack.exe" << QList<long long>()
            << "ERROR: The process \"PhoneJack.exe\" not found.\r\n";
        QTest::newRow("without force, not a known command")
            << "taskkill /im ThrottleStop.exe" << QList<long long>() << "<unknown>";
    }

    void taskKill()
    {
        QFETCH(QString, command);
        Fixture fixture;
        QTEST(fixture.table.run(command).value_or("<unknown>"), "output");
        std::sort(fixture.killed.begin(), fixture.killed.end());
        QTEST(fixture.killed, "killed");
    }
};

QTEST_GUILESS_MAIN(ProcessCommandsTest)
#include "tst_processcommands.moc"
