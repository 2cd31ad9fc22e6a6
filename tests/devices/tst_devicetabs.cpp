// The devices and audio tabs on the real window.
#include "keys.h"
#include "testwindow.h"

#include <QtTest>

namespace {

const QString kTouchpadKey = QStringLiteral(
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\PrecisionTouchPad\\Status");
const QString kInstance =
    QStringLiteral("PCI\\VEN_8086&DEV_A368&SUBSYS_65D11558&REV_10\\3&11583659&0&A8");

QStringList audioWrites(const SharedLog &log)
{
    return log->withPrefix("audio 2 ") + log->withPrefix("audio 3 ");
}

const QString kHeadphones = QStringLiteral("Realtek HD (Headphones)");
const QString kSchemes = QStringLiteral("HKEY_CURRENT_USER\\AppEvents\\Schemes");

QString eventKey(const QString &event)
{
    return kSchemes + QStringLiteral("\\Apps\\.Default\\") + event + QStringLiteral("\\.Current");
}

// The event table in writing order with the stock sound of each, a file under C:\WINDOWS\media;
// the log-on sound is left alone by the stock scheme.
const char *const kEvents[][2] = {
    {".Default", "Windows Background"},
    {"CriticalBatteryAlarm", "Windows Foreground"},
    {"DeviceConnect", "Windows Hardware Insert"},
    {"DeviceDisconnect", "Windows Hardware Remove"},
    {"DeviceFail", "Windows Hardware Fail"},
    {"FaxBeep", "Windows Notify Email"},
    {"LowBatteryAlarm", "Windows Background"},
    {"MailBeep", "Windows Notify Email"},
    {"MessageNudge", "Windows Message Nudge"},
    {"Notification.Default", "Windows Notify System Generic"},
    {"Notification.IM", "Windows Notify Messaging"},
    {"Notification.Mail", "Windows Notify Email"},
    {"Notification.Proximity", "Windows Proximity Notification"},
    {"Notification.Reminder", "Windows Notify Calendar"},
    {"Notification.SMS", "Windows Notify Messaging"},
    {"ProximityConnection", "Windows Proximity Connection"},
    {"SystemAsterisk", "Windows Background"},
    {"SystemExclamation", "Windows Background"},
    {"SystemHand", "Windows Foreground"},
    {"SystemNotification", "Windows Background"},
    {"WindowsLogon", nullptr},
    {"WindowsUAC", "Windows User Account Control"},
};

QString setEntry(const QString &key, const QString &value)
{
    return QStringLiteral("registry set: %1 Default = %2").arg(key, value);
}

} // namespace

class TestDeviceTabs : public QObject {
    Q_OBJECT

private slots:
    void cameraRadiosSwitchEveryClick_data()
    {
        QTest::addColumn<int>("value");
        QTest::newRow("on") << 1;
        QTest::newRow("off") << 0;
    }

    void cameraRadiosSwitchEveryClick()
    {
        QFETCH(int, value);
        TestWindow t;
        t.start();
        Ui::MainWindow &ui = t.ui();
        QRadioButton *button = value ? ui.Radio_CameraON : ui.Radio_CameraOFF;
        button->click();
        button->click(); // already checked: switches again
        const QString entry = QStringLiteral("switch 1 = %1").arg(value);
        QCOMPARE(t.fake.log->entries, QStringList({entry, entry}));
        QCOMPARE(t.generalValue(keys::camera).toInt(), value);

        // Refused after the click: the radios go back to the camera's state before it (off at
        // the first start), and say why.
        const QString why = QStringLiteral("Not allowed: the camera stays as it was.");
        t.fake.switches->answerNo(1, value, why);
        QVERIFY(!ui.Radio_CameraON->isChecked() && ui.Radio_CameraOFF->isChecked());
        QCOMPARE(ui.Radio_CameraON->toolTip(), why);
        QCOMPARE(ui.Radio_CameraOFF->toolTip(), why);

        // Switched for real, then refused the other way: back to the switched state.
        button->click();
        t.fake.switches->answerNo(1, value, QString());
        (value ? ui.Radio_CameraOFF : ui.Radio_CameraON)->click();
        t.fake.switches->answerNo(1, 1 - value, why);
        QVERIFY(button->isChecked());
    }

