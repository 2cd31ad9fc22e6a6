#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QtTest>

namespace {

const QString kSchemes = QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes");

QString eventKey(const QString &event)
{
    return QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps\\.Default\\") + event +
           QStringLiteral("\\.Current");
}

QString media(const char *file)
{
    return QStringLiteral("C:\\WINDOWS\\media\\") + QLatin1String(file) + QStringLiteral(".wav");
}

// The event table in writing order; an empty sound is an event the stock scheme leaves alone.
QList<QPair<QString, QString>> eventTable()
{
    return {
        {".Default", media("Windows Background")},
        {"CriticalBatteryAlarm", media("Windows Foreground")},
        {"DeviceConnect", media("Windows Hardware Insert")},
        {"DeviceDisconnect", media("Windows Hardware Remove")},
        {"DeviceFail", media("Windows Hardware Fail")},
        {"FaxBeep", media("Windows Notify Email")},
        {"LowBatteryAlarm", media("Windows Background")},
        {"MailBeep", media("Windows Notify Email")},
        {"MessageNudge", media("Windows Message Nudge")},
        {"Notification.Default", media("Windows Notify System Generic")},
        {"Notification.IM", media("Windows Notify Messaging")},
        {"Notification.Mail", media("Windows Notify Email")},
        {"Notification.Proximity", media("Windows Proximity Notification")},
        {"Notification.Reminder", media("Windows Notify Calendar")},
        {"Notification.SMS", media("Windows Notify Messaging")},
        {"ProximityConnection", media("Windows Proximity Connection")},
        {"SystemAsterisk", media("Windows Background")},
        {"SystemExclamation", media("Windows Background")},
        {"SystemHand", media("Windows Foreground")},
        {"SystemNotification", media("Windows Background")},
        {"WindowsLogon", QString()},
        {"WindowsUAC", media("Windows User Account Control")},
    };
}

QString setEntry(const QString &key, const QString &value)
{
    return QStringLiteral("registry set: %1 Default = %2").arg(key, value);
}

QVariant eventValue(const FakePlatform &fake, const QString &event)
{
    return fake.registry->values.value(eventKey(event) + QStringLiteral("|Default"));
}

} // namespace

class TestSoundSchemes : public QObject {
    Q_OBJECT

private slots:
    void choosingWritesTheTableInOrder()
    {
        TestFolder folder;
        FakePlatform fake;
        fake.registry->values.insert(kSchemes + QStringLiteral("|Default"), ".Default");
        MainWindow w(fake.bundle());
        QComboBox *combo = w.form()->comboBox_SoundCheme;

        fake.log->clear();
        combo->setCurrentIndex(1);
        QStringList silent{setEntry(kSchemes, ".None")};
        for (const auto &row : eventTable())
            silent << setEntry(eventKey(row.first), QString());
        QCOMPARE(silent.size(), 23);
        QCOMPARE(fake.log->entries, silent);

        fake.log->clear();
        combo->setCurrentIndex(0);
        QStringList stock{setEntry(kSchemes, ".Default")};
        for (const auto &row : eventTable()) {
            if (!row.second.isEmpty())
                stock << setEntry(eventKey(row.first), row.second);
        }
        QCOMPARE(stock.size(), 22);
        QCOMPARE(fake.log->entries, stock);
    }

    void eachEventEndsWithItsSound_data()
    {
        QTest::addColumn<QString>("event");
        QTest::addColumn<QString>("sound");
        for (const auto &row : eventTable())
            QTest::newRow(qPrintable(row.first)) << row.first << row.second;
    }

    // No sounds, then back to the stock scheme: the log-on sound stays silent.
    void eachEventEndsWithItsSound()
    {
        QFETCH(QString, event);
        QFETCH(QString, sound);
        TestFolder folder;
        FakePlatform fake;
        fake.registry->values.insert(kSchemes + QStringLiteral("|Default"), ".Default");
        fake.registry->values.insert(eventKey(event) + QStringLiteral("|Default"), "custom.wav");
        MainWindow w(fake.bundle());
        QComboBox *combo = w.form()->comboBox_SoundCheme;
        combo->setCurrentIndex(1);
        QCOMPARE(eventValue(fake, event), QVariant(QString()));
        combo->setCurrentIndex(0);
        QCOMPARE(eventValue(fake, event).toString(), sound);
    }

    void refreshFollowsTheMarker_data()
    {
        QTest::addColumn<QVariant>("marker");
        QTest::addColumn<int>("index");
        QTest::newRow("missing") << QVariant() << 1;
        QTest::newRow("no sounds") << QVariant(".None") << 1;
        QTest::newRow("stock") << QVariant(".Default") << 0;
        QTest::newRow("custom scheme") << QVariant("Jungle") << 0;
        QTest::newRow("case differs") << QVariant(".none") << 0;
    }

    void refreshFollowsTheMarker()
    {
        QFETCH(QVariant, marker);
        QFETCH(int, index);
        TestFolder folder;
        FakePlatform fake;
        if (marker.isValid())
            fake.registry->values.insert(kSchemes + QStringLiteral("|Default"), marker);
        MainWindow w(fake.bundle());
        w.GetSoundScheme();
        QCOMPARE(w.form()->comboBox_SoundCheme->currentIndex(), index);
    }

    void refreshFromMissingMarkerSilencesEveryEvent()
    {
        TestFolder folder;
        FakePlatform fake;
        for (const auto &row : eventTable())
            fake.registry->values.insert(eventKey(row.first) + QStringLiteral("|Default"),
                                         "ding.wav");
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.timerDone();
        QCOMPARE(w.form()->comboBox_SoundCheme->currentIndex(), 1);
        QCOMPARE(fake.registry->values.value(kSchemes + QStringLiteral("|Default")).toString(),
                 QStringLiteral(".None"));
        for (const auto &row : eventTable())
            QCOMPARE(eventValue(fake, row.first).toString(), QString());
    }

    void unchangedIndexWritesNothing()
    {
        TestFolder folder;
        FakePlatform fake;
        fake.registry->values.insert(kSchemes + QStringLiteral("|Default"), "Jungle");
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.GetSoundScheme();
        w.GetSoundScheme();
        QCOMPARE(fake.log->withPrefix(QStringLiteral("registry set: HKEY_CURRENT_USER\\AppEvents")),
                 QStringList());
    }
};

QTEST_MAIN(TestSoundSchemes)
#include "tst_soundschemes.moc"
