#include "link/TcpConnectModule.h"

#include "common/Logging.h"
#include "link/FrameCodec.h"
#include "link/IoThreads.h"
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

void TcpConnectModule::useSharedIoThread()
{
    d->setIoThread(qrx::sharedIoThread());
}

void TcpConnectModule::setReceiveTimeout(int msecs)
{
    d->setReceiveTimeout(msecs);
}

bool TcpConnectModule::sendData(quint16 command, QByteArray payload)
{
    if (isRefused(payload))
        return false;
    const QByteArray frame = qrx::encodeFrame(command, payload);
    if (frame.isEmpty())
        return false;
    // Before the write: the answer may be taken on the link thread before
    // this thread returns from it.
    {
        std::lock_guard<std::mutex> lock(m_observerMutex);
        if (m_sendObserver)
            m_sendObserver(command);
    }
    return d->writeFrame(frame);
}

void TcpConnectModule::setSendObserver(SendObserver observer)
{
    std::lock_guard<std::mutex> lock(m_observerMutex);
    m_sendObserver = std::move(observer);
}

bool TcpConnectModule::sendBytes(QByteArray frame)
{
    return d->writeFrame(frame);
}

void TcpConnectModule::resetIp(QString ip)
{
    d->resetIp(ip);
}

void TcpConnectModule::stopConnect()
{
    d->stopConnect();
}

void TcpConnectModule::startConnect()
{
    d->startConnect();
}

bool TcpConnectModule::connectStatus()
{
    const bool up = d->isConnected();
    emit d->connectSucceed(up ? 1 : 0);
    return up;
}

bool TcpConnectModule::isStopped() const
{
    return d->isStopped();
}

void TcpConnectModule::shutdown()
{
    d->shutdown();
}

QDateTime TcpConnectModule::lastReceiveTime() const
{
    return d->lastReceiveTime();
}

QString TcpConnectModule::ip() const
{
    return d->ip();
}

quint16 TcpConnectModule::port() const
{
    return d->port();
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
