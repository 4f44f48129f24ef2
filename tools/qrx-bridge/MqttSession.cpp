#include "MqttSession.h"

#include "BridgeLogging.h"

#include <mqtt_protocol.h>
#include <algorithm>
#include <mutex>

namespace qrxbridge {

namespace {

std::string propertyText(const mosquitto_property *properties, int identifier)
{
    char *value = nullptr;
    if (!mosquitto_property_read_string(properties, identifier, &value, false))
        return {};
    std::string text(value);
    free(value);
    return text;
}

std::string propertyBytes(const mosquitto_property *properties, int identifier)
{
    void *value = nullptr;
    uint16_t length = 0;
    if (!mosquitto_property_read_binary(properties, identifier, &value, &length, false))
        return {};
    std::string bytes(static_cast<const char *>(value), length);
    free(value);
    return bytes;
}

} // namespace

MqttSession::MqttSession(MqttSettings settings, Connected onConnected, Received onMessage)
    : m_settings(std::move(settings)), m_onConnected(std::move(onConnected)), m_onMessage(std::move(onMessage))
{
    static std::once_flag once;
    std::call_once(once, [] { mosquitto_lib_init(); });
    m_mosq = mosquitto_new(m_settings.clientId.c_str(), true, this);
    mosquitto_int_option(m_mosq, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(m_mosq, MOSQ_OPT_TCP_NODELAY, 1); // states go out at once, not after the next ACK
    mosquitto_connect_v5_callback_set(m_mosq, &MqttSession::connected);
    mosquitto_disconnect_v5_callback_set(m_mosq, &MqttSession::disconnected);
    mosquitto_message_v5_callback_set(m_mosq, &MqttSession::received);
    mosquitto_reconnect_delay_set(m_mosq, 1, 30, true);
}

MqttSession::~MqttSession()
{
    stop();
    mosquitto_destroy(m_mosq);
}

bool MqttSession::start(std::string &error)
{
    const MqttSettings &s = m_settings;
    if (!s.username.empty() && mosquitto_username_pw_set(m_mosq, s.username.c_str(), s.password.c_str())) {
        error = "the user name or password cannot be used";
        return false;
    }
    if (!s.tlsCa.empty()) {
        const int rc = mosquitto_tls_set(m_mosq, s.tlsCa.c_str(), nullptr, nullptr, nullptr, nullptr);
        if (rc) {
            error = "the CA file " + s.tlsCa + " cannot be used: " + mosquitto_strerror(rc);
            return false;
        }
    }
    if (!s.willTopic.empty()
        && mosquitto_will_set_v5(m_mosq, s.willTopic.c_str(), int(s.willPayload.size()), s.willPayload.data(), 1,
                                 true, nullptr)) {
        error = "the will cannot be set";
        return false;
    }
    m_running = true;
    m_starter = std::thread([this] { firstConnection(); });
    return true;
}

// libmosquitto's network thread reconnects only a session that was
// connecting or connected once; until a first attempt is under way (a
// broker that is not there refuses at once), this thread tries.
void MqttSession::firstConnection()
{
    const MqttSettings &s = m_settings;
    std::chrono::seconds pause{1};
    std::unique_lock<std::mutex> lock(m_startMutex);
    for (;;) {
        const int rc = mosquitto_connect_async(m_mosq, s.host.c_str(), s.port, s.keepAlive);
        if (rc == MOSQ_ERR_SUCCESS)
            break;
        qCWarning(lcBridge, "broker %s:%d not reached (%s); trying again in %d s", s.host.c_str(), s.port,
                  rc == MOSQ_ERR_ERRNO ? "no connection" : mosquitto_strerror(rc), int(pause.count()));
        if (m_startStop.wait_for(lock, pause, [this] { return m_stopping; }))
            return;
        pause = std::min(pause * 2, std::chrono::seconds(30));
    }
    if (!m_stopping && mosquitto_loop_start(m_mosq) == MOSQ_ERR_SUCCESS)
        m_loopRunning = true;
}

void MqttSession::stop()
{
    if (!m_running)
        return;
    m_running = false;
    {
        std::lock_guard<std::mutex> lock(m_startMutex);
        m_stopping = true;
    }
    m_startStop.notify_all();
    m_starter.join();
    if (m_loopRunning) {
        mosquitto_disconnect_v5(m_mosq, 0, nullptr);
        mosquitto_loop_stop(m_mosq, false);
    }
}

bool MqttSession::publish(const std::string &topic, const std::string &payload, int qos, bool retain)
{
    return mosquitto_publish_v5(m_mosq, nullptr, topic.c_str(), int(payload.size()), payload.data(), qos, retain,
                                nullptr)
           == MOSQ_ERR_SUCCESS;
}

bool MqttSession::subscribe(const std::string &filter, int qos)
{
    const int options = MQTT_SUB_OPT_SEND_RETAIN_NEVER | MQTT_SUB_OPT_RETAIN_AS_PUBLISHED;
    return mosquitto_subscribe_v5(m_mosq, nullptr, filter.c_str(), qos, options, nullptr) == MOSQ_ERR_SUCCESS;
}

bool MqttSession::respond(const MqttRequest &request, const std::string &payload)
{
    mosquitto_property *properties = nullptr;
    if (!request.correlation.empty())
        mosquitto_property_add_binary(&properties, MQTT_PROP_CORRELATION_DATA, request.correlation.data(),
                                      uint16_t(request.correlation.size()));
    const int rc = mosquitto_publish_v5(m_mosq, nullptr, request.responseTopic.c_str(), int(payload.size()),
                                        payload.data(), 1, false, properties);
    mosquitto_property_free_all(&properties);
    return rc == MOSQ_ERR_SUCCESS;
}

void MqttSession::connected(mosquitto *, void *self, int rc, int, const mosquitto_property *)
{
    auto *session = static_cast<MqttSession *>(self);
    if (rc != 0) {
        qCWarning(lcBridge, "the broker refused the connection: %s", mosquitto_reason_string(rc));
        return;
    }
    qCInfo(lcBridge, "connected to the broker %s:%d", session->m_settings.host.c_str(), session->m_settings.port);
    session->m_connected = true;
    session->m_onConnected();
}

void MqttSession::disconnected(mosquitto *, void *self, int rc, const mosquitto_property *)
{
    auto *session = static_cast<MqttSession *>(self);
    session->m_connected = false;
    if (rc != 0)
        qCWarning(lcBridge, "lost the broker (%s); connecting again", mosquitto_reason_string(rc));
}

void MqttSession::received(mosquitto *, void *self, const mosquitto_message *message,
                           const mosquitto_property *properties)
{
    MqttRequest request;
    request.topic = message->topic;
    request.payload.assign(static_cast<const char *>(message->payload), std::size_t(message->payloadlen));
    request.responseTopic = propertyText(properties, MQTT_PROP_RESPONSE_TOPIC);
    request.correlation = propertyBytes(properties, MQTT_PROP_CORRELATION_DATA);
    request.retained = message->retain;
    static_cast<MqttSession *>(self)->m_onMessage(request);
}

} // namespace qrxbridge
