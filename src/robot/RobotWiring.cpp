#include "robot/RobotWiring.h"

#include "common/Logging.h"
#include "robot/Robot.h"

#include <QByteArray>

namespace qrx {

namespace {

using R = WiringRow;

// link notification -> Robot slot or signal. Signatures are normalised as
// the meta-object system writes them (const QByteArray & is QByteArray,
// quint16 is ushort, quint8 is uchar).
const WiringRow kRows[] = {
    // ---- core: connection and raw frames ----------------------------------
    {"connectSucceed(int)", "robot_net_slot_connectSucceed(int)", R::Slot},
    {"receivedData(ushort,QByteArray)", "robot_net_slot_receivedDataProcess(ushort,QByteArray)", R::Slot},
    {"receivedRunningMode(uchar)", "robot_net_slot_runningStatusProcess(uchar)", R::Slot},
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
    // ---- families: robot type and kinematic parameters (slots) -----------
    {"receivedRobotType(QByteArray)", "robot_net_slot_RobotType(QByteArray)", R::Slot},
    {"receivedJointPara(QByteArray)", "robot_net_slot_JointPara(QByteArray)", R::Slot},
    {"receiveJointInchSpeed(QByteArray)", "robot_net_slot_JointInchSpeed(QByteArray)", R::Slot},
    {"receiveRectInchSpeed(QByteArray)", "robot_net_slot_RectInchSpeed(QByteArray)", R::Slot},
    {"receiveInterpolationMode(QByteArray)", "robot_net_slot_InterpolationMode(QByteArray)", R::Slot},
    {"recvSensitivity(QByteArray)", "robot_net_slot_Sensitivity(QByteArray)", R::Slot},
    {"receivedSyncPositionerNum(QByteArray)", "robot_net_slot_OutterAxisCount(QByteArray)", R::Slot},
    {"receivedDHParaValueRobot(QByteArray)", "robot_net_slot_DHParaValue(QByteArray)", R::Slot},
    {"recvDHparaState(QByteArray)", "robot_net_slot_dhParaState(QByteArray)", R::Slot},
    // ---- families: tools, user frames, calibration (slots) ----------------
    {"receivedCountToolData(QByteArray)", "robot_net_slot_ToolParameter(QByteArray)", R::Slot},
    {"receivedUserCoordsReply(QByteArray)", "robot_net_slot_UserCoordsReply(QByteArray)", R::Slot},
    {"receivedCurrentUserCoords(QByteArray)", "robot_net_slot_CurrentUserCoords(QByteArray)", R::Slot},
    {"receivedUserCoordsNote(QByteArray)", "robot_net_slot_UserCoordsNote(QByteArray)", R::Slot},
    {"receivedToolCheck(QByteArray)", "robot_net_slot_ToolCheck(QByteArray)", R::Slot},
    {"receivedToolCheckFor20(QByteArray)", "robot_net_slot_ToolCheckFor20(QByteArray)", R::Slot},
    {"receive20MarkedPoint(QByteArray)", "robot_net_slot_20MarkedPoint(QByteArray)", R::Slot},
    {"receive7MarkedPoint(QByteArray)", "robot_net_slot_7MarkedPoint(QByteArray)", R::Slot},
    {"signal_receivedAllToolCheck(QByteArray)", "robot_net_slot_ToolStatus(QByteArray)", R::Slot},
    {"receive20PointState(QByteArray)", "robot_net_slot_ToolStatus(QByteArray)", R::Slot},
    {"receivedCountSuccess(QByteArray)", "robot_net_slot_CountSuccess(QByteArray)", R::Slot},
    {"receivedCountSuccessFor20(QByteArray)", "robot_net_slot_CountSuccessFor20(QByteArray)", R::Slot},
    {"receiveResetResultToZeroPoint(QByteArray)", "robot_net_slot_ResetResultToZeroPoint(QByteArray)", R::Slot},
    {"received4Point(QByteArray)", "robot_net_slot_4Point(QByteArray)", R::Slot},
    {"receivedCountSuccessFor4(QByteArray)", "robot_net_slot_CountSuccessFor4(QByteArray)", R::Slot},
    {"receivedresultForDH(QByteArray)", "robot_net_slot_resultForDH(QByteArray)", R::Slot},
    {"receivedZeroSuccess(QByteArray)", "robot_net_slot_ZeroSuccess(QByteArray)", R::Slot},
    // ---- families: process messages that read keys (slots) ---------------
    {"receivedWeldEquipmentData(QByteArray)", "robot_net_slot_WeldEquipmentData(QByteArray)", R::Slot},
    {"recrivedModbusState(QByteArray)", "robot_net_slot_ModbusState(QByteArray)", R::Slot},
    {"recriveModbusIoState(QByteArray)", "robot_net_slot_ModbusIoState(QByteArray)", R::Slot},
    {"receivedVisionRange(QByteArray)", "robot_net_slot_VisionRange(QByteArray)", R::Slot},
    {"receivedSyncGroundRail(QByteArray)", "robot_net_slot_SyncGroundRail(QByteArray)", R::Slot},
    {"recvCOOPERATIVE(QByteArray)", "robot_net_slot_COOPERATIVE(QByteArray)", R::Slot},
    {"receiveGlobalPosition(QByteArray)", "robot_net_slot_GlobalPosition(QByteArray)", R::Slot},
    {"receivedPresentRobot(QByteArray)", "robot_net_slot_PresentRobot(QByteArray)", R::Slot},
    {"receivedServoList(QByteArray)", "robot_net_slot_ServoList(QByteArray)", R::Slot},
    {"receiveUnsafePoint(QByteArray)", "robot_net_slot_UnsafePoint(QByteArray)", R::Slot},
    // ---- families: relays, the payload as received, no wake ----------------
    // A relay joins the link notification straight to the Robot signal: the
    // reader gets the bytes the controller sent, and no waiting call is
    // woken. Plain relays and copying relays are both made this way: to a
    // reader they look alike, as a QByteArray copy shares the same bytes.
    // job and run control
    {"signal_receivedMainJob(QByteArray)", "signal_mainJob(QByteArray)", R::Signal},
    {"receiveErrorStatus(QByteArray)", "robot_servoerrordelete(QByteArray)", R::Signal},
    {"receivedRunModeAutoMan(QByteArray)", "robot_runModeAutoMan(QByteArray)", R::Signal},
    {"receiveRobotRunningTime(QByteArray)", "robot_runningtime_update(QByteArray)", R::Signal},
    {"receivehistorycmd(QByteArray)", "receive_his_cmd(QByteArray)", R::Signal},
    {"singal_recvGAutoRun(QByteArray)", "signal_gloablAutoRun(QByteArray)", R::Signal},
    {"singal_recvGAutoRunState(QByteArray)", "signal_gloablAutoRunState(QByteArray)", R::Signal},
    {"receiveFileNamesNeedByDownload(QByteArray)", "robot_FileName_Need_DownOrUp(QByteArray)", R::Signal},
    {"recvJobSumlist(QByteArray)", "robot_job_Sum_list(QByteArray)", R::Signal},
    {"recvJobFileList(QByteArray)", "robot_job_File_list(QByteArray)", R::Signal},
    {"recvJobFileInfoFinish()", "robot_job_File_Info_Finish()", R::Signal},
    {"recvControlENIlist(QByteArray)", "robot_ControlENI_list(QByteArray)", R::Signal},
    {"recvControlLoglist(QByteArray)", "robot_ControlLog_list(QByteArray)", R::Signal},
    {"recvControlVersion(QByteArray)", "robot_Rec_ControlVersion(QByteArray)", R::Signal},
    {"recvSysClock(QByteArray)", "robot_ControlSys_Clock(QByteArray)", R::Signal},
    {"receivedENI(QByteArray)", "robot_ENI(QByteArray)", R::Signal},
    {"receivedRobotProgramTitle(QByteArray)", "robot_programtitle_reflash(QByteArray)", R::Signal},
    {"receiveControlComCycle(QByteArray)", "receive_ControlComCycle(QByteArray)", R::Signal},
    {"receiveShotParameter(QByteArray)", "robot_change_ShotParameter(QByteArray)", R::Signal},
    {"receiveCurrentState(QByteArray)", "robot_change_CurrentState(QByteArray)", R::Signal},
    {"receiveConntrollerInitState(QByteArray)", "robot_receiveConntrollerInitState(QByteArray)", R::Signal},
    {"receiveControlIp(QByteArray)", "robot_receiveControlIp(QByteArray)", R::Signal},
    {"receiveRemoteCtl(QByteArray)", "robot_receiveRemoteCtl(QByteArray)", R::Signal},
    {"receiveReservationState(QByteArray)", "robot_receiveReservation(QByteArray)", R::Signal},
    // production line (feeder, stations)
    {"receivedCurTopPoint(QByteArray)", "signal_CurTopPoint(QByteArray)", R::Signal},
    {"receivedFeederStation(QByteArray)", "signal_feederStationSet(QByteArray)", R::Signal},
    {"receivedProcessParame(QByteArray)", "signal_ProcessParame(QByteArray)", R::Signal},
    {"receivedProcessNum(QByteArray)", "signal_ProcessNum(QByteArray)", R::Signal},
    {"receivedCommunicationStatus(QByteArray)", "signal_CommunicationStatus(QByteArray)", R::Signal},
    // welding
    {"receivedArcsettingData(QByteArray)", "robot_arcset_data_check(QByteArray)", R::Signal},
    {"receivedWaveweldData(QByteArray)", "robot_waveweld_data_check(QByteArray)", R::Signal},
    {"receiveWeldIOData(QByteArray)", "robot_weldIO_data_get(QByteArray)", R::Signal},
    {"receiveWaveIUMatch(QByteArray)", "robot_waveweld_IUmatch(QByteArray)", R::Signal},
    {"receivedCurVolMatData(QByteArray)", "robot_match_data_check(QByteArray)", R::Signal},
    {"receivedWelder(QByteArray)", "robot_receivedWelder(QByteArray)", R::Signal},
    {"receivedWelderState(QByteArray)", "robot_receivedWelderState(QByteArray)", R::Signal},
    {"receivedReceiveWeldRecord(QByteArray)", "robot_receivedWeldRecord(QByteArray)", R::Signal},
    {"signal_receivedWeldParaNotes(QByteArray)", "signal_weldParaNotes(QByteArray)", R::Signal},
    {"receiveWeldAdjustment(QByteArray)", "robot_receiveWeldAdjustment(QByteArray)", R::Signal},
    {"receiveWeldMonitor(QByteArray)", "robot_receiveWeldMonitor(QByteArray)", R::Signal},
    {"receiveWeldintersectionCal(QByteArray)", "robot_get_weldIntersectionCal(QByteArray)", R::Signal},
    {"receiveweldintersectionPoint(QByteArray)", "robot_get_weldIntersectionPoint(QByteArray)", R::Signal},
    {"receiveweldintersectionPara(QByteArray)", "robot_get_weldIntersectionPara(QByteArray)", R::Signal},
    {"receiveWeldEnableState(QByteArray)", "robot_weldEnableState(QByteArray)", R::Signal},
    {"receiveOuterWeldTorchParam(QByteArray)", "robot_receiveOuterWeldTorchParam(QByteArray)", R::Signal},
    {"receiveOuterWeldType(QByteArray)", "robot_receiveOuterWeldType(QByteArray)", R::Signal},
    // seam tracking and search (arc, laser)
    {"receiveTCPParameter(QByteArray)", "robot_tcp_para(QByteArray)", R::Signal},
    {"receivedLaserParameter(QByteArray)", "robot_laser_para(QByteArray)", R::Signal},
    {"receivedTrackParameter(QByteArray)", "robot_track_para(QByteArray)", R::Signal},
    {"receivedSearchParameter(QByteArray)", "robot_search_para(QByteArray)", R::Signal},
    {"signal_receivedSensorType(QByteArray)", "signal_sensorType(QByteArray)", R::Signal},
    {"signal_receivedTrackSensorType(QByteArray)", "signal_trackSensorType(QByteArray)", R::Signal},
    {"receivedLaserCalibate(QByteArray)", "robot_laser_Calibate(QByteArray)", R::Signal},
    {"receivedLaserCalibateReCord(QByteArray)", "robot_laser_CalibateReCord(QByteArray)", R::Signal},
    {"receivedLaserCalibateResult(QByteArray)", "robot_laser_CalibateResult(QByteArray)", R::Signal},
    {"receivedArcTrackCOMM(QByteArray)", "robot_arc_TrackCOMM(QByteArray)", R::Signal},
    {"receivedArcTrackCOMP(QByteArray)", "robot_arc_TrackCOMP(QByteArray)", R::Signal},
    {"receivedArcHTrackCOMP(QByteArray)", "robot_arc_hTrackCOMP(QByteArray)", R::Signal},
    {"receivedArcVolTrackCOMP(QByteArray)", "robot_arc_vol_TrackCOMP(QByteArray)", R::Signal},
    {"signal_receivedArcSearch(QByteArray)", "signal_arcSearchPara(QByteArray)", R::Signal},
    {"signal_calibrated(QByteArray)", "signal_calibrated(QByteArray)", R::Signal},
    {"receivedTrackData(QByteArray)", "robot_TrackData(QByteArray)", R::Signal},
    {"receivedTrackRange(QByteArray)", "robot_TrackRange(QByteArray)", R::Signal},
    // conveyor tracking
    {"receiveTrackConBasic(QByteArray)", "robot_trackConBasic_para(QByteArray)", R::Signal},
    {"receiveTrackConUerPoint(QByteArray)", "robot_TrackConUerPoint_para(QByteArray)", R::Signal},
    {"receiveTrackConTool(QByteArray)", "robot_trackConTool_para(QByteArray)", R::Signal},
    {"receiveCalibrationedPoint(QByteArray)", "robot_trackConCalibration_para(QByteArray)", R::Signal},
    {"receiveCalibrationedSensorPoint(QByteArray)", "robot_trackConCaliSensorPoint_para(QByteArray)", R::Signal},
    {"receiveCalibrationedSensorPos(QByteArray)", "robot_trackConCaliSensorPos_para(QByteArray)", R::Signal},
    {"receiveSensorPos(QByteArray)", "robot_trackConSensorPos_para(QByteArray)", R::Signal},
    {"rceiveTrackConPos(QByteArray)", "robot_trackConPosr_para(QByteArray)", R::Signal},
    {"receiveCalibrationPos(QByteArray)", "robot_calibrationPos_para(QByteArray)", R::Signal},
    {"receiveTrackSpeed(QByteArray)", "robot_trackSpeed_para(QByteArray)", R::Signal},
    {"receiveCalibarteRespond(QByteArray)", "robot_CalibarteRespond(QByteArray)", R::Signal},
    {"receiveWaitPoint(QByteArray)", "robot_WaitPoint(QByteArray)", R::Signal},
    // vision
    {"receiveVisionParameter(QByteArray)", "robot_vision_para(QByteArray)", R::Signal},
    {"receiveVisionIp(QByteArray)", "robot_vision_ip(QByteArray)", R::Signal},
    {"receiveVisionPosParameter(QByteArray)", "robot_visionpos_para(QByteArray)", R::Signal},
    {"receiveVisionPosGesture(QByteArray)", "robot_visionposgesture_para(QByteArray)", R::Signal},
    {"receiveVisionPostrytakephoto(QByteArray)", "robot_visionpostrytakephoto_para(QByteArray)", R::Signal},
    {"receiveVisionDebugPosList(QByteArray)", "robot_receiveVisionDebugPosList(QByteArray)", R::Signal},
    // palletising
    {"recvPalletLocATPara(QByteArray)", "robot_pallet_LocATPara(QByteArray)", R::Signal},
    {"recvPieceLocAT(QByteArray)", "robot_piece_LocAT(QByteArray)", R::Signal},
    {"receivePalletData(QByteArray)", "robot_receivePalletData(QByteArray)", R::Signal},
    // punching
    {"receivedPunchState(QByteArray)", "signal_punch_state(QByteArray)", R::Signal},
    {"receivedMaterialState(QByteArray)", "signal_receivedMaterialState(QByteArray)", R::Signal},
    {"receivedControlMode(QByteArray)", "signal_receivedControlMode(QByteArray)", R::Signal},
    {"receivedPunchAmount(QByteArray)", "signal_receivedPunchAmount(QByteArray)", R::Signal},
    {"receivedPunchEnable(QByteArray)", "signal_receivedPunchEnable(QByteArray)", R::Signal},
    {"receivedFixtrueAct(QByteArray)", "signal_receivedFixtrueAct(QByteArray)", R::Signal},
    {"receivedPunchDelayTime(QByteArray)", "signal_receivedPunchDelayTime(QByteArray)", R::Signal},
    {"receivedPunchTrack(QByteArray)", "signal_receivedPunchTrack(QByteArray)", R::Signal},
    {"receivedPunchPoint(QByteArray)", "signal_receivedPunchPoint(QByteArray)", R::Signal},
    {"receivedRunStatus(QByteArray)", "signal_receivedRunStatus(QByteArray)", R::Signal},
    {"receivedPunchPopup(QByteArray)", "signal_receivedPunchPopup(QByteArray)", R::Signal},
    {"receivePunchIOPortData(QByteArray)", "singal_Punch_IOPort(QByteArray)", R::Signal},
    {"receivePunchStatusData(QByteArray)", "singal_Punch_IOStatus(QByteArray)", R::Signal},
    {"receivePunchInterferenceData(QByteArray)", "singal_Punch_Interference(QByteArray)", R::Signal},
    {"receiveInterferecalibrationData(QByteArray)", "singal_Punch_InterferenceSingle(QByteArray)", R::Signal},
    {"receivePunchFixtureData(QByteArray)", "singal_Punch_IOFixture(QByteArray)", R::Signal},
    {"receive_punch_variable_cylinder_data(QByteArray)", "singal_Punch_variable_cylinder_param(QByteArray)", R::Signal},
    // laser cutting, polishing
    {"receiveLaserTechParam(QByteArray)", "robot_recLaserTechParam(QByteArray)", R::Signal},
    {"receiveCutTechParam(QByteArray)", "robot_recCutTechParam(QByteArray)", R::Signal},
    {"receiveChangeIosetData(QByteArray)", "robot_recLaserChangerIoSet(QByteArray)", R::Signal},
    {"receiveChangeLaserAnalog(QByteArray)", "robot_recLaserChangerAnalog(QByteArray)", R::Signal},
    {"receiveChangeLaserAnalogSet(QByteArray)", "robot_recLaserChangerAnalogSet(QByteArray)", R::Signal},
    {"receivedPolishPara(QByteArray)", "robot_Polish_Para(QByteArray)", R::Signal},
    // screw driving
    {"receivedScrewIO(QByteArray)", "robotReceivedScrewIO(QByteArray)", R::Signal},
    {"receivedScrewPara(QByteArray)", "robotReceivedScrewPara(QByteArray)", R::Signal},
    {"receivedScrewState(QByteArray)", "robotReceivedScrewState(QByteArray)", R::Signal},
    // IO and Modbus
    {"receivedInterfereRange(QByteArray)", "robot_interfereIO_data(QByteArray)", R::Signal},
    {"receivedIODinAlarm(QByteArray)", "robot_receivedIODinAlarm(QByteArray)", R::Signal},
    {"receivedIODoutAlarm(QByteArray)", "robot_receivedIODoutAlarm(QByteArray)", R::Signal},
    {"receivedIODinPortName(QByteArray)", "robot_receivedIODinPortName(QByteArray)", R::Signal},
    {"receivedIODoutPortName(QByteArray)", "robot_receivedIODoutPortName(QByteArray)", R::Signal},
    {"receivedIOAIPortName(QByteArray)", "robot_receivedIOAIPortName(QByteArray)", R::Signal},
    {"receivedIOAOPortName(QByteArray)", "robot_receivedIOAOPortName(QByteArray)", R::Signal},
    {"receivedModbusProgram(QByteArray)", "robot_receivedModbusProgram_reflash(QByteArray)", R::Signal},
    {"reveivedModbusParameter(QByteArray)", "robot_receivedModbusSlaveParameter(QByteArray)", R::Signal},
    {"reveivedModbusMaterParameter(QByteArray)", "robot_receivedModbusMasterParameter(QByteArray)", R::Signal},
    {"reveivedModbusCheckHeart(QByteArray)", "robot_receivedModbusCheckHeart(QByteArray)", R::Signal},
    {"receivedUploadEnable(QByteArray)", "robot_receivedUploadEnable(QByteArray)", R::Signal},
    {"receivedUploadPara(QByteArray)", "robot_receivedUploadPara(QByteArray)", R::Signal},
    {"receivedDAformat(QByteArray)", "robot_receivedDAformat(QByteArray)", R::Signal},
    {"receiveCanOpenPara(QByteArray)", "robot_receiveCanOpenPara(QByteArray)", R::Signal},
    // dynamics, collision, drag teaching, 3-D mouse
    {"receiveDecareParam(QByteArray)", "robot_Decare_Param(QByteArray)", R::Signal},
    {"receivedEncoderPara(QByteArray)", "robot_EncoderPara(QByteArray)", R::Signal},
    {"receivedDynaPara(QByteArray)", "robot_dynaPara(QByteArray)", R::Signal},
    {"receivedDynaIdentify(QByteArray)", "robot_dynaIdentify(QByteArray)", R::Signal},
    {"receivedCollision(QByteArray)", "robot_collision(QByteArray)", R::Signal},
    {"receivedTorqFeedback(QByteArray)", "robot_torqFeedback(QByteArray)", R::Signal},
    {"receivedCollisionPara(QByteArray)", "robot_collisionPara(QByteArray)", R::Signal},
    {"receivedDragPara(QByteArray)", "robot_DragPara(QByteArray)", R::Signal},
    {"receivedDragSwitch(QByteArray)", "robot_DragSwitch(QByteArray)", R::Signal},
    {"receivedSafeCheck(QByteArray)", "robot_SafeCheck(QByteArray)", R::Signal},
    {"receivedIdentificationData(QByteArray)", "robot_IdentificationData(QByteArray)", R::Signal},
    {"receivedFinish(QByteArray)", "robot_Finish(QByteArray)", R::Signal},
    {"receivedErrorStop(QByteArray)", "robot_ErrorStop(QByteArray)", R::Signal},
    {"receivedThreeMouse(QByteArray)", "robot_threeMouse_para(QByteArray)", R::Signal},
    {"received3DMousePoint(QByteArray)", "robot_3DMouse_Point(QByteArray)", R::Signal},
    {"received3DMouseMark(QByteArray)", "robot_3DMouse_Mark(QByteArray)", R::Signal},
    {"receiveCollisionDetectDragTeach(QByteArray)", "robot_receiveCollisionDetectDragTeach(QByteArray)", R::Signal},
    {"receiveClearCollision(QByteArray)", "robot_receiveClearCollision(QByteArray)", R::Signal},
    {"receiveBrakeAvoidCrushed(QByteArray)", "robot_receiveBrakeAvoidCrushed(QByteArray)", R::Signal},
    {"receiveBrakeAvoidCrushedDelay(QByteArray)", "robot_receiveBrakeAvoidCrushedDelay(QByteArray)", R::Signal},
    {"receiveBrakeAvoidCrushedParam(QByteArray)", "robot_receiveBrakeAvoidCrushedParam(QByteArray)", R::Signal},
    {"receiveBrakeAvoidCrushedRecordtorq(QByteArray)", "robot_receiveBrakeAvoidCrushedRecordtorq(QByteArray)", R::Signal},
    {"receiveAutoModifyAccPara(QByteArray)", "robot_receiveAutoModifyAccPara(QByteArray)", R::Signal},
    {"receiveReceiveAutoModifyAccThresholdpara(QByteArray)", "robot_receiveReceiveAutoModifyAccThresholdpara(QByteArray)", R::Signal},
    {"receivePayloadPara(QByteArray)", "robot_receivePayloadPara(QByteArray)", R::Signal},
    {"receivePayloadNumPara(QByteArray)", "robot_receivePayloadNumPara(QByteArray)", R::Signal},
    {"receivedPosOver(QByteArray)", "robotReceivedPosOver(QByteArray)", R::Signal},
    {"receivedTrackingError(QByteArray)", "robotReceivedTrackingError(QByteArray)", R::Signal},
    {"receivedOverlordProtect(QByteArray)", "robotReceivedOverlordProtect(QByteArray)", R::Signal},
    // synchronised and external axes, multi-robot
    {"signal_receivedSyncJogSpeed(QByteArray)", "signal_robot_syncJogSpeed_data(QByteArray)", R::Signal},
    {"signal_ReceiveSyncEncodeOverflow(QByteArray)", "signal_robot_syncEncodeOverflow_data(QByteArray)", R::Signal},
    {"recvSyncJointPara(QByteArray)", "robot_syncJoint_para(QByteArray)", R::Signal},
    {"recvSyncZeroPoint(QByteArray)", "robot_syncZeroPoint(QByteArray)", R::Signal},
    {"receiveOuterSingleCycle(QByteArray)", "robot_syncSingleCycle(QByteArray)", R::Signal},
    {"recvOutterAxisPos(QByteArray)", "robot_syncAxis_pos(QByteArray)", R::Signal},
    {"recvOutterAxisState(QByteArray)", "robot_syncAxis_state(QByteArray)", R::Signal},
    {"recvOutterCalResult(QByteArray)", "robotSyncAxisCalResult(QByteArray)", R::Signal},
    {"receivedRobotSyncAxle(QByteArray)", "robot_RobotSyncAxle(QByteArray)", R::Signal},
    {"receivedSyncCalibration(QByteArray)", "signal_syncCalibationState(QByteArray)", R::Signal},
    {"receivedSyncPositionerNum(QByteArray)", "signal_syncPositionerNum(QByteArray)", R::Signal},
    {"signal_doubleRobotCurPosition(QByteArray)", "signal_doubleRobotPosition(QByteArray)", R::Signal},
    {"recriveMoreRobotResetPosition(QByteArray)", "receive_moreRobot_ResetPosition(QByteArray)", R::Signal},
    {"receiveTransCoordPos(QByteArray)", "robot_receiveTransCoordPos(QByteArray)", R::Signal},
    {"receivedRobotTypeSlave(QByteArray)", "signal_updateRobotTypeSlave(QByteArray)", R::Signal},
    // variables and parameters
    {"receiveGlobalVariant(QByteArray)", "robot_get_globalVariant(QByteArray)", R::Signal},
    {"receiveAllGlobalPosition(QByteArray)", "robot_rec_allGlobalPosition(QByteArray)", R::Signal},
    {"receiveLocalVariantPosP(QByteArray)", "robot_receiveLocalVariantPosP(QByteArray)", R::Signal},
    {"receiveLocalVariantPosE(QByteArray)", "robot_receiveLocalVariantPosE(QByteArray)", R::Signal},
    {"receiveLocalVariantValue(QByteArray)", "robot_receiveLocalVariantValue(QByteArray)", R::Signal},
    {"recvBackup(QByteArray)", "signal_receiveBackupParam(QByteArray)", R::Signal},
    {"recvBackupRestore(QByteArray)", "signal_receiveBackupRestoreParam(QByteArray)", R::Signal},
    {"recvServoPara(QByteArray)", "receive_servo_Param(QByteArray)", R::Signal},
    {"receivedAllowCalibration(QByteArray)", "signal_receivedAllowCalibration(QByteArray)", R::Signal},
    // ---- end families ------------------------------------------------------
};

// Notifications that the Robot does not listen to, on purpose.
const char *const kUnconnected[] = {
    "receivedTestMode", // the test mode is set and read by the link's own slots only
    // ---- families ----------------------------------------------------------
    // Read by the pendant's own dialogs, which parse these payloads from the
    // link themselves; the Robot keeps no state and offers no signal for them.
    "receivedFbCmdMode", "receivedPopup", "receivedReceiveRemotePara", "recvSelectFuncton",
    "recriveioparam", "recriveIoStatus", "receiveIOState", "receiveIOFuncState", "recvIOConfig",
    "recvIORemoteOutput", "receiveSafetySet", "receivedEncoderState", "ReceivedForcedInputStatus",
    "ReceivedForcedAnalogInputStatus", "receivedRobotRange", "recvControlNumber", "receivedProSelfStart",
    "receiveGlobalExternPosition", "receiveBusType",
    // user-frame calibration dialog
    "receivedUserSuccess", "receivedUserCoordsCheck",
    // vision calibration dialog
    "receivevisualcarbinpara", "receiveVisualCarbinPoint", "receiveCaculateVisualCarbinPoint",
    "caculateVisualCarbinPointFinish",
    // palletising dialogs
    "recvPalletToolParameter", "recvPalletTrayParameter", "recvPalletPositionParameter",
    "recvPalletWorkpieceParameter", "recvPalletApproachParameter", "recvPalletOverlappingModel",
    "recvPalletPlaneModel", "recvPalletChangeModel", "recvPalletPlanePreview", "recvPalletState",
    "recvSwitchPalletMode", "recvPalletEasyPositionParameter", "recvPalletEasyToolParameter",
    "recvPalletAutoCalculate", "receivealletPlaneCarbin",
    // spraying dialogs
    "receivedSprayAnalog", "receivedSprayDigital", "receivedSpraySequence", "receivedSprayTrackPara",
    "receivedSprayHandOperatOne", "receivedSprayHandOperatTwo", "receivedSprayHandOperatThree",
    // drag-teach trajectories and the 3-D mouse port
    "receivedDragTrackName", "receivedDragTrajParaOnOff", "receivedDragTrajState", "receivedDragMode",
    "received_threeD_mouse_port",
    // punching line stations
    "receivedOnlineParame", "receivedFrontStation", "receivedStation",
    // file transfer: TcpUpDownFile listens on its own connection
    "receiveUploadAnswer",
    // declared by the link but never emitted
    "receivedLaserManufacturer", "receiveRobotCycleTimes", "receivedOutInchSpeed", "recvSyncPositonerSwitch",
    // ---- end families ------------------------------------------------------
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
