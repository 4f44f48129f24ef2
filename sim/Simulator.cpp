#include "sim/Simulator.h"

#include "common/CompactJson.h"
#include "link/FrameCodec.h"
#include "sim/Session.h"
#include "sim/SimLogging.h"

#include <QDateTime>
#include <QTcpSocket>
#include <algorithm>
#include <exception>

Q_LOGGING_CATEGORY(lcSim, "sim", QtInfoMsg)

namespace qrxsim {

namespace {

constexpr int kTickIntervalMs = 20;
constexpr quint16 kHeartbeatRequest = qrx::protocol::code::Heartbeat;
constexpr int kTracedPayloadChars = 240;

// Runs one piece of family behaviour. One that chokes (a jsoncpp conversion
// of an ill-typed request, say) is logged and must not take the controller
// down; what() names it, and is only called then.
template <typename What, typename Fn>
void guarded(What &&what, Fn &&fn)
{
    try {
        fn();
    } catch (const std::exception &e) {
        qCWarning(lcSim).noquote() << QStringLiteral("%1 failed: %2").arg(what(), QString::fromUtf8(e.what()));
    }
}

} // namespace

Simulator::Simulator(QObject *parent)
    : QObject(parent)
    , m_server(this)
    , m_tickTimer(this)
    , m_heartbeatTimer(this)
{
    m_clock.start();
    for (CommandEntry &entry : commandTable()) {
        if (m_commands.contains(entry.code)) {
            qCWarning(lcSim).noquote()
                << QStringLiteral("two handlers for 0x%1, the first one is kept")
                       .arg(entry.code, 4, 16, QLatin1Char('0'));
            continue;
        }
        m_commands.insert(entry.code, std::move(entry));
    }
    m_ticks = tickTable();
    m_onConnect = connectTable();

    connect(&m_server, &QTcpServer::newConnection, this, &Simulator::onNewConnection);
    m_tickTimer.setInterval(kTickIntervalMs);
    m_heartbeatTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_tickTimer, &QTimer::timeout, this, &Simulator::onTick);
    connect(&m_heartbeatTimer, &QTimer::timeout, this, &Simulator::onControllerHeartbeat);
}

Simulator::~Simulator()
{
    shutdown();
}

bool Simulator::listen(const QHostAddress &address, quint16 port)
{
    m_address = address;
    if (!m_server.listen(address, port)) {
        qCWarning(lcSim).noquote() << QStringLiteral("cannot listen on %1:%2: %3")
                                          .arg(address.toString())
                                          .arg(port)
                                          .arg(m_server.errorString());
        return false;
    }
    m_port = m_server.serverPort();
    m_serving = true;
    wake();
    return true;
}

void Simulator::shutdown()
{
    m_serving = false;
    m_tickTimer.stop();
    m_heartbeatTimer.stop();
    m_server.close();
    dropConnections();
}

void Simulator::setHandler(CommandEntry entry)
{
    const quint16 code = entry.code;
    m_commands.insert(code, std::move(entry));
}

void Simulator::onNewConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        auto *session = new Session(*this, socket);
        m_sessions.push_back(session);
        m_recorder.setClientCount(clientCount());
        qCDebug(lcSim).noquote() << QStringLiteral("client %1 connected").arg(session->peer());
        for (const ConnectEntry &hook : m_onConnect)
            guarded([&] { return QStringLiteral("connect hook %1").arg(QLatin1String(hook.name)); },
                    [&] { hook.run(*session); });
    }
}

void Simulator::removeSession(Session *session)
{
    const auto it = std::find(m_sessions.begin(), m_sessions.end(), session);
    if (it == m_sessions.end())
        return;
    m_sessions.erase(it);
    m_recorder.setClientCount(clientCount());
    qCDebug(lcSim).noquote() << QStringLiteral("client %1 gone").arg(session->peer());
    // Never delete from inside the socket's own signal.
    session->deleteLater();
}

void Simulator::dropConnections()
{
    const std::vector<Session *> sessions = m_sessions;
    for (Session *session : sessions) {
        session->close();
        removeSession(session);
    }
}

