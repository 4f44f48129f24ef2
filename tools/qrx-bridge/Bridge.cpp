#include "Bridge.h"

#include "BridgeLogging.h"

namespace qrxbridge {

namespace {

using Clock = std::chrono::steady_clock;

// States are read this often even without a report, so that nothing is
// missed and a lost link shows well within 10 s.
constexpr std::chrono::milliseconds kPoll{200};
constexpr std::chrono::milliseconds kOpenCheck{1000}; // ControllerLink::open paces its attempts

MqttSettings settingsOf(const Options &o, const std::string &password, const Topics &topics)
{
    MqttSettings s;
    s.host = o.brokerHost;
    s.port = o.effectiveBrokerPort();
    s.clientId = "qrx-bridge-" + o.cell + '-' + o.id;
    s.username = o.username;
    s.password = password;
    s.tlsCa = o.tlsCa;
    s.willTopic = topics.bridge(o.id);
    s.willPayload = "offline";
    return s;
}

} // namespace

Bridge::Bridge(const Options &options, const std::string &password)
    : m_options(options), m_topics(options.cell),
      m_period(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / options.rate))),
      m_session(settingsOf(options, password, m_topics), [this] { connected(); },
                [this](const MqttRequest &r) { request(r); })
{
}

Bridge::~Bridge()
{
    // The session first (its goodbye goes out at once; answers after it are
    // dropped), then the work threads, then the links.
    m_session.stop();
    for (auto &slot : m_slots)
        slot->queue.reset();
    m_slots.clear();
}

bool Bridge::start(std::string &error)
{
    for (const auto &address : m_options.controllers) {
        auto slot = std::make_unique<Slot>();
        const std::string alarmTopic = m_topics.alarm(address.name);
        slot->link = std::make_unique<ControllerLink>(
            address, [this] { wake(); },
            [this, alarmTopic](int level, const std::string &text) {
                m_session.publish(alarmTopic, alarmJson(level, text, WallClock::now()), 1, false);
            });
        ControllerLink *link = slot->link.get();
        slot->queue = std::make_unique<WorkQueue>(std::size_t(m_options.queueLimit), [link] { link->open(); },
                                                  kOpenCheck);
        m_slots.push_back(std::move(slot));
    }
    return m_session.start(error);
}

void Bridge::connected()
{
    m_session.publish(m_topics.bridge(m_options.id), "online", 1, true);
    for (const auto &address : m_options.controllers)
        m_session.subscribe(m_topics.commands(address.name), 1);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_republish = true;
    }
    wake();
}

void Bridge::wake()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_changed = true;
    }
    m_wake.notify_one();
}

void Bridge::stop()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
}

void Bridge::request(const MqttRequest &r)
{
    std::string name, verb;
    if (!m_topics.parseCommand(r.topic, name, verb))
        return;
    if (r.responseTopic.empty()) {
        qCWarning(lcBridge, "a command on %s without a response topic is ignored", r.topic.c_str());
        return;
    }
    Slot *slot = nullptr;
    for (const auto &candidate : m_slots)
        if (candidate->link->address().name == name)
            slot = candidate.get();
    if (!slot)
        return; // not subscribed: cannot happen, and not ours to answer
    if (!m_options.allowCommands) {
        m_session.respond(r, errorAnswer("commands are not allowed on this bridge (it runs without --allow-commands)"));
        return;
    }
    if (r.retained) {
        m_session.respond(r, errorAnswer("a retained command is never run; publish commands without the retain flag"));
        return;
    }
    const CheckedCommand checked = checkCommand(verb, r.payload);
    if (!checked.error.empty()) {
        m_session.respond(r, errorAnswer(checked.error));
        return;
    }
    ControllerLink *link = slot->link.get();
    const Command command = checked.command;
    if (!slot->queue->push([this, link, r, command] { m_session.respond(r, link->execute(command)); }))
        m_session.respond(r, errorAnswer("busy: " + std::to_string(m_options.queueLimit)
                                         + " commands already wait for this controller"));
}

Clock::time_point Bridge::publishStates()
{
    bool republish = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        std::swap(republish, m_republish);
        m_changed = false;
    }
    const Clock::time_point now = Clock::now();
    Clock::time_point next = now + kPoll;
    if (!m_session.isConnected())
        return next; // all go out again on the next connection
    for (const auto &slot : m_slots) {
        const ControllerState state = slot->link->state();
        if (slot->everPublished && state == slot->published && !republish)
            continue;
        const Clock::time_point allowed = slot->publishedAt + m_period;
        if (slot->everPublished && now < allowed && !republish) {
            next = std::min(next, allowed);
            continue;
        }
        if (m_session.publish(m_topics.state(slot->link->address().name), stateJson(state, WallClock::now()), 1,
                              true)) {
            slot->published = state;
            slot->everPublished = true;
            slot->publishedAt = now;
        }
    }
    return next;
}

void Bridge::run(const std::function<void()> &tick)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        lock.unlock();
        const Clock::time_point next = publishStates();
        tick();
        lock.lock();
        m_wake.wait_until(lock, next, [this] { return m_stopping || m_changed || m_republish; });
    }
    lock.unlock();
    m_session.publish(m_topics.bridge(m_options.id), "offline", 1, true);
}

} // namespace qrxbridge
