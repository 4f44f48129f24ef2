#include "robot/Robot.h"

#include "common/Logging.h"
#include "link/IoThreads.h"
#include "link/TcpConnectModule.h"
#include "robot/RobotWiring.h"
#include "protocol/Codes.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

namespace code = qrx::protocol::code;

namespace {

constexpr quint16 kControllerPort = 6001;

// What each new Robot gets unless told otherwise (settings of the tests and
// of qrx_connect_robot_port, not state of any controller).
std::atomic<int> s_linkTimeBase{300000};
std::atomic<quint16> s_linkPort{kControllerPort};

} // namespace

void Robot::setLinkTimeBase(int timeBase)
{
    s_linkTimeBase.store(timeBase);
}

int Robot::linkTimeBase()
{
    return s_linkTimeBase.load();
}

void Robot::setLinkPort(quint16 port)
{
    s_linkPort.store(port);
}

quint16 Robot::linkPort()
{
    return s_linkPort.load();
}

void Robot::setMessageSink(MessageSink sink)
{
    std::lock_guard<std::mutex> lock(m_sinkMutex);
    m_messageSink = std::move(sink);
}

void Robot::setReportSink(std::function<void()> sink)
{
    std::lock_guard<std::mutex> lock(m_sinkMutex);
    m_reportSink = std::move(sink);
}

void Robot::forceModeNotification()
{
    m_forceModeNotification.store(true);
}

bool Robot::takeForceModeNotification()
{
    return m_forceModeNotification.exchange(false);
}

Robot::Robot(const QString &ip, QObject *parent)
    : Robot(ip, s_linkPort.load(), false, parent)
{
}

Robot::Robot(const QString &ip, quint16 port, QObject *parent)
    : Robot(ip, port, true, parent)
{
}

Robot::Robot(const QString &ip, quint16 port, bool sharedIoThread, QObject *parent)
    : RobotSignals(parent)
{
    qrx::registerLinkMetaTypes();
    qrx::registerRobotTypeMetaType();
    qRegisterMetaType<QVector<double>>("QVector<double>");
    qRegisterMetaType<schar>("schar");

    m_link = new TcpConnectModule(ip, port, s_linkTimeBase.load());
    if (sharedIoThread)
        m_link->useSharedIoThread();
    m_link->setParent(this);
    m_link->setCurrentRobotSource([this] { return currentRobot(); });
    qrx::wireRobot(m_link, this);
}

Robot::~Robot()
{
    // The handlers run on the link thread and write the fields below: join
    // that thread while they still exist, not later among the children.
    delete m_link;
    m_link = nullptr;
}

TcpConnectModule *Robot::link() const
{
    return m_link;
}

bool Robot::send(quint16 command, const QByteArray &payload)
{
    if (command == code::SetOperationMode) {
        replyFlag.store(0);
        lastRequestTime = QDateTime::currentDateTime();
    }
    return m_link->sendData(command, payload);
}

void Robot::firstStart()
{
    setReady(true);
    m_link->start();
}

void Robot::restart()
{
    // startConnect() writes the "手动开始" line itself.
    setReady(true);
    forceModeNotification();
    m_link->startConnect();
}

void Robot::close()
{
    m_link->stopConnect();
    setReady(false);
}

bool Robot::isClosed() const
{
    return m_link->isStopped();
}

int Robot::currentRobot() const
{
    const int override = m_overrideRobot.load();
    return override != 0 ? override : m_defaultRobot.load();
}

void Robot::setCurrentRobot(int robot)
{
    m_overrideRobot.store(robot);
    m_defaultRobot.store(robot);
}

std::string Robot::lastMessage() const
{
    std::lock_guard<std::mutex> lock(m_messageMutex);
    return m_lastMessage;
}

void Robot::storeMessage(const std::string &text)
{
    std::lock_guard<std::mutex> lock(m_messageMutex);
    m_lastMessage = text;
}

void Robot::wakeReplyWaiters()
{
    std::lock_guard<std::mutex> lock(replyMutex);
    replyWakes.fetch_add(1);
    replyCondition.notify_all();
}

void Robot::wakeWaiters()
{
    wakeReplyWaiters();
    std::function<void()> sink;
    {
        std::lock_guard<std::mutex> lock(m_sinkMutex);
        sink = m_reportSink;
    }
    if (sink)
        sink();
}

void Robot::waitingPause(int ms)
{
    if (qrx::onSharedIoThread()) {
        QThread::msleep(ulong(ms));
        return;
    }
    QElapsedTimer clock;
    clock.start();
    for (qint64 left = ms; left > 0; left = ms - clock.elapsed()) {
        const int slice = int(qMin<qint64>(left, 100));
        if (!QAbstractEventDispatcher::instance()) {
            QThread::msleep(ulong(slice));
            continue;
        }
        QEventLoop loop;
        QTimer::singleShot(slice, &loop, &QEventLoop::quit);
        loop.exec();
    }
}
