#include "fakeplatform.h"
#include "keys.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QtTest>

namespace {

const char kGeneral[] = "settings/varnel.ini";

QStringList audioWrites(const SharedLog &log)
{
    QStringList out = log->withPrefix(QStringLiteral("audio 2 "));
    out << log->withPrefix(QStringLiteral("audio 3 "));
    return out;
}

} // namespace

class TestVolumeControl : public QObject {
    Q_OBJECT

private slots:
    void refreshShowsTheDevice_data()
    {
        QTest::addColumn<bool>("hasDevice");
        QTest::addColumn<float>("level");
        QTest::addColumn<bool>("muted");
        QTest::addColumn<int>("slider");
        QTest::addColumn<QString>("label");
        QTest::addColumn<bool>("boxChecked");
        QTest::addColumn<bool>("sliderEnabled");
        // The label starts as the form's "Volume: 0%"; the mute box starts checked below so
        // that a refresh without a device visibly leaves it alone.
        QTest::newRow("audible") << true << 0.37f << false << 37 << "Volume: 37%" << false << true;
        QTest::newRow("rounded half up")
            << true << 0.505f << false << 51 << "Volume: 51%" << false << true;
        QTest::newRow("muted") << true << 0.8f << true << 80 << "Volume: muted" << true << false;
        QTest::newRow("no device") << false << 0.8f << false << 0 << "Volume: 0%" << true << true;
    }

    void refreshShowsTheDevice()
    {
        QFETCH(bool, hasDevice);
        QFETCH(float, level);
        QFETCH(bool, muted);
        QFETCH(int, slider);
        QFETCH(QString, label);
        QFETCH(bool, boxChecked);
        QFETCH(bool, sliderEnabled);

        TestFolder folder;
        FakePlatform fake;
        fake.audio->hasDevice = false;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();
        ui->CheckBox_MuteVolume->setChecked(true);
        ui->Label_Volume->setText(QStringLiteral("Volume: 0%"));
        fake.audio->hasDevice = hasDevice;
        fake.audio->level = level;
        fake.audio->muted = muted;
        fake.log->clear();

        w.GetSysVolume();

        QCOMPARE(ui->Slider_Volume->value(), slider);
        QCOMPARE(ui->Label_Volume->text(), label);
        QCOMPARE(ui->CheckBox_MuteVolume->isChecked(), boxChecked);
        QCOMPARE(ui->Slider_Volume->isEnabled(), sliderEnabled);
        // Reading moves the slider without writing the level back.
        QCOMPARE(fake.log->entries, QStringList({"audio 1 0 0", "audio 4 0 0"}));
    }

