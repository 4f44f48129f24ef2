#pragma once
// The notifications of the controller link: one Qt signal per incoming
// command code, and the dispatcher that turns a received (code, payload)
// into its notification. TcpConnectModule inherits them, so listeners
// connect to them on the module by name (old-style SIGNAL() strings
// included): the names, irregular spellings and all, are the protocol's
// vocabulary and must not be "corrected".
//
// Unless noted otherwise a notification carries the payload exactly as it
// was received (compact JSON text and its line feed). Which code emits which
// notification is decided by the catalogue in protocol/Catalogue.cpp; a code
// that is not in the table goes out as receivedData(command, payload).
//
// The dispatcher runs in the link thread and never blocks; listeners in
// other threads get the notifications queued. Before the notifications, it
// hands each frame it delivers to the frame sink (the state model's one
// entry point), so that a listener of a notification finds the state the
// report changed already changed.

#include <QByteArray>
#include <QObject>
#include <QVector>

#include <functional>

class LinkNotifications : public QObject
{
    Q_OBJECT
public:
    explicit LinkNotifications(QObject *parent = nullptr);

Q_SIGNALS:
    // Emitted by the connection manager: 1 on every connect, 0 on every loss.
    void connectSucceed(int status);
    // Every received code that the dispatch table does not list.
    void receivedData(quint16 command, QByteArray data);

    // Status and modes (0x20..0x28)
    void receivedServoStatus(const QByteArray &data);
    void receivedOperationMode(const QByteArray &data);
    void receivedTeachModeType(const QByteArray &data);
    void receivedCoordinationMode(const QByteArray &data);
    void receivedDeadmanStatus(const QByteArray &data);
    void receivedDeadManMode(const QByteArray &data);
    void receivedFbCmdMode(const QByteArray &data);
    void receivedSpeedInfo(const QByteArray &data);
    void receiveJointInchSpeed(const QByteArray &data);
    void receiveRectInchSpeed(const QByteArray &data);
    void recvSensitivity(const QByteArray &data);
    void receivedTestMode(signed char testMode);
    void receiveInterpolationMode(const QByteArray &data);

    // Position and drive monitoring (0x2A..)
    void receivedPosition(QVector<double> position, int coord, int robot, int configuration);
    void receiveMotorSpeed(const QByteArray &data);
    void receiveMotorTorque(const QByteArray &data);
    void receivedPosOver(const QByteArray &data);
    void signal_receivedMotorLoad(const QByteArray &data);
    void receiveTransCoordPos(const QByteArray &data);
    void receivedTrackingError(const QByteArray &data);
    void receivedOverlordProtect(const QByteArray &data);

    // Controller messages (0x2B..)
    void receivedError(const QByteArray &data);
    void receivedWarning(const QByteArray &data);
    void receivedInfo(const QByteArray &data);
    void receivedPopup(const QByteArray &data);

    // Program title and remote parameters (0x2C..)
    void receivedRobotProgramTitle(const QByteArray &data);
    void receivedReceiveRemotePara(const QByteArray &data);

    // Robot type and controller configuration (0x2E..)
    void receivedRobotType(const QByteArray &data);
    void receiveRobotSum(const QByteArray &data);
    void receiveControlComCycle(const QByteArray &data);
    void recvSelectFuncton(const QByteArray &data);
    void receivedServoList(const QByteArray &data);
    void receivedRobotTypeSlave(const QByteArray &data);
    void receivedRobotSyncAxle(const QByteArray &data);
    void receivedENI(const QByteArray &data);

    // IO configuration, IO state and multi-robot positions (0x2F..)
    void recriveioparam(const QByteArray &data);
    void recriveMoreRobotResetPosition(const QByteArray &data);
    void recriveMoreRobotCurPosition(const QByteArray &data);
    void recriveIoStatus(const QByteArray &data);
    void receiveIOState(const QByteArray &data);
    void signal_doubleRobotCurPosition(const QByteArray &data);
    void receiveIOFuncState(const QByteArray &data);
    void receiveUnsafePoint(const QByteArray &data);
    void receiveReservationState(const QByteArray &data);
    void recvIOConfig(const QByteArray &data);
    void recvIORemoteOutput(const QByteArray &data);
    void receiveSafetySet(const QByteArray &data);
    void receivedIODinAlarm(const QByteArray &data);
    void receivedIODoutAlarm(const QByteArray &data);
    void receivedIODinPortName(const QByteArray &data);
    void receivedIODoutPortName(const QByteArray &data);
    void receivedIOAIPortName(const QByteArray &data);
    void receivedIOAOPortName(const QByteArray &data);

