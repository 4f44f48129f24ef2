// The handle API: controllers of their own beside the default one. Every
// qrxc_ function of the table in qrx_host.h runs its plain twin with the
// handle's controller as the calling thread's (ControllerScope); a handle
// that is null or closed finds no controller, so the twin gives its "no
// link" result.

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"
#include "controller/Controller.h"
#include "link/TcpConnectModule.h"
#include "protocol/Codes.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <type_traits>
#include <unordered_map>

using namespace qrx::api;
using qrx::controller::Controller;

namespace {

constexpr int kDefaultOpenBoundMs = 3000;
constexpr int kControllerPort = 6001;

// The live handles. A handle is a number that is never given twice, so a
// closed handle never finds the controller of a later one; 1 is the
// default controller's.
std::mutex g_handlesMutex;
std::unordered_map<qrx_controller *, std::shared_ptr<Controller>> g_handles;
std::atomic<std::uintptr_t> g_lastHandle{1};
qrx_controller *const kDefaultHandle = Controller::defaultController().handle();

std::shared_ptr<Controller> find(qrx_controller *c)
{
    if (c == kDefaultHandle) // never freed: a shared pointer that owns nothing
        return std::shared_ptr<Controller>(std::shared_ptr<Controller>(), &Controller::defaultController());
    std::lock_guard<std::mutex> lock(g_handlesMutex);
    const auto found = g_handles.find(c);
    return found == g_handles.end() ? nullptr : found->second;
}

// One call on a handle: the controller stays alive while the call runs,
// and the call acts on it.
class HandleCall
{
public:
    explicit HandleCall(qrx_controller *c) : m_controller(find(c)), m_scope(m_controller.get()) {}
    Controller *controller() const { return m_controller.get(); }

private:
    std::shared_ptr<Controller> m_controller;
    ControllerScope m_scope;
};

// Says farewell while the link is up, ends the link and frees the Robot
// (at once, or when the last call holding it returns). Waiting calls end.
void shutDown(Controller &controller)
{
    Robot *robot = controller.robot();
    if (!robot)
        return;
    if (!robot->isClosed() && robot->connected.load())
        robot->send(qrx::protocol::code::Farewell, QByteArray());
    robot->close();
    robot->link()->shutdown();
    robot->wakeReplyWaiters();
    freeRobot(controller.attach(nullptr, nullptr));
}

} // namespace

