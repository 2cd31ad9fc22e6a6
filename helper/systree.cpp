#include "systree.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

SysTree::SysTree(QString root) : m_root(std::move(root))
{
    while (m_root.size() > 1 && m_root.endsWith(QLatin1Char('/')))
        m_root.chop(1);
}

QString SysTree::path(const QString &relative) const
{
    if (m_root == QLatin1String("/"))
        return QLatin1Char('/') + relative;
    return m_root + QLatin1Char('/') + relative;
}

bool SysTree::exists(const QString &relative) const
{
    return QFile::exists(path(relative));
}

std::optional<QString> SysTree::read(const QString &relative) const
{
    QFile file(path(relative));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return QString::fromLatin1(file.readLine(256)).trimmed();
}

std::optional<qint64> SysTree::readNumber(const QString &relative) const
{
    const auto text = read(relative);
    if (!text)
        return std::nullopt;
    bool ok = false;
    const qint64 value = text->toLongLong(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

int SysTree::write(const QString &relative, const QString &text) const
{
    const QByteArray name = QFile::encodeName(path(relative));
    const int fd = ::open(name.constData(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0)
        return errno;
    const QByteArray data = text.toLatin1();
    const ssize_t written = ::write(fd, data.constData(), size_t(data.size()));
    const int error = written == data.size() ? 0 : (written < 0 ? errno : EIO);
    ::close(fd);
    return error;
}

QStringList SysTree::list(const QString &relativeDir, const QString &wildcard) const
{
    return QDir(path(relativeDir))
        .entryList({wildcard}, QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}
