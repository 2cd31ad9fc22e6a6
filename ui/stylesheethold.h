#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

// Started hidden in the tray, the program holds the application style sheet back until its
// first window is shown: polishing every control of a window nobody looks at was most of the
// start-up work, and a program started at log-on may never be opened.
class StyleSheetHold : public QObject {
public:
    // From now until a window is shown (or release() is called), the sheet is not set.
    static void holdUntilShown();
    static bool held();
    // Sets the held sheet, once; nothing when nothing is held.
    static void release();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

// Sets the resource style sheet as the application's, read as Latin-1, unless it already is.
void applyDarkStyleSheet();

class QLayout;

// Started hidden, the pages of the form's tab widgets are not laid out until the window is
// first shown: laying out a page measures the text of every control on it, which loads and
// fills the font engine for a window nobody may open.
class PageLayoutHold : public QObject {
public:
    // Watches pages being put into tab widgets until stopWatching().
    PageLayoutHold();
    void stopWatching();
    // Lays the held pages out again, as the window is shown.
    void release();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QVector<QPointer<QLayout>> m_held;
};
