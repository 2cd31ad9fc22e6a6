// The ThrottleStop tab over the fake bundle: presence, status, kill, reset, settings files and
// the log-on task.
#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "throttlestop.h"
#include "ui_mainwindow.h"

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

// An install folder that holds ThrottleStop and its settings file.
void installThrottleStop(const TestFolder &folder)
{
    folder.mkdir(QStringLiteral("ThrottleStop"));
    writeFile(folder.file("ThrottleStop/ThrottleStop.exe"), "program");
    writeFile(folder.file("ThrottleStop/ThrottleStop.ini"), "[ThrottleStop]\nold=1\n");
}

} // namespace

class ThrottleStopTest : public QObject {
    Q_OBJECT

private slots:
    void missingProgramRemovesTheTabOnce();
    void statusFollowsTheProcessList_data();
    void statusFollowsTheProcessList();
    void statusFromGivenTextChangesOnlyTheStatus();
    void openAndKill();
    void resetDeletesSettingsAndRestarts();
    void cancelledBrowseDeletesTheStagingFile();
    void chosenSettingsFileReplacesThrottleStopsOwn();
    void applyWhileDisabledDoesNothing();
    void startWithSystemTask();
    void startupTask_data();
    void startupTask();
};

void ThrottleStopTest::missingProgramRemovesTheTabOnce()
{
    FakePlatform fake;
    TestFolder folder;
    MainWindow w(fake.bundle());
    QTabWidget *tabs = w.form()->tabWidget;
    // The settings loader's status check found no program.
    QCOMPARE(tabs->count(), 8);
    QCOMPARE(tabs->indexOf(w.form()->tab_6), -1);
    QCOMPARE(tabs->widget(2), w.form()->tab_10);
    QVERIFY(w.throttleStop()->tsTabRemoved);
    QVERIFY(fake.log->withPrefix("run: tasklist").isEmpty());

    // The one-minute check after start finds it missing again and leaves the other tabs.
    QVERIFY(fake.scheduler->history.contains(QStringLiteral("61000 tscheckstatus")));
    fake.scheduler->advance(61000);
    w.tscheckstatus();
    QCOMPARE(tabs->count(), 8);
    QCOMPARE(tabs->widget(2), w.form()->tab_10);
}

void ThrottleStopTest::statusFollowsTheProcessList_data()
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
    QTest::newRow("a desktop that cannot run it") << kRunning << "Status: TS is not running!"
                                                  << false << "ThrottleStop is a Windows program.";
}

void ThrottleStopTest::statusFollowsTheProcessList()
{
    QFETCH(QString, tasklist);
    FakePlatform fake;
    TestFolder folder;
    installThrottleStop(folder);
    QFETCH(QString, cannotRun);
    fake.commands->outputs[QStringLiteral("tasklist")] = tasklist;
    fake.desktop->windowsTools = cannotRun;
    MainWindow w(fake.bundle());
    QCOMPARE(w.form()->tabWidget->count(), 9);
    QVERIFY(!w.throttleStop()->tsTabRemoved);
    QCOMPARE(fake.log->withPrefix("run: tasklist").size(), cannotRun.isEmpty() ? 1 : 0);
    QTEST(w.form()->Label_TSstatus->text(), "status");
    QTEST(w.form()->Button_KillTS->isEnabled(), "killable");
    QCOMPARE(w.form()->Button_OpenTS->isEnabled(), cannotRun.isEmpty());
    QCOMPARE(w.form()->Button_OpenTS->toolTip(), cannotRun);
}

void ThrottleStopTest::statusFromGivenTextChangesOnlyTheStatus()
{
    FakePlatform fake;
    TestFolder folder;
    MainWindow w(fake.bundle());
    fake.log->clear();
    w.tscheckstatusresult(kRunning);
    QCOMPARE(w.form()->Label_TSstatus->text(), QStringLiteral("Status: TS is running!"));
    QVERIFY(w.form()->Button_KillTS->isEnabled());
    w.tscheckstatusresult(QStringLiteral("nothing"));
    QCOMPARE(w.form()->Label_TSstatus->text(), QStringLiteral("Status: TS is not running!"));
    QVERIFY(!w.form()->Button_KillTS->isEnabled());
    QVERIFY(fake.log->entries.isEmpty());
    QCOMPARE(w.form()->tabWidget->count(), 8);
}

