#include "batterywidget.h"
#include "fakesensors.h"
#include "gpusignallog.h"
#include "testwindow.h"
#include "usagewidget.h"
#include "widgetmanager.h"

#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QtTest>

namespace {

const QString kWidgetFile = QStringLiteral("settings/settings_widgets.ini");
const char kStateQuery[] = "WMIC Path Win32_Battery Get BatteryStatus";
const char kChargeQuery[] = "WMIC Path Win32_Battery Get EstimatedChargeRemaining";
const QStringList kWhite{"color:white;"};
const QStringList kBlack{"color:black;"};

QLabel *label(QWidget *widget, const char *name)
{
    return widget->findChild<QLabel *>(QLatin1String(name));
}

QStringList labelSheets(QWidget *widget)
{
    QStringList sheets;
    for (QLabel *l : widget->findChildren<QLabel *>())
        sheets << l->styleSheet();
    sheets.removeDuplicates();
    return sheets;
}

QList<int> timerIntervals(QWidget *widget)
{
    QList<int> intervals;
    for (QTimer *t : widget->findChildren<QTimer *>())
        intervals << (t->isActive() ? t->interval() : -1);
    std::sort(intervals.begin(), intervals.end());
    return intervals;
}

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

class MonitoringTest : public QObject {
    Q_OBJECT
public:
    // The GPU error texts are debug lines of their own category; the tests read them.
    static void initMain() { qputenv("QT_LOGGING_RULES", "varnel.gpu.debug=true"); }

private slots:

    void layoutFontColourPeriodAndDrag()
    {
        TestFolder folder;
        folder.mkdir(QStringLiteral("settings"));
        FakePlatform fake;
        UsageWidget usage(fake.sampler);
        BatteryWidget battery(fake.bundle());
        const float scale = UsageWidget::screenScaleFactor();
        for (QWidget *w : {static_cast<QWidget *>(&usage), static_cast<QWidget *>(&battery)}) {
            QVERIFY(w->windowFlags().testFlag(Qt::Tool));
            QVERIFY(w->windowFlags().testFlag(Qt::FramelessWindowHint));
            QVERIFY(w->testAttribute(Qt::WA_TranslucentBackground));
            QCOMPARE(w->size(), QSize(int(800 * scale), int(600 * scale)));
            QCOMPARE(w->minimumSize(), w->maximumSize());
            QCOMPARE(labelSheets(w), kWhite);
            QCOMPARE(timerIntervals(w), QList<int>({1000, 1000}));
        }
        const char *order[] = {"processor", "memory", "disk", "upload", "download"};
        for (int i = 0; i < 5; ++i)
            QCOMPARE(label(&usage, order[i])->pos(), QPoint(0, int(i * 20 * scale)));
        QCOMPARE(label(&battery, "charge")->pos(), QPoint(0, int(5 * scale)));

        usage.fontsize(10);
        battery.fontsize(10);
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(label(&usage, order[i])->font().family(), QStringLiteral("Segoe UI"));
            QCOMPARE(label(&usage, order[i])->font().pointSize(), 10);
            QCOMPARE(label(&usage, order[i])->pos(), QPoint(0, int((2 * i + 1) * 10 * scale)));
        }
        QCOMPARE(label(&battery, "state")->font().pointSize(), 10);
        QCOMPARE(label(&battery, "charge")->font().family(), QStringLiteral("Segoe UI"));
        QCOMPARE(label(&battery, "charge")->pos(), QPoint(0, int(14 * scale)));

        // 1 inverts, 0 restores, any other value leaves the colour as it is.
        const QList<QPair<int, QStringList>> colours = {{1, kBlack}, {7, kBlack}, {0, kWhite}};
        for (const auto &colour : colours) {
            usage.color(colour.first);
            battery.color(colour.first);
            QCOMPARE(labelSheets(&usage), colour.second);
            QCOMPARE(labelSheets(&battery), colour.second);
        }
        usage.period1s_slot();
        battery.period1s_slot();
        QCOMPARE(timerIntervals(&usage), QList<int>({1000, 1000}));
        QCOMPARE(timerIntervals(&battery), QList<int>({1000, 1500}));

