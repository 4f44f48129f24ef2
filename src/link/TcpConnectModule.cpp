#include "link/TcpConnectModule.h"

#include "common/Logging.h"
#include "link/FrameCodec.h"
#include "link/TcpConnectModulePrivate.h"

TcpConnectModule::TcpConnectModule(QString ip, quint16 port, int timeBase, QObject *parent)
    : LinkSenders(parent)
    , d(new TcpConnectModulePrivate(ip, port, timeBase))
{
    // The dispatcher runs in the link thread; the status goes to whoever
    // listens on the façade, in their own thread.
    connect(d.data(), &TcpConnectModulePrivate::receivedData, this, &TcpConnectModule::onReceivedData,
            Qt::DirectConnection);
    connect(d.data(), &TcpConnectModulePrivate::connectSucceed, this, &TcpConnectModule::onConnectSucceed);
}

TcpConnectModule::~TcpConnectModule()
{
    // Joined before the notifications that the link thread uses go away.
    d->shutdown();
}

void TcpConnectModule::start()
{
    d->startLink();
}

bool TcpConnectModule::sendData(quint16 command, QByteArray payload)
{
    const QByteArray frame = qrx::encodeFrame(command, payload);
    if (frame.isEmpty())
        return false;
    return d->writeFrame(frame);
}

bool TcpConnectModule::sendBytes(QByteArray frame)
{
    return d->writeFrame(frame);
}

void TcpConnectModule::resetIp(QString ip)
{
    d->setIp(ip);
    d->requestCloseSocket();
    d->needReconnect = true;
    d->connected = false;
    emit d->connectSucceed(0);
}

void TcpConnectModule::stopConnect()
{
    qCDebug(lcLink).noquote() << tr("手动停止");
    d->requestCloseSocket();
    d->stopped = true;
    d->needReconnect = false;
    d->connected = false;
    emit d->connectSucceed(0);
}

void TcpConnectModule::startConnect()
{
    qCDebug(lcLink).noquote() << tr("手动开始");
    d->stopped = false;
    d->needReconnect = true;
    d->connected = false;
    d->requestCheck();
}

bool TcpConnectModule::connectStatus()
{
    const bool up = d->connected;
    emit d->connectSucceed(up ? 1 : 0);
    return up;
}

bool TcpConnectModule::isStopped() const
{
    return d->stopped;
}

void TcpConnectModule::shutdown()
{
    d->shutdown();
}

QDateTime TcpConnectModule::lastReceiveTime() const
{
    return d->lastReceiveTime();
}

void TcpConnectModule::setLastPingTime(QDateTime rectime)
{
    d->setLastReceiveTime(rectime);
}

bool TcpConnectModule::onConnectSucceed(int status)
{
    emit connectSucceed(status);
    return status != 0;
}
