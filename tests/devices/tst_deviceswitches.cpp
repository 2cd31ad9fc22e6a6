#include "keys.h"
#include "testwindow.h"

#include <QtTest>

namespace {

const QString kTouchpadKey = QStringLiteral(
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\PrecisionTouchPad\\Status");
const QString kInstance =
    QStringLiteral("PCI\\VEN_8086&DEV_A368&SUBSYS_65D11558&REV_10\\3&11583659&0&A8");

} // namespace

class TestDeviceSwitches : public QObject {
    Q_OBJECT

private slots:
    void cameraRadiosSwitchEveryClick_data()
    {
        QTest::addColumn<QString>("radio");
        QTest::addColumn<int>("value");
        QTest::newRow("on") << "Radio_CameraON" << 1;
        QTest::newRow("off") << "Radio_CameraOFF" << 0;
    }

    void cameraRadiosSwitchEveryClick()
    {
        QFETCH(QString, radio);
        QFETCH(int, value);
        TestWindow t;
        t.start();
        Ui::MainWindow &ui = t.ui();
        auto *button = t.window->findChild<QRadioButton *>(radio);
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
        QTest::addColumn<bool>("on");
        QTest::addColumn<QStringList>("otherClicked");
        const QString devcon = QStringLiteral("run: devcon.exe %1 \"@") + kInstance + '"';
        const QString registry = "registry set: " + kTouchpadKey + " Enabled = %1";
        const QStringList toOn{"switch 3 = 1", registry.arg(1), devcon.arg("enable")};
        QTest::newRow("missing") << QVariant() << false << toOn;
        QTest::newRow("0") << QVariant(0) << false << toOn;
        QTest::newRow("1") << QVariant(1) << true
                           << QStringList{devcon.arg("disable"), registry.arg(0), "switch 3 = 0"};
    }

    void touchpadRadiosFollowThePreference()
    {
        QFETCH(QVariant, enabled);
        QFETCH(bool, on);
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

    void buttonsBoxAndExternalSlider()
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
        ui.Check_DisableWinKey->click();
        QVERIFY(t.fake.keyBlocker->installed);
        QCOMPARE(t.generalValue(keys::disableWindowsKey).toInt(), 1);
        ui.Check_DisableWinKey->click();
        QVERIFY(!t.fake.keyBlocker->installed);
        QCOMPARE(t.generalValue(keys::disableWindowsKey).toInt(), 0);
        QCOMPARE(ui.Slider_SecondBRight->value(), 100);
        ui.Slider_SecondBRight->setValue(55);
        ui.Slider_SecondBRight->setValue(1);
        QCOMPARE(
            t.fake.log->entries,
            QStringList({"shown 1: LatencyFix.exe", "shown 1: explorer microsoft.windows.camera:",
                         "shown 1: explorer ms-settings:devices-touchpad", "key blocker install",
                         "key blocker uninstall", "vcp 16 = 55", "vcp 16 = 1"}));
        QCOMPARE(t.fake.monitors->lastWindow, static_cast<quintptr>(t.window->winId()));
    }
};

QTEST_MAIN(TestDeviceSwitches)
#include "tst_deviceswitches.moc"
