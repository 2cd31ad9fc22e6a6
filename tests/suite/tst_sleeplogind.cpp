#include "backlight.h"
#include "desktoppower.h"
#include "keyboardlight.h"
#include "privatesystembus.h"
#include "sleeplogind.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QThread>
#include <QtTest>

#include <poll.h>
#include <unistd.h>

namespace {

// logind's manager object as far as the program uses it: Inhibit and PrepareForSleep.
class StandInLogind : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")
public:
    ~StandInLogind() override
    {
        for (int fd : readEnds)
            ::close(fd);
    }

    QStringList inhibitCalls;
    QVector<int> readEnds; // one per lock handed out; the far end closes when it is let go

public slots:
    QDBusUnixFileDescriptor Inhibit(const QString &what, const QString &who, const QString &why,
                                    const QString &mode)
    {
        inhibitCalls << QStringList{what, who, why, mode}.join('|');
        int fds[2];
        if (::pipe(fds) != 0)
            return QDBusUnixFileDescriptor();
        readEnds << fds[0];
        QDBusUnixFileDescriptor lock(fds[1]);
        ::close(fds[1]);
        return lock;
    }

signals:
    void PrepareForSleep(bool start);
};

// The caller's session; a device named "refused" is refused.
class StandInSession : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Session")
public:
    QStringList calls;

public slots:
    void SetBrightness(const QString &subsystem, const QString &name, uint brightness)
    {
        calls << QStringLiteral("%1 %2 %3").arg(subsystem, name).arg(brightness);
        if (name == QLatin1String("refused"))
            sendErrorReply(QDBusError::AccessDenied, QStringLiteral("not this session's"));
    }
};

// True once every holder of the lock's write end has closed it.
bool released(int readEnd)
{
    pollfd p{readEnd, POLLIN, 0};
    return ::poll(&p, 1, 0) == 1 && (p.revents & (POLLHUP | POLLIN));
}

} // namespace

class TestSleepLogind : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable("dbus-daemon").isEmpty())
            QSKIP("dbus-daemon is not installed");
        // The lid switch asks the system bus itself: a private one, so the machine's is untouched.
        QVERIFY(m_bus.start("DBUS_SYSTEM_BUS_ADDRESS"));
    }

    void cleanupTestCase()
    {
        QDBusConnection::disconnectFromBus("logind");
        QDBusConnection::disconnectFromBus("varnel");
    }

    // The lid switch and the brightness writers wait for the answer, so logind answers from a
    // thread of its own.
    void locksAndBrightnessGoThroughLogind()
    {
        QThread thread;
        StandInLogind logind;
        StandInSession session;
        QDBusConnection service = QDBusConnection::connectToBus(m_bus.address(), "logind");
        const QString manager = "/org/freedesktop/login1", path = manager + "/session/auto";
        logind.moveToThread(&thread);
        session.moveToThread(&thread);
        thread.start();
        // Stopped on every way out: a thread object destroyed while running aborts the program.
        const auto stop = qScopeGuard([&] {
            service.unregisterObject(path);
            service.unregisterObject(manager);
            thread.quit();
            thread.wait(5000);
        });
        QVERIFY(service.registerObject(
            manager, &logind, QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        QVERIFY(service.registerObject(path, &session, QDBusConnection::ExportAllSlots));
        QVERIFY(service.registerService("org.freedesktop.login1"));
        {
            LogindLidSwitch lid;
            lid.setIgnored(true);
            lid.setIgnored(true); // one lock however often it is asked
            QCOMPARE(logind.inhibitCalls,
                     QStringList{"handle-lid-switch|Varnel|The power mode keeps the laptop on "
                                 "with the lid closed|block"});
            QVERIFY(!released(logind.readEnds.first()));
            lid.setIgnored(false);
            QTRY_VERIFY(released(logind.readEnds.first()));
        }
        // Panel and keyboard light are set through the caller's session, without root.
        QVERIFY(SysfsBacklight::logindSetBrightness(QStringLiteral("intel_backlight"), 1234));
        QVERIFY(LedKeyboardLight::logindSetLed(QStringLiteral("tpacpi::kbd_backlight"), 2));
        QVERIFY(!SysfsBacklight::logindSetBrightness(QStringLiteral("refused"), 1));
        QCOMPARE(session.calls,
                 (QStringList{"backlight intel_backlight 1234", "leds tpacpi::kbd_backlight 2",
                              "backlight refused 1"}));

        // A delay lock while awake; sleep and resume are reported.
        logind.inhibitCalls.clear();
        LogindSleepNotifier notifier(QDBusConnection::connectToBus(m_bus.address(), "varnel"));
        QStringList messages; // "id code"
        connect(&notifier, &SleepNotifier::powerMessage, this,
                [&messages](quint32 id, quintptr code) {
                    messages << QStringLiteral("%1 %2").arg(id).arg(code);
                });
        const QString lock = "sleep|Varnel|Re-applies the laptop's fixes after a resume|delay";
        QTRY_VERIFY(notifier.holdsInhibitor());
        QCOMPARE(logind.inhibitCalls, QStringList{lock});
        QVERIFY(!released(logind.readEnds.last()));

        // Before sleeping: told, and the lock goes so the machine can sleep.
        emit logind.PrepareForSleep(true);
        QTRY_COMPARE(messages, QStringList{"536 4"});
        QTRY_VERIFY(released(logind.readEnds.last()));
        QVERIFY(!notifier.holdsInhibitor());

        // After waking up: a resume message, and a new lock for the next sleep.
        emit logind.PrepareForSleep(false);
        QTRY_COMPARE(messages, (QStringList{"536 4", "536 7"}));
        QTRY_VERIFY(notifier.holdsInhibitor());
        QCOMPARE(logind.inhibitCalls, (QStringList{lock, lock}));
        QVERIFY(!released(logind.readEnds.last()));
    }

    void withoutABusNothingIsReported()
    {
        LogindSleepNotifier notifier(QDBusConnection(QStringLiteral("no such bus")));
        int reported = 0;
        connect(&notifier, &SleepNotifier::powerMessage, this, [&reported] { ++reported; });
        QVERIFY(!notifier.holdsInhibitor());
        quint32 id = 0;
        quintptr code = 0;
        int event = 0;
        QVERIFY(!notifier.decodeNativeMessage("xcb_generic_event_t", &event, &id, &code));
        QCOMPARE(reported, 0);
        // The handler itself still reports.
        notifier.handlePrepareForSleep(false);
        QCOMPARE(reported, 1);
    }

private:
    PrivateSessionBus m_bus;
};

QTEST_GUILESS_MAIN(TestSleepLogind)
#include "tst_sleeplogind.moc"
