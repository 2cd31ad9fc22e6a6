#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "brightness.h"
#include "commandrunner.h"
#include "darkstyle.h"
#include "densitysizing.h"
#include "dialogs.h"
#include "keys.h"
#include "scheduler.h"
#include "screenfit.h"
#include "stylesheethold.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopWidget>
#include <QFile>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QStyle>
#include <QTextStream>
#include <QTimer>

#include <cstdio>

namespace {

const char kStyleSheet[] = ":/darkstyle/darkstyle.qss";

int desktopLogicalDpi()
{
    return QApplication::desktop()->logicalDpiX();
}

} // namespace

MainWindow::MainWindow(Platform platform, QWidget *parent)
    : QMainWindow(parent), ui(new Ui::MainWindow), m_platform(std::move(platform))
{
    // The application font grows by one point; a pixel-sized font (from the density table)
    // reads -1 here and the framework refuses the 0 that results, which is accepted.
    QFont font = QApplication::font();
    if (font.pointSize() > 0) {
        font.setPointSize(font.pointSize() + 1);
        QApplication::setFont(font);
    }

    initDarkStyleResources();
    if (!StyleSheetHold::held())
        applyDarkStyleSheet();

    applyPalette();

    m_logicalDpi = desktopLogicalDpi();
    if (StyleSheetHold::held())
        m_pageLayoutHold = std::make_unique<PageLayoutHold>();
    ui->setupUi(this);
    if (m_pageLayoutHold)
        m_pageLayoutHold->stopWatching();

    createPowerModes();
    createDisplay();
    createAudio();
    createSuite();

    m_logicalDpi = desktopLogicalDpi();
    createCpuTuning();

    SetStyle();
    applyDensitySizing();
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    applyBrandingTitle();

    createMonitoring();
    GetBrightness();

    if (m_platform.brightness && m_platform.brightness->providerInstalled())
        LoadSettings();
    else
        installmof();

    m_hidden = m_settings.general().value(keys::startHidden).toBool();
    applyAvailability();
    m_platform.scheduler->singleShot(61000, this, "tscheckstatus");
    startStatusPublisher();
}

MainWindow::~MainWindow()
{
    delete ui;
}

void MainWindow::applyPalette()
{
    const SettingsFile branding = m_settings.branding();
    QApplication::setPalette(DarkStyle::darkPalette(DarkStyle::brandingHighlight(branding)));
}

void MainWindow::SetStyle()
{
    if (StyleSheetHold::held())
        return;
    QFile sheet(QString::fromLatin1(kStyleSheet));
    if (!sheet.exists()) {
        std::fputs("Unable to set stylesheet, file not found\n", stdout);
        std::fflush(stdout);
        return;
    }
    if (!sheet.open(QFile::ReadOnly | QFile::Text))
        return;
    QTextStream stream(&sheet);
    const QString text = stream.readAll();
    // Already in force from before the form was built: setting it again would re-polish every
    // widget, which was most of the start-up work.
    if (qApp->styleSheet() != text)
        qApp->setStyleSheet(text);
}

void MainWindow::applyDensitySizing()
{
    applyDensityToForm(this, *ui, m_logicalDpi);
}

void MainWindow::LoadSettings()
{
    const SettingsFile general = m_settings.general();

    // 1
    restoreGeometry(general.value(keys::mainWindowGeometry).toByteArray());
    keepOnScreen();
    restoreState(general.value(keys::mainWindowState).toByteArray());
    // 2
    ui->Check_CloseHides->setChecked(general.value(keys::minimizeClose).toBool());
    ui->Check_StartHidden->setChecked(general.value(keys::startHidden).toBool());
    ui->Check_Startwithwindows->setChecked(general.value(keys::startWithWindows).toBool());
    ui->Check_ExitDialog->setChecked(general.value(keys::dontShowExitDialog).toBool());
    // 3
    systraypowermodes();
    // 4
    loadSupportTexts();
    // 5, 6
    loadCamera();
    loadLatencyFix();
    // 7
    loadWindowsKey();
    ui->Check_DisableAudio->setChecked(general.value(keys::disableAudioSync).toBool());
    // 8, 9
    loadVolumes();
    loadAdaptiveBrightness();
    // 10
    SetAppVersion();
    tscheckstatus();
    // 11 to 19
    loadWidgetSettings();
    loadThrottleStopTask();
    loadHeadphoneFix();
    loadPreventXtu();
    loadTweaks();
    loadReApply();
    loadPowerModeSwitch();
    loadBrightFix();
    loadAutoBatteryMode();
    // 20
    m_platform.scheduler->singleShot(10000, this, "StartApps");
    // 21
    identifyCpu();
    // 22
    m_generalTimer = new QTimer(this);
    connect(m_generalTimer, &QTimer::timeout, this, &MainWindow::timerDone);
    m_generalTimer->start(2500);
}

