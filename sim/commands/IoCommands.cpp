// IO, positions, global variables and positions, motor figures.
//
// Writes change the model and are answered with nothing:
//   0x3601 {"port","status"}   digital output, port 1..16
//   0x3607 {"port","value"}    analog output, port 1..16
//   0x5604 {"posName","coord","robot","pos"[14]}   global position
//   0x5607 {"varType","varName","varValue"}         global variable
// Queries are answered to the asking client with the family's report:
//   0x3602 -> 0x3603 {"status"[16]} digital outputs
//   0x3605 -> 0x3606 {"status"[16]} digital inputs (outputs looped back)
//   0x3608 -> 0x3609 {"status"[16]} analog outputs
//   0x360A -> 0x360B {"status"[16]} analog inputs (outputs looped back)
//   0x2F07 {"robot","coord"} -> 0x2F08 {"robot","coord","pos"[7],"posDeg"[7]}
//   0x7012 {"robot","coord"} -> 0x7013 {"robot","coord","pos"[5]}
//   0x5605 {"robot","posName"} -> 0x5606 {"robot","posName","posValue"[14]}
//   0x560B {"varType","varName"} -> 0x560C {"varName","varType","varValue"}
//   0x2A04 -> 0x2A05 {"robot","vel","maxVel"[7],"velSync","maxVelSync"[5]}
//   0x2A06 -> 0x2A07 {"robot","torq","theoTorq","maxTorq","maxTheoTorq"[7],
//                     "torqSync","maxTorqSync"[5]}
//   0x2A0A -> 0x2A0B {"robot","motorOverload"[7],"motorOverloadSync"[5]}
// Variables are kept by name with the "varType" sent: a GB (1) value as
// 0 or 1 (any non-zero is 1), GI (2) and names of no global type (0) cut to
// whole numbers, GD (3) as it is. Unknown variables and positions read as
// zero. The simulator has no kinematics, so every coordinate system reports
// the same axis values.
// Refused (error 0x2B03, nothing changes): ports outside 1..16, digital
// values other than 0 and 1, analog values outside -10..10 V, global
// positions in a coordinate system outside 0..3.

#include "sim/Session.h"
#include "sim/commands/Families.h"
#include "sim/commands/Refusal.h"

#include <algorithm>
#include <cmath>

