#pragma once

#include <QObject>
#include <QString>

class QComboBox;
class Registry;

// The Extras tab's scheme combo: index 0 the stock Windows sounds, index 1 no sounds. The
// registry (or what stands in for it) is the only record of the choice.
class SoundSchemes : public QObject {
    Q_OBJECT
public:
    SoundSchemes(QComboBox *combo, Registry &registry, QObject *parent);

    // Rewrites the marker and the event values for the chosen index.
    void choose(int index);
    // Sets the combo from the marker; a changed index rewrites the values through the combo's
    // own change handler, so a missing marker ends with every event silenced.
    void refresh();

    static QString eventKey(const QString &event);

private:
    QComboBox *m_combo;
    Registry &m_registry;
};