    // Jobs, errors, zero point, version, stepping and IO values (0x31..0x37)
    void signal_receivedMainJob(const QByteArray &data);
    void receiveErrorStatus(const QByteArray &data);
    void receiveCollisionDetectDragTeach(const QByteArray &data);
    void receiveClearCollision(const QByteArray &data);
    void receivedZeroSuccess(const QByteArray &data);
    void receivedEncoderState(const QByteArray &data);
    void receivedSingleCycleValue(const QByteArray &data);
    void recvControlVersion(const QByteArray &data);
    void receivedStepEndStatus(const QByteArray &data);
    void receivedBWBStatus(const QByteArray &data);
    void receivedJobfileLine(const QByteArray &data);
    void receivedDoutStatus(const QByteArray &data);
    void receivedDinStatus(const QByteArray &data);
    void receivedAoutStatus(const QByteArray &data);
    void receivedAinStatus(const QByteArray &data);
    void ReceivedForcedInputStatus(const QByteArray &data);
    void ReceivedForcedAnalogInputStatus(const QByteArray &data);

    // Tools, user frames, kinematic parameters and ranges (0x38..0x3F)
    void receivedToolCheck(const QByteArray &data);
    void receivedCountSuccess(const QByteArray &data);
    void receivedCountToolData(const QByteArray &data);
    void receivedToolInfo(const QByteArray &data);
    void receive7MarkedPoint(const QByteArray &data);
    void signal_receivedAllToolCheck(const QByteArray &data);
    void recvDHparaState(const QByteArray &data);
    void receivedJointPara(const QByteArray &data);
    void receiveDecareParam(const QByteArray &data);
    void receivedEncoderPara(const QByteArray &data);
    void receivedUserSuccess(const QByteArray &data);
    void receivedUserCoordsCheck(const QByteArray &data);
    void receivedUserCoordsReply(const QByteArray &data);
    void receivedCurrentUserCoords(const QByteArray &data);
    void receivedUserCoordsNote(const QByteArray &data);
    void receivedProRunStatus(const QByteArray &data);
    void receivedPresentRobot(const QByteArray &data);
    void receivedDHParaValueRobot(const QByteArray &data);
    void receivedRobotRange(const QByteArray &data);
    void receivedVisionRange(const QByteArray &data);
    void receivedInterfereRange(const QByteArray &data);

    // Welding (0x40..)
    void receivedWeldEquipmentData(const QByteArray &data);
    void receivedCurVolMatData(const QByteArray &data);
    void receivedArcsettingData(const QByteArray &data);
    void receivedWaveweldData(const QByteArray &data);
    void receiveWaveIUMatch(const QByteArray &data);
    void receiveWeldIOData(const QByteArray &data);
    void receiveWeldMonitor(const QByteArray &data);
    void receiveWeldEnableState(const QByteArray &data);
    void receivedWelder(const QByteArray &data);
    void receivedWelderState(const QByteArray &data);
    void signal_receivedWeldParaNotes(const QByteArray &data);
    void receivedReceiveWeldRecord(const QByteArray &data);
    void receiveWeldAdjustment(const QByteArray &data);
    void receiveweldintersectionPoint(const QByteArray &data);
    void receiveWeldintersectionCal(const QByteArray &data);
    void receiveweldintersectionPara(const QByteArray &data);
    void receiveOuterWeldTorchParam(const QByteArray &data);
    void receiveOuterWeldType(const QByteArray &data);

