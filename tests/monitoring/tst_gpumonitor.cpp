#include "fakesensors.h"
#include "gpusignallog.h"
#include "testwindow.h"

#include <QtTest>

namespace {

using Card = FakeGpu::Card;

Card runningCard(int celsius, unsigned load, unsigned coreMHz, unsigned memoryMHz, int pstate,
                 bool loadPresent = true)
{
    // kHz are cut, not rounded
    return {0, coreMHz * 1000 + 999, memoryMHz * 1000, 0, loadPresent, load, pstate, 0, celsius};
}

const QStringList kZeros = {QStringLiteral("GPU1TEMP 0"), QStringLiteral("GPU1LOAD 0")};
constexpr auto pass = &GpuSignalLog::pass;

struct Loop {
    explicit Loop(QVector<Card> cards = {})
    {
        gpu->initResult = 0;
        gpu->cards = std::move(cards);
    }
    QStringList poll() { return signalLog.poll(); }
    std::shared_ptr<FakeGpu> gpu = std::make_shared<FakeGpu>();
    nvidia_api loop{gpu};
    GpuSignalLog signalLog{loop};
};

} // namespace

Q_DECLARE_METATYPE(FakeGpu::Card)

class GpuMonitorTest : public QObject {
    Q_OBJECT
public:
    // The error texts are debug lines of their own category; the tests read them.
    static void initMain() { qputenv("QT_LOGGING_RULES", "varnel.gpu.debug=true"); }

private slots:

    void failureAtEachStep_data()
    {
        QTest::addColumn<QString>("step");
        QTest::addColumn<QStringList>("signalLog");
        QTest::addColumn<QString>("calls");
        QTest::addColumn<QString>("message");
        const QString start = "initialize, enumerate, ";
        QTest::newRow("initialise") << "init" << kZeros << "initialize, unload"
                                    << "NVIDIA API Error 1";
        QTest::newRow("enumerate") << "enum" << kZeros << start + "unload, unload"
                                   << "NVIDIA API Error 2";
        QTest::newRow("no GPU") << "count" << kZeros << start + "unload, unload"
                                << "NVIDIA API Error 3";
        QTest::newRow("clocks") << "clocks" << kZeros << start + "clocks 0, unload, unload"
                                << "NVIDIA API Error 4";
        // The load step then runs on the structure as it was: never filled, so not present.
        QTest::newRow("utilisation") << "dynamic" << kZeros + QStringList{"GPU1TEMP 65"}
                                     << start + "clocks 0, dynamic 0, unload, thermal 0, unload"
                                     << "NVIDIA API Error 5";
        QTest::newRow("temperature")
            << "thermal" << pass(1, 0, 40, 1500, 7001, 0).mid(0, 5) + kZeros
            << start + "clocks 0, dynamic 0, pstates20 0, pstate 0, thermal 0, unload"
            << "Error 7 fake error -5";
    }

    void failureAtEachStep()
    {
        QFETCH(QString, step);
        QFETCH(QStringList, signalLog);
        QFETCH(QString, calls);
        QFETCH(QString, message);
        Loop l;
        l.gpu->initResult = step == QLatin1String("init") ? -5 : 0;
        l.gpu->enumResult = step == QLatin1String("enum") ? -5 : 0;
        if (step != QLatin1String("count")) {
            Card card = runningCard(65, 40, 1500, 7001, 0);
            card.clockResult = step == QLatin1String("clocks") ? -5 : 0;
            card.pstatesResult = step == QLatin1String("dynamic") ? -5 : 0;
            card.thermalResult = step == QLatin1String("thermal") ? -5 : 0;
            l.gpu->cards = {card};
        }
        QTest::ignoreMessage(QtDebugMsg, qPrintable(message));
        QCOMPARE(l.poll(), signalLog);
        QCOMPARE(l.gpu->calls().join(QStringLiteral(", ")), calls);
    }

    void passes_data()
    {
        QTest::addColumn<QVector<Card>>("cards");
        QTest::addColumn<QStringList>("signalLog");
        const Card first = runningCard(65, 40, 1500, 7001, 0);
        const Card second = runningCard(50, 10, 300, 405, 8);
        const QStringList firstPass = pass(1, 65, 40, 1500, 7001, 0);
        const QStringList secondPass = pass(2, 50, 10, 300, 405, 8);
        QTest::newRow("two GPUs on their own signals")
            << QVector<Card>{first, second} << firstPass + secondPass;
        // A memory clock of 200 MHz or less is a sleeping GPU: GPU1's figures are zeroed last.
        QTest::newRow("sleeping second GPU")
            << QVector<Card>{first, runningCard(50, 10, 300, 200, 8)} << firstPass + kZeros;
        QTest::newRow("missing load suppresses later GPUs")
            << QVector<Card>{runningCard(65, 40, 1500, 7001, 0, false), second}
            << QStringList{"GPU1PSTATE 0", "GPU1TEMP 65", "GPU2PSTATE 8", "GPU2TEMP 50"};
        QTest::newRow("the flag starts afresh with each GPU")
            << QVector<Card>{first, runningCard(50, 10, 300, 405, 8, false)}
            << firstPass + QStringList{"GPU2PSTATE 8", "GPU2TEMP 50"};
        QTest::newRow("a third GPU is polled but not reported")
            << QVector<Card>{first, second, runningCard(70, 90, 1800, 9000, 0)}
            << firstPass + secondPass;
    }

