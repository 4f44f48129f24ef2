// The controller's robot parameters, tools, user frames and calibrations.
//
// On request it answers:
//   0x2E02 robot type query          -> 0x2E03 {"type": wire code}
//   0x3806 tool query {"toolNum"}    -> 0x3807 tool record of that tool
//   0x3C0A user frame inquiry        -> 0x3C09 user frame record
//   0x3C0B current user frame query  -> 0x3C0C {"curUserNum"}
//   0x7207 four-point query          -> 0x7208 {"status"[4],"result","length"[3],"dtheta"}
//   0x7201 four-point calculation    -> 0x7204 {"result","length"[3],"dtheta"}
//   0x7205 DH calculation result     -> 0x7206 {"apply"}
//   0x3301 axis zero position        -> 0x3303 {"axis"}
// and takes the settings:
//   0x3805 tool parameters {"robot","toolNum","tool":{"x","y","z","A","B","C"}}
//   0x3C08 user frame selection {"robot","userNum"}, reported with 0x3C0C to every client
//   0x7202 four-point mark {"pointNum","status"}
//   0x3307 zero offset {"axis","robot","value"[7]}
// Every other report of the robot's parameters and processes is sent on
// request with SimHandle::send / sendJson.

#include "common/Payload.h"
#include "sim/Session.h"
#include "sim/commands/Families.h"
#include "sim/commands/Refusal.h"

