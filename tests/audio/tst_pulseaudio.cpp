#include "pulseaudioendpoint.h"
#include "pulselibrary.h"
#include "textfile.h"

#include <QElapsedTimer>
#include <QLocalServer>
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

QString pactl(const QStringList &arguments)
{
    QProcess p;
    p.start(QStringLiteral("pactl"), arguments);
    p.waitForFinished(10000);
    return QString::fromUtf8(p.readAllStandardOutput());
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
        m_server.start("timeout",
                       {"-k", "5", "300", server, "-n", "--daemonize=no", "--exit-idle-time=-1",
                        "--log-level=0", "-L", "module-native-protocol-unix auth-anonymous=1", "-L",
                        QStringLiteral("module-null-sink sink_name=%1 sink_properties="
                                       "\"device.description='%2'\"")
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

    // The slider is the loudest channel, as another client sees it; the arithmetic has its own
    // table below.
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
        // What another client sees, per channel in channel order.
        const QString seen = pactl({QStringLiteral("get-sink-volume"), QLatin1String(kSink)});
        QList<int> after;
        auto it = QRegularExpression(QStringLiteral("/\\s*(\\d+)%"))
                      .globalMatch(seen.section('\n', 0, 0));
        while (it.hasNext())
            after << it.next().captured(1).toInt();
        QTEST(after, "after");
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                 quint32(qRound(level * 100)));
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
            writeFile(home.filePath(where),
                      "; a comment\ndefault-server = unix:/somewhere/native\n");
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

    // No server: no device at once, not after the time-out. A server that accepts and never
    // answers costs the given time-out, then nothing until the retry. The time-outs are far
    // from what is measured, so that a loaded machine cannot tip the comparisons.
    void noAnsweringServerMeansNoDevice()
    {
        const QByteArray saved = qgetenv("PULSE_SERVER");
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(m_runtime.path()) + "/nothing-here");
        QElapsedTimer timer;
        timer.start();
        {
            PulseAudioEndpoint endpoint(30s, 60s);
            QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
            QCOMPARE(
                (QList<quint32>{endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                                endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false),
                                endpoint.volumeOperation(AudioEndpoint::SetVolume, 0.5f, false)}),
                (QList<quint32>{0, 0, 0}));
        }
        const qint64 none = timer.restart();
        QLocalServer silent;
        QVERIFY(silent.listen(m_runtime.path() + QStringLiteral("/silent")));
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(silent.fullServerName()));
        PulseAudioEndpoint endpoint(2s, 60s);
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        const qint64 first = timer.restart();
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false), 0u);
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        qputenv("PULSE_SERVER", saved);
        QVERIFY2(none < 10000, qPrintable(QString::number(none)));
        QVERIFY2(first >= 1900, qPrintable(QString::number(first))); // the default is 500 ms
        int attempts = 0;
        while (silent.waitForNewConnection(0) && silent.nextPendingConnection())
            ++attempts;
        QCOMPARE(attempts, 1); // the later calls waited for the retry
    }

    // Last, as the sink goes away: its name and mute state, then no device without it.
    void namesTheSinkMutesItAndLosesIt()
    {
        PulseAudioEndpoint endpoint;
        QCOMPARE(endpoint.outputDeviceName(), QLatin1String(kDescription));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, true);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 999u);
        QVERIFY(pactl({QStringLiteral("get-sink-mute"), QLatin1String(kSink)}).contains("yes"));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, false);
        QCOMPARE(endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false), 111u);
        pactl({QStringLiteral("unload-module"), QStringLiteral("module-null-sink")});
        QCOMPARE(endpoint.outputDeviceName(), QStringLiteral("No Audio Device"));
        QCOMPARE((QList<quint32>{endpoint.volumeOperation(AudioEndpoint::ReadVolume, 0, false),
                                 endpoint.volumeOperation(AudioEndpoint::ReadMute, 0, false)}),
                 (QList<quint32>{0, 0}));
        endpoint.volumeOperation(AudioEndpoint::SetMute, 0, true);
    }

    // The shown percent is the loudest channel; a new level lands on it, the others keeping
    // their share of it.
    void loudestChannelIsTheLevel_data()
    {
        QTest::addColumn<quint32>("left");
        QTest::addColumn<quint32>("right");
        QTest::addColumn<quint32>("percent");
        QTest::addColumn<float>("level");
        QTest::addColumn<quint32>("newLeft");
        QTest::addColumn<quint32>("newRight");
        const quint32 n = PA_VOLUME_NORM;
        auto row = [](const char *name, quint32 l, quint32 r, quint32 percent, float level,
                      quint32 nl, quint32 nr) {
            QTest::newRow(name) << l << r << percent << level << nl << nr;
        };
        row("from silence", 0, 0, 0, 0.5f, n / 2, n / 2);
        row("balanced", n / 2, n / 2, 50, 1.0f, n, n);
        row("level clamped", n, n, 100, 1.5f, n, n);
        row("one side silent", n, 0, 100, 0.25f, n / 4, 0);
        // Target 0.6 of 65536 is 39322: the louder channel takes it, the other keeps half of it.
        row("one to two", n / 4, n / 2, 50, 0.6f, 19661, 39322);
        row("to silence", n, n / 2, 100, 0.0f, 0, 0);
        row("left full, right half", n, n / 2, 100, 1.0f, n, n / 2);
        row("half step rounds up", 327, 0, 0, 1.0f, n, 0);
        row("just over half", 0, 328, 1, 0.5f, 0, n / 2);
        row("above nominal", n * 3 / 2, n * 3 / 2, 150, 1.0f, n, n);
        row("above nominal, unbalanced", n * 2, n, 200, 1.0f, n, n / 2);
    }

    void loudestChannelIsTheLevel()
    {
        pa_cvolume in{};
        in.channels = 2;
        QFETCH(quint32, left);
        QFETCH(quint32, right);
        QFETCH(float, level);
        in.values[0] = left;
        in.values[1] = right;
        QTEST(pulsevolume::percent(in), "percent");
        const pa_cvolume out = pulsevolume::scaledTo(in, level);
        QCOMPARE(out.channels, uint8_t(2));
        QTEST(out.values[0], "newLeft");
        QTEST(out.values[1], "newRight");
    }

    // Headphones by port type, or by name where the port has no type; the name the volume tab
    // looks for follows.
    void headphonePorts()
    {
        const int phones = PA_DEVICE_PORT_TYPE_HEADPHONES, speaker = PA_DEVICE_PORT_TYPE_SPEAKER;
        const int yes = PA_PORT_AVAILABLE_YES;
        const struct {
            const char *tag;
            int type, available;
            const char *name;
            bool headphones;
        } rows[] = {
            {"plugged headphones", phones, yes, "analog-output", true},
            {"no jack detection", phones, PA_PORT_AVAILABLE_UNKNOWN, "x", true},
            {"unplugged", phones, PA_PORT_AVAILABLE_NO, "analog-output-headphones", false},
            {"speaker", speaker, yes, "analog-output-speaker", false},
            {"untyped, named", PA_DEVICE_PORT_TYPE_UNKNOWN, yes, "analog-output-headphones", true},
            {"typed speaker named like one", speaker, yes, "headphone-speaker", false},
        };
        for (const auto &r : rows) {
            QVERIFY2(pulsevolume::isHeadphonePort(r.type, r.available, QLatin1String(r.name)) ==
                         r.headphones,
                     r.tag);
        }
        QCOMPARE((QStringList{pulsevolume::deviceName("Built-in Audio", true),
                              pulsevolume::deviceName("Built-in Audio", false)}),
                 (QStringList{"Built-in Audio (Headphones)", "Built-in Audio"}));
    }

private:
    QString socketDir() const { return m_runtime.path() + QStringLiteral("/pulse"); }

    QTemporaryDir m_runtime;
    QProcess m_server;
};

QTEST_GUILESS_MAIN(TestPulseAudio)
#include "tst_pulseaudio.moc"
