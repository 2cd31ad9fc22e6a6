#include "panelbrightnesscontrol.h"
#include "testwindow.h"

#include <QtTest>

namespace {
const QString kFix = QStringLiteral("shown 0: Libs\\AuxSwitch.exe");
}

class PanelBrightnessTest : public QObject {
    Q_OBJECT

private slots:
    void refreshShowsThePanelAndTheSliderWritesIt()
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
        QCOMPARE(p.fake.log->entries, QStringList{"panel read"}); // read, never written back
        QVERIFY(!p.window->panel()->reading());

        // With the fix tool on, a refresh runs it only on a change: once for the change and
        // once from the slider's handler.
        ui.checkBox_3->setChecked(true);
        p.clearRecords();
        p.window->GetBrightness();
        p.fake.panel->level = 43;
        p.window->GetBrightness();
        QCOMPARE(p.fake.log->entries, (QStringList{"panel read", "panel read", kFix, kFix}));

        p.clearRecords();
        ui.Slider_Brightness->setValue(66);
        QCOMPARE(p.fake.log->entries, (QStringList{kFix, "panel write 66"}));
        QCOMPARE(ui.Label_Brightness->text(), QStringLiteral("Brightness: 66%"));
        ui.checkBox_3->setChecked(false);
        ui.Slider_Brightness->setValue(65);
        ui.Button_DisplaySettings->click();
        ui.Button_ScreenPower->click();
        QCOMPARE(p.fake.log->entries.mid(2),
                 (QStringList{"panel write 65", "shown 1: explorer ms-settings:display",
                              "shown 1: control.exe /name Microsoft.PowerOptions /page  "
                              "pagePlanSettings"}));

