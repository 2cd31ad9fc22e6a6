#include "darkstyle.h"
#include "stylesheethold.h"
#include "testwindow.h"

#include <QMenu>
#include <QtTest>

// Started hidden, the style sheet waits for the first window shown, whichever it is.
class TestStyleSheetHold : public QObject {
    Q_OBJECT

    static void holdWithNoSheet()
    {
        StyleSheetHold::holdUntilShown();
        QApplication::setStyle(new DarkStyle);
        qApp->setStyleSheet(QString()); // re-polishes: held, the style sets nothing
        QCOMPARE(qApp->styleSheet(), QString());
    }

private slots:
    void heldUntilTheWindowIsShown()
    {
        holdWithNoSheet();
        TestWindow rig;
        rig.start();
        rig.window->SetStyle();
        QCOMPARE(qApp->styleSheet(), QString());
        rig.window->show();
        QVERIFY(!StyleSheetHold::held());
        QVERIFY(qApp->styleSheet().contains(QLatin1String("#minimizeButton")));
    }

    // The tray menu or a message box can be the first window shown.
    void heldUntilAnyWindowIsShown()
    {
        holdWithNoSheet();
        QWidget child;
        QWidget inner(&child);
        inner.show();
        QVERIFY(StyleSheetHold::held());
        QMenu menu;
        menu.addAction(QStringLiteral("Exit"));
        menu.show();
        QVERIFY(!StyleSheetHold::held());
        QVERIFY(!qApp->styleSheet().isEmpty());
    }

    void unheldStyleSetsTheSheet()
    {
        qApp->setStyleSheet(QString()); // the style sets it again at once
        QVERIFY(qApp->styleSheet().contains(QLatin1String("#minimizeButton")));
        QApplication::setStyle(new DarkStyle);
        QVERIFY(qApp->styleSheet().contains(QLatin1String("#minimizeButton")));
    }
};

QTEST_MAIN(TestStyleSheetHold)
#include "tst_stylesheethold.moc"
