// The "Brightness" tab on the real window: refreshing from the panel, the slider writing it,
// adaptive brightness, the two shortcuts and the provider install.
#include "testwindow.h"
#include "panelbrightnesscontrol.h"

#include <QMainWindow>
#include <QtTest>

class PanelBrightnessTest : public QObject {
    Q_OBJECT

private slots:
    void refreshShowsThePanelWithoutWritingIt();
    void refreshRunsTheFixToolOnlyOnAChange();
    void unreadablePanelDisablesTheSliderSayingWhy_data();
    void unreadablePanelDisablesTheSliderSayingWhy();
    void refreshDuringAPowerModeApplyChangesNothing();
    void busyControlLeavesEverythingAlone();
    void sliderWritesThePanel();
    void adaptiveBrightnessCommands_data();
    void adaptiveBrightnessCommands();
    void adaptiveSettingIsAppliedAtStart();
    void shortcutsOpenTheSettingsPages();
    void providerInstallRunsItsStepsThenLoads();
    void providerDeclinedClosesTheWindow();
};

namespace {
const QString kFix = QStringLiteral("shown 0: Libs\\AuxSwitch.exe");
}

void PanelBrightnessTest::refreshShowsThePanelWithoutWritingIt()
{
    TestWindow p;
    p.fake.panel->level = 42;
    p.start();
    Ui::MainWindow &ui = p.ui();
    QCOMPARE(ui.Slider_Brightness->value(), 42);
    QCOMPARE(ui.Label_Brightness->text(), QStringLiteral("Brightness: 42%"));
    p.fake.panel->level = 70;
    p.window->GetBrightness();
    QCOMPARE(ui.Slider_Brightness->value(), 70);
    QCOMPARE(p.window->panel()->currentBrightness(), 70);
    QCOMPARE(p.window->panel()->lastBrightness(), 70);
    QCOMPARE(p.fake.log->entries, QStringList{"panel read"});
    QVERIFY(!p.window->panel()->reading());
}

void PanelBrightnessTest::refreshRunsTheFixToolOnlyOnAChange()
{
    TestWindow p;
    p.fake.panel->level = 42;
    p.start();
    p.ui().checkBox_3->setChecked(true);
    p.window->GetBrightness(); // unchanged
    QVERIFY(!p.fake.log->entries.contains(kFix));
    p.fake.panel->level = 43;
    p.window->GetBrightness();
    // Once for the change and once from the slider's handler, never a panel write.
    QCOMPARE(p.fake.log->entries, (QStringList{"panel read", "panel read", kFix, kFix}));
}

void PanelBrightnessTest::unreadablePanelDisablesTheSliderSayingWhy_data()
{
    QTest::addColumn<QString>("platformReason");
    QTest::addColumn<QString>("shownReason");
    QTest::newRow("no backlight") << "This screen has no backlight that can be adjusted."
                                  << "This screen has no backlight that can be adjusted.";
    QTest::newRow("backlight there, read failed")
        << ""
        << "The panel's brightness cannot be read right now.";
}

void PanelBrightnessTest::unreadablePanelDisablesTheSliderSayingWhy()
{
    QFETCH(QString, platformReason);
    QFETCH(QString, shownReason);
    TestWindow p;
    p.fake.panel->level = -1;
    if (!platformReason.isEmpty())
        p.fake.availability->features[Feature::PanelBacklight] = platformReason;
    p.start();
    Ui::MainWindow &ui = p.ui();
    QVERIFY(!ui.Label_Brightness->text().contains(QLatin1String("-1")));
    QVERIFY(!ui.Slider_Brightness->isEnabled());
    QCOMPARE(ui.Slider_Brightness->toolTip(), shownReason);
    QCOMPARE(ui.Label_Brightness->toolTip(), shownReason);
    p.window->GetBrightness();
    QVERIFY(!ui.Label_Brightness->text().contains(QLatin1String("-1")));
    QVERIFY(!p.fake.log->entries.contains(QStringLiteral("panel write 0")));
    // A power mode's initial brightness moves the slider: still no figure, nothing written.
    ui.Slider_Brightness->setValue(80);
    QCOMPARE(ui.Label_Brightness->text(), QStringLiteral("Brightness: not adjustable"));
    QVERIFY(!p.fake.log->entries.contains(QStringLiteral("panel write 80")));

    // The panel comes back (an external screen's backlight, a driver loaded late).
    p.fake.panel->level = 30;
    p.window->GetBrightness();
    QVERIFY(ui.Slider_Brightness->isEnabled());
    QVERIFY(ui.Slider_Brightness->toolTip().isEmpty());
    QCOMPARE(ui.Label_Brightness->text(), QStringLiteral("Brightness: 30%"));
}

