// Which processor and model the window finds, which profile it picks at start-up and for
// "Recommended", and the profiles shipped in the install folder.
#include "cpuidentification.h"
#include "cputuning.h"
#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QtTest>

namespace {

// wmic's 8-bit layout: padded header and value, each line ending in "\r\r\n".
QString wmicOutput(const QString &header, const QString &value)
{
    const int width = qMax(header.size(), value.size()) + 2;
    return header.leftJustified(width) + "\r\r\n" + value.leftJustified(width) + "\r\r\n\r\r\n";
}

const QString kCpuQuery = QStringLiteral("wmic cpu get Name");
const QString kModelQuery = QStringLiteral("wmic computersystem get model");

void identifyAs(FakePlatform &fake, const QString &cpu, const QString &model)
{
    fake.commands->outputs[kCpuQuery] = wmicOutput(QStringLiteral("Name"), cpu);
    fake.commands->outputs[kModelQuery] = wmicOutput(QStringLiteral("Model"), model);
}

void writeProfile(const TestFolder &folder, const QString &name, const QVariantMap &values)
{
    for (auto it = values.begin(); it != values.end(); ++it)
        folder.setIni(QStringLiteral("cpuprofiles/%1.ini").arg(name), it.key(), it.value());
}

} // namespace

class CpuIdentificationTest : public QObject {
    Q_OBJECT

private slots:
    void cleaning_data();
    void cleaning();
    void profileTable_data();
    void profileTable();

    void startupLimitsComeFromThePlainProfileButRecommendedSeesTheModel();
    void turboLimits_data();
    void turboLimits();
    void amdProcessorDisablesTheTabAndStartUpGoesOn();
    void unsupportedProcessorIsReportedOnlyByRecommended();
    void profileWithoutCoreRatiosLeavesTheSpinBoxes();
    void missingProfileDrivesControlsToTheirMinimum();

    void shippedProfiles_data();
    void shippedProfiles();
};

void CpuIdentificationTest::cleaning_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("header");
    QTest::addColumn<QString>("expected");

    QTest::newRow("wmic layout") << wmicOutput("Name", "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz")
                                 << "Name"
                                 << "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz";
    QTest::newRow("model") << wmicOutput("Model", "P95_96_97Ex") << "Model"
                           << "P95_96_97Ex";
    QTest::newRow("line feed, tab, return as one piece") << "Name\n\t\rIntel Core i7-7700K\n\t\r"
                                                         << "Name"
                                                         << "Intel Core i7-7700K";
    QTest::newRow("removed until none is left") << "\n\t\n\t\r\rX\n\t\r"
                                                << "Name"
                                                << "X";
    QTest::newRow("header anywhere") << "Name  \r\nNameless NameCPU  "
                                     << "Name"
                                     << "less CPU";
    QTest::newRow("header formed by a removal") << "NaNameme X"
                                                << "Name"
                                                << "X";
    QTest::newRow("header case counts") << "Name\r\nname NAME"
                                        << "Name"
                                        << "name NAME";
    QTest::newRow("no output") << ""
                               << "Model"
                               << "";
}

void CpuIdentificationTest::cleaning()
{
    QFETCH(QString, output);
    QFETCH(QString, header);
    QTEST(cleanWmicText(output, header), "expected");
}

