// The handlers of Robot that fill the caches the host API copies out after
// a wake: positions, IO arrays, motor figures, cycle values, global
// variables, and the job reports. Same shape as the status handlers
// (StatusHandlers.cpp): parse, read, store, emit, wake at the end.

#include "robot/Robot.h"

#include <algorithm>

#include "common/Logging.h"
#include "common/Payload.h"
#include "robot/HandlerLines.h"
#include "robot/HandlerShape.h"
#include "common/GlobalVarName.h"
#include "common/JsonRead.h"

#include <QCoreApplication>
#include <QMetaMethod>

namespace {

// "robot coord v0 v1 ... v6": integers in decimal, reals with 4 decimals,
// one blank between fields; as many values as the array holds (at most 7).
QByteArray positionLine(int robot, int coord, const Json::Value &root, const char *key)
{
    double values[7];
    const int n = qrx::jsonReals(root, key, values, 7);
    QString line = QString::number(robot) + QLatin1Char(' ') + QString::number(coord);
    for (int i = 0; i < n; ++i)
        line += QLatin1Char(' ') + QString::number(values[i], 'f', 4);
    return line.toUtf8();
}

// Global variable names end in a three-digit index ("GI012" -> 12); a
// report naming no index changes no cache.
int globalIndex(const QString &name)
{
    const qrx::GlobalVarName var = qrx::GlobalVarName::parse(name);
    return var.indexValid ? var.index : -1;
}

} // namespace

// ---- positions -------------------------------------------------------------

// 0x2F08 {"robot","coord","pos"[7],"posDeg"[7]}: currentPosition = "pos"[0..5].
// Emits receive_moreRobot_CurPosition(posDeg line, pos line).
void Robot::robot_net_slot_MoreRobotCurPosition(const QByteArray &data)
{
    takeReport(data, {"pos"}, [&](const Json::Value &root) {
        qrx::jsonReals(root, "pos", currentPosition, 6);
        const int inCoord = qrx::jsonInt(root, "coord");
        if (inCoord == 0 || inCoord == 1)
            std::copy(currentPosition, currentPosition + 6, inCoord == 0 ? jointPosition : cartesianPosition);
        // A controller may stream these reports fast; the two text lines are
        // only worth building for a listener.
        static const QMetaMethod lines = QMetaMethod::fromSignal(&Robot::receive_moreRobot_CurPosition);
        if (!isSignalConnected(lines))
            return;
        const int robot = qrx::jsonInt(root, "robot");
        const int coord = qrx::jsonInt(root, "coord");
        const QByteArray posLine = positionLine(robot, coord, root, "pos");
        const QByteArray posDegLine = positionLine(robot, coord, root, "posDeg");
        emit receive_moreRobot_CurPosition(posDegLine, posLine);
    });
}

// 0x7013 {"robot","coord","pos"[5..]}: syncPosition = "pos"[0..4].
void Robot::robot_net_slot_CurEXPosition(const QByteArray &data)
{
    takePayload(data, {{"pos", syncPosition, 5}}, {});
}

// ---- IO --------------------------------------------------------------------
// 0x3603, 0x3606, 0x3609, 0x360B {"status"[16]}: port n at index n-1. The
// display signals carry the payload as received.

void Robot::robot_net_slot_DoutStatus(const QByteArray &data)
{
    takePayload(data, {{"status", dout, 16}}, {&Robot::robot_dout_display});
}

void Robot::robot_net_slot_DinStatus(const QByteArray &data)
{
    takePayload(data, {{"status", din, 16}}, {&Robot::robot_din_display});
}

void Robot::robot_net_slot_AoutStatus(const QByteArray &data)
{
    takePayload(data, {{"status", aout, 16}}, {&Robot::robot_aout_display});
}

void Robot::robot_net_slot_AinStatus(const QByteArray &data)
{
    takePayload(data, {{"status", ain, 16}}, {&Robot::robot_ain_display});
}

// ---- motor figures ---------------------------------------------------------

// 0x2A05 {"robot","vel"[7],"maxVel"[7],"velSync"[5],"maxVelSync"[5]}:
// motorVel[0] "vel", motorVel[1] "maxVel", motorVelSync[0] "velSync",
// motorVelSync[1] "maxVelSync".
void Robot::robot_net_slot_MotorSpeed(const QByteArray &data)
{
    takePayload(data,
               {{"vel", motorVel[0], 7},
                {"maxVel", motorVel[1], 7},
                {"velSync", motorVelSync[0], 5},
                {"maxVelSync", motorVelSync[1], 5}},
               {&Robot::robot_tool_receiveMotorSpeed});
}

// 0x2A07 {"robot","torq","maxTorq"[7],"torqSync","maxTorqSync"[5],
// "theoTorq","maxTheoTorq"[7]}: motorTorque[0] "torq", motorTorque[1]
// "maxTorq", motorTorqueSync[0] "torqSync", motorTorqueSync[1]
// "maxTorqSync", motorTheoTorque[0] "theoTorq", motorTheoTorque[1]
// "maxTheoTorq".
void Robot::robot_net_slot_MotorTorque(const QByteArray &data)
{
    takePayload(data,
               {{"torq", motorTorque[0], 7},
                {"maxTorq", motorTorque[1], 7},
                {"torqSync", motorTorqueSync[0], 5},
                {"maxTorqSync", motorTorqueSync[1], 5},
                {"theoTorq", motorTheoTorque[0], 7},
                {"maxTheoTorq", motorTheoTorque[1], 7}},
               {&Robot::robot_tool_receiveMotorTorque, &Robot::robot_tool_receiveMotorTorqueTheo});
}

