// Received-frame dispatch, end to end: a frame sent by qrx-sim travels over
// the link and comes out of TcpConnectModule as the notification named for
// its code, with the payload exactly as sent.
//
// Every notification of the module is connected to a recorder living in the
// test thread (queued, so the argument types must be registered and the
// module's own thread never touches test state). A frame is followed by a
// sentinel frame of an unknown code; once the sentinel has arrived, all that
// the first frame produced has arrived too, so "nothing else" is checked
// without waiting for a fixed time.

#include "link/TcpConnectModule.h"
#include "sim/SimHandle.h"
#include "support/Loopback.h"

#include <QMetaMethod>
#include <QtTest>

namespace {

constexpr quint16 kSentinel = 0x0001; // not a controller code: always receivedData
constexpr int kWaitMs = 10000;
constexpr int kTimeBase = 18000; // check every 100 ms

// Expected notifications of the plain rows: the controller code and the
// signal it must come out as, name for name (irregular spellings included).
struct PlainRow
{
    quint16 code;
    const char *signal;
};

const PlainRow kPlainRows[] = {
        {0x2003, "receivedServoStatus(QByteArray)"},
        {0x2103, "receivedOperationMode(QByteArray)"},
        {0x2106, "receivedTeachModeType(QByteArray)"},
        {0x2203, "receivedCoordinationMode(QByteArray)"},
        {0x2303, "receivedDeadmanStatus(QByteArray)"},
        {0x2306, "receivedDeadManMode(QByteArray)"},
        {0x2406, "receivedFbCmdMode(QByteArray)"},
        {0x2603, "receivedSpeedInfo(QByteArray)"},
        {0x2606, "receiveJointInchSpeed(QByteArray)"},
        {0x2609, "receiveRectInchSpeed(QByteArray)"},
        {0x260C, "recvSensitivity(QByteArray)"},
        {0x2803, "receiveInterpolationMode(QByteArray)"},
        {0x2A05, "receiveMotorSpeed(QByteArray)"},
        {0x2A07, "receiveMotorTorque(QByteArray)"},
        {0x2A09, "receivedPosOver(QByteArray)"},
        {0x2A0B, "signal_receivedMotorLoad(QByteArray)"},
        {0x2A13, "receiveTransCoordPos(QByteArray)"},
        {0x2A16, "receivedTrackingError(QByteArray)"},
        {0x2A19, "receivedOverlordProtect(QByteArray)"},
        {0x2B03, "receivedError(QByteArray)"},
        {0x2B04, "receivedWarning(QByteArray)"},
        {0x2B05, "receivedInfo(QByteArray)"},
        {0x2B06, "receivedPopup(QByteArray)"},
        {0x2C03, "receivedRobotProgramTitle(QByteArray)"},
        {0x2C06, "receivedReceiveRemotePara(QByteArray)"},
        {0x2E03, "receivedRobotType(QByteArray)"},
        {0x2E06, "receiveRobotSum(QByteArray)"},
        {0x2E09, "receiveControlComCycle(QByteArray)"},
        {0x2E0C, "recvSelectFuncton(QByteArray)"},
        {0x2E0F, "receivedServoList(QByteArray)"},
        {0x2E16, "receivedRobotTypeSlave(QByteArray)"},
        {0x2E19, "receivedRobotSyncAxle(QByteArray)"},
        {0x2E1C, "receivedENI(QByteArray)"},
        {0x2F03, "recriveioparam(QByteArray)"},
        {0x2F06, "recriveMoreRobotResetPosition(QByteArray)"},
        {0x2F08, "recriveMoreRobotCurPosition(QByteArray)"},
        {0x2F0B, "recriveIoStatus(QByteArray)"},
        {0x2F0F, "receiveIOState(QByteArray)"},
        {0x2F11, "signal_doubleRobotCurPosition(QByteArray)"},
        {0x2F13, "receiveIOFuncState(QByteArray)"},
        {0x2F16, "receiveUnsafePoint(QByteArray)"},
        {0x2F1C, "receiveReservationState(QByteArray)"},
        {0x2F23, "recvIOConfig(QByteArray)"},
        {0x2F26, "recvIORemoteOutput(QByteArray)"},
        {0x2F33, "receiveSafetySet(QByteArray)"},
        {0x2F43, "receivedIODinAlarm(QByteArray)"},
        {0x2F46, "receivedIODoutAlarm(QByteArray)"},
        {0x2F49, "receivedIODinPortName(QByteArray)"},
        {0x2F4C, "receivedIODoutPortName(QByteArray)"},
        {0x2F4F, "receivedIOAIPortName(QByteArray)"},
        {0x2F52, "receivedIOAOPortName(QByteArray)"},
        {0x3119, "signal_receivedMainJob(QByteArray)"},
        {0x3202, "receiveErrorStatus(QByteArray)"},
        {0x3205, "receiveCollisionDetectDragTeach(QByteArray)"},
        {0x3207, "receiveClearCollision(QByteArray)"},
        {0x3303, "receivedZeroSuccess(QByteArray)"},
        {0x3306, "receivedEncoderState(QByteArray)"},
        {0x330A, "receivedSingleCycleValue(QByteArray)"},
        {0x3403, "recvControlVersion(QByteArray)"},
        {0x3501, "receivedStepEndStatus(QByteArray)"},
        {0x3502, "receivedBWBStatus(QByteArray)"},
        {0x3504, "receivedJobfileLine(QByteArray)"},
        {0x3603, "receivedDoutStatus(QByteArray)"},
        {0x3606, "receivedDinStatus(QByteArray)"},
        {0x3609, "receivedAoutStatus(QByteArray)"},
        {0x360B, "receivedAinStatus(QByteArray)"},
        {0x360E, "ReceivedForcedInputStatus(QByteArray)"},
        {0x3613, "ReceivedForcedAnalogInputStatus(QByteArray)"},
        {0x3803, "receivedToolCheck(QByteArray)"},
        {0x3804, "receivedCountSuccess(QByteArray)"},
        {0x3807, "receivedCountToolData(QByteArray)"},
        {0x380C, "receivedToolInfo(QByteArray)"},
        {0x3813, "receive7MarkedPoint(QByteArray)"},
        {0x3816, "signal_receivedAllToolCheck(QByteArray)"},
        {0x3A03, "recvDHparaState(QByteArray)"},
        {0x3B03, "receivedJointPara(QByteArray)"},
        {0x3B06, "receiveDecareParam(QByteArray)"},
        {0x3B09, "receivedEncoderPara(QByteArray)"},
        {0x3C02, "receivedUserSuccess(QByteArray)"},
        {0x3C04, "receivedUserCoordsCheck(QByteArray)"},
        {0x3C09, "receivedUserCoordsReply(QByteArray)"},
        {0x3C0C, "receivedCurrentUserCoords(QByteArray)"},
        {0x3C0F, "receivedUserCoordsNote(QByteArray)"},
        {0x3D03, "receivedProRunStatus(QByteArray)"},
        {0x3E03, "receivedPresentRobot(QByteArray)"},
        {0x3E05, "receivedDHParaValueRobot(QByteArray)"},
        {0x3F03, "receivedRobotRange(QByteArray)"},
        {0x3F06, "receivedVisionRange(QByteArray)"},
        {0x3F09, "receivedInterfereRange(QByteArray)"},
        {0x4003, "receivedWeldEquipmentData(QByteArray)"},
        {0x4006, "receivedCurVolMatData(QByteArray)"},
        {0x4009, "receivedArcsettingData(QByteArray)"},
        {0x400D, "receivedWaveweldData(QByteArray)"},
        {0x400F, "receiveWaveIUMatch(QByteArray)"},
        {0x4013, "receiveWeldIOData(QByteArray)"},
        {0x4016, "receiveWeldMonitor(QByteArray)"},
        {0x401C, "receiveWeldEnableState(QByteArray)"},
        {0x401F, "receivedWelder(QByteArray)"},
        {0x4023, "receivedWelderState(QByteArray)"},
        {0x4025, "signal_receivedWeldParaNotes(QByteArray)"},
        {0x4027, "receivedReceiveWeldRecord(QByteArray)"},
        {0x402A, "receiveWeldAdjustment(QByteArray)"},
        {0x4053, "receiveweldintersectionPoint(QByteArray)"},
        {0x4054, "receiveWeldintersectionCal(QByteArray)"},
        {0x4057, "receiveweldintersectionPara(QByteArray)"},
        {0x4063, "receiveOuterWeldTorchParam(QByteArray)"},
        {0x4067, "receiveOuterWeldType(QByteArray)"},
        {0x4103, "receiveVisionParameter(QByteArray)"},
        {0x4106, "receiveVisionPosParameter(QByteArray)"},
        {0x4108, "receiveVisionDebugPosList(QByteArray)"},
        {0x4111, "receiveVisionPosGesture(QByteArray)"},
        {0x4113, "receiveVisionPostrytakephoto(QByteArray)"},
        {0x4115, "receiveVisionIp(QByteArray)"},
        {0x4119, "receivevisualcarbinpara(QByteArray)"},
        {0x411B, "receiveVisualCarbinPoint(QByteArray)"},
        {0x4120, "receiveCaculateVisualCarbinPoint(QByteArray)"},
        {0x4121, "caculateVisualCarbinPointFinish(QByteArray)"},
        {0x4132, "receivedLaserParameter(QByteArray)"},
        {0x4135, "signal_receivedSensorType(QByteArray)"},
        {0x4138, "receivedTrackParameter(QByteArray)"},
        {0x413B, "receivedSearchParameter(QByteArray)"},
        {0x4141, "receivedLaserCalibate(QByteArray)"},
        {0x4143, "receivedLaserCalibateReCord(QByteArray)"},
        {0x4146, "receivedLaserCalibateResult(QByteArray)"},
        {0x414A, "signal_calibrated(QByteArray)"},
        {0x4152, "receivedArcTrackCOMM(QByteArray)"},
        {0x4155, "receivedArcTrackCOMP(QByteArray)"},
        {0x4158, "receivedArcHTrackCOMP(QByteArray)"},
        {0x4162, "signal_receivedArcSearch(QByteArray)"},
        {0x4166, "receivedArcVolTrackCOMP(QByteArray)"},
        {0x4171, "signal_receivedTrackSensorType(QByteArray)"},
        {0x4182, "receiveTCPParameter(QByteArray)"},
        {0x4203, "recvPalletToolParameter(QByteArray)"},
        {0x4206, "recvPalletTrayParameter(QByteArray)"},
        {0x4209, "recvPalletPositionParameter(QByteArray)"},
        {0x420C, "recvPalletWorkpieceParameter(QByteArray)"},
        {0x420F, "recvPalletApproachParameter(QByteArray)"},
        {0x4212, "recvPalletOverlappingModel(QByteArray)"},
        {0x4215, "recvPalletPlaneModel(QByteArray)"},
        {0x4217, "recvPalletChangeModel(QByteArray)"},
        {0x4219, "recvPalletPlanePreview(QByteArray)"},
        {0x421C, "recvPalletState(QByteArray)"},
        {0x4223, "recvSwitchPalletMode(QByteArray)"},
        {0x4226, "recvPalletEasyPositionParameter(QByteArray)"},
        {0x4229, "recvPalletEasyToolParameter(QByteArray)"},
        {0x422B, "recvPalletAutoCalculate(QByteArray)"},
        {0x422E, "receivealletPlaneCarbin(QByteArray)"},
        {0x4233, "receivePalletData(QByteArray)"},
        {0x4243, "recvPalletLocATPara(QByteArray)"},
        {0x4249, "recvPieceLocAT(QByteArray)"},
        {0x4303, "receiveControlIp(QByteArray)"},
        {0x4306, "receiveConntrollerInitState(QByteArray)"},
        {0x4403, "receiveChangeIosetData(QByteArray)"},
        {0x4406, "receiveLaserTechParam(QByteArray)"},
        {0x4409, "receiveChangeLaserAnalog(QByteArray)"},
        {0x440C, "receiveCutTechParam(QByteArray)"},
        {0x440F, "receiveCurrentState(QByteArray)"},
        {0x4413, "receiveShotParameter(QByteArray)"},
        {0x4419, "receiveChangeLaserAnalogSet(QByteArray)"},
        {0x4603, "receivedPolishPara(QByteArray)"},
        {0x4703, "receivedSprayAnalog(QByteArray)"},
        {0x4706, "receivedSprayDigital(QByteArray)"},
        {0x4709, "receivedSpraySequence(QByteArray)"},
        {0x470C, "receivedSprayTrackPara(QByteArray)"},
        {0x4713, "receivedSprayHandOperatOne(QByteArray)"},
        {0x4716, "receivedSprayHandOperatTwo(QByteArray)"},
        {0x4719, "receivedSprayHandOperatThree(QByteArray)"},
        {0x4803, "receiveTrackConBasic(QByteArray)"},
        {0x4806, "receiveTrackConTool(QByteArray)"},
        {0x4808, "receiveTrackSpeed(QByteArray)"},
        {0x480F, "receiveTrackConUerPoint(QByteArray)"},
        {0x4813, "receiveCalibrationedPoint(QByteArray)"},
        {0x4817, "receiveSensorPos(QByteArray)"},
        {0x4819, "receiveCalibrationedSensorPoint(QByteArray)"},
        {0x481D, "receiveCalibrationedSensorPos(QByteArray)"},
        {0x4832, "rceiveTrackConPos(QByteArray)"},
        {0x4834, "receiveCalibrationPos(QByteArray)"},
        {0x483C, "receiveWaitPoint(QByteArray)"},
        {0x483E, "receiveCalibarteRespond(QByteArray)"},
        {0x5003, "receivedChangeRobot(QByteArray)"},
        {0x5013, "recriveRobotCycleIndex(QByteArray)"},
        {0x5023, "receiveRobotRunningTime(QByteArray)"},
        {0x5033, "recriveModbusIoState(QByteArray)"},
        {0x5053, "recvControlNumber(QByteArray)"},
        {0x505C, "recvSysClock(QByteArray)"},
        {0x5066, "recvBackup(QByteArray)"},
        {0x5068, "recvBackupRestore(QByteArray)"},
        {0x5073, "recvServoPara(QByteArray)"},
        {0x5083, "receivedProSelfStart(QByteArray)"},
        {0x5093, "receivehistorycmd(QByteArray)"},
        {0x50A3, "receivedRunModeAutoMan(QByteArray)"},
        {0x50B3, "receivedSocketState(QByteArray)"},
        {0x50C3, "singal_recvGAutoRun(QByteArray)"},
        {0x50C6, "singal_recvGAutoRunState(QByteArray)"},
        {0x5502, "receiveUploadAnswer(QByteArray)"},
        {0x5508, "receiveFileNamesNeedByDownload(QByteArray)"},
        {0x5533, "recvJobSumlist(QByteArray)"},
        {0x5534, "recvJobFileList(QByteArray)"},
        {0x5543, "recvControlLoglist(QByteArray)"},
        {0x5546, "recvControlENIlist(QByteArray)"},
        {0x5603, "receiveAllGlobalPosition(QByteArray)"},
        {0x5606, "receiveGlobalPosition(QByteArray)"},
        {0x5609, "receiveGlobalVariant(QByteArray)"},
        {0x560C, "receiveOneGlobalVariant(QByteArray)"},
        {0x5613, "receiveLocalVariantPosP(QByteArray)"},
        {0x5616, "receiveLocalVariantPosE(QByteArray)"},
        {0x5619, "receiveLocalVariantValue(QByteArray)"},
        {0x561C, "receiveGlobalExternPosition(QByteArray)"},
        {0x5703, "receivedModbusProgram(QByteArray)"},
        {0x5713, "reveivedModbusParameter(QByteArray)"},
        {0x5717, "reveivedModbusCheckHeart(QByteArray)"},
        {0x5719, "recrivedModbusState(QByteArray)"},
        {0x5723, "receivedUploadEnable(QByteArray)"},
        {0x5726, "receivedUploadPara(QByteArray)"},
        {0x5729, "receivedDAformat(QByteArray)"},
        {0x5733, "receivedScrewPara(QByteArray)"},
        {0x5736, "receivedScrewIO(QByteArray)"},
        {0x5739, "receivedScrewState(QByteArray)"},
        {0x5746, "reveivedModbusMaterParameter(QByteArray)"},
        {0x7003, "recvOutterAxisPos(QByteArray)"},
        {0x7004, "recvOutterAxisState(QByteArray)"},
        {0x7006, "receivedSyncCalibration(QByteArray)"},
        {0x700B, "receivedSyncPositionerNum(QByteArray)"},
        {0x700F, "receivedSyncGroundRail(QByteArray)"},
        {0x7013, "recvCurEXPosition(QByteArray)"},
        {0x7017, "recvCOOPERATIVE(QByteArray)"},
        {0x7023, "recvSyncJointPara(QByteArray)"},
        {0x7026, "signal_receivedSyncJogSpeed(QByteArray)"},
        {0x7029, "signal_ReceiveSyncEncodeOverflow(QByteArray)"},
        {0x7033, "recvSyncZeroPoint(QByteArray)"},
        {0x7037, "receiveOuterSingleCycle(QByteArray)"},
        {0x7043, "recvOutterCalResult(QByteArray)"},
        {0x7103, "receivedToolCheckFor20(QByteArray)"},
        {0x7104, "receivedCountSuccessFor20(QByteArray)"},
        {0x7106, "receiveResetResultToZeroPoint(QByteArray)"},
        {0x7108, "receive20PointState(QByteArray)"},
        {0x710B, "receive20MarkedPoint(QByteArray)"},
        {0x710E, "receivedAllowCalibration(QByteArray)"},
        {0x7204, "receivedCountSuccessFor4(QByteArray)"},
        {0x7206, "receivedresultForDH(QByteArray)"},
        {0x7208, "received4Point(QByteArray)"},
        {0x7303, "receivedThreeMouse(QByteArray)"},
        {0x7306, "received3DMousePoint(QByteArray)"},
        {0x7309, "received3DMouseMark(QByteArray)"},
        {0x730D, "received_threeD_mouse_port(QByteArray)"},
        {0x7403, "receivedDynaPara(QByteArray)"},
        {0x7405, "receivedDynaIdentify(QByteArray)"},
        {0x7408, "receivedCollision(QByteArray)"},
        {0x740B, "receivedCollisionPara(QByteArray)"},
        {0x740E, "receivedTorqFeedback(QByteArray)"},
        {0x7502, "receivedDragTrackName(QByteArray)"},
        {0x7506, "receivedDragPara(QByteArray)"},
        {0x7509, "receivedDragTrajParaOnOff(QByteArray)"},
        {0x750B, "receivedDragTrajState(QByteArray)"},
        {0x7511, "receivedDragMode(QByteArray)"},
        {0x7603, "receivedTrackData(QByteArray)"},
        {0x7605, "receivedSafeCheck(QByteArray)"},
        {0x7607, "receivedIdentificationData(QByteArray)"},
        {0x7608, "receivedFinish(QByteArray)"},
        {0x7609, "receivedTrackRange(QByteArray)"},
        {0x760A, "receivedErrorStop(QByteArray)"},
        {0x7703, "receiveBrakeAvoidCrushed(QByteArray)"},
        {0x7706, "receiveBrakeAvoidCrushedDelay(QByteArray)"},
        {0x7709, "receiveBrakeAvoidCrushedParam(QByteArray)"},
        {0x770C, "receiveBrakeAvoidCrushedRecordtorq(QByteArray)"},
        {0x7803, "receiveRemoteCtl(QByteArray)"},
        {0x8002, "receivedMaterialState(QByteArray)"},
        {0x8005, "receivedControlMode(QByteArray)"},
        {0x8007, "receivedPunchAmount(QByteArray)"},
        {0x800B, "receivedPunchEnable(QByteArray)"},
        {0x8010, "receivedFixtrueAct(QByteArray)"},
        {0x8014, "receivedPunchState(QByteArray)"},
        {0x8015, "receivedPunchPopup(QByteArray)"},
        {0x801A, "receivedProcessNum(QByteArray)"},
        {0x801D, "receivedProcessParame(QByteArray)"},
        {0x8020, "receivedOnlineParame(QByteArray)"},
        {0x8022, "receivedCommunicationStatus(QByteArray)"},
        {0x8025, "receivedFrontStation(QByteArray)"},
        {0x8029, "receivedStation(QByteArray)"},
        {0x802C, "receivedFeederStation(QByteArray)"},
        {0x8030, "receivePunchIOPortData(QByteArray)"},
        {0x8033, "receivePunchStatusData(QByteArray)"},
        {0x8035, "receiveInterferecalibrationData(QByteArray)"},
        {0x8038, "receivePunchInterferenceData(QByteArray)"},
        {0x803B, "receivePunchFixtureData(QByteArray)"},
        {0x803F, "receivedPunchDelayTime(QByteArray)"},
        {0x8042, "receivedPunchTrack(QByteArray)"},
        {0x8045, "receivedPunchPoint(QByteArray)"},
        {0x804D, "receivedCurTopPoint(QByteArray)"},
        {0x8050, "receive_punch_variable_cylinder_data(QByteArray)"},
        {0x8052, "receivedRunStatus(QByteArray)"},
        {0x8103, "receiveBusType(QByteArray)"},
        {0x8106, "receiveCanOpenPara(QByteArray)"},
        {0x8132, "receivePayloadPara(QByteArray)"},
        {0x8142, "receiveAutoModifyAccPara(QByteArray)"},
        {0x8149, "receiveReceiveAutoModifyAccThresholdpara(QByteArray)"},
        {0x9106, "signal_receivedCurRunLine(QByteArray)"},
};

// Declared for listeners but never emitted by any code.
const char *const kDeclaredOnly[] = {
    "receivedRunningMode(uchar)",
    "receivedLaserManufacturer(QByteArray)",
    "receivedDragSwitch(QByteArray)",
    "receiveRobotCycleTimes(QByteArray)",
    "receivedOutInchSpeed(QByteArray)",
    "recvSyncPositonerSwitch(QByteArray)",
    "receivePayloadNumPara(QByteArray)",
};

QString bytesText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toPercentEncoding("{}[]\":,.-_ "));
}

