#pragma once
// The socket of the controller link. It lives in the link thread; other
// threads hand it bytes through the write(QByteArray) slot with a queued
// invocation, so the write itself always happens in the socket's thread.

#include <QByteArray>
#include <QTcpSocket>

class TcpSocket : public QTcpSocket
{
    Q_OBJECT
public:
    explicit TcpSocket(QObject *parent = nullptr);

public Q_SLOTS:
    // Writes the whole array; the result of QIODevice::write is not needed
    // by anyone (a lost frame shows as a missing answer or a time-out).
    // Every write passes here in the socket's thread, so this is where a
    // session recording (link/SessionRecorder.h) sees the frames sent.
    void write(QByteArray data);
};
