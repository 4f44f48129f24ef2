// What the controller reported by itself, read from the library's state
// (nothing is sent): the robot model (0x2E03 when the link came up) and the
// operation mode (0x2103).

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"
#include "robot/RobotTypes.h"

extern "C" {

int qrx_robot_type(char *name, int size)
{
    QRX_ROBOT_OR_RETURN(robot, -1);
    const int type = robot->robotType;
    qrx::api::copyText(qrx::robotTypeName(type).toStdString(), name, size);
    return type;
}

int qrx_reported_mode(void)
{
    QRX_ROBOT_OR_RETURN(robot, -1);
    return robot->operationMode;
}

} // extern "C"
