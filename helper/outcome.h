#pragma once

#include <QString>

// Error names the helper answers with; the window turns them into words for the user.
namespace helpererror {
inline const QString outOfRange = QStringLiteral("org.varnel.Helper.Error.OutOfRange");
inline const QString notSupported = QStringLiteral("org.varnel.Helper.Error.NotSupported");
inline const QString locked = QStringLiteral("org.varnel.Helper.Error.Locked");
inline const QString notAccepted = QStringLiteral("org.varnel.Helper.Error.NotAccepted");
inline const QString failed = QStringLiteral("org.varnel.Helper.Error.Failed");
inline const QString notAuthorized = QStringLiteral("org.varnel.Helper.Error.NotAuthorized");
} // namespace helpererror

// What a verb did: done, or refused with an error name and a sentence for the user.
struct Outcome {
    QString errorName;
    QString message;

    bool ok() const { return errorName.isEmpty(); }
    static Outcome done() { return {}; }
    static Outcome refuse(const QString &name, const QString &text) { return {name, text}; }
};
