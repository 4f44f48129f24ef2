// The reports a controller sends about its robots.
//
// On its own, right after a client connects, it tells the newcomer what it
// drives, in this order: the robot type (0x2E03), the robot count (0x2E06),
// the current robot (0x5003), the servo state of the current robot (0x2003)
// and the operating mode (0x2103), so a fresh host holds a coherent state
// before it asks anything.
//
// On request it answers the robot count query (0x2E05 -> 0x2E06) and the
// current robot query (0x5002 -> 0x5003), and takes a change of the current
// robot (0x5001 {"robot"}), reported to every client.
//
// Any other report (status, positions, IO, errors, warnings, information)
// is sent on request by SimHandle::send / sendJson with the payload a test
// writes out in full.

#include "common/Payload.h"
#include "sim/Session.h"
#include "sim/commands/Families.h"

namespace qrxsim {

namespace {

// A pendant's change of the current robot: the controller's own command,
// which the library never sends.
constexpr quint16 kSelectRobot = 0x5001;

Json::Value robotCountReport(const ControllerModel &m)
{
    Json::Value v(Json::objectValue);
    v["sum"] = m.robotCount;
    return v;
}

// "mode" 1 while the controller drives several robots.
Json::Value currentRobotReport(const ControllerModel &m)
{
    Json::Value v(Json::objectValue);
    v["mode"] = m.robotCount > 1 ? 1 : 0;
    v["robot"] = m.currentRobot;
    return v;
}

} // namespace

std::vector<ConnectEntry> robotReportsOnConnect()
{
    return {
        {"robot type", [](Session &s) { s.replyJson(replyTo(code::GetRobotType), robotTypeReportPayload(s.model())); }},
        {"robot count", [](Session &s) { s.replyJson(replyTo(code::GetRobotCount), robotCountReport(s.model())); }},
        {"current robot", [](Session &s) { s.replyJson(replyTo(code::GetCurrentRobot), currentRobotReport(s.model())); }},
        {"servo state",
         [](Session &s) { s.replyJson(replyTo(code::GetServoStatus), servoReport(s.model(), s.model().currentRobot)); }},
        {"operating mode", [](Session &s) { s.replyJson(replyTo(code::GetOperationMode), modeReport(s.model())); }},
    };
}

std::vector<CommandEntry> robotReportCommands()
{
    return {
        {code::GetRobotCount,
         [](Session &s, const ReceivedFrame &) { s.replyJson(replyTo(code::GetRobotCount), robotCountReport(s.model())); }},
        {code::GetCurrentRobot,
         [](Session &s, const ReceivedFrame &) { s.replyJson(replyTo(code::GetCurrentRobot), currentRobotReport(s.model())); }},
        {kSelectRobot,
         [](Session &s, const ReceivedFrame &frame) {
             Json::Value request;
             if (!qrx::parsePayload(frame.payload, request) || !request.isObject())
                 return;
             const Json::Value robot = request.get("robot", Json::Value());
             if (!robot.isIntegral() || robot.asInt() < 1 || robot.asInt() > s.model().robotCount)
                 return;
             s.model().currentRobot = robot.asInt();
             s.broadcastJson(replyTo(code::GetCurrentRobot), currentRobotReport(s.model()));
         }},
    };
}

} // namespace qrxsim
