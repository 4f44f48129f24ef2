// Servo, operating mode, coordinate, deadman, speed, test mode, position,
// tool and running state. The controller answers each query with its report
// to the asking client; a set command changes the controller state and the
// report of the new state goes to every client, as a real controller tells
// every pendant. Only the keys that the host's handlers read are written.

#include "common/Payload.h"
#include "sim/Session.h"
#include "sim/Simulator.h"
#include "sim/commands/Families.h"

namespace qrxsim {

namespace {

using Handler = std::function<void(Session &, const ReceivedFrame &)>;
using Report = void (*)(Session &, int robot, bool toAll);

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

void out(Session &session, bool toAll, quint16 code, const Json::Value &value)
{
    if (toAll)
        session.broadcastJson(code, value);
    else
        session.replyJson(code, value);
}

void reportServo(Session &s, int robot, bool toAll)
{
    Json::Value v(Json::objectValue);
    v["mode"] = s.model().operationMode;
    v["robot"] = robot;
    v["status"] = s.model().servoStatus;
    out(s, toAll, 0x2003, v);
}

void reportMode(Session &s, int, bool toAll)
{
    Json::Value v(Json::objectValue);
    v["mode"] = s.model().operationMode;
    out(s, toAll, 0x2103, v);
}

void reportCoordinate(Session &s, int robot, bool toAll)
{
    Json::Value v(Json::objectValue);
    v["coord"] = s.model().coordinate;
    v["robot"] = robot;
    out(s, toAll, 0x2203, v);
}

void reportDeadman(Session &s, int, bool toAll)
{
    Json::Value v(Json::objectValue);
    v["deadman"] = s.model().deadman;
    out(s, toAll, 0x2303, v);
}

void reportSpeed(Session &s, int robot, bool toAll)
{
    Json::Value v(Json::objectValue);
    v["robot"] = robot;
    v["speed"] = s.model().speed;
    out(s, toAll, 0x2603, v);
}

void reportTestMode(Session &s, int, bool toAll)
{
    const QByteArray payload(1, static_cast<char>(s.model().testMode));
    if (toAll)
        s.broadcast(0x2703, payload);
    else
        s.reply(0x2703, payload);
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
    out(s, toAll, 0x2A03, v);
}

void reportTool(Session &s, int robot, bool toAll)
{
    Json::Value v(Json::objectValue);
    v["curToolNum"] = s.model().currentTool;
    v["robot"] = robot;
    out(s, toAll, 0x380C, v);
}

void reportRunStatus(Session &s, int robot, bool toAll)
{
    Json::Value v(Json::objectValue);
    v["robot"] = robot;
    v["status"] = s.model().runStatus;
    out(s, toAll, 0x3D03, v);
}

// A query: the report, to the asking client.
Handler query(Report report)
{
    return [report](Session &session, const ReceivedFrame &frame) {
        Json::Value request;
        if (!qrx::parsePayload(frame.payload, request) || !request.isObject())
            request = Json::Value(Json::objectValue); // empty query: the default robot
        report(session, robotOf(session, request), false);
    };
}

// A JSON set command: apply it to the model, then the report, to everyone.
using Apply = void (*)(ControllerModel &, const Json::Value &);
Handler set(Apply apply, Report report)
{
    return [apply, report](Session &session, const ReceivedFrame &frame) {
        Json::Value request;
        if (!qrx::parsePayload(frame.payload, request) || !request.isObject())
            return;
        apply(session.model(), request);
        report(session, robotOf(session, request), true);
    };
}

} // namespace

std::vector<CommandEntry> statusCommands()
{
    return {
        {0x2001, set([](ControllerModel &m, const Json::Value &r) { m.servoStatus = intOf(r, "status", m.servoStatus); },
                     reportServo)},
        {0x2101, set([](ControllerModel &m, const Json::Value &r) { m.operationMode = intOf(r, "mode", m.operationMode); },
                     reportMode)},
        {0x2201, set([](ControllerModel &m, const Json::Value &r) { m.coordinate = intOf(r, "coord", m.coordinate); },
                     reportCoordinate)},
        {0x2301, set([](ControllerModel &m, const Json::Value &r) { m.deadman = intOf(r, "deadman", m.deadman); },
                     reportDeadman)},
        {0x2601, set([](ControllerModel &m, const Json::Value &r) { m.speed = intOf(r, "speed", m.speed); },
                     reportSpeed)},
        // The test mode is the one raw byte of the status family.
        {0x2701,
         [](Session &session, const ReceivedFrame &frame) {
             if (frame.payload.size() != 1)
                 return;
             session.model().testMode = static_cast<qint8>(frame.payload.at(0));
             reportTestMode(session, session.model().currentRobot, true);
         }},

        {0x2002, query(reportServo)},
        {0x2102, query(reportMode)},
        {0x2202, query(reportCoordinate)},
        {0x2602, query(reportSpeed)},
        {0x2702, query(reportTestMode)},
        {0x2A02, query(reportPosition)},
        {0x380B, query(reportTool)},
        {0x3D02, query(reportRunStatus)},
    };
}

} // namespace qrxsim
