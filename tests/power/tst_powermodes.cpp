// Power modes: the power-scheme command catalogue, then on the real window the profile editor,
// applying a mode, and switching modes by hand, by tray entry and on battery power.
#include "powercommands.h"
#include "powermodes.h"
#include "testwindow.h"

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QtTest>

namespace {
const QString kActivate = QStringLiteral("shown 0: powercfg -SetActive SCHEME_CURRENT");
const QString kDisplay = QStringLiteral("SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 ");
const QString kLid = QStringLiteral("SCHEME_CURRENT 4f971e89-eebd-4455-a8de-9e59040e7347 "
                                    "5ca83367-6e45-459f-a27b-476b1d01c936 ");

QStringList pair(const QString &ac, const QString &dc)
{
    return {"run: " + ac, "run: " + dc, kActivate};
}

// One setting for mains and battery; `verb` is "powercfg -set" or "powercfg set".
QStringList both(const char *verb, const QString &setting)
{
    return pair(verb + QStringLiteral("acvalueindex ") + setting,
                verb + QStringLiteral("dcvalueindex ") + setting);
}

QStringList schemeBrightness(int value)
{
    return both("powercfg -set",
                kDisplay + "aded5e82-b909-4619-9949-f5d71dac0bcb " + QString::number(value));
}

QStringList processor(const char *limit, int value)
{
    return both(
        "powercfg -set",
        QStringLiteral("SCHEME_CURRENT SUB_PROCESSOR %1 %2").arg(QLatin1String(limit)).arg(value));
}

const QStringList kScreen20 =
    pair("powercfg -change -monitor-timeout-ac 20", "powercfg -change -monitor-timeout-dc 20");
const QStringList kSleep60 = pair("powercfg -change -x -standby-timeout-ac 60",
                                  "powercfg -change -x -standby-timeout-dc 60");
const QStringList kLidSleeps = both("powercfg set", kLid + "1");

// "Manage CPU" on without running its handler, which would talk to the tuning service.
void manageCpu(TestWindow &p, bool on)
{
    p.ui().checkBox_DontManageCPU->setChecked(on);
    p.ui().turbo_override->setEnabled(on);
}

QStringList menuTexts(QMenu *menu)
{
    QStringList out;
    for (QAction *a : menu->actions())
        out << (a->isSeparator() ? QStringLiteral("-") : a->text());
    return out;
}

// The editor's switches that follow the feature: the tab, the reset and the automatic box.
void checkEditorEnabled(const Ui::MainWindow &ui, bool enabled)
{
    QCOMPARE(ui.tabWidget->isTabEnabled(0), enabled);
    QCOMPARE(ui.reset_power_modes->isEnabled(), enabled);
    QCOMPARE(ui.battery_mode_auto->isEnabled(), enabled);
}

const QStringList kTrayEnd = {"-", "Show Window Center", "Exit"};
const QStringList kTrayModes = {"Battery Mode", "Silent Mode", "Normal Mode", "Maximum Mode"};

const char kSelected[] = "branding/fancontrol_system_tray_selected.png";
const char kNotSelected[] = "branding/fancontrol_system_tray_not_selected.png";

// Which of the four tray entries carry the selected icon.
QStringList selectedEntries(const TestWindow &p)
{
    const QImage selected = QIcon(QLatin1String(kSelected)).pixmap(16, 16).toImage();
    const TrayActions &tray = p.window->trayActions();
    QStringList out;
    for (QAction *a : {tray.battery, tray.silent, tray.normal, tray.maximum}) {
        if (a->icon().pixmap(16, 16).toImage() == selected)
            out << a->text();
    }
    return out;
}

void start(TestWindow &p)
{
    p.folder.copyShipped(QLatin1String(kSelected));
    p.folder.copyShipped(QLatin1String(kNotSelected));
    p.startWithPowerModes();
}
} // namespace