void ThrottleStopTest::openAndKill()
{
    FakePlatform fake;
    TestFolder folder;
    installThrottleStop(folder);
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    fake.log->clear();

    ui->Button_OpenTS->click();
    QCOMPARE(fake.log->entries, QStringList{"shown 1: ThrottleStop//ThrottleStop.exe"});
    QVERIFY(ui->Button_KillTS->isEnabled());
    QCOMPARE(ui->Label_TSstatus->text(), QStringLiteral("Status: TS is not running!"));

    // Killing when nothing runs still reports the kill.
    ui->Button_KillTS->click();
    QCOMPARE(fake.log->entries.mid(1),
             QStringList({"start: taskkill /f /im ThrottleStop.exe", "message: ThrottleStop"}));
    QCOMPARE(fake.dialogs->shown.last().text,
             QStringLiteral("All instances of ThrottleStop were killed.\n"));
    QCOMPARE(fake.dialogs->shown.last().icon, QMessageBox::Information);
    QCOMPARE(fake.dialogs->shown.last().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(ui->Label_TSstatus->text(), QStringLiteral("Status: TS is not running!"));
    QVERIFY(!ui->Button_KillTS->isEnabled());
}

void ThrottleStopTest::resetDeletesSettingsAndRestarts()
{
    FakePlatform fake;
    TestFolder folder;
    installThrottleStop(folder);
    fake.commands->outputs[QStringLiteral("tasklist")] = kRunning;
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    ui->Button_KillTS->setEnabled(false);
    fake.log->clear();

    ui->Button_ResetTS->click();
    QVERIFY(!QFile::exists(folder.file("ThrottleStop/ThrottleStop.ini")));
    QCOMPARE(fake.dialogs->shown.last().text,
             QStringLiteral("Throttlestop settings deleted. Next time you open Throttlestop it "
                            "will run as a first run.\n"));
    QCOMPARE(fake.log->entries,
             QStringList({"message: ThrottleStop", "run: taskkill /im ThrottleStop.exe /f"}));
    QCOMPARE(fake.scheduler->history.last(), QStringLiteral("3000 restartts"));

    fake.log->clear();
    fake.scheduler->advance(3000);
    QCOMPARE(fake.log->entries, QStringList{"detached: ThrottleStop\\ThrottleStop.exe  in "});
    QVERIFY(ui->Button_KillTS->isEnabled());
    QCOMPARE(fake.scheduler->history.last(), QStringLiteral("2000 tscheckstatus"));
    fake.scheduler->advance(2000);
    QCOMPARE(fake.log->entries.last(), QStringLiteral("run: tasklist"));
    QCOMPARE(ui->Label_TSstatus->text(), QStringLiteral("Status: TS is running!"));
}

void ThrottleStopTest::cancelledBrowseDeletesTheStagingFile()
{
    FakePlatform fake;
    TestFolder folder;
    installThrottleStop(folder);
    writeFile(folder.file("ThrottleStop.ini"), "[staged]\n");
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    QVERIFY(!ui->Button_ApplyTSsettings->isEnabled());

    fake.dialogs->fileAnswers = QStringList{QString()};
    ui->Browser_SettingsTS->click();
    QVERIFY(fake.log->entries.contains("file dialog: Select Profile C:// Ini File (*.ini)"));
    QCOMPARE(ui->Label_TSSettings_Name->text(), QString());
    QVERIFY(ui->Button_ApplyTSsettings->isEnabled());
    QVERIFY(!QFile::exists(folder.file("ThrottleStop.ini")));

    // Apply then takes away ThrottleStop's own file and has nothing to put in its place.
    ui->Button_ApplyTSsettings->click();
    QVERIFY(!QFile::exists(folder.file("ThrottleStop/ThrottleStop.ini")));
    QCOMPARE(fake.dialogs->shown.last().text,
             QStringLiteral("New settings loaded, we will now close ThrottleStop and re-launch "
                            "it to apply the new settings.\n"));
    QCOMPARE(fake.log->withPrefix("run: taskkill").size(), 1);
}

void ThrottleStopTest::chosenSettingsFileReplacesThrottleStopsOwn()
{
    FakePlatform fake;
    TestFolder folder;
    installThrottleStop(folder);
    writeFile(folder.file("ThrottleStop.ini"), "[old staging]\n");
    QTemporaryDir elsewhere;
    const QString chosen = elsewhere.filePath("Gaming.ini");
    writeFile(chosen, "[ThrottleStop]\nprofile=gaming\n");
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();

    fake.dialogs->fileAnswers = QStringList{chosen};
    ui->Browser_SettingsTS->click();
    QCOMPARE(ui->Label_TSSettings_Name->text(), chosen);
    QVERIFY(ui->Button_ApplyTSsettings->isEnabled());
    QCOMPARE(readFile(folder.file("ThrottleStop.ini")),
             QByteArray("[ThrottleStop]\nprofile=gaming\n"));

    fake.log->clear();
    ui->Button_ApplyTSsettings->click();
    QCOMPARE(readFile(folder.file("ThrottleStop/ThrottleStop.ini")),
             QByteArray("[ThrottleStop]\nprofile=gaming\n"));
    QVERIFY(!QFile::exists(folder.file("ThrottleStop.ini")));
    QCOMPARE(fake.log->entries,
             QStringList({"message: ThrottleStop", "run: taskkill /im ThrottleStop.exe /f"}));
    QCOMPARE(fake.scheduler->history.last(), QStringLiteral("3000 restartts"));
}

void ThrottleStopTest::applyWhileDisabledDoesNothing()
{
    FakePlatform fake;
    TestFolder folder;
    installThrottleStop(folder);
    writeFile(folder.file("ThrottleStop.ini"), "[staged]\n");
    MainWindow w(fake.bundle());
    fake.log->clear();
    QMetaObject::invokeMethod(&w, "on_Button_ApplyTSsettings_clicked");
    QVERIFY(fake.log->entries.isEmpty());
    QCOMPARE(readFile(folder.file("ThrottleStop/ThrottleStop.ini")),
             QByteArray("[ThrottleStop]\nold=1\n"));
    QVERIFY(QFile::exists(folder.file("ThrottleStop.ini")));
}

void ThrottleStopTest::startWithSystemTask()
{
    FakePlatform fake;
    TestFolder folder;
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    fake.log->clear();
    ui->Check_StartTScheck->click();
    ui->Check_StartTScheck->click();
    QCOMPARE(fake.log->entries, QStringList({"start: " + kTaskCreate, "start: " + kTaskDelete}));
    QCOMPARE(folder.ini("settings/varnel.ini", "Check_StartTScheck").toBool(), false);
    ui->Check_StartTScheck->click();
    QCOMPARE(folder.ini("settings/varnel.ini", "Check_StartTScheck").toBool(), true);
}

void ThrottleStopTest::startupTask_data()
{
    QTest::addColumn<bool>("saved");
    QTest::addColumn<QString>("query");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("created");

    const QString registered = "\r\nFolder: \\\r\nTaskName          Next Run Time   Status\r\n"
                               "================= =============== ======\r\nThrottleStop      N/A "
                               "            Ready\r\n";
    const QString missing = "ERROR: The system cannot find the file specified.\r\n";
    QTest::newRow("registered and wanted") << true << registered << true << false;
    QTest::newRow("registered, not saved") << false << registered << true << false;
    QTest::newRow("went missing but wanted") << true << missing << true << true;
    QTest::newRow("neither") << false << missing << false << false;
}

void ThrottleStopTest::startupTask()
{
    QFETCH(bool, saved);
    QFETCH(QString, query);
    QFETCH(bool, created);
    FakePlatform fake;
    TestFolder folder;
    folder.setIni("settings/varnel.ini", "Check_StartTScheck", saved);
    fake.commands->outputs[kTaskQuery] = query;
    MainWindow w(fake.bundle());
    QTEST(w.form()->Check_StartTScheck->isChecked(), "checked");
    QCOMPARE(fake.log->withPrefix("run: " + kTaskQuery).size(), 1);
    QCOMPARE(fake.log->withPrefix("start: " + kTaskCreate).size(), created ? 1 : 0);
    QCOMPARE(folder.ini("settings/varnel.ini", "Check_StartTScheck").toBool(), saved);
}

QTEST_MAIN(ThrottleStopTest)
#include "tst_throttlestop.moc"
