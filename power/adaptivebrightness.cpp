#include "adaptivebrightness.h"

#include "commandrunner.h"
#include "keys.h"
#include "powercommands.h"

void applyAdaptiveBrightness(CommandRunner &commands, const Settings &settings, bool disable)
{
    for (const QString &line : powercmd::adaptiveBrightness(disable))
        commands.startShown(line, ShowMode::Hidden);
    settings.general().setValue(QLatin1String(keys::adaptiveBrightness), disable);
}
