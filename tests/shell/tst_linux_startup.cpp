// The Linux side of the shell: the command table and its log-on entry, the registry routes,
// the identity used in the instance key.
#include "commandtable.h"
#include "instancefile.h"
#include "linuxcommands.h"
#include "linuxidentity.h"
#include "linuxregistry.h"

#include <QtTest>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

class TestLinuxStartup : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_config;

private slots:
    void init()
    {
        QVERIFY(m_config.isValid());
        qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8());
    }

    void logOnTaskBecomesAnAutostartEntry()
    {
        auto table = std::make_shared<CommandTable>();
        addStartupCommands(*table);
        LinuxCommandRunner runner(table);
        const QString entry = m_config.path() + QStringLiteral("/autostart/varnel.desktop");

        runner.start(
            QStringLiteral(R"(schtasks /create /tn "Varnrel" /XML settings\varnrel_task.xml)"));
        QFile file(entry);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QVERIFY(text.startsWith(QStringLiteral("[Desktop Entry]\n")));
        QVERIFY(text.contains(
            QStringLiteral("Exec=\"%1\"").arg(QCoreApplication::applicationFilePath())));
        QVERIFY(text.contains(QStringLiteral("Path=") + QDir::currentPath()));
        file.close();

        runner.start(QStringLiteral(R"(schtasks /Delete /tn "Varnrel" /f)"));
        QVERIFY(!QFile::exists(entry));
    }

    void unknownCommandsBehaveLikeMissingPrograms()
    {
        auto table = std::make_shared<CommandTable>();
        addStartupCommands(*table);
        LinuxCommandRunner runner(table);
        QVERIFY(!table->knows(QStringLiteral("schtasks /create /tn \"Other\" /XML x.xml")));
        QVERIFY(
            runner.runAndRead(QStringLiteral("definitely-not-a-program --flag"), 30000).isEmpty());
        QVERIFY(!table->run(QStringLiteral("schtasks /Delete /tn \"Varnrel\"")).has_value());
    }

    void tableRowsAnswerAsynchronouslyWithoutAProcess()
    {
        auto table = std::make_shared<CommandTable>();
        table->add(QStringLiteral("echo (\\w+)"),
                   [](const QRegularExpressionMatch &m) { return m.captured(1) + "\r\n"; });
        LinuxCommandRunner runner(table);
        AsyncProcess *process = runner.createProcess(this);
        QSignalSpy finished(process, &AsyncProcess::finished);
        QSignalSpy output(process, &AsyncProcess::readyReadStandardOutput);
        process->startCommand(QStringLiteral("echo hello"));
        QVERIFY(process->isRunning());
        // A second start while the first answer is pending is refused, like a running process.
        process->startCommand(QStringLiteral("echo again"));
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
        registry.setValue(userKey, QStringLiteral("Default"), QStringLiteral(".None"));
        QCOMPARE(registry.value(userKey, QStringLiteral("Default"), QStringLiteral("x")).toString(),
                 QStringLiteral(".None"));
        QVERIFY(QFile::exists(UserStoreRegistry::storePath()));

        const QString machineKey = QStringLiteral(
            "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power");
        registry.setValue(machineKey, QStringLiteral("HiberbootEnabled"), QStringLiteral("0"));
        QVERIFY(!registry.contains(machineKey, QStringLiteral("HiberbootEnabled")));

        auto routed = std::make_shared<UserStoreRegistry>();
        registry.addRoute(QStringLiteral("HKEY_CURRENT_USER\\Routed"), routed);
        registry.setValue(QStringLiteral("hkey_current_user\\routed\\a"), QStringLiteral("v"), 3);
        QCOMPARE(
            routed->value(QStringLiteral("hkey_current_user\\routed\\a"), QStringLiteral("v"), 0)
                .toInt(),
            3);
    }

    // The instance block and server go only where no other user can write or plant a link.
    void instanceFolderIsPrivate_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<int>("chosen"); // index into the two candidates, -1 for none
        QTest::newRow("private") << "private" << 0;
        QTest::newRow("missing, made private") << "missing" << 0;
        QTest::newRow("others may write") << "shared" << 1;
        QTest::newRow("a link to a private folder") << "link" << 1;
        QTest::newRow("a file") << "file" << 1;
        QTest::newRow("another user's") << "foreign" << 1;
        QTest::newRow("nothing usable") << "shared-both" << -1;
    }

    void instanceFolderIsPrivate()
    {
        QFETCH(QString, first);
        QFETCH(int, chosen);
        QTemporaryDir root;
        const QString a = root.filePath(QStringLiteral("a"));
        const QString b = root.filePath(QStringLiteral("b"));
        const QByteArray pathA = QFile::encodeName(a);
        QVERIFY(QDir().mkdir(b));
        if (first == QLatin1String("private")) {
            QVERIFY(QDir().mkdir(a));
            ::chmod(pathA.constData(), 0700);
        } else if (first.startsWith(QLatin1String("shared"))) {
            QVERIFY(QDir().mkdir(a));
            ::chmod(pathA.constData(), 0777);
            if (first == QLatin1String("shared-both"))
                ::chmod(QFile::encodeName(b).constData(), 0770);
        } else if (first == QLatin1String("link")) {
            QVERIFY(QFile::link(b, a));
        } else if (first == QLatin1String("file")) {
            QFile file(a);
            QVERIFY(file.open(QIODevice::WriteOnly));
        } else if (first == QLatin1String("foreign")) {
            if (geteuid() != 0)
                QSKIP("needs root to make a folder of another user");
            QVERIFY(QDir().mkdir(a));
            const passwd *nobody = getpwnam("nobody");
            QVERIFY(nobody && ::chown(pathA.constData(), nobody->pw_uid, nobody->pw_gid) == 0);
        }
        const QStringList candidates{a, b};
        QCOMPARE(privateInstanceDirectory(candidates),
                 chosen < 0 ? QString() : candidates.at(chosen));
        if (first == QLatin1String("missing"))
            QCOMPARE(QFileInfo(a).permissions() & 0x0077, QFileDevice::Permissions());
    }

    void noPrivateFolderStillStarts()
    {
        FileInstanceBlock nowhere(QString(), QStringLiteral("key"));
        QVERIFY(nowhere.claimPrimary(QCoreApplication::applicationPid()));
        QVERIFY(nowhere.serverName().isEmpty());
    }

    void identity()
    {
        LinuxIdentity identity;
        QVERIFY(!identity.userName().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLinuxStartup)
#include "tst_linux_startup.moc"
