// The robot model as the host sees it: what the controller reported with
// 0x2E03 when the link came up, read from the library's state (nothing is
// sent).

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

} // extern "C"
