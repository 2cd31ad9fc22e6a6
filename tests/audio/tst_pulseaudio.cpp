#include "pulseaudioendpoint.h"
#include "pulselibrary.h"

#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <pulse/def.h>

using namespace std::chrono_literals;

namespace {

const char kSink[] = "varnel_test";
const char kDescription[] = "Varnel Test Output";

pa_cvolume channels(std::initializer_list<pa_volume_t> values)
{
    pa_cvolume v{};
    v.channels = static_cast<uint8_t>(values.size());
    int i = 0;
    for (pa_volume_t value : values)
        v.values[i++] = value;
    return v;
}

QString pactl(const QStringList &arguments)
{
    QProcess p;
    p.start(QStringLiteral("pactl"), arguments);
    p.waitForFinished(10000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The per-channel percentages pactl reports for the test sink, in channel order.
QList<int> channelPercents()
{
    const QString text = pactl({QStringLiteral("get-sink-volume"), QLatin1String(kSink)});
    QList<int> out;
    QRegularExpressionMatchIterator it =
        QRegularExpression(QStringLiteral("/\\s*(\\d+)%")).globalMatch(text.section('\n', 0, 0));
    while (it.hasNext())
        out << it.next().captured(1).toInt();
    return out;
}

} // namespace

// The libpulse backend against a real sound server started for the test with one null sink.
class TestPulseAudio : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_runtime.isValid());
        const QString server = QStandardPaths::findExecutable(QStringLiteral("pulseaudio"));
        if (server.isEmpty())
            QSKIP("no pulseaudio program installed");
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), m_runtime.path());
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
        env.insert(QStringLiteral("PULSE_RUNTIME_PATH"), socketDir());
        env.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        m_server.setProcessEnvironment(env);
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.setStandardOutputFile(QProcess::nullDevice());
        // Bounded, so a crashed test leaves no server behind for long.
        m_server.start(QStringLiteral("timeout"),
                       {QStringLiteral("-k"), QStringLiteral("5"), QStringLiteral("300"), server,
                        QStringLiteral("-n"), QStringLiteral("--daemonize=no"),
                        QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--log-level=0"),
                        QStringLiteral("-L"),
                        QStringLiteral("module-native-protocol-unix auth-anonymous=1"),
                        QStringLiteral("-L"),
                        QStringLiteral("module-null-sink sink_name=%1 "
                                       "sink_properties=\"device.description='%2'\"")
                            .arg(QLatin1String(kSink), QLatin1String(kDescription))});
        QVERIFY(m_server.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(socketDir() + QStringLiteral("/native")), 15000);
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socketDir()) + "/native");
        QTRY_VERIFY_WITH_TIMEOUT(pactl({QStringLiteral("info")}).contains(QLatin1String(kSink)),
                                 15000);
    }

    void cleanupTestCase()
    {
        if (m_server.state() != QProcess::NotRunning) {
            m_server.terminate();
            if (!m_server.waitForFinished(5000))
                m_server.kill();
        }
    }

    // The slider is the loudest channel; moving it keeps the balance and never takes a channel
    // above 100 %, even when another program had set one there. Another client sees the same.
    void settingKeepsTheBalance_data()
    {
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("right");
        QTest::addColumn<quint32>("shown");
        QTest::addColumn<float>("level");
        QTest::addColumn<QList<int>>("after");
        auto row = [](const char *name, const char *left, const char *right, quint32 shown,
                      float level, QList<int> after) {
            QTest::newRow(name) << QString(left) << QString(right) << shown << level << after;
        };
        row("to silence", "40%", "40%", 40, 0.0f, {0, 0});
        row("37", "0%", "0%", 0, 0.37f, {37, 37});
        row("balanced to full", "40%", "40%", 40, 1.0f, {100, 100});
        row("left full, right half", "100%", "50%", 100, 1.0f, {100, 50});
        row("one to two", "30%", "60%", 60, 0.9f, {45, 90});
        row("above nominal", "150%", "75%", 150, 1.0f, {100, 50});
    }

    void settingKeepsTheBalance()
    {
        QFETCH(QString, left);
        QFETCH(QString, right);
        QFETCH(float, level);
        pactl({QStringLiteral("set-sink-volume"), QLatin1String(kSink), left, right});
        PulseAudioEndpoint endpoint;
        QTEST(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), "shown");
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::SetVolume, level, false), 0u);
        QTEST(channelPercents(), "after");
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                 quint32(qRound(level * 100)));
    }

    void namesTheSinkAndMutesIt()
    {
        PulseAudioEndpoint endpoint;
        QCOMPARE(endpoint.outputDeviceName(), QLatin1String(kDescription));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, true);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 999u);
        QVERIFY(pactl({QStringLiteral("get-sink-mute"), QLatin1String(kSink)}).contains("yes"));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, false);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 111u);
    }

    // The library is loaded only where a server may answer; the same places libpulse looks.
    void serverIsLookedForBeforeLoadingTheLibrary_data()
    {
        QTest::addColumn<QString>("where");
        QTest::addColumn<bool>("mayExist");
        QTest::newRow("nowhere") << QString() << false;
        QTest::newRow("session socket") << "pulse/native" << true;
        QTest::newRow("server's runtime path") << "runtime/native" << true;
        QTest::newRow("client configuration") << "config/pulse/client.conf" << true;
        QTest::newRow("named server") << "PULSE_SERVER" << true;
    }

    void serverIsLookedForBeforeLoadingTheLibrary()
    {
        QFETCH(QString, where);
        QFETCH(bool, mayExist);
        if (QFile::exists(QStringLiteral("/run/pulse/native")))
            QSKIP("a system-wide server runs here");
        QTemporaryDir home;
        const QStringList names{"PULSE_SERVER", "PULSE_RUNTIME_PATH", "XDG_RUNTIME_DIR",
                                "XDG_CONFIG_HOME"};
        QMap<QString, QByteArray> saved;
        for (const QString &name : names)
            saved[name] = qgetenv(qPrintable(name));
        qunsetenv("PULSE_SERVER");
        qputenv("PULSE_RUNTIME_PATH", QFile::encodeName(home.filePath("runtime")));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath("config")));
        if (where == QLatin1String("PULSE_SERVER")) {
            qputenv("PULSE_SERVER", "tcp:localhost");
        } else if (!where.isEmpty()) {
            QVERIFY(QDir(home.path()).mkpath(QFileInfo(home.filePath(where)).path()));
            QFile file(home.filePath(where));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("; a comment\ndefault-server = unix:/somewhere/native\n");
        }
        const bool found = PulseLibrary::serverMayExist();
        for (const QString &name : names) {
            if (saved[name].isNull())
                qunsetenv(qPrintable(name));
            else
                qputenv(qPrintable(name), saved[name]);
        }
        if (!mayExist && found)
            QSKIP("this machine's own client configuration names a server");
        QCOMPARE(found, mayExist);
    }

    // No server: no device at once. A server that accepts and never answers costs one time-out,
    // then nothing until the retry.
    void noAnsweringServerMeansNoDevice()
    {
        const QByteArray saved = qgetenv("PULSE_SERVER");
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(m_runtime.path()) + "/nothing-here");
        QElapsedTimer timer;
        timer.start();
        {
            PulseAudioEndpoint endpoint;
            QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
            QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), 0u);
            QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 0u);
            QCOMPARE(endpoint.volumeOperation(AudioEndpoint::SetVolume, 0.5f, false), 0u);
        }
        const qint64 none = timer.restart();
        QLocalServer silent;
        QVERIFY(silent.listen(m_runtime.path() + QStringLiteral("/silent")));
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(silent.fullServerName()));
        PulseAudioEndpoint endpoint(200ms, 60s);
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        const qint64 first = timer.restart();
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), 0u);
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        const qint64 next = timer.elapsed();
        qputenv("PULSE_SERVER", saved);
        QVERIFY2(none < 1000, qPrintable(QString::number(none)));
        QVERIFY2(first >= 150 && first < 1500, qPrintable(QString::number(first)));
        QVERIFY2(next < 50, qPrintable(QString::number(next)));
    }

    // Last: the sink goes away.
    void noSinkMeansNoDevice()
    {
        PulseAudioEndpoint endpoint;
        QCOMPARE(endpoint.outputDeviceName(), QLatin1String(kDescription));
        pactl({QStringLiteral("unload-module"), QStringLiteral("module-null-sink")});
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), 0u);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 0u);
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, true);
    }

    void percentIsTheLoudestChannel_data()
    {
        QTest::addColumn<quint32>("left");
        QTest::addColumn<quint32>("right");
        QTest::addColumn<quint32>("percent");
        const quint32 n = PA_VOLUME_NORM;
        auto row = [](const char *name, quint32 left, quint32 right, quint32 percent) {
            QTest::newRow(name) << left << right << percent;
        };
        // Silence, nominal, one silent side and above nominal are read from the server above.
        row("right louder", n / 4, n / 2, 50);
        row("half step rounds up", 327, 0, 0);
        row("just over half", 0, 328, 1);
    }

    void percentIsTheLoudestChannel()
    {
        QFETCH(quint32, left);
        QFETCH(quint32, right);
        QTEST(pulsevolume::percent(channels({left, right})), "percent");
    }

    void scalingKeepsTheBalance_data()
    {
        QTest::addColumn<quint32>("left");
        QTest::addColumn<quint32>("right");
        QTest::addColumn<float>("level");
        QTest::addColumn<quint32>("newLeft");
        QTest::addColumn<quint32>("newRight");
        const quint32 n = PA_VOLUME_NORM;
        auto row = [](const char *name, quint32 l, quint32 r, float level, quint32 nl, quint32 nr) {
            QTest::newRow(name) << l << r << level << nl << nr;
        };
        // The server test above moves whole percents; here the exact values. Target 0.6 of 65536 is
        // 39322: the louder channel takes it, the other keeps half of it.
        row("one to two", n / 4, n / 2, 0.6f, 19661, 39322);
        row("level clamped", n, n, 1.5f, n, n);
    }

    void scalingKeepsTheBalance()
    {
        QFETCH(quint32, left);
        QFETCH(quint32, right);
        QFETCH(float, level);
        const pa_cvolume out = pulsevolume::scaledTo(channels({left, right}), level);
        QCOMPARE(out.channels, uint8_t(2));
        QTEST(out.values[0], "newLeft");
        QTEST(out.values[1], "newRight");
    }

    // Headphones by port type, or by name where the port has no type; the name the volume tab
    // looks for follows.
    void headphonePorts_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("available");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("headphones");
        auto row = [](const char *tag, int type, int available, const char *name, bool yes) {
            QTest::newRow(tag) << type << available << QString(name) << yes;
        };
        const int phones = PA_DEVICE_PORT_TYPE_HEADPHONES, speaker = PA_DEVICE_PORT_TYPE_SPEAKER;
        const int yes = PA_PORT_AVAILABLE_YES;
        row("plugged headphones", phones, yes, "analog-output", true);
        row("no jack detection", phones, PA_PORT_AVAILABLE_UNKNOWN, "x", true);
        row("unplugged", phones, PA_PORT_AVAILABLE_NO, "analog-output-headphones", false);
        row("speaker", speaker, yes, "analog-output-speaker", false);
        row("untyped, named", PA_DEVICE_PORT_TYPE_UNKNOWN, yes, "analog-output-headphones", true);
        row("typed speaker named like one", speaker, yes, "headphone-speaker", false);
    }

    void headphonePorts()
    {
        QFETCH(int, type);
        QFETCH(int, available);
        QFETCH(QString, name);
        QFETCH(bool, headphones);
        QCOMPARE(pulsevolume::isHeadphonePort(type, available, name), headphones);
        QCOMPARE(pulsevolume::deviceName(QStringLiteral("Built-in Audio"), headphones)
                     .contains(QLatin1String("Headphones")),
                 headphones);
    }

private:
    QString socketDir() const { return m_runtime.path() + QStringLiteral("/pulse"); }

    QTemporaryDir m_runtime;
    QProcess m_server;
};

QTEST_GUILESS_MAIN(TestPulseAudio)
#include "tst_pulseaudio.moc"
