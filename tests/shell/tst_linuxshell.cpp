// The Linux side of the shell: the command table and its log-on entry, the registry routes, the
// instance folder, what the machine can back, native helper programs, the working folder, and the
// panel backlight and keyboard LED against fixture trees shaped like /sys/class.
#include "backlight.h"
#include "commandtable.h"
#include "desktoppower.h"
#include "instancefile.h"
#include "keyboardlight.h"
#include "linuxavailability.h"
#include "linuxcommands.h"
#include "linuxidentity.h"
#include "linuxregistry.h"
#include "nativeprogram.h"
#include "powercommands.h"
#include "textfile.h"
#include "workingfolder.h"

#include <QtTest>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(Feature)

namespace {

struct Recorder : DesktopTimeouts, LidSwitch {
    QStringList calls;
    bool record(const char *what, bool battery, int minutes)
    {
        calls << QStringLiteral("%1 %2 %3").arg(what, battery ? "battery" : "ac").arg(minutes);
        return true;
    }
    bool available() override { return true; }
    bool setScreenOff(bool battery, int m) override { return record("screen", battery, m); }
    bool setSleepAfter(bool battery, int m) override { return record("sleep", battery, m); }
    void setIgnored(bool ignored) override { calls << (ignored ? "lid held" : "lid free"); }
};

struct Fixture {
    QTemporaryDir dir;

    void device(const QString &name, const QString &type, int max, int raw) const
    {
        write(name + "/type", type);
        write(name + "/max_brightness", QString::number(max));
        write(name + "/brightness", QString::number(raw));
        write(name + "/actual_brightness", QString::number(raw));
    }
    void write(const QString &relative, const QString &text) const
    {
        writeFile(dir.filePath(relative), text.toUtf8() + '\n');
    }
    int raw(const QString &name) const
    {
        const QByteArray text = readFile(dir.filePath(name + "/brightness"));
        return text.isEmpty() ? -2 : text.trimmed().toInt();
    }
};

// A session that refuses, so the sysfs file is written directly.
const auto noSession = [](const QString &, quint32) { return false; };
} // namespace

class LinuxShellTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_config;

