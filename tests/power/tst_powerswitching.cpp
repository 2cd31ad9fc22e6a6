// Switching power modes on the real window: radio buttons and tray entries, the automatic
// battery mode over a scripted power source, and the scheme-change refresh.
#include "powermodes.h"
#include "testwindow.h"

#include <QAction>
#include <QImage>
#include <QtTest>

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

void start(TestWindow &p, const QString &mode = QStringLiteral("normal"))
{
    p.folder.copyShipped(QLatin1String(kSelected));
    p.folder.copyShipped(QLatin1String(kNotSelected));
    p.startWithPowerModes(mode);
}

QString stored(const TestWindow &p)
{
    return p.generalValue("powermode").toString();
}

const QString kBatteryMax = QStringLiteral(
    "run: powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 60");
} // namespace

class PowerSwitchingTest : public QObject {
    Q_OBJECT

private slots:
    void trayEntrySelectsAndMarksTheMode()
    {
        TestWindow p;
        start(p);
        QVERIFY(imageOf(QIcon(QLatin1String(kSelected))) !=
                imageOf(QIcon(QLatin1String(kNotSelected))));
        QCOMPARE(selectedEntries(p), QStringList{"Normal Mode"});

        p.window->trayActions().silent->trigger();
        QVERIFY(p.ui().silent_mode->isChecked());
        QCOMPARE(selectedEntries(p), QStringList{"Silent Mode"});
        QCOMPARE(stored(p), QStringLiteral("silent"));
        QCOMPARE(p.ui().silent_cpu_max->value(), 80);
        QVERIFY(p.commands().contains(
            "run: powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 80"));
        // The same mode again is applied again.
        QCOMPARE(p.fake.log->withPrefix("run: ").size(), 12);
        p.window->trayActions().silent->trigger();
        QCOMPARE(p.fake.log->withPrefix("run: ").size(), 24);

        p.ui().maximum_mode->click();
        QCOMPARE(selectedEntries(p), QStringList{"Maximum Mode"});
        QCOMPARE(stored(p), QStringLiteral("maximum"));
        QCOMPARE(p.window->powerModes()->fanProfileCode(), QStringLiteral("6"));
    }

    void selectionDuringAnApplyOnlyRecordsIt()
    {
        TestWindow p;
        start(p);
        bool cutIn = false;
        p.fake.commands->onRun = [&](const QString &line) {
            if (!cutIn && line.contains(QLatin1String("PROCTHROTTLEMIN"))) {
                cutIn = true;
                p.window->trayActions().battery->trigger();
            }
        };
        p.window->ApplyPowerValues();
        QVERIFY(cutIn);
        QCOMPARE(stored(p), QStringLiteral("battery"));
        QCOMPARE(selectedEntries(p), QStringList{"Battery Mode"});
        QVERIFY(p.ui().normal_mode->isChecked());
        QVERIFY(!p.commands().contains(kBatteryMax));
        QCOMPARE(p.fake.log->withPrefix("run: ").size(), 12);
    }

    // Steps: a line status then a timer tick ("0", "1", "255"), the line status read alone ("r0"),
    // a click on a mode's radio button, or on the automatic box ("auto").
    void automaticBatteryMode_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("automatic");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("checked");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("onBattery");
        QTest::addColumn<bool>("lastStepApplied");
        auto row = [](const char *name, const char *mode, bool automatic, const char *steps,
                      const char *checked, const char *stored, int onBattery, bool applied) {
            QTest::newRow(name) << mode << automatic << steps << checked << stored << onBattery
                                << applied;
        };
        row("on mains nothing happens", "normal", true, "1", "normal", "normal", 0, false);
        row("unplugged: battery, mains mode kept", "normal", true, "0", "battery", "normal", 1,
            true);
        row("still on battery: not again", "normal", true, "0 0", "battery", "normal", 1, false);
        row("plugged in: mains mode back", "maximum", true, "0 1", "maximum", "maximum", 0, true);
        row("battery by hand is never left", "normal", true, "battery 0 1", "battery", "battery", 0,
            false);
        row("unknown status keeps mains", "normal", true, "255", "normal", "normal", 0, false);
        row("unknown status keeps battery", "normal", true, "0 255", "battery", "normal", 1, false);
        row("hand-picked mode on battery lasts a tick", "normal", true, "0 silent 0", "battery",
            "silent", 1, true);
        row("and comes back on mains", "normal", true, "0 silent 0 1", "silent", "silent", 0, true);
        row("automatic mode off", "normal", false, "0", "normal", "normal", 1, false);
        row("turned off while switched", "normal", true, "0 auto 1", "battery", "normal", 0, false);
        row("and on again on mains", "normal", true, "0 auto 1 auto 1", "normal", "normal", 0,
            true);
        row("status read alone", "normal", true, "r0", "normal", "normal", 1, false);
        row("status read alone, back", "normal", true, "r0 r1", "normal", "normal", 0, false);
    }

    void automaticBatteryMode()
    {
        QFETCH(QString, mode);
        QFETCH(bool, automatic);
        QFETCH(QString, steps);
        QFETCH(QString, checked);
        TestWindow p;
        p.setGeneral("autobatterymode", automatic);
        start(p, mode);
        QCOMPARE(p.ui().battery_mode_auto->isChecked(), automatic);
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
        QTEST(stored(p), "stored");
        QTEST(p.window->powerModes()->onBattery(), "onBattery");
        QTEST(!p.commands().isEmpty(), "lastStepApplied");
        QCOMPARE(p.generalValue("autobatterymode").toBool(), p.ui().battery_mode_auto->isChecked());
        QCOMPARE(p.window->powerModes()->autoSwitchedToBattery(),
                 checked == QLatin1String("battery") && !steps.contains(QLatin1String("battery")));
    }

    void schemeChangeReappliesAdaptiveBrightness()
    {
        TestWindow p;
        p.startWithPowerModes();
        const QString query = QStringLiteral("powercfg /getactivescheme");
        p.fake.commands->outputs[query] = QStringLiteral("GUID: balanced");
        p.window->GetPowerSchemeName();
        QCOMPARE(p.commands(), QStringList{"run: " + query}); // the first answer is only remembered
        p.window->GetPowerSchemeName();
        QCOMPARE(p.commands().size(), 2);

        const QString setting =
            QStringLiteral(" SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 "
                           "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 ");
        for (const char *value : {"0", "1"}) {
            p.clearRecords();
            p.ui().Check_Adaptive->setChecked(*value == '0');
            p.fake.commands->outputs[query] =
                QStringLiteral("GUID: ") + (*value == '0' ? "x" : "y");
            p.window->GetPowerSchemeName();
            QCOMPARE(p.commands(),
                     (QStringList{"run: " + query,
                                  "shown 0: powercfg -setdcvalueindex" + setting + value,
                                  "shown 0: powercfg -setacvalueindex" + setting + value,
                                  "shown 0: powercfg -SetActive SCHEME_CURRENT"}));
            QCOMPARE(p.generalValue("AdaptiveBrightness").toBool(), *value == '0');
        }
    }
};

QTEST_MAIN(PowerSwitchingTest)
#include "tst_powerswitching.moc"
