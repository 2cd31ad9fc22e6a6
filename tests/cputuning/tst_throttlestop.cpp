// The ThrottleStop tab over the fake bundle: presence, status, kill, reset, settings files and
// the log-on task.
#include "testwindow.h"
#include "throttlestop.h"

#include <QtTest>

namespace {

const QString kTaskQuery = QStringLiteral("schtasks /query /tn \"ThrottleStop\"");
const QString kTaskCreate =
    QStringLiteral("schtasks /create /tn \"ThrottleStop\" /XML settings\\ts_task.xml");
const QString kTaskDelete = QStringLiteral("schtasks /Delete /tn \"ThrottleStop\" /f");
const QString kRunning =
    QStringLiteral("\r\nImage Name                     PID Session Name        Session#    Mem "
                   "Usage\r\n========================= ======== ================ =========== "
                   "============\r\nThrottleStop.exe              4242 Console                    "
                   "1     12,345 K\r\n");
const QStringList kKillAndRestart = {"message: ThrottleStop",
                                     "run: taskkill /im ThrottleStop.exe /f"};

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The window, start-up records kept, over an install folder that holds ThrottleStop, its
// settings file and a staged settings file, or none of them.
struct TsWindow : TestWindow {
    explicit TsWindow(bool installed, const QString &tasklist = QString())
    {
        if (installed) {
            folder.mkdir(QStringLiteral("ThrottleStop"));
            writeFile(folder.file("ThrottleStop/ThrottleStop.exe"), "program");
            writeFile(folder.file("ThrottleStop/ThrottleStop.ini"), "[ThrottleStop]\nold=1\n");
            writeFile(folder.file("ThrottleStop.ini"), "[staged]\n");
        }
        fake.commands->outputs[QStringLiteral("tasklist")] = tasklist;
    }
    void started() { window = std::make_unique<MainWindow>(fake.bundle()); }
    QString status() const { return ui().Label_TSstatus->text(); }
    QString lastMessage() const { return fake.dialogs->shown.last().text; }
    QByteArray settingsFile() const
    {
        return readFile(folder.file("ThrottleStop/ThrottleStop.ini"));
    }
    bool staged() const { return QFile::exists(folder.file("ThrottleStop.ini")); }
};

} // namespace

class ThrottleStopTest : public QObject {
    Q_OBJECT

private slots:

    void missingProgramRemovesTheTabOnce()
    {
        TsWindow w(false);
        w.started();
        QTabWidget *tabs = w.ui().tabWidget;
        QCOMPARE(tabs->count(), 8);
        QCOMPARE(tabs->indexOf(w.ui().tab_6), -1);
        QCOMPARE(tabs->widget(2), w.ui().tab_10);
        QVERIFY(w.window->throttleStop()->tsTabRemoved);
        QVERIFY(w.fake.log->withPrefix("run: tasklist").isEmpty());

        // The one-minute check after start finds it missing again and leaves the other tabs.
        QVERIFY(w.fake.scheduler->history.contains(QStringLiteral("61000 tscheckstatus")));
        w.fake.scheduler->advance(61000);
        w.window->tscheckstatus();
        QCOMPARE(tabs->count(), 8);
        QCOMPARE(tabs->widget(2), w.ui().tab_10);
    }

    void statusFollowsTheProcessList_data()
    {
        QTest::addColumn<QString>("tasklist");
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("killable");
        QTest::addColumn<QString>("cannotRun");
        QTest::newRow("running") << kRunning << "Status: TS is running!" << true << QString();
        QTest::newRow("not running") << "\r\nImage Name  PID\r\nexplorer.exe  12\r\n"
                                     << "Status: TS is not running!" << false << QString();
        QTest::newRow("no process list") << ""
                                         << "Status: TS is not running!" << false << QString();
        QTest::newRow("a desktop that cannot run it")
            << kRunning << "Status: TS is not running!" << false
            << "ThrottleStop is a Windows program.";
    }

    void statusFollowsTheProcessList()
    {
        QFETCH(QString, tasklist);
        QFETCH(QString, cannotRun);
        TsWindow w(true, tasklist);
        w.fake.desktop->windowsTools = cannotRun;
        w.started();
        QCOMPARE(w.ui().tabWidget->count(), 9);
        QCOMPARE(w.fake.log->withPrefix("run: tasklist").size(), cannotRun.isEmpty() ? 1 : 0);
        QTEST(w.status(), "status");
        QTEST(w.ui().Button_KillTS->isEnabled(), "killable");
        QCOMPARE(w.ui().Button_OpenTS->isEnabled(), cannotRun.isEmpty());
        QCOMPARE(w.ui().Button_OpenTS->toolTip(), cannotRun);
    }

