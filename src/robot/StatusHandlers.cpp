// The status handlers of Robot: servo, mode, coordinate, speed, tool,
// deadman, teach type and the robots of the controller.
//
// Every key-reading handler has the same shape: parse the payload (text up
// to its first NUL), read the keys (missing ones read as 0), store what the
// host API reads later, build the log line, emit, and at the end - parsed
// or not - wake every thread waiting on replyCondition. Robot::takeReport
// (HandlerShape.h) is that shape. Relays (connectSucceed, raw frames, the
// current run line) pass their arguments on and wake nobody.
//
// Log lines are written for every handler that names one, except the
// run-mode line of the mode handler, which is built but not written.

#include "robot/Robot.h"

#include "common/CompactJson.h"
#include "common/Logging.h"
#include "common/Payload.h"
#include "robot/HandlerLines.h"
#include "robot/HandlerShape.h"
#include "robot/JsonRead.h"
#include "protocol/Codes.h"

#include <QCoreApplication>

namespace code = qrx::protocol::code;

namespace {

constexpr int kModeSettlePauseMs = 200;

} // namespace

// ---- relays ---------------------------------------------------------------

void Robot::robot_net_slot_connectSucceed(int status)
{
    connected.store(status != 0 ? 1 : 0);
    emit robot_connect_succeed(status);
}

void Robot::robot_net_slot_receivedDataProcess(quint16 command, QByteArray data)
{
    emit robot_received_data(command, data);
}

void Robot::robot_net_slot_runningStatusProcess(quint8 mode)
{
    emit robot_running_status_changed(mode);
}

void Robot::slot_robotCurRunLine(const QByteArray &data)
{
    emit signal_curRunLine(data);
}

// ---- servo, mode, coordinate, speed ----------------------------------------

// 0x2003 {"mode","robot","status"}: servoStatus, robotServoStatus[robot-1].
void Robot::robot_net_slot_servoChangedProcess(const QByteArray &data)
{
    takeReport(data, [&](const Json::Value &root) {
        const int mode = qrx::jsonInt(root, "mode");
        const int robot = qrx::jsonInt(root, "robot");
        const int status = qrx::jsonInt(root, "status");
        qrx::writeRobotLine(tr("接收伺服状态 mode=%1 robot=%2 status=%3").arg(mode).arg(robot).arg(status));

        if (operationMode != 0 || robot == currentRobot())
            servoStatus = status;
        if (mode == 1 && robot >= 1 && robot <= 4) {
            robotServoStatus[robot - 1] = status;
            switch (robot) {
            case 1: emit updateR1MotButtonText(); break;
            case 2: emit updateR2MotButtonText(); break;
            case 3: emit updateR3MotButtonText(); break;
            default: emit updateR4MotButtonText(); break;
            }
        }
        QByteArray servo;
        servo.append(char(quint8(mode))).append(char(quint8(robot))).append(char(quint8(status)));
        emit robot_servo_changed(servo);
        if (!(operationMode == 0 && status == 3))
            emit show_hide_Axis_widget(0);
    });
}

// 0x2103 {"mode"}: operationMode 0..2, modeRepeated, modeReceived, replyFlag.
// Ignored (no wake) until the Robot is ready, and for a mode outside 0..2.
void Robot::robot_net_slot_modeProcess(const QByteArray &data)
{
    if (!isReady())
        return;
    Json::Value root;
    const bool parsed = qrx::parsePayload(data, root);
    if (parsed && root.isObject() && root.isMember("mode")) {
        const int mode = qrx::jsonInt(root, "mode");
        if (mode < 0 || mode > 2)
            return;
        const bool changed = mode != operationMode;
        if (!changed)
            modeRepeated.store(true);
        operationMode = mode;
        switch (mode) {
        case 0:
            qrx::writeRobotLine(tr("接收当前工作模式: 示教模式"));
            send(code::TeachModeNotice, QByteArray());
            break;
        case 1:
            qrx::writeRobotLine(tr("接收当前工作模式: 远程模式"));
            break;
        default:
            tr("接收当前工作模式: 运行模式"); // built, not written
            break;
        }
        if (takeForceModeNotification() || changed)
            emit robot_mode_changed(OperationMode(mode));
        waitingPause(kModeSettlePauseMs);
        modeReceived.store(true);
        replyFlag.store(1);
    }
    wakeWaiters();
}

