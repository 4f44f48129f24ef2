// qrx_host for C++ hosts: a header-only layer over the C functions of
// qrx_host.h. Failures are exceptions: a refused connection throws
// qrx::ConnectionRefused, a waiting call whose bound ran out throws
// qrx::TimedOut. Results are values (std::array for axes and ports, enums
// for servo state, mode and coordinate system).
//
//   qrx::Connection robot("192.168.1.13", std::chrono::seconds(2));
//   robot.setMode(qrx::Mode::Teach);
//   const qrx::Axes position = robot.position(qrx::Coord::Joint);
//
// A Connection is the default controller (connect_robot): one at a time.
// Its destructor disconnects. A qrx::Controller is a controller of its own
// (a handle of qrxc_open): as many as the host likes, each closed by its
// destructor; it moves but does not copy. Both offer the same calls.
#ifndef QRX_HOST_HPP
#define QRX_HOST_HPP

#include "qrx_host.h"

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

namespace qrx {

enum class ServoState : int { Stop = 0, Ready = 1, Alarm = 2, Running = 3 };
enum class Mode : int { Teach = 0, Remote = 1, Run = 2 };
enum class Coord : int { Joint = 0, Cartesian = 1, Tool = 2, User = 3 };
enum class LinkEvent : int { Up = QRX_LINK_UP, Dropped = QRX_LINK_DROPPED, Back = QRX_LINK_BACK };
enum class LinkReason : int {
    None = QRX_LINK_REASON_NONE,
    ClosedByHost = QRX_LINK_REASON_CLOSED_BY_HOST,
    ConnectionLost = QRX_LINK_REASON_CONNECTION_LOST,
    ControllerSilent = QRX_LINK_REASON_CONTROLLER_SILENT,
};

using Axes = std::array<double, 6>;
using Ports = std::array<double, 16>;

class Error : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// connect_robot() gave up: nothing answered at that address and port.
class ConnectionRefused : public Error
{
public:
    using Error::Error;
};

// A waiting call ran out of its bound; the library's cached value was not
// confirmed by the controller.
class TimedOut : public Error
{
public:
    using Error::Error;
};

// Called with each connection event on a library thread (see
// qrx_set_link_event_handler); it must not call waiting functions.
using LinkEventHandler = std::function<void(LinkEvent, LinkReason)>;

// The calls of one controller, through its handle.
class Operations
{
public:
    // ---- the connection ----------------------------------------------------
    bool connected() const { return qrxc_connection_status(m_c) == 1; }
    void setTimeout(std::chrono::milliseconds bound) { qrxc_set_wait_timeout(m_c, int(bound.count())); }
    std::chrono::milliseconds timeout() const { return std::chrono::milliseconds(qrxc_wait_timeout(m_c)); }
    void setMatchedReplies(bool on) { qrxc_set_matched_replies(m_c, on ? 1 : 0); }
    std::string lastMessage() const
    {
        std::string text(256, '\0');
        int length = qrxc_last_message(m_c, &text[0], int(text.size()));
        if (length >= int(text.size())) {
            text.assign(std::size_t(length) + 1, '\0');
            length = qrxc_last_message(m_c, &text[0], int(text.size()));
        }
        text.resize(std::size_t(length));
        return text;
    }
    void onLinkEvent(LinkEventHandler handler)
    {
        if (!m_events)
            return;
        {
            std::lock_guard<std::mutex> lock(m_events->mutex);
            m_events->handler = std::move(handler);
        }
        qrxc_set_link_event_handler(m_c, m_events->handler ? &Operations::deliverLinkEvent : nullptr, m_events.get());
    }

    // ---- servo, mode, coordinate system, speed -----------------------------
    ServoState servoState() const { return ServoState(qrxc_get_servo_state(m_c)); }
    // True when the servo state that answers the command is 1 (drives
    // switching on). A report the controller sent before it saw the command
    // can answer it too, so wait for servoState() == Running to know the
    // drives are up.
    bool powerOn() { return checked(qrxc_servo_power_on(m_c), "servo_power_on") == 1; }
    void powerOff()
    {
        qrxc_servo_power_off(m_c);
        checked(0, "servo_power_off");
    }
    void setMode(Mode mode) { qrxc_set_current_mode(m_c, int(mode)); }
    Mode mode() { return Mode(checked(qrxc_get_current_mode(m_c), "get_current_mode")); }
    void setCoord(Coord coord) { qrxc_set_current_coord(m_c, int(coord)); }
    Coord coord() { return Coord(checked(qrxc_get_current_coord(m_c), "get_current_coord")); }
    void setSpeed(int percent) { qrxc_set_jogging_speed(m_c, percent); }
    int speed() { return checked(qrxc_get_jogging_speed(m_c), "get_jogging_speed"); }
    int runningState() { return checked(qrxc_get_robot_running_state(m_c), "get_robot_running_state"); }

