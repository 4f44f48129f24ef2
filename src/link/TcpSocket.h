#pragma once
// The socket of a framed connection, and the one way frame bytes reach it.
// It lives in its thread (the link thread for the controller link); send()
// may be called from any thread, one call at a time (the owner's send
// mutex), and the bytes leave in the order of the calls:
//
//  - with direct writes on (the controller link), while nothing waits
//    before them, the calling thread writes them straight on the socket's
//    descriptor (link/DirectWriter.h), without a hop into the socket's
//    thread and one more pass of its event loop;
//  - otherwise, and for what the kernel does not take at once, they go to
//    the socket's own buffer: at once in the socket's thread, through that
//    thread's event queue from another one.
//
// Every frame is handed to the session recording (link/SessionRecorder.h)
// once, just before its first byte is written.

#include "link/DirectWriter.h"

#include <QByteArray>
#include <QTcpSocket>

#include <atomic>

class TcpSocket : public QTcpSocket
{
    Q_OBJECT
public:
    explicit TcpSocket(QObject *parent = nullptr);
    ~TcpSocket() override;

    // Whether send() may write on the descriptor itself. Before connecting.
    void setDirectWrites(bool on) { m_directWrites = on; }

    // Writes the whole frame as described above; the result of the write is
    // not needed by anyone (a lost frame shows as a missing answer or a
    // time-out).
    void send(const QByteArray &frame);

private:
    // Socket's thread: bytes into the socket's buffer.
    void writeHere(const QByteArray &bytes, bool record);
    void onStateChanged(QAbstractSocket::SocketState socketState);
    // Nothing queued for the socket's thread and nothing in the socket's
    // buffer: a direct write comes after every byte sent before it.
    bool isDrained() const { return m_queued.load() == 0 && !m_backlog.load(); }

    bool m_directWrites = false;
    qrx::DirectWriter m_direct;  // open while connected, with direct writes on
    std::atomic<int> m_queued{0};     // sends queued into the socket's thread
    std::atomic<bool> m_backlog{false}; // bytes in the socket's buffer
};
