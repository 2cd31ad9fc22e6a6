#include "linuxsampler.h"

#include <QtTest>

#include <sys/statvfs.h>

class LinuxSamplerTest : public QObject {
    Q_OBJECT
private slots:
    void memoryFromMeminfo();
    void memoryNeedsBothFigures();
    void processorTimesFromTheFirstStatLine_data();
    void processorTimesFromTheFirstStatLine();
    void onlyInterfacesWithADeviceInIndexOrder();
    void freeSpaceIsWhatTheUserMayUse();
    void missingTreeGivesNothing();
    void thisMachineGivesLiveFigures();

private:
    QString root() const { return QFINDTESTDATA("fixtures/laptop"); }
    LinuxSampler fixtureSampler() const
    {
        return LinuxSampler(root() + QStringLiteral("/proc"), root() + QStringLiteral("/sys"));
    }
};

void LinuxSamplerTest::memoryFromMeminfo()
{
    LinuxSampler sampler = fixtureSampler();
    quint64 total = 0;
    quint64 available = 0;
    QVERIFY(sampler.memoryStatus(&total, &available));
    QCOMPARE(total, quint64(16303412) * 1024);
    QCOMPARE(available, quint64(9781884) * 1024);
}

void LinuxSamplerTest::memoryNeedsBothFigures()
{
    QTemporaryDir dir;
    QFile meminfo(dir.filePath(QStringLiteral("meminfo")));
    QVERIFY(meminfo.open(QIODevice::WriteOnly));
    meminfo.write("MemTotal:       16303412 kB\nMemFree:         2044108 kB\n");
    meminfo.close();
    LinuxSampler sampler(dir.path(), dir.path());
    quint64 total = 0;
    quint64 available = 0;
    QVERIFY(!sampler.memoryStatus(&total, &available));
}

void LinuxSamplerTest::processorTimesFromTheFirstStatLine_data()
{
    QTest::addColumn<QByteArray>("stat");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<quint64>("idle");
    QTest::addColumn<quint64>("kernel");
    QTest::addColumn<quint64>("user");
    // user nice system idle iowait irq softirq; 100 ticks a second = 100000 units of 100 ns.
    QTest::newRow("all fields") << QByteArray("cpu  10 2 30 400 5 6 7 8 0 0\ncpu0 1 1 1 1 1 1 1\n")
                                << true << quint64(405) * 100000
                                << quint64(30 + 6 + 7 + 405) * 100000 << quint64(12) * 100000;
    QTest::newRow("older kernel, seven fields")
        << QByteArray("cpu 1 0 1 100 0 0 0\n") << true << quint64(100) * 100000
        << quint64(101) * 100000 << quint64(1) * 100000;
    QTest::newRow("per-processor line first")
        << QByteArray("cpu0 1 2 3 4 5 6 7\n") << false << quint64(0) << quint64(0) << quint64(0);
    QTest::newRow("garbage") << QByteArray("cpu  a b c d e f g\n") << false << quint64(0)
                             << quint64(0) << quint64(0);
    QTest::newRow("empty") << QByteArray() << false << quint64(0) << quint64(0) << quint64(0);
}

void LinuxSamplerTest::processorTimesFromTheFirstStatLine()
{
    QFETCH(QByteArray, stat);
    QFETCH(bool, ok);
    QFETCH(quint64, idle);
    QFETCH(quint64, kernel);
    QFETCH(quint64, user);
    quint64 gotIdle = 0, gotKernel = 0, gotUser = 0;
    QCOMPARE(parseProcStat(stat, 100, &gotIdle, &gotKernel, &gotUser), ok);
    if (!ok)
        return;
    QCOMPARE(gotIdle, idle);
    QCOMPARE(gotKernel, kernel);
    QCOMPARE(gotUser, user);
}

void LinuxSamplerTest::onlyInterfacesWithADeviceInIndexOrder()
{
    LinuxSampler sampler = fixtureSampler();
    const QVector<InterfaceCounters> table = sampler.interfaceTable();
    // lo, docker0 and the veth pair have no device; wlp2s0 (index 2) comes before enp3s0 (3).
    QCOMPARE(table.size(), 2);
    QCOMPARE(table.at(0).type, 801u); // wireless: ARPHRD_IEEE80211
    QCOMPARE(table.at(0).inOctets, quint32(7000000000ull - 4294967296ull));
    QCOMPARE(table.at(0).outOctets, 300000u);
    QCOMPARE(table.at(1).type, 1u); // ARPHRD_ETHER
    QCOMPARE(table.at(1).inOctets, 1000000u);
    QCOMPARE(table.at(1).outOctets, 200000u);
}

void LinuxSamplerTest::freeSpaceIsWhatTheUserMayUse()
{
    QTemporaryDir dir;
    struct statvfs info {};
    QCOMPARE(statvfs(QFile::encodeName(dir.path()).constData(), &info), 0);
    LinuxSampler sampler(root(), root(), dir.path());
    const quint64 expected = quint64(info.f_bavail) * info.f_frsize;
    // Other processes write meanwhile; a few MiB either way is the same figure.
    QVERIFY(qAbs(qint64(sampler.freeBytesForUser()) - qint64(expected)) < (16ll << 20));
    QVERIFY(sampler.freeBytesForUser() <= quint64(info.f_bfree) * info.f_frsize);
}

void LinuxSamplerTest::missingTreeGivesNothing()
{
    LinuxSampler sampler(QStringLiteral("/nonexistent/proc"), QStringLiteral("/nonexistent/sys"),
                         QStringLiteral("/nonexistent"));
    quint64 a = 0, b = 0, c = 0;
    QVERIFY(!sampler.memoryStatus(&a, &b));
    QVERIFY(!sampler.systemTimes(&a, &b, &c));
    QVERIFY(sampler.interfaceTable().isEmpty());
    QCOMPARE(sampler.freeBytesForUser(), quint64(0));
}

void LinuxSamplerTest::thisMachineGivesLiveFigures()
{
    LinuxSampler sampler;
    quint64 total = 0, available = 0;
    QVERIFY(sampler.memoryStatus(&total, &available));
    QVERIFY(total > 0 && available <= total);
    quint64 idle = 0, kernel = 0, user = 0;
    QVERIFY(sampler.systemTimes(&idle, &kernel, &user));
    QVERIFY(kernel >= idle);
    QVERIFY(sampler.freeBytesForUser() > 0);
}

QTEST_GUILESS_MAIN(LinuxSamplerTest)
#include "tst_linuxsampler.moc"
