#pragma once

#include <QApplication>

#include <memory>

class SingleApplicationPrivate;
class UserIdentity;

// An application object that lets one instance run per user and executable. A second start
// tells the first one and ends inside the constructor with exit status 0.
class SingleApplication : public QApplication {
    Q_OBJECT

public:
    SingleApplication(int &argc, char *argv[], bool allowSecondary = false, quint32 options = 1,
                      int timeout = 100,
                      std::shared_ptr<UserIdentity> identity = std::shared_ptr<UserIdentity>());
    ~SingleApplication() override;

    bool isPrimary() const;
    quint32 instanceId() const;
    QString blockServerName() const;
    // Where the primary listens for later starts.
    QString serverName() const;

signals:
    void instanceStarted();
    void receivedMessage(quint32 instanceId, QByteArray message);

private:
    SingleApplicationPrivate *d;
    friend class SingleApplicationPrivate;
};
