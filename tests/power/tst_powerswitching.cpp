// Switching power modes on the real window: radio buttons and tray entries, the automatic
// battery mode over a scripted power source, and the two invocable refresh slots.
#include "powermodes.h"
#include "testwindow.h"

#include <QAction>
#include <QImage>
#include <QtTest>

class PowerSwitchingTest : public QObject {
    Q_OBJECT

private slots:
    void trayEntrySelectsAndMarksTheMode();
    void selectingTheSameModeAppliesItAgain();
    void selectionDuringAnApplyOnlyRecordsIt();
    void unpluggingSwitchesToBatteryAndKeepsTheMainsMode();
    void pluggingInRestoresTheMainsMode();
    void batteryChosenByHandIsNeverLeft();
    void unknownLineStatusChangesNothing();
    void handPickedModeOnBatteryLastsOneTick();
    void automaticModeOffDoesNothing();
    void autoSwitchIsStoredAndRestored();
    void batteryStateFollowsTheLineStatus_data();
    void batteryStateFollowsTheLineStatus();
    void schemeChangeReappliesAdaptiveBrightness();
};

namespace {
const char kSelected[] = "branding/fancontrol_system_tray_selected.png";
const char kNotSelected[] = "branding/fancontrol_system_tray_not_selected.png";

QImage imageOf(const QIcon &icon)
{
    return icon.pixmap(16, 16).toImage();
}

// Which of the four tray entries carry the selected icon.
QStringList selectedEntries(const TestWindow &p)
{
    const QImage selected = imageOf(QIcon(QLatin1String(kSelected)));
    const TrayActions &tray = p.window->trayActions();
    QStringList out;
    for (QAction *a : {tray.battery, tray.silent, tray.normal, tray.maximum}) {
        if (imageOf(a->icon()) == selected)
            out << a->text();
    }
    return out;
}

void prepare(TestWindow &p)
{
    p.folder.copyShipped(QLatin1String(kSelected));
    p.folder.copyShipped(QLatin1String(kNotSelected));
}

void startAutomatic(TestWindow &p, const QString &mode = QStringLiteral("normal"))
{
    prepare(p);
    p.setGeneral("autobatterymode", true);
    p.startWithPowerModes(mode);
}

const QString kBatteryMax = QStringLiteral(
    "run: powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 60");
const QString kNormalScreen = QStringLiteral("run: powercfg -change -monitor-timeout-ac 20");
} // namespace

void PowerSwitchingTest::trayEntrySelectsAndMarksTheMode()
{
    TestWindow p;
    prepare(p);
    p.startWithPowerModes();
    QVERIFY(imageOf(QIcon(QLatin1String(kSelected))) !=
            imageOf(QIcon(QLatin1String(kNotSelected))));
    QCOMPARE(selectedEntries(p), QStringList{"Normal Mode"});

    p.window->trayActions().silent->trigger();
    QVERIFY(p.ui().silent_mode->isChecked());
    QCOMPARE(selectedEntries(p), QStringList{"Silent Mode"});
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("silent"));
    QCOMPARE(p.ui().silent_cpu_max->value(), 80);
    QVERIFY(p.commands().contains(
        "run: powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 80"));

    p.ui().maximum_mode->click();
    QCOMPARE(selectedEntries(p), QStringList{"Maximum Mode"});
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("maximum"));
    QCOMPARE(p.window->powerModes()->fanProfileCode(), QStringLiteral("6"));
}

void PowerSwitchingTest::selectingTheSameModeAppliesItAgain()
{
    TestWindow p;
    p.startWithPowerModes(QStringLiteral("silent"));
    p.window->trayActions().silent->trigger();
    const int first = p.fake.log->withPrefix("run: ").size();
    QCOMPARE(first, 12);
    p.window->trayActions().silent->trigger();
    QCOMPARE(p.fake.log->withPrefix("run: ").size(), 2 * first);
}

