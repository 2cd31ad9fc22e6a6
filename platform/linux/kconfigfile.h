#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// A per-user configuration file of KDE Plasma in its own syntax ("[AC][DPMSControl]" group
// headers, "key=value" lines), edited line by line so that everything else stays as it was.
// Plasma's libraries are not needed for the few keys the program sets.
class KConfigFile {
public:
    explicit KConfigFile(QString path);

    // group is the header without its outer brackets: "AC][DPMSControl".
    std::optional<QString> value(const QString &group, const QString &key) const;
    void setValue(const QString &group, const QString &key, const QString &value);
    // A group left without keys goes too.
    void remove(const QString &group, const QString &key);
    bool save() const;

private:
    int headerLine(const QString &group) const;
    int groupEnd(int header) const;
    int keyLine(const QString &group, const QString &key) const;

    QString m_path;
    QStringList m_lines;
};

// Whether the running session is KDE Plasma's.
bool plasmaSession();