    // The camera is switched as stored at once, the latency fix starts with the program, and
    // the key blocker comes back on the first tick only.
    void storedChoicesComeBackAtStart_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<bool>("on");
        QTest::newRow("on") << QVariant(1) << true;
        QTest::newRow("off") << QVariant(0) << false;
        QTest::newRow("missing") << QVariant() << false;
    }

    void storedChoicesComeBackAtStart()
    {
        QFETCH(QVariant, stored);
        QFETCH(bool, on);
        TestWindow t;
        if (stored.isValid()) {
            for (const char *key : {keys::camera, keys::latency, keys::disableWindowsKey})
                t.setGeneral(key, stored);
        }
        MainWindow w(t.fake.bundle());
        Ui::MainWindow &ui = *w.form();
        QCOMPARE(t.fake.log->withPrefix(QStringLiteral("switch ")),
                 QStringList({QStringLiteral("switch 1 = %1").arg(on ? 1 : 0)}));
        QCOMPARE((QList<bool>{ui.Radio_CameraON->isChecked(), ui.Radio_CameraOFF->isChecked(),
                              ui.Radio_WifiON->isChecked(), ui.Radio_WifiOFF->isChecked(),
                              ui.Check_DisableWinKey->isChecked()}),
                 (QList<bool>{on, !on, on, !on, on}));
        QCOMPARE(t.fake.log->withPrefix(QStringLiteral("start: LatencyFix")),
                 on ? QStringList{"start: LatencyFix.exe"} : QStringList());
        QCOMPARE(t.fake.log->withPrefix(QStringLiteral("key blocker")), QStringList());
        w.timerDone();
        w.timerDone();
        QCOMPARE(t.fake.log->withPrefix(QStringLiteral("key blocker")),
                 on ? QStringList{"key blocker install"} : QStringList());
    }

    // The radios follow the stored preference; clicking the other one then runs its steps in
    // order: off disables the device first, on enables it last.
    void touchpadRadiosFollowThePreference_data()
    {
        QTest::addColumn<QVariant>("enabled");
        QTest::addColumn<QStringList>("otherClicked");
        const QString devcon = QStringLiteral("run: devcon.exe %1 \"@") + kInstance + '"';
        const QString registry = "registry set: " + kTouchpadKey + " Enabled = %1";
        const QStringList toOn{"switch 3 = 1", registry.arg(1), devcon.arg("enable")};
        QTest::newRow("missing") << QVariant() << toOn;
        QTest::newRow("0") << QVariant(0) << toOn;
        QTest::newRow("1") << QVariant(1)
                           << QStringList{devcon.arg("disable"), registry.arg(0), "switch 3 = 0"};
    }

    void touchpadRadiosFollowThePreference()
    {
        QFETCH(QVariant, enabled);
        const bool on = enabled.toInt() == 1;
        TestWindow t;
        t.start();
        Ui::MainWindow &ui = t.ui();
        QRadioButton *other = on ? ui.Radio_TouchpadOFF : ui.Radio_TouchpadON;
        other->setChecked(true); // so that the refresh has to move the radios
        if (enabled.isValid())
            t.fake.registry->values.insert(kTouchpadKey + QStringLiteral("|Enabled"), enabled);
        t.window->timerDone();
        QCOMPARE(ui.Radio_TouchpadON->isChecked(), on);
        QCOMPARE(ui.Radio_TouchpadOFF->isChecked(), !on);
        t.fake.log->clear();
        other->click();
        QTEST(t.fake.log->entries, "otherClicked");
    }

