// The Linux panel backlight against fixture trees shaped like /sys/class/backlight.
#include "backlight.h"
#include "keyboardlight.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class SysfsBacklightTest : public QObject {
    Q_OBJECT

private slots:
    void choosesFirmwareOverPlatformOverRaw_data();
    void choosesFirmwareOverPlatformOverRaw();
    void readsAsPercent_data();
    void readsAsPercent();
    void writtenValueReadsBack_data();
    void writtenValueReadsBack();
    void lowestWrittenLevelKeepsThePanelLit_data();
    void lowestWrittenLevelKeepsThePanelLit();
    void sessionWriterIsTriedFirst();
    void noDeviceReadsMinusOneAndIgnoresWrites();
    void providerCountsAsInstalled();
    void keyboardLightLevels_data();
    void keyboardLightLevels();
};

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
        if (!file.open(QIODevice::ReadOnly))
            return -2;
        return file.readAll().trimmed().toInt();
    }
};

const SysfsBacklight::SessionWriter noSession = [](const QString &, quint32) { return false; };
} // namespace

void SysfsBacklightTest::choosesFirmwareOverPlatformOverRaw_data()
{
    QTest::addColumn<QStringList>("devices"); // name:type
    QTest::addColumn<QString>("chosen");
    QTest::newRow("firmware wins")
        << QStringList{"amdgpu_bl0:raw", "acpi_video0:firmware", "dell_backlight:platform"}
        << "acpi_video0";
    QTest::newRow("platform over raw") << QStringList{"intel_backlight:raw", "nv:platform"} << "nv";
    QTest::newRow("same type by name") << QStringList{"b:raw", "a:raw"} << "a";
    QTest::newRow("unknown type last") << QStringList{"odd:other", "z:raw"} << "z";
}

void SysfsBacklightTest::choosesFirmwareOverPlatformOverRaw()
{
    QFETCH(QStringList, devices);
    QFETCH(QString, chosen);
    Fixture f;
    for (const QString &d : devices)
        f.device(d.section(':', 0, 0), d.section(':', 1), 100, 10);
    SysfsBacklight panel(f.dir.path(), noSession);
    QCOMPARE(panel.deviceName(), chosen);
}

void SysfsBacklightTest::readsAsPercent_data()
{
    QTest::addColumn<int>("max");
    QTest::addColumn<int>("raw");
    QTest::addColumn<int>("percent");
    QTest::newRow("7 steps, off") << 7 << 0 << 0;
    QTest::newRow("7 steps, 3") << 7 << 3 << 43;
    QTest::newRow("7 steps, full") << 7 << 7 << 100;
    QTest::newRow("255, half") << 255 << 128 << 50;
    QTest::newRow("255, full") << 255 << 255 << 100;
    QTest::newRow("above max") << 255 << 300 << 100;
    QTest::newRow("96000") << 96000 << 24000 << 25;
}

void SysfsBacklightTest::readsAsPercent()
{
    QFETCH(int, max);
    QFETCH(int, raw);
    QFETCH(int, percent);
    Fixture f;
    f.device("intel_backlight", "raw", max, raw);
    QCOMPARE(SysfsBacklight(f.dir.path(), noSession).read(), percent);
}

void SysfsBacklightTest::writtenValueReadsBack_data()
{
    QTest::addColumn<int>("max");
    QTest::newRow("7") << 7;
    QTest::newRow("255") << 255;
    QTest::newRow("120000") << 120000;
}

void SysfsBacklightTest::writtenValueReadsBack()
{
    QFETCH(int, max);
    Fixture f;
    f.device("intel_backlight", "raw", max, 0);
    SysfsBacklight panel(f.dir.path(), noSession);
    for (int percent = 0; percent <= 100; ++percent) {
        panel.write(static_cast<quint32>(percent));
        QCOMPARE(f.raw("intel_backlight"), backlightPercentToRaw(percent, max));
        QCOMPARE(panel.read(), percent);
    }
    // Someone else moved the panel: the reading follows the device again.
    f.write("intel_backlight/brightness", QString::number(max));
    QCOMPARE(panel.read(), 100);
    // Levels above 100 are taken as 100.
    panel.write(250);
    QCOMPARE(f.raw("intel_backlight"), max);
}