void PowerSwitchingTest::selectionDuringAnApplyOnlyRecordsIt()
{
    TestWindow p;
    prepare(p);
    p.startWithPowerModes();
    bool cutIn = false;
    p.fake.commands->onRun = [&](const QString &line) {
        if (!cutIn && line.contains(QLatin1String("PROCTHROTTLEMIN"))) {
            cutIn = true;
            p.window->trayActions().battery->trigger();
        }
    };
    p.window->ApplyPowerValues();
    QVERIFY(cutIn);
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("battery"));
    QCOMPARE(selectedEntries(p), QStringList{"Battery Mode"});
    QVERIFY(p.ui().normal_mode->isChecked());
    QVERIFY(!p.commands().contains(kBatteryMax));
    QCOMPARE(p.fake.log->withPrefix("run: ").size(), 12);
}

void PowerSwitchingTest::unpluggingSwitchesToBatteryAndKeepsTheMainsMode()
{
    TestWindow p;
    startAutomatic(p);
    QVERIFY(p.ui().battery_mode_auto->isChecked());
    p.window->timerDone();
    QVERIFY(p.commands().isEmpty()); // on mains nothing happens

    p.fake.powerSource->status = 0;
    p.window->timerDone();
    PowerModes *modes = p.window->powerModes();
    QVERIFY(p.ui().battery_mode->isChecked());
    QVERIFY(p.commands().contains(kBatteryMax));
    QCOMPARE(selectedEntries(p), QStringList{"Battery Mode"});
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("normal"));
    QCOMPARE(modes->onBattery(), 1);
    QVERIFY(modes->autoSwitchedToBattery());
    QCOMPARE(modes->modeBeforeBattery(), 2);

    // Still on battery: the next tick does not apply again.
    p.clearRecords();
    p.window->timerDone();
    QVERIFY(!p.commands().contains(kBatteryMax));
}

void PowerSwitchingTest::pluggingInRestoresTheMainsMode()
{
    TestWindow p;
    startAutomatic(p, QStringLiteral("maximum"));
    p.fake.powerSource->status = 0;
    p.window->timerDone();
    QVERIFY(p.ui().battery_mode->isChecked());
    p.clearRecords();

    p.fake.powerSource->status = 1;
    p.window->timerDone();
    QVERIFY(p.ui().maximum_mode->isChecked());
    QCOMPARE(selectedEntries(p), QStringList{"Maximum Mode"});
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("maximum"));
    QVERIFY(p.commands().contains(
        "run: powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMIN 10"));
    QVERIFY(!p.window->powerModes()->autoSwitchedToBattery());
}

void PowerSwitchingTest::batteryChosenByHandIsNeverLeft()
{
    TestWindow p;
    startAutomatic(p);
    p.ui().battery_mode->click();
    p.clearRecords();
    p.fake.powerSource->status = 0;
    p.window->timerDone();
    p.fake.powerSource->status = 1;
    p.window->timerDone();
    QVERIFY(p.ui().battery_mode->isChecked());
    QVERIFY(p.commands().isEmpty());
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("battery"));
}

void PowerSwitchingTest::unknownLineStatusChangesNothing()
{
    TestWindow p;
    startAutomatic(p);
    p.fake.powerSource->status = 255;
    p.window->timerDone();
    QVERIFY(p.ui().normal_mode->isChecked());
    QCOMPARE(p.window->powerModes()->onBattery(), 0);

    p.fake.powerSource->status = 0;
    p.window->timerDone();
    p.clearRecords();
    p.fake.powerSource->status = 255;
    p.window->timerDone();
    QVERIFY(p.ui().battery_mode->isChecked());
    QCOMPARE(p.window->powerModes()->onBattery(), 1);
    QVERIFY(p.commands().isEmpty());
}

void PowerSwitchingTest::handPickedModeOnBatteryLastsOneTick()
{
    TestWindow p;
    startAutomatic(p);
    p.fake.powerSource->status = 0;
    p.window->timerDone();
    p.ui().silent_mode->click();
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("silent"));
    p.clearRecords();

    p.window->timerDone();
    QVERIFY(p.ui().battery_mode->isChecked());
    QVERIFY(p.commands().contains(kBatteryMax));
    QCOMPARE(p.window->powerModes()->modeBeforeBattery(), 1);
    QCOMPARE(p.generalValue("powermode").toString(), QStringLiteral("silent"));

    p.fake.powerSource->status = 1;
    p.window->timerDone();
    QVERIFY(p.ui().silent_mode->isChecked());
}

