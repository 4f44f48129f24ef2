#pragma once
// A host thread of a test: runs one call of the library and says when it
// returned. done() reads an atomic the thread sets after the call, so what
// the call wrote is visible once done() is true (to ThreadSanitizer too,
// which cannot see the order QThread::isFinished() gives). The destructor
// joins: declare a HostThread after the results its call writes.

#include <atomic>
#include <chrono>
#include <thread>

class HostThread
{
public:
    HostThread() = default;
    HostThread(const HostThread &) = delete;
    HostThread &operator=(const HostThread &) = delete;
    ~HostThread()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    template <class Call>
    void start(Call call)
    {
        m_thread = std::thread([this, call] {
            call();
            m_done.store(true);
        });
    }
    bool started() const { return m_thread.joinable(); }
    bool done() const { return m_done.load(); }
    // True once the call returned; false when ms ran out first.
    bool waitDone(int ms) const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
        while (!done() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return done();
    }

private:
    std::atomic<bool> m_done{false};
    std::thread m_thread;
};
