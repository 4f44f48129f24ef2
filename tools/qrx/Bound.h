#pragma once
// The bound on every wait. The library's getters wait for the controller
// without a time-out by default. When the library offers its opt-in wait
// bound and matched replies (the qrx_set_wait_timeout extension), qrx turns
// both on and a getter returns by itself after --timeout, saying so.
// Otherwise each getter runs on a thread of its own and qrx gives up after
// --timeout; that thread stays blocked and the process ends with "timed
// out" (main() leaves with _Exit, so nothing waits for it).
//
// This is the one place that knows how a wait is bounded.

#include "Exit.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace qrxcli {

// The bound of every wait, from --timeout.
void setWaitBound(std::chrono::milliseconds bound);
std::chrono::milliseconds waitBound();

// Runs work; false when it did not return within the bound. work must own
// everything it touches (it may outlive the caller's frame).
bool runBounded(std::function<void()> work, std::chrono::milliseconds bound);

// True when the library bounds its own waits and matches replies.
bool libraryBoundsWaits();
// After a call on this thread: whether the library's bound ran out.
bool libraryCallTimedOut();

// Runs call within the wait bound and returns its result; throws a
// Failure "timed out waiting for <what>" when the bound runs out.
template <class T>
T bounded(const std::string &what, std::function<T()> call)
{
    if (libraryBoundsWaits()) {
        const T value = call();
        if (libraryCallTimedOut())
            fail(ExitTimedOut, "timed out waiting for " + what);
        return value;
    }
    auto result = std::make_shared<T>();
    if (!runBounded([result, call] { *result = call(); }, waitBound()))
        fail(ExitTimedOut, "timed out waiting for " + what);
    return *result;
}

// Without matched replies a getter's wait ends on the controller's next
// reply of any kind, which may answer an earlier query: the value of a first
// call can be stale. The second of two equal queries is answered no earlier
// than the first one's own reply, so its value is fresh. With matched
// replies one call does.
template <class T>
T answered(const std::string &what, std::function<T()> call)
{
    if (!libraryBoundsWaits())
        bounded<T>(what, call);
    return bounded<T>(what, call);
}

inline void boundedCall(const std::string &what, std::function<void()> call)
{
    bounded<int>(what, [call] {
        call();
        return 0;
    });
}

} // namespace qrxcli
