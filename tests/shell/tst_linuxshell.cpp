// The Linux side of the shell: one instance per user under real processes (this program is itself
// a first instance, so its own server is tried in-process), then the pieces under it, the panel
// backlight and keyboard LED against fixture trees shaped like /sys/class.
#include "backlight.h"
#include "commandtable.h"
#include "desktoppower.h"
#include "environmentoverride.h"
#include "fakedevices.h"
#include "instancefile.h"
#include "instancekey.h"
#include "keyboardlight.h"
#include "linuxavailability.h"
#include "linuxcommands.h"
#include "linuxdesktop.h"
#include "linuxidentity.h"
#include "linuxregistry.h"
#include "nativeprogram.h"
#include "powercommands.h"
#include "sharedmemoryblock.h"
#include "singleapplication.h"
#include "textfile.h"
#include "workingfolder.h"
#include "xtuclient.h"

#include <QLocalSocket>
#include <QtTest>

#include <memory>
#include <pwd.h>
#include <sched.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

Q_DECLARE_METATYPE(Feature)

namespace {

const QString kProbe = QStringLiteral(VARNEL_TEST_BIN_DIR "/shell/instance_probe");

// The key every probe start computes: the application's defaults, the probe's path, this user.
QString probeKey()
{
    InstanceKeyInputs in;
    in.applicationName = QStringLiteral("instance_probe");
    in.applicationFilePath = QFileInfo(kProbe).canonicalFilePath();
    in.userName = LinuxIdentity().userName();
    return instanceKey(in);
}

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

class TestLinuxShell : public QObject {
    Q_OBJECT

public:
    explicit TestLinuxShell(SingleApplication &app) : m_app(app) {}

private:
    SingleApplication &m_app;
    std::unique_ptr<QTemporaryDir> m_runtime; // the probes' private runtime folder
    std::unique_ptr<QTemporaryDir> m_temp;    // the probes' shared temporary folder
    std::vector<std::unique_ptr<QProcess>> m_probes;
    std::unique_ptr<QSharedMemory> m_heldSegment; // kept, as a segment outlives a killed start
    QTemporaryDir m_config;

    QProcess *startProbe(const QString &program = kProbe, const QStringList &arguments = {})
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime->path());
        env.insert(QStringLiteral("TMPDIR"), m_temp->path());
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process->setProcessEnvironment(env);
        process->start(program, arguments);
        m_probes.push_back(std::move(process));
        return m_probes.back().get();
    }

    // Starts one probe that must become the first instance; null if it did not say so.
    QProcess *startPrimary()
    {
        QProcess *probe = startProbe();
        if (!probe->waitForReadyRead(15000))
            return nullptr;
        const QByteArray line = probe->readLine().trimmed();
        return line.startsWith("primary ") && line.mid(8).toLongLong() > 0 ? probe : nullptr;
    }

    // A later start: it must hand over and end with status 0 while the first keeps running.
    bool handsOver()
    {
        QProcess *later = startProbe();
        return later->waitForFinished(15000) && later->exitStatus() == QProcess::NormalExit &&
               later->exitCode() == 0 && later->readAllStandardOutput().isEmpty();
    }

    // Runs f with the probes' temporary folder, where a System V segment's name lives.
    template <class F> void inProbeTemp(F f)
    {
        EnvironmentOverride environment;
        environment.set("TMPDIR", m_temp->path().toUtf8());
        if (!m_heldSegment)
            m_heldSegment = std::make_unique<QSharedMemory>(probeKey());
        f(*m_heldSegment);
    }

    QString blockFile() const { return m_runtime->path() + '/' + probeKey() + ".block"; }

    // The block wherever a start may look for one: the file and a System V segment.
    void writeBlock(const InstanceBlock &value)
    {
        QFile file(blockFile());
        if (file.open(QIODevice::ReadWrite))
            file.write(reinterpret_cast<const char *>(&value), sizeof(value));
        inProbeTemp([&](QSharedMemory &segment) {
            if ((segment.isAttached() || segment.attach()) && segment.lock()) {
                *static_cast<InstanceBlock *>(segment.data()) = value;
                segment.unlock();
            }
        });
    }

    int runningProbes()
    {
        return int(std::count_if(m_probes.begin(), m_probes.end(),
                                 [](const auto &p) { return p->state() != QProcess::NotRunning; }));
    }

