#include "Link.h"

#include "Bound.h"
#include "qrx_host.h"

#include <algorithm>
#include <string>

namespace qrxcli {

namespace {

std::string g_host;
bool g_online = false;

// The controller's port.
constexpr int kControllerPort = 6001;

} // namespace

void setHost(const std::string &host)
{
    g_host = host;
}

void goOnline()
{
    if (g_online)
        return;
    if (g_host.empty())
        fail(ExitUsage, "no controller address: give --host ADDRESS or set QRX_HOST");
    // Returns as soon as the link is up; --timeout bounds it.
    const int bound = int(std::max<long long>(1, waitBound().count()));
    if (qrx_connect_robot_within(g_host.c_str(), kControllerPort, bound) != 1 || !connection_status())
        fail(ExitNotConnected, "not connected: no controller answered at " + g_host);
    g_online = true;
}

void disconnectLink()
{
    if (!g_online)
        return;
    g_online = false;
    disconnect_robot();
}

void expectAnswer()
{
    qrx_clear_refusal();
}

void settle()
{
    if (qrx_confirm() < 0)
        fail(ExitTimedOut, "timed out waiting for the controller's answer");
}

void failIfRefused()
{
    char text[1024] = {};
    if (qrx_last_refusal(text, int(sizeof text)) != 0)
        fail(ExitRefused, std::string("refused by the controller: ") + text);
}

} // namespace qrxcli
