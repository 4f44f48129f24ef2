#pragma once
// What the simulator saw, readable from any thread: every frame received
// from any client, in order, and the number of connected clients. The
// simulator thread writes; test threads read and wait on it.

#include "sim/ReceivedFrame.h"

#include <QVector>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace qrxsim {

class Recorder
{
public:
    // Off: nothing more is kept (the stand-alone program runs for hours).
    void setEnabled(bool on);
    void append(ReceivedFrame frame);
    QVector<ReceivedFrame> frames() const;
    QVector<ReceivedFrame> frames(quint16 command) const;
    // The latest frame with that code; a default frame (atMs -1) when none.
    ReceivedFrame last(quint16 command) const;
    void clear();

    void setClientCount(int count);
    int clientCount() const;

    // Block until a frame with the code has been recorded (since the last
    // clear) or until the time runs out.
    bool waitForFrame(quint16 command, int timeoutMs) const;
    bool waitForClient(int timeoutMs) const;

private:
    bool waitUntil(const std::function<bool()> &done, int timeoutMs) const;
    bool hasFrameLocked(quint16 command) const;

    // Standard primitives: ThreadSanitizer sees their hand-overs (a test
    // thread waits for what the simulator's thread records).
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    QVector<ReceivedFrame> m_frames;
    int m_clients = 0;
    bool m_enabled = true;
};

} // namespace qrxsim
