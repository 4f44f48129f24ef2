#pragma once
// The decoders and notifiers of the report table (ReportTable.h), by family:
// status (StatusDecoders.cpp), records (RecordDecoders.cpp), controller
// messages (MessageDecoders.cpp). Each decoder's comment says which
// Change::values its notifier reads.

#include "robot/ReportTable.h"

namespace qrx::decoders {

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

} // namespace qrx::decoders
