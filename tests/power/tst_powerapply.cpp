// The power-scheme command catalogue, and applying a power mode on the real window: the exact
// commands in order, the panel and scheme brightness delays, the companion codes and the turbo
// override.
#include "powercommands.h"
#include "powermodes.h"
#include "testwindow.h"

#include <QtTest>

namespace {
const QString kActivate = QStringLiteral("shown 0: powercfg -SetActive SCHEME_CURRENT");

QStringList pair(const QString &ac, const QString &dc)
{
    return {"run: " + ac, "run: " + dc, kActivate};
}

QStringList schemeBrightness(int value)
{
    const QString tail = QStringLiteral(" SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 "
                                        "aded5e82-b909-4619-9949-f5d71dac0bcb %1")
                             .arg(value);
    return pair("powercfg -setacvalueindex" + tail, "powercfg -setdcvalueindex" + tail);
}

QStringList processor(const char *limit, int value)
{
    const QString tail =
        QStringLiteral(" SCHEME_CURRENT SUB_PROCESSOR %1 %2").arg(QLatin1String(limit)).arg(value);
    return pair("powercfg -setacvalueindex" + tail, "powercfg -setdcvalueindex" + tail);
}

QStringList lid(int value)
{
    const QString tail = QStringLiteral(" SCHEME_CURRENT 4f971e89-eebd-4455-a8de-9e59040e7347 "
                                        "5ca83367-6e45-459f-a27b-476b1d01c936 %1")
                             .arg(value);
    return pair("powercfg setacvalueindex" + tail, "powercfg setdcvalueindex" + tail);
}

// "Manage CPU" on without running its handler, which would talk to the tuning service.
void manageCpu(TestWindow &p, bool on)
{
    p.ui().checkBox_DontManageCPU->setChecked(on);
    p.ui().turbo_override->setEnabled(on);
}
} // namespace

class PowerApplyTest : public QObject {
    Q_OBJECT

private slots:
    // Timeouts by combo index (short sleep timeouts use "-x" alone), and the lid's action values.
    void catalogueRows_data()
    {
        QTest::addColumn<char>("kind");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("ac");
        QTest::addColumn<QString>("dc");
        const int minutes[] = {0, 5, 10, 15, 20, 30, 60, 120, 300};
        for (int index = 0; index < 9; ++index) {
            const QString m = QString::number(minutes[index]);
            const QString sleep = index <= 3 ? "powercfg -x -standby-timeout-"
                                             : "powercfg -change -x -standby-timeout-";
            QTest::addRow("screen %d", index)
                << 's' << index << "powercfg -change -monitor-timeout-ac " + m
                << "powercfg -change -monitor-timeout-dc " + m;
            QTest::addRow("sleep %d", index)
                << 'z' << index << sleep + "ac " + m << sleep + "dc " + m;
        }
        for (int index : {-1, 9}) {
            QTest::addRow("screen %d", index) << 's' << index << QString() << QString();
            QTest::addRow("sleep %d", index) << 'z' << index << QString() << QString();
        }
        const QString lid = QStringLiteral(" SCHEME_CURRENT 4f971e89-eebd-4455-a8de-9e59040e7347 "
                                           "5ca83367-6e45-459f-a27b-476b1d01c936 ");
        for (int index : {0, 1, 2}) {
            const QString value = QString::number(index == 2 ? 3 : index); // shutdown is 3
            QTest::addRow("lid %d", index)
                << 'l' << index << "powercfg setacvalueindex" + lid + value
                << "powercfg setdcvalueindex" + lid + value;
        }
        for (int index : {-1, 3})
            QTest::addRow("lid %d", index) << 'l' << index << QString() << QString();
    }

    void catalogueRows()
    {
        QFETCH(char, kind);
        QFETCH(int, index);
        const powercmd::Pair pair = kind == 's'   ? powercmd::screenOff(index)
                                    : kind == 'z' ? powercmd::sleepAfter(index)
                                                  : powercmd::lidClose(index);
        QTEST(pair.ac, "ac");
        QTEST(pair.dc, "dc");
    }