    // Vision, laser sensor and seam tracking (0x41..)
    void receiveVisionParameter(const QByteArray &data);
    void receiveVisionPosParameter(const QByteArray &data);
    void receiveVisionDebugPosList(const QByteArray &data);
    void receiveVisionPosGesture(const QByteArray &data);
    void receiveVisionPostrytakephoto(const QByteArray &data);
    void receiveVisionIp(const QByteArray &data);
    void receivevisualcarbinpara(const QByteArray &data);
    void receiveVisualCarbinPoint(const QByteArray &data);
    void receiveCaculateVisualCarbinPoint(const QByteArray &data);
    void caculateVisualCarbinPointFinish(const QByteArray &data);
    void receivedLaserParameter(const QByteArray &data);
    void signal_receivedSensorType(const QByteArray &data);
    void receivedTrackParameter(const QByteArray &data);
    void receivedSearchParameter(const QByteArray &data);
    void receivedLaserCalibate(const QByteArray &data);
    void receivedLaserCalibateReCord(const QByteArray &data);
    void receivedLaserCalibateResult(const QByteArray &data);
    void signal_calibrated(const QByteArray &data);
    void receivedArcTrackCOMM(const QByteArray &data);
    void receivedArcTrackCOMP(const QByteArray &data);
    void receivedArcHTrackCOMP(const QByteArray &data);
    void signal_receivedArcSearch(const QByteArray &data);
    void receivedArcVolTrackCOMP(const QByteArray &data);
    void signal_receivedTrackSensorType(const QByteArray &data);
    void receiveTCPParameter(const QByteArray &data);

    // Palletising (0x42..)
    void recvPalletToolParameter(const QByteArray &data);
    void recvPalletTrayParameter(const QByteArray &data);
    void recvPalletPositionParameter(const QByteArray &data);
    void recvPalletWorkpieceParameter(const QByteArray &data);
    void recvPalletApproachParameter(const QByteArray &data);
    void recvPalletOverlappingModel(const QByteArray &data);
    void recvPalletPlaneModel(const QByteArray &data);
    void recvPalletChangeModel(const QByteArray &data);
    void recvPalletPlanePreview(const QByteArray &data);
    void recvPalletState(const QByteArray &data);
    void recvSwitchPalletMode(const QByteArray &data);
    void recvPalletEasyPositionParameter(const QByteArray &data);
    void recvPalletEasyToolParameter(const QByteArray &data);
    void recvPalletAutoCalculate(const QByteArray &data);
    void receivealletPlaneCarbin(const QByteArray &data);
    void receivePalletData(const QByteArray &data);
    void recvPalletLocATPara(const QByteArray &data);
    void recvPieceLocAT(const QByteArray &data);

    // Controller address, laser cutting (0x43..0x45)
    void receiveControlIp(const QByteArray &data);
    void receiveConntrollerInitState(const QByteArray &data);
    void receiveChangeIosetData(const QByteArray &data);
    void receiveLaserTechParam(const QByteArray &data);
    void receiveChangeLaserAnalog(const QByteArray &data);
    void receiveCutTechParam(const QByteArray &data);
    void receiveCurrentState(const QByteArray &data);
    void receiveShotParameter(const QByteArray &data);
    void receiveChangeLaserAnalogSet(const QByteArray &data);

    // Polishing and spraying (0x46..0x47)
    void receivedPolishPara(const QByteArray &data);
    void receivedSprayAnalog(const QByteArray &data);
    void receivedSprayDigital(const QByteArray &data);
    void receivedSpraySequence(const QByteArray &data);
    void receivedSprayTrackPara(const QByteArray &data);
    void receivedSprayHandOperatOne(const QByteArray &data);
    void receivedSprayHandOperatTwo(const QByteArray &data);
    void receivedSprayHandOperatThree(const QByteArray &data);

    // Conveyor tracking and job status (0x48..0x49)
    void receiveTrackConBasic(const QByteArray &data);
    void receiveTrackConTool(const QByteArray &data);
    void receiveTrackSpeed(const QByteArray &data);
    void receiveTrackConUerPoint(const QByteArray &data);
    void receiveCalibrationedPoint(const QByteArray &data);
    void receiveSensorPos(const QByteArray &data);
    void receiveCalibrationedSensorPoint(const QByteArray &data);
    void receiveCalibrationedSensorPos(const QByteArray &data);
    void rceiveTrackConPos(const QByteArray &data);
    void receiveCalibrationPos(const QByteArray &data);
    void receiveWaitPoint(const QByteArray &data);
    void receiveCalibarteRespond(const QByteArray &data);
    void receivedJobStatus(const QByteArray &data);

