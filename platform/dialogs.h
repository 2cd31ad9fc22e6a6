#pragma once

#include <QMessageBox>
#include <QString>

// Modal dialogs, behind a seam so tests can answer them.
class Dialogs {
public:
    virtual ~Dialogs() = default;
    // A modal, frameless message box parented to parent; returns the button pressed.
    virtual QMessageBox::StandardButton message(QWidget *parent, QMessageBox::Icon icon,
                                                const QString &title, const QString &text,
                                                QMessageBox::StandardButtons buttons) = 0;
    // The platform's open-file dialog; empty when cancelled.
    virtual QString openFileName(QWidget *parent, const QString &caption, const QString &dir,
                                 const QString &filter) = 0;
};

class QtDialogs : public Dialogs {
public:
    QMessageBox::StandardButton message(QWidget *parent, QMessageBox::Icon icon,
                                        const QString &title, const QString &text,
                                        QMessageBox::StandardButtons buttons) override;
    QString openFileName(QWidget *parent, const QString &caption, const QString &dir,
                         const QString &filter) override;
};
