#include "camera.h"
#include "cpuregisters.h"
#include "fakesystree.h"
#include "helperclient.h"
#include "powerlimits.h"
#include "processorlimits.h"

#include <QtTest>

#include <cstring>

#include <optional>

namespace {

const QString pstate = QStringLiteral("sys/devices/system/cpu/intel_pstate/");
const QString cpu0 = QStringLiteral("sys/devices/system/cpu/cpu0/cpufreq/");
const QString cpu1 = QStringLiteral("sys/devices/system/cpu/cpu1/cpufreq/");
const QString rapl = QStringLiteral("sys/class/powercap/intel-rapl:0/constraint_");
const QString none;
const QString &range = helpererror::outOfRange;

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

// A tree setup, a request, the error expected and the files (path=content) afterwards.
struct LimitRow {
    QString setup;
    QString verb;
    int value;
    QString error;
    int readBack;
    QStringList files;
    QString message; // checked when given
};
struct RegisterRow {
    QString setup; // "mailbox", "locked" or "none"
    int value;     // millivolts, or the ratio
    int cores;     // -1 for the voltage offset
    QString error;
    quint64 ratios; // the ratio register afterwards
    QString message = {};
};

} // namespace

Q_DECLARE_METATYPE(LimitRow)
Q_DECLARE_METATYPE(RegisterRow)

class TestHelperVerbs : public QObject {
    Q_OBJECT
private slots:

    void processorLimits_data()
    {
        QTest::addColumn<LimitRow>("row");
        const QString min0 = cpu0 + "scaling_min_freq=", max0 = cpu0 + "scaling_max_freq=";
        const QString minPct = pstate + "min_perf_pct=", maxPct = pstate + "max_perf_pct=";
        QTest::newRow("pstate minimum") << LimitRow{"pstate", "min", 25, none, 25, {minPct + "25"}};
        QTest::newRow("pstate maximum") << LimitRow{"pstate", "max", 80, none, 80, {maxPct + "80"}};
        QTest::newRow("cpufreq maximum, every CPU") << LimitRow{
            "cpufreq", "max", 50, none, 50, {max0 + "1600000", cpu1 + "scaling_max_freq=1600000"}};
        QTest::newRow("cpufreq minimum")
            << LimitRow{"cpufreq", "min", 75, none, 75, {cpu1 + "scaling_min_freq=2400000"}};
        QTest::newRow("cpufreq minimum never below the lowest frequency")
            << LimitRow{"cpufreq", "min", 0, none, 25, {min0 + "800000"}};
        QTest::newRow("cpufreq maximum below the minimum lowers the minimum") << LimitRow{
            "cpufreq-high-min", "max", 50, none, 50, {min0 + "1600000", max0 + "1600000"}};
        QTest::newRow("cpufreq minimum above the maximum stops at it")
            << LimitRow{"cpufreq-low-max", "min", 90, none, 50, {min0 + "1600000"}};
        QTest::newRow("pstate switched off: cpufreq")
            << LimitRow{"pstate-off", "max", 50, none, 50, {max0 + "1600000", maxPct + "100"}};
        QTest::newRow("pstate passive: its own limits still")
            << LimitRow{"pstate-passive", "max", 50, none, 50, {maxPct + "50", max0 + "3200000"}};
        for (int bad : {-1, 101}) {
            const QString why = QStringLiteral("%1% is not a processor limit between 0 and 100%.");
            QTest::addRow("pstate minimum %d", bad)
                << LimitRow{"pstate", "min", bad, range, 0, {minPct + "10"}, why.arg(bad)};
            QTest::addRow("cpufreq maximum %d", bad)
                << LimitRow{"cpufreq", "max", bad, range, 0, {max0 + "3200000"}, why.arg(bad)};
        }
        const QString unsupported = helpererror::notSupported;
        QTest::newRow("no frequency control")
            << LimitRow{"none",
                        "min",
                        50,
                        unsupported,
                        0,
                        {},
                        "This machine has no processor frequency control."};
        QTest::newRow("pstate write refused")
            << LimitRow{"pstate-unwritable",
                        "min",
                        25,
                        helpererror::failed,
                        0,
                        {},
                        "The kernel refused the processor minimum: " +
                            QString::fromLocal8Bit(std::strerror(EISDIR)) + '.'};
        QTest::newRow("no top frequency") << LimitRow{"cpufreq-no-top",
                                                      "max",
                                                      50,
                                                      unsupported,
                                                      0,
                                                      {max0 + "3200000"},
                                                      "The processor's top frequency is unknown."};
    }

