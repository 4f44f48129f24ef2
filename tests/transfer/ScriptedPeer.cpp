#include "ScriptedPeer.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>

#include <zlib.h>

namespace testsupport {

namespace {

// The frame as the controller writes it: "Nf", length and code big-endian,
// the payload, then the CRC-32 of length, code and payload, big-endian.
quint32 crcOf(const QByteArray &bytes)
{
    return quint32(crc32(0L, reinterpret_cast<const Bytef *>(bytes.constData()), uInt(bytes.size())));
}

QByteArray frameOf(quint16 code, const QByteArray &payload)
{
    QByteArray body;
    body.append(char(payload.size() >> 8)).append(char(payload.size() & 0xFF));
    body.append(char(code >> 8)).append(char(code & 0xFF)).append(payload);
    const quint32 crc = crcOf(body);
    QByteArray frame("Nf");
    frame.append(body);
    for (int shift = 24; shift >= 0; shift -= 8)
        frame.append(char((crc >> shift) & 0xFF));
    return frame;
}

// The slots of the host's transfer that take the main link's file notices.
const char *slotFor(quint16 code)
{
    switch (code) {
    case 0x5533: return "recvJobFileSumList";
    case 0x5534: return "recvJobFileList";
    case 0x5535: return "recvJobFileInfoFinish";
    case 0x5543: return "recvControlLogList";
    case 0x5546: return "recvControlENIList";
    default: return nullptr;
    }
}

// payload is one JSON object followed by one line feed, and holds every
// member of expected with the same value.
bool holdsMembers(const QByteArray &payload, const QByteArray &expected)
{
    if (!payload.endsWith('\n') || payload.count('\n') != 1)
        return false;
    const QJsonDocument actual = QJsonDocument::fromJson(payload);
    if (!actual.isObject())
        return false;
    const QJsonObject object = actual.object();
    const QJsonObject members = QJsonDocument::fromJson(expected).object();
    for (auto it = members.begin(); it != members.end(); ++it) {
        if (object.value(it.key()) != it.value())
            return false;
    }
    return true;
}

QString shown(Step::Link link, quint16 code, const QByteArray &payload, bool raw)
{
    const bool text = !raw && !payload.isEmpty() && payload.size() < 200;
    return QStringLiteral("%1 0x%2 %3")
        .arg(link == Step::File ? QStringLiteral("file") : QStringLiteral("main"))
        .arg(code, 0, 16)
        .arg(text ? QString::fromUtf8(payload).trimmed() : QStringLiteral("(%1 bytes)").arg(payload.size()));
}

} // namespace

ScriptedPeer::ScriptedPeer(const QHostAddress &address, Script script, QObject *target)
    : m_address(address), m_target(target), m_script(std::move(script))
{
    moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(this, [this] { start(); }, Qt::BlockingQueuedConnection);
}

ScriptedPeer::~ScriptedPeer()
{
    QMetaObject::invokeMethod(this, [this] {
        delete m_socket;
        delete m_server;
        m_socket = nullptr;
        m_server = nullptr;
    }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void ScriptedPeer::start()
{
    m_server = new QTcpServer;
    if (!m_server->listen(m_address, 0))
        error(QStringLiteral("cannot listen on %1").arg(m_address.toString()));
    m_port = m_server->serverPort();
    connect(m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server->nextPendingConnection()) {
            std::lock_guard<std::mutex> lock(m_mutex);
            ++m_connections;
            if (m_socket) {
                m_errors << QStringLiteral("a second file connection");
                socket->deleteLater();
                continue;
            }
            m_socket = socket;
            m_open = true;
            connect(socket, &QIODevice::readyRead, this, &ScriptedPeer::onReadyRead);
            connect(socket, &QAbstractSocket::disconnected, this, [this] {
                std::lock_guard<std::mutex> lock(m_mutex);
                m_open = false;
            });
        }
        advance();
    });
    advance();
}

bool ScriptedPeer::fromHostMain(quint16 code, const QByteArray &payload)
{
    QMetaObject::invokeMethod(this, [=] { onHostFrame(Step::Main, code, payload); }, Qt::QueuedConnection);
    return true;
}

// Runs the controller's steps up to the next frame expected of the host.
void ScriptedPeer::advance()
{
    while (m_next < m_script.size() && m_script.at(m_next).kind != Step::HostSends) {
        const Step &step = m_script.at(m_next);
        if (step.link == Step::File && !m_socket)
            return; // the host has not connected yet
        if (step.kind == Step::ControllerCloses) {
            m_socket->abort();
            std::lock_guard<std::mutex> lock(m_mutex);
            m_open = false;
        } else if (step.link == Step::File) {
            m_socket->write(frameOf(step.code, step.payload));
        } else if (const char *slot = slotFor(step.code)) {
            if (step.code == 0x5535)
                QMetaObject::invokeMethod(m_target, slot, Qt::QueuedConnection);
            else
                QMetaObject::invokeMethod(m_target, slot, Qt::QueuedConnection, Q_ARG(QByteArray, step.payload));
        } else {
            error(QStringLiteral("the script sends 0x%1 on the main link, which has no slot").arg(step.code, 0, 16));
        }
        ++m_next;
        m_stepDone.start();
    }
}

void ScriptedPeer::onReadyRead()
{
    m_buffer += m_socket->readAll();
    while (m_buffer.size() >= 10) {
        if (!m_buffer.startsWith("Nf")) {
            error(QStringLiteral("bytes that are no frame: %1").arg(QString::fromLatin1(m_buffer.left(16).toHex())));
            m_buffer.clear();
            return;
        }
        const int length = (quint8(m_buffer[2]) << 8) | quint8(m_buffer[3]);
        if (m_buffer.size() < length + 10)
            return;
        const quint16 code = quint16((quint8(m_buffer[4]) << 8) | quint8(m_buffer[5]));
        const QByteArray payload = m_buffer.mid(6, length);
        quint32 crc = 0;
        for (int i = 0; i < 4; ++i)
            crc = (crc << 8) | quint8(m_buffer[6 + length + i]);
        if (crc != crcOf(m_buffer.mid(2, length + 4)))
            error(QStringLiteral("0x%1 with a wrong CRC").arg(code, 0, 16));
        m_buffer.remove(0, length + 10);
        onHostFrame(Step::File, code, payload);
    }
}

void ScriptedPeer::onHostFrame(Step::Link link, quint16 code, const QByteArray &payload)
{
    const bool json = payload.startsWith('{') && payload.endsWith('\n');
    const QString got = shown(link, code, payload, !json);
    if (m_next >= m_script.size() || m_script.at(m_next).kind != Step::HostSends) {
        error(QStringLiteral("unexpected %1 (the script is at its end)").arg(got));
        return;
    }
    const Step &step = m_script.at(m_next);
    const bool same = step.link == link && step.code == code
        && (step.raw ? payload == step.payload : holdsMembers(payload, step.payload));
    if (!same) {
        error(QStringLiteral("step %1: expected %2, got %3").arg(m_next).arg(describe(step), got));
        m_next = m_script.size(); // one mismatch is enough: the rest would only echo it
        return;
    }
    if (step.notBeforeMs > 0 && m_stepDone.elapsed() < step.notBeforeMs)
        error(QStringLiteral("step %1 came after %2 ms, not %3").arg(m_next).arg(m_stepDone.elapsed()).arg(step.notBeforeMs));
    ++m_next;
    m_stepDone.start();
    advance();
}

QString ScriptedPeer::describe(const Step &step) const
{
    return shown(step.link, step.code, step.payload, step.raw);
}

void ScriptedPeer::error(const QString &text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_errors << text;
}

QStringList ScriptedPeer::verdict()
{
    // The transfer has returned, so every connection it made is established
    // and closed: the peer takes the connections still waiting in the kernel,
    // and has read what the host sent once it has seen the close. It waits
    // for that and for the script's end (bounded: a step the host never
    // sends ends the wait at the deadline).
    const QDeadlineTimer deadline(10000);
    bool settled = false;
    while (!settled && !deadline.hasExpired()) {
        QMetaObject::invokeMethod(this, [&] {
            m_server->waitForNewConnection(0); // hands a waiting one to newConnection
            std::lock_guard<std::mutex> lock(m_mutex);
            settled = !m_open && m_next >= m_script.size();
        }, Qt::BlockingQueuedConnection);
        if (!settled)
            QThread::msleep(5);
    }
    QStringList errors;
    QMetaObject::invokeMethod(this, [&] {
        if (m_next < m_script.size())
            error(QStringLiteral("step %1 left unused: %2").arg(m_next).arg(describe(m_script.at(m_next))));
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_open)
            m_errors << QStringLiteral("the host left the file connection open");
        errors = m_errors;
    }, Qt::BlockingQueuedConnection);
    return errors;
}

int ScriptedPeer::connections() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_connections;
}

} // namespace testsupport
