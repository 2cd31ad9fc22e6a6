#include "supportpage.h"
#include "testwindow.h"

#include <QtTest>

namespace {
const QString kBranding = QStringLiteral("branding/varnel_branding.ini");
}

class TestSupport : public QObject {
    Q_OBJECT

private slots:
    void brandingFillsTheSupportTab()
    {
        TestWindow p;
        p.folder.copyShipped(kBranding);
        p.folder.setIni(kBranding, "supporttext4", "Call 0800, or write");
        p.folder.setIni(kBranding, "supportpageURL", "https://help.example.org/ticket?x=1");
        p.start();
        const Ui::MainWindow &ui = p.ui();
        QCOMPARE(ui.Title->text(), QStringLiteral("Varnel Control Center"));
        QCOMPARE(ui.Label_Support->text(), QStringLiteral("TALVERON-PC Support"));
        QCOMPARE(
            ui.Label_Support2->text(),
            QStringLiteral("To get support you can open a ticket in our website or start a chat."));
        QCOMPARE(ui.Label_Support4->text(), QStringLiteral("Call 0800, or write"));
        QVERIFY(!ui.Button_OnlineChat->isHidden());
        ui.Button_SupportPage->click();
        ui.Button_OnlineChat->click();
        ui.Button_RemoteControl->click();
        QCOMPARE(p.fake.log->entries,
                 QStringList({"open url: https://help.example.org/ticket?x=1",
                              "open url: https://support.talveron-pc.example/chat",
                              "shown 1: Remote.exe"}));
    }

    void withoutBrandingFileTheTabIsEmpty()
    {
        TestWindow p;
        p.start();
        const Ui::MainWindow &ui = p.ui();
        for (QLabel *label :
             {ui.Label_Support, ui.Label_Support2, ui.Label_Support3, ui.Label_Support4})
            QCOMPARE(label->text(), QString());
        QVERIFY(ui.Button_OnlineChat->isHidden());
        // The built-in addresses are replaced by the file's, empty ones included.
        QVERIFY(p.window->findChild<SupportPage *>()->supportPageUrl().isEmpty());
        ui.Button_SupportPage->click();
        QCOMPARE(p.fake.log->entries, QStringList());
    }

    // The chat button's switch, and the one brand whose updater button opens its website instead
    // (the brand word is case-sensitive).
    void brandingSwitches_data()
    {
        QTest::addColumn<QString>("appname");
        QTest::addColumn<QVariant>("chat"); // invalid: key missing
        QTest::addColumn<bool>("chatHidden");
        QTest::addColumn<QString>("style");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("started");
        auto row = [](const char *name, const char *appname, const QVariant &chat, bool hidden) {
            QTest::newRow(name) << appname << chat << hidden << QString() << "Updater"
                                << "shown 4: Updater.exe";
        };
        row("chat true", "Brand", true, false);
        row("chat false", "Brand", false, true);
        row("chat missing", "Brand", QVariant(), true);
        row("chat zero", "Brand", "0", true);
        row("Qira", "Qira Control", QVariant(), true);
        QTest::newRow("QIRA") << "QIRA Control" << QVariant() << true
                              << "border-image: url(branding/qira.png);"
                              << "Website"
                              << "open url: https://qira.example/";
    }

    void brandingSwitches()
    {
        QFETCH(QString, appname);
        QFETCH(QVariant, chat);
        TestWindow p;
        p.folder.setIni(kBranding, "appname", appname);
        p.folder.setIni(kBranding, "websiteURL", "https://qira.example/");
        if (chat.isValid())
            p.folder.setIni(kBranding, "showonlinechatbutton", chat);
        p.start();
        QTEST(p.ui().Button_OnlineChat->isHidden(), "chatHidden");
        QTEST(p.ui().Button_Updater->styleSheet(), "style");
        QTEST(p.ui().Label_Updater->text(), "label");
        p.ui().Button_Updater->click();
        QTEST(p.fake.log->entries.join('\n'), "started");
    }

    // Every link of the branding file: the support page, the chat and the brand's website.
    void onlyWebAddressesAreOpened_data()
    {
        QTest::addColumn<QString>("link");
        QTest::addColumn<QString>("opened"); // empty: not opened
        auto row = [](const char *name, const char *link, const char *opened) {
            QTest::newRow(name) << QString(link) << QString(opened);
        };
        row("https", "https://help.example.org/a?b=1", "https://help.example.org/a?b=1");
        row("http", "http://help.example.org/", "http://help.example.org/");
        row("upper-case scheme", "HTTPS://help.example.org/", "https://help.example.org/");
        row("local program", R"(C:\Windows\System32\cmd.exe)", "");
        row("file", "file:///C:/Users/Public/run.bat", "");
        row("share", R"(\\server\share\tool.exe)", "");
        row("script", "javascript:alert(1)", "");
        row("other scheme", "ms-settings:display", "");
        row("no host", "https:///path", "");
    }

    void onlyWebAddressesAreOpened()
    {
        QFETCH(QString, link);
        QFETCH(QString, opened);
        TestWindow p;
        p.folder.setIni(kBranding, "appname", "QIRA Control");
        p.folder.setIni(kBranding, "showonlinechatbutton", true);
        for (const char *key : {"supportpageURL", "onlinechatURL", "websiteURL"})
            p.folder.setIni(kBranding, key, link);
        p.start();
        p.ui().Button_SupportPage->click();
        p.ui().Button_OnlineChat->click();
        p.ui().Button_Updater->click();
        const QString entry = QStringLiteral("open url: ") + opened;
        const QStringList expected =
            opened.isEmpty() ? QStringList() : QStringList{entry, entry, entry};
        QCOMPARE(p.fake.log->withPrefix("open url"), expected);
    }
};

QTEST_MAIN(TestSupport)
#include "tst_support.moc"