// One notification as text: "signature|arg|arg...".
// A signature with each argument type spelt by its meta-type's own name, so
// that "quint16" and "ushort" (the same type) compare equal.
QString canonical(const QString &signature)
{
    const int open = signature.indexOf(QLatin1Char('('));
    const QString inner = signature.mid(open + 1, signature.size() - open - 2);
    QStringList types;
    if (!inner.isEmpty()) {
        for (const QString &type : inner.split(QLatin1Char(','))) {
            const int id = QMetaType::type(type.toLatin1().constData());
            types << (id != QMetaType::UnknownType ? QString::fromLatin1(QMetaType::typeName(id)) : type);
        }
    }
    return signature.left(open + 1) + types.join(QLatin1Char(',')) + QLatin1Char(')');
}

QString eventText(const QString &signature, const QStringList &args)
{
    return (QStringList{canonical(signature)} + args).join(QLatin1Char('|'));
}

QString payloadEvent(const char *signature, const QByteArray &payload)
{
    return eventText(QLatin1String(signature), {bytesText(payload)});
}

} // namespace

// Records every notification of the module, in arrival order, in the test thread.
class NotificationRecorder : public QObject
{
    Q_OBJECT
public:
    QStringList events;

    // Connects every signal of the module declared by the link; false if a
    // signal has an argument list the recorder cannot take.
    bool attach(QObject *module)
    {
        const QMetaObject *mo = module->metaObject();
        for (int i = QObject::staticMetaObject.methodCount(); i < mo->methodCount(); ++i) {
            const QMetaMethod signal = mo->method(i);
            if (signal.methodType() != QMetaMethod::Signal)
                continue;
            const QMetaMethod slot = slotFor(signal);
            if (!slot.isValid()) {
                qWarning("no recorder slot for %s", signal.methodSignature().constData());
                return false;
            }
            if (!connect(module, signal, this, slot, Qt::QueuedConnection))
                return false;
        }
        return true;
    }

