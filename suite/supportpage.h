#pragma once

#include "settingsfiles.h"

#include <QObject>
#include <QUrl>

#include <memory>

namespace Ui {
class MainWindow;
}
class CommandRunner;
class Desktop;

// The reseller's branding on the support tab and the companion row: support texts, the two
// support links, the remote-control tool, and the brand whose updater button is a website link.
class SupportPage : public QObject {
    Q_OBJECT
public:
    SupportPage(Ui::MainWindow &ui, std::shared_ptr<CommandRunner> commands,
                std::shared_ptr<Desktop> desktop, const Settings &settings,
                QObject *parent = nullptr);

    // The texts, the links and the chat button, from the branding file.
    void loadTexts();
    // A brand name containing "QIRA" turns the updater button into the website button.
    void applyBrandButton();
    bool updaterOpensWebsite() const;

    void openSupportPage();
    void openOnlineChat();
    void startRemoteControl();
    void openWebsite();

    QUrl supportPageUrl() const { return m_supportPage; }
    QUrl onlineChatUrl() const { return m_onlineChat; }

private:
    void openWebAddress(const QUrl &url);

    Ui::MainWindow &m_ui;
    std::shared_ptr<CommandRunner> m_commands;
    std::shared_ptr<Desktop> m_desktop;
    Settings m_settings;
    // Built-in until the branding file is read at start.
    QUrl m_supportPage{QStringLiteral("https://www.talveron-pc.example/shop")};
    QUrl m_onlineChat{QStringLiteral("https://support.talveron-pc.example/chat")};
};
