// The status reports: servo, mode, coordinate, speed, tool, deadman, teach
// type and the robots of the controller. Decoders are pure (ReportTable.h):
// a report that is no JSON object, or holds none of its content keys,
// changes nothing and is not taken, but still wakes the waiters; keys that
// only select (the "robot" beside a status) are never required.

#include "robot/Decoders.h"

#include "common/CompactJson.h"
#include "common/JsonRead.h"
#include "protocol/Codes.h"
#include "robot/HandlerLines.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"

#include <QCoreApplication>

namespace code = qrx::protocol::code;

namespace qrx::decoders {

namespace {

constexpr int kModeSettlePauseMs = 200;


} // namespace

// 0x2003 {"mode","robot","status"}: servoStatus (outside teach mode, or for
// the current robot), robotServoStatus[robot-1] when "mode" is 1.
// values: mode, robot, status, 1 when the axis widget is shown.
Change servo(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"status"}))
        return {};
    Change change = taken();
    const int mode = jsonInt(report, "mode");
    const int robot = jsonInt(report, "robot");
    const int status = jsonInt(report, "status");
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收伺服状态 mode=%1 robot=%2 status=%3"))
                        .arg(mode).arg(robot).arg(status);
    if (state.operationMode != 0 || robot == state.currentRobot())
        state.servoStatus = status;
    if (mode == 1 && robot >= 1 && robot <= 4)
        state.robotServoStatus[robot - 1] = status;
    change.values[0] = mode;
    change.values[1] = robot;
    change.values[2] = status;
    change.values[3] = !(state.operationMode == 0 && status == 3);
    return change;
}

void notifyServo(RobotSignals &to, const Change &change, const QByteArray &)
{
    const int mode = change.values[0];
    const int robot = change.values[1];
    if (mode == 1 && robot >= 1 && robot <= 4) {
        switch (robot) {
        case 1: emit to.updateR1MotButtonText(); break;
        case 2: emit to.updateR2MotButtonText(); break;
        case 3: emit to.updateR3MotButtonText(); break;
        default: emit to.updateR4MotButtonText(); break;
        }
    }
    QByteArray servo;
    servo.append(char(quint8(mode))).append(char(quint8(robot))).append(char(quint8(change.values[2])));
    emit to.robot_servo_changed(servo);
    if (change.values[3])
        emit to.show_hide_Axis_widget(0);
}

// 0x2103 {"mode"}: operationMode 0..2, modeRepeated, modeReceived, replyFlag.
// Not taken, and waking nobody, until the state is ready and for a mode
// outside 0..2. Teach mode is acknowledged with 0x2105; the waiters wake
// after a pause that lets the controller settle.
// values: mode, 1 when listeners hear of it (changed, or forced).
Change mode(const Json::Value &report, RobotState &state)
{
    Change change;
    if (!state.ready) {
        change.wakes = false;
        return change;
    }
    if (!report.isObject() || !report.isMember("mode"))
        return change;
    const int mode = jsonInt(report, "mode");
    if (mode < 0 || mode > 2) {
        change.wakes = false;
        return change;
    }
    change = taken();
    const bool changed = mode != state.operationMode;
    if (!changed)
        state.modeRepeated.store(true);
    state.operationMode = mode;
    switch (mode) {
    case 0:
        change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收当前工作模式: 示教模式"));
        change.request = code::TeachModeNotice;
        break;
    case 1:
        change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收当前工作模式: 远程模式"));
        break;
    default:
        robotText(QT_TRANSLATE_NOOP("Robot", "接收当前工作模式: 运行模式")); // built, not written
        break;
    }
    change.values[0] = mode;
    change.values[1] = state.modeNotificationForced.exchange(false) || changed;
    change.settleMs = kModeSettlePauseMs;
    state.modeReceived.store(true);
    state.replyFlag.store(1);
    return change;
}

void notifyMode(RobotSignals &to, const Change &change, const QByteArray &)
{
    if (change.values[1])
        emit to.robot_mode_changed(OperationMode(change.values[0]));
}

// 0x2203 {"coord","robot"}: coordinate, for the current robot while the
// coordinate gate is not 7. The user frame (3) asks for the robot's current
// user frame with 0x3C0B {"robot"}. values: coordinate.
Change coordinate(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"coord"}))
        return {};
    const int robot = jsonInt(report, "robot");
    const int coord = jsonInt(report, "coord");
    if (robot != state.currentRobot() || state.coordinateGate == 7)
        return {};
    Change change = taken();
    state.coordinate = quint8(coord);
    change.values[0] = state.coordinate;
    static const char *const lines[] = {
        QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为关节坐标系"),
        QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为直角坐标系"),
        QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为工具坐标系"),
        QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为用户坐标系"),
    };
    if (coord == 3) {
        Json::Value query(Json::objectValue);
        query["robot"] = state.currentRobot();
        change.request = code::GetCurrentUserFrame;
        change.requestPayload = jsonPayload(query);
    }
    if (coord >= 0 && coord <= 3)
        change.lines << robotText(lines[coord]).arg(robot);
    return change;
}