    bool sawSentinel(const QByteArray &tag) const
    {
        return events.contains(sentinelEvent(tag));
    }

    static QString sentinelEvent(const QByteArray &tag)
    {
        return eventText(QStringLiteral("receivedData(quint16,QByteArray)"),
                         {QString::number(kSentinel, 16), bytesText(tag)});
    }

public Q_SLOTS:
    void onPayload(const QByteArray &data) { record({bytesText(data)}); }
    void onTestMode(signed char mode) { record({QString::number(int(mode))}); }
    void onRunningMode(uchar mode) { record({QString::number(int(mode))}); }
    void onStatus(int status) { record({QString::number(status)}); }
    void onNothing() { record({}); }
    void onData(quint16 command, const QByteArray &data)
    {
        record({QString::number(command, 16), bytesText(data)});
    }
    void onPosition(const QVector<double> &position, int coord, int robot, int configuration)
    {
        QStringList values;
        for (double v : position)
            values << QString::number(v, 'g', 17);
        record({QLatin1Char('[') + values.join(QLatin1Char(',')) + QLatin1Char(']'),
                QString::number(coord), QString::number(robot), QString::number(configuration)});
    }

private:
    // The recorder slot whose argument types are those of the signal.
    QMetaMethod slotFor(const QMetaMethod &signal) const
    {
        const QMetaObject *mo = metaObject();
        for (int i = mo->methodOffset(); i < mo->methodCount(); ++i) {
            const QMetaMethod slot = mo->method(i);
            if (slot.methodType() != QMetaMethod::Slot || slot.parameterCount() != signal.parameterCount())
                continue;
            bool same = true;
            for (int p = 0; p < slot.parameterCount(); ++p)
                same = same && slot.parameterType(p) == signal.parameterType(p);
            if (same)
                return slot;
        }
        return QMetaMethod();
    }

