#include "densityfont.h"
#include "screenfit.h"

#include <QtTest>

class TestScreenFit : public QObject {
    Q_OBJECT

private slots:
    void walk_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<int>("left");
        QTest::addColumn<QRect>("expected");
        const QSize hd(1920, 1080);
        QTest::newRow("already on screen")
            << QRect(100, 100, 800, 900) << hd << 0 << QRect(100, 100, 800, 900);
        // 1075 + 900 - 1080 = 895 too low: 45 steps of 20 up to 175.
        QTest::newRow("bottom below the screen")
            << QRect(100, 1075, 800, 900) << hd << 0 << QRect(100, 175, 800, 900);
        QTest::newRow("right edge past the screen")
            << QRect(1125, 10, 800, 900) << hd << 0 << QRect(1119, 10, 800, 900);
        QTest::newRow("left of the screen")
            << QRect(-5, 10, 800, 900) << hd << 0 << QRect(1, 10, 800, 900);
        QTest::newRow("above the screen")
            << QRect(10, -7, 800, 900) << hd << 0 << QRect(10, 1, 800, 900);
        // Only the height counts vertically, not the screen's top edge.
        QTest::newRow("second screen to the right")
            << QRect(1900, 100, 800, 900) << hd << 1920 << QRect(1920, 100, 800, 900);
        QTest::newRow("taller than the screen is left alone")
            << QRect(10, 500, 800, 1200) << hd << 0 << QRect(10, 500, 800, 1200);
        // Stepping 20 up overshoots above the top; the 2-pixel steps bring it back.
        QTest::newRow("tight fit overshoot")
            << QRect(0, 15, 800, 1070) << hd << 0 << QRect(0, 1, 800, 1070);
    }

    void walk()
    {
        QFETCH(QRect, window);
        QFETCH(QSize, screen);
        QFETCH(int, left);
        QFETCH(QRect, expected);
        QCOMPARE(fitOnScreen(window, screen, left), expected);
    }

    void windowMinimum_data()
    {
        QTest::addColumn<int>("dpi");
        QTest::addColumn<QSize>("minimum");
        QTest::addColumn<QSize>("titleButtons");
        const QSize none;
        QTest::newRow("96") << 96 << QSize(800, 900) << none;
        QTest::newRow("97") << 97 << QSize(900, 980) << none;
        QTest::newRow("120") << 120 << QSize(900, 980) << none;
        QTest::newRow("121") << 121 << QSize(1000, 1150) << none;
        QTest::newRow("144") << 144 << QSize(1000, 1150) << none;
        QTest::newRow("145") << 145 << QSize(1100, 1400) << none;
        QTest::newRow("168") << 168 << QSize(1100, 1400) << none;
        QTest::newRow("169") << 169 << QSize(1300, 1500) << none;
        QTest::newRow("192") << 192 << QSize(1300, 1500) << none;
        QTest::newRow("193") << 193 << QSize(1550, 1650) << none;
        QTest::newRow("216") << 216 << QSize(1550, 1650) << none;
        QTest::newRow("217") << 217 << QSize(1550, 1700) << none;
        QTest::newRow("240") << 240 << QSize(1550, 1700) << none;
        QTest::newRow("241") << 241 << none << none;
        QTest::newRow("287") << 287 << none << none;
        QTest::newRow("288") << 288 << QSize(1900, 2000) << QSize(52, 52);
        QTest::newRow("335") << 335 << QSize(1900, 2000) << QSize(52, 52);
        QTest::newRow("336") << 336 << QSize(1900, 2000) << QSize(56, 56);
    }

    void windowMinimum()
    {
        QFETCH(int, dpi);
        QFETCH(QSize, minimum);
        QFETCH(QSize, titleButtons);
        QCOMPARE(minimumSizeForDpi(dpi), minimum);
        QCOMPARE(titleButtonSizeForDpi(dpi), titleButtons);
    }

    void fontPixels_data()
    {
        QTest::addColumn<int>("dpi");
        QTest::addColumn<int>("pixels");
        const int rows[][2] = {{72, 12},  {96, 12},  {97, 14},  {120, 14}, {121, 17}, {144, 17},
                               {145, 19}, {160, 19}, {161, 20}, {180, 20}, {181, 22}, {192, 22},
                               {193, 24}, {216, 24}, {217, 26}, {240, 26}, {241, 34}, {288, 34},
                               {289, 36}, {336, 36}, {337, 0}};
        for (const auto &row : rows)
            QTest::newRow(qPrintable(QString::number(row[0]))) << row[0] << row[1];
    }

    void fontPixels()
    {
        QFETCH(int, dpi);
        QFETCH(int, pixels);
        QCOMPARE(fontPixelSizeForDpi(dpi), pixels);
    }
};

QTEST_GUILESS_MAIN(TestScreenFit)
#include "tst_screenfit.moc"
