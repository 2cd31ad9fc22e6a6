#include "stylesheethold.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QLayout>
#include <QStackedWidget>
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

PageLayoutHold::PageLayoutHold()
{
    qApp->installEventFilter(this);
}

void PageLayoutHold::stopWatching()
{
    qApp->removeEventFilter(this);
}

void PageLayoutHold::release()
{
    stopWatching();
    for (const QPointer<QLayout> &layout : qAsConst(m_held)) {
        if (layout)
            layout->setEnabled(true);
    }
    m_held.clear();
}

bool PageLayoutHold::eventFilter(QObject *watched, QEvent *event)
{
    // A page is handed to its tab widget's stack before the stack shows (and lays out) it.
    if (event->type() == QEvent::ParentChange && watched->isWidgetType()) {
        auto *page = static_cast<QWidget *>(watched);
        QLayout *layout = page->layout();
        if (layout && layout->isEnabled() && qobject_cast<QStackedWidget *>(page->parentWidget())) {
            layout->setEnabled(false);
            m_held.append(layout);
        }
    }
    return false;
}
