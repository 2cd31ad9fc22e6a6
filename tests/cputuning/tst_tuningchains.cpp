// The write and read chains end to end: the real window runs the fake tuning client through real
// child processes, and the tab shows what the client holds.
#include "cputuning.h"
#include "testwindow.h"
#include "textfile.h"
#include "xtuclient.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QStringList kAllReads = {"start",     "-t -id 34", "-t -id 48", "-t -id 66",
                               "-t -id 29", "-t -id 30", "-t -id 31", "-t -id 32",
                               "-t -id 42", "-t -id 43", "-t -id 96", "-t -id 97"};

// Whether the control itself was switched on, whatever its tab: the power-mode tab is off when
// power modes are.
bool switchedOn(const QWidget *widget)
{
    return !widget->testAttribute(Qt::WA_ForceDisabled);
}

// The real window with the tuning client mapped to the fake client program, start-up records
// kept, on the 10875H profile.
struct ClientRig : TestWindow {
    // `script` is "NAME=value ..." for the fake client's environment; a hanging client goes on
    // once the file "release" exists.
    explicit ClientRig(const QString &script = QString())
    {
        fake.commands->programMap[xtu::clientProgram] =
            QStringLiteral(VARNEL_TEST_BIN_DIR "/cputuning/fake_xtu_client" VARNEL_EXE_SUFFIX);
        fake.commands->asyncOutputs[xtu::serviceStart] = QString();
        fake.commands->outputs[QStringLiteral("wmic cpu get Name")] =
            QStringLiteral("Name\r\r\nIntel(R) Core(TM) i7-10875H CPU @ 2.30GHz\r\r\n\r\r\n");
        folder.copyShipped(QStringLiteral("cpuprofiles/10875H.ini"));
        setGeneral("DontManageCPU", true);
        const QStringList pairs = script.split(' ', Qt::SkipEmptyParts) +
                                  QStringList{"FAKE_XTU_STATE=" + folder.file("xtu-state"),
                                              "FAKE_XTU_RELEASE=" + folder.file("release")};
        for (const QString &pair : pairs) {
            scripted << pair.section('=', 0, 0);
            qputenv(qPrintable(scripted.last()), pair.section('=', 1).toLocal8Bit());
        }
    }
    ~ClientRig()
    {
        window.reset();
        for (const QString &name : scripted)
            qunsetenv(qPrintable(name));
    }

    // What the processor holds before the program starts.
    void holds(int id, const QString &value) const
    {
        const QString state = folder.file(QStringLiteral("xtu-state"));
        writeFile(state, readFile(state) + QStringLiteral("%1=%2\n").arg(id).arg(value).toUtf8());
    }
    void startWindow()
    {
        start(/*keepRecords=*/true);
        chainEnds = std::make_unique<QSignalSpy>(cpu(), &CpuTuning::readChainFinished);
    }
    CpuTuning *cpu() const { return window->cpuTuning(); }

    // Waits until `count` read chains have ended since start-up.
    bool waitForReadChains(int count)
    {
        for (int i = 0; i < 100 && chainEnds->count() < count; ++i)
            chainEnds->wait(200);
        return chainEnds->count() >= count;
    }

    // What the chains ran, in order: the service's "start" and "stop", the client's arguments
    // ("-t -id 34 -v -80").
    QStringList runs() const
    {
        QStringList out = fake.log->matching(QStringLiteral("^(process|run): (powershell|\")"));
        out.replaceInStrings("process: " + xtu::clientProgram + ' ', QString());
        out.replaceInStrings("process: " + xtu::serviceStart, QStringLiteral("start"));
        return out.replaceInStrings("run: " + xtu::serviceStop, QStringLiteral("stop"));
    }
    QStringList writes() const { return runs().filter(QStringLiteral(" -v ")); }
    void apply() const { QMetaObject::invokeMethod(window.get(), "on_Button_ApplyValues_clicked"); }

