#include "link/SessionRecorder.h"

#include "common/Logging.h"
#include "link/FrameCodec.h"

#include <QAbstractSocket>
#include <QFile>
#include <QHostAddress>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace qrx {

namespace {

// How long the writer lets frames gather before it writes and flushes them:
// the most a crash can lose.
constexpr std::chrono::milliseconds kBatchPeriod{2};

qint64 nowUs()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// The two ends of the socket a thread last recorded a frame of: a link
// thread records many frames of one socket in a row. A socket is known by
// its address and its two ports (a new socket at a freed address has new
// ports).
struct Ends
{
    const QAbstractSocket *socket = nullptr;
    pcap::Endpoint host;
    pcap::Endpoint controller;
};

const Ends &endsOf(const QAbstractSocket &socket)
{
    thread_local Ends ends;
    const quint16 local = socket.localPort();
    const quint16 peer = socket.peerPort();
    if (ends.socket != &socket || ends.host.port != local || ends.controller.port != peer)
        ends = {&socket, SessionRecorder::endpoint(socket.localAddress(), local),
                SessionRecorder::endpoint(socket.peerAddress(), peer)};
    return ends;
}

// The recorders that exist; the hooks walk them only while one runs.
struct Registry
{
    std::mutex mutex;
    std::vector<SessionRecorder *> recorders;
};

Registry &registry()
{
    // Never destroyed: the recorder of a handle a host left open ends while
    // the process exits, after the statics made later than the handle.
    static Registry *const all = new Registry;
    return *all;
}

} // namespace

std::atomic<int> SessionRecorder::s_running{0};

SessionRecorder &SessionRecorder::processWide()
{
    static SessionRecorder &recorder = []() -> SessionRecorder & {
        static SessionRecorder all(Filter{});
        const QString path = QString::fromLocal8Bit(qgetenv("QRX_RECORD"));
        if (!path.isEmpty())
            all.start(path);
        return all;
    }();
    return recorder;
}

SessionRecorder::SessionRecorder(Filter filter)
    : m_filter(filter)
{
    Registry &all = registry();
    std::lock_guard<std::mutex> lock(all.mutex);
    all.recorders.push_back(this);
}

SessionRecorder::~SessionRecorder()
{
    {
        // Once out of the registry, no socket thread reaches this recorder.
        Registry &all = registry();
        std::lock_guard<std::mutex> lock(all.mutex);
        all.recorders.erase(std::find(all.recorders.begin(), all.recorders.end(), this));
    }
    stop();
}

void SessionRecorder::setOn(bool on)
{
    if (m_on.exchange(on) != on)
        s_running.fetch_add(on ? 1 : -1);
}

bool SessionRecorder::start(const QString &path)
{
    std::lock_guard<std::mutex> control(m_control);
    stopLocked();
    std::FILE *file = std::fopen(QFile::encodeName(path).constData(), "wb");
    if (!file) {
        qCWarning(lcRecord, "cannot record into %s: %s", qPrintable(path), std::strerror(errno));
        return false;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_file = file;
    m_path = path;
    m_packets = pcap::Writer();
    m_stopping = false;
    const QByteArray header = pcap::Writer::fileHeader();
    m_queue.clear();
    m_writer = std::thread([this, header] {
        if (std::fwrite(header.constData(), 1, size_t(header.size()), m_file) != size_t(header.size())) {
            fail("write");
            return;
        }
        writeLoop();
    });
    setOn(true);
    return true;
}

void SessionRecorder::stop()
{
    std::lock_guard<std::mutex> control(m_control);
    stopLocked();
}

void SessionRecorder::stopLocked()
{
    setOn(false);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    if (m_writer.joinable())
        m_writer.join();
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file)
        std::fclose(m_file);
    m_file = nullptr;
    m_queue.clear();
}

void SessionRecorder::sentToAll(const QAbstractSocket &socket, const QByteArray &frame)
{
    // A write queued from another thread may find the socket closed: then
    // nothing goes on the wire.
    if (socket.state() == QAbstractSocket::ConnectedState)
        toAll(socket, pcap::Sender::Host, 0, frame);
}

void SessionRecorder::sentToAll(pcap::Endpoint host, pcap::Endpoint controller, const QByteArray &frame)
{
    toAll(host, controller, pcap::Sender::Host, 0, frame);
}

pcap::Endpoint SessionRecorder::endpoint(const QHostAddress &address, quint16 port)
{
    bool ok = false;
    const quint32 ipv4 = address.toIPv4Address(&ok);
    return {ok ? ipv4 : 0, port};
}

void SessionRecorder::receivedByAll(const QAbstractSocket &socket, quint16 command, const QByteArray &payload)
{
    toAll(socket, pcap::Sender::Controller, command, payload);
}

void SessionRecorder::toAll(const QAbstractSocket &socket, pcap::Sender sender, quint16 command,
                            const QByteArray &bytes)
{
    const Ends &ends = endsOf(socket);
    toAll(ends.host, ends.controller, sender, command, bytes);
}

void SessionRecorder::toAll(pcap::Endpoint host, pcap::Endpoint controller, pcap::Sender sender, quint16 command,
                            const QByteArray &bytes)
{
    Registry &all = registry();
    std::lock_guard<std::mutex> lock(all.mutex);
    for (SessionRecorder *recorder : all.recorders) {
        if (recorder->isOn() && recorder->m_filter.takes(controller))
            recorder->append(sender, command, host, controller, bytes);
    }
}

void SessionRecorder::append(pcap::Sender sender, quint16 command, pcap::Endpoint host, pcap::Endpoint controller,
                             const QByteArray &bytes)
{
    Entry entry{0, sender, command, host, controller, bytes};
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_stopping || !m_file)
        return;
    // Stamped under the lock: the queue is in time order.
    entry.timeUs = nowUs();
    m_queue.push_back(std::move(entry));
}

void SessionRecorder::writeLoop()
{
    std::vector<Entry> batch;
    for (;;) {
        bool stopping;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_wake.wait_for(lock, kBatchPeriod, [this] { return m_stopping; });
            batch.swap(m_queue);
            stopping = m_stopping;
        }
        if (!writeBatch(batch) || stopping)
            return;
        batch.clear();
    }
}

bool SessionRecorder::writeBatch(std::vector<Entry> &batch)
{
    QByteArray out;
    for (const Entry &entry : batch) {
        const QByteArray wire =
            entry.sender == pcap::Sender::Host ? entry.bytes : encodeFrame(entry.command, entry.bytes);
        out += m_packets.frame(entry.timeUs, entry.sender, entry.host, entry.controller, wire);
    }
    if (!out.isEmpty() && std::fwrite(out.constData(), 1, size_t(out.size()), m_file) != size_t(out.size())) {
        fail("write");
        return false;
    }
    if (std::fflush(m_file) != 0) {
        fail("flush");
        return false;
    }
    return true;
}

void SessionRecorder::fail(const char *what)
{
    const int error = errno;
    setOn(false);
    QString path;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true; // nothing more is queued until the next start
        m_queue.clear();
        path = m_path;
    }
    // Outside the lock: a message handler may send (and so record) a frame.
    qCWarning(lcRecord, "recording stopped: cannot %s %s: %s", what, qPrintable(path), std::strerror(error));
}

} // namespace qrx
