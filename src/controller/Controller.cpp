#include "controller/Controller.h"

#include "common/Logging.h"
#include "controller/LinkHooks.h"
#include "link/SessionRecorder.h"
#include "link/TcpConnectModule.h"
#include "robot/Robot.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QHostAddress>
#include <QHostInfo>
#include <QObject>

#include <chrono>
#include <cstdint>

namespace qrx::controller {

// Replies taken per code, for one Robot; guarded by its replyMutex.
struct Controller::ReplyCounts
{
    QHash<quint16, quint64> byCode;
};

Controller &Controller::defaultController()
{
    // Never destroyed: host threads and library threads may still use it
    // while the process exits. Its handle is 1, which no other gets.
    static Controller *const controller = new Controller(reinterpret_cast<qrx_controller *>(std::uintptr_t(1)));
    return *controller;
}

Controller::Controller(qrx_controller *handle, int waitBound)
    : waitBoundMs(waitBound)
    , m_handle(handle)
{
}

Controller::~Controller() = default;

namespace {

// The controller's IPv4 address (host byte order) as its sockets see it:
// a name is looked up; 0 when there is none.
quint32 ipv4Of(const QString &ip)
{
    bool ok = false;
    const quint32 address = QHostAddress(ip).toIPv4Address(&ok);
    if (ok)
        return address;
    for (const QHostAddress &found : QHostInfo::fromName(ip).addresses()) {
        const quint32 v4 = found.toIPv4Address(&ok);
        if (ok)
            return v4;
    }
    return 0;
}

} // namespace

bool Controller::record(const QString &path, const QString &ip, quint16 port)
{
    std::lock_guard<std::mutex> lock(m_recordMutex);
    if (path.isEmpty()) {
        m_recorder.reset();
        return true;
    }
    const SessionRecorder::Filter filter{ipv4Of(ip), port};
    if (filter.address == 0) {
        qCWarning(lcRecord, "cannot record into %s: the controller has no IPv4 address", qPrintable(path));
        m_recorder.reset();
        return false;
    }
    m_recorder = std::make_unique<SessionRecorder>(filter);
    if (m_recorder->start(path))
        return true;
    m_recorder.reset();
    return false;
}

Robot *Controller::robot() const
{
    std::lock_guard<std::mutex> lock(m_robotMutex);
    return m_robot;
}

Robot *Controller::hold()
{
    std::lock_guard<std::mutex> lock(m_robotMutex);
    if (m_robot)
        ++m_holders[m_robot];
    return m_robot;
}

Robot *Controller::release(Robot *robot)
{
    if (!robot)
        return nullptr;
    std::lock_guard<std::mutex> lock(m_robotMutex);
    if (--m_holders[robot] == 0 && m_retired.count(robot)) {
        m_retired.erase(robot);
        m_holders.erase(robot);
        return robot;
    }
    return nullptr;
}

Robot *Controller::attach(Robot *robot, api::JogDriver *jog)
{
    if (robot && robot == this->robot()) {
        restartLinkEvents();
        return nullptr;
    }
    if (robot)
        hookRobot(robot);
    std::lock_guard<std::mutex> lock(m_robotMutex);
    Robot *old = m_robot;
    m_robot = robot;
    m_jog.store(robot ? jog : nullptr);
    if (!old || old == robot)
        return nullptr;
    if (m_holders[old] == 0) {
        m_holders.erase(old);
        return old;
    }
    m_retired[old] = true;
    return nullptr;
}

quint64 Controller::replyCount(quint16 reply) const
{
    std::shared_ptr<ReplyCounts> counts;
    {
        std::lock_guard<std::mutex> lock(m_robotMutex);
        counts = m_counts;
    }
    return counts ? counts->byCode.value(reply) : 0;
}

void Controller::countReply(Robot *robot, ReplyCounts &counts, quint16 code)
{
    std::lock_guard<std::mutex> lock(robot->replyMutex);
    ++counts.byCode[code];
    if (matchedWaits.load() > 0)
        robot->replyCondition.notify_all();
}

void Controller::hookRobot(Robot *robot)
{
    auto counts = std::make_shared<ReplyCounts>();
    {
        std::lock_guard<std::mutex> lock(m_robotMutex);
        m_counts = counts;
    }
    restartLinkEvents();
    robot->setMessageSink([this](int level, const QByteArray &text) { deliverMessage(level, text); });
    // After the report filled the caches: the state handler hears of it,
    // then a reply is counted for matched waits.
    robot->setReportSink([this, robot, counts](quint16 code, bool woke) {
        if (woke)
            notifyState();
        if (isAnsweringReply(code))
            countReply(robot, *counts, code);
    });
    hookLinkStatus(robot, [this, robot](int status) { onLinkStatus(robot, status); });
}

// ---- link events -------------------------------------------------------------

void Controller::setLinkEventHandler(LinkEventHandler handler, void *user)
{
    std::lock_guard<std::recursive_mutex> lock(m_handlerMutex);
    m_linkHandler = handler;
    m_linkUser = user;
}

void Controller::restartLinkEvents()
{
    m_linkState.store(LinkState::Connecting);
}

bool Controller::waitLinkUp(int ms)
{
    std::unique_lock<std::mutex> lock(m_linkMutex);
    return m_linkChanged.wait_for(lock, std::chrono::milliseconds(ms), [this] { return linkUp(); });
}

void Controller::notifyLink(int event, int reason)
{
    {
        std::lock_guard<std::mutex> lock(m_linkMutex);
        m_linkChanged.notify_all();
    }
    {
        std::lock_guard<std::recursive_mutex> lock(m_handlerMutex);
        if (m_linkHandler)
            m_linkHandler(event, reason, m_linkUser);
    }
    notifyState();
}

// The link repeats its status (several losses per drop, a status query): an
// event goes out only when the state changes.
void Controller::onLinkStatus(Robot *robot, int status)
{
    const LinkState was = m_linkState.load();
    if (status) {
        if (was == LinkState::Up)
            return;
        m_linkState.store(LinkState::Up);
        const bool back = was != LinkState::Connecting;
        qCInfo(lcApi) << (back ? "controller link back" : "controller link up");
        notifyLink(back ? kLinkBack : kLinkUp, kReasonNone);
    } else if (was == LinkState::Up) {
        m_linkState.store(LinkState::Down);
        const int reason = dropReason(robot->link());
        // A close the host asked for is no fault: an information line only.
        if (reason == kReasonClosedByHost)
            qCInfo(lcApi) << "controller link dropped:" << reasonText(reason);
        else
            qCWarning(lcApi) << "controller link dropped:" << reasonText(reason);
        notifyLink(kLinkDropped, reason);
    }
}

// ---- messages and state ------------------------------------------------------

void Controller::setErrorHandler(ErrorHandler handler)
{
    std::lock_guard<std::recursive_mutex> lock(m_handlerMutex);
    m_errorHandler = handler;
}

void Controller::setMessageHandler(MessageHandler handler, void *user)
{
    std::lock_guard<std::recursive_mutex> lock(m_handlerMutex);
    m_messageHandler = handler;
    m_messageUser = user;
}

void Controller::setStateHandler(StateHandler handler, void *user)
{
    std::lock_guard<std::recursive_mutex> lock(m_handlerMutex);
    m_stateHandler = handler;
    m_stateUser = user;
}

void Controller::deliverMessage(int level, const QByteArray &text)
{
    std::lock_guard<std::recursive_mutex> lock(m_handlerMutex);
    if (m_errorHandler)
        m_errorHandler(text.constData());
    if (m_messageHandler)
        m_messageHandler(m_handle, level, text.constData(), m_messageUser);
}

void Controller::notifyState()
{
    std::lock_guard<std::recursive_mutex> lock(m_handlerMutex);
    if (!m_stateHandler)
        return;
    Robot *robot = this->robot();
    if (!robot || !stateChanged(*robot, m_lastState))
        return;
    m_stateHandler(m_handle, m_stateUser);
}

StateSnapshot Controller::state() const
{
    Robot *robot = const_cast<Controller *>(this)->hold();
    const StateSnapshot s = robot ? snapshotOf(*robot) : StateSnapshot();
    // A call holds the Robot; this hold never retires it.
    (void)const_cast<Controller *>(this)->release(robot);
    return s;
}

// ---- transfer -----------------------------------------------------------------

void Controller::setJobRoot(const QString &root)
{
    std::lock_guard<std::mutex> lock(m_transferMutex);
    m_jobRoot = root;
}

QString Controller::jobRoot() const
{
    std::lock_guard<std::mutex> lock(m_transferMutex);
    return m_jobRoot;
}

void Controller::setTransferOutcome(int failed, bool refused, const QByteArray &text)
{
    std::lock_guard<std::mutex> lock(m_transferMutex);
    m_lastFailed = failed;
    m_lastRefused = refused;
    m_lastFailure = text;
}

int Controller::lastTransferFailed() const
{
    std::lock_guard<std::mutex> lock(m_transferMutex);
    return m_lastFailed;
}

bool Controller::lastTransferRefused() const
{
    std::lock_guard<std::mutex> lock(m_transferMutex);
    return m_lastRefused;
}

QByteArray Controller::lastTransferError() const
{
    std::lock_guard<std::mutex> lock(m_transferMutex);
    return m_lastFailure;
}

} // namespace qrx::controller