    // The tab as shown: undervolt, turbo power, turbo time (each slider, label and the last
    // read), then the ratios, a hidden box in parentheses.
    QString shown() const
    {
        const Ui::MainWindow &u = ui();
        QString out = QStringLiteral("%1 %2 %3 | %4 %5 %6 | %7 %8 %9 |")
                          .arg(u.undervolt_slider->value())
                          .arg(u.Label_UnderVolt_Value->text(), cpu()->readUndervolt)
                          .arg(u.Slider_TurboBoost->value())
                          .arg(u.Label_TurboPowerValue->text(), cpu()->readTurboPower)
                          .arg(u.Slider_TurboTime->value())
                          .arg(u.Label_BoostTimeValue->text())
                          .arg(cpu()->readTurboTime);
        const QWidget *labels[] = {u.label_9,     u.label_10,    u.label_11,    u.label_12,
                                   u.Label_Core5, u.Label_Core6, u.Label_Core7, u.Label_Core8};
        const QSpinBox *spins[] = {u.Core1Spin, u.Core2Spin, u.Core3Spin, u.Core4Spin,
                                   u.Core5Spin, u.Core6Spin, u.Core7Spin, u.Core8Spin};
        for (int i = 0; i < 8; ++i) {
            const QString value = QString::number(spins[i]->value());
            out += ' ' + (spins[i]->isHidden() ? '(' + value + ')' : value);
            if (labels[i]->isHidden() != spins[i]->isHidden())
                out += QStringLiteral("!label");
        }
        return out;
    }

    std::unique_ptr<QSignalSpy> chainEnds;
    QStringList scripted;
};

const QString kShownAtStart =
    QStringLiteral("0 0mV 0 | 360 45W 45 | 28 28Sec 28 | 51 51 49 49 47 47 46 46");

// A read that changes no figure leaves the label as the client printed it.
const QString kShownReadBack = QString(kShownAtStart).replace("28Sec", "28.0Sec");

} // namespace

class TuningChainsTest : public QObject {
    Q_OBJECT

private slots:

