#include "WorkQueue.h"

namespace qrxbridge {

WorkQueue::WorkQueue(std::size_t limit, Work idle, std::chrono::milliseconds idlePeriod)
    : m_limit(limit), m_idle(std::move(idle)), m_idlePeriod(idlePeriod), m_thread([this] { run(); })
{
}

WorkQueue::~WorkQueue()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        m_waiting.clear();
    }
    m_wake.notify_all();
    m_thread.join();
}

bool WorkQueue::push(Work work)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stopping || m_waiting.size() >= m_limit)
            return false;
        m_waiting.push_back(std::move(work));
    }
    m_wake.notify_one();
    return true;
}

void WorkQueue::run()
{
    auto nextIdle = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        if (m_idle && std::chrono::steady_clock::now() >= nextIdle) {
            lock.unlock();
            m_idle();
            lock.lock();
            nextIdle = std::chrono::steady_clock::now() + m_idlePeriod;
            continue;
        }
        if (m_waiting.empty()) {
            if (m_idle)
                m_wake.wait_until(lock, nextIdle);
            else
                m_wake.wait(lock);
            continue;
        }
        Work work = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        work();
        lock.lock();
    }
}

} // namespace qrxbridge
