#pragma once
// What a Controller hooks to its Robot's link: the reply counters of matched
// replies, the link's status for the connection events, and why a link
// went down.

#include <QVector>
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
// Every such reply code, once each.
QVector<quint16> answeringReplyCodes();

// Calls counted(code) on the link thread for each reply of
// answeringReplyCodes() the Robot's link takes, after the Robot's handler.
void hookReplyCounters(Robot *robot, std::function<void(quint16)> counted);

// Calls status(0 or 1) with each status the Robot's link says, in the
// Robot's thread; the hook is made there.
void hookLinkStatus(Robot *robot, std::function<void(int)> status);

// Why the link went down: the host closed it, the controller fell silent
// (the link's receive time-out closed it), or the connection itself was lost.
int dropReason(const TcpConnectModule *link);
const char *reasonText(int reason);

} // namespace qrx
