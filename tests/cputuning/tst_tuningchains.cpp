// The write and read chains end to end: the real window runs the fake tuning client through real
// child processes, and the tab shows what the client holds.
#include "clientrig.h"

namespace {

const QStringList kAllReads = {"-t -id 34", "-t -id 48", "-t -id 66", "-t -id 29",
                               "-t -id 30", "-t -id 31", "-t -id 32", "-t -id 42",
                               "-t -id 43", "-t -id 96", "-t -id 97"};

// Whether the control itself was switched on, whatever its tab: the power-mode tab is off when
// power modes are.
bool switchedOn(const QWidget *widget)
{
    return !widget->testAttribute(Qt::WA_ForceDisabled);
}

QList<QSpinBox *> coreSpins(Ui::MainWindow *ui)
{
    return {ui->Core1Spin, ui->Core2Spin, ui->Core3Spin, ui->Core4Spin,
            ui->Core5Spin, ui->Core6Spin, ui->Core7Spin, ui->Core8Spin};
}

} // namespace

class TuningChainsTest : public QObject {
    Q_OBJECT

private slots:
    void startupReadShowsTheClientsValues();
    void applyWithNothingChangedSkipsEveryWriteAndReadsBack();
    void applyWritesExactlyTheChangedValuesInOrder();
    void undervoltAtOneIsWrittenAsNone();
    void unlimitedPositionWritesTheUnlimitedFigure();
    void decimalCommaClientGetsCommas();
    void fourCoreProcessorHidesAndSkipsCoresFiveToEight();
    void manageCpuOffSkipsEveryCoreAsDisabled();
    void stalledClientStallsOnlyItsChain();
    void silentClientChangesNothing();
    void rowSplitAcrossTwoReadsChangesNothing();
    void reapplyRunsAtMostOncePerRun();
    void reapplyRestoresOnlyWhatWasSavedAndMakesSense();
    void valuesNeverReadNorSetAreNeitherWrittenNorSaved_data();
    void valuesNeverReadNorSetAreNeitherWrittenNorSaved();
    void stopXtuServicesAfterEachRead();
    void manageCpuSwitchedOn();
    void checkBoxesAreSaved();
};

void TuningChainsTest::startupReadShowsTheClientsValues()
{
    ClientRig rig;
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    Ui::MainWindow *ui = rig.ui();
    CpuTuning *cpu = rig.cpu();

    QCOMPARE(rig.reads(), kAllReads);
    QVERIFY(rig.writes().isEmpty());
    const int service = rig.fake.log->indexOf("process: " + xtu::serviceStart);
    QVERIFY(service >= 0);
    QVERIFY(service <
            rig.fake.log->indexOf(QStringLiteral("process: %1 -t -id 34").arg(xtu::clientProgram)));

    QCOMPARE(ui->undervolt_slider->value(), 0);
    QCOMPARE(ui->Label_UnderVolt_Value->text(), QStringLiteral("0mV"));
    QCOMPARE(ui->Slider_TurboBoost->value(), 360);
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("45W"));
    QCOMPARE(ui->Slider_TurboTime->maximum(), 128);
    QCOMPARE(ui->Slider_TurboTime->minimum(), 0);
    QCOMPARE(ui->Slider_TurboTime->value(), 28);
    QCOMPARE(ui->Label_BoostTimeValue->text(), QStringLiteral("28Sec"));
    const int ratios[] = {51, 51, 49, 49, 47, 47, 46, 46};
    for (int n = 1; n <= 8; ++n) {
        QSpinBox *spin = coreSpins(ui)[n - 1];
        QCOMPARE(spin->value(), ratios[n - 1]);
        QCOMPARE(spin->minimum(), 8);
        QCOMPARE(spin->maximum(), 80);
        QCOMPARE(cpu->readCoreRatio(n), ratios[n - 1]);
    }
    QCOMPARE(cpu->readUndervolt, QStringLiteral("0"));
    QCOMPARE(cpu->readTurboPower, QStringLiteral("45"));
    QCOMPARE(cpu->readTurboTime, 28);
    QVERIFY(!cpu->decimalComma);
    QVERIFY(!cpu->coreRowsMissing);
    QVERIFY(!ui->Button_ApplyValues->isEnabled());
    QVERIFY(ui->frame_2->isEnabled());
    QVERIFY(switchedOn(ui->turbo_override));

    // What a person sees on the tab after start-up.
    rig.window->resize(800, 870);
    ui->tabWidget->setCurrentWidget(ui->tab);
    rig.window->show();
    QVERIFY(rig.window->grab().save(QStringLiteral(VARNEL_TEST_BIN_DIR "/cputuning/cpu-tab.png")));

    // The second read, two minutes after start.
    QVERIFY(rig.fake.scheduler->history.contains(QStringLiteral("120000 getxtuvalues")));
    rig.holds(48, QStringLiteral("50"));
    rig.fake.scheduler->advance(120000);
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.reads(), kAllReads + kAllReads);
    QCOMPARE(ui->Slider_TurboBoost->value(), 400);
}

