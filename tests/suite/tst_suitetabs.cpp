#include "cputuning.h"
#include "myeventfilter.h"
#include "supportpage.h"
#include "systemtweaks.h"
#include "testwindow.h"
#include "updatechecker.h"
#include "upperfilters.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

namespace {

// An HTTP server on 127.0.0.1 that answers every request with the same status and body, and
// remembers the request lines it saw.
class VersionServer : public QTcpServer {
public:
    int status = 200;
    QByteArray body;
    QStringList requests;
    bool silent = false; // take the request, never answer

    VersionServer()
    {
        connect(this, &QTcpServer::newConnection, [this] {
            while (QTcpSocket *socket = nextPendingConnection())
                serve(socket);
        });
    }
    QString address() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }
    void dropAll()
    {
        for (QTcpSocket *socket : findChildren<QTcpSocket *>())
            socket->abort();
    }

private:
    void serve(QTcpSocket *socket)
    {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            m_pending[socket] += socket->readAll();
            if (!m_pending[socket].contains("\r\n\r\n"))
                return;
            requests << QString::fromLatin1(m_pending.take(socket).split('\r').first());
            if (silent)
                return;
            socket->write("HTTP/1.1 " + QByteArray::number(status) + " Answer\r\n" +
                          "Content-Type: text/plain\r\nContent-Length: " +
                          QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
            socket->disconnectFromHost();
        });
    }

    QHash<QTcpSocket *, QByteArray> m_pending;
};

const QString kBranding = QStringLiteral("branding/varnel_branding.ini");
const QString kUpdater = QStringLiteral(R"(shown 1: updates\Update.exe)");
const QString kLatestText =
    QStringLiteral("You are running the latest version, there is no update.");
const QString kNoAnswerText =
    QStringLiteral("The update server did not answer with a version. Please try again later.");
const QString kUpdateText = QStringLiteral("There is an update! Click the update button.");

template <typename Start> bool checkAndWait(UpdateChecker *updates, Start start)
{
    QSignalSpy checked(updates, &UpdateChecker::checked);
    start();
    return checked.count() > 0 || checked.wait(5000);
}

// The work file as the updater reads it.
QString pendingUpdate(const TestFolder &folder)
{
    QSettings work(folder.file("updates//work.ini"), QSettings::IniFormat);
    return work.value(QStringLiteral("workqueue/Varnel")).toString();
}

const QString kControl = QStringLiteral(R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\)");
const QString kGraphicsDrivers = kControl + "GraphicsDrivers";
const QString kSessionPower = kControl + R"(Session Manager\Power)";
const QString kKeyboardClass = kControl + R"(Class\{4d36e96b-e325-11ce-bfc1-08002be10318})";
const QString kMouseClass = kControl + R"(Class\{4d36e96f-e325-11ce-bfc1-08002be10318})";
const QString kKeyboardFilters = kKeyboardClass + "|UpperFilters";
const QString kMouseFilters = kMouseClass + "|UpperFilters";
const QStringList kFixesInOrder = {
    R"(run: taskkill /f /im "InitHeadphone.exe")", R"(run: taskkill /f /im "PhoneJack.exe")",
    R"(shown 1: Libs\InitHeadphone.exe)", R"(shown 1: Libs\PhoneJack.exe)",
    R"(shown 0: Libs\AuxSwitch.exe)"};

} // namespace

