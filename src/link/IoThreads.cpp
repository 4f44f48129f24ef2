#include "link/IoThreads.h"

#include <QThread>

#include <array>
#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

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

class LinkThread : public QThread
{
public:
    std::function<void()> body;

protected:
    void run() override { body(); }
};

std::mutex g_linkThreadsMutex;
std::vector<LinkThread *> g_finishedLinkThreads;

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

QThread *takeLinkThread(std::function<void()> body)
{
    LinkThread *thread = nullptr;
    {
        std::lock_guard<std::mutex> lock(g_linkThreadsMutex);
        if (!g_finishedLinkThreads.empty()) {
            thread = g_finishedLinkThreads.back();
            g_finishedLinkThreads.pop_back();
        }
    }
    if (!thread) {
        thread = new LinkThread;
        thread->setObjectName(QStringLiteral("qrx link")); // its name in ps, gdb and /proc
    }
    thread->body = std::move(body);
    return thread;
}

void giveBackLinkThread(QThread *thread)
{
    auto *linkThread = static_cast<LinkThread *>(thread);
    linkThread->body = nullptr;
    std::lock_guard<std::mutex> lock(g_linkThreadsMutex);
    g_finishedLinkThreads.push_back(linkThread);
}

} // namespace qrx