void TuningChainsTest::applyWithNothingChangedSkipsEveryWriteAndReadsBack()
{
    ClientRig rig;
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    rig.fake.log->clear();

    rig.clickApply();
    QVERIFY(!rig.ui()->Button_ApplyValues->isEnabled());
    QVERIFY(rig.waitForReadChains(2));
    QVERIFY(rig.writes().isEmpty());
    QCOMPARE(rig.reads(), kAllReads);
    // One service start for the apply, one for the read that follows.
    QCOMPARE(rig.fake.log->withPrefix("process: powershell").size(), 2);

    QCOMPARE(rig.savedValue("undervolt").toInt(), 0);
    QCOMPARE(rig.savedValue("boostpower").toString(), QStringLiteral("45"));
    QCOMPARE(rig.savedValue("turbotime").toInt(), 28);
    QCOMPARE(rig.savedValue("core1multi").toInt(), 51);
    QCOMPARE(rig.savedValue("core8multi").toInt(), 46);
    QVERIFY(rig.ui()->checkBox_ReApply->isEnabled());
}

void TuningChainsTest::applyWritesExactlyTheChangedValuesInOrder()
{
    ClientRig rig;
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    Ui::MainWindow *ui = rig.ui();
    ui->Core8Spin->setValue(44);
    ui->Slider_TurboBoost->setValue(301);
    ui->undervolt_slider->setValue(80);
    ui->Core3Spin->setValue(45);
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("37.625W"));

    rig.clickApply();
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.writes(), QStringList({"-t -id 34 -v -80", "-t -id 48 -v 37.625",
                                        "-t -id 31 -v 45", "-t -id 97 -v 44"}));
    const QString lastWrite = QStringLiteral("process: %1 -t -id 97 -v 44").arg(xtu::clientProgram);
    QCOMPARE(rig.reads().size(), 22);
    QVERIFY(rig.fake.log->indexOf(lastWrite) <
            rig.fake.log->entries.lastIndexOf(
                QStringLiteral("process: %1 -t -id 34").arg(xtu::clientProgram)));

    // The tab shows what the client now holds.
    QCOMPARE(ui->undervolt_slider->value(), 80);
    QCOMPARE(ui->Label_UnderVolt_Value->text(), QStringLiteral("-80mV"));
    QCOMPARE(ui->Slider_TurboBoost->value(), 301);
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("37.625W"));
    QCOMPARE(ui->Core3Spin->value(), 45);
    QCOMPARE(ui->Core8Spin->value(), 44);
    QCOMPARE(rig.cpu()->readUndervolt, QStringLiteral("-80"));
    QCOMPARE(rig.cpu()->readTurboPower, QStringLiteral("37,625"));
    QCOMPARE(rig.cpu()->readCoreRatio3, 45);
    QVERIFY(!ui->Button_ApplyValues->isEnabled());

    // A second apply finds everything in place.
    rig.clickApply();
    QVERIFY(rig.waitForReadChains(3));
    QCOMPARE(rig.writes().size(), 4);
}