class PowerModesTest : public QObject {
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
        for (int index : {0, 1, 2}) {
            const QString value = QString::number(index == 2 ? 3 : index); // shutdown is 3
            QTest::addRow("lid %d", index)
                << 'l' << index << "powercfg setacvalueindex " + kLid + value
                << "powercfg setdcvalueindex " + kLid + value;
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

    void loadShowsTheProfileUserKeysFirst()
    {
        TestWindow p;
        for (const char *key :
             {"turbo_override_maximum", "ignore_lcd_bright_maximum", "checkBox_maximum"})
            p.setUser(key, true);
        p.setUser("cpu_min_slider_maximum", 33);
        p.setUser("LidClose_Combo_maximum", 2);
        p.startWithPowerModes(QStringLiteral("maximum"));
        Ui::MainWindow &ui = p.ui();
        QVERIFY(ui.maximum_mode->isChecked());
        QCOMPARE((QList<int>{ui.silent_cpu_min->value(), ui.silent_cpu_max->value(),
                             ui.LidClose_Combo->currentIndex(), ui.power_mode_turbo_boost->value(),
                             ui.comboBox_5->currentIndex()}),
                 (QList<int>{33, 100, 2, 720, 6}));
        QCOMPARE((QStringList{ui.Cpu_Minimum_Label->text(), ui.Cpu_Maximum_Label->text(),
                              ui.PowerModeBrightSlider_Label->text(), ui.label_26->text()}),
                 (QStringList{"CPU minimum: 33%", "CPU maximum: 100%",
                              "Initial LCD Brightness: 100%", "Keyboard Brightness: 100%"}));
        QCOMPARE(ui.turbo_override->text(),
                 QStringLiteral("Turbo Power Override: ") + ui.Label_TurboPowerValue->text());
        // Turbo override on: the mode's slider replaces the tuning tab's.
        QVERIFY(ui.power_mode_turbo_boost->isEnabled());
        QVERIFY(!ui.Slider_TurboBoost->isEnabled());
        QCOMPARE(ui.Slider_TurboBoost->toolTip(),
                 QStringLiteral(" Currently being replaced by Power Mode Override value. "));
        QVERIFY(!ui.PowerModeBrightSlider->isEnabled());
        QVERIFY(!ui.horizontalSlider_2->isEnabled());
        checkEditorEnabled(ui, true);
        // The keyboard is ignored, so its code stays unset.
        QCOMPARE(p.window->powerModes()->keyboardLedCode(), QStringLiteral(",none"));
        QCOMPARE(p.window->powerModes()->fanProfileCode(), QStringLiteral("6"));

        QSettings(p.folder.file(TestWindow::user), QSettings::IniFormat)
            .remove(QStringLiteral("settings/cpu_min_slider_maximum"));
        p.window->loadPowerModeValues();
        QCOMPARE(ui.silent_cpu_min->value(), 10);
        QCOMPARE(ui.LidClose_Combo->currentIndex(), 2);

        // A stored mode that names none of the four leaves the radio buttons alone.
        p.setGeneral("powermode", "Silent");
        p.window->loadPowerModeValues();
        QVERIFY(ui.maximum_mode->isChecked());

        // Keys missing from both files read as each control's lowest; other modes' keys count not.
        QFile::remove(p.folder.file(TestWindow::defaults));
        p.setGeneral("powermode", "silent");
        p.window->loadPowerModeValues();
        QVERIFY(ui.silent_mode->isChecked());
        QCOMPARE(
            (QList<int>{ui.silent_cpu_min->value(), ui.silent_cpu_max->value(),
                        ui.power_mode_turbo_boost->value(), ui.PowerModeBrightSlider->value(),
                        ui.comboBox_5->currentIndex(), ui.TurnOffScreen_combo->currentIndex()}),
            (QList<int>{0, 50, 8, 0, 0, 0}));
        QVERIFY(!ui.turbo_override->isChecked() && !ui.ignore_lcd_bright->isChecked() &&
                !ui.checkBox->isChecked());
        // The label shows the number read, not the clamped slider.
        QCOMPARE(ui.Cpu_Maximum_Label->text(), QStringLiteral("CPU maximum: 0%"));
    }

    void minimumAndMaximumPushEachOther_data()
    {
        QTest::addColumn<int>("minBefore");
        QTest::addColumn<int>("maxBefore");
        QTest::addColumn<QString>("moved");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("min");
        QTest::addColumn<int>("max");
        QTest::addColumn<QStringList>("scheduled");
        const QString applyMin = "4000 ApplyCpuMin", applyMax = "4000 ApplyCpuMax";
        // The pushed slider's handler runs inside the first one.
        QTest::newRow("raised minimum pushes the maximum")
            << 5 << 80 << "silent_cpu_min" << 90 << 90 << 91 << QStringList{applyMax, applyMin};
        QTest::newRow("equal values are allowed")
            << 5 << 91 << "silent_cpu_min" << 91 << 91 << 91 << QStringList{applyMin};
        QTest::newRow("lowered maximum pulls the minimum")
            << 70 << 100 << "silent_cpu_max" << 60 << 59 << 60 << QStringList{applyMin, applyMax};
        QTest::newRow("maximum stops at its range")
            << 90 << 100 << "silent_cpu_max" << 10 << 49 << 50 << QStringList{applyMin, applyMax};
    }

    void minimumAndMaximumPushEachOther()
    {
        QFETCH(QString, moved);
        QFETCH(int, value);
        QFETCH(int, min);
        QFETCH(int, max);
        TestWindow p;
        QFETCH(int, minBefore);
        QFETCH(int, maxBefore);
        p.setUser("cpu_min_slider_normal", minBefore);
        p.setUser("cpu_max_slider_normal", maxBefore);
        p.startWithPowerModes();
        p.window->findChild<QSlider *>(moved)->setValue(value);
        QCOMPARE((QList<int>{p.ui().silent_cpu_min->value(), p.ui().silent_cpu_max->value(),
                             p.userValue("cpu_min_slider_normal").toInt(),
                             p.userValue("cpu_max_slider_normal").toInt()}),
                 (QList<int>{min, max, min, max}));
        QCOMPARE(p.ui().Cpu_Maximum_Label->text(), QStringLiteral("CPU maximum: %1%").arg(max));
        QTEST(p.fake.scheduler->history, "scheduled");
    }

    void editsScheduleTheirApply_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("scheduled");
        auto row = [](const char *control, int value, const char *scheduled) {
            QTest::newRow(control)
                << QString(control) << value << QString(control) + "_normal" << QString(scheduled);
        };
        row("power_mode_turbo_boost", 400, "4000 ApplyPowerTurboBoost");
        row("PowerModeBrightSlider", 33, "1000 ApplySchemeBright");
        row("TurnOffScreen_combo", 8, "4000 turnoffScreenPowerMode");
        row("Sleep_After_Combo", 0, "4000 ApplySleepAfterPowerMode");
        row("LidClose_Combo", 2, "4000 ApplyLidClosePowerMode");
        row("comboBox_5", 3, ""); // the fan and the keyboard take effect at once
        row("horizontalSlider_2", 45, "");
    }

