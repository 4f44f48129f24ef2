// qrx_host for C++ hosts: a header-only layer over the C functions of
// qrx_host.h. Failures are exceptions: a refused connection throws
// qrx::ConnectionRefused, a waiting call whose bound ran out throws
// qrx::TimedOut, a command the controller refuses throws qrx::Refused with
// the controller's text (each command returns once the controller has taken
// it). Results are values (std::array for axes and ports, enums for servo
// state, mode and coordinate system).
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
#include <cstring>
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

// The controller refused a command: what() is the controller's text,
// command() the code of the command it answered, code() the controller's
// error code (0 when it gave none).
class Refused : public Error
{
public:
    Refused(const std::string &text, int command, int code)
        : Error(text), m_command(command), m_code(code)
    {
    }
    int command() const { return m_command; }
    int code() const { return m_code; }

private:
    int m_command;
    int m_code;
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
    bool powerOn() { return waiting([this] { return qrxc_servo_power_on(m_c); }, "servo_power_on") == 1; }
    void powerOff()
    {
        waiting([this] { qrxc_servo_power_off(m_c); return 0; }, "servo_power_off");
    }
    void setMode(Mode mode) { command([this, mode] { qrxc_set_current_mode(m_c, int(mode)); }, "set_current_mode"); }
    Mode mode() { return Mode(waiting([this] { return qrxc_get_current_mode(m_c); }, "get_current_mode")); }
    void setCoord(Coord coord) { command([this, coord] { qrxc_set_current_coord(m_c, int(coord)); }, "set_current_coord"); }
    Coord coord() { return Coord(waiting([this] { return qrxc_get_current_coord(m_c); }, "get_current_coord")); }
    void setSpeed(int percent) { command([this, percent] { qrxc_set_jogging_speed(m_c, percent); }, "set_jogging_speed"); }
    int speed() { return waiting([this] { return qrxc_get_jogging_speed(m_c); }, "get_jogging_speed"); }
    int runningState() { return waiting([this] { return qrxc_get_robot_running_state(m_c); }, "get_robot_running_state"); }

    // ---- motion ------------------------------------------------------------
    // Return once the controller has taken the move, not when it ends.
    void movj(Axes target, int vel, Coord coord, int acc, int dec)
    {
        command([&] { qrxc_robot_movj(m_c, target.data(), vel, int(coord), acc, dec); }, "robot_movj");
    }
    void movl(Axes target, int vel, Coord coord, int acc, int dec)
    {
        command([&] { qrxc_robot_movl(m_c, target.data(), vel, int(coord), acc, dec); }, "robot_movl");
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
        return waiting([this, coord] {
            Axes pos{};
            qrxc_get_current_position(m_c, pos.data(), int(coord));
            return pos;
        }, "get_current_position");
    }
    Ports dout() { return ports(&qrxc_get_dout, "get_dout"); }
    Ports din() { return ports(&qrxc_get_din, "get_din"); }
    Ports aout() { return ports(&qrxc_get_aout, "get_aout"); }
    Ports ain() { return ports(&qrxc_get_ain, "get_ain"); }
    void setDout(int port, bool on) { command([=, this] { qrxc_set_dout(m_c, port, on ? 1 : 0); }, "set_dout"); }
    void setAout(int port, double value) { command([=, this] { qrxc_set_aout(m_c, port, value); }, "set_aout"); }
    double globalVariable(const std::string &name)
    {
        return waiting([this, &name] { return qrxc_get_global_variant(m_c, name.c_str()); }, "get_global_variant");
    }
    void setGlobalVariable(const std::string &name, double value)
    {
        command([&] { qrxc_set_global_variant(m_c, name.c_str(), value); }, "set_global_variant");
    }

    // ---- jobs and tools ----------------------------------------------------
    void runJob(const std::string &name) { command([this, &name] { qrxc_run_job(m_c, name.c_str()); }, "run_job"); }
    void stopJob() { command([this] { qrxc_stop_job(m_c); }, "stop_job"); }
    int tool() { return waiting([this] { return qrxc_get_current_tool_hand(m_c); }, "get_current_tool_hand"); }
    void switchTool(int tool) { command([this, tool] { qrxc_switch_tool_hand(m_c, tool); }, "switch_tool_hand"); }

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

    // A waiting call: throws Refused when the controller refused it,
    // TimedOut when its bound ran out.
    template <class Call>
    auto waiting(Call call, const char *name) -> decltype(call())
    {
        qrxc_clear_refusal(m_c);
        auto value = call();
        const bool timedOut = qrx_last_call_timed_out() != 0;
        throwIfRefused();
        if (timedOut)
            throw TimedOut(std::string(name) + ": no reply within the bound");
        return value;
    }
    // A command: returns once the controller has taken it (qrx_confirm).
    template <class Call>
    void command(Call call, const char *name)
    {
        qrxc_clear_refusal(m_c);
        call();
        const int confirmed = qrxc_confirm(m_c);
        throwIfRefused();
        if (confirmed < 0)
            throw TimedOut(std::string(name) + ": the controller did not confirm within the bound");
    }
    void throwIfRefused()
    {
        std::string text(1024, '\0');
        const int answered = qrxc_last_refusal(m_c, &text[0], int(text.size()));
        if (answered != 0) {
            text.resize(std::strlen(text.c_str()));
            throw Refused(text, answered, qrxc_last_refusal_type(m_c));
        }
    }
    Ports ports(void (*read)(qrx_controller *, double *), const char *call)
    {
        return waiting([this, read] {
            Ports out{};
            read(m_c, out.data());
            return out;
        }, call);
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

// The default controller: connected at construction, disconnect_robot() at
// destruction.
class Connection : public Operations
{
public:
    // Connects as soon as the controller answers, within bound (about five
    // seconds without one), or throws ConnectionRefused. bound limits every
    // waiting call too (zero: no bound).
    explicit Connection(const std::string &ip, std::chrono::milliseconds bound = {}, int port = 6001)
        : Operations(qrxc_default())
    {
        setTimeout(bound);
        const int ms = bound.count() > 0 ? int(bound.count()) : 5000;
        if (qrx_connect_robot_within(ip.c_str(), port, ms) != 1)
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
