// The record reports that fill the caches the host API copies out after a
// wake: positions, IO arrays, motor figures, cycle values, global
// variables, and the job reports. Decoders are pure (ReportTable.h); a
// report that holds none of its content keys is not taken.

#include "robot/Decoders.h"

#include "common/GlobalVarName.h"
#include "common/JsonRead.h"
#include "common/Payload.h"
#include "link/PositionReport.h"
#include "robot/HandlerLines.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"

#include <QCoreApplication>
#include <QMetaMethod>

#include <algorithm>

namespace qrx::decoders {

namespace {

// Fills cache arrays, element by element (at most count each), once the
// report holds at least one of their members.
struct CacheArray
{
    const char *key;
    double *out;
    int count;
};

Change fillArrays(const Json::Value &report, std::initializer_list<CacheArray> arrays)
{
    bool anyKey = false;
    for (const CacheArray &array : arrays)
        anyKey = anyKey || hasAnyKey(report, {array.key});
    if (!anyKey)
        return {};
    for (const CacheArray &array : arrays)
        jsonReals(report, array.key, array.out, array.count);
    return taken();
}

// "robot coord v0 v1 ... v6": integers in decimal, reals with 4 decimals,
// one blank between fields; as many values as the array holds (at most 7).
QByteArray positionLine(int robot, int coord, const Json::Value &report, const char *key)
{
    double values[7];
    const int n = jsonReals(report, key, values, 7);
    QString line = QString::number(robot) + QLatin1Char(' ') + QString::number(coord);
    for (int i = 0; i < n; ++i)
        line += QLatin1Char(' ') + QString::number(values[i], 'f', 4);
    return line.toUtf8();
}

} // namespace

// ---- positions -------------------------------------------------------------

// 0x2F08 {"robot","coord","pos"[7],"posDeg"[7]}: currentPosition =
// "pos"[0..5], kept also as jointPosition (coord 0) or cartesianPosition (1).
Change position(const Json::Value &report, RobotState &state)
{
    Change change = fillArrays(report, {{"pos", state.currentPosition, 6}});
    const int coord = jsonInt(report, "coord");
    if (change.taken && (coord == 0 || coord == 1))
        std::copy(state.currentPosition, state.currentPosition + 6,
                  coord == 0 ? state.jointPosition : state.cartesianPosition);
    return change;
}

// receive_moreRobot_CurPosition(posDeg line, pos line); a controller may
// stream these reports fast, so the lines are built only for a listener.
void notifyPosition(RobotSignals &to, const Change &, const QByteArray &payload)
{
    static const QMetaMethod lines = QMetaMethod::fromSignal(&RobotSignals::receive_moreRobot_CurPosition);
    if (!to.isListened(lines))
        return;
    Json::Value report;
    parsePayload(payload, report);
    const int robot = jsonInt(report, "robot");
    const int coord = jsonInt(report, "coord");
    emit to.receive_moreRobot_CurPosition(positionLine(robot, coord, report, "posDeg"),
                                          positionLine(robot, coord, report, "pos"));
}

// 0x2A03: the position stream, relayed as decoded (link/PositionReport.h).
void notifyPositionRelay(RobotSignals &to, const Change &, const QByteArray &payload)
{
    PositionReport report;
    if (decodePositionReport(payload, report))
        emit to.robot_position_update(report.position, report.coord, report.robot);
}

// 0x7013 {"robot","coord","pos"[5..]}: syncPosition = "pos"[0..4].
Change syncPosition(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"pos", state.syncPosition, 5}});
}

// ---- IO: 0x3603, 0x3606, 0x3609, 0x360B {"status"[16]}, port n at n-1 ------

Change dout(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"status", state.dout, 16}});
}

Change din(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"status", state.din, 16}});
}

Change aout(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"status", state.aout, 16}});
}

Change ain(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"status", state.ain, 16}});
}

// ---- motor figures -----------------------------------------------------------

// 0x2A05 {"robot","vel"[7],"maxVel"[7],"velSync"[5],"maxVelSync"[5]}.
Change motorSpeed(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"vel", state.motorVel[0], 7},
                               {"maxVel", state.motorVel[1], 7},
                               {"velSync", state.motorVelSync[0], 5},
                               {"maxVelSync", state.motorVelSync[1], 5}});
}

// 0x2A07 {"robot","torq","maxTorq"[7],"torqSync","maxTorqSync"[5],
// "theoTorq","maxTheoTorq"[7]}.
Change motorTorque(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"torq", state.motorTorque[0], 7},
                               {"maxTorq", state.motorTorque[1], 7},
                               {"torqSync", state.motorTorqueSync[0], 5},
                               {"maxTorqSync", state.motorTorqueSync[1], 5},
                               {"theoTorq", state.motorTheoTorque[0], 7},
                               {"maxTheoTorq", state.motorTheoTorque[1], 7}});
}

void notifyMotorTorque(RobotSignals &to, const Change &, const QByteArray &payload)
{
    emit to.robot_tool_receiveMotorTorque(payload);
    emit to.robot_tool_receiveMotorTorqueTheo(payload);
}

