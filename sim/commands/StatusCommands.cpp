// Servo, operating mode, coordinate, deadman, speed, test mode, position,
// tool and running state. The controller answers each query with its report
// to the asking client; a set command changes the controller state and the
// report of the new state goes to every client, as a real controller tells
// every pendant. Only the keys that the host's handlers read are written.
// A mode, coordinate system, deadman value or jog speed outside its range
// (sim/Ranges.h) is refused: error 0x2B03, no state change, no report.

#include "common/CompactJson.h"
#include "common/Payload.h"
#include "sim/Session.h"
#include "sim/Simulator.h"
#include "sim/commands/Families.h"
#include "sim/commands/Refusal.h"

namespace qrxsim {

namespace {

using Handler = std::function<void(Session &, const ReceivedFrame &)>;
using Report = std::function<void(Session &, int robot, bool toAll)>;

// Reports name the robot that was asked about, or the controller's default.
int robotOf(Session &session, const Json::Value &request)
{
    const Json::Value robot = request.get("robot", Json::Value());
    return robot.isIntegral() ? robot.asInt() : session.model().currentRobot;
}

int intOf(const Json::Value &request, const char *key, int fallback)
{
    const Json::Value v = request.get(key, Json::Value());
    return v.isNumeric() ? v.asInt() : fallback;
}

void out(Session &session, bool toAll, quint16 code, const QByteArray &payload)
{
    if (toAll)
        session.broadcast(code, payload);
    else
        session.reply(code, payload);
}

// A report of model numbers: its code and up to three members, each a
// field of the model or, without one, the robot the report is about.
struct Member
{
    const char *key;
    int ControllerModel::*field;
};
struct NumberReport
{
    quint16 code;
    Member members[3];
};

const NumberReport kServo = {replyTo(code::GetServoStatus),
                             {{"mode", &ControllerModel::operationMode},
                              {"robot", nullptr},
                              {"status", &ControllerModel::servoStatus}}};
const NumberReport kMode = {replyTo(code::GetOperationMode), {{"mode", &ControllerModel::operationMode}}};
const NumberReport kCoordinate = {replyTo(code::GetCoordinationMode), {{"coord", &ControllerModel::coordinate}, {"robot", nullptr}}};
const NumberReport kDeadman = {replyTo(code::SetDeadman), {{"deadman", &ControllerModel::deadman}}};
const NumberReport kSpeed = {replyTo(code::GetSpeed), {{"robot", nullptr}, {"speed", &ControllerModel::speed}}};
const NumberReport kTool = {replyTo(code::GetCurrentTool), {{"curToolNum", &ControllerModel::currentTool}, {"robot", nullptr}}};
const NumberReport kRunStatus = {replyTo(code::GetRunStatus), {{"robot", nullptr}, {"status", &ControllerModel::runStatus}}};

Json::Value payloadOf(const NumberReport &report, const ControllerModel &m, int robot)
{
    Json::Value v(Json::objectValue);
    for (const Member &member : report.members)
        if (member.key)
            v[member.key] = member.field ? m.*member.field : robot;
    return v;
}

Report numbers(const NumberReport &report)
{
    return [&report](Session &s, int robot, bool toAll) {
        out(s, toAll, report.code, qrx::jsonPayload(payloadOf(report, s.model(), robot)));
    };
}

// The test mode is the one raw byte of the status family.
void reportTestMode(Session &s, int, bool toAll)
{
    out(s, toAll, replyTo(code::GetTestMode), QByteArray(1, static_cast<char>(s.model().testMode)));
}

void reportPosition(Session &s, int robot, bool toAll)
{
    Json::Value v(Json::objectValue);
    Json::Value pos(Json::arrayValue);
    for (double d : s.model().positionDeg)
        pos.append(d);
    v["posDeg"] = pos;
    v["coord"] = s.model().coordinate;
    v["robot"] = robot;
    v["configuration"] = s.model().configuration;
    out(s, toAll, replyTo(code::GetPosition), qrx::jsonPayload(v));
}

// A query: the report, to the asking client.
Handler query(Report report)
{
    return [report](Session &session, const ReceivedFrame &frame) {
        // An empty query is about the default robot.
        report(session, robotOf(session, requestObject(frame.payload)), false);
    };
}

// A JSON set command: the model field takes the key's number (kept when the
// key is missing or not a number), then the report goes to everyone. A
// number outside `range` (when there is one) is refused and changes nothing.
Handler set(const char *key, int ControllerModel::*field, Report report, const ValueRange *range = nullptr)
{
    return [key, field, report, range](Session &session, const ReceivedFrame &frame) {
        Json::Value request;
        if (!qrx::parsePayload(frame.payload, request) || !request.isObject())
            return;
        ControllerModel &m = session.model();
        const int value = intOf(request, key, m.*field);
        if (range && !range->holds(value)) {
            refuse(session, Refusal::OutOfRange, outOfRange(key, value, *range));
            return;
        }
        m.*field = value;
        report(session, robotOf(session, request), true);
    };
}

} // namespace

Json::Value servoReport(const ControllerModel &model, int robot)
{
    return payloadOf(kServo, model, robot);
}

Json::Value modeReport(const ControllerModel &model)
{
    return payloadOf(kMode, model, model.currentRobot);
}

Json::Value runStatusReport(const ControllerModel &model)
{
    return payloadOf(kRunStatus, model, model.currentRobot);
}

std::vector<CommandEntry> statusCommands()
{
    return {
        {code::SetServoStatus, set("status", &ControllerModel::servoStatus, numbers(kServo))},
        {code::SetOperationMode, set("mode", &ControllerModel::operationMode, numbers(kMode), &ranges::kMode)},
        {code::SetCoordinationMode, set("coord", &ControllerModel::coordinate, numbers(kCoordinate), &ranges::kCoordinate)},
        {code::SetDeadman, set("deadman", &ControllerModel::deadman, numbers(kDeadman), &ranges::kDeadman)},
        {code::SetSpeed, set("speed", &ControllerModel::speed, numbers(kSpeed), &ranges::kJogSpeed)},
        {code::SetTestMode,
         [](Session &session, const ReceivedFrame &frame) {
             if (frame.payload.size() != 1)
                 return;
             session.model().testMode = static_cast<qint8>(frame.payload.at(0));
             reportTestMode(session, session.model().currentRobot, true);
         }},

        {code::GetServoStatus, query(numbers(kServo))},
        {code::GetOperationMode, query(numbers(kMode))},
        {code::GetCoordinationMode, query(numbers(kCoordinate))},
        {code::GetSpeed, query(numbers(kSpeed))},
        {code::GetTestMode, query(reportTestMode)},
        {code::GetPosition, query(reportPosition)},
        {code::GetCurrentTool, query(numbers(kTool))},
        {code::GetRunStatus, query(numbers(kRunStatus))},
    };
}

} // namespace qrxsim
