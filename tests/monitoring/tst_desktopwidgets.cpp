#include "batterywidget.h"
#include "fakeplatform.h"
#include "fakesensors.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"
#include "usagewidget.h"
#include "widgetmanager.h"

#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QtTest>

namespace {

const char kWidgetFile[] = "settings/settings_widgets.ini";
const char kStateQuery[] = "WMIC Path Win32_Battery Get BatteryStatus";
const char kChargeQuery[] = "WMIC Path Win32_Battery Get EstimatedChargeRemaining";

QString text(QWidget *widget, const char *label)
{
    return widget->findChild<QLabel *>(QLatin1String(label))->text();
}

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

void drag(QWidget *widget, QPoint from, QPoint to)
{
    QMouseEvent press(QEvent::MouseButtonPress, widget->mapFromGlobal(from), from, Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
    QMouseEvent move(QEvent::MouseMove, widget->mapFromGlobal(to), to, Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(widget, &move);
}

void flushDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The battery answers through the fake's scripted command outputs.
void scriptBattery(FakePlatform &fake, const QString &status, const QString &charge)
{
    fake.commands->asyncOutputs[QLatin1String(kStateQuery)] =
        QStringLiteral("BatteryStatus  \r\r\n") + status + QStringLiteral("  \r\r\n\r\r\n");
    fake.commands->asyncOutputs[QLatin1String(kChargeQuery)] =
        QStringLiteral("EstimatedChargeRemaining  \r\r\n") + charge + QStringLiteral("  \r\r\n");
}

// One whole tick: the state query, the charge query 500 ms later, the display at 2000 ms.
void batteryTick(BatteryWidget &widget, ManualScheduler &scheduler)
{
    widget.timeout_slot();
    QCoreApplication::processEvents();
    scheduler.advance(500);
    QCoreApplication::processEvents();
    scheduler.advance(1500);
}

} // namespace

class DesktopWidgetsTest : public QObject {
    Q_OBJECT
private slots:
    void usageWidgetIsAFloatingToolWindow();
    void usageTickShowsFiguresFromTheSecondSample();
    void usageNetworkTakesFirstBusyInterfacePerType();
    void usageWithoutTrafficKeepsItsLabels();
    void usageFailingCallsKeepTheirLabels();
    void usageFontColourAndPeriod();
    void draggingMovesAndSavesTheGeometry();
    void savedGeometryComesBack();

    void batteryTickQueriesThenShows();
    void batteryKeepsLabelsOnUnknownCodesAndNoBattery();
    void batteryQueryStillRunningIsNotRestarted();
    void batteryFontColourAndPeriod();

    void startupCreatesParentlessWidgets();
    void widgetsClaimOnlyTheirLabels_data();
    void widgetsClaimOnlyTheirLabels();
    void checkBoxCreatesWidgetOwnedByTheWindow();
    void checkBoxSwitchesOffAndOnAgain();
    void colourBoxesAndSliders();
    void missingFontSizesKeepTheSliders();

private:
    static float scale() { return UsageWidget::screenScaleFactor(); }
};

void DesktopWidgetsTest::usageWidgetIsAFloatingToolWindow()
{
    TestFolder folder;
    FakePlatform fake;
    UsageWidget widget(fake.sampler);
    QVERIFY(widget.windowFlags().testFlag(Qt::Tool));
    QVERIFY(widget.windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(widget.testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(widget.size(), QSize(int(800 * scale()), int(600 * scale())));
    QCOMPARE(widget.minimumSize(), widget.maximumSize());
    const char *order[] = {"processor", "memory", "disk", "upload", "download"};
    for (int i = 0; i < 5; ++i)
        QCOMPARE(label(&widget, order[i])->pos(), QPoint(0, int(i * 20 * scale())));
    QCOMPARE(labelSheets(&widget), QStringList{"color:white;"});
    QCOMPARE(timerIntervals(&widget), QList<int>({1000, 1000}));
}

void DesktopWidgetsTest::usageTickShowsFiguresFromTheSecondSample()
{
    TestFolder folder;
    FakePlatform fake;
    const quint64 base = (quint64(5) << 32) + 12345;
    fake.sampler->idleTime = base;
    fake.sampler->kernelTime = base * 2;
    fake.sampler->userTime = 1000;
    fake.sampler->interfaces = {{6, 10000, 5000}};
    fake.sampler->freeBytes = (quint64(250) << 30) + (quint64(1023) << 20);
    QList<int> clock = {200, 700};
    UsageWidget widget(fake.sampler, nullptr, [&clock] { return clock.takeFirst(); });

    widget.timeout_slot();
    QCOMPARE(text(&widget, "memory"), QStringLiteral("RAM 50%"));
    QCOMPARE(text(&widget, "disk"), QStringLiteral("C: 250GB"));
    QCOMPARE(text(&widget, "processor"), QString());
    QCOMPARE(text(&widget, "upload"), QString());

    fake.sampler->idleTime += 5000000;
    fake.sampler->kernelTime += 8000000;
    fake.sampler->userTime += 12000000;
    // 1.5 s passed by the millisecond clock (1000 - 200 + 700).
    fake.sampler->interfaces = {{6, 10000 + 3072, 5000 + 1536}};
    fake.sampler->availablePhysical = 4ull << 30;
    widget.timeout_slot();
    QCOMPARE(text(&widget, "processor"), QStringLiteral("CPU 75%"));
    QCOMPARE(text(&widget, "memory"), QStringLiteral("RAM 75%"));
    QCOMPARE(text(&widget, "upload"), QStringLiteral("↑ 1KB/s"));
    QCOMPARE(text(&widget, "download"), QStringLiteral("↓ 2KB/s"));
}

void DesktopWidgetsTest::usageNetworkTakesFirstBusyInterfacePerType()
{
    TestFolder folder;
    FakePlatform fake;
    // An idle adapter, then one busy adapter listed through three filter layers, then Wi-Fi.
    fake.sampler->interfaces = {{6, 0, 0}, {6, 1000, 100}, {6, 1000, 100}, {71, 500, 50}};
    UsageWidget widget(fake.sampler, nullptr, [] { return 0; });
    widget.timeout_slot();
    fake.sampler->interfaces = {{6, 0, 0}, {6, 1100, 150}, {6, 1100, 150}, {71, 700, 60}};
    widget.timeout_slot();
    QCOMPARE(text(&widget, "download"), QStringLiteral("↓ 300B/s"));
    QCOMPARE(text(&widget, "upload"), QStringLiteral("↑ 60B/s"));
}

void DesktopWidgetsTest::usageWithoutTrafficKeepsItsLabels()
{
    TestFolder folder;
    FakePlatform fake;
    fake.sampler->interfaces = {{6, 0, 0}, {71, 0, 0}};
    UsageWidget widget(fake.sampler, nullptr, [] { return 0; });
    widget.timeout_slot();
    widget.timeout_slot();
    QCOMPARE(text(&widget, "upload"), QString());
    QCOMPARE(text(&widget, "download"), QString());

    // Received only: the sent sum stays 0, and a zero previous sum shows nothing.
    fake.sampler->interfaces = {{6, 500, 0}};
    widget.timeout_slot();
    fake.sampler->interfaces = {{6, 900, 0}};
    widget.timeout_slot();
    QCOMPARE(text(&widget, "download"), QString());

    fake.sampler->interfaces = {{6, 500, 40}};
    widget.timeout_slot();
    fake.sampler->interfaces = {{6, 900, 50}};
    widget.timeout_slot();
    QCOMPARE(text(&widget, "download"), QStringLiteral("↓ 400B/s"));
    // Traffic stops: the first tick computes from the dropped sum, the next ones keep it.
    fake.sampler->interfaces = {};
    widget.timeout_slot();
    const QString afterDrop = text(&widget, "download");
    QVERIFY(afterDrop != QStringLiteral("↓ 400B/s"));
    widget.timeout_slot();
    widget.timeout_slot();
    QCOMPARE(text(&widget, "download"), afterDrop);
}

void DesktopWidgetsTest::usageFailingCallsKeepTheirLabels()
{
    TestFolder folder;
    FakePlatform fake;
    const quint64 base = (quint64(5) << 32) + 1;
    fake.sampler->idleTime = base;
    fake.sampler->kernelTime = base * 2;
    UsageWidget widget(fake.sampler, nullptr, [] { return 0; });
    widget.timeout_slot();
    fake.sampler->idleTime += 100;
    fake.sampler->kernelTime += 100;
    fake.sampler->userTime += 100;
    widget.timeout_slot();
    QCOMPARE(text(&widget, "processor"), QStringLiteral("CPU 50%"));
    QCOMPARE(text(&widget, "memory"), QStringLiteral("RAM 50%"));

    fake.sampler->memoryOk = false;
    fake.sampler->timesOk = false;
    fake.sampler->availablePhysical = 0;
    fake.sampler->idleTime += 100;
    fake.sampler->kernelTime += 100;
    widget.timeout_slot();
    QCOMPARE(text(&widget, "processor"), QStringLiteral("CPU 50%"));
    QCOMPARE(text(&widget, "memory"), QStringLiteral("RAM 50%"));

    // A small previous idle time (32-bit high half zero) counts as no sample yet.
    UsageWidget fresh(fake.sampler, nullptr, [] { return 0; });
    fake.sampler->timesOk = true;
    fake.sampler->idleTime = 1000;
    fresh.timeout_slot();
    fake.sampler->idleTime = 2000;
    fake.sampler->kernelTime += 5000;
    fresh.timeout_slot();
    QCOMPARE(text(&fresh, "processor"), QString());
}

void DesktopWidgetsTest::usageFontColourAndPeriod()
{
    TestFolder folder;
    FakePlatform fake;
    UsageWidget widget(fake.sampler);
    widget.fontsize(10);
    const char *order[] = {"processor", "memory", "disk", "upload", "download"};
    for (int i = 0; i < 5; ++i) {
        QLabel *l = label(&widget, order[i]);
        QCOMPARE(l->font().family(), QStringLiteral("Segoe UI"));
        QCOMPARE(l->font().pointSize(), 10);
        QCOMPARE(l->pos(), QPoint(0, int((2 * i + 1) * 10 * scale())));
    }
    widget.color(1);
    QCOMPARE(labelSheets(&widget), QStringList{"color:black;"});
    widget.color(2);
    QCOMPARE(labelSheets(&widget), QStringList{"color:black;"});
    widget.color(0);
    QCOMPARE(labelSheets(&widget), QStringList{"color:white;"});
    widget.period1s_slot();
    QCOMPARE(timerIntervals(&widget), QList<int>({1000, 1000}));

    QPointer<UsageWidget> closing = new UsageWidget(fake.sampler);
    closing->closemainwidget();
    flushDeletes();
    QVERIFY(closing.isNull());
}

void DesktopWidgetsTest::draggingMovesAndSavesTheGeometry()
{
    TestFolder folder;
    folder.mkdir(QStringLiteral("settings"));
    FakePlatform fake;
    UsageWidget widget(fake.sampler);
    widget.move(100, 100);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    const QPoint start = widget.frameGeometry().topLeft();
    drag(&widget, start + QPoint(10, 10), start + QPoint(60, 40));
    QCOMPARE(widget.frameGeometry().topLeft(), start + QPoint(50, 30));
    const QByteArray saved =
        folder.ini(QLatin1String(kWidgetFile), QStringLiteral("mainWindowGeometry")).toByteArray();
    QCOMPARE(saved, widget.saveGeometry());

    BatteryWidget battery(fake.bundle());
    battery.move(300, 300);
    battery.show();
    QVERIFY(QTest::qWaitForWindowExposed(&battery));
    const QPoint batteryStart = battery.frameGeometry().topLeft();
    drag(&battery, batteryStart + QPoint(5, 5), batteryStart + QPoint(25, 45));
    QCOMPARE(battery.frameGeometry().topLeft(), batteryStart + QPoint(20, 40));
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("batteryWindowGeometry"))
                 .toByteArray(),
             battery.saveGeometry());
}

void DesktopWidgetsTest::savedGeometryComesBack()
{
    TestFolder folder;
    FakePlatform fake;
    QByteArray usageGeometry;
    QByteArray batteryGeometry;
    {
        UsageWidget first(fake.sampler);
        first.move(210, 120);
        usageGeometry = first.saveGeometry();
        BatteryWidget battery(fake.bundle());
        battery.move(330, 40);
        batteryGeometry = battery.saveGeometry();
    }
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("mainWindowGeometry"), usageGeometry);
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("batteryWindowGeometry"),
                  batteryGeometry);
    UsageWidget again(fake.sampler);
    QCOMPARE(again.pos(), QPoint(210, 120));
    BatteryWidget batteryAgain(fake.bundle());
    QCOMPARE(batteryAgain.pos(), QPoint(330, 40));
}

