#pragma once
// The library's shared I/O threads: a small fixed set of threads, each
// running an event loop, that serve the links of many controllers (the
// handles of the qrxc_ API), so that threads do not grow with the number of
// controllers. Started on first use, they run until the process ends.

#include <functional>

class QThread;

namespace qrx {

// How many there are.
constexpr int kIoThreads = 4;

// The thread the next link is served by (they take turns).
QThread *sharedIoThread();

// Whether the calling thread is one of them. Code that runs there never
// spins an event loop of its own: the loop would run the other links'
// work, their tear-down included, in the middle of its caller.
bool onSharedIoThread();

// A thread of its own for one link (the default controller's), that runs
// body when started. Finished ones are kept and given again, never
// destroyed: destroying a thread object on a thread, once the host thread
// Qt took for its main thread has ended, makes Qt forget the destroying
// thread's event data (the library's application thread then runs nothing
// posted to it any more).
QThread *takeLinkThread(std::function<void()> body);
// Gives back a thread taken, once it has finished.
void giveBackLinkThread(QThread *thread);

} // namespace qrx