void CpuIdentificationTest::profileTable_data()
{
    QTest::addColumn<QString>("cpu");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("file"); // empty: unsupported
    QTest::addColumn<int>("cores");

    QTest::newRow("1 7700K") << "Intel(R) Core(TM) i7-7700K CPU @ 4.20GHz"
                             << ""
                             << "7700K" << 4;
    QTest::newRow("2 7700HQ") << "Intel(R) Core(TM) i7-7700HQ CPU @ 2.80GHz"
                              << "P750DM2"
                              << "7700HQ" << 0;
    QTest::newRow("3 8750H") << "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"
                             << "P65_P67RGRERA"
                             << "8750H" << 6;
    QTest::newRow("4 8850H") << "Intel(R) Core(TM) i7-8850H CPU @ 2.60GHz"
                             << "P75xTP1"
                             << "8850H" << 6;
    QTest::newRow("5 8750H in a P95") << "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"
                                      << "P95_96_97Ex"
                                      << "8750H_P950" << 6;
    QTest::newRow("6 8750H in an N8") << "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"
                                      << "N8xxEP6"
                                      << "8750H_N8" << 6;
    QTest::newRow("7 8700K") << "Intel(R) Core(TM) i7-8700K CPU @ 3.70GHz"
                             << ""
                             << "8700K" << 6;
    QTest::newRow("8 9900K") << "Intel(R) Core(TM) i9-9900K CPU @ 3.60GHz"
                             << ""
                             << "9900K" << 8;
    QTest::newRow("9 8086K") << "Intel(R) Core(TM) i7-8086K CPU @ 4.00GHz"
                             << ""
                             << "8086K" << 6;
    QTest::newRow("10 8600K") << "Intel(R) Core(TM) i5-8600K CPU @ 3.60GHz"
                              << ""
                              << "8600K" << 6;
    QTest::newRow("11 6700K") << "Intel(R) Core(TM) i7-6700K CPU @ 4.00GHz"
                              << ""
                              << "6700K" << 4;
    QTest::newRow("12 8700") << "Intel(R) Core(TM) i7-8700 CPU @ 3.20GHz"
                             << ""
                             << "8700" << 6;
    QTest::newRow("13 9700K") << "Intel(R) Core(TM) i7-9700K CPU @ 3.60GHz"
                              << ""
                              << "9700K" << 8;
    QTest::newRow("14 9750H") << "Intel(R) Core(TM) i7-9750H CPU @ 2.60GHz"
                              << ""
                              << "9750H" << 6;
    QTest::newRow("15 10875H") << "Intel(R) Core(TM) i7-10875H CPU @ 2.30GHz"
                               << ""
                               << "10875H" << 8;

    QTest::newRow("8750H, model not known yet") << "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"
                                                << ""
                                                << "8750H" << 6;
    QTest::newRow("8850H in a P95 is left out") << "Intel(R) Core(TM) i7-8850H CPU @ 2.60GHz"
                                                << "P95_96_97Ex"
                                                << "" << 0;
    QTest::newRow("8700K is row 7, before row 12") << "8700K CPU @ 3.20GHz"
                                                   << ""
                                                   << "8700K" << 6;
    QTest::newRow("tests are case-sensitive") << "Intel(R) Core(TM) i7-8750h"
                                              << ""
                                              << "" << 0;
    QTest::newRow("model test is case-sensitive") << "i7-8750H"
                                                  << "p95"
                                                  << "8750H" << 6;
    QTest::newRow("AMD") << "AMD Ryzen 7 4800H with Radeon Graphics"
                         << ""
                         << "" << 0;
    QTest::newRow("nothing reported") << ""
                                      << ""
                                      << "" << 0;
}

void CpuIdentificationTest::profileTable()
{
    QFETCH(QString, cpu);
    QFETCH(QString, model);
    QFETCH(QString, file);
    QFETCH(int, cores);
    const auto match = matchCpuProfile(cpu, model);
    QCOMPARE(bool(match), !file.isEmpty());
    if (!match)
        return;
    QCOMPARE(match->file, QStringLiteral("cpuprofiles\\%1.ini").arg(file));
    QCOMPARE(match->cores, cores);
}

