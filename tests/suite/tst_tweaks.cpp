#include "fakeplatform.h"
#include "mainwindow.h"
#include "systemtweaks.h"
#include "testfolder.h"
#include "ui_mainwindow.h"
#include "upperfilters.h"

#include <QtTest>

namespace {

const QString kGeneral = QStringLiteral("settings/varnel.ini");

QString stored(const TestFolder &folder, const char *key)
{
    return folder.ini(kGeneral, QLatin1String(key)).toString();
}

QString regKey(const QString &key, const char *name)
{
    return key + QLatin1Char('|') + QLatin1String(name);
}

} // namespace

class TestTweaks : public QObject {
    Q_OBJECT

private slots:
    void filterRule_data();
    void filterRule();
    void hotkeyBoxRemovesBothClassFilters();
    void uncheckingHotkeyBoxOnlyRemembers();
    void tdrDelayIsSetAndRemovedWhoeverSetIt();
    void fastStartupIsWrittenAsText();
    void brightnessAndHeadphoneFixes();
    void startupRestoresBoxesAndRepeatsOnlyTheHelpers();
    void tabSaysWhereTheSettingsApply();
};

void TestTweaks::filterRule_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<bool>("rewritten");
    QTest::addColumn<QStringList>("after");

    QTest::newRow("another driver first")
        << QStringList{"kbdclass", "HKKbdFltr"} << true << QStringList{"kbdclass"};
    QTest::newRow("none") << QStringList{} << false << QStringList{};
    QTest::newRow("without the filter")
        << QStringList{"kbdclass", "i8042prt"} << false << QStringList{"kbdclass", "i8042prt"};
    QTest::newRow("duplicates, order kept")
        << QStringList{"HKKbdFltr", "a", "HKKbdFltr", "b", "HKKbdFltr"} << true
        << QStringList{"a", "b"};
    QTest::newRow("filter alone") << QStringList{"HKKbdFltr"} << true << QStringList{};
    QTest::newRow("case differs") << QStringList{"hkkbdfltr", "HKKBDFLTR"} << false
                                  << QStringList{"hkkbdfltr", "HKKBDFLTR"};
}

void TestTweaks::filterRule()
{
    QFETCH(QStringList, before);
    QFETCH(bool, rewritten);
    QFETCH(QStringList, after);

    QStringList list = before;
    QCOMPARE(removeFilterDriver(list, QStringLiteral("HKKbdFltr")), rewritten);
    QCOMPARE(list, after);

    // The same rule over the Windows backend's list type.
    std::vector<std::wstring> wide;
    for (const QString &s : before)
        wide.push_back(s.toStdWString());
    QCOMPARE(removeFilterDriver(wide, std::wstring(L"HKKbdFltr")), rewritten);
    QCOMPARE(int(wide.size()), after.size());
}

void TestTweaks::hotkeyBoxRemovesBothClassFilters()
{
    TestFolder folder;
    FakePlatform fake;
    auto &values = fake.registry->values;
    values.insert(regKey(SystemTweaks::keyboardClassKey, "UpperFilters"),
                  QStringList{"kbdclass", "HKKbdFltr", "HKKbdFltr"});
    values.insert(regKey(SystemTweaks::mouseClassKey, "UpperFilters"),
                  QStringList{"HKMouFltr", "mouclass", "HKKbdFltr"});
    MainWindow w(fake.bundle());
    fake.log->clear();

    w.form()->check_hkfilter->click();
    QCOMPARE(stored(folder, "hotkeyfilter"), QStringLiteral("true"));
    QCOMPARE(
        fake.log->withPrefix("registry "),
        QStringList({"registry set: " + SystemTweaks::keyboardClassKey + " UpperFilters = kbdclass",
                     "registry set: " + SystemTweaks::mouseClassKey +
                         " UpperFilters = mouclass|HKKbdFltr"}));
    QCOMPARE(values.value(regKey(SystemTweaks::mouseClassKey, "UpperFilters")).toStringList(),
             QStringList({"mouclass", "HKKbdFltr"}));

    // Clean lists, or none at all, are not written again.
    fake.log->clear();
    values.remove(regKey(SystemTweaks::mouseClassKey, "UpperFilters"));
    w.form()->check_hkfilter->click();
    w.form()->check_hkfilter->click();
    QCOMPARE(fake.log->withPrefix("registry "), QStringList());
    QVERIFY(!values.contains(regKey(SystemTweaks::mouseClassKey, "UpperFilters")));
}

void TestTweaks::uncheckingHotkeyBoxOnlyRemembers()
{
    TestFolder folder;
    FakePlatform fake;
    fake.registry->values.insert(regKey(SystemTweaks::keyboardClassKey, "UpperFilters"),
                                 QStringList{"HKKbdFltr"});
    MainWindow w(fake.bundle());
    w.form()->check_hkfilter->setChecked(true);
    fake.log->clear();
    w.form()->check_hkfilter->click();
    QCOMPARE(stored(folder, "hotkeyfilter"), QStringLiteral("false"));
    QCOMPARE(fake.log->withPrefix("registry "), QStringList());
}

