#include "link/FramedConnection.h"

#include "common/HandOver.h"
#include "common/Logging.h"
#include "link/SessionRecorder.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

namespace qrx {

namespace {

void deleteSocketLater(TcpSocket *socket)
{
    socket->deleteLater();
}

} // namespace

FramedConnection::FramedConnection(Options options, QObject *parent)
    : QObject(parent)
    , m_options(options)
{
    m_receiveBuffer.setLogHeadErrors(options.logHeadErrors);
}

FramedConnection::~FramedConnection() = default;

void FramedConnection::setState(State state)
{
    State now = m_state.load();
    while (now != State::Closing && !m_state.compare_exchange_weak(now, state)) {
    }
}

void FramedConnection::setContext(QObject *context)
{
    std::unique_lock<std::mutex> lock(m_contextMutex);
    m_context = context;
}

void FramedConnection::runInContext(std::function<void()> f)
{
    std::unique_lock<std::mutex> lock(m_contextMutex);
    if (m_context && QThread::currentThread() == m_context->thread()) {
        lock.unlock();
        f();
        return;
    }
    if (m_context) {
        qrx::handOff(this);
        QMetaObject::invokeMethod(m_context, [this, f = std::move(f)] {
            qrx::takeOver(this);
            f();
        }, Qt::QueuedConnection);
    }
}

void FramedConnection::open(const QString &host, quint16 port)
{
    setState(State::Connecting);
    replaceSocket();
    m_socket->connectToHost(host, port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
}

void FramedConnection::replaceSocket()
{
    QSharedPointer<TcpSocket> socket(new TcpSocket, deleteSocketLater);
    socket->setReadBufferSize(m_options.readBufferSize);
    socket->setDirectWrites(m_options.directWrites);
    connect(socket.data(), &QAbstractSocket::stateChanged, this, &FramedConnection::onStateChanged,
            Qt::DirectConnection);
    connect(socket.data(), &QIODevice::readyRead, this, &FramedConnection::onReadyRead, Qt::DirectConnection);
    connect(socket.data(), &QAbstractSocket::errorOccurred, this, &FramedConnection::onSocketError,
            Qt::DirectConnection);
    if (m_socket) {
        // The old socket is done with: nothing of it reaches the slots any more.
        m_socket->disconnect(this);
        m_socket->abort();
    }
    std::lock_guard<std::recursive_mutex> sending(m_sendMutex);
    std::unique_lock<std::mutex> lock(m_contextMutex);
    m_socket = socket;
    ++m_socketGeneration;
}

void FramedConnection::waitForConnection(int msecs)
{
    // Like QAbstractSocket::waitForConnected(msecs), whose time-out gives the
    // attempt up the same way, but a nested event loop lets QThread::quit()
    // end the wait at once.
    const auto pending = [this] {
        const auto socketState = m_socket->state();
        return socketState == QAbstractSocket::HostLookupState || socketState == QAbstractSocket::ConnectingState;
    };
    if (!m_socket || !pending() || state() == State::Closing)
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
    m_waiting = true;
    deadline.start(msecs);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    m_waiting = false;
    if (m_socket && pending())
        m_socket->abort();
}

bool FramedConnection::write(const QByteArray &frame)
{
    std::lock_guard<std::recursive_mutex> lock(m_sendMutex);
    if (state() != State::Connected || !m_socket)
        return false;
    m_socket->send(frame);
    return isConnected();
}

void FramedConnection::drop(DropReason reason)
{
    switch (reason) {
    case DropReason::TimedOut:
        if (m_socket)
            m_socket->close();
        break;
    case DropReason::SocketLost:
        closeSocket();
        break;
    case DropReason::AddressChanged:
    case DropReason::ManualStop:
        closeSocketInItsThread();
        break;
    }
    setState(reason == DropReason::ManualStop ? State::Idle : State::WaitingToConnect);
    emit connectSucceed(0);
}

void FramedConnection::closeSocket()
{
    if (!m_socket)
        return;
    m_socket->close();
    if (m_options.logClose)
        qCInfo(lcLink).noquote() << QCoreApplication::translate("TcpConnectModulePrivate", "关闭网络连接");
}

void FramedConnection::closeSocketInItsThread()
{
    quint64 generation;
    {
        std::unique_lock<std::mutex> lock(m_contextMutex);
        if (m_context && QThread::currentThread() == m_context->thread()) {
            lock.unlock();
            closeSocket();
            return;
        }
        generation = m_socketGeneration;
    }
    runInContext([this, generation] {
        bool current;
        {
            std::unique_lock<std::mutex> lock(m_contextMutex);
            current = generation == m_socketGeneration;
        }
        if (current)
            closeSocket();
    });
}

void FramedConnection::release(int waitMsecs)
{
    std::lock_guard<std::recursive_mutex> lock(m_sendMutex);
    setState(State::Idle);
    if (m_socket) {
        m_socket->disconnect(this);
        if (waitMsecs > 0 && m_socket->state() == QAbstractSocket::ConnectedState) {
            m_socket->disconnectFromHost();
            if (m_socket->state() != QAbstractSocket::UnconnectedState)
                m_socket->waitForDisconnected(waitMsecs);
        }
        // Bytes already written (a farewell) reach the kernel before the end.
        m_socket->flush();
        m_socket->abort();
        m_socket.reset();
    }
}

qint64 FramedConnection::bytesToWrite() const
{
    return m_socket ? m_socket->bytesToWrite() : 0;
}

bool FramedConnection::waitForBytesWritten(int msecs)
{
    return m_socket && m_socket->waitForBytesWritten(msecs);
}

void FramedConnection::onStateChanged(QAbstractSocket::SocketState socketState)
{
    const State now = state();
    if (now == State::WaitingToConnect || now == State::Closing)
        return;
    switch (socketState) {
    case QAbstractSocket::ConnectedState:
        setState(State::Connected);
        emit socketConnected();
        emit connectSucceed(1);
        break;
    case QAbstractSocket::UnconnectedState:
        // Said twice on a loss: once that the socket is down, once that the
        // connection waits for the owner to connect again.
        setState(State::Idle);
        emit connectSucceed(0);
        drop(DropReason::SocketLost);
        break;
    default:
        break;
    }
}

void FramedConnection::onReadyRead()
{
    // A listener may spin an event loop (the mode report's pause) in which
    // the socket is replaced and its deferred delete runs: this reference
    // keeps the socket whose readyRead we are in alive until we return.
    const QSharedPointer<TcpSocket> socket = m_socket;
    if (!socket)
        return;
    m_unread.append(socket->readAll());
    // A listener that spins an event loop may bring us back here while
    // frames are being handed out: the bytes then wait for the outer loop.
    if (m_decoding)
        return;
    m_decoding = true;
    for (;;) {
        // Bytes that came while a listener's event loop ran are in the
        // socket without a readyRead of their own (the socket does not
        // announce them while this announcement is being handled).
        if (m_unread.isEmpty() && socket == m_socket && socket->bytesAvailable() > 0)
            m_unread = socket->readAll();
        if (m_unread.isEmpty())
            break;
        QByteArray bytes;
        bytes.swap(m_unread);
        m_receiveBuffer.feed(bytes, [this, &socket](quint16 command, const QByteArray &payload) {
            recordReceived(*socket, command, payload);
            const State now = state();
            if (now != State::WaitingToConnect && now != State::Closing)
                emit frameReceived(command, payload);
        });
    }
    m_decoding = false;
}

void FramedConnection::onSocketError(QAbstractSocket::SocketError error)
{
    // Losses are handled by the state change and the owner's time-out.
    Q_UNUSED(error)
}

} // namespace qrx
