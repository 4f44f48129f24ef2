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
#include <unordered_set>

namespace qrx::api {

namespace {

constexpr int kServoAlarmType = 0x6010;

struct Refusals
{
    std::mutex mutex;
    const Robot *robot = nullptr; // the Robot whose link is watched (compared, never used)
    const TcpConnectModule *link = nullptr; // its link (compared, never used)
    quint16 lastCommand = 0;      // the last command sent (0: none yet)
    quint16 answered = 0;         // the command the kept refusal answered (0: none)
    int type = 0;                 // its "type" (0 when it had none)
    std::string text;             // its "data"
    std::unordered_set<const Robot *> wired; // Robots whose link is connected to this
};

Refusals &refusals()
{
    static Refusals *all = new Refusals; // reached from library threads until the end
    return *all;
}

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

void onSent(const TcpConnectModule *link, quint16 command)
{
    if (!isHostCommand(command))
        return;
    Refusals &r = refusals();
    std::lock_guard<std::mutex> lock(r.mutex);
    if (link && r.link == link)
        r.lastCommand = command;
}

void onError(const Robot *robot, const QByteArray &payload)
{
    Json::Value root;
    if (!parsePayload(payload, root) || !root.isObject() || !root.isMember("data"))
        return;
    const bool typed = root.isMember("type");
    const int type = typed ? jsonInt(root, "type") : 0;
    if (typed && type == kServoAlarmType)
        return;
    Refusals &r = refusals();
    std::lock_guard<std::mutex> lock(r.mutex);
    if (r.robot != robot || r.lastCommand == 0 || r.answered != 0)
        return;
    r.answered = r.lastCommand;
    r.type = type;
    r.text = jsonText(jsonMember(root, "data"));
}

} // namespace

void attachRefusals(Robot *robot)
{
    {
        Refusals &r = refusals();
        std::lock_guard<std::mutex> lock(r.mutex);
        r.robot = robot;
        r.link = robot->link();
        r.lastCommand = r.answered = 0;
        r.type = 0;
        r.text.clear();
        // A Robot that connects again keeps the connections it has.
        if (!r.wired.insert(robot).second)
            return;
    }
    QObject::connect(robot, &QObject::destroyed, [robot] {
        Refusals &r = refusals();
        std::lock_guard<std::mutex> lock(r.mutex);
        r.wired.erase(robot);
        if (r.robot == robot) {
            r.robot = nullptr;
            r.link = nullptr;
        }
    });
    TcpConnectModule::setSendObserver(onSent);
    TcpConnectModule *link = robot->link();
    QObject::connect(
        link, &LinkNotifications::receivedError, robot, [robot](const QByteArray &payload) { onError(robot, payload); },
        Qt::DirectConnection);
}

} // namespace qrx::api

using namespace qrx::api;

extern "C" {

int qrx_last_refusal(char *text, int size)
{
    Refusals &r = refusals();
    std::lock_guard<std::mutex> lock(r.mutex);
    copyText(r.answered ? r.text : std::string(), text, size);
    return r.answered;
}

int qrx_last_refusal_type(void)
{
    Refusals &r = refusals();
    std::lock_guard<std::mutex> lock(r.mutex);
    return r.answered ? r.type : 0;
}

void qrx_clear_refusal(void)
{
    Refusals &r = refusals();
    std::lock_guard<std::mutex> lock(r.mutex);
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
        ticket.seen = replyCount(robot, ticket.reply);
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
