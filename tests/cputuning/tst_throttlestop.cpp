// The ThrottleStop tab over the fake bundle: presence, status, kill, reset, settings files and
// the log-on task.
#include "testwindow.h"
#include "textfile.h"
#include "throttlestop.h"

#include <QtTest>

namespace {

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

class ThrottleStopTest : public QObject {
    Q_OBJECT

private slots:

    // What start-up shows: the status and the log-on task, then again a minute later.
    void startup_data()
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

    void startup()
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

    void buttons()
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

QTEST_MAIN(ThrottleStopTest)
#include "tst_throttlestop.moc"
