#include "controller/LinkHooks.h"

#include "common/HandOver.h"
#include "link/TcpConnectModule.h"
#include "link/TcpConnectModulePrivate.h"
#include "protocol/Catalogue.h"
#include "robot/Robot.h"

#include <QDateTime>
#include <QObject>
#include <QThread>

#include <algorithm>
#include <vector>

namespace qrx {

quint16 replyCodeFor(quint16 query)
{
    return protocol::replyTo(query);
}

bool isAnsweringReply(quint16 code)
{
    // Never destroyed: a link thread may still count a reply while the
    // process exits.
    static const std::vector<quint16> &codes = *new std::vector<quint16>([] {
        std::vector<quint16> all;
        for (const protocol::Message &request : protocol::outgoing()) {
            if (request.pairedWith)
                all.push_back(request.pairedWith);
        }
        std::sort(all.begin(), all.end());
        return all;
    }());
    return std::binary_search(codes.begin(), codes.end(), code);
}

void hookLinkStatus(Robot *robot, std::function<void(int)> status)
{
    TcpConnectModule *link = robot->link();
    const auto wire = [robot, link, &status] {
        QObject::connect(link, &LinkNotifications::connectSucceed, robot, status, Qt::DirectConnection);
    };
    // The Robot's thread re-emits the link's status and may already run:
    // the slot is made in that thread, so that it is made where it runs.
    // The queue that takes the functor over orders it, invisibly to
    // ThreadSanitizer (handOff/takeOver).
    if (robot->thread() == QThread::currentThread() || !robot->thread()->isRunning()) {
        wire();
        return;
    }
    static const char handed = 0;
    qrx::handOff(&handed);
    QMetaObject::invokeMethod(
        robot,
        [&wire] {
            qrx::takeOver(&handed);
            wire();
            qrx::handOff(&handed);
        },
        Qt::BlockingQueuedConnection);
    qrx::takeOver(&handed);
}

int dropReason(const TcpConnectModule *link)
{
    if (link->isStopped())
        return kReasonClosedByHost;
    const qint64 silentSecs = link->lastReceiveTime().secsTo(QDateTime::currentDateTimeUtc());
    if (silentSecs >= TcpConnectModulePrivate::kReceiveTimeoutSecs)
        return kReasonControllerSilent;
    return kReasonConnectionLost;
}

const char *reasonText(int reason)
{
    switch (reason) {
    case kReasonClosedByHost:
        return "closed by the host";
    case kReasonControllerSilent:
        return "the controller fell silent";
    default:
        return "connection lost";
    }
}

} // namespace qrx
