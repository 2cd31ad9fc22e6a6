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

    void namesTheDefaultSink()
    {
        PulseAudioEndpoint endpoint;
        QCOMPARE(endpoint.outputDeviceName(), QLatin1String(kDescription));
    }

    void setsAndReadsTheLevel_data()
    {
        QTest::addColumn<float>("level");
        QTest::addColumn<quint32>("percent");
        QTest::newRow("0") << 0.0f << 0u;
        QTest::newRow("37") << 0.37f << 37u;
        QTest::newRow("100") << 1.0f << 100u;
    }

    void setsAndReadsTheLevel()
    {
        QFETCH(float, level);
        QFETCH(quint32, percent);
        PulseAudioEndpoint endpoint;
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::SetVolume, level, false), 0u);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), percent);
        // Another client sees the same.
        QCOMPARE(channelPercents(), QList<int>({int(percent), int(percent)}));
    }

    // The slider is the loudest channel; moving it keeps the balance and never takes a channel
    // above 100 %, even when another program had set one there.
    void settingKeepsTheBalance_data()
    {
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("right");
        QTest::addColumn<quint32>("shown");
        QTest::addColumn<float>("level");
        QTest::addColumn<QList<int>>("after");
        QTest::newRow("left full, right half") << "100%"
                                               << "50%" << 100u << 1.0f << QList<int>({100, 50});
        QTest::newRow("one to two") << "30%"
                                    << "60%" << 60u << 0.9f << QList<int>({45, 90});
        QTest::newRow("above nominal") << "150%"
                                       << "75%" << 150u << 1.0f << QList<int>({100, 50});
        QTest::newRow("balanced") << "40%"
                                  << "40%" << 40u << 0.7f << QList<int>({70, 70});
    }

    void settingKeepsTheBalance()
    {
        QFETCH(QString, left);
        QFETCH(QString, right);
        QFETCH(quint32, shown);
        QFETCH(float, level);
        QFETCH(QList<int>, after);
        pactl({QStringLiteral("set-sink-volume"), QLatin1String(kSink), left, right});
        PulseAudioEndpoint endpoint;
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), shown);
        endpoint.volumeOperation(AudioEndpoint::SetVolume, level, false);
        QCOMPARE(channelPercents(), after);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                 quint32(qRound(level * 100)));
    }

    void mutesAndUnmutes()
    {
        PulseAudioEndpoint endpoint;
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

    void noServerMeansNoDevice()
    {
        const QByteArray saved = qgetenv("PULSE_SERVER");
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(m_runtime.path()) + "/nothing-here");
        PulseAudioEndpoint endpoint;
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), 0u);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 0u);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::SetVolume, 0.5f, false), 0u);
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        qputenv("PULSE_SERVER", saved);
    }

    // A server that accepts and never answers costs one time-out, then nothing until the retry.
    void silentServerCostsOneTimeout()
    {
        QLocalServer silent;
        const QString path = m_runtime.path() + QStringLiteral("/silent");
        QVERIFY(silent.listen(path));
        const QByteArray saved = qgetenv("PULSE_SERVER");
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(path));
        PulseAudioEndpoint endpoint(200ms, 60s);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        const qint64 first = timer.restart();
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), 0u);
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        const qint64 next = timer.elapsed();
        qputenv("PULSE_SERVER", saved);
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
        QTest::newRow("silent") << 0u << 0u << 0u;
        QTest::newRow("nominal") << quint32(PA_VOLUME_NORM) << quint32(PA_VOLUME_NORM) << 100u;
        QTest::newRow("one side silent") << quint32(PA_VOLUME_NORM) << 0u << 100u;
        QTest::newRow("right louder")
            << quint32(PA_VOLUME_NORM / 4) << quint32(PA_VOLUME_NORM / 2) << 50u;
        QTest::newRow("half step rounds up") << 327u << 0u << 0u;
        QTest::newRow("just over half") << 0u << 328u << 1u;
        QTest::newRow("above nominal")
            << quint32(PA_VOLUME_NORM * 3 / 2) << quint32(PA_VOLUME_NORM * 3 / 2) << 150u;
    }

    void percentIsTheLoudestChannel()
    {
        QFETCH(quint32, left);
        QFETCH(quint32, right);
        QFETCH(quint32, percent);
        QCOMPARE(pulsevolume::percent(channels({left, right})), percent);
    }

    void scalingKeepsTheBalance_data()
    {
        QTest::addColumn<quint32>("left");
        QTest::addColumn<quint32>("right");
        QTest::addColumn<float>("level");
        QTest::addColumn<quint32>("newLeft");
        QTest::addColumn<quint32>("newRight");
        const quint32 n = PA_VOLUME_NORM;
        QTest::newRow("balanced") << n / 2 << n / 2 << 1.0f << n << n;
        // Target 0.6 of 65536 is 39322: the louder channel takes it, the other keeps half of it.
        QTest::newRow("one to two") << n / 4 << n / 2 << 0.6f << 19661u << 39322u;
        QTest::newRow("from silence") << 0u << 0u << 0.5f << n / 2 << n / 2;
        QTest::newRow("to silence") << n << n / 2 << 0.0f << 0u << 0u;
        QTest::newRow("left full, right half") << n << n / 2 << 1.0f << n << n / 2;
        QTest::newRow("above nominal") << n * 2 << n << 1.0f << n << n / 2;
        QTest::newRow("level clamped") << n << n << 1.5f << n << n;
    }

    void scalingKeepsTheBalance()
    {
        QFETCH(quint32, left);
        QFETCH(quint32, right);
        QFETCH(float, level);
        QFETCH(quint32, newLeft);
        QFETCH(quint32, newRight);
        const pa_cvolume out = pulsevolume::scaledTo(channels({left, right}), level);
        QCOMPARE(out.channels, uint8_t(2));
        QCOMPARE(out.values[0], newLeft);
        QCOMPARE(out.values[1], newRight);
    }

    void headphonePorts_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("available");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("headphones");
        QTest::newRow("plugged headphones")
            << int(PA_DEVICE_PORT_TYPE_HEADPHONES) << int(PA_PORT_AVAILABLE_YES) << "analog-output"
            << true;
        QTest::newRow("no jack detection")
            << int(PA_DEVICE_PORT_TYPE_HEADPHONES) << int(PA_PORT_AVAILABLE_UNKNOWN) << "x" << true;
        QTest::newRow("unplugged")
            << int(PA_DEVICE_PORT_TYPE_HEADPHONES) << int(PA_PORT_AVAILABLE_NO)
            << "analog-output-headphones" << false;
        QTest::newRow("speaker") << int(PA_DEVICE_PORT_TYPE_SPEAKER) << int(PA_PORT_AVAILABLE_YES)
                                 << "analog-output-speaker" << false;
        QTest::newRow("untyped, named")
            << int(PA_DEVICE_PORT_TYPE_UNKNOWN) << int(PA_PORT_AVAILABLE_YES)
            << "analog-output-headphones" << true;
        QTest::newRow("typed speaker named like one")
            << int(PA_DEVICE_PORT_TYPE_SPEAKER) << int(PA_PORT_AVAILABLE_YES) << "headphone-speaker"
            << false;
    }

    void headphonePorts()
    {
        QFETCH(int, type);
        QFETCH(int, available);
        QFETCH(QString, name);
        QFETCH(bool, headphones);
        QCOMPARE(pulsevolume::isHeadphonePort(type, available, name), headphones);
        // The name the volume tab looks for.
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
