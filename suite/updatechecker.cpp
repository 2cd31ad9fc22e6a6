#include "updatechecker.h"

#include "availability.h"
#include "commandrunner.h"
#include "dialogs.h"
#include "scheduler.h"
#include "ui_mainwindow.h"
#include "versioncompare.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

Q_LOGGING_CATEGORY(lcUpdates, "varnel.updates")

namespace {

const char kUpdateServer[] = "updateserver";
const char kVersionPath[] = "/varnel/version";
const char kPending[] = "Varnel";
const char kTitle[] = "Update Information";
const int kGiveUpMs = 10000;
const QString kUnreachable =
    QStringLiteral("The update server did not answer with a version. Please try again later.");
const char kUpdaterCommand[] = R"(updates\Update.exe)";

} // namespace

UpdateChecker::UpdateChecker(Ui::MainWindow &ui, const Platform &platform, const Settings &settings,
                             QWidget *window)
    : QObject(window), m_ui(ui), m_platform(platform), m_settings(settings), m_window(window)
{
}

QUrl UpdateChecker::versionUrl() const
{
    const QString server = m_settings.branding().value(QLatin1String(kUpdateServer)).toString();
    const QUrl url(server + QLatin1String(kVersionPath));
    // The shipped placeholder lives under the reserved .invalid domain: nothing to ask.
    if (!url.isValid() || url.host().isEmpty() ||
        url.host().endsWith(QLatin1String(".invalid"), Qt::CaseInsensitive))
        return QUrl();
    return url;
}

void UpdateChecker::check()
{
    m_ui.Button_Update->setEnabled(false);
    if (m_reply)
        return;
    const QUrl url = versionUrl();
    if (url.isEmpty()) {
        showResult(QString());
        return;
    }
    // Waiting for the answer in a local event loop kept the window from appearing while a
    // server held the connection open: the answer is taken when it comes, within 10 s.
    // Made for the first request: the network stack loads its plugins and starts watching the
    // interfaces, which a build without an update server never needs.
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    m_reply = m_network->get(QNetworkRequest(url));
    QNetworkReply *reply = m_reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] { answered(reply); });
    m_platform.scheduler->singleShot(kGiveUpMs, reply, "abort");
}

void UpdateChecker::answered(QNetworkReply *reply)
{
    reply->deleteLater();
    if (reply != m_reply)
        return;
    m_reply = nullptr;
    // The body counts whatever the status; a failed or abandoned connection has none (and an
    // abandoned reply is closed: reading it would only print a warning).
    const QByteArray body = reply->isOpen() ? reply->readAll() : QByteArray();
    qCDebug(lcUpdates) << reply->url() << "answered" << reply->error() << body.left(200);
    showResult(versionFromAnswer(body));
}

void UpdateChecker::showResult(const QString &latest)
{
    const QString installed = QCoreApplication::applicationVersion();
    m_ui.Label_CurrentVersion->setText(QStringLiteral("Installed Version: ") + installed);
    m_ui.Label_LatestVersion->setText(QStringLiteral("Latest Version: ") + latest);

    // No answer would compare as version 0 and call every user offline a beta tester.
    if (latest.isEmpty()) {
        reportNoUpdate(kUnreachable, kUnreachable + QLatin1Char('\n'));
        emit checked();
        return;
    }
    const int order = compareVersions(installed, latest);
    if (order < 0)
        offerUpdate();
    else if (order == 0)
        reportNoUpdate(QStringLiteral("You are running the latest version, there is no update."),
                       QStringLiteral("You are running the latest version, there is no update.\n"));
    else
        reportNoUpdate(
            QStringLiteral("Your version is newer then the official latest! Are you a beta "
                           "tester?"),
            QStringLiteral("Your version is newer then the official latest! You are probably a "
                           "beta tester.\n"));
    emit checked();
}

void UpdateChecker::checkByHand()
{
    m_manualUpdateCheck = true;
    check();
}

void UpdateChecker::offerUpdate()
{
    m_ui.Label_AboutVersion->setText(
        QStringLiteral("There is an update! Click the update button."));
    m_ui.Button_Update->setEnabled(true);
    m_settings.updateWork().setValue(QLatin1String(kPending), true);
    m_window->show();
    m_window->raise();
    m_window->setFocus(Qt::OtherFocusReason);
    m_window->activateWindow();
    // Asking to update where the updater cannot start would promise what the button can't do.
    if (m_platform.availability &&
        !m_platform.availability->whyCannotStart(QLatin1String(kUpdaterCommand)).isEmpty())
        return;
    const auto answer = m_platform.dialogs->message(
        m_window, QMessageBox::Question, QLatin1String(kTitle),
        QStringLiteral("There is an update for this software! Do you want to update now?\n"),
        QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes)
        startUpdater();
}

void UpdateChecker::reportNoUpdate(const QString &label, const QString &message)
{
    m_ui.Label_AboutVersion->setText(label);
    m_ui.Button_Update->setEnabled(false);
    m_settings.updateWork().setValue(QLatin1String(kPending), false);
    if (m_manualUpdateCheck)
        m_platform.dialogs->message(m_window, QMessageBox::Information, QLatin1String(kTitle),
                                    message, QMessageBox::Ok);
    m_manualUpdateCheck = false;
}

void UpdateChecker::startUpdater()
{
    m_platform.commands->startShown(QLatin1String(kUpdaterCommand), ShowMode::Normal);
}
