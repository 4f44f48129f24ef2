#include "link/TcpConnectModulePrivate.h"

#include "common/CompactJson.h"
#include "common/HandOver.h"
#include "common/Logging.h"
#include "link/IoThreads.h"

#include <QCoreApplication>
#include <QTime>

#include <json/value.h>

namespace {

uint secondsSinceEpoch()
{
    return uint(QDateTime::currentSecsSinceEpoch());
}

} // namespace

using qrx::FramedConnection;

TcpConnectModulePrivate::TcpConnectModulePrivate(const QString &ip, quint16 port, int timeBase,
                                                 QObject *parent)
    : QObject(parent)
    , m_ip(ip)
    , m_port(port)
    , m_timeBase(timeBase)
    , m_connection(FramedConnection::mainLinkOptions())
{
    connect(&m_connection, &FramedConnection::socketConnected, this, [this] {
        setLastReceiveTime(QDateTime::currentDateTimeUtc());
        m_connectTime = secondsSinceEpoch();
    }, Qt::DirectConnection);
    connect(&m_connection, &FramedConnection::connectSucceed, this, &TcpConnectModulePrivate::connectSucceed,
            Qt::DirectConnection);
    connect(&m_connection, &FramedConnection::frameReceived, this, &TcpConnectModulePrivate::route,
            Qt::DirectConnection);
}

TcpConnectModulePrivate::~TcpConnectModulePrivate()
{
    shutdown();
}

void TcpConnectModulePrivate::startLink()
{
    if (m_ownThread.load() || m_ioContext || state() == State::Closing)
        return;
    m_connectTime = secondsSinceEpoch();
    if (m_ioThread) {
        auto *context = new QObject;
        context->moveToThread(m_ioThread);
        // The blocking call orders the two sides, invisibly to ThreadSanitizer.
        qrx::handOff(this);
        QMetaObject::invokeMethod(
            context,
            [this, context] {
                qrx::takeOver(this);
                setUp(context);
                qrx::handOff(this);
            },
            Qt::BlockingQueuedConnection);
        qrx::takeOver(this);
        return;
    }
    std::unique_lock<std::mutex> lock(m_startedMutex);
    m_started = false;
    QThread *thread = qrx::takeLinkThread([this] { run(); });
    m_ownThread.store(thread);
    thread->start(QThread::InheritPriority);
    m_startedCondition.wait(lock, [this] { return m_started; });
}

void TcpConnectModulePrivate::shutdown()
{
    m_connection.setState(State::Closing);
    if (m_ioThread) {
        QObject *context = m_ioContext.load(std::memory_order_acquire);
        if (!context)
            return;
        // Writes and closes queued before this are done first, in order.
        if (QThread::currentThread() == m_ioThread) {
            tearDown();
            return;
        }
        qrx::handOff(this);
        QMetaObject::invokeMethod(
            context,
            [this] {
                qrx::takeOver(this);
                tearDown();
                qrx::handOff(this);
            },
            Qt::BlockingQueuedConnection);
        qrx::takeOver(this);
        return;
    }
    QThread *thread = m_ownThread.exchange(nullptr);
    if (!thread)
        return;
    // QThread::quit ends every event loop running in the thread, the nested
    // one of a connect attempt included.
    thread->quit();
    thread->wait();
    qrx::giveBackLinkThread(thread);
    // QThread::wait orders the end of run() before this point, but inside Qt,
    // where ThreadSanitizer cannot see it; this acquire pairs with the
    // release that ends run(), so what run() tore down is seen as done.
    (void)m_runEnded.load(std::memory_order_acquire);
}

// In the link's thread: the check and time-out timers, and the close that a
// host thread asks for, run there.
void TcpConnectModulePrivate::startTimers()
{
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
}

void TcpConnectModulePrivate::setUp(QObject *context)
{
    m_ioContext.store(context, std::memory_order_release);
    startTimers();
    m_connection.setContext(context);
    m_connection.setState(State::WaitingToConnect);
    // The first attempt starts at once, not a whole check interval later.
    QTimer::singleShot(0, context, [this] { onTcpSocketCheck(); });
}

void TcpConnectModulePrivate::tearDown()
{
    disconnect(this, &TcpConnectModulePrivate::closeCurrentSocket, this,
               &TcpConnectModulePrivate::closeCurrentSocketInNowThread);
    m_connection.setContext(nullptr);
    {
        std::lock_guard<std::recursive_mutex> lock(m_connection.sendMutex());
        m_checkTimer.reset();
        m_timeoutTimer.reset();
        m_connection.release();
    }
    m_ioContext.load(std::memory_order_relaxed)->deleteLater();
    m_ioContext.store(nullptr, std::memory_order_release);
}

