#include "robot/RobotWiring.h"

#include "common/Logging.h"
#include "robot/Robot.h"

#include <QByteArray>

namespace qrx {

namespace {

using R = WiringRow;

// link notification -> Robot slot or signal. Signatures are normalised
// (const QByteArray & is written QByteArray).
const WiringRow kRows[] = {
    // ---- core: connection and raw frames ----------------------------------
    {"connectSucceed(int)", "robot_net_slot_connectSucceed(int)", R::Slot},
    {"receivedData(quint16,QByteArray)", "robot_net_slot_receivedDataProcess(quint16,QByteArray)", R::Slot},
    {"receivedRunningMode(uchar)", "robot_net_slot_runningStatusProcess(quint8)", R::Slot},
    // ---- core: status ------------------------------------------------------
    {"receivedServoStatus(QByteArray)", "robot_net_slot_servoChangedProcess(QByteArray)", R::Slot},
    {"receivedOperationMode(QByteArray)", "robot_net_slot_modeProcess(QByteArray)", R::Slot},
    {"receivedTeachModeType(QByteArray)", "robot_net_slot_teachtype(QByteArray)", R::Slot},
    {"receivedCoordinationMode(QByteArray)", "robot_net_slot_coordChangedProcess(QByteArray)", R::Slot},
    {"receivedDeadmanStatus(QByteArray)", "robot_net_slot_deadmanChangedProcess(QByteArray)", R::Slot},
    {"receivedDeadManMode(QByteArray)", "robot_net_slot_DeadManMode(QByteArray)", R::Slot},
    {"receivedSpeedInfo(QByteArray)", "robot_net_slot_velocityProcess(QByteArray)", R::Slot},
    {"receivedToolInfo(QByteArray)", "robot_net_slot_ToolChangedProcess(QByteArray)", R::Slot},
    // ---- core: positions and drive figures ---------------------------------
    {"receivedPosition(QVector<double>,int,int,int)", "robot_position_update(QVector<double>,int,int)", R::Signal},
    {"recriveMoreRobotCurPosition(QByteArray)", "robot_net_slot_MoreRobotCurPosition(QByteArray)", R::Slot},
    {"recvCurEXPosition(QByteArray)", "robot_net_slot_CurEXPosition(QByteArray)", R::Slot},
    {"receiveMotorSpeed(QByteArray)", "robot_net_slot_MotorSpeed(QByteArray)", R::Slot},
    {"receiveMotorTorque(QByteArray)", "robot_net_slot_MotorTorque(QByteArray)", R::Slot},
    {"signal_receivedMotorLoad(QByteArray)", "robot_net_slot_MotorLoad(QByteArray)", R::Slot},
    // ---- core: IO and variables --------------------------------------------
    {"receivedDoutStatus(QByteArray)", "robot_net_slot_DoutStatus(QByteArray)", R::Slot},
    {"receivedDinStatus(QByteArray)", "robot_net_slot_DinStatus(QByteArray)", R::Slot},
    {"receivedAoutStatus(QByteArray)", "robot_net_slot_AoutStatus(QByteArray)", R::Slot},
    {"receivedAinStatus(QByteArray)", "robot_net_slot_AinStatus(QByteArray)", R::Slot},
    {"receiveOneGlobalVariant(QByteArray)", "robot_net_slot_OneGlobalVariant(QByteArray)", R::Slot},
    // ---- core: jobs --------------------------------------------------------
    {"receivedProRunStatus(QByteArray)", "robot_net_slot_prorunstatus(QByteArray)", R::Slot},
    {"receivedJobStatus(QByteArray)", "robot_net_slot_JobStatusProcess(QByteArray)", R::Slot},
    {"receivedStepEndStatus(QByteArray)", "robot_net_slot_stepEndProcess(QByteArray)", R::Slot},
    {"receivedBWBStatus(QByteArray)", "robot_net_slot_BWBCommandStatus(QByteArray)", R::Slot},
    {"receivedJobfileLine(QByteArray)", "robot_net_slot_JobfiletoLine(QByteArray)", R::Slot},
    {"signal_receivedCurRunLine(QByteArray)", "slot_robotCurRunLine(QByteArray)", R::Slot},
    {"receivedSingleCycleValue(QByteArray)", "robot_net_slot_SingleCycleValue(QByteArray)", R::Slot},
    {"recriveRobotCycleIndex(QByteArray)", "robot_net_slot_RobotCycleIndex(QByteArray)", R::Slot},
    {"receivedSocketState(QByteArray)", "robot_net_slot_continuousMotionMode(QByteArray)", R::Slot},
    // ---- core: robots of the controller ------------------------------------
    {"receiveRobotSum(QByteArray)", "robot_net_slot_RobotSum(QByteArray)", R::Slot},
    {"receivedChangeRobot(QByteArray)", "robot_net_slot_CurRobot(QByteArray)", R::Slot},
    // ---- core: errors, warnings, information -------------------------------
    {"receivedError(QByteArray)", "robot_net_slot_errProcess(QByteArray)", R::Slot},
    {"receivedWarning(QByteArray)", "robot_net_slot_warnProcess(QByteArray)", R::Slot},
    {"receivedInfo(QByteArray)", "robot_net_slot_infoProcess(QByteArray)", R::Slot},

    // ---- families ----------------------------------------------------------
    // ---- end families ------------------------------------------------------
};

// Notifications that the Robot does not listen to, on purpose.
const char *const kUnconnected[] = {
    "receivedTestMode", // the test mode is set and read by the link's own slots only
};

} // namespace

const WiringRow *robotWiringRows(int *count)
{
    *count = int(sizeof(kRows) / sizeof(kRows[0]));
    return kRows;
}

const char *const *deliberatelyUnconnected(int *count)
{
    *count = int(sizeof(kUnconnected) / sizeof(kUnconnected[0]));
    return kUnconnected;
}

int wireRobot(QObject *link, Robot *robot)
{
    int failed = 0;
    for (const WiringRow &row : kRows) {
        const QByteArray signal = QByteArray("2") + row.notification;
        const QByteArray member = QByteArray(row.target == WiringRow::Signal ? "2" : "1") + row.member;
        if (!QObject::connect(link, signal.constData(), robot, member.constData(), Qt::DirectConnection)) {
            ++failed;
            const QString line = QStringLiteral("wiring failed: %1 -> %2")
                                     .arg(QLatin1String(row.notification), QLatin1String(row.member));
            qCWarning(lcRobot).noquote() << line;
        }
    }
    return failed;
}

} // namespace qrx