void DesktopWidgetsTest::batteryTickQueriesThenShows()
{
    TestFolder folder;
    FakePlatform fake;
    scriptBattery(fake, QStringLiteral("2"), QStringLiteral("87"));
    BatteryWidget widget(fake.bundle());
    QVERIFY(widget.windowFlags().testFlag(Qt::Tool));
    QVERIFY(widget.testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(widget.size(), QSize(int(800 * scale()), int(600 * scale())));
    QCOMPARE(label(&widget, "charge")->pos(), QPoint(0, int(5 * scale())));
    QCOMPARE(labelSheets(&widget), QStringList{"color:white;"});

    widget.timeout_slot();
    QCOMPARE(fake.log->withPrefix(QStringLiteral("process: ")),
             QStringList{QStringLiteral("process: ") + QLatin1String(kStateQuery)});
    QCOMPARE(fake.scheduler->history, QStringList({"500 updater2do", "2000 updatevalues"}));
    QCoreApplication::processEvents();
    fake.scheduler->advance(500);
    QCOMPARE(fake.log->withPrefix(QStringLiteral("process: ")).last(),
             QStringLiteral("process: ") + QLatin1String(kChargeQuery));
    QCoreApplication::processEvents();
    QCOMPARE(text(&widget, "state"), QString());
    fake.scheduler->advance(1500);
    QCOMPARE(text(&widget, "state"), QStringLiteral("AC Power"));
    QCOMPARE(text(&widget, "charge"), QStringLiteral("87%"));
}

void DesktopWidgetsTest::batteryKeepsLabelsOnUnknownCodesAndNoBattery()
{
    TestFolder folder;
    FakePlatform fake;
    scriptBattery(fake, QStringLiteral("6"), QStringLiteral("55"));
    BatteryWidget widget(fake.bundle());
    batteryTick(widget, *fake.scheduler);
    QCOMPARE(text(&widget, "state"), QStringLiteral("Battery Charging"));

    for (const char *code : {"10", "12"}) {
        scriptBattery(fake, QLatin1String(code), QStringLiteral("56"));
        batteryTick(widget, *fake.scheduler);
        QCOMPARE(text(&widget, "state"), QStringLiteral("Battery Charging"));
        QCOMPARE(text(&widget, "charge"), QStringLiteral("56%"));
    }

    // No battery: the tool prints the header alone.
    fake.commands->asyncOutputs[QLatin1String(kStateQuery)] =
        QStringLiteral("BatteryStatus  \r\r\n");
    fake.commands->asyncOutputs[QLatin1String(kChargeQuery)] =
        QStringLiteral("EstimatedChargeRemaining  \r\r\n");
    batteryTick(widget, *fake.scheduler);
    QCOMPARE(text(&widget, "state"), QStringLiteral("Battery Charging"));
    QCOMPARE(text(&widget, "charge"), QStringLiteral("56%"));
}

void DesktopWidgetsTest::batteryQueryStillRunningIsNotRestarted()
{
    TestFolder folder;
    FakePlatform fake;
    scriptBattery(fake, QStringLiteral("1"), QStringLiteral("40"));
    BatteryWidget widget(fake.bundle());
    widget.timeout_slot();
    widget.timeout_slot(); // the first answer has not arrived yet
    QCOMPARE(fake.log->withPrefix(QStringLiteral("process: ")).size(), 1);
    QCOMPARE(fake.scheduler->history.size(), 4);
    QCoreApplication::processEvents();
    widget.timeout_slot();
    QCOMPARE(fake.log->withPrefix(QStringLiteral("process: ")).size(), 2);
}

void DesktopWidgetsTest::batteryFontColourAndPeriod()
{
    TestFolder folder;
    FakePlatform fake;
    BatteryWidget widget(fake.bundle());
    widget.fontsize(10);
    QCOMPARE(label(&widget, "state")->font().pointSize(), 10);
    QCOMPARE(label(&widget, "charge")->font().pointSize(), 18);
    QCOMPARE(label(&widget, "charge")->font().family(), QStringLiteral("Segoe UI"));
    QCOMPARE(label(&widget, "charge")->pos(), QPoint(0, int(14 * scale())));
    widget.color(1);
    QCOMPARE(labelSheets(&widget), QStringList{"color:black;"});
    widget.color(7);
    QCOMPARE(labelSheets(&widget), QStringList{"color:black;"});
    widget.period1s_slot();
    QCOMPARE(timerIntervals(&widget), QList<int>({1000, 1500}));
}

void DesktopWidgetsTest::widgetsClaimOnlyTheirLabels_data()
{
    QTest::addColumn<bool>("translucent");
    QTest::newRow("with a compositor") << true;
    QTest::newRow("without a compositor") << false;
}

void DesktopWidgetsTest::widgetsClaimOnlyTheirLabels()
{
    QFETCH(bool, translucent);
    TestFolder folder;
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("resorceswidget"), 1);
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("batterywidget"), 1);
    FakePlatform fake;
    fake.desktop->translucent = translucent;
    MainWindow w(fake.bundle());
    emit w.fontsize(24);
    const QList<QWidget *> widgets = {w.widgets()->usageWidget(), w.widgets()->batteryWidget()};
    for (QWidget *widget : widgets) {
        QVERIFY(widget);
        QCOMPARE(widget->testAttribute(Qt::WA_TranslucentBackground), translucent);
        QCOMPARE(widget->autoFillBackground(), !translucent);
        QRegion labels;
        for (QLabel *l : widget->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly))
            if (!l->isHidden())
                labels += l->geometry();
        QVERIFY(!labels.isEmpty());
        // The empty rest of the window is not the widget's: clicks there reach the desktop.
        QCOMPARE(widget->mask(), labels);
        QVERIFY(!widget->mask().contains(QPoint(widget->width() - 2, widget->height() - 2)));
    }
}

