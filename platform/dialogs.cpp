#include "dialogs.h"

#include <QFileDialog>

QMessageBox::StandardButton QtDialogs::message(QWidget *parent, QMessageBox::Icon icon,
                                               const QString &title, const QString &text,
                                               QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, title, text, buttons, parent, Qt::FramelessWindowHint);
    const int answer = box.exec();
    return static_cast<QMessageBox::StandardButton>(answer);
}

QString QtDialogs::openFileName(QWidget *parent, const QString &caption, const QString &dir,
                                const QString &filter)
{
    return QFileDialog::getOpenFileName(parent, caption, dir, filter);
}
