// Controls that cannot do what they say on the running machine: the Linux answers (native
// helper programs, probes, the desktop's power settings), the per-user working folder of a
// system-wide install, and the real window holding such controls disabled with the reason.
#include "testwindow.h"
#include "commandtable.h"
#include "desktoppower.h"
#include "linuxavailability.h"
#include "linuxcommands.h"
#include "nativeprogram.h"
#include "powercommands.h"
#include "unavailablecontrols.h"
#include "workingfolder.h"

#include <QStandardItemModel>
#include <QtTest>

Q_DECLARE_METATYPE(Feature)

class HonestControlsTest : public QObject {
    Q_OBJECT

private slots:
    void nativeCounterpartOfAWindowsProgram_data();
    void nativeCounterpartOfAWindowsProgram();
    void linuxReasons_data();
    void linuxReasons();
    void programButtonsAskTheCommandTable();
    void nativeCounterpartIsStartedInTheWorkingFolder();
    void powerSchemeLinesReachTheDesktop_data();
    void powerSchemeLinesReachTheDesktop();
    void systemWideInstallWorksInAUserFolder();
    void windowHoldsUnavailableControlsDisabled();
    void firstStartOpensOnAWorkingTab();
};

namespace {

void makeProgram(const QString &path, bool executable = true)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n");
    file.close();
    if (executable)
        file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
}

struct Recorder : DesktopTimeouts, LidSwitch {
    QStringList calls;
    bool available() override { return true; }
    bool setScreenOff(bool battery, int minutes) override
    {
        calls << QStringLiteral("screen %1 %2").arg(battery ? "battery" : "ac").arg(minutes);
        return true;
    }
    bool setSleepAfter(bool battery, int minutes) override
    {
        calls << QStringLiteral("sleep %1 %2").arg(battery ? "battery" : "ac").arg(minutes);
        return true;
    }
    void setIgnored(bool ignored) override
    {
        calls << (ignored ? QStringLiteral("lid held") : QStringLiteral("lid free"));
    }
};

} // namespace

void HonestControlsTest::nativeCounterpartOfAWindowsProgram_data()
{
    QTest::addColumn<QString>("commandLine");
    QTest::addColumn<QString>("installed"); // relative file made executable, or empty
    QTest::addColumn<QString>("found");     // relative path expected, or empty
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("bare name") << "Remote.exe"
                               << "Remote"
                               << "Remote"
                               << "Remote" << QStringList{};
    QTest::newRow("sub folder, arguments") << R"(updates\Update.exe -q "a b")"
                                           << "updates/Update"
                                           << "updates/Update"
                                           << "Update" << QStringList{"-q", "a b"};
    QTest::newRow("upper-case suffix") << "Libs\\AuxSwitch.EXE"
                                       << "Libs/AuxSwitch"
                                       << "Libs/AuxSwitch"
                                       << "AuxSwitch" << QStringList{};
    QTest::newRow("not installed") << "LatencyFix.exe"
                                   << ""
                                   << ""
                                   << "LatencyFix" << QStringList{};
    QTest::newRow("the .exe itself is no native program") << "Remote.exe"
                                                          << "Remote.exe"
                                                          << ""
                                                          << "Remote" << QStringList{};
    QTest::newRow("parent folder") << "..\\Remote.exe"
                                   << ""
                                   << ""
                                   << "" << QStringList{};
    QTest::newRow("drive") << "C:\\Tools\\Remote.exe"
                           << ""
                           << ""
                           << "" << QStringList{};
    QTest::newRow("not a program") << "explorer ms-settings:sound"
                                   << ""
                                   << ""
                                   << "" << QStringList{};
}

void HonestControlsTest::nativeCounterpartOfAWindowsProgram()
{
    QFETCH(QString, commandLine);
    QFETCH(QString, installed);
    QFETCH(QString, found);
    QFETCH(QString, name);
    QFETCH(QStringList, arguments);
    QTemporaryDir install;
    if (!installed.isEmpty())
        makeProgram(install.filePath(installed));
    // A plain file of the right name is not something to start.
    makeProgram(install.filePath("LatencyFix"), false);
    const NativeProgram program = nativeProgramFor(commandLine, install.path());
    QCOMPARE(program.path, found.isEmpty() ? QString() : install.filePath(found));
    QCOMPARE(program.name, name);
    if (!found.isEmpty())
        QCOMPARE(program.arguments, arguments);
}