    void record(const QStringList &args)
    {
        const QMetaMethod signal = sender()->metaObject()->method(senderSignalIndex());
        events << eventText(QString::fromLatin1(signal.methodSignature()), args);
    }
};

class TestDispatch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void notificationNames_data();
    void notificationNames();
    void plainRows_data();
    void plainRows();
    void specialRows_data();
    void specialRows();
    void burstKeepsOrder();

private:
    // Sends one frame, then the sentinel, and collects what the frame produced.
    void dispatch(quint16 code, const QByteArray &payload, QStringList &events);

    QScopedPointer<qrxsim::SimHandle> m_sim;
    QScopedPointer<TcpConnectModule> m_module;
    NotificationRecorder m_recorder;
    int m_round = 0;
};

void TestDispatch::initTestCase()
{
    m_sim.reset(new qrxsim::SimHandle(testsupport::loopbackAddress()));
    QVERIFY(m_sim->start());
    m_module.reset(new TcpConnectModule(testsupport::loopbackAddress(), 6001, kTimeBase));
    QVERIFY(m_recorder.attach(m_module.data()));
    m_module->start();
    QVERIFY(m_sim->waitForClient(kWaitMs));
    // Whatever the controller says on connect is not part of these cases.
    QStringList ignored;
    dispatch(kSentinel, "settle", ignored);
}