    void passes()
    {
        QFETCH(QVector<Card>, cards);
        QFETCH(QStringList, signalLog);
        Loop l(cards);
        QCOMPARE(l.poll(), signalLog);
        QCOMPARE(l.gpu->calls().count(QStringLiteral("unload")), 1);
        QCOMPARE(l.gpu->calls().last(), QStringLiteral("unload"));
        // Nothing but the clocks is asked of a sleeping GPU, so it stays asleep.
        if (cards.value(1).memoryKHz <= 200000)
            QCOMPARE(l.gpu->calls().filter(QStringLiteral(" 1")), QStringList{"clocks 1"});
        if (cards.size() > 2)
            QVERIFY(l.gpu->calls().contains(QStringLiteral("thermal 2")));
    }

    void failedUtilisationReportsThePreviousFigures()
    {
        Loop l({runningCard(65, 40, 1500, 7001, 3)});
        l.poll();
        l.gpu->cards[0].pstatesResult = -5;
        l.gpu->cards[0].loadPercent = 99;
        l.gpu->cards[0].graphicsKHz = 1600000;
        QTest::ignoreMessage(QtDebugMsg, "NVIDIA API Error 5");
        QCOMPARE(l.poll(),
                 kZeros + QStringList({"GPU1LOAD 40", "GPU1CORECLOCK 1600", "GPU1MEMCLOCK 7001",
                                       "GPU1LOAD 40", "GPU1TEMP 65"}));
    }

    void windowIgnoresTheSecondGpuAndClosesWithTheThread()
    {
        TestWindow t;
        t.fake.gpu->initResult = 0;
        t.fake.gpu->cards = {runningCard(65, 40, 1500, 7001, 2), runningCard(50, 10, 300, 405, 8)};
        t.start();
        Ui::MainWindow &ui = t.ui();
        QPointer<nvidia_api> thread = t.window->gpuThread();
        QVERIFY(thread->isRunning());
        QSignalSpy secondTemperature(thread.data(), &nvidia_api::GPU2TEMP);
        QVERIFY(secondTemperature.wait(5000));
        QTRY_COMPARE(ui.gpu1_temp->text(), QString::fromUtf8("65\u00baC"));
        QCOMPARE(ui.gpu1_load->value(), 40);
        QCOMPARE(ui.gpu1_core_speed->text(), QStringLiteral("1500 Mhz"));
        QCOMPARE(ui.gpu1_mem_speed->text(), QStringLiteral("Disabled"));
        QCOMPARE(ui.gpu1_p_state->text(), QStringLiteral("P2"));
        t.window->NVAPI_GPU1MEMCLOCK(0); // only a sleeping GPU shows its memory clock
        QCOMPARE(ui.gpu1_mem_speed->text(), QStringLiteral("0 Mhz"));

        t.window->close();
        t.window.reset(); // Qt aborts the process if a running thread object is destroyed
        QVERIFY(thread.isNull());
    }

    void stopEndsTheSleepAtOnce()
    {
        // Asked right before the sleep: the stop then comes while the thread sleeps.
        struct PacedGpu : FakeGpu {
            mutable QSemaphore passEnded;
            bool absentForGood() const override
            {
                passEnded.release();
                return false;
            }
        };
        auto gpu = std::make_shared<PacedGpu>();
        nvidia_api loop(gpu);
        loop.setPollInterval(std::chrono::seconds(30)); // far past the wait below
        loop.start();
        QVERIFY(gpu->passEnded.tryAcquire(1, 5000));
        loop.stop();
        QVERIFY(loop.wait(5000));
        QCOMPARE(gpu->calls().count(QStringLiteral("initialize")), 1);

        // Stopped before it starts, it never polls.
        Loop stopped;
        stopped.loop.stop();
        stopped.loop.start();
        QVERIFY(stopped.loop.wait(5000));
        QVERIFY(stopped.gpu->calls().isEmpty());
    }
};

QTEST_MAIN(GpuMonitorTest)
#include "tst_gpumonitor.moc"
