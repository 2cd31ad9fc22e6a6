#pragma once

#include <QString>

class QComboBox;
class QTabWidget;
class QWidget;

// Disables a control for good and shows why as its tool tip. The subsystems enable and
// disable their controls as their own state changes; a control held here stays disabled
// through all of that. An empty reason leaves the control alone.
void holdUnavailable(QWidget *control, const QString &why);

// The same for one entry of a combo box.
void holdItemUnavailable(QComboBox *combo, int index, const QString &why);

// A tab works when it is enabled and its page has at least one enabled input control.
bool tabWorks(const QTabWidget &tabs, int index);
// The first tab that works, or -1.
int firstWorkingTab(const QTabWidget &tabs);
