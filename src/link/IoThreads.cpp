#include "link/IoThreads.h"

#include <QThread>

#include <array>
#include <atomic>

namespace qrx {

namespace {

// Never destroyed: links may be served until the process ends.
std::array<QThread *, kIoThreads> &ioThreads()
{
    static std::array<QThread *, kIoThreads> *const threads = [] {
        auto *all = new std::array<QThread *, kIoThreads>();
        for (int i = 0; i < kIoThreads; ++i) {
            QThread *thread = new QThread;
            thread->setObjectName(QStringLiteral("qrx io %1").arg(i));
            thread->start();
            (*all)[std::size_t(i)] = thread;
        }
        return all;
    }();
    return *threads;
}

std::atomic<bool> g_started{false};

} // namespace

QThread *sharedIoThread()
{
    static std::atomic<unsigned> next{0};
    QThread *thread = ioThreads()[next++ % kIoThreads];
    g_started.store(true);
    return thread;
}

bool onSharedIoThread()
{
    if (!g_started.load())
        return false;
    const QThread *current = QThread::currentThread();
    for (const QThread *thread : ioThreads()) {
        if (thread == current)
            return true;
    }
    return false;
}

} // namespace qrx
