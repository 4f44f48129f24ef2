#include "WireClient.h"

#include <QDeadlineTimer>
#include <algorithm>

bool WireClient::connectTo(const QString &address, quint16 port, int timeoutMs)
{
    m_socket.connectToHost(address, port);
    return m_socket.waitForConnected(timeoutMs);
}

void WireClient::sendFrame(quint16 command, const QByteArray &payload)
{
    sendBytes(qrx::encodeFrame(command, payload));
}

void WireClient::sendBytes(const QByteArray &bytes)
{
    m_socket.write(bytes);
    m_socket.waitForBytesWritten(5000);
}

void WireClient::readAvailable()
{
    const QByteArray bytes = m_socket.readAll();
    if (bytes.isEmpty())
        return;
    m_bytes.append(bytes);
    m_chunks.append(bytes.size());
    m_frames += m_decoder.feed(bytes);
}

bool WireClient::waitFor(const std::function<bool()> &done, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    readAvailable();
    while (!done()) {
        if (deadline.hasExpired() || m_socket.state() != QAbstractSocket::ConnectedState)
            return false;
        m_socket.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime())));
        readAvailable();
    }
    return true;
}

bool WireClient::waitForFrame(quint16 command, int timeoutMs)
{
    return waitFor([this, command] { return !frames(command).isEmpty(); }, timeoutMs);
}

bool WireClient::waitForBytes(int count, int timeoutMs)
{
    return waitFor([this, count] { return m_bytes.size() >= count; }, timeoutMs);
}

bool WireClient::waitForDisconnected(int timeoutMs)
{
    if (m_socket.state() == QAbstractSocket::UnconnectedState)
        return true;
    return m_socket.waitForDisconnected(timeoutMs);
}

QVector<qrx::Frame> WireClient::frames(quint16 command) const
{
    QVector<qrx::Frame> out;
    std::copy_if(m_frames.cbegin(), m_frames.cend(), std::back_inserter(out),
                 [command](const qrx::Frame &f) { return f.command == command; });
    return out;
}

void WireClient::clear()
{
    m_frames.clear();
    m_bytes.clear();
    m_chunks.clear();
}