void DesktopWidgetsTest::startupCreatesParentlessWidgets()
{
    TestFolder folder;
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("resorceswidget"), 1);
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("resorceswidgetfontsize"), 14);
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("resources_color"), 1);
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("batterywidget"), 1);
    folder.setIni(QLatin1String(kWidgetFile), QStringLiteral("batterywidgetfontsize"), 6);
    FakePlatform fake;
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    QVERIFY(ui->StartResorcescheckBox->isChecked());
    QVERIFY(ui->colorchange->isChecked());
    QVERIFY(ui->StartBatteryWidget->isChecked());
    QVERIFY(!ui->colorchange_battery->isChecked());
    QCOMPARE(ui->horizontalSliderResorcesFONTsize->value(), 14);
    QCOMPARE(ui->fontsize_label->text(), QStringLiteral("14px"));
    QCOMPARE(ui->fontsize_battery->text(), QStringLiteral("6px"));

    QPointer<UsageWidget> usage = w.widgets()->usageWidget();
    QPointer<BatteryWidget> battery = w.widgets()->batteryWidget();
    QVERIFY(usage && battery);
    QCOMPARE(usage->parentWidget(), nullptr);
    QCOMPARE(battery->parentWidget(), nullptr);
    QVERIFY(usage->isVisible() && battery->isVisible());
    QCOMPARE(label(usage, "memory")->font().pointSize(), 14);
    QCOMPARE(labelSheets(usage), QStringList{"color:black;"});
    QCOMPARE(label(battery, "charge")->font().pointSize(), 14);
    QCOMPARE(labelSheets(battery), QStringList{"color:white;"});

    // The window's own signals reach them.
    emit w.fontsize(20);
    QCOMPARE(label(usage, "disk")->font().pointSize(), 20);
    emit w.closebattery();
    flushDeletes();
    QVERIFY(battery.isNull());
    delete usage;
}

