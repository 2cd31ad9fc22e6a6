#include "fakeplatform.h"
#include "fakesensors.h"
#include "mainwindow.h"
#include "nvidia_api.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QElapsedTimer>
#include <QtTest>

namespace {

using Card = FakeGpu::Card;

// Every signal of the loop as "NAME value", in emission order.
struct SignalRecorder {
    explicit SignalRecorder(nvidia_api &loop)
    {
        auto entry = [this](const char *name) {
            return [this, name](int value) {
                log << QLatin1String(name) + QLatin1Char(' ') + QString::number(value);
            };
        };
        QObject::connect(&loop, &nvidia_api::GPU1TEMP, entry("GPU1TEMP"));
        QObject::connect(&loop, &nvidia_api::GPU1LOAD, entry("GPU1LOAD"));
        QObject::connect(&loop, &nvidia_api::GPU1CORECLOCK, entry("GPU1CORECLOCK"));
        QObject::connect(&loop, &nvidia_api::GPU1MEMCLOCK, entry("GPU1MEMCLOCK"));
        QObject::connect(&loop, &nvidia_api::GPU1PSTATE, entry("GPU1PSTATE"));
        QObject::connect(&loop, &nvidia_api::GPU2TEMP, entry("GPU2TEMP"));
        QObject::connect(&loop, &nvidia_api::GPU2LOAD, entry("GPU2LOAD"));
        QObject::connect(&loop, &nvidia_api::GPU2CORECLOCK, entry("GPU2CORECLOCK"));
        QObject::connect(&loop, &nvidia_api::GPU2MEMCLOCK, entry("GPU2MEMCLOCK"));
        QObject::connect(&loop, &nvidia_api::GPU2PSTATE, entry("GPU2PSTATE"));
    }
    QStringList log;
};

Card runningCard(int celsius, unsigned load, unsigned coreMHz, unsigned memoryMHz, int pstate)
{
    Card c;
    c.temperature = celsius;
    c.loadPercent = load;
    c.graphicsKHz = coreMHz * 1000 + 999; // kHz are cut, not rounded
    c.memoryKHz = memoryMHz * 1000;
    c.pstate = pstate;
    return c;
}

QStringList gpu1Pass(int celsius, int load, int core, int memory, int pstate)
{
    return {
        QStringLiteral("GPU1PSTATE %1").arg(pstate),  QStringLiteral("GPU1LOAD %1").arg(load),
        QStringLiteral("GPU1CORECLOCK %1").arg(core), QStringLiteral("GPU1MEMCLOCK %1").arg(memory),
        QStringLiteral("GPU1LOAD %1").arg(load),      QStringLiteral("GPU1TEMP %1").arg(celsius)};
}

const QStringList kZeros = {QStringLiteral("GPU1TEMP 0"), QStringLiteral("GPU1LOAD 0")};

} // namespace

class GpuMonitorTest : public QObject {
    Q_OBJECT
public:
    // The error texts are debug lines of their own category; the tests read them.
    static void initMain() { qputenv("QT_LOGGING_RULES", "varnel.gpu.debug=true"); }

private slots:
    void signalsAreDeclaredInOrder();
    void failureAtEachStep_data();
    void failureAtEachStep();
    void twoGpusReportOnTheirOwnSignals();
    void sleepingSecondGpuZeroesGpu1Last();
    void missingLoadSuppressesLaterGpus();
    void failedUtilisationReportsThePreviousFigures();
    void gpusBeyondTheSecondArePolledButNotReported();
    void windowShowsTheFirstGpu();
    void windowIgnoresTheSecondGpu();
    void stopEndsTheSleepAtOnce();
    void stoppedBeforeStartNeverPolls();
    void windowClosesWithTheThreadRunning();
};

void GpuMonitorTest::signalsAreDeclaredInOrder()
{
    QStringList names;
    const QMetaObject &meta = nvidia_api::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            names << QString::fromLatin1(meta.method(i).methodSignature());
    }
    QCOMPARE(names,
             QStringList({"GPU1TEMP(int)", "GPU1LOAD(int)", "GPU1CORECLOCK(int)",
                          "GPU1MEMCLOCK(int)", "GPU1PSTATE(int)", "GPU2TEMP(int)", "GPU2LOAD(int)",
                          "GPU2CORECLOCK(int)", "GPU2MEMCLOCK(int)", "GPU2PSTATE(int)"}));
}

