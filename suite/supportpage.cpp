#include "supportpage.h"

#include "commandrunner.h"
#include "desktop.h"
#include "keys.h"
#include "ui_mainwindow.h"

namespace {

const char kBrandWord[] = "QIRA";
const char kWebsiteUrl[] = "websiteURL";

// The branding file is outside the program's control and the program runs elevated: a link
// that is not a web address (a file, a share, another program's scheme) is not opened.
bool isWebAddress(const QUrl &url)
{
    const QString scheme = url.scheme();
    return url.isValid() && !url.host().isEmpty() &&
           (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}

} // namespace

SupportPage::SupportPage(Ui::MainWindow &ui, std::shared_ptr<CommandRunner> commands,
                         std::shared_ptr<Desktop> desktop, const Settings &settings,
                         QObject *parent)
    : QObject(parent), m_ui(ui), m_commands(std::move(commands)), m_desktop(std::move(desktop)),
      m_settings(settings)
{
}

void SupportPage::loadTexts()
{
    const auto text = [this](const char *key) {
        return m_settings.branding().value(QLatin1String(key)).toString();
    };
    m_ui.Label_Support->setText(text(keys::supportText));
    m_ui.Label_Support2->setText(text(keys::supportText2));
    m_ui.Label_Support3->setText(text(keys::supportText3));
    m_ui.Label_Support4->setText(text(keys::supportText4));
    m_supportPage = QUrl(text(keys::supportPageUrl));
    m_onlineChat = QUrl(text(keys::onlineChatUrl));
    // A missing key reads as false too: the chat is offered only where a reseller runs one.
    if (!m_settings.branding().value(QLatin1String(keys::showOnlineChatButton)).toBool())
        m_ui.Button_OnlineChat->hide();
}

bool SupportPage::updaterOpensWebsite() const
{
    return m_ui.Title->text().contains(QLatin1String(kBrandWord), Qt::CaseSensitive);
}

void SupportPage::applyBrandButton()
{
    if (!updaterOpensWebsite())
        return;
    m_ui.Button_Updater->setStyleSheet(QStringLiteral("border-image: url(branding/qira.png);"));
    m_ui.Label_Updater->setText(QStringLiteral("Website"));
}

void SupportPage::openWebAddress(const QUrl &url)
{
    if (isWebAddress(url))
        m_desktop->openUrl(url);
}

void SupportPage::openSupportPage()
{
    openWebAddress(m_supportPage);
}

void SupportPage::openOnlineChat()
{
    openWebAddress(m_onlineChat);
}

void SupportPage::startRemoteControl()
{
    m_commands->startShown(QStringLiteral("Remote.exe"), ShowMode::Normal);
}

void SupportPage::openWebsite()
{
    openWebAddress(QUrl(m_settings.branding().value(QLatin1String(kWebsiteUrl)).toString()));
}
