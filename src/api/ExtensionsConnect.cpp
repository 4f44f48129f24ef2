// Connecting to another port than the controller's, and connecting within a
// bound: the steps of connect_robot(), with the connection checked every few
// milliseconds instead of once a second, so the call returns as soon as the
// link is up, or once the bound has passed.

#include "api/Extensions.h"
#include "api/qrx_host.h"
#include "robot/Robot.h"

namespace {

constexpr int kCheckMs = 5;

bool validPort(int port)
{
    return port >= 1 && port <= 65535;
}

} // namespace

extern "C" {

int qrx_connect_robot_port(const char *ip, int port)
{
    if (!validPort(port))
        return 0;
    return qrx::api::connectRobot(ip, quint16(port));
}

int qrx_connect_robot_within(const char *ip, int port, int timeout_ms)
{
    if (timeout_ms < 1 || !validPort(port))
        return 0;
    const int checks = (timeout_ms + kCheckMs - 1) / kCheckMs;
    return qrx::api::connectPolling(ip, checks, kCheckMs, quint16(port));
}

} // extern "C"
