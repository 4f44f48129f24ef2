// Refusals: the controller's error message that answers a command the host
// sent, kept for the host with the code of that command.
//
// The controller refuses a command with an error message 0x2B03 {"data":
// text, "type": code} and changes nothing. An error of type 0x6010 reports a
// robot's servo alarm whenever it happens: it answers nothing. A query (a
// request the controller answers with a reply of its own, 0x2F07 -> 0x2F08)
// is answered, not refused; every other request the host sends is a
// command. The
// controller takes the frames in order, so an error that arrives answers
// the last command sent before it. The first such error after the host
// cleared the refusal is kept; later ones until the next clear follow from
// it. An error before any command of this link answers nothing.

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"
#include "common/JsonRead.h"
#include "common/Payload.h"
#include "link/TcpConnectModule.h"
#include "protocol/Catalogue.h"
#include "protocol/Codes.h"

#include <QObject>

#include <mutex>
#include <string>

namespace qrx::api {

using qrx::controller::Controller;

namespace {

constexpr int kServoAlarmType = 0x6010;

bool isQuery(quint16 request)
{
    const quint16 reply = protocol::replyTo(request);
    const protocol::Message *row = reply ? protocol::find(reply) : nullptr;
    return row && row->pairedWith == request;
}

// A command of the host: sent by an exported function (on the thread it
// runs on), or a jog step of the jog driver that start_jogging() set going.
// What the Robot sends by itself (0x2105 when the controller reports teach
// mode) is none.
bool isHostCommand(quint16 command)
{
    if (isQuery(command))
        return false;
    return *ApiCall::currentFunction() != '\0' || command == protocol::code::JogStep;
}

void onSent(Controller &controller, quint16 command)
{
    if (!isHostCommand(command))
        return;
    std::lock_guard<std::mutex> lock(controller.refusalMutex);
    controller.refusal.lastCommand = command;
}

void onError(Controller &controller, const QByteArray &payload)
{
    Json::Value root;
    if (!parsePayload(payload, root) || !root.isObject() || !root.isMember("data"))
        return;
    const bool typed = root.isMember("type");
    const int type = typed ? jsonInt(root, "type") : 0;
    if (typed && type == kServoAlarmType)
        return;
    std::lock_guard<std::mutex> lock(controller.refusalMutex);
    Controller::Refusal &r = controller.refusal;
    if (r.lastCommand == 0 || r.answered != 0)
        return;
    r.answered = r.lastCommand;
    r.type = type;
    r.text = jsonText(jsonMember(root, "data"));
}

} // namespace

void attachRefusals(Controller &controller, Robot *robot)
{
    {
        std::lock_guard<std::mutex> lock(controller.refusalMutex);
        controller.refusal = Controller::Refusal();
    }
    // The Robot is the controller's from now on: its link's frames are this
    // controller's commands and errors.
    TcpConnectModule *link = robot->link();
    Controller *const owner = &controller;
    QObject::connect(
        link, &TcpConnectModule::commandSent, robot, [owner](quint16 command) { onSent(*owner, command); },
        Qt::DirectConnection);
    QObject::connect(
        link, &LinkNotifications::receivedError, robot, [owner](const QByteArray &payload) { onError(*owner, payload); },
        Qt::DirectConnection);
}

} // namespace qrx::api

using namespace qrx::api;

extern "C" {

int qrx_last_refusal(char *text, int size)
{
    QRX_CONTROLLER_OR_RETURN(controller, 0);
    std::lock_guard<std::mutex> lock(controller->refusalMutex);
    const Controller::Refusal &r = controller->refusal;
    copyText(r.answered ? r.text : std::string(), text, size);
    return r.answered;
}

int qrx_last_refusal_type(void)
{
    QRX_CONTROLLER_OR_RETURN(controller, 0);
    std::lock_guard<std::mutex> lock(controller->refusalMutex);
    return controller->refusal.answered ? controller->refusal.type : 0;
}

void qrx_clear_refusal(void)
{
    QRX_CONTROLLER_OR_RETURN(controller);
    std::lock_guard<std::mutex> lock(controller->refusalMutex);
    Controller::Refusal &r = controller->refusal;
    r.answered = 0;
    r.type = 0;
    r.text.clear();
}

int qrx_confirm(void)
{
    QRX_ROBOT_OR_RETURN(robot, -1);
    {
        std::lock_guard<std::mutex> lock(robot->replyMutex);
        // Its own reply ends the wait, whatever the host chose for getters.
        ReplyTicket ticket;
        ticket.reply = replyCodeFor(qrx::protocol::code::GetRunStatus);
        ticket.seen = replyCount(ticket.reply);
        if (!robot->send(qrx::protocol::code::GetRunStatus, payloadOf(withCurrentRobot(robot)))) {
            setLastCallTimedOut(true); // the link is down: no answer comes
            return -1;
        }
        awaitReply(robot, ticket);
    }
    if (qrx_last_call_timed_out())
        return -1;
    return qrx_last_refusal(nullptr, 0);
}

} // extern "C"
