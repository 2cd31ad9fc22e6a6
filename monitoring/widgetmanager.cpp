#include "widgetmanager.h"

#include "batterywidget.h"
#include "desktop.h"
#include "keys.h"
#include "ui_mainwindow.h"
#include "usagewidget.h"

namespace {

int checkedAsNumber(const QCheckBox *box)
{
    return box->isChecked() ? 1 : 0;
}

void restoreSlider(QSlider *slider, const SettingsFile &file, const char *key)
{
    if (file.contains(QLatin1String(key)))
        slider->setValue(file.value(QLatin1String(key)).toInt());
}

} // namespace

WidgetManager::WidgetManager(Ui::MainWindow &ui, QWidget *window, Platform platform,
                             Settings settings)
    : QObject(window), m_ui(ui), m_window(window), m_platform(std::move(platform)),
      m_settings(std::move(settings))
{
}

UsageWidget *WidgetManager::usageWidget() const
{
    return m_usage;
}

BatteryWidget *WidgetManager::batteryWidget() const
{
    return m_battery;
}

void WidgetManager::restoreControls()
{
    const SettingsFile file = m_settings.widgets();
    m_ui.StartResorcescheckBox->setChecked(
        file.value(QLatin1String(keys::resourcesWidget)).toBool());
    restoreSlider(m_ui.horizontalSliderResorcesFONTsize, file, keys::resourcesWidgetFontSize);
    m_ui.colorchange->setChecked(file.value(QLatin1String(keys::resourcesColor)).toBool());
    m_ui.StartBatteryWidget->setChecked(file.value(QLatin1String(keys::batteryWidget)).toBool());
    restoreSlider(m_ui.horizontalSlider_Battery_FONTsize, file, keys::batteryWidgetFontSize);
    m_ui.colorchange_battery->setChecked(file.value(QLatin1String(keys::batteryColor)).toBool());
}

void WidgetManager::createUsageWidget(QWidget *parent)
{
    m_usage = new UsageWidget(m_platform.sampler, parent);
    m_usage->fitToDesktop(m_platform.desktop->translucentWindows());
    m_usage->show();
    connect(m_window, SIGNAL(fontsize(int)), m_usage, SLOT(fontsize(int)));
    connect(m_window, SIGNAL(color(int)), m_usage, SLOT(color(int)));
    connect(m_window, SIGNAL(closemainwidget()), m_usage, SLOT(closemainwidget()));
}

void WidgetManager::createBatteryWidget()
{
    m_battery = new BatteryWidget(m_platform);
    m_battery->fitToDesktop(m_platform.desktop->translucentWindows());
    m_battery->show();
}

void WidgetManager::connectBatteryWidget()
{
    connect(m_window, SIGNAL(fontsizebattery(int)), m_battery, SLOT(fontsize(int)));
    connect(m_window, SIGNAL(colorbattery(int)), m_battery, SLOT(color(int)));
    connect(m_window, SIGNAL(closebattery()), m_battery, SLOT(closemainwidget()));
}

void WidgetManager::startWidgets()
{
    if (m_ui.StartBatteryWidget->isChecked()) {
        createBatteryWidget();
        connectBatteryWidget();
        emit fontsizebattery(m_ui.horizontalSlider_Battery_FONTsize->value());
        emit colorbattery(checkedAsNumber(m_ui.colorchange_battery));
    }
    if (m_ui.StartResorcescheckBox->isChecked()) {
        createUsageWidget(nullptr);
        emit fontsize(m_ui.horizontalSliderResorcesFONTsize->value());
        emit color(checkedAsNumber(m_ui.colorchange));
    }
}

void WidgetManager::resourcesSwitched()
{
    const SettingsFile file = m_settings.widgets();
    if (m_ui.StartResorcescheckBox->isChecked()) {
        createUsageWidget(m_window);
        file.setValue(QLatin1String(keys::resourcesWidget), 1);
    } else {
        emit closemainwidget();
        file.setValue(QLatin1String(keys::resourcesWidget), 0);
    }
    emit fontsize(m_ui.horizontalSliderResorcesFONTsize->value());
    // 1 or 0, as at start: an inverted widget switched on again stays inverted.
    emit color(m_ui.colorchange->isChecked() ? 1 : 0);
}

void WidgetManager::batterySwitched()
{
    const SettingsFile file = m_settings.widgets();
    if (m_ui.StartBatteryWidget->isChecked()) {
        createBatteryWidget();
        file.setValue(QLatin1String(keys::batteryWidget), 1);
        connectBatteryWidget();
    } else {
        file.setValue(QLatin1String(keys::batteryWidget), 0);
        emit closebattery();
    }
    emit fontsizebattery(m_ui.horizontalSlider_Battery_FONTsize->value());
    emit colorbattery(m_ui.colorchange_battery->isChecked() ? 1 : 0);
}

void WidgetManager::resourcesColorClicked()
{
    const int cor = checkedAsNumber(m_ui.colorchange);
    emit color(cor);
    m_settings.widgets().setValue(QLatin1String(keys::resourcesColor), cor);
}

void WidgetManager::batteryColorClicked()
{
    const int cor = checkedAsNumber(m_ui.colorchange_battery);
    emit colorbattery(cor);
    m_settings.widgets().setValue(QLatin1String(keys::batteryColor), cor);
}

void WidgetManager::resourcesFontSizeChanged(int value)
{
    emit fontsize(value);
    m_ui.fontsize_label->setText(QString::number(value) + QStringLiteral("px"));
    m_settings.widgets().setValue(QLatin1String(keys::resourcesWidgetFontSize), value);
}

void WidgetManager::batteryFontSizeChanged(int value)
{
    emit fontsizebattery(value);
    m_ui.fontsize_battery->setText(QString::number(value) + QStringLiteral("px"));
    m_settings.widgets().setValue(QLatin1String(keys::batteryWidgetFontSize), value);
}
