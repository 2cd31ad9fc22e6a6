#include "fakenvml.h"
#include "fakesystree.h"
#include "gpusignallog.h"
#include "linuxsampler.h"
#include "nvmlgpu.h"

#include <QtTest>

#include <dlfcn.h>
#include <sys/statvfs.h>
#include <unistd.h>

class LinuxSensorsTest : public QObject {
    Q_OBJECT

    static QString tree(const char *name)
    {
        return QFINDTESTDATA(QStringLiteral("fixtures/") + QLatin1String(name) +
                             QStringLiteral("/sys"));
    }
    static QString laptop() { return QFINDTESTDATA("fixtures/laptop"); }
    static QString library(const char *name)
    {
        return QStringLiteral(VARNEL_TEST_BIN_DIR "/monitoring/lib%1.so").arg(QLatin1String(name));
    }
    FakeNvmlScript *script(const char *name)
    {
        void *handle = dlopen(QFile::encodeName(library(name)).constData(), RTLD_NOW);
        if (!handle)
            return nullptr;
        m_handles << handle;
        return static_cast<FakeNvmlScript *>(dlsym(handle, "fakeNvml"));
    }
    QList<void *> m_handles;
    FakeNvmlScript *m_script = nullptr;

private slots:
    void init()
    {
        m_script = script("fakenvml");
        QVERIFY2(m_script, "the stand-in library is built with the tests");
        // One GPU: 1530 MHz graphics and 7001 MHz memory clocks, 42 % busy, P2 at 61 °C.
        *m_script = FakeNvmlScript{0, 1, {1530}, {7001}, 0, {42}, {2}, {61}};
    }

    void cleanup()
    {
        for (void *handle : m_handles)
            dlclose(handle);
        m_handles.clear();
    }

    void noNvidiaGpuFailsWithoutLoadingTheLibrary()
    {
        // The GPU's own audio function sleeps as it likes; it is no display controller.
        const auto awake = NvmlGpuSensors::scanPci(tree("gpu-awake"));
        QCOMPARE(awake.devices, QStringList{QStringLiteral("0000:01:00.0")});
        QVERIFY(!awake.anySleeping);
        QVERIFY(NvmlGpuSensors::scanPci(tree("gpu-asleep")).anySleeping);
        QVERIFY(NvmlGpuSensors::scanPci(tree("no-nvidia")).devices.isEmpty());

        auto gpu = std::make_shared<NvmlGpuSensors>(library("fakenvml"), tree("no-nvidia"));
        QVERIFY(!gpu->absentForGood()); // nothing is known before the first look
        // The thread shows the zeros once and then ends by itself instead of polling for nothing.
        nvidia_api loop(gpu);
        GpuSignalLog signalLog(loop);
        loop.start();
        QVERIFY(loop.wait(10000));
        QCOMPARE(signalLog.entries, QStringList({"GPU1TEMP 0", "GPU1LOAD 0"}));
        QVERIFY(gpu->absentForGood());
        QCOMPARE(gpu->initialize(), 6);
        QCOMPARE(m_script->initCalls, 0);
        QCOMPARE(m_script->shutdownCalls, 0);

        NvmlGpuSensors missing(QStringLiteral("libnvidia-ml-missing.so.1"), tree("gpu-awake"));
        const int status = missing.initialize();
        QCOMPARE(missing.errorMessage(status), QStringLiteral("NVML library not found"));
        int count = -1;
        QVERIFY(missing.enumeratePhysicalGpus(&count) != 0);
        missing.unload();
    }

