// The tuning tab without the client: which processor and model it finds, the profile it picks at
// start-up and for "Recommended", and the profiles shipped in the install folder.
#include "cpuidentification.h"
#include "cputuning.h"
#include "testwindow.h"

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

} // namespace

class CpuIdentificationTest : public QObject {
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
            {"wmic layout", wmicOutput("Name", "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"), "Name",
             "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"},
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
        QCOMPARE(shown(), before);
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
};

QTEST_MAIN(CpuIdentificationTest)
#include "tst_cpuidentification.moc"