    void processorLimits()
    {
        QFETCH(LimitRow, row);
        FakeSysTree tree;
        if (row.setup.startsWith(QLatin1String("pstate")))
            tree.putPstate();
        if (row.setup == QLatin1String("pstate-unwritable")) { // a folder where the file was
            QFile::remove(tree.root() + '/' + pstate + "min_perf_pct");
            QVERIFY(QDir(tree.root()).mkpath(pstate + "min_perf_pct"));
        }
        if (row.setup == QLatin1String("pstate-off") || row.setup == "pstate-passive") {
            tree.put(pstate + "status", row.setup.mid(7).toLatin1() + '\n');
            tree.putCpufreq();
        }
        if (row.setup.startsWith(QLatin1String("cpufreq")))
            tree.putCpufreq();
        if (row.setup == QLatin1String("cpufreq-no-top"))
            tree.put(cpu0 + "cpuinfo_max_freq", "0\n");
        if (row.setup == QLatin1String("cpufreq-high-min"))
            tree.put(cpu0 + "scaling_min_freq", "2400000\n");
        if (row.setup == QLatin1String("cpufreq-low-max"))
            tree.put(cpu0 + "scaling_max_freq", "1600000\n");

        const ProcessorLimits limits{SysTree(tree.root())};
        int back = 0;
        const Outcome outcome = row.verb == QLatin1String("min")
                                    ? limits.setMinimum(row.value, &back)
                                    : limits.setMaximum(row.value, &back);
        QCOMPARE(outcome.errorName, row.error);
        if (!row.message.isEmpty())
            QCOMPARE(outcome.message, row.message);
        if (row.error.isEmpty())
            QCOMPARE(back, row.readBack);
        for (const QString &file : row.files)
            QCOMPARE(tree.get(file.section('=', 0, 0)), file.section('=', 1).toLatin1());
    }

    void powerLimits_data()
    {
        QTest::addColumn<LimitRow>("row");
        const QString power = "0_power_limit_uw=", window = "0_time_window_us=";
        const QString shortTerm = "1_power_limit_uw=", locked = helpererror::locked;
        const auto row = [](const char *name, const char *setup, const char *verb, int value,
                            const QString &error, const QStringList &files,
                            const QString &message = {}) {
            QTest::newRow(name) << LimitRow{setup, verb, value, error, 0, files, message};
        };
        const QString watts =
            QStringLiteral("%1 mW is not a power limit between 1000 and 4096000 mW.");
        const QString seconds =
            QStringLiteral("%1 ms is not a time window between 1 and 128000 ms.");
        const QString firmware =
            QStringLiteral("The firmware has locked the %1; it cannot be changed on this machine.");
        row("turbo power", "", "power", 35500, none, {power + "35500000"});
        row("unlimited", "", "power", 4095875, none, {power + "4095875000"});
        row("turbo time", "", "window", 56000, none, {window + "56000000"});
        row("short-term", "", "short", 60000, none, {shortTerm + "60000000"});
        row("power 999 mW", "", "power", 999, range, {power + "45000000"}, watts.arg(999));
        row("power above 4096 W", "", "power", 4096001, range, {power + "45000000"},
            watts.arg(4096001));
        row("short-term 0", "", "short", 0, range, {shortTerm + "90000000"}, watts.arg(0));
        row("window 0", "", "window", 0, range, {window + "27983872"}, seconds.arg(0));
        row("window above 128 s", "", "window", 128001, range, {window + "27983872"},
            seconds.arg(128001));
        row("locked power", "locked", "power", 35000, locked, {power + "45000000"},
            firmware.arg("long-term power limit"));
        row("locked short-term", "locked", "short", 35000, locked, {shortTerm + "90000000"},
            firmware.arg("short-term power limit"));
        row("locked window", "locked", "window", 8000, locked, {window + "27983872"},
            firmware.arg("power limit's time window"));
        row("no RAPL", "none", "power", 35000, helpererror::notSupported, {},
            "This processor has no package power limits (RAPL).");
    }

