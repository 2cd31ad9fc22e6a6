#include "autostartentries.h"
#include "companions.h"
#include "linuxregistry.h"
#include "testwindow.h"
#include "textfile.h"

#include <QtTest>

namespace {

const QString kRunKey =
    QStringLiteral(R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run\)");

// The log entries that concern the companions: task-list queries and program starts.
QStringList companionEntries(const OperationLog &log)
{
    return log.matching(QStringLiteral("^run: tasklist$|\\.exe"));
}

} // namespace

class TestCompanions : public QObject {
    Q_OBJECT

public:
    TestCompanions()
    {
        m_registry.addRoute(AutostartEntries::runKey, std::make_shared<AutostartEntries>());
    }

private slots:
    void init()
    {
        m_home.reset(new QTemporaryDir);
        qputenv("HOME", m_home->path().toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", (m_home->path() + "/.config").toLocal8Bit());
    }

    void aLocatedCompanionStartsFromItsOwnFolder()
    {
        TestWindow p;
        p.start();
        // A stand-in companion that reports where it runs and what it was given.
        const QString appFolder = m_home->path() + "/Programs/Fan Control";
        const QString report = m_home->path() + "/report.txt";
        writeFile(
            appFolder + "/FanControl.exe",
            QStringLiteral("#!/bin/sh\n{ pwd; echo \"$#:[$1]\"; } > '%1'\n").arg(report).toUtf8(),
            /*executable=*/true);
        writeLocator(R"(\Helmsuite\FanControl\fancontrol.ini)", appFolder + "/FanControl.exe");

        p.ui().Button_FanControl->click();
        // The separator is doubled: the folder kept its own before the name was appended again.
        QCOMPARE(companionEntries(*p.fake.log),
                 QStringList({"process: " + appFolder + "//FanControl.exe "}));
        QTRY_COMPARE(QString::fromUtf8(readFile(report)), appFolder + "\n1:[]\n");
    }

    void withoutItsFileTheBareNameIsStarted_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("locator"); // empty: no locator file
        QTest::addColumn<QString>("appUrl");
        QTest::addColumn<QString>("started");
        auto row = [](const char *name, const char *button, const char *locator, const char *appUrl,
                      const char *started) {
            QTest::newRow(name) << button << locator << appUrl << QString("shown 4: ") + started;
        };
        row("updater, no locator", "Button_Updater", "", "", "Updater.exe");
        row("fan control, no locator", "Button_FanControl", "", "", "FanControl.exe");
        row("keyboard, locator names a missing file", "Button_KeyboardLed",
            R"(\Helmsuite\KeyboardLED\keyboardled.ini)", "/nowhere/KeyboardLed.exe",
            "KeyboardLed.exe");
        row("updater, locator without appurl", "Button_Updater",
            R"(\Helmsuite\Updater\updater.ini)", "", "Updater.exe");
    }

    void withoutItsFileTheBareNameIsStarted()
    {
        QFETCH(QString, locator);
        QFETCH(QString, appUrl);
        TestWindow p;
        if (!locator.isEmpty())
            writeLocator(locator, appUrl);
        p.start();
        QFETCH(QString, button);
        p.window->findChild<QPushButton *>(button)->click();
        QTEST(companionEntries(*p.fake.log).join('\n'), "started");
    }

    void startAppsStartsRegisteredAppsNotRunning_data()
    {
        QTest::addColumn<QStringList>("registered");
        QTest::addColumn<QString>("tasks");
        QTest::addColumn<QStringList>("expected");
        const QString list = QStringLiteral("run: tasklist"), updater = "shown 0: Updater.exe";
        // Fan control runs at log-on too, but is not registered: left alone although not running.
        QTest::newRow("registered, not running")
            << QStringList{"Updater", "KeyboardLED"}
            << "System Idle Process  0\nKeyboardLed.exe   4242\n"
            << QStringList{list, updater, list};
        const QStringList all{"Updater", "Fan Control", "KeyboardLED"};
        QTest::newRow("all running")
            << all << "Updater.exe 1\nFanControl.exe 2\nKeyboardLed.exe 3\n"
            << QStringList{list, list, list};
        // A name differing only in case is another program.
        QTest::newRow("case differs")
            << all << "updater.exe 1\nFanControl.exe 2\nKeyboardLed.exe 3\n"
            << QStringList{list, updater, list, list};
    }

