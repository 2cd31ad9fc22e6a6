#include "stylesheethold.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QWidget>

namespace {

StyleSheetHold *g_hold = nullptr;

} // namespace

void applyDarkStyleSheet()
{
    QFile sheet(QStringLiteral(":/darkstyle/darkstyle.qss"));
    if (!sheet.open(QFile::ReadOnly | QFile::Text))
        return;
    const QString text = QLatin1String(sheet.readAll());
    if (qApp->styleSheet() != text)
        qApp->setStyleSheet(text);
}

void StyleSheetHold::holdUntilShown()
{
    if (g_hold)
        return;
    g_hold = new StyleSheetHold;
    qApp->installEventFilter(g_hold);
}

bool StyleSheetHold::held()
{
    return g_hold != nullptr;
}

void StyleSheetHold::release()
{
    if (!g_hold)
        return;
    qApp->removeEventFilter(g_hold);
    g_hold->deleteLater();
    g_hold = nullptr;
    applyDarkStyleSheet();
}

bool StyleSheetHold::eventFilter(QObject *watched, QEvent *event)
{
    // A tray menu, a message box or a desktop widget shown while the main window is hidden.
    if (event->type() == QEvent::Show && watched->isWidgetType() &&
        static_cast<QWidget *>(watched)->isWindow())
        release();
    return false;
}
