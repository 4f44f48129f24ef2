#pragma once
// One controller's commands, run one after another on a thread of their own
// so that a controller that does not answer holds up nobody else. At most
// `limit` wait; a further one is refused at once (the caller answers
// "busy"). Between commands, and while none waits, the thread runs the idle
// work it was given (opening the link) every `idlePeriod`.

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace qrxbridge {

class WorkQueue
{
public:
    using Work = std::function<void()>;

    WorkQueue(std::size_t limit, Work idle, std::chrono::milliseconds idlePeriod);
    ~WorkQueue(); // finishes the running work, drops the waiting ones
    WorkQueue(const WorkQueue &) = delete;
    WorkQueue &operator=(const WorkQueue &) = delete;

    // false when `limit` works already wait.
    bool push(Work work);

private:
    void run();

    const std::size_t m_limit;
    const Work m_idle;
    const std::chrono::milliseconds m_idlePeriod;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Work> m_waiting;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace qrxbridge