void SysfsBacklightTest::lowestWrittenLevelKeepsThePanelLit_data()
{
    QTest::addColumn<int>("max");
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("raw");
    QTest::newRow("7 steps, 0%") << 7 << 0 << 1;
    QTest::newRow("7 steps, 5% rounds to off") << 7 << 5 << 1;
    QTest::newRow("7 steps, 10%") << 7 << 10 << 1;
    QTest::newRow("255, 0%") << 255 << 0 << 1;
    QTest::newRow("255, 1%") << 255 << 1 << 3;
    QTest::newRow("96000, 0%") << 96000 << 0 << 1;
    QTest::newRow("1 step, 0%") << 1 << 0 << 1;
    QTest::newRow("255, full") << 255 << 100 << 255;
}

void SysfsBacklightTest::lowestWrittenLevelKeepsThePanelLit()
{
    QFETCH(int, max);
    QFETCH(int, percent);
    QFETCH(int, raw);
    Fixture f;
    f.device("acpi_video0", "firmware", max, max);
    SysfsBacklight panel(f.dir.path(), noSession);
    panel.write(static_cast<quint32>(percent));
    QCOMPARE(f.raw("acpi_video0"), raw);
    QCOMPARE(panel.read(), percent);
}

void SysfsBacklightTest::sessionWriterIsTriedFirst()
{
    Fixture f;
    f.device("amdgpu_bl1", "raw", 255, 10);
    QStringList calls;
    SysfsBacklight panel(f.dir.path(), [&](const QString &device, quint32 raw) {
        calls << QStringLiteral("%1 %2").arg(device).arg(raw);
        f.write(device + "/brightness", QString::number(raw)); // as logind would
        return true;
    });
    panel.write(40);
    QCOMPARE(calls, QStringList{"amdgpu_bl1 102"});
    QCOMPARE(panel.read(), 40);
}

void SysfsBacklightTest::noDeviceReadsMinusOneAndIgnoresWrites()
{
    Fixture f;
    bool called = false;
    SysfsBacklight panel(f.dir.path(), [&](const QString &, quint32) { return called = true; });
    QCOMPARE(panel.read(), -1);
    panel.write(50);
    QVERIFY(!called);
    QCOMPARE(SysfsBacklight(f.dir.filePath("missing"), noSession).read(), -1);
    // A device without a usable maximum is no device.
    f.device("broken", "raw", 0, 5);
    QCOMPARE(panel.read(), -1);
}

void SysfsBacklightTest::providerCountsAsInstalled()
{
    Fixture f;
    QVERIFY(SysfsBacklight(f.dir.path(), noSession).providerInstalled());
}

void SysfsBacklightTest::keyboardLightLevels_data()
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

void SysfsBacklightTest::keyboardLightLevels()
{
    QFETCH(int, max);
    QFETCH(int, percent);
    QFETCH(int, raw);
    Fixture f;
    f.device("input3::capslock", "", 1, 0);
    f.device("rgb:kbd_backlight", "", max, 7); // not the keyboard's name pattern
    f.device("tpacpi::kbd_backlight", "", max, 7);

    QStringList calls;
    LedKeyboardLight viaSession(f.dir.path(), [&](const QString &led, quint32 value) {
        calls << QStringLiteral("%1 %2").arg(led).arg(value);
        return true;
    });
    viaSession.setLevel(percent);
    QCOMPARE(calls, QStringList{QStringLiteral("tpacpi::kbd_backlight %1").arg(raw)});
    QCOMPARE(f.raw("tpacpi::kbd_backlight"), 7);

    LedKeyboardLight direct(f.dir.path(), [](const QString &, quint32) { return false; });
    direct.setLevel(percent);
    QCOMPARE(f.raw("tpacpi::kbd_backlight"), raw);
    QCOMPARE(f.raw("input3::capslock"), 0);

    Fixture none;
    none.device("input3::capslock", "", 1, 0);
    LedKeyboardLight absent(none.dir.path(), [&](const QString &, quint32) {
        calls << QStringLiteral("called");
        return true;
    });
    absent.setLevel(percent);
    QCOMPARE(calls.size(), 1);
}

QTEST_GUILESS_MAIN(SysfsBacklightTest)
#include "tst_sysfsbacklight.moc"
