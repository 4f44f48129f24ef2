// Continuous motion: the mode switch, start, suspend, stop, and the queue of
// instructions (MotionQueue.cpp turns the records into instructions).

#include "api/ApiState.h"
#include "api/MotionQueue.h"
#include "api/qrx_host.h"
#include "common/Logging.h"

#include <QCoreApplication>

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
    Json::Value mode(Json::objectValue);
    mode["open"] = open != 0;
    robot->send(kContinuousMode, qrx::api::payloadOf(mode));
    if (!open) {
        Json::Value teach(Json::objectValue);
        teach["mode"] = 0;
        robot->send(kSetOperationMode, qrx::api::payloadOf(teach));
    }
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
    if (!qrx::api::buildQueue(records, count, data, &outOfRange)) {
        for (int i = 0; i < outOfRange.size(); ++i)
            qCDebug(lcApi).noquote() << QCoreApplication::translate("ContinuousMotion", "参数值超限");
        return;
    }
    if (data.empty())
        return;
    Json::Value queue(Json::objectValue);
    queue["data"] = data;
    queue["robot"] = robot->currentRobot();
    robot->send(kContinuousQueue, qrx::api::payloadOf(queue));
}

} // extern "C"
