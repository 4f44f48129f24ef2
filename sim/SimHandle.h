#pragma once
// A simulated controller for tests: SimHandle runs a Simulator on a thread of
// its own and offers thread-safe calls to script it. Every call blocks until
// the simulator thread has carried it out, so what a test asked for has
// happened (bytes handed to the sockets, state changed) when the call returns.
//
//   qrxsim::SimHandle sim(testsupport::loopbackAddress());
//   QVERIFY(sim.start());
//   ... connect the library ...
//   QVERIFY(sim.waitForFrame(0x7266));
//   sim.sendJson(0x2003, value);

#include "sim/ControllerModel.h"
#include "sim/ReceivedFrame.h"

#include <QByteArray>
#include <QString>
#include <QThread>
#include <QVector>
#include <functional>
#include <json/value.h>

namespace qrxsim {

class Session;
class Simulator;

class SimHandle
{
public:
    using ReceivedFrame = qrxsim::ReceivedFrame;

    explicit SimHandle(QString address, quint16 port = 6001);
    ~SimHandle();
    SimHandle(const SimHandle &) = delete;
    SimHandle &operator=(const SimHandle &) = delete;

    // Starts listening; false when the address and port cannot be bound.
    bool start();
    QString address() const { return m_address; }
    quint16 port() const; // the bound port (useful when constructed with 0)

    bool waitForClient(int timeoutMs = 10000);
    int clientCount() const;

    // To every connected client; these go out even while silent.
    void send(quint16 command, QByteArray payload);
    void sendJson(quint16 command, const Json::Value &v);
    void sendRaw(QByteArray bytes);

    // Every frame received from clients since the last clearReceived, in order.
    QVector<ReceivedFrame> received() const;
    QVector<ReceivedFrame> received(quint16 command) const;
    void clearReceived();
    bool waitForFrame(quint16 command, int timeoutMs = 5000);
    // The latest frame with that code (a default frame with atMs -1 if none).
    ReceivedFrame lastFrame(quint16 command) const;

    // Misbehaviour.
    void setSilent(bool silent);              // answers nothing, not even heartbeats
    void dropConnections();                   // closes every client socket now
    void setRefuseConnections(bool refuse);   // stops (or resumes) listening
    void sendGarbage(QByteArray bytes);       // raw bytes to every client
    // One byte per write, flushed separately, a millisecond apart: a frame of
    // N bytes takes about N ms to arrive.
    void setSplitDelivery(bool split);
    void corruptNextCrc();                    // the next frame sent has a wrong CRC
    void setControllerHeartbeat(int intervalMs); // 0 = off
    void setAnswerHeartbeats(bool answer);    // default true

    // Runs fn on the simulator thread, blocking, to read or change the model.
    void withModel(std::function<void(ControllerModel &)> fn);
    // Replaces (or adds) the handler of one code; it runs on the simulator
    // thread, so it may only touch what is safe to touch from there.
    void setHandler(quint16 code, std::function<void(Session &, const ReceivedFrame &)> handle);
    // Runs fn on the simulator thread, blocking, with the whole simulator.
    void withSimulator(std::function<void(Simulator &)> fn);

    // Simulator clock (ms), the time base of ReceivedFrame::atMs.
    qint64 nowMs() const;

private:
    void run(const std::function<void(Simulator &)> &fn) const;

    QString m_address;
    quint16 m_port;
    QThread m_thread;
    Simulator *m_simulator = nullptr;
};

} // namespace qrxsim
