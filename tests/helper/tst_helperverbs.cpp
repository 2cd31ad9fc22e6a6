#include "camera.h"
#include "cpuregisters.h"
#include "fakesystree.h"
#include "powerlimits.h"
#include "processorlimits.h"

#include <QtTest>

namespace {

const QString pstate = QStringLiteral("sys/devices/system/cpu/intel_pstate/");
const QString cpu0 = QStringLiteral("sys/devices/system/cpu/cpu0/cpufreq/");
const QString cpu1 = QStringLiteral("sys/devices/system/cpu/cpu1/cpufreq/");
const QString rapl = QStringLiteral("sys/class/powercap/intel-rapl:0/");

// The voltage mailbox answers a read command with the offset last written to that plane; a
// locked part takes writes and keeps its offset.
class MailboxBus : public DevMsrBus {
public:
    MailboxBus(const FakeSysTree &tree, bool locked)
        : DevMsrBus(SysTree(tree.root())), m_locked(locked)
    {
    }
    int write(int cpu, quint32 reg, quint64 value) const override
    {
        if (reg != CpuRegisters::kVoltageMailbox)
            return m_locked ? 0 : DevMsrBus::write(cpu, reg, value);
        const int plane = int((value >> 40) & 7);
        const bool isWrite = ((value >> 32) & 0xFF) == 0x11;
        if (isWrite && !m_locked)
            m_offsets[plane] = value & (0x7FFULL << 21);
        return DevMsrBus::write(cpu, reg, isWrite ? 0 : m_offsets.value(plane));
    }

private:
    bool m_locked;
    mutable QHash<int, quint64> m_offsets;
};

} // namespace

class TestHelperVerbs : public QObject {
    Q_OBJECT
private slots:
    void processorLimits_data();
    void processorLimits();
    void powerLimits_data();
    void powerLimits();
    void voltageOffset_data();
    void voltageOffset();
    void offsetCommands();
    void turboRatios_data();
    void turboRatios();
    void camera_data();
    void camera();
};

void TestHelperVerbs::processorLimits_data()
{
    QTest::addColumn<QString>("driver");
    QTest::addColumn<bool>("minimum");
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("readBack");
    // file=value pairs expected afterwards
    QTest::addColumn<QStringList>("files");
    const QString none;
    const QString minPct = pstate + "min_perf_pct=", maxPct = pstate + "max_perf_pct=";
    const QString min0 = cpu0 + "scaling_min_freq=", max0 = cpu0 + "scaling_max_freq=";
    QTest::newRow("pstate minimum")
        << "pstate" << true << 25 << none << 25 << QStringList{minPct + "25"};
    QTest::newRow("pstate maximum")
        << "pstate" << false << 80 << none << 80 << QStringList{maxPct + "80"};
    QTest::newRow("cpufreq maximum, every CPU")
        << "cpufreq" << false << 50 << none << 50
        << QStringList{max0 + "1600000", cpu1 + "scaling_max_freq=1600000"};
    QTest::newRow("cpufreq minimum")
        << "cpufreq" << true << 75 << none << 75 << QStringList{cpu1 + "scaling_min_freq=2400000"};
    QTest::newRow("cpufreq minimum never below the lowest frequency")
        << "cpufreq" << true << 0 << none << 25 << QStringList{min0 + "800000"};
    QTest::newRow("cpufreq maximum below the minimum lowers the minimum")
        << "cpufreq-high-min" << false << 50 << none << 50
        << QStringList{min0 + "1600000", max0 + "1600000"};
    QTest::newRow("cpufreq minimum above the maximum stops at it")
        << "cpufreq-low-max" << true << 90 << none << 50 << QStringList{min0 + "1600000"};
    for (int bad : {-1, 101}) {
        QTest::addRow("pstate minimum %d", bad)
            << "pstate" << true << bad << helpererror::outOfRange << 0
            << QStringList{minPct + "10"};
        QTest::addRow("cpufreq maximum %d", bad)
            << "cpufreq" << false << bad << helpererror::outOfRange << 0
            << QStringList{max0 + "3200000"};
    }
    QTest::newRow("no frequency control")
        << "none" << true << 50 << helpererror::notSupported << 0 << QStringList();
}

