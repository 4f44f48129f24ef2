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
// The library drives one controller per process: one Connection at a time.
// Its destructor disconnects.
#ifndef QRX_HOST_HPP
#define QRX_HOST_HPP

#include "qrx_host.h"

#include <array>
#include <chrono>
#include <cstring>
#include <functional>
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

class Connection
{
public:
    // Connects as soon as the controller answers, within bound (about five
    // seconds without one), or throws ConnectionRefused. bound limits every
    // waiting call too (zero: no bound).
    explicit Connection(const std::string &ip, std::chrono::milliseconds bound = {}, int port = 6001)
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

    // ---- the connection ----------------------------------------------------
    bool connected() const { return connection_status() == 1; }
    void setTimeout(std::chrono::milliseconds bound) { qrx_set_wait_timeout(int(bound.count())); }
    std::chrono::milliseconds timeout() const { return std::chrono::milliseconds(qrx_wait_timeout()); }
    void setMatchedReplies(bool on) { qrx_set_matched_replies(on ? 1 : 0); }
    std::string lastMessage() const
    {
        std::string text(256, '\0');
        int length = qrx_last_message(&text[0], int(text.size()));
        if (length >= int(text.size())) {
            text.assign(std::size_t(length) + 1, '\0');
            length = qrx_last_message(&text[0], int(text.size()));
        }
        text.resize(std::size_t(length));
        return text;
    }
    void onLinkEvent(LinkEventHandler handler)
    {
        std::lock_guard<std::mutex> lock(handlerMutex());
        linkHandler() = std::move(handler);
        qrx_set_link_event_handler(linkHandler() ? &Connection::deliverLinkEvent : nullptr, nullptr);
    }

    // ---- servo, mode, coordinate system, speed -----------------------------
    ServoState servoState() const { return ServoState(get_servo_state()); }
    // True when the servo state that answers the command is 1 (drives
    // switching on). A report the controller sent before it saw the command
    // can answer it too, so wait for servoState() == Running to know the
    // drives are up.
    bool powerOn() { return waiting(&servo_power_on, "servo_power_on") == 1; }
    void powerOff()
    {
        waiting([] { servo_power_off(); return 0; }, "servo_power_off");
    }
    void setMode(Mode mode) { command([mode] { set_current_mode(int(mode)); }, "set_current_mode"); }
    Mode mode() { return Mode(waiting(&get_current_mode, "get_current_mode")); }
    void setCoord(Coord coord) { command([coord] { set_current_coord(int(coord)); }, "set_current_coord"); }
    Coord coord() { return Coord(waiting(&get_current_coord, "get_current_coord")); }
    void setSpeed(int percent) { command([percent] { set_jogging_speed(percent); }, "set_jogging_speed"); }
    int speed() { return waiting(&get_jogging_speed, "get_jogging_speed"); }
    int runningState() { return waiting(&get_robot_running_state, "get_robot_running_state"); }

    // ---- motion ------------------------------------------------------------
    // Return once the controller has taken the move, not when it ends.
    void movj(Axes target, int vel, Coord coord, int acc, int dec)
    {
        command([&] { robot_movj(target.data(), vel, int(coord), acc, dec); }, "robot_movj");
    }
    void movl(Axes target, int vel, Coord coord, int acc, int dec)
    {
        command([&] { robot_movl(target.data(), vel, int(coord), acc, dec); }, "robot_movl");
    }
    // Waits until every axis is within tolerance of target; throws TimedOut
    // when bound (zero: none) runs out first.
    void waitMoveDone(const Axes &target, Coord coord, double tolerance, std::chrono::milliseconds bound)
    {
        if (qrx_wait_move_done(target.data(), int(coord), tolerance, int(bound.count())) != 1)
            throw TimedOut("the robot did not reach its target in time");
    }

    // ---- IO, positions, variables ------------------------------------------
    Axes position(Coord coord)
    {
        return waiting([coord] {
            Axes pos{};
            get_current_position(pos.data(), int(coord));
            return pos;
        }, "get_current_position");
    }
    Ports dout() { return ports(&get_dout, "get_dout"); }
    Ports din() { return ports(&get_din, "get_din"); }
    Ports aout() { return ports(&get_aout, "get_aout"); }
    Ports ain() { return ports(&get_ain, "get_ain"); }
    void setDout(int port, bool on) { command([=] { set_dout(port, on ? 1 : 0); }, "set_dout"); }
    void setAout(int port, double value) { command([=] { set_aout(port, value); }, "set_aout"); }
    double globalVariable(const std::string &name)
    {
        return waiting([&name] { return get_global_variant(name.c_str()); }, "get_global_variant");
    }
    void setGlobalVariable(const std::string &name, double value)
    {
        command([&] { set_global_variant(name.c_str(), value); }, "set_global_variant");
    }

    // ---- jobs and tools ----------------------------------------------------
    void runJob(const std::string &name) { command([&name] { run_job(name.c_str()); }, "run_job"); }
    void stopJob() { command(&stop_job, "stop_job"); }
    int tool() { return waiting(&get_current_tool_hand, "get_current_tool_hand"); }
    void switchTool(int tool) { command([tool] { switch_tool_hand(tool); }, "switch_tool_hand"); }

private:
    // A waiting call: throws Refused when the controller refused it,
    // TimedOut when its bound ran out.
    template <class Call>
    static auto waiting(Call call, const char *name) -> decltype(call())
    {
        qrx_clear_refusal();
        auto value = call();
        const bool timedOut = qrx_last_call_timed_out() != 0;
        throwIfRefused();
        if (timedOut)
            throw TimedOut(std::string(name) + ": no reply within the bound");
        return value;
    }
    // A command: returns once the controller has taken it (qrx_confirm).
    template <class Call>
    static void command(Call call, const char *name)
    {
        qrx_clear_refusal();
        call();
        const int confirmed = qrx_confirm();
        throwIfRefused();
        if (confirmed < 0)
            throw TimedOut(std::string(name) + ": the controller did not confirm within the bound");
    }
    static void throwIfRefused()
    {
        std::string text(1024, '\0');
        const int answered = qrx_last_refusal(&text[0], int(text.size()));
        if (answered != 0) {
            text.resize(std::strlen(text.c_str()));
            throw Refused(text, answered, qrx_last_refusal_type());
        }
    }
    static Ports ports(void (*read)(double *), const char *call)
    {
        return waiting([read] {
            Ports out{};
            read(out.data());
            return out;
        }, call);
    }

    static std::mutex &handlerMutex()
    {
        static std::mutex mutex;
        return mutex;
    }
    static LinkEventHandler &linkHandler()
    {
        static LinkEventHandler handler;
        return handler;
    }
    static void deliverLinkEvent(int event, int reason, void *)
    {
        LinkEventHandler handler;
        {
            std::lock_guard<std::mutex> lock(handlerMutex());
            handler = linkHandler();
        }
        if (handler)
            handler(LinkEvent(event), LinkReason(reason));
    }
};

} // namespace qrx

#endif // QRX_HOST_HPP
