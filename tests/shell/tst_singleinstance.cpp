// One instance per user under real processes; this program is itself a first instance, so its
// own server is tried in-process with slow and silent clients.
#include "instancefile.h"
#include "instancekey.h"
#include "linuxidentity.h"
#include "sharedmemoryblock.h"
#include "singleapplication.h"
#include "textfile.h"

#include <QLocalSocket>
#include <QtTest>

#include <memory>
#include <pwd.h>
#include <sched.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

const QString kProbe = QStringLiteral(VARNEL_TEST_BIN_DIR "/shell/instance_probe");

// The key every probe start computes: the application's defaults, the probe's path, this user.
QString probeKey()
{
    InstanceKeyInputs in;
    in.applicationName = QStringLiteral("instance_probe");
    in.applicationFilePath = QFileInfo(kProbe).canonicalFilePath();
    in.userName = LinuxIdentity().userName();
    return instanceKey(in);
}

} // namespace

class TestSingleInstance : public QObject {
    Q_OBJECT

public:
    explicit TestSingleInstance(SingleApplication &app) : m_app(app) {}

private:
    SingleApplication &m_app;
    std::unique_ptr<QTemporaryDir> m_runtime; // the probes' private runtime folder
    std::unique_ptr<QTemporaryDir> m_temp;    // the probes' shared temporary folder
    std::vector<std::unique_ptr<QProcess>> m_probes;
    std::unique_ptr<QSharedMemory> m_heldSegment; // kept, as a segment outlives a killed start

    QProcess *startProbe(const QString &program = kProbe, const QStringList &arguments = {})
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime->path());
        env.insert(QStringLiteral("TMPDIR"), m_temp->path());
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process->setProcessEnvironment(env);
        process->start(program, arguments);
        m_probes.push_back(std::move(process));
        return m_probes.back().get();
    }

    // Starts one probe that must become the first instance; null if it did not say so.
    QProcess *startPrimary()
    {
        QProcess *probe = startProbe();
        if (!probe->waitForReadyRead(15000))
            return nullptr;
        const QByteArray line = probe->readLine().trimmed();
        return line.startsWith("primary ") && line.mid(8).toLongLong() > 0 ? probe : nullptr;
    }

    // A later start: it must hand over and end with status 0 while the first keeps running.
    bool handsOver()
    {
        QProcess *later = startProbe();
        return later->waitForFinished(15000) && later->exitStatus() == QProcess::NormalExit &&
               later->exitCode() == 0 && later->readAllStandardOutput().isEmpty();
    }

    // Runs f with the probes' temporary folder, where a System V segment's name lives.
    template <class F> void inProbeTemp(F f)
    {
        const QByteArray saved = qgetenv("TMPDIR");
        qputenv("TMPDIR", m_temp->path().toUtf8());
        if (!m_heldSegment)
            m_heldSegment = std::make_unique<QSharedMemory>(probeKey());
        f(*m_heldSegment);
        qputenv("TMPDIR", saved);
    }

    QString blockFile() const { return m_runtime->path() + '/' + probeKey() + ".block"; }

    // The block wherever a start may look for one: the file and a System V segment.
    void writeBlock(const InstanceBlock &value)
    {
        QFile file(blockFile());
        if (file.open(QIODevice::ReadWrite))
            file.write(reinterpret_cast<const char *>(&value), sizeof(value));
        inProbeTemp([&](QSharedMemory &segment) {
            if ((segment.isAttached() || segment.attach()) && segment.lock()) {
                *static_cast<InstanceBlock *>(segment.data()) = value;
                segment.unlock();
            }
        });
    }

    int runningProbes()
    {
        return int(std::count_if(m_probes.begin(), m_probes.end(),
                                 [](const auto &p) { return p->state() != QProcess::NotRunning; }));
    }