    void startAppsStartsRegisteredAppsNotRunning()
    {
        QFETCH(QStringList, registered);
        QFETCH(QString, tasks);
        TestWindow p;
        p.setGeneral("checkstart", true);
        for (const QString &name : registered)
            p.fake.registry->values.insert(kRunKey + "|" + name, "x");
        p.fake.commands->outputs.insert("tasklist", tasks);
        p.start(/*keepRecords=*/true);
        // Ten seconds after the start the box shows the setting and the check runs.
        QVERIFY(!p.ui().checkstart->isChecked());
        p.fake.log->clear();
        p.fake.scheduler->advance(9999);
        QCOMPARE(companionEntries(*p.fake.log), QStringList());
        p.fake.scheduler->advance(1);
        QVERIFY(p.ui().checkstart->isChecked());
        QTEST(companionEntries(*p.fake.log), "expected");

        // Off until the box is checked again; the box is remembered.
        p.ui().checkstart->click();
        QCOMPARE(p.generalValue("checkstart").toString(), QStringLiteral("false"));
        p.fake.log->clear();
        QVERIFY(QMetaObject::invokeMethod(p.window.get(), "StartApps"));
        QCOMPARE(companionEntries(*p.fake.log), QStringList());
        p.ui().checkstart->click();
        QCOMPARE(p.generalValue("checkstart").toString(), QStringLiteral("true"));
        QVERIFY(QMetaObject::invokeMethod(p.window.get(), "StartApps"));
        QTEST(companionEntries(*p.fake.log), "expected");
    }

    // The Run key of a Linux registry, as the desktop's autostart entries.
    void runValuesAreAutostartEntries()
    {
        const auto value = [this](const char *name) {
            return m_registry.value(kRunKey, name, "none").toString();
        };
        QCOMPARE(value("Fan Control"), QStringLiteral("none"));
        QVERIFY(!m_registry.contains(kRunKey, "Fan Control"));
        m_registry.setValue(kRunKey, "Fan Control", "/opt/helmsuite/fancontrol --tray");
        QCOMPARE(readFile(entry("Fan Control.desktop")),
                 QByteArray("[Desktop Entry]\nType=Application\nName=Fan Control\n"
                            "Exec=/opt/helmsuite/fancontrol --tray\n"
                            "Terminal=false\n"));
        QCOMPARE(value("Fan Control"), QStringLiteral("/opt/helmsuite/fancontrol --tray"));
        // Case of the key path does not matter, as in the registry.
        QVERIFY(m_registry.contains(kRunKey.toLower(), "Fan Control"));
        m_registry.remove(kRunKey, "Fan Control");
        QVERIFY(!QFile::exists(entry("Fan Control.desktop")));
        QCOMPARE(value("Fan Control"), QStringLiteral("none"));

        // Switched off in the desktop's settings: removed. Actions after the main group are no
        // part of the entry.
        writeFile(entry("Updater.desktop"),
                  "[Desktop Entry]\nType=Application\nExec=updater\nHidden=true\n"
                  "[Desktop Action x]\nExec=other\n");
        QVERIFY(!m_registry.contains(kRunKey, "Updater"));
        QCOMPARE(value("Updater"), QStringLiteral("none"));
        writeFile(entry("KeyboardLED.desktop"), "[Desktop Entry]\nExec=kbd --min\nHidden=false\n"
                                                "[Desktop Action x]\nExec=other\n");
        QCOMPARE(value("KeyboardLED"), QStringLiteral("kbd --min"));

        m_registry.setValue(
            R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\RunOnce)", "Fan Control",
            "x");
        QVERIFY(!QFile::exists(entry("Fan Control.desktop")));
        // A name cannot leave the autostart folder.
        m_registry.setValue(kRunKey, "../escape", "x");
        QVERIFY(QFile::exists(entry(".._escape.desktop")));
    }

private:
    // The locator file of one companion, in the Documents folder of a home of the test's own.
    void writeLocator(const QString &relative, const QString &appUrl)
    {
        const QString path = localPath(Companions::documentsFolder() + relative);
        QVERIFY(path.startsWith(m_home->path() + "/Documents/Helmsuite/"));
        QSettings ini(path, QSettings::IniFormat); // makes its folder
        ini.setValue("settings/appurl", appUrl);
    }
    QString entry(const QString &name) const
    {
        return m_home->path() + "/.config/autostart/" + name;
    }

    LinuxRegistry m_registry;
    QScopedPointer<QTemporaryDir> m_home;
};

QTEST_MAIN(TestCompanions)
#include "tst_companions.moc"
