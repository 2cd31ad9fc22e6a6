#include "fakesystree.h"
#include "outcome.h"
#include "polkitauthority.h"
#include "privatesystembus.h"

#include <QDBusReply>
#include <QtTest>

// varnel-helper as the window reaches it: started by the bus, asking polkit on every call.
class TestHelperBus : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void calls_data();
    void calls();
    void noAgentRefuses();

private:
    QDBusMessage call(const QString &method, const QVariantList &arguments) const;

    FakeSysTree m_tree;
    PrivateSystemBus m_bus;
};

void TestHelperBus::initTestCase()
{
    m_tree.putPstate();
    m_tree.putRapl();
    m_tree.putUsbDevice(QStringLiteral("1-6"), true);
    QVERIFY(m_bus.start(m_tree.root()));
}

QDBusMessage TestHelperBus::call(const QString &method, const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.varnel.Helper"), QStringLiteral("/org/varnel/Helper"),
        QStringLiteral("org.varnel.Helper"), method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message, QDBus::Block, 20000);
}

void TestHelperBus::calls_data()
{
    QTest::addColumn<QStringList>("allowed");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");

    const QString none;
    const QString maxPct = QStringLiteral("sys/devices/system/cpu/intel_pstate/max_perf_pct");
    const QString power =
        QStringLiteral("sys/class/powercap/intel-rapl:0/constraint_0_power_limit_uw");
    const QString camera = QStringLiteral("sys/bus/usb/devices/1-6/authorized");
    const QStringList limits{helperaction::processorLimits};
    const QStringList tuning{helperaction::tuning};

    QTest::newRow("processor maximum, authorised")
        << limits << "SetProcessorMaximum" << QVariantList{70} << none << maxPct
        << QByteArray("70");
    QTest::newRow("processor maximum, refused")
        << QStringList() << "SetProcessorMaximum" << QVariantList{60} << helpererror::notAuthorized
        << maxPct << QByteArray("70");
    QTest::newRow("processor limits do not authorise tuning")
        << limits << "SetTurboPower" << QVariantList{35000u} << helpererror::notAuthorized << power
        << QByteArray("45000000");
    QTest::newRow("turbo power, authorised") << tuning << "SetTurboPower" << QVariantList{35000u}
                                             << none << power << QByteArray("35000000");
    QTest::newRow("out of range though authorised")
        << tuning << "SetTurboPower" << QVariantList{5000000u} << helpererror::outOfRange << power
        << QByteArray("35000000");
    QTest::newRow("camera off, authorised")
        << QStringList{helperaction::camera} << "SetCamera" << QVariantList{false} << none << camera
        << QByteArray("0");
    QTest::newRow("camera, refused") << tuning << "SetCamera" << QVariantList{true}
                                     << helpererror::notAuthorized << camera << QByteArray("0");
    QTest::newRow("reading needs its own yes")
        << tuning << "ReadPowerLimits" << QVariantList() << helpererror::notAuthorized << none
        << QByteArray();
}

void TestHelperBus::calls()
{
    QFETCH(QStringList, allowed);
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, error);
    QFETCH(QString, file);
    QFETCH(QByteArray, content);

    m_bus.allow(allowed);
    const QDBusMessage reply = call(method, arguments);
    QCOMPARE(reply.type() == QDBusMessage::ErrorMessage ? reply.errorName() : QString(), error);
    if (!file.isEmpty())
        QCOMPARE(m_tree.get(file), content);
}

void TestHelperBus::noAgentRefuses()
{
    m_bus.allow({helperaction::read});
    const QDBusReply<uint> power = QDBusConnection::systemBus().call(QDBusMessage::createMethodCall(
        QStringLiteral("org.varnel.Helper"), QStringLiteral("/org/varnel/Helper"),
        QStringLiteral("org.varnel.Helper"), QStringLiteral("ReadPowerLimits")));
    QVERIFY2(power.isValid(), qPrintable(power.error().message()));
    QCOMPARE(power.value(), 35000u);

    m_bus.withoutAgent();
    const QDBusMessage reply = call(QStringLiteral("SetTurboPower"), {40000u});
    QCOMPARE(reply.errorName(), helpererror::notAuthorized);
    QVERIFY(reply.errorMessage().contains(QLatin1String("no authentication agent")));
    QCOMPARE(
        m_tree.get(QStringLiteral("sys/class/powercap/intel-rapl:0/constraint_0_power_limit_uw")),
        QByteArray("35000000"));
}

QTEST_GUILESS_MAIN(TestHelperBus)
#include "tst_helperbus.moc"
