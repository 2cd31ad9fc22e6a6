// The shared status block, read from a second process as the companion tools read it.
#include "powermodes.h"
#include "statuspublisher.h"
#include "testwindow.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

namespace {
const QString kKey = QStringLiteral("VarnelSharedMem");
const QString kReader =
    QStringLiteral(VARNEL_TEST_BIN_DIR "/status/status_reader" VARNEL_EXE_SUFFIX);
// Each look starts the reader program, which under Wine on a loaded machine takes seconds.
const int kPatienceMs = 30000;

// The reader's two lines: the bytes in hex and the decoded text.
QStringList readBlock(const QString &key = kKey)
{
    QProcess reader;
    reader.start(kReader, {key});
    if (!reader.waitForFinished(10000))
        return {QStringLiteral("reader did not finish")};
    return QString::fromUtf8(reader.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}
} // namespace

class StatusPublisherTest : public QObject {
    Q_OBJECT

    // The block's namespace follows the temporary folder; a private one keeps other programs
    // using the same key (a running copy, other tests) out of the way.
    QTemporaryDir m_tmp;

private slots:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        qputenv("TMPDIR", m_tmp.path().toLocal8Bit());
        QVERIFY2(QFile::exists(kReader), "build the status_reader program first");
    }

    void windowPublishesTheModeCodes()
    {
        TestWindow p;
        p.setUser("comboBox_5_normal", 3);
        p.setUser("horizontalSlider_2_normal", 40);
        p.start();
        // Published at start and on each change; no timer wakes every second to write it again.
        for (QTimer *t : p.window->findChildren<QTimer *>())
            QVERIFY(!(t->interval() == 1000 && t->isActive() && !t->isSingleShot()));
        QCOMPARE(readBlock(),
                 (QStringList{"00000012006e006f006e0065002c006e006f006e0065", "none,none"}));

        // A change is published at once, or a second later where the old segment is still going.
        p.ui().checkBox_2->click(); // power modes on: normal has fan Manual and keyboard 40
        QTRY_COMPARE_WITH_TIMEOUT(readBlock().value(1), QStringLiteral("3,40"), kPatienceMs);

        // Switched off again: the keyboard is released, the fan code stays.
        p.ui().checkBox_2->click();
        QTRY_COMPARE_WITH_TIMEOUT(readBlock().value(1), QStringLiteral("3,none"), kPatienceMs);

        // A reader holding the block: the change waits, and is tried again each second.
        QProcess holder;
        holder.start(kReader, {kKey, QStringLiteral("--hold")});
        QVERIFY(holder.waitForReadyRead(10000));
        p.ui().horizontalSlider_2->setValue(55);
        holder.write("\n");
        QVERIFY(holder.waitForFinished(10000));
        QTRY_COMPARE_WITH_TIMEOUT(readBlock().value(1), QStringLiteral("3,55"), kPatienceMs);

        QVERIFY(QMetaObject::invokeMethod(p.window.get(), "loadIntoSharedMem",
                                          Q_ARG(QString, "5,100")));
        QTRY_COMPARE_WITH_TIMEOUT(
            readBlock(), (QStringList{"0000000a0035002c003100300030", "5,100"}), kPatienceMs);
    }

    void aReaderThatStaysMakesPublishingFail()
    {
        const QString key = QStringLiteral("VarnelStatusTest");
        StatusPublisher publisher(key);
        QVERIFY(publisher.publish(QStringLiteral("1,10")));
        QCOMPARE(StatusPublisher::serialise(QStringLiteral("")).toHex(), QByteArray("00000000"));

        QProcess holder;
        holder.start(kReader, {key, QStringLiteral("--hold")});
        QVERIFY(holder.waitForReadyRead(10000));
        QTRY_VERIFY_WITH_TIMEOUT(holder.canReadLine(), kPatienceMs);

        // The segment already holds that record: no new segment, so the reader does not block it.
        QVERIFY(publisher.publish(QStringLiteral("1,10")));
        QVERIFY(!publisher.publish(QStringLiteral("2,20")));
        QVERIFY(!publisher.publish(QStringLiteral("2,20"))); // and it stays so, without harm
        QCOMPARE(readBlock(key).value(1), QStringLiteral("1,10"));

        holder.write("\n");
        QVERIFY(holder.waitForFinished(10000));
        QCOMPARE(holder.exitCode(), 0);
        // The reader's segment may take a moment to go.
        QTRY_VERIFY_WITH_TIMEOUT(publisher.publish(QStringLiteral("2,20")), kPatienceMs);
        QCOMPARE(readBlock(key).value(1), QStringLiteral("2,20"));
    }
};

QTEST_MAIN(StatusPublisherTest)
#include "tst_statuspublisher.moc"
