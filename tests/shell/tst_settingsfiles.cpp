#include "settingsfiles.h"
#include "testfolder.h"

#include <QtTest>

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