void HonestControlsTest::linuxReasons_data()
{
    QTest::addColumn<Feature>("feature");
    QTest::addColumn<bool>("probesSay");
    QTest::addColumn<QString>("reason");
    const QString helper = "Needs the Varnel system helper, which is not installed.";
    QTest::newRow("backlight") << Feature::PanelBacklight << true << "";
    QTest::newRow("no backlight") << Feature::PanelBacklight << false
                                  << "This screen has no backlight that can be adjusted.";
    QTest::newRow("gpu") << Feature::NvidiaGpu << true << "";
    QTest::newRow("no gpu") << Feature::NvidiaGpu << false << "No NVIDIA GPU in this computer.";
    QTest::newRow("limits, helper") << Feature::ProcessorLimits << true << "";
    QTest::newRow("limits") << Feature::ProcessorLimits << false << helper;
    QTest::newRow("lid shutdown, even with the helper")
        << Feature::LidShutdown << true
        << "Linux sets the lid's action for every user and every power mode at once, so Varnel "
           "leaves it to the system settings.";
    QTest::newRow("camera") << Feature::CameraSwitch << false << helper;
    QTest::newRow("tuning") << Feature::CpuTuning << false << helper;
    QTest::newRow("windows fix, whatever the probes")
        << Feature::WindowsOnlyFix << true << "A Windows-only fix: Linux has no such setting.";
    QTest::newRow("super key") << Feature::SuperKeyBlocker << true << "";
    QTest::newRow("no super key setting")
        << Feature::SuperKeyBlocker << false
        << "Blocking the Super key needs a GNOME or KDE Plasma desktop.";
    QTest::newRow("no timeouts") << Feature::ScreenTimeouts << false
                                 << "Screen and sleep timeouts need a GNOME or KDE Plasma desktop.";
    QTest::newRow("no touchpad setting")
        << Feature::TouchpadSwitch << false
        << "Switching the touchpad needs a GNOME or KDE Plasma desktop.";
    QTest::newRow("adaptive brightness") << Feature::AmbientLight << true << "";
}

void HonestControlsTest::linuxReasons()
{
    QFETCH(Feature, feature);
    QFETCH(bool, probesSay);
    QFETCH(QString, reason);
    int asked = 0;
    auto answer = [&] {
        ++asked;
        return probesSay;
    };
    LinuxAvailability::Probes probes{answer, answer, answer, answer, answer, answer,
                                     answer, answer, answer, answer, {}};
    LinuxAvailability machine(probes, nullptr);
    QCOMPARE(machine.whyUnavailable(feature), reason);
    const int first = asked;
    QCOMPARE(machine.whyUnavailable(feature), reason);
    // Only the panel is asked afresh; bus and desktop probes are asked once.
    QCOMPARE(asked, feature == Feature::PanelBacklight ? 2 * first : first);
}

void HonestControlsTest::programButtonsAskTheCommandTable()
{
    bool pavucontrolInstalled = false;
    auto table = std::make_shared<CommandTable>();
    table->add(
        "explorer ms-settings:sound", [](const QRegularExpressionMatch &) { return ""; },
        [&] { return pavucontrolInstalled; });
    table->add("powercfg -SetActive SCHEME_CURRENT",
               [](const QRegularExpressionMatch &) { return ""; });
    QTemporaryDir install;
    makeProgram(install.filePath("Remote"));
    LinuxAvailability::Probes probes;
    probes.installFolder = install.path();
    LinuxAvailability machine(probes, table);

    QCOMPARE(machine.whyCannotStart("explorer ms-settings:sound"),
             QStringLiteral("No program for this is installed on this computer."));
    pavucontrolInstalled = true;
    QCOMPARE(machine.whyCannotStart("explorer ms-settings:sound"), QString());
    QCOMPARE(machine.whyCannotStart("powercfg -SetActive SCHEME_CURRENT"), QString());
    QCOMPARE(machine.whyCannotStart("Remote.exe"), QString());
    QCOMPARE(machine.whyCannotStart("LatencyFix.exe"),
             QStringLiteral("LatencyFix has no Linux version in %1.").arg(install.path()));
    QCOMPARE(machine.whyCannotStart("explorer shell:unknown"),
             QStringLiteral("Not available on Linux."));
}