void TcpConnectModulePrivate::run()
{
    m_eventLoop.reset(new QEventLoop);
    startTimers();
    m_connection.setContext(m_eventLoop.data());

    m_connection.setState(State::WaitingToConnect);
    {
        std::lock_guard<std::mutex> lock(m_startedMutex);
        m_started = true;
    }
    m_startedCondition.notify_all();
    // The first attempt starts at once, not a whole check interval later.
    QTimer::singleShot(0, m_eventLoop.data(), [this] { onTcpSocketCheck(); });
    if (state() != State::Closing)
        m_eventLoop->exec();
    // Writes and closes queued before the quit are still done, in order.
    QCoreApplication::sendPostedEvents();

    disconnect(this, &TcpConnectModulePrivate::closeCurrentSocket, this,
               &TcpConnectModulePrivate::closeCurrentSocketInNowThread);
    m_connection.setContext(nullptr);
    {
        std::lock_guard<std::recursive_mutex> lock(m_connection.sendMutex());
        m_checkTimer.reset();
        m_timeoutTimer.reset();
        m_connection.release();
    }
    m_eventLoop.reset();
    // The sockets released with deleteLater go now, while their thread exists.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_runEnded.store(true, std::memory_order_release);
}

void TcpConnectModulePrivate::resetIp(const QString &ip)
{
    {
        std::lock_guard<std::mutex> lock(m_ipMutex);
        m_ip = ip;
    }
    m_connection.drop(FramedConnection::DropReason::AddressChanged);
}

void TcpConnectModulePrivate::stopConnect()
{
    qCInfo(lcLink).noquote() << QCoreApplication::translate("TcpConnectModule", "手动停止");
    m_stopped = true;
    m_connection.drop(FramedConnection::DropReason::ManualStop);
}

void TcpConnectModulePrivate::startConnect()
{
    qCInfo(lcLink).noquote() << QCoreApplication::translate("TcpConnectModule", "手动开始");
    m_stopped = false;
    m_connectNow = true;
    m_connection.setState(State::WaitingToConnect);
    m_connection.runInContext([this] { onTcpSocketCheck(); });
}

QString TcpConnectModulePrivate::ip() const
{
    std::lock_guard<std::mutex> lock(m_ipMutex);
    return m_ip;
}

QDateTime TcpConnectModulePrivate::lastReceiveTime() const
{
    std::lock_guard<std::mutex> lock(m_pingMutex);
    return m_lastReceiveTime;
}

void TcpConnectModulePrivate::setLastReceiveTime(const QDateTime &time)
{
    std::lock_guard<std::mutex> lock(m_pingMutex);
    m_lastReceiveTime = time;
}

void TcpConnectModulePrivate::closeCurrentSocketInNowThread()
{
    m_connection.closeSocket();
}

void TcpConnectModulePrivate::onTcpSocketStateChanged(QAbstractSocket::SocketState socketState)
{
    m_connection.onStateChanged(socketState);
}

void TcpConnectModulePrivate::onTcpSocketReadyRead()
{
    m_connection.onReadyRead();
}

void TcpConnectModulePrivate::route(quint16 command, const QByteArray &payload)
{
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
    if (m_stopped || state() == State::Closing || m_connection.isWaitingForConnection())
        return;
    if (m_ioThread && state() == State::Connecting) {
        if (QDateTime::currentMSecsSinceEpoch() - m_attemptStartMs.load() >= kConnectWaitMs)
            m_connection.drop(FramedConnection::DropReason::SocketLost);
        return;
    }
    std::lock_guard<std::recursive_mutex> lock(m_connection.sendMutex());
    if (state() == State::WaitingToConnect) {
        const QString address = ip();
        qCInfo(lcLink).noquote()
            << QStringLiteral("%1 %2 %3 %4 %5")
                   .arg(tr("重置网络连接 尝试连接IP"), address, tr("端口 :"))
                   .arg(m_port)
                   .arg(QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz")));
        setLastReceiveTime(QDateTime::currentDateTimeUtc());
        m_connectTime = secondsSinceEpoch();
        m_connectNow = false;
        m_connection.open(address, m_port);
        if (m_ioThread) {
            // Other links share this thread: the attempt goes on without
            // blocking it, and the check gives it up when it takes too long.
            m_attemptStartMs = QDateTime::currentMSecsSinceEpoch();
            return;
        }
        m_connection.waitForConnection(kConnectWaitMs);
        // A startConnect() during this wait (the thread's first attempt may
        // still be under way) found the check busy and set the state back to
        // waiting, which this attempt's result no longer changes: its attempt
        // starts now, not at the next check.
        if (m_connectNow && !m_stopped && state() == State::WaitingToConnect)
            onTcpSocketCheck();
    } else if (isConnected()) {
        sendHeartbeat();
    }
}

void TcpConnectModulePrivate::sendHeartbeat()
{
    Json::Value heartbeat(Json::objectValue);
    heartbeat["time"] = Json::UInt(secondsSinceEpoch());
    writeFrame(qrx::encodeFrame(kHeartbeat, qrx::jsonPayload(heartbeat)));
}

void TcpConnectModulePrivate::onCheckHeartBeat()
{
    if (!isConnected() || m_connection.isWaitingForConnection())
        return;
    if (lastReceiveTime().msecsTo(QDateTime::currentDateTimeUtc()) < m_receiveTimeoutMs)
        return;
    qCWarning(lcLink).noquote() << tr("连接超时 主动断开");
    m_connection.drop(FramedConnection::DropReason::TimedOut);
}

void TcpConnectModulePrivate::TcpSocketError(QAbstractSocket::SocketError error)
{
    m_connection.onSocketError(error);
}
