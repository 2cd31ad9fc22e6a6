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

// The tree (pstate, cpufreq, rapl, rapl-locked or path=content), a request, the error expected,
// the value read back and the files (path=content) afterwards.
struct LimitRow {
    QStringList setup;
    QString verb;
    int value;
    QString error;
    int readBack;
    QStringList files;
    QString message;
};
void limitRow(const char *name, const QStringList &setup, const char *verb, int value,
              const QString &error, int readBack, const QStringList &files,
              const QString &message = {})
{
    QTest::newRow(name) << LimitRow{setup, verb, value, error, readBack, files, message};
}

struct RegisterRow {
    QString setup; // "mailbox", "locked" or "none"
    int value;     // millivolts, or the ratio
    int cores;     // -1 for the voltage offset
    QString error;
    quint64 ratios; // the ratio register afterwards
    QString message;
};
void registerRow(const char *name, const char *setup, int value, int cores, const QString &error,
                 quint64 ratios, const QString &message = {})
{
    QTest::newRow(name) << RegisterRow{setup, value, cores, error, ratios, message};
}

} // namespace

Q_DECLARE_METATYPE(LimitRow)
Q_DECLARE_METATYPE(RegisterRow)

class TestHelperVerbs : public QObject {
    Q_OBJECT
private slots:

    void limits_data()
    {
        QTest::addColumn<LimitRow>("row");
        const QString min0 = cpu0 + "scaling_min_freq=", max0 = cpu0 + "scaling_max_freq=";
        const QString minPct = pstate + "min_perf_pct=", maxPct = pstate + "max_perf_pct=";
        const QStringList ps{"pstate"}, freq{"cpufreq"};
        limitRow("pstate minimum", ps, "min", 25, none, 25, {minPct + "25"});
        limitRow("pstate maximum", ps, "max", 80, none, 80, {maxPct + "80"});
        limitRow("cpufreq maximum, every CPU", freq, "max", 50, none, 50,
                 {max0 + "1600000", cpu1 + "scaling_max_freq=1600000"});
        limitRow("cpufreq minimum", freq, "min", 75, none, 75, {cpu1 + "scaling_min_freq=2400000"});
        limitRow("cpufreq minimum never below the lowest frequency", freq, "min", 0, none, 25,
                 {min0 + "800000"});
        limitRow("cpufreq maximum below the minimum lowers the minimum",
                 {"cpufreq", min0 + "2400000"}, "max", 50, none, 50,
                 {min0 + "1600000", max0 + "1600000"});
        limitRow("cpufreq minimum above the maximum stops at it", {"cpufreq", max0 + "1600000"},
                 "min", 90, none, 50, {min0 + "1600000"});
        limitRow("pstate switched off: cpufreq", {"pstate", "cpufreq", pstate + "status=off"},
                 "max", 50, none, 50, {max0 + "1600000", maxPct + "100"});
        limitRow("pstate passive: its own limits still",
                 {"pstate", "cpufreq", pstate + "status=passive"}, "max", 50, none, 50,
                 {maxPct + "50", max0 + "3200000"});
        for (int bad : {-1, 101}) {
            const QString why = QStringLiteral("%1% is not a processor limit between 0 and 100%.");
            QTest::addRow("pstate minimum %d", bad)
                << LimitRow{ps, "min", bad, range, 0, {minPct + "10"}, why.arg(bad)};
            QTest::addRow("cpufreq maximum %d", bad)
                << LimitRow{freq, "max", bad, range, 0, {max0 + "3200000"}, why.arg(bad)};
        }
        limitRow("no frequency control", {}, "min", 50, helpererror::notSupported, 0, {},
                 "This machine has no processor frequency control.");
        // A folder where the file was.
        limitRow("pstate write refused",
                 {pstate + "status=active", maxPct + "100", minPct.chopped(1) + "/x="}, "min", 25,
                 helpererror::failed, 0, {},
                 "The kernel refused the processor minimum: " +
                     QString::fromLocal8Bit(std::strerror(EISDIR)) + '.');
        limitRow("no top frequency", {"cpufreq", cpu0 + "cpuinfo_max_freq=0"}, "max", 50,
                 helpererror::notSupported, 0, {max0 + "3200000"},
                 "The processor's top frequency is unknown.");

        const QString power = rapl + "0_power_limit_uw=", window = rapl + "0_time_window_us=";
        const QString shortTerm = rapl + "1_power_limit_uw=", locked = helpererror::locked;
        const QStringList on{"rapl"}, lock{"rapl-locked"};
        const QString watts =
            QStringLiteral("%1 mW is not a power limit between 1000 and 4096000 mW.");
        const QString seconds =
            QStringLiteral("%1 ms is not a time window between 1 and 128000 ms.");
        const QString firmware =
            QStringLiteral("The firmware has locked the %1; it cannot be changed on this machine.");
        limitRow("turbo power", on, "power", 35500, none, 35500, {power + "35500000"});
        limitRow("unlimited", on, "power", 4095875, none, 4095875, {power + "4095875000"});
        limitRow("turbo time", on, "window", 56000, none, 56000, {window + "56000000"});
        limitRow("short-term", on, "short", 60000, none, 60000, {shortTerm + "60000000"});
        limitRow("power 999 mW", on, "power", 999, range, 0, {power + "45000000"}, watts.arg(999));
        limitRow("power above 4096 W", on, "power", 4096001, range, 0, {power + "45000000"},
                 watts.arg(4096001));
        limitRow("short-term 0", on, "short", 0, range, 0, {shortTerm + "90000000"}, watts.arg(0));
        limitRow("window 0", on, "window", 0, range, 0, {window + "27983872"}, seconds.arg(0));
        limitRow("window above 128 s", on, "window", 128001, range, 0, {window + "27983872"},
                 seconds.arg(128001));
        limitRow("locked power", lock, "power", 35000, locked, 0, {power + "45000000"},
                 firmware.arg("long-term power limit"));
        limitRow("locked short-term", lock, "short", 35000, locked, 0, {shortTerm + "90000000"},
                 firmware.arg("short-term power limit"));
        limitRow("locked window", lock, "window", 8000, locked, 0, {window + "27983872"},
                 firmware.arg("power limit's time window"));
        limitRow("no RAPL", {}, "power", 35000, helpererror::notSupported, 0, {},
                 "This processor has no package power limits (RAPL).");
    }

