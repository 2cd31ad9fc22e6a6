// Without a system bus a call to the helper could never be answered; a power mode applied
// while the window is built waits for that answer, so it must come at once, as a refusal.
#include "helperclient.h"

#include <QtTest>

#include <optional>

class TestHelperNoBus : public QObject {
    Q_OBJECT
private slots:
    void aMissingBusRefusesAtOnce()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/varnel-no-system-bus");
        HelperClient helper([] { return true; });
        std::optional<QDBusMessage> reply;
        helper.call(QStringLiteral("SetTurboPower"), {35000u},
                    [&](const QDBusMessage &message) { reply = message; });
        QVERIFY(!reply); // answered like a bus call, after the caller has returned
        QTRY_VERIFY(reply.has_value());
        QCOMPARE(reply->type(), QDBusMessage::ErrorMessage);
        QCOMPARE(helper.takeRefusal(), QStringLiteral("The system bus is not running."));
    }
};

QTEST_GUILESS_MAIN(TestHelperNoBus)
#include "tst_helpernobus.moc"
