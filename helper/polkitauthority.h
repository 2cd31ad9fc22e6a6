#pragma once

#include "outcome.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

// The helper's polkit actions, one per group of verbs (defaults in the policy file).
namespace helperaction {
inline const QString read = QStringLiteral("org.varnel.helper.read");
inline const QString processorLimits = QStringLiteral("org.varnel.helper.processor-limits");
inline const QString tuning = QStringLiteral("org.varnel.helper.tuning");
inline const QString camera = QStringLiteral("org.varnel.helper.camera");
} // namespace helperaction

// Asks polkit whether a bus client may perform an action, letting its agent ask the user.
class PolkitAuthority : public QObject {
    Q_OBJECT
public:
    PolkitAuthority(QDBusConnection bus, QObject *parent = nullptr);

    // done gets Outcome::done() only on polkit's yes; no answer, an error or a challenge
    // nobody could answer is a refusal.
    void check(const QString &busName, const QString &actionId,
               std::function<void(const Outcome &)> done);

private:
    QDBusConnection m_bus;
};
