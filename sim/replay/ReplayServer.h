#pragma once
// qrx-sim --replay: the controller's side of a recording, played to a new
// host. The n-th connection on the frame port plays the n-th recorded
// connection of the main link (the last one again when there were fewer),
// the same on the file port (5000). Each request is answered with the
// answer that followed the same request in the recording (the k-th 0x2F07
// with the answer of the recorded k-th 0x2F07); unasked reports go out at
// their recorded times from the connection's start.
//
// Where the new session departs from the recorded one, a line on standard
// error says so ("qrx-sim: replay: ..."): a request out of the recorded
// order (the first time), a payload other than the recorded one (once per
// code), a code the recording never asked (once per code; not answered), a
// code asked more often than recorded (once per code; its last answer
// repeats), and, when the host leaves, the recorded requests it never sent.
// The host's heartbeats (0x7266) are answered as recorded but never count
// as a departure: how many there are depends on how long the host stays.

#include "link/FrameCodec.h"
#include "sim/replay/ReplayScript.h"

#include <QHostAddress>
#include <QObject>
#include <QSet>
#include <QTcpServer>
#include <QTimer>

#include <functional>

class QTcpSocket;

namespace qrxsim::replay {

class ReplaySession : public QObject
{
public:
    using Say = std::function<void(const QString &)>;
    ReplaySession(QTcpSocket *socket, const Script &script, QString name, Say say, QObject *parent);

private:
    void onReadyRead();
    void onRequest(quint16 code, const QByteArray &payload);
    void checkOrder(quint16 code);
    void sendDueReports();
    void sendReportsUntil(qint64 offsetUs);
    void onDisconnected();
    void send(const Sent &frame);
    void depart(const QString &text);

    QTcpSocket *m_socket;
    const Script &m_script;
    const QString m_name;
    const Say m_say;
    qrx::FrameDecoder m_decoder;
    QHash<quint16, int> m_asked;  // per code: how often the new host asked
    QSet<quint16> m_toldOf;       // codes already reported as departing
    QVector<int> m_order;         // the recorded requests, heartbeats left out
    int m_orderAt = 0;
    bool m_orderLeft = false;
    int m_nextReport = 0;
    qint64 m_startMs = 0;
    QTimer m_reports;
};

class ReplayServer : public QObject
{
public:
    ReplayServer(Scripts scripts, ReplaySession::Say say);
    // Listens on port and on the file port; false when port cannot be
    // bound (the file port is optional: a line on standard error).
    bool listen(const QHostAddress &address, quint16 port);
    quint16 port() const { return m_main.serverPort(); }

private:
    void accept(QTcpServer &server, const QVector<Script> &scripts, int &count, const QString &kind);

    const Scripts m_scripts;
    const ReplaySession::Say m_say;
    QTcpServer m_main;
    QTcpServer m_files;
    int m_mainCount = 0;
    int m_fileCount = 0;
};

} // namespace qrxsim::replay
