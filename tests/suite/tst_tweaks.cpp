#include "cputuning.h"
#include "myeventfilter.h"
#include "systemtweaks.h"
#include "testwindow.h"
#include "upperfilters.h"

#include <QtTest>

namespace {

const QString kControl = QStringLiteral(R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\)");
const QString kGraphicsDrivers = kControl + "GraphicsDrivers";
const QString kSessionPower = kControl + R"(Session Manager\Power)";
const QString kKeyboardClass = kControl + R"(Class\{4d36e96b-e325-11ce-bfc1-08002be10318})";
const QString kMouseClass = kControl + R"(Class\{4d36e96f-e325-11ce-bfc1-08002be10318})";
const QString kKeyboardFilters = kKeyboardClass + "|UpperFilters";
const QString kMouseFilters = kMouseClass + "|UpperFilters";
const QStringList kFixesInOrder = {
    R"(run: taskkill /f /im "InitHeadphone.exe")", R"(run: taskkill /f /im "PhoneJack.exe")",
    R"(shown 1: Libs\InitHeadphone.exe)", R"(shown 1: Libs\PhoneJack.exe)",
    R"(shown 0: Libs\AuxSwitch.exe)"};

} // namespace

class TestTweaks : public QObject {
    Q_OBJECT

private slots:
    void filterRule_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<bool>("rewritten");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("another driver first")
            << QStringList{"kbdclass", "HKKbdFltr"} << true << QStringList{"kbdclass"};
        QTest::newRow("none") << QStringList{} << false << QStringList{};
        QTest::newRow("without the filter")
            << QStringList{"kbdclass", "i8042prt"} << false << QStringList{"kbdclass", "i8042prt"};
        QTest::newRow("duplicates, order kept")
            << QStringList{"HKKbdFltr", "a", "HKKbdFltr", "b", "HKKbdFltr"} << true
            << QStringList{"a", "b"};
        QTest::newRow("filter alone") << QStringList{"HKKbdFltr"} << true << QStringList{};
        QTest::newRow("case differs") << QStringList{"hkkbdfltr", "HKKBDFLTR"} << false
                                      << QStringList{"hkkbdfltr", "HKKBDFLTR"};
    }

    void filterRule()
    {
        QFETCH(QStringList, before);
        QFETCH(bool, rewritten);
        QFETCH(QStringList, after);
        QStringList list = before;
        QCOMPARE(removeFilterDriver(list, QStringLiteral("HKKbdFltr")), rewritten);
        QCOMPARE(list, after);
        // The same rule over the Windows backend's list type.
        std::vector<std::wstring> wide;
        for (const QString &s : before)
            wide.push_back(s.toStdWString());
        QCOMPARE(removeFilterDriver(wide, std::wstring(L"HKKbdFltr")), rewritten);
        QCOMPARE(int(wide.size()), after.size());
    }

    void eachBoxActsWhenCheckedAndIsRemembered_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QStringList>("checked");
        QTest::addColumn<QStringList>("unchecked"); // what a second click does
        const QString set = QStringLiteral("registry set: "), remove = "registry remove: ";
        const QString keyboard = kKeyboardClass, mouse = kMouseClass;
        const QString tdr = kGraphicsDrivers + ' ';
        const QString session = set + kSessionPower + " HiberbootEnabled = ";
        // Clean lists, or none at all, are not written again; unchecking only remembers.
        QTest::newRow("hotkey filter")
            << "check_hkfilter"
            << "hotkeyfilter"
            << QStringList{set + keyboard + " UpperFilters = kbdclass",
                           set + mouse + " UpperFilters = mouclass|HKKbdFltr"}
            << QStringList{};
        QTest::newRow("TDR delay")
            << "CheckTDRdelay"
            << "TDRdelay"
            << QStringList{set + tdr + "TdrDelay = 60", set + tdr + "TdrDdiDelay = 60"}
            << QStringList{remove + tdr + "TdrDelay", remove + tdr + "TdrDdiDelay"};
        QTest::newRow("fast startup")
            << "CheckDisableFastStartup"
            << "FastStartDisabled" << QStringList{session + "0"} << QStringList{session + "1"};
        // Unchecking a fix stops nothing and shows nothing.
        QTest::newRow("brightness fix")
            << "checkBox_3"
            << "brightfix"
            << QStringList{R"(shown 0: Libs\AuxSwitch.exe)", "message: Brightness Fix",
                           "Question | Brightness Fix | A reboot may be necessary for brightness "
                           "controls to work!\n | Ok"}
            << QStringList{};
        QTest::newRow("headphone fix")
            << "checkBox_headphonefix"
            << "applyheadphone"
            << QStringList{R"(shown 0: Libs\InitHeadphone.exe)", R"(shown 0: Libs\PhoneJack.exe)"}
            << QStringList{};
    }

    void eachBoxActsWhenCheckedAndIsRemembered()
    {
        QFETCH(QString, box);
        QFETCH(QString, key);
        TestWindow p;
        p.fake.registry->values.insert(kKeyboardFilters,
                                       QStringList{"kbdclass", "HKKbdFltr", "HKKbdFltr"});
        p.fake.registry->values.insert(kMouseFilters,
                                       QStringList{"HKMouFltr", "mouclass", "HKKbdFltr"});
        p.start();
        QVERIFY(p.ui().label_windows_only->isHidden()); // the settings do apply here
        auto *check = p.window->findChild<QCheckBox *>(box);
        check->click();
        QTEST(p.fake.log->entries + p.fake.dialogs->lines(), "checked");
        // A number, so the Windows registry stores a DWORD.
        if (key == QLatin1String("TDRdelay"))
            QCOMPARE(p.fake.registry->values.value(kGraphicsDrivers + "|TdrDelay").userType(),
                     int(QMetaType::Int));
        QCOMPARE(p.generalValue(qPrintable(key)).toString(), QStringLiteral("true"));
        p.fake.log->clear();
        check->click();
        QTEST(p.fake.log->entries, "unchecked");
        QCOMPARE(p.generalValue(qPrintable(key)).toString(), QStringLiteral("false"));
        if (box == QLatin1String("check_hkfilter")) {
            p.fake.registry->values.remove(kMouseFilters);
            p.fake.log->clear();
            check->click();
            QCOMPARE(p.fake.log->entries, QStringList());
            QVERIFY(!p.fake.registry->values.contains(kMouseFilters));
        }
    }

    // Off Windows the tab says the settings do not apply; the boxes are kept all the same.
    void startupRestoresBoxesAndRepeatsOnlyTheHelpers()
    {
        TestWindow p;
        p.fake.registry->machineSettings = false;
        for (const char *key :
             {"TDRdelay", "hotkeyfilter", "FastStartDisabled", "brightfix", "applyheadphone"})
            p.setGeneral(key, true);
        p.fake.registry->values.insert(kKeyboardFilters, QStringList{"HKKbdFltr"});
        p.start(/*keepRecords=*/true);
        const Ui::MainWindow &ui = p.ui();
        QVERIFY(!ui.label_windows_only->isHidden());
        QCOMPARE(ui.label_windows_only->text(),
                 QStringLiteral("Windows only: the five fixes below change Windows settings and "
                                "start Windows helper programs, so they are switched off here."));
        for (QCheckBox *box : {ui.CheckTDRdelay, ui.check_hkfilter, ui.CheckDisableFastStartup,
                               ui.checkBox_3, ui.checkBox_headphonefix})
            QVERIFY2(box->isChecked(), qPrintable(box->objectName()));
        QCOMPARE(p.fake.log->withPrefix("registry "), QStringList());
        // Hidden at start; only a resume shows the headphone helpers.
        QCOMPARE(p.fake.log->entries.filter(R"(Libs\)"),
                 QStringList({R"(shown 0: Libs\InitHeadphone.exe)",
                              R"(shown 0: Libs\PhoneJack.exe)", R"(shown 0: Libs\AuxSwitch.exe)"}));
        ui.CheckTDRdelay->click();
        QCOMPARE(p.generalValue("TDRdelay").toString(), QStringLiteral("false"));
    }

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
        const QStringList done = p.fake.log->entries.filter(
            QRegularExpression("^(run: |start: |shown |process: |detached: )"));
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

QTEST_MAIN(TestTweaks)
#include "tst_tweaks.moc"
