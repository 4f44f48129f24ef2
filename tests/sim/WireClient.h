#pragma once
// A bare client of the simulated controller for tests: a QTcpSocket and the
// library's frame decoder, driven by blocking waits in the test thread.

#include "link/FrameCodec.h"

#include <QByteArray>
#include <QTcpSocket>
#include <QVector>

class WireClient
{
public:
    bool connectTo(const QString &address, quint16 port, int timeoutMs = 5000);
    void sendFrame(quint16 command, const QByteArray &payload);
    void sendBytes(const QByteArray &bytes);

    // Reads until the predicate holds or the time runs out.
    bool waitFor(const std::function<bool()> &done, int timeoutMs = 5000);
    bool waitForFrame(quint16 command, int timeoutMs = 5000);
    bool waitForBytes(int count, int timeoutMs = 5000);
    bool waitForDisconnected(int timeoutMs = 5000);

    QVector<qrx::Frame> frames(quint16 command) const;
    const QVector<qrx::Frame> &frames() const { return m_frames; }
    const QByteArray &bytes() const { return m_bytes; }     // everything read
    const QVector<int> &chunks() const { return m_chunks; } // size of each read
    void clear();

    QTcpSocket &socket() { return m_socket; }

private:
    void readAvailable();

    QTcpSocket m_socket;
    qrx::FrameDecoder m_decoder;
    QVector<qrx::Frame> m_frames;
    QByteArray m_bytes;
    QVector<int> m_chunks;
};
