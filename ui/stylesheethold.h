#pragma once

#include <QObject>

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
