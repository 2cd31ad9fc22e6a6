#include "fakeplatform.h"
#include "keys.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QtTest>

namespace {

const char kGeneral[] = "settings/varnel.ini";
const QString kTouchpadKey = QStringLiteral(
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\PrecisionTouchPad\\Status");
const QString kInstance =
    QStringLiteral("PCI\\VEN_8086&DEV_A368&SUBSYS_65D11558&REV_10\\3&11583659&0&A8");

// Only the operations of this area: commands, switches, registry, key blocker, monitors.
QStringList deviceOperations(const SharedLog &log)
{
    QStringList out;
    for (const QString &e : log->entries) {
        if (e.startsWith(QLatin1String("run: devcon")) || e.startsWith(QLatin1String("switch ")) ||
            e.startsWith(QLatin1String("registry set: ") + kTouchpadKey) ||
            e.startsWith(QLatin1String("key blocker")) || e.startsWith(QLatin1String("vcp ")) ||
            e.contains(QLatin1String("LatencyFix")) || e.startsWith(QLatin1String("shown")))
            out << e;
    }
    return out;
}

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
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        auto *button = w.findChild<QRadioButton *>(radio);
        QVERIFY(button);
        fake.log->clear();
        button->click();
        button->click(); // already checked: switches again
        const QString entry = QStringLiteral("switch 1 = %1").arg(value);
        QCOMPARE(deviceOperations(fake.log), QStringList({entry, entry}));
        QCOMPARE(folder.ini(kGeneral, keys::camera).toInt(), value);

        // Refused after the click: the radios go back to the camera's state before it (off at
        // the first start), and say why.
        const QString why = QStringLiteral("Not allowed: the camera stays as it was.");
        fake.switches->answerNo(1, value, why);
        QVERIFY(!w.form()->Radio_CameraON->isChecked());
        QVERIFY(w.form()->Radio_CameraOFF->isChecked());
        QCOMPARE(w.form()->Radio_CameraON->toolTip(), why);
        QCOMPARE(w.form()->Radio_CameraOFF->toolTip(), why);

        // Switched for real, then refused the other way: back to the switched state.
        button->click();
        fake.switches->answerNo(1, value, QString());
        QRadioButton *other = value ? w.form()->Radio_CameraOFF : w.form()->Radio_CameraON;
        other->click();
        fake.switches->answerNo(1, 1 - value, why);
        QVERIFY(button->isChecked());
    }

