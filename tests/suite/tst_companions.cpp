#include "companions.h"
#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QtTest>

namespace {

const QString kRunKey =
    QStringLiteral(R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run\)");

// The log entries that concern the companions: task-list queries and program starts.
QStringList companionEntries(const OperationLog &log)
{
    QStringList out;
    for (const QString &e : log.entries) {
        if (e == QLatin1String("run: tasklist") || e.contains(QLatin1String(".exe")))
            out << e;
    }
    return out;
}

} // namespace

class TestCompanions : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void aLocatedCompanionStartsFromItsOwnFolder();
    void withoutItsFileTheBareNameIsStarted_data();
    void withoutItsFileTheBareNameIsStarted();
    void startupCheckStartsOnlyRegisteredAppsNotRunning();
    void startupCheckAsksTheTaskListOncePerApplication();
    void startupCheckIsOffUntilTheBoxIsChecked();

private:
    // Documents folder of a home of its own, and the locator file of one companion.
    void writeLocator(const QString &relative, const QString &appUrl);

    QScopedPointer<QTemporaryDir> m_home;
};

void TestCompanions::init()
{
    m_home.reset(new QTemporaryDir);
    qputenv("HOME", m_home->path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (m_home->path() + "/.config").toLocal8Bit());
}

void TestCompanions::cleanup()
{
    m_home.reset();
}

void TestCompanions::writeLocator(const QString &relative, const QString &appUrl)
{
    const QString path = localPath(Companions::documentsFolder() + relative);
    QVERIFY(path.startsWith(m_home->path() + "/Documents/Helmsuite/"));
    QDir().mkpath(QFileInfo(path).path());
    QSettings ini(path, QSettings::IniFormat);
    ini.setValue("settings/appurl", appUrl);
}

void TestCompanions::aLocatedCompanionStartsFromItsOwnFolder()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());

    // A stand-in companion that reports where it runs and what it was given.
    const QString appFolder = m_home->path() + "/Programs/Fan Control";
    QDir().mkpath(appFolder);
    const QString report = m_home->path() + "/report.txt";
    QFile program(appFolder + "/FanControl.exe");
    QVERIFY(program.open(QIODevice::WriteOnly));
    program.write(
        QStringLiteral("#!/bin/sh\n{ pwd; echo \"$#:[$1]\"; } > '%1'\n").arg(report).toUtf8());
    program.close();
    program.setPermissions(program.permissions() | QFileDevice::ExeOwner);
    writeLocator(R"(\Helmsuite\FanControl\fancontrol.ini)", appFolder + "/FanControl.exe");

    fake.log->clear();
    w.form()->Button_FanControl->click();

    // The separator is doubled: the folder kept its own before the name was appended again.
    QCOMPARE(companionEntries(*fake.log),
             QStringList({"process: " + appFolder + "//FanControl.exe "}));
    QTRY_VERIFY(QFileInfo(report).size() > 0);
    QFile result(report);
    QVERIFY(result.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(result.readAll()), appFolder + "\n1:[]\n");
}

void TestCompanions::withoutItsFileTheBareNameIsStarted_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("locator");
    QTest::addColumn<QString>("appUrl"); // empty: no locator file
    QTest::addColumn<QString>("started");

    QTest::newRow("updater, no locator") << "Button_Updater"
                                         << ""
                                         << ""
                                         << "shown 4: Updater.exe";
    QTest::newRow("fan control, no locator") << "Button_FanControl"
                                             << ""
                                             << ""
                                             << "shown 4: FanControl.exe";
    QTest::newRow("keyboard, locator names a missing file")
        << "Button_KeyboardLed"
        << R"(\Helmsuite\KeyboardLED\keyboardled.ini)"
        << "/nowhere/KeyboardLed.exe"
        << "shown 4: KeyboardLed.exe";
    QTest::newRow("updater, locator without appurl") << "Button_Updater"
                                                     << R"(\Helmsuite\Updater\updater.ini)"
                                                     << ""
                                                     << "shown 4: Updater.exe";
}

