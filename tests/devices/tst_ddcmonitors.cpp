#include "ddcmonitors.h"
#include "fakeddcutil.h"

#include <QDir>
#include <QFile>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <dlfcn.h>
#include <utility>

namespace {

struct Monitor {
    DdcDisplay display;
    bool readable = true;
    quint32 current = 50;
    quint32 maximum = 100;
};

// A scripted DDC/CI channel that records every exchange; reads can be held to let requests
// pile up behind a slow monitor.
class ScriptedBus : public DdcBus {
public:
    QVector<DdcDisplay> displays() override
    {
        std::lock_guard<std::mutex> lock(mutex);
        ++probes;
        QVector<DdcDisplay> out;
        for (const Monitor &m : monitors)
            out << m.display;
        return out;
    }
    bool read(const DdcDisplay &display, quint8 code, quint32 *current, quint32 *maximum) override
    {
        if (holdReads)
            released.acquire();
        std::lock_guard<std::mutex> lock(mutex);
        log << QStringLiteral("read %1 %2").arg(display.bus).arg(code);
        for (const Monitor &m : monitors) {
            if (m.display.bus == display.bus) {
                *current = m.current;
                *maximum = m.maximum;
                return m.readable;
            }
        }
        return false;
    }
    bool write(const DdcDisplay &display, quint8 code, quint32 value) override
    {
        std::lock_guard<std::mutex> lock(mutex);
        log << QStringLiteral("write %1 %2 %3").arg(display.bus).arg(code).arg(value);
        return true;
    }
    QStringList takeLog()
    {
        std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(log, {});
    }

    std::mutex mutex;
    QVector<Monitor> monitors;
    QStringList log;
    int probes = 0;
    std::atomic<bool> holdReads{false};
    QSemaphore released;
};

const ScreenIdentity kExternal{QStringLiteral("DP-1"), QStringLiteral("U2720Q"),
                               QStringLiteral("ABC123")};

} // namespace

class TestDdcMonitors : public QObject {
    Q_OBJECT

private slots:
    // Every monitor behind the screen, by connector or by EDID, is read, then written unless
    // it already shows the value or cannot take it; the others are left alone.
    void readCompareWrite_data()
    {
        QTest::addColumn<bool>("readable");
        QTest::addColumn<quint32>("current");
        QTest::addColumn<quint32>("maximum");
        QTest::addColumn<quint32>("value");
        QTest::addColumn<bool>("written");
        QTest::newRow("new value") << true << 50u << 100u << 30u << true;
        QTest::newRow("equal to current") << true << 70u << 100u << 70u << false;
        QTest::newRow("at maximum") << true << 10u << 80u << 80u << true;
        QTest::newRow("above maximum") << true << 10u << 80u << 81u << false;
        QTest::newRow("failed read") << false << 10u << 100u << 70u << false;
    }

    void readCompareWrite()
    {
        QFETCH(bool, readable);
        QFETCH(quint32, current);
        QFETCH(quint32, maximum);
        QFETCH(quint32, value);
        QFETCH(bool, written);
        auto *bus = new ScriptedBus;
        bus->monitors = {{DdcDisplay{3, "eDP-1"}},
                         {DdcDisplay{4, "DP-1"}, readable, current, maximum},
                         {DdcDisplay{5, "", "U2720Q", "ABC123"}},
                         {DdcDisplay{6, "HDMI-A-1"}}};
        DdcMonitorControl control{std::unique_ptr<DdcBus>(bus)};
        control.request(kExternal, 0x10, value);
        control.waitUntilIdle();
        QStringList log{"read 4 16"};
        if (written)
            log << QStringLiteral("write 4 16 %1").arg(value);
        QCOMPARE(bus->takeLog(), log << "read 5 16" << QStringLiteral("write 5 16 %1").arg(value));
    }

    void rapidMovesCollapseIntoTheLast()
    {
        auto *bus = new ScriptedBus;
        bus->monitors = {{DdcDisplay{4, "DP-1"}}};
        bus->holdReads = true;
        DdcMonitorControl control{std::unique_ptr<DdcBus>(bus)};
        control.request(kExternal, 0x10, 60);
        // The first exchange is under way (held in its read) while the slider keeps moving.
        QTRY_VERIFY(bus->released.available() == 0 && [&] {
            std::lock_guard<std::mutex> lock(bus->mutex);
            return bus->probes == 1;
        }());
        for (quint32 v = 61; v <= 90; ++v)
            control.request(kExternal, 0x10, v);
        bus->holdReads = false;
        bus->released.release(2);
        control.waitUntilIdle();
        QCOMPARE(bus->takeLog(),
                 QStringList({"read 4 16", "write 4 16 60", "read 4 16", "write 4 16 90"}));
    }