// 0x2203 {"coord","robot"}: coordinate, for the current robot while the
// coordinate gate is not 7. The user frame (3) first asks for the robot's
// current user frame with 0x3C0B {"robot"}.
void Robot::robot_net_slot_coordChangedProcess(const QByteArray &data)
{
    takeReport(data, [&](const Json::Value &root) {
        const int robot = qrx::jsonInt(root, "robot");
        const int coord = qrx::jsonInt(root, "coord");
        if (robot != currentRobot() || coordinateGate == 7)
            return;
        coordinate = quint8(coord);
        emit robot_coord_changed(coordinate);
        static const char *const lines[] = {
            QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为关节坐标系"),
            QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为直角坐标系"),
            QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为工具坐标系"),
            QT_TRANSLATE_NOOP("Robot", "接收机器人%1当前坐标系为用户坐标系"),
        };
        if (coord == 3) {
            Json::Value query(Json::objectValue);
            query["robot"] = currentRobot();
            send(code::GetCurrentUserFrame, qrx::jsonPayload(query));
        }
        if (coord >= 0 && coord <= 3)
            qrx::writeRobotLine(tr(lines[coord]).arg(robot));
    });
}

// 0x2603 {"robot","speed"}: speed, 1..100 percent or the jog steps 101..103.
void Robot::robot_net_slot_velocityProcess(const QByteArray &data)
{
    takeReport(data, [&](const Json::Value &root) {
        if (root.isObject() && root.isMember("speed"))
            speed = qrx::jsonInt(root, "speed");
        const bool joint = coordinate == 0;
        QString line;
        switch (speed) {
        case 101: line = joint ? tr("接收当前速度为0.1°") : tr("接收当前速度为1mm"); break;
        case 102: line = joint ? tr("接收当前速度为0.01°") : tr("接收当前速度为0.1mm"); break;
        case 103: line = joint ? tr("接收当前速度为0.001°") : tr("接收当前速度为0.01mm"); break;
        default: line = tr("接收当前速度为%1%").arg(speed); break;
        }
        qrx::writeRobotLine(line);
        emit robot_speed_changed(schar(speed));
    });
}

// ---- tool, deadman, teach type ---------------------------------------------

// 0x380C {"curToolNum","robot"}: currentTool, for the current robot only.
void Robot::robot_net_slot_ToolChangedProcess(const QByteArray &data)
{
    takeReport(data, [&](const Json::Value &root) {
        if (qrx::jsonInt(root, "robot") != currentRobot())
            return;
        if (root.isObject() && root.isMember("curToolNum"))
            currentTool = qrx::jsonInt(root, "curToolNum");
        qrx::writeRobotLine(currentTool == 0 ? tr("接收当前无工具手") : tr("接收当前工具手为%1").arg(currentTool));
        emit robot_tool_changed(currentTool);
    });
}

// 0x2303 {"deadman"}: deadman.
void Robot::robot_net_slot_deadmanChangedProcess(const QByteArray &data)
{
    takeNumber(data, "deadman", deadman, QT_TRANSLATE_NOOP("Robot", "接收当前控制器工作模式deadman=%1"),
               &Robot::deadmanStateChange);
}

// 0x2306 {"deadmanMode","deadmanPortOne","deadmanPortTwo"}: deadman wiring;
// a non-zero mode means a hard-wired deadman switch.
void Robot::robot_net_slot_DeadManMode(const QByteArray &data)
{
    takeReport(data, [&](const Json::Value &root) {
        deadmanMode = qrx::jsonInt(root, "deadmanMode");
        deadmanPortOne = qrx::jsonInt(root, "deadmanPortOne");
        deadmanPortTwo = qrx::jsonInt(root, "deadmanPortTwo");
        emit deadmanModeChange(deadmanMode != 0, deadmanPortOne, deadmanPortTwo);
    });
}

// 0x2106 {"teachType"}: 1 is drag teaching, anything else jogging.
void Robot::robot_net_slot_teachtype(const QByteArray &data)
{
    takeReport(data, [&](const Json::Value &root) {
        teachType = qrx::jsonInt(root, "teachType");
        emit signal_updateTeachtype(teachType == 1 ? tr("拖拽") : tr("点动"));
    });
}

// ---- robots of the controller ----------------------------------------------

// 0x2E06 {"sum"}: robotCount.
void Robot::robot_net_slot_RobotSum(const QByteArray &data)
{
    takeNumber(data, "sum", robotCount, QT_TRANSLATE_NOOP("Robot", "接收机器人数量 = %1"), &Robot::robot_change_RobotSum);
}

// 0x5003 {"mode","robot"}: the current robot (override and default).
void Robot::robot_net_slot_CurRobot(const QByteArray &data)
{
    takeReport(data, [&](const Json::Value &root) {
        const int mode = qrx::jsonInt(root, "mode");
        const int robot = qrx::jsonInt(root, "robot");
        setCurrentRobot(robot);
        emit robot_change_CurRobot(mode, robot);
    });
}