void TuningChainsTest::undervoltAtOneIsWrittenAsNone()
{
    ClientRig rig;
    rig.holds(34, QStringLiteral("-50"));
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    QCOMPARE(rig.ui()->undervolt_slider->value(), 50);
    QCOMPARE(rig.cpu()->readUndervolt, QStringLiteral("-50"));

    rig.ui()->undervolt_slider->setValue(1);
    QCOMPARE(rig.ui()->Label_UnderVolt_Value->text(), QStringLiteral("0mV"));
    rig.clickApply();
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.writes(), QStringList{"-t -id 34 -v 0"});
    QCOMPARE(rig.ui()->undervolt_slider->value(), 0);
    QCOMPARE(rig.cpu()->readUndervolt, QStringLiteral("0"));
}

void TuningChainsTest::unlimitedPositionWritesTheUnlimitedFigure()
{
    ClientRig rig;
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    Ui::MainWindow *ui = rig.ui();
    QCOMPARE(ui->Slider_TurboBoost->maximum(), 1081); // the 10875H profile: 135 W finite

    ui->Slider_TurboBoost->setValue(1081);
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("4095.875W"));
    rig.clickApply();
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.writes(), QStringList{"-t -id 48 -v 4095.875"});
    QCOMPARE(ui->Slider_TurboBoost->value(), 1081);
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("4095.875W"));
    QCOMPARE(rig.cpu()->readTurboPower, QStringLiteral("4095,875"));
}

void TuningChainsTest::decimalCommaClientGetsCommas()
{
    ClientRig rig;
    qputenv("FAKE_XTU_COMMA", "1");
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    QVERIFY(rig.cpu()->decimalComma);
    QCOMPARE(rig.ui()->Slider_TurboTime->value(), 28);
    QCOMPARE(rig.ui()->Slider_TurboBoost->value(), 360);

    rig.ui()->Slider_TurboBoost->setValue(364);
    rig.clickApply();
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.writes(), QStringList{"-t -id 48 -v 45,5"});
    QCOMPARE(rig.ui()->Slider_TurboBoost->value(), 364);
    QCOMPARE(rig.cpu()->readTurboPower, QStringLiteral("45,5"));

    rig.clickApply();
    QVERIFY(rig.waitForReadChains(3));
    QCOMPARE(rig.writes().size(), 1);
}

void TuningChainsTest::fourCoreProcessorHidesAndSkipsCoresFiveToEight()
{
    ClientRig rig;
    qputenv("FAKE_XTU_CORES", "4");
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    Ui::MainWindow *ui = rig.ui();
    CpuTuning *cpu = rig.cpu();
    QVERIFY(cpu->coreRowsMissing);
    const QList<QWidget *> hidden = {ui->Label_Core5, ui->Core5Spin,   ui->Label_Core6,
                                     ui->Core6Spin,   ui->Label_Core7, ui->Core7Spin,
                                     ui->Label_Core8, ui->Core8Spin};
    for (QWidget *widget : hidden)
        QVERIFY2(widget->isHidden(), qPrintable(widget->objectName()));
    for (int n = 5; n <= 8; ++n) {
        QSpinBox *spin = coreSpins(ui)[n - 1];
        QCOMPARE(spin->maximum(), 0);
        QCOMPARE(spin->value(), 0);
        QCOMPARE(cpu->readCoreRatio(n), 0);
        QVERIFY(spin->isEnabled()); // hidden, not disabled
    }
    QVERIFY(!ui->label_12->isHidden());
    QCOMPARE(ui->Core4Spin->value(), 49);

    ui->Core1Spin->setValue(50);
    rig.clickApply();
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.writes(), QStringList{"-t -id 29 -v 50"});
}