    void editsScheduleTheirApply()
    {
        QFETCH(QString, control);
        QFETCH(int, value);
        QFETCH(QString, key);
        QFETCH(QString, scheduled);
        TestWindow p;
        p.startWithPowerModes();
        QFile::remove(p.folder.file(TestWindow::user));
        QWidget *widget = p.window->findChild<QWidget *>(control);
        if (auto *slider = qobject_cast<QAbstractSlider *>(widget))
            slider->setValue(value);
        else
            qobject_cast<QComboBox *>(widget)->setCurrentIndex(value);
        QCOMPARE(p.userKeys(), QStringList{key});
        QCOMPARE(p.userValue(key).toInt(), value);
        QCOMPARE(p.fake.scheduler->history,
                 scheduled.isEmpty() ? QStringList() : QStringList{scheduled});
        QVERIFY(p.commands().isEmpty()); // nothing runs before the delay
    }

    void editorControlsSaveSwitchAndSchedule()
    {
        TestWindow p;
        p.startWithPowerModes();
        Ui::MainWindow &ui = p.ui();
        PowerModes *modes = p.window->powerModes();
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",60"));
        // Moved while loading (no handler saves), the apply must not pick the new level up.
        ui.horizontalSlider_2->blockSignals(true);
        ui.horizontalSlider_2->setValue(5);
        ui.horizontalSlider_2->blockSignals(false);
        p.window->ApplyPowerValues();
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",60"));
        // The slot on its own does pick it up, and sets the keyboard where the machine can.
        p.clearRecords();
        p.window->ApplyPowerKBLED();
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",5"));
        QCOMPARE(p.fake.log->entries, QStringList{"keyboard light 5"});

        p.clearRecords();
        ui.PowerModeBrightSlider->setValue(41);
        ui.PowerModeBrightSlider->setValue(42); // a drag queues one call per value
        QCOMPARE(p.fake.scheduler->history,
                 (QStringList{"1000 ApplySchemeBright", "1000 ApplySchemeBright"}));
        // The panel follows the mode's brightness at once, as do the fan and keyboard codes.
        QCOMPARE(ui.Slider_Brightness->value(), 42);
        QVERIFY(p.fake.log->entries.contains("panel write 42"));
        ui.comboBox_5->setCurrentIndex(6);
        ui.horizontalSlider_2->setValue(7);
        QCOMPARE(modes->statusRecord(), QStringLiteral("6,7"));
        p.fake.log->clear();
        p.fake.scheduler->advance(1000); // each queued call applies the last value
        QCOMPARE(p.commands(), schemeBrightness(42) + schemeBrightness(42));

        manageCpu(p, true);
        ui.power_mode_turbo_boost->setValue(300);
        ui.Slider_TurboBoost->setValue(100);
        p.window->ApplyPowerTurboBoost(); // override off
        QCOMPARE(p.tuningApplies(), 0);

        ui.turbo_override->click();
        QCOMPARE(p.userValue("turbo_override_normal").toBool(), true);
        QVERIFY(ui.power_mode_turbo_boost->isEnabled() && !ui.Slider_TurboBoost->isEnabled());
        manageCpu(p, false); // the override needs a managed CPU too
        p.window->ApplyPowerTurboBoost();
        p.window->ApplyPowerValues();
        QCOMPARE(p.tuningApplies(), 0);
        QCOMPARE(ui.Slider_TurboBoost->value(), 100);
        manageCpu(p, true);
        p.clearRecords();
        ui.turbo_override->click();
        QCOMPARE(p.userValue("turbo_override_normal").toBool(), false);
        QVERIFY(!ui.power_mode_turbo_boost->isEnabled());
        QCOMPARE(ui.Slider_TurboBoost->toolTip(), QStringLiteral(" Adjust CPU Turbo Boost Power "));
        QVERIFY(p.commands().isEmpty()); // nothing applied at once

        ui.ignore_lcd_bright->click();
        QCOMPARE(p.userValue("ignore_lcd_bright_normal").toBool(), true);
        QVERIFY(!ui.PowerModeBrightSlider->isEnabled());
        ui.Slider_Brightness->setValue(10);
        ui.ignore_lcd_bright->click();
        QVERIFY(ui.PowerModeBrightSlider->isEnabled());
        QCOMPARE(ui.Slider_Brightness->value(), ui.PowerModeBrightSlider->value());

        ui.checkBox->click();
        QCOMPARE(p.userValue("checkBox_normal").toBool(), true);
        QVERIFY(!ui.horizontalSlider_2->isEnabled());
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",none"));
        ui.checkBox->click();
        QVERIFY(ui.horizontalSlider_2->isEnabled());
        QCOMPARE(modes->keyboardLedCode(), QStringLiteral(",7"));

        // With no mode checked, the profile keys end in the digit zero.
        ui.normal_mode->setAutoExclusive(false);
        ui.normal_mode->setChecked(false);
        QCOMPARE(modes->currentPowerModeName(), QStringLiteral("0"));
        ui.LidClose_Combo->setCurrentIndex(0);
        QVERIFY(p.userKeys().contains("LidClose_Combo_0"));
    }

    void turboOverrideAppliesADifferingValueOnce()
    {
        TestWindow p;
        p.startWithPowerModes();
        Ui::MainWindow &ui = p.ui();
        manageCpu(p, true);
        ui.turbo_override->click();
        ui.power_mode_turbo_boost->setValue(300);
        p.window->ApplyPowerTurboBoost(); // settles the pending change
        p.clearRecords();
        ui.Slider_TurboBoost->setValue(100); // the tuning tab read another value
        p.window->ApplyPowerValues();
        QCOMPARE(ui.Slider_TurboBoost->value(), 300);
        QCOMPARE(p.tuningApplies(), 1);
        p.window->ApplyPowerTurboBoost();
        QCOMPARE(p.tuningApplies(), 1);

        p.clearRecords();
        ui.power_mode_turbo_boost->setValue(301);
        ui.power_mode_turbo_boost->setValue(300); // back where the tuning slider already is
        QVERIFY(p.window->powerModes()->turboOverridePending());
        QCOMPARE(p.fake.scheduler->history,
                 (QStringList{"4000 ApplyPowerTurboBoost", "4000 ApplyPowerTurboBoost"}));
        p.fake.scheduler->advance(4000);
        QVERIFY(!p.window->powerModes()->turboOverridePending());
        QCOMPARE(p.tuningApplies(), 1);
    }

    // The scheme commands of an apply, and of a change of the active scheme.
    void applyRunsTheProfileThenThePanelAndScheme()
    {
        TestWindow p;
        p.fake.panel->level = 37;
        p.startWithPowerModes();
        p.window->ApplyPowerValues();
        // The scheme keeps the panel's present brightness; then the normal profile of the defaults.
        QCOMPARE(p.commands(), schemeBrightness(37) + processor("PROCTHROTTLEMIN", 5) +
                                   processor("PROCTHROTTLEMAX", 100) + kScreen20 + kSleep60 +
                                   kLidSleeps);
        QCOMPARE(p.window->powerModes()->fanProfileCode(), QStringLiteral("1"));

        // A panel that cannot be read has no present level: the scheme gets the mode's own.
        p.fake.panel->level = -1;
        p.window->GetBrightness();
        p.clearRecords();
        p.window->ApplyPowerValues();
        QCOMPARE(p.commands().mid(0, 3), schemeBrightness(80));

        // Readable again, the panel follows after two seconds, the scheme one second later.
        p.fake.panel->level = 37;
        p.window->GetBrightness();
        QCOMPARE(p.fake.scheduler->history, QStringList{"2000 ApplyPowerBrightness"});
        p.fake.log->clear();
        p.fake.scheduler->history.clear();
        p.fake.scheduler->advance(1999);
        QVERIFY(p.fake.log->entries.isEmpty());
        p.fake.scheduler->advance(1);
        QCOMPARE(p.fake.log->entries, QStringList{"panel write 80"});
        QCOMPARE(p.ui().Label_Brightness->text(), QStringLiteral("Brightness: 80%"));
        QCOMPARE(p.fake.scheduler->history, QStringList{"1000 ApplySchemeBright"});
        p.fake.scheduler->advance(1000);
        QCOMPARE(p.commands(), schemeBrightness(80));

        // An ignored panel is left alone, yet its level still goes to the scheme.
        p.ui().ignore_lcd_bright->click();
        p.fake.panel->level = 64;
        p.window->GetBrightness();
        p.clearRecords();
        p.window->ApplyPowerValues();
        QCOMPARE(p.commands().mid(0, 3), schemeBrightness(64));
        QVERIFY(p.fake.scheduler->history.isEmpty());
        p.window->ApplyPowerBrightness();
        QVERIFY(p.fake.log->withPrefix("panel write").isEmpty());
        QCOMPARE(p.fake.scheduler->history, QStringList{"1000 ApplySchemeBright"});

        // Of the active scheme the first answer is only remembered, the same one again changes
        // nothing; a new scheme gets the adaptive brightness of the box.
        const QString query = QStringLiteral("powercfg /getactivescheme");
        const QString setting = kDisplay + "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 ";
        for (const char *value : {"", "", "0", "1"}) {
            p.clearRecords();
            p.ui().Check_Adaptive->setChecked(*value == '0');
            p.fake.commands->outputs[query] = QStringLiteral("GUID: ") + (*value ? value : "a");
            p.window->GetPowerSchemeName();
            QStringList expected{"run: " + query};
            if (*value)
                expected << "shown 0: powercfg -setdcvalueindex " + setting + value
                         << "shown 0: powercfg -setacvalueindex " + setting + value << kActivate;
            QCOMPARE(p.commands(), expected);
            if (*value)
                QCOMPARE(p.generalValue("AdaptiveBrightness").toBool(), *value == '0');
        }
    }

    void singleFieldSlotsRunOnePairEach_data()
    {
        QTest::addColumn<QString>("slot");
        QTest::addColumn<QStringList>("commands");
        QTest::addColumn<QString>("userKey"); // a damaged figure in the user's file, or none
        QTest::addColumn<QVariant>("userValue");
        QTest::newRow("screen off")
            << "turnoffScreenPowerMode" << kScreen20 << QString() << QVariant();
        // Damaged figures give way to the shipped defaults instead of becoming commands.
        QTest::newRow("minimum of 4000 %") << "ApplyCpuMin" << processor("PROCTHROTTLEMIN", 5)
                                           << "cpu_min_slider_normal" << QVariant(4000);
        QTest::newRow("maximum as text") << "ApplyCpuMax" << processor("PROCTHROTTLEMAX", 100)
                                         << "cpu_max_slider_normal" << QVariant("abc");
        QTest::newRow("sleep entry past the list")
            << "ApplySleepAfterPowerMode" << kSleep60 << "Sleep_After_Combo_normal" << QVariant(12);
        QTest::newRow("lid as text")
            << "ApplyLidClosePowerMode" << kLidSleeps << "LidClose_Combo_normal" << QVariant("x");
        QTest::newRow("negative brightness") << "ApplySchemeBright" << schemeBrightness(80)
                                             << "PowerModeBrightSlider_normal" << QVariant(-5);
    }

    void singleFieldSlotsRunOnePairEach()
    {
        QFETCH(QString, slot);
        QFETCH(QString, userKey);
        QFETCH(QVariant, userValue);
        TestWindow p;
        if (!userKey.isEmpty())
            p.setUser(userKey, userValue);
        p.startWithPowerModes();
        QVERIFY(QMetaObject::invokeMethod(p.window.get(), slot.toLatin1().constData()));
        QTEST(p.commands(), "commands");
    }

    void featureSwitchAndTrayEntries()
    {
        TestWindow off;
        off.start();
        QVERIFY(!off.ui().checkBox_2->isChecked());
        checkEditorEnabled(off.ui(), false);
        QCOMPARE(menuTexts(off.window->trayMenu()), kTrayEnd);
        QVERIFY(!QFile::exists(off.folder.file(TestWindow::user)));
        off.window->loadPowerModeValues(); // with the feature off, only switches the editor off
        QVERIFY(off.commands().isEmpty());

        TestWindow p;
        start(p);
        Ui::MainWindow &ui = p.ui();
        QMenu *menu = p.window->trayMenu();
        QCOMPARE(menuTexts(menu), kTrayModes + kTrayEnd);
        ui.horizontalSlider_2->setValue(30);
        ui.checkBox_2->click();
        QCOMPARE(menuTexts(menu), kTrayEnd);
        QCOMPARE(p.generalValue("enable_power_modes").toBool(), false);
        checkEditorEnabled(ui, false);
        // The keyboard is released; the fan code stays as it was.
        QCOMPARE(p.window->powerModes()->statusRecord(), QStringLiteral("1,none"));

        ui.checkBox_2->click();
        QCOMPARE(menuTexts(menu), kTrayEnd + kTrayModes);
        QCOMPARE(p.generalValue("enable_power_modes").toBool(), true);
        checkEditorEnabled(ui, true);
        // Turning the feature on loads and applies the checked mode.
        QVERIFY(p.commands().contains("run: powercfg -change -monitor-timeout-ac 20"));

        QCOMPARE(selectedEntries(p), QStringList{"Normal Mode"});

        p.clearRecords();
        p.window->trayActions().silent->trigger();
        QVERIFY(p.ui().silent_mode->isChecked());
        QCOMPARE(selectedEntries(p), QStringList{"Silent Mode"});
        QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("silent"));
        QVERIFY(p.commands().contains(processor("PROCTHROTTLEMAX", 80).at(0)));
        // The same mode again is applied again.
        QCOMPARE(p.fake.log->withPrefix("run: ").size(), 12);
        p.window->trayActions().silent->trigger();
        QCOMPARE(p.fake.log->withPrefix("run: ").size(), 24);

        p.ui().maximum_mode->click();
        QCOMPARE(selectedEntries(p), QStringList{"Maximum Mode"});
        QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("maximum"));

        // A selection during an apply is only recorded.
        bool cutIn = false;
        p.fake.commands->onRun = [&](const QString &line) {
            if (!cutIn && line.contains(QLatin1String("PROCTHROTTLEMIN"))) {
                cutIn = true;
                p.window->trayActions().battery->trigger();
            }
        };
        p.clearRecords();
        p.window->ApplyPowerValues();
        QVERIFY(cutIn);
        QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("battery"));
        QCOMPARE(selectedEntries(p), QStringList{"Battery Mode"});
        QVERIFY(p.ui().maximum_mode->isChecked());
        QVERIFY(!p.commands().contains(processor("PROCTHROTTLEMAX", 60).at(0)));
        QCOMPARE(p.fake.log->withPrefix("run: ").size(), 12);
    }

    void loadWritesOnlyTheKeyboardLevelAndResetTellsOnce()
    {
        TestWindow p;
        p.setUser("cpu_min_slider_battery", 44);
        p.setUser("cpu_min_slider_normal", 45);
        p.startWithPowerModes(QStringLiteral("battery"));
        QCOMPARE(p.ui().silent_cpu_min->value(), 44);
        // The keyboard slider moved from 0 to the profile's level, and its handler ran in full.
        QCOMPARE(p.userKeys(), (QStringList{"cpu_min_slider_battery", "cpu_min_slider_normal",
                                            "horizontalSlider_2_battery"}));
        QCOMPARE(p.window->powerModes()->keyboardLedCode(), QStringLiteral(",20"));

        p.ui().reset_power_modes->click();
        QCOMPARE(p.ui().silent_cpu_max->value(), 60);
        QCOMPARE(p.fake.dialogs->lines(),
                 QStringList("Information | Reset Power Modes | All Power "
                             "Modes have been reset to default values.\n | Ok"));
        // The message comes after the profile was applied.
        const int applied = p.fake.log->indexOf(processor("PROCTHROTTLEMIN", 5).at(0));
        QVERIFY(applied >= 0);
        QVERIFY(p.fake.log->indexOf("message: Reset Power Modes") > applied);

        p.clearRecords();
        p.window->on_silent_mode_clicked(); // the reset left no user key behind
        QCOMPARE(p.userKeys(), QStringList{"horizontalSlider_2_silent"});
        // Handlers fired by the load neither save nor schedule: only the apply's own delay is left.
        QCOMPARE(p.fake.scheduler->history, QStringList{"2000 ApplyPowerBrightness"});
    }

    // Steps: a line status then a timer tick ("0", "1", "255"), the line status read alone ("r0"),
    // a click on a mode's radio button, or on the automatic box ("auto"), which starts checked.
    void automaticBatteryMode_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("checked");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("onBattery");
        QTest::addColumn<bool>("lastStepApplied");
        auto row = [](const char *name, const char *steps, const char *checked, const char *stored,
                      int onBattery, bool applied) {
            QTest::newRow(name) << steps << checked << stored << onBattery << applied;
        };
        row("on mains nothing happens", "1", "normal", "normal", 0, false);
        row("unplugged: battery, mains mode kept", "0", "battery", "normal", 1, true);
        row("still on battery: not again", "0 0", "battery", "normal", 1, false);
        row("plugged in: mains mode back", "maximum 0 1", "maximum", "maximum", 0, true);
        row("battery by hand is never left", "battery 0 1", "battery", "battery", 0, false);
        row("unknown status keeps mains", "255", "normal", "normal", 0, false);
        row("unknown status keeps battery", "0 255", "battery", "normal", 1, false);
        row("hand-picked mode on battery lasts a tick", "0 silent 0", "battery", "silent", 1, true);
        row("and comes back on mains", "0 silent 0 1", "silent", "silent", 0, true);
        row("automatic mode off", "auto 0", "normal", "normal", 1, false);
        row("turned off while switched", "0 auto 1", "battery", "normal", 0, false);
        row("and on again on mains", "0 auto 1 auto 1", "normal", "normal", 0, true);
        row("status read alone", "r0", "normal", "normal", 1, false);
        row("status read alone, back", "r0 r1", "normal", "normal", 0, false);
    }

    void automaticBatteryMode()
    {
        QFETCH(QString, steps);
        QFETCH(QString, checked);
        TestWindow p;
        p.setGeneral("autobatterymode", true);
        start(p);
        QVERIFY(p.ui().battery_mode_auto->isChecked());
        for (const QString &step : steps.split(' ')) {
            p.clearRecords();
            bool isNumber = false;
            const int status = step.toInt(&isNumber);
            if (isNumber) {
                p.fake.powerSource->status = status;
                p.window->timerDone();
            } else if (step.startsWith('r')) {
                p.fake.powerSource->status = step.mid(1).toInt();
                p.window->GetBatteryState();
            } else if (step == QLatin1String("auto")) {
                p.ui().battery_mode_auto->click();
            } else {
                p.window->findChild<QRadioButton *>(step + "_mode")->click();
            }
        }
        QVERIFY(p.window->findChild<QRadioButton *>(checked + "_mode")->isChecked());
        QCOMPARE(selectedEntries(p),
                 QStringList{checked.at(0).toUpper() + checked.mid(1) + " Mode"});
        QTEST(p.generalValue("powermode").toString(), "stored");
        QTEST(p.window->powerModes()->onBattery(), "onBattery");
        QTEST(!p.commands().isEmpty(), "lastStepApplied");
        QCOMPARE(p.generalValue("autobatterymode").toBool(), p.ui().battery_mode_auto->isChecked());
        QCOMPARE(p.window->powerModes()->autoSwitchedToBattery(),
                 checked == QLatin1String("battery") && !steps.contains(QLatin1String("battery")));
    }
};

QTEST_MAIN(PowerModesTest)
#include "tst_powermodes.moc"