void HonestControlsTest::nativeCounterpartIsStartedInTheWorkingFolder()
{
    QTemporaryDir install, working;
    const QString marker = working.filePath("started");
    QDir().mkpath(install.filePath("updates"));
    QFile script(install.filePath("updates/Update"));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\necho \"$PWD $*\" > started.tmp && mv started.tmp started\n");
    script.close();
    script.setPermissions(script.permissions() | QFileDevice::ExeOwner);

    const QString previous = QDir::currentPath();
    QDir::setCurrent(working.path());
    LinuxCommandRunner runner(std::make_shared<CommandTable>(), install.path());
    runner.startShown(R"(updates\Update.exe --quiet)", ShowMode::Normal);
    runner.startShown("Remote.exe", ShowMode::Normal); // not installed: nothing happens
    QDir::setCurrent(previous);

    QTRY_VERIFY(QFileInfo::exists(marker));
    QFile answer(marker);
    QVERIFY(answer.open(QIODevice::ReadOnly));
    QCOMPARE(answer.readAll().trimmed(), (working.path() + " --quiet").toUtf8());
}

void HonestControlsTest::powerSchemeLinesReachTheDesktop_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("calls");
    const powercmd::Pair screen = powercmd::screenOff(2);
    const powercmd::Pair shortSleep = powercmd::sleepAfter(1);
    const powercmd::Pair longSleep = powercmd::sleepAfter(8);
    const powercmd::Pair never = powercmd::sleepAfter(0);
    QTest::newRow("screen off, 10 minutes")
        << QStringList{screen.ac, screen.dc} << QStringList{"screen ac 10", "screen battery 10"};
    QTest::newRow("sleep, short form") << QStringList{shortSleep.ac, shortSleep.dc}
                                       << QStringList{"sleep ac 5", "sleep battery 5"};
    QTest::newRow("sleep, long form") << QStringList{longSleep.ac, longSleep.dc}
                                      << QStringList{"sleep ac 300", "sleep battery 300"};
    QTest::newRow("never sleep") << QStringList{never.ac} << QStringList{"sleep ac 0"};
    QTest::newRow("lid does nothing")
        << QStringList{powercmd::lidClose(0).ac} << QStringList{"lid held"};
    QTest::newRow("lid sleeps") << QStringList{powercmd::lidClose(1).dc} << QStringList{"lid free"};
    QTest::newRow("lid shuts down: the lock goes")
        << QStringList{powercmd::lidClose(2).ac} << QStringList{"lid free"};
}

void HonestControlsTest::powerSchemeLinesReachTheDesktop()
{
    QFETCH(QStringList, lines);
    QFETCH(QStringList, calls);
    auto recorder = std::make_shared<Recorder>();
    CommandTable table;
    addDesktopPowerCommands(table, recorder, recorder);
    for (const QString &line : lines)
        QVERIFY2(table.run(line).has_value(), qPrintable(line));
    QCOMPARE(recorder->calls, calls);
    QVERIFY(!table.knows(powercmd::processorMaximum(80).ac));
}

void HonestControlsTest::systemWideInstallWorksInAUserFolder()
{
    QTemporaryDir install, home;
    const QString user = home.filePath("varnel");
    QDir(install.path()).mkpath("branding");
    QDir(install.path()).mkpath("cpuprofiles");
    makeProgram(install.filePath("settings/default_power_mode.ini"), false);

    QCOMPARE(prepareWorkingFolder(install.path(), user, true), install.path());
    QVERIFY(!QFileInfo::exists(user));

    QCOMPARE(prepareWorkingFolder(install.path(), user, false), user);
    for (const char *folder : {"settings", "updates"})
        QVERIFY(QFileInfo(user + "/" + folder).isDir() &&
                !QFileInfo(user + "/" + folder).isSymLink());
    QCOMPARE(QFileInfo(user + "/branding").symLinkTarget(), install.filePath("branding"));
    QCOMPARE(QFileInfo(user + "/settings/default_power_mode.ini").symLinkTarget(),
             install.filePath("settings/default_power_mode.ini"));

    // A later start: the user's own files stay, links follow a moved install folder.
    QTemporaryDir moved;
    QDir(moved.path()).mkpath("branding");
    makeProgram(user + "/settings/varnel.ini", false);
    QDir(user).rmdir("cpuprofiles");
    QFile::remove(user + "/cpuprofiles");
    QDir(user).mkpath("cpuprofiles"); // the user's own copy
    QCOMPARE(prepareWorkingFolder(moved.path(), user, false), user);
    QCOMPARE(QFileInfo(user + "/branding").symLinkTarget(), moved.filePath("branding"));
    QVERIFY(!QFileInfo(user + "/cpuprofiles").isSymLink());
    QVERIFY(QFileInfo::exists(user + "/settings/varnel.ini"));
}