void TestHelperVerbs::processorLimits()
{
    QFETCH(QString, driver);
    QFETCH(bool, minimum);
    QFETCH(int, percent);
    QFETCH(QString, error);
    QFETCH(int, readBack);
    QFETCH(QStringList, files);

    FakeSysTree tree;
    if (driver == QLatin1String("pstate"))
        tree.putPstate();
    if (driver.startsWith(QLatin1String("cpufreq")))
        tree.putCpufreq();
    if (driver == QLatin1String("cpufreq-high-min"))
        tree.put(cpu0 + "scaling_min_freq", "2400000\n");
    if (driver == QLatin1String("cpufreq-low-max"))
        tree.put(cpu0 + "scaling_max_freq", "1600000\n");

    const ProcessorLimits limits{SysTree(tree.root())};
    int back = 0;
    const Outcome outcome =
        minimum ? limits.setMinimum(percent, &back) : limits.setMaximum(percent, &back);
    QCOMPARE(outcome.errorName, error);
    if (error.isEmpty())
        QCOMPARE(back, readBack);
    for (const QString &file : files) {
        const QStringList pair = file.split(QLatin1Char('='));
        QCOMPARE(tree.get(pair.at(0)), pair.at(1).toLatin1());
    }
}

void TestHelperVerbs::powerLimits_data()
{
    QTest::addColumn<QString>("verb");
    QTest::addColumn<uint>("value");
    QTest::addColumn<bool>("locked");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    const QString none, range = helpererror::outOfRange, locked = helpererror::locked;
    const struct {
        const char *name, *verb;
        uint value;
        bool locked;
        QString error;
        const char *file, *content;
    } rows[] = {
        {"turbo power", "power", 35500u, false, none, "0_power_limit_uw", "35500000"},
        {"unlimited", "power", 4095875u, false, none, "0_power_limit_uw", "4095875000"},
        {"turbo time", "window", 56000u, false, none, "0_time_window_us", "56000000"},
        {"short-term", "short", 60000u, false, none, "1_power_limit_uw", "60000000"},
        {"power 999 mW", "power", 999u, false, range, "0_power_limit_uw", "45000000"},
        {"power above 4096 W", "power", 4096001u, false, range, "0_power_limit_uw", "45000000"},
        {"short-term 0", "short", 0u, false, range, "1_power_limit_uw", "90000000"},
        {"window 0", "window", 0u, false, range, "0_time_window_us", "27983872"},
        {"window above 128 s", "window", 128001u, false, range, "0_time_window_us", "27983872"},
        {"locked power", "power", 35000u, true, locked, "0_power_limit_uw", "45000000"},
        {"locked window", "window", 8000u, true, locked, "0_time_window_us", "27983872"},
        {"no RAPL", "none", 35000u, false, helpererror::notSupported, nullptr, ""},
    };
    for (const auto &r : rows) {
        QTest::newRow(r.name) << r.verb << r.value << r.locked << r.error
                              << (r.file ? rapl + "constraint_" + r.file : QString())
                              << QByteArray(r.content);
    }
}