class TestSuiteTabs : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setApplicationVersion(QStringLiteral("2.3.1")); }

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
        // The shipped update server is a placeholder: never asked.
        QVERIFY(p.window->findChild<UpdateChecker *>()->versionUrl().isEmpty());
        QCOMPARE(ui.Label_AboutVersion->text(), kNoAnswerText);
    }

    // The chat button's switch; the updater button starts the updater for every brand but one,
    // whose word is case-sensitive.
    void brandingSwitches_data()
    {
        QTest::addColumn<QString>("appname");
        QTest::addColumn<QVariant>("chat"); // invalid: key missing
        QTest::addColumn<bool>("chatHidden");
        QTest::newRow("chat true") << "Brand" << QVariant(true) << false;
        QTest::newRow("chat false") << "Brand" << QVariant(false) << true;
        QTest::newRow("chat missing") << "Brand" << QVariant() << true;
        QTest::newRow("chat zero") << "Brand" << QVariant("0") << true;
        QTest::newRow("Qira") << "Qira Control" << QVariant() << true;
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
        QCOMPARE(p.ui().Button_Updater->styleSheet(), QString());
        QCOMPARE(p.ui().Label_Updater->text(), QStringLiteral("Updater"));
        p.ui().Button_Updater->click();
        QCOMPARE(p.fake.log->entries, QStringList("shown 4: Updater.exe"));
    }

    // Every link of the branding file: the support page, the chat and the brand's website. The
    // built-in addresses are replaced by the file's, missing ones included.
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
        row("missing", nullptr, "");
    }

    void onlyWebAddressesAreOpened()
    {
        QFETCH(QString, link);
        QFETCH(QString, opened);
        TestWindow p;
        p.folder.setIni(kBranding, "appname", "QIRA Control");
        p.folder.setIni(kBranding, "showonlinechatbutton", true);
        for (const char *key : {"supportpageURL", "onlinechatURL", "websiteURL"})
            if (!link.isNull())
                p.folder.setIni(kBranding, key, link);
        p.start();
        const Ui::MainWindow &ui = p.ui();
        for (QLabel *label :
             {ui.Label_Support, ui.Label_Support2, ui.Label_Support3, ui.Label_Support4})
            QCOMPARE(label->text(), QString());
        QCOMPARE(p.window->findChild<SupportPage *>()->supportPageUrl().isEmpty(), link.isNull());
        // The one brand whose updater button opens its website instead.
        QCOMPARE(ui.Button_Updater->styleSheet(),
                 QStringLiteral("border-image: url(branding/qira.png);"));
        QCOMPARE(ui.Label_Updater->text(), QStringLiteral("Website"));
        ui.Button_SupportPage->click();
        ui.Button_OnlineChat->click();
        ui.Button_Updater->click();
        const QString entry = QStringLiteral("open url: ") + opened;
        const QStringList expected =
            opened.isEmpty() ? QStringList() : QStringList{entry, entry, entry};
        QCOMPARE(p.fake.log->withPrefix("open url"), expected);
    }

    void checksAtStartAndByHand_data()
    {
        QTest::addColumn<int>("status"); // 0: nothing listens
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("latest");
        QTest::addColumn<QString>("aboutLabel");
        QTest::addColumn<QString>("boxText"); // shown only after the button; empty: an update
        auto row = [](const char *name, int status, const QByteArray &body, const char *latest,
                      const QString &about, const QString &box) {
            QTest::newRow(name) << status << body << "Latest Version: " + QString(latest) << about
                                << box;
        };
        const QString same = kLatestText + '\n', none = kNoAnswerText + '\n';
        const QString beta =
            QStringLiteral("Your version is newer then the official latest! You are "
                           "probably a beta tester.\n");
        row("equal", 200, "2.3.1", "2.3.1", kLatestText, same);
        row("older on the server", 200, "2.3", "2.3",
            "Your version is newer then the official latest! Are you a beta tester?", beta);
        row("newer on the server", 200, "2.3.1.1", "2.3.1.1", kUpdateText, QString());
        row("error status, body still read", 404, "3.0", "3.0", kUpdateText, QString());
        // An answer that is no version is no answer: never shown whole, never offering an update.
        row("error page", 404, "<html><body><h1>Not Found</h1></body></html>\n", "", kNoAnswerText,
            none);
        row("server error, empty body", 500, QByteArray(), "", kNoAnswerText, none);
        row("connection refused", 0, QByteArray(), "", kNoAnswerText, none);
    }

    void checksAtStartAndByHand()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, boxText);

        TestWindow p;
        VersionServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        server.status = status;
        server.body = body;
        p.folder.setIni(kBranding, "updateserver", server.address());
        if (!status)
            server.close();

        p.fake.dialogs->answers = {QMessageBox::Yes, QMessageBox::No};
        p.start(/*keepRecords=*/true);
        Ui::MainWindow &ui = p.ui();
        auto *updates = p.window->findChild<UpdateChecker *>();
        QVERIFY(checkAndWait(updates, [] {}));

        QCOMPARE(server.requests,
                 status ? QStringList({"GET /varnel/version HTTP/1.1"}) : QStringList());
        QCOMPARE(ui.Label_CurrentVersion->text(), QStringLiteral("Installed Version: 2.3.1"));
        QTEST(ui.Label_LatestVersion->text(), "latest");
        QTEST(ui.Label_AboutVersion->text(), "aboutLabel");
        const bool update = boxText.isEmpty();
        QCOMPARE(ui.Button_Update->isEnabled(), update);
        QCOMPARE(pendingUpdate(p.folder), QString(update ? "true" : "false"));
        if (update) {
            // Asked at once, on the automatic check too, and Yes starts the updater.
            QCOMPARE(p.fake.dialogs->lines(),
                     QStringList("Question | Update Information | There is an update for this "
                                 "software! Do you want to update now?\n | Yes|No"));
            QCOMPARE(p.fake.log->entries.filter("Update.exe"), QStringList({kUpdater}));

            // By hand, answered No: nothing starts, and the manual flag stays set.
            QVERIFY(checkAndWait(updates, [&] { ui.Button_CheckForUpdates->click(); }));
            QCOMPARE(p.fake.dialogs->shown.size(), 2);
            QCOMPARE(p.fake.log->entries.filter("Update.exe").size(), 1);
            QVERIFY(updates->manualUpdateCheck());
            ui.Button_Update->click();
            QCOMPARE(p.fake.log->entries.filter("Update.exe"), QStringList({kUpdater, kUpdater}));

            // The flag still set, the next result without an update is announced, then cleared.
            server.body = "2.3.1";
            QVERIFY(checkAndWait(
                updates, [&] { QMetaObject::invokeMethod(p.window.get(), "SetAppVersion"); }));
            QCOMPARE(p.fake.dialogs->lines().size(), 3);
            QCOMPARE(p.fake.dialogs->lines().last(),
                     "Information | Update Information | " + kLatestText + "\n | Ok");
            QVERIFY(!updates->manualUpdateCheck());
            QVERIFY(!ui.Button_Update->isEnabled());
            QCOMPARE(pendingUpdate(p.folder), QStringLiteral("false"));
            return;
        }
        // The check during start-up announces nothing unless there is an update.
        QVERIFY(p.fake.dialogs->shown.isEmpty());

        QVERIFY(checkAndWait(updates, [&] { ui.Button_CheckForUpdates->click(); }));
        QCOMPARE(p.fake.dialogs->lines(),
                 QStringList("Information | Update Information | " + boxText + " | Ok"));
        QVERIFY(!updates->manualUpdateCheck());
        QCOMPARE(p.fake.log->entries.filter("Update.exe"), QStringList());

        // Cleared: the next automatic check is quiet again.
        QVERIFY(checkAndWait(updates,
                             [&] { QMetaObject::invokeMethod(p.window.get(), "SetAppVersion"); }));
        QCOMPARE(p.fake.dialogs->shown.size(), 1);
    }

    void aSilentServerNeverDelaysTheWindow()
    {
        TestWindow p;
        VersionServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        server.silent = true;
        p.folder.setIni(kBranding, "updateserver", server.address());

        // Should the window wait for the answer, this ends the wait from inside its constructor.
        bool constructing = true, waitedInside = false;
        QTimer::singleShot(3000, &server, [&] {
            waitedInside = constructing;
            server.silent = false; // the dropped request is sent again
            server.dropAll();
        });

        p.start(/*keepRecords=*/true);
        constructing = false;
        QVERIFY(!waitedInside);
        auto *updates = p.window->findChild<UpdateChecker *>();
        QTRY_COMPARE(server.requests.size(), 1);
        QCOMPARE(p.ui().Label_AboutVersion->text(),
                 QStringLiteral("Your are running a Beta Version"));

        // Ten seconds without an answer: unreachable, quietly.
        QVERIFY(p.fake.scheduler->history.contains(QStringLiteral("10000 abort")));
        static QStringList warnings;
        const QtMessageHandler previous = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext &, const QString &text) {
                if (type != QtDebugMsg)
                    warnings << text;
            });
        const bool checked = checkAndWait(updates, [&] { p.fake.scheduler->advance(10000); });
        qInstallMessageHandler(previous);
        QVERIFY(checked);
        QCOMPARE(warnings, QStringList());
        QCOMPARE(p.ui().Label_LatestVersion->text(), QStringLiteral("Latest Version: "));
        QCOMPARE(p.ui().Label_AboutVersion->text(), kNoAnswerText);
        QVERIFY(p.fake.dialogs->shown.isEmpty());
    }

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
        const QString tdr = kGraphicsDrivers + ' ';
        const QString session = set + kSessionPower + " HiberbootEnabled = ";
        // Clean lists, or none at all, are not written again; unchecking only remembers.
        QTest::newRow("hotkey filter")
            << "check_hkfilter"
            << "hotkeyfilter"
            << QStringList{set + kKeyboardClass + " UpperFilters = kbdclass",
                           set + kMouseClass + " UpperFilters = mouclass|HKKbdFltr"}
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
            << QStringList{R"(shown 0: Libs\AuxSwitch.exe)", "message: Brightness Fix",
                           "Question | Brightness Fix | A reboot may be necessary for brightness "
                           "controls to work!\n | Ok"}
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
        QVERIFY(p.ui().label_windows_only->isHidden()); // the settings do apply here
        auto *check = p.window->findChild<QCheckBox *>(box);
        check->click();
        QTEST(p.fake.log->entries + p.fake.dialogs->lines(), "checked");
        // A number, so the Windows registry stores a DWORD.
        if (key == QLatin1String("TDRdelay"))
            QCOMPARE(p.fake.registry->values.value(kGraphicsDrivers + "|TdrDelay").userType(),
                     int(QMetaType::Int));
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

    // Off Windows the tab says the settings do not apply; the boxes are kept all the same.
    void startupRestoresBoxesAndRepeatsOnlyTheHelpers()
    {
        TestWindow p;
        p.fake.registry->machineSettings = false;
        for (const char *key :
             {"TDRdelay", "hotkeyfilter", "FastStartDisabled", "brightfix", "applyheadphone"})
            p.setGeneral(key, true);
        p.fake.registry->values.insert(kKeyboardFilters, QStringList{"HKKbdFltr"});
        p.start(/*keepRecords=*/true);
        const Ui::MainWindow &ui = p.ui();
        QVERIFY(!ui.label_windows_only->isHidden());
        QCOMPARE(ui.label_windows_only->text(),
                 QStringLiteral("Windows only: the five fixes below change Windows settings and "
                                "start Windows helper programs, so they are switched off here."));
        for (QCheckBox *box : {ui.CheckTDRdelay, ui.check_hkfilter, ui.CheckDisableFastStartup,
                               ui.checkBox_3, ui.checkBox_headphonefix})
            QVERIFY2(box->isChecked(), qPrintable(box->objectName()));
        QCOMPARE(p.fake.log->withPrefix("registry "), QStringList());
        // Hidden at start; only a resume shows the headphone helpers.
        QCOMPARE(p.fake.log->entries.filter(R"(Libs\)"),
                 QStringList({R"(shown 0: Libs\InitHeadphone.exe)",
                              R"(shown 0: Libs\PhoneJack.exe)", R"(shown 0: Libs\AuxSwitch.exe)"}));
        ui.CheckTDRdelay->click();
        QCOMPARE(p.generalValue("TDRdelay").toString(), QStringLiteral("false"));
    }

    void decidesEachMessage_data()
    {
        QTest::addColumn<quint32>("id");
        QTest::addColumn<quintptr>("code");
        QTest::addColumn<bool>("pending");
        QTest::addColumn<QString>("scheduled");
        const quint32 power = powermsg::powerBroadcast, device = powermsg::deviceMessage,
                      other = 0x0F;
        auto row = [](const char *name, quint32 id, quintptr code, bool pending, const char *s) {
            QTest::newRow(name) << id << code << pending << QString::fromLatin1(s);
        };
        row("suspend", power, 4, false, "");
        row("resume suspend", power, 7, false, "awake");
        row("resume standby", power, 8, false, "awake");
        row("resume automatic", power, 18, false, "awake");
        row("other power event", power, 10, false, "");
        row("device message", device, 0, false, "awake2");
        row("device message, any code", 0xC08E, 7, false, "awake2");
        row("unrelated message", other, 7, false, "");
        // A pending resume is consumed by whichever message comes next.
        row("pending, suspend", power, 4, true, "awake");
        row("pending, unrelated", other, 0, true, "awake");
        row("pending, device message", device, 0, true, "awake awake2");
        row("pending, resume", power, 18, true, "awake");
    }

    void decidesEachMessage()
    {
        QFETCH(quint32, id);
        QFETCH(quintptr, code);
        QFETCH(bool, pending);
        const PowerMessageDecision d = decidePowerMessage(id, code, pending);
        QStringList scheduled;
        if (d.scheduleAwake)
            scheduled << "awake";
        if (d.scheduleAwake2)
            scheduled << "awake2";
        QTEST(scheduled.join(' '), "scheduled");
        QVERIFY(!d.resumePending);
    }

    void nativeMessagesAreDecodedAndNeverSwallowed()
    {
        FakePlatform fake;
        MyEventFilter filter(fake.sleep, fake.scheduler);
        long result = 0;
        FakeSleepNotifier::Message device{powermsg::deviceMessage, 0};
        FakeSleepNotifier::Message resume{powermsg::powerBroadcast, powermsg::resumeStandby};
        FakeSleepNotifier::Message suspend{powermsg::powerBroadcast, powermsg::suspend};
        QVERIFY(!filter.nativeEventFilter("fake", &device, &result));
        QVERIFY(!filter.nativeEventFilter("fake", &resume, &result));
        QVERIFY(!filter.nativeEventFilter("fake", &suspend, &result));
        // An event the backend cannot read is no message at all.
        QVERIFY(!filter.nativeEventFilter("xcb_generic_event_t", &resume, &result));
        // Windows reports one resume twice; the actions are scheduled twice, as accepted.
        emit fake.sleep->powerMessage(powermsg::powerBroadcast, powermsg::resumeSuspend);
        QCOMPARE(fake.scheduler->history, QStringList({"2000 awake2", "3000 awake", "3000 awake"}));
    }

    // Whatever the boxes, a resume re-reads volume then brightness; the device message does not.
    void runsTheActionsLater_data()
    {
        QTest::addColumn<bool>("boxes"); // the two fixes and the tuning re-apply
        QTest::addColumn<quint32>("id");
        QTest::addColumn<quintptr>("code");
        const quint32 power = powermsg::powerBroadcast;
        QTest::newRow("resume, no boxes") << false << power << quintptr(powermsg::resumeAutomatic);
        QTest::newRow("resume") << true << power << quintptr(powermsg::resumeSuspend);
        QTest::newRow("device message") << true << quint32(powermsg::deviceMessage) << quintptr(0);
    }

    void runsTheActionsLater()
    {
        QFETCH(bool, boxes);
        QFETCH(quint32, id);
        QFETCH(quintptr, code);
        const bool device = id == powermsg::deviceMessage;
        TestWindow p;
        p.start();
        for (QCheckBox *box :
             {p.ui().checkBox_headphonefix, p.ui().checkBox_3, p.ui().checkBox_ReApply})
            box->setChecked(boxes);
        p.window->cpuTuning()->reapplyDone = true;
        p.fake.audio->level = 0.73f;
        p.fake.panel->level = 35;
        p.fake.log->clear();
        emit p.fake.sleep->powerMessage(id, code);
        QCOMPARE(p.fake.scheduler->history, QStringList(device ? "2000 awake2" : "3000 awake"));
        p.fake.scheduler->advance(device ? 1999 : 2999);
        QVERIFY(p.fake.log->entries.isEmpty());

        p.fake.scheduler->advance(1);
        const QStringList done = p.fake.log->entries.filter(
            QRegularExpression("^(run: |start: |shown |process: |detached: )"));
        QCOMPARE(done.mid(0, 5), boxes ? kFixesInOrder : QStringList());
        const int volume = p.fake.log->entries.indexOf(QRegularExpression("audio 1 .*"));
        const int brightness = p.fake.log->indexOf("panel read");
        if (device) {
            QCOMPARE(done.size(), 5);
            QCOMPARE(brightness, -1);
            QCOMPARE(p.fake.log->withPrefix("audio ").size(), 0);
            return;
        }
        QCOMPARE(p.ui().Slider_Volume->value(), 73);
        QCOMPARE(p.ui().Slider_Brightness->value(), 35);
        QVERIFY(p.fake.log->indexOf(kFixesInOrder.last()) < volume);
        QVERIFY(volume < brightness);
        const int tuning = p.fake.log->entries.indexOf(QRegularExpression("process: .*"));
        QCOMPARE(brightness < tuning, boxes);
        // The once-per-run re-apply may run again after a resume.
        QCOMPARE(p.window->cpuTuning()->reapplyDone, !boxes);
    }
};

QTEST_MAIN(TestSuiteTabs)
#include "tst_suitetabs.moc"
