#include "Bound.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace qrxcli {

namespace {

std::chrono::milliseconds g_bound{5000};

struct Completion
{
    std::mutex mutex;
    std::condition_variable done;
    bool finished = false;
};

} // namespace

void setWaitBound(std::chrono::milliseconds bound)
{
    g_bound = bound;
}

std::chrono::milliseconds waitBound()
{
    return g_bound;
}

bool runBounded(std::function<void()> work, std::chrono::milliseconds bound)
{
    auto completion = std::make_shared<Completion>();
    std::thread([completion, work = std::move(work)] {
        work();
        std::lock_guard<std::mutex> lock(completion->mutex);
        completion->finished = true;
        completion->done.notify_all();
    }).detach();
    std::unique_lock<std::mutex> lock(completion->mutex);
    return completion->done.wait_for(lock, bound, [&] { return completion->finished; });
}

} // namespace qrxcli
