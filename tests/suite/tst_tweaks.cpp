#include "systemtweaks.h"
#include "testwindow.h"
#include "upperfilters.h"

#include <QtTest>

namespace {

const QString kControl = QStringLiteral(R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\)");
const QString kGraphicsDrivers = kControl + "GraphicsDrivers";
const QString kSessionPower = kControl + R"(Session Manager\Power)";
const QString kKeyboardClass = kControl + R"(Class\{4d36e96b-e325-11ce-bfc1-08002be10318})";
const QString kMouseClass = kControl + R"(Class\{4d36e96f-e325-11ce-bfc1-08002be10318})";
const QString kKeyboardFilters = kKeyboardClass + "|UpperFilters";
const QString kMouseFilters = kMouseClass + "|UpperFilters";

} // namespace

class TestTweaks : public QObject {
    Q_OBJECT

private slots:
    void filterRule_data()
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

    void filterRule()
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

    void eachBoxActsWhenCheckedAndIsRemembered_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QStringList>("checked");
        QTest::addColumn<QStringList>("unchecked"); // what a second click does
        const QString set = QStringLiteral("registry set: "), remove = "registry remove: ";
        const QString keyboard = kKeyboardClass, mouse = kMouseClass;
        const QString tdr = kGraphicsDrivers + ' ';
        const QString session = set + kSessionPower + " HiberbootEnabled = ";
        // Clean lists, or none at all, are not written again; unchecking only remembers.
        QTest::newRow("hotkey filter")
            << "check_hkfilter"
            << "hotkeyfilter"
            << QStringList{set + keyboard + " UpperFilters = kbdclass",
                           set + mouse + " UpperFilters = mouclass|HKKbdFltr"}
            << QStringList{};
        QTest::newRow("TDR delay")
            << "CheckTDRdelay"
            << "TDRdelay"
            << QStringList{set + tdr + "TdrDelay = 60", set + tdr + "TdrDdiDelay = 60"}
            << QStringList{remove + tdr + "TdrDelay", remove + tdr + "TdrDdiDelay"};
        QTest::newRow("fast startup")
            << "CheckDisableFastStartup"
            << "FastStartDisabled" << QStringList{session + "0"} << QStringList{session + "1"};
        // Unchecking a fix stops nothing and shows nothing.
        QTest::newRow("brightness fix")
            << "checkBox_3"
            << "brightfix"
            << QStringList{R"(shown 0: Libs\AuxSwitch.exe)", "message: Brightness Fix"}
            << QStringList{};
        QTest::newRow("headphone fix")
            << "checkBox_headphonefix"
            << "applyheadphone"
            << QStringList{R"(shown 0: Libs\InitHeadphone.exe)", R"(shown 0: Libs\PhoneJack.exe)"}
            << QStringList{};
    }

    void eachBoxActsWhenCheckedAndIsRemembered()
    {
        QFETCH(QString, box);
        QFETCH(QString, key);
        TestWindow p;
        p.fake.registry->values.insert(kKeyboardFilters,
                                       QStringList{"kbdclass", "HKKbdFltr", "HKKbdFltr"});
        p.fake.registry->values.insert(kMouseFilters,
                                       QStringList{"HKMouFltr", "mouclass", "HKKbdFltr"});
        p.start();
        auto *check = p.window->findChild<QCheckBox *>(box);
        check->click();
        QTEST(p.fake.log->entries, "checked");
        QCOMPARE(p.generalValue(qPrintable(key)).toString(), QStringLiteral("true"));
        p.fake.log->clear();
        check->click();
        QTEST(p.fake.log->entries, "unchecked");
        QCOMPARE(p.generalValue(qPrintable(key)).toString(), QStringLiteral("false"));
        if (box == QLatin1String("check_hkfilter")) {
            p.fake.registry->values.remove(kMouseFilters);
            p.fake.log->clear();
            check->click();
            QCOMPARE(p.fake.log->entries, QStringList());
            QVERIFY(!p.fake.registry->values.contains(kMouseFilters));
        }
    }

    void valuesHaveTheirRegistryTypes()
    {
        TestWindow p;
        p.start();
        QVERIFY(p.ui().label_windows_only->isHidden()); // the settings do apply here
        p.ui().CheckTDRdelay->click();
        p.ui().CheckDisableFastStartup->click();
        // A number, so the Windows registry stores a DWORD; the fast-startup switch is text.
        const auto &values = p.fake.registry->values;
        QCOMPARE(values.value(kGraphicsDrivers + "|TdrDelay").userType(), int(QMetaType::Int));
        QCOMPARE(values.value(kSessionPower + "|HiberbootEnabled"), QVariant(QStringLiteral("0")));
        QCOMPARE(p.fake.dialogs->shown.size(), 0);
        p.ui().checkBox_3->click();
        QCOMPARE(p.fake.dialogs->lines(),
                 QStringList("Question | Brightness Fix | A reboot may be "
                             "necessary for brightness controls to work!\n | Ok"));
    }

    void startupRestoresBoxesAndRepeatsOnlyTheHelpers()
    {
        TestWindow p;
        for (const char *key :
             {"TDRdelay", "hotkeyfilter", "FastStartDisabled", "brightfix", "applyheadphone"})
            p.setGeneral(key, true);
        p.fake.registry->values.insert(kKeyboardFilters, QStringList{"HKKbdFltr"});
        p.window = std::make_unique<MainWindow>(p.fake.bundle());
        const Ui::MainWindow &ui = p.ui();
        for (QCheckBox *box : {ui.CheckTDRdelay, ui.check_hkfilter, ui.CheckDisableFastStartup,
                               ui.checkBox_3, ui.checkBox_headphonefix})
            QVERIFY2(box->isChecked(), qPrintable(box->objectName()));
        QCOMPARE(p.fake.log->withPrefix("registry "), QStringList());
        // Hidden at start; only a resume shows the headphone helpers.
        QCOMPARE(p.fake.log->entries.filter(R"(Libs\)"),
                 QStringList({R"(shown 0: Libs\InitHeadphone.exe)",
                              R"(shown 0: Libs\PhoneJack.exe)", R"(shown 0: Libs\AuxSwitch.exe)"}));
    }

    void tabSaysWhereTheSettingsApply()
    {
        TestWindow p;
        p.fake.registry->machineSettings = false;
        p.start();
        QVERIFY(!p.ui().label_windows_only->isHidden());
        QCOMPARE(p.ui().label_windows_only->text(),
                 QStringLiteral("Windows only: the five fixes below change Windows settings and "
                                "start Windows helper programs, so they are switched off here."));
        // Remembered all the same.
        p.ui().CheckTDRdelay->click();
        QCOMPARE(p.generalValue("TDRdelay").toString(), QStringLiteral("true"));
    }
};

QTEST_MAIN(TestTweaks)
#include "tst_tweaks.moc"
