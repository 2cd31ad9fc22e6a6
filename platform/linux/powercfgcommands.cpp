#include "powercfgcommands.h"

#include "commandtable.h"
#include "desktopsettings.h"

void addPowerCommands(CommandTable &table, std::shared_ptr<DesktopSettings> desktop)
{
    // 0 switches adaptive brightness off, 1 on; AC and DC name the same desktop setting. Plain
    // text rows: start-up runs these, and needs no expression engine for them.
    for (const char *source : {"ac", "dc"}) {
        for (const bool on : {false, true}) {
            table.add(QStringLiteral("powercfg -set%1valueindex SCHEME_CURRENT "
                                     "7516b95f-f776-4464-8c53-06167f40cc99 "
                                     "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 %2")
                          .arg(QLatin1String(source), on ? QLatin1String("1") : QLatin1String("0")),
                      [desktop, on](const QRegularExpressionMatch &) {
                          desktop->setAmbientBrightness(on);
                          return QString();
                      });
        }
    }
    // Desktop settings take effect when written; there is nothing to re-activate.
    table.add(QStringLiteral("powercfg -SetActive SCHEME_CURRENT"),
              [](const QRegularExpressionMatch &) { return QString(); });
    table.add(
        QStringLiteral("explorer ms-settings:display"),
        [desktop](const QRegularExpressionMatch &) {
            desktop->openDisplaySettings();
            return QString();
        },
        [] { return !SessionDesktopSettings::displayCommand().isEmpty(); });
    table.add(
        QStringLiteral("control\\.exe /name Microsoft\\.PowerOptions /page  pagePlanSettings"),
        [desktop](const QRegularExpressionMatch &) {
            desktop->openPowerSettings();
            return QString();
        },
        [] { return !SessionDesktopSettings::powerCommand().isEmpty(); });
}