    // System (0x50..)
    void receivedChangeRobot(const QByteArray &data);
    void recriveRobotCycleIndex(const QByteArray &data);
    void receiveRobotRunningTime(const QByteArray &data);
    void recriveModbusIoState(const QByteArray &data);
    void recvControlNumber(const QByteArray &data);
    void recvSysClock(const QByteArray &data);
    void recvBackup(const QByteArray &data);
    void recvBackupRestore(const QByteArray &data);
    void recvServoPara(const QByteArray &data);
    void receivedProSelfStart(const QByteArray &data);
    void receivehistorycmd(const QByteArray &data);
    void receivedRunModeAutoMan(const QByteArray &data);
    void receivedSocketState(const QByteArray &data);
    void singal_recvGAutoRun(const QByteArray &data);
    void singal_recvGAutoRunState(const QByteArray &data);

    // File transfer (0x55..)
    void receiveUploadAnswer(const QByteArray &data);
    void receiveFileNamesNeedByDownload(const QByteArray &data);
    void recvJobSumlist(const QByteArray &data);
    void recvJobFileList(const QByteArray &data);
    void recvJobFileInfoFinish();
    void recvControlLoglist(const QByteArray &data);
    void recvControlENIlist(const QByteArray &data);

    // Variables (0x56..)
    void receiveAllGlobalPosition(const QByteArray &data);
    void receiveGlobalPosition(const QByteArray &data);
    void receiveGlobalVariant(const QByteArray &data);
    void receiveOneGlobalVariant(const QByteArray &data);
    void receiveLocalVariantPosP(const QByteArray &data);
    void receiveLocalVariantPosE(const QByteArray &data);
    void receiveLocalVariantValue(const QByteArray &data);
    void receiveGlobalExternPosition(const QByteArray &data);

    // Modbus and screw fastening (0x57..)
    void receivedModbusProgram(const QByteArray &data);
    void reveivedModbusParameter(const QByteArray &data);
    void reveivedModbusCheckHeart(const QByteArray &data);
    void recrivedModbusState(const QByteArray &data);
    void receivedUploadEnable(const QByteArray &data);
    void receivedUploadPara(const QByteArray &data);
    void receivedDAformat(const QByteArray &data);
    void receivedScrewPara(const QByteArray &data);
    void receivedScrewIO(const QByteArray &data);
    void receivedScrewState(const QByteArray &data);
    void reveivedModbusMaterParameter(const QByteArray &data);

    // External axes and synchronisation (0x70..)
    void recvOutterAxisPos(const QByteArray &data);
    void recvOutterAxisState(const QByteArray &data);
    void receivedSyncCalibration(const QByteArray &data);
    void receivedSyncPositionerNum(const QByteArray &data);
    void receivedSyncGroundRail(const QByteArray &data);
    void recvCurEXPosition(const QByteArray &data);
    void recvCOOPERATIVE(const QByteArray &data);
    void recvSyncJointPara(const QByteArray &data);
    void signal_receivedSyncJogSpeed(const QByteArray &data);
    void signal_ReceiveSyncEncodeOverflow(const QByteArray &data);
    void recvSyncZeroPoint(const QByteArray &data);
    void receiveOuterSingleCycle(const QByteArray &data);
    void recvOutterCalResult(const QByteArray &data);

    // Point calibration (0x71..0x72)
    void receivedToolCheckFor20(const QByteArray &data);
    void receivedCountSuccessFor20(const QByteArray &data);
    void receiveResetResultToZeroPoint(const QByteArray &data);
    void receive20PointState(const QByteArray &data);
    void receive20MarkedPoint(const QByteArray &data);
    void receivedAllowCalibration(const QByteArray &data);
    void receivedCountSuccessFor4(const QByteArray &data);
    void receivedresultForDH(const QByteArray &data);
    void received4Point(const QByteArray &data);

    // 3D mouse (0x73..)
    void receivedThreeMouse(const QByteArray &data);
    void received3DMousePoint(const QByteArray &data);
    void received3DMouseMark(const QByteArray &data);
    void received_threeD_mouse_port(const QByteArray &data);