void TestTweaks::tdrDelayIsSetAndRemovedWhoeverSetIt()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());
    const QString key = SystemTweaks::graphicsDriversKey;
    fake.log->clear();

    w.form()->CheckTDRdelay->click();
    QCOMPARE(fake.log->withPrefix("registry "),
             QStringList({"registry set: " + key + " TdrDelay = 60",
                          "registry set: " + key + " TdrDdiDelay = 60"}));
    // A number, so the Windows registry stores a DWORD.
    QCOMPARE(fake.registry->values.value(regKey(key, "TdrDelay")).userType(), int(QMetaType::Int));
    QCOMPARE(stored(folder, "TDRdelay"), QStringLiteral("true"));

    fake.registry->values.insert(regKey(key, "TdrDelay"), 8);
    fake.registry->values.insert(regKey(key, "TdrDdiDelay"), 10);
    fake.log->clear();
    w.form()->CheckTDRdelay->click();
    QCOMPARE(fake.log->withPrefix("registry "),
             QStringList({"registry remove: " + key + " TdrDelay",
                          "registry remove: " + key + " TdrDdiDelay"}));
    QVERIFY(!fake.registry->contains(key, "TdrDelay"));
    QVERIFY(!fake.registry->contains(key, "TdrDdiDelay"));
    QCOMPARE(stored(folder, "TDRdelay"), QStringLiteral("false"));
}

void TestTweaks::fastStartupIsWrittenAsText()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());
    const QString key = SystemTweaks::sessionPowerKey;

    w.form()->CheckDisableFastStartup->click();
    const QVariant off = fake.registry->values.value(regKey(key, "HiberbootEnabled"));
    QCOMPARE(off.userType(), int(QMetaType::QString));
    QCOMPARE(off.toString(), QStringLiteral("0"));
    QCOMPARE(stored(folder, "FastStartDisabled"), QStringLiteral("true"));

    w.form()->CheckDisableFastStartup->click();
    QCOMPARE(fake.registry->values.value(regKey(key, "HiberbootEnabled")),
             QVariant(QStringLiteral("1")));
    QCOMPARE(stored(folder, "FastStartDisabled"), QStringLiteral("false"));
}

void TestTweaks::brightnessAndHeadphoneFixes()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());
    fake.log->clear();

    w.form()->checkBox_3->click();
    QCOMPARE(stored(folder, "brightfix"), QStringLiteral("true"));
    QCOMPARE(fake.log->entries,
             QStringList({R"(shown 0: Libs\AuxSwitch.exe)", "message: Brightness Fix"}));
    QCOMPARE(fake.dialogs->shown.last().text,
             QStringLiteral("A reboot may be necessary for brightness controls to work!\n"));
    QCOMPARE(fake.dialogs->shown.last().icon, QMessageBox::Question);
    QCOMPARE(fake.dialogs->shown.last().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));

    w.form()->checkBox_headphonefix->click();
    QCOMPARE(stored(folder, "applyheadphone"), QStringLiteral("true"));
    QCOMPARE(fake.log->withPrefix("shown ").mid(1),
             QStringList({R"(shown 0: Libs\InitHeadphone.exe)", R"(shown 0: Libs\PhoneJack.exe)"}));

    // Unchecking stops nothing and shows nothing.
    fake.log->clear();
    w.form()->checkBox_3->click();
    w.form()->checkBox_headphonefix->click();
    QCOMPARE(fake.log->entries, QStringList());
    QCOMPARE(stored(folder, "brightfix"), QStringLiteral("false"));
    QCOMPARE(stored(folder, "applyheadphone"), QStringLiteral("false"));
}

void TestTweaks::startupRestoresBoxesAndRepeatsOnlyTheHelpers()
{
    TestFolder folder;
    for (const char *key :
         {"TDRdelay", "hotkeyfilter", "FastStartDisabled", "brightfix", "applyheadphone"})
        folder.setIni(kGeneral, key, true);
    FakePlatform fake;
    fake.registry->values.insert(regKey(SystemTweaks::keyboardClassKey, "UpperFilters"),
                                 QStringList{"HKKbdFltr"});
    MainWindow w(fake.bundle());
    const Ui::MainWindow &ui = *w.form();

    for (QCheckBox *box : {ui.CheckTDRdelay, ui.check_hkfilter, ui.CheckDisableFastStartup,
                           ui.checkBox_3, ui.checkBox_headphonefix})
        QVERIFY2(box->isChecked(), qPrintable(box->objectName()));
    QCOMPARE(fake.log->withPrefix("registry set"), QStringList());
    QCOMPARE(fake.log->withPrefix("registry remove"), QStringList());
    // Hidden at start; only a resume shows the headphone helpers.
    const QStringList helpers = {R"(shown 0: Libs\InitHeadphone.exe)",
                                 R"(shown 0: Libs\PhoneJack.exe)",
                                 R"(shown 0: Libs\AuxSwitch.exe)"};
    QStringList started;
    for (const QString &e : fake.log->withPrefix("shown "))
        if (e.contains("Libs\\"))
            started << e;
    QCOMPARE(started, helpers);
}

void TestTweaks::tabSaysWhereTheSettingsApply()
{
    TestFolder folder;
    {
        FakePlatform windows;
        MainWindow w(windows.bundle());
        QVERIFY(w.form()->label_windows_only->isHidden());
    }
    FakePlatform elsewhere;
    elsewhere.registry->machineSettings = false;
    MainWindow w(elsewhere.bundle());
    QVERIFY(!w.form()->label_windows_only->isHidden());
    QVERIFY(w.form()->label_windows_only->text().contains("Windows"));

    // Remembered all the same.
    w.form()->CheckTDRdelay->click();
    QCOMPARE(stored(folder, "TDRdelay"), QStringLiteral("true"));
}

QTEST_MAIN(TestTweaks)
#include "tst_tweaks.moc"
