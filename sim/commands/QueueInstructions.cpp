// The queued instructions the simulated controller executes, by type code:
//   1 MOVJ, 2 MOVL, 3 MOVC, 4 MOVCA, 6 MOVS   travel to the target point
//   5 IMOV                                     travel by the target's values
//   7 TIMER, 8 WAIT (without a condition)      wait "duration" seconds
//   15 CALL                                    run a job it holds (its lines at the job runner's pace)
//   16 DOUT, 21 AOUT                           set an output
//   17 DIN, 20 AIN                             read an input into a global variable
//   22 PULSEOUT                                the output on for "time" seconds, then off
// Moves: the target is the first six values of "RobotPos" "data" (the
// robot's axes; the simulator has no kinematics, so every coordinate type
// reads them as axis values), or with "posidtype" 1 the global position
// named "posidname" (robot axes 1..7, synchronous axes 1..5). The speed
// ("ParaV", else the flat "velocity"/"vUnit") is a percentage of the fastest
// axis speed, or mm/s or cm/s of which 1000 mm/s is full speed; axes move as
// the other moves do (all arriving together, passing exactly through each
// point: blending, acceleration and time are not simulated).
// Numbers may come from global variables (GB, GI, GD); local variables
// belong to jobs and are refused, as is every other instruction type, a
// WAIT with a condition, a port group, and values outside their ranges.

#include "sim/commands/QueueInstructions.h"

#include "sim/Ranges.h"
#include "sim/commands/Families.h"
#include "sim/commands/Refusal.h"

#include <algorithm>
#include <cmath>

