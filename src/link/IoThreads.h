#pragma once
// The library's shared I/O threads: a small fixed set of threads, each
// running an event loop, that serve the links of many controllers (the
// handles of the qrxc_ API), so that threads do not grow with the number of
// controllers. Started on first use, they run until the process ends.

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

} // namespace qrx
