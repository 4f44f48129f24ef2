// Continuous motion: the mode switch, start, suspend, stop, and the queue of
// instructions (MotionQueue.cpp turns the records into instructions).

#include "api/ApiState.h"
#include "api/MotionQueue.h"
#include "api/qrx_host.h"
#include "common/Logging.h"
#include "protocol/Codes.h"

#include <QCoreApplication>

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

void sendEmpty(quint16 code)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code, QByteArray());
}

} // namespace

extern "C" {

void continuous_motion_mode(int open)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::ContinuousMode, payloadOf(object({{"open", open != 0}})));
    if (!open)
        robot->send(code::SetOperationMode, payloadOf(object({{"mode", 0}})));
}

void continuous_motion_start(void) { sendEmpty(code::ContinuousStart); }
void continuous_motion_suspend(void) { sendEmpty(code::ContinuousSuspend); }
void continuous_motion_stop(void) { sendEmpty(code::ContinuousStop); }

void send_continuous_motion_queue(const qrx_motion_record *records, int count)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!records || count <= 0)
        return;
    Json::Value data;
    QStringList outOfRange;
    if (!buildQueue(records, count, data, &outOfRange)) {
        for (int i = 0; i < outOfRange.size(); ++i)
            qCWarning(lcApi).noquote() << QCoreApplication::translate("ContinuousMotion", "参数值超限");
        return;
    }
    if (data.empty())
        return;
    robot->send(code::ContinuousQueue, payloadOf(withCurrentRobot(robot, {{"data", data}})));
}

} // extern "C"