    void awakeGpuIsReadEveryCycleAndASleepingOneIsNeverTouched()
    {
        // A copy of the awake tree whose power state the test changes between cycles.
        FakeSysTree sys;
        QCOMPARE(QProcess::execute(QStringLiteral("cp"),
                                   {QStringLiteral("-R"), tree("gpu-awake") + "/.", sys.root()}),
                 0);
        const QString device = QStringLiteral("bus/pci/devices/0000:01:00.0/");
        const QString power = device + QStringLiteral("power/runtime_status");

        auto gpu = std::make_shared<NvmlGpuSensors>(library("fakenvml"), sys.root());
        nvidia_api loop(gpu);
        GpuSignalLog signalLog(loop);
        const QStringList awake = GpuSignalLog::pass(1, 61, 42, 1530, 7001, 2);
        QCOMPARE(signalLog.poll(), awake);
        QCOMPARE(signalLog.poll(), awake);
        QCOMPARE(m_script->initCalls, 2);
        QCOMPARE(m_script->shutdownCalls, 2);

        sys.put(power, "suspending\n"); // on its way down counts as asleep already
        // The bus was listed in the first cycle; later cycles read only the GPU's power state.
        QVERIFY(QFile::remove(sys.root() + '/' + device + QStringLiteral("vendor")));
        const int queries = m_script->queries;
        // Asleep: one GPU whose memory clock reads 0, which the loop takes for zeros.
        QCOMPARE(signalLog.poll(), QStringList({"GPU1TEMP 0", "GPU1LOAD 0"}));
        int count = 0;
        unsigned graphics = 99, megahertz = 99;
        QVERIFY(gpu->initialize() == 0 && gpu->enumeratePhysicalGpus(&count) == 0 && count == 1);
        QCOMPARE(gpu->allClockFrequencies(0, &graphics, &megahertz), 0);
        QCOMPARE(megahertz, 0u);
        gpu->unload();
        QCOMPARE(m_script->initCalls, 2);
        QCOMPARE(m_script->queries, queries);
        sys.put(power, "active\n");
        QCOMPARE(signalLog.poll(), awake);
        QCOMPARE(m_script->initCalls, 3);
    }

    void queriesAnswerAsTheDriverInterface()
    {
        // A driver without the plain temperature query answers the versioned one.
        FakeNvmlScript *versioned = script("fakenvml_v");
        QVERIFY(versioned);
        *versioned = *m_script;
        NvmlGpuSensors newer(library("fakenvml_v"), tree("gpu-awake"));
        int count = 0;
        QVERIFY(newer.initialize() == 0 && newer.enumeratePhysicalGpus(&count) == 0);
        int celsius = 0;
        QCOMPARE(newer.thermalSensor0(0, &celsius), 0);
        QCOMPARE(celsius, 61);
        QCOMPARE(versioned->lastTemperatureVersion, 12u | (1u << 24));
        newer.unload();

        NvmlGpuSensors gpu(library("fakenvml"), tree("gpu-awake"));
        QVERIFY(gpu.initialize() == 0 && gpu.enumeratePhysicalGpus(&count) == 0);
        // Utilisation not supported: not present; a real failure leaves the previous figures.
        bool present = true;
        unsigned percent = 77;
        m_script->utilizationResult = 3;
        QCOMPARE(gpu.dynamicPstatesInfo(0, &present, &percent), 0);
        QVERIFY(!present);
        m_script->utilizationResult = 9;
        present = true;
        QVERIFY(gpu.dynamicPstatesInfo(0, &present, &percent) != 0);
        QVERIFY(present);
        QCOMPARE(percent, 77u);

        m_script->temperatureResult = 9;
        celsius = 5;
        QCOMPARE(gpu.thermalSensor0(0, &celsius), 9);
        QCOMPARE(celsius, 5);
        QCOMPARE(gpu.errorMessage(9), QStringLiteral("Driver Not Loaded"));
        QCOMPARE(m_script->lastTemperatureVersion, 0u); // the plain query, where there is one
        gpu.unload();
        // After an unload the handles are gone, as the driver interface's are.
        unsigned graphics = 0, memory = 0;
        QVERIFY(gpu.allClockFrequencies(0, &graphics, &memory) != 0);
        m_script->initResult = 9;
        QCOMPARE(gpu.initialize(), 9);
        QVERIFY(gpu.enumeratePhysicalGpus(&count) != 0);
        gpu.unload();
        QCOMPARE(m_script->shutdownCalls, 1);
    }

