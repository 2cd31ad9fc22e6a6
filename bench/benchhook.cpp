// Preloaded into a program under measurement (LD_PRELOAD); VARNEL_BENCH_HOOK picks what it does
// and VARNEL_BENCH_OUT names the file its one line of figures is appended to:
//   idle     end the process at the first idle event loop (for instruction counts)
//   mapped   print the wall clock (ns) when the first window is exposed, then end the process
//   stall    after the first idle loop, watch the event loop for VARNEL_BENCH_SECONDS and print
//            the longest time it did not get round to a 5 ms timer, in ms
//   switch   after the first idle loop, trigger the tray's "Silent Mode" and "Normal Mode" in
//            turn and print, in ms, the median and longest GUI-thread CPU time of one switch
//            after the first, the first's, and the median and longest wall time (which adds
//            waiting for the disk to take the remembered mode)
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QFile>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <ctime>
#include <unistd.h>

namespace {

void report(const QByteArray &line)
{
    QFile out(QString::fromLocal8Bit(qgetenv("VARNEL_BENCH_OUT")));
    if (out.open(QIODevice::Append))
        out.write(line + '\n');
}

qint64 wallNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

// Calls then() once, the first time the GUI thread's loop is about to wait with nothing to do.
void atFirstIdle(std::function<void()> then)
{
    QTimer::singleShot(0, qApp, [then] {
        auto *dispatcher = QAbstractEventDispatcher::instance();
        auto *once = new QObject(qApp);
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, once, [once, then] {
            if (QAbstractEventDispatcher::instance()->hasPendingEvents())
                return;
            once->deleteLater();
            QObject::disconnect(QAbstractEventDispatcher::instance(), nullptr, once, nullptr);
            then();
        });
    });
}

class ExposeWatch : public QObject {
protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Expose) {
            auto *window = qobject_cast<QWindow *>(watched);
            if (window && window->isExposed()) {
                report("mapped " + QByteArray::number(wallNanoseconds()));
                _exit(0);
            }
        }
        return false;
    }
};

void watchStalls()
{
    const int seconds = qEnvironmentVariableIntValue("VARNEL_BENCH_SECONDS");
    auto *clock = new QElapsedTimer;
    auto *longest = new qint64(0);
    auto *beat = new QTimer(qApp);
    beat->setTimerType(Qt::PreciseTimer);
    QObject::connect(beat, &QTimer::timeout, qApp,
                     [clock, longest] { *longest = std::max(*longest, clock->restart()); });
    clock->start();
    beat->start(5);
    QTimer::singleShot(seconds * 1000, qApp, [longest] {
        report("stall " + QByteArray::number(std::max<qint64>(0, *longest - 5)));
        _exit(0);
    });
}

QAction *trayAction(const QString &text)
{
    for (QWidget *top : QApplication::topLevelWidgets()) {
        for (QAction *action : top->findChildren<QAction *>()) {
            if (action->text() == text)
                return action;
        }
    }
    return nullptr;
}

qint64 threadCpuNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

QByteArray medianAndLongest(QVector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return QByteArray::number(ms.at(ms.size() / 2), 'f', 2) + ' ' +
           QByteArray::number(ms.last(), 'f', 2);
}

void timeSwitches()
{
    QAction *silent = trayAction(QStringLiteral("Silent Mode"));
    QAction *normal = trayAction(QStringLiteral("Normal Mode"));
    if (!silent || !normal) {
        report("switch none");
        _exit(1);
    }
    auto *cpu = new QVector<double>;
    auto *wall = new QVector<double>;
    auto *pace = new QTimer(qApp);
    QObject::connect(pace, &QTimer::timeout, qApp, [=] {
        QAction *next = cpu->size() % 2 ? normal : silent;
        QElapsedTimer held;
        const qint64 cpuBefore = threadCpuNanoseconds();
        held.start();
        next->trigger();
        wall->append(held.nsecsElapsed() / 1e6);
        cpu->append((threadCpuNanoseconds() - cpuBefore) / 1e6);
        if (cpu->size() < 20)
            return;
        // The first switch also decodes the tray's mode icons, once per run.
        report("switch " + medianAndLongest(cpu->mid(1)) + ' ' +
               QByteArray::number(cpu->first(), 'f', 2) + ' ' + medianAndLongest(wall->mid(1)));
        _exit(0);
    });
    pace->start(300);
}

void install()
{
    const QByteArray mode = qgetenv("VARNEL_BENCH_HOOK");
    if (mode == "idle") {
        atFirstIdle([] { _exit(0); });
    } else if (mode == "mapped") {
        qApp->installEventFilter(new ExposeWatch);
    } else if (mode == "stall") {
        atFirstIdle(watchStalls);
    } else if (mode == "switch") {
        atFirstIdle([] { QTimer::singleShot(1000, qApp, timeSwitches); });
    }
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(install)