    void limits()
    {
        QFETCH(LimitRow, row);
        FakeSysTree tree;
        for (const QString &step : row.setup) {
            if (step == QLatin1String("pstate"))
                tree.putPstate();
            else if (step == QLatin1String("cpufreq"))
                tree.putCpufreq();
            else if (step.startsWith(QLatin1String("rapl")))
                tree.putRapl();
            else
                tree.put(step.section('=', 0, 0), step.section('=', 1).toLatin1() + '\n');
        }
        const bool locked = row.setup.contains(QLatin1String("rapl-locked"));
        tree.putMsr(0, PowerLimits::kPackagePowerLimit, (locked ? 1ULL << 63 : 0) | 0x00DD8168);
        const SysTree sys(tree.root());
        const DevMsrBus bus(sys);
        const ProcessorLimits processor{sys};
        const PowerLimits power(sys, &bus);

        const uint value = uint(row.value);
        int back = 0;
        quint32 milliBack = 0; // what the power verbs read back
        const bool processorVerb =
            row.verb == QLatin1String("min") || row.verb == QLatin1String("max");
        const Outcome outcome =
            row.verb == QLatin1String("min")      ? processor.setMinimum(row.value, &back)
            : row.verb == QLatin1String("max")    ? processor.setMaximum(row.value, &back)
            : row.verb == QLatin1String("window") ? power.setWindow(value, &milliBack)
            : row.verb == QLatin1String("short")  ? power.setShortTerm(value, &milliBack)
                                                  : power.setLongTerm(value, &milliBack);
        QCOMPARE(outcome.errorName, row.error);
        QCOMPARE(outcome.message, row.message);
        QCOMPARE(processorVerb ? back : int(milliBack), row.readBack);
        for (const QString &file : row.files)
            QCOMPARE(tree.get(file.section('=', 0, 0)), file.section('=', 1).toLatin1());
        if (processorVerb)
            return;

        quint32 milliwatts = 0, windowMs = 0;
        const Outcome read = power.read(&milliwatts, &windowMs);
        QCOMPARE(read.errorName, row.setup.isEmpty() ? helpererror::notSupported : none);
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
        const QString offsets =
            QStringLiteral("%1 mV is not a voltage offset between -250 and 0 mV.");
        registerRow("-100 mV", "mailbox", -100, -1, none, start);
        registerRow("-250 mV, the deepest", "mailbox", -250, -1, none, start);
        registerRow("0 mV", "mailbox", 0, -1, none, start);
        registerRow("-251 mV", "mailbox", -251, -1, range, start, offsets.arg(-251));
        registerRow("overvolt +1 mV", "mailbox", 1, -1, range, start, offsets.arg(1));
        registerRow("offset locked by firmware", "locked", -80, -1, notAccepted, start,
                    "The processor kept its voltage offset at 0 mV; undervolting is locked on "
                    "this machine.");
        registerRow("no msr driver", "none", -80, -1, helpererror::notSupported, 0,
                    "The processor's registers cannot be reached here (the msr module is not "
                    "loaded).");
        registerRow("1 core to 45", "mailbox", 45, 1, none, 0x2E2E2F2F3131332DULL);
        registerRow("8 cores to 40", "mailbox", 40, 8, none, 0x282E2F2F31313333ULL);
        const QString cores = QStringLiteral("%1 is not a count of active cores between 1 and 8.");
        const QString ratio = QStringLiteral("%1 is not a turbo ratio between 8 and 80.");
        registerRow("0 cores", "mailbox", 45, 0, range, start, cores.arg(0));
        registerRow("9 cores", "mailbox", 45, 9, range, start, cores.arg(9));
        registerRow("ratio 7", "mailbox", 7, 3, range, start, ratio.arg(7));
        registerRow("ratio 81", "mailbox", 81, 3, range, start, ratio.arg(81));
        registerRow("locked ratios", "locked", 40, 3, notAccepted, start,
                    "The processor kept its turbo ratio at 49; its ratios are locked.");
    }

    void registers()
    {
        QFETCH(RegisterRow, row);
        FakeSysTree tree;
        for (int cpu : {0, 1}) {
            if (row.setup != QLatin1String("none"))
                tree.putMsr(cpu, CpuRegisters::kTurboRatioLimit, 0x2E2E2F2F31313333ULL);
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
            QCOMPARE(state, hasCamera ? enable : !enable);
            const auto authorized = [&](const char *device) {
                return tree.get(QStringLiteral("sys/bus/usb/devices/%1/authorized").arg(device));
            };
            const QByteArray cameraOn = hasCamera ? (enable ? "1" : "0") : "";
            QCOMPARE(authorized("1-2") + authorized("usb1") + authorized("1-6"), "11" + cameraOn);
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
