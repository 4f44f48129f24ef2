// The host's wait policy: a bound for every request-and-wait call, the
// per-thread "ran out" answer, and matched replies with the counters they
// wait on.

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"
#include "link/DispatchTable.h"
#include "link/TcpConnectModule.h"

#include <QHash>
#include <QObject>

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace qrx::api {

namespace {

std::atomic<int> g_waitBoundMs{0};
std::atomic<bool> g_matchedReplies{false};
thread_local bool t_lastCallTimedOut = false;
thread_local int t_scopedBoundMs = 0;
std::atomic<int> g_matchedWaits{0};

// Replies taken per code, for one Robot; guarded by its replyMutex.
using ReplyCounts = QHash<quint16, quint64>;

std::mutex g_countsMutex;
std::unordered_map<const Robot *, std::shared_ptr<ReplyCounts>> g_counts;

std::shared_ptr<ReplyCounts> countsOf(const Robot *robot)
{
    std::lock_guard<std::mutex> lock(g_countsMutex);
    const auto found = g_counts.find(robot);
    return found == g_counts.end() ? nullptr : found->second;
}

// Counts one reply and, while a matched wait runs, wakes the waiters, so
// that a wait that the Robot's own handler woke before this count sees it.
void countReply(Robot *robot, ReplyCounts &counts, quint16 code)
{
    std::lock_guard<std::mutex> lock(robot->replyMutex);
    ++counts[code];
    if (g_matchedWaits.load() > 0)
        robot->replyCondition.notify_all();
}

} // namespace

int waitBoundMs()
{
    return t_scopedBoundMs > 0 ? t_scopedBoundMs : g_waitBoundMs.load();
}

ScopedWaitBound::ScopedWaitBound(int ms)
    : m_previous(t_scopedBoundMs)
{
    t_scopedBoundMs = ms > 0 ? ms : 1;
}

ScopedWaitBound::~ScopedWaitBound()
{
    t_scopedBoundMs = m_previous;
}

bool matchedReplies()
{
    return g_matchedReplies.load();
}

void beginMatchedWait()
{
    ++g_matchedWaits;
}

void endMatchedWait()
{
    --g_matchedWaits;
}

void setLastCallTimedOut(bool timedOut)
{
    t_lastCallTimedOut = timedOut;
}

quint64 replyCount(const Robot *robot, quint16 reply)
{
    const auto counts = countsOf(robot);
    return counts ? counts->value(reply) : 0;
}

void attachReplyCounters(Robot *robot)
{
    auto counts = std::make_shared<ReplyCounts>();
    {
        std::lock_guard<std::mutex> lock(g_countsMutex);
        if (!g_counts.emplace(robot, counts).second)
            return;
    }
    QObject::connect(robot, &QObject::destroyed, [robot] {
        std::lock_guard<std::mutex> lock(g_countsMutex);
        g_counts.erase(robot);
    });
    // The Robot's handlers were wired first, so each count follows the
    // handler that filled the cache.
    TcpConnectModule *link = robot->link();
    for (const quint16 code : answeringReplyCodes()) {
        const DispatchRow *row = findDispatchRow(code);
        const bool payloadSignal = row && row->notification &&
                                   (row->delivery == protocol::Delivery::Forward ||
                                    row->delivery == protocol::Delivery::ForwardIfJson);
        if (payloadSignal) {
            QObject::connect(
                link, row->notification, robot, [robot, counts, code](const QByteArray &) { countReply(robot, *counts, code); },
                Qt::DirectConnection);
        } else if (!row) {
            QObject::connect(
                link, &LinkNotifications::receivedData, robot,
                [robot, counts, code](quint16 command, const QByteArray &) {
                    if (command == code)
                        countReply(robot, *counts, code);
                },
                Qt::DirectConnection);
        }
    }
}

} // namespace qrx::api

using namespace qrx::api;

extern "C" {

void qrx_set_wait_timeout(int ms)
{
    g_waitBoundMs.store(ms > 0 ? ms : 0);
}

int qrx_wait_timeout(void)
{
    return g_waitBoundMs.load();
}

int qrx_last_call_timed_out(void)
{
    return t_lastCallTimedOut ? 1 : 0;
}

void qrx_set_matched_replies(int on)
{
    g_matchedReplies.store(on != 0);
}

int qrx_matched_replies(void)
{
    return g_matchedReplies.load() ? 1 : 0;
}

} // extern "C"
