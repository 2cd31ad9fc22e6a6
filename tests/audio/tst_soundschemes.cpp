#include "testwindow.h"

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
    // No sounds, then back to the stock scheme: the table in order; the log-on sound stays silent.
    void choosingWritesTheTableInOrder()
    {
        TestWindow p;
        p.fake.registry->values.insert(kSchemes + QStringLiteral("|Default"), ".Default");
        for (const auto &row : eventTable())
            p.fake.registry->values.insert(eventKey(row.first) + "|Default", "custom.wav");
        p.start();
        QComboBox *combo = p.ui().comboBox_SoundCheme;
        combo->setCurrentIndex(1);
        QStringList silent{setEntry(kSchemes, ".None")};
        for (const auto &row : eventTable())
            silent << setEntry(eventKey(row.first), QString());
        QCOMPARE(p.fake.log->entries, silent);

        p.fake.log->clear();
        combo->setCurrentIndex(0);
        QStringList stock{setEntry(kSchemes, ".Default")};
        for (const auto &row : eventTable()) {
            if (!row.second.isEmpty())
                stock << setEntry(eventKey(row.first), row.second);
            QCOMPARE(eventValue(p.fake, row.first).toString(), row.second);
        }
        QCOMPARE(stock.size(), 22);
        QCOMPARE(p.fake.log->entries, stock);
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

    // A refresh that lands on "no sounds" silences every event; an unchanged index writes nothing.
    void refreshFollowsTheMarker()
    {
        QFETCH(QVariant, marker);
        TestWindow p;
        for (const auto &row : eventTable())
            p.fake.registry->values.insert(eventKey(row.first) + "|Default", "ding.wav");
        if (marker.isValid())
            p.fake.registry->values.insert(kSchemes + QStringLiteral("|Default"), marker);
        p.start();
        p.window->timerDone();
        QFETCH(int, index);
        QCOMPARE(p.ui().comboBox_SoundCheme->currentIndex(), index);
        QCOMPARE(eventValue(p.fake, "MailBeep").toString(), index ? QString() : "ding.wav");
        p.fake.log->clear();
        p.window->GetSoundScheme();
        p.window->GetSoundScheme();
        QCOMPARE(p.fake.log->withPrefix(QStringLiteral("registry set")), QStringList());
    }
};

QTEST_MAIN(TestSoundSchemes)
#include "tst_soundschemes.moc"
