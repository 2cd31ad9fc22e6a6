// The Linux panel backlight and keyboard LED against fixture trees shaped like /sys/class.
#include "backlight.h"
#include "keyboardlight.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {
struct Fixture {
    QTemporaryDir dir;

    void device(const QString &name, const QString &type, int max, int raw) const
    {
        QDir(dir.path()).mkpath(name);
        write(name + "/type", type);
        write(name + "/max_brightness", QString::number(max));
        write(name + "/brightness", QString::number(raw));
        write(name + "/actual_brightness", QString::number(raw));
    }
    void write(const QString &relative, const QString &text) const
    {
        QFile file(dir.filePath(relative));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8() + '\n');
    }
    int raw(const QString &name) const
    {
        QFile file(dir.filePath(name + "/brightness"));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : -2;
    }
};

const SysfsBacklight::SessionWriter noSession = [](const QString &, quint32) { return false; };
} // namespace

class SysfsBacklightTest : public QObject {
    Q_OBJECT

private slots:
    void choosesFirmwareOverPlatformOverRaw_data()
    {
        QTest::addColumn<QStringList>("devices"); // name:type
        QTest::addColumn<QString>("chosen");
        QTest::newRow("firmware wins")
            << QStringList{"amdgpu_bl0:raw", "acpi_video0:firmware", "dell_backlight:platform"}
            << "acpi_video0";
        QTest::newRow("platform over raw")
            << QStringList{"intel_backlight:raw", "nv:platform"} << "nv";
        QTest::newRow("same type by name") << QStringList{"b:raw", "a:raw"} << "a";
        QTest::newRow("unknown type last") << QStringList{"odd:other", "z:raw"} << "z";
    }

    // The session writer is tried first, with the chosen device.
    void choosesFirmwareOverPlatformOverRaw()
    {
        QFETCH(QStringList, devices);
        QFETCH(QString, chosen);
        Fixture f;
        for (const QString &d : devices)
            f.device(d.section(':', 0, 0), d.section(':', 1), 255, 10);
        QStringList calls;
        SysfsBacklight panel(f.dir.path(), [&](const QString &device, quint32 raw) {
            calls << QStringLiteral("%1 %2").arg(device).arg(raw);
            f.write(device + "/brightness", QString::number(raw)); // as logind would
            return true;
        });
        QCOMPARE(panel.deviceName(), chosen);
        panel.write(40);
        QCOMPARE(calls, QStringList{chosen + " 102"});
        QCOMPARE(panel.read(), 40);
    }

    // Reading raw as a share of max, and writing a share, never below raw level 1.
    void levels_data()
    {
        QTest::addColumn<int>("max");
        QTest::addColumn<int>("raw");
        QTest::addColumn<int>("percent");
        QTest::addColumn<bool>("reading"); // raw -> percent, else percent -> raw
        const int rows[][4] = {{7, 0, 0, 1},      {7, 3, 43, 1},      {7, 7, 100, 1},
                               {255, 128, 50, 1}, {255, 300, 100, 1}, {96000, 24000, 25, 1},
                               {7, 1, 0, 0},      {7, 1, 5, 0},       {7, 1, 10, 0},
                               {255, 1, 0, 0},    {255, 3, 1, 0},     {96000, 1, 0, 0},
                               {1, 1, 0, 0},      {255, 255, 100, 0}, {255, 255, 250, 0}};
        for (const auto &r : rows)
            QTest::addRow("%s %d/%d, %d%%", r[3] ? "read" : "write", r[1], r[0], r[2])
                << r[0] << r[1] << r[2] << bool(r[3]);
    }

    void levels()
    {
        QFETCH(int, max);
        QFETCH(int, raw);
        QFETCH(int, percent);
        QFETCH(bool, reading);
        Fixture f;
        f.device("acpi_video0", "firmware", max, reading ? raw : max);
        SysfsBacklight panel(f.dir.path(), noSession);
        if (!reading) {
            panel.write(quint32(percent));
            QCOMPARE(f.raw("acpi_video0"), raw);
            QCOMPARE(panel.read(), qMin(percent, 100)); // what was written, not the rounded raw
            // Someone else moved the panel: the reading follows the device again.
            f.write("acpi_video0/brightness", "0");
            percent = 0;
        }
        QCOMPARE(panel.read(), percent);
    }

    void noDeviceReadsMinusOneAndIgnoresWrites()
    {
        Fixture f;
        bool called = false;
        SysfsBacklight panel(f.dir.path(), [&](const QString &, quint32) { return called = true; });
        QCOMPARE(panel.read(), -1);
        panel.write(50);
        QVERIFY(!called);
        QVERIFY(panel.providerInstalled());
        QCOMPARE(SysfsBacklight(f.dir.filePath("missing"), noSession).read(), -1);
        f.device("broken", "raw", 0, 5); // a device without a usable maximum is no device
        QCOMPARE(panel.read(), -1);
    }

    void keyboardLightLevels_data()
    {
        QTest::addColumn<int>("max");
        QTest::addColumn<int>("percent");
        QTest::addColumn<int>("raw");
        QTest::newRow("3 steps, dark") << 3 << 0 << 0;
        QTest::newRow("3 steps, half") << 3 << 50 << 2;
        QTest::newRow("3 steps, full") << 3 << 100 << 3;
        QTest::newRow("255, 40%") << 255 << 40 << 102;
        QTest::newRow("above 100") << 255 << 140 << 255;
    }

    void keyboardLightLevels()
    {
        QFETCH(int, max);
        QFETCH(int, percent);
        QFETCH(int, raw);
        Fixture f;
        f.device("input3::capslock", "", 1, 0);
        f.device("rgb:kbd_backlight", "", max, 7); // not the keyboard's name pattern
        f.device("tpacpi::kbd_backlight", "", max, 7);
        QStringList calls;
        const auto session = [&](const QString &led, quint32 value) {
            calls << QStringLiteral("%1 %2").arg(led).arg(value);
            return true;
        };
        LedKeyboardLight(f.dir.path(), session).setLevel(percent);
        QCOMPARE(calls, QStringList{QStringLiteral("tpacpi::kbd_backlight %1").arg(raw)});
        QCOMPARE(f.raw("tpacpi::kbd_backlight"), 7);

        LedKeyboardLight(f.dir.path(), [](const QString &, quint32) {
            return false;
        }).setLevel(percent);
        QCOMPARE(f.raw("tpacpi::kbd_backlight"), raw);
        QCOMPARE(f.raw("input3::capslock"), 0);

        Fixture none;
        none.device("input3::capslock", "", 1, 0);
        LedKeyboardLight(none.dir.path(), session).setLevel(percent);
        QCOMPARE(calls.size(), 1);
    }
};

QTEST_GUILESS_MAIN(SysfsBacklightTest)
#include "tst_sysfsbacklight.moc"