    void buttonsBoxSlidersAndVolume()
    {
        TestWindow t;
        t.start();
        Ui::MainWindow &ui = t.ui();
        ui.Radio_WifiON->click();
        QCOMPARE(t.generalValue(keys::latency).toInt(), 1);
        ui.Radio_WifiOFF->click();
        QCOMPARE(t.generalValue(keys::latency).toInt(), 0);
        ui.Button_WifiSettings->click();
        ui.Button_Camera->click();
        ui.Button_TouchpadSettings->click();
        ui.Button_SoundSettings->click();
        ui.Check_DisableWinKey->click();
        QCOMPARE(t.generalValue(keys::disableWindowsKey).toInt(), 1);
        ui.Check_DisableWinKey->click();
        QCOMPARE(t.generalValue(keys::disableWindowsKey).toInt(), 0);
        QCOMPARE(ui.Slider_SecondBRight->value(), 100);
        ui.Slider_SecondBRight->setValue(55);
        ui.Slider_SecondBRight->setValue(1);
        QCOMPARE(
            t.fake.log->entries,
            QStringList({"shown 1: LatencyFix.exe", "shown 1: explorer microsoft.windows.camera:",
                         "shown 1: explorer ms-settings:devices-touchpad",
                         "shown 1: explorer ms-settings:sound", "key blocker install",
                         "key blocker uninstall", "vcp 16 = 55", "vcp 16 = 1"}));
        QCOMPARE(t.fake.monitors->lastWindow, static_cast<quintptr>(t.window->winId()));

        // The volume slider and the mute box write to the device; without one, both are disabled.
        t.fake.log->clear();
        ui.Slider_Volume->setValue(64);
        QCOMPARE(ui.Label_Volume->text(), QStringLiteral("Volume: 64%"));
        ui.CheckBox_MuteVolume->click();
        QVERIFY(!ui.Slider_Volume->isEnabled());
        QCOMPARE(ui.Label_Volume->text(), QStringLiteral("Volume: muted"));
        t.fake.audio->level = 0.9f; // changed elsewhere meanwhile
        ui.CheckBox_MuteVolume->click();
        QVERIFY(ui.Slider_Volume->isEnabled());
        QCOMPARE(ui.Label_Volume->text(), QStringLiteral("Volume: 64%"));
        QCOMPARE(t.fake.log->entries,
                 QStringList({"audio 2 0.64 0", "audio 3 0 1", "audio 3 0 0"}));

        for (bool has : {false, true}) {
            t.fake.audio->hasDevice = has;
            t.fake.audio->deviceName = has ? QStringLiteral("Speakers") : "No Audio Device";
            t.window->timerDone();
            QCOMPARE(ui.Label_audio_out->text(), t.fake.audio->deviceName);
            QCOMPARE(ui.Slider_Volume->isEnabled(), has);
            QCOMPARE(ui.CheckBox_MuteVolume->isEnabled(), has);
        }
    }

    void refreshShowsTheDevice_data()
    {
        QTest::addColumn<bool>("hasDevice");
        QTest::addColumn<float>("level");
        QTest::addColumn<bool>("muted");
        QTest::addColumn<int>("slider");
        QTest::addColumn<QString>("label");
        QTest::addColumn<bool>("boxChecked");
        QTest::addColumn<bool>("sliderEnabled");
        // The mute box starts checked, so that a refresh without a device visibly leaves it alone.
        QTest::newRow("audible") << true << 0.37f << false << 37 << "Volume: 37%" << false << true;
        QTest::newRow("muted") << true << 0.8f << true << 80 << "Volume: muted" << true << false;
        QTest::newRow("no device") << false << 0.8f << false << 0 << "Volume: 0%" << true << true;
    }