void HonestControlsTest::windowHoldsUnavailableControlsDisabled()
{
    TestWindow p;
    const QString helper = QStringLiteral("needs the helper");
    p.fake.availability->features[Feature::CpuTuning] = helper;
    p.fake.availability->features[Feature::LidShutdown] = helper;
    p.fake.availability->features[Feature::WindowsOnlyFix] = QStringLiteral("windows only");
    p.fake.availability->programs[QStringLiteral("Remote.exe")] = QStringLiteral("no Remote");
    p.fake.availability->programs[QStringLiteral("FanControl.exe")] = QStringLiteral("no fans");
    p.setGeneral("enable_power_modes", true);
    p.setGeneral("powermode", "normal");
    p.start();
    Ui::MainWindow &ui = p.ui();

    QVERIFY(!ui.turbo_override->isEnabled());
    QCOMPARE(ui.turbo_override->toolTip(), helper);
    // The tuning subsystem enables its controls as its own state changes; they stay off.
    ui.checkBox_DontManageCPU->click();
    ui.checkBox_DontManageCPU->click();
    ui.turbo_override->setEnabled(true);
    ui.turbo_override->setToolTip(QStringLiteral("other"));
    QVERIFY(!ui.turbo_override->isEnabled());
    QCOMPARE(ui.turbo_override->toolTip(), helper);
    QVERIFY(!ui.tabWidget->isTabEnabled(ui.tabWidget->indexOf(ui.tab)));
    QCOMPARE(ui.tabWidget->tabToolTip(ui.tabWidget->indexOf(ui.tab)), helper);

    QVERIFY(!ui.CheckTDRdelay->isEnabled());
    QCOMPARE(ui.Button_RemoteControl->toolTip(), QStringLiteral("no Remote"));
    QVERIFY(!ui.Button_FanControl->isEnabled());
    QVERIFY(ui.Button_KeyboardLed->isEnabled());
    QVERIFY(ui.checkstart->isEnabled()); // two of the three apps can still start
    QVERIFY(ui.silent_cpu_min->isEnabled());
    QVERIFY(!ui.comboBox_5->isEnabled());
    QCOMPARE(ui.comboBox_5->toolTip(), QStringLiteral("Fan modes are set by Fan Control: no fans"));
    QVERIFY(ui.horizontalSlider_2->isEnabled()); // the keyboard app can still start

    // Only the shutdown entry of the lid action is off.
    auto *lid = qobject_cast<QStandardItemModel *>(ui.LidClose_Combo->model());
    QVERIFY(lid->item(0)->isEnabled() && lid->item(1)->isEnabled());
    QVERIFY(!lid->item(2)->isEnabled());
    QCOMPARE(lid->item(2)->toolTip(), helper);
    QVERIFY(ui.LidClose_Combo->isEnabled());
}

void HonestControlsTest::firstStartOpensOnAWorkingTab()
{
    TestWindow p;
    p.fake.availability->features[Feature::NvidiaGpu] = QStringLiteral("no gpu");
    p.fake.availability->features[Feature::CpuTuning] = QStringLiteral("helper");
    p.fake.availability->features[Feature::WindowsOnlyFix] = QStringLiteral("windows only");
    p.fake.availability->features[Feature::SuperKeyBlocker] = QStringLiteral("no key");
    for (const char *program : {R"(Libs\AuxSwitch.exe)", R"(Libs\InitHeadphone.exe)"})
        p.fake.availability->programs[QLatin1String(program)] = QStringLiteral("missing");
    p.start(); // power modes off: the first tab is disabled
    QTabWidget &tabs = *p.ui().tabWidget;
    p.window->show();
    QVERIFY(!tabs.isTabEnabled(tabs.indexOf(p.ui().tab_10)));
    QCOMPARE(tabs.currentWidget(), p.ui().tab_3);
    QVERIFY(tabWorks(tabs, tabs.currentIndex()));
    QVERIFY(!tabWorks(tabs, tabs.indexOf(p.ui().tab_7)));
}

QTEST_MAIN(HonestControlsTest)
#include "tst_honestcontrols.moc"