namespace qrxsim {

namespace {

using Handler = std::function<void(Session &, const ReceivedFrame &)>;

int intOf(const Json::Value &request, const char *key, int fallback = 0)
{
    const Json::Value v = request.get(key, Json::Value());
    return v.isNumeric() ? v.asInt() : fallback;
}

Json::Value reals(const double *values, int n)
{
    Json::Value array(Json::arrayValue);
    for (int i = 0; i < n; ++i)
        array.append(values[i]);
    return array;
}

Json::Value toolReport(const ControllerModel &m, int toolNum)
{
    const SimTool tool = m.tools.count(toolNum) ? m.tools.at(toolNum) : SimTool();
    Json::Value v(Json::objectValue);
    v["toolNum"] = toolNum;
    v["toolDeg"] = reals(tool.deg, 6);
    v["payload_mass"] = tool.mass;
    v["payload_inertia"] = tool.inertia;
    v["payload_mass_center_X"] = tool.massCenter[0];
    v["payload_mass_center_Y"] = tool.massCenter[1];
    v["payload_mass_center_Z"] = tool.massCenter[2];
    v["note"] = tool.note;
    return v;
}

Json::Value currentUserFrameReport(const ControllerModel &m)
{
    Json::Value v(Json::objectValue);
    v["curUserNum"] = m.currentUserFrame;
    return v;
}

Json::Value userFrameReport(const ControllerModel &m, int userNum)
{
    Json::Value v(Json::objectValue);
    v["userNum"] = userNum;
    v["inquire"] = 1;
    v["status"] = 1;
    v["Calibration"] = 1;
    const auto frame = m.userFrames.find(userNum);
    static const double none[6] = {};
    v["posDeg"] = reals(frame != m.userFrames.end() ? frame->second.data() : none, m.userFrameValues);
    return v;
}

bool allPointsMarked(const ControllerModel &m)
{
    for (int status : m.fourPointStatus)
        if (status == 0)
            return false;
    return true;
}

Json::Value fourPointResult(const ControllerModel &m)
{
    Json::Value v(Json::objectValue);
    v["result"] = allPointsMarked(m) ? 1 : 0;
    v["length"] = reals(m.fourPointLength, 3);
    v["dtheta"] = m.fourPointDtheta;
    return v;
}

Json::Value fourPointReport(const ControllerModel &m)
{
    Json::Value v = fourPointResult(m);
    Json::Value status(Json::arrayValue);
    for (int s : m.fourPointStatus)
        status.append(s);
    v["status"] = status;
    return v;
}

// A query answered to the asking client with the reply the protocol
// catalogue pairs with it.
CommandEntry answer(quint16 query, Json::Value (*report)(const ControllerModel &))
{
    const quint16 reply = replyTo(query);
    return {query, [reply, report](Session &s, const ReceivedFrame &) { s.replyJson(reply, report(s.model())); }};
}

} // namespace

Json::Value robotTypeReportPayload(const ControllerModel &m)
{
    Json::Value v(Json::objectValue);
    v["type"] = m.robotTypeWire;
    return v;
}

std::vector<CommandEntry> robotParamCommands()
{
    return {
        answer(code::GetRobotType, robotTypeReportPayload),
        {code::SetToolData,
         [](Session &s, const ReceivedFrame &frame) {
             const Json::Value request = requestObject(frame.payload);
             const Json::Value values = request.get("tool", Json::Value());
             if (!values.isObject())
                 return;
             SimTool &tool = s.model().tools[intOf(request, "toolNum")];
             const char *const keys[6] = {"x", "y", "z", "A", "B", "C"};
             for (int i = 0; i < 6; ++i)
                 tool.deg[i] = requestReal(values, keys[i]);
         }},
        {code::GetToolData,
         [](Session &s, const ReceivedFrame &frame) {
             s.replyJson(replyTo(code::GetToolData), toolReport(s.model(), intOf(requestObject(frame.payload), "toolNum")));
         }},
        {code::SetCurrentUserFrame,
         [](Session &s, const ReceivedFrame &frame) {
             s.model().currentUserFrame = intOf(requestObject(frame.payload), "userNum", s.model().currentUserFrame);
             s.broadcastJson(replyTo(code::SetCurrentUserFrame), currentUserFrameReport(s.model()));
         }},
        {code::GetUserFrame,
         [](Session &s, const ReceivedFrame &frame) {
             s.replyJson(replyTo(code::GetUserFrame), userFrameReport(s.model(), intOf(requestObject(frame.payload), "userNum")));
         }},
        answer(code::GetCurrentUserFrame, currentUserFrameReport),
        {code::MarkFourPoint,
         [](Session &s, const ReceivedFrame &frame) {
             const Json::Value request = requestObject(frame.payload);
             const int point = intOf(request, "pointNum");
             if (point >= 1 && point <= 4)
                 s.model().fourPointStatus[point - 1] = intOf(request, "status");
         }},
        answer(code::GetFourPoint, fourPointReport),
        {code::SetFourPointParams,
         [](Session &s, const ReceivedFrame &frame) {
             const Json::Value params = requestObject(frame.payload).get("ParamOf4Points", Json::Value());
             s.model().fourPointParams.clear();
             if (params.isArray())
                 for (const Json::Value &p : params)
                     s.model().fourPointParams.push_back(p.isNumeric() ? p.asDouble() : 0.0);
             s.replyJson(replyTo(code::SetFourPointParams), fourPointResult(s.model()));
         }},
        {code::ApplyFourPointDh,
         [](Session &s, const ReceivedFrame &) {
             Json::Value v(Json::objectValue);
             v["apply"] = s.model().dhApply;
             s.replyJson(replyTo(code::ApplyFourPointDh), v);
         }},
        {code::CalibrateZero,
         [](Session &s, const ReceivedFrame &frame) {
             const int axis = intOf(requestObject(frame.payload), "axis");
             s.model().zeroedAxes.push_back(axis);
             Json::Value v(Json::objectValue);
             v["axis"] = axis;
             s.replyJson(replyTo(code::CalibrateZero), v);
         }},
        {code::SetZeroShift,
         [](Session &s, const ReceivedFrame &frame) {
             const Json::Value request = requestObject(frame.payload);
             const int axis = intOf(request, "axis");
             const Json::Value value = request.get("value", Json::Value());
             if (axis >= 1 && axis <= 7 && value.isArray() && Json::ArrayIndex(axis - 1) < value.size()
                 && value[axis - 1].isNumeric())
                 s.model().zeroShift[axis - 1] = value[axis - 1].asDouble();
         }},
    };
}

} // namespace qrxsim
