#include "darkstyle.h"
#include "densityfont.h"
#include "keys.h"
#include "mainwindow.h"
#include "platform.h"
#include "settingsfiles.h"
#include "singleapplication.h"
#include "stylesheethold.h"

#include <QDesktopWidget>
#include <QDir>
#include <QLoggingCategory>

#include <limits>

namespace {

void applyDensityFont()
{
    const int pixels = fontPixelSizeForDpi(QApplication::desktop()->logicalDpiX());
    if (pixels == 0)
        return;
    QFont font = QApplication::font();
    font.setPixelSize(pixels);
    QApplication::setFont(font);
}

} // namespace

int main(int argc, char *argv[])
{
    // The program's own diagnostics stay quiet unless QT_LOGGING_RULES asks for them.
    QLoggingCategory::setFilterRules(QStringLiteral("varnel.*.debug=false"));
    // The network stack would list every network interface every ten seconds for as long as
    // the program runs, for an update check that asks once: the longest interval it takes.
    if (!qEnvironmentVariableIsSet("QT_BEARER_POLL_TIMEOUT"))
        qputenv("QT_BEARER_POLL_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    SingleApplication app(argc, argv, false, 1, 100);
    applyDensityFont();
    QApplication::setOrganizationDomain(QStringLiteral("TALVERON-PC"));
    QApplication::setOrganizationName(QStringLiteral("TALVERON-PC"));
    QApplication::setApplicationName(QStringLiteral("Varnel"));
    QApplication::setApplicationVersion(QStringLiteral("1.4.4"));
    QDir::setCurrent(nativeWorkingFolder());
    auto *general = new SettingsFile(SettingsFileSet().general);
    const bool startHidden = general->value(QString::fromLatin1(keys::startHidden)).toBool();
    if (startHidden)
        StyleSheetHold::holdUntilShown();
    QApplication::setStyle(new DarkStyle);

    auto *window = new MainWindow();
    QObject::connect(&app, &QApplication::aboutToQuit, window, &MainWindow::ShutdownQuit);
    QObject::connect(&app, &SingleApplication::instanceStarted, window,
                     &MainWindow::wakeFromSecondStart);

    // Started hidden, the window is only created, unmapped, as showing and hiding it left it:
    // showing it first flashed it on screen and laid out every control before anybody looked.
    if (startHidden) {
        window->winId();
    } else {
        window->show();
        window->raise();
        window->setFocus(Qt::OtherFocusReason);
        window->activateWindow();
    }

    const int status = QApplication::exec();
    delete general;
    delete window;
    return status;
}