void notifyCoordinate(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_coord_changed(uchar(change.values[0]));
}

// 0x2603 {"robot","speed"}: speed, 1..100 percent or the jog steps 101..103
// (their line depends on the coordinate held). values: speed.
Change speed(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"speed"}))
        return {};
    Change change = taken();
    const int speed = jsonInt(report, "speed");
    state.speed = speed;
    const bool joint = state.coordinate == 0;
    const char *text = nullptr;
    switch (speed) {
    case 101: text = joint ? QT_TRANSLATE_NOOP("Robot", "接收当前速度为0.1°") : QT_TRANSLATE_NOOP("Robot", "接收当前速度为1mm"); break;
    case 102: text = joint ? QT_TRANSLATE_NOOP("Robot", "接收当前速度为0.01°") : QT_TRANSLATE_NOOP("Robot", "接收当前速度为0.1mm"); break;
    case 103: text = joint ? QT_TRANSLATE_NOOP("Robot", "接收当前速度为0.001°") : QT_TRANSLATE_NOOP("Robot", "接收当前速度为0.01mm"); break;
    default: break;
    }
    change.lines << (text ? robotText(text) : robotText(QT_TRANSLATE_NOOP("Robot", "接收当前速度为%1%")).arg(speed));
    change.values[0] = speed;
    return change;
}

void notifySpeed(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_speed_changed(schar(change.values[0]));
}

// 0x380C {"curToolNum","robot"}: currentTool, for the current robot only.
// values: the tool.
Change tool(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"curToolNum"}) || jsonInt(report, "robot") != state.currentRobot())
        return {};
    Change change = taken();
    state.currentTool = jsonInt(report, "curToolNum");
    const int tool = state.currentTool;
    change.lines << (tool == 0 ? robotText(QT_TRANSLATE_NOOP("Robot", "接收当前无工具手"))
                               : robotText(QT_TRANSLATE_NOOP("Robot", "接收当前工具手为%1")).arg(tool));
    change.values[0] = tool;
    return change;
}

void notifyTool(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_tool_changed(change.values[0]);
}

// 0x2303 {"deadman"}: deadman. values: deadman.
Change deadman(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"deadman"}))
        return {};
    Change change = taken();
    state.deadman = jsonInt(report, "deadman");
    change.values[0] = state.deadman;
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收当前控制器工作模式deadman=%1")).arg(change.values[0]);
    return change;
}

void notifyDeadman(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.deadmanStateChange(change.values[0]);
}

// 0x2306 {"deadmanMode","deadmanPortOne","deadmanPortTwo"}: the deadman
// wiring; a non-zero mode means a hard-wired switch. values: the three.
Change deadmanWiring(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"deadmanMode", "deadmanPortOne", "deadmanPortTwo"}))
        return {};
    Change change = taken();
    state.deadmanMode = change.values[0] = jsonInt(report, "deadmanMode");
    state.deadmanPortOne = change.values[1] = jsonInt(report, "deadmanPortOne");
    state.deadmanPortTwo = change.values[2] = jsonInt(report, "deadmanPortTwo");
    return change;
}

void notifyDeadmanWiring(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.deadmanModeChange(change.values[0] != 0, change.values[1], change.values[2]);
}

// 0x2106 {"teachType"}: 1 is drag teaching, anything else jogging.
// text: the type's name.
Change teachType(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"teachType"}))
        return {};
    Change change = taken();
    state.teachType = jsonInt(report, "teachType");
    change.text = state.teachType == 1 ? robotText(QT_TRANSLATE_NOOP("Robot", "拖拽"))
                                       : robotText(QT_TRANSLATE_NOOP("Robot", "点动"));
    return change;
}

void notifyTeachType(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.signal_updateTeachtype(change.text);
}

// 0x2E06 {"sum"}: robotCount. values: the count.
Change robotCount(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"sum"}))
        return {};
    Change change = taken();
    state.robotCount = change.values[0] = jsonInt(report, "sum");
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收机器人数量 = %1")).arg(change.values[0]);
    return change;
}

void notifyRobotCount(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_change_RobotSum(change.values[0]);
}

// 0x5003 {"mode","robot"}: the current robot (override and default).
// values: mode, robot.
Change currentRobot(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"robot"}))
        return {};
    Change change = taken();
    change.values[0] = jsonInt(report, "mode");
    change.values[1] = jsonInt(report, "robot");
    state.robotOverride = change.values[1];
    state.robotDefault = change.values[1];
    return change;
}

void notifyCurrentRobot(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_change_CurRobot(change.values[0], change.values[1]);
}

} // namespace qrx::decoders
