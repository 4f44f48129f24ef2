#include "link/TcpSocket.h"

TcpSocket::TcpSocket(QObject *parent)
    : QTcpSocket(parent)
{
}

void TcpSocket::write(QByteArray data)
{
    QTcpSocket::write(data);
}