namespace qrxsim {

namespace {

using Check = std::string (*)(const Json::Value &, const ControllerModel &);
using Start = std::string (*)(const Json::Value &, ControllerModel &, qint64 nowMs);

constexpr int kImov = 5;
constexpr int kPulseOut = 22;

// Numbered classes of a parameter's "value" (or an IO instruction's
// "varType"): 0 constant, 1 GB, 2 GI, 3 GD; 4..6 are local variables.
constexpr int kConstant = 0;
constexpr int kLastGlobalClass = 3;

const Json::Value &member(const Json::Value &object, const char *key)
{
    static const Json::Value null;
    return object.isObject() && object.isMember(key) ? object[key] : null;
}

double number(const Json::Value &object, const char *key)
{
    const Json::Value &v = member(object, key);
    return v.isNumeric() || v.isBool() ? v.asDouble() : 0.0;
}

std::string text(const Json::Value &object, const char *key)
{
    const Json::Value &v = member(object, key);
    return v.isString() ? v.asString() : std::string();
}

double globalValue(const ControllerModel &m, const std::string &name)
{
    const auto it = m.globals.variables.find(name);
    return it != m.globals.variables.end() ? it->second.value : 0.0;
}

void storeGlobal(ControllerModel &m, const std::string &name, double value)
{
    const int type = globalVariableType(name);
    if (type == 1)
        value = value != 0.0 ? 1.0 : 0.0;
    else if (type == 2)
        value = std::trunc(value);
    m.globals.variables[name] = SimVariable{type, value};
}

// A numeric parameter: the object under `objectKey` (its "value" class,
// "data" constant, "varname" variable), or else the flat key as a constant.
struct Para
{
    int cls = kConstant;
    double data = 0.0;
    std::string varname;
};

Para para(const Json::Value &instruction, const char *objectKey, const char *flatKey)
{
    Para p;
    const Json::Value &object = member(instruction, objectKey);
    if (!object.isObject()) {
        p.data = number(instruction, flatKey);
        return p;
    }
    p.cls = int(number(object, "value"));
    p.data = number(object, "data");
    p.varname = text(object, "varname");
    return p;
}

// Why the parameter cannot be used: a local or unknown variable, or a
// constant outside `range`.
std::string paraProblem(const Para &p, const char *what, const ValueRange &range)
{
    if (p.cls == kConstant)
        return range.holds(p.data) ? std::string() : std::string(what) + " " + rangeText(p.data, range);
    if (p.cls < 0 || p.cls > kLastGlobalClass || globalVariableType(p.varname) == 0)
        return std::string(what) + " from \"" + p.varname + "\": only global variables (GB, GI, GD) are held";
    return {};
}

double valueOf(const Para &p, const ControllerModel &m)
{
    return p.cls == kConstant ? p.data : globalValue(m, p.varname);
}

// ---- moves -------------------------------------------------------------------

Para speedOf(const Json::Value &instruction)
{
    return para(instruction, "ParaV", "velocity");
}

int speedUnit(const Json::Value &instruction)
{
    const Json::Value &object = member(instruction, "ParaV");
    return int(object.isObject() ? number(object, "m_vUnit") : number(instruction, "vUnit"));
}

bool unitKnown(int unit)
{
    return unit >= 0 && unit <= 2;
}

// The share of full speed (0..1) of a speed in its unit.
double speedShare(double speed, int unit)
{
    const double mmPerS = unit == 0 ? speed * 10.0 : speed;
    return unit == 2 ? speed / 100.0 : std::min(1.0, mmPerS / ranges::kFullSpeedMmPerS);
}

std::string checkMove(const Json::Value &instruction, const ControllerModel &)
{
    const int unit = speedUnit(instruction);
    if (!unitKnown(unit))
        return "speed unit " + std::to_string(unit) + " is not 0 (cm/s), 1 (mm/s) or 2 (%)";
    const std::string speed = paraProblem(speedOf(instruction), "speed", ranges::kQueueSpeed[unit]);
    if (!speed.empty())
        return speed;
    const int kind = int(number(instruction, "posidtype"));
    if (kind == 1)
        return text(instruction, "posidname").empty() ? "no global position named" : std::string();
    if (kind != 0)
        return "target kind " + std::to_string(kind) + " is not 0 (position) or 1 (global position)";
    const Json::Value &pos = member(instruction, "RobotPos");
    const Json::Value &data = member(pos, "data");
    if (!data.isArray() || data.size() < 6)
        return "no target position";
    const int ctype = int(number(pos, "ctype"));
    if (!ranges::kCoordinate.holds(ctype))
        return "target coordinate type " + rangeText(ctype, ranges::kCoordinate);
    if (int(number(instruction, "type")) == kImov)
        return {}; // where it ends is known when it starts
    for (Json::ArrayIndex i = 0; i < 6; ++i) {
        const double v = data[i].isNumeric() ? data[i].asDouble() : 0.0;
        if (!ranges::kRobotAxes[i].holds(v))
            return "axis " + std::to_string(i + 1) + " target " + rangeText(v, ranges::kRobotAxes[i]);
    }
    return {};
}

std::string startMove(const Json::Value &instruction, ControllerModel &m, qint64)
{
    SimWaypoint target = here(m);
    if (int(number(instruction, "posidtype")) == 1) {
        const std::string name = text(instruction, "posidname");
        const auto it = m.globals.positions.find(name);
        if (it == m.globals.positions.end())
            return "global position " + name + " does not exist";
        std::copy(it->second.begin(), it->second.begin() + 7, target.robot.begin());
        std::copy(it->second.begin() + 7, it->second.begin() + 12, target.sync.begin());
    } else {
        const Json::Value &data = member(member(instruction, "RobotPos"), "data");
        const bool incremental = int(number(instruction, "type")) == kImov;
        for (Json::ArrayIndex i = 0; i < 6; ++i)
            target.robot[i] = (incremental ? target.robot[i] : 0.0) + (data[i].isNumeric() ? data[i].asDouble() : 0.0);
    }
    const std::string outside = outsideLimits(target);
    if (!outside.empty())
        return outside;
    const int unit = speedUnit(instruction);
    const double speed = valueOf(speedOf(instruction), m);
    if (!ranges::kQueueSpeed[unit].holds(speed))
        return "speed " + rangeText(speed, ranges::kQueueSpeed[unit]);
    ContinuousMotion &c = m.continuous;
    c.target = target;
    c.speedShare = speedShare(speed, unit);
    c.phase = ContinuousMotion::Moving;
    m.motion.waypoints.assign(1, target);
    m.motion.speedShare = c.speedShare;
    return {};
}

// ---- waiting -----------------------------------------------------------------

Para durationOf(const Json::Value &instruction)
{
    return para(instruction, "paraTime", "duration");
}

void waitFor(ControllerModel &m, qint64 nowMs, double seconds)
{
    m.continuous.phase = ContinuousMotion::Waiting;
    m.continuous.waitUntilMs = nowMs + qint64(std::llround(std::max(0.0, seconds) * 1000.0));
}

std::string checkTimer(const Json::Value &instruction, const ControllerModel &)
{
    return paraProblem(durationOf(instruction), "duration", {0, 86400});
}

std::string checkWait(const Json::Value &instruction, const ControllerModel &m)
{
    const Json::Value &groups = member(member(instruction, "waitConditionFinal"), "conditionGroup");
    if (groups.isArray() && !groups.empty())
        return "WAIT with a condition cannot be executed";
    return checkTimer(instruction, m);
}

std::string startTimer(const Json::Value &instruction, ControllerModel &m, qint64 nowMs)
{
    waitFor(m, nowMs, valueOf(durationOf(instruction), m));
    return {};
}

std::string checkCall(const Json::Value &instruction, const ControllerModel &m)
{
    const std::string job = text(instruction, "jobName");
    return m.job.jobs.count(job) ? std::string() : "job not found: " + job;
}

std::string startCall(const Json::Value &instruction, ControllerModel &m, qint64 nowMs)
{
    const auto it = m.job.jobs.find(text(instruction, "jobName"));
    if (it == m.job.jobs.end())
        return "job not found: " + text(instruction, "jobName");
    waitFor(m, nowMs, it->second * SimJobRunner::lineMs / 1000.0);
    return {};
}

// ---- IO ----------------------------------------------------------------------

int portOf(const Json::Value &instruction)
{
    return int(number(instruction, "portId"));
}

bool variant(const Json::Value &instruction)
{
    return member(instruction, "valueIsVariant").asBool();
}

std::string checkPort(const Json::Value &instruction)
{
    if (number(instruction, "group") != 0)
        return "port groups cannot be executed";
    const int port = portOf(instruction);
    return ranges::kPort.holds(port) ? std::string() : "port " + rangeText(port, ranges::kPort);
}

std::string checkVariable(const Json::Value &instruction)
{
    const std::string name = text(instruction, "varName");
    return globalVariableType(name) != 0 ? std::string()
                                         : "variable \"" + name + "\": only global variables (GB, GI, GD) are held";
}

// An output: its port, and its value from a variable or "portValue".
std::string checkOutput(const Json::Value &instruction, const ValueRange &values)
{
    std::string problem = checkPort(instruction);
    if (problem.empty() && variant(instruction))
        problem = checkVariable(instruction);
    else if (problem.empty() && !values.holds(number(instruction, "portValue")))
        problem = "value " + rangeText(number(instruction, "portValue"), values);
    return problem;
}

double outputValue(const Json::Value &instruction, const ControllerModel &m)
{
    return variant(instruction) ? globalValue(m, text(instruction, "varName")) : number(instruction, "portValue");
}

// An input read into a variable.
std::string checkInput(const Json::Value &instruction, const ControllerModel &)
{
    std::string problem = checkPort(instruction);
    if (problem.empty())
        problem = checkVariable(instruction);
    return problem;
}

std::string checkDout(const Json::Value &instruction, const ControllerModel &)
{
    return checkOutput(instruction, ranges::kDigital);
}

std::string checkAout(const Json::Value &instruction, const ControllerModel &)
{
    return checkOutput(instruction, ranges::kAnalog);
}

std::string startDout(const Json::Value &instruction, ControllerModel &m, qint64)
{
    m.io.dout[portOf(instruction) - 1] = outputValue(instruction, m) != 0.0 ? 1.0 : 0.0;
    return {};
}

std::string startAout(const Json::Value &instruction, ControllerModel &m, qint64)
{
    const double value = outputValue(instruction, m);
    if (!ranges::kAnalog.holds(value))
        return "analog value " + rangeText(value, ranges::kAnalog);
    m.io.aout[portOf(instruction) - 1] = value;
    return {};
}

std::string startDin(const Json::Value &instruction, ControllerModel &m, qint64)
{
    storeGlobal(m, text(instruction, "varName"), m.io.din(portOf(instruction) - 1));
    return {};
}

std::string startAin(const Json::Value &instruction, ControllerModel &m, qint64)
{
    storeGlobal(m, text(instruction, "varName"), m.io.ain(portOf(instruction) - 1));
    return {};
}

std::string checkPulse(const Json::Value &instruction, const ControllerModel &)
{
    std::string problem = checkPort(instruction);
    if (problem.empty() && number(instruction, "time") < 0)
        problem = "pulse time " + numberText(number(instruction, "time")) + " is negative";
    return problem;
}

std::string startPulse(const Json::Value &instruction, ControllerModel &m, qint64 nowMs)
{
    const int port = portOf(instruction);
    m.io.dout[port - 1] = 1.0;
    m.continuous.pulsePort = port;
    waitFor(m, nowMs, number(instruction, "time"));
    return {};
}

// ---- the table -----------------------------------------------------------------

struct Kind
{
    int type;
    const char *name;
    Check check;
    Start start;
};

const Kind kKinds[] = {
    {1, "MOVJ", checkMove, startMove},          {2, "MOVL", checkMove, startMove},
    {3, "MOVC", checkMove, startMove},          {4, "MOVCA", checkMove, startMove},
    {5, "IMOV", checkMove, startMove},          {6, "MOVS", checkMove, startMove},
    {7, "TIMER", checkTimer, startTimer},       {8, "WAIT (no condition)", checkWait, startTimer},
    {15, "CALL", checkCall, startCall},         {16, "DOUT", checkDout, startDout},
    {17, "DIN", checkInput, startDin},          {20, "AIN", checkInput, startAin},
    {21, "AOUT", checkAout, startAout},         {kPulseOut, "PULSEOUT", checkPulse, startPulse},
};

const Kind *kindOf(const Json::Value &instruction)
{
    const int type = int(number(instruction, "type"));
    for (const Kind &kind : kKinds) {
        if (kind.type == type)
            return &kind;
    }
    return nullptr;
}

bool disabled(const Json::Value &instruction)
{
    return member(instruction, "logout").asBool();
}

} // namespace

std::string notExecutable(const Json::Value &instruction, const ControllerModel &model)
{
    if (!instruction.isObject())
        return "not an instruction object";
    if (disabled(instruction))
        return {};
    const Kind *kind = kindOf(instruction);
    if (!kind)
        return "type " + numberText(number(instruction, "type")) + " cannot be executed by the simulator";
    return kind->check(instruction, model);
}

std::string startInstruction(const Json::Value &instruction, ControllerModel &model, qint64 nowMs)
{
    model.continuous.phase = ContinuousMotion::Idle;
    const Kind *kind = kindOf(instruction);
    if (disabled(instruction) || !kind)
        return {};
    return kind->start(instruction, model, nowMs);
}

void finishWaiting(ControllerModel &model)
{
    ContinuousMotion &c = model.continuous;
    if (c.pulsePort >= 1 && c.pulsePort <= SimIo::ports)
        model.io.dout[c.pulsePort - 1] = 0.0;
    c.pulsePort = 0;
    c.phase = ContinuousMotion::Idle;
}

std::vector<std::string> executedInstructions()
{
    std::vector<std::string> names;
    for (const Kind &kind : kKinds)
        names.push_back(std::string(kind.name) + " (" + std::to_string(kind.type) + ")");
    return names;
}

} // namespace qrxsim
