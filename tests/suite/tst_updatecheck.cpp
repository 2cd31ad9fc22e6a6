#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"
#include "updatechecker.h"
#include "versionserver.h"

#include <QtTest>

namespace {

const QString kBranding = QStringLiteral("branding//varnel_branding.ini");
const QString kWorkFile = QStringLiteral("updates//work.ini");
const QString kUpdater = QStringLiteral(R"(shown 1: updates\Update.exe)");
const QString kLatestText =
    QStringLiteral("You are running the latest version, there is no update.");
const QString kBetaText =
    QStringLiteral("Your version is newer then the official latest! Are you a beta tester?");
const QString kNoAnswerText =
    QStringLiteral("The update server did not answer with a version. Please try again later.");
const QString kUpdateText = QStringLiteral("There is an update! Click the update button.");

// The work file as the updater reads it.
QStringList updaterStarts(const OperationLog &log)
{
    return log.entries.filter(QStringLiteral("Update.exe"));
}

// Runs what starts a check and waits for its result.
template <typename Start> bool checkAndWait(UpdateChecker *updates, Start start)
{
    QSignalSpy checked(updates, &UpdateChecker::checked);
    start();
    return checked.count() > 0 || checked.wait(5000);
}

QString pendingUpdate(const TestFolder &folder)
{
    QSettings work(folder.file(kWorkFile), QSettings::IniFormat);
    return work.value(QStringLiteral("workqueue/Varnel")).toString();
}

} // namespace

class TestUpdateCheck : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setApplicationVersion(QStringLiteral("2.3.1")); }
    void checksAtStartAndByHand_data();
    void checksAtStartAndByHand();
    void anUpdateIsOfferedOnEveryCheck();
    void theShippedPlaceholderIsNeverAsked();
    void aSilentServerNeverDelaysTheWindow();
};

void TestUpdateCheck::checksAtStartAndByHand_data()
{
    QTest::addColumn<int>("status"); // 0: nothing listens
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("latestLabel");
    QTest::addColumn<QString>("aboutLabel");
    QTest::addColumn<QString>("boxText"); // shown only after the button

    const QString sameText = kLatestText + QLatin1Char('\n');
    const QString betaBox =
        QStringLiteral("Your version is newer then the official latest! You are probably a beta "
                       "tester.\n");
    const QString noAnswerBox = kNoAnswerText + QLatin1Char('\n');
    QTest::newRow("equal") << 200 << QByteArray("2.3.1") << "Latest Version: 2.3.1" << kLatestText
                           << sameText;
    QTest::newRow("older on the server")
        << 200 << QByteArray("2.3") << "Latest Version: 2.3" << kBetaText << betaBox;
    QTest::newRow("error status, body still read")
        << 404 << QByteArray("3.0") << "Latest Version: 3.0" << kUpdateText << QString();
    // An answer that is no version is no answer: never shown whole, never offering an update.
    QTest::newRow("error page") << 404
                                << QByteArray("<html><body><h1>Not Found</h1></body></html>\n")
                                << "Latest Version: " << kNoAnswerText << noAnswerBox;
    QTest::newRow("trailing line break")
        << 200 << QByteArray("2.3.1\r\n") << "Latest Version: 2.3.1" << kLatestText << sameText;
    QTest::newRow("ten kilobytes")
        << 200 << QByteArray(10240, '7') << "Latest Version: " << kNoAnswerText << noAnswerBox;
    QTest::newRow("lowest int") << 200 << QByteArray("-2147483648")
                                << "Latest Version: " << kNoAnswerText << noAnswerBox;
    QTest::newRow("server error, empty body")
        << 500 << QByteArray() << "Latest Version: " << kNoAnswerText << noAnswerBox;
    QTest::newRow("connection refused")
        << 0 << QByteArray() << "Latest Version: " << kNoAnswerText << noAnswerBox;
}

void TestUpdateCheck::checksAtStartAndByHand()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, latestLabel);
    QFETCH(QString, aboutLabel);
    QFETCH(QString, boxText);

    TestFolder folder;
    VersionServer server;
    QVERIFY(server.listen());
    server.status = status;
    server.body = body;
    folder.setIni(kBranding, "updateserver",
                  status ? server.address() : VersionServer::refusingAddress());

    FakePlatform fake;
    fake.dialogs->answers = {QMessageBox::No};
    MainWindow w(fake.bundle());
    Ui::MainWindow &ui = *w.form();
    auto *updates = w.findChild<UpdateChecker *>();
    QVERIFY(updates);
    QVERIFY(checkAndWait(updates, [] {}));

    QCOMPARE(server.requests,
             status ? QStringList({"GET /varnel/version HTTP/1.1"}) : QStringList());
    QCOMPARE(ui.Label_CurrentVersion->text(), QStringLiteral("Installed Version: 2.3.1"));
    QCOMPARE(ui.Label_LatestVersion->text(), latestLabel);
    QCOMPARE(ui.Label_AboutVersion->text(), aboutLabel);
    if (boxText.isEmpty()) {
        // An update: offered at once, on the automatic check too.
        QCOMPARE(fake.dialogs->shown.size(), 1);
        QVERIFY(ui.Button_Update->isEnabled());
        return;
    }
    // The check during start-up announces nothing unless there is an update.
    QVERIFY(!ui.Button_Update->isEnabled());
    QCOMPARE(pendingUpdate(folder), QStringLiteral("false"));
    QVERIFY(fake.dialogs->shown.isEmpty());

    QVERIFY(checkAndWait(updates, [&] { ui.Button_CheckForUpdates->click(); }));
    QCOMPARE(fake.dialogs->shown.size(), 1);
    QCOMPARE(fake.dialogs->shown.first().icon, QMessageBox::Information);
    QCOMPARE(fake.dialogs->shown.first().title, QStringLiteral("Update Information"));
    QCOMPARE(fake.dialogs->shown.first().text, boxText);
    QCOMPARE(fake.dialogs->shown.first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(!updates->manualUpdateCheck());
    QCOMPARE(updaterStarts(*fake.log), QStringList());

    // Cleared: the next automatic check is quiet again.
    QVERIFY(checkAndWait(updates, [&] { QMetaObject::invokeMethod(&w, "SetAppVersion"); }));
    QCOMPARE(fake.dialogs->shown.size(), 1);
}

