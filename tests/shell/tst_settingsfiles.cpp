#include "settingsfiles.h"
#include "testfolder.h"

#include <QtTest>

namespace {

// A rewrite regenerates the whole INI file and so drops a comment line the program never
// writes: the mark survives exactly when the file was left alone (inodes do not exist on every
// file system this runs on).
void markUntouched(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::Append));
    file.write("; untouched\n");
}

bool stillUntouched(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll().contains("; untouched");
}

} // namespace

class TestSettingsFiles : public QObject {
    Q_OBJECT

private slots:
    void fileSetOrderAndNames()
    {
        const SettingsFileSet files;
        QCOMPARE(files.branding, QStringLiteral("branding//varnel_branding.ini"));
        QCOMPARE(files.general, QStringLiteral("settings//varnel.ini"));
        QCOMPARE(files.updateWork, QStringLiteral("updates//work.ini"));
        QCOMPARE(files.widgets, QStringLiteral("settings//settings_widgets.ini"));
        QCOMPARE(files.userPowerModes, QStringLiteral("settings//user_power_mode.ini"));
        QCOMPARE(files.defaultPowerModes, QStringLiteral("settings//default_power_mode.ini"));
    }

    void missingKeysReadInvalid()
    {
        TestFolder folder;
        const Settings settings;
        const QVariant missing = settings.general().value(QStringLiteral("minimize_close"));
        QVERIFY(!missing.isValid());
        QCOMPARE(missing.toBool(), false);
        QCOMPARE(missing.toInt(), 0);
        QVERIFY(missing.toString().isEmpty());
    }

    void writesReachTheDiskAtOnceUnderTheSettingsGroup()
    {
        TestFolder folder;
        folder.mkdir(QStringLiteral("settings"));
        const Settings settings;
        settings.general().setValue(QStringLiteral("powermode"), QStringLiteral("silent"));
        QCOMPARE(folder.ini(QStringLiteral("settings/varnel.ini"), QStringLiteral("powermode")),
                 QVariant(QStringLiteral("silent")));
        // A change made behind the helper's back is seen by the next read: nothing is cached.
        folder.setIni(QStringLiteral("settings/varnel.ini"), QStringLiteral("powermode"),
                      QStringLiteral("maximum"));
        QCOMPARE(settings.general().value(QStringLiteral("powermode")).toString(),
                 QStringLiteral("maximum"));
    }

    void bothSeparatorsNameTheSameFile()
    {
        TestFolder folder;
        folder.mkdir(QStringLiteral("settings"));
        SettingsFile(QStringLiteral("settings\\settings_widgets.ini"))
            .setValue(QStringLiteral("resorceswidget"), 1);
        QCOMPARE(Settings().widgets().value(QStringLiteral("resorceswidget")).toInt(), 1);
        QCOMPARE(localPath(QStringLiteral("ThrottleStop\\ThrottleStop.ini")),
                 QStringLiteral("ThrottleStop/ThrottleStop.ini"));
    }

    void updateWorkFileUsesItsOwnGroup()
    {
        TestFolder folder;
        folder.mkdir(QStringLiteral("updates"));
        Settings().updateWork().setValue(QStringLiteral("Varnel"), true);
        QSettings raw(folder.file(QStringLiteral("updates/work.ini")), QSettings::IniFormat);
        QCOMPARE(raw.value(QStringLiteral("workqueue/Varnel")).toBool(), true);
        QVERIFY(!raw.contains(QStringLiteral("settings/Varnel")));
    }

    void onlyChangesRewriteTheFile_data()
    {
        QTest::addColumn<QVariant>("stored"); // invalid: the key is missing
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<bool>("rewritten");
        QTest::newRow("same text") << QVariant("silent") << QVariant("silent") << false;
        QTest::newRow("other text") << QVariant("silent") << QVariant("maximum") << true;
        QTest::newRow("same bool") << QVariant(true) << QVariant(true) << false;
        QTest::newRow("bool turned off") << QVariant(true) << QVariant(false) << true;
        QTest::newRow("same number") << QVariant(40) << QVariant(40) << false;
        QTest::newRow("number as its text") << QVariant(40) << QVariant("40") << false;
        QTest::newRow("other number") << QVariant(40) << QVariant(41) << true;
        QTest::newRow("same fraction") << QVariant(1.5) << QVariant(1.5) << false;
        QTest::newRow("same bytes")
            << QVariant(QByteArray("\x01\x02", 2)) << QVariant(QByteArray("\x01\x02", 2)) << false;
        QTest::newRow("other bytes")
            << QVariant(QByteArray("\x01\x02", 2)) << QVariant(QByteArray("\x01\x03", 2)) << true;
        // A missing key reads as false, yet writing false must still store it.
        QTest::newRow("missing key") << QVariant() << QVariant(false) << true;
        QTest::newRow("text that reads like a bool") << QVariant("true") << QVariant(true) << false;
    }

    void onlyChangesRewriteTheFile()
    {
        QFETCH(QVariant, stored);
        QFETCH(QVariant, written);
        QFETCH(bool, rewritten);
        TestFolder folder;
        const SettingsFile general = Settings().general();
        general.setValue(QStringLiteral("other"), 1);
        if (stored.isValid())
            general.setValue(QStringLiteral("key"), stored);
        const QString path = folder.file(QStringLiteral("settings/varnel.ini"));
        markUntouched(path);

        general.setValue(QStringLiteral("key"), written);
        QCOMPARE(!stillUntouched(path), rewritten);
        QCOMPARE(general.value(QStringLiteral("key")).toString(), written.toString());

        // Removing a key that is not there changes nothing either.
        markUntouched(path);
        general.remove(QStringLiteral("absent"));
        QVERIFY(stillUntouched(path));
    }

    void theFirstWriteCreatesAMissingFolder()
    {
        // A first start without a settings folder must still remember the user's choices.
        TestFolder folder;
        Settings().general().setValue(QStringLiteral("start_hidden"), true);
        QVERIFY(QFileInfo(folder.file(QStringLiteral("settings/varnel.ini"))).isFile());
        QVERIFY(Settings().general().value(QStringLiteral("start_hidden")).toBool());
    }
};

QTEST_GUILESS_MAIN(TestSettingsFiles)
#include "tst_settingsfiles.moc"