void TuningChainsTest::manageCpuOffSkipsEveryCoreAsDisabled()
{
    ClientRig rig;
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    Ui::MainWindow *ui = rig.ui();
    ui->checkBox_DontManageCPU->click();
    QVERIFY(!ui->checkBox_DontManageCPU->isChecked());
    QVERIFY(!ui->frame_3->isEnabled());
    QVERIFY(!ui->Button_ApplyValues->isEnabled());
    QCOMPARE(rig.savedValue("DontManageCPU").toBool(), false);

    // The power modes still apply through the slot while the frames are disabled.
    ui->Core2Spin->setValue(40);
    ui->Core7Spin->setValue(40);
    ui->undervolt_slider->setValue(50);
    QMetaObject::invokeMethod(rig.window.get(), "on_Button_ApplyValues_clicked");
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.writes(), QStringList{"-t -id 34 -v -50"});
}

void TuningChainsTest::stalledClientStallsOnlyItsChain()
{
    ClientRig rig;
    qputenv("FAKE_XTU_HANG", "48");
    QElapsedTimer clock;
    clock.start();
    rig.start();
    QVERIFY(clock.elapsed() < 5000);
    Ui::MainWindow *ui = rig.ui();

    // The hanging query printed its row, and its parser took it; the chain goes no further.
    QTRY_COMPARE(ui->Slider_TurboBoost->value(), 360);
    QVERIFY(!rig.chainEnds->wait(1000));
    QCOMPARE(rig.reads(), QStringList({"-t -id 34", "-t -id 48"}));
    QVERIFY(rig.cpu()->readProcess2->isRunning());

    // The window goes on answering.
    bool timerFired = false;
    QTimer::singleShot(0, [&] { timerFired = true; });
    ui->undervolt_slider->setValue(30);
    QCOMPARE(ui->Label_UnderVolt_Value->text(), QStringLiteral("-30mV"));
    QTRY_VERIFY(timerFired);
    QVERIFY(ui->Button_ApplyValues->isEnabled());
    rig.cpu()->readProcess2->close();
}

void TuningChainsTest::silentClientChangesNothing()
{
    ClientRig rig;
    qputenv("FAKE_XTU_SILENT", "1");
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    QCOMPARE(rig.reads(), kAllReads);
    QCOMPARE(rig.ui()->Slider_TurboTime->value(), 1);
    QCOMPARE(rig.ui()->Label_TurboPowerValue->text(), QStringLiteral("0000.000W"));
    QCOMPARE(rig.cpu()->readTurboTime, 0);
    QVERIFY(rig.cpu()->readUndervolt.isEmpty());
}

void TuningChainsTest::rowSplitAcrossTwoReadsChangesNothing()
{
    ClientRig rig;
    qputenv("FAKE_XTU_SPLIT", "48");
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    QCOMPARE(rig.ui()->Slider_TurboBoost->value(), 8);
    QCOMPARE(rig.ui()->Label_TurboPowerValue->text(), QStringLiteral("0000.000W"));
    QVERIFY(rig.cpu()->readTurboPower.isEmpty());
    // The rows that came whole were taken.
    QCOMPARE(rig.ui()->Slider_TurboTime->value(), 28);
}

void TuningChainsTest::reapplyRunsAtMostOncePerRun()
{
    ClientRig rig;
    rig.saved("Re-ApplyXTU", true);
    rig.saved("undervolt", 60);
    rig.saved("boostpower", "40");
    rig.saved("turbotime", 20);
    const int ratios[] = {50, 50, 48, 48, 46, 46, 45, 45};
    for (int n = 1; n <= 8; ++n)
        rig.saved(QStringLiteral("core%1multi").arg(n), ratios[n - 1]);
    rig.start();
    QVERIFY(rig.ui()->checkBox_ReApply->isEnabled());

    // Start-up read, the re-apply's writes, and the read after them.
    QVERIFY(rig.waitForReadChains(2));
    const QStringList reapplied = {"-t -id 34 -v -60", "-t -id 48 -v 40", "-t -id 66 -v 20",
                                   "-t -id 29 -v 50",  "-t -id 30 -v 50", "-t -id 31 -v 48",
                                   "-t -id 32 -v 48",  "-t -id 42 -v 46", "-t -id 43 -v 46",
                                   "-t -id 96 -v 45",  "-t -id 97 -v 45"};
    QCOMPARE(rig.writes(), reapplied);
    QVERIFY(rig.cpu()->reapplyDone);
    QVERIFY(!rig.cpu()->reapplyPending);
    QCOMPARE(rig.ui()->undervolt_slider->value(), 60);

    // The processor loses its values; later reads show that and re-apply nothing.
    rig.holds(34, QStringLiteral("0"));
    rig.fake.scheduler->advance(120000);
    QVERIFY(rig.waitForReadChains(3));
    rig.window->getxtuvalues();
    QVERIFY(rig.waitForReadChains(4));
    QCOMPARE(rig.writes(), reapplied);
    QCOMPARE(rig.ui()->undervolt_slider->value(), 0);
}

