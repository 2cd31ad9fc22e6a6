#include "fakeplatform.h"
#include "mainwindow.h"
#include "supportpage.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QtTest>

namespace {
const QString kBranding = QStringLiteral("branding//varnel_branding.ini");
}

class TestSupport : public QObject {
    Q_OBJECT

private slots:
    void brandingFillsTheSupportTab();
    void chatButtonRule_data();
    void chatButtonRule();
    void withoutBrandingFileTheTabIsEmpty();
    void aQiraBrandTurnsTheUpdaterIntoItsWebsite();
    void onlyWebAddressesAreOpened_data();
    void onlyWebAddressesAreOpened();
    void otherBrandsKeepTheUpdater();
    void remoteControlStartsTheTool();
};

void TestSupport::brandingFillsTheSupportTab()
{
    TestFolder folder;
    folder.copyShipped("branding/varnel_branding.ini");
    folder.setIni(kBranding, "supporttext4", "Call 0800, or write");
    folder.setIni(kBranding, "supportpageURL", "https://help.example.org/ticket?x=1");
    FakePlatform fake;
    MainWindow w(fake.bundle());
    const Ui::MainWindow &ui = *w.form();

    QCOMPARE(ui.Title->text(), QStringLiteral("Varnel Control Center"));
    QCOMPARE(ui.Label_Support->text(), QStringLiteral("TALVERON-PC Support"));
    QCOMPARE(
        ui.Label_Support2->text(),
        QStringLiteral("To get support you can open a ticket in our website or start a chat."));
    QCOMPARE(ui.Label_Support4->text(), QStringLiteral("Call 0800, or write"));
    QVERIFY(!ui.Button_OnlineChat->isHidden());

    fake.log->clear();
    ui.Button_SupportPage->click();
    ui.Button_OnlineChat->click();
    QCOMPARE(fake.log->entries,
             QStringList({"open url: https://help.example.org/ticket?x=1",
                          "open url: https://support.talveron-pc.example/chat"}));
}

void TestSupport::chatButtonRule_data()
{
    QTest::addColumn<QVariant>("show"); // invalid: key missing
    QTest::addColumn<bool>("hidden");
    QTest::newRow("true") << QVariant(true) << false;
    QTest::newRow("false") << QVariant(false) << true;
    QTest::newRow("missing") << QVariant() << true;
    QTest::newRow("zero") << QVariant("0") << true;
}

void TestSupport::chatButtonRule()
{
    QFETCH(QVariant, show);
    QFETCH(bool, hidden);
    TestFolder folder;
    folder.setIni(kBranding, "appname", "Brand");
    if (show.isValid())
        folder.setIni(kBranding, "showonlinechatbutton", show);
    FakePlatform fake;
    MainWindow w(fake.bundle());
    QCOMPARE(w.form()->Button_OnlineChat->isHidden(), hidden);
}

void TestSupport::withoutBrandingFileTheTabIsEmpty()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());
    const Ui::MainWindow &ui = *w.form();
    for (QLabel *label :
         {ui.Label_Support, ui.Label_Support2, ui.Label_Support3, ui.Label_Support4})
        QCOMPARE(label->text(), QString());
    QVERIFY(ui.Button_OnlineChat->isHidden());
    // The built-in addresses are replaced by the file's, empty ones included.
    auto *support = w.findChild<SupportPage *>();
    QVERIFY(support->supportPageUrl().isEmpty());
    fake.log->clear();
    ui.Button_SupportPage->click();
    QCOMPARE(fake.log->entries, QStringList());
}

void TestSupport::aQiraBrandTurnsTheUpdaterIntoItsWebsite()
{
    TestFolder folder;
    folder.setIni(kBranding, "appname", "QIRA Control");
    folder.setIni(kBranding, "websiteURL", "https://qira.example/");
    FakePlatform fake;
    MainWindow w(fake.bundle());
    const Ui::MainWindow &ui = *w.form();
    QCOMPARE(ui.Button_Updater->styleSheet(),
             QStringLiteral("border-image: url(branding/qira.png);"));
    QCOMPARE(ui.Label_Updater->text(), QStringLiteral("Website"));

    fake.log->clear();
    ui.Button_Updater->click();
    QCOMPARE(fake.log->entries, QStringList({"open url: https://qira.example/"}));
}

// Every link of the branding file: the support page, the chat and the brand's website.
void TestSupport::onlyWebAddressesAreOpened_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("opened"); // empty: not opened
    QTest::newRow("https") << "https://help.example.org/a?b=1"
                           << "https://help.example.org/a?b=1";
    QTest::newRow("http") << "http://help.example.org/"
                          << "http://help.example.org/";
    QTest::newRow("upper-case scheme") << "HTTPS://help.example.org/"
                                       << "https://help.example.org/";
    QTest::newRow("local program") << R"(C:\Windows\System32\cmd.exe)"
                                   << "";
    QTest::newRow("file") << "file:///C:/Users/Public/run.bat"
                          << "";
    QTest::newRow("share") << R"(\\server\share\tool.exe)"
                           << "";
    QTest::newRow("script") << "javascript:alert(1)"
                            << "";
    QTest::newRow("other scheme") << "ms-settings:display"
                                  << "";
    QTest::newRow("no host") << "https:///path"
                             << "";
}

void TestSupport::onlyWebAddressesAreOpened()
{
    QFETCH(QString, link);
    QFETCH(QString, opened);
    TestFolder folder;
    folder.setIni(kBranding, "appname", "QIRA Control");
    folder.setIni(kBranding, "showonlinechatbutton", true);
    for (const char *key : {"supportpageURL", "onlinechatURL", "websiteURL"})
        folder.setIni(kBranding, key, link);
    FakePlatform fake;
    MainWindow w(fake.bundle());
    const Ui::MainWindow &ui = *w.form();
    fake.log->clear();
    ui.Button_SupportPage->click();
    ui.Button_OnlineChat->click();
    ui.Button_Updater->click();
    const QString entry = QStringLiteral("open url: ") + opened;
    const QStringList expected =
        opened.isEmpty() ? QStringList() : QStringList{entry, entry, entry};
    QCOMPARE(fake.log->withPrefix("open url"), expected);
}

void TestSupport::otherBrandsKeepTheUpdater()
{
    TestFolder folder;
    // The brand word is case-sensitive.
    folder.setIni(kBranding, "appname", "Qira Control");
    FakePlatform fake;
    MainWindow w(fake.bundle());
    const Ui::MainWindow &ui = *w.form();
    QCOMPARE(ui.Button_Updater->styleSheet(), QString());
    QCOMPARE(ui.Label_Updater->text(), QStringLiteral("Updater"));
    fake.log->clear();
    ui.Button_Updater->click();
    QCOMPARE(fake.log->withPrefix("open url"), QStringList());
    QCOMPARE(fake.log->withPrefix("shown "), QStringList({"shown 4: Updater.exe"}));
}

void TestSupport::remoteControlStartsTheTool()
{
    TestFolder folder;
    FakePlatform fake;
    MainWindow w(fake.bundle());
    fake.log->clear();
    w.form()->Button_RemoteControl->click();
    QCOMPARE(fake.log->entries, QStringList({"shown 1: Remote.exe"}));
}

QTEST_MAIN(TestSupport)
#include "tst_support.moc"
