#include "unavailablecontrols.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QStandardItemModel>
#include <QTabWidget>

namespace {

class HeldDisabled : public QObject {
public:
    HeldDisabled(QWidget *control, const QString &why) : QObject(control), m_why(why) {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *control = static_cast<QWidget *>(watched);
        if (event->type() == QEvent::EnabledChange && control->isEnabled())
            control->setEnabled(false);
        else if (event->type() == QEvent::ToolTipChange && control->toolTip() != m_why)
            control->setToolTip(m_why);
        return false;
    }

private:
    QString m_why;
};

bool isInput(const QWidget *widget)
{
    return qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QAbstractSlider *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QComboBox *>(widget);
}

} // namespace

void holdUnavailable(QWidget *control, const QString &why)
{
    if (!control || why.isEmpty())
        return;
    control->setEnabled(false);
    control->setToolTip(why);
    control->installEventFilter(new HeldDisabled(control, why));
}

void holdItemUnavailable(QComboBox *combo, int index, const QString &why)
{
    auto *model = combo ? qobject_cast<QStandardItemModel *>(combo->model()) : nullptr;
    if (!model || why.isEmpty() || !model->item(index))
        return;
    QStandardItem *item = model->item(index);
    item->setEnabled(false);
    item->setToolTip(why);
}

bool tabWorks(const QTabWidget &tabs, int index)
{
    QWidget *page = tabs.widget(index);
    if (!page || !tabs.isTabEnabled(index))
        return false;
    const QList<QWidget *> children = page->findChildren<QWidget *>();
    for (const QWidget *child : children) {
        if (isInput(child) && child->isEnabled())
            return true;
    }
    return false;
}

int firstWorkingTab(const QTabWidget &tabs)
{
    for (int i = 0; i < tabs.count(); ++i) {
        if (tabWorks(tabs, i))
            return i;
    }
    return -1;
}