void DesktopWidgetsTest::checkBoxCreatesWidgetOwnedByTheWindow()
{
    TestFolder folder;
    folder.mkdir(QStringLiteral("settings"));
    FakePlatform fake;
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    ui->colorchange->setChecked(true);
    ui->StartResorcescheckBox->click();
    QPointer<UsageWidget> usage = w.widgets()->usageWidget();
    QVERIFY(usage);
    QCOMPARE(usage->parentWidget(), &w);
    QVERIFY(usage->isVisible());
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("resorceswidget")).toInt(), 1);
    QCOMPARE(label(usage, "memory")->font().pointSize(), 9);
    // Switched on with "Invert Colors" set, the new widget is inverted at once.
    QCOMPARE(labelSheets(usage), QStringList{"color:black;"});

    ui->StartBatteryWidget->click();
    QPointer<BatteryWidget> battery = w.widgets()->batteryWidget();
    QVERIFY(battery);
    QCOMPARE(battery->parentWidget(), nullptr);
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("batterywidget")).toInt(), 1);
    QCOMPARE(label(battery, "state")->font().pointSize(), 8);
    delete battery;
}

void DesktopWidgetsTest::checkBoxSwitchesOffAndOnAgain()
{
    TestFolder folder;
    folder.mkdir(QStringLiteral("settings"));
    FakePlatform fake;
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    ui->StartResorcescheckBox->click();
    ui->StartBatteryWidget->click();
    QPointer<UsageWidget> usage = w.widgets()->usageWidget();
    QPointer<BatteryWidget> battery = w.widgets()->batteryWidget();

    ui->StartResorcescheckBox->click();
    ui->StartBatteryWidget->click();
    flushDeletes();
    QVERIFY(usage.isNull());
    QVERIFY(battery.isNull());
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("resorceswidget")).toInt(), 0);
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("batterywidget")).toInt(), 0);

    ui->StartResorcescheckBox->click();
    QVERIFY(w.widgets()->usageWidget());
    QVERIFY(w.widgets()->usageWidget() != usage.data());
}