private slots:
    void init()
    {
        m_runtime = std::make_unique<QTemporaryDir>();
        m_temp = std::make_unique<QTemporaryDir>();
        QVERIFY(m_runtime->isValid() && m_temp->isValid());
        // Shared like /tmp, so a start could be tempted to keep its key files there.
        ::chmod(QFile::encodeName(m_temp->path()).constData(), 01777);
        QVERIFY(QFile::exists(kProbe));
    }

    void cleanup()
    {
        for (const auto &p : m_probes) {
            p->kill();
            p->waitForFinished(5000);
        }
        m_probes.clear();
        // A System V block left by a killed start goes with its last user.
        inProbeTemp([](QSharedMemory &segment) {
            if (segment.isAttached() || segment.attach())
                segment.detach();
        });
        m_heldSegment.reset();
    }

    void fiftyStartsAtOnceLeaveExactlyOne_data()
    {
        QTest::addColumn<bool>("overKilledFirst");
        for (int round = 1; round <= 10; ++round)
            QTest::addRow("round %d, %s", round, round > 8 ? "over a killed first" : "from nothing")
                << (round > 8);
    }

    void fiftyStartsAtOnceLeaveExactlyOne()
    {
        QFETCH(bool, overKilledFirst);
        if (overKilledFirst) {
            QProcess *first = startPrimary();
            QVERIFY(first);
            first->kill();
            first->waitForFinished(5000);
            m_probes.clear();
        }
        // On one processor the starts take turns in the middle of their checks, which is where
        // two of them could both decide to be first.
        cpu_set_t saved, one;
        QCOMPARE(sched_getaffinity(0, sizeof saved, &saved), 0);
        CPU_ZERO(&one);
        CPU_SET(sched_getcpu(), &one);
        QCOMPARE(sched_setaffinity(0, sizeof one, &one), 0);
        for (int i = 0; i < 50; ++i)
            startProbe();
        sched_setaffinity(0, sizeof saved, &saved);
        // Every start but one hands over; copies that stay are what this guards against.
        QTRY_VERIFY2_WITH_TIMEOUT(
            runningProbes() <= 1,
            qPrintable(QStringLiteral("%1 copies running").arg(runningProbes())), 30000);
        QCOMPARE(runningProbes(), 1);
        for (const auto &p : m_probes) {
            if (p->state() == QProcess::NotRunning)
                QCOMPARE(p->exitCode(), 0);
            else
                QVERIFY(p->readLine().startsWith("primary "));
        }
        // Nothing is kept in the shared temporary folder (a start that just ended may still be
        // taking its files away); the block is ours.
        QTRY_COMPARE_WITH_TIMEOUT(
            QDir(m_temp->path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
            QStringList(), 5000);
        QCOMPARE(QFileInfo(blockFile()).ownerId(), uint(geteuid()));
    }

    // A first instance that died in odd ways, or whose block or key files were tampered with.
    void disturbedFirstInstanceLeavesOne_data()
    {
        QTest::addColumn<QString>("event");
        QTest::newRow("zombie, never reaped") << "zombie";
        QTest::newRow("killed, its process id now another program's") << "killed";
        QTest::newRow("block zeroed while it runs") << "zero";
        QTest::newRow("key files deleted from the temporary folder") << "delete";
    }

    void disturbedFirstInstanceLeavesOne()
    {
        QFETCH(QString, event);
        QProcess *first = nullptr;
        if (event == "zombie") {
            // The probe's parent becomes a program that never reaps it.
            QProcess *shell = startProbe("/bin/sh", {"-c", "\"$0\" & exec sleep 120", kProbe});
            QVERIFY(shell->waitForReadyRead(15000));
            const qint64 deadPid = shell->readLine().trimmed().mid(8).toLongLong();
            QVERIFY(deadPid > 0);
            ::kill(pid_t(deadPid), SIGKILL);
            const QString stat = QStringLiteral("/proc/%1/stat").arg(deadPid);
            QTRY_VERIFY(readFile(stat).split(')').last().startsWith(" Z")); // a zombie
        } else {
            QVERIFY(first = startPrimary());
        }
        if (event == "killed") {
            first->kill();
            first->waitForFinished(5000);
            first = nullptr;
            // The block still says "running" and names a live process that is not ours.
            writeBlock(InstanceBlock{true, 0, QCoreApplication::applicationPid()});
        }
        if (event == "zero")
            writeBlock(InstanceBlock{false, 0, 0});
        if (event == "delete")
            for (const QString &name :
                 QDir(m_temp->path()).entryList({"qipc_*"}, QDir::Files | QDir::System))
                QFile::remove(m_temp->filePath(name));
        // Other programs take the freed file numbers, as they would in a busy /tmp.
        for (int i = 0; i < 4; ++i)
            QVERIFY(QFile(m_temp->filePath(QString("other-%1").arg(i))).open(QIODevice::WriteOnly));
        if (!first)
            QVERIFY(first = startPrimary());
        QVERIFY(handsOver());
        QVERIFY(first->waitForReadyRead(5000));
        QCOMPARE(first->readLine().trimmed(), QByteArray("wake"));
    }

    // Another local user made the block first, claiming a first instance that is alive.
    void anotherUsersBlockIsNotTrusted()
    {
        if (geteuid() != 0)
            QSKIP("needs root to make files of another user");
        const passwd *nobody = getpwnam("nobody");
        QVERIFY(nobody);
        inProbeTemp([](QSharedMemory &segment) { QVERIFY(segment.create(sizeof(InstanceBlock))); });
        QFile planted(blockFile());
        QVERIFY(planted.open(QIODevice::WriteOnly));
        planted.close();
        for (const QString &name : QDir(m_temp->path()).entryList(QDir::Files | QDir::System))
            QVERIFY(::chown(QFile::encodeName(m_temp->filePath(name)).constData(), nobody->pw_uid,
                            nobody->pw_gid) == 0);
        QVERIFY(::chown(QFile::encodeName(blockFile()).constData(), nobody->pw_uid,
                        nobody->pw_gid) == 0);
        writeBlock(InstanceBlock{true, 0, 1});

        QVERIFY(startPrimary());
        QVERIFY(handsOver());
        QCOMPARE(QFileInfo(blockFile()).ownerId(), uint(geteuid()));
    }

    // Both kinds of block, two starts in one process: one first instance at a time, and the
    // place is free again after a clean shutdown.
    void blockSettlesOneFirstInstance_data()
    {
        QTest::addColumn<bool>("sharedMemory");
        QTest::newRow("named shared memory") << true;
        QTest::newRow("file in a private folder") << false;
    }

    void blockSettlesOneFirstInstance()
    {
        QFETCH(bool, sharedMemory);
        const QString key = QUuid::createUuid().toString(QUuid::WithoutBraces);
        auto make = [&]() -> std::unique_ptr<InstanceBlockHost> {
            if (sharedMemory)
                return std::make_unique<SharedMemoryInstanceBlock>(key);
            return std::make_unique<FileInstanceBlock>(m_runtime->path(), key);
        };
        auto first = make();
        auto second = make();
        QVERIFY(first->claimPrimary(101));
        QVERIFY(!second->claimPrimary(102));
        QCOMPARE(second->addSecondary(), 1u);
        QCOMPARE(second->addSecondary(), 2u);
        first->release();
        QVERIFY(second->claimPrimary(102));
        QVERIFY(!first->claimPrimary(101));
        QCOMPARE(first->serverName(), second->serverName());
    }

    // The message is read as it comes: one that arrives in pieces wakes the window (this thread
    // writes the second half only after the first instance, on the same thread, has seen the
    // first), and clients that connect and say nothing are dropped after 100 ms each, without
    // holding up the window or the real start queued behind them.
    void piecesWakeAndSilentClientsAreDropped()
    {
        QSignalSpy woken(&m_app, &SingleApplication::instanceStarted);
        const QByteArray message = encodeConnectionMessage(m_app.blockServerName(), NewInstance, 0);
        QLocalSocket client;
        client.connectToServer(m_app.serverName());
        QVERIFY(client.waitForConnected(2000));
        client.write(message.left(10));
        client.flush();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        client.write(message.mid(10));
        client.flush();
        QTRY_COMPARE(woken.count(), 1);

        std::vector<std::unique_ptr<QLocalSocket>> silent;
        for (int i = 0; i < 200; ++i) {
            silent.push_back(std::make_unique<QLocalSocket>());
            silent.back()->connectToServer(m_app.serverName());
        }
        QLocalSocket real;
        real.connectToServer(m_app.serverName());
        QTRY_COMPARE_WITH_TIMEOUT(real.state(), QLocalSocket::ConnectedState, 4000);
        real.write(message);
        QTRY_COMPARE_WITH_TIMEOUT(woken.count(), 2, 4000);
        QTRY_VERIFY_WITH_TIMEOUT(
            std::all_of(silent.begin(), silent.end(),
                        [](const auto &s) { return s->state() == QLocalSocket::UnconnectedState; }),
            4000);
        QCOMPARE(real.state(), QLocalSocket::ConnectedState);
    }
};

int main(int argc, char *argv[])
{
    // This program's own first-instance files go to a folder of its own.
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    SingleApplication app(argc, argv, false, 1, 100);
    TestSingleInstance test(app);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_singleinstance.moc"
