#include "versioncompare.h"

#include <QtTest>

class TestVersionCompare : public QObject {
    Q_OBJECT

private slots:
    void ranksVersions_data()
    {
        QTest::addColumn<QString>("installed");
        QTest::addColumn<QString>("latest");
        QTest::addColumn<int>("expected");
        auto row = [](const char *name, const char *installed, const char *latest, int expected) {
            QTest::newRow(name) << QString(installed) << QString(latest) << expected;
        };
        row("equal", "2.3.1", "2.3.1", 0);
        row("update offered", "2.3", "2.3.1", -1);
        row("beta tester", "2.4", "2.3.9", 1);
        row("fewer parts rank lower", "1.2", "1.2.0", -1);
        row("more parts rank higher", "1.2.0", "1.2", 1);
        row("numbers, not text: 1.10 above 1.9", "1.10", "1.9", 1);
        row("first difference decides", "1.4.4", "3.0.0", -2);
        row("difference is the size of the step", "1.9.1", "1.4.7", 5);
        row("empty latest is one part, 0", "1.0", "", 1);
        row("empty latest against version 0", "0", "", 0);
        row("non-numeric part counts as 0", "1.beta", "1.0", 0);
        row("non-numeric against a number", "1.rc1", "1.1", -1);
        row("html error page", "1.4.4", "<html>404</html>", 1);
        row("empty parts are kept", "1..2", "1.0.2", 0);
        row("trailing line break still a number", "1.4.4", "1.4.4\n", 0);
        row("leading zeros", "1.04", "1.4", 0);
        // The difference of the parts does not fit an int: bounded, never turned into an update.
        row("lowest int as latest", "1.4.4", "-2147483648", 2147483647);
        row("lowest int as installed", "-2147483648", "1", -2147483647 - 1);
    }

    void ranksVersions()
    {
        QFETCH(QString, installed);
        QFETCH(QString, latest);
        QTEST(compareVersions(installed, latest), "expected");
    }

    void versionFromAnswer_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("version");
        QTest::newRow("version") << QByteArray("1.4.5") << "1.4.5";
        QTest::newRow("surrounding white space") << QByteArray(" 2.0\r\n") << "2.0";
        QTest::newRow("error page") << QByteArray("<html><body>404 Not Found</body></html>") << "";
        QTest::newRow("ten kilobytes of digits") << QByteArray(10240, '1') << "";
        QTest::newRow("two lines") << QByteArray("1.4.5\n1.4.6") << "";
        QTest::newRow("a version, a zero byte and more")
            << QByteArray("1.4.6\n\0\0\0\x07\xff\xff\r", 13) << "";
        QTest::newRow("negative") << QByteArray("-2147483648") << "";
        QTest::newRow("nine parts") << QByteArray("1.2.3.4.5.6.7.8.9") << "";
        QTest::newRow("empty") << QByteArray() << "";
    }

    void versionFromAnswer()
    {
        QFETCH(QByteArray, body);
        QTEST(::versionFromAnswer(body), "version");
    }
};

QTEST_APPLESS_MAIN(TestVersionCompare)
#include "tst_versioncompare.moc"
