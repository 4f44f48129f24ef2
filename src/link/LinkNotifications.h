#pragma once
// The notifications of the controller link: one Qt signal per incoming
// command code, and the dispatcher that turns a received (code, payload)
// into its notification. TcpConnectModule inherits them, so listeners
// connect to them on the module by name.
//
// (Skeleton: the notification table is filled by the dispatch work.)

#include <QByteArray>
#include <QObject>

class LinkNotifications : public QObject
{
    Q_OBJECT
public:
    explicit LinkNotifications(QObject *parent = nullptr);

Q_SIGNALS:
    void connectSucceed(int status);
    void receivedData(quint16 command, QByteArray data);

public Q_SLOTS:
    // The dispatcher; runs in the link thread and never blocks.
    void onReceivedData(quint16 command, QByteArray data);
};
