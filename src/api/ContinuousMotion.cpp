// Continuous motion: the mode switch, start, suspend, stop, and the queue of
// instructions (see MotionQueue.cpp for the records).

#include "api/ApiState.h"
#include "api/qrx_host.h"

namespace {

constexpr quint16 kContinuousMode = 0x50B1;
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

} // extern "C"
