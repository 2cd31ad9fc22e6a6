#include "companions.h"

#include "availability.h"
#include "keys.h"
#include "registry.h"
#include "ui_mainwindow.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>

Q_LOGGING_CATEGORY(lcCompanions, "varnel.companions")

const QString Companions::runKey =
    QStringLiteral(R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run\)");

const QVector<Companion> &Companions::table()
{
    static const QVector<Companion> apps = {
        {QStringLiteral(R"(\Helmsuite\Updater\updater.ini)"), QStringLiteral("Updater.exe"),
         QStringLiteral("Updater")},
        {QStringLiteral(R"(\Helmsuite\FanControl\fancontrol.ini)"),
         QStringLiteral("FanControl.exe"), QStringLiteral("Fan Control")},
        {QStringLiteral(R"(\Helmsuite\KeyboardLED\keyboardled.ini)"),
         QStringLiteral("KeyboardLed.exe"), QStringLiteral("KeyboardLED")},
    };
    return apps;
}

Companions::Companions(Ui::MainWindow &ui, const Platform &platform, const Settings &settings,
                       QObject *window)
    : QObject(window), m_ui(ui), m_commands(platform.commands), m_registry(platform.registry),
      m_availability(platform.availability), m_settings(settings), m_window(window)
{
}

QString Companions::documentsFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    folder.replace(QLatin1Char('/'), QLatin1Char('\\'));
    return folder;
}

QString Companions::locatedProgram(const Companion &c)
{
    const QSettings locator(localPath(documentsFolder() + c.locator), QSettings::IniFormat);
    return locator.value(QStringLiteral("settings/appurl")).toString();
}

QString Companions::whyCannotLaunch(App app) const
{
    const Companion &c = table().at(app);
    if (QFileInfo(localPath(locatedProgram(c))).isFile() || !m_availability)
        return QString();
    return m_availability->whyCannotStart(c.executable);
}

void Companions::launch(App app, ShowMode fallbackMode)
{
    const Companion &c = table().at(app);
    QString appUrl = locatedProgram(c);

    if (!QFileInfo(localPath(appUrl)).isFile()) {
        // The platform's search for a bare program name looks in the program's folder first.
        m_commands->startShown(c.executable, fallbackMode);
        return;
    }
    // The folder is what is left with the image name taken out; a folder that already ends in
    // a separator gives a doubled one before the name, which the platform accepts.
    appUrl.remove(c.executable, Qt::CaseSensitive);
    const QString program = appUrl + QLatin1Char('\\') + c.executable;
    qCDebug(lcCompanions) << "starting" << program << "in" << appUrl;
    AsyncProcess *process = m_commands->createProcess(m_window);
    process->setWorkingDirectory(localPath(appUrl));
    process->start(localPath(program), {QString()});
}

void Companions::startRegistered()
{
    const bool checkStart = m_settings.general().value(keys::checkStart).toBool();
    m_ui.checkstart->setChecked(checkStart);
    if (!checkStart)
        return;

    const auto none = QStringLiteral("none");
    QVector<bool> registered;
    for (const Companion &c : table())
        registered << (m_registry->value(runKey, c.runValue, none).toString() != none);

    for (int app = 0; app < table().size(); ++app) {
        if (!registered.at(app))
            continue;
        const QString running = m_commands->runAndRead(QStringLiteral("tasklist"), 30000);
        if (running.contains(table().at(app).executable, Qt::CaseSensitive))
            continue;
        launch(static_cast<App>(app), ShowMode::Hidden);
    }
}

void Companions::rememberCheckStart()
{
    m_settings.general().setValue(keys::checkStart, m_ui.checkstart->isChecked());
}
