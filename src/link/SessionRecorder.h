#pragma once
// Records every frame of the controller link and of the file connections,
// both directions, with its time, into a pcap file (link/PcapSession.h).
//
// It is on when the environment variable QRX_RECORD names a file when the
// library first sends or receives a frame, or after start(path)
// (qrx_record()). The socket's thread only stamps the frame and appends it
// to a queue; a writer thread of its own turns the queue into packets every
// few milliseconds and flushes the file after each batch, so a crash loses
// at most the last batch. A file that cannot be opened or written (a full
// disk) ends the recording with one warning ("qrx.record"); the link goes
// on as if nothing had been recorded.

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

namespace qrx {

class SessionRecorder
{
public:
    static SessionRecorder &instance();

    bool isOn() const { return m_on.load(std::memory_order_relaxed); }
    // Ends a recording in progress (its frames written), then records into
    // path (created or truncated). False, with a warning, when the file
    // cannot be opened.
    bool start(const QString &path);
    // Writes what is queued and closes the file.
    void stop();

    // The socket's thread: a frame as written, and a frame as decoded.
    void sent(const QAbstractSocket &socket, const QByteArray &frame);
    void received(const QAbstractSocket &socket, quint16 command, const QByteArray &payload);

    SessionRecorder(const SessionRecorder &) = delete;
    SessionRecorder &operator=(const SessionRecorder &) = delete;

private:
    SessionRecorder();
    ~SessionRecorder();

    struct Entry
    {
        qint64 timeUs;
        pcap::Sender sender;
        quint16 command; // received frames: encoded by the writer
        pcap::Endpoint host;
        pcap::Endpoint controller;
        QByteArray bytes; // the frame (sent) or the payload (received)
    };
    void stopLocked(); // m_control held
    void append(const QAbstractSocket &socket, pcap::Sender sender, quint16 command, const QByteArray &bytes);
    void writeLoop();
    // Writer thread: false after a failed write (the recording has ended).
    bool writeBatch(std::vector<Entry> &batch);
    void fail(const char *what);

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
    SessionRecorder &recorder = SessionRecorder::instance();
    if (recorder.isOn())
        recorder.sent(socket, frame);
}

inline void recordReceived(const QAbstractSocket &socket, quint16 command, const QByteArray &payload)
{
    SessionRecorder &recorder = SessionRecorder::instance();
    if (recorder.isOn())
        recorder.received(socket, command, payload);
}

} // namespace qrx
