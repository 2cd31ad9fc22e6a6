// Reads the shared status block as a companion tool does: "status_reader <key> [--hold]" prints
// its bytes in hex and its text (--hold: then stays attached until a line arrives on stdin).
#include <QCoreApplication>
#include <QDataStream>
#include <QSharedMemory>
#include <QTextStream>

#include <cstdio>
#include <iostream>
#include <string>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2)
        return 3;
    QSharedMemory block(args.at(1));
    QTextStream out(stdout);
    if (!block.attach(QSharedMemory::ReadOnly)) {
        out << "attach failed: " << block.errorString() << '\n';
        return 2;
    }
    block.lock();
    const QByteArray bytes(static_cast<const char *>(block.constData()), block.size());
    block.unlock();

    QString text;
    QDataStream in(bytes);
    in >> text;
    // Windows maps whole pages: only the bytes the text took are the block's content.
    out << bytes.left(int(in.device()->pos())).toHex() << '\n' << text << '\n';
    out.flush();

    if (args.contains(QStringLiteral("--hold"))) {
        std::string line;
        std::getline(std::cin, line);
    }
    block.detach();
    return 0;
}
