#pragma once
// The link behind TcpConnectModule: the controller link's policy on top of
// one FramedConnection, served by a thread of its own (taken when the link
// starts, given back when it ends: qrx::takeLinkThread) that owns the two timers and runs its own event loop; the
// connection's socket lives there too.
//
//  - every timeBase/180 ms the check opens a new socket when the connection
//    waits to connect, or sends the heartbeat 0x7266 {"time": seconds since
//    the epoch} when it is up;
//  - every timeBase/150 ms the time-out drops a connection that has not been
//    seen alive for kReceiveTimeoutSecs (or the receive time-out set);
//  - received frames: a controller heartbeat 0x7266 is echoed as it came, a
//    heartbeat answer 0x7267 refreshes the link, anything else refreshes the
//    link and goes out as receivedData() in this thread;
//  - a manual stop (stopped) keeps the check from reconnecting until a
//    manual start.
//
// A link may instead be served by one of the library's shared I/O threads
// (setIoThread before startLink): the same timers and connection live there,
// beside those of other links; a connect attempt does not block that thread
// (the check gives the attempt up after kConnectWaitMs instead). No link
// destroys a thread object (see takeLinkThread).

#include "link/FramedConnection.h"
#include "protocol/Codes.h"

#include <QDateTime>
#include <QEventLoop>
#include <QSharedPointer>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <condition_variable>
#include <mutex>

class TcpConnectModulePrivate : public QObject
{
    Q_OBJECT
public:
    using State = qrx::FramedConnection::State;

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

    // Serves the link on thread (one of the shared I/O threads) instead of
    // a thread of its own. Call it before startLink().
    void setIoThread(QThread *thread) { m_ioThread = thread; }

    // Records connectTime, starts the thread and returns once its timers run.
    void startLink();
    // Marks the connection Closing, quits the thread's event loops and joins
    // it (on a shared thread: takes the link's objects down there and waits).
    void shutdown();

    // Writes frame bytes if the link is up (queued into the link thread when
    // called from another one); false, and nothing written, otherwise.
    bool writeFrame(const QByteArray &frame) { return m_connection.write(frame); }

    // The façade's operations (any thread).
    void resetIp(const QString &ip); // drop, and connect to the new address on the next check
    void stopConnect();              // drop and stay down
    void startConnect();             // connect at once

    bool isConnected() const { return m_connection.isConnected(); }
    bool isStopped() const { return m_stopped; }
    State state() const { return m_connection.state(); }

    QString ip() const;
    void setReceiveTimeout(int msecs) { m_receiveTimeoutMs = msecs; }
    quint16 port() const { return m_port; }
    int timeBase() const { return m_timeBase; }
    QDateTime lastReceiveTime() const;
    void setLastReceiveTime(const QDateTime &time);
    uint connectTime() const { return m_connectTime; }

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

private:
    // The own thread's body (a link not on a shared thread).
    void run();
    // The link's objects in the thread that serves it (context: an object
    // of that thread for the connection's queued work); undone by tearDown.
    void startTimers();
    void setUp(QObject *context);
    void tearDown();
    void route(quint16 command, const QByteArray &payload);
    void sendHeartbeat();

    mutable std::mutex m_ipMutex;
    QString m_ip;
    const quint16 m_port;
    const int m_timeBase;

    qrx::FramedConnection m_connection;
    std::atomic<bool> m_stopped{false};
    // startConnect() asked for an attempt at once; cleared when one starts.
    std::atomic<bool> m_connectNow{false};
    mutable std::mutex m_pingMutex; // lastReceiveTime
    std::mutex m_startedMutex; // m_started: the thread's objects exist
    std::condition_variable m_startedCondition;
    bool m_started = false;
    QSharedPointer<QEventLoop> m_eventLoop;
    QSharedPointer<QTimer> m_checkTimer;
    QSharedPointer<QTimer> m_timeoutTimer;
    QDateTime m_lastReceiveTime;
    std::atomic<uint> m_connectTime{0};
    std::atomic<int> m_receiveTimeoutMs{kReceiveTimeoutSecs * 1000};
    std::atomic<bool> m_runEnded{false}; // set last in run(); read after the join
    std::atomic<QThread *> m_ownThread{nullptr}; // the thread of its own while taken
    QThread *m_ioThread = nullptr;       // the shared thread serving the link, or null
    // The link's object in that thread while set up. Set and cleared in that
    // thread; read by whichever thread shuts the link down, possibly after a
    // hand-over through Qt's event queue, which ThreadSanitizer cannot see.
    std::atomic<QObject *> m_ioContext{nullptr};
    std::atomic<qint64> m_attemptStartMs{0}; // a shared thread's connect attempt began (ms since the epoch)

};
