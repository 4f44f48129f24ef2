#pragma once
// A small MQTT 5 client for the bridge's tests and bench (libmosquitto): it
// logs in, subscribes, keeps every message it receives with its arrival
// time, and sends requests with a response topic and correlation data.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mosquitto.h>
#include <mutex>
#include <string>
#include <vector>

class MqttProbe
{
public:
    struct Message
    {
        std::string topic, payload, correlation;
        bool retained = false;
        std::chrono::steady_clock::time_point arrived;
    };

    // Connects and waits for the broker's answer (at most 10 s); user empty
    // for an anonymous client.
    MqttProbe(const std::string &host, int port, const std::string &user, const std::string &password);
    ~MqttProbe();

    // The broker's CONNACK reason code; -1 when it never answered.
    int connectResult() const { return m_connack; }
    bool subscribe(const std::string &filter);

    // The first kept message, from the oldest, for which match is true;
    // waits up to timeout for one. Empty topic when none came.
    Message waitFor(const std::function<bool(const Message &)> &match, std::chrono::milliseconds timeout);
    Message waitOn(const std::string &topic, const std::string &contains, std::chrono::milliseconds timeout);
    // Forgets the messages kept so far.
    void clear();
    std::vector<Message> messages();

    // A request on topic; the answer's payload with the same correlation
    // data, or empty after timeout.
    std::string request(const std::string &topic, const std::string &payload,
                        std::chrono::milliseconds timeout = std::chrono::seconds(20), bool retain = false);
    // Sends a request without waiting; returns its correlation data.
    std::string send(const std::string &topic, const std::string &payload, bool retain = false,
                     bool withResponseTopic = true);
    // Publishes at QoS 1 and returns the broker's PUBACK reason code (-1: none).
    int publishAcked(const std::string &topic, const std::string &payload);

    std::string responseTopic() const { return m_responseTopic; }

private:
    mosquitto *m_mosq = nullptr;
    std::string m_responseTopic;
    int m_connack = -1;
    int m_subscribed = 0;
    int m_puback = -1;
    int m_nextCorrelation = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Message> m_messages;
};
