#include "ControllerLink.h"

#include "BridgeLogging.h"
#include "qrx_host.h"

#include <algorithm>

namespace qrxbridge {

namespace {

constexpr int kOpenBoundMs = 3000;

// After a command: waits until the controller has taken it, and answers
// with its refusal when it refused.
std::string confirmed(qrx_controller *c)
{
    const int refused = qrxc_confirm(c);
    if (refused == 0)
        return okAnswer();
    if (refused < 0)
        return errorAnswer("the controller did not confirm the command in time");
    char text[1024] = {};
    qrxc_last_refusal(c, text, int(sizeof text));
    return errorAnswer(std::string("the controller refused: ") + text);
}

std::string runJob(qrx_controller *c, const Command &command)
{
    qrx_state s{};
    qrxc_get_state(c, &s);
    if (s.running == 2)
        return errorAnswer("a job is already running");
    if (s.servo == 0)
        return errorAnswer("the servo is off");
    qrxc_run_job(c, command.name.c_str());
    return confirmed(c);
}

std::string job(qrx_controller *c, const Command &command)
{
    switch (command.action) {
    case Command::Run:
        return runJob(c, command);
    case Command::Pause:
        qrxc_pause_job(c);
        return confirmed(c);
    case Command::Continue:
        switch (qrxc_continue_job(c)) {
        case 0:
            return confirmed(c);
        case 1:
            return errorAnswer("the controller is not in run mode");
        default:
            return errorAnswer("the servo is not ready");
        }
    case Command::Stop:
        qrxc_stop_job(c);
        return confirmed(c);
    }
    return errorAnswer("unknown job action");
}

std::string servo(qrx_controller *c, const Command &command)
{
    if (!command.on) {
        qrxc_servo_power_off(c);
        return confirmed(c);
    }
    if (qrxc_servo_power_on(c) == 1)
        return okAnswer();
    return errorAnswer("the servo did not switch on (servo state " + std::to_string(qrxc_get_servo_state(c)) + ")");
}

} // namespace

ControllerLink::ControllerLink(ControllerAddress address, StateChanged onState, Message onMessage)
    : m_address(std::move(address)), m_onState(std::move(onState)), m_onMessage(std::move(onMessage))
{
}

ControllerLink::~ControllerLink()
{
    qrx_controller *c = m_handle.exchange(nullptr);
    if (c) {
        qrxc_set_state_handler(c, nullptr, nullptr);
        qrxc_set_message_handler(c, nullptr, nullptr);
        qrxc_close(c);
    }
}

void ControllerLink::open()
{
    const auto now = std::chrono::steady_clock::now();
    if (m_handle.load() || now < m_nextAttempt)
        return;
    qrx_controller *c = qrxc_open_within(m_address.ip.c_str(), m_address.port, kOpenBoundMs);
    if (!c) {
        // An absent controller is tried again later and later (up to every 30 s).
        m_nextAttempt = std::chrono::steady_clock::now() + m_pause;
        m_pause = std::min(m_pause * 2, std::chrono::seconds(30));
        return;
    }
    qCInfo(lcBridge, "controller %s at %s:%d: link open", m_address.name.c_str(), m_address.ip.c_str(),
           m_address.port);
    qrxc_set_matched_replies(c, 1); // a wait ends on its own reply, not on any report
    qrxc_set_message_handler(c, &ControllerLink::message, this);
    qrxc_set_state_handler(c, &ControllerLink::stateChanged, this);
    m_handle.store(c);
    m_onState();
}

ControllerState ControllerLink::state() const
{
    ControllerState state;
    qrx_state s{};
    if (!qrxc_get_state(m_handle.load(), &s))
        return state;
    state.link = s.link != 0;
    state.servo = s.servo;
    state.mode = s.mode;
    state.coord = s.coord;
    state.speed = s.speed;
    state.running = s.running;
    state.line = s.line;
    state.tool = s.tool;
    state.type = s.type;
    std::copy(s.joints, s.joints + 6, state.joints.begin());
    std::copy(s.cartesian, s.cartesian + 6, state.cartesian.begin());
    return state;
}

std::string ControllerLink::execute(const Command &command)
{
    qrx_controller *c = m_handle.load();
    if (!c || !qrxc_link_up(c))
        return errorAnswer("no link to the controller");
    qrxc_clear_refusal(c);
    switch (command.verb) {
    case Command::Servo:
        return servo(c, command);
    case Command::Mode:
        qrxc_set_current_mode(c, command.value);
        break;
    case Command::Coord:
        qrxc_set_current_coord(c, command.value);
        break;
    case Command::Speed:
        qrxc_set_jogging_speed(c, command.value);
        break;
    case Command::Move: {
        double pos[6];
        std::copy(command.pos.begin(), command.pos.end(), pos);
        (command.linear ? qrxc_robot_movl : qrxc_robot_movj)(c, pos, command.value, command.coord, command.acc,
                                                              command.dec);
        break;
    }
    case Command::Io:
        if (command.analog)
            qrxc_set_aout(c, command.port, command.number);
        else
            qrxc_set_dout(c, command.port, int(command.number));
        break;
    case Command::Var:
        qrxc_set_global_variant(c, command.name.c_str(), command.number);
        break;
    case Command::Job:
        return job(c, command);
    }
    return confirmed(c);
}

void ControllerLink::stateChanged(qrx_controller *, void *self)
{
    static_cast<ControllerLink *>(self)->m_onState();
}

void ControllerLink::message(qrx_controller *, int level, const char *text, void *self)
{
    static_cast<ControllerLink *>(self)->m_onMessage(level, text ? text : "");
}

} // namespace qrxbridge