void DesktopWidgetsTest::colourBoxesAndSliders()
{
    TestFolder folder;
    folder.mkdir(QStringLiteral("settings"));
    FakePlatform fake;
    MainWindow w(fake.bundle());
    Ui::MainWindow *ui = w.form();
    ui->StartResorcescheckBox->click();
    ui->StartBatteryWidget->click();
    UsageWidget *usage = w.widgets()->usageWidget();
    QPointer<BatteryWidget> battery = w.widgets()->batteryWidget();

    ui->colorchange->click();
    QCOMPARE(labelSheets(usage), QStringList{"color:black;"});
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("resources_color")).toInt(), 1);
    ui->colorchange->click();
    QCOMPARE(labelSheets(usage), QStringList{"color:white;"});
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("resources_color")).toInt(), 0);
    ui->colorchange_battery->click();
    QCOMPARE(labelSheets(battery), QStringList{"color:black;"});
    QCOMPARE(labelSheets(usage), QStringList{"color:white;"});
    QCOMPARE(folder.ini(QLatin1String(kWidgetFile), QStringLiteral("battery_color")).toInt(), 1);

    ui->horizontalSliderResorcesFONTsize->setValue(12);
    QCOMPARE(ui->fontsize_label->text(), QStringLiteral("12px"));
    QCOMPARE(label(usage, "upload")->font().pointSize(), 12);
    QCOMPARE(
        folder.ini(QLatin1String(kWidgetFile), QStringLiteral("resorceswidgetfontsize")).toInt(),
        12);
    ui->horizontalSlider_Battery_FONTsize->setValue(10);
    QCOMPARE(ui->fontsize_battery->text(), QStringLiteral("10px"));
    QCOMPARE(label(battery, "charge")->font().pointSize(), 18);
    QCOMPARE(
        folder.ini(QLatin1String(kWidgetFile), QStringLiteral("batterywidgetfontsize")).toInt(),
        10);
    delete battery;
}

void DesktopWidgetsTest::missingFontSizesKeepTheSliders()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());
    QCOMPARE(w.form()->horizontalSliderResorcesFONTsize->value(), 9);
    QCOMPARE(w.form()->horizontalSlider_Battery_FONTsize->value(), 8);
    QVERIFY(!w.widgets()->usageWidget());
    QVERIFY(!w.widgets()->batteryWidget());
}

QTEST_MAIN(DesktopWidgetsTest)
#include "tst_desktopwidgets.moc"
