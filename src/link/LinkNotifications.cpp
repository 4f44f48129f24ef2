#include "link/LinkNotifications.h"

LinkNotifications::LinkNotifications(QObject *parent)
    : QObject(parent)
{
}

void LinkNotifications::onReceivedData(quint16 command, QByteArray data)
{
    Q_EMIT receivedData(command, data);
}