void TestCompanions::withoutItsFileTheBareNameIsStarted()
{
    QFETCH(QString, button);
    QFETCH(QString, locator);
    QFETCH(QString, appUrl);
    QFETCH(QString, started);

    TestFolder folder;
    if (!locator.isEmpty())
        writeLocator(locator, appUrl);
    FakePlatform fake;
    MainWindow w(fake.bundle());
    fake.log->clear();
    w.findChild<QPushButton *>(button)->click();
    QCOMPARE(companionEntries(*fake.log), QStringList({started}));
}

void TestCompanions::startupCheckStartsOnlyRegisteredAppsNotRunning()
{
    TestFolder folder;
    folder.setIni("settings//varnel.ini", "checkstart", true);
    FakePlatform fake;
    // Fan control runs at log-on too, but is not registered: left alone although not running.
    fake.registry->values.insert(kRunKey + "|Updater", R"("C:\Helmsuite\Updater.exe")");
    fake.registry->values.insert(kRunKey + "|KeyboardLED", "KeyboardLed.exe /min");
    fake.commands->outputs.insert("tasklist", "System Idle Process  0\nKeyboardLed.exe   4242\n");
    MainWindow w(fake.bundle());
    QVERIFY(!w.form()->checkstart->isChecked());
    fake.log->clear();

    fake.scheduler->advance(9999);
    QCOMPARE(companionEntries(*fake.log), QStringList());
    fake.scheduler->advance(1);
    QVERIFY(w.form()->checkstart->isChecked());
    QCOMPARE(companionEntries(*fake.log),
             QStringList({"run: tasklist", "shown 0: Updater.exe", "run: tasklist"}));
}

void TestCompanions::startupCheckAsksTheTaskListOncePerApplication()
{
    TestFolder folder;
    folder.setIni("settings//varnel.ini", "checkstart", true);
    FakePlatform fake;
    for (const char *name : {"Updater", "Fan Control", "KeyboardLED"})
        fake.registry->values.insert(kRunKey + "|" + name, "x");
    fake.commands->outputs.insert("tasklist",
                                  "Updater.exe 1\nFanControl.exe 2\nKeyboardLed.exe 3\n");
    MainWindow w(fake.bundle());
    fake.log->clear();
    QVERIFY(QMetaObject::invokeMethod(&w, "StartApps"));
    QCOMPARE(companionEntries(*fake.log),
             QStringList({"run: tasklist", "run: tasklist", "run: tasklist"}));

    // A name differing only in case is another program.
    fake.commands->outputs.insert("tasklist",
                                  "updater.exe 1\nFanControl.exe 2\nKeyboardLed.exe 3\n");
    fake.log->clear();
    QVERIFY(QMetaObject::invokeMethod(&w, "StartApps"));
    QCOMPARE(companionEntries(*fake.log), QStringList({"run: tasklist", "shown 0: Updater.exe",
                                                       "run: tasklist", "run: tasklist"}));
}

void TestCompanions::startupCheckIsOffUntilTheBoxIsChecked()
{
    TestFolder folder;
    FakePlatform fake;
    fake.registry->values.insert(kRunKey + "|Updater", "x");
    MainWindow w(fake.bundle());
    fake.log->clear();
    QVERIFY(QMetaObject::invokeMethod(&w, "StartApps"));
    QCOMPARE(companionEntries(*fake.log), QStringList());

    w.form()->checkstart->click();
    QCOMPARE(folder.ini("settings/varnel.ini", "checkstart").toString(), QStringLiteral("true"));
    QVERIFY(QMetaObject::invokeMethod(&w, "StartApps"));
    QCOMPARE(companionEntries(*fake.log), QStringList({"run: tasklist", "shown 0: Updater.exe"}));

    w.form()->checkstart->click();
    QCOMPARE(folder.ini("settings/varnel.ini", "checkstart").toString(), QStringLiteral("false"));
}

QTEST_MAIN(TestCompanions)
#include "tst_companions.moc"
