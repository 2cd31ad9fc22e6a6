#include "cputuning.h"
#include "fakeplatform.h"
#include "fakesystree.h"
#include "helperclient.h"
#include "linuxcommands.h"
#include "mainwindow.h"
#include "polkitauthority.h"
#include "privatesystembus.h"
#include "systemhelper.h"
#include "testfolder.h"
#include "tuningcommands.h"
#include "ui_mainwindow.h"

#include <QSignalSpy>
#include <QtTest>

namespace {
const QString longTermPower =
    QStringLiteral("sys/class/powercap/intel-rapl:0/constraint_0_power_limit_uw");
const QString window =
    QStringLiteral("sys/class/powercap/intel-rapl:0/constraint_0_time_window_us");
} // namespace

// The real window on Linux, its tuning client's chains carried out by varnel-helper over a
// private system bus and a fake tree.
class TestHelperWindow : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void startupShowsTheMachinesLimits();
    void applyWritesThroughTheHelper();
    void refusalIsShown();
    void missingHelperDisablesManageCpu();
    void powerModeLimitsReachTheHelper();

private:
    void startWindow(std::function<bool()> available);
    bool waitForReadChains(int count);

    FakeSysTree m_tree;
    PrivateSystemBus m_bus;
    std::unique_ptr<TestFolder> m_folder;
    std::unique_ptr<FakePlatform> m_fake;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<QSignalSpy> m_chainEnds;
};

void TestHelperWindow::initTestCase()
{
    QVERIFY(m_bus.start(m_tree.root()));
}

void TestHelperWindow::init()
{
    m_tree.putRapl();
    m_tree.putMsr(0, 0x1AD, 0x2E2E2F2F31313333ULL);
    m_folder = std::make_unique<TestFolder>();
    m_folder->setIni(QStringLiteral("settings/varnel.ini"), QStringLiteral("DontManageCPU"), true);
    m_bus.allow({helperaction::read, helperaction::tuning});
}

void TestHelperWindow::cleanup()
{
    m_chainEnds.reset();
    m_window.reset();
    m_fake.reset();
    m_folder.reset();
}

void TestHelperWindow::startWindow(std::function<bool()> available)
{
    auto helper = std::make_shared<HelperClient>(std::move(available));
    auto table = std::make_shared<CommandTable>();
    addTuningCommands(*table, helper);
    addProcessorLimitCommands(*table, helper);
    m_fake = std::make_unique<FakePlatform>();
    Platform bundle = m_fake->bundle();
    bundle.commands = std::make_shared<LinuxCommandRunner>(table);
    bundle.privileged = helper;
    m_window = std::make_unique<MainWindow>(bundle);
    m_chainEnds =
        std::make_unique<QSignalSpy>(m_window->cpuTuning(), &CpuTuning::readChainFinished);
}

bool TestHelperWindow::waitForReadChains(int count)
{
    return QTest::qWaitFor([&] { return m_chainEnds->count() >= count; }, 20000);
}

void TestHelperWindow::startupShowsTheMachinesLimits()
{
    startWindow(systemHelperAvailable);
    QVERIFY(waitForReadChains(1));
    Ui::MainWindow *ui = m_window->form();
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("45W"));
    QCOMPARE(ui->Slider_TurboBoost->value(), 360);
    QCOMPARE(ui->Slider_TurboTime->value(), 28);
    QCOMPARE(ui->Core1Spin->value(), 51);
    QVERIFY(ui->checkBox_DontManageCPU->isEnabled());
    // A plain file answers no mailbox: the offset cannot be read here, and the tab says so.
    QCOMPARE(ui->Label_UnderVolt_Value->text(), QStringLiteral("-000mV"));
    QVERIFY(ui->frame_2->toolTip().contains(QLatin1String("voltage offset")));
}

