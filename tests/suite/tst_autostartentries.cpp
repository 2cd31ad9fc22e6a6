#include "autostartentries.h"
#include "linuxregistry.h"

#include <QtTest>

class TestAutostartEntries : public QObject {
    Q_OBJECT

public:
    TestAutostartEntries()
    {
        m_registry.addRoute(AutostartEntries::runKey, std::make_shared<AutostartEntries>());
    }

private slots:
    void init()
    {
        m_config.reset(new QTemporaryDir);
        qputenv("XDG_CONFIG_HOME", m_config->path().toLocal8Bit());
    }

    void runValuesAreAutostartEntries()
    {
        const QString none = QStringLiteral("none");
        QCOMPARE(m_registry.value(m_run, "Fan Control", none).toString(), none);
        QVERIFY(!m_registry.contains(m_run, "Fan Control"));

        m_registry.setValue(m_run, "Fan Control", "/opt/helmsuite/fancontrol --tray");
        QVERIFY(QFile::exists(entry("Fan Control.desktop")));
        QCOMPARE(m_registry.value(m_run, "Fan Control", none).toString(),
                 QStringLiteral("/opt/helmsuite/fancontrol --tray"));
        QVERIFY(m_registry.contains(m_run, "Fan Control"));
        // Case of the key path does not matter, as in the registry.
        QVERIFY(m_registry.contains(m_run.toLower(), "Fan Control"));

        m_registry.remove(m_run, "Fan Control");
        QVERIFY(!QFile::exists(entry("Fan Control.desktop")));
        QCOMPARE(m_registry.value(m_run, "Fan Control", none).toString(), none);
    }

    void hiddenEntriesCountAsRemoved()
    {
        // An entry the desktop's settings switched off, with actions after the main group.
        write("Updater.desktop", "[Desktop Entry]\nType=Application\nExec=updater\nHidden=true\n"
                                 "[Desktop Action x]\nExec=other\n");
        QVERIFY(!m_registry.contains(m_run, "Updater"));
        QCOMPARE(m_registry.value(m_run, "Updater", "none").toString(), QStringLiteral("none"));

        write("KeyboardLED.desktop", "[Desktop Entry]\nExec=kbd --min\nHidden=false\n"
                                     "[Desktop Action x]\nExec=other\n");
        QCOMPARE(m_registry.value(m_run, "KeyboardLED", "none").toString(),
                 QStringLiteral("kbd --min"));
    }

    void otherKeysAreNotEntries()
    {
        m_registry.setValue(
            R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\RunOnce)", "Updater",
            "x");
        QVERIFY(!QFile::exists(entry("Updater.desktop")));
        // A name cannot leave the autostart folder.
        m_registry.setValue(m_run, "../escape", "x");
        QVERIFY(QFile::exists(entry(".._escape.desktop")));
    }

private:
    QString entry(const QString &name) const { return m_config->path() + "/autostart/" + name; }
    void write(const QString &name, const QByteArray &text);

    QScopedPointer<QTemporaryDir> m_config;
    LinuxRegistry m_registry;
    const QString m_run = AutostartEntries::runKey;
};

void TestAutostartEntries::write(const QString &name, const QByteArray &text)
{
    QDir().mkpath(m_config->path() + "/autostart");
    QFile file(entry(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

QTEST_GUILESS_MAIN(TestAutostartEntries)
#include "tst_autostartentries.moc"
