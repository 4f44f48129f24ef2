#pragma once
// A controller that plays one fixed script of the file exchange, written from
// the controller's table of messages (file connection on port 5000, and the
// main-link messages that announce lists), not from the host's code.
//
// The script is a list of steps, each either a frame the host must send next
// (on the file connection or the main link) or something the controller does
// (send a frame on either, close the file connection). The peer runs the
// controller's steps as soon as the steps before them are done, and checks
// every frame the host sends against the next step: a frame that does not
// match, or that comes when the script expects none, is an error; so is any
// step left when the transfer has ended.
//
// An expected JSON payload lists the members the frame must carry, with their
// values ("{}" when the table leaves the keys to the host): the frame must be
// one compact JSON object followed by a line feed and hold at least those.
// An expected raw payload (file data, the empty 0x5525) must match byte for
// byte. A step may ask for a pause before the host's frame (the pause between
// the files of an upload). The peer serves its file port in a thread of its own; main-link
// frames come from the transfer's MainLink.send, and the controller's
// main-link notices go to the transfer's slots of the same names.

#include <QByteArray>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QMetaType>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QVector>

#include <memory>
#include <mutex>

class QTcpServer;
class QTcpSocket;

namespace testsupport {

struct Step
{
    enum Kind { HostSends, ControllerSends, ControllerCloses };
    enum Link { File, Main };
    Kind kind = HostSends;
    Link link = File;
    quint16 code = 0;
    QByteArray payload;
    bool raw = false; // payload is raw bytes rather than JSON
    int notBeforeMs = 0; // the host's frame comes at least this long after the step before

    // The host sends a JSON frame holding these members / these exact bytes.
    static Step host(Link link, quint16 code, const QByteArray &members) { return {HostSends, link, code, members, false}; }
    static Step hostRaw(quint16 code, const QByteArray &bytes) { return {HostSends, File, code, bytes, true}; }
    // The controller sends a JSON frame (a line feed is added) / raw bytes.
    static Step controller(Link link, quint16 code, const QByteArray &json) { return {ControllerSends, link, code, json + '\n', false}; }
    static Step controllerRaw(quint16 code, const QByteArray &bytes) { return {ControllerSends, File, code, bytes, true}; }
    static Step close() { return {ControllerCloses, File, 0, {}, false}; }
    Step after(int ms) const { Step later = *this; later.notBeforeMs = ms; return later; }
};
using Script = QVector<Step>;

class ScriptedPeer : public QObject
{
    Q_OBJECT
public:
    // Listens on address (any free port) in a thread of its own; the main
    // link's notices are queued to target's slots.
    ScriptedPeer(const QHostAddress &address, Script script, QObject *target);
    ~ScriptedPeer() override;
    quint16 port() const { return m_port; }

    // The host's main link: thread-safe, called by MainLink.send.
    bool fromHostMain(quint16 code, const QByteArray &payload);

    // After the transfer returned: waits (bounded) for the host to close the
    // file connection it opened, then reports every error and unused step.
    QStringList verdict();
    int connections() const;

private:
    void start();
    void advance();
    void onHostFrame(Step::Link link, quint16 code, const QByteArray &payload);
    void onReadyRead();
    QString describe(const Step &step) const;
    void error(const QString &text);

    QThread m_thread;
    QHostAddress m_address;
    quint16 m_port = 0;
    QObject *m_target;
    Script m_script;
    int m_next = 0;                 // the peer thread's
    QElapsedTimer m_stepDone;       // since the step before m_next ended
    QTcpServer *m_server = nullptr; // the peer thread's
    QTcpSocket *m_socket = nullptr; // the peer thread's: the file connection
    QByteArray m_buffer;
    mutable std::mutex m_mutex;     // guards the fields below
    QStringList m_errors;
    int m_connections = 0;
    bool m_open = false;            // the file connection is up
};

} // namespace testsupport

Q_DECLARE_METATYPE(testsupport::Script)