void TestDispatch::cleanupTestCase()
{
    m_module.reset();
    m_sim.reset();
}

void TestDispatch::dispatch(quint16 code, const QByteArray &payload, QStringList &events)
{
    const QByteArray tag = "round " + QByteArray::number(++m_round);
    m_recorder.events.clear();
    m_sim->send(code, payload);
    m_sim->send(kSentinel, tag);
    QTRY_VERIFY_WITH_TIMEOUT(m_recorder.sawSentinel(tag), kWaitMs);
    events = m_recorder.events;
    events.removeAll(QStringLiteral("connectSucceed(int)|1"));
    events.removeOne(NotificationRecorder::sentinelEvent(tag));
}

// Listeners connect by these exact strings; a misspelt declaration fails here.
void TestDispatch::notificationNames_data()
{
    QTest::addColumn<QByteArray>("signature");
    for (const PlainRow &row : kPlainRows)
        QTest::newRow(row.signal) << QByteArray(row.signal);
    for (const char *sig : kDeclaredOnly)
        QTest::newRow(sig) << QByteArray(sig);
    for (const char *sig : {"receivedTestMode(signed char)", "receivedPosition(QVector<double>,int,int,int)",
                            "receivedJobStatus(QByteArray)", "recvJobFileInfoFinish()",
                            "connectSucceed(int)", "receivedData(quint16,QByteArray)"})
        QTest::newRow(sig) << QByteArray(sig);
}

