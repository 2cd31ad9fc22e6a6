#include "darkstyle.h"
#include "stylesheethold.h"
#include "testwindow.h"

#include <QMenu>
#include <QtTest>

// Started hidden in the tray, the style sheet and the desktop's settings wait for the first
// window shown.
class TestHiddenStart : public QObject {
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
        rig.fake.availability->features[Feature::TouchpadSwitch] = QStringLiteral("no switch");
        rig.fake.availability->features[Feature::PanelBacklight] = QStringLiteral("no panel");
        rig.setGeneral("start_hidden", true);
        rig.start();
        rig.window->SetStyle();
        QCOMPARE(qApp->styleSheet(), QString());
        // The desktop's settings wait too; the machine's own are applied at once.
        QVERIFY(!rig.ui().PowerModeBrightSlider->isEnabled());
        QVERIFY(rig.ui().Radio_TouchpadON->isEnabled());
        // Nor are its pages laid out: a label on the first page keeps its unlaid size.
        QCOMPARE(rig.ui().Label_Brightness->geometry(), QRect(0, 0, 100, 30));
        rig.window->show();
        QVERIFY(rig.ui().Label_Brightness->width() > 100);
        rig.ui().tabWidget->setCurrentWidget(rig.ui().tab);
        QVERIFY(rig.ui().tab->layout()->isEnabled());
        QVERIFY(!StyleSheetHold::held());
        QVERIFY(qApp->styleSheet().contains(QLatin1String("#minimizeButton")));
        QVERIFY(!rig.ui().Radio_TouchpadON->isEnabled());
        QCOMPARE(rig.ui().Radio_TouchpadOFF->toolTip(), QStringLiteral("no switch"));
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

QTEST_MAIN(TestHiddenStart)
#include "tst_hiddenstart.moc"
