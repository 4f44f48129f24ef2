#pragma once
// The controller link: one TCP connection to the controller (port 6001),
// kept alive by a heartbeat, watched by a receive time-out and reconnected
// by itself after a loss. It runs in a thread of its own
// (TcpConnectModulePrivate); received frames reach the dispatcher
// onReceivedData() in that thread, and the notifications of LinkNotifications
// leave from there.
//
//   TcpConnectModule link("192.168.1.13", 6001, 300000);
//   link.start();                     // first attempt after timeBase/180 ms
//   link.sendData(0x2002, payload);   // false while the link is down
//
// timeBase sets both timers: the check every timeBase/180 ms and the
// time-out check every timeBase/150 ms (1666 ms and 2000 ms for 300000).
// connectSucceed(1) is emitted on every connect, connectSucceed(0) on every
// loss: twice when the socket drops, three times when the receive time-out
// closes it (the close reports the loss like a drop, then the time-out
// reports it once more). Listeners have always seen it so.
//
// The link thread runs its own event loop, but Qt delivers events only while
// a QCoreApplication exists (in any thread): the host program, or the API
// layer on its behalf, creates one before start().

#include "link/LinkSenders.h"

#include <QDateTime>
#include <QSharedPointer>
#include <QString>
#include <functional>
#include <mutex>

class TcpConnectModulePrivate;

class TcpConnectModule : public LinkSenders
{
    Q_OBJECT
public:
    TcpConnectModule(QString ip, quint16 port, int timeBase, QObject *parent = nullptr);
    // Quits and joins the link thread, also while a connect attempt waits.
    ~TcpConnectModule() override;

    // Starts the link thread; returns once its timers run.
    void start();
    // Has the link served by one of the library's shared I/O threads
    // (link/IoThreads.h) rather than a thread of its own; before start().
    void useSharedIoThread();
    // How long a connected link may stay silent before the time-out closes
    // it: 7 s unless set (the controller's own figure, whatever the time
    // base). A test of many silent drops sets a short one.
    void setReceiveTimeout(int msecs);

    // Frames the payload and writes it if the link is up; false, and nothing
    // written, when it is down, the payload is longer than 65535 bytes or
    // it is the refused payload.
    // Callable from any thread: the write is queued into the link thread.
    bool sendData(quint16 command, QByteArray payload) override;
    // Called in the sending thread with each frame sendData() is about to
    // hand to a link, before the write (the heartbeat, which the link writes
    // itself, is none). Empty (the default): none.
    using SendObserver = std::function<void(quint16 command)>;
    void setSendObserver(SendObserver observer);
    // Writes bytes that are already framed, under the same conditions.
    bool sendBytes(QByteArray frame);

    // Closes the current connection; the next check connects to ip.
    void resetIp(QString ip);
    // Manual stop: no reconnect until startConnect().
    void stopConnect();
    // Manual start: connects at once.
    void startConnect();
    // Emits connectSucceed(connected) and returns it.
    bool connectStatus();
    bool isStopped() const;
    // Ends the link for good: what was queued into the link thread (writes,
    // the socket close) is done, the socket goes, the thread is joined. No
    // restart afterwards.
    void shutdown();

    // When the link was last seen alive (connect, heartbeat answer or any
    // message other than a heartbeat request).
    QDateTime lastReceiveTime() const;
    // The controller's address (the file connection opens port 5000 there).
    QString ip() const;
    // The controller's port of this link.
    quint16 port() const;

public Q_SLOTS:
    void setLastPingTime(QDateTime rectime);
    // Re-emits the link thread's status from the façade.
    bool onConnectSucceed(int status);

private:
    QSharedPointer<TcpConnectModulePrivate> d;
    std::mutex m_observerMutex;
    SendObserver m_sendObserver;
};