void CpuIdentificationTest::startupLimitsComeFromThePlainProfileButRecommendedSeesTheModel()
{
    FakePlatform fake;
    TestFolder folder;
    identifyAs(fake, "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz", "P95_96_97Ex");
    writeProfile(folder, "8750H", {{"max", 360}, {"unlimited", "90"}, {"undervolt", 40}});
    writeProfile(folder, "8750H_P950",
                 {{"max", 720},
                  {"undervolt", 80},
                  {"boostpower", 300},
                  {"turbotime", 56},
                  {"core1", 43},
                  {"core2", 42},
                  {"core3", 41},
                  {"core4", 40},
                  {"core5", 40},
                  {"core6", 39},
                  {"core7", 38},
                  {"core8", 37}});

    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    CpuTuning *cpu = w.cpuTuning();
    QCOMPARE(cpu->cpuName, QStringLiteral("Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz"));
    QCOMPARE(cpu->laptopModel, QStringLiteral("P95_96_97Ex"));
    QCOMPARE(cpu->turboPowerMax, 360);
    QCOMPARE(cpu->turboPowerUnlimited, QStringLiteral("90"));
    QCOMPARE(ui->Slider_TurboBoost->minimum(), 8);
    QCOMPARE(ui->Slider_TurboBoost->maximum(), 361);
    QVERIFY(fake.log->indexOf("run: " + kCpuQuery) < fake.log->indexOf("run: " + kModelQuery));

    ui->Button_ApplyValues->setEnabled(false);
    ui->pushButton->setEnabled(true);
    ui->pushButton->click();
    QCOMPARE(ui->undervolt_slider->value(), 80);
    QCOMPARE(ui->Slider_TurboBoost->value(), 300);
    QCOMPARE(ui->Slider_TurboTime->value(), 56);
    const int ratios[] = {43, 42, 41, 40, 40, 39, 38, 37};
    const QSpinBox *spins[] = {ui->Core1Spin, ui->Core2Spin, ui->Core3Spin, ui->Core4Spin,
                               ui->Core5Spin, ui->Core6Spin, ui->Core7Spin, ui->Core8Spin};
    // A 6-core row reads six ratios.
    for (int i = 0; i < 8; ++i)
        QCOMPARE(spins[i]->value(), i < 6 ? ratios[i] : 0);
    // The value handlers ran: labels follow and both buttons are enabled again.
    QCOMPARE(ui->Label_UnderVolt_Value->text(), QStringLiteral("-80mV"));
    QCOMPARE(ui->Label_TurboPowerValue->text(), QStringLiteral("37.5W"));
    QCOMPARE(ui->Label_BoostTimeValue->text(), QStringLiteral("56Sec"));
    QVERIFY(ui->Button_ApplyValues->isEnabled());
    QVERIFY(ui->pushButton->isEnabled());
    QVERIFY(fake.dialogs->shown.isEmpty());
    // Nothing goes to the processor until Apply.
    QVERIFY(fake.log->withPrefix("process:").isEmpty());
}

void CpuIdentificationTest::turboLimits_data()
{
    QTest::addColumn<QVariantMap>("profile");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("topLabel");
    QTest::addColumn<QString>("highestFiniteLabel");

    QTest::newRow("profile limits")
        << QVariantMap{{"max", 360}, {"unlimited", "200"}} << 361 << "200W"
        << "45W";
    QTest::newRow("no unlimited figure") << QVariantMap{{"max", 360}} << 361 << "4095.875W"
                                         << "45W";
    // 8000 steps are 1000000 mW, the fixed whole figure.
    QTest::newRow("max 0") << QVariantMap{{"max", 0}, {"unlimited", "200"}} << 8001 << "200W"
                           << "1000W";
    QTest::newRow("no profile file") << QVariantMap{} << 8001 << "4095.875W"
                                     << "1000W";
    // Limits no slider can hold count as missing instead of jamming it at 1 W.
    QTest::newRow("max at the integer limit")
        << QVariantMap{{"max", "2147483647"}} << 8001 << "4095.875W"
        << "1000W";
    QTest::newRow("max negative") << QVariantMap{{"max", -40}} << 8001 << "4095.875W"
                                  << "1000W";
    QTest::newRow("max above a thousand watts") << QVariantMap{{"max", 8200}} << 8001 << "4095.875W"
                                                << "1000W";
}