void TuningChainsTest::reapplyRestoresOnlyWhatWasSavedAndMakesSense()
{
    ClientRig rig;
    rig.saved("Re-ApplyXTU", true);
    rig.saved("undervolt", 60);
    rig.saved("boostpower", "1e300");
    rig.saved("turbotime", "abc");
    rig.saved("core1multi", "x51");
    rig.saved("core2multi", 300);
    rig.start();
    QVERIFY(rig.waitForReadChains(2));
    // Only the undervolt is a figure: the turbo power is no power, the time no number, and the
    // ratios no ratio a box can hold. Unsaved ratios stay as read.
    QCOMPARE(rig.writes(), QStringList{"-t -id 34 -v -60"});
    QCOMPARE(rig.ui()->Slider_TurboBoost->value(), 360);
    QCOMPARE(rig.ui()->Slider_TurboTime->value(), 28);
}

void TuningChainsTest::valuesNeverReadNorSetAreNeitherWrittenNorSaved_data()
{
    QTest::addColumn<bool>("byPowerMode");
    QTest::addColumn<QStringList>("writes");
    QTest::addColumn<int>("undervolt");
    QTest::newRow("turbo override of a power mode")
        << true << QStringList{"-t -id 48 -v 25"} << 100;
    QTest::newRow("undervolt set by hand") << false << QStringList{"-t -id 34 -v -90"} << 90;
}

void TuningChainsTest::valuesNeverReadNorSetAreNeitherWrittenNorSaved()
{
    QFETCH(bool, byPowerMode);
    ClientRig rig;
    qputenv("FAKE_XTU_SILENT", "1"); // no row is ever read
    rig.saved("undervolt", 100);
    rig.saved("boostpower", "45");
    rig.saved("turbotime", 28);
    rig.start();
    QVERIFY(rig.waitForReadChains(1));
    Ui::MainWindow *ui = rig.ui();
    if (byPowerMode) {
        ui->turbo_override->setChecked(true);
        ui->power_mode_turbo_boost->setValue(200);
        QVERIFY(QMetaObject::invokeMethod(rig.window.get(), "ApplyPowerTurboBoost"));
    } else {
        ui->undervolt_slider->setValue(90);
        rig.clickApply();
    }
    QVERIFY(rig.waitForReadChains(2));
    QTEST(rig.writes(), "writes");
    QTEST(rig.savedValue("undervolt").toInt(), "undervolt");
    QCOMPARE(rig.savedValue("boostpower").toString(), QStringLiteral("45"));
    QCOMPARE(rig.savedValue("turbotime").toInt(), 28);
    QVERIFY(!rig.savedValue("core1multi").isValid());
}

void TuningChainsTest::stopXtuServicesAfterEachRead()
{
    ClientRig rig;
    rig.saved("PreventXTU", true);
    rig.start();
    QVERIFY(rig.ui()->Check_PreventXTU->isChecked());
    QVERIFY(rig.waitForReadChains(1));
    const QString stop = QStringLiteral("run: ") + xtu::serviceStop;
    QCOMPARE(rig.fake.log->withPrefix(stop).size(), 1);
    QVERIFY(rig.fake.log->indexOf(stop) >
            rig.fake.log->indexOf(QStringLiteral("process: %1 -t -id 97").arg(xtu::clientProgram)));

    rig.ui()->Check_PreventXTU->click();
    QCOMPARE(rig.savedValue("PreventXTU").toBool(), false);
    rig.window->getxtuvalues();
    QVERIFY(rig.waitForReadChains(2));
    QCOMPARE(rig.fake.log->withPrefix(stop).size(), 1);
}

