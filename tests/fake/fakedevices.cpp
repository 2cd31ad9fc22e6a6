#include "fakedevices.h"

#include <QtMath>

namespace {
QString regKey(const QString &key, const QString &name)
{
    return key + QLatin1Char('|') + name;
}
} // namespace

QVariant FakeRegistry::value(const QString &key, const QString &name, const QVariant &defaultValue)
{
    return values.value(regKey(key, name), defaultValue);
}

void FakeRegistry::setValue(const QString &key, const QString &name, const QVariant &value)
{
    m_log->add(QStringLiteral("registry set: %1 %2 = %3")
                   .arg(key, name,
                        value.type() == QVariant::StringList
                            ? value.toStringList().join(QLatin1Char('|'))
                            : value.toString()));
    values.insert(regKey(key, name), value);
}

void FakeRegistry::remove(const QString &key, const QString &name)
{
    m_log->add(QStringLiteral("registry remove: %1 %2").arg(key, name));
    values.remove(regKey(key, name));
}

bool FakeRegistry::contains(const QString &key, const QString &name)
{
    return values.contains(regKey(key, name));
}

int FakePanel::read()
{
    m_log->add(QStringLiteral("panel read"));
    return level;
}

void FakePanel::write(quint32 value)
{
    m_log->add(QStringLiteral("panel write %1").arg(value));
    level = static_cast<int>(value);
}

void FakeSwitches::setSwitch(int switchId, int value)
{
    m_log->add(QStringLiteral("switch %1 = %2").arg(switchId).arg(value));
}

void FakeMonitors::setVcpFeature(quintptr windowId, quint8 code, quint32 value)
{
    lastWindow = windowId;
    m_log->add(QStringLiteral("vcp %1 = %2").arg(code).arg(value));
}

bool FakeKeyBlocker::install()
{
    m_log->add(QStringLiteral("key blocker install"));
    installed = true;
    return true;
}

void FakeKeyBlocker::uninstall()
{
    m_log->add(QStringLiteral("key blocker uninstall"));
    installed = false;
}

quint32 FakeAudio::volumeOperation(int command, float value, bool mute)
{
    m_log->add(QStringLiteral("audio %1 %2 %3").arg(command).arg(double(value)).arg(mute));
    if (!hasDevice)
        return 0;
    switch (command) {
    case ReadVolume:
        return static_cast<quint32>(level * 100.0f + 0.5f);
    case SetVolume:
        level = value;
        return 0;
    case SetMute:
        muted = mute;
        return 0;
    case ReadMute:
        return muted ? 999 : 111;
    default:
        return 0;
    }
}

bool FakeSleepNotifier::decodeNativeMessage(const QByteArray &eventType, void *message, quint32 *id,
                                            quintptr *code)
{
    if (eventType != "fake" || !message)
        return false;
    const auto *m = static_cast<const Message *>(message);
    *id = m->id;
    *code = m->code;
    return true;
}

void FakeDesktop::openUrl(const QUrl &url)
{
    m_log->add(QStringLiteral("open url: ") + url.toString());
}

bool FakeDesktop::copySystemFile(const QString &from, const QString &to)
{
    m_log->add(QStringLiteral("copy: %1 -> %2").arg(from, to));
    existing << to;
    return true;
}

QMessageBox::StandardButton FakeDialogs::message(QWidget *, QMessageBox::Icon icon,
                                                 const QString &title, const QString &text,
                                                 QMessageBox::StandardButtons buttons)
{
    m_log->add(QStringLiteral("message: ") + title);
    shown.append({icon, title, text, buttons});
    if (!answers.isEmpty())
        return answers.takeFirst();
    if (buttons & QMessageBox::Yes)
        return QMessageBox::Yes;
    return QMessageBox::Ok;
}

QString FakeDialogs::openFileName(QWidget *, const QString &caption, const QString &dir,
                                  const QString &filter)
{
    m_log->add(QStringLiteral("file dialog: %1 %2 %3").arg(caption, dir, filter));
    return fileAnswers.isEmpty() ? QString() : fileAnswers.takeFirst();
}
