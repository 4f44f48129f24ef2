#include "api/ApiState.h"

#include "api/Extensions.h"
#include "common/CompactJson.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QObject>

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <thread>

namespace qrx::api {

namespace {

std::atomic<Robot *> g_robot{nullptr};

// The application the library runs for a host without one. It lives on a
// thread of its own for the rest of the process; the thread is never joined
// (a host that simply returns from main() ends it with the process).
QObject *startOwnApplication()
{
    // The promise's shared state outlives this frame, so the thread may still
    // be inside set_value() when this function has returned.
    std::promise<QObject *> started;
    std::future<QObject *> context = started.get_future();

    std::thread([started = std::move(started)]() mutable {
        static int argc = 1;
        static char name[] = "qrx_host";
        static char *argv[] = {name, nullptr};
        QCoreApplication app(argc, argv);
        QObject anchor;
        started.set_value(&anchor);
        app.exec();
    }).detach();

    return context.get();
}

} // namespace

Robot *apiRobot()
{
    return g_robot.load();
}

void setApiRobot(Robot *robot)
{
    if (robot)
        attachExtensions(robot);
    g_robot.store(robot);
}

QByteArray payloadOf(const Json::Value &value)
{
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

void copyOut(const double *from, int n, double *to)
{
    if (to)
        std::copy(from, from + n, to);
}

ReplyTicket replyTicket(const Robot *robot, quint16 query)
{
    ReplyTicket ticket;
    if (query && matchedReplies()) {
        ticket.reply = replyCodeFor(query);
        ticket.seen = replyCount(robot, ticket.reply);
    }
    return ticket;
}

void awaitReply(Robot *robot, const ReplyTicket &ticket)
{
    const int bound = waitBoundMs();
    if (bound <= 0 && !ticket.reply) {
        robot->replyCondition.wait(&robot->replyMutex);
        setLastCallTimedOut(false);
        return;
    }
    const QDeadlineTimer deadline = bound > 0 ? QDeadlineTimer(bound, Qt::PreciseTimer)
                                              : QDeadlineTimer(QDeadlineTimer::Forever);
    if (ticket.reply)
        beginMatchedWait();
    bool timedOut = false;
    do {
        timedOut = !robot->replyCondition.wait(&robot->replyMutex, deadline);
    } while (!timedOut && ticket.reply && replyCount(robot, ticket.reply) == ticket.seen);
    if (ticket.reply)
        endMatchedWait();
    setLastCallTimedOut(timedOut);
}

void requestAndWait(Robot *robot, quint16 code, const QByteArray &payload)
{
    requestAndWait(robot, [&] { robot->send(code, payload); }, code);
}

QObject *libraryContext()
{
    static std::once_flag once;
    static QObject *context = nullptr;
    std::call_once(once, [] {
        if (!QCoreApplication::instance())
            context = startOwnApplication();
    });
    return context;
}

} // namespace qrx::api