        // A dragged widget saves its geometry; the next one comes back there.
        auto check = [&](QWidget &widget, const char *key, QPoint by, auto makeAgain) {
            widget.move(100, 100);
            widget.show();
            QVERIFY(QTest::qWaitForWindowExposed(&widget));
            const QPoint start = widget.frameGeometry().topLeft(), from = start + QPoint(5, 5);
            QMouseEvent press(QEvent::MouseButtonPress, widget.mapFromGlobal(from), from,
                              Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&widget, &press);
            QMouseEvent move(QEvent::MouseMove, widget.mapFromGlobal(from + by), from + by,
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&widget, &move);
            QCOMPARE(widget.frameGeometry().topLeft(), start + by);
            QCOMPARE(folder.ini(kWidgetFile, key).toByteArray(), widget.saveGeometry());
            QCOMPARE(makeAgain()->pos(), widget.pos());
        };
        check(usage, "mainWindowGeometry", QPoint(50, 30),
              [&] { return std::make_unique<UsageWidget>(fake.sampler); });
        check(battery, "batteryWindowGeometry", QPoint(20, 40),
              [&] { return std::make_unique<BatteryWidget>(fake.bundle()); });
    }

    void usageTickShowsFiguresFromTheSecondSample()
    {
        TestFolder folder;
        FakePlatform fake;
        const quint64 base = (quint64(5) << 32) + 12345;
        fake.sampler->idleTime = base;
        fake.sampler->kernelTime = base * 2;
        fake.sampler->userTime = 1000;
        // An idle adapter, then one busy adapter listed through two filter layers: it counts once.
        fake.sampler->interfaces = {{6, 0, 0}, {6, 10000, 5000}, {6, 10000, 5000}};
        fake.sampler->freeBytes = (quint64(250) << 30) + (quint64(1023) << 20);
        QList<int> clock = {200, 700, 900};
        UsageWidget widget(fake.sampler, nullptr, [&clock] { return clock.takeFirst(); });

        widget.timeout_slot();
        QCOMPARE(label(&widget, "memory")->text(), QStringLiteral("RAM 50%"));
        QCOMPARE(label(&widget, "disk")->text(), QStringLiteral("C: 250GB"));
        QCOMPARE(label(&widget, "processor")->text(), QString());
        QCOMPARE(label(&widget, "upload")->text(), QString());

        fake.sampler->idleTime += 5000000;
        fake.sampler->kernelTime += 8000000;
        fake.sampler->userTime += 12000000;
        // 1.5 s passed by the millisecond clock (1000 - 200 + 700).
        fake.sampler->interfaces = {{6, 0, 0}, {6, 13072, 6536}, {6, 13072, 6536}};
        fake.sampler->availablePhysical = 4ull << 30;
        widget.timeout_slot();
        QCOMPARE(label(&widget, "processor")->text(), QStringLiteral("CPU 75%"));
        QCOMPARE(label(&widget, "memory")->text(), QStringLiteral("RAM 75%"));
        QCOMPARE(label(&widget, "upload")->text(), QStringLiteral("↑ 1KB/s"));
        QCOMPARE(label(&widget, "download")->text(), QStringLiteral("↓ 2KB/s"));

        // Failing calls leave the figures shown.
        fake.sampler->memoryOk = false;
        fake.sampler->timesOk = false;
        fake.sampler->availablePhysical = 0;
        fake.sampler->idleTime += 100;
        widget.timeout_slot();
        QCOMPARE(label(&widget, "processor")->text(), QStringLiteral("CPU 75%"));
        QCOMPARE(label(&widget, "memory")->text(), QStringLiteral("RAM 75%"));

        // A small idle time (32-bit high half zero) counts as no sample: no load all along.
        UsageWidget fresh(fake.sampler, nullptr, [] { return 0; });
        fake.sampler->timesOk = true;
        fake.sampler->idleTime = 1000;
        auto tick = [&](quint32 received, quint32 sent) {
            fake.sampler->interfaces = {{6, received, sent}};
            fake.sampler->kernelTime += 5000;
            fresh.timeout_slot();
            return label(&fresh, "download")->text();
        };
        // Received only: the sent sum stays 0, and a zero previous sum shows nothing.
        tick(500, 0);
        QCOMPARE(tick(900, 0), QString());
        tick(500, 40);
        QCOMPARE(tick(900, 50), QStringLiteral("↓ 400B/s"));
        // Traffic stops: the first tick computes from the dropped sum, the next ones keep it.
        fake.sampler->interfaces = {};
        fresh.timeout_slot();
        const QString afterDrop = label(&fresh, "download")->text();
        QVERIFY(afterDrop != QStringLiteral("↓ 400B/s"));
        fresh.timeout_slot();
        QCOMPARE(label(&fresh, "download")->text(), afterDrop);
        QCOMPARE(label(&fresh, "processor")->text(), QString());
    }