// 0x2A0B {"robot","motorOverload"[7],"motorOverloadSync"[5]}.
void Robot::robot_net_slot_MotorLoad(const QByteArray &data)
{
    takePayload(data, {{"motorOverload", motorOverload, 7}, {"motorOverloadSync", motorOverloadSync, 5}},
               {&Robot::signal_robotReceivedMotorLoad});
}

// 0x330A {"value"[7]}: singleCycle.
void Robot::robot_net_slot_SingleCycleValue(const QByteArray &data)
{
    takePayload(data, {{"value", singleCycle, 7}}, {&Robot::robot_singlevalue});
}

// ---- variables -------------------------------------------------------------

// 0x560C {"varName","varType","varValue"}: globalVarValue = "varValue";
// also kept by type and index (the name's last three digits): varType 1 in
// globalBool (0 or 1), 2 in globalInt, 3 in globalReal.
void Robot::robot_net_slot_OneGlobalVariant(const QByteArray &data)
{
    takeReport(data, {"varValue", "varName"}, [&](const Json::Value &root) {
        const double value = qrx::jsonReal(root, "varValue");
        globalVarValue = value;
        const int index = globalIndex(qrx::jsonString(root, "varName"));
        if (index >= 0 && index < kGlobalVarCount) {
            switch (qrx::jsonInt(root, "varType")) {
            case 1: globalBool[index] = value != 0.0 ? 1 : 0; break;
            case 2: globalInt[index] = qrx::jsonInt(root, "varValue"); break;
            case 3: globalReal[index] = value; break;
            default: break;
            }
        }
        emit robot_get_oneglobalVariant(data);
    });
}

// 0x50B3 {"open"}: continuousMotionMode (0 closed, 1 open).
void Robot::robot_net_slot_continuousMotionMode(const QByteArray &data)
{
    takeReport(data, {"open"}, [&](const Json::Value &root) {
        continuousMotionMode.store(qrx::jsonBool(root, "open") ? 1 : 0);
    });
}

// ---- jobs ------------------------------------------------------------------

// 0x3D03, 0x4919, 0x9103 {"robot","status"}: runningStatus. Emits
// pro_run_status with two digits, '0'+robot and '0'+status (bytes modulo
// 256, so any number the controller sends gives a defined byte).
void Robot::robot_net_slot_prorunstatus(const QByteArray &data)
{
    takeReport(data, {"status"}, [&](const Json::Value &root) {
        const int robot = qrx::jsonInt(root, "robot");
        runningStatus = qrx::jsonInt(root, "status");
        qrx::writeRobotLine(tr("接收机器人运行状态 robot=%1 status=%2").arg(robot).arg(runningStatus));
        QByteArray digits;
        const auto digit = [](int n) { return char(static_cast<unsigned char>(unsigned('0') + unsigned(n))); };
        digits.append(digit(robot)).append(digit(runningStatus));
        emit pro_run_status(digits);
    });
}

// 0x4919, 0x9103 {"robot","status","continueRun"}: jobStatus, jobContinueRun.
void Robot::robot_net_slot_JobStatusProcess(const QByteArray &data)
{
    takeReport(data, {"status", "continueRun"}, [&](const Json::Value &root) {
        const int robot = qrx::jsonInt(root, "robot");
        jobStatus = qrx::jsonInt(root, "status");
        jobContinueRun = qrx::jsonInt(root, "continueRun");
        qrx::writeRobotLine(tr("收到机器人运行状态 robot=%1 status=%2").arg(robot).arg(jobStatus));
        emit robot_job_status(robot, jobStatus, jobContinueRun);
        emit robotp_jstatus(robot, jobStatus);
    });
}

// 0x3501 {"robot","jobname","num"}.
void Robot::robot_net_slot_stepEndProcess(const QByteArray &data)
{
    takeReport(data, {"robot", "jobname", "num"}, [&](const Json::Value &root) {
        emit robot_step_end(qrx::jsonInt(root, "robot"), qrx::jsonString(root, "jobname"),
                            qrx::jsonInt(root, "num"));
    });
}

// 0x3502 {"robot","num"}.
void Robot::robot_net_slot_BWBCommandStatus(const QByteArray &data)
{
    takeReport(data, {"robot", "num"}, [&](const Json::Value &root) {
        emit robot_BWB_command(qrx::jsonInt(root, "robot"), qrx::jsonInt(root, "num"));
    });
}

// 0x3504 {"num"}: currentRunLine, the line being executed.
void Robot::robot_net_slot_JobfiletoLine(const QByteArray &data)
{
    takeReport(data, {"num"}, [&](const Json::Value &root) {
        currentRunLine = qrx::jsonInt(root, "num");
        emit robot_JobfiletoLine(data);
    });
}

// 0x5013 {"robot","count","index"}.
void Robot::robot_net_slot_RobotCycleIndex(const QByteArray &data)
{
    takeReport(data, {"robot", "count", "index"}, [&](const Json::Value &root) {
        const int robot = qrx::jsonInt(root, "robot");
        const int count = qrx::jsonInt(root, "count");
        const int index = qrx::jsonInt(root, "index");
        emit RobotCycleIndex(robot, count, index);
        emit sPBtnState(robot);
        emit robot_cycletimes_update(count);
    });
}
