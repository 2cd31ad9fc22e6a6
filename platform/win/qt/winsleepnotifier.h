#pragma once

#include "nativemessage.h"
#include "sleepnotifier.h"

// Power messages come with the window messages themselves; only decoding is needed.
class WinSleepNotifier : public SleepNotifier {
public:
    bool decodeNativeMessage(const QByteArray &eventType, void *message, quint32 *id,
                             quintptr *code) override
    {
        varnel::win::NativeMessage m;
        if (!varnel::win::readNativeMessage(eventType.toStdString(), message, m))
            return false;
        *id = m.id;
        *code = static_cast<quintptr>(m.code);
        return true;
    }
};
