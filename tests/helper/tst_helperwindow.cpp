#include "cputuning.h"
#include "fakesystree.h"
#include "helperclient.h"
#include "linuxcommands.h"
#include "outcome.h"
#include "polkitauthority.h"
#include "powercommands.h"
#include "privatesystembus.h"
#include "rfkillswitch.h"
#include "systemhelper.h"
#include "testwindow.h"
#include "tuningcommands.h"
#include "xtuclient.h"

#include <QSignalSpy>
#include <QtTest>

namespace {
const QString longTermPower =
    QStringLiteral("sys/class/powercap/intel-rapl:0/constraint_0_power_limit_uw");
const QString window =
    QStringLiteral("sys/class/powercap/intel-rapl:0/constraint_0_time_window_us");
const QString pstate = QStringLiteral("sys/devices/system/cpu/intel_pstate/");
const QString camera = QStringLiteral("sys/bus/usb/devices/1-6/authorized");

QDBusMessage call(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.varnel.Helper"), QStringLiteral("/org/varnel/Helper"),
        QStringLiteral("org.varnel.Helper"), method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message, QDBus::Block, 20000);
}

// The real window over the Linux command table; its read chains' ends are counted.
std::unique_ptr<QSignalSpy> startWindow(TestWindow &t, std::function<bool()> available)
{
    auto helper = std::make_shared<HelperClient>(std::move(available));
    auto table = std::make_shared<CommandTable>();
    addTuningCommands(*table, helper);
    addProcessorLimitCommands(*table, helper);
    t.window.reset(); // gone before the next one reads the settings
    Platform bundle = t.fake.bundle();
    bundle.commands = std::make_shared<LinuxCommandRunner>(table);
    bundle.privileged = helper;
    t.window = std::make_unique<MainWindow>(bundle);
    return std::make_unique<QSignalSpy>(t.window->cpuTuning(), &CpuTuning::readChainFinished);
}
} // namespace

// varnel-helper as the window reaches it, over a private system bus and a fake tree: started by
// the bus, asking polkit on every call, carrying out the tuning client's chains.
class TestHelperWindow : public QObject {
    Q_OBJECT

    FakeSysTree m_tree;
    PrivateSystemBus m_bus;

private slots:
    void initTestCase() { QVERIFY(m_bus.start(m_tree.root())); }

    void init()
    {
        m_tree.putPstate();
        m_tree.putRapl();
        m_tree.putMsr(0, 0x1AD, 0x2E2E2F2F31313333ULL);
        m_tree.putUsbDevice(QStringLiteral("1-6"), true);
        m_bus.allow({helperaction::read, helperaction::tuning});
    }

    // The camera's switch as the window throws it: through the helper, answered with why not.
    void cameraSwitchAsksTheHelper()
    {
        LinuxDeviceSwitches switches(QStringLiteral("/dev/null"),
                                     std::make_shared<HelperClient>([] { return true; }));
        QStringList answers;
        switches.onAnswered([&](int id, int value, const QString &why) {
            answers << QStringLiteral("%1 %2 %3").arg(id).arg(value).arg(why.isEmpty());
        });
        switches.setSwitch(1, 0);
        QTRY_COMPARE_WITH_TIMEOUT(answers, QStringList{"1 0 0"}, 20000);
        QCOMPARE(m_tree.get(camera), QByteArray("1"));
        m_bus.allow({helperaction::camera});
        switches.setSwitch(1, 0);
        QTRY_COMPARE_WITH_TIMEOUT(answers, QStringList({"1 0 0", "1 0 1"}), 20000);
        QCOMPARE(m_tree.get(camera), QByteArray("0"));
    }

    // Without the helper the tab cannot manage the processor; with it, the start-up reads and an
    // apply writes, unless polkit says no.
    void tuningTabWithoutAndWithTheHelper()
    {
        TestWindow t;
        t.setGeneral("DontManageCPU", false);
        startWindow(t, [] { return false; });
        QVERIFY(!t.ui().checkBox_DontManageCPU->isEnabled());
        QCOMPARE(
            t.ui().checkBox_DontManageCPU->toolTip(),
            QStringLiteral("Needs the system helper (varnel-helper), which is not installed."));

        t.setGeneral("DontManageCPU", true);
        auto chainEnds = startWindow(t, systemHelperAvailable);
        QTRY_VERIFY_WITH_TIMEOUT(chainEnds->count() >= 1, 20000);
        Ui::MainWindow &ui = t.ui();
        QCOMPARE(ui.Label_TurboPowerValue->text(), QStringLiteral("45W"));
        QCOMPARE(ui.Slider_TurboBoost->value(), 360);
        QCOMPARE(ui.Slider_TurboTime->value(), 28);
        QCOMPARE(ui.Core1Spin->value(), 51);
        QVERIFY(ui.checkBox_DontManageCPU->isEnabled());
        // A plain file answers no mailbox: the offset cannot be read here, and the tab says so.
        QCOMPARE(ui.Label_UnderVolt_Value->text(), QStringLiteral("-000mV"));
        QVERIFY(ui.frame_2->toolTip().contains(QLatin1String("voltage offset")));

        ui.Slider_TurboBoost->setValue(284); // 35.5 W
        ui.Slider_TurboTime->setValue(56);
        ui.Core1Spin->setValue(45);
        ui.undervolt_slider->setValue(50);
        ui.Button_ApplyValues->click();
        QTRY_VERIFY_WITH_TIMEOUT(chainEnds->count() >= 2, 20000);
        // The offset's write reached the helper, which found no mailbox either.
        QCOMPARE(ui.frame_2->toolTip(),
                 QStringLiteral("This processor does not report a voltage offset."));
        QCOMPARE(m_tree.get(longTermPower), QByteArray("35500000"));
        QCOMPARE(m_tree.get(window), QByteArray("56000000"));
        QCOMPARE(m_tree.msr(0, 0x1AD), 0x2E2E2F2F3131332DULL);
        // What was read back is what the tab shows.
        QCOMPARE(ui.Label_TurboPowerValue->text(), QStringLiteral("35.5W"));
        QCOMPARE(t.window->cpuTuning()->readTurboTime, 56);

        // Refused: nothing changes, and the tab says why.
        m_bus.allow({helperaction::read});
        ui.Slider_TurboBoost->setValue(240);
        ui.Button_ApplyValues->click();
        QTRY_VERIFY_WITH_TIMEOUT(chainEnds->count() >= 3, 20000);
        QCOMPARE(m_tree.get(longTermPower), QByteArray("35500000"));
        QCOMPARE(ui.Label_TurboPowerValue->text(), QStringLiteral("35.5W"));
        QVERIFY2(ui.frame_2->toolTip().contains(QLatin1String("Not allowed")),
                 qPrintable(ui.frame_2->toolTip()));
    }

