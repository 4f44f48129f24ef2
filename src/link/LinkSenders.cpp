#include "link/LinkSenders.h"

#include "common/CompactJson.h"
#include "common/Logging.h"
#include "protocol/Codes.h"

#include <QCoreApplication>
#include <QtEndian>

#include <iterator>

namespace {

using namespace qrx::protocol::code;

// Log line of setCoordinationMode, by coordinate value; other values are
// sent without a line.
const char *const kCoordinationLines[] = {
    QT_TRANSLATE_NOOP("TcpConnectModule", "发送设置当前坐标系为关节坐标系"),
    QT_TRANSLATE_NOOP("TcpConnectModule", "发送设置当前坐标系为直角坐标系"),
    QT_TRANSLATE_NOOP("TcpConnectModule", "发送设置当前坐标系为工具坐标系"),
    QT_TRANSLATE_NOOP("TcpConnectModule", "发送设置当前坐标系为用户坐标系"),
};

// Sender log lines are looked up in the TcpConnectModule context.
QString linkText(const char *text)
{
    return QCoreApplication::translate("TcpConnectModule", text);
}

void logLine(const QString &line)
{
    qCDebug(lcLink).noquote() << line;
}

} // namespace

const QByteArray &LinkSenders::refusedPayload()
{
    // Copies share this one allocation: identity, not content, marks it.
    static const QByteArray refused(1, '\0');
    return refused;
}

bool LinkSenders::isRefused(const QByteArray &payload)
{
    return payload.constData() == refusedPayload().constData();
}

bool LinkSenders::sendJson(quint16 command, const Json::Value &object)
{
    return sendData(command, qrx::jsonPayload(object));
}

void LinkSenders::setCurrentRobotSource(std::function<int()> source)
{
    std::lock_guard<std::mutex> lock(m_robotSourceMutex);
    m_robotSource = std::move(source);
}

int LinkSenders::currentRobot() const
{
    std::function<int()> source;
    {
        std::lock_guard<std::mutex> lock(m_robotSourceMutex);
        source = m_robotSource;
    }
    return source ? source() : 1;
}

bool LinkSenders::sendRobotOnly(quint16 command)
{
    Json::Value object(Json::objectValue);
    object["robot"] = currentRobot();
    return sendJson(command, object);
}

bool LinkSenders::setServoStatus(ServoStatus servoStatus)
{
    const int status = static_cast<qint8>(servoStatus);
    logLine(QCoreApplication::translate("TcpConnectModule", "发送伺服状态 status=%1").arg(status));
    Json::Value object(Json::objectValue);
    object["robot"] = currentRobot();
    object["status"] = status;
    return sendJson(SetServoStatus, object);
}

bool LinkSenders::getServoStatus()
{
    return sendRobotOnly(GetServoStatus);
}

bool LinkSenders::setOperationMode(OperationMode operationMode)
{
    const int mode = int(operationMode);
    logLine(QCoreApplication::translate("TcpConnectModule", "发送当前操作模式 mode=%1").arg(mode));
    Json::Value object(Json::objectValue);
    object["mode"] = mode;
    return sendJson(SetOperationMode, object);
}

bool LinkSenders::getOperationMode()
{
    return sendData(GetOperationMode, QByteArray());
}

bool LinkSenders::setCoordinationMode(CoordinationMode coordinationMode)
{
    const int coord = int(coordinationMode);
    if (coord >= 0 && coord < int(std::size(kCoordinationLines)))
        logLine(linkText(kCoordinationLines[coord]));
    Json::Value object(Json::objectValue);
    object["coord"] = coord;
    object["robot"] = currentRobot();
    return sendJson(SetCoordinationMode, object);
}

bool LinkSenders::getCoordinationMode()
{
    return sendRobotOnly(GetCoordinationMode);
}

bool LinkSenders::sendDeadmanCommand(uchar status)
{
    logLine(status != 0 ? QCoreApplication::translate("TcpConnectModule", "向控制器发送上电命令")
                        : QCoreApplication::translate("TcpConnectModule", "向控制器发送下电命令"));
    Json::Value object(Json::objectValue);
    object["deadman"] = int(status);
    return sendJson(SetDeadman, object);
}

bool LinkSenders::setSpeed(signed char speed)
{
    Json::Value object(Json::objectValue);
    object["robot"] = currentRobot();
    object["speed"] = int(speed);
    return sendJson(SetSpeed, object);
}

bool LinkSenders::getSpeed()
{
    return sendRobotOnly(GetSpeed);
}

bool LinkSenders::setTestMode(signed char testMode)
{
    return sendData(SetTestMode, QByteArray(1, static_cast<char>(testMode)));
}

bool LinkSenders::getTestMode()
{
    return sendData(GetTestMode, QByteArray());
}

bool LinkSenders::sendStopMoveCommand(int axis)
{
    Json::Value object(Json::objectValue);
    object["axis"] = axis;
    return sendJson(StopMove, object);
}

bool LinkSenders::getPosition()
{
    return sendRobotOnly(GetPosition);
}

bool LinkSenders::clearError(ErrorList error)
{
    QByteArray payload(4, '\0');
    qToBigEndian<quint32>(quint32(error), payload.data());
    return sendData(ClearError, payload);
}

bool LinkSenders::clearAllError()
{
    logLine(QCoreApplication::translate("TcpConnectModule", "发送清除错误"));
    return sendRobotOnly(ClearAllError);
}

bool LinkSenders::getSelectTool()
{
    return sendRobotOnly(GetCurrentTool);
}

bool LinkSenders::getRobotRunStatus()
{
    return sendRobotOnly(GetRunStatus);
}