void TuningChainsTest::manageCpuSwitchedOn()
{
    ClientRig rig;
    rig.manage(false);
    rig.start();
    Ui::MainWindow *ui = rig.ui();
    QVERIFY(!ui->checkBox_DontManageCPU->isChecked());
    for (QWidget *off :
         QList<QWidget *>{ui->frame_2, ui->frame_3, ui->pushButton, ui->Check_PreventXTU,
                          ui->Button_ApplyValues, ui->turbo_override})
        QVERIFY2(!switchedOn(off), qPrintable(off->objectName()));
    QVERIFY(!rig.fake.scheduler->history.contains(QStringLiteral("120000 getxtuvalues")));
    QVERIFY(rig.fake.log->withPrefix("process:").isEmpty());

    // Not installed: the offer to download, and the box goes off again whatever the answer.
    rig.fake.dialogs->answers = {QMessageBox::No, QMessageBox::Yes};
    ui->checkBox_DontManageCPU->click();
    QVERIFY(!ui->checkBox_DontManageCPU->isChecked());
    QCOMPARE(rig.fake.dialogs->shown.size(), 1);
    const FakeDialogs::Shown &offer = rig.fake.dialogs->shown.first();
    QCOMPARE(offer.icon, QMessageBox::Question);
    QCOMPARE(offer.title, QStringLiteral("Intel Extreme Tuning"));
    QVERIFY(offer.text.startsWith("To use this settings you need Intel Extreme Tuning.\n\n"));
    QVERIFY(offer.text.endsWith("\n\n Do you want to download XTU now?\n"));
    QCOMPARE(offer.buttons, QMessageBox::Yes | QMessageBox::No);
    QVERIFY(rig.fake.log->withPrefix("open url:").isEmpty());
    ui->checkBox_DontManageCPU->click();
    QVERIFY(!ui->checkBox_DontManageCPU->isChecked());
    QCOMPARE(rig.fake.log->withPrefix("open url:").size(), 1);
    QVERIFY(!ui->frame_2->isEnabled());

    // Installed: the driver installer runs, the controls open, and the read chain follows.
    rig.fake.desktop->existing << xtu::servicePaths[1];
    ui->checkBox_DontManageCPU->click();
    QVERIFY(ui->checkBox_DontManageCPU->isChecked());
    QCOMPARE(rig.fake.log->withPrefix("run: " + xtu::driverInstaller).size(), 1);
    QCOMPARE(rig.savedValue("DontManageCPU").toBool(), true);
    for (QWidget *on :
         QList<QWidget *>{ui->frame_2, ui->frame_3, ui->pushButton, ui->Check_PreventXTU,
                          ui->turbo_override, ui->power_mode_turbo_boost})
        QVERIFY2(switchedOn(on), qPrintable(on->objectName()));
    QVERIFY(rig.waitForReadChains(1));
    QCOMPARE(ui->Slider_TurboBoost->value(), 360);
}

void TuningChainsTest::checkBoxesAreSaved()
{
    ClientRig rig;
    rig.manage(false);
    rig.start();
    Ui::MainWindow *ui = rig.ui();
    QVERIFY(!ui->checkBox_ReApply->isEnabled());
    rig.clickApply();
    QVERIFY(ui->checkBox_ReApply->isEnabled());
    ui->checkBox_ReApply->click();
    QCOMPARE(rig.savedValue("Re-ApplyXTU").toBool(), true);
    ui->checkBox_ReApply->click();
    QCOMPARE(rig.savedValue("Re-ApplyXTU").toBool(), false);

    ClientRig again;
    again.manage(false);
    again.saved("Re-ApplyXTU", true);
    again.start();
    QVERIFY(again.ui()->checkBox_ReApply->isChecked());
    QVERIFY(again.ui()->checkBox_ReApply->isEnabled());
}

QTEST_MAIN(TuningChainsTest)
#include "tst_tuningchains.moc"
