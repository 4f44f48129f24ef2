#include "sim/Session.h"

#include "common/CompactJson.h"
#include "sim/Simulator.h"

#include <QTcpSocket>

namespace qrxsim {

namespace {
// Split bytes leave one per millisecond, so that the peer reads them in
// separate pieces instead of one coalesced segment.
constexpr int kDripIntervalMs = 1;
} // namespace

Session::Session(Simulator &simulator, QTcpSocket *socket)
    : QObject(&simulator)
    , m_simulator(simulator)
    , m_socket(socket)
    , m_drip(this)
{
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_drip.setInterval(kDripIntervalMs);
    connect(&m_drip, &QTimer::timeout, this, &Session::writeNextChunk);
    connect(m_socket, &QTcpSocket::readyRead, this, &Session::onReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, [this] { m_simulator.removeSession(this); });
}

Session::~Session()
{
    // A socket torn down with its session must not report back to it.
    QObject::disconnect(m_socket, nullptr, this, nullptr);
}

void Session::reply(quint16 command, const QByteArray &payload)
{
    if (m_simulator.isSilent())
        return;
    m_simulator.traceSent(command, payload);
    write(m_simulator.frameFor(command, payload));
}

void Session::replyJson(quint16 command, const Json::Value &value)
{
    reply(command, qrx::jsonPayload(value));
}

void Session::broadcast(quint16 command, const QByteArray &payload)
{
    m_simulator.broadcast(command, payload);
}

void Session::broadcastJson(quint16 command, const Json::Value &value)
{
    m_simulator.broadcastJson(command, value);
}

ControllerModel &Session::model()
{
    return m_simulator.model();
}

qint64 Session::nowMs() const
{
    return m_simulator.nowMs();
}

QString Session::peer() const
{
    return QStringLiteral("%1:%2").arg(m_socket->peerAddress().toString()).arg(m_socket->peerPort());
}

void Session::write(const QByteArray &bytes)
{
    if (bytes.isEmpty() || m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    if (!m_simulator.splitDelivery() && m_pending.isEmpty()) {
        m_socket->write(bytes);
        return;
    }
    // Keep the order: once something waits in the queue, everything queues.
    if (m_simulator.splitDelivery()) {
        for (char byte : bytes)
            m_pending.enqueue(QByteArray(1, byte));
    } else {
        m_pending.enqueue(bytes);
    }
    if (!m_drip.isActive())
        m_drip.start();
}

void Session::writeNextChunk()
{
    if (m_pending.isEmpty() || m_socket->state() != QAbstractSocket::ConnectedState) {
        m_pending.clear();
        m_drip.stop();
        return;
    }
    m_socket->write(m_pending.dequeue());
    m_socket->flush();
}

void Session::close()
{
    m_pending.clear();
    m_drip.stop();
    m_socket->abort();
}

void Session::onReadyRead()
{
    const QByteArray bytes = m_socket->readAll();
    m_decoder.feed(bytes, [this](quint16 command, QByteArray payload) {
        m_simulator.handleFrame(*this, command, payload);
    });
}

} // namespace qrxsim
