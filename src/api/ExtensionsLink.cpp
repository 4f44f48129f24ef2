// The link as a host sees it through the extensions: connection events
// (up, dropped, back, with the reason where the link shows it) and the last
// controller message as C text.

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"
#include "common/HandOver.h"
#include "common/Logging.h"
#include "link/TcpConnectModule.h"
#include "link/TcpConnectModulePrivate.h"

#include <QDateTime>
#include <QObject>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <memory>
#include <unordered_map>

namespace qrx::api {

namespace {

struct EventHandler
{
    qrx_link_event_handler handler = nullptr;
    void *user = nullptr;
};

// Held while the handler runs: a new handler takes over only after a call of
// the old one has returned, so a host may free what its handler uses (or a
// Python host finalise its interpreter) once the setter has returned. A
// handler may set another handler from inside a call.
std::recursive_mutex g_handlerMutex;
EventHandler g_handler;

// Where a Robot's link stands for the events: Connecting from connect_robot()
// until the first connect, then Up or Down.
enum class LinkState { Connecting, Up, Down };

void notify(int event, int reason)
{
    std::lock_guard<std::recursive_mutex> lock(g_handlerMutex);
    if (g_handler.handler)
        g_handler.handler(event, reason, g_handler.user);
}

// Why the link went down: the host closed it, the controller fell silent
// (the link's receive time-out closed it), or the connection itself was lost.
int dropReason(const TcpConnectModule *link)
{
    if (link->isStopped())
        return QRX_LINK_REASON_CLOSED_BY_HOST;
    const qint64 silentSecs = link->lastReceiveTime().secsTo(QDateTime::currentDateTimeUtc());
    if (silentSecs >= TcpConnectModulePrivate::kReceiveTimeoutSecs)
        return QRX_LINK_REASON_CONTROLLER_SILENT;
    return QRX_LINK_REASON_CONNECTION_LOST;
}

const char *reasonText(int reason)
{
    switch (reason) {
    case QRX_LINK_REASON_CLOSED_BY_HOST:
        return "closed by the host";
    case QRX_LINK_REASON_CONTROLLER_SILENT:
        return "the controller fell silent";
    default:
        return "connection lost";
    }
}

// The link repeats its status (several losses per drop, a status query): an
// event goes out only when the state changes.
class LinkEvents
{
public:
    void restart() { m_state.store(LinkState::Connecting); }

    void onStatus(const TcpConnectModule *link, int status)
    {
        const LinkState was = m_state.load();
        if (status) {
            if (was == LinkState::Up)
                return;
            m_state.store(LinkState::Up);
            const bool back = was != LinkState::Connecting;
            qCInfo(lcApi) << (back ? "controller link back" : "controller link up");
            notify(back ? QRX_LINK_BACK : QRX_LINK_UP, QRX_LINK_REASON_NONE);
        } else if (was == LinkState::Up) {
            m_state.store(LinkState::Down);
            const int reason = dropReason(link);
            // A close the host asked for is no fault: an information line only.
            if (reason == QRX_LINK_REASON_CLOSED_BY_HOST)
                qCInfo(lcApi) << "controller link dropped:" << reasonText(reason);
            else
                qCWarning(lcApi) << "controller link dropped:" << reasonText(reason);
            notify(QRX_LINK_DROPPED, reason);
        }
    }

private:
    std::atomic<LinkState> m_state{LinkState::Connecting};
};

void attachLinkEvents(Robot *robot)
{
    // One LinkEvents per Robot, living as long as its connection.
    static std::mutex eventsMutex;
    static std::unordered_map<const Robot *, std::shared_ptr<LinkEvents>> events;
    std::shared_ptr<LinkEvents> mine;
    {
        std::lock_guard<std::mutex> lock(eventsMutex);
        auto &slot = events[robot];
        if (slot) {
            slot->restart();
            return;
        }
        slot = mine = std::make_shared<LinkEvents>();
    }
    TcpConnectModule *link = robot->link();
    const auto wire = [robot, link, mine] {
        QObject::connect(
            link, &LinkNotifications::connectSucceed, robot,
            [link, mine](int status) { mine->onStatus(link, status); }, Qt::DirectConnection);
        QObject::connect(robot, &QObject::destroyed, [robot] {
            std::lock_guard<std::mutex> lock(eventsMutex);
            events.erase(robot);
        });
    };
    // The Robot's thread re-emits the link's status and may already run:
    // the slots are made in that thread, so that they are made where they
    // run. The queue that takes the functor over orders it, invisibly to
    // ThreadSanitizer (handOff/takeOver).
    if (robot->thread() == QThread::currentThread()) {
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

} // namespace

void attachExtensions(Robot *robot)
{
    attachReplyCounters(robot);
    attachLinkEvents(robot);
    attachRefusals(robot);
}

int copyText(const std::string &text, char *buffer, int size)
{
    if (buffer && size > 0) {
        std::size_t n = std::min(text.size(), std::size_t(size - 1));
        // Never cut a UTF-8 character in two: back up to a lead byte.
        if (n < text.size()) {
            while (n > 0 && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80)
                --n;
        }
        std::memcpy(buffer, text.data(), n);
        buffer[n] = '\0';
    }
    return int(text.size());
}

} // namespace qrx::api

using namespace qrx::api;

extern "C" {

void qrx_set_link_event_handler(qrx_link_event_handler handler, void *user)
{
    std::lock_guard<std::recursive_mutex> lock(g_handlerMutex);
    g_handler = EventHandler{handler, user};
}

int qrx_last_message(char *buffer, int size)
{
    return qrx::api::copyText(show_log(), buffer, size);
}

} // extern "C"