    void openAndKill()
    {
        TsWindow w(true);
        w.start();
        w.ui().Button_OpenTS->click();
        QCOMPARE(w.fake.log->entries, QStringList{"shown 1: ThrottleStop//ThrottleStop.exe"});
        QVERIFY(w.ui().Button_KillTS->isEnabled());
        QCOMPARE(w.status(), QStringLiteral("Status: TS is not running!"));

        // Killing when nothing runs still reports the kill.
        w.ui().Button_KillTS->click();
        QCOMPARE(w.fake.log->entries.mid(1),
                 QStringList({"start: taskkill /f /im ThrottleStop.exe", "message: ThrottleStop"}));
        QCOMPARE(w.fake.dialogs->lines().last(),
                 "Information | ThrottleStop | All instances of ThrottleStop were killed.\n | Ok");
        QCOMPARE(w.status(), QStringLiteral("Status: TS is not running!"));
        QVERIFY(!w.ui().Button_KillTS->isEnabled());
    }

    void resetDeletesSettingsAndRestarts()
    {
        TsWindow w(true, kRunning);
        w.start();
        w.ui().Button_KillTS->setEnabled(false);
        w.ui().Button_ResetTS->click();
        QVERIFY(!QFile::exists(w.folder.file("ThrottleStop/ThrottleStop.ini")));
        QCOMPARE(w.lastMessage(),
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
    }

    void chosenSettingsFileReplacesThrottleStopsOwn_data()
    {
        QTest::addColumn<QByteArray>("chosen"); // empty: the dialog was cancelled
        QTest::newRow("chosen") << QByteArray("[ThrottleStop]\nprofile=gaming\n");
        // Apply then takes away ThrottleStop's own file and has nothing to put in its place.
        QTest::newRow("cancelled") << QByteArray();
    }

    void chosenSettingsFileReplacesThrottleStopsOwn()
    {
        QFETCH(QByteArray, chosen);
        TsWindow w(true);
        w.start();
        // Apply does nothing until a file was chosen.
        QVERIFY(!w.ui().Button_ApplyTSsettings->isEnabled());
        QMetaObject::invokeMethod(w.window.get(), "on_Button_ApplyTSsettings_clicked");
        QVERIFY(w.fake.log->entries.isEmpty());
        QCOMPARE(w.settingsFile(), QByteArray("[ThrottleStop]\nold=1\n"));
        QVERIFY(w.staged());

        QTemporaryDir elsewhere;
        const QString path = chosen.isEmpty() ? QString() : elsewhere.filePath("Gaming.ini");
        if (!path.isEmpty())
            writeFile(path, chosen);
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
        QCOMPARE(QFile::exists(w.folder.file("ThrottleStop/ThrottleStop.ini")), !chosen.isEmpty());
        QVERIFY(!w.staged());
        QCOMPARE(w.lastMessage(),
                 QStringLiteral("New settings loaded, we will now close ThrottleStop "
                                "and re-launch it to apply the new settings.\n"));
        QCOMPARE(w.fake.log->entries, kKillAndRestart);
        QCOMPARE(w.fake.scheduler->history.last(), QStringLiteral("3000 restartts"));
    }

    void startupTask_data()
    {
        QTest::addColumn<bool>("saved");
        QTest::addColumn<QString>("query");
        QTest::addColumn<bool>("checked");
        QTest::addColumn<bool>("created");
        const QString registered =
            "\r\nFolder: \\\r\nTaskName          Next Run Time   Status\r\n"
            "================= =============== ======\r\nThrottleStop      N/A "
            "            Ready\r\n";
        const QString missing = "ERROR: The system cannot find the file specified.\r\n";
        QTest::newRow("registered and wanted") << true << registered << true << false;
        QTest::newRow("registered, not saved") << false << registered << true << false;
        QTest::newRow("went missing but wanted") << true << missing << true << true;
        QTest::newRow("neither") << false << missing << false << false;
    }

    void startupTask()
    {
        QFETCH(bool, saved);
        QFETCH(QString, query);
        QFETCH(bool, created);
        TsWindow w(false);
        w.setGeneral("Check_StartTScheck", saved);
        w.fake.commands->outputs[kTaskQuery] = query;
        w.started();
        QTEST(w.ui().Check_StartTScheck->isChecked(), "checked");
        QCOMPARE(w.fake.log->withPrefix("run: " + kTaskQuery).size(), 1);
        QCOMPARE(w.fake.log->withPrefix("start: " + kTaskCreate).size(), created ? 1 : 0);
        QCOMPARE(w.generalValue("Check_StartTScheck").toBool(), saved);

        // Each click registers the task or deletes it, and saves the choice.
        w.fake.log->clear();
        const bool checked = w.ui().Check_StartTScheck->isChecked();
        w.ui().Check_StartTScheck->click();
        QCOMPARE(w.generalValue("Check_StartTScheck").toBool(), !checked);
        w.ui().Check_StartTScheck->click();
        QCOMPARE(w.generalValue("Check_StartTScheck").toBool(), checked);
        const QStringList toggles = {"start: " + kTaskCreate, "start: " + kTaskDelete};
        const QStringList order = checked ? QStringList{toggles[1], toggles[0]} : toggles;
        QCOMPARE(w.fake.log->entries, order);
    }
};

QTEST_MAIN(ThrottleStopTest)
#include "tst_throttlestop.moc"
