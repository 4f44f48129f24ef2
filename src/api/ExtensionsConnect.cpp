// Connecting to another port than the controller's, and connecting within a
// bound: the steps of connect_robot(), with the connection checked every few
// milliseconds instead of once a second, so the call returns as soon as the
// link is up, or once the bound has passed.

#include "api/Extensions.h"
#include "api/qrx_host.h"
#include "robot/Robot.h"

#include <mutex>

namespace {

constexpr int kCheckMs = 5;

std::mutex g_connectMutex;

// Connects with the link on port for the time of the call.
template <class Connect>
int onPort(int port, Connect connect)
{
    if (port < 1 || port > 65535)
        return 0;
    std::lock_guard<std::mutex> lock(g_connectMutex);
    const quint16 usual = Robot::linkPort();
    Robot::setLinkPort(quint16(port));
    const int result = connect();
    Robot::setLinkPort(usual);
    return result;
}

} // namespace

extern "C" {

int qrx_connect_robot_port(const char *ip, int port)
{
    return onPort(port, [ip] { return connect_robot(ip); });
}

int qrx_connect_robot_within(const char *ip, int port, int timeout_ms)
{
    if (timeout_ms < 1)
        return 0;
    const int checks = (timeout_ms + kCheckMs - 1) / kCheckMs;
    return onPort(port, [ip, checks] { return qrx::api::connectPolling(ip, checks, kCheckMs); });
}

} // extern "C"
