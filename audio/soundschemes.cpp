#include "soundschemes.h"

#include "registry.h"
#include "soundevents.h"

#include <QComboBox>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcSoundSchemes, "varnel.audio.schemes")

namespace {
const int kNoSoundsIndex = 1;
}

SoundSchemes::SoundSchemes(QComboBox *combo, Registry &registry, QObject *parent)
    : QObject(parent), m_combo(combo), m_registry(registry)
{
}

QString SoundSchemes::eventKey(const QString &event)
{
    return QLatin1String(soundevents::eventKeyPrefix) + event +
           QLatin1String(soundevents::eventKeySuffix);
}

void SoundSchemes::choose(int index)
{
    const QString name = QLatin1String(soundevents::defaultValueName);
    const bool silent = index == kNoSoundsIndex;
    qCDebug(lcSoundSchemes) << "scheme" << (silent ? "no sounds" : "default");
    m_registry.setValue(
        QLatin1String(soundevents::schemesKey), name,
        QLatin1String(silent ? soundevents::silentMarker : soundevents::stockMarker));
    for (const soundevents::Event &event : soundevents::table) {
        if (silent)
            m_registry.setValue(eventKey(QLatin1String(event.name)), name, QString());
        else if (event.stockSound)
            m_registry.setValue(eventKey(QLatin1String(event.name)), name,
                                QString::fromLatin1(event.stockSound));
    }
}

void SoundSchemes::refresh()
{
    const QString marker = m_registry
                               .value(QLatin1String(soundevents::schemesKey),
                                      QLatin1String(soundevents::defaultValueName),
                                      QLatin1String(soundevents::silentMarker))
                               .toString();
    m_combo->setCurrentIndex(marker == QLatin1String(soundevents::silentMarker) ? kNoSoundsIndex
                                                                                : 0);
}