bool Simulator::setRefuseConnections(bool on)
{
    if (on) {
        m_server.close();
        return true;
    }
    if (m_server.isListening())
        return true;
    if (!m_server.listen(m_address, m_port)) {
        qCWarning(lcSim).noquote() << QStringLiteral("cannot listen again on %1:%2: %3")
                                          .arg(m_address.toString())
                                          .arg(m_port)
                                          .arg(m_server.errorString());
        return false;
    }
    return true;
}

void Simulator::setControllerHeartbeat(int intervalMs)
{
    if (intervalMs <= 0) {
        m_heartbeatTimer.stop();
        return;
    }
    m_heartbeatTimer.start(intervalMs);
}

QByteArray Simulator::frameFor(quint16 command, const QByteArray &payload)
{
    QByteArray frame = qrx::encodeFrame(command, payload);
    if (frame.isEmpty())
        return frame;
    if (m_corruptNextCrc) {
        m_corruptNextCrc = false;
        frame[frame.size() - 1] = char(frame.at(frame.size() - 1) ^ 0xFF);
    }
    return frame;
}

void Simulator::writeToAll(const QByteArray &bytes)
{
    for (Session *session : m_sessions)
        session->write(bytes);
}

void Simulator::broadcast(quint16 command, const QByteArray &payload)
{
    if (m_silent || m_sessions.empty())
        return;
    traceSent(command, payload);
    writeToAll(frameFor(command, payload));
}

void Simulator::broadcastJson(quint16 command, const Json::Value &value)
{
    broadcast(command, qrx::jsonPayload(value));
}

void Simulator::sendToAll(quint16 command, const QByteArray &payload)
{
    if (m_sessions.empty())
        return; // keeps a pending corruptNextCrc for a frame that is sent
    traceSent(command, payload);
    writeToAll(frameFor(command, payload));
}

void Simulator::sendRaw(const QByteArray &bytes)
{
    writeToAll(bytes);
}

void Simulator::handleFrame(Session &session, quint16 command, const QByteArray &payload)
{
    // A checked frame is fully determined by its code and payload, so
    // encoding them again gives back the bytes that were on the wire.
    const ReceivedFrame frame{command, payload, qrx::encodeFrame(command, payload), nowMs()};
    m_recorder.append(frame);
    trace("<-", command, payload);
    if (m_silent)
        return;
    const auto it = m_commands.constFind(command);
    if (it == m_commands.constEnd()) {
        qCDebug(lcSim).noquote()
            << QStringLiteral("no handler for 0x%1").arg(command, 4, 16, QLatin1Char('0'));
        return;
    }
    guarded([&] { return QStringLiteral("handler of 0x%1").arg(command, 4, 16, QLatin1Char('0')); },
            [&] { it->handle(session, frame); });
    wake();
}

void Simulator::wake()
{
    if (!m_serving || m_tickTimer.isActive())
        return;
    m_lastTickMs = nowMs();
    m_tickTimer.start();
}

void Simulator::onTick()
{
    const qint64 now = nowMs();
    const qint64 elapsed = now - m_lastTickMs;
    m_lastTickMs = now;
    for (const TickEntry &entry : m_ticks)
        guarded([&] { return QStringLiteral("tick %1").arg(QLatin1String(entry.name)); },
                [&] { entry.tick(*this, elapsed); });
    const bool busy = std::any_of(m_ticks.begin(), m_ticks.end(),
                                  [this](const TickEntry &entry) { return !entry.busy || entry.busy(m_model); });
    if (!busy)
        m_tickTimer.stop(); // nothing moves: the next frame starts the ticks again
}

void Simulator::onControllerHeartbeat()
{
    Json::Value value(Json::objectValue);
    value["time"] = Json::UInt64(QDateTime::currentSecsSinceEpoch());
    broadcastJson(kHeartbeatRequest, value);
}

void Simulator::traceSent(quint16 command, const QByteArray &payload) const
{
    trace("->", command, payload);
}

void Simulator::trace(const char *direction, quint16 command, const QByteArray &payload) const
{
    if (!m_verbose)
        return;
    QString text = QString::fromUtf8(payload).trimmed();
    if (text.size() > kTracedPayloadChars)
        text = text.left(kTracedPayloadChars) + QStringLiteral("...");
    qCInfo(lcSim).noquote() << QStringLiteral("%1 0x%2 %3")
                                   .arg(QLatin1String(direction))
                                   .arg(command, 4, 16, QLatin1Char('0'))
                                   .arg(text);
}

} // namespace qrxsim
