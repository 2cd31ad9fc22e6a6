#include "helperservice.h"
#include "polkitauthority.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("varnel-helper"));

    // The bus starts the helper with no arguments; the root folder lets tests point it at a
    // fake /sys and /dev tree.
    QCommandLineParser parser;
    const QCommandLineOption root(QStringLiteral("root"),
                                  QStringLiteral("Folder standing in for / (tests only)."),
                                  QStringLiteral("folder"), QStringLiteral("/"));
    const QCommandLineOption idle(QStringLiteral("idle-exit-ms"),
                                  QStringLiteral("Leave after this long without a call."),
                                  QStringLiteral("ms"), QStringLiteral("60000"));
    parser.addOptions({root, idle});
    parser.addHelpOption();
    parser.process(app);

    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) {
        std::fprintf(stderr, "varnel-helper: no system bus: %s\n",
                     qPrintable(bus.lastError().message()));
        return 1;
    }
    PolkitAuthority authority(bus);
    HelperService service(SysTree(parser.value(root)), &authority,
                          qMax(1000, parser.value(idle).toInt()));
    if (!bus.registerObject(QStringLiteral("/org/varnel/Helper"), &service,
                            QDBusConnection::ExportAllSlots) ||
        !bus.registerService(QStringLiteral("org.varnel.Helper"))) {
        std::fprintf(stderr, "varnel-helper: cannot own org.varnel.Helper: %s\n",
                     qPrintable(bus.lastError().message()));
        return 1;
    }
    return app.exec();
}
