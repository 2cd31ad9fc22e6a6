// The real window over the real Windows bundle under Wine: what a click does reaches the system
// (powercfg through its stand-in in the system folder, the registry checked with reg query).
#include "fakedevices.h"
#include "mainwindow.h"
#include "platform.h"
#include "systemtweaks.h"
#include "testfolder.h"
#include "ui_mainwindow.h"
#include "winglue.h"

#include <QtTest>

#include <memory>

namespace {

const QString kSystemFolder = QStringLiteral("C:/windows/system32");
const QString kPowercfgLog = kSystemFolder + QStringLiteral("/powercfg.log");
// The laptop maker's WMI brightness provider, which Wine lacks; the window looks for its file.
const QString kProvider = QStringLiteral("C:/Windows/SysWOW64/CLEVOMOF.dll");

QStringList powercfgCalls()
{
    QFile log(kPowercfgLog);
    if (!log.open(QIODevice::ReadOnly))
        return {};
    return QString::fromLatin1(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// reg query's exit status and output for one value.
QPair<int, QString> regQuery(const QString &key, const QString &value)
{
    QProcess reg;
    reg.start(QStringLiteral("reg"), {QStringLiteral("query"), key, QStringLiteral("/v"), value});
    if (!reg.waitForFinished(30000))
        return {-1, QStringLiteral("reg query did not finish")};
    return {reg.exitCode(), QString::fromLocal8Bit(reg.readAllStandardOutput())};
}

QStringList acDcPair(const QString &verb, const QString &tail)
{
    return {"powercfg -setac" + verb + tail, "powercfg -setdc" + verb + tail};
}

const QString kActivate = QStringLiteral("powercfg -SetActive SCHEME_CURRENT");

} // namespace

class NativeWindowTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void nativeBundleIsTheWindowsOne();
    void powerModeSwitchRunsPowercfgInOrder();
    void tdrTweakWritesAndRemovesItsRegistryValues();

private:
    std::unique_ptr<MainWindow> startWindow(const TestFolder &folder);
};

void NativeWindowTest::initTestCase()
{
    // Wine has no powercfg; the stand-in goes where system tools are started from.
    QFile::remove(kSystemFolder + QStringLiteral("/powercfg.exe"));
    QVERIFY(QFile::copy(QStringLiteral(VARNEL_TEST_BIN_DIR "/wine_e2e/standin/powercfg.exe"),
                        kSystemFolder + QStringLiteral("/powercfg.exe")));
    QFile provider(kProvider);
    QVERIFY(provider.open(QIODevice::WriteOnly));
}

void NativeWindowTest::cleanupTestCase()
{
    QFile::remove(kSystemFolder + QStringLiteral("/powercfg.exe"));
    QFile::remove(kPowercfgLog);
    QFile::remove(kProvider);
}

std::unique_ptr<MainWindow> NativeWindowTest::startWindow(const TestFolder &folder)
{
    folder.copyShipped(QStringLiteral("settings/default_power_mode.ini"));
    folder.setIni(QStringLiteral("settings/varnel.ini"), QStringLiteral("enable_power_modes"),
                  true);
    folder.setIni(QStringLiteral("settings/varnel.ini"), QStringLiteral("powermode"),
                  QStringLiteral("normal"));
    // Everything native except the message boxes, which would wait for a user.
    Platform platform = nativePlatform();
    platform.dialogs = std::make_shared<FakeDialogs>(std::make_shared<OperationLog>());
    auto window = std::make_unique<MainWindow>(platform);
    window->show();
    return window;
}

void NativeWindowTest::nativeBundleIsTheWindowsOne()
{
    const Platform platform = nativePlatform();
    QVERIFY(dynamic_cast<WinCommandRunner *>(platform.commands.get()));
    QVERIFY(dynamic_cast<WinRegistry *>(platform.registry.get()));
}

void NativeWindowTest::powerModeSwitchRunsPowercfgInOrder()
{
    TestFolder folder;
    auto window = startWindow(folder);
    Ui::MainWindow *ui = window->form();
    QFile::remove(kPowercfgLog);

    ui->silent_mode->click();

    // The silent profile of the shipped defaults; the scheme keeps the panel's brightness.
    const QString scheme = QStringLiteral(" SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 "
                                          "aded5e82-b909-4619-9949-f5d71dac0bcb %1")
                               .arg(ui->Slider_Brightness->value());
    const QString lid = QStringLiteral(" SCHEME_CURRENT 4f971e89-eebd-4455-a8de-9e59040e7347 "
                                       "5ca83367-6e45-459f-a27b-476b1d01c936 1");
    const QStringList expected =
        acDcPair(QStringLiteral("valueindex"), scheme) +
        acDcPair(QStringLiteral("valueindex"), " SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMIN 5") +
        acDcPair(QStringLiteral("valueindex"), " SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 80") +
        QStringList{"powercfg -change -monitor-timeout-ac 15",
                    "powercfg -change -monitor-timeout-dc 15",
                    "powercfg -change -x -standby-timeout-ac 30",
                    "powercfg -change -x -standby-timeout-dc 30",
                    "powercfg setacvalueindex" + lid,
                    "powercfg setdcvalueindex" + lid};
    // The scheme is re-activated after every pair without waiting, so those calls may land
    // between the next pair's; the pairs themselves run strictly in order.
    const auto pairs = [] {
        QStringList calls = powercfgCalls();
        calls.removeAll(kActivate);
        return calls;
    };
    QTRY_COMPARE_WITH_TIMEOUT(pairs().size(), expected.size(), 30000);
    QCOMPARE(pairs(), expected);
    QTRY_COMPARE(powercfgCalls().count(kActivate), 6);
}

void NativeWindowTest::tdrTweakWritesAndRemovesItsRegistryValues()
{
    TestFolder folder;
    auto window = startWindow(folder);
    QCheckBox *box = window->form()->CheckTDRdelay;
    const QString key = SystemTweaks::graphicsDriversKey;
    if (box->isChecked())
        box->click();

    box->click();
    for (const QString value : {QStringLiteral("TdrDelay"), QStringLiteral("TdrDdiDelay")}) {
        const auto [status, output] = regQuery(key, value);
        QCOMPARE(status, 0);
        QVERIFY2(output.contains(QRegularExpression(value + "\\s+REG_DWORD\\s+0x3c")),
                 qPrintable(output));
    }

    box->click();
    for (const QString value : {QStringLiteral("TdrDelay"), QStringLiteral("TdrDdiDelay")})
        QCOMPARE(regQuery(key, value).first, 1);
}

QTEST_MAIN(NativeWindowTest)
#include "nativewindow.moc"