namespace qrxsim {

namespace {

using Handler = std::function<void(Session &, const ReceivedFrame &)>;
using Report = Json::Value (*)(const ControllerModel &, const Json::Value &request);

// Rated figures of the simulated drives.
constexpr double kMaxVel[7] = {180, 180, 200, 300, 300, 400, 400};
constexpr double kMaxVelSync[5] = {120, 120, 90, 90, 60};
constexpr double kGravityTorque[7] = {0.0, 42.0, 18.0, 2.5, 1.5, 0.5, 0.0};
constexpr double kMaxTorque[7] = {120, 160, 90, 30, 25, 15, 15};
constexpr double kMaxTorqueSync[5] = {80, 80, 60, 60, 40};
constexpr double kPi = 3.14159265358979323846;

Json::Value array(const double *values, int n)
{
    Json::Value a(Json::arrayValue);
    for (int i = 0; i < n; ++i)
        a.append(values[i]);
    return a;
}

int robotOf(const ControllerModel &m, const Json::Value &request)
{
    return requestInt(request, "robot", m.currentRobot);
}

Json::Value ioReport(const double *values)
{
    Json::Value v(Json::objectValue);
    v["status"] = array(values, SimIo::ports);
    return v;
}

Json::Value doutReport(const ControllerModel &m, const Json::Value &) { return ioReport(m.io.dout.data()); }
Json::Value aoutReport(const ControllerModel &m, const Json::Value &) { return ioReport(m.io.aout.data()); }

// The inputs, looped back from the outputs port by port.
Json::Value inputReport(const SimIo &io, double (SimIo::*input)(int) const)
{
    double values[SimIo::ports];
    for (int i = 0; i < SimIo::ports; ++i)
        values[i] = (io.*input)(i);
    return ioReport(values);
}

Json::Value dinReport(const ControllerModel &m, const Json::Value &) { return inputReport(m.io, &SimIo::din); }
Json::Value ainReport(const ControllerModel &m, const Json::Value &) { return inputReport(m.io, &SimIo::ain); }

Json::Value positionReport(const ControllerModel &m, const Json::Value &request)
{
    Json::Value v(Json::objectValue);
    v["robot"] = robotOf(m, request);
    v["coord"] = requestInt(request, "coord", m.coordinate);
    v["pos"] = array(m.positionDeg, 7);
    v["posDeg"] = array(m.positionDeg, 7);
    return v;
}

Json::Value syncPositionReport(const ControllerModel &m, const Json::Value &request)
{
    Json::Value v(Json::objectValue);
    v["robot"] = robotOf(m, request);
    v["coord"] = requestInt(request, "coord", 0);
    v["pos"] = array(m.motion.sync.data(), 5);
    return v;
}

Json::Value globalPositionReport(const ControllerModel &m, const Json::Value &request)
{
    const std::string name = request.get("posName", "").asString();
    const auto it = m.globals.positions.find(name);
    const std::array<double, 14> none{};
    Json::Value v(Json::objectValue);
    v["robot"] = robotOf(m, request);
    v["posName"] = name;
    v["posValue"] = array((it != m.globals.positions.end() ? it->second : none).data(), 14);
    return v;
}

// Integers and booleans go out as JSON integers, reals as reals.
Json::Value variableReport(const ControllerModel &m, const Json::Value &request)
{
    const std::string name = request.get("varName", "").asString();
    const auto it = m.globals.variables.find(name);
    const SimVariable var = it != m.globals.variables.end() ? it->second
                                                             : SimVariable{requestInt(request, "varType"), 0.0};
    Json::Value v(Json::objectValue);
    v["varName"] = name;
    v["varType"] = var.varType;
    if (var.varType == 3)
        v["varValue"] = var.value;
    else
        v["varValue"] = int(var.value);
    return v;
}

Json::Value motorSpeedReport(const ControllerModel &m, const Json::Value &request)
{
    Json::Value v(Json::objectValue);
    v["robot"] = robotOf(m, request);
    v["vel"] = array(m.motion.axisSpeed.data(), 7);
    v["maxVel"] = array(kMaxVel, 7);
    v["velSync"] = array(m.motion.syncSpeed.data(), 5);
    v["maxVelSync"] = array(kMaxVelSync, 5);
    return v;
}

// Holding torque against gravity by the axis angle, plus a share for speed.
double theoreticalTorque(const ControllerModel &m, int axis)
{
    return kGravityTorque[axis] * std::cos(m.positionDeg[axis] * kPi / 180.0);
}

double torque(const ControllerModel &m, int axis)
{
    return theoreticalTorque(m, axis) + 0.05 * m.motion.axisSpeed[axis];
}

Json::Value motorTorqueReport(const ControllerModel &m, const Json::Value &request)
{
    double torq[7], theo[7], sync[5];
    for (int i = 0; i < 7; ++i) {
        torq[i] = torque(m, i);
        theo[i] = theoreticalTorque(m, i);
    }
    for (int i = 0; i < 5; ++i)
        sync[i] = 0.05 * m.motion.syncSpeed[i];
    Json::Value v(Json::objectValue);
    v["robot"] = robotOf(m, request);
    v["torq"] = array(torq, 7);
    v["theoTorq"] = array(theo, 7);
    v["maxTorq"] = array(kMaxTorque, 7);
    v["maxTheoTorq"] = array(kMaxTorque, 7);
    v["torqSync"] = array(sync, 5);
    v["maxTorqSync"] = array(kMaxTorqueSync, 5);
    return v;
}

// Load in percent of the rated torque.
Json::Value motorLoadReport(const ControllerModel &m, const Json::Value &request)
{
    double load[7], loadSync[5];
    for (int i = 0; i < 7; ++i)
        load[i] = std::fabs(torque(m, i)) / kMaxTorque[i] * 100.0;
    for (int i = 0; i < 5; ++i)
        loadSync[i] = 0.05 * m.motion.syncSpeed[i] / kMaxTorqueSync[i] * 100.0;
    Json::Value v(Json::objectValue);
    v["robot"] = robotOf(m, request);
    v["motorOverload"] = array(load, 7);
    v["motorOverloadSync"] = array(loadSync, 5);
    return v;
}

// A query answered to the asking client with the reply the protocol
// catalogue pairs with it.
CommandEntry answer(quint16 query, Report report)
{
    const quint16 reply = replyTo(query);
    return {query, [reply, report](Session &s, const ReceivedFrame &frame) {
                s.replyJson(reply, report(s.model(), requestObject(frame.payload)));
            }};
}

// Port 1..16 of an output array; null (and a refusal) for any other port.
double *port(Session &s, std::array<double, SimIo::ports> &outputs, const Json::Value &request, const char *what)
{
    const int n = requestInt(request, "port");
    if (!ranges::kPort.holds(n)) {
        refuse(s, Refusal::OutOfRange, outOfRange(std::string(what) + " port", n, ranges::kPort));
        return nullptr;
    }
    return &outputs[n - 1];
}

void setDout(Session &s, const ReceivedFrame &frame)
{
    const Json::Value request = requestObject(frame.payload);
    double *out = port(s, s.model().io.dout, request, "digital output");
    if (!out)
        return;
    const int status = requestInt(request, "status");
    if (!ranges::kDigital.holds(status)) {
        refuse(s, Refusal::OutOfRange, outOfRange("digital output value", status, ranges::kDigital));
        return;
    }
    *out = status;
}

void setAout(Session &s, const ReceivedFrame &frame)
{
    const Json::Value request = requestObject(frame.payload);
    double *out = port(s, s.model().io.aout, request, "analog output");
    if (!out)
        return;
    const double value = requestReal(request, "value");
    if (!ranges::kAnalog.holds(value)) {
        refuse(s, Refusal::OutOfRange, outOfRange("analog output value", value, ranges::kAnalog));
        return;
    }
    *out = value;
}

void setGlobalPosition(Session &s, const ReceivedFrame &frame)
{
    const Json::Value request = requestObject(frame.payload);
    const Json::Value pos = request.get("pos", Json::Value());
    if (!pos.isArray())
        return;
    const int coord = requestInt(request, "coord");
    if (!ranges::kCoordinate.holds(coord)) {
        refuse(s, Refusal::OutOfRange, outOfRange("global position coordinate system", coord, ranges::kCoordinate));
        return;
    }
    std::array<double, 14> values{};
    for (Json::ArrayIndex i = 0; i < pos.size() && i < values.size(); ++i)
        values[i] = pos[i].isNumeric() ? pos[i].asDouble() : 0.0;
    const std::string name = request.get("posName", "").asString();
    s.model().globals.positions[name] = values;
    s.model().globals.positionCoords[name] = coord;
}

void setGlobalVariable(Session &s, const ReceivedFrame &frame)
{
    const Json::Value request = requestObject(frame.payload);
    SimVariable var{requestInt(request, "varType"), requestReal(request, "varValue")};
    if (var.varType == 1)
        var.value = var.value != 0.0 ? 1.0 : 0.0;
    else if (var.varType != 3)
        var.value = std::trunc(var.value);
    s.model().globals.variables[request.get("varName", "").asString()] = var;
}

} // namespace

int globalVariableType(const std::string &name)
{
    static const char *const prefixes[] = {"GB", "GI", "GD"}; // varType 1, 2, 3
    if (name.size() != 5 || !std::all_of(name.begin() + 2, name.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return 0;
    for (int type = 1; type <= 3; ++type) {
        if (name.compare(0, 2, prefixes[type - 1]) == 0)
            return type;
    }
    return 0;
}

std::vector<CommandEntry> ioCommands()
{
    return {
        {code::SetDout, setDout},
        {code::SetAout, setAout},
        {code::SetGlobalPosition, setGlobalPosition},
        {code::SetGlobalVariable, setGlobalVariable},
        answer(code::GetDout, doutReport),
        answer(code::GetDin, dinReport),
        answer(code::GetAout, aoutReport),
        answer(code::GetAin, ainReport),
        answer(code::GetCurrentPosition, positionReport),
        answer(code::GetSyncPosition, syncPositionReport),
        answer(code::GetGlobalPosition, globalPositionReport),
        answer(code::GetGlobalVariable, variableReport),
        answer(code::GetMotorSpeed, motorSpeedReport),
        answer(code::GetMotorTorque, motorTorqueReport),
        answer(code::GetMotorLoad, motorLoadReport),
    };
}

} // namespace qrxsim
