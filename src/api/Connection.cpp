// connect_robot, disconnect_robot, connection_status, setErrorHandle, show_log.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/Logging.h"
#include "protocol/Codes.h"

#include <QCoreApplication>
#include <QDebug>
#include <QThread>
#include <QTime>

#include <atomic>
#include <cstring>

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

constexpr int kConnectPolls = 5;
std::atomic<int> g_connectPollMs{1000};

// Waits ms milliseconds while the calling thread's events keep running, at
// most 100 ms per pass. The deadline is a time of day, so a wait that would
// cross midnight ends at once. A thread without an event loop of its own has
// nothing to process and naps instead of spinning.
void pauseWithEvents(int ms)
{
    const QTime deadline = QTime::currentTime().addMSecs(ms);
    const bool hasLoop = QThread::currentThread()->eventDispatcher() != nullptr;
    while (QTime::currentTime() < deadline) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
        if (!hasLoop)
            QThread::msleep(5);
        else
            QThread::usleep(500);
    }
}

} // namespace

namespace qrx::api {

int connectPolling(const char *ip, int polls, int pollMs, quint16 port)
{
    Robot *current = apiRobot();
    if (current && !current->isClosed())
        return 0;

    const QString address = QString::fromLatin1(ip ? ip : "", ip ? int(std::strlen(ip)) : 0);
    const MadeRobot made = makeRobot(address, port ? port : Robot::linkPort(), Robot::IoThread::Own);
    Robot *robot = made.robot;
    setApiRobot(robot, made.jog);
    robot->firstStart();

    for (int poll = 0; poll < polls; ++poll) {
        if (robot->connected.load()) {
            QString line;
            QDebug(&line).nospace() << robot;
            qCDebug(lcApi).noquote() << line;
            robot->send(code::PostConnection, QByteArray());
            return robot->connected.load();
        }
        pauseWithEvents(pollMs);
    }
    robot->close();
    finishApiLink(robot);
    return 0;
}

int connectRobot(const char *ip, quint16 port)
{
    return connectPolling(ip, kConnectPolls, g_connectPollMs.load(), port);
}

} // namespace qrx::api

extern "C" {

int connect_robot(const char *ip)
{
    return connectRobot(ip, 0);
}

void disconnect_robot(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!robot->isClosed())
        robot->send(code::Farewell, QByteArray());
    robot->close();
    // The farewell still leaves; then the link thread ends, so nothing of
    // the library runs any more when the host returns from main().
    finishApiLink(robot);
}

int connection_status(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    return robot->connected.load();
}

void qrx_set_connect_poll_interval(int ms)
{
    g_connectPollMs.store(ms < 1 ? 1 : ms);
}

void setErrorHandle(void (*handler)(const char *text))
{
    QRX_CONTROLLER_OR_RETURN(controller);
    controller->setErrorHandler(handler);
}

std::string show_log()
{
    QRX_ROBOT_OR_RETURN(robot, std::string("error"));
    return robot->lastMessage();
}

} // extern "C"