void TestDispatch::notificationNames()
{
    QFETCH(QByteArray, signature);
    const QMetaObject *mo = m_module->metaObject();
    bool declared = false;
    for (int i = 0; i < mo->methodCount() && !declared; ++i) {
        const QMetaMethod m = mo->method(i);
        declared = m.methodType() == QMetaMethod::Signal
                   && canonical(QString::fromLatin1(m.methodSignature())) == canonical(QString::fromLatin1(signature));
    }
    QVERIFY2(declared, signature.constData());
    // The old-style string connection that listeners use (connected and
    // dropped at once: only whether it is accepted matters here).
    QObject listener;
    const QMetaObject::Connection connection = QObject::connect(
        m_module.data(), QByteArray("2" + signature).constData(), &listener, SLOT(deleteLater()));
    QVERIFY(connection);
    QObject::disconnect(connection);
}

void TestDispatch::plainRows_data()
{
    QTest::addColumn<quint16>("code");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("expected");
    for (const PlainRow &row : kPlainRows) {
        const QByteArray payload = "{\"code\":" + QByteArray::number(row.code) + ",\"robot\":2}\n";
        QTest::newRow(qPrintable(QStringLiteral("0x%1").arg(row.code, 4, 16, QLatin1Char('0'))))
            << row.code << payload << QStringList{payloadEvent(row.signal, payload)};
    }
}

