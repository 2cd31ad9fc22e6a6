#include "instancefile.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcInstance, "varnel.platform.instance")

namespace {

bool onlyMine(const struct stat &st)
{
    return st.st_uid == geteuid() && (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool sameFile(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

} // namespace

FileInstanceBlock::FileInstanceBlock(const QString &directory, const QString &key)
    : m_directory(directory), m_key(key)
{
}

FileInstanceBlock::~FileInstanceBlock()
{
    if (m_block)
        munmap(m_block, sizeof(InstanceBlock));
    if (m_fd >= 0)
        ::close(m_fd);
}

QString FileInstanceBlock::blockPath() const
{
    return m_directory + QLatin1Char('/') + m_key + QStringLiteral(".block");
}

QString FileInstanceBlock::serverName() const
{
    return m_directory.isEmpty() ? QString() : m_directory + QLatin1Char('/') + m_key;
}

// A descriptor of the block file, or -1. A file that is not a plain file of this user's that
// only this user can write is removed, never used.
int FileInstanceBlock::openOwnFile(bool create) const
{
    const QByteArray path = QFile::encodeName(blockPath());
    for (int attempt = 0; attempt < 3; ++attempt) {
        const int fd = ::open(path.constData(),
                              O_RDWR | O_NOFOLLOW | O_CLOEXEC | (create ? O_CREAT : 0), 0600);
        struct stat st {};
        if (fd >= 0 && fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && onlyMine(st))
            return fd;
        const int error = errno;
        if (fd >= 0)
            ::close(fd);
        else if (error != ELOOP)
            return -1;
        qCDebug(lcInstance) << "removing an instance block this user does not own";
        ::unlink(path.constData());
    }
    return -1;
}

bool FileInstanceBlock::map(int fd)
{
    void *memory = mmap(nullptr, sizeof(InstanceBlock), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (memory == MAP_FAILED)
        return false;
    m_block = static_cast<InstanceBlock *>(memory);
    return true;
}

bool FileInstanceBlock::claimPrimary(qint64 pid)
{
    if (m_directory.isEmpty())
        return true;
    const QByteArray path = QFile::encodeName(blockPath());
    for (int attempt = 0; attempt < 3; ++attempt) {
        const int fd = openOwnFile(true);
        if (fd < 0)
            break;
        if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
            const bool held = errno == EWOULDBLOCK;
            ::close(fd);
            if (held)
                return false;
            break;
        }
        // The file may have been replaced between open and lock; the lock counts only on the
        // file that the name still leads to.
        struct stat opened {
        }, named{};
        if (fstat(fd, &opened) != 0 || ::stat(path.constData(), &named) != 0 ||
            !sameFile(opened, named)) {
            ::close(fd);
            continue;
        }
        const bool fresh = opened.st_size != off_t(sizeof(InstanceBlock));
        if ((fresh && ftruncate(fd, sizeof(InstanceBlock)) != 0) || !map(fd)) {
            ::close(fd);
            break;
        }
        if (fresh)
            *m_block = InstanceBlock{false, 0, -1};
        m_block->primary = true;
        m_block->primaryPid = pid;
        m_fd = fd;
        return true;
    }
    // A block that cannot be kept must not keep the user from starting the program.
    qCDebug(lcInstance) << "no usable instance block; starting alone";
    return true;
}

quint32 FileInstanceBlock::addSecondary()
{
    if (!m_block) {
        const int fd = openOwnFile(false);
        if (fd < 0)
            return 0;
        struct stat st {};
        const bool whole = fstat(fd, &st) == 0 && st.st_size == off_t(sizeof(InstanceBlock));
        const bool mapped = whole && map(fd);
        ::close(fd);
        if (!mapped)
            return 0;
    }
    // The first instance holds the file's lock for its life, so the count is kept atomic.
    return __atomic_add_fetch(&m_block->secondary, 1u, __ATOMIC_SEQ_CST);
}

void FileInstanceBlock::release()
{
    if (m_fd < 0 || !m_block)
        return;
    m_block->primary = false;
    m_block->primaryPid = -1;
    munmap(m_block, sizeof(InstanceBlock));
    m_block = nullptr;
    // Closing drops the lock; the file stays, so a start that has it open never locks a
    // file that is already gone.
    ::close(m_fd);
    m_fd = -1;
}

QString privateInstanceDirectory(const QStringList &candidates)
{
    for (const QString &candidate : candidates) {
        if (!QDir::isAbsolutePath(candidate))
            continue;
        const QByteArray path = QFile::encodeName(candidate);
        ::mkdir(path.constData(), 0700);
        struct stat st {};
        if (lstat(path.constData(), &st) == 0 && S_ISDIR(st.st_mode) && onlyMine(st))
            return candidate;
        qCDebug(lcInstance) << "not a private folder:" << candidate;
    }
    return QString();
}

QStringList instanceDirectoryCandidates()
{
    const QString user = QString::number(geteuid());
    QStringList candidates;
    const QString runtime = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    if (!runtime.isEmpty())
        candidates << runtime;
    candidates << QDir::tempPath() + QStringLiteral("/varnel-") + user;
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (!cache.isEmpty()) {
        QDir().mkpath(cache);
        candidates << cache + QStringLiteral("/varnel-") + user;
    }
    return candidates;
}
