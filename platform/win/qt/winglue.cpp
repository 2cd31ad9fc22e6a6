#include "winglue.h"

#include "qtprocess.h"
#include "win_commands.h"
#include "win_identity.h"
#include "win_registry.h"
#include "winmonitoring.h"
#include "wmiquery.h"

#include <QDesktopServices>
#include <QFile>
#include <QStringList>

namespace win = varnel::win;

QString WinCommandRunner::runAndRead(const QString &commandLine, int timeoutMs)
{
    // The two identification queries still answer where wmic.exe is gone.
    if (const auto text = win::answerIdentificationQuery(commandLine.toStdWString(), timeoutMs))
        return QString::fromStdString(*text);
    const std::string output = win::runAndRead(commandLine.toStdWString(), timeoutMs);
    return QString::fromStdString(win::decodeCommandOutput(output));
}

void WinCommandRunner::start(const QString &commandLine)
{
    win::startCommand(commandLine.toStdWString());
}

void WinCommandRunner::startShown(const QString &commandLine, ShowMode mode)
{
    win::startShown(commandLine.toStdWString(), static_cast<int>(mode));
}

void WinCommandRunner::startDetached(const QString &program, const QStringList &arguments,
                                     const QString &workingDirectory)
{
    std::vector<std::wstring> args;
    for (const QString &argument : arguments)
        args.push_back(argument.toStdWString());
    win::startDetached(program.toStdWString(), args, workingDirectory.toStdWString());
}

AsyncProcess *WinCommandRunner::createProcess(QObject *parent)
{
    return new WinBatteryQueryProcess(parent);
}

QVariant WinRegistry::value(const QString &key, const QString &name, const QVariant &defaultValue)
{
    win::RegistryValue v;
    if (win::queryValue(key.toStdWString(), name.toStdWString(), v) != 0)
        return defaultValue;
    switch (v.type) {
    case win::RegistryValue::Type::Dword:
        return static_cast<int>(v.dword);
    case win::RegistryValue::Type::Qword:
        return static_cast<qint64>(v.qword);
    case win::RegistryValue::Type::String:
        return QString::fromStdWString(v.text);
    case win::RegistryValue::Type::MultiString: {
        QStringList list;
        for (const std::wstring &entry : v.list)
            list << QString::fromStdWString(entry);
        return list;
    }
    case win::RegistryValue::Type::Binary:
        return QByteArray(reinterpret_cast<const char *>(v.bytes.data()),
                          static_cast<int>(v.bytes.size()));
    case win::RegistryValue::Type::None:
        break;
    }
    return defaultValue;
}

void WinRegistry::setValue(const QString &key, const QString &name, const QVariant &value)
{
    const std::wstring k = key.toStdWString();
    const std::wstring n = name.toStdWString();
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
        win::setDwordValue(k, n, value.toUInt());
        return;
    case QMetaType::QStringList: {
        std::vector<std::wstring> list;
        for (const QString &entry : value.toStringList())
            list.push_back(entry.toStdWString());
        win::setMultiStringValue(k, n, list);
        return;
    }
    default:
        win::setStringValue(k, n, value.toString().toStdWString());
    }
}

void WinRegistry::remove(const QString &key, const QString &name)
{
    win::deleteValue(key.toStdWString(), name.toStdWString());
}

bool WinRegistry::contains(const QString &key, const QString &name)
{
    return win::valueExists(key.toStdWString(), name.toStdWString());
}

QString WinIdentity::userName()
{
    std::string name;
    return win::currentUserName(name) ? QString::fromStdString(name) : QString();
}

void WinDesktop::openUrl(const QUrl &url)
{
    QDesktopServices::openUrl(url);
}

bool WinDesktop::systemFileExists(const QString &path)
{
    return QFile::exists(path);
}

bool WinDesktop::copySystemFile(const QString &from, const QString &to)
{
    return QFile::copy(from, to);
}
