// Servo power, operation mode, coordinate system, jog speed and jogging.
//
// Setters hand one frame to the Robot and return; getters send their query,
// wait for any waking reply and return the value the Robot then holds.
// Jogging runs on the Robot's JogDriver (JogDriver.h): a 200 ms timer whose
// every tick sends the same jog step again.

#include "api/ApiState.h"
#include "api/JogDriver.h"
#include "api/qrx_host.h"
#include "common/Logging.h"
#include "link/TcpConnectModule.h"
#include "protocol/Codes.h"

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

constexpr int kServoPowerOnOk = 1;
constexpr int kJogSpeedMax = 103; // 101..103 are the jog-step sizes, so not 100

} // namespace

extern "C" {

int servo_power_on(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, [robot] {
        robot->link()->setServoStatus(ServoStatus(kServoPowerOnOk));
        robot->link()->sendDeadmanCommand(1);
    }, code::SetServoStatus);
    if (robot->servoStatus == kServoPowerOnOk)
        return 1;
    const QString line = QStringLiteral("servo %1 deadman %2").arg(robot->servoStatus).arg(robot->deadman);
    qCDebug(lcApi).noquote() << line;
    return 0;
}

void servo_power_off(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, [robot] { robot->link()->sendDeadmanCommand(0); }, code::SetDeadman);
}

void set_servo_state(int state)
{
    QRX_ROBOT_OR_RETURN(robot);
    const int status = static_cast<signed char>(state);
    robot->send(code::SetServoStatus, payloadOf(withRobot(robot->overrideRobot(), {{"status", status}})));
}

int get_servo_state(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    return robot->servoStatus;
}

void clear_servo_error(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::ClearAllError, payloadOf(withCurrentRobot(robot)));
}

void set_current_mode(int mode)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetOperationMode, payloadOf(object({{"mode", mode}}))); // clears the mode acknowledgement
}

int get_current_mode(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetOperationMode);
    return robot->operationMode;
}

void set_current_coord(int coord)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetCoordinationMode, payloadOf(withCurrentRobot(robot, {{"coord", coord}})));
}

int get_current_coord(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetCoordinationMode, payloadOf(withCurrentRobot(robot)));
    return robot->coordinate;
}

void set_jogging_speed(int speed)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetSpeed, payloadOf(withCurrentRobot(robot, {{"speed", qBound(0, speed, kJogSpeedMax)}})));
}

int get_jogging_speed(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetSpeed, payloadOf(withCurrentRobot(robot)));
    return robot->speed;
}

void start_jogging(int axis, bool direction)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (JogDriver *driver = robotApiCall.controller()->jogDriver())
        driver->start(axis, direction);
}

void stop_jogging(int axis)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->jogging.store(0);
    if (JogDriver *driver = robotApiCall.controller()->jogDriver())
        driver->stop();
    // The axis goes out as the host passed it: no external-axis mapping here.
    robot->link()->sendData(code::StopMove, payloadOf(object({{"axis", axis}})));
}

int get_robot_running_state(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetRunStatus, payloadOf(withCurrentRobot(robot)));
    return robot->runningStatus;
}

} // extern "C"