    void samplerTreesAndFreeSpace()
    {
        LinuxSampler sampler(laptop() + QStringLiteral("/proc"), laptop() + QStringLiteral("/sys"));
        quint64 total = 0, available = 0;
        QVERIFY(sampler.memoryStatus(&total, &available));
        QCOMPARE(total, quint64(16303412) * 1024);
        QCOMPARE(available, quint64(9781884) * 1024);
        quint64 idle = 0, kernel = 0, user = 0;
        QVERIFY(sampler.systemTimes(&idle, &kernel, &user));
        QCOMPARE(idle, quint64(98765432 + 12000) * (10000000 / sysconf(_SC_CLK_TCK)));

        // lo, docker0 and the veth pair have no device; wlp2s0 (index 2) comes before enp3s0 (3),
        // as type ARPHRD_IEEE80211 and ARPHRD_ETHER, with its 7 GB received wrapped at 32 bits;
        // wlan1's older driver shows itself wireless by its "wireless" folder alone.
        QStringList table;
        for (const InterfaceCounters &row : sampler.interfaceTable())
            table << QStringLiteral("%1 %2 %3").arg(row.type).arg(row.inOctets).arg(row.outOctets);
        QCOMPARE(table, QStringList({"801 2705032704 300000", "1 1000000 200000", "801 5000 600"}));

        // Without MemAvailable there is no figure.
        FakeSysTree proc;
        proc.put(QStringLiteral("meminfo"), "MemTotal:       16303412 kB\nMemFree:  2044108 kB\n");
        QVERIFY(!LinuxSampler(proc.root(), proc.root()).memoryStatus(&total, &available));

        LinuxSampler missing(QStringLiteral("/nonexistent/proc"),
                             QStringLiteral("/nonexistent/sys"), QStringLiteral("/nonexistent"));
        QVERIFY(!missing.memoryStatus(&total, &available));
        QVERIFY(!missing.systemTimes(&idle, &kernel, &user));
        QVERIFY(missing.interfaceTable().isEmpty());
        QCOMPARE(missing.freeBytesForUser(), quint64(0));

        // This machine's own tree, where the sampler looks by default.
        LinuxSampler live;
        QVERIFY(live.memoryStatus(&total, &available) && total > 0 && available <= total);
        QVERIFY(live.systemTimes(&idle, &kernel, &user) && kernel >= idle);
        QVERIFY(live.freeBytesForUser() > 0);

        struct statvfs info {};
        QCOMPARE(statvfs(QFile::encodeName(proc.root()).constData(), &info), 0);
        const quint64 free = LinuxSampler(laptop(), laptop(), proc.root()).freeBytesForUser();
        // Other processes write meanwhile; a few MiB either way is the same figure.
        QVERIFY(qAbs(qint64(free) - qint64(quint64(info.f_bavail) * info.f_frsize)) < (16ll << 20));
        QVERIFY(free <= quint64(info.f_bfree) * info.f_frsize);
    }

    void processorTimesFromTheFirstStatLine()
    {
        // user nice system idle iowait irq softirq; 100 ticks a second = 100000 units of 100 ns.
        const struct {
            const char *stat;
            quint64 idle, kernel, user; // all 0: refused, and nothing written
        } rows[] = {
            {"cpu  10 2 30 400 5 6 7 8 0 0\ncpu0 1 1 1 1 1 1 1\n", 405, 30 + 6 + 7 + 405, 12},
            {"cpu 1 0 1 100 0 0 0\n", 100, 101, 1}, // an older kernel's seven fields
            {"cpu0 1 2 3 4 5 6 7\n", 0, 0, 0},      // a per-processor line first
            {"cpu  a b c d e f g\n", 0, 0, 0},
            {"", 0, 0, 0},
        };
        for (const auto &row : rows) {
            quint64 idle = 0, kernel = 0, user = 0;
            QCOMPARE(parseProcStat(row.stat, 100, &idle, &kernel, &user), row.idle > 0);
            QCOMPARE(QList<quint64>({idle, kernel, user}),
                     QList<quint64>({row.idle * 100000, row.kernel * 100000, row.user * 100000}));
        }
    }
};

QTEST_GUILESS_MAIN(LinuxSensorsTest)
#include "tst_linuxsensors.moc"
