#pragma once

#include <QByteArray>
#include <QLoggingCategory>
#include <QObject>
#include <QSharedMemory>
#include <QString>

Q_DECLARE_LOGGING_CATEGORY(lcStatus)

// Publishes a short text in named shared memory for the companion tools: the segment is
// re-created for every new text with exactly the size of the serialised text, and written
// under its lock. Publishing the text it already holds leaves it alone. Owned by the window.
class StatusPublisher : public QObject {
public:
    explicit StatusPublisher(const QString &key, QObject *parent = nullptr);

    // The text as QDataStream writes it: a 32-bit big-endian byte count, then UTF-16BE units.
    static QByteArray serialise(const QString &text);

    // False when the segment could not be created (a reader still holds the previous one); the
    // next publication tries again.
    bool publish(const QString &text);

    QSharedMemory &segment() { return m_segment; }

private:
    QSharedMemory m_segment;
    QString m_published;
};
