#include "sim/Recorder.h"

#include <algorithm>
#include <chrono>

namespace qrxsim {

void Recorder::setEnabled(bool on)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_enabled = on;
}

void Recorder::append(ReceivedFrame frame)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_enabled)
        return;
    m_frames.append(std::move(frame));
    m_changed.notify_all();
}

QVector<ReceivedFrame> Recorder::frames() const
{
    // A copy of its own, not a shared one: Qt's check whether a vector is
    // shared is a relaxed read, so a shared copy read in one thread while
    // the list grows in another is a data race in the C++ sense.
    std::unique_lock<std::mutex> lock(m_mutex);
    return QVector<ReceivedFrame>(m_frames.cbegin(), m_frames.cend());
}

QVector<ReceivedFrame> Recorder::frames(quint16 command) const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    QVector<ReceivedFrame> out;
    std::copy_if(m_frames.cbegin(), m_frames.cend(), std::back_inserter(out),
                 [command](const ReceivedFrame &f) { return f.command == command; });
    return out;
}

ReceivedFrame Recorder::last(quint16 command) const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto it = std::find_if(m_frames.crbegin(), m_frames.crend(),
                                 [command](const ReceivedFrame &f) { return f.command == command; });
    return it == m_frames.crend() ? ReceivedFrame() : *it;
}

void Recorder::clear()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_frames.clear();
}

void Recorder::setClientCount(int count)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_clients = count;
    m_changed.notify_all();
}

int Recorder::clientCount() const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_clients;
}

bool Recorder::hasFrameLocked(quint16 command) const
{
    return std::any_of(m_frames.cbegin(), m_frames.cend(),
                       [command](const ReceivedFrame &f) { return f.command == command; });
}

bool Recorder::waitForFrame(quint16 command, int timeoutMs) const
{
    return waitUntil([this, command] { return hasFrameLocked(command); }, timeoutMs);
}

bool Recorder::waitForClient(int timeoutMs) const
{
    return waitUntil([this] { return m_clients > 0; }, timeoutMs);
}

bool Recorder::waitUntil(const std::function<bool()> &done, int timeoutMs) const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_until(lock, deadline, done);
}

} // namespace qrxsim