void TestHelperVerbs::powerLimits()
{
    QFETCH(QString, verb);
    QFETCH(uint, value);
    QFETCH(bool, locked);
    QFETCH(QString, error);
    QFETCH(QString, file);
    QFETCH(QByteArray, content);

    FakeSysTree tree;
    if (verb != QLatin1String("none"))
        tree.putRapl();
    tree.putMsr(0, PowerLimits::kPackagePowerLimit,
                locked ? (1ULL << 63) | 0x00DD8168 : 0x00DD8168);
    const SysTree sys(tree.root());
    const DevMsrBus bus(sys);
    const PowerLimits limits(sys, &bus);

    quint32 back = 0;
    Outcome outcome;
    if (verb == QLatin1String("window"))
        outcome = limits.setWindow(value, &back);
    else if (verb == QLatin1String("short"))
        outcome = limits.setShortTerm(value, &back);
    else
        outcome = limits.setLongTerm(value, &back);
    QCOMPARE(outcome.errorName, error);
    QVERIFY(outcome.ok() || !outcome.message.isEmpty());
    if (error.isEmpty())
        QCOMPARE(back, value);
    if (!file.isEmpty())
        QCOMPARE(tree.get(file), content);

    quint32 milliwatts = 0, windowMs = 0;
    if (verb == QLatin1String("none")) {
        QCOMPARE(limits.read(&milliwatts, &windowMs).errorName, helpererror::notSupported);
    } else {
        QVERIFY(limits.read(&milliwatts, &windowMs).ok());
        QCOMPARE(milliwatts, verb == QLatin1String("power") && error.isEmpty() ? value : 45000u);
        QCOMPARE(windowMs, verb == QLatin1String("window") && error.isEmpty() ? value : 27983u);
    }
}

void TestHelperVerbs::voltageOffset_data()
{
    QTest::addColumn<int>("millivolts");
    QTest::addColumn<QString>("setup");
    QTest::addColumn<QString>("error");
    const QString none;
    QTest::newRow("-100 mV") << -100 << "mailbox" << none;
    QTest::newRow("-250 mV, the deepest") << -250 << "mailbox" << none;
    QTest::newRow("0 mV") << 0 << "mailbox" << none;
    QTest::newRow("-251 mV") << -251 << "mailbox" << helpererror::outOfRange;
    QTest::newRow("overvolt +1 mV") << 1 << "mailbox" << helpererror::outOfRange;
    QTest::newRow("locked by firmware") << -80 << "locked" << helpererror::notAccepted;
    QTest::newRow("no msr driver") << -80 << "none" << helpererror::notSupported;
}

void TestHelperVerbs::voltageOffset()
{
    QFETCH(int, millivolts);
    QFETCH(QString, setup);
    QFETCH(QString, error);

    FakeSysTree tree;
    if (setup != QLatin1String("none")) {
        tree.putMsr(0, CpuRegisters::kVoltageMailbox, 0);
        tree.putMsr(1, CpuRegisters::kVoltageMailbox, 0);
    }
    const MailboxBus bus(tree, setup == QLatin1String("locked"));
    const CpuRegisters registers(bus);

    int back = 1;
    QCOMPARE(registers.setOffset(millivolts, &back).errorName, error);
    int now = 1;
    if (setup == QLatin1String("none"))
        return;
    QVERIFY(registers.readOffset(&now).ok());
    QCOMPARE(now, error.isEmpty() ? millivolts : 0);
    if (error.isEmpty())
        QCOMPARE(back, millivolts);
}

void TestHelperVerbs::offsetCommands()
{
    // -100 mV on the core and the cache, as the mailbox expects them.
    QCOMPARE(CpuRegisters::offsetWriteCommand(0, -100), 0x80000011F3400000ULL);
    QCOMPARE(CpuRegisters::offsetWriteCommand(2, -100), 0x80000211F3400000ULL);
    QCOMPARE(CpuRegisters::offsetReadCommand(0), 0x8000001000000000ULL);
    QCOMPARE(CpuRegisters::offsetFromReply(0x00000000F3400000ULL), -100);
    QCOMPARE(CpuRegisters::offsetFromReply(0), 0);
}

