#include "msrbus.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

int openMsr(const SysTree &tree, int cpu, int mode)
{
    const QByteArray name = QFile::encodeName(tree.path(QStringLiteral("dev/cpu/%1/msr").arg(cpu)));
    return ::open(name.constData(), mode | O_CLOEXEC);
}

} // namespace

QList<int> DevMsrBus::cpus() const
{
    QList<int> numbers;
    for (const QString &name : m_tree.list(QStringLiteral("dev/cpu"), QStringLiteral("*"))) {
        bool ok = false;
        const int cpu = name.toInt(&ok);
        if (ok && m_tree.exists(QStringLiteral("dev/cpu/%1/msr").arg(cpu)))
            numbers << cpu;
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

int DevMsrBus::read(int cpu, quint32 reg, quint64 *value) const
{
    const int fd = openMsr(m_tree, cpu, O_RDONLY);
    if (fd < 0)
        return errno;
    const ssize_t got = ::pread(fd, value, sizeof *value, off_t(reg));
    const int error = got == ssize_t(sizeof *value) ? 0 : (got < 0 ? errno : EIO);
    ::close(fd);
    return error;
}

int DevMsrBus::write(int cpu, quint32 reg, quint64 value) const
{
    const int fd = openMsr(m_tree, cpu, O_WRONLY);
    if (fd < 0)
        return errno;
    const ssize_t put = ::pwrite(fd, &value, sizeof value, off_t(reg));
    const int error = put == ssize_t(sizeof value) ? 0 : (put < 0 ? errno : EIO);
    ::close(fd);
    return error;
}
