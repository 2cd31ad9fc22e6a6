// The tuning tab. Without the client: which processor and model it finds, the profile it picks at
// start-up and for "Recommended", and the profiles shipped in the install folder. With it, the
// write and read chains end to end: the real window runs the fake tuning client through real
// child processes, and the tab shows what the client holds. Then the ThrottleStop tab over the
// fake bundle: presence, status, kill, reset, settings files and the log-on task.
#include "cpuidentification.h"
#include "cputuning.h"
#include "testwindow.h"
#include "textfile.h"
#include "throttlestop.h"
#include "xtuclient.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString kCpuQuery = QStringLiteral("wmic cpu get Name");
const QString kModelQuery = QStringLiteral("wmic computersystem get model");
const char *const k8750H = "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz";

// wmic's 8-bit layout: padded header and value, each line ending in "\r\r\n".
QString wmicOutput(const QString &header, const QString &value)
{
    const int width = qMax(header.size(), value.size()) + 2;
    return header.leftJustified(width) + "\r\r\n" + value.leftJustified(width) + "\r\r\n\r\r\n";
}

const QStringList kAllReads = {"start",     "-t -id 34", "-t -id 48", "-t -id 66",
                               "-t -id 29", "-t -id 30", "-t -id 31", "-t -id 32",
                               "-t -id 42", "-t -id 43", "-t -id 96", "-t -id 97"};

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
        fake.commands->outputs[kCpuQuery] =
            wmicOutput("Name", "Intel(R) Core(TM) i7-10875H CPU @ 2.30GHz");
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

    // Waits until `count` read chains have ended since start-up. A chain starts a dozen client
    // processes, which under Wine on a loaded machine took over 20 s: allow a minute.
    bool waitForReadChains(int count)
    {
        for (int i = 0; i < 300 && chainEnds->count() < count; ++i)
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

const QString kTaskQuery = QStringLiteral("schtasks /query /tn \"ThrottleStop\"");
const QString kTaskCreate =
    QStringLiteral("schtasks /create /tn \"ThrottleStop\" /XML settings\\ts_task.xml");
const QString kTaskDelete = QStringLiteral("schtasks /Delete /tn \"ThrottleStop\" /f");
const QString kRunning =
    QStringLiteral("\r\nImage Name       PID Session Name\r\nThrottleStop.exe  4242 Console\r\n");
const QString kNotRunning = QStringLiteral("Status: TS is not running!");
const QString kSettingsIni = QStringLiteral("ThrottleStop/ThrottleStop.ini");
const QStringList kKillAndRestart = {"message: ThrottleStop",
                                     "run: taskkill /im ThrottleStop.exe /f"};

// The window, start-up records kept, over an install folder that holds ThrottleStop, its
// settings file and a staged settings file, or none of them.
struct TsWindow : TestWindow {
    explicit TsWindow(bool installed, const QString &tasklist = QString())
    {
        if (installed) {
            writeFile(folder.file("ThrottleStop/ThrottleStop.exe"), "program");
            writeFile(folder.file(kSettingsIni), "[ThrottleStop]\nold=1\n");
            writeFile(folder.file("ThrottleStop.ini"), "[staged]\n");
        }
        fake.commands->outputs[QStringLiteral("tasklist")] = tasklist;
    }
    QString status() const { return ui().Label_TSstatus->text(); }
    QByteArray settingsFile() const { return readFile(folder.file(kSettingsIni)); }
    bool staged() const { return QFile::exists(folder.file("ThrottleStop.ini")); }
};

} // namespace

class CpuTuningTest : public QObject {
    Q_OBJECT

private slots:

    void cleaning_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("expected");
        const struct {
            const char *name;
            QString output;
            const char *header, *expected;
        } rows[] = {
            {"wmic layout", wmicOutput("Name", k8750H), "Name", k8750H},
            {"model", wmicOutput("Model", "P95_96_97Ex"), "Model", "P95_96_97Ex"},
            {"line feed, tab, return as one piece", "Name\n\t\rIntel Core i7-7700K\n\t\r", "Name",
             "Intel Core i7-7700K"},
            {"removed until none is left", "\n\t\n\t\r\rX\n\t\r", "Name", "X"},
            {"header anywhere", "Name  \r\nNameless NameCPU  ", "Name", "less CPU"},
            {"header formed by a removal", "NaNameme X", "Name", "X"},
            {"header case counts", "Name\r\nname NAME", "Name", "name NAME"},
            {"no output", "", "Model", ""},
        };
        for (const auto &r : rows)
            QTest::newRow(r.name) << r.output << QString(r.header) << QString(r.expected);
    }

    void cleaning()
    {
        QFETCH(QString, output);
        QFETCH(QString, header);
        QTEST(cleanWmicText(output, header), "expected");
    }

    void profiles_data()
    {
        QTest::addColumn<QString>("cpu");
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("file"); // empty: unsupported
        QTest::addColumn<int>("cores");
        QTest::addColumn<int>("turboRatio"); // the part's highest single-core turbo ratio
        const struct {
            const char *name, *cpu, *model, *file;
            int cores, turboRatio;
        } rows[] = {
            {"1 7700K", "Intel(R) Core(TM) i7-7700K CPU @ 4.20GHz", "", "7700K", 4, 45},
            {"2 7700HQ", "Intel(R) Core(TM) i7-7700HQ CPU @ 2.80GHz", "P750DM2", "7700HQ", 0, 38},
            {"3 8750H", k8750H, "P65_P67RGRERA", "8750H", 6, 41},
            {"4 8850H", "Intel(R) Core(TM) i7-8850H CPU @ 2.60GHz", "P75xTP1", "8850H", 6, 43},
            {"5 8750H in a P95", k8750H, "P95_96_97Ex", "8750H_P950", 6, 41},
            {"6 8750H in an N8", k8750H, "N8xxEP6", "8750H_N8", 6, 41},
            {"7 8700K", "Intel(R) Core(TM) i7-8700K CPU @ 3.70GHz", "", "8700K", 6, 47},
            {"8 9900K", "Intel(R) Core(TM) i9-9900K CPU @ 3.60GHz", "", "9900K", 8, 50},
            {"9 8086K", "Intel(R) Core(TM) i7-8086K CPU @ 4.00GHz", "", "8086K", 6, 50},
            {"10 8600K", "Intel(R) Core(TM) i5-8600K CPU @ 3.60GHz", "", "8600K", 6, 43},
            {"11 6700K", "Intel(R) Core(TM) i7-6700K CPU @ 4.00GHz", "", "6700K", 4, 42},
            {"12 8700", "Intel(R) Core(TM) i7-8700 CPU @ 3.20GHz", "", "8700", 6, 46},
            {"13 9700K", "Intel(R) Core(TM) i7-9700K CPU @ 3.60GHz", "", "9700K", 8, 49},
            {"14 9750H", "Intel(R) Core(TM) i7-9750H CPU @ 2.60GHz", "", "9750H", 6, 45},
            {"15 10875H", "Intel(R) Core(TM) i7-10875H CPU @ 2.30GHz", "", "10875H", 8, 51},
            {"8750H, model not known yet", k8750H, "", "8750H", 6, 41},
            {"8850H in a P95 is left out", "Intel(R) Core(TM) i7-8850H CPU @ 2.60GHz",
             "P95_96_97Ex", "", 0, 0},
            {"8700K is row 7, before row 12", "8700K CPU @ 3.20GHz", "", "8700K", 6, 47},
            {"tests are case-sensitive", "Intel(R) Core(TM) i7-8750h", "", "", 0, 0},
            {"model test is case-sensitive", "i7-8750H", "p95", "8750H", 6, 41},
            {"AMD", "AMD Ryzen 7 4800H with Radeon Graphics", "", "", 0, 0},
            {"nothing reported", "", "", "", 0, 0},
        };
        for (const auto &r : rows)
            QTest::newRow(r.name) << QString(r.cpu) << QString(r.model) << QString(r.file)
                                  << r.cores << r.turboRatio;
    }

    // The row the table picks, and the shipped profile it names: every value Recommended reads, in
    // range, and no ratio it never reads.
    void profiles()
    {
        QFETCH(QString, file);
        QFETCH(int, cores);
        QFETCH(int, turboRatio);
        QFETCH(QString, cpu);
        QFETCH(QString, model);
        const auto match = matchCpuProfile(cpu, model);
        QCOMPARE(bool(match), !file.isEmpty());
        if (!match)
            return;
        QCOMPARE(match->file, QStringLiteral("cpuprofiles\\%1.ini").arg(file));
        QCOMPARE(match->cores, cores);

        QSettings profile(QStringLiteral(VARNEL_DIST_DIR "/cpuprofiles/%1.ini").arg(file),
                          QSettings::IniFormat);
        profile.beginGroup(QStringLiteral("settings"));
        QStringList keys = {"max", "unlimited", "undervolt", "boostpower", "turbotime"};
        for (int n = 1; n <= cores; ++n)
            keys << QStringLiteral("core%1").arg(n);
        const QStringList held = profile.childKeys();
        QCOMPARE(QSet<QString>(held.begin(), held.end()), QSet<QString>(keys.begin(), keys.end()));
        // Power limits in 1/8 W steps, a conservative undervolt on the slider's scale.
        const auto value = [&profile](const QString &key) { return profile.value(key).toDouble(); };
        QVERIFY(value("max") >= 8 * 15 && value("max") <= 8 * 255);
        QVERIFY(value("boostpower") >= 8 && value("boostpower") <= value("max"));
        QVERIFY(value("unlimited") > value("max") / 8);
        QVERIFY(value("undervolt") >= 0 && value("undervolt") <= 125);
        QVERIFY(value("turbotime") >= 1 && value("turbotime") <= 128);
        // Turbo ratios fall (or stay) as more cores are active, from the part's top ratio.
        for (int n = 1; n <= cores; ++n) {
            const double ratio = value(keys.at(4 + n));
            QVERIFY(ratio >= 30 && ratio <= (n == 1 ? turboRatio : value(keys.at(3 + n))));
        }
        QVERIFY(cores == 0 || value("core1") == turboRatio);
    }

    // The turbo slider's range and texts at start-up, then what "Recommended" shows.
    void startupAndRecommended_data()
    {
        QTest::addColumn<QString>("cpu");
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("profile");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<QString>("topAndFinite"); // the top position's label, the one below it
        QTest::addColumn<QString>("recommended");  // empty: unsupported, a message and no change
        const char *i7 = "Intel(R) Core(TM) i7-9750H CPU @ 2.60GHz";
        const char *none = "0mV 1W 1Sec 0 0 0 0 0 0 45 45"; // a profile without those values
        const struct {
            const char *name, *cpu, *model, *file, *profile;
            int maximum;
            const char *labels, *recommended;
        } rows[] = {
            {"profile limits", i7, "", "9750H", "max=360 unlimited=200", 361, "200W 45W", none},
            // 8000 steps are 1000000 mW, the fixed whole figure.
            {"max 0", i7, "", "9750H", "max=0 unlimited=200", 8001, "200W 1000W", none},
            {"no profile file", i7, "", "", "", 8001, "4095.875W 1000W", none},
            // Limits no slider can hold count as missing instead of jamming it at 1 W.
            {"max above a thousand watts", i7, "", "9750H", "max=8200", 8001, "4095.875W 1000W",
             none},
            // The model is read after the limits: the plain row gives them, not the model's.
            {"a 6-core row reads six ratios, from the model's profile", k8750H, "P95_96_97Ex",
             "8750H_P950",
             "max=720 undervolt=80 boostpower=320 turbotime=56 core1=43 core2=42 core3=41 core4=40 "
             "core5=40 core6=39 core7=38 core8=37",
             8001, "4095.875W 1000W", "-80mV 40W 56Sec 43 42 41 40 40 39 45 45"},
            {"a row without ratios leaves the boxes", "Intel(R) Core(TM) i7-7700HQ CPU @ 2.80GHz",
             "", "7700HQ", "max=360 undervolt=70 boostpower=280 turbotime=28 core1=38", 361,
             "4095.875W 45W", "-70mV 35W 28Sec 45 45 45 45 45 45 45 45"},
            {"a missing profile drives the controls to their minimum",
             "Intel(R) Core(TM) i9-9900K CPU @ 3.60GHz", "", "", "", 8001, "4095.875W 1000W",
             "0mV 1W 1Sec 0 0 0 0 0 0 0 0"},
            {"unsupported with a model: only a message", "Intel(R) Core(TM) i7-8850H CPU @ 2.60GHz",
             "P95_96_97Ex", "8850H", "max=360 undervolt=50", 361, "4095.875W 45W", ""},
            {"AMD disables the tab", "AMD Ryzen 9 5900HX with Radeon Graphics", "NH5xHX", "", "",
             8001, "4095.875W 1000W", ""},
        };
        for (const auto &r : rows)
            QTest::newRow(r.name) << QString(r.cpu) << QString(r.model) << QString(r.file)
                                  << QString(r.profile) << r.maximum << QString(r.labels)
                                  << QString(r.recommended);
    }

    void startupAndRecommended()
    {
        QFETCH(QString, cpu);
        QFETCH(QString, model);
        QFETCH(QString, file);
        QFETCH(QString, profile);
        QFETCH(int, maximum);
        QFETCH(QString, recommended);
        // The window, start-up records kept, with one profile ("key=value ...") in its folder.
        TestWindow w;
        w.fake.commands->outputs[kCpuQuery] = wmicOutput(QStringLiteral("Name"), cpu);
        w.fake.commands->outputs[kModelQuery] = wmicOutput(QStringLiteral("Model"), model);
        for (const QString &pair : profile.split(' ', Qt::SkipEmptyParts))
            w.folder.setIni(QStringLiteral("cpuprofiles/%1.ini").arg(file), pair.section('=', 0, 0),
                            pair.section('=', 1));
        w.start(/*keepRecords=*/true);
        Ui::MainWindow &ui = w.ui();
        QSpinBox *const spins[] = {ui.Core1Spin, ui.Core2Spin, ui.Core3Spin, ui.Core4Spin,
                                   ui.Core5Spin, ui.Core6Spin, ui.Core7Spin, ui.Core8Spin};
        // The tuning controls as shown: the three labels and the eight ratios.
        const auto shown = [&] {
            QStringList out = {ui.Label_UnderVolt_Value->text(), ui.Label_TurboPowerValue->text(),
                               ui.Label_BoostTimeValue->text()};
            for (const QSpinBox *spin : spins)
                out << QString::number(spin->value());
            return out.join(' ');
        };
        QCOMPARE(w.window->cpuTuning()->cpuName, cpu);
        QCOMPARE(w.window->cpuTuning()->laptopModel, model);
        QVERIFY(w.fake.log->indexOf("run: " + kCpuQuery) <
                w.fake.log->indexOf("run: " + kModelQuery));
        QCOMPARE(ui.tabWidget->widget(1), ui.tab);
        QCOMPARE(ui.tabWidget->isTabEnabled(1), !cpu.contains("AMD"));
        QVERIFY(w.fake.dialogs->shown.isEmpty());

        QCOMPARE(ui.Slider_TurboBoost->minimum(), 8);
        QCOMPARE(ui.Slider_TurboBoost->maximum(), maximum);
        ui.Slider_TurboBoost->setValue(maximum);
        QString labels = ui.Label_TurboPowerValue->text();
        ui.Slider_TurboBoost->setValue(maximum - 1);
        QTEST(labels + ' ' + ui.Label_TurboPowerValue->text(), "topAndFinite");

        ui.undervolt_slider->setValue(60);
        ui.Slider_TurboBoost->setValue(300);
        ui.Slider_TurboTime->setValue(20);
        for (QSpinBox *spin : spins)
            spin->setValue(45);
        const QString before = QStringLiteral("-60mV 37.5W 20Sec 45 45 45 45 45 45 45 45");
        ui.Button_ApplyValues->setEnabled(false);
        ui.pushButton->setEnabled(true);
        ui.pushButton->click();

        QCOMPARE(shown(), recommended.isEmpty() ? before : recommended);
        // The value handlers ran and enabled it again; a message leaves it off. A disabled tab
        // takes no click at all.
        QCOMPARE(ui.Button_ApplyValues->isEnabled(), ui.tab->isEnabled());
        QCOMPARE(ui.pushButton->isEnabled(), !recommended.isEmpty());
        // Nothing goes to the processor until Apply.
        QVERIFY(w.fake.log->withPrefix("process:").isEmpty());
        const QString sorry = "Question | CPU Information | Sorry but your CPU is not supported "
                              "yet.\nPlease give us some more time to tune it!\n | Ok";
        QCOMPARE(w.fake.dialogs->lines(),
                 recommended.isEmpty() && ui.tab->isEnabled() ? QStringList(sorry) : QStringList());
    }

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
        QVERIFY(!rig.ui().Button_ApplyValues->isEnabled());
        QVERIFY(rig.ui().frame_2->isEnabled());
        QVERIFY(!rig.ui().turbo_override->testAttribute(Qt::WA_ForceDisabled));
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
        // Which of the controls are switched on themselves, in this order, whatever their tab: the
        // power-mode tab is off when power modes are.
        const auto switched = [&ui] {
            QString out;
            for (QWidget *w : std::initializer_list<QWidget *>{
                     ui.frame_2, ui.frame_3, ui.pushButton, ui.Check_PreventXTU, ui.turbo_override,
                     ui.Button_ApplyValues, ui.power_mode_turbo_boost})
                out += w->testAttribute(Qt::WA_ForceDisabled) ? '0' : '1';
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

    // What start-up shows: the status and the log-on task, then again a minute later.
    void throttleStopStartup_data()
    {
        QTest::addColumn<bool>("installed");
        QTest::addColumn<QString>("tasklist");
        QTest::addColumn<QString>("cannotRun");
        QTest::addColumn<bool>("saved"); // the task was wanted
        QTest::addColumn<bool>("registered");
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("created");
        QTest::newRow("running, task registered and wanted")
            << true << kRunning << QString() << true << true << "Status: TS is running!" << false;
        QTest::newRow("not running, task registered, not saved")
            << true << "\r\nImage Name  PID\r\nexplorer.exe  12\r\n"
            << QString() << false << true << kNotRunning << false;
        QTest::newRow("no process list, task went missing but wanted")
            << true << "" << QString() << true << false << kNotRunning << true;
        // Every control is off: the box takes no click.
        QTest::newRow("a desktop that cannot run it")
            << true << kRunning << "ThrottleStop is a Windows program." << true << true
            << kNotRunning << false;
        // Its tab goes, once; the process list is never asked.
        QTest::newRow("not installed, no task") << false << kRunning << QString() << false << false
                                                << "ThrottleStop Status: checking..." << false;
    }

    void throttleStopStartup()
    {
        QFETCH(bool, installed);
        QFETCH(QString, tasklist);
        QFETCH(QString, cannotRun);
        QFETCH(bool, saved);
        QFETCH(bool, registered);
        QFETCH(bool, created);
        TsWindow w(installed, tasklist);
        w.fake.desktop->windowsTools = cannotRun;
        w.setGeneral("Check_StartTScheck", saved);
        w.fake.commands->outputs[kTaskQuery] =
            registered ? "\r\nTaskName          Status\r\nThrottleStop      Ready\r\n"
                       : "ERROR: The system cannot find the file specified.\r\n";
        w.start(/*keepRecords=*/true);
        // The box shows the task that is there, or was just registered again.
        QCheckBox *box = w.ui().Check_StartTScheck;
        QCOMPARE(box->isChecked(), registered || created);
        QCOMPARE(w.fake.log->withPrefix("run: " + kTaskQuery).size(), 1);
        QCOMPARE(w.fake.log->withPrefix("start: " + kTaskCreate).size(), created ? 1 : 0);
        QCOMPARE(w.generalValue("Check_StartTScheck").toBool(), saved);

        QVERIFY(w.fake.scheduler->history.contains(QStringLiteral("61000 tscheckstatus")));
        const int runs = installed && cannotRun.isEmpty() ? 1 : 0;
        for (int check = 1; check <= 2; ++check) {
            QTabWidget *tabs = w.ui().tabWidget;
            QCOMPARE(tabs->count(), installed ? 9 : 8);
            QCOMPARE(tabs->widget(2), installed ? w.ui().tab_6 : w.ui().tab_10);
            QCOMPARE(w.window->throttleStop()->tsTabRemoved, !installed);
            QCOMPARE(w.fake.log->withPrefix("run: tasklist").size(), check * runs);
            QTEST(w.status(), "status");
            QCOMPARE(w.ui().Button_KillTS->isEnabled(), w.status() != kNotRunning);
            QCOMPARE(w.ui().Button_OpenTS->isEnabled(), cannotRun.isEmpty());
            QCOMPARE(w.ui().Button_OpenTS->toolTip(), cannotRun);
            w.fake.scheduler->advance(61000);
        }

        // Each click registers the task or deletes it, and saves the choice.
        QCOMPARE(box->isEnabled(), cannotRun.isEmpty());
        w.fake.log->clear();
        QStringList toggles;
        for (const bool on : {!box->isChecked(), box->isChecked()}) {
            box->click();
            if (box->isEnabled())
                toggles << "start: " + (on ? kTaskCreate : kTaskDelete);
            QCOMPARE(w.generalValue("Check_StartTScheck").toBool(), box->isEnabled() ? on : saved);
        }
        QCOMPARE(w.fake.log->entries, toggles);
    }

    void throttleStopButtons()
    {
        TsWindow w(true, kRunning);
        w.start();
        QCOMPARE(w.status(), QStringLiteral("Status: TS is running!"));
        w.ui().Button_OpenTS->click();
        QCOMPARE(w.fake.log->entries, QStringList{"shown 1: ThrottleStop//ThrottleStop.exe"});
        QVERIFY(w.ui().Button_KillTS->isEnabled());

        w.ui().Button_KillTS->click();
        QCOMPARE(w.fake.log->entries.mid(1),
                 QStringList({"start: taskkill /f /im ThrottleStop.exe", "message: ThrottleStop"}));
        QCOMPARE(w.fake.dialogs->lines().last(),
                 "Information | ThrottleStop | All instances of ThrottleStop were killed.\n | Ok");
        QCOMPARE(w.status(), kNotRunning);
        QVERIFY(!w.ui().Button_KillTS->isEnabled());

        // Apply does nothing until a file was chosen.
        w.fake.log->clear();
        QVERIFY(!w.ui().Button_ApplyTSsettings->isEnabled());
        QMetaObject::invokeMethod(w.window.get(), "on_Button_ApplyTSsettings_clicked");
        QVERIFY(w.fake.log->entries.isEmpty());
        QCOMPARE(w.settingsFile(), QByteArray("[ThrottleStop]\nold=1\n"));
        QVERIFY(w.staged());

        // Reset deletes the settings, kills and starts it again, then looks at the process list.
        w.ui().Button_ResetTS->click();
        QVERIFY(!QFile::exists(w.folder.file(kSettingsIni)));
        QCOMPARE(w.fake.dialogs->shown.last().text,
                 QStringLiteral("Throttlestop settings deleted. Next time you open "
                                "Throttlestop it will run as a first run.\n"));
        QCOMPARE(w.fake.log->entries, kKillAndRestart);
        QCOMPARE(w.fake.scheduler->history.last(), QStringLiteral("3000 restartts"));
        w.fake.log->clear();
        w.fake.scheduler->advance(3000);
        QCOMPARE(w.fake.log->entries, QStringList{"detached: ThrottleStop\\ThrottleStop.exe  in "});
        QVERIFY(w.ui().Button_KillTS->isEnabled());
        QCOMPARE(w.fake.scheduler->history.last(), QStringLiteral("2000 tscheckstatus"));
        w.fake.scheduler->advance(2000);
        QCOMPARE(w.fake.log->entries.last(), QStringLiteral("run: tasklist"));
        QCOMPARE(w.status(), QStringLiteral("Status: TS is running!"));

        // A chosen file replaces ThrottleStop's own; after a cancelled choice Apply takes its own
        // file away and has nothing to put in its place.
        QTemporaryDir elsewhere;
        const QByteArray gaming = "[ThrottleStop]\nprofile=gaming\n";
        writeFile(elsewhere.filePath("Gaming.ini"), gaming);
        for (const QString &path : {elsewhere.filePath("Gaming.ini"), QString()}) {
            const QByteArray chosen = path.isEmpty() ? QByteArray() : gaming;
            w.fake.log->clear();
            w.fake.dialogs->fileAnswers = QStringList{path};
            w.ui().Browser_SettingsTS->click();
            QCOMPARE(w.fake.log->entries,
                     QStringList{"file dialog: Select Profile C:// Ini File (*.ini)"});
            QCOMPARE(w.ui().Label_TSSettings_Name->text(), path);
            QVERIFY(w.ui().Button_ApplyTSsettings->isEnabled());
            QCOMPARE(readFile(w.folder.file("ThrottleStop.ini")), chosen);
            QCOMPARE(w.staged(), !chosen.isEmpty());

            w.fake.log->clear();
            w.ui().Button_ApplyTSsettings->click();
            QCOMPARE(w.settingsFile(), chosen);
            QCOMPARE(QFile::exists(w.folder.file(kSettingsIni)), !path.isEmpty());
            QVERIFY(!w.staged());
            QCOMPARE(w.fake.dialogs->shown.last().text,
                     QStringLiteral("New settings loaded, we will now close ThrottleStop "
                                    "and re-launch it to apply the new settings.\n"));
            QCOMPARE(w.fake.log->entries, kKillAndRestart);
            QCOMPARE(w.fake.scheduler->history.last(), QStringLiteral("3000 restartts"));
        }
    }
};

QTEST_MAIN(CpuTuningTest)
#include "tst_cputuning.moc"
