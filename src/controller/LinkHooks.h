#pragma once
// What a Controller hooks to its Robot's link: the link's status for the
// connection events, and why a link went down; and which reports are the
// counted replies of matched waits.

#include <QtGlobal>

#include <functional>

class Robot;
class TcpConnectModule;

namespace qrx {

// Connection events and drop reasons (QRX_LINK_* in qrx_host.h).
constexpr int kLinkUp = 1;
constexpr int kLinkDropped = 2;
constexpr int kLinkBack = 3;
constexpr int kReasonNone = 0;
constexpr int kReasonClosedByHost = 1;
constexpr int kReasonConnectionLost = 2;
constexpr int kReasonControllerSilent = 3;

// The reply code that answers a query code (0 when the catalogue has none).
quint16 replyCodeFor(quint16 query);
// True for a code that answers some query (counted for matched waits).
bool isAnsweringReply(quint16 code);

// Calls status(0 or 1) with each status the Robot's link says, in the
// Robot's thread; the hook is made there.
void hookLinkStatus(Robot *robot, std::function<void(int)> status);

// Why the link went down: the host closed it, the controller fell silent
// (the link's receive time-out closed it), or the connection itself was lost.
int dropReason(const TcpConnectModule *link);
const char *reasonText(int reason);

} // namespace qrx
