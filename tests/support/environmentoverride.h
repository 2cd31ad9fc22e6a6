#pragma once

#include <QByteArray>
#include <QPair>
#include <QVector>

// Environment variables changed for one scope and put back when it ends, also when a failed
// check leaves the case early: later cases of the run must see the environment they started with.
class EnvironmentOverride {
public:
    EnvironmentOverride() = default;
    EnvironmentOverride(const EnvironmentOverride &) = delete;
    EnvironmentOverride &operator=(const EnvironmentOverride &) = delete;
    ~EnvironmentOverride() { restore(); }

    // A null value unsets the variable.
    void set(const QByteArray &name, const QByteArray &value)
    {
        m_saved.append({name, qgetenv(name.constData())});
        put(name, value);
    }

    // Puts back what was there before, earlier than the end of the scope.
    void restore()
    {
        for (auto it = m_saved.crbegin(); it != m_saved.crend(); ++it)
            put(it->first, it->second);
        m_saved.clear();
    }

private:
    static void put(const QByteArray &name, const QByteArray &value)
    {
        value.isNull() ? qunsetenv(name.constData()) : qputenv(name.constData(), value);
    }

    QVector<QPair<QByteArray, QByteArray>> m_saved;
};
