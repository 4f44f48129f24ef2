// Continuous motion: the mode switch, start, suspend, stop, and the queue of
// instructions (MotionQueue.cpp turns the records into instructions).

#include "api/ApiState.h"
#include "api/MotionQueue.h"
#include "api/qrx_host.h"
#include "common/Logging.h"

#include <QCoreApplication>

using namespace qrx::api;

namespace {

constexpr quint16 kContinuousMode = 0x50B1;
constexpr quint16 kContinuousQueue = 0x50B4;
constexpr quint16 kContinuousSuspend = 0x50B7;
constexpr quint16 kContinuousStart = 0x50B8;
constexpr quint16 kContinuousStop = 0x50B9;
constexpr quint16 kSetOperationMode = 0x2101;

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
    robot->send(kContinuousMode, payloadOf(object({{"open", open != 0}})));
    if (!open)
        robot->send(kSetOperationMode, payloadOf(object({{"mode", 0}})));
}

void continuous_motion_start(void) { sendEmpty(kContinuousStart); }
void continuous_motion_suspend(void) { sendEmpty(kContinuousSuspend); }
void continuous_motion_stop(void) { sendEmpty(kContinuousStop); }

void send_continuous_motion_queue(const qrx_motion_record *records, int count)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!records || count <= 0)
        return;
    Json::Value data;
    QStringList outOfRange;
    if (!buildQueue(records, count, data, &outOfRange)) {
        for (int i = 0; i < outOfRange.size(); ++i)
            qCDebug(lcApi).noquote() << QCoreApplication::translate("ContinuousMotion", "参数值超限");
        return;
    }
    if (data.empty())
        return;
    robot->send(kContinuousQueue, payloadOf(withCurrentRobot(robot, {{"data", data}})));
}

} // extern "C"
