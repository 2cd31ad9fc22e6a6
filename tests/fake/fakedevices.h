#pragma once

#include "audio.h"
#include "availability.h"
#include "brightness.h"
#include "desktop.h"
#include "devices.h"
#include "dialogs.h"
#include "operationlog.h"
#include "registry.h"
#include "sleepnotifier.h"

#include <QList>
#include <QMap>
#include <QMetaEnum>

// Every fake that records into the shared log.
struct Logged {
    explicit Logged(SharedLog log) : m_log(std::move(log)) {}
    void log(const QString &entry) const { m_log->add(entry); }
    SharedLog m_log;
};

class FakeRegistry : public Registry, Logged {
public:
    using Logged::Logged;
    QVariant value(const QString &key, const QString &name, const QVariant &fallback) override
    {
        return values.value(key + '|' + name, fallback);
    }
    void setValue(const QString &key, const QString &name, const QVariant &value) override
    {
        const bool list = value.type() == QVariant::StringList;
        log(QStringLiteral("registry set: %1 %2 = %3")
                .arg(key, name, list ? value.toStringList().join('|') : value.toString()));
        values.insert(key + '|' + name, value);
    }
    void remove(const QString &key, const QString &name) override
    {
        log(QStringLiteral("registry remove: %1 %2").arg(key, name));
        values.remove(key + '|' + name);
    }
    bool contains(const QString &key, const QString &name) override
    {
        return values.contains(key + '|' + name);
    }
    bool machineSettingsApply() override { return machineSettings; }

    QMap<QString, QVariant> values; // key + "|" + name -> value
    bool machineSettings = true;    // false: behave as a system that is not Windows
};

class FakePanel : public PanelBrightness, Logged {
public:
    using Logged::Logged;
    int read() override
    {
        log(QStringLiteral("panel read"));
        return level;
    }
    void write(quint32 value) override
    {
        log(QStringLiteral("panel write %1").arg(value));
        level = int(value);
    }
    bool providerInstalled() override { return provider; }

    int level = 50; // what the panel reports; -1 for an unreachable panel
    bool provider = true;
};

class FakeSwitches : public DeviceSwitches, Logged {
public:
    using Logged::Logged;
    void setSwitch(int switchId, int value) override
    {
        log(QStringLiteral("switch %1 = %2").arg(switchId).arg(value));
    }
    // The answer of a switch that says no, as it comes after the call.
    void answerNo(int switchId, int value, const QString &why) { answer(switchId, value, why); }
};

class FakeMonitors : public MonitorControl, Logged {
public:
    using Logged::Logged;
    void setVcpFeature(quintptr windowId, quint8 code, quint32 value) override
    {
        lastWindow = windowId;
        log(QStringLiteral("vcp %1 = %2").arg(code).arg(value));
    }
    quintptr lastWindow = 0;
};

class FakeKeyBlocker : public KeyBlocker, Logged {
public:
    using Logged::Logged;
    bool install() override
    {
        log(QStringLiteral("key blocker install"));
        return true;
    }
    void uninstall() override { log(QStringLiteral("key blocker uninstall")); }
};

class FakeKeyboardLight : public KeyboardLight, Logged {
public:
    using Logged::Logged;
    void setLevel(int percent) override { log(QStringLiteral("keyboard light %1").arg(percent)); }
};

class FakePowerSource : public PowerSource {
public:
    int acLineStatus() override { return status; }
    int status = 1;
};

class FakeAudio : public AudioEndpoint, Logged {
public:
    using Logged::Logged;
    quint32 volumeOperation(int command, float value, bool mute) override
    {
        log(QStringLiteral("audio %1 %2 %3").arg(command).arg(double(value)).arg(mute));
        if (!hasDevice)
            return 0;
        if (command == SetVolume)
            level = value;
        if (command == SetMute)
            muted = mute;
        if (command == ReadVolume)
            return quint32(level * 100.0f + 0.5f);
        if (command == ReadMute)
            return muted ? 999 : 111;
        return 0;
    }
    QString outputDeviceName() override { return deviceName; }

    bool hasDevice = true;
    float level = 0.5f;
    bool muted = false;
    QString deviceName = QStringLiteral("Speakers");
};

// Native events in tests carry a Message (id, code) behind the message pointer.
class FakeSleepNotifier : public SleepNotifier {
public:
    struct Message {
        quint32 id;
        quintptr code;
    };
    bool decodeNativeMessage(const QByteArray &eventType, void *message, quint32 *id,
                             quintptr *code) override
    {
        if (eventType != "fake" || !message)
            return false;
        *id = static_cast<const Message *>(message)->id;
        *code = static_cast<const Message *>(message)->code;
        return true;
    }
};

class FakeDesktop : public Desktop, Logged {
public:
    using Logged::Logged;
    void openUrl(const QUrl &url) override { log(QStringLiteral("open url: ") + url.toString()); }
    bool systemFileExists(const QString &path) override { return existing.contains(path); }
    bool copySystemFile(const QString &from, const QString &to) override
    {
        log(QStringLiteral("copy: %1 -> %2").arg(from, to));
        existing << to;
        return true;
    }
    bool translucentWindows() override { return translucent; }
    QString windowsToolsUnavailable() const override { return windowsTools; }

    QStringList existing; // system paths that exist
    bool translucent = true;
    QString windowsTools; // why Windows tools cannot run; empty: they can
};

// Answers message boxes from a queue (Yes, else Ok, when empty) and records them.
class FakeDialogs : public Dialogs, Logged {
public:
    using Logged::Logged;
    QMessageBox::StandardButton message(QWidget *, QMessageBox::Icon icon, const QString &title,
                                        const QString &text,
                                        QMessageBox::StandardButtons buttons) override
    {
        log(QStringLiteral("message: ") + title);
        shown.append({icon, title, text, buttons});
        if (!answers.isEmpty())
            return answers.takeFirst();
        return buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
    }
    QString openFileName(QWidget *, const QString &caption, const QString &dir,
                         const QString &filter) override
    {
        log(QStringLiteral("file dialog: %1 %2 %3").arg(caption, dir, filter));
        return fileAnswers.isEmpty() ? QString() : fileAnswers.takeFirst();
    }

    struct Shown {
        QMessageBox::Icon icon;
        QString title;
        QString text;
        QMessageBox::StandardButtons buttons;
    };
    // Every box shown as one line, "Icon | title | text | Buttons": "Question | Exit | Sure? |
    // Yes|No".
    QStringList lines() const
    {
        const QMetaEnum icons = QMetaEnum::fromType<QMessageBox::Icon>();
        const QMetaEnum buttons = QMetaEnum::fromType<QMessageBox::StandardButtons>();
        QStringList out;
        for (const Shown &b : shown)
            out << QStringLiteral("%1 | %2 | %3 | %4")
                       .arg(QLatin1String(icons.valueToKey(b.icon)), b.title, b.text,
                            QString(buttons.valueToKeys(int(b.buttons))).remove("|FirstButton"));
        return out;
    }
    QList<Shown> shown;
    QList<QMessageBox::StandardButton> answers;
    QStringList fileAnswers; // empty string = cancelled
};

// Everything works unless a test names a reason.
class FakeAvailability : public Availability {
public:
    QString whyUnavailable(Feature feature) override { return features.value(feature); }
    QString whyCannotStart(const QString &line) override { return programs.value(line); }

    QMap<Feature, QString> features;
    QMap<QString, QString> programs; // command line -> reason
};