    void powerLimits()
    {
        QFETCH(LimitRow, row);
        FakeSysTree tree;
        if (row.setup != QLatin1String("none"))
            tree.putRapl();
        const bool locked = row.setup == QLatin1String("locked");
        tree.putMsr(0, PowerLimits::kPackagePowerLimit, (locked ? 1ULL << 63 : 0) | 0x00DD8168);
        const SysTree sys(tree.root());
        const DevMsrBus bus(sys);
        const PowerLimits limits(sys, &bus);

        const uint value = uint(row.value);
        quint32 back = 0;
        const Outcome outcome = row.verb == QLatin1String("window") ? limits.setWindow(value, &back)
                                : row.verb == QLatin1String("short")
                                    ? limits.setShortTerm(value, &back)
                                    : limits.setLongTerm(value, &back);
        QCOMPARE(outcome.errorName, row.error);
        if (!row.message.isEmpty())
            QCOMPARE(outcome.message, row.message);
        if (row.error.isEmpty())
            QCOMPARE(back, value);
        for (const QString &file : row.files)
            QCOMPARE(tree.get(rapl + file.section('=', 0, 0)), file.section('=', 1).toLatin1());

        quint32 milliwatts = 0, windowMs = 0;
        const Outcome read = limits.read(&milliwatts, &windowMs);
        QCOMPARE(read.errorName,
                 row.setup == QLatin1String("none") ? helpererror::notSupported : none);
        if (read.ok()) {
            const bool set = row.error.isEmpty();
            QCOMPARE(milliwatts, row.verb == QLatin1String("power") && set ? value : 45000u);
            QCOMPARE(windowMs, row.verb == QLatin1String("window") && set ? value : 27983u);
        }
    }

    void registers_data()
    {
        QTest::addColumn<RegisterRow>("row");
        // 1 ... 8 active cores at 51 51 49 49 47 47 46 46
        const quint64 start = 0x2E2E2F2F31313333ULL;
        const QString notAccepted = helpererror::notAccepted;
        QTest::newRow("-100 mV") << RegisterRow{"mailbox", -100, -1, none, start};
        QTest::newRow("-250 mV, the deepest") << RegisterRow{"mailbox", -250, -1, none, start};
        QTest::newRow("0 mV") << RegisterRow{"mailbox", 0, -1, none, start};
        const QString offsets =
            QStringLiteral("%1 mV is not a voltage offset between -250 and 0 mV.");
        QTest::newRow("-251 mV") << RegisterRow{"mailbox", -251,  -1,
                                                range,     start, offsets.arg(-251)};
        QTest::newRow("overvolt +1 mV")
            << RegisterRow{"mailbox", 1, -1, range, start, offsets.arg(1)};
        QTest::newRow("offset locked by firmware")
            << RegisterRow{"locked",
                           -80,
                           -1,
                           notAccepted,
                           start,
                           "The processor kept its voltage offset at 0 mV; undervolting is locked "
                           "on this machine."};
        QTest::newRow("no msr driver")
            << RegisterRow{"none",
                           -80,
                           -1,
                           helpererror::notSupported,
                           0,
                           "The processor's registers cannot be reached here (the msr module is "
                           "not loaded)."};
        QTest::newRow("1 core to 45") << RegisterRow{"mailbox", 45, 1, none, 0x2E2E2F2F3131332DULL};
        QTest::newRow("8 cores to 40")
            << RegisterRow{"mailbox", 40, 8, none, 0x282E2F2F31313333ULL};
        const QString cores = QStringLiteral("%1 is not a count of active cores between 1 and 8.");
        const QString ratio = QStringLiteral("%1 is not a turbo ratio between 8 and 80.");
        QTest::newRow("0 cores") << RegisterRow{"mailbox", 45, 0, range, start, cores.arg(0)};
        QTest::newRow("9 cores") << RegisterRow{"mailbox", 45, 9, range, start, cores.arg(9)};
        QTest::newRow("ratio 7") << RegisterRow{"mailbox", 7, 3, range, start, ratio.arg(7)};
        QTest::newRow("ratio 81") << RegisterRow{"mailbox", 81, 3, range, start, ratio.arg(81)};
        QTest::newRow("locked ratios") << RegisterRow{
            "locked",    40,    3,
            notAccepted, start, "The processor kept its turbo ratio at 49; its ratios are locked."};
    }