    void sliderWritesTheLevel()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.form()->Slider_Volume->setValue(64);
        QCOMPARE(fake.log->entries, QStringList({"audio 2 0.64 0"}));
        QCOMPARE(w.form()->Label_Volume->text(), QStringLiteral("Volume: 64%"));
        QCOMPARE(fake.audio->level, 0.64f);
    }

    void muteDisablesAndUnmuteRestoresLabelFromSlider()
    {
        TestFolder folder;
        FakePlatform fake;
        fake.audio->level = 0.5f;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();
        fake.log->clear();

        ui->CheckBox_MuteVolume->click();
        QVERIFY(!ui->Slider_Volume->isEnabled());
        QCOMPARE(ui->Label_Volume->text(), QStringLiteral("Volume: muted"));
        QVERIFY(fake.audio->muted);

        fake.audio->level = 0.9f; // changed elsewhere meanwhile
        ui->CheckBox_MuteVolume->click();
        QVERIFY(ui->Slider_Volume->isEnabled());
        QCOMPARE(ui->Label_Volume->text(), QStringLiteral("Volume: 50%"));
        QVERIFY(!fake.audio->muted);
        QCOMPARE(fake.log->entries, QStringList({"audio 3 0 1", "audio 3 0 0"}));
    }

    void writesWithoutDeviceDoNothing()
    {
        TestFolder folder;
        FakePlatform fake;
        fake.audio->hasDevice = false;
        MainWindow w(fake.bundle());
        w.form()->Slider_Volume->setValue(70);
        w.form()->CheckBox_MuteVolume->click();
        QCOMPARE(fake.audio->level, 0.5f);
        QVERIFY(!fake.audio->muted);
    }

    void disabledSyncLeavesEveryVolumeWidgetAlone()
    {
        TestFolder folder;
        folder.setIni(kGeneral, keys::disableAudioSync, true);
        folder.setIni(kGeneral, keys::volumeHeadphones, 1);
        folder.setIni(kGeneral, keys::sliderVolumeHeadphones, 20);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();
        QVERIFY(ui->Check_DisableAudio->isChecked());
        const int slider = ui->Slider_Volume->value();
        const QString label = ui->Label_Volume->text();
        const QString device = ui->Label_audio_out->text();
        fake.audio->level = 0.11f;
        fake.audio->muted = true;
        fake.audio->deviceName = QStringLiteral("Realtek HD (Headphones)");
        fake.log->clear();

        w.timerDone();
        w.GetSysVolume();

        QCOMPARE(fake.log->withPrefix(QStringLiteral("audio")), QStringList());
        QCOMPARE(ui->Slider_Volume->value(), slider);
        QCOMPARE(ui->Label_Volume->text(), label);
        QCOMPARE(ui->Label_audio_out->text(), device);
        QVERIFY(!ui->CheckBox_MuteVolume->isChecked());
    }

    void headphoneVolumeAppliedWhenHeadphonesAppear()
    {
        TestFolder folder;
        folder.setIni(kGeneral, keys::volumeHeadphones, 1);
        folder.setIni(kGeneral, keys::sliderVolumeHeadphones, 30);
        FakePlatform fake;
        fake.audio->level = 0.6f;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();
        QCOMPARE(ui->Label_audio_out->text(), QStringLiteral("Speakers"));
        QVERIFY(ui->Slider_HeadphoneVolume->isEnabled());
        fake.log->clear();

        fake.audio->deviceName = QStringLiteral("Realtek HD (Headphones)");
        w.timerDone();
        QCOMPARE(ui->Label_audio_out->text(), QStringLiteral("Realtek HD (Headphones)"));
        QCOMPARE(ui->Slider_Volume->value(), 30);
        QCOMPARE(ui->Label_Volume->text(), QStringLiteral("Volume: 30%"));
        QCOMPARE(audioWrites(fake.log), QStringList({"audio 2 0.3 0"}));

        // While they stay plugged in, the user's own level is kept.
        ui->Slider_Volume->setValue(45);
        fake.log->clear();
        w.timerDone();
        QCOMPARE(audioWrites(fake.log), QStringList());
        QCOMPARE(ui->Slider_Volume->value(), 45);

        // Out and in again applies it again.
        fake.audio->deviceName = QStringLiteral("Speakers");
        w.timerDone();
        fake.audio->deviceName = QStringLiteral("Realtek HD (Headphones)");
        w.timerDone();
        QCOMPARE(audioWrites(fake.log), QStringList({"audio 2 0.3 0"}));
    }

    void headphoneVolumeNotAppliedWhenUnchecked()
    {
        TestFolder folder;
        folder.setIni(kGeneral, keys::sliderVolumeHeadphones, 30);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        fake.audio->deviceName = QStringLiteral("Headphones (USB)");
        w.timerDone();
        QCOMPARE(audioWrites(fake.log), QStringList());
        QCOMPARE(w.form()->Label_audio_out->text(), QStringLiteral("Headphones (USB)"));
    }

    void noDeviceDisablesTheVolumeControls()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();
        fake.audio->hasDevice = false;
        fake.audio->deviceName = QStringLiteral("No Audio Device");
        w.timerDone();
        QCOMPARE(ui->Label_audio_out->text(), QStringLiteral("No Audio Device"));
        QVERIFY(!ui->Slider_Volume->isEnabled());
        QVERIFY(!ui->CheckBox_MuteVolume->isEnabled());

        fake.audio->hasDevice = true;
        fake.audio->deviceName = QStringLiteral("Speakers");
        w.timerDone();
        QVERIFY(ui->Slider_Volume->isEnabled());
        QVERIFY(ui->CheckBox_MuteVolume->isEnabled());
    }

    void startVolumeAppliedAtStart_data()
    {
        QTest::addColumn<int>("check");
        QTest::addColumn<QStringList>("writes");
        QTest::newRow("checked") << 1 << QStringList{"audio 2 0.25 0"};
        QTest::newRow("unchecked") << 0 << QStringList();
    }

    void startVolumeAppliedAtStart()
    {
        QFETCH(int, check);
        QFETCH(QStringList, writes);
        TestFolder folder;
        folder.setIni(kGeneral, keys::volumeStartCheck, check);
        folder.setIni(kGeneral, keys::startVolumeValue, 25);
        folder.setIni(kGeneral, keys::sliderVolumeHeadphones, 35);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();
        QCOMPARE(audioWrites(fake.log), writes);
        QCOMPARE(ui->Check_ApplyVolumeStart->isChecked(), check == 1);
        QCOMPARE(ui->Slider_StartVolume->isEnabled(), check == 1);
        QCOMPARE(ui->Slider_StartVolume->value(), 25);
        QCOMPARE(ui->Label_StartVolume->text(), QStringLiteral("25%"));
        QCOMPARE(ui->Slider_HeadphoneVolume->value(), 35);
        QCOMPARE(ui->Label_HeadphoneVolume->text(), QStringLiteral("35%"));
        QVERIFY(!ui->Slider_HeadphoneVolume->isEnabled());
    }

    void storedVolumesFollowTheirControls()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();

        ui->Check_ApplyVolumeStart->click();
        QCOMPARE(folder.ini(kGeneral, keys::volumeStartCheck).toInt(), 1);
        QVERIFY(ui->Slider_StartVolume->isEnabled());
        ui->Slider_StartVolume->setValue(42);
        QCOMPARE(folder.ini(kGeneral, keys::startVolumeValue).toInt(), 42);
        QCOMPARE(ui->Label_StartVolume->text(), QStringLiteral("42%"));
        ui->Check_ApplyVolumeStart->click();
        QCOMPARE(folder.ini(kGeneral, keys::volumeStartCheck).toInt(), 0);
        QVERIFY(!ui->Slider_StartVolume->isEnabled());

        ui->Check_ApplyVolumeHeadphones->click();
        QCOMPARE(folder.ini(kGeneral, keys::volumeHeadphones).toInt(), 1);
        QVERIFY(ui->Slider_HeadphoneVolume->isEnabled());
        ui->Slider_HeadphoneVolume->setValue(17);
        QCOMPARE(folder.ini(kGeneral, keys::sliderVolumeHeadphones).toInt(), 17);
        QCOMPARE(ui->Label_HeadphoneVolume->text(), QStringLiteral("17%"));
        // Neither stored volume touches the device by itself.
        QCOMPARE(audioWrites(fake.log), QStringList());
    }

    void soundSettingsButtonOpensThePage()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.form()->Button_SoundSettings->click();
        QCOMPARE(fake.log->entries, QStringList({"shown 1: explorer ms-settings:sound"}));
    }
};

QTEST_MAIN(TestVolumeControl)
#include "tst_volumecontrol.moc"