private slots:
    void initTestCase() { qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8()); }

    void logOnTaskAndTableRowsOverTheRunner()
    {
        auto table = std::make_shared<CommandTable>();
        addStartupCommands(*table);
        LinuxCommandRunner runner(table);
        const QString entry = m_config.path() + QStringLiteral("/autostart/varnel.desktop");
        runner.start(R"(schtasks /create /tn "Varnrel" /XML settings\varnrel_task.xml)");
        const QString text = QString::fromUtf8(readFile(entry));
        QCOMPARE(text, QStringLiteral("[Desktop Entry]\nType=Application\nName=Varnel\n"
                                      "Comment=Laptop control centre\nExec=\"%1\"\nPath=%2\n"
                                      "Icon=%2/branding/varnel_system_tray.png\nTerminal=false\n"
                                      "X-GNOME-Autostart-enabled=true\n")
                           .arg(qApp->applicationFilePath(), QDir::currentPath()));
        runner.start(R"(schtasks /Delete /tn "Varnrel" /f)");
        QVERIFY(!QFile::exists(entry));

        // Unknown lines behave like missing programs.
        QVERIFY(!table->knows(R"(schtasks /create /tn "Other" /XML x.xml)"));
        QVERIFY(!table->run(R"(schtasks /Delete /tn "Varnrel")").has_value());
        QVERIFY(runner.runAndRead("definitely-not-a-program --flag", 30000).isEmpty());
        QVERIFY(!LinuxIdentity().userName().isEmpty());

        // A table row answers an asynchronous process without starting one.
        table->add("echo (\\w+)",
                   [](const QRegularExpressionMatch &m) { return m.captured(1) + "\r\n"; });
        AsyncProcess *process = runner.createProcess(this);
        QSignalSpy finished(process, &AsyncProcess::finished);
        QSignalSpy output(process, &AsyncProcess::readyReadStandardOutput);
        process->startCommand("echo hello");
        QVERIFY(process->isRunning());
        process->startCommand("echo again"); // refused while the first answer is pending
        QVERIFY(finished.wait(2000));
        QCOMPARE(output.count(), 1);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(process->readAllStandardOutput(), QByteArray("hello\r\n"));
        QVERIFY(!process->isRunning());
    }

    void registryRoutes()
    {
        LinuxRegistry registry;
        const QString userKey = QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes");
        registry.setValue(userKey, "Default", ".None");
        QCOMPARE(registry.value(userKey, "Default", "x").toString(), QStringLiteral(".None"));
        QVERIFY(QFile::exists(UserStoreRegistry::storePath()));
        const QString machineKey = QStringLiteral(
            "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power");
        registry.setValue(machineKey, "HiberbootEnabled", "0");
        QVERIFY(!registry.contains(machineKey, "HiberbootEnabled"));
        auto routed = std::make_shared<UserStoreRegistry>();
        registry.addRoute("HKEY_CURRENT_USER\\Routed", routed);
        registry.setValue("hkey_current_user\\routed\\a", "v", 3);
        QCOMPARE(routed->value("hkey_current_user\\routed\\a", "v", 0).toInt(), 3);
    }

    // The instance block and server go only where no other user can write or plant a link.
    void instanceFolderIsPrivate_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<int>("chosen"); // index into the two candidates, -1 for none
        const std::pair<const char *, int> rows[] = {
            {"private", 0}, {"missing", 0}, {"shared", 1},      {"link", 1},
            {"file", 1},    {"foreign", 1}, {"shared-both", -1}};
        for (const auto &[first, chosen] : rows)
            QTest::newRow(first) << QString(first) << chosen;
    }

    void instanceFolderIsPrivate()
    {
        QFETCH(QString, first);
        QFETCH(int, chosen);
        QTemporaryDir root;
        const QString a = root.filePath("a"), b = root.filePath("b");
        const QByteArray pathA = QFile::encodeName(a);
        QVERIFY(QDir().mkdir(b));
        if (first == "link")
            QVERIFY(QFile::link(b, a));
        else if (first == "file")
            QVERIFY(QFile(a).open(QIODevice::WriteOnly));
        else if (first != "missing")
            QVERIFY(QDir().mkdir(a));
        if (first == "private")
            ::chmod(pathA.constData(), 0700);
        if (first.startsWith("shared"))
            ::chmod(pathA.constData(), 0777);
        if (first == "shared-both")
            ::chmod(QFile::encodeName(b).constData(), 0770);
        if (first == "foreign") {
            if (geteuid() != 0)
                QSKIP("needs root to make a folder of another user");
            const passwd *nobody = getpwnam("nobody");
            QVERIFY(nobody && ::chown(pathA.constData(), nobody->pw_uid, nobody->pw_gid) == 0);
        }
        const QStringList candidates{a, b};
        QCOMPARE(privateInstanceDirectory(candidates), candidates.value(chosen));
        if (first == "missing")
            QCOMPARE(QFileInfo(a).permissions() & 0x0077, QFileDevice::Permissions());

        FileInstanceBlock nowhere(QString(), "key"); // no private folder: still starts
        QVERIFY(nowhere.claimPrimary(QCoreApplication::applicationPid()));
        QVERIFY(nowhere.serverName().isEmpty());
    }

    void nativeCounterpartOfAWindowsProgram_data()
    {
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<QString>("installed"); // relative file made executable, or empty
        QTest::addColumn<bool>("found");        // whether that file is the native program
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("arguments");
        const struct {
            const char *row, *line, *installed;
            bool found;
            const char *name;
            QStringList arguments;
        } rows[] = {
            {"bare name", "Remote.exe", "Remote", true, "Remote", {}},
            {"folder", R"(up\Update.exe -q "a b")", "up/Update", true, "Update", {"-q", "a b"}},
            {"upper-case suffix", "Libs\\AuxSwitch.EXE", "Libs/AuxSwitch", true, "AuxSwitch", {}},
            {"not installed", "LatencyFix.exe", "", false, "LatencyFix", {}},
            {"the .exe is no native program", "Remote.exe", "Remote.exe", false, "Remote", {}},
            {"parent folder", "..\\Remote.exe", "", false, "", {}},
            {"drive", "C:\\Tools\\Remote.exe", "", false, "", {}},
            {"not a program", "explorer ms-settings:sound", "", false, "", {}}};
        for (const auto &r : rows)
            QTest::newRow(r.row) << QString(r.line) << QString(r.installed) << r.found
                                 << QString(r.name) << r.arguments;
    }

    void nativeCounterpartOfAWindowsProgram()
    {
        QFETCH(QString, commandLine);
        QFETCH(QString, installed);
        QFETCH(bool, found);
        QFETCH(QString, name);
        QTemporaryDir install;
        if (!installed.isEmpty())
            writeFile(install.filePath(installed), "#!/bin/sh\n", true);
        writeFile(install.filePath("LatencyFix"), "#!/bin/sh\n"); // not executable: no program
        const NativeProgram program = nativeProgramFor(commandLine, install.path());
        QCOMPARE(program.path, found ? install.filePath(installed) : QString());
        QCOMPARE(program.name, name);
        if (found)
            QTEST(program.arguments, "arguments");
    }

    // The reason each feature is off when the probes say no.
    void linuxReasons_data()
    {
        QTest::addColumn<Feature>("feature");
        QTest::addColumn<QString>("reason");
        const QString helper("Needs the Varnel system helper, which is not installed.");
        const QString desktop(" a GNOME or KDE Plasma desktop.");
        const struct {
            const char *row;
            Feature feature;
            QString reason;
        } rows[] = {
            {"backlight", Feature::PanelBacklight,
             "This screen has no backlight that can be adjusted."},
            {"gpu", Feature::NvidiaGpu, "No NVIDIA GPU in this computer."},
            {"limits", Feature::ProcessorLimits, helper},
            {"lid shutdown, even with the helper", Feature::LidShutdown,
             "Linux sets the lid's action for every user and every power mode at once, so "
             "Varnel leaves it to the system settings."},
            {"camera", Feature::CameraSwitch, helper},
            {"tuning", Feature::CpuTuning, helper},
            {"windows fix", Feature::WindowsOnlyFix,
             "A Windows-only fix: Linux has no such setting."},
            {"super key", Feature::SuperKeyBlocker, "Blocking the Super key needs" + desktop},
            {"timeouts", Feature::ScreenTimeouts, "Screen and sleep timeouts need" + desktop},
            {"touchpad", Feature::TouchpadSwitch, "Switching the touchpad needs" + desktop},
            {"adaptive brightness", Feature::AmbientLight,
             "This desktop has no adaptive brightness setting."},
            {"monitor channel", Feature::MonitorControl,
             "External monitors cannot be controlled: that needs libddcutil and access to "
             "/dev/i2c-* (the i2c group)."},
            {"event sounds", Feature::EventSounds,
             "This desktop has no switch for its event sounds."},
            {"keyboard light", Feature::KeyboardLight, "This keyboard has no backlight."},
            {"tray", Feature::SystemTray,
             "This desktop shows no tray icons: a hidden window could only be brought back by "
             "starting the program again."}};
        for (const auto &r : rows)
            QTest::newRow(r.row) << r.feature << r.reason;
    }

    void linuxReasons()
    {
        QFETCH(Feature, feature);
        QFETCH(QString, reason);
        // These two hold whatever the probes say.
        const bool always = feature == Feature::LidShutdown || feature == Feature::WindowsOnlyFix;
        // Devices that come and go are asked afresh; bus and desktop probes are asked once.
        const bool afresh = feature == Feature::PanelBacklight ||
                            feature == Feature::KeyboardLight || feature == Feature::SystemTray;
        for (const bool probesSay : {false, true}) {
            int asked = 0;
            auto answer = [&] {
                ++asked;
                return probesSay;
            };
            LinuxAvailability::Probes p;
            p.backlight = p.nvidiaGpu = p.nvidiaLibrary = p.systemHelper = p.superKeySetting =
                p.desktopTimeouts = p.touchpadSetting = p.ambientSetting = p.monitorChannel =
                    p.eventSounds = p.keyboardLight = p.systemTray = answer;
            LinuxAvailability machine(p, nullptr);
            const QString expected = probesSay && !always ? QString() : reason;
            QCOMPARE(machine.whyUnavailable(feature), expected);
            const int first = asked;
            QCOMPARE(machine.whyUnavailable(feature), expected);
            QCOMPARE(asked, afresh ? 2 * first : first);
        }
        if (feature == Feature::NvidiaGpu) { // a GPU, no driver library to read it
            LinuxAvailability::Probes gpuOnly;
            gpuOnly.nvidiaGpu = [] { return true; };
            QCOMPARE(LinuxAvailability(gpuOnly, nullptr).whyUnavailable(feature),
                     QStringLiteral("The NVIDIA driver, which reports the GPU's sensors, is not "
                                    "installed."));
        }
    }

    void programButtonsAskTheCommandTable()
    {
        bool mixerInstalled = false;
        auto table = std::make_shared<CommandTable>();
        const auto nothing = [](const QRegularExpressionMatch &) { return QString(); };
        table->add("explorer ms-settings:sound", nothing, [&] { return mixerInstalled; });
        table->add("powercfg -SetActive SCHEME_CURRENT", nothing);
        QTemporaryDir install;
        writeFile(install.filePath("Remote"), "#!/bin/sh\n", true);
        LinuxAvailability::Probes probes;
        probes.installFolder = install.path();
        LinuxAvailability machine(probes, table);
        QCOMPARE(machine.whyCannotStart("explorer ms-settings:sound"),
                 QStringLiteral("No program for this is installed on this computer."));
        mixerInstalled = true;
        QCOMPARE(machine.whyCannotStart("explorer ms-settings:sound"), QString());
        QCOMPARE(machine.whyCannotStart("powercfg -SetActive SCHEME_CURRENT"), QString());
        QCOMPARE(machine.whyCannotStart("Remote.exe"), QString());
        QCOMPARE(machine.whyCannotStart("LatencyFix.exe"),
                 QStringLiteral("LatencyFix has no Linux version in %1.").arg(install.path()));
        QCOMPARE(machine.whyCannotStart("explorer shell:unknown"),
                 QStringLiteral("Not available on Linux."));
    }

    void nativeCounterpartIsStartedInTheWorkingFolder()
    {
        QTemporaryDir install, working;
        writeFile(install.filePath("updates/Update"),
                  "#!/bin/sh\necho \"$PWD $*\" > started.tmp && mv started.tmp started\n", true);
        const QString previous = QDir::currentPath();
        QDir::setCurrent(working.path());
        LinuxCommandRunner runner(std::make_shared<CommandTable>(), install.path());
        runner.startShown(R"(updates\Update.exe --quiet)", ShowMode::Normal);
        runner.startShown("Remote.exe", ShowMode::Normal); // not installed: nothing happens
        QDir::setCurrent(previous);
        QTRY_COMPARE(readFile(working.filePath("started")).trimmed(),
                     (working.path() + " --quiet").toUtf8());
    }

    void powerSchemeLinesReachTheDesktop()
    {
        auto recorder = std::make_shared<Recorder>();
        CommandTable table;
        addDesktopPowerCommands(table, recorder, recorder);
        using namespace powercmd;
        // Screen off after 10 minutes, sleep after 5 and 300, never; the lid does nothing,
        // sleeps, shuts down.
        for (const QString &line :
             {screenOff(2).ac, screenOff(2).dc, sleepAfter(1).ac, sleepAfter(1).dc,
              sleepAfter(8).ac, sleepAfter(8).dc, sleepAfter(0).ac, lidClose(0).ac, lidClose(1).dc,
              lidClose(2).ac})
            QVERIFY2(table.run(line).has_value(), qPrintable(line));
        QCOMPARE(recorder->calls,
                 QStringList({"screen ac 10", "screen battery 10", "sleep ac 5", "sleep battery 5",
                              "sleep ac 300", "sleep battery 300", "sleep ac 0", "lid held",
                              "lid free", "lid free"}));
        QVERIFY(!table.knows(processorMaximum(80).ac));
    }

    void systemWideInstallWorksInAUserFolder()
    {
        QTemporaryDir install, home, moved;
        const QString user = home.filePath("varnel");
        qputenv("XDG_DATA_HOME", QFile::encodeName(home.path()));
        QCOMPARE(userWorkingFolder(), user);
        qunsetenv("XDG_DATA_HOME");
        QDir(install.path()).mkpath("branding");
        QDir(install.path()).mkpath("cpuprofiles");
        writeFile(install.filePath("settings/default_power_mode.ini"), {});
        QCOMPARE(prepareWorkingFolder(install.path(), user, true), install.path());
        QVERIFY(!QFileInfo::exists(user));

        QCOMPARE(prepareWorkingFolder(install.path(), user, false), user);
        for (const char *folder : {"/settings", "/updates"})
            QVERIFY(QFileInfo(user + folder).isDir() && !QFileInfo(user + folder).isSymLink());
        QCOMPARE(QFileInfo(user + "/branding").symLinkTarget(), install.filePath("branding"));
        QCOMPARE(QFileInfo(user + "/cpuprofiles").symLinkTarget(), install.filePath("cpuprofiles"));
        QCOMPARE(QFileInfo(user + "/settings/default_power_mode.ini").symLinkTarget(),
                 install.filePath("settings/default_power_mode.ini"));

        // A later start: the user's own files stay, links follow a moved install folder.
        QDir(moved.path()).mkpath("branding");
        writeFile(user + "/settings/varnel.ini", {});
        QFile::remove(user + "/cpuprofiles");
        QDir(user).mkpath("cpuprofiles"); // the user's own copy
        QCOMPARE(prepareWorkingFolder(moved.path(), user, false), user);
        QCOMPARE(QFileInfo(user + "/branding").symLinkTarget(), moved.filePath("branding"));
        QVERIFY(!QFileInfo(user + "/cpuprofiles").isSymLink());
        QVERIFY(QFileInfo::exists(user + "/settings/varnel.ini"));
    }

    void choosesFirmwareOverPlatformOverRaw_data()
    {
        QTest::addColumn<QStringList>("devices"); // name:type[:max]
        QTest::addColumn<QString>("chosen");
        QTest::newRow("firmware wins")
            << QStringList{"amdgpu_bl0:raw", "acpi_video0:firmware", "dell_backlight:platform"}
            << "acpi_video0";
        QTest::newRow("platform over raw")
            << QStringList{"intel_backlight:raw", "nv:platform"} << "nv";
        QTest::newRow("same type by name") << QStringList{"b:raw", "a:raw"} << "a";
        QTest::newRow("unknown type last") << QStringList{"odd:other", "z:raw"} << "z";
        QTest::newRow("none") << QStringList() << "";
        QTest::newRow("no usable maximum") << QStringList{"broken:raw:0"} << "";
    }

    // The session writer is tried first, with the chosen device; without one nothing is written.
    void choosesFirmwareOverPlatformOverRaw()
    {
        QFETCH(QStringList, devices);
        QFETCH(QString, chosen);
        Fixture f;
        for (const QString &d : devices)
            f.device(d.section(':', 0, 0), d.section(':', 1, 1),
                     d.count(':') > 1 ? d.section(':', 2).toInt() : 255, 10);
        QStringList calls;
        SysfsBacklight panel(f.dir.path(), [&](const QString &device, quint32 raw) {
            calls << QStringLiteral("%1 %2").arg(device).arg(raw);
            f.write(device + "/brightness", QString::number(raw)); // as logind would
            return true;
        });
        QCOMPARE(panel.deviceName(), chosen);
        panel.write(40);
        QCOMPARE(calls, chosen.isEmpty() ? QStringList() : QStringList{chosen + " 102"});
        QCOMPARE(panel.read(), chosen.isEmpty() ? -1 : 40);
        QVERIFY(panel.providerInstalled());
        QCOMPARE(SysfsBacklight(f.dir.filePath("missing"), noSession).read(), -1);
    }

    // Reading raw as a share of max, and writing a share, never below raw level 1.
    void levels_data()
    {
        QTest::addColumn<int>("max");
        QTest::addColumn<int>("raw");
        QTest::addColumn<int>("percent");
        QTest::addColumn<bool>("reading"); // raw -> percent, else percent -> raw
        const int rows[][4] = {{7, 0, 0, 1},      {7, 3, 43, 1},      {7, 7, 100, 1},
                               {255, 128, 50, 1}, {255, 300, 100, 1}, {96000, 24000, 25, 1},
                               {7, 1, 0, 0},      {7, 1, 5, 0},       {7, 1, 10, 0},
                               {255, 1, 0, 0},    {255, 3, 1, 0},     {96000, 1, 0, 0},
                               {1, 1, 0, 0},      {255, 255, 100, 0}, {255, 255, 250, 0}};
        for (const auto &r : rows)
            QTest::addRow("%s %d/%d, %d%%", r[3] ? "read" : "write", r[1], r[0], r[2])
                << r[0] << r[1] << r[2] << bool(r[3]);
    }

    void levels()
    {
        QFETCH(int, max);
        QFETCH(int, raw);
        QFETCH(int, percent);
        QFETCH(bool, reading);
        Fixture f;
        f.device("acpi_video0", "firmware", max, reading ? raw : max);
        SysfsBacklight panel(f.dir.path(), noSession);
        if (!reading) {
            panel.write(quint32(percent));
            QCOMPARE(f.raw("acpi_video0"), raw);
            QCOMPARE(panel.read(), qMin(percent, 100)); // what was written, not the rounded raw
            // Someone else moved the panel: the reading follows the device again.
            f.write("acpi_video0/brightness", "0");
            percent = 0;
        }
        QCOMPARE(panel.read(), percent);
    }

    void keyboardLightLevels_data()
    {
        QTest::addColumn<int>("max");
        QTest::addColumn<int>("percent");
        QTest::addColumn<int>("raw");
        for (const auto &r :
             {std::array{3, 0, 0}, {3, 50, 2}, {3, 100, 3}, {255, 40, 102}, {255, 140, 255}})
            QTest::addRow("%d%% of %d", r[1], r[0]) << r[0] << r[1] << r[2];
    }

    void keyboardLightLevels()
    {
        QFETCH(int, max);
        QFETCH(int, percent);
        QFETCH(int, raw);
        Fixture f;
        f.device("input3::capslock", "", 1, 0);
        f.device("rgb:kbd_backlight", "", max, 7); // not the keyboard's name pattern
        f.device("tpacpi::kbd_backlight", "", max, 7);
        QStringList calls;
        const auto session = [&](const QString &led, quint32 value) {
            calls << QStringLiteral("%1 %2").arg(led).arg(value);
            return true;
        };
        LedKeyboardLight(f.dir.path(), session).setLevel(percent);
        QCOMPARE(calls, QStringList{QStringLiteral("tpacpi::kbd_backlight %1").arg(raw)});
        QCOMPARE(f.raw("tpacpi::kbd_backlight"), 7);

        LedKeyboardLight(f.dir.path(), noSession).setLevel(percent);
        QCOMPARE(f.raw("tpacpi::kbd_backlight"), raw);
        QCOMPARE(f.raw("input3::capslock"), 0);

        Fixture none;
        none.device("input3::capslock", "", 1, 0);
        LedKeyboardLight(none.dir.path(), session).setLevel(percent);
        QCOMPARE(calls.size(), 1);
    }
};

QTEST_GUILESS_MAIN(LinuxShellTest)
#include "tst_linuxshell.moc"
