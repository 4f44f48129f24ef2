#pragma once
// Records the frames of controller links and of their file connections,
// both directions, with their times, into a pcap file (link/PcapSession.h).
//
// A recorder takes every link (the process-wide one: processWide()) or the
// links of one controller (its address, its main port and the file
// connection's port 5000 there). The process-wide recorder is on when the
// environment variable QRX_RECORD names a file when the library first sends
// or receives a frame, or after start(path) (qrx_record()); a controller's
// is owned by its Controller (qrxc_record()). Recorders that run at the same
// time each get every frame they take.
//
// The socket's thread only stamps the frame and appends it to the queue of
// each recorder that takes it; a writer thread per recorder turns its queue
// into packets every few milliseconds and flushes the file after each
// batch, so a crash loses at most the last batch. A file that cannot be
// opened or written (a full disk) ends that recording with one warning
// ("qrx.record"); the link goes on as if nothing had been recorded.

#include "link/PcapSession.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

class QAbstractSocket;
class QHostAddress;

namespace qrx {

class SessionRecorder
{
public:
    // The links a recorder takes: all (address 0), or those whose far end is
    // address:port or address:5000.
    struct Filter
    {
        quint32 address = 0; // IPv4, host byte order
        quint16 port = 0;
        bool takes(const pcap::Endpoint &controller) const
        {
            return address == 0 ||
                   (controller.ipv4 == address && (controller.port == port || controller.port == pcap::kFilePort));
        }
    };

    // The recorder of every link, for the whole process.
    static SessionRecorder &processWide();
    // A recorder of the links filter takes; it records after start().
    explicit SessionRecorder(Filter filter);
    ~SessionRecorder();

    // Whether any recorder runs: one relaxed load (the hooks' only cost
    // while nothing records).
    static bool anyOn()
    {
        processWide(); // QRX_RECORD starts it on first use
        return s_running.load(std::memory_order_relaxed) > 0;
    }
    // The socket's thread: a frame as written, and a frame as decoded,
    // handed to every running recorder that takes the socket's link.
    static void sentToAll(const QAbstractSocket &socket, const QByteArray &frame);
    // Any thread: a frame as written on the link between host and controller.
    static void sentToAll(pcap::Endpoint host, pcap::Endpoint controller, const QByteArray &frame);
    // An end of a link as recorded (IPv4 only; other addresses read as 0).
    static pcap::Endpoint endpoint(const QHostAddress &address, quint16 port);
    static void receivedByAll(const QAbstractSocket &socket, quint16 command, const QByteArray &payload);

    bool isOn() const { return m_on.load(std::memory_order_relaxed); }
    // Ends a recording in progress (its frames written), then records into
    // path (created or truncated). False, with a warning, when the file
    // cannot be opened.
    bool start(const QString &path);
    // Writes what is queued and closes the file.
    void stop();

    SessionRecorder(const SessionRecorder &) = delete;
    SessionRecorder &operator=(const SessionRecorder &) = delete;

private:
    struct Entry
    {
        qint64 timeUs;
        pcap::Sender sender;
        quint16 command; // received frames: encoded by the writer
        pcap::Endpoint host;
        pcap::Endpoint controller;
        QByteArray bytes; // the frame (sent) or the payload (received)
    };
    static void toAll(const QAbstractSocket &socket, pcap::Sender sender, quint16 command, const QByteArray &bytes);
    static void toAll(pcap::Endpoint host, pcap::Endpoint controller, pcap::Sender sender, quint16 command,
                      const QByteArray &bytes);
    void stopLocked(); // m_control held
    void setOn(bool on);
    void append(pcap::Sender sender, quint16 command, pcap::Endpoint host, pcap::Endpoint controller,
                const QByteArray &bytes);
    void writeLoop();
    // Writer thread: false after a failed write (the recording has ended).
    bool writeBatch(std::vector<Entry> &batch);
    void fail(const char *what);

    static std::atomic<int> s_running; // recorders on

    const Filter m_filter;
    std::atomic<bool> m_on{false};
    std::mutex m_control; // one start or stop at a time
    std::mutex m_mutex;   // guards the members below
    std::condition_variable m_wake;
    std::vector<Entry> m_queue;
    bool m_stopping = false;
    std::FILE *m_file = nullptr;
    QString m_path;
    std::thread m_writer;
    pcap::Writer m_packets; // writer thread only (between start and stop)
};

// The hooks of the socket code: nothing but a relaxed load while no
// recording runs.
inline void recordSent(const QAbstractSocket &socket, const QByteArray &frame)
{
    if (SessionRecorder::anyOn())
        SessionRecorder::sentToAll(socket, frame);
}

inline void recordSent(pcap::Endpoint host, pcap::Endpoint controller, const QByteArray &frame)
{
    if (SessionRecorder::anyOn())
        SessionRecorder::sentToAll(host, controller, frame);
}

inline void recordReceived(const QAbstractSocket &socket, quint16 command, const QByteArray &payload)
{
    if (SessionRecorder::anyOn())
        SessionRecorder::receivedByAll(socket, command, payload);
}

} // namespace qrx
