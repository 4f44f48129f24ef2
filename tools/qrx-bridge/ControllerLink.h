#pragma once
// One controller as the bridge sees it, over the library's handle API: the
// link (opened, and opened again while the controller is absent), its
// state, its messages, and the commands sent to it. execute() runs on the
// controller's own work thread (WorkQueue) and may wait as long as the
// handle's wait bound.

#include "Command.h"
#include "Options.h"
#include "PublishedJson.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

struct qrx_controller;

namespace qrxbridge {

class ControllerLink
{
public:
    using StateChanged = std::function<void()>;
    using Message = std::function<void(int level, const std::string &text)>;

    ControllerLink(ControllerAddress address, StateChanged onState, Message onMessage);
    ~ControllerLink();
    ControllerLink(const ControllerLink &) = delete;
    ControllerLink &operator=(const ControllerLink &) = delete;

    const ControllerAddress &address() const { return m_address; }

    // Opens the link when it is not open yet (waits at most a few seconds);
    // after a failed attempt the next one waits 1 s, then 2, 4, ... 30 s.
    void open();
    // The last state the controller reported; link false until it is open.
    ControllerState state() const;
    // The answer to the command: {"ok":true,...} or {"ok":false,"error":...}.
    std::string execute(const Command &command);

private:
    static void stateChanged(qrx_controller *, void *self);
    static void message(qrx_controller *, int level, const char *text, void *self);

    const ControllerAddress m_address;
    const StateChanged m_onState;
    const Message m_onMessage;
    std::atomic<qrx_controller *> m_handle{nullptr};
    // Used by open() only, on the controller's work thread.
    std::chrono::steady_clock::time_point m_nextAttempt;
    std::chrono::seconds m_pause{1};
};

} // namespace qrxbridge