    // Without monitors nothing is sent and the bus is probed once, until the interval has
    // passed; a monitor plugged in since is then found.
    void unknownScreenProbesSparingly()
    {
        for (const int interval : {60000, 0}) {
            auto *bus = new ScriptedBus;
            DdcMonitorControl control{std::unique_ptr<DdcBus>(bus),
                                      std::chrono::milliseconds(interval)};
            for (int i = 0; i < 3; ++i) {
                control.request(kExternal, 0x10, quint32(20 + i));
                control.waitUntilIdle();
                std::lock_guard<std::mutex> lock(bus->mutex);
                bus->monitors = {{DdcDisplay{4, "DP-1"}}};
            }
            QCOMPARE(bus->takeLog(), interval ? QStringList()
                                              : QStringList({"read 4 16", "write 4 16 21",
                                                             "read 4 16", "write 4 16 22"}));
            QCOMPARE(bus->probes, interval ? 1 : 2);
        }
    }

    void sameMonitor()
    {
        const struct {
            const char *name, *connector, *model, *serial, *screen;
            bool same;
        } rows[] = {
            {"same connector", "DP-1", "", "", "DP-1", true},
            {"X11 drops the HDMI kind", "HDMI-A-1", "", "", "HDMI-1", true},
            {"old X11 driver", "HDMI-A-2", "", "", "HDMI2", true},
            {"DVI kind", "DVI-D-1", "", "", "DVI-1", true},
            {"other port", "DP-2", "", "", "DP-1", false},
            {"DP vs eDP", "eDP-1", "", "", "DP-1", false},
            {"by EDID", "", "U2720Q", "ABC123", "XWAYLAND0", true},
            {"EDID without serial", "", "U2720Q", "", "XWAYLAND0", true},
            {"EDID other serial", "", "U2720Q", "ZZZ", "XWAYLAND0", false},
            {"nothing known of either", "", "", "", "", false},
        };
        for (const auto &r : rows) {
            const ScreenIdentity screen =
                *r.screen
                    ? ScreenIdentity{r.screen, QStringLiteral("U2720Q"), QStringLiteral("ABC123")}
                    : ScreenIdentity{};
            const DdcDisplay display{1, r.connector, r.model, r.serial};
            QVERIFY2(ddc::sameMonitor(display, screen) == r.same, r.name);
        }
    }

    void connectorFromSysfs()
    {
        QTemporaryDir root;
        QDir dir(root.path());
        // HDMI names its adapter through a "ddc" link; DisplayPort carries it as a child.
        dir.mkpath(QStringLiteral("devices/i2c-7"));
        dir.mkpath(QStringLiteral("drm/card0-HDMI-A-1"));
        QVERIFY(QFile::link(root.filePath(QStringLiteral("devices/i2c-7")),
                            root.filePath(QStringLiteral("drm/card0-HDMI-A-1/ddc"))));
        dir.mkpath(QStringLiteral("drm/card1-DP-3/i2c-12"));
        dir.mkpath(QStringLiteral("drm/card0-eDP-1"));
        const QString drm = root.filePath(QStringLiteral("drm"));
        QCOMPARE(ddc::connectorForBus(7, drm), QStringLiteral("HDMI-A-1"));
        QCOMPARE(ddc::connectorForBus(12, drm), QStringLiteral("DP-3"));
        QCOMPARE(ddc::connectorForBus(1, drm), QString());
    }

    // The library's own entry points, answered by a stand-in that carries its name.
    void libraryExchanges()
    {
        void *library =
            dlopen(VARNEL_TEST_BIN_DIR "/devices/fakeddcutil/libddcutil.so.5", RTLD_NOW);
        QVERIFY2(library, dlerror());
        const auto *script = static_cast<const FakeDdcScript *>(dlsym(library, "fakeDdc"));
        LibDdcutilBus bus;
        const QVector<DdcDisplay> displays = bus.displays();
        QCOMPARE(displays.size(), 1); // the USB display is not spoken to over I2C
        QCOMPARE(
            (QStringList{QString::number(displays[0].bus), displays[0].model, displays[0].serial}),
            (QStringList{"7", "DELL U2719D", "ABC123"}));
        QCOMPARE(script->listsFreed, 1);
        quint32 current = 0, maximum = 0;
        QVERIFY(bus.read(displays[0], 0x10, &current, &maximum));
        QCOMPARE((QList<quint32>{current, maximum}), (QList<quint32>{258, 300}));
        QVERIFY(!bus.read(displays[0], 0x12, &current, &maximum));
        QVERIFY(bus.write(displays[0], 0x10, 0x1234));
        QCOMPARE(script->writes, 0x101234);
        DdcDisplay gone = displays[0];
        gone.bus = 9;
        QVERIFY(!bus.write(gone, 0x10, 1));
        // Every exchange opens the display once and lets go of it.
        QCOMPARE((QList<int>{script->opens, script->closes, script->identifiersFreed}),
                 (QList<int>{3, 3, 3}));
        dlclose(library);
    }
};

QTEST_GUILESS_MAIN(TestDdcMonitors)
#include "tst_ddcmonitors.moc"
