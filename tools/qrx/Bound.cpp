#include "Bound.h"

#include "qrx_host.h"

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

// The wait-bound extension came with the link-event extension; its
// constants tell whether this library has them.
#ifdef QRX_LINK_UP
constexpr bool kLibraryBound = true;
#else
constexpr bool kLibraryBound = false;
#endif

void setWaitBound(std::chrono::milliseconds bound)
{
    g_bound = bound;
#ifdef QRX_LINK_UP
    qrx_set_wait_timeout(int(bound.count()));
    qrx_set_matched_replies(1);
#endif
}

bool libraryBoundsWaits()
{
    return kLibraryBound;
}

bool libraryCallTimedOut()
{
#ifdef QRX_LINK_UP
    return qrx_last_call_timed_out() != 0;
#else
    return false;
#endif
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
