#pragma once
// The link thread behind TcpConnectModule: it owns the socket, the two
// timers, the flags and the receive buffer, and all of its slots run in its
// own thread with its own event loop.
//
//  - every timeBase/180 ms the check reconnects a socket that needs it, or
//    sends the heartbeat 0x7266 {"time": seconds since the epoch};
//  - every timeBase/150 ms the time-out closes a link that has not been seen
//    alive for kReceiveTimeoutSecs;
//  - received frames: a controller heartbeat 0x7266 is echoed as it came, a
//    heartbeat answer 0x7267 refreshes the link, anything else refreshes the
//    link and goes out as receivedData() in this thread.
//
// The flags are read and written from several threads; they are atomics so
// that doing so is well defined.

#include "link/FrameCodec.h"
#include "protocol/Codes.h"
#include "link/TcpSocket.h"

#include <QDateTime>
#include <QEventLoop>
#include <QMutex>
#include <QRecursiveMutex>
#include <QSemaphore>
#include <QSharedPointer>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <functional>

class TcpConnectModulePrivate : public QThread
{
    Q_OBJECT
public:
    // A link that has not been seen alive for this long is closed.
    static constexpr int kReceiveTimeoutSecs = 7;
    // A connect attempt blocks the link thread for at most this long.
    static constexpr int kConnectWaitMs = 5000;
    // The controller's heartbeat: request (both ways) and answer.
    static constexpr quint16 kHeartbeat = qrx::protocol::code::Heartbeat;
    static constexpr quint16 kHeartbeatAnswer = qrx::protocol::code::HeartbeatAnswer;

    TcpConnectModulePrivate(const QString &ip, quint16 port, int timeBase, QObject *parent = nullptr);
    // Quits the event loop and joins the thread, also during a connect attempt.
    ~TcpConnectModulePrivate() override;

    // Records connectTime, starts the thread and returns once its timers run.
    void startLink();
    // Sets closing, quits the thread's event loops and joins it.
    void shutdown();

    // Writes frame bytes if the link is up (queued into the link thread when
    // called from another one); false, and nothing written, otherwise.
    bool writeFrame(const QByteArray &frame);

    // Has the socket that is current now closed in the link thread. A socket
    // that the check has replaced meanwhile was closed with its replacement.
    void requestCloseSocket();
    // Runs the periodic check in the link thread as soon as it can.
    void requestCheck();

    QString ip() const;
    void setIp(const QString &ip);
    quint16 port() const { return m_port; }
    int timeBase() const { return m_timeBase; }
    QDateTime lastReceiveTime() const;
    void setLastReceiveTime(const QDateTime &time);
    uint connectTime() const { return m_connectTime; }

    std::atomic<bool> stopped{false};
    std::atomic<bool> closing{false};
    std::atomic<bool> needReconnect{false};
    std::atomic<bool> connected{false};

Q_SIGNALS:
    void receivedData(quint16 command, QByteArray data);
    void connectSucceed(int status);
    // Emitted in the link thread; closes the current socket there.
    void closeCurrentSocket();

public Q_SLOTS:
    void closeCurrentSocketInNowThread();
    void onTcpSocketStateChanged(QAbstractSocket::SocketState socketState);
    void onTcpSocketReadyRead();
    void onTcpSocketCheck();
    void onCheckHeartBeat();
    void TcpSocketError(QAbstractSocket::SocketError error);

protected:
    void run() override;

private:
    // Runs f in the link thread: at once when called there, else queued.
    void runInLinkThread(std::function<void()> f);
    // The new socket for a connect attempt, wired to the slots above.
    void replaceSocket();
    // Waits up to msecs for the attempt to end, returning early when the
    // thread is asked to quit (so a destructor is never held up by it).
    void waitForConnection(int msecs);
    void route(quint16 command, const QByteArray &payload);
    void sendHeartbeat();

    mutable QMutex m_ipMutex;
    QString m_ip;
    const quint16 m_port;
    const int m_timeBase;

    QSharedPointer<TcpSocket> m_socket;   // link thread; read elsewhere under sendMutex
    QRecursiveMutex m_sendMutex;          // frame writes and the whole periodic check
    mutable QRecursiveMutex m_pingMutex;  // lastReceiveTime
    QSemaphore m_startedSemaphore;
    QSharedPointer<QEventLoop> m_eventLoop;
    QSharedPointer<QTimer> m_checkTimer;
    QSharedPointer<QTimer> m_timeoutTimer;
    qrx::FrameDecoder m_receiveBuffer;
    QDateTime m_lastReceiveTime;
    std::atomic<uint> m_connectTime{0};

    // Requests from other threads reach the link thread through the event
    // loop object; m_linkMutex guards it and the socket generation.
    QMutex m_linkMutex;
    QEventLoop *m_linkContext = nullptr;
    quint64 m_socketGeneration = 0;

    // Link-thread only.
    bool m_connecting = false;   // a connect attempt is waiting
    bool m_decoding = false;     // onTcpSocketReadyRead is routing frames
    QByteArray m_unread;         // bytes read while routing, decoded next
};