    void startupRead_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<bool>("prevent"); // saved: stop the services after a read (then flipped)
        QTest::newRow("whole rows") << QString() << kShownAtStart << false;
        QTest::newRow("a client that prints nothing changes nothing")
            << "FAKE_XTU_SILENT=1"
            << "0 -000mV  | 8 0000.000W  | 1 00.00 Sec 0 | 0 0 0 0 0 0 0 0" << true;
        // The rows that came whole are taken.
        QTest::newRow("a row split across two reads changes nothing")
            << "FAKE_XTU_SPLIT=48"
            << "0 0mV 0 | 8 0000.000W  | 28 28Sec 28 | 51 51 49 49 47 47 46 46" << false;
    }

    void startupRead()
    {
        QFETCH(QString, script);
        QFETCH(bool, prevent);
        ClientRig rig(script);
        rig.setGeneral("PreventXTU", prevent);
        rig.startWindow();
        // The choice is taken when the chain ends, and saved.
        QCOMPARE(rig.ui().Check_PreventXTU->isChecked(), prevent);
        rig.ui().Check_PreventXTU->click();
        QCOMPARE(rig.generalValue("PreventXTU").toBool(), !prevent);
        QVERIFY(rig.waitForReadChains(1));
        QCOMPARE(rig.runs(), kAllReads + (prevent ? QStringList() : QStringList("stop")));
        QTEST(rig.shown(), "shown");
        QVERIFY(!rig.cpu()->decimalComma);
        QVERIFY(!rig.cpu()->coreRowsMissing);
        QVERIFY(!rig.ui().Button_ApplyValues->isEnabled());
        QVERIFY(rig.ui().frame_2->isEnabled());
        QVERIFY(switchedOn(rig.ui().turbo_override));
        if (script.isEmpty()) {
            QCOMPARE(rig.ui().Slider_TurboTime->maximum(), 128);
            QCOMPARE(rig.ui().Core8Spin->minimum(), 8);
            QCOMPARE(rig.ui().Core8Spin->maximum(), 80);
        }
    }

    void applyWritesTheChangedValuesThenReadsBack_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("holds"); // "id=value" before start-up
        QTest::addColumn<QString>("steps"); // "object=value" set in turn, "click:object" clicked
        QTest::addColumn<QStringList>("writes");
        QTest::addColumn<QString>("shown");
        const QString none;
        QTest::newRow("changed values, in the chain's order")
            << none << none << "Core8Spin=44 Slider_TurboBoost=301 undervolt_slider=80 Core3Spin=45"
            << QStringList{"-t -id 34 -v -80", "-t -id 48 -v 37.625", "-t -id 31 -v 45",
                           "-t -id 97 -v 44"}
            << "80 -80mV -80 | 301 37.625W 37,625 | 28 28.0Sec 28 | 51 51 45 49 47 47 46 44";
        QTest::newRow("undervolt at one is written as none")
            << none << "34=-50"
            << "undervolt_slider=1" << QStringList{"-t -id 34 -v 0"} << kShownReadBack;
        // The 10875H profile's highest finite position is 1080 (135 W).
        QTest::newRow("the unlimited position writes the unlimited figure")
            << none << none << "Slider_TurboBoost=1081" << QStringList{"-t -id 48 -v 4095.875"}
            << "0 0mV 0 | 1081 4095.875W 4095,875 | 28 28.0Sec 28 | 51 51 49 49 47 47 46 46";
        QTest::newRow("a client with decimal commas gets commas")
            << "FAKE_XTU_COMMA=1" << none << "Slider_TurboBoost=364"
            << QStringList{"-t -id 48 -v 45,5"}
            << "0 0mV 0 | 364 45.5W 45,5 | 28 28.0Sec 28 | 51 51 49 49 47 47 46 46";
        // Hidden boxes are not disabled: they are skipped as unchanged.
        QTest::newRow("a four-core processor hides and skips cores five to eight")
            << "FAKE_XTU_CORES=4" << none << "Core1Spin=50" << QStringList{"-t -id 29 -v 50"}
            << "0 0mV 0 | 360 45W 45 | 28 28.0Sec 28 | 50 51 49 49 (0) (0) (0) (0)";
        // Power modes still apply through the slot while the frames are disabled.
        QTest::newRow("boxes of an unmanaged processor are skipped as disabled")
            << none << none
            << "click:checkBox_DontManageCPU Core2Spin=40 Core7Spin=40 undervolt_slider=50"
            << QStringList{"-t -id 34 -v -50"}
            << "50 -50mV -50 | 360 45W 45 | 28 28.0Sec 28 | 51 51 49 49 47 47 46 46";
    }

    void applyWritesTheChangedValuesThenReadsBack()
    {
        QFETCH(QString, script);
        QFETCH(QString, holds);
        QFETCH(QString, steps);
        QFETCH(QStringList, writes);
        ClientRig rig(script);
        if (!holds.isEmpty())
            rig.holds(holds.section('=', 0, 0).toInt(), holds.section('=', 1));
        rig.startWindow();
        QVERIFY(rig.waitForReadChains(1));
        rig.fake.log->clear();
        for (const QString &step : steps.split(' ', Qt::SkipEmptyParts)) {
            if (step.startsWith(QLatin1String("click:")))
                rig.window->findChild<QAbstractButton *>(step.mid(6))->click();
            else
                rig.window->findChild<QWidget *>(step.section('=', 0, 0))
                    ->setProperty("value", step.section('=', 1).toInt());
        }
        // What the tab holds when applied is saved.
        const QString held = QStringLiteral("%1 %2 %3")
                                 .arg(rig.ui().undervolt_slider->value())
                                 .arg(rig.ui().Label_TurboPowerValue->text())
                                 .arg(rig.ui().Core1Spin->value());
        rig.apply();
        QVERIFY(!rig.ui().Button_ApplyValues->isEnabled());
        QVERIFY(rig.waitForReadChains(2));
        QCOMPARE(rig.runs(), QStringList("start") + writes + kAllReads);
        QTEST(rig.shown(), "shown");
        QCOMPARE(rig.cpu()->decimalComma, script.contains("COMMA"));
        QCOMPARE(rig.cpu()->coreRowsMissing, script.contains("CORES"));
        QCOMPARE(QStringLiteral("%1 %2W %3")
                     .arg(rig.generalValue("undervolt").toString(),
                          rig.generalValue("boostpower").toString(),
                          rig.generalValue("core1multi").toString()),
                 held);
        QCOMPARE(rig.generalValue("turbotime").toInt(), 28);
        QCOMPARE(rig.generalValue("DontManageCPU").toBool(), !steps.contains("click:"));
        QVERIFY(rig.ui().checkBox_ReApply->isEnabled());

        // A second apply finds everything in place.
        rig.apply();
        QVERIFY(rig.waitForReadChains(3));
        QCOMPARE(rig.writes(), writes);
    }

    void stalledClientStallsOnlyItsChain()
    {
        ClientRig rig("FAKE_XTU_HANG=48");
        rig.startWindow();

        // The hanging query printed its row and its parser took it, while that client still runs:
        // a window that waited for the client would only stand once it had ended.
        QTRY_COMPARE_WITH_TIMEOUT(rig.ui().Slider_TurboBoost->value(), 360,
                                  30000); // Wine: slow starts
        QVERIFY(rig.cpu()->readProcess2->isRunning());
        QCOMPARE(rig.runs(), kAllReads.mid(0, 3));
        QCOMPARE(rig.chainEnds->count(), 0);

        // The window goes on answering.
        bool timerFired = false;
        QTimer::singleShot(0, [&] { timerFired = true; });
        rig.ui().undervolt_slider->setValue(30);
        QCOMPARE(rig.ui().Label_UnderVolt_Value->text(), QStringLiteral("-30mV"));
        QTRY_VERIFY(timerFired);
        QVERIFY(rig.ui().Button_ApplyValues->isEnabled());
        QVERIFY(rig.cpu()->readProcess2->isRunning());

        // Once the client ends, the chain goes on from where it stood.
        writeFile(rig.folder.file(QStringLiteral("release")), QByteArray());
        QVERIFY(rig.waitForReadChains(1));
        QCOMPARE(rig.runs(), kAllReads);
    }

    void reapplyRunsAtMostOncePerRun_data()
    {
        QTest::addColumn<QString>("saved");
        QTest::addColumn<QStringList>("writes");
        QTest::newRow("everything saved")
            << "undervolt=60 boostpower=40 turbotime=20 core1multi=50 core2multi=50 core3multi=48 "
               "core4multi=48 core5multi=46 core6multi=46 core7multi=45 core8multi=45"
            << QStringList{"-t -id 34 -v -60", "-t -id 48 -v 40", "-t -id 66 -v 20",
                           "-t -id 29 -v 50",  "-t -id 30 -v 50", "-t -id 31 -v 48",
                           "-t -id 32 -v 48",  "-t -id 42 -v 46", "-t -id 43 -v 46",
                           "-t -id 96 -v 45",  "-t -id 97 -v 45"};
        // The turbo power is no power, the time no number, and the ratios no ratio a box can hold;
        // unsaved ratios stay as read.
        QTest::newRow("only what makes sense")
            << "undervolt=60 boostpower=1e300 turbotime=abc core1multi=x51 core2multi=300"
            << QStringList{"-t -id 34 -v -60"};
    }

    void reapplyRunsAtMostOncePerRun()
    {
        QFETCH(QString, saved);
        QFETCH(QStringList, writes);
        ClientRig rig;
        rig.setGeneral("Re-ApplyXTU", true);
        for (const QString &pair : saved.split(' '))
            rig.folder.setIni(TestWindow::general, pair.section('=', 0, 0), pair.section('=', 1));
        rig.startWindow();
        QVERIFY(rig.ui().checkBox_ReApply->isChecked());
        QVERIFY(rig.ui().checkBox_ReApply->isEnabled());

        // Start-up read, the re-apply's writes, and the read after them.
        QVERIFY(rig.waitForReadChains(2));
        QCOMPARE(rig.writes(), writes);
        QVERIFY(rig.cpu()->reapplyDone);
        QVERIFY(!rig.cpu()->reapplyPending);
        QCOMPARE(rig.ui().undervolt_slider->value(), 60);

        // The processor loses its values; the read two minutes after start and later ones show that
        // and re-apply nothing.
        rig.holds(34, QStringLiteral("0"));
        rig.fake.scheduler->advance(120000);
        QVERIFY(rig.waitForReadChains(3));
        rig.window->getxtuvalues();
        QVERIFY(rig.waitForReadChains(4));
        QCOMPARE(rig.writes(), writes);
        QCOMPARE(rig.ui().undervolt_slider->value(), 0);

        rig.ui().checkBox_ReApply->click();
        QCOMPARE(rig.generalValue("Re-ApplyXTU").toBool(), false);
        rig.ui().checkBox_ReApply->click();
        QCOMPARE(rig.generalValue("Re-ApplyXTU").toBool(), true);
    }

    void valuesNeverReadNorSetAreNeitherWrittenNorSaved_data()
    {
        QTest::addColumn<bool>("byPowerMode");
        QTest::addColumn<QStringList>("writes");
        QTest::addColumn<int>("undervolt");
        QTest::newRow("turbo override of a power mode")
            << true << QStringList{"-t -id 48 -v 25"} << 100;
        QTest::newRow("undervolt set by hand") << false << QStringList{"-t -id 34 -v -90"} << 90;
    }

    void valuesNeverReadNorSetAreNeitherWrittenNorSaved()
    {
        QFETCH(bool, byPowerMode);
        ClientRig rig("FAKE_XTU_SILENT=1"); // no row is ever read
        rig.setGeneral("undervolt", 100);
        rig.setGeneral("boostpower", "45");
        rig.setGeneral("turbotime", 28);
        rig.startWindow();
        QVERIFY(rig.waitForReadChains(1));
        if (byPowerMode) {
            rig.ui().turbo_override->setChecked(true);
            rig.ui().power_mode_turbo_boost->setValue(200);
            QVERIFY(QMetaObject::invokeMethod(rig.window.get(), "ApplyPowerTurboBoost"));
        } else {
            rig.ui().undervolt_slider->setValue(90);
            rig.ui().Button_ApplyValues->setEnabled(true);
            rig.ui().Button_ApplyValues->click();
        }
        QVERIFY(rig.waitForReadChains(2));
        QTEST(rig.writes(), "writes");
        QTEST(rig.generalValue("undervolt").toInt(), "undervolt");
        QCOMPARE(rig.generalValue("boostpower").toString(), QStringLiteral("45"));
        QCOMPARE(rig.generalValue("turbotime").toInt(), 28);
        QVERIFY(!rig.generalValue("core1multi").isValid());
    }

    void manageCpuSwitchedOnAndOff()
    {
        ClientRig rig;
        rig.setGeneral("DontManageCPU", false);
        rig.startWindow();
        Ui::MainWindow &ui = rig.ui();
        QVERIFY(!ui.checkBox_DontManageCPU->isChecked());
        // Which of the controls are switched on, in this order.
        const auto switched = [&ui] {
            QString out;
            for (QWidget *w : std::initializer_list<QWidget *>{
                     ui.frame_2, ui.frame_3, ui.pushButton, ui.Check_PreventXTU, ui.turbo_override,
                     ui.Button_ApplyValues, ui.power_mode_turbo_boost})
                out += switchedOn(w) ? '1' : '0';
            return out;
        };
        QCOMPARE(switched(), QStringLiteral("0000001"));
        QVERIFY(!rig.fake.scheduler->history.contains(QStringLiteral("120000 getxtuvalues")));
        QVERIFY(rig.fake.log->withPrefix("process:").isEmpty());

        // Not installed: the offer to download, and the box goes off again whatever the answer.
        rig.fake.dialogs->answers = {QMessageBox::No, QMessageBox::Yes};
        ui.checkBox_DontManageCPU->click();
        QVERIFY(!ui.checkBox_DontManageCPU->isChecked());
        QCOMPARE(rig.fake.dialogs->lines(),
                 QStringList("Question | Intel Extreme Tuning | To use this settings you need "
                             "Intel Extreme Tuning.\n\nAfter installing it please restart your "
                             "laptop. It is highly recommended that you select the Prevent "
                             "background XTU services option!\n\n Do you want to download XTU "
                             "now?\n | Yes|No"));
        QVERIFY(rig.fake.log->withPrefix("open url:").isEmpty());
        ui.checkBox_DontManageCPU->click();
        QVERIFY(!ui.checkBox_DontManageCPU->isChecked());
        QCOMPARE(rig.fake.log->withPrefix("open url:").size(), 1);
        QVERIFY(!ui.frame_2->isEnabled());

        // Installed: the driver installer runs, the controls open, and the read chain follows.
        rig.fake.desktop->existing << xtu::servicePaths[1];
        ui.checkBox_DontManageCPU->click();
        QVERIFY(ui.checkBox_DontManageCPU->isChecked());
        QCOMPARE(rig.fake.log->withPrefix("run: " + xtu::driverInstaller).size(), 1);
        QCOMPARE(rig.generalValue("DontManageCPU").toBool(), true);
        QCOMPARE(switched(), QStringLiteral("1111101"));
        QVERIFY(rig.waitForReadChains(1));
        QCOMPARE(ui.Slider_TurboBoost->value(), 360);

        // Off again: everything closes and the choice is saved.
        ui.Button_ApplyValues->setEnabled(true);
        ui.checkBox_DontManageCPU->click();
        QCOMPARE(switched(), QStringLiteral("0000000"));
        QCOMPARE(rig.generalValue("DontManageCPU").toBool(), false);
    }
};

QTEST_MAIN(TuningChainsTest)
#include "tst_tuningchains.moc"
