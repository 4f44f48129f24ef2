// The jog repetition of one Robot (see JogDriver.h).

#include "api/JogDriver.h"

#include "api/ApiState.h"
#include "common/Logging.h"
#include "link/TcpConnectModule.h"
#include "protocol/Codes.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>


namespace qrx::api {

namespace {

constexpr int kJogPeriodMs = 200;
constexpr int kServoRunning = 3;
constexpr int kTeachMode = 0;
constexpr int kRobotAxes = 7;
constexpr int kFirstExternalAxis = 8; // external axes 1..5 jog as axes 8..12
constexpr int kExternalAxes = 5;

} // namespace

void logServoNotRunning()
{
    const QString line = QCoreApplication::translate("Robot", "伺服不在运行状态,无法执行点动操作!");
    qCDebug(lcRobot).noquote() << line;
}

JogDriver *JogDriver::attach(Robot *robot)
{
    auto *driver = new JogDriver(robot);
    if (driver->thread() != robot->thread())
        driver->moveToThread(robot->thread());
    driver->setParent(robot);
    return driver;
}

JogDriver::JogDriver(Robot *robot)
    : m_robot(robot)
    , m_timer(this)
{
    m_timer.setInterval(kJogPeriodMs);
    connect(&m_timer, &QTimer::timeout, this, &JogDriver::step);
}

// Runs fn on the driver's thread (the timer is started and stopped only
// there), blocking until it is done.
template <class F>
void JogDriver::onOwnThread(F &&fn)
{
    if (thread() == QThread::currentThread() || !thread()->isRunning()) {
        fn();
        return;
    }
    QMetaObject::invokeMethod(this, std::forward<F>(fn), Qt::BlockingQueuedConnection);
}

void JogDriver::start(int axis, bool positive)
{
    onOwnThread([this, axis, positive] {
        if (m_robot->servoStatus != kServoRunning) {
            logServoNotRunning();
            return;
        }
        m_robot->jogging.store(1);
        m_timer.stop();
        m_axis = 0;
        if (axis < 1 || axis > kRobotAxes)
            return;
        m_axis = axis;
        m_direction = positive ? 1 : -1;
        step();
        m_timer.start(kJogPeriodMs);
    });
}

void JogDriver::stop()
{
    onOwnThread([this] { m_timer.stop(); });
}

// Outside teach mode a step stops the ticks; the step itself still goes,
// straight to the link, not through the Robot's send operation.
void JogDriver::step()
{
    if (m_axis == 0)
        return;
    if (m_robot->operationMode != kTeachMode)
        m_timer.stop();
    if (m_robot->servoStatus != kServoRunning) {
        logServoNotRunning();
        return;
    }
    int axis = m_axis;
    if (m_robot->externalAxisJog == 1) {
        if (axis < 1 || axis > kExternalAxes)
            return;
        axis += kFirstExternalAxis - 1;
    }
    m_robot->link()->sendData(protocol::code::JogStep,
                              payloadOf(object({{"axis", axis}, {"direction", m_direction}})));
}

} // namespace qrx::api