void CpuIdentificationTest::turboLimits()
{
    QFETCH(QVariantMap, profile);
    QFETCH(int, maximum);
    FakePlatform fake;
    TestFolder folder;
    identifyAs(fake, "Intel(R) Core(TM) i7-9750H CPU @ 2.60GHz", "");
    writeProfile(folder, "9750H", profile);

    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    QCOMPARE(ui->Slider_TurboBoost->maximum(), maximum);
    QCOMPARE(w.cpuTuning()->turboPowerMax, maximum - 1);
    ui->Slider_TurboBoost->setValue(maximum);
    QTEST(ui->Label_TurboPowerValue->text(), "topLabel");
    ui->Slider_TurboBoost->setValue(maximum - 1);
    QTEST(ui->Label_TurboPowerValue->text(), "highestFiniteLabel");
}

void CpuIdentificationTest::amdProcessorDisablesTheTabAndStartUpGoesOn()
{
    FakePlatform fake;
    TestFolder folder;
    identifyAs(fake, "AMD Ryzen 9 5900HX with Radeon Graphics", "NH5xHX");
    MainWindow w(fake.bundle());
    QVERIFY(!w.form()->tabWidget->isTabEnabled(1));
    QCOMPARE(w.form()->tabWidget->widget(1), w.form()->tab);
    QCOMPARE(w.cpuTuning()->laptopModel, QStringLiteral("NH5xHX"));
    QCOMPARE(w.form()->Slider_TurboBoost->maximum(), 8001);
    QVERIFY(fake.dialogs->shown.isEmpty());

    FakePlatform intelFake;
    identifyAs(intelFake, "Intel(R) Core(TM) i7-8750H CPU @ 2.20GHz", "");
    MainWindow intel(intelFake.bundle());
    QVERIFY(intel.form()->tabWidget->isTabEnabled(1));
}

void CpuIdentificationTest::unsupportedProcessorIsReportedOnlyByRecommended()
{
    FakePlatform fake;
    TestFolder folder;
    identifyAs(fake, "Intel(R) Core(TM) i7-8850H CPU @ 2.60GHz", "P95_96_97Ex");
    writeProfile(folder, "8850H", {{"max", 360}, {"undervolt", 50}});
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    // At start-up the model is not known yet, so the 8850H row still gave the limits.
    QCOMPARE(ui->Slider_TurboBoost->maximum(), 361);
    QVERIFY(fake.dialogs->shown.isEmpty());

    ui->pushButton->setEnabled(true);
    ui->Button_ApplyValues->setEnabled(false);
    ui->pushButton->click();
    QCOMPARE(fake.dialogs->shown.size(), 1);
    const FakeDialogs::Shown &shown = fake.dialogs->shown.first();
    QCOMPARE(shown.icon, QMessageBox::Question);
    QCOMPARE(shown.title, QStringLiteral("CPU Information"));
    QCOMPARE(shown.text, QStringLiteral("Sorry but your CPU is not supported yet.\nPlease give us "
                                        "some more time to tune it!\n"));
    QCOMPARE(shown.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(ui->undervolt_slider->value(), 0);
    QVERIFY(ui->Button_ApplyValues->isEnabled());
    QVERIFY(!ui->pushButton->isEnabled());
}

void CpuIdentificationTest::profileWithoutCoreRatiosLeavesTheSpinBoxes()
{
    FakePlatform fake;
    TestFolder folder;
    identifyAs(fake, "Intel(R) Core(TM) i7-7700HQ CPU @ 2.80GHz", "");
    writeProfile(
        folder, "7700HQ",
        {{"max", 360}, {"undervolt", 70}, {"boostpower", 280}, {"turbotime", 28}, {"core1", 38}});
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    ui->Core1Spin->setValue(30);
    ui->pushButton->setEnabled(true);
    ui->pushButton->click();
    QCOMPARE(ui->undervolt_slider->value(), 70);
    QCOMPARE(ui->Slider_TurboBoost->value(), 280);
    QCOMPARE(ui->Slider_TurboTime->value(), 28);
    QCOMPARE(ui->Core1Spin->value(), 30);
}

void CpuIdentificationTest::missingProfileDrivesControlsToTheirMinimum()
{
    FakePlatform fake;
    TestFolder folder;
    identifyAs(fake, "Intel(R) Core(TM) i9-9900K CPU @ 3.60GHz", "");
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    ui->undervolt_slider->setValue(60);
    ui->Slider_TurboBoost->setValue(400);
    ui->Slider_TurboTime->setValue(20);
    ui->Core8Spin->setValue(45);
    ui->pushButton->setEnabled(true);
    ui->pushButton->click();
    QCOMPARE(ui->undervolt_slider->value(), 0);
    QCOMPARE(ui->Slider_TurboBoost->value(), 8);
    QCOMPARE(ui->Slider_TurboTime->value(), 1);
    QCOMPARE(ui->Core8Spin->value(), 0);
    QVERIFY(fake.dialogs->shown.isEmpty());
}

void CpuIdentificationTest::shippedProfiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("cores");
    QTest::addColumn<int>("turboRatio"); // the part's highest single-core turbo ratio

    QTest::newRow("7700K") << "7700K" << 4 << 45;
    QTest::newRow("7700HQ") << "7700HQ" << 0 << 38;
    QTest::newRow("8750H") << "8750H" << 6 << 41;
    QTest::newRow("8850H") << "8850H" << 6 << 43;
    QTest::newRow("8750H_P950") << "8750H_P950" << 6 << 41;
    QTest::newRow("8750H_N8") << "8750H_N8" << 6 << 41;
    QTest::newRow("8700K") << "8700K" << 6 << 47;
    QTest::newRow("9900K") << "9900K" << 8 << 50;
    QTest::newRow("8086K") << "8086K" << 6 << 50;
    QTest::newRow("8600K") << "8600K" << 6 << 43;
    QTest::newRow("6700K") << "6700K" << 4 << 42;
    QTest::newRow("8700") << "8700" << 6 << 46;
    QTest::newRow("9700K") << "9700K" << 8 << 49;
    QTest::newRow("9750H") << "9750H" << 6 << 45;
    QTest::newRow("10875H") << "10875H" << 8 << 51;
}

