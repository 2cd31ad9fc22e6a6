#pragma once

#include "textfile.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/types.h>

// A system bus of the test's own (its own socket, config and service folder) that starts
// varnel-helper on demand over a fake tree, with a stand-in polkit daemon. It must be
// started before anything in the process touches QDBusConnection::systemBus().
class PrivateSystemBus {
public:
    ~PrivateSystemBus()
    {
        // The helper the bus started leaves with the test, not a minute later.
        const QDBusReply<uint> helper = QDBusConnection::systemBus().interface()->servicePid(
            QStringLiteral("org.varnel.Helper"));
        if (helper.isValid() && helper.value() > 0) {
            ::kill(pid_t(helper.value()), SIGTERM);
            // Gone from the bus first, so that the daemon that started it also reaps it; if it
            // lingers, the daemon's own end takes it down.
            (void)QTest::qWaitFor(
                [] {
                    return !QDBusConnection::systemBus().interface()->isServiceRegistered(
                        QStringLiteral("org.varnel.Helper"));
                },
                3000);
            QTest::qWait(200);
        }
        for (QProcess *process : {&m_polkit, &m_daemon}) {
            process->terminate();
            process->waitForFinished(3000);
        }
    }

    bool start(const QString &treeRoot)
    {
        const QString socket = m_dir.filePath(QStringLiteral("bus"));
        const QString services = m_dir.filePath(QStringLiteral("services"));
        writeFile(
            m_dir.filePath(QStringLiteral("bus.conf")),
            QStringLiteral(
                "<busconfig><listen>unix:path=%1</listen><auth>EXTERNAL</auth>"
                "<servicedir>%2</servicedir><policy context=\"default\">"
                "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy>"
                "</busconfig>\n")
                .arg(socket, services)
                .toUtf8());
        writeFile(services + QStringLiteral("/org.varnel.Helper.service"),
                  QStringLiteral("[D-BUS Service]\nName=org.varnel.Helper\n"
                                 "Exec=%1 --root %2 --idle-exit-ms 20000\n")
                      .arg(QStringLiteral(VARNEL_HELPER_BIN), treeRoot)
                      .toUtf8());
        // The helper inherits this from the daemon that starts it.
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", QByteArray("unix:path=") + QFile::encodeName(socket));

        // The helper inherits the daemon's output; the test's own would stay open as long.
        m_daemon.setStandardOutputFile(QProcess::nullDevice());
        m_daemon.setStandardErrorFile(QProcess::nullDevice());
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--nofork"),
                        QStringLiteral("--config-file=") + m_dir.filePath("bus.conf")});
        m_polkit.setProcessChannelMode(QProcess::MergedChannels);
        if (m_daemon.waitForStarted() && QTest::qWaitFor([&] { return QFile::exists(socket); }))
            m_polkit.start(QStringLiteral("/usr/bin/python3"),
                           {QStringLiteral("-m"), QStringLiteral("dbusmock"),
                            QStringLiteral("--system"), QStringLiteral("--template"),
                            QStringLiteral("polkitd")});
        return m_polkit.waitForStarted() &&
               QTest::qWaitFor(
                   [] {
                       return QDBusConnection::systemBus().interface()->isServiceRegistered(
                           QStringLiteral("org.freedesktop.PolicyKit1"));
                   },
                   15000);
    }

    // polkit's answer: yes for these actions, no for the others.
    void allow(const QStringList &actions) const { mock(QStringLiteral("SetAllowed"), {actions}); }
    // polkit wants a password and no agent is there to ask for it.
    void withoutAgent() const
    {
        mock(QStringLiteral("AddMethod"),
             {QStringLiteral("org.freedesktop.PolicyKit1.Authority"),
              QStringLiteral("CheckAuthorization"), QStringLiteral("(sa{sv})sa{ss}us"),
              QStringLiteral("(bba{ss})"), QStringLiteral("ret = (False, True, {})")});
    }

private:
    static void mock(const QString &method, const QVariantList &arguments)
    {
        QDBusMessage call =
            QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.PolicyKit1"),
                                           QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
                                           QStringLiteral("org.freedesktop.DBus.Mock"), method);
        call.setArguments(arguments);
        QDBusConnection::systemBus().call(call);
    }

    QTemporaryDir m_dir;
    QProcess m_daemon;
    QProcess m_polkit;
};

// A session bus of the test's own; start() puts its address into the given variable, before
// anything in the process connects to the bus that variable names.
class PrivateSessionBus {
public:
    ~PrivateSessionBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished(5000);
    }
    bool start(const char *addressVariable = "DBUS_SESSION_BUS_ADDRESS")
    {
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--session"), QStringLiteral("--nofork"),
                        QStringLiteral("--print-address")});
        if (m_daemon.waitForReadyRead(10000))
            m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        qputenv(addressVariable, m_address.toUtf8());
        return !m_address.isEmpty();
    }
    QString address() const { return m_address; }

private:
    QProcess m_daemon;
    QString m_address;
};
