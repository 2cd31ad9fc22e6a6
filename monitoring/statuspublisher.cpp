#include "statuspublisher.h"

#include <QBuffer>
#include <QDataStream>

#include <cstring>

Q_LOGGING_CATEGORY(lcStatus, "varnel.status")

StatusPublisher::StatusPublisher(const QString &key, QObject *parent)
    : QObject(parent), m_segment(key)
{
    if (m_segment.isAttached())
        m_segment.detach();
}

QByteArray StatusPublisher::serialise(const QString &text)
{
    QBuffer buffer;
    buffer.open(QBuffer::ReadWrite);
    QDataStream out(&buffer);
    out << text;
    return buffer.data();
}

bool StatusPublisher::publish(const QString &text)
{
    // The segment still holds this very record: re-creating it would only churn the key files
    // and the kernel object every second, and a reader would see the same bytes.
    if (m_segment.isAttached() && text == m_published)
        return true;

    // Releases the previous segment; it goes away once no reader holds it.
    if (m_segment.isAttached())
        m_segment.detach();

    const QByteArray data = serialise(text);
    if (!m_segment.create(data.size(), QSharedMemory::ReadWrite)) {
        qCDebug(lcStatus) << "cannot create the status block:" << m_segment.errorString();
        // Where segments outlive their processes, one left behind by a crashed run would block
        // every later creation: attaching and detaching releases it when nobody else holds it.
        if (m_segment.error() == QSharedMemory::AlreadyExists && m_segment.attach())
            m_segment.detach();
        return false;
    }
    m_segment.lock();
    std::memcpy(m_segment.data(), data.constData(),
                static_cast<size_t>(qMin(m_segment.size(), data.size())));
    m_segment.unlock();
    m_published = text;
    return true;
}
