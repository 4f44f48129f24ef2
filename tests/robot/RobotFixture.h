#pragma once
// A Robot connected to qrx-sim on the test's own loopback address, with a
// fast link (checks every 100 ms). Frames reach the Robot in the order the
// simulator sends them and are handled one after the other on the link
// thread, so flush() - a marker frame that the Robot relays - proves that
// everything sent before it has been handled.

#include "ThreadSpy.h"
#include "robot/Robot.h"
#include "sim/SimHandle.h"

#include <QByteArray>
#include <QObject>
#include <functional>
#include <memory>
#include <utility>

class RobotFixture
{
public:
    RobotFixture();
    ~RobotFixture();

    // Starts the simulator, lets prepare set up the controller, creates the
    // Robot, connects it and waits until the controller's start-up reports
    // have been handled.
    bool start(std::function<void(qrxsim::ControllerModel &)> prepare = {});

    qrxsim::SimHandle &sim() { return *m_sim; }
    Robot &robot() { return *m_robot; }

    // Sends one frame whose payload is the JSON text (a line feed is added
    // unless the text is empty or raw is true).
    void send(quint16 command, const QByteArray &json, bool raw = false);
    // Waits until every frame sent so far has been handled.
    bool flush(int timeoutMs = 10000);

    // Runs send (a report of the controller, or a query it answers; false
    // when sending failed) while a call waits on the Robot's reply condition
    // the way the host API does; true once a handler has ended the wait.
    bool wokenBy(const std::function<bool()> &send);
    // The same for one frame of the controller, as send() sends it.
    bool sendWaking(quint16 command, const QByteArray &json, bool raw = false);
    // Sends one frame, as send() does, with the wait lock held: a handler
    // that tried to wake would stall the link thread and the marker of
    // flush() would never come. True once the frame has been handled.
    bool sendWithoutWake(quint16 command, const QByteArray &json, bool raw = false);

private:
    std::unique_ptr<qrxsim::SimHandle> m_sim;
    std::unique_ptr<Robot> m_robot;
    std::unique_ptr<ThreadSpy> m_relayed;
    int m_markers = 0;
};

// The base of the robot test classes: the fixture and its Robot, for the
// test slots of the class built on it.
class RobotTestCase : public QObject
{
protected:
    // For initTestCase(): starts the fixture (prepare as for start()).
    bool startRobot(std::function<void(qrxsim::ControllerModel &)> prepare = {})
    {
        if (!fixture.start(std::move(prepare)))
            return false;
        robot = &fixture.robot();
        return true;
    }

    RobotFixture fixture;
    Robot *robot = nullptr;
};

// Runs fn in a thread of its own that waits on the Robot's reply condition
// the way the host API does; woken() tells whether a wake ended the wait.
class ReplyWaiter
{
public:
    explicit ReplyWaiter(Robot &robot);
    ~ReplyWaiter();
    // Blocks until the waiter thread is inside the wait.
    void start();
    bool woken() const { return m_woken.load(); }
    bool finished() const { return m_finished.load(); }

private:
    Robot &m_robot;
    std::atomic<bool> m_waiting{false};
    std::atomic<bool> m_woken{false};
    std::atomic<bool> m_finished{false};
    class Thread;
    std::unique_ptr<Thread> m_thread;
};
