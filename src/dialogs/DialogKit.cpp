#include "dialogs/DialogKit.h"

#include "common/CompactJson.h"
#include "robot/Robot.h"

#include <QCoreApplication>
#include <QPushButton>

#include <atomic>

namespace qrx::dialogs {

namespace {

const char *const kServoTexts[] = {
    QT_TRANSLATE_NOOP("DialogKit", "伺服停止"),     // 0
    QT_TRANSLATE_NOOP("DialogKit", "伺服就绪"),     // 1
    QT_TRANSLATE_NOOP("DialogKit", "伺服错误"),     // 2
    QT_TRANSLATE_NOOP("DialogKit", "伺服运行"),     // 3
};

const char *const kModeTexts[] = {
    QT_TRANSLATE_NOOP("DialogKit", "示教模式"),
    QT_TRANSLATE_NOOP("DialogKit", "远程模式"),
    QT_TRANSLATE_NOOP("DialogKit", "运行模式"),
};

const char *const kCoordTexts[kCoordCount] = {
    QT_TRANSLATE_NOOP("DialogKit", "关节坐标系"),
    QT_TRANSLATE_NOOP("DialogKit", "直角坐标系"),
    QT_TRANSLATE_NOOP("DialogKit", "工具坐标系"),
    QT_TRANSLATE_NOOP("DialogKit", "用户坐标系"),
};

const char *const kCartesianAxes[] = {"X", "Y", "Z", "A", "B", "C", "E"};

template <int N>
QString textOf(const char *const (&table)[N], int index)
{
    if (index < 0 || index >= N)
        return QCoreApplication::translate("DialogKit", "未知 (%1)").arg(index);
    return QCoreApplication::translate("DialogKit", table[index]);
}

} // namespace

namespace {
std::atomic<RobotSource> g_source{nullptr};
} // namespace

void setRobotSource(RobotSource source)
{
    g_source.store(source);
}

Robot *currentRobot()
{
    const RobotSource source = g_source.load();
    return source ? source() : nullptr;
}

void queryAboutCurrentRobot(Robot *robot, quint16 code, int coord)
{
    Json::Value request(Json::objectValue);
    request["robot"] = robot->currentRobot();
    if (coord >= 0)
        request["coord"] = coord;
    robot->send(code, jsonPayload(request));
}

Robot *connectedRobot()
{
    Robot *robot = currentRobot();
    return robot && !robot->isClosed() && robot->connected.load() ? robot : nullptr;
}

QString servoText(int servoStatus) { return textOf(kServoTexts, servoStatus); }
QString modeText(int mode) { return textOf(kModeTexts, mode); }
QString coordText(int coord) { return textOf(kCoordTexts, coord); }

QString axisLabel(int axis, int coord)
{
    if (coord == 0 || axis < 1 || axis > 7)
        return QStringLiteral("J%1").arg(axis);
    return QLatin1String(kCartesianAxes[axis - 1]);
}

void styleMenuButton(QPushButton *button)
{
    button->setMinimumSize(180, 44);
    button->setStyleSheet(QStringLiteral(
        "QPushButton { border-image: url(:/qrx/dialogs/menu_button.png) 6 6 6 6 stretch; border: 6px;"
        " color: white; font-weight: bold; }"
        "QPushButton:pressed { border-image: url(:/qrx/dialogs/menu_button_pressed.png) 6 6 6 6 stretch; }"));
}

} // namespace qrx::dialogs
