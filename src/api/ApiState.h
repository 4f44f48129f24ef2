#pragma once
// What every exported function shares: the controller it acts on and that
// controller's Robot, the "no link" test, the payload writer and the
// request-and-wait pattern.
//
// A function acts on the default controller, or on the handle's controller
// while a ControllerScope runs on the calling thread (the qrxc_ functions).
// The default controller's Robot is null until the first connect_robot()
// and is never cleared afterwards: after a close it stays the closed Robot,
// so setters hand their frames to the closed link and getters block, until
// the next connect_robot() replaces it with a fresh Robot.

#include "controller/Controller.h"
#include "robot/Robot.h"

#include <QByteArray>
#include <QCoreApplication>
#include <mutex>
#include <json/value.h>

#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>

namespace qrx::api {

using controller::Controller;

// The default controller's Robot, or null before the first connect_robot().
Robot *apiRobot();

// The controller the calling thread's exported functions act on: the
// default one, or the scope's (null for a handle that is closed or null).
Controller *currentController();

// The Robot of currentController(), or null (no Robot yet, no controller).
// Not held: for the "no link" test of a function that holds none.
Robot *currentRobot();

// Makes the functions called on this thread act on controller (null: on
// none, so that they give their "no link" result) while it lives.
class ControllerScope
{
public:
    explicit ControllerScope(Controller *controller);
    ~ControllerScope();
    ControllerScope(const ControllerScope &) = delete;
    ControllerScope &operator=(const ControllerScope &) = delete;

private:
    Controller *m_previous;
    bool m_previousActive;
};

class JogDriver;

// Makes robot the default controller's, with its jog driver. The Robot
// replaced is freed once no exported function holds it any more (see
// ApiCall): a host thread blocked on it keeps it alive until its call returns.
void setApiRobot(Robot *robot, JogDriver *jog);
// Ends the link thread of a Robot (disconnect_robot): after it returns, no
// library thread runs code for that Robot. Called on the host's thread.
void finishApiLink(Robot *robot);
// Deletes a Robot on the thread it lives in (its timers belong there).
void freeRobot(Robot *robot);
// A Robot for ip:port with its jog driver, its link on a thread of its own
// (the default controller) or a shared one (handles), made where the
// library's events run (the library's own thread when the host runs no Qt
// application).
struct MadeRobot
{
    Robot *robot;
    JogDriver *jog;
};
MadeRobot makeRobot(const QString &ip, quint16 port, Robot::IoThread io);

// One exported function running on this thread: holds the Robot of its
// controller of the moment so that a concurrent connect_robot() or close
// cannot free it underneath, and names the function for log lines (the
// outermost one when calls nest).
class ApiCall
{
public:
    explicit ApiCall(const char *function);
    ~ApiCall();
    ApiCall(const ApiCall &) = delete;
    ApiCall &operator=(const ApiCall &) = delete;
    Robot *robot() const { return m_robot; }
    Controller *controller() const { return m_controller; }
    // The exported function running on this thread ("" outside one).
    static const char *currentFunction();

private:
    Controller *m_controller;
    Robot *m_robot;
    const char *m_outerFunction;
};

// The payload of a command: compact JSON, keys ascending, one line feed.
// A value holding a NaN or an infinity is never sent: the result is then the
// link's refused payload, which sendData() turns down without writing
// anything, and a qrx.api warning names the function and the value.
QByteArray payloadOf(const Json::Value &value);

// A null name pointer reads as the empty name.
inline const char *nameOrEmpty(const char *name) { return name ? name : ""; }

// The members of a request object, e.g. {{"port", port}, {"status", status}}.
using Members = std::initializer_list<std::pair<const char *, Json::Value>>;

// A JSON object of the members (a later member of the same key wins).
Json::Value object(Members members = {});

// {"robot": robot} and the members: the robot a request is about.
Json::Value withRobot(int robot, Members members = {});
// The same about the robot currently addressed.
Json::Value withCurrentRobot(const Robot *robot, Members members = {});

// A name passed by the host as it goes out: Latin-1 text (null reads as
// empty), in UTF-8.
std::string latin1Name(const char *name);

// Copies n cached values of robot into a caller's buffer under its cache
// lock, so they all come from one report; a null buffer is left alone.
void copyOut(const Robot *robot, const double *from, int n, double *to);

// Where a request-and-wait call starts counting the replies to its query:
// taken under the reply mutex before the query goes out.
struct ReplyTicket
{
    quint16 reply = 0;  // the code that answers the query (0: any reply)
    quint64 seen = 0;   // replies of that code taken before the query
};
ReplyTicket replyTicket(quint16 query);

// The wait of request-and-wait, with the reply mutex held: by default one
// wait on the reply condition without a time-out, ended by any waking
// reply (a wake that comes within 100 µs is caught before the
// thread goes to sleep, the mutex released meanwhile). The host may bound it and may ask for the reply that answers the
// query (see the qrx_ extensions); the calling thread then learns whether
// the bound ran out.
void awaitReply(Robot *robot, const ReplyTicket &ticket);

// Request-and-wait: lock the reply mutex, run send() (which hands one or more
// queries to the robot), wait on the reply condition, unlock. Any waking
// reply of the robot's handlers ends the wait, whatever it answers; the
// caller then reads the cache as it stands. query names the code whose reply
// ends the wait when the host asked for matched replies (0: any).
template <class Send, class = std::enable_if_t<std::is_invocable_v<Send &>>>
void requestAndWait(Robot *robot, Send &&send, quint16 query = 0)
{
    std::lock_guard<std::mutex> lock(robot->replyMutex);
    const ReplyTicket ticket = replyTicket(query);
    send();
    awaitReply(robot, ticket);
}

// The common case: one query with its code and payload.
void requestAndWait(Robot *robot, quint16 code, const QByteArray &payload = QByteArray());

// Makes sure a Qt application exists before the library creates its first
// object. A host that runs no Qt application of its own gets one on a thread
// that the library owns; the result is that thread's context object (null
// when the host's own application is used).
QObject *libraryContext();

// How the library makes the application it runs for a host without one
// (QCoreApplication when no factory is set). The dialogs set a factory that
// makes a widgets application when a display is there.
using ApplicationFactory = QCoreApplication *(*)(int &argc, char **argv);
void setApplicationFactory(ApplicationFactory factory);

// Applies QRX_LANG (e.g. "en") once an application exists (Language.cpp).
void applyEnvironmentLanguage();

} // namespace qrx::api

// Names an exported function that leaves the link test to a shared helper,
// so that the helper's log lines name the exported function.
#define QRX_API_FUNCTION() const ::qrx::api::ApiCall qrxApiFunction(__func__)

// Early return of every exported function without a link:
//   QRX_ROBOT_OR_RETURN(robot);          in a void function
//   QRX_ROBOT_OR_RETURN(robot, 0);       in a function with a result
#define QRX_ROBOT_OR_RETURN(var, ...)                       \
    const ::qrx::api::ApiCall var##ApiCall(__func__);       \
    Robot *const var = var##ApiCall.robot();                \
    if (!var)                                               \
        return __VA_ARGS__

// Early return of an extension that sets or reads a controller's settings,
// when the calling thread acts on no controller (a closed or null handle):
//   QRX_CONTROLLER_OR_RETURN(controller, 0);
#define QRX_CONTROLLER_OR_RETURN(var, ...)                  \
    ::qrx::controller::Controller *const var = ::qrx::api::currentController(); \
    if (!var)                                               \
        return __VA_ARGS__
