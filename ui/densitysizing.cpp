#include "densitysizing.h"
#include "ui_mainwindow.h"

#include "screenfit.h"

#include <QMainWindow>

void applyDensityToForm(QMainWindow *window, Ui::MainWindow &form, int dpi)
{
    const QSize minimum = minimumSizeForDpi(dpi);
    if (!minimum.isValid())
        return;
    window->setMinimumSize(minimum);
    const QSize button = titleButtonSizeForDpi(dpi);
    if (button.isValid()) {
        form.minimizeButton->setFixedSize(button);
        form.closeButton->setFixedSize(button);
    }
    const int row = rowHeightForDpi(dpi);
    const QList<QWidget *> imageButtons = {form.minimizeButton, form.closeButton,
                                           form.Button_Updater, form.Button_FanControl,
                                           form.Button_KeyboardLed};
    const auto widgets = window->findChildren<QWidget *>();
    for (QWidget *w : widgets) {
        const bool isRow = w->inherits("QAbstractSlider") || w->inherits("QComboBox") ||
                           w->inherits("QAbstractButton") || w->inherits("QAbstractSpinBox");
        if (isRow && !imageButtons.contains(w))
            w->setMinimumHeight(row);
    }
    form.TopBar->setMinimumHeight(button.isValid() ? button.height() + 8 : qMax(33, row + 6));
}
