#pragma once
// Jogging: one JogDriver per Robot repeats the jog step every 200 ms while
// the host holds an axis (start_jogging .. stop_jogging), so the axis moves
// for as long as steps keep coming.
//
// The driver is a child of its Robot and lives in the Robot's thread: its
// timer is started and stopped only there, and every call from another
// thread blocks until that thread has done it. The host API attaches the
// driver where the Robot is made, and the Robot's controller keeps it; for a
// Robot without one (made outside the host API) the jog functions send no
// steps.

#include <QObject>
#include <QTimer>

class Robot;

namespace qrx::api {

class JogDriver : public QObject
{
public:
    // A driver for the Robot, its child. Call it on the Robot's thread, or
    // while that thread does not run.
    static JogDriver *attach(Robot *robot);

    // The jog step of an axis (1..7), now and on every tick. Refused, with
    // the servo log line, unless the drives run; an axis out of range stops
    // any jog and sends nothing.
    void start(int axis, bool positive);
    // Stops the ticks; the stop command itself is the caller's.
    void stop();
    bool isActive() const { return m_timer.isActive(); }

private:
    explicit JogDriver(Robot *robot);
    template <class F>
    void onOwnThread(F &&fn);
    // One jog step, as sent at the start and on every tick.
    void step();

    Robot *const m_robot;
    QTimer m_timer;
    int m_axis = 0;      // the axis of the ticks; 0: the ticks send nothing
    int m_direction = 0; // 1 or -1
};

// The servo refusal of the jog start and of every jog step.
void logServoNotRunning();

} // namespace qrx::api
