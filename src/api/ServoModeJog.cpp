// Servo power, operation mode, coordinate system, jog speed and jogging.
//
// Setters hand one frame to the Robot and return; getters send their query,
// wait for any waking reply and return the value the Robot then holds.
// Jogging runs on the Robot's 200 ms jog timer: each tick sends the same jog
// step again, so the axis moves for as long as steps keep coming.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/Logging.h"
#include "link/TcpConnectModule.h"
#include "protocol/Codes.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <QTimer>

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

constexpr int kServoRunning = 3;
constexpr int kServoPowerOnOk = 1;
constexpr int kTeachMode = 0;
constexpr int kJogSpeedMax = 103; // 101..103 are the jog-step sizes, so not 100
constexpr int kRobotAxes = 7;
constexpr int kFirstExternalAxis = 8; // external axes 1..5 jog as axes 8..12
constexpr int kExternalAxes = 5;
constexpr char kJogStepsName[] = "qrx_jog_steps";

// The servo refusal of the jog start and of every jog step.
void logServoNotRunning()
{
    const QString line = QCoreApplication::translate("Robot", "伺服不在运行状态,无法执行点动操作!");
    qCDebug(lcRobot).noquote() << line;
}

// Runs fn on the thread of the Robot's jog timer (timers are started and
// stopped only there), blocking until it is done.
template <class F>
void onJogTimerThread(Robot *robot, F &&fn)
{
    QObject *timer = robot->jogTimer;
    if (!timer || timer->thread() == QThread::currentThread() || !timer->thread()->isRunning()) {
        fn();
        return;
    }
    QMetaObject::invokeMethod(timer, std::forward<F>(fn), Qt::BlockingQueuedConnection);
}

// One jog step, as sent at the start and on every timer tick. The step goes
// straight to the link, not through the Robot's send operation.
void jogStep(Robot *robot, int axis, int direction)
{
    if (robot->operationMode != kTeachMode && robot->jogTimer)
        robot->jogTimer->stop();
    if (robot->servoStatus != kServoRunning) {
        logServoNotRunning();
        return;
    }
    if (robot->externalAxisJog == 1) {
        if (axis < 1 || axis > kExternalAxes)
            return;
        axis += kFirstExternalAxis - 1;
    }
    robot->link()->sendData(code::JogStep, payloadOf(object({{"axis", axis}, {"direction", direction}})));
}

// The per-axis jog steps hang on one context object under the timer, so
// that dropping it disconnects every one of them at once.
void disconnectJogSteps(QTimer *timer)
{
    const auto contexts = timer->findChildren<QObject *>(QLatin1String(kJogStepsName), Qt::FindDirectChildrenOnly);
    for (QObject *context : contexts)
        delete context;
}

void connectJogStep(Robot *robot, int axis, int direction)
{
    auto *context = new QObject(robot->jogTimer);
    context->setObjectName(QLatin1String(kJogStepsName));
    QObject::connect(robot->jogTimer, &QTimer::timeout, context,
                     [robot, axis, direction] { jogStep(robot, axis, direction); });
}

} // namespace

extern "C" {

int servo_power_on(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, [robot] {
        robot->link()->setServoStatus(ServoStatus(kServoPowerOnOk));
        robot->link()->sendDeadmanCommand(1);
    }, code::SetServoStatus);
    if (robot->servoStatus == kServoPowerOnOk)
        return 1;
    const QString line = QStringLiteral("servo %1 deadman %2").arg(robot->servoStatus).arg(robot->deadman);
    qCDebug(lcApi).noquote() << line;
    return 0;
}

void servo_power_off(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, [robot] { robot->link()->sendDeadmanCommand(0); }, code::SetDeadman);
}

void set_servo_state(int state)
{
    QRX_ROBOT_OR_RETURN(robot);
    const int status = static_cast<signed char>(state);
    robot->send(code::SetServoStatus, payloadOf(withRobot(robot->overrideRobot(), {{"status", status}})));
}

int get_servo_state(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    return robot->servoStatus;
}

void clear_servo_error(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::ClearAllError, payloadOf(withCurrentRobot(robot)));
}

void set_current_mode(int mode)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetOperationMode, payloadOf(object({{"mode", mode}}))); // clears the mode acknowledgement
}

int get_current_mode(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetOperationMode);
    return robot->operationMode;
}

void set_current_coord(int coord)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetCoordinationMode, payloadOf(withCurrentRobot(robot, {{"coord", coord}})));
}

int get_current_coord(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetCoordinationMode, payloadOf(withCurrentRobot(robot)));
    return robot->coordinate;
}

void set_jogging_speed(int speed)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetSpeed, payloadOf(withCurrentRobot(robot, {{"speed", qBound(0, speed, kJogSpeedMax)}})));
}

int get_jogging_speed(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetSpeed, payloadOf(withCurrentRobot(robot)));
    return robot->speed;
}

void start_jogging(int axis, bool direction)
{
    QRX_ROBOT_OR_RETURN(robot);
    onJogTimerThread(robot, [robot, axis, direction] {
        if (robot->servoStatus != kServoRunning) {
            logServoNotRunning();
            return;
        }
        QTimer *timer = robot->jogTimer;
        if (!timer)
            return;
        robot->jogging.store(1);
        timer->stop();
        disconnectJogSteps(timer);
        if (axis < 1 || axis > kRobotAxes)
            return;
        const int step = direction ? 1 : -1;
        jogStep(robot, axis, step);
        connectJogStep(robot, axis, step);
        timer->start(200);
    });
}

void stop_jogging(int axis)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->jogging.store(0);
    onJogTimerThread(robot, [robot] {
        if (robot->jogTimer)
            robot->jogTimer->stop();
    });
    // The axis goes out as the host passed it: no external-axis mapping here.
    robot->link()->sendData(code::StopMove, payloadOf(object({{"axis", axis}})));
}

int get_robot_running_state(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetRunStatus, payloadOf(withCurrentRobot(robot)));
    return robot->runningStatus;
}

} // extern "C"