        // A refresh in the middle of a power mode's apply changes nothing.
        p.window->GetBrightness();
        ui.checkBox_2->click();
        p.fake.panel->level = 90;
        p.fake.commands->onRun = [&](const QString &line) {
            if (line.contains("PROCTHROTTLEMAX"))
                p.window->GetBrightness();
        };
        p.clearRecords();
        p.window->ApplyPowerValues();
        QCOMPARE(ui.Slider_Brightness->value(), 65);
        QCOMPARE(ui.Label_Brightness->text(), QStringLiteral("Brightness: 65%"));
        QCOMPARE(p.window->panel()->currentBrightness(), 65);
        QCOMPARE(p.window->panel()->lastBrightness(), 65);
        QVERIFY(p.fake.log->entries.contains("panel read"));
    }

    void unreadablePanelDisablesTheSliderSayingWhy_data()
    {
        QTest::addColumn<QString>("platformReason");
        QTest::addColumn<QString>("shownReason");
        const QString noBacklight("This screen has no backlight that can be adjusted.");
        QTest::newRow("no backlight") << noBacklight << noBacklight;
        QTest::newRow("backlight there, read failed")
            << ""
            << "The panel's brightness cannot be read right now.";
    }

    void unreadablePanelDisablesTheSliderSayingWhy()
    {
        QFETCH(QString, platformReason);
        QFETCH(QString, shownReason);
        TestWindow p;
        p.fake.panel->level = -1;
        if (!platformReason.isEmpty())
            p.fake.availability->features[Feature::PanelBacklight] = platformReason;
        p.start();
        Ui::MainWindow &ui = p.ui();
        QVERIFY(!ui.Slider_Brightness->isEnabled());
        QCOMPARE(ui.Slider_Brightness->toolTip(), shownReason);
        QCOMPARE(ui.Label_Brightness->toolTip(), shownReason);
        p.window->GetBrightness();
        QVERIFY(!ui.Label_Brightness->text().contains("-1"));
        // A power mode's initial brightness moves the slider: still no figure, nothing written.
        ui.Slider_Brightness->setValue(80);
        QCOMPARE(ui.Label_Brightness->text(), QStringLiteral("Brightness: not adjustable"));
        QVERIFY(p.fake.log->withPrefix("panel write").isEmpty());

        // The panel comes back (an external screen's backlight, a driver loaded late).
        p.fake.panel->level = 30;
        p.window->GetBrightness();
        QVERIFY(ui.Slider_Brightness->isEnabled());
        QVERIFY(ui.Slider_Brightness->toolTip().isEmpty());
        QCOMPARE(ui.Label_Brightness->text(), QStringLiteral("Brightness: 30%"));
    }

    void adaptiveBrightnessCommands_data()
    {
        QTest::addColumn<bool>("checked");
        QTest::addColumn<QString>("value");
        QTest::newRow("disabled") << true << "0";
        QTest::newRow("enabled") << false << "1";
    }

    void adaptiveBrightnessCommands()
    {
        QFETCH(bool, checked);
        QFETCH(QString, value);
        const QString display("SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 ");
        const QString adaptive = display + "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 ";
        TestWindow p;
        p.setGeneral("AdaptiveBrightness", !checked);
        p.fake.panel->level = 55;
        p.window = std::make_unique<MainWindow>(p.fake.bundle());
        // The stored setting is applied at start.
        QVERIFY(p.commands().contains("shown 0: powercfg -setacvalueindex " + adaptive +
                                      (checked ? "1" : "0")));
        p.clearRecords();
        p.ui().Check_Adaptive->click();
        QCOMPARE(p.ui().Check_Adaptive->isChecked(), checked);
        const QString brightness = display + "aded5e82-b909-4619-9949-f5d71dac0bcb 55";
        QCOMPARE(p.commands(),
                 (QStringList{"run: powercfg -setacvalueindex " + brightness,
                              "run: powercfg -setdcvalueindex " + brightness,
                              "shown 0: powercfg -setdcvalueindex " + adaptive + value,
                              "shown 0: powercfg -setacvalueindex " + adaptive + value,
                              "shown 0: powercfg -SetActive SCHEME_CURRENT"}));
        QCOMPARE(p.generalValue("AdaptiveBrightness").toBool(), checked);
    }

    // Declined, the window closes; accepted at the next start, the install runs its steps and the
    // settings load as a normal start does.
    void missingProviderIsInstalledOnlyWhenAccepted()
    {
        TestWindow p;
        p.fake.panel->provider = false;
        p.setGeneral("enable_power_modes", true);
        p.fake.dialogs->answers << QMessageBox::No;
        p.window = std::make_unique<MainWindow>(p.fake.bundle());
        QVERIFY(!p.fake.log->entries.contains("run: net stop winmgmt /y"));
        QVERIFY(!p.window->trayMenu()); // the settings were never loaded
        p.window->show();
        p.fake.scheduler->advance(0);
        QVERIFY(!p.window->isVisible());

        p.window.reset();
        p.clearRecords();
        p.fake.dialogs->shown.clear();
        p.window = std::make_unique<MainWindow>(p.fake.bundle());
        QCOMPARE(
            p.fake.dialogs->lines(),
            QStringList("Question | Control Center not installed | You do not seem to be using "
                        "Control Center. For this software to work we need to install a small "
                        "dll for it to work. Can we install it?.\n | Yes|No"));
        const QStringList steps = {
            "message: Control Center not installed",
            "run: net stop winmgmt /y",
            "copy: installer//CLEVOMOF.dll -> C://Windows//SysWOW64//clevomof.dll",
            "run: regsvr32 /s C:/Windows/SysWOW64/clevomof.dll",
            "registry set: HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\WmiAcpi "
            "MofImagePath = syswow64\\clevomof.dll",
            "run: net start winmgmt",
            "run: powercfg -change -monitor-timeout-ac 20"};
        int at = -1;
        for (const QString &step : steps) {
            const int next = p.fake.log->entries.indexOf(step, at + 1);
            QVERIFY2(next > at, qPrintable(step));
            at = next;
        }
        QVERIFY(p.window->trayMenu());
        QVERIFY(p.ui().checkBox_2->isChecked());
    }
};

QTEST_MAIN(PanelBrightnessTest)
#include "tst_panelbrightness.moc"
