#pragma once
// One framed TCP connection: a socket, the frame decoder, one state and one
// drop path. It has no timers and no thread of its own; what to do about a
// silent peer or a lost socket is the owner's policy:
//
//  - the controller link (TcpConnectModulePrivate) runs it in the link
//    thread under a check timer that reconnects a dropped connection or
//    sends the heartbeat, and a time-out that drops a silent one;
//  - the file connection (port 5000) opens it once in the calling thread,
//    with no heartbeat and no reconnect, and FileConnection options: no
//    "head error" or "关闭网络连接" log line, a read buffer of 64 KiB;
//    it watches bytesToWrite() so that a streamed upload stays bounded.
//    Partial frames are kept across reads by both.
//
// State, one value at a time:
//   Idle              nothing to do (constructed, after a manual stop)
//   WaitingToConnect  the socket is unusable; the owner's next check opens a
//                     new one (frames that still arrive are ignored)
//   Connecting        a socket is being connected
//   Connected         frames are written and delivered
//   Closing           the owner is going away: frames and socket states are
//                     ignored from now on
// state() may be read from any thread. open(), the socket slots and the
// decoding run in the thread that owns the socket (the context thread);
// write() and drop() may be called from any thread: apart from what
// TcpSocket::send() writes on its descriptor, the socket is only touched in
// its own thread.
//
// The receive buffer is kept across a reconnect: bytes of a frame that
// arrived before the loss are completed by the bytes that follow.

#include "link/FrameCodec.h"
#include "link/TcpSocket.h"

#include <QObject>
#include <QSharedPointer>

#include <atomic>
#include <functional>
#include <mutex>

namespace qrx {

class FramedConnection : public QObject
{
    Q_OBJECT
public:
    enum class State : quint8 { Idle, WaitingToConnect, Connecting, Connected, Closing };
    Q_ENUM(State)

    // Why a connection is dropped; each reason closes the socket its own way
    // and says which state follows.
    enum class DropReason : quint8 {
        TimedOut,      // nothing heard for too long: the socket is closed at once, without a log line
        SocketLost,    // the socket reached the unconnected state: closed here, logged
        AddressChanged,// a new address: closed in the socket's thread, logged; then WaitingToConnect
        ManualStop,    // stopped by hand: closed in the socket's thread, logged; then Idle
    };
    Q_ENUM(DropReason)

    struct Options
    {
        bool logHeadErrors = true;  // "onTcpSocketReadyRead: head error" per skipped byte
        bool logClose = true;       // "关闭网络连接" when the socket is closed
        qint64 readBufferSize = 0;  // the socket's read buffer (0: unlimited)
        bool directWrites = false;  // writers write on the descriptor themselves (TcpSocket.h)
    };
    // The controller link's frames leave from the thread that sends them: a
    // request does not wait for the link thread to pass them on.
    static Options mainLinkOptions()
    {
        Options options;
        options.directWrites = true;
        return options;
    }
    // The file connection's socket reads up to 64 KiB per pass of the event
    // loop: 4096 bytes (two chunks) per pass made a download cost the host a
    // poll, an ioctl and a read every two frames, half its CPU time. The
    // buffer still bounds what a fast controller can pile up in the host.
    static Options fileConnectionOptions() { return {false, false, 64 * 1024}; }

    explicit FramedConnection(Options options = mainLinkOptions(), QObject *parent = nullptr);
    ~FramedConnection() override;

    State state() const { return m_state.load(); }
    // Closing is final: no later change of state leaves it.
    void setState(State state);
    bool isConnected() const { return state() == State::Connected; }

    // The object in the socket's thread through which other threads queue
    // work there (an event loop of that thread, or null to refuse such work).
    void setContext(QObject *context);
    // Runs f in the socket's thread: at once when called there, else queued.
    void runInContext(std::function<void()> f);

    // Builds a new socket (the old one is aborted) and starts connecting;
    // the state becomes Connecting. Runs in the context thread.
    void open(const QString &host, quint16 port);
    // Waits up to msecs for the attempt to end, in a nested event loop that
    // QThread::quit() ends at once; a pending attempt is then given up.
    void waitForConnection(int msecs);
    bool isWaitingForConnection() const { return m_waiting; }

    // Writes frame bytes if Connected, in the order of the calls (see
    // TcpSocket::send); false, and nothing written, otherwise.
    bool write(const QByteArray &frame);
    // Serialises writes; the owner holds it for anything that must not
    // interleave with a write (the controller link's periodic check).
    std::recursive_mutex &sendMutex() { return m_sendMutex; }

    // The one way down: closes the socket as the reason says, sets the
    // following state and emits connectSucceed(0).
    void drop(DropReason reason);
    // Closes the socket that is current now, in its own thread, logging
    // "关闭网络连接". A socket replaced meanwhile was closed with its
    // replacement.
    void closeSocketInItsThread();
    // Closes the current socket here (logged), if there is one.
    void closeSocket();
    // Ends the connection for good and releases the socket: with waitMsecs
    // above 0 in order (what is queued is written, the peer sees the end;
    // up to waitMsecs), else aborted after a flush. Socket's thread.
    void release(int waitMsecs = 0);

    // Bytes written but not yet handed to the kernel, and a wait (socket's
    // thread, up to msecs) until some of them are: a sender that streams
    // keeps its backlog bounded with these.
    qint64 bytesToWrite() const;
    bool waitForBytesWritten(int msecs);

    const FrameDecoder &receiveBuffer() const { return m_receiveBuffer; }

    // The socket's notices (connected to the socket directly; public so that
    // an owner's slots of the same names can hand them on).
    void onStateChanged(QAbstractSocket::SocketState socketState);
    void onReadyRead();
    void onSocketError(QAbstractSocket::SocketError error);

Q_SIGNALS:
    // Every checked frame while neither WaitingToConnect nor Closing.
    void frameReceived(quint16 command, QByteArray payload);
    // The socket has connected; emitted just before connectSucceed(1), so
    // that an owner can note the time first.
    void socketConnected();
    // 1 on every connect, 0 on every loss (a loss of the socket says it twice).
    void connectSucceed(int status);

private:
    void replaceSocket();

    const Options m_options;
    std::atomic<State> m_state{State::Idle};
    QSharedPointer<TcpSocket> m_socket; // socket's thread; read elsewhere under m_sendMutex
    // Standard mutexes: their hand-overs are visible to ThreadSanitizer,
    // those of QMutex under contention are not.
    std::recursive_mutex m_sendMutex;
    FrameDecoder m_receiveBuffer;

    // Work from other threads reaches the socket's thread through the
    // context; m_contextMutex guards it and the socket generation.
    std::mutex m_contextMutex;
    QObject *m_context = nullptr;
    quint64 m_socketGeneration = 0;

    // Socket's thread only.
    bool m_waiting = false;  // waitForConnection is running
    bool m_decoding = false; // onReadyRead is handing out frames
    QByteArray m_unread;     // bytes read while frames were handed out
};

} // namespace qrx