    void fanCodes_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("current");
        QTest::addColumn<QString>("code");
        QTest::newRow("No Change") << 0 << "3" << QString("none");
        for (int index = 1; index <= 6; ++index)
            QTest::addRow("%d", index) << index << "none" << QString::number(index);
        QTest::newRow("no selection keeps the code") << -1 << "5" << QString("5");
        QTest::newRow("beyond the list keeps the code") << 7 << "2" << QString("2");
    }

    void fanCodes()
    {
        QFETCH(int, index);
        QFETCH(QString, current);
        QTEST(powercmd::fanProfileCode(index, current), "code");
    }

    void wholeProfileRunsTheCatalogueInOrder()
    {
        TestWindow p;
        p.fake.panel->level = 37;
        p.startWithPowerModes();
        p.window->ApplyPowerValues();
        // The scheme keeps the panel's present brightness; then the normal profile of the defaults.
        const QStringList expected = schemeBrightness(37) + processor("PROCTHROTTLEMIN", 5) +
                                     processor("PROCTHROTTLEMAX", 100) +
                                     pair("powercfg -change -monitor-timeout-ac 20",
                                          "powercfg -change -monitor-timeout-dc 20") +
                                     pair("powercfg -change -x -standby-timeout-ac 60",
                                          "powercfg -change -x -standby-timeout-dc 60") +
                                     lid(1);
        QCOMPARE(p.commands(), expected);
        QVERIFY(!p.window->powerModes()->powerModeLoading());
        QCOMPARE(p.window->powerModes()->fanProfileCode(), QStringLiteral("1"));

        // A panel that cannot be read has no present level: the scheme gets the mode's own.
        p.fake.panel->level = -1;
        p.window->GetBrightness();
        p.fake.log->clear();
        p.window->ApplyPowerValues();
        QCOMPARE(p.commands().mid(0, 3), schemeBrightness(80));
    }

    void panelFollowsAfterTwoSecondsAndSchemeAfterThree()
    {
        TestWindow p;
        p.fake.panel->level = 37;
        p.startWithPowerModes();
        p.window->ApplyPowerValues();
        QCOMPARE(p.fake.scheduler->history, QStringList{"2000 ApplyPowerBrightness"});
        p.fake.log->clear();
        p.fake.scheduler->history.clear();
        p.fake.scheduler->advance(1999);
        QVERIFY(p.fake.log->entries.isEmpty());
        p.fake.scheduler->advance(1);
        QCOMPARE(p.fake.log->entries, QStringList{"panel write 80"});
        QCOMPARE(p.ui().Slider_Brightness->value(), 80);
        QCOMPARE(p.ui().Label_Brightness->text(), QStringLiteral("Brightness: 80%"));
        QCOMPARE(p.fake.scheduler->history, QStringList{"1000 ApplySchemeBright"});
        p.fake.scheduler->advance(1000);
        QCOMPARE(p.commands(), schemeBrightness(80));
    }

    void ignoredPanelStillWritesTheSchemeBrightness()
    {
        TestWindow p;
        p.setUser("ignore_lcd_bright_normal", true);
        p.fake.panel->level = 64;
        p.startWithPowerModes();
        p.window->ApplyPowerValues();
        QCOMPARE(p.commands().mid(0, 3), schemeBrightness(64));
        QVERIFY(p.fake.scheduler->history.isEmpty());

        // The delayed brightness apply still schedules the scheme, but leaves the panel alone.
        p.window->ApplyPowerBrightness();
        QVERIFY(p.fake.log->withPrefix("panel write").isEmpty());
        QCOMPARE(p.fake.scheduler->history, QStringList{"1000 ApplySchemeBright"});
    }

    void singleFieldSlotsRunOnePairEach_data()
    {
        QTest::addColumn<QString>("slot");
        QTest::addColumn<QStringList>("commands");
        QTest::addColumn<QString>("userKey"); // a damaged figure in the user's file, or none
        QTest::addColumn<QVariant>("userValue");
        const QStringList minimum = processor("PROCTHROTTLEMIN", 5);
        const QStringList maximum = processor("PROCTHROTTLEMAX", 100);
        const QStringList sleep = pair("powercfg -change -x -standby-timeout-ac 60",
                                       "powercfg -change -x -standby-timeout-dc 60");
        QTest::newRow("screen off") << "turnoffScreenPowerMode"
                                    << pair("powercfg -change -monitor-timeout-ac 20",
                                            "powercfg -change -monitor-timeout-dc 20")
                                    << QString() << QVariant();
        // Damaged figures give way to the shipped defaults instead of becoming commands.
        QTest::newRow("minimum of 4000 %")
            << "ApplyCpuMin" << minimum << "cpu_min_slider_normal" << QVariant(4000);
        QTest::newRow("maximum as text")
            << "ApplyCpuMax" << maximum << "cpu_max_slider_normal" << QVariant("abc");
        QTest::newRow("sleep entry past the list")
            << "ApplySleepAfterPowerMode" << sleep << "Sleep_After_Combo_normal" << QVariant(12);
        QTest::newRow("lid as text")
            << "ApplyLidClosePowerMode" << lid(1) << "LidClose_Combo_normal" << QVariant("x");
        QTest::newRow("negative brightness") << "ApplySchemeBright" << schemeBrightness(80)
                                             << "PowerModeBrightSlider_normal" << QVariant(-5);
    }

    void singleFieldSlotsRunOnePairEach()
    {
        QFETCH(QString, slot);
        QFETCH(QStringList, commands);
        QFETCH(QString, userKey);
        QFETCH(QVariant, userValue);
        TestWindow p;
        if (!userKey.isEmpty())
            p.setUser(userKey, userValue);
        p.startWithPowerModes();
        QVERIFY(QMetaObject::invokeMethod(p.window.get(), slot.toLatin1().constData()));
        QCOMPARE(p.commands(), commands);
    }

    void applyLeavesTheKeyboardCodeAlone()
    {
        TestWindow p;
        p.startWithPowerModes();
        PowerModes *modes = p.window->powerModes();
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",60"));
        // Moved while loading (no handler saves), the apply must not pick the new level up.
        p.ui().horizontalSlider_2->blockSignals(true);
        p.ui().horizontalSlider_2->setValue(5);
        p.ui().horizontalSlider_2->blockSignals(false);
        p.window->ApplyPowerValues();
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",60"));
        // The slot on its own does pick it up, and sets the keyboard where the machine can.
        p.clearRecords();
        p.window->ApplyPowerKBLED();
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",5"));
        QCOMPARE(p.fake.log->entries, QStringList{"keyboard light 5"});
    }

    void turboOverrideNeedsOverrideAndManagedCpu()
    {
        TestWindow p;
        p.startWithPowerModes();
        Ui::MainWindow &ui = p.ui();
        manageCpu(p, true);
        ui.power_mode_turbo_boost->setValue(300);
        ui.Slider_TurboBoost->setValue(100);
        p.window->ApplyPowerTurboBoost(); // override off
        QCOMPARE(p.tuningApplies(), 0);

        ui.turbo_override->click();
        manageCpu(p, false);
        p.window->ApplyPowerTurboBoost();
        p.window->ApplyPowerValues();
        QCOMPARE(p.tuningApplies(), 0);
        QCOMPARE(ui.Slider_TurboBoost->value(), 100);
    }

    void turboOverrideAppliesADifferingValueOnce_data()
    {
        QTest::addColumn<bool>("movedBack");
        QTest::newRow("tuning tab read another value") << false;
        QTest::newRow("mode's slider moved and back") << true;
    }

    void turboOverrideAppliesADifferingValueOnce()
    {
        QFETCH(bool, movedBack);
        TestWindow p;
        p.startWithPowerModes();
        Ui::MainWindow &ui = p.ui();
        manageCpu(p, true);
        ui.turbo_override->click();
        ui.power_mode_turbo_boost->setValue(300);
        p.window->ApplyPowerTurboBoost(); // settles the pending change
        p.clearRecords();
        if (movedBack) {
            ui.power_mode_turbo_boost->setValue(301);
            ui.power_mode_turbo_boost->setValue(300); // back where the tuning slider already is
            QVERIFY(p.window->powerModes()->turboOverridePending());
            QCOMPARE(p.fake.scheduler->history,
                     (QStringList{"4000 ApplyPowerTurboBoost", "4000 ApplyPowerTurboBoost"}));
            p.fake.scheduler->runAll();
            QVERIFY(!p.window->powerModes()->turboOverridePending());
        } else {
            ui.Slider_TurboBoost->setValue(100);
            p.window->ApplyPowerValues();
            QCOMPARE(ui.Slider_TurboBoost->value(), 300);
            QCOMPARE(p.tuningApplies(), 1);
            p.window->ApplyPowerTurboBoost();
        }
        QCOMPARE(p.tuningApplies(), 1);
    }
};

QTEST_MAIN(PowerApplyTest)
#include "tst_powerapply.moc"