void PanelBrightnessTest::refreshDuringAPowerModeApplyChangesNothing()
{
    TestWindow p;
    p.fake.panel->level = 42;
    p.startWithPowerModes();
    p.fake.panel->level = 90;
    p.fake.commands->onRun = [&](const QString &line) {
        if (line.contains(QLatin1String("PROCTHROTTLEMAX")))
            p.window->GetBrightness(); // a tick in the middle of the apply
    };
    p.window->ApplyPowerValues();
    QCOMPARE(p.ui().Slider_Brightness->value(), 42);
    QCOMPARE(p.ui().Label_Brightness->text(), QStringLiteral("Brightness: 42%"));
    QCOMPARE(p.window->panel()->lastBrightness(), 42);
    QVERIFY(p.fake.log->entries.contains("panel read"));
}

void PanelBrightnessTest::busyControlLeavesEverythingAlone()
{
    FakePlatform fake;
    QMainWindow host;
    Ui::MainWindow ui;
    ui.setupUi(&host);
    bool busy = false;
    PanelBrightnessControl control(ui, Settings(), fake.bundle(), &host, [&] { return busy; });
    fake.panel->level = 30;
    control.refresh();
    QCOMPARE(control.currentBrightness(), 30);
    busy = true;
    fake.panel->level = 80;
    control.refresh();
    QCOMPARE(control.currentBrightness(), 30);
    QCOMPARE(control.lastBrightness(), 30);
    QCOMPARE(ui.Slider_Brightness->value(), 30);
}

void PanelBrightnessTest::sliderWritesThePanel()
{
    TestWindow p;
    p.start();
    p.ui().Slider_Brightness->setValue(65);
    QCOMPARE(p.fake.log->entries, QStringList{"panel write 65"});
    QCOMPARE(p.ui().Label_Brightness->text(), QStringLiteral("Brightness: 65%"));
    p.ui().checkBox_3->setChecked(true);
    p.ui().Slider_Brightness->setValue(66);
    QCOMPARE(p.fake.log->entries.mid(1), (QStringList{kFix, "panel write 66"}));
}

void PanelBrightnessTest::adaptiveBrightnessCommands_data()
{
    QTest::addColumn<bool>("checked");
    QTest::addColumn<QString>("value");
    QTest::newRow("disabled") << true << "0";
    QTest::newRow("enabled") << false << "1";
}

void PanelBrightnessTest::adaptiveBrightnessCommands()
{
    QFETCH(bool, checked);
    QFETCH(QString, value);
    TestWindow p;
    p.setGeneral("AdaptiveBrightness", !checked);
    p.fake.panel->level = 55;
    p.start();
    if (p.ui().Check_Adaptive->isChecked() != checked)
        p.ui().Check_Adaptive->click();
    else
        QFAIL("the box did not start from the stored opposite");
    const QString display = QStringLiteral(" SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 ");
    const QString adaptive = display + "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 " + value;
    QCOMPARE(p.commands(), (QStringList{"run: powercfg -setacvalueindex" + display +
                                            "aded5e82-b909-4619-9949-f5d71dac0bcb 55",
                                        "run: powercfg -setdcvalueindex" + display +
                                            "aded5e82-b909-4619-9949-f5d71dac0bcb 55",
                                        "shown 0: powercfg -setdcvalueindex" + adaptive,
                                        "shown 0: powercfg -setacvalueindex" + adaptive,
                                        "shown 0: powercfg -SetActive SCHEME_CURRENT"}));
    QCOMPARE(p.generalValue("AdaptiveBrightness").toBool(), checked);
}