// 0x2A0B {"robot","motorOverload"[7],"motorOverloadSync"[5]}.
Change motorLoad(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"motorOverload", state.motorOverload, 7},
                               {"motorOverloadSync", state.motorOverloadSync, 5}});
}

// 0x330A {"value"[7]}: singleCycle.
Change singleCycle(const Json::Value &report, RobotState &state)
{
    return fillArrays(report, {{"value", state.singleCycle, 7}});
}

// ---- variables -----------------------------------------------------------------

// 0x560C {"varName","varType","varValue"}: globalVarValue = "varValue";
// also kept by type and index (the name's last three digits): varType 1 in
// globalBool (0 or 1), 2 in globalInt, 3 in globalReal. A name with no
// index changes no per-variable cache.
Change globalVariable(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"varValue", "varName"}))
        return {};
    const double value = jsonReal(report, "varValue");
    state.globalVarValue = value;
    const GlobalVarName var = GlobalVarName::parse(jsonString(report, "varName"));
    const int index = var.indexValid ? var.index : -1;
    if (index >= 0 && index < RobotState::kGlobalVarCount) {
        switch (jsonInt(report, "varType")) {
        case 1: state.globalBool[index] = value != 0.0 ? 1 : 0; break;
        case 2: state.globalInt[index] = jsonInt(report, "varValue"); break;
        case 3: state.globalReal[index] = value; break;
        default: break;
        }
    }
    return taken();
}

// 0x50B3 {"open"}: continuousMotionMode (0 closed, 1 open).
Change continuousMode(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"open"}))
        return {};
    state.continuousMotionMode.store(jsonBool(report, "open") ? 1 : 0);
    return taken();
}

// ---- jobs ------------------------------------------------------------------------

// 0x3D03 {"robot","status"}: runningStatus. values: robot, status.
Change runningState(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"status"}))
        return {};
    Change change = taken();
    const int robot = change.values[0] = jsonInt(report, "robot");
    state.runningStatus = change.values[1] = jsonInt(report, "status");
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收机器人运行状态 robot=%1 status=%2"))
                        .arg(robot).arg(change.values[1]);
    return change;
}

// pro_run_status with two digits, '0'+robot and '0'+status (bytes modulo
// 256, so any number the controller sends gives a defined byte).
void notifyRunningState(RobotSignals &to, const Change &change, const QByteArray &)
{
    const auto digit = [](int n) { return char(static_cast<unsigned char>(unsigned('0') + unsigned(n))); };
    QByteArray digits;
    digits.append(digit(change.values[0])).append(digit(change.values[1]));
    emit to.pro_run_status(digits);
}

// 0x4919, 0x9103 {"robot","status","continueRun"}: the running state as
// 0x3D03 gives it, and jobStatus, jobContinueRun. values: robot, status,
// continueRun, 1 when the running state was taken ("status" present).
Change runningAndJobStatus(const Json::Value &report, RobotState &state)
{
    const Change running = runningState(report, state);
    if (!hasAnyKey(report, {"status", "continueRun"}))
        return {};
    Change change = taken();
    const int robot = change.values[0] = jsonInt(report, "robot");
    state.jobStatus = change.values[1] = jsonInt(report, "status");
    state.jobContinueRun = change.values[2] = jsonInt(report, "continueRun");
    change.values[3] = running.taken;
    change.lines = running.lines;
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "收到机器人运行状态 robot=%1 status=%2"))
                        .arg(robot).arg(change.values[1]);
    return change;
}

void notifyRunningAndJobStatus(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    if (change.values[3])
        notifyRunningState(to, change, payload);
    emit to.robot_job_status(change.values[0], change.values[1], change.values[2]);
    emit to.robotp_jstatus(change.values[0], change.values[1]);
}

// 0x3501 {"robot","jobname","num"}: no state. values: robot, line; text: job.
Change stepEnd(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"robot", "jobname", "num"}))
        return {};
    Change change = taken();
    change.values[0] = jsonInt(report, "robot");
    change.values[1] = jsonInt(report, "num");
    change.text = jsonString(report, "jobname");
    return change;
}

void notifyStepEnd(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_step_end(change.values[0], change.text, change.values[1]);
}

// 0x3502 {"robot","num"}: no state. values: robot, line.
Change bwbCommand(const Json::Value &report, RobotState &)
{
    return integersOf(report, {"robot", "num"});
}

void notifyBwbCommand(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_BWB_command(change.values[0], change.values[1]);
}

// 0x3504 {"num"}: currentRunLine, the line being executed.
Change jobLine(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"num"}))
        return {};
    state.currentRunLine = jsonInt(report, "num");
    return taken();
}

// 0x5013 {"robot","count","index"}: no state. values: robot, count, index.
Change cycleIndex(const Json::Value &report, RobotState &)
{
    return integersOf(report, {"robot", "count", "index"});
}

void notifyCycleIndex(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.RobotCycleIndex(change.values[0], change.values[1], change.values[2]);
    emit to.sPBtnState(change.values[0]);
    emit to.robot_cycletimes_update(change.values[1]);
}

// 0x5535: the job file list is complete (no payload).
void notifyJobFileInfoFinish(RobotSignals &to, const Change &, const QByteArray &)
{
    emit to.robot_job_File_Info_Finish();
}

} // namespace qrx::decoders
