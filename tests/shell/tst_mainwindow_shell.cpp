#include "densitysizing.h"
#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QAction>
#include <QMenu>
#include <QScreen>
#include <QTimer>
#include <QtTest>

namespace {

QStringList menuTexts(QMenu *menu)
{
    QStringList texts;
    for (QAction *a : menu->actions())
        texts << (a->isSeparator() ? QStringLiteral("---") : a->text());
    return texts;
}

const char kGeneral[] = "settings/varnel.ini";

// Counts close events reaching a widget (the application only reports the last window
// closing from inside its event loop).
class CloseCounter : public QObject {
public:
    int closes = 0;
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Close)
            ++closes;
        return false;
    }
};

} // namespace

class TestMainWindowShell : public QObject {
    Q_OBJECT

private slots:
    void firstStartWithoutSettingsFolder()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        Ui::MainWindow *ui = w.form();
        for (QCheckBox *box :
             {ui->Check_CloseHides, ui->Check_ExitDialog, ui->Check_Startwithwindows,
              ui->Check_StartHidden, ui->Check_DisableAudio, ui->checkBox_2}) {
            QVERIFY2(!box->isChecked(), qPrintable(box->objectName()));
        }
        QCOMPARE(menuTexts(w.trayMenu()), QStringList({"---", "Show Window Center", "Exit"}));
        QVERIFY(w.generalTimer());
        QCOMPARE(w.generalTimer()->interval(), 2500);
        QVERIFY(w.generalTimer()->isActive());
        QVERIFY(!w.isHiddenToTray());
        QCOMPARE(w.windowFlags() & (Qt::Window | Qt::FramelessWindowHint),
                 Qt::Window | Qt::FramelessWindowHint);
    }

    void startUpSchedulesInOrder()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        const int apps = fake.scheduler->history.indexOf(QStringLiteral("10000 StartApps"));
        const int ts = fake.scheduler->history.indexOf(QStringLiteral("61000 tscheckstatus"));
        QVERIFY(apps >= 0);
        QVERIFY(ts > apps);
    }

    void trayMenuWithPowerModes()
    {
        TestFolder folder;
        folder.setIni(kGeneral, QStringLiteral("enable_power_modes"), true);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        QCOMPARE(menuTexts(w.trayMenu()),
                 QStringList({"Battery Mode", "Silent Mode", "Normal Mode", "Maximum Mode", "---",
                              "Show Window Center", "Exit"}));
        QCOMPARE(w.trayActions().exit->parent(), w.trayIcon());
        QVERIFY(!w.trayMenu()->parent());
    }

    void settingsBoxesRestoredAndWritten()
    {
        TestFolder folder;
        folder.setIni(kGeneral, QStringLiteral("minimize_close"), true);
        folder.setIni(kGeneral, QStringLiteral("start_hidden"), true);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        QVERIFY(w.form()->Check_CloseHides->isChecked());
        QVERIFY(w.form()->Check_StartHidden->isChecked());
        QVERIFY(w.isHiddenToTray());

        w.form()->Check_DisableAudio->click();
        QCOMPARE(folder.ini(kGeneral, QStringLiteral("disableAudioSync")).toBool(), true);
        w.form()->Check_CloseHides->click();
        QCOMPARE(folder.ini(kGeneral, QStringLiteral("minimize_close")).toBool(), false);
    }

    void exitDialogBoxIsAsymmetric()
    {
        TestFolder folder;
        folder.mkdir(QStringLiteral("settings"));
        {
            FakePlatform fake;
            MainWindow w(fake.bundle());
            w.form()->Check_ExitDialog->click();
            QCOMPARE(folder.ini(kGeneral, QStringLiteral("dontshowexitdiag")).toBool(), true);
            w.form()->Check_ExitDialog->click();
            QCOMPARE(folder.ini(kGeneral, QStringLiteral("Re-dontshowexitdiag")).toBool(), false);
            QVERIFY(folder.ini(kGeneral, QStringLiteral("Re-dontshowexitdiag")).isValid());
            QCOMPARE(folder.ini(kGeneral, QStringLiteral("dontshowexitdiag")).toBool(), true);
        }
        FakePlatform fake;
        MainWindow restarted(fake.bundle());
        QVERIFY(restarted.form()->Check_ExitDialog->isChecked());
    }

    void closeButtonWithBothBoxesHides()
    {
        TestFolder folder;
        folder.setIni(kGeneral, QStringLiteral("minimize_close"), true);
        folder.setIni(kGeneral, QStringLiteral("dontshowexitdiag"), true);
        FakePlatform fake;
        MainWindow w(fake.bundle());
        w.show();
        CloseCounter counter;
        w.installEventFilter(&counter);
        w.form()->closeButton->click();
        QVERIFY(!w.isVisible());
        QVERIFY(w.isHiddenToTray());
        QVERIFY(fake.dialogs->shown.isEmpty());
        QCOMPARE(counter.closes, 0);

        // The tray's Exit quits at once: the window comes back and closes without a question.
        w.trayActions().exit->trigger();
        QVERIFY(fake.dialogs->shown.isEmpty());
        QVERIFY(!w.isVisible());
        QCOMPARE(counter.closes, 1);
    }

    void closeQuestionsUseTheirOwnTexts()
    {
        TestFolder folder;
        FakePlatform fake;
        fake.dialogs->answers = {QMessageBox::No, QMessageBox::No, QMessageBox::Yes};
        MainWindow w(fake.bundle());
        w.show();
        w.form()->closeButton->click();
        QVERIFY(w.isVisible());
        w.systemtray_exit();
        QVERIFY(w.isVisible());
        QCOMPARE(fake.dialogs->shown.size(), 2);
        QCOMPARE(fake.dialogs->shown[0].title, QStringLiteral("Fan Control"));
        QCOMPARE(fake.dialogs->shown[0].text,
                 QStringLiteral("Are you sure you want to quit? If you do all background "
                                "functions will be terminated.\n"));
        QCOMPARE(fake.dialogs->shown[1].title, QStringLiteral("Varnel"));
        QCOMPARE(fake.dialogs->shown[1].text,
                 QStringLiteral("Are you sure you want to quit? If you do, Any background "
                                "functions will be closed.\n"));
        QCOMPARE(fake.dialogs->shown[0].icon, QMessageBox::Question);
        QCOMPARE(fake.dialogs->shown[0].buttons, QMessageBox::Yes | QMessageBox::No);

        w.form()->closeButton->click();
        QVERIFY(!w.isVisible());
    }

    void startWithWindowsRunsTheTaskCommands()
    {
        TestFolder folder;
        folder.mkdir(QStringLiteral("settings"));
        FakePlatform fake;
        MainWindow w(fake.bundle());
        fake.log->clear();
        w.form()->Check_Startwithwindows->click();
        w.form()->Check_Startwithwindows->click();
        QCOMPARE(
            fake.log->withPrefix(QStringLiteral("start: schtasks")),
            QStringList({R"(start: schtasks /create /tn "Varnrel" /XML settings\varnrel_task.xml)",
                         R"(start: schtasks /Delete /tn "Varnrel" /f)"}));
        QCOMPARE(folder.ini(kGeneral, QStringLiteral("start_with_windows")).toBool(), false);
    }

    void trayActivationToggles()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        w.show();
        w.show_hide(QSystemTrayIcon::Trigger);
        QVERIFY(w.isVisible());
        w.show_hide(QSystemTrayIcon::DoubleClick);
        QVERIFY(!w.isVisible());
        QVERIFY(w.isHiddenToTray());
        w.show_hide(QSystemTrayIcon::Unknown);
        QVERIFY(w.isVisible());
        QVERIFY(!w.isHiddenToTray());
        w.show_hide(QSystemTrayIcon::Context);
        QVERIFY(w.isVisible());
    }

    void secondStartWakesAHiddenWindow()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        w.show();
        w.show_hide(QSystemTrayIcon::DoubleClick);
        QVERIFY(!w.isVisible());
        w.wakeFromSecondStart();
        QVERIFY(w.isVisible());
        QVERIFY(!w.isMinimized());
        QVERIFY(!w.isHiddenToTray());
    }

    void shutdownSavesGeometryAndState()
    {
        TestFolder folder;
        folder.mkdir(QStringLiteral("settings"));
        FakePlatform fake;
        {
            MainWindow w(fake.bundle());
            w.setGeometry(40, 50, 1500, 1720);
            w.ShutdownQuit();
        }
        QVERIFY(
            !folder.ini(kGeneral, QStringLiteral("mainWindowGeometry")).toByteArray().isEmpty());
        QVERIFY(!folder.ini(kGeneral, QStringLiteral("mainWindowState")).toByteArray().isEmpty());
        MainWindow restored(fake.bundle());
        QCOMPARE(restored.geometry().size(), QSize(1500, 1720));
    }

    void brandingHighlightReachesThePalette_data()
    {
        QTest::addColumn<QVariantList>("parts"); // red, green, blue as written in the file
        QTest::addColumn<QColor>("highlight");
        QTest::newRow("reseller red") << QVariantList{255, 0, 0} << QColor(255, 0, 0);
        QTest::newRow("out of range, held to 0 ... 255")
            << QVariantList{300, -5, "2147483647"} << QColor(255, 0, 255);
        QTest::newRow("not a number reads as 0")
            << QVariantList{"1e300", 128, "x"} << QColor(0, 128, 0);
    }

    void brandingHighlightReachesThePalette()
    {
        QFETCH(QVariantList, parts);
        TestFolder folder;
        const QString branding = QStringLiteral("branding/varnel_branding.ini");
        folder.setIni(branding, QStringLiteral("highlightcolor_RED"), parts.at(0));
        folder.setIni(branding, QStringLiteral("highlightcolor_GREEN"), parts.at(1));
        folder.setIni(branding, QStringLiteral("highlightcolor_BLUE"), parts.at(2));
        folder.setIni(branding, QStringLiteral("appname"), QStringLiteral("Reseller Center"));
        FakePlatform fake;
        MainWindow w(fake.bundle());
        const QPalette p = QApplication::palette();
        QTEST(p.color(QPalette::Active, QPalette::Highlight), "highlight");
        QTEST(p.color(QPalette::Inactive, QPalette::Highlight), "highlight");
        QCOMPARE(p.color(QPalette::Disabled, QPalette::Highlight), QColor(80, 80, 80));
        QCOMPARE(p.color(QPalette::Active, QPalette::Window), QColor(48, 48, 48));
        QCOMPARE(w.form()->Title->text(), QStringLiteral("Reseller Center"));
    }

    void densitySizing_data()
    {
        QTest::addColumn<int>("dpi");
        QTest::addColumn<QSize>("minimum");
        QTest::addColumn<int>("button");
        QTest::newRow("96") << 96 << QSize(800, 900) << 25;
        QTest::newRow("260 keeps the form") << 260 << QSize(800, 870) << 25;
        QTest::newRow("300") << 300 << QSize(1900, 2000) << 52;
        QTest::newRow("340") << 340 << QSize(1900, 2000) << 56;
    }

    void densitySizing()
    {
        QFETCH(int, dpi);
        QFETCH(QSize, minimum);
        QFETCH(int, button);
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        // Undo what the test machine's own density did, back to the form as built.
        w.setMinimumSize(800, 870);
        w.form()->minimizeButton->setFixedSize(25, 25);
        w.form()->closeButton->setFixedSize(25, 25);
        applyDensityToForm(&w, *w.form(), dpi);
        QCOMPARE(w.minimumSize(), minimum);
        QCOMPARE(w.form()->closeButton->minimumSize(), QSize(button, button));
        if (dpi < 97)
            QCOMPARE(w.form()->Slider_Brightness->minimumHeight(), 27);
    }

    void draggingKeepsTheWindowOnScreen()
    {
        TestFolder folder;
        FakePlatform fake;
        MainWindow w(fake.bundle());
        w.setMinimumSize(100, 100);
        w.resize(300, 200);
        w.show();
        const QSize screen = w.screen()->size();
        w.move(10, 10);
        QTest::mousePress(&w, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QMouseEvent move(QEvent::MouseMove, QPointF(5, screen.height()), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&w, &move);
        QTest::mouseRelease(&w, Qt::LeftButton, Qt::NoModifier, QPoint(5, screen.height()));
        QVERIFY(w.geometry().bottom() < screen.height());
        QVERIFY(w.geometry().top() >= 0);
    }
};

QTEST_MAIN(TestMainWindowShell)
#include "tst_mainwindow_shell.moc"
