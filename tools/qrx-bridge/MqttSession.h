#pragma once
// The bridge's one MQTT 5 session (libmosquitto, its own network thread).
// It connects in the background and, when the broker goes away, connects
// again with a growing pause (1 s doubling up to 30 s); each time it is
// connected it calls onConnected, where the caller subscribes and publishes
// its retained topics again. The will is published by the broker when the
// session ends without a goodbye.

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <functional>
#include <mosquitto.h>
#include <string>

namespace qrxbridge {

struct MqttSettings
{
    std::string host;
    int port = 1883;
    std::string clientId;
    std::string username, password; // none when username is empty
    std::string tlsCa;              // TLS when given
    int keepAlive = 10;             // seconds
    std::string willTopic, willPayload; // retained, QoS 1
};

struct MqttRequest
{
    std::string topic, payload;
    std::string responseTopic, correlation; // empty when the request has none
    bool retained = false;
};

class MqttSession
{
public:
    using Connected = std::function<void()>;
    using Received = std::function<void(const MqttRequest &)>;

    MqttSession(MqttSettings settings, Connected onConnected, Received onMessage);
    ~MqttSession();
    MqttSession(const MqttSession &) = delete;
    MqttSession &operator=(const MqttSession &) = delete;

    // Starts connecting; false with the reason when the settings cannot be
    // used (a missing CA file, ...). An absent broker is not an error: the
    // session keeps trying.
    bool start(std::string &error);
    // Publishes goodbyes already queued, disconnects (no will), joins.
    void stop();

    // From any thread; false when the message could not be queued.
    bool publish(const std::string &topic, const std::string &payload, int qos, bool retain);
    // Subscribes without the broker's retained messages and with the retain
    // flag as published, so a retained request can be told and refused.
    bool subscribe(const std::string &filter, int qos);
    bool respond(const MqttRequest &request, const std::string &payload);
    // True between the broker's acceptance and the loss of the connection.
    bool isConnected() const { return m_connected.load(); }

private:
    void firstConnection();
    static void connected(mosquitto *, void *self, int rc, int flags, const mosquitto_property *);
    static void disconnected(mosquitto *, void *self, int rc, const mosquitto_property *);
    static void received(mosquitto *, void *self, const mosquitto_message *, const mosquitto_property *);

    MqttSettings m_settings;
    Connected m_onConnected;
    Received m_onMessage;
    mosquitto *m_mosq = nullptr;
    bool m_running = false;
    std::thread m_starter;
    std::mutex m_startMutex;
    std::condition_variable m_startStop;
    bool m_stopping = false;
    bool m_loopRunning = false;
    std::atomic<bool> m_connected{false};
};

} // namespace qrxbridge
