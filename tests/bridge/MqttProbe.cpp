#include "MqttProbe.h"

#include <atomic>
#include <mqtt_protocol.h>
#include <unistd.h>

namespace {

std::atomic<int> g_probes{0};

MqttProbe::Message toMessage(const mosquitto_message *m, const mosquitto_property *properties)
{
    MqttProbe::Message message;
    message.arrived = std::chrono::steady_clock::now();
    message.topic = m->topic;
    message.payload.assign(static_cast<const char *>(m->payload), std::size_t(m->payloadlen));
    message.retained = m->retain;
    void *bytes = nullptr;
    uint16_t length = 0;
    if (mosquitto_property_read_binary(properties, MQTT_PROP_CORRELATION_DATA, &bytes, &length, false)) {
        message.correlation.assign(static_cast<const char *>(bytes), length);
        free(bytes);
    }
    return message;
}

} // namespace

MqttProbe::MqttProbe(const std::string &host, int port, const std::string &user, const std::string &password)
{
    mosquitto_lib_init();
    const std::string id = "probe-" + std::to_string(getpid()) + '-' + std::to_string(++g_probes);
    m_responseTopic = "replies/" + id;
    m_mosq = mosquitto_new(id.c_str(), true, this);
    mosquitto_int_option(m_mosq, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(m_mosq, MOSQ_OPT_TCP_NODELAY, 1);
    if (!user.empty())
        mosquitto_username_pw_set(m_mosq, user.c_str(), password.c_str());
    mosquitto_connect_v5_callback_set(m_mosq, [](mosquitto *, void *self, int rc, int, const mosquitto_property *) {
        auto *p = static_cast<MqttProbe *>(self);
        std::lock_guard<std::mutex> lock(p->m_mutex);
        p->m_connack = rc;
        p->m_changed.notify_all();
    });
    mosquitto_subscribe_v5_callback_set(m_mosq, [](mosquitto *, void *self, int, int, const int *,
                                                   const mosquitto_property *) {
        auto *p = static_cast<MqttProbe *>(self);
        std::lock_guard<std::mutex> lock(p->m_mutex);
        ++p->m_subscribed;
        p->m_changed.notify_all();
    });
    mosquitto_publish_v5_callback_set(m_mosq, [](mosquitto *, void *self, int, int reason,
                                                 const mosquitto_property *) {
        auto *p = static_cast<MqttProbe *>(self);
        std::lock_guard<std::mutex> lock(p->m_mutex);
        p->m_puback = reason;
        p->m_changed.notify_all();
    });
    mosquitto_message_v5_callback_set(m_mosq, [](mosquitto *, void *self, const mosquitto_message *m,
                                                 const mosquitto_property *properties) {
        auto *p = static_cast<MqttProbe *>(self);
        std::lock_guard<std::mutex> lock(p->m_mutex);
        p->m_messages.push_back(toMessage(m, properties));
        p->m_changed.notify_all();
    });
    mosquitto_connect(m_mosq, host.c_str(), port, 30);
    mosquitto_loop_start(m_mosq);
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::seconds(10), [this] { return m_connack >= 0; });
    lock.unlock();
    if (m_connack == 0)
        subscribe(m_responseTopic);
}

MqttProbe::~MqttProbe()
{
    mosquitto_disconnect(m_mosq);
    mosquitto_loop_stop(m_mosq, true);
    mosquitto_destroy(m_mosq);
}

bool MqttProbe::subscribe(const std::string &filter)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const int before = m_subscribed;
    lock.unlock();
    if (mosquitto_subscribe_v5(m_mosq, nullptr, filter.c_str(), 1, 0, nullptr) != MOSQ_ERR_SUCCESS)
        return false;
    lock.lock();
    return m_changed.wait_for(lock, std::chrono::seconds(10), [&] { return m_subscribed > before; });
}

MqttProbe::Message MqttProbe::waitFor(const std::function<bool(const Message &)> &match,
                                      std::chrono::milliseconds timeout)
{
    Message found;
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, timeout, [&] {
        for (const Message &m : m_messages)
            if (match(m)) {
                found = m;
                return true;
            }
        return false;
    });
    return found;
}

MqttProbe::Message MqttProbe::waitOn(const std::string &topic, const std::string &contains,
                                     std::chrono::milliseconds timeout)
{
    return waitFor([&](const Message &m) { return m.topic == topic && m.payload.find(contains) != std::string::npos; },
                   timeout);
}

void MqttProbe::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_messages.clear();
}

std::vector<MqttProbe::Message> MqttProbe::messages()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_messages;
}

std::string MqttProbe::send(const std::string &topic, const std::string &payload, bool retain, bool withResponseTopic)
{
    std::string correlation;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        correlation = "c" + std::to_string(++m_nextCorrelation);
    }
    mosquitto_property *properties = nullptr;
    if (withResponseTopic)
        mosquitto_property_add_string(&properties, MQTT_PROP_RESPONSE_TOPIC, m_responseTopic.c_str());
    mosquitto_property_add_binary(&properties, MQTT_PROP_CORRELATION_DATA, correlation.data(),
                                  uint16_t(correlation.size()));
    mosquitto_publish_v5(m_mosq, nullptr, topic.c_str(), int(payload.size()), payload.data(), 1, retain, properties);
    mosquitto_property_free_all(&properties);
    return correlation;
}

std::string MqttProbe::request(const std::string &topic, const std::string &payload, std::chrono::milliseconds timeout,
                               bool retain)
{
    const std::string correlation = send(topic, payload, retain);
    return waitFor([&](const Message &m) { return m.topic == m_responseTopic && m.correlation == correlation; },
                   timeout)
        .payload;
}

int MqttProbe::publishAcked(const std::string &topic, const std::string &payload)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_puback = -1;
    lock.unlock();
    mosquitto_publish_v5(m_mosq, nullptr, topic.c_str(), int(payload.size()), payload.data(), 1, false, nullptr);
    lock.lock();
    m_changed.wait_for(lock, std::chrono::seconds(10), [this] { return m_puback >= 0; });
    return m_puback;
}