void TestHelperVerbs::turboRatios_data()
{
    QTest::addColumn<int>("cores");
    QTest::addColumn<int>("ratio");
    QTest::addColumn<bool>("locked");
    QTest::addColumn<QString>("error");
    QTest::addColumn<quint64>("expected");
    const QString none, range = helpererror::outOfRange;
    // 1 ... 8 active cores at 51 51 49 49 47 47 46 46
    const quint64 start = 0x2E2E2F2F31313333ULL;
    QTest::newRow("1 core to 45") << 1 << 45 << false << none << 0x2E2E2F2F3131332DULL;
    QTest::newRow("8 cores to 40") << 8 << 40 << false << none << 0x282E2F2F31313333ULL;
    QTest::newRow("0 cores") << 0 << 45 << false << range << start;
    QTest::newRow("9 cores") << 9 << 45 << false << range << start;
    QTest::newRow("ratio 7") << 3 << 7 << false << range << start;
    QTest::newRow("ratio 81") << 3 << 81 << false << range << start;
    QTest::newRow("locked ratios") << 3 << 40 << true << helpererror::notAccepted << start;
}

void TestHelperVerbs::turboRatios()
{
    QFETCH(int, cores);
    QFETCH(int, ratio);
    QFETCH(bool, locked);
    QFETCH(QString, error);
    QFETCH(quint64, expected);

    FakeSysTree tree;
    tree.putMsr(0, CpuRegisters::kTurboRatioLimit, 0x2E2E2F2F31313333ULL);
    tree.putMsr(1, CpuRegisters::kTurboRatioLimit, 0x2E2E2F2F31313333ULL);
    const MailboxBus bus(tree, locked);
    const CpuRegisters registers(bus);

    int back = 0;
    QCOMPARE(registers.setRatio(cores, ratio, &back).errorName, error);
    QCOMPARE(tree.msr(0, CpuRegisters::kTurboRatioLimit), expected);
    QCOMPARE(tree.msr(1, CpuRegisters::kTurboRatioLimit), expected);
    QVector<int> ratios;
    QVERIFY(registers.readRatios(&ratios).ok());
    QCOMPARE(ratios.size(), 8);
    QCOMPARE(ratios.at(7), int(expected >> 56));
}

void TestHelperVerbs::camera_data()
{
    QTest::addColumn<bool>("hasCamera");
    QTest::addColumn<bool>("startsOn");
    QTest::addColumn<bool>("enable");

    QTest::newRow("switch off") << true << true << false;
    QTest::newRow("switch a switched-off camera on again") << true << false << true;
    QTest::newRow("no camera") << false << true << false;
}

void TestHelperVerbs::camera()
{
    QFETCH(bool, hasCamera);
    QFETCH(bool, startsOn);
    QFETCH(bool, enable);

    FakeSysTree tree;
    tree.putUsbDevice(QStringLiteral("1-2"), false);
    if (hasCamera)
        tree.putUsbDevice(QStringLiteral("1-6"), true, startsOn);
    tree.put(QStringLiteral("sys/bus/usb/devices/usb1/authorized"), "1\n");
    const Camera camera{SysTree(tree.root())};

    const Outcome outcome = camera.set(enable);
    QCOMPARE(outcome.errorName, hasCamera ? QString() : helpererror::notSupported);
    bool state = !enable;
    QCOMPARE(camera.read(&state).ok(), hasCamera);
    if (hasCamera) {
        QCOMPARE(state, enable);
        QCOMPARE(tree.get(QStringLiteral("sys/bus/usb/devices/1-6/authorized")),
                 enable ? QByteArray("1") : QByteArray("0"));
    }
    // Only the camera is switched: the keyboard and the root hub stay as they were.
    QCOMPARE(tree.get(QStringLiteral("sys/bus/usb/devices/1-2/authorized")), QByteArray("1"));
    QCOMPARE(tree.get(QStringLiteral("sys/bus/usb/devices/usb1/authorized")), QByteArray("1"));
}

QTEST_GUILESS_MAIN(TestHelperVerbs)
#include "tst_helperverbs.moc"