void TestDispatch::plainRows()
{
    QFETCH(quint16, code);
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, expected);
    QStringList events;
    dispatch(code, payload, events);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(events, expected);
}

void TestDispatch::specialRows_data()
{
    QTest::addColumn<quint16>("code");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("expected");

    const QByteArray json = "{\"mode\":1,\"robot\":1,\"status\":3}\n";
    const QByteArray broken = "{\"mode\":1,\"robot\"";
    const char *jsonOnly[][2] = {{"0x2003", "receivedServoStatus(QByteArray)"},
                                 {"0x2603", "receivedSpeedInfo(QByteArray)"},
                                 {"0x3C0C", "receivedCurrentUserCoords(QByteArray)"}};
    for (const auto &row : jsonOnly) {
        const quint16 code = quint16(QByteArray(row[0]).toUShort(nullptr, 16));
        QTest::addRow("%s json", row[0]) << code << json << QStringList{payloadEvent(row[1], json)};
        QTest::addRow("%s not json", row[0]) << code << broken << QStringList{};
        QTest::addRow("%s empty", row[0]) << code << QByteArray() << QStringList{};
        // JSON has no trailing commas.
        QTest::addRow("%s trailing comma", row[0])
            << code << QByteArray("{\"robot\":1,\"status\":3,}\n") << QStringList{};
        // Deeper than the JSON reader's stack limit: not JSON, and no throw
        // on the link thread.
        QTest::addRow("%s nested too deep", row[0])
            << code << QByteArray(3000, '[') + QByteArray(3000, ']') + "\n" << QStringList{};
        // Text after a NUL is not read, but the payload is handed on whole.
        const QByteArray withNul = json + QByteArray(1, '\0') + "tail";
        QTest::addRow("%s json, NUL, tail", row[0]) << code << withNul << QStringList{payloadEvent(row[1], withNul)};
    }

    const QString testMode = QStringLiteral("receivedTestMode(signed char)|%1");
    QTest::newRow("0x2703 0xFF") << quint16(0x2703) << QByteArray::fromHex("ff") << QStringList{testMode.arg(-1)};
    QTest::newRow("0x2703 0x05") << quint16(0x2703) << QByteArray::fromHex("05") << QStringList{testMode.arg(5)};
    QTest::newRow("0x2703 0x00") << quint16(0x2703) << QByteArray::fromHex("00") << QStringList{testMode.arg(0)};
    QTest::newRow("0x2703 0x80") << quint16(0x2703) << QByteArray::fromHex("80") << QStringList{testMode.arg(-128)};
    QTest::newRow("0x2703 two bytes") << quint16(0x2703) << QByteArray::fromHex("0101") << QStringList{};
    QTest::newRow("0x2703 empty") << quint16(0x2703) << QByteArray() << QStringList{};
    QTest::newRow("0x2703 json") << quint16(0x2703) << QByteArray("{\"testMode\":1}\n") << QStringList{};

    const QString position = QStringLiteral("receivedPosition(QVector<double>,int,int,int)|%1|%2|%3|%4");
    QTest::newRow("0x2A03 complete")
        << quint16(0x2A03)
        << QByteArray("{\"configuration\":5,\"coord\":1,\"posDeg\":[1.50,-2.0,3.250,0.0,90.0,-180.0,7.1250],\"robot\":2}\n")
        << QStringList{position.arg("[1.5,-2,3.25,0,90,-180,7.125]").arg(1).arg(2).arg(5)};
    QTest::newRow("0x2A03 integers, empty array")
        << quint16(0x2A03) << QByteArray("{\"configuration\":0,\"coord\":0,\"posDeg\":[],\"robot\":4}\n")
        << QStringList{position.arg("[]").arg(0).arg(4).arg(0)};
    QTest::newRow("0x2A03 extra keys")
        << quint16(0x2A03)
        << QByteArray("{\"configuration\":1,\"coord\":3,\"pos\":[9.0],\"posDeg\":[1,2],\"robot\":1,\"x\":\"y\"}\n")
        << QStringList{position.arg("[1,2]").arg(3).arg(1).arg(1)};
    QTest::newRow("0x2A03 no configuration")
        << quint16(0x2A03) << QByteArray("{\"coord\":1,\"posDeg\":[1.0],\"robot\":1}\n") << QStringList{};
    QTest::newRow("0x2A03 no posDeg")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":1,\"robot\":1}\n") << QStringList{};
    QTest::newRow("0x2A03 no coord")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"posDeg\":[1.0],\"robot\":1}\n") << QStringList{};
    QTest::newRow("0x2A03 no robot")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":1,\"posDeg\":[1.0]}\n") << QStringList{};
    QTest::newRow("0x2A03 not json") << quint16(0x2A03) << QByteArray("{\"posDeg\":[1.0") << QStringList{};
    QTest::newRow("0x2A03 json array") << quint16(0x2A03) << QByteArray("[1,2,3]\n") << QStringList{};
    QTest::newRow("0x2A03 posDeg object")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":1,\"posDeg\":{\"a\":1},\"robot\":1}\n")
        << QStringList{};
    QTest::newRow("0x2A03 posDeg nested too deep")
        << quint16(0x2A03)
        << QByteArray("{\"configuration\":1,\"coord\":1,\"posDeg\":") + QByteArray(3000, '[')
               + QByteArray(3000, ']') + ",\"robot\":1}\n"
        << QStringList{};
    QTest::newRow("0x2A03 text where a number belongs")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":\"x\",\"posDeg\":[1.0],\"robot\":1}\n")
        << QStringList{};

    const QByteArray run = "{\"continueRun\":0,\"robot\":1,\"status\":2}\n";
    for (quint16 code : {quint16(0x4919), quint16(0x9103)}) {
        QTest::addRow("0x%04X run status, then job status", code)
            << code << run
            << QStringList{payloadEvent("receivedProRunStatus(QByteArray)", run),
                           payloadEvent("receivedJobStatus(QByteArray)", run)};
    }
    QTest::newRow("0x3D03 run status only")
        << quint16(0x3D03) << run << QStringList{payloadEvent("receivedProRunStatus(QByteArray)", run)};

    QTest::newRow("0x5535 no argument") << quint16(0x5535) << QByteArray("{}\n")
                                        << QStringList{QStringLiteral("recvJobFileInfoFinish()")};
    QTest::newRow("0x5535 empty") << quint16(0x5535) << QByteArray()
                                  << QStringList{QStringLiteral("recvJobFileInfoFinish()")};

    const QString data = QStringLiteral("receivedData(quint16,QByteArray)|%1|%2");
    QTest::newRow("0x1234 unlisted") << quint16(0x1234) << QByteArray("{\"a\":1}\n")
                                     << QStringList{data.arg("1234", bytesText("{\"a\":1}\n"))};
    QTest::newRow("0x2002 host-side code") << quint16(0x2002) << QByteArray("not json")
                                           << QStringList{data.arg("2002", bytesText("not json"))};
    QTest::newRow("0x2004 next to a listed code") << quint16(0x2004) << QByteArray()
                                                  << QStringList{data.arg("2004", QString())};
    QTest::newRow("0xFFFF highest code") << quint16(0xFFFF) << QByteArray::fromHex("00ff")
                                         << QStringList{data.arg("ffff", bytesText(QByteArray::fromHex("00ff")))};
}

