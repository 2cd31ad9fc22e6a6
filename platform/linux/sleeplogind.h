#pragma once

#include "sleepnotifier.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>

// Sleep and resume as logind reports them on the system bus. While awake the program holds a
// delay inhibitor, so logind waits for it before sleeping; after a resume the window hears
// the same power message Windows sends (WM_POWERBROADCAST with a resume code). Without a bus
// or logind nothing is reported.
class LogindSleepNotifier : public SleepNotifier {
    Q_OBJECT
public:
    explicit LogindSleepNotifier(QObject *parent = nullptr);
    // On another bus, for a stand-in logind.
    explicit LogindSleepNotifier(const QDBusConnection &bus, QObject *parent = nullptr);

    bool decodeNativeMessage(const QByteArray &eventType, void *message, quint32 *id,
                             quintptr *code) override;

    bool holdsInhibitor() const { return m_inhibitor.isValid(); }

public slots:
    // logind's PrepareForSleep: true just before sleeping, false after waking up.
    void handlePrepareForSleep(bool goingToSleep);

private:
    void takeInhibitor();

    QDBusConnection m_bus;
    QDBusUnixFileDescriptor m_inhibitor;
    bool m_inhibitorRequested = false;
};
