#pragma once
// What the host API's extensions (the qrx_ functions) share with the rest of
// the API: the wait policy that requestAndWait() follows.
//
// With nothing set the policy is the plain request-and-wait: no bound, any
// waking reply ends the wait.

#include <QtGlobal>

#include <string>

#include "controller/LinkHooks.h"

class Robot;

namespace qrx::controller {
class Controller;
}

namespace qrx::api {

using qrx::replyCodeFor;

// The bound of the calling thread's request-and-wait calls, in ms (0:
// none): the host's bound for every call unless a ScopedWaitBound is active.
int waitBoundMs();

// Bounds the calling thread's request-and-wait calls while it lives (ms,
// at least 1), whatever the host's own bound is.
class ScopedWaitBound
{
public:
    explicit ScopedWaitBound(int ms);
    ~ScopedWaitBound();
    ScopedWaitBound(const ScopedWaitBound &) = delete;
    ScopedWaitBound &operator=(const ScopedWaitBound &) = delete;

private:
    int m_previous;
};

// Whether a getter's wait ends only on the reply that answers its query.
bool matchedReplies();

// How many replies of that code the current controller's Robot has taken
// so far. Read and counted under the Robot's replyMutex; codes outside the
// catalogue's request/reply pairs stay 0.
quint64 replyCount(quint16 reply);

// Brackets a wait for a matched reply. Only while one runs does a counted
// reply wake the waiters itself: without one, the threads waiting see
// exactly the wakes of the Robot's handlers. Called under the replyMutex.
void beginMatchedWait();
void endMatchedWait();

// Records how the calling thread's last request-and-wait call ended.
void setLastCallTimedOut(bool timedOut);

// Copies UTF-8 text into a caller's buffer[size]: at most size-1 bytes,
// never cutting a character, and a NUL; nothing for a null buffer or size
// 0. Returns the length of the whole text in bytes.
int copyText(const std::string &text, char *buffer, int size);

// The steps of connect_robot(), checking the connection polls times,
// pollMs apart, before it gives up (Connection.cpp); port 0 is the
// controller's (Robot::linkPort()).
int connectPolling(const char *ip, int polls, int pollMs, quint16 port = 0);
// connect_robot() itself on a port (0: the controller's).
int connectRobot(const char *ip, quint16 port);

// Watches the Robot's link for the controller's refusals of commands, kept
// by its controller (ExtensionsRefusal.cpp); forgets those kept before.
void attachRefusals(controller::Controller &controller, Robot *robot);

} // namespace qrx::api