void PowerSwitchingTest::automaticModeOffDoesNothing()
{
    TestWindow p;
    prepare(p);
    p.startWithPowerModes();
    QVERIFY(!p.ui().battery_mode_auto->isChecked());
    p.fake.powerSource->status = 0;
    p.window->timerDone();
    QVERIFY(p.ui().normal_mode->isChecked());
    QVERIFY(p.commands().isEmpty());
    QCOMPARE(p.window->powerModes()->onBattery(), 1);
}

void PowerSwitchingTest::autoSwitchIsStoredAndRestored()
{
    TestWindow p;
    startAutomatic(p);
    p.fake.powerSource->status = 0;
    p.window->timerDone();

    // Turned off while switched: the flag stays, so turning it on again on mains goes back.
    p.ui().battery_mode_auto->click();
    QCOMPARE(p.generalValue("autobatterymode").toBool(), false);
    p.fake.powerSource->status = 1;
    p.window->timerDone();
    QVERIFY(p.ui().battery_mode->isChecked());
    p.ui().battery_mode_auto->click();
    QCOMPARE(p.generalValue("autobatterymode").toBool(), true);
    p.window->timerDone();
    QVERIFY(p.ui().normal_mode->isChecked());
}

void PowerSwitchingTest::batteryStateFollowsTheLineStatus_data()
{
    QTest::addColumn<QList<int>>("statuses");
    QTest::addColumn<int>("onBattery");
    QTest::newRow("offline") << QList<int>{0} << 1;
    QTest::newRow("online") << QList<int>{0, 1} << 0;
    QTest::newRow("unknown keeps battery") << QList<int>{0, 255} << 1;
    QTest::newRow("unknown keeps mains") << QList<int>{255} << 0;
}

void PowerSwitchingTest::batteryStateFollowsTheLineStatus()
{
    QFETCH(QList<int>, statuses);
    QFETCH(int, onBattery);
    TestWindow p;
    startAutomatic(p);
    for (int status : statuses) {
        p.fake.powerSource->status = status;
        p.window->GetBatteryState();
    }
    QCOMPARE(p.window->powerModes()->onBattery(), onBattery);
    // The state alone: no mode is switched.
    QVERIFY(p.ui().normal_mode->isChecked());
}

void PowerSwitchingTest::schemeChangeReappliesAdaptiveBrightness()
{
    TestWindow p;
    p.startWithPowerModes();
    const QString query = QStringLiteral("powercfg /getactivescheme");
    p.fake.commands->outputs[query] = QStringLiteral("GUID: balanced");
    p.window->GetPowerSchemeName();
    QCOMPARE(p.commands(), QStringList{"run: " + query}); // the first answer is only remembered
    p.window->GetPowerSchemeName();
    QCOMPARE(p.commands().size(), 2);

    p.clearRecords();
    p.ui().Check_Adaptive->setChecked(true);
    p.fake.commands->outputs[query] = QStringLiteral("GUID: gaming");
    p.window->GetPowerSchemeName();
    const QString setting = QStringLiteral(" SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 "
                                           "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 ");
    QCOMPARE(p.commands(),
             (QStringList{"run: " + query, "shown 0: powercfg -setdcvalueindex" + setting + "0",
                          "shown 0: powercfg -setacvalueindex" + setting + "0",
                          "shown 0: powercfg -SetActive SCHEME_CURRENT"}));
    QCOMPARE(p.generalValue("AdaptiveBrightness").toBool(), true);

    p.clearRecords();
    p.ui().Check_Adaptive->setChecked(false);
    p.fake.commands->outputs[query] = QStringLiteral("GUID: balanced");
    p.window->GetPowerSchemeName();
    QCOMPARE(p.commands().at(1), "shown 0: powercfg -setdcvalueindex" + setting + "1");
    QCOMPARE(p.generalValue("AdaptiveBrightness").toBool(), false);
}

QTEST_MAIN(PowerSwitchingTest)
#include "tst_powerswitching.moc"
