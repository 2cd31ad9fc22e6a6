#pragma once

#include "audio.h"
#include "availability.h"
#include "brightness.h"
#include "desktop.h"
#include "devices.h"
#include "dialogs.h"
#include "identity.h"
#include "operationlog.h"
#include "registry.h"
#include "sleepnotifier.h"

#include <QList>
#include <QMap>
#include <QPair>

class FakeRegistry : public Registry {
public:
    explicit FakeRegistry(SharedLog log) : m_log(std::move(log)) {}
    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;
    bool machineSettingsApply() override { return machineSettings; }

    // key + "|" + name -> value
    QMap<QString, QVariant> values;
    bool machineSettings = true; // false: behave as a system that is not Windows

private:
    SharedLog m_log;
};

class FakeIdentity : public UserIdentity {
public:
    QString userName() override { return name; }
    QString name = QStringLiteral("tester");
};

class FakePanel : public PanelBrightness {
public:
    explicit FakePanel(SharedLog log) : m_log(std::move(log)) {}
    int read() override;
    void write(quint32 level) override;
    bool providerInstalled() override { return provider; }

    int level = 50; // what the panel reports; -1 for an unreachable panel
    bool provider = true;

private:
    SharedLog m_log;
};

class FakeSwitches : public DeviceSwitches {
public:
    explicit FakeSwitches(SharedLog log) : m_log(std::move(log)) {}
    void setSwitch(int switchId, int value) override;
    // The answer of a switch that says no, as it comes after the call.
    void answerNo(int switchId, int value, const QString &why) { answer(switchId, value, why); }

private:
    SharedLog m_log;
};

class FakeMonitors : public MonitorControl {
public:
    explicit FakeMonitors(SharedLog log) : m_log(std::move(log)) {}
    void setVcpFeature(quintptr windowId, quint8 code, quint32 value) override;
    quintptr lastWindow = 0;

private:
    SharedLog m_log;
};

class FakeKeyBlocker : public KeyBlocker {
public:
    explicit FakeKeyBlocker(SharedLog log) : m_log(std::move(log)) {}
    bool install() override;
    void uninstall() override;
    bool installed = false;

private:
    SharedLog m_log;
};

class FakeKeyboardLight : public KeyboardLight {
public:
    explicit FakeKeyboardLight(SharedLog log) : m_log(std::move(log)) {}
    void setLevel(int percent) override
    {
        m_log->add(QStringLiteral("keyboard light %1").arg(percent));
    }

private:
    SharedLog m_log;
};

class FakePowerSource : public PowerSource {
public:
    int acLineStatus() override { return status; }
    int status = 1;
};

class FakeAudio : public AudioEndpoint {
public:
    explicit FakeAudio(SharedLog log) : m_log(std::move(log)) {}
    quint32 volumeOperation(int command, float level, bool mute) override;
    QString outputDeviceName() override { return deviceName; }

    bool hasDevice = true;
    float level = 0.5f;
    bool muted = false;
    QString deviceName = QStringLiteral("Speakers");

private:
    SharedLog m_log;
};

class FakeSleepNotifier : public SleepNotifier {
public:
    // Native events in tests carry a pair of (id, code) behind the message pointer.
    bool decodeNativeMessage(const QByteArray &eventType, void *message, quint32 *id,
                             quintptr *code) override;
    struct Message {
        quint32 id;
        quintptr code;
    };
};

class FakeDesktop : public Desktop {
public:
    explicit FakeDesktop(SharedLog log) : m_log(std::move(log)) {}
    void openUrl(const QUrl &url) override;
    bool systemFileExists(const QString &path) override { return existing.contains(path); }
    bool copySystemFile(const QString &from, const QString &to) override;
    bool translucentWindows() override { return translucent; }
    QString windowsToolsUnavailable() const override { return windowsTools; }

    QStringList existing; // system paths that exist
    bool translucent = true;
    QString windowsTools; // why Windows tools cannot run; empty: they can

private:
    SharedLog m_log;
};

// Answers message boxes from a queue (Yes when empty) and records them.
class FakeDialogs : public Dialogs {
public:
    explicit FakeDialogs(SharedLog log) : m_log(std::move(log)) {}
    QMessageBox::StandardButton message(QWidget *parent, QMessageBox::Icon icon,
                                        const QString &title, const QString &text,
                                        QMessageBox::StandardButtons buttons) override;
    QString openFileName(QWidget *parent, const QString &caption, const QString &dir,
                         const QString &filter) override;

    struct Shown {
        QMessageBox::Icon icon;
        QString title;
        QString text;
        QMessageBox::StandardButtons buttons;
    };
    QList<Shown> shown;
    QList<QMessageBox::StandardButton> answers;
    QStringList fileAnswers; // empty string = cancelled

private:
    SharedLog m_log;
};

// Everything works unless a test names a reason.
class FakeAvailability : public Availability {
public:
    QString whyUnavailable(Feature feature) override { return features.value(feature); }
    QString whyCannotStart(const QString &commandLine) override
    {
        return programs.value(commandLine);
    }

    QMap<Feature, QString> features;
    QMap<QString, QString> programs; // command line -> reason
};
