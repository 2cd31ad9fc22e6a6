#include "fakeplatform.h"
#include "myeventfilter.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(PowerMessageDecision)

namespace {

PowerMessageDecision decision(bool awake, bool awake2, bool pending)
{
    PowerMessageDecision d;
    d.scheduleAwake = awake;
    d.scheduleAwake2 = awake2;
    d.resumePending = pending;
    return d;
}

} // namespace

class TestMyEventFilter : public QObject {
    Q_OBJECT

private slots:
    void decidesEachMessage_data();
    void decidesEachMessage();
    void scheduledSlotsEmitTheirSignals();
    void nativeMessagesAreDecodedAndNeverSwallowed();
    void backendMessagesTakeTheSamePath();
    void hasTheShapeTheApplicationExpects();
};

void TestMyEventFilter::decidesEachMessage_data()
{
    QTest::addColumn<quint32>("id");
    QTest::addColumn<quintptr>("code");
    QTest::addColumn<bool>("pendingBefore");
    QTest::addColumn<PowerMessageDecision>("expected");

    const quint32 power = powermsg::powerBroadcast;
    // Sleeping schedules nothing.
    QTest::newRow("suspend") << power << quintptr(4) << false << decision(false, false, false);
    // Each resume code schedules awake() once, within its own message.
    QTest::newRow("resume suspend")
        << power << quintptr(7) << false << decision(true, false, false);
    QTest::newRow("resume standby")
        << power << quintptr(8) << false << decision(true, false, false);
    QTest::newRow("resume automatic")
        << power << quintptr(18) << false << decision(true, false, false);
    QTest::newRow("other power event")
        << power << quintptr(10) << false << decision(false, false, false);
    QTest::newRow("device message")
        << quint32(49294) << quintptr(0) << false << decision(false, true, false);
    QTest::newRow("device message, any code")
        << quint32(0xC08E) << quintptr(7) << false << decision(false, true, false);
    QTest::newRow("unrelated message")
        << quint32(0x0F) << quintptr(7) << false << decision(false, false, false);
    // A pending resume is consumed by whichever message comes next.
    QTest::newRow("pending, suspend")
        << power << quintptr(4) << true << decision(true, false, false);
    QTest::newRow("pending, unrelated")
        << quint32(0x0F) << quintptr(0) << true << decision(true, false, false);
    QTest::newRow("pending, device message")
        << quint32(49294) << quintptr(0) << true << decision(true, true, false);
    QTest::newRow("pending, resume")
        << power << quintptr(18) << true << decision(true, false, false);
}

void TestMyEventFilter::decidesEachMessage()
{
    QFETCH(quint32, id);
    QFETCH(quintptr, code);
    QFETCH(bool, pendingBefore);
    QFETCH(PowerMessageDecision, expected);

    const PowerMessageDecision d = decidePowerMessage(id, code, pendingBefore);
    QCOMPARE(d.scheduleAwake, expected.scheduleAwake);
    QCOMPARE(d.scheduleAwake2, expected.scheduleAwake2);
    QCOMPARE(d.resumePending, expected.resumePending);
}

void TestMyEventFilter::scheduledSlotsEmitTheirSignals()
{
    FakePlatform fake;
    MyEventFilter filter(fake.sleep, fake.scheduler);
    QSignalSpy awake(&filter, &MyEventFilter::emitawake);
    QSignalSpy awake2(&filter, &MyEventFilter::emitawake2);

    filter.handleMessage(powermsg::deviceMessage, 0);
    filter.handleMessage(powermsg::powerBroadcast, powermsg::resumeAutomatic);
    filter.handleMessage(powermsg::powerBroadcast, powermsg::resumeSuspend);
    QCOMPARE(fake.scheduler->history, QStringList({"2000 awake2", "3000 awake", "3000 awake"}));

    fake.scheduler->advance(2999);
    QCOMPARE(awake2.count(), 1);
    QCOMPARE(awake.count(), 0);
    fake.scheduler->advance(1);
    // Windows reports one resume twice; the actions run twice, as accepted.
    QCOMPARE(awake.count(), 2);
}

void TestMyEventFilter::nativeMessagesAreDecodedAndNeverSwallowed()
{
    FakePlatform fake;
    MyEventFilter filter(fake.sleep, fake.scheduler);
    long result = 0;

    FakeSleepNotifier::Message resume{powermsg::powerBroadcast, powermsg::resumeStandby};
    QVERIFY(!filter.nativeEventFilter("fake", &resume, &result));
    QCOMPARE(fake.scheduler->history, QStringList({"3000 awake"}));

    FakeSleepNotifier::Message suspend{powermsg::powerBroadcast, powermsg::suspend};
    QVERIFY(!filter.nativeEventFilter("fake", &suspend, &result));
    // An event the backend cannot read is no message at all.
    QVERIFY(!filter.nativeEventFilter("xcb_generic_event_t", &resume, &result));
    QCOMPARE(fake.scheduler->history, QStringList({"3000 awake"}));
}

void TestMyEventFilter::backendMessagesTakeTheSamePath()
{
    FakePlatform fake;
    MyEventFilter filter(fake.sleep, fake.scheduler);
    emit fake.sleep->powerMessage(powermsg::powerBroadcast, powermsg::suspend);
    QVERIFY(fake.scheduler->history.isEmpty());
    emit fake.sleep->powerMessage(powermsg::powerBroadcast, powermsg::resumeSuspend);
    QCOMPARE(fake.scheduler->history, QStringList({"3000 awake"}));
}

void TestMyEventFilter::hasTheShapeTheApplicationExpects()
{
    FakePlatform fake;
    MyEventFilter filter(fake.sleep, fake.scheduler);
    // The native filter is the second base: a pointer to it is not the object's address.
    auto *asNative = static_cast<QAbstractNativeEventFilter *>(&filter);
    QVERIFY(static_cast<void *>(asNative) != static_cast<void *>(&filter));
    QCOMPARE(dynamic_cast<MyEventFilter *>(asNative), &filter);

    const QMetaObject *meta = filter.metaObject();
    const int first = meta->methodOffset();
    QCOMPARE(meta->methodCount() - first, 4);
    const QStringList expected = {"emitawake()", "emitawake2()", "awake()", "awake2()"};
    for (int i = 0; i < 4; ++i)
        QCOMPARE(QString::fromLatin1(meta->method(first + i).methodSignature()), expected.at(i));
    QCOMPARE(meta->method(first).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta->method(first + 2).methodType(), QMetaMethod::Slot);
}

QTEST_GUILESS_MAIN(TestMyEventFilter)
#include "tst_myeventfilter.moc"