void GpuMonitorTest::failureAtEachStep_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<QStringList>("signalLog");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QString>("message");

    QTest::newRow("initialise") << "init" << kZeros << QStringList{"initialize", "unload"}
                                << "NVIDIA API Error 1";
    QTest::newRow("enumerate") << "enum" << kZeros
                               << QStringList{"initialize", "enumerate", "unload", "unload"}
                               << "NVIDIA API Error 2";
    QTest::newRow("no GPU") << "count" << kZeros
                            << QStringList{"initialize", "enumerate", "unload", "unload"}
                            << "NVIDIA API Error 3";
    QTest::newRow("clocks") << "clocks" << kZeros
                            << QStringList{"initialize", "enumerate", "clocks 0", "unload",
                                           "unload"}
                            << "NVIDIA API Error 4";
    // The load step then runs on the structure as it was: never filled, so not present.
    QTest::newRow("utilisation") << "dynamic" << (kZeros + QStringList{"GPU1TEMP 65"})
                                 << QStringList{"initialize", "enumerate", "clocks 0", "dynamic 0",
                                                "unload",     "thermal 0", "unload"}
                                 << "NVIDIA API Error 5";
    QTest::newRow("temperature") << "thermal" << (gpu1Pass(0, 40, 1500, 7001, 0).mid(0, 5) + kZeros)
                                 << QStringList{"initialize", "enumerate",   "clocks 0",
                                                "dynamic 0",  "pstates20 0", "pstate 0",
                                                "thermal 0",  "unload"}
                                 << "Error 7 fake error -5";
}

void GpuMonitorTest::failureAtEachStep()
{
    QFETCH(QString, step);
    QFETCH(QStringList, signalLog);
    QFETCH(QStringList, calls);
    QFETCH(QString, message);

    auto gpu = std::make_shared<FakeGpu>();
    gpu->initResult = step == QLatin1String("init") ? -5 : 0;
    gpu->enumResult = step == QLatin1String("enum") ? -5 : 0;
    if (step != QLatin1String("count"))
        gpu->cards = {runningCard(65, 40, 1500, 7001, 0)};
    if (!gpu->cards.isEmpty()) {
        gpu->cards[0].clockResult = step == QLatin1String("clocks") ? -5 : 0;
        gpu->cards[0].pstatesResult = step == QLatin1String("dynamic") ? -5 : 0;
        gpu->cards[0].thermalResult = step == QLatin1String("thermal") ? -5 : 0;
    }
    nvidia_api loop(gpu);
    SignalRecorder recorder(loop);

    QTest::ignoreMessage(QtDebugMsg, qPrintable(message));
    loop.pollOnce();
    QCOMPARE(recorder.log, signalLog);
    QCOMPARE(gpu->calls(), calls);
}

void GpuMonitorTest::twoGpusReportOnTheirOwnSignals()
{
    auto gpu = std::make_shared<FakeGpu>();
    gpu->initResult = 0;
    gpu->cards = {runningCard(65, 40, 1500, 7001, 0), runningCard(50, 10, 300, 405, 8)};
    nvidia_api loop(gpu);
    SignalRecorder recorder(loop);
    loop.pollOnce();

    QStringList gpu2 = gpu1Pass(50, 10, 300, 405, 8);
    gpu2.replaceInStrings(QStringLiteral("GPU1"), QStringLiteral("GPU2"));
    QCOMPARE(recorder.log, gpu1Pass(65, 40, 1500, 7001, 0) + gpu2);
    QCOMPARE(gpu->calls().last(), QStringLiteral("unload"));
    QCOMPARE(gpu->calls().count(QStringLiteral("unload")), 1);
}

void GpuMonitorTest::sleepingSecondGpuZeroesGpu1Last()
{
    auto gpu = std::make_shared<FakeGpu>();
    gpu->initResult = 0;
    gpu->cards = {runningCard(65, 40, 1500, 7001, 0), runningCard(50, 10, 300, 200, 8)};
    nvidia_api loop(gpu);
    SignalRecorder recorder(loop);
    loop.pollOnce();

    QCOMPARE(recorder.log, gpu1Pass(65, 40, 1500, 7001, 0) + kZeros);
    // Nothing but the clocks is asked of the sleeping GPU, so it stays asleep.
    QCOMPARE(gpu->calls().filter(QStringLiteral(" 1")), QStringList{"clocks 1"});
}

void GpuMonitorTest::missingLoadSuppressesLaterGpus()
{
    auto gpu = std::make_shared<FakeGpu>();
    gpu->initResult = 0;
    gpu->cards = {runningCard(65, 40, 1500, 7001, 0), runningCard(50, 10, 300, 405, 8)};
    gpu->cards[0].loadPresent = false;
    nvidia_api loop(gpu);
    SignalRecorder recorder(loop);
    loop.pollOnce();
    QCOMPARE(recorder.log,
             QStringList({"GPU1PSTATE 0", "GPU1TEMP 65", "GPU2PSTATE 8", "GPU2TEMP 50"}));

    // The flag starts afresh with each pass; here the first GPU reports and the second not.
    gpu->cards[0].loadPresent = true;
    gpu->cards[1].loadPresent = false;
    recorder.log.clear();
    loop.pollOnce();
    QCOMPARE(recorder.log,
             gpu1Pass(65, 40, 1500, 7001, 0) + QStringList({"GPU2PSTATE 8", "GPU2TEMP 50"}));
}