void TestHelperWindow::applyWritesThroughTheHelper()
{
    startWindow(systemHelperAvailable);
    QVERIFY(waitForReadChains(1));
    Ui::MainWindow *ui = m_window->form();
    ui->Slider_TurboBoost->setValue(284); // 35.5 W
    ui->Slider_TurboTime->setValue(56);
    ui->Core1Spin->setValue(45);
    ui->Button_ApplyValues->click();
    QVERIFY(waitForReadChains(2));

    QCOMPARE(m_tree.get(longTermPower), QByteArray("35500000"));
    QCOMPARE(m_tree.get(window), QByteArray("56000000"));
    QCOMPARE(m_tree.msr(0, 0x1AD), 0x2E2E2F2F3131332DULL);
    // What was read back is what the tab shows.
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("35.5W"));
    QCOMPARE(m_window->cpuTuning()->readTurboTime, 56);
}

void TestHelperWindow::refusalIsShown()
{
    m_bus.allow({helperaction::read});
    startWindow(systemHelperAvailable);
    QVERIFY(waitForReadChains(1));
    Ui::MainWindow *ui = m_window->form();
    ui->Slider_TurboBoost->setValue(240);
    ui->Button_ApplyValues->click();
    QVERIFY(waitForReadChains(2));

    QCOMPARE(m_tree.get(longTermPower), QByteArray("45000000"));
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("45W"));
    QVERIFY2(ui->frame_2->toolTip().contains(QLatin1String("Not allowed")),
             qPrintable(ui->frame_2->toolTip()));
}

void TestHelperWindow::missingHelperDisablesManageCpu()
{
    m_folder->setIni(QStringLiteral("settings/varnel.ini"), QStringLiteral("DontManageCPU"), false);
    startWindow([] { return false; });
    Ui::MainWindow *ui = m_window->form();
    QVERIFY(!ui->checkBox_DontManageCPU->isEnabled());
    QVERIFY(ui->checkBox_DontManageCPU->toolTip().contains(QLatin1String("varnel-helper")));
}

void TestHelperWindow::powerModeLimitsReachTheHelper()
{
    m_tree.putPstate();
    m_bus.allow({helperaction::read, helperaction::processorLimits});
    startWindow(systemHelperAvailable);
    Ui::MainWindow *ui = m_window->form();
    ui->silent_cpu_min->setValue(30);
    ui->silent_cpu_max->setValue(70);
    QVERIFY(QMetaObject::invokeMethod(m_window.get(), "ApplyCpuMin"));
    QVERIFY(QMetaObject::invokeMethod(m_window.get(), "ApplyCpuMax"));
    const QString pstate = QStringLiteral("sys/devices/system/cpu/intel_pstate/");
    QCOMPARE(m_tree.get(pstate + QStringLiteral("min_perf_pct")), QByteArray("30"));
    QCOMPARE(m_tree.get(pstate + QStringLiteral("max_perf_pct")), QByteArray("70"));
    QVERIFY(ui->silent_cpu_max->toolTip().isEmpty());

    // Refused: the mode keeps its setting, and the slider says it is not in force.
    m_bus.allow({helperaction::read});
    ui->silent_cpu_max->setValue(50);
    QVERIFY(QMetaObject::invokeMethod(m_window.get(), "ApplyCpuMax"));
    QCOMPARE(m_tree.get(pstate + QStringLiteral("max_perf_pct")), QByteArray("70"));
    QVERIFY2(ui->silent_cpu_max->toolTip().startsWith(QLatin1String("Not applied: Not allowed")),
             qPrintable(ui->silent_cpu_max->toolTip()));
    QCOMPARE(ui->Cpu_Maximum_Label->toolTip(), ui->silent_cpu_max->toolTip());
    m_bus.allow({helperaction::read, helperaction::processorLimits});
    QVERIFY(QMetaObject::invokeMethod(m_window.get(), "ApplyCpuMax"));
    QVERIFY(ui->silent_cpu_max->toolTip().isEmpty());
}

QTEST_MAIN(TestHelperWindow)
#include "tst_helperwindow.moc"
