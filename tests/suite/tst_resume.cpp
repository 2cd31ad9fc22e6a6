// Sleep and resume: the message rule, the filter that schedules the window's actions, and what
// the window runs a few seconds after a resume or the device message.
#include "cputuning.h"
#include "myeventfilter.h"
#include "testwindow.h"

#include <QtTest>

namespace {

// What the platform was asked to do besides reading: commands, helpers, processes.
QStringList actions(const OperationLog &log)
{
    QStringList out;
    for (const QString &e : log.entries) {
        for (const char *prefix : {"run: ", "start: ", "shown ", "process: ", "detached: "}) {
            if (e.startsWith(QLatin1String(prefix)))
                out << e;
        }
    }
    return out;
}

const QStringList kFixesInOrder = {
    R"(run: taskkill /f /im "InitHeadphone.exe")", R"(run: taskkill /f /im "PhoneJack.exe")",
    R"(shown 1: Libs\InitHeadphone.exe)", R"(shown 1: Libs\PhoneJack.exe)",
    R"(shown 0: Libs\AuxSwitch.exe)"};

} // namespace

class TestResume : public QObject {
    Q_OBJECT

private slots:
    void decidesEachMessage_data()
    {
        QTest::addColumn<quint32>("id");
        QTest::addColumn<quintptr>("code");
        QTest::addColumn<bool>("pending");
        QTest::addColumn<QString>("scheduled");
        const quint32 power = powermsg::powerBroadcast, device = powermsg::deviceMessage,
                      other = 0x0F;
        auto row = [](const char *name, quint32 id, quintptr code, bool pending, const char *s) {
            QTest::newRow(name) << id << code << pending << QString::fromLatin1(s);
        };
        row("suspend", power, 4, false, "");
        row("resume suspend", power, 7, false, "awake");
        row("resume standby", power, 8, false, "awake");
        row("resume automatic", power, 18, false, "awake");
        row("other power event", power, 10, false, "");
        row("device message", device, 0, false, "awake2");
        row("device message, any code", 0xC08E, 7, false, "awake2");
        row("unrelated message", other, 7, false, "");
        // A pending resume is consumed by whichever message comes next.
        row("pending, suspend", power, 4, true, "awake");
        row("pending, unrelated", other, 0, true, "awake");
        row("pending, device message", device, 0, true, "awake awake2");
        row("pending, resume", power, 18, true, "awake");
    }

    void decidesEachMessage()
    {
        QFETCH(quint32, id);
        QFETCH(quintptr, code);
        QFETCH(bool, pending);
        const PowerMessageDecision d = decidePowerMessage(id, code, pending);
        QStringList scheduled;
        if (d.scheduleAwake)
            scheduled << "awake";
        if (d.scheduleAwake2)
            scheduled << "awake2";
        QTEST(scheduled.join(' '), "scheduled");
        QVERIFY(!d.resumePending);
    }

    void nativeMessagesAreDecodedAndNeverSwallowed()
    {
        FakePlatform fake;
        MyEventFilter filter(fake.sleep, fake.scheduler);
        long result = 0;
        FakeSleepNotifier::Message device{powermsg::deviceMessage, 0};
        FakeSleepNotifier::Message resume{powermsg::powerBroadcast, powermsg::resumeStandby};
        FakeSleepNotifier::Message suspend{powermsg::powerBroadcast, powermsg::suspend};
        QVERIFY(!filter.nativeEventFilter("fake", &device, &result));
        QVERIFY(!filter.nativeEventFilter("fake", &resume, &result));
        QVERIFY(!filter.nativeEventFilter("fake", &suspend, &result));
        // An event the backend cannot read is no message at all.
        QVERIFY(!filter.nativeEventFilter("xcb_generic_event_t", &resume, &result));
        // Windows reports one resume twice; the actions are scheduled twice, as accepted.
        emit fake.sleep->powerMessage(powermsg::powerBroadcast, powermsg::resumeSuspend);
        QCOMPARE(fake.scheduler->history, QStringList({"2000 awake2", "3000 awake", "3000 awake"}));
    }

    // Whatever the boxes, a resume re-reads volume then brightness; the device message does not.
    void runsTheActionsLater_data()
    {
        QTest::addColumn<bool>("boxes"); // the two fixes and the tuning re-apply
        QTest::addColumn<quint32>("id");
        QTest::addColumn<quintptr>("code");
        const quint32 power = powermsg::powerBroadcast;
        QTest::newRow("resume, no boxes") << false << power << quintptr(powermsg::resumeAutomatic);
        QTest::newRow("resume") << true << power << quintptr(powermsg::resumeSuspend);
        QTest::newRow("device message") << true << quint32(powermsg::deviceMessage) << quintptr(0);
    }

    void runsTheActionsLater()
    {
        QFETCH(bool, boxes);
        QFETCH(quint32, id);
        QFETCH(quintptr, code);
        const bool device = id == powermsg::deviceMessage;
        TestWindow p;
        p.start();
        for (QCheckBox *box :
             {p.ui().checkBox_headphonefix, p.ui().checkBox_3, p.ui().checkBox_ReApply})
            box->setChecked(boxes);
        p.window->cpuTuning()->reapplyDone = true;
        p.fake.audio->level = 0.73f;
        p.fake.panel->level = 35;
        p.fake.log->clear();
        emit p.fake.sleep->powerMessage(id, code);
        QCOMPARE(p.fake.scheduler->history, QStringList(device ? "2000 awake2" : "3000 awake"));
        p.fake.scheduler->advance(device ? 1999 : 2999);
        QVERIFY(p.fake.log->entries.isEmpty());

        p.fake.scheduler->advance(1);
        const QStringList done = actions(*p.fake.log);
        QCOMPARE(done.mid(0, 5), boxes ? kFixesInOrder : QStringList());
        const int volume = p.fake.log->entries.indexOf(QRegularExpression("audio 1 .*"));
        const int brightness = p.fake.log->indexOf("panel read");
        if (device) {
            QCOMPARE(done.size(), 5);
            QCOMPARE(brightness, -1);
            QCOMPARE(p.fake.log->withPrefix("audio ").size(), 0);
            return;
        }
        QCOMPARE(p.ui().Slider_Volume->value(), 73);
        QCOMPARE(p.ui().Slider_Brightness->value(), 35);
        QVERIFY(p.fake.log->indexOf(kFixesInOrder.last()) < volume);
        QVERIFY(volume < brightness);
        const int tuning = p.fake.log->entries.indexOf(QRegularExpression("process: .*"));
        QCOMPARE(brightness < tuning, boxes);
        // The once-per-run re-apply may run again after a resume.
        QCOMPARE(p.window->cpuTuning()->reapplyDone, !boxes);
    }
};

QTEST_MAIN(TestResume)
#include "tst_resume.moc"