void PanelBrightnessTest::adaptiveSettingIsAppliedAtStart()
{
    TestWindow p;
    p.setGeneral("AdaptiveBrightness", true);
    p.window = std::make_unique<MainWindow>(p.fake.bundle());
    QVERIFY(p.ui().Check_Adaptive->isChecked());
    QVERIFY(p.fake.log->entries.contains(
        "shown 0: powercfg -setacvalueindex SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 "
        "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 0"));
    QCOMPARE(p.generalValue("AdaptiveBrightness").toBool(), true);
}

void PanelBrightnessTest::shortcutsOpenTheSettingsPages()
{
    TestWindow p;
    p.start();
    p.ui().Button_DisplaySettings->click();
    p.ui().Button_ScreenPower->click();
    QCOMPARE(p.fake.log->entries,
             (QStringList{"shown 1: explorer ms-settings:display",
                          "shown 1: control.exe /name Microsoft.PowerOptions /page  "
                          "pagePlanSettings"}));
}

void PanelBrightnessTest::providerInstallRunsItsStepsThenLoads()
{
    TestWindow p;
    p.fake.panel->provider = false;
    p.setGeneral("enable_power_modes", true);
    p.window = std::make_unique<MainWindow>(p.fake.bundle());
    QCOMPARE(p.fake.dialogs->shown.size(), 1);
    const FakeDialogs::Shown &box = p.fake.dialogs->shown.first();
    QCOMPARE(box.title, QStringLiteral("Control Center not installed"));
    QCOMPARE(box.text, QStringLiteral("You do not seem to be using Control Center. For this "
                                      "software to work we need to install a small dll for it to "
                                      "work. Can we install it?.\n"));
    QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
    const QStringList steps = {
        "message: Control Center not installed",
        "run: net stop winmgmt /y",
        "copy: installer//CLEVOMOF.dll -> C://Windows//SysWOW64//clevomof.dll",
        "run: regsvr32 /s C:/Windows/SysWOW64/clevomof.dll",
        "registry set: HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\WmiAcpi "
        "MofImagePath = syswow64\\clevomof.dll",
        "run: net start winmgmt"};
    int at = -1;
    for (const QString &step : steps) {
        const int next = p.fake.log->entries.indexOf(step, at + 1);
        QVERIFY2(next > at, qPrintable(step));
        at = next;
    }
    // Then the settings load as a normal start does: the tray is built and the mode applied.
    QVERIFY(p.window->trayMenu());
    QVERIFY(p.ui().checkBox_2->isChecked());
    QVERIFY(p.fake.log->entries.indexOf("run: powercfg -change -monitor-timeout-ac 20", at) > at);
}

void PanelBrightnessTest::providerDeclinedClosesTheWindow()
{
    TestWindow p;
    p.fake.panel->provider = false;
    p.fake.dialogs->answers << QMessageBox::No;
    p.window = std::make_unique<MainWindow>(p.fake.bundle());
    QVERIFY(!p.fake.log->entries.contains("run: net stop winmgmt /y"));
    QVERIFY(!p.window->trayMenu()); // the settings were never loaded
    QVERIFY(p.fake.scheduler->history.contains("0 close"));
    p.window->show();
    p.fake.scheduler->advance(0);
    QVERIFY(!p.window->isVisible());
}

QTEST_MAIN(PanelBrightnessTest)
#include "tst_panelbrightness.moc"