void TestUpdateCheck::anUpdateIsOfferedOnEveryCheck()
{
    TestFolder folder;
    VersionServer server;
    QVERIFY(server.listen());
    server.body = "2.3.1.1";
    folder.setIni(kBranding, "updateserver", server.address());

    FakePlatform fake;
    fake.dialogs->answers = {QMessageBox::Yes, QMessageBox::No};
    MainWindow w(fake.bundle());
    Ui::MainWindow &ui = *w.form();
    auto *updates = w.findChild<UpdateChecker *>();
    QVERIFY(checkAndWait(updates, [] {}));

    // Start-up: asked at once, and Yes starts the updater.
    QCOMPARE(ui.Label_AboutVersion->text(), kUpdateText);
    QCOMPARE(ui.Label_LatestVersion->text(), QStringLiteral("Latest Version: 2.3.1.1"));
    QVERIFY(ui.Button_Update->isEnabled());
    QCOMPARE(pendingUpdate(folder), QStringLiteral("true"));
    QCOMPARE(fake.dialogs->shown.size(), 1);
    QCOMPARE(fake.dialogs->shown.first().icon, QMessageBox::Question);
    QCOMPARE(fake.dialogs->shown.first().title, QStringLiteral("Update Information"));
    QCOMPARE(fake.dialogs->shown.first().text,
             QStringLiteral("There is an update for this software! Do you want to update now?\n"));
    QCOMPARE(fake.dialogs->shown.first().buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(updaterStarts(*fake.log), QStringList({kUpdater}));

    // By hand, answered No: nothing starts, and the manual flag stays set.
    QVERIFY(checkAndWait(updates, [&] { ui.Button_CheckForUpdates->click(); }));
    QCOMPARE(fake.dialogs->shown.size(), 2);
    QCOMPARE(updaterStarts(*fake.log).size(), 1);
    QVERIFY(updates->manualUpdateCheck());
    ui.Button_Update->click();
    QCOMPARE(updaterStarts(*fake.log), QStringList({kUpdater, kUpdater}));

    // The flag still set, the next result without an update is announced, then cleared.
    server.body = "2.3.1";
    QVERIFY(checkAndWait(updates, [&] { QMetaObject::invokeMethod(&w, "SetAppVersion"); }));
    QCOMPARE(fake.dialogs->shown.size(), 3);
    QCOMPARE(fake.dialogs->shown.last().text, kLatestText + QLatin1Char('\n'));
    QVERIFY(!updates->manualUpdateCheck());
    QVERIFY(!ui.Button_Update->isEnabled());
    QCOMPARE(pendingUpdate(folder), QStringLiteral("false"));
}

void TestUpdateCheck::theShippedPlaceholderIsNeverAsked()
{
    TestFolder folder;
    folder.copyShipped("branding/varnel_branding.ini");
    FakePlatform fake;
    MainWindow w(fake.bundle());
    auto *updates = w.findChild<UpdateChecker *>();

    QVERIFY(updates->versionUrl().isEmpty());
    QCOMPARE(w.form()->Label_LatestVersion->text(), QStringLiteral("Latest Version: "));
    QCOMPARE(w.form()->Label_AboutVersion->text(), kNoAnswerText);

    folder.setIni(kBranding, "updateserver", "http://updates.example.com:8080");
    QCOMPARE(updates->versionUrl(), QUrl("http://updates.example.com:8080/varnel/version"));
}

void TestUpdateCheck::aSilentServerNeverDelaysTheWindow()
{
    TestFolder folder;
    VersionServer server;
    QVERIFY(server.listen());
    server.silent = true;
    folder.setIni(kBranding, "updateserver", server.address());

    // Should the window wait for the answer, this ends the wait from inside its constructor.
    bool constructing = true;
    bool waitedInside = false;
    QTimer release;
    release.setSingleShot(true);
    connect(&release, &QTimer::timeout, [&] {
        waitedInside = constructing;
        server.silent = false; // the dropped request is sent again
        server.dropAll();
    });
    release.start(3000);

    FakePlatform fake;
    MainWindow w(fake.bundle());
    constructing = false;
    QVERIFY(!waitedInside);
    auto *updates = w.findChild<UpdateChecker *>();
    QTRY_COMPARE(server.requests.size(), 1);
    QCOMPARE(w.form()->Label_AboutVersion->text(),
             QStringLiteral("Your are running a Beta Version"));

    // Ten seconds without an answer: unreachable, quietly.
    QVERIFY(fake.scheduler->history.contains(QStringLiteral("10000 abort")));
    static QStringList warnings;
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
            if (type != QtDebugMsg)
                warnings << text;
        });
    const bool checked = checkAndWait(updates, [&] { fake.scheduler->advance(10000); });
    qInstallMessageHandler(previous);
    QVERIFY(checked);
    QCOMPARE(warnings, QStringList());
    release.stop();
    QCOMPARE(w.form()->Label_LatestVersion->text(), QStringLiteral("Latest Version: "));
    QCOMPARE(w.form()->Label_AboutVersion->text(), kNoAnswerText);
    QVERIFY(fake.dialogs->shown.isEmpty());
}

QTEST_MAIN(TestUpdateCheck)
#include "tst_updatecheck.moc"