void MainWindow::systraypowermodes()
{
    m_trayIcon = new QSystemTrayIcon(this);
    m_trayIcon->setIcon(QIcon(QStringLiteral("branding/varnel_system_tray.png")));
    m_trayIcon->setToolTip(ui->Title->text());
    m_trayIcon->setVisible(true);
    connect(m_trayIcon, &QSystemTrayIcon::activated, this, &MainWindow::show_hide);

    auto action = [this](const QString &text, void (MainWindow::*slot)()) {
        auto *a = new QAction(text, m_trayIcon);
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    m_tray.exit = action(QStringLiteral("Exit"), &MainWindow::systemtray_exit);
    m_tray.battery = action(QStringLiteral("Battery Mode"), &MainWindow::on_battery_mode_clicked);
    m_tray.silent = action(QStringLiteral("Silent Mode"), &MainWindow::on_silent_mode_clicked);
    m_tray.normal = action(QStringLiteral("Normal Mode"), &MainWindow::on_normal_mode_clicked);
    m_tray.maximum = action(QStringLiteral("Maximum Mode"), &MainWindow::on_maximum_mode_clicked);
    m_tray.showCenter = action(QStringLiteral("Show Window Center"), &MainWindow::center_window);

    // The menu has no parent, as the tray expects; the window deletes it.
    m_trayMenu = new QMenu();
    connect(this, &QObject::destroyed, m_trayMenu, &QObject::deleteLater);
    if (m_settings.general().value(keys::enablePowerModes).toBool()) {
        m_trayMenu->addAction(m_tray.battery);
        m_trayMenu->addAction(m_tray.silent);
        m_trayMenu->addAction(m_tray.normal);
        m_trayMenu->addAction(m_tray.maximum);
    }
    m_trayMenu->addSeparator();
    m_trayMenu->addAction(m_tray.showCenter);
    m_trayMenu->addAction(m_tray.exit);
    m_trayIcon->setContextMenu(m_trayMenu);
}

void MainWindow::show_hide(QSystemTrayIcon::ActivationReason reason)
{
    if (reason != QSystemTrayIcon::Unknown && reason != QSystemTrayIcon::DoubleClick)
        return;
    if (isVisible()) {
        hide();
        m_hidden = true;
        return;
    }
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
    showNormal();
    activateWindow();
    m_hidden = false;
    keepOnScreen();
}

void MainWindow::center_window()
{
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    setGeometry(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size(), available));
    raise();
    setFocus(Qt::OtherFocusReason);
    showNormal();
    activateWindow();
}

void MainWindow::wakeFromSecondStart()
{
    raise();
    show();
    showNormal();
    activateWindow();
    setFocus(Qt::OtherFocusReason);
    // The window is visible again, so the periodic refresh must run again too.
    m_hidden = false;
}

void MainWindow::keepOnScreen()
{
    QScreen *where = screen();
    if (!where)
        return;
    const QRect current = geometry();
    const QRect fitted = fitOnScreen(current, where->size(), where->geometry().left());
    if (fitted != current)
        setGeometry(fitted);
}

void MainWindow::on_minimizeButton_clicked()
{
    showMinimized();
}

void MainWindow::on_closeButton_clicked()
{
    if (ui->Check_CloseHides->isChecked()) {
        hide();
        m_hidden = true;
        return;
    }
    if (ui->Check_ExitDialog->isChecked()) {
        close();
        return;
    }
    const auto answer = m_platform.dialogs->message(
        this, QMessageBox::Question, QStringLiteral("Fan Control"),
        QStringLiteral("Are you sure you want to quit? If you do all background functions will "
                       "be terminated.\n"),
        QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes)
        close();
}

void MainWindow::systemtray_exit()
{
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
    activateWindow();
    if (ui->Check_ExitDialog->isChecked()) {
        close();
        return;
    }
    const auto answer = m_platform.dialogs->message(
        this, QMessageBox::Question, QStringLiteral("Varnel"),
        QStringLiteral("Are you sure you want to quit? If you do, Any background functions will "
                       "be closed.\n"),
        QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes)
        close();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    close();
    event->accept();
}

void MainWindow::ShutdownQuit()
{
    const SettingsFile general = m_settings.general();
    general.setValue(keys::mainWindowGeometry, saveGeometry());
    general.setValue(keys::mainWindowState, saveState(0));
}

void MainWindow::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressPosition = event->pos();
        m_dragging = true;
    }
}

void MainWindow::mouseMoveEvent(QMouseEvent *event)
{
    if ((event->buttons() & Qt::LeftButton) && m_dragging)
        move(pos() - m_pressPosition + event->pos());
}

void MainWindow::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_dragging = false;
        keepOnScreen();
    }
}

void MainWindow::on_Check_CloseHides_clicked()
{
    m_settings.general().setValue(keys::minimizeClose, ui->Check_CloseHides->isChecked());
}

void MainWindow::on_Check_StartHidden_clicked()
{
    m_settings.general().setValue(keys::startHidden, ui->Check_StartHidden->isChecked());
}

void MainWindow::on_Check_DisableAudio_clicked()
{
    m_settings.general().setValue(keys::disableAudioSync, ui->Check_DisableAudio->isChecked());
}

void MainWindow::on_Check_ExitDialog_clicked()
{
    // Only ever written true; unchecking writes a different key, so the box comes back
    // checked after a restart. Kept that way on purpose.
    if (ui->Check_ExitDialog->isChecked())
        m_settings.general().setValue(keys::dontShowExitDialog, true);
    else
        m_settings.general().setValue(keys::reDontShowExitDialog, false);
}

void MainWindow::on_Check_Startwithwindows_clicked()
{
    const bool checked = ui->Check_Startwithwindows->isChecked();
    m_settings.general().setValue(keys::startWithWindows, checked);
    m_platform.commands->start(
        checked ? QStringLiteral(R"(schtasks /create /tn "Varnrel" /XML settings\varnrel_task.xml)")
                : QStringLiteral(R"(schtasks /Delete /tn "Varnrel" /f)"));
}

void MainWindow::timerDone()
{
    autoBatteryModeTick();
    if (!isMinimized() && !m_hidden) {
        GetSoundScheme();
        GetTouchpad();
        GetSysVolume();
        GetBrightness();
        refreshAudioDevice();
    }
    if (!m_keyHookStepDone) {
        installKeyHookOnce();
        m_keyHookStepDone = true;
    }
}
