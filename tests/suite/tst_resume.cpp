#include "fakeplatform.h"
#include "mainwindow.h"
#include "myeventfilter.h"
#include "sleeplogind.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include "cputuning.h"

#include <QtTest>

namespace {

// What the platform was asked to do besides reading: commands, helpers, processes.
QStringList actions(const OperationLog &log)
{
    QStringList out;
    for (const QString &e : log.entries) {
        if (e.startsWith("run: ") || e.startsWith("start: ") || e.startsWith("shown ") ||
            e.startsWith("process: ") || e.startsWith("detached: "))
            out << e;
    }
    return out;
}

// The window with every start-up delay already run, and a clean log.
struct SettledWindow {
    explicit SettledWindow(FakePlatform &fake, Platform bundle) : window(std::move(bundle))
    {
        fake.scheduler->runAll();
        fake.log->clear();
        fake.scheduler->history.clear();
    }
    MainWindow window;
};

const QStringList kFixesInOrder = {
    R"(run: taskkill /f /im "InitHeadphone.exe")", R"(run: taskkill /f /im "PhoneJack.exe")",
    R"(shown 1: Libs\InitHeadphone.exe)", R"(shown 1: Libs\PhoneJack.exe)",
    R"(shown 0: Libs\AuxSwitch.exe)"};

} // namespace

class TestResume : public QObject {
    Q_OBJECT

private slots:
    void resumeWithoutBoxesOnlyRereadsVolumeAndBrightness();
    void resumeRunsFixesThenRereadsThenTuning();
    void deviceMessageRunsTheFixesOnly();
    void logindResumeRereadsThreeSecondsLater();
};

void TestResume::resumeWithoutBoxesOnlyRereadsVolumeAndBrightness()
{
    FakePlatform fake;
    TestFolder folder;
    SettledWindow settled(fake, fake.bundle());
    MainWindow &w = settled.window;

    fake.audio->level = 0.73f;
    fake.panel->level = 35;
    emit fake.sleep->powerMessage(powermsg::powerBroadcast, powermsg::resumeAutomatic);
    QCOMPARE(fake.scheduler->history, QStringList({"3000 awake"}));
    fake.scheduler->advance(2999);
    QVERIFY(fake.log->entries.isEmpty());

    fake.scheduler->advance(1);
    QCOMPARE(w.form()->Slider_Volume->value(), 73);
    QCOMPARE(w.form()->Slider_Brightness->value(), 35);
    QVERIFY(fake.log->indexOf("panel read") >
            fake.log->entries.indexOf(QRegularExpression("audio 1 .*")));
    QCOMPARE(actions(*fake.log), QStringList());
}

void TestResume::resumeRunsFixesThenRereadsThenTuning()
{
    FakePlatform fake;
    TestFolder folder;
    SettledWindow settled(fake, fake.bundle());
    MainWindow &w = settled.window;
    w.form()->checkBox_headphonefix->setChecked(true);
    w.form()->checkBox_3->setChecked(true);
    w.form()->checkBox_ReApply->setChecked(true);
    w.cpuTuning()->reapplyDone = true;

    emit fake.sleep->powerMessage(powermsg::powerBroadcast, powermsg::resumeSuspend);
    fake.scheduler->advance(3000);

    QCOMPARE(actions(*fake.log).mid(0, 5), kFixesInOrder);
    const int lastFix = fake.log->indexOf(kFixesInOrder.last());
    const int volume = fake.log->entries.indexOf(QRegularExpression("audio 1 .*"));
    const int brightness = fake.log->indexOf("panel read");
    const int tuning = fake.log->entries.indexOf(QRegularExpression("process: .*"));
    QVERIFY(lastFix < volume);
    QVERIFY(volume < brightness);
    QVERIFY2(brightness < tuning, qPrintable(fake.log->entries.join('\n')));
    // The once-per-run re-apply may run again after a resume.
    QVERIFY(!w.cpuTuning()->reapplyDone);
}

void TestResume::deviceMessageRunsTheFixesOnly()
{
    FakePlatform fake;
    TestFolder folder;
    SettledWindow settled(fake, fake.bundle());
    MainWindow &w = settled.window;
    w.form()->checkBox_headphonefix->setChecked(true);
    w.form()->checkBox_3->setChecked(true);
    w.form()->checkBox_ReApply->setChecked(true);

    emit fake.sleep->powerMessage(powermsg::deviceMessage, 0);
    QCOMPARE(fake.scheduler->history, QStringList({"2000 awake2"}));
    fake.scheduler->advance(2000);

    QCOMPARE(actions(*fake.log), kFixesInOrder);
    QCOMPARE(fake.log->indexOf("panel read"), -1);
    QCOMPARE(fake.log->withPrefix("audio ").size(), 0);
}

void TestResume::logindResumeRereadsThreeSecondsLater()
{
    FakePlatform fake;
    TestFolder folder;
    // The Linux backend without a bus: only its handler reports.
    auto logind = std::make_shared<LogindSleepNotifier>(QDBusConnection(QStringLiteral("none")));
    Platform bundle = fake.bundle();
    bundle.sleep = logind;
    SettledWindow settled(fake, bundle);
    MainWindow &w = settled.window;

    logind->handlePrepareForSleep(true);
    QVERIFY(fake.scheduler->history.isEmpty());

    fake.audio->level = 0.21f;
    fake.panel->level = 80;
    logind->handlePrepareForSleep(false);
    QCOMPARE(fake.scheduler->history, QStringList({"3000 awake"}));
    fake.scheduler->advance(2999);
    QVERIFY(w.form()->Slider_Brightness->value() != 80);
    fake.scheduler->advance(1);
    QCOMPARE(w.form()->Slider_Volume->value(), 21);
    QCOMPARE(w.form()->Slider_Brightness->value(), 80);
}

QTEST_MAIN(TestResume)
#include "tst_resume.moc"