    void refreshShowsTheDevice()
    {
        QFETCH(bool, hasDevice);
        QFETCH(float, level);
        QFETCH(bool, muted);
        TestWindow p;
        p.fake.audio->hasDevice = false;
        p.start();
        Ui::MainWindow &ui = p.ui();
        ui.CheckBox_MuteVolume->setChecked(true);
        ui.Label_Volume->setText(QStringLiteral("Volume: 0%"));
        p.fake.audio->hasDevice = hasDevice;
        p.fake.audio->level = level;
        p.fake.audio->muted = muted;
        p.fake.log->clear();
        p.window->GetSysVolume();
        QTEST(ui.Slider_Volume->value(), "slider");
        QTEST(ui.Label_Volume->text(), "label");
        QTEST(ui.CheckBox_MuteVolume->isChecked(), "boxChecked");
        QTEST(ui.Slider_Volume->isEnabled(), "sliderEnabled");
        // Reading moves the slider without writing the level back.
        QCOMPARE(p.fake.log->entries, QStringList({"audio 1 0 0", "audio 4 0 0"}));
    }

    void disabledSyncLeavesEveryVolumeWidgetAlone()
    {
        TestWindow p;
        p.setGeneral(keys::disableAudioSync, true);
        p.setGeneral(keys::volumeHeadphones, 1);
        p.setGeneral(keys::sliderVolumeHeadphones, 20);
        p.start();
        Ui::MainWindow &ui = p.ui();
        QVERIFY(ui.Check_DisableAudio->isChecked());
        auto shown = [&] {
            return QStringList{QString::number(ui.Slider_Volume->value()), ui.Label_Volume->text(),
                               ui.Label_audio_out->text()};
        };
        const QStringList before = shown();
        p.fake.audio->level = 0.11f;
        p.fake.audio->muted = true;
        p.fake.audio->deviceName = kHeadphones;
        p.window->timerDone();
        p.window->GetSysVolume();
        QCOMPARE(p.fake.log->withPrefix(QStringLiteral("audio")), QStringList());
        QCOMPARE(shown(), before);
        QVERIFY(!ui.CheckBox_MuteVolume->isChecked());
    }

    void headphoneVolumeAppliedWhenHeadphonesAppear()
    {
        TestWindow p;
        p.setGeneral(keys::volumeHeadphones, 1);
        p.setGeneral(keys::sliderVolumeHeadphones, 30);
        p.fake.audio->level = 0.6f;
        p.start();
        Ui::MainWindow &ui = p.ui();
        QCOMPARE(ui.Label_audio_out->text(), QStringLiteral("Speakers"));
        QVERIFY(ui.Slider_HeadphoneVolume->isEnabled());
        p.fake.audio->deviceName = kHeadphones;
        p.window->timerDone();
        QCOMPARE(ui.Label_audio_out->text(), kHeadphones);
        QCOMPARE(ui.Slider_Volume->value(), 30);
        QCOMPARE(ui.Label_Volume->text(), QStringLiteral("Volume: 30%"));
        QCOMPARE(audioWrites(p.fake.log), QStringList({"audio 2 0.3 0"}));

        // While they stay plugged in, the user's own level is kept.
        ui.Slider_Volume->setValue(45);
        p.fake.log->clear();
        p.window->timerDone();
        QCOMPARE(audioWrites(p.fake.log), QStringList());
        QCOMPARE(ui.Slider_Volume->value(), 45);
        // Out and in again applies it again; unchecked, never.
        for (bool checked : {true, false}) {
            if (!checked)
                ui.Check_ApplyVolumeHeadphones->click();
            p.fake.audio->deviceName = QStringLiteral("Speakers");
            p.window->timerDone();
            p.fake.log->clear();
            p.fake.audio->deviceName = kHeadphones;
            p.window->timerDone();
            QCOMPARE(audioWrites(p.fake.log),
                     checked ? QStringList({"audio 2 0.3 0"}) : QStringList());
        }
    }

    void storedVolumesAtStartAndAfter_data()
    {
        QTest::addColumn<int>("check");
        QTest::newRow("checked") << 1;
        QTest::newRow("unchecked") << 0;
    }

