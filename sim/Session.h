#pragma once
// One connected client of the simulated controller: it cuts the received
// bytes into frames with the library's own decoder, hands each frame to the
// simulator (recording and dispatch), and writes what the controller sends,
// one byte per write when split delivery is on.
//
// Handlers get a Session to answer through: reply() goes to this client,
// broadcast() to every client. Both stay quiet while the simulator is silent.

#include "link/FrameCodec.h"
#include "sim/ControllerModel.h"

#include <QByteArray>
#include <QObject>
#include <QQueue>
#include <QTimer>
#include <json/value.h>

class QTcpSocket;

namespace qrxsim {

class Simulator;

class Session : public QObject
{
public:
    Session(Simulator &simulator, QTcpSocket *socket);
    ~Session() override;

    // Answers to this client (nothing while silent).
    void reply(quint16 command, const QByteArray &payload);
    void replyJson(quint16 command, const Json::Value &value);
    // To every client (nothing while silent).
    void broadcast(quint16 command, const QByteArray &payload);
    void broadcastJson(quint16 command, const Json::Value &value);

    ControllerModel &model();
    qint64 nowMs() const;
    Simulator &simulator() { return m_simulator; }
    QString peer() const;

    // Bytes as they are, bypassing the silent rule; split delivery applies.
    void write(const QByteArray &bytes);
    // Closes the connection now; pending split bytes are dropped.
    void close();

private:
    void onReadyRead();
    void writeNextChunk();

    Simulator &m_simulator;
    QTcpSocket *m_socket;
    qrx::FrameDecoder m_decoder;
    QQueue<QByteArray> m_pending; // chunks waiting for the drip timer
    QTimer m_drip;
};

} // namespace qrxsim
