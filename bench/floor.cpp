// The floor Varnel's costs are measured against: what any tray program of its kind pays, with
// the same style and nothing else.
#include "darkstyle.h"

#include <QApplication>
#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QSettings>
#include <QSystemTrayIcon>
#include <QTabWidget>
#include <QTimer>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setStyle(new DarkStyle);

    QMainWindow window;
    auto *tabs = new QTabWidget;
    for (const char *name : {"Power", "Display", "Audio", "CPU", "GPU", "Support"})
        tabs->addTab(new QLabel(QString::fromLatin1(name)), QString::fromLatin1(name));
    window.setCentralWidget(tabs);
    window.setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    window.resize(640, 480);

    QSystemTrayIcon tray(QIcon(QStringLiteral("branding/varnel_system_tray.png")));
    QMenu menu;
    menu.addAction(QStringLiteral("Show"), &window, &QWidget::show);
    menu.addAction(QStringLiteral("Exit"), &app, &QApplication::quit);
    tray.setContextMenu(&menu);
    tray.show();

    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &window, [] {});
    tick.start(2500);

    // Hidden or shown as the program under test starts, from the same file.
    const QSettings general(QStringLiteral("settings/varnel.ini"), QSettings::IniFormat);
    if (!general.value(QStringLiteral("settings/start_hidden")).toBool())
        window.show();
    return QApplication::exec();
}
