#pragma once
// The decoders and notifiers of the report table (ReportTable.h), by family:
// status (StatusDecoders.cpp), records (RecordDecoders.cpp), controller
// messages (MessageDecoders.cpp), robot type and kinematics
// (RobotTypeDecoders.cpp), tools and user frames (ToolFrameDecoders.cpp),
// process messages (ProcessDecoders.cpp). Each decoder's comment says which
// members of Change its notifier reads.

#include "common/JsonRead.h"
#include "robot/ReportTable.h"

#include <initializer_list>

namespace qrx::decoders {

// A report taken, nothing else said yet.
inline Change taken()
{
    Change change;
    change.taken = true;
    return change;
}

// A report that only hands its integer keys on: taken when any of them is
// there, values in the order of the keys (at most as many as Change holds).
inline Change integersOf(const Json::Value &report, std::initializer_list<const char *> keys)
{
    if (!hasAnyKey(report, keys))
        return {};
    Change change = taken();
    int at = 0;
    for (const char *key : keys) {
        if (at == int(sizeof change.values / sizeof change.values[0]))
            break;
        change.values[at++] = jsonInt(report, key);
    }
    return change;
}

// Status: servo, mode, coordinate, speed, tool, deadman, teach type, robots.
Change servo(const Json::Value &report, RobotState &state);
Change mode(const Json::Value &report, RobotState &state);
Change coordinate(const Json::Value &report, RobotState &state);
Change speed(const Json::Value &report, RobotState &state);
Change tool(const Json::Value &report, RobotState &state);
Change deadman(const Json::Value &report, RobotState &state);
Change deadmanWiring(const Json::Value &report, RobotState &state);
Change teachType(const Json::Value &report, RobotState &state);
Change robotCount(const Json::Value &report, RobotState &state);
Change currentRobot(const Json::Value &report, RobotState &state);
void notifyServo(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyMode(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyCoordinate(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifySpeed(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyTool(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyDeadman(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyDeadmanWiring(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyTeachType(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyRobotCount(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyCurrentRobot(RobotSignals &to, const Change &change, const QByteArray &payload);

// Records: positions, IO, motor figures, cycle values, variables, jobs.
Change position(const Json::Value &report, RobotState &state);
Change syncPosition(const Json::Value &report, RobotState &state);
Change dout(const Json::Value &report, RobotState &state);
Change din(const Json::Value &report, RobotState &state);
Change aout(const Json::Value &report, RobotState &state);
Change ain(const Json::Value &report, RobotState &state);
Change motorSpeed(const Json::Value &report, RobotState &state);
Change motorTorque(const Json::Value &report, RobotState &state);
Change motorLoad(const Json::Value &report, RobotState &state);
Change singleCycle(const Json::Value &report, RobotState &state);
Change globalVariable(const Json::Value &report, RobotState &state);
Change continuousMode(const Json::Value &report, RobotState &state);
Change runningState(const Json::Value &report, RobotState &state);
Change runningAndJobStatus(const Json::Value &report, RobotState &state);
Change stepEnd(const Json::Value &report, RobotState &state);
Change bwbCommand(const Json::Value &report, RobotState &state);
Change jobLine(const Json::Value &report, RobotState &state);
Change cycleIndex(const Json::Value &report, RobotState &state);
void notifyPosition(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyPositionRelay(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyMotorTorque(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyRunningState(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyRunningAndJobStatus(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyStepEnd(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyBwbCommand(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyCycleIndex(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyJobFileInfoFinish(RobotSignals &to, const Change &change, const QByteArray &payload);

// Controller messages: 0x2B03 error, 0x2B04 warning, 0x2B05 information.
Change error(const Json::Value &report, RobotState &state);
Change warning(const Json::Value &report, RobotState &state);
Change information(const Json::Value &report, RobotState &state);
void notifyError(RobotSignals &to, const Change &change, const QByteArray &payload);

// Robot type and kinematics.
Change robotType(const Json::Value &report, RobotState &state);
Change jointParameters(const Json::Value &report, RobotState &state);
Change jointJogLimits(const Json::Value &report, RobotState &state);
Change interpolation(const Json::Value &report, RobotState &state);
Change sensitivity(const Json::Value &report, RobotState &state);
Change positionerAxes(const Json::Value &report, RobotState &state);
Change dhState(const Json::Value &report, RobotState &state);
Change dhValues(const Json::Value &report, RobotState &state);
void notifyRobotType(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyJointParameters(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyJointJogLimits(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyPositionerAxes(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyDhState(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyDhValues(RobotSignals &to, const Change &change, const QByteArray &payload);

// Tools, user frames and calibration.
Change toolParameters(const Json::Value &report, RobotState &state);
Change userFrame(const Json::Value &report, RobotState &state);
Change currentUserFrame(const Json::Value &report, RobotState &state);
Change userFrameNote(const Json::Value &report, RobotState &state);
Change toolPoint(const Json::Value &report, RobotState &state);
Change toolPointFor20(const Json::Value &report, RobotState &state);
Change markedPointOf20(const Json::Value &report, RobotState &state);
Change markedPointOf7(const Json::Value &report, RobotState &state);
Change toolResult(const Json::Value &report, RobotState &state);
Change toolResultFor20(const Json::Value &report, RobotState &state);
Change zeroPointOf20(const Json::Value &report, RobotState &state);
Change fourPoint(const Json::Value &report, RobotState &state);
Change fourPointResult(const Json::Value &report, RobotState &state);
Change dhResult(const Json::Value &report, RobotState &state);
Change zeroCalibration(const Json::Value &report, RobotState &state);
void notifyToolParameters(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyUserFrame(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyCurrentUserFrame(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyUserFrameNote(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyToolPoint(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyToolPointFor20(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyMarkedPointOf20(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyMarkedPointOf7(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyToolResult(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyToolResultFor20(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyZeroPointOf20(RobotSignals &to, const Change &change, const QByteArray &payload);

// Process messages that read keys.
Change weldEquipment(const Json::Value &report, RobotState &state);
Change modbusState(const Json::Value &report, RobotState &state);
Change modbusIoState(const Json::Value &report, RobotState &state);
Change cooperativeRobot(const Json::Value &report, RobotState &state);
Change globalPosition(const Json::Value &report, RobotState &state);
Change robotList(const Json::Value &report, RobotState &state);
Change servoList(const Json::Value &report, RobotState &state);
Change unsafePoint(const Json::Value &report, RobotState &state);
void notifyModbusState(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyModbusIoState(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyCooperativeRobot(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyRobotList(RobotSignals &to, const Change &change, const QByteArray &payload);
void notifyServoList(RobotSignals &to, const Change &change, const QByteArray &payload);

} // namespace qrx::decoders
