#pragma once

#include "platform.h"
#include "settingsfiles.h"

#include <QObject>
#include <QPointer>
#include <QUrl>

namespace Ui {
class MainWindow;
}
class QNetworkAccessManager;
class QNetworkReply;
class QWidget;

// Compares this program's version with the one the reseller's update server publishes, shows
// both on the About tab, offers the update and tells the updater through its work file.
class UpdateChecker : public QObject {
    Q_OBJECT
public:
    UpdateChecker(Ui::MainWindow &ui, const Platform &platform, const Settings &settings,
                  QWidget *window);

    // One check. It returns at once and the result is shown when the server answers; a server
    // silent for 10 s counts as unreachable. A check asked for while one is under way joins it.
    void check();
    // The same check, started by the user: results without an update are announced too.
    void checkByHand();
    void startUpdater();

    bool manualUpdateCheck() const { return m_manualUpdateCheck; }
    // The version address from the branding file, or an empty URL when no usable server is
    // configured.
    QUrl versionUrl() const;

signals:
    // A check has shown its result.
    void checked();

private:
    void answered(QNetworkReply *reply);
    void showResult(const QString &latest);
    void offerUpdate();
    void reportNoUpdate(const QString &label, const QString &message);

    Ui::MainWindow &m_ui;
    Platform m_platform;
    Settings m_settings;
    QWidget *m_window;
    bool m_manualUpdateCheck = false;
    QNetworkAccessManager *m_network = nullptr;
    QPointer<QNetworkReply> m_reply;
};