void TestDispatch::specialRows()
{
    QFETCH(quint16, code);
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, expected);
    for (QString &event : expected) {
        const int bar = event.indexOf(QLatin1Char('|'));
        event = canonical(event.left(bar < 0 ? event.size() : bar)) + (bar < 0 ? QString() : event.mid(bar));
    }
    QStringList events;
    dispatch(code, payload, events);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(events, expected);
}

// Many frames in one burst come out one notification each, in order.
void TestDispatch::burstKeepsOrder()
{
    m_recorder.events.clear();
    QStringList expected;
    for (int i = 0; i < 200; ++i) {
        const PlainRow &row = kPlainRows[(i * 7) % std::size(kPlainRows)];
        const QByteArray payload = "{\"i\":" + QByteArray::number(i) + "}\n";
        m_sim->send(row.code, payload);
        expected << payloadEvent(row.signal, payload);
    }
    const QByteArray tag = "burst";
    m_sim->send(kSentinel, tag);
    QTRY_VERIFY_WITH_TIMEOUT(m_recorder.sawSentinel(tag), kWaitMs);
    QStringList events = m_recorder.events;
    events.removeOne(NotificationRecorder::sentinelEvent(tag));
    QCOMPARE(events, expected);
}

QTEST_GUILESS_MAIN(TestDispatch)
#include "tst_dispatch.moc"