    void batteryTicksQueryThenShow()
    {
        TestFolder folder;
        FakePlatform fake;
        auto &outputs = fake.commands->asyncOutputs;
        outputs[kStateQuery] = QStringLiteral("BatteryStatus  \r\r\n2  \r\r\n\r\r\n");
        outputs[kChargeQuery] = QStringLiteral("EstimatedChargeRemaining  \r\r\n87  \r\r\n");
        BatteryWidget widget(fake.bundle());
        const QString process = QStringLiteral("process: ");
        widget.timeout_slot();
        widget.timeout_slot(); // the first answer has not arrived yet: not started again
        QCOMPARE(fake.log->withPrefix(process), QStringList{process + QLatin1String(kStateQuery)});
        QCOMPARE(fake.scheduler->history, QStringList({"500 updater2do", "2000 updatevalues",
                                                       "500 updater2do", "2000 updatevalues"}));
        QCoreApplication::processEvents();
        fake.scheduler->advance(500);
        QCOMPARE(fake.log->withPrefix(process).last(), process + QLatin1String(kChargeQuery));
        QCoreApplication::processEvents();
        QCOMPARE(label(&widget, "state")->text(), QString());
        fake.scheduler->advance(1500);
        QCOMPARE(label(&widget, "state")->text(), QStringLiteral("AC Power"));
        QCOMPARE(label(&widget, "charge")->text(), QStringLiteral("87%"));

        // An unknown code, then no battery at all (the tool prints its header alone) keep the
        // labels; each tick asks again, so a known code then shows.
        const QList<QPair<QString, QString>> states = {{"BatteryStatus\r\n10\r\n", "AC Power"},
                                                       {"BatteryStatus  \r\r\n", "AC Power"},
                                                       {"BatteryStatus\r\n3\r\n", "Full Battery"}};
        for (const auto &state : states) {
            outputs[kStateQuery] = state.first;
            outputs[kChargeQuery] = QStringLiteral("EstimatedChargeRemaining  \r\r\n");
            widget.timeout_slot();
            for (int ms : {500, 1500}) {
                QCoreApplication::processEvents();
                fake.scheduler->advance(ms);
            }
            QCOMPARE(label(&widget, "state")->text(), state.second);
            QCOMPARE(label(&widget, "charge")->text(), QStringLiteral("87%"));
        }
        QCOMPARE(fake.log->withPrefix(process).size(), 8);
    }

    void startupCreatesParentlessWidgets_data()
    {
        QTest::addColumn<bool>("translucent");
        QTest::newRow("with a compositor") << true;
        QTest::newRow("without a compositor") << false;
    }

    void startupCreatesParentlessWidgets()
    {
        QFETCH(bool, translucent);
        TestWindow t;
        for (const QString &stored :
             {"resorceswidget=1", "resorceswidgetfontsize=14", "resources_color=1",
              "batterywidget=1", "batterywidgetfontsize=6"})
            t.folder.setIni(kWidgetFile, stored.section('=', 0, 0), stored.section('=', 1).toInt());
        t.fake.desktop->translucent = translucent;
        t.start();
        Ui::MainWindow &ui = t.ui();
        QVERIFY(ui.StartResorcescheckBox->isChecked() && ui.StartBatteryWidget->isChecked());
        QVERIFY(ui.colorchange->isChecked() && !ui.colorchange_battery->isChecked());
        QCOMPARE(ui.horizontalSliderResorcesFONTsize->value(), 14);
        QCOMPARE(ui.fontsize_label->text(), QStringLiteral("14px"));
        QCOMPARE(ui.fontsize_battery->text(), QStringLiteral("6px"));

        QPointer<UsageWidget> usage = t.window->widgets()->usageWidget();
        QPointer<BatteryWidget> battery = t.window->widgets()->batteryWidget();
        QVERIFY(usage && battery);
        QCOMPARE(label(usage, "memory")->font().pointSize(), 14);
        QCOMPARE(labelSheets(usage), kBlack);
        QCOMPARE(label(battery, "charge")->font().pointSize(), 14);
        QCOMPARE(labelSheets(battery), kWhite);
        for (QWidget *widget : {static_cast<QWidget *>(usage), static_cast<QWidget *>(battery)}) {
            QCOMPARE(widget->parentWidget(), nullptr);
            QVERIFY(widget->isVisible());
            QCOMPARE(widget->testAttribute(Qt::WA_TranslucentBackground), translucent);
            QCOMPARE(widget->autoFillBackground(), !translucent);
            QRegion labels;
            for (QLabel *l : widget->findChildren<QLabel *>())
                labels += l->geometry();
            // The empty rest of the window is not the widget's: clicks there reach the desktop.
            QCOMPARE(widget->mask(), labels);
            QVERIFY(!widget->mask().contains(QPoint(widget->width() - 2, widget->height() - 2)));
        }

        // The window's own signals reach them, and the mask follows the labels.
        emit t.window->fontsize(24);
        QCOMPARE(label(usage, "disk")->font().pointSize(), 24);
        QVERIFY(usage->mask().contains(label(usage, "download")->geometry()));
        emit t.window->closebattery();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(battery.isNull());
        delete usage;
    }