    void storedCameraStateIsAppliedAtStart_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("value");
        QTest::newRow("on") << QVariant(1) << 1;
        QTest::newRow("off") << QVariant(0) << 0;
        QTest::newRow("missing") << QVariant() << 0;
    }

    void storedCameraStateIsAppliedAtStart()
    {
        QFETCH(QVariant, stored);
        QFETCH(int, value);
        TestFolder folder;
        if (stored.isValid())
            folder.setIni(kGeneral, keys::camera, stored);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        QCOMPARE(fake.log->withPrefix(QStringLiteral("switch ")),
                 QStringList({QStringLiteral("switch 1 = %1").arg(value)}));
        QCOMPARE(w.form()->Radio_CameraON->isChecked(), value == 1);
        QCOMPARE(w.form()->Radio_CameraOFF->isChecked(), value == 0);
    }

    void touchpadOffDisablesTheDeviceFirst()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.form()->Radio_TouchpadOFF->click();
        QCOMPARE(deviceOperations(fake.log),
                 QStringList({"run: devcon.exe disable \"@" + kInstance + "\"",
                              "registry set: " + kTouchpadKey + " Enabled = 0", "switch 3 = 0"}));
    }

    void touchpadOnEnablesTheDeviceLast()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.form()->Radio_TouchpadON->click();
        QCOMPARE(deviceOperations(fake.log),
                 QStringList({"switch 3 = 1", "registry set: " + kTouchpadKey + " Enabled = 1",
                              "run: devcon.exe enable \"@" + kInstance + "\""}));
    }

    void touchpadRadiosFollowThePreference_data()
    {
        QTest::addColumn<QVariant>("enabled");
        QTest::addColumn<bool>("on");
        QTest::newRow("missing") << QVariant() << false;
        QTest::newRow("0") << QVariant(0) << false;
        QTest::newRow("1") << QVariant(1) << true;
    }

    void touchpadRadiosFollowThePreference()
    {
        QFETCH(QVariant, enabled);
        QFETCH(bool, on);
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        // The opposite first, so the refresh has to move the radios.
        (on ? w.form()->Radio_TouchpadOFF : w.form()->Radio_TouchpadON)->setChecked(true);
        if (enabled.isValid())
            fake.registry->values.insert(kTouchpadKey + QStringLiteral("|Enabled"), enabled);
        w.timerDone();
        QCOMPARE(w.form()->Radio_TouchpadON->isChecked(), on);
        QCOMPARE(w.form()->Radio_TouchpadOFF->isChecked(), !on);
    }

    void latencyFixChoiceAndButton()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        QVERIFY(w.form()->Radio_WifiOFF->isChecked());
        QVERIFY(!fake.log->entries.join(QLatin1Char('\n')).contains(QLatin1String("LatencyFix")));
        w.form()->Radio_WifiON->click();
        QCOMPARE(folder.ini(kGeneral, keys::latency).toInt(), 1);
        w.form()->Radio_WifiOFF->click();
        QCOMPARE(folder.ini(kGeneral, keys::latency).toInt(), 0);
        fake.log->clear();
        w.form()->Button_WifiSettings->click();
        QCOMPARE(fake.log->entries, QStringList({"shown 1: LatencyFix.exe"}));
    }

    void latencyFixStartsWithTheProgramWhenChosen()
    {
        TestFolder folder;
        folder.setIni(kGeneral, keys::latency, 1);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        QVERIFY(w.form()->Radio_WifiON->isChecked());
        QCOMPARE(fake.log->withPrefix(QStringLiteral("start: LatencyFix")),
                 QStringList({"start: LatencyFix.exe"}));
    }

    void shortcutButtonsOpenTheirPages()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.form()->Button_Camera->click();
        w.form()->Button_TouchpadSettings->click();
        QCOMPARE(fake.log->entries,
                 QStringList({"shown 1: explorer microsoft.windows.camera:",
                              "shown 1: explorer ms-settings:devices-touchpad"}));
    }

    void windowsKeyBlockerFollowsItsBox()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.form()->Check_DisableWinKey->click();
        QVERIFY(fake.keyBlocker->installed);
        QCOMPARE(folder.ini(kGeneral, keys::disableWindowsKey).toInt(), 1);
        w.form()->Check_DisableWinKey->click();
        QVERIFY(!fake.keyBlocker->installed);
        QCOMPARE(folder.ini(kGeneral, keys::disableWindowsKey).toInt(), 0);
        QCOMPARE(deviceOperations(fake.log),
                 QStringList({"key blocker install", "key blocker uninstall"}));
    }

    void storedBlockerComesBackOnTheFirstTickOnly_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<QStringList>("operations");
        QTest::newRow("on") << 1 << QStringList{"key blocker install"};
        QTest::newRow("off") << 0 << QStringList();
    }

    void storedBlockerComesBackOnTheFirstTickOnly()
    {
        QFETCH(int, stored);
        QFETCH(QStringList, operations);
        TestFolder folder;
        folder.setIni(kGeneral, keys::disableWindowsKey, stored);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        QCOMPARE(w.form()->Check_DisableWinKey->isChecked(), stored == 1);
        QCOMPARE(fake.log->withPrefix(QStringLiteral("key blocker")), QStringList());
        w.timerDone();
        w.timerDone();
        QCOMPARE(fake.log->withPrefix(QStringLiteral("key blocker")), operations);
    }

    void externalSliderSetsLuminance()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        QCOMPARE(w.form()->Slider_SecondBRight->value(), 100);
        fake.log->clear();
        w.form()->Slider_SecondBRight->setValue(55);
        w.form()->Slider_SecondBRight->setValue(1);
        QCOMPARE(fake.log->entries, QStringList({"vcp 16 = 55", "vcp 16 = 1"}));
        QCOMPARE(fake.monitors->lastWindow, static_cast<quintptr>(w.winId()));
    }
};

QTEST_MAIN(TestDeviceSwitches)
#include "tst_deviceswitches.moc"
