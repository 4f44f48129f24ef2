#include "link/TcpSocket.h"

#include "common/HandOver.h"
#include "link/SessionRecorder.h"

#include <QThread>

TcpSocket::TcpSocket(QObject *parent)
    : QTcpSocket(parent)
{
    // Ahead of any other listener: the descriptor's duplicate is closed as
    // soon as the socket leaves the connected state.
    connect(this, &QAbstractSocket::stateChanged, this, &TcpSocket::onStateChanged, Qt::DirectConnection);
    connect(this, &QIODevice::bytesWritten, this, [this] {
        if (bytesToWrite() == 0)
            m_backlog.store(false);
    }, Qt::DirectConnection);
}

TcpSocket::~TcpSocket()
{
    // The base class aborts a connected socket: the notice must not reach
    // this part any more.
    disconnect(this, nullptr, this, nullptr);
}

void TcpSocket::send(const QByteArray &frame)
{
    qint64 written = -1;
    if (m_directWrites && isDrained()) {
        written = m_direct.write(frame);
        if (written == frame.size())
            return;
    }
    const bool record = written < 0;
    const QByteArray rest = written > 0 ? frame.mid(int(written)) : frame;
    // In the socket's thread too, bytes go behind what is queued there:
    // the rest of a frame the kernel took in part may be among it.
    if (QThread::currentThread() == thread() && m_queued.load() == 0) {
        writeHere(rest, record);
        return;
    }
    // Counted before it is queued and uncounted after the bytes are in the
    // socket's buffer (m_backlog set first): a later send() finds one or
    // the other.
    // The queued bytes are a copy that only the queued call holds: the
    // sender's frame is never shared with the socket's thread, whose write
    // may keep a reference inside Qt (its last release could otherwise come
    // on either side, through a reference count ThreadSanitizer cannot see).
    ++m_queued;
    qrx::handOff(this);
    QMetaObject::invokeMethod(this, [this, owned = QByteArray(rest.constData(), rest.size()), record] {
        qrx::takeOver(this);
        writeHere(owned, record);
        --m_queued;
    }, Qt::QueuedConnection);
}

void TcpSocket::writeHere(const QByteArray &bytes, bool record)
{
    // A send queued from another thread may find the socket closed: then
    // nothing goes on the wire, and nothing is recorded.
    if (record)
        qrx::recordSent(*this, bytes);
    m_backlog.store(true);
    write(bytes);
    if (bytesToWrite() == 0)
        m_backlog.store(false);
}

void TcpSocket::onStateChanged(QAbstractSocket::SocketState socketState)
{
    if (socketState == QAbstractSocket::ConnectedState && m_directWrites)
        m_direct.open(*this);
    else
        m_direct.close();
}
