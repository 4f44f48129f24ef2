#include "robot/Robot.h"

#include "common/Logging.h"
#include "link/IoThreads.h"
#include "link/TcpConnectModule.h"
#include "protocol/Catalogue.h"
#include "protocol/Codes.h"
#include "robot/HandlerLines.h"
#include "robot/ReportTable.h"

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

void Robot::setReportSink(ReportSink sink)
{
    std::lock_guard<std::mutex> lock(m_sinkMutex);
    m_reportSink = std::move(sink);
}

Robot::Robot(const QString &ip, QObject *parent)
    : Robot(ip, s_linkPort.load(), IoThread::Own, parent)
{
}

Robot::Robot(const QString &ip, quint16 port, QObject *parent)
    : Robot(ip, port, IoThread::Shared, parent)
{
}

Robot::Robot(const QString &ip, quint16 port, IoThread io, QObject *parent)
    : RobotSignals(parent)
{
    qrx::registerLinkMetaTypes();
    qrx::registerRobotTypeMetaType();
    qRegisterMetaType<QVector<double>>("QVector<double>");
    qRegisterMetaType<schar>("schar");

    m_link = new TcpConnectModule(ip, port, s_linkTimeBase.load());
    if (io == IoThread::Shared)
        m_link->useSharedIoThread();
    m_link->setParent(this);
    m_link->setCurrentRobotSource([this] { return currentRobot(); });
    m_link->setFrameSink([this](quint16 command, const QByteArray &payload) { take(command, payload); });
    connect(m_link, &LinkNotifications::connectSucceed, this, &Robot::robot_net_slot_connectSucceed,
            Qt::DirectConnection);
    // Notifications without a code of their own, relayed for whoever emits
    // them on the link.
    connect(m_link, &LinkNotifications::receivedRunningMode, this, &RobotSignals::robot_running_status_changed,
            Qt::DirectConnection);
    connect(m_link, &LinkNotifications::receivedDragSwitch, this, &RobotSignals::robot_DragSwitch,
            Qt::DirectConnection);
    connect(m_link, &LinkNotifications::receivePayloadNumPara, this, &RobotSignals::robot_receivePayloadNumPara,
            Qt::DirectConnection);
}

void Robot::robot_net_slot_connectSucceed(int status)
{
    connected.store(status != 0 ? 1 : 0);
    emit robot_connect_succeed(status);
}

void Robot::take(quint16 command, const QByteArray &payload)
{
    MessageSink messageSink;
    ReportSink reportSink;
    {
        std::lock_guard<std::mutex> lock(m_sinkMutex);
        messageSink = m_messageSink;
        reportSink = m_reportSink;
    }
    const qrx::ReportRow *row = qrx::findReportRow(command);
    bool woke = false;
    if (!row) {
        if (!qrx::protocol::find(command))
            emit robot_received_data(command, payload);
    } else {
        qrx::Change change;
        {
            std::lock_guard<std::recursive_mutex> lock(cacheMutex);
            change = qrx::decodeReport(*row, payload, *this);
        }
        for (const QString &line : qAsConst(change.lines))
            qrx::writeRobotLine(line);
        if (change.request)
            send(change.request, change.requestPayload);
        if (change.messageLevel >= 0 && messageSink)
            messageSink(change.messageLevel, change.message); // NUL-terminated, alive during the call
        woke = qrx::notifyReport(*row, change, *this, payload);
        if (change.settleMs)
            waitingPause(change.settleMs);
        if (woke)
            wakeWaiters();
    }
    if (reportSink)
        reportSink(command, woke);
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

void Robot::setCurrentRobot(int robot)
{
    robotOverride.store(robot);
    robotDefault.store(robot);
}

std::string Robot::lastMessage() const
{
    std::lock_guard<std::recursive_mutex> lock(cacheMutex);
    return lastMessageText;
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
}

// The catalogue is chosen by the robot count held (0x2E06).
QString Robot::configFileDescription(const QString &fileName) const
{
    return configCatalogue.describe(fileName, robotCount);
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
