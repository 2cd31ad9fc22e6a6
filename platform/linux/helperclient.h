#pragma once

#include "privileged.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

#include <functional>
#include <utility>

// Calls varnel-helper over the system bus without blocking the window, and keeps why it last
// could not act so that the controls can say so.
class HelperClient : public PrivilegedAccess {
public:
    using Done = std::function<void(const QDBusMessage &reply)>;

    explicit HelperClient(std::function<bool()> available);

    // Whose controls hear of a refusal: the tuning tab asks for its own reasons only.
    enum class Caller { Tuning, ProcessorLimits, Other };

    // done runs on the GUI thread with the reply or the error.
    void call(const QString &method, const QVariantList &arguments, Done done,
              Caller caller = Caller::Tuning);

    QString unavailableReason() const override;
    QString takeRefusal() override
    {
        return std::exchange(m_refusals, QStringList()).join(QLatin1Char('\n'));
    }
    QString takeLimitRefusal() override
    {
        return std::exchange(m_limitRefusals, QStringList()).join(QLatin1Char('\n'));
    }

    // An error reply in the words a tool tip shows.
    static QString describe(const QDBusMessage &error);

private:
    std::function<bool()> m_available;
    QStringList m_refusals; // each reason once, in the order they came
    QStringList m_limitRefusals;
};
