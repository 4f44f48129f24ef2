// The host's wait policy: a bound for every request-and-wait call, the
// per-thread "ran out" answer, and matched replies. The settings and the
// reply counters are the controller's (controller/Controller.h).

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"

namespace qrx::api {

namespace {

thread_local bool t_lastCallTimedOut = false;
thread_local int t_scopedBoundMs = 0;

} // namespace

int waitBoundMs()
{
    if (t_scopedBoundMs > 0)
        return t_scopedBoundMs;
    const Controller *controller = currentController();
    return controller ? controller->waitBoundMs.load() : 0;
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
    const Controller *controller = currentController();
    return controller && controller->matchedReplies.load();
}

void beginMatchedWait()
{
    if (Controller *controller = currentController())
        ++controller->matchedWaits;
}

void endMatchedWait()
{
    if (Controller *controller = currentController())
        --controller->matchedWaits;
}

void setLastCallTimedOut(bool timedOut)
{
    t_lastCallTimedOut = timedOut;
}

quint64 replyCount(quint16 reply)
{
    const Controller *controller = currentController();
    return controller ? controller->replyCount(reply) : 0;
}

} // namespace qrx::api

using namespace qrx::api;

extern "C" {

void qrx_set_wait_timeout(int ms)
{
    QRX_CONTROLLER_OR_RETURN(controller);
    controller->waitBoundMs.store(ms > 0 ? ms : 0);
}

int qrx_wait_timeout(void)
{
    QRX_CONTROLLER_OR_RETURN(controller, 0);
    return controller->waitBoundMs.load();
}

int qrx_last_call_timed_out(void)
{
    return t_lastCallTimedOut ? 1 : 0;
}

void qrx_set_matched_replies(int on)
{
    QRX_CONTROLLER_OR_RETURN(controller);
    controller->matchedReplies.store(on != 0);
}

int qrx_matched_replies(void)
{
    QRX_CONTROLLER_OR_RETURN(controller, 0);
    return controller->matchedReplies.load() ? 1 : 0;
}

} // extern "C"