    // Dynamics, collision, drag teaching and identification (0x74..0x76)
    void receivedDynaPara(const QByteArray &data);
    void receivedDynaIdentify(const QByteArray &data);
    void receivedCollision(const QByteArray &data);
    void receivedCollisionPara(const QByteArray &data);
    void receivedTorqFeedback(const QByteArray &data);
    void receivedDragTrackName(const QByteArray &data);
    void receivedDragPara(const QByteArray &data);
    void receivedDragTrajParaOnOff(const QByteArray &data);
    void receivedDragTrajState(const QByteArray &data);
    void receivedDragMode(const QByteArray &data);
    void receivedTrackData(const QByteArray &data);
    void receivedSafeCheck(const QByteArray &data);
    void receivedIdentificationData(const QByteArray &data);
    void receivedFinish(const QByteArray &data);
    void receivedTrackRange(const QByteArray &data);
    void receivedErrorStop(const QByteArray &data);

    // Brake protection and remote control (0x77..0x78)
    void receiveBrakeAvoidCrushed(const QByteArray &data);
    void receiveBrakeAvoidCrushedDelay(const QByteArray &data);
    void receiveBrakeAvoidCrushedParam(const QByteArray &data);
    void receiveBrakeAvoidCrushedRecordtorq(const QByteArray &data);
    void receiveRemoteCtl(const QByteArray &data);

    // Punching line (0x80..)
    void receivedMaterialState(const QByteArray &data);
    void receivedControlMode(const QByteArray &data);
    void receivedPunchAmount(const QByteArray &data);
    void receivedPunchEnable(const QByteArray &data);
    void receivedFixtrueAct(const QByteArray &data);
    void receivedPunchState(const QByteArray &data);
    void receivedPunchPopup(const QByteArray &data);
    void receivedProcessNum(const QByteArray &data);
    void receivedProcessParame(const QByteArray &data);
    void receivedOnlineParame(const QByteArray &data);
    void receivedCommunicationStatus(const QByteArray &data);
    void receivedFrontStation(const QByteArray &data);
    void receivedStation(const QByteArray &data);
    void receivedFeederStation(const QByteArray &data);
    void receivePunchIOPortData(const QByteArray &data);
    void receivePunchStatusData(const QByteArray &data);
    void receiveInterferecalibrationData(const QByteArray &data);
    void receivePunchInterferenceData(const QByteArray &data);
    void receivePunchFixtureData(const QByteArray &data);
    void receivedPunchDelayTime(const QByteArray &data);
    void receivedPunchTrack(const QByteArray &data);
    void receivedPunchPoint(const QByteArray &data);
    void receivedCurTopPoint(const QByteArray &data);
    void receive_punch_variable_cylinder_data(const QByteArray &data);
    void receivedRunStatus(const QByteArray &data);

    // Bus, payload and acceleration tuning (0x81..)
    void receiveBusType(const QByteArray &data);
    void receiveCanOpenPara(const QByteArray &data);
    void receivePayloadPara(const QByteArray &data);
    void receiveAutoModifyAccPara(const QByteArray &data);
    void receiveReceiveAutoModifyAccThresholdpara(const QByteArray &data);

    // Job run status (0x91..)
    void signal_receivedCurRunLine(const QByteArray &data);

    // Declared for listeners that connect to them by name; the controller
    // has no code for them, so they are never emitted.
    void receivedRunningMode(uchar runningMode);
    void receivedLaserManufacturer(const QByteArray &data);
    void receivedDragSwitch(const QByteArray &data);
    void receiveRobotCycleTimes(const QByteArray &data);
    void receivedOutInchSpeed(const QByteArray &data);
    void recvSyncPositonerSwitch(const QByteArray &data);
    void receivePayloadNumPara(const QByteArray &data);

public:
    // Called on the link thread with every frame the dispatcher delivers
    // (a code it does not know included; a payload that its row refuses,
    // such as a non-JSON 0x2003, not). Set before the link starts.
    using FrameSink = std::function<void(quint16 command, const QByteArray &data)>;
    void setFrameSink(FrameSink sink) { m_frameSink = std::move(sink); }

public Q_SLOTS:
    // The dispatcher; runs in the link thread and never blocks.
    void onReceivedData(quint16 command, QByteArray data);

private:
    FrameSink m_frameSink;
};