    // Lines with nothing to do on Linux are still the table's, so none runs as a program.
    void tableTakesTheLinesItIgnores()
    {
        CommandTable table;
        auto helper = std::make_shared<HelperClient>([] { return false; });
        addTuningCommands(table, helper);
        addProcessorLimitCommands(table, helper);
        for (const QString &line :
             {xtu::serviceStart, xtu::serviceStop, xtu::driverInstaller,
              powercmd::processorMinimum(30).dc, powercmd::processorMaximum(70).dc})
            QVERIFY2(table.knows(line), qPrintable(line));
    }

    // The rows for 5 ... 8 active cores exist only on processors with that many cores.
    void coresFromCpuinfo_data()
    {
        QTest::addColumn<QString>("cpuinfo");
        QTest::addColumn<int>("cores");
        QTest::newRow("four") << "processor\t: 0\ncpu cores\t: 4\nsiblings\t: 8\n" << 4;
        QTest::newRow("six, no tab") << "cpu cores : 6" << 6;
        QTest::newRow("more than eight") << "cpu cores\t: 16\n" << 8;
        QTest::newRow("zero") << "cpu cores\t: 0\n" << 8;
        QTest::newRow("not at a line's start") << "x cpu cores\t: 4\n" << 8;
        QTest::newRow("absent") << "" << 8;
    }

    void coresFromCpuinfo()
    {
        QFETCH(QString, cpuinfo);
        QTEST(tuningtable::coreCount(cpuinfo), "cores");
    }

    void powerModeLimitsReachTheHelper()
    {
        m_bus.allow({helperaction::read, helperaction::processorLimits});
        TestWindow t;
        t.setGeneral("DontManageCPU", true);
        startWindow(t, systemHelperAvailable);
        Ui::MainWindow &ui = t.ui();
        auto apply = [&](const char *slot) {
            return QMetaObject::invokeMethod(t.window.get(), slot);
        };
        ui.silent_cpu_min->setValue(30);
        ui.silent_cpu_max->setValue(70);
        QVERIFY(apply("ApplyCpuMin") && apply("ApplyCpuMax"));
        QCOMPARE(m_tree.get(pstate + QStringLiteral("min_perf_pct")), QByteArray("30"));
        QCOMPARE(m_tree.get(pstate + QStringLiteral("max_perf_pct")), QByteArray("70"));
        QVERIFY(ui.silent_cpu_max->toolTip().isEmpty());

        // Refused: the mode keeps its setting, and the slider says it is not in force.
        m_bus.allow({helperaction::read});
        ui.silent_cpu_max->setValue(50);
        QVERIFY(apply("ApplyCpuMax"));
        QCOMPARE(m_tree.get(pstate + QStringLiteral("max_perf_pct")), QByteArray("70"));
        QVERIFY2(ui.silent_cpu_max->toolTip().startsWith(QLatin1String("Not applied: Not allowed")),
                 qPrintable(ui.silent_cpu_max->toolTip()));
        QCOMPARE(ui.Cpu_Maximum_Label->toolTip(), ui.silent_cpu_max->toolTip());
        m_bus.allow({helperaction::read, helperaction::processorLimits});
        QVERIFY(apply("ApplyCpuMax"));
        QVERIFY(ui.silent_cpu_max->toolTip().isEmpty());
    }

    // Each verb asks for its own action, whatever else is allowed. Last: without an agent,
    // polkit keeps asking for one from then on.
    void refusals()
    {
        m_bus.allow({helperaction::processorLimits});
        QCOMPARE(call("SetTurboPower", {35000u}).errorName(), helpererror::notAuthorized);
        m_bus.allow({helperaction::tuning});
        QCOMPARE(call("ReadPowerLimits").errorName(), helpererror::notAuthorized);
        QCOMPARE(call("SetTurboPower", {5000000u}).errorName(), helpererror::outOfRange);
        m_bus.withoutAgent();
        const QDBusMessage reply = call("SetTurboPower", {40000u});
        QCOMPARE(reply.errorName(), helpererror::notAuthorized);
        QVERIFY(reply.errorMessage().contains(QLatin1String("no authentication agent")));
        QCOMPARE(m_tree.get(longTermPower), QByteArray("45000000"));
    }
};

QTEST_MAIN(TestHelperWindow)
#include "tst_helperwindow.moc"
