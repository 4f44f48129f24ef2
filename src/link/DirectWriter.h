#pragma once
// Frame bytes written straight on a connected socket's descriptor, from any
// thread: a sender need not wait for the socket's thread to take its bytes
// out of an event queue and for one more pass of that thread's event loop
// before they leave.
//
// The writer holds a duplicate of the socket's descriptor, so the socket
// it writes on stays the same socket even when the socket's thread closes
// its own descriptor meanwhile: a write never reaches another file that
// took the number. The kernel ends the connection only once both
// descriptors are closed, so the socket closes its writer whenever it
// leaves the connected state (TcpSocket).
//
// Any thread; a close() waits for a write in progress.

#include "link/PcapSession.h"

#include <QByteArray>

#include <mutex>

class QAbstractSocket;

namespace qrx {

class DirectWriter
{
public:
    DirectWriter() = default;
    ~DirectWriter() { close(); }
    DirectWriter(const DirectWriter &) = delete;
    DirectWriter &operator=(const DirectWriter &) = delete;

    // Duplicates the descriptor of a connected socket and notes its two
    // ends for the session recording. Socket's thread.
    void open(const QAbstractSocket &socket);
    void close();
    // Records the frame as sent and writes as much of it as the socket takes
    // now, without blocking: the number of bytes written, or -1 when the
    // writer is closed (nothing recorded then). 0 or a part when the socket
    // takes no more now, or has failed: the socket's thread then learns of
    // the loss as it reads.
    qint64 write(const QByteArray &frame);

private:
    std::mutex m_mutex; // guards the members below
    int m_fd = -1;
    pcap::Endpoint m_host;
    pcap::Endpoint m_controller;
};

} // namespace qrx