    void registers()
    {
        QFETCH(RegisterRow, row);
        FakeSysTree tree;
        if (row.setup != QLatin1String("none")) {
            for (int cpu : {0, 1}) {
                tree.putMsr(cpu, CpuRegisters::kVoltageMailbox, 0);
                tree.putMsr(cpu, CpuRegisters::kTurboRatioLimit, 0x2E2E2F2F31313333ULL);
            }
        }
        const MailboxBus bus(tree, row.setup == QLatin1String("locked"));
        const CpuRegisters registers(bus);
        int back = 1;
        const Outcome outcome = row.cores >= 0 ? registers.setRatio(row.cores, row.value, &back)
                                               : registers.setOffset(row.value, &back);
        QCOMPARE(outcome.errorName, row.error);
        QCOMPARE(outcome.message, row.message);
        if (row.error.isEmpty())
            QCOMPARE(back, row.value);
        QCOMPARE(tree.msr(0, CpuRegisters::kTurboRatioLimit), row.ratios);
        QCOMPARE(tree.msr(1, CpuRegisters::kTurboRatioLimit), row.ratios);
        if (row.setup == QLatin1String("none"))
            return;
        int offset = 1;
        QVERIFY(registers.readOffset(&offset).ok());
        QCOMPARE(offset, row.cores < 0 && row.error.isEmpty() ? row.value : 0);
        QVector<int> ratios;
        QVERIFY(registers.readRatios(&ratios).ok());
        QCOMPARE(ratios.size(), 8);
        QCOMPARE(ratios.at(7), int(row.ratios >> 56));
    }

    void offsetCommands()
    {
        // -100 mV on the core and the cache, as the mailbox expects them.
        QCOMPARE(CpuRegisters::offsetWriteCommand(0, -100), 0x80000011F3400000ULL);
        QCOMPARE(CpuRegisters::offsetWriteCommand(2, -100), 0x80000211F3400000ULL);
        QCOMPARE(CpuRegisters::offsetReadCommand(0), 0x8000001000000000ULL);
        QCOMPARE(CpuRegisters::offsetFromReply(0x00000000F3400000ULL), -100);
    }

    // Switch off, a switched-off camera on again, and no camera: only the camera is touched.
    void camera()
    {
        for (const int setup : {0, 1, 2}) {
            const bool hasCamera = setup != 2, enable = setup == 1;
            FakeSysTree tree;
            tree.putUsbDevice(QStringLiteral("1-2"), false);
            if (hasCamera)
                tree.putUsbDevice(QStringLiteral("1-6"), true, !enable);
            tree.put(QStringLiteral("sys/bus/usb/devices/usb1/authorized"), "1\n");
            const Camera camera{SysTree(tree.root())};
            QCOMPARE(camera.set(enable).errorName, hasCamera ? none : helpererror::notSupported);
            bool state = !enable;
            QCOMPARE(camera.read(&state).ok(), hasCamera);
            if (hasCamera) {
                QCOMPARE(state, enable);
                QCOMPARE(tree.get(QStringLiteral("sys/bus/usb/devices/1-6/authorized")),
                         QByteArray(enable ? "1" : "0"));
            }
            QCOMPARE(tree.get(QStringLiteral("sys/bus/usb/devices/1-2/authorized")),
                     QByteArray("1"));
            QCOMPARE(tree.get(QStringLiteral("sys/bus/usb/devices/usb1/authorized")),
                     QByteArray("1"));
        }
    }

    // Without a system bus a call to the helper could never be answered; a power mode applied
    // while the window is built waits for that answer, so it must come at once, as a refusal.
    void aMissingBusRefusesAtOnce()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/varnel-no-system-bus");
        HelperClient helper([] { return true; });
        std::optional<QDBusMessage> reply;
        helper.call(QStringLiteral("SetTurboPower"), {35000u},
                    [&](const QDBusMessage &message) { reply = message; });
        QVERIFY(!reply); // answered like a bus call, after the caller has returned
        QTRY_VERIFY(reply.has_value());
        QCOMPARE(reply->type(), QDBusMessage::ErrorMessage);
        QCOMPARE(helper.takeRefusal(), QStringLiteral("The system bus is not running."));
    }

    void refusalsAreTold_data()
    {
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("told");
        const QString missing =
            QStringLiteral("Needs the system helper (varnel-helper), which is not installed.");
        for (const char *error : {"org.freedesktop.DBus.Error.ServiceUnknown",
                                  "org.freedesktop.DBus.Error.Spawn.ExecFailed",
                                  "org.freedesktop.DBus.Error.Spawn.ChildExited"})
            QTest::newRow(error) << error << missing;
        QTest::newRow("not authorised") << "org.varnel.Helper.Error.NotAuthorized"
                                        << "Not allowed: the reason";
        QTest::newRow("no reply") << "org.freedesktop.DBus.Error.NoReply"
                                  << "The system helper did not answer.";
        QTest::newRow("the helper's own") << "org.varnel.Helper.Error.Failed"
                                          << "the reason";
    }

    void refusalsAreTold()
    {
        QFETCH(QString, error);
        QTEST(HelperClient::describe(QDBusMessage::createError(error, "the reason")), "told");
    }
};

QTEST_GUILESS_MAIN(TestHelperVerbs)
#include "tst_helperverbs.moc"
