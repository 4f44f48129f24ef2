#include "link/TcpConnectModulePrivate.h"

#include "common/CompactJson.h"
#include "common/Logging.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QMutexLocker>
#include <QTime>

#include <json/value.h>

namespace {

uint secondsSinceEpoch()
{
    return uint(QDateTime::currentSecsSinceEpoch());
}

void deleteSocketLater(TcpSocket *socket)
{
    socket->deleteLater();
}

} // namespace

TcpConnectModulePrivate::TcpConnectModulePrivate(const QString &ip, quint16 port, int timeBase,
                                                 QObject *parent)
    : QThread(parent)
    , m_ip(ip)
    , m_port(port)
    , m_timeBase(timeBase)
{
}

TcpConnectModulePrivate::~TcpConnectModulePrivate()
{
    shutdown();
}

void TcpConnectModulePrivate::startLink()
{
    if (isRunning() || closing)
        return;
    m_connectTime = secondsSinceEpoch();
    start(QThread::InheritPriority);
    m_startedSemaphore.acquire();
}

void TcpConnectModulePrivate::shutdown()
{
    closing = true;
    // QThread::quit ends every event loop running in the thread, the nested
    // one of a connect attempt included.
    quit();
    wait();
}

void TcpConnectModulePrivate::run()
{
    m_eventLoop.reset(new QEventLoop);
    m_checkTimer.reset(new QTimer);
    connect(m_checkTimer.data(), &QTimer::timeout, this, &TcpConnectModulePrivate::onTcpSocketCheck,
            Qt::DirectConnection);
    m_checkTimer->start(qMax(1, m_timeBase / 180));
    m_timeoutTimer.reset(new QTimer);
    connect(m_timeoutTimer.data(), &QTimer::timeout, this, &TcpConnectModulePrivate::onCheckHeartBeat,
            Qt::DirectConnection);
    m_timeoutTimer->start(qMax(1, m_timeBase / 150));

    connect(this, &TcpConnectModulePrivate::closeCurrentSocket, this,
            &TcpConnectModulePrivate::closeCurrentSocketInNowThread, Qt::DirectConnection);
    {
        QMutexLocker lock(&m_linkMutex);
        m_linkContext = m_eventLoop.data();
    }

    needReconnect = true;
    m_startedSemaphore.release();
    // The first attempt starts at once, not a whole check interval later.
    QTimer::singleShot(0, m_eventLoop.data(), [this] { onTcpSocketCheck(); });
    if (!closing)
        m_eventLoop->exec();
    // Writes and closes queued before the quit are still done, in order.
    QCoreApplication::sendPostedEvents();

    disconnect(this, &TcpConnectModulePrivate::closeCurrentSocket, this,
               &TcpConnectModulePrivate::closeCurrentSocketInNowThread);
    {
        QMutexLocker lock(&m_linkMutex);
        m_linkContext = nullptr;
    }
    {
        QMutexLocker lock(&m_sendMutex);
        connected = false;
        m_checkTimer.reset();
        m_timeoutTimer.reset();
        if (m_socket) {
            m_socket->disconnect(this);
            m_socket->flush();
            m_socket->abort();
            m_socket.reset();
        }
    }
    m_eventLoop.reset();
    // The sockets released with deleteLater go now, while their thread exists.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void TcpConnectModulePrivate::runInLinkThread(std::function<void()> f)
{
    if (QThread::currentThread() == this) {
        f();
        return;
    }
    QMutexLocker lock(&m_linkMutex);
    if (m_linkContext)
        QMetaObject::invokeMethod(m_linkContext, std::move(f), Qt::QueuedConnection);
}

void TcpConnectModulePrivate::requestCloseSocket()
{
    if (QThread::currentThread() == this) {
        emit closeCurrentSocket();
        return;
    }
    quint64 generation;
    {
        QMutexLocker lock(&m_linkMutex);
        generation = m_socketGeneration;
    }
    runInLinkThread([this, generation] {
        bool current;
        {
            QMutexLocker lock(&m_linkMutex);
            current = generation == m_socketGeneration;
        }
        if (current)
            closeCurrentSocketInNowThread();
    });
}

void TcpConnectModulePrivate::requestCheck()
{
    runInLinkThread([this] { onTcpSocketCheck(); });
}

QString TcpConnectModulePrivate::ip() const
{
    QMutexLocker lock(&m_ipMutex);
    return m_ip;
}

void TcpConnectModulePrivate::setIp(const QString &ip)
{
    QMutexLocker lock(&m_ipMutex);
    m_ip = ip;
}

QDateTime TcpConnectModulePrivate::lastReceiveTime() const
{
    QMutexLocker lock(&m_pingMutex);
    return m_lastReceiveTime;
}

void TcpConnectModulePrivate::setLastReceiveTime(const QDateTime &time)
{
    QMutexLocker lock(&m_pingMutex);
    m_lastReceiveTime = time;
}

bool TcpConnectModulePrivate::writeFrame(const QByteArray &frame)
{
    QMutexLocker lock(&m_sendMutex);
    if (needReconnect || !connected || !m_socket)
        return false;
    TcpSocket *socket = m_socket.data();
    if (QThread::currentThread() == socket->thread())
        socket->write(frame);
    else
        QMetaObject::invokeMethod(socket, "write", Qt::QueuedConnection, Q_ARG(QByteArray, frame));
    return connected;
}

void TcpConnectModulePrivate::closeCurrentSocketInNowThread()
{
    if (!m_socket)
        return;
    m_socket->close();
    qCDebug(lcLink).noquote() << tr("关闭网络连接");
}

void TcpConnectModulePrivate::onTcpSocketStateChanged(QAbstractSocket::SocketState socketState)
{
    if (needReconnect || closing)
        return;
    switch (socketState) {
    case QAbstractSocket::ConnectedState:
        connected = true;
        setLastReceiveTime(QDateTime::currentDateTimeUtc());
        m_connectTime = secondsSinceEpoch();
        emit connectSucceed(1);
        break;
    case QAbstractSocket::UnconnectedState:
        connected = false;
        emit connectSucceed(0);
        if (!closing) {
            emit closeCurrentSocket();
            needReconnect = true;
            connected = false;
            emit connectSucceed(0);
        }
        break;
    default:
        break;
    }
}

void TcpConnectModulePrivate::onTcpSocketReadyRead()
{
    if (!m_socket)
        return;
    m_unread.append(m_socket->readAll());
    // A listener that spins an event loop may bring us back here while
    // frames are being routed: the bytes then wait for the outer loop.
    if (m_decoding)
        return;
    m_decoding = true;
    while (!m_unread.isEmpty()) {
        QByteArray bytes;
        bytes.swap(m_unread);
        m_receiveBuffer.feed(bytes, [this](quint16 command, const QByteArray &payload) {
            route(command, payload);
        });
    }
    m_decoding = false;
}

void TcpConnectModulePrivate::route(quint16 command, const QByteArray &payload)
{
    if (needReconnect || closing)
        return;
    switch (command) {
    case kHeartbeat:
        // The controller asks: the same frame goes straight back. This does
        // not count as hearing from it.
        writeFrame(qrx::encodeFrame(kHeartbeat, payload));
        break;
    case kHeartbeatAnswer:
        setLastReceiveTime(QDateTime::currentDateTimeUtc());
        break;
    default:
        setLastReceiveTime(QDateTime::currentDateTimeUtc());
        emit receivedData(command, payload);
        break;
    }
}

void TcpConnectModulePrivate::onTcpSocketCheck()
{
    if (stopped || closing || m_connecting)
        return;
    QMutexLocker lock(&m_sendMutex);
    if (needReconnect) {
        const QString address = ip();
        qCDebug(lcLink).noquote()
            << QStringLiteral("%1 %2 %3 %4 %5")
                   .arg(tr("重置网络连接 尝试连接IP"), address, tr("端口 :"))
                   .arg(m_port)
                   .arg(QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz")));
        needReconnect = false;
        connected = false;
        setLastReceiveTime(QDateTime::currentDateTimeUtc());
        m_connectTime = secondsSinceEpoch();
        replaceSocket();
        m_socket->connectToHost(address, m_port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
        waitForConnection(kConnectWaitMs);
    } else if (connected) {
        sendHeartbeat();
    }
}

void TcpConnectModulePrivate::replaceSocket()
{
    QSharedPointer<TcpSocket> socket(new TcpSocket, deleteSocketLater);
    connect(socket.data(), &QAbstractSocket::stateChanged, this,
            &TcpConnectModulePrivate::onTcpSocketStateChanged, Qt::DirectConnection);
    connect(socket.data(), &QIODevice::readyRead, this, &TcpConnectModulePrivate::onTcpSocketReadyRead,
            Qt::DirectConnection);
    connect(socket.data(), &QAbstractSocket::errorOccurred, this,
            &TcpConnectModulePrivate::TcpSocketError, Qt::DirectConnection);
    if (m_socket) {
        // The old socket is done with: nothing of it reaches the slots any more.
        m_socket->disconnect(this);
        m_socket->abort();
    }
    QMutexLocker lock(&m_linkMutex);
    m_socket = socket;
    ++m_socketGeneration;
}

void TcpConnectModulePrivate::waitForConnection(int msecs)
{
    // Like QAbstractSocket::waitForConnected(msecs), whose time-out gives the
    // attempt up the same way, but a nested event loop lets QThread::quit()
    // end the wait at once. The check and the time-out stay out meanwhile.
    const auto pending = [this] {
        const auto state = m_socket->state();
        return state == QAbstractSocket::HostLookupState || state == QAbstractSocket::ConnectingState;
    };
    if (!pending() || closing)
        return;
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.setTimerType(Qt::PreciseTimer);
    connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(m_socket.data(), &QAbstractSocket::stateChanged, &loop, [&loop, &pending] {
        if (!pending())
            loop.quit();
    });
    m_connecting = true;
    deadline.start(msecs);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    m_connecting = false;
    if (m_socket && pending())
        m_socket->abort();
}

void TcpConnectModulePrivate::sendHeartbeat()
{
    Json::Value heartbeat(Json::objectValue);
    heartbeat["time"] = Json::UInt(secondsSinceEpoch());
    writeFrame(qrx::encodeFrame(kHeartbeat, qrx::jsonPayload(heartbeat)));
}

void TcpConnectModulePrivate::onCheckHeartBeat()
{
    if (!connected || closing || m_connecting)
        return;
    if (lastReceiveTime().secsTo(QDateTime::currentDateTimeUtc()) < kReceiveTimeoutSecs)
        return;
    qCDebug(lcLink).noquote() << tr("连接超时 主动断开");
    if (m_socket)
        m_socket->close();
    needReconnect = true;
    connected = false;
    emit connectSucceed(0);
}

void TcpConnectModulePrivate::TcpSocketError(QAbstractSocket::SocketError error)
{
    // Losses are handled by the state change and the time-out.
    Q_UNUSED(error)
}