    void checkBoxesColoursAndSliders()
    {
        TestWindow t;
        t.start();
        Ui::MainWindow &ui = t.ui();
        WidgetManager *widgets = t.window->widgets();
        // Without stored sizes the sliders keep the form's values; no widget is shown.
        QCOMPARE(ui.horizontalSliderResorcesFONTsize->value(), 9);
        QCOMPARE(ui.horizontalSlider_Battery_FONTsize->value(), 8);
        QVERIFY(!widgets->usageWidget() && !widgets->batteryWidget());

        ui.colorchange->setChecked(true);
        ui.StartResorcescheckBox->click();
        ui.StartBatteryWidget->click();
        QPointer<UsageWidget> usage = widgets->usageWidget();
        QPointer<BatteryWidget> battery = widgets->batteryWidget();
        QVERIFY(usage && battery);
        QCOMPARE(usage->parentWidget(), t.window.get());
        QCOMPARE(battery->parentWidget(), nullptr);
        QVERIFY(usage->isVisible());
        QCOMPARE(t.folder.ini(kWidgetFile, "resorceswidget").toInt(), 1);
        QCOMPARE(t.folder.ini(kWidgetFile, "batterywidget").toInt(), 1);
        QCOMPARE(label(usage, "memory")->font().pointSize(), 9);
        QCOMPARE(label(battery, "state")->font().pointSize(), 8);
        // Switched on with "Invert Colors" set, the new widget is inverted at once.
        QCOMPARE(labelSheets(usage), kBlack);

        ui.colorchange->click();
        QCOMPARE(labelSheets(usage), kWhite);
        QCOMPARE(t.folder.ini(kWidgetFile, "resources_color").toInt(), 0);
        ui.colorchange_battery->click();
        QCOMPARE(labelSheets(battery), kBlack);
        QCOMPARE(labelSheets(usage), kWhite);
        QCOMPARE(t.folder.ini(kWidgetFile, "battery_color").toInt(), 1);

        ui.horizontalSliderResorcesFONTsize->setValue(12);
        QCOMPARE(ui.fontsize_label->text(), QStringLiteral("12px"));
        QCOMPARE(label(usage, "upload")->font().pointSize(), 12);
        QCOMPARE(t.folder.ini(kWidgetFile, "resorceswidgetfontsize").toInt(), 12);
        ui.horizontalSlider_Battery_FONTsize->setValue(10);
        QCOMPARE(ui.fontsize_battery->text(), QStringLiteral("10px"));
        QCOMPARE(label(battery, "charge")->font().pointSize(), 18);
        QCOMPARE(t.folder.ini(kWidgetFile, "batterywidgetfontsize").toInt(), 10);

        ui.StartResorcescheckBox->click();
        ui.StartBatteryWidget->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(usage.isNull() && battery.isNull());
        QCOMPARE(t.folder.ini(kWidgetFile, "resorceswidget").toInt(), 0);
        QCOMPARE(t.folder.ini(kWidgetFile, "batterywidget").toInt(), 0);
        ui.StartResorcescheckBox->click();
        QVERIFY(widgets->usageWidget());
    }

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

QTEST_MAIN(MonitoringTest)
#include "tst_monitoring.moc"