    // The start volume is applied at start when checked; afterwards each stored volume follows
    // its controls without touching the device by itself.
    void storedVolumesAtStartAndAfter()
    {
        QFETCH(int, check);
        TestWindow p;
        p.setGeneral(keys::volumeStartCheck, check);
        p.setGeneral(keys::startVolumeValue, 25);
        p.setGeneral(keys::sliderVolumeHeadphones, 35);
        p.start(/*keepRecords=*/true);
        Ui::MainWindow &ui = p.ui();
        QCOMPARE(audioWrites(p.fake.log), check ? QStringList{"audio 2 0.25 0"} : QStringList());
        QCOMPARE(ui.Check_ApplyVolumeStart->isChecked(), check == 1);
        QCOMPARE(ui.Slider_StartVolume->isEnabled(), check == 1);
        QCOMPARE((QList<int>{ui.Slider_StartVolume->value(), ui.Slider_HeadphoneVolume->value()}),
                 (QList<int>{25, 35}));
        QCOMPARE(ui.Label_StartVolume->text(), QStringLiteral("25%"));
        QCOMPARE(ui.Label_HeadphoneVolume->text(), QStringLiteral("35%"));
        QVERIFY(!ui.Slider_HeadphoneVolume->isEnabled());

        p.fake.log->clear();
        ui.Check_ApplyVolumeStart->click();
        ui.Slider_StartVolume->setValue(42);
        ui.Check_ApplyVolumeHeadphones->click();
        ui.Slider_HeadphoneVolume->setValue(17);
        QCOMPARE((QList<int>{p.generalValue(keys::volumeStartCheck).toInt(),
                             p.generalValue(keys::startVolumeValue).toInt(),
                             p.generalValue(keys::volumeHeadphones).toInt(),
                             p.generalValue(keys::sliderVolumeHeadphones).toInt()}),
                 (QList<int>{1 - check, 42, 1, 17}));
        QCOMPARE(ui.Slider_StartVolume->isEnabled(), check == 0);
        QVERIFY(ui.Slider_HeadphoneVolume->isEnabled());
        QCOMPARE(ui.Label_StartVolume->text(), QStringLiteral("42%"));
        QCOMPARE(ui.Label_HeadphoneVolume->text(), QStringLiteral("17%"));
        QCOMPARE(audioWrites(p.fake.log), QStringList());
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
    // Choosing the other scheme writes the table in order, the log-on sound left silent by both.
    void refreshFollowsTheMarker()
    {
        QFETCH(QVariant, marker);
        TestWindow p;
        for (const auto &row : kEvents)
            p.fake.registry->values.insert(eventKey(row[0]) + "|Default", "ding.wav");
        if (marker.isValid())
            p.fake.registry->values.insert(kSchemes + QStringLiteral("|Default"), marker);
        p.start();
        p.window->timerDone();
        QFETCH(int, index);
        QCOMPARE(p.ui().comboBox_SoundCheme->currentIndex(), index);
        QCOMPARE(p.fake.registry->values.value(eventKey("MailBeep") + "|Default").toString(),
                 index ? QString() : "ding.wav");
        p.fake.log->clear();
        p.window->GetSoundScheme();
        QCOMPARE(p.fake.log->entries, QStringList());

        QStringList silent{setEntry(kSchemes, ".None")}, stock{setEntry(kSchemes, ".Default")};
        for (const auto &row : kEvents) {
            silent << setEntry(eventKey(row[0]), QString());
            if (row[1])
                stock << setEntry(eventKey(row[0]),
                                  QStringLiteral("C:\\WINDOWS\\media\\%1.wav").arg(row[1]));
        }
        p.ui().comboBox_SoundCheme->setCurrentIndex(1 - index);
        QCOMPARE(p.fake.log->entries, index ? stock : silent);
    }
};

QTEST_MAIN(TestDeviceTabs)
#include "tst_devicetabs.moc"