void GpuMonitorTest::failedUtilisationReportsThePreviousFigures()
{
    auto gpu = std::make_shared<FakeGpu>();
    gpu->initResult = 0;
    gpu->cards = {runningCard(65, 40, 1500, 7001, 3)};
    nvidia_api loop(gpu);
    SignalRecorder recorder(loop);
    loop.pollOnce();

    gpu->cards[0].pstatesResult = -5;
    gpu->cards[0].loadPercent = 99;
    gpu->cards[0].graphicsKHz = 1600000;
    recorder.log.clear();
    QTest::ignoreMessage(QtDebugMsg, "NVIDIA API Error 5");
    loop.pollOnce();
    QCOMPARE(recorder.log,
             kZeros + QStringList({"GPU1LOAD 40", "GPU1CORECLOCK 1600", "GPU1MEMCLOCK 7001",
                                   "GPU1LOAD 40", "GPU1TEMP 65"}));
}

void GpuMonitorTest::gpusBeyondTheSecondArePolledButNotReported()
{
    auto gpu = std::make_shared<FakeGpu>();
    gpu->initResult = 0;
    gpu->cards = {runningCard(65, 40, 1500, 7001, 0), runningCard(50, 10, 300, 405, 8),
                  runningCard(70, 90, 1800, 9000, 0)};
    nvidia_api loop(gpu);
    SignalRecorder recorder(loop);
    loop.pollOnce();
    QCOMPARE(recorder.log.size(), 12);
    QVERIFY(gpu->calls().contains(QStringLiteral("thermal 2")));
}

void GpuMonitorTest::windowShowsTheFirstGpu()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    QCOMPARE(ui->gpu1_temp->text(), QStringLiteral("0"));

    w.NVAPI_GPU1TEMP(65);
    QCOMPARE(ui->gpu1_temp->text(), QString::fromUtf8("65\u00baC"));
    w.NVAPI_GPU1LOAD(40);
    QCOMPARE(ui->gpu1_load->value(), 40);
    w.NVAPI_GPU1CORECLOCK(1500);
    QCOMPARE(ui->gpu1_core_speed->text(), QStringLiteral("1500 Mhz"));
    w.NVAPI_GPU1MEMCLOCK(7001);
    QCOMPARE(ui->gpu1_mem_speed->text(), QStringLiteral("Disabled"));
    w.NVAPI_GPU1MEMCLOCK(0);
    QCOMPARE(ui->gpu1_mem_speed->text(), QStringLiteral("0 Mhz"));
    w.NVAPI_GPU1PSTATE(8);
    QCOMPARE(ui->gpu1_p_state->text(), QStringLiteral("P8"));
}

void GpuMonitorTest::windowIgnoresTheSecondGpu()
{
    TestFolder folder;
    FakePlatform fake;
    fake.gpu->initResult = 0;
    fake.gpu->cards = {runningCard(65, 40, 1500, 7001, 2), runningCard(50, 10, 300, 405, 8)};
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    QSignalSpy secondTemperature(w.gpuThread(), &nvidia_api::GPU2TEMP);
    QVERIFY(secondTemperature.wait(5000));
    QTRY_COMPARE(ui->gpu1_temp->text(), QString::fromUtf8("65\u00baC"));
    QCOMPARE(ui->gpu1_load->value(), 40);
    QCOMPARE(ui->gpu1_core_speed->text(), QStringLiteral("1500 Mhz"));
    QCOMPARE(ui->gpu1_mem_speed->text(), QStringLiteral("Disabled"));
    QCOMPARE(ui->gpu1_p_state->text(), QStringLiteral("P2"));
}

void GpuMonitorTest::stopEndsTheSleepAtOnce()
{
    auto gpu = std::make_shared<FakeGpu>();
    nvidia_api loop(gpu);
    QSignalSpy first(&loop, &nvidia_api::GPU1LOAD);
    loop.start(QThread::InheritPriority);
    QVERIFY(first.wait(5000));
    QElapsedTimer clock;
    clock.start();
    loop.stop();
    QVERIFY(loop.wait(5000));
    // Well inside the one-second sleep, so the stop cut it short.
    QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(gpu->calls().count(QStringLiteral("initialize")), 1);
}

void GpuMonitorTest::stoppedBeforeStartNeverPolls()
{
    auto gpu = std::make_shared<FakeGpu>();
    nvidia_api loop(gpu);
    loop.stop();
    loop.start();
    QVERIFY(loop.wait(5000));
    QVERIFY(gpu->calls().isEmpty());
}

void GpuMonitorTest::windowClosesWithTheThreadRunning()
{
    TestFolder folder;
    FakePlatform fake;
    fake.gpu->initResult = 0;
    fake.gpu->cards = {runningCard(65, 40, 1500, 7001, 2)};
    auto *w = new MainWindow(fake.bundle());
    QPointer<nvidia_api> thread = w->gpuThread();
    QVERIFY(thread->isRunning());
    QSignalSpy polled(thread.data(), &nvidia_api::GPU1TEMP);
    QVERIFY(polled.wait(5000));

    w->close();
    QElapsedTimer clock;
    clock.start();
    delete w; // Qt aborts the process if a running thread object is destroyed
    QVERIFY(thread.isNull());
    QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
}

QTEST_MAIN(GpuMonitorTest)
#include "tst_gpumonitor.moc"
