#pragma once
// The simulated robot controller: a TCP server speaking the controller's
// frame format, a controller model, and the tables of behaviour in
// commands/. It lives on one thread (the one of its event loop); SimHandle
// runs it on a thread of its own for tests, qrx-sim on the main thread.
//
// What the controller sends on its own (answers, tick and connect hooks,
// controller heartbeats) goes through broadcast()/Session::reply() and stays
// quiet while silent; what a test asks for explicitly (sendToAll, sendRaw)
// always goes out.

#include "sim/ControllerModel.h"
#include "sim/Recorder.h"
#include "sim/commands/CommandTable.h"

#include <QElapsedTimer>
#include <QHash>
#include <QHostAddress>
#include <QObject>
#include <QTcpServer>
#include <QTimer>
#include <json/value.h>
#include <vector>

namespace qrxsim {

class Session;

class Simulator : public QObject
{
    Q_OBJECT
public:
    explicit Simulator(QObject *parent = nullptr);
    ~Simulator() override;

    // Starts listening; false (and a log line) when the address cannot be bound.
    bool listen(const QHostAddress &address, quint16 port);
    quint16 port() const { return m_port; }
    // Stops listening and closes every client.
    void shutdown();

    ControllerModel &model() { return m_model; }
    Recorder &recorder() { return m_recorder; }
    qint64 nowMs() const { return m_clock.elapsed(); }
    int clientCount() const { return int(m_sessions.size()); }

    // The controller's own output: to every client, nothing while silent.
    void broadcast(quint16 command, const QByteArray &payload);
    void broadcastJson(quint16 command, const Json::Value &value);
    // Explicit output asked for by a test: to every client, even when silent.
    void sendToAll(quint16 command, const QByteArray &payload);
    void sendRaw(const QByteArray &bytes);

    // Misbehaviour.
    void setSilent(bool on) { m_silent = on; }
    bool isSilent() const { return m_silent; }
    void setAnswerHeartbeats(bool on) { m_answerHeartbeats = on; }
    bool answersHeartbeats() const { return m_answerHeartbeats; }
    void setSplitDelivery(bool on) { m_splitDelivery = on; }
    bool splitDelivery() const { return m_splitDelivery; }
    void corruptNextCrc() { m_corruptNextCrc = true; }
    // On: stop listening, so new clients are refused; clients already
    // connected stay. Off: listen again on the same address and port.
    bool setRefuseConnections(bool on);
    // 0 = off; otherwise 0x7266 {"time":N} to every client each interval.
    void setControllerHeartbeat(int intervalMs);
    void dropConnections();

    // One log line per frame received and sent (category "sim", info level).
    void setVerbose(bool on) { m_verbose = on; }
    void setTickInterval(int ms) { m_tickTimer.setInterval(ms); }

    // Behaviour added at run time, after the tables (tests script one-off
    // answers this way). setHandler replaces the handler of its code.
    void setHandler(CommandEntry entry);
    void addTick(TickEntry entry)
    {
        m_ticks.push_back(std::move(entry));
        wake();
    }
    // Starts the ticks again if they stopped for lack of work (after a frame
    // or a change of the model from outside).
    void wake();
    void addConnectHook(ConnectEntry entry) { m_onConnect.push_back(std::move(entry)); }
    // A controller that speaks only when spoken to (tests of the engine).
    void clearTicksAndConnectHooks()
    {
        m_ticks.clear();
        m_onConnect.clear();
    }

    // Used by sessions.
    // The frame as it goes on the wire (with a wrong CRC once after
    // corruptNextCrc()); empty when the payload is too long to frame.
    QByteArray frameFor(quint16 command, const QByteArray &payload);
    void handleFrame(Session &session, quint16 command, const QByteArray &payload);
    void removeSession(Session *session);
    void traceSent(quint16 command, const QByteArray &payload) const;

private:
    void onNewConnection();
    void onTick();
    void onControllerHeartbeat();
    void trace(const char *direction, quint16 command, const QByteArray &payload) const;
    void writeToAll(const QByteArray &bytes);

    QTcpServer m_server;
    QHostAddress m_address;
    quint16 m_port = 0;
    std::vector<Session *> m_sessions;
    ControllerModel m_model;
    Recorder m_recorder;
    QElapsedTimer m_clock;

    QHash<quint16, CommandEntry> m_commands;
    std::vector<TickEntry> m_ticks;
    std::vector<ConnectEntry> m_onConnect;
    QTimer m_tickTimer;
    qint64 m_lastTickMs = 0;
    bool m_serving = false; // between listen() and shutdown()
    QTimer m_heartbeatTimer;

    bool m_silent = false;
    bool m_answerHeartbeats = true;
    bool m_splitDelivery = false;
    bool m_corruptNextCrc = false;
    bool m_verbose = false;
};

} // namespace qrxsim
