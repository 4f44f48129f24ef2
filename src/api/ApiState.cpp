#include "api/ApiState.h"

#include "api/Extensions.h"
#include "api/JogDriver.h"
#include "common/CompactJson.h"
#include "common/HandOver.h"
#include "common/Logging.h"
#include "link/FrameCodec.h"
#include "link/TcpConnectModule.h"

#include <QCoreApplication>
#include <QObject>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <future>
#include <memory>
#include <map>
#include <mutex>
#include <thread>

namespace qrx::api {

namespace {

std::atomic<ApplicationFactory> g_applicationFactory{nullptr};

thread_local const char *t_function = nullptr;
// The controller of a ControllerScope running on this thread.
thread_local bool t_scoped = false;
thread_local Controller *t_scope = nullptr;

// The library's own application: its thread and its context object.
std::thread *g_appThread = nullptr;
QObject *g_appContext = nullptr;
std::atomic<bool> g_appEnding{false};

// The application the library runs for a host without one, on a thread of
// its own until the process exits (endOwnApplication).
QObject *startOwnApplication()
{
    std::promise<QObject *> started;
    std::future<QObject *> context = started.get_future();

    g_appThread = new std::thread([started = std::move(started)]() mutable {
        static int argc = 1;
        static char name[] = "qrx_host";
        static char *argv[] = {name, nullptr};
        const ApplicationFactory factory = g_applicationFactory.load();
        std::unique_ptr<QCoreApplication> app(factory ? factory(argc, argv) : new QCoreApplication(argc, argv));
        QObject anchor;
        started.set_value(&anchor);
        app->exec();
    });

    return context.get();
}

// At exit: the application thread leaves its loop and is joined while what
// it uses still exists. Registered again by every disconnect_robot(), so it
// runs before the Qt globals first used up to then are destroyed; only the
// first call does anything.
void endOwnApplication()
{
    if (!g_appThread || g_appEnding.exchange(true))
        return;
    if (Robot *robot = apiRobot())
        robot->link()->shutdown();
    QMetaObject::invokeMethod(g_appContext, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
    g_appThread->join();
}

} // namespace

void freeRobot(Robot *robot)
{
    if (!robot)
        return;
    QThread *home = robot->thread();
    if (home == QThread::currentThread()) {
        delete robot;
    } else if (g_appContext && home == g_appContext->thread() && !g_appEnding.load()) {
        // What this thread did with the Robot comes before its end there, and
        // all that thread did for it before this thread goes on.
        const int handOver = 0;
        qrx::handOff(&handOver);
        QMetaObject::invokeMethod(
            g_appContext,
            [robot, &handOver] {
                qrx::takeOver(&handOver);
                delete robot;
                qrx::handOff(&handOver);
            },
            Qt::BlockingQueuedConnection);
        qrx::takeOver(&handOver);
    } else {
        robot->link()->shutdown();
        robot->deleteLater();
    }
}

namespace {

// Finds the first non-finite real in value (depth first).
bool findNonFinite(const Json::Value &value, double &found)
{
    if (value.isDouble() && !std::isfinite(value.asDouble())) {
        found = value.asDouble();
        return true;
    }
    if (value.isArray() || value.isObject()) {
        for (const Json::Value &member : value) {
            if (findNonFinite(member, found))
                return true;
        }
    }
    return false;
}

} // namespace

Robot *apiRobot()
{
    return Controller::defaultController().robot();
}

Controller *currentController()
{
    return t_scoped ? t_scope : &Controller::defaultController();
}

Robot *currentRobot()
{
    const Controller *controller = currentController();
    return controller ? controller->robot() : nullptr;
}

ControllerScope::ControllerScope(Controller *controller)
    : m_previous(t_scope)
    , m_previousActive(t_scoped)
{
    t_scope = controller;
    t_scoped = true;
}

ControllerScope::~ControllerScope()
{
    t_scope = m_previous;
    t_scoped = m_previousActive;
}

void setApiRobot(Robot *robot, JogDriver *jog)
{
    Controller &controller = Controller::defaultController();
    Robot *replaced = controller.attach(robot, jog);
    if (robot)
        attachRefusals(controller, robot);
    freeRobot(replaced);
}

MadeRobot makeRobot(const QString &ip, quint16 port, Robot::IoThread io)
{
    const auto make = [&] {
        Robot *robot = new Robot(ip, port, io);
        return MadeRobot{robot, JogDriver::attach(robot)};
    };
    QObject *context = libraryContext();
    if (!context || context->thread() == QThread::currentThread())
        return make();
    // Made on the library's own application thread, so that its timers have
    // an event loop; handed over through an atomic: what the other thread
    // built is seen here in full (also by ThreadSanitizer, which cannot see
    // Qt's wait, nor the queue that takes the functor over: handOff/takeOver).
    std::atomic<Robot *> robot{nullptr};
    JogDriver *jog = nullptr;
    qrx::handOff(&robot);
    QMetaObject::invokeMethod(
        context,
        [&] {
            qrx::takeOver(&robot);
            const MadeRobot made = make();
            jog = made.jog;
            robot.store(made.robot, std::memory_order_release);
        },
        Qt::BlockingQueuedConnection);
    return MadeRobot{robot.load(std::memory_order_acquire), jog};
}

void finishApiLink(Robot *robot)
{
    robot->link()->shutdown();
    if (g_appThread)
        std::atexit(endOwnApplication);
}

ApiCall::ApiCall(const char *function)
    : m_controller(currentController())
    , m_robot(m_controller ? m_controller->hold() : nullptr)
    , m_outerFunction(t_function)
{
    if (!t_function)
        t_function = function;
}

ApiCall::~ApiCall()
{
    t_function = m_outerFunction;
    if (m_controller)
        freeRobot(m_controller->release(m_robot));
}

const char *ApiCall::currentFunction()
{
    return t_function ? t_function : "";
}

QByteArray payloadOf(const Json::Value &value)
{
    double found = 0.0;
    if (findNonFinite(value, found)) {
        qCWarning(lcApi).noquote() << QStringLiteral("%1: %2 in the payload, not sent")
                                          .arg(QLatin1String(ApiCall::currentFunction()))
                                          .arg(found);
        return LinkSenders::refusedPayload();
    }
    return qrx::jsonPayload(value);
}

Json::Value object(Members members)
{
    Json::Value v(Json::objectValue);
    for (const auto &member : members)
        v[member.first] = member.second;
    return v;
}

Json::Value withRobot(int robot, Members members)
{
    Json::Value v = object(members);
    v["robot"] = robot;
    return v;
}

Json::Value withCurrentRobot(const Robot *robot, Members members)
{
    return withRobot(robot->currentRobot(), members);
}

std::string latin1Name(const char *name)
{
    return QString::fromLatin1(nameOrEmpty(name)).toStdString();
}

void copyOut(const Robot *robot, const double *from, int n, double *to)
{
    if (!to)
        return;
    std::lock_guard<std::recursive_mutex> lock(robot->cacheMutex);
    std::copy(from, from + n, to);
}

ReplyTicket replyTicket(quint16 query)
{
    ReplyTicket ticket;
    if (query && matchedReplies()) {
        ticket.reply = replyCodeFor(query);
        ticket.seen = replyCount(ticket.reply);
    }
    return ticket;
}

namespace {

// How long a waiting thread looks for the wake before it sleeps on the
// condition. A controller on the same host or network answers a query
// within a few tens of microseconds, less than a sleeping thread takes to
// be woken and scheduled again; a slower answer costs the looking thread
// this much processor time, given up to any other runnable thread between
// looks.
constexpr auto kWakeLookMicros = std::chrono::microseconds(100);

// The reply mutex released: returns once the waiters of robot are woken
// after the wake count seen, or after kWakeLookMicros.
void lookForWake(const Robot *robot, quint64 seen)
{
    const auto until = std::chrono::steady_clock::now() + kWakeLookMicros;
    while (robot->replyWakes.load() == seen && std::chrono::steady_clock::now() < until)
        std::this_thread::yield();
}

} // namespace

void awaitReply(Robot *robot, const ReplyTicket &ticket)
{
    const int bound = waitBoundMs();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(bound);
    if (ticket.reply)
        beginMatchedWait();
    const auto answered = [&] { return !ticket.reply || replyCount(ticket.reply) != ticket.seen; };
    // A wake that comes while this thread looks for it, the mutex released,
    // ends the wait as one that comes while it sleeps would. The mutex is
    // held on entry, so no wake comes before the count is read.
    const quint64 seen = robot->replyWakes.load();
    robot->replyMutex.unlock();
    lookForWake(robot, seen);
    robot->replyMutex.lock();
    bool timedOut = false;
    if (robot->replyWakes.load() == seen || !answered()) {
        do {
            if (bound > 0)
                timedOut = robot->replyCondition.wait_until(robot->replyMutex, deadline) == std::cv_status::timeout;
            else
                robot->replyCondition.wait(robot->replyMutex);
        } while (!timedOut && !answered());
    }
    if (ticket.reply)
        endMatchedWait();
    setLastCallTimedOut(timedOut);
}

void requestAndWait(Robot *robot, quint16 code, const QByteArray &payload)
{
    // A payload its builder turned down never leaves, so no reply can come.
    if (LinkSenders::isRefused(payload))
        return;
    requestAndWait(robot, [&] { robot->send(code, payload); }, code);
}

void setApplicationFactory(ApplicationFactory factory)
{
    g_applicationFactory.store(factory);
}

QObject *libraryContext()
{
    static std::once_flag once;
    static QObject *context = nullptr;
    std::call_once(once, [] {
        if (!QCoreApplication::instance())
            context = g_appContext = startOwnApplication();
        applyEnvironmentLanguage();
    });
    return context;
}

} // namespace qrx::api