    // ---- motion ------------------------------------------------------------
    void movj(Axes target, int vel, Coord coord, int acc, int dec)
    {
        qrxc_robot_movj(m_c, target.data(), vel, int(coord), acc, dec);
    }
    void movl(Axes target, int vel, Coord coord, int acc, int dec)
    {
        qrxc_robot_movl(m_c, target.data(), vel, int(coord), acc, dec);
    }
    // Waits until every axis is within tolerance of target; throws TimedOut
    // when bound (zero: none) runs out first.
    void waitMoveDone(const Axes &target, Coord coord, double tolerance, std::chrono::milliseconds bound)
    {
        if (qrxc_wait_move_done(m_c, target.data(), int(coord), tolerance, int(bound.count())) != 1)
            throw TimedOut("the robot did not reach its target in time");
    }

    // ---- IO, positions, variables ------------------------------------------
    Axes position(Coord coord)
    {
        Axes pos{};
        qrxc_get_current_position(m_c, pos.data(), int(coord));
        return checked(pos, "get_current_position");
    }
    Ports dout() { return ports(&qrxc_get_dout, "get_dout"); }
    Ports din() { return ports(&qrxc_get_din, "get_din"); }
    Ports aout() { return ports(&qrxc_get_aout, "get_aout"); }
    Ports ain() { return ports(&qrxc_get_ain, "get_ain"); }
    void setDout(int port, bool on) { qrxc_set_dout(m_c, port, on ? 1 : 0); }
    void setAout(int port, double value) { qrxc_set_aout(m_c, port, value); }
    double globalVariable(const std::string &name)
    {
        return checked(qrxc_get_global_variant(m_c, name.c_str()), "get_global_variant");
    }
    void setGlobalVariable(const std::string &name, double value)
    {
        qrxc_set_global_variant(m_c, name.c_str(), value);
    }

    // ---- jobs and tools ----------------------------------------------------
    void runJob(const std::string &name) { qrxc_run_job(m_c, name.c_str()); }
    void stopJob() { qrxc_stop_job(m_c); }
    int tool() { return checked(qrxc_get_current_tool_hand(m_c), "get_current_tool_hand"); }
    void switchTool(int tool) { qrxc_switch_tool_hand(m_c, tool); }

protected:
    explicit Operations(qrx_controller *c) : m_c(c), m_events(new LinkEvents) {}
    Operations(Operations &&other) noexcept : m_c(other.m_c), m_events(std::move(other.m_events))
    {
        other.m_c = nullptr;
    }
    ~Operations() = default;
    void swap(Operations &other) noexcept
    {
        std::swap(m_c, other.m_c);
        std::swap(m_events, other.m_events);
    }

    qrx_controller *m_c;

private:
    // The link-event handler, where the library's callback finds it (its
    // address stays when the object moves).
    struct LinkEvents
    {
        std::mutex mutex;
        LinkEventHandler handler;
    };
    std::unique_ptr<LinkEvents> m_events;

    template <class T>
    static T checked(T value, const char *call)
    {
        if (qrx_last_call_timed_out())
            throw TimedOut(std::string(call) + ": no reply within the bound");
        return value;
    }
    Ports ports(void (*read)(qrx_controller *, double *), const char *call)
    {
        Ports out{};
        read(m_c, out.data());
        return checked(out, call);
    }
    static void deliverLinkEvent(int event, int reason, void *user)
    {
        auto *events = static_cast<LinkEvents *>(user);
        LinkEventHandler handler;
        {
            std::lock_guard<std::mutex> lock(events->mutex);
            handler = events->handler;
        }
        if (handler)
            handler(LinkEvent(event), LinkReason(reason));
    }
};

// The default controller: connect_robot() at construction, disconnect_robot()
// at destruction.
class Connection : public Operations
{
public:
    // Connects (about five seconds at most) or throws ConnectionRefused.
    // bound limits every waiting call (zero: no bound).
    explicit Connection(const std::string &ip, std::chrono::milliseconds bound = {}, int port = 6001)
        : Operations(qrxc_default())
    {
        setTimeout(bound);
        if (qrx_connect_robot_port(ip.c_str(), port) != 1)
            throw ConnectionRefused("no controller answered at " + ip + ":" + std::to_string(port));
    }
    ~Connection()
    {
        onLinkEvent(nullptr);
        disconnect_robot();
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
};

// A controller of its own (qrxc_open), closed by the destructor. A
// moved-from Controller holds no controller: its calls give the results
// without a link.
class Controller : public Operations
{
public:
    // Opens within bound (zero: 3000 ms), which then bounds every waiting
    // call, or throws ConnectionRefused.
    explicit Controller(const std::string &ip, std::chrono::milliseconds bound = {}, int port = 6001)
        : Operations(qrxc_open_within(ip.c_str(), port, int(bound.count())))
    {
        if (!m_c)
            throw ConnectionRefused("no controller answered at " + ip + ":" + std::to_string(port));
    }
    ~Controller()
    {
        onLinkEvent(nullptr);
        qrxc_close(m_c);
    }
    Controller(Controller &&other) noexcept = default;
    Controller &operator=(Controller &&other) noexcept
    {
        Controller gone(std::move(other));
        swap(gone);
        return *this;
    }
    Controller(const Controller &) = delete;
    Controller &operator=(const Controller &) = delete;

    // The handle, for the qrxc_ functions this class does not offer.
    qrx_controller *handle() const { return m_c; }
    bool linkUp() const { return qrxc_link_up(m_c) == 1; }
};

} // namespace qrx

#endif // QRX_HOST_HPP
