#pragma once
// The bridge: the controllers of a cell on one MQTT session. States go out
// retained when they change, at most --rate times a second per controller;
// messages go out as alarms; commands come in per controller, are checked,
// and wait in the controller's own bounded queue.

#include "ControllerLink.h"
#include "MqttSession.h"
#include "Options.h"
#include "Topics.h"
#include "WorkQueue.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace qrxbridge {

class Bridge
{
public:
    Bridge(const Options &options, const std::string &password);
    ~Bridge();

    // Starts the session and the controllers; false with the reason when
    // the MQTT settings cannot be used.
    bool start(std::string &error);
    // Publishes states until stop(); calls tick about every 200 ms (the
    // service watchdog). Says goodbye ("offline") before it returns.
    void run(const std::function<void()> &tick);
    // From any thread.
    void stop();

private:
    struct Slot
    {
        std::unique_ptr<ControllerLink> link;
        std::unique_ptr<WorkQueue> queue;
        ControllerState published;
        bool everPublished = false;
        std::chrono::steady_clock::time_point publishedAt;
    };

    void connected();
    void request(const MqttRequest &request);
    void wake();
    // Publishes the states that changed and may go out now; returns when the
    // next held-back one may.
    std::chrono::steady_clock::time_point publishStates();

    const Options m_options;
    const Topics m_topics;
    const std::chrono::steady_clock::duration m_period;
    MqttSession m_session;
    std::vector<std::unique_ptr<Slot>> m_slots;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    bool m_changed = false;
    bool m_republish = false; // after each connection to the broker
};

} // namespace qrxbridge
