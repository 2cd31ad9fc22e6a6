#pragma once

#include "platform.h"
#include "settingsfiles.h"

#include <QObject>
#include <QUrl>

namespace Ui {
class MainWindow;
}
class QWidget;

// Compares this program's version with the one the reseller's update server publishes, shows
// both on the About tab, offers the update and tells the updater through its work file.
class UpdateChecker : public QObject {
    Q_OBJECT
public:
    UpdateChecker(Ui::MainWindow &ui, const Platform &platform, const Settings &settings,
                  QWidget *window);

    // One check; runs a local event loop until the server answers or the request fails.
    void check();
    // The same check, started by the user: results without an update are announced too.
    void checkByHand();
    void startUpdater();

    bool manualUpdateCheck() const { return m_manualUpdateCheck; }
    // The version address from the branding file, or an empty URL when no usable server is
    // configured.
    QUrl versionUrl() const;

private:
    QString fetchLatestVersion();
    void offerUpdate();
    void reportNoUpdate(const QString &label, const QString &message);

    Ui::MainWindow &m_ui;
    Platform m_platform;
    Settings m_settings;
    QWidget *m_window;
    bool m_manualUpdateCheck = false;
};
