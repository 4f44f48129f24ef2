#include "link/TcpSocket.h"

#include "link/SessionRecorder.h"

TcpSocket::TcpSocket(QObject *parent)
    : QTcpSocket(parent)
{
}

void TcpSocket::write(QByteArray data)
{
    qrx::recordSent(*this, data);
    QTcpSocket::write(data);
}
