#include "api/ApiState.h"

#include "common/CompactJson.h"

#include <QCoreApplication>
#include <QObject>

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
    g_robot.store(robot);
}

QByteArray payloadOf(const Json::Value &value)
{
    return qrx::jsonPayload(value);
}

void requestAndWait(Robot *robot, quint16 code, const QByteArray &payload)
{
    requestAndWait(robot, [&] { robot->send(code, payload); });
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