// Each row's handle form calls the plain function; the plain function's
// declared type must be the row's, or this does not compile.
#define QRXC_CHECK_(result, params, plain) \
    static_assert(std::is_same_v<decltype(&plain), result(*) params>, #plain " as its row");
#define QRXC_DEFINE_(result, name, params, args, plain)         \
    QRXC_CHECK_(result, params, plain)                          \
    result qrxc_##name(qrx_controller *c, QRXC_UNPAREN_ params) \
    {                                                           \
        const HandleCall call(c);                               \
        return plain args;                                      \
    }
#define QRXC_DEFINE0_(result, name, plain) \
    QRXC_CHECK_(result, (void), plain)     \
    result qrxc_##name(qrx_controller *c)  \
    {                                      \
        const HandleCall call(c);          \
        return plain();                    \
    }
#define QRXC_DEFINE_DESCRIBED_(result, name, params, args) QRXC_DEFINE_(result, name, params, args, name)
#define QRXC_DEFINE_DESCRIBED0_(result, name) QRXC_DEFINE0_(result, name, name)
#define QRXC_DEFINE_EXTENSION_(result, name, params, args) QRXC_DEFINE_(result, name, params, args, qrx_##name)
#define QRXC_DEFINE_EXTENSION0_(result, name) QRXC_DEFINE0_(result, name, qrx_##name)

extern "C" {

QRXC_FUNCTIONS(QRXC_DEFINE_DESCRIBED_, QRXC_DEFINE_DESCRIBED0_, QRXC_DEFINE_EXTENSION_, QRXC_DEFINE_EXTENSION0_)

std::string qrxc_show_log(qrx_controller *c)
{
    const HandleCall call(c);
    return show_log();
}

qrx_controller *qrxc_open(const char *ip, int port)
{
    return qrxc_open_within(ip, port, kDefaultOpenBoundMs);
}

qrx_controller *qrxc_open_within(const char *ip, int port, int timeout_ms)
{
    qrx_controller *c = qrxc_new(ip, port);
    if (c && timeout_ms > 0)
        qrxc_set_wait_timeout(c, timeout_ms);
    if (c && !qrxc_connect(c)) {
        qrxc_close(c);
        return nullptr;
    }
    return c;
}

qrx_controller *qrxc_new(const char *ip, int port)
{
    if (port > 65535)
        return nullptr;
    auto *handle = reinterpret_cast<qrx_controller *>(++g_lastHandle);
    auto controller = std::make_shared<Controller>(handle, kDefaultOpenBoundMs);
    const QString address = QString::fromLatin1(ip ? ip : "", ip ? int(std::strlen(ip)) : 0);
    const MadeRobot made = makeRobot(address, quint16(port > 0 ? port : kControllerPort), Robot::IoThread::Shared);
    freeRobot(controller->attach(made.robot, made.jog));
    attachRefusals(*controller, made.robot);
    std::lock_guard<std::mutex> lock(g_handlesMutex);
    g_handles.emplace(handle, std::move(controller));
    return handle;
}

int qrxc_connect(qrx_controller *c)
{
    const HandleCall call(c);
    Controller *controller = call.controller();
    if (!controller || controller == &Controller::defaultController())
        return 0;
    const ApiCall held(__func__);
    Robot *robot = held.robot();
    if (!robot || controller->linkStarted.exchange(true))
        return controller->linkUp() ? 1 : 0;
    robot->firstStart();
    if (!controller->waitLinkUp(std::max(1, controller->waitBoundMs.load()))) {
        robot->close();
        return 0;
    }
    robot->send(qrx::protocol::code::PostConnection, QByteArray());
    return 1;
}

void qrxc_close(qrx_controller *c)
{
    std::shared_ptr<Controller> controller;
    {
        std::lock_guard<std::mutex> lock(g_handlesMutex);
        const auto found = g_handles.find(c);
        if (found == g_handles.end())
            return;
        controller = std::move(found->second);
        g_handles.erase(found);
    }
    shutDown(*controller);
}

int qrxc_link_up(qrx_controller *c)
{
    const auto controller = find(c);
    return controller && controller->linkUp() ? 1 : 0;
}

qrx_controller *qrxc_default(void)
{
    return kDefaultHandle;
}

int qrxc_record(qrx_controller *c, const char *path)
{
    const HandleCall call(c);
    Controller *controller = call.controller();
    if (!controller)
        return -1;
    if (!path || !*path)
        return controller->record(QString(), QString(), 0) ? 0 : -1;
    const ApiCall held(__func__);
    Robot *robot = held.robot();
    if (!robot)
        return -1;
    return controller->record(QString::fromUtf8(path), robot->link()->ip(), robot->link()->port()) ? 0 : -1;
}

void qrxc_set_message_handler(qrx_controller *c, qrxc_message_handler handler, void *user)
{
    if (const auto controller = find(c))
        controller->setMessageHandler(handler, user);
}

static_assert(sizeof(qrx_state) == sizeof(qrx::StateSnapshot) &&
                  offsetof(qrx_state, type) == offsetof(qrx::StateSnapshot, type) &&
                  offsetof(qrx_state, joints) == offsetof(qrx::StateSnapshot, joints) &&
                  offsetof(qrx_state, cartesian) == offsetof(qrx::StateSnapshot, cartesian),
              "qrx_state is the controller's snapshot");

int qrxc_get_state(qrx_controller *c, qrx_state *out)
{
    const auto controller = find(c);
    if (!controller || !out)
        return 0;
    qrx::StateSnapshot state = controller->state();
    state.link = controller->linkUp() ? 1 : 0;
    std::memcpy(out, &state, sizeof *out);
    return 1;
}

void qrxc_set_state_handler(qrx_controller *c, qrxc_state_handler handler, void *user)
{
    if (const auto controller = find(c))
        controller->setStateHandler(handler, user);
}

} // extern "C"