private slots:
    void initTestCase() { qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8()); }

    void init()
    {
        m_runtime = std::make_unique<QTemporaryDir>();
        m_temp = std::make_unique<QTemporaryDir>();
        QVERIFY(m_runtime->isValid() && m_temp->isValid());
        // Shared like /tmp, so a start could be tempted to keep its key files there.
        ::chmod(QFile::encodeName(m_temp->path()).constData(), 01777);
        QVERIFY(QFile::exists(kProbe));
    }

    void cleanup()
    {
        for (const auto &p : m_probes) {
            p->kill();
            p->waitForFinished(5000);
        }
        m_probes.clear();
        // A System V block left by a killed start goes with its last user.
        inProbeTemp([](QSharedMemory &segment) {
            if (segment.isAttached() || segment.attach())
                segment.detach();
        });
        m_heldSegment.reset();
    }

    void fiftyStartsAtOnceLeaveExactlyOne_data()
    {
        QTest::addColumn<bool>("overKilledFirst");
        for (int round = 1; round <= 10; ++round)
            QTest::addRow("round %d, %s", round, round > 8 ? "over a killed first" : "from nothing")
                << (round > 8);
    }

    void fiftyStartsAtOnceLeaveExactlyOne()
    {
        QFETCH(bool, overKilledFirst);
        if (overKilledFirst) {
            QProcess *first = startPrimary();
            QVERIFY(first);
            first->kill();
            first->waitForFinished(5000);
            m_probes.clear();
        }
        // On one processor the starts take turns in the middle of their checks, which is where
        // two of them could both decide to be first.
        cpu_set_t saved, one;
        QCOMPARE(sched_getaffinity(0, sizeof saved, &saved), 0);
        CPU_ZERO(&one);
        CPU_SET(sched_getcpu(), &one);
        QCOMPARE(sched_setaffinity(0, sizeof one, &one), 0);
        for (int i = 0; i < 50; ++i)
            startProbe();
        sched_setaffinity(0, sizeof saved, &saved);
        // Every start but one hands over; copies that stay are what this guards against.
        QTRY_VERIFY2_WITH_TIMEOUT(
            runningProbes() <= 1,
            qPrintable(QStringLiteral("%1 copies running").arg(runningProbes())), 30000);
        QCOMPARE(runningProbes(), 1);
        for (const auto &p : m_probes) {
            if (p->state() == QProcess::NotRunning)
                QCOMPARE(p->exitCode(), 0);
            else
                QVERIFY(p->readLine().startsWith("primary "));
        }
        // Nothing is kept in the shared temporary folder (a start that just ended may still be
        // taking its files away); the block is ours.
        QTRY_COMPARE_WITH_TIMEOUT(
            QDir(m_temp->path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
            QStringList(), 5000);
        QCOMPARE(QFileInfo(blockFile()).ownerId(), uint(geteuid()));
    }

    // A first instance that died in odd ways, whose block or key files were tampered with, or
    // that another local user's block claims.
    void disturbedFirstInstanceLeavesOne_data()
    {
        QTest::addColumn<QString>("event");
        QTest::newRow("zombie, never reaped") << "zombie";
        QTest::newRow("killed, its process id now another program's") << "killed";
        QTest::newRow("block zeroed while it runs") << "zero";
        QTest::newRow("key files deleted from the temporary folder") << "delete";
        QTest::newRow("another user's block, naming a live process") << "foreign";
    }

    void disturbedFirstInstanceLeavesOne()
    {
        QFETCH(QString, event);
        QProcess *first = nullptr;
        if (event == "zombie") {
            // The probe's parent becomes a program that never reaps it.
            QProcess *shell = startProbe("/bin/sh", {"-c", "\"$0\" & exec sleep 120", kProbe});
            QVERIFY(shell->waitForReadyRead(15000));
            const qint64 deadPid = shell->readLine().trimmed().mid(8).toLongLong();
            QVERIFY(deadPid > 0);
            ::kill(pid_t(deadPid), SIGKILL);
            const QString stat = QStringLiteral("/proc/%1/stat").arg(deadPid);
            QTRY_VERIFY(readFile(stat).split(')').last().startsWith(" Z")); // a zombie
        } else if (event != "foreign") {
            QVERIFY(first = startPrimary());
        }
        if (event == "killed") {
            first->kill();
            first->waitForFinished(5000);
            first = nullptr;
            // The block still says "running" and names a live process that is not ours.
            writeBlock(InstanceBlock{true, 0, QCoreApplication::applicationPid()});
        }
        if (event == "zero")
            writeBlock(InstanceBlock{false, 0, 0});
        if (event == "delete")
            for (const QString &name :
                 QDir(m_temp->path()).entryList({"qipc_*"}, QDir::Files | QDir::System))
                QFile::remove(m_temp->filePath(name));
        if (event == "foreign") {
            if (geteuid() != 0)
                QSKIP("needs root to make files of another user");
            const passwd *nobody = getpwnam("nobody");
            QVERIFY(nobody);
            inProbeTemp(
                [](QSharedMemory &segment) { QVERIFY(segment.create(sizeof(InstanceBlock))); });
            writeFile(blockFile(), {});
            for (const QString &name : QDir(m_temp->path()).entryList(QDir::Files | QDir::System))
                QVERIFY(::chown(QFile::encodeName(m_temp->filePath(name)).constData(),
                                nobody->pw_uid, nobody->pw_gid) == 0);
            QVERIFY(::chown(QFile::encodeName(blockFile()).constData(), nobody->pw_uid,
                            nobody->pw_gid) == 0);
            writeBlock(InstanceBlock{true, 0, 1});
        }
        // Other programs take the freed file numbers, as they would in a busy /tmp.
        for (int i = 0; i < 4; ++i)
            QVERIFY(QFile(m_temp->filePath(QString("other-%1").arg(i))).open(QIODevice::WriteOnly));
        if (!first)
            QVERIFY(first = startPrimary());
        QVERIFY(handsOver());
        QVERIFY(first->waitForReadyRead(5000));
        QCOMPARE(first->readLine().trimmed(), QByteArray("wake"));
        QCOMPARE(QFileInfo(blockFile()).ownerId(), uint(geteuid()));
    }

    // Both kinds of block, two starts in one process: one first instance at a time, and the
    // place is free again after a clean shutdown.
    void blockSettlesOneFirstInstance_data()
    {
        QTest::addColumn<bool>("sharedMemory");
        QTest::newRow("named shared memory") << true;
        QTest::newRow("file in a private folder") << false;
    }

    void blockSettlesOneFirstInstance()
    {
        QFETCH(bool, sharedMemory);
        const QString key = QUuid::createUuid().toString(QUuid::WithoutBraces);
        auto make = [&]() -> std::unique_ptr<InstanceBlockHost> {
            if (sharedMemory)
                return std::make_unique<SharedMemoryInstanceBlock>(key);
            return std::make_unique<FileInstanceBlock>(m_runtime->path(), key);
        };
        auto first = make();
        auto second = make();
        QVERIFY(first->claimPrimary(101));
        QVERIFY(!second->claimPrimary(102));
        QCOMPARE(second->addSecondary(), 1u);
        QCOMPARE(second->addSecondary(), 2u);
        first->release();
        QVERIFY(second->claimPrimary(102));
        QVERIFY(!first->claimPrimary(101));
        QCOMPARE(first->serverName(), second->serverName());
    }

    // The message is read as it comes: one that arrives in pieces wakes the window (this thread
    // writes the second half only after the first instance, on the same thread, has seen the
    // first), and clients that connect and say nothing are dropped after 100 ms each, without
    // holding up the window or the real start queued behind them.
    void piecesWakeAndSilentClientsAreDropped()
    {
        QSignalSpy woken(&m_app, &SingleApplication::instanceStarted);
        const QByteArray message = encodeConnectionMessage(m_app.blockServerName(), NewInstance, 0);
        QLocalSocket client;
        client.connectToServer(m_app.serverName());
        QVERIFY(client.waitForConnected(2000));
        client.write(message.left(10));
        client.flush();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        client.write(message.mid(10));
        client.flush();
        QTRY_COMPARE(woken.count(), 1);

        std::vector<std::unique_ptr<QLocalSocket>> silent;
        for (int i = 0; i < 200; ++i) {
            silent.push_back(std::make_unique<QLocalSocket>());
            silent.back()->connectToServer(m_app.serverName());
        }
        QLocalSocket real;
        real.connectToServer(m_app.serverName());
        QTRY_COMPARE_WITH_TIMEOUT(real.state(), QLocalSocket::ConnectedState, 4000);
        real.write(message);
        QTRY_COMPARE_WITH_TIMEOUT(woken.count(), 2, 4000);
        QTRY_VERIFY_WITH_TIMEOUT(
            std::all_of(silent.begin(), silent.end(),
                        [](const auto &s) { return s->state() == QLocalSocket::UnconnectedState; }),
            4000);
        QCOMPARE(real.state(), QLocalSocket::ConnectedState);
    }

    void logOnTaskAndTableRowsOverTheRunner()
    {
        auto table = std::make_shared<CommandTable>();
        addStartupCommands(*table);
        QTemporaryDir install, working;
        LinuxCommandRunner runner(table, install.path());
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

        // The native counterpart of a Windows program starts in the working folder.
        writeFile(install.filePath("updates/Update"),
                  "#!/bin/sh\necho \"$PWD $*\" > started.tmp && mv started.tmp started\n", true);
        const QString previous = QDir::currentPath();
        QDir::setCurrent(working.path());
        runner.startShown(R"(updates\Update.exe --quiet)", ShowMode::Normal);
        runner.startShown("Remote.exe", ShowMode::Normal); // not installed: nothing happens
        QDir::setCurrent(previous);
        QTRY_COMPARE(readFile(working.filePath("started")).trimmed(),
                     (working.path() + " --quiet").toUtf8());
    }

    void registryRoutes()
    {
        LinuxRegistry registry;
        const QString userKey = QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes");
        registry.setValue(userKey, "Default", ".None");
        QCOMPARE(registry.value(userKey, "Default", "x").toString(), QStringLiteral(".None"));
        // Kept in the user's config folder, the key's path one section of the file.
        QCOMPARE(QSettings(m_config.path() + "/varnel/registry.ini", QSettings::IniFormat)
                     .value("HKEY_CURRENT_USER::AppEvents::Schemes/Default"),
                 QVariant(".None"));
        const QString machineKey = QStringLiteral(
            "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power");
        registry.setValue(machineKey, "HiberbootEnabled", "0");
        QVERIFY(!registry.contains(machineKey, "HiberbootEnabled"));
        // A route takes its keys whatever their case, before the user store would.
        auto routed = std::make_shared<FakeRegistry>(std::make_shared<OperationLog>());
        registry.addRoute("HKEY_CURRENT_USER\\Routed", routed);
        registry.setValue("hkey_current_user\\routed\\a", "v", 3);
        QCOMPARE(routed->values.value("hkey_current_user\\routed\\a|v"), QVariant(3));
    }

    // Windows paths name nothing here but the tuning service, which the helper stands in for,
    // and nothing is copied to one.
    void windowsPathsOnLinux()
    {
        bool helper = false;
        LinuxDesktop desktop([&] { return helper; });
        QVERIFY(!desktop.systemFileExists(xtu::servicePaths[1]));
        helper = true;
        QVERIFY(desktop.systemFileExists(xtu::servicePaths[0]));
        QVERIFY(!desktop.systemFileExists("C:\\Windows\\System32\\powercfg.exe"));
        const QString file = m_config.filePath(QStringLiteral("copied"));
        writeFile(file, "x");
        QVERIFY(desktop.systemFileExists(file));
        QVERIFY(!desktop.copySystemFile(file, "C:\\Windows\\System32\\wbem\\x.dll"));
        QVERIFY(desktop.copySystemFile(file, file + "2"));
        QCOMPARE(desktop.windowsToolsUnavailable(),
                 QStringLiteral("ThrottleStop is a Windows program. On Linux the CPU Tuning tab "
                                "tunes the processor through the system helper."));
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
        auto row = [](const char *tag, const char *line, const char *installed, bool found,
                      const char *name, const QStringList &arguments = {}) {
            QTest::newRow(tag) << QString(line) << QString(installed) << found << QString(name)
                               << arguments;
        };
        row("bare name", "Remote.exe", "Remote", true, "Remote");
        row("folder", R"(up\Update.exe -q "a b")", "up/Update", true, "Update", {"-q", "a b"});
        row("upper-case suffix", "Libs\\AuxSwitch.EXE", "Libs/AuxSwitch", true, "AuxSwitch");
        row("not installed", "LatencyFix.exe", "", false, "LatencyFix");
        row("the .exe is no native program", "Remote.exe", "Remote.exe", false, "Remote");
        row("parent folder", "..\\Remote.exe", "", false, "");
        row("drive", "C:\\Tools\\Remote.exe", "", false, "");
        row("not a program", "explorer ms-settings:sound", "", false, "");
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
        auto row = [](const char *name, Feature feature, const QString &reason) {
            QTest::newRow(name) << feature << reason;
        };
        row("backlight", Feature::PanelBacklight,
            "This screen has no backlight that can be adjusted.");
        row("gpu", Feature::NvidiaGpu, "No NVIDIA GPU in this computer.");
        row("limits", Feature::ProcessorLimits, helper);
        row("lid shutdown, even with the helper", Feature::LidShutdown,
            "Linux sets the lid's action for every user and every power mode at once, so "
            "Varnel leaves it to the system settings.");
        row("camera", Feature::CameraSwitch, helper);
        row("tuning", Feature::CpuTuning, helper);
        row("windows fix", Feature::WindowsOnlyFix,
            "A Windows-only fix: Linux has no such setting.");
        row("super key", Feature::SuperKeyBlocker, "Blocking the Super key needs" + desktop);
        row("timeouts", Feature::ScreenTimeouts, "Screen and sleep timeouts need" + desktop);
        row("touchpad", Feature::TouchpadSwitch, "Switching the touchpad needs" + desktop);
        row("adaptive brightness", Feature::AmbientLight,
            "This desktop has no adaptive brightness setting.");
        row("monitor channel", Feature::MonitorControl,
            "External monitors cannot be controlled: that needs libddcutil and access to "
            "/dev/i2c-* (the i2c group).");
        row("event sounds", Feature::EventSounds,
            "This desktop has no switch for its event sounds.");
        row("keyboard light", Feature::KeyboardLight, "This keyboard has no backlight.");
        row("tray", Feature::SystemTray,
            "This desktop shows no tray icons: a hidden window could only be brought back by "
            "starting the program again.");
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
        {
            EnvironmentOverride environment;
            environment.set("XDG_DATA_HOME", QFile::encodeName(home.path()));
            QCOMPARE(userWorkingFolder(), user);
        }
        QDir(install.path()).mkpath("branding");
        QDir(install.path()).mkpath("cpuprofiles");
        writeFile(install.filePath("settings/default_power_mode.ini"), {});
        QCOMPARE(prepareWorkingFolder(install.path(), user, true), install.path());
        QVERIFY(!QFileInfo::exists(user));

        QCOMPARE(prepareWorkingFolder(install.path(), user, false), user);
        for (const char *folder : {"/settings", "/updates"})
            QVERIFY(QFileInfo(user + folder).isDir() && !QFileInfo(user + folder).isSymLink());
        for (const char *linked : {"branding", "cpuprofiles", "settings/default_power_mode.ini"})
            QCOMPARE(QFileInfo(user + '/' + linked).symLinkTarget(), install.filePath(linked));

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

int main(int argc, char *argv[])
{
    // This program's own first-instance files go to a folder of its own.
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    SingleApplication app(argc, argv, false, 1, 100);
    TestLinuxShell test(app);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_linuxshell.moc"