void CpuIdentificationTest::shippedProfiles()
{
    QFETCH(QString, file);
    QFETCH(int, cores);
    QFETCH(int, turboRatio);
    const QString path = QStringLiteral(VARNEL_DIST_DIR "/cpuprofiles/%1.ini").arg(file);
    QVERIFY2(QFile::exists(path), qPrintable(path));
    const SettingsFile profile(path);

    QStringList keys = {"max", "unlimited", "undervolt", "boostpower", "turbotime"};
    for (int n = 1; n <= cores; ++n)
        keys << QStringLiteral("core%1").arg(n);
    for (const QString &key : keys)
        QVERIFY2(profile.contains(key), qPrintable(key));
    QVERIFY2(!profile.contains(QStringLiteral("core%1").arg(cores + 1)),
             "a ratio the Recommended button never reads");

    // Power limits in 1/8 W steps; the recommended turbo power is within the finite range.
    const int max = profile.value("max").toInt();
    const int boost = profile.value("boostpower").toInt();
    QVERIFY(max >= 8 * 15 && max <= 8 * 255);
    QVERIFY(boost >= 8 && boost <= max);
    QVERIFY(profile.value("unlimited").toDouble() > max / 8.0);
    // A conservative undervolt, on the slider's scale.
    const int undervolt = profile.value("undervolt").toInt();
    QVERIFY(undervolt >= 0 && undervolt <= 125);
    const int seconds = profile.value("turbotime").toInt();
    QVERIFY(seconds >= 1 && seconds <= 128);
    // Turbo ratios fall (or stay) as more cores are active, from the part's top ratio.
    int previous = turboRatio;
    for (int n = 1; n <= cores; ++n) {
        const int ratio = profile.value(QStringLiteral("core%1").arg(n)).toInt();
        QVERIFY2(ratio <= previous && ratio >= 30, qPrintable(QStringLiteral("core%1").arg(n)));
        previous = ratio;
    }
    if (cores > 0)
        QCOMPARE(profile.value("core1").toInt(), turboRatio);
}

QTEST_MAIN(CpuIdentificationTest)
#include "tst_cpuidentification.moc"
