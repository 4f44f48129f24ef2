#pragma once
// The signals of Robot, in their order: what a host or a dialog listens to.
// Robot derives from this class, so they are Robot's signals (connections
// by SIGNAL() strings or member pointers on a Robot work as they are). The
// names keep the program's own irregular spellings.
//
// Most of them are relays: a row of the report table (ReportTable.cpp)
// emits the signal with the payload exactly as received and wakes nobody.
// The others are emitted by the notifiers of the decoders (Decoders.h).

#include "link/LinkTypes.h"
#include "robot/RobotTypes.h"

#include <QByteArray>
#include <QMetaMethod>
#include <QObject>
#include <QString>
#include <QVector>

// The signed byte of the speed report, by the name its signal uses.
typedef signed char schar;

class RobotSignals : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // True when something listens to the signal (a notifier skips work
    // that only a listener would use).
    bool isListened(const QMetaMethod &signal) const { return isSignalConnected(signal); }

Q_SIGNALS:
    // ---- core: signals, in their order ------------------------------------
    void robot_coord_changed(uchar coord);
    void robot_servo_changed(QByteArray servoStatus);
    void robot_speed_changed(schar speed);
    void robot_mode_changed(OperationMode mode);
    void robot_running_status_changed(uchar mode);
    void robot_position_update(QVector<double> pos, int coord, int robot);
    void robot_job_status(int rtype, int jobStatus, int continueRun);
    void robotp_jstatus(int robotp, int jStatus);
    void robot_received_data(ushort cmd, QByteArray data);
    void robot_step_end(int robot, QString jobfile, int line);
    void robot_BWB_command(int robot, int line);
    void robot_dout_display(QByteArray);
    void robot_din_display(QByteArray);
    void robot_aout_display(QByteArray);
    void robot_ain_display(QByteArray);
    void robot_JobfiletoLine(QByteArray);
    void robot_connect_succeed(int);
    void robot_tool_changed(int);
    void deadmanStateChange(int state);
    void deadmanModeChange(bool ishardWired, int port1, int port2);
    void updateR1MotButtonText();
    void updateR2MotButtonText();
    void updateR3MotButtonText();
    void updateR4MotButtonText();
    void show_hide_Axis_widget(int status);
    void robot_change_CurRobot(int mode, int robot);
    void robot_change_RobotSum(int sum);
    void robot_servo_err_info(QString errorstr);
    void receive_moreRobot_CurPosition(QByteArray posDeg, QByteArray pos);
    void signal_updateTeachtype(QString type);
    void pro_run_status(QByteArray robotAndStatus);
    void signal_curRunLine(QByteArray);
    void robot_singlevalue(QByteArray);
    void RobotCycleIndex(int robot, int count, int index);
    void sPBtnState(int robot);
    void robot_cycletimes_update(int count);
    void robot_tool_receiveMotorSpeed(QByteArray);
    void robot_tool_receiveMotorTorque(QByteArray);
    void robot_tool_receiveMotorTorqueTheo(QByteArray);
    void signal_robotReceivedMotorLoad(QByteArray);
    void robot_get_oneglobalVariant(QByteArray);
    // ---- families: signals -------------------------------------------------
    // robot type and kinematic parameters
    void robot_change_CurRobotType(RobotType type);
    void robot_joint_para(int axis, QByteArray data);
    void robot_jointInchSpeed_data_check(int axis, QByteArray data);
    void robot_rectInchSpeed_data_check(QByteArray);
    void robot_interpolationMode_data_check(QByteArray);
    void robot_sensitivity_data_check(QByteArray);
    void robot_tool_receiveOutterAxisCount(int count);
    void robot_user_dhParaState(QStringList values);
    void robot_user_dhcoord(QString upsideDown);
    void signal_robotUserDhpitch(double pitch);
    void signal_DHreviewFinish();
    // tools, user frames, calibration
    void robot_tool_count_check(int toolNum, QVector<double> tool, QByteArray data);
    void robot_usercoords_reply(int userNum, QString text, QVector<double> frame, bool inquire);
    void robot_usercoords_inuse(int userNum);
    void robot_usercoords_note(QString note);
    void robot_tool_check(int pointNum, QByteArray data);
    void signal_toolStatus(QByteArray);
    void robot_count_success(int result);
    void robot_tool_checkFor20(int pointNum, QByteArray data);
    void robot_count_successFor20(int result, double distance);
    void robot_ResetResult_ToZeroPoint(int apply);
    void robot_tool_receive20MarkedPoint(int pointNum, QByteArray data);
    void robot_tool_receive7MarkedPoint(int pointNum, QByteArray data);
    void robot_received4Point(QByteArray);
    void robot_count_successFor4(QByteArray);
    void robot_receivedresultForDH(QByteArray);
    void robot_zero_success(QByteArray);
    // process messages read by their handlers
    void robot_weldCheckData(QByteArray);
    void robot_Modbus_State(int modbusConnect);
    void robot_Modbus_Io_State(int modbusConnect, int externIOConnect);
    void robot_visionRange_data_check(QByteArray);
    void signal_robotSyncGroundRail(QByteArray);
    void robot_recvCOOPERATIVE(int cooperativeRobot);
    void robot_rec_globalPosition(QByteArray);
    void receivePresentRobotList(QStringList robots);
    void signal_updateRobotServoList();
    // relays: the payload as received (rows of ReportTable.cpp)
    // job and run control
    void signal_mainJob(QByteArray);
    void robot_servoerrordelete(QByteArray);
    void robot_runModeAutoMan(QByteArray);
    void robot_runningtime_update(QByteArray);
    void receive_his_cmd(QByteArray);
    void signal_gloablAutoRun(QByteArray);
    void signal_gloablAutoRunState(QByteArray);
    void robot_FileName_Need_DownOrUp(QByteArray);
    void robot_job_Sum_list(QByteArray);
    void robot_job_File_list(QByteArray);
    void robot_job_File_Info_Finish();
    void robot_ControlENI_list(QByteArray);
    void robot_ControlLog_list(QByteArray);
    void robot_Rec_ControlVersion(QByteArray);
    void robot_ControlSys_Clock(QByteArray);
    void robot_ENI(QByteArray);
    void robot_programtitle_reflash(QByteArray);
    void receive_ControlComCycle(QByteArray);
    void robot_change_ShotParameter(QByteArray);
    void robot_change_CurrentState(QByteArray);
    void robot_receiveConntrollerInitState(QByteArray);
    void robot_receiveControlIp(QByteArray);
    void robot_receiveRemoteCtl(QByteArray);
    void robot_receiveReservation(QByteArray);
    // production line
    void signal_CurTopPoint(QByteArray);
    void signal_feederStationSet(QByteArray);
    void signal_ProcessParame(QByteArray);
    void signal_ProcessNum(QByteArray);
    void signal_CommunicationStatus(QByteArray);
    // welding
    void robot_arcset_data_check(QByteArray);
    void robot_waveweld_data_check(QByteArray);
    void robot_weldIO_data_get(QByteArray);
    void robot_waveweld_IUmatch(QByteArray);
    void robot_match_data_check(QByteArray);
    void robot_receivedWelder(QByteArray);
    void robot_receivedWelderState(QByteArray);
    void robot_receivedWeldRecord(QByteArray);
    void signal_weldParaNotes(QByteArray);
    void robot_receiveWeldAdjustment(QByteArray);
    void robot_receiveWeldMonitor(QByteArray);
    void robot_get_weldIntersectionCal(QByteArray);
    void robot_get_weldIntersectionPoint(QByteArray);
    void robot_get_weldIntersectionPara(QByteArray);
    void robot_weldEnableState(QByteArray);
    void robot_receiveOuterWeldTorchParam(QByteArray);
    void robot_receiveOuterWeldType(QByteArray);
    // seam tracking and search
    void robot_tcp_para(QByteArray);
    void robot_laser_para(QByteArray);
    void robot_track_para(QByteArray);
    void robot_search_para(QByteArray);
    void signal_sensorType(QByteArray);
    void signal_trackSensorType(QByteArray);
    void robot_laser_Calibate(QByteArray);
    void robot_laser_CalibateReCord(QByteArray);
    void robot_laser_CalibateResult(QByteArray);
    void robot_arc_TrackCOMM(QByteArray);
    void robot_arc_TrackCOMP(QByteArray);
    void robot_arc_hTrackCOMP(QByteArray);
    void robot_arc_vol_TrackCOMP(QByteArray);
    void signal_arcSearchPara(QByteArray);
    void signal_calibrated(QByteArray);
    void robot_TrackData(QByteArray);
    void robot_TrackRange(QByteArray);
    // conveyor tracking
    void robot_trackConBasic_para(QByteArray);
    void robot_TrackConUerPoint_para(QByteArray);
    void robot_trackConTool_para(QByteArray);
    void robot_trackConCalibration_para(QByteArray);
    void robot_trackConCaliSensorPoint_para(QByteArray);
    void robot_trackConCaliSensorPos_para(QByteArray);
    void robot_trackConSensorPos_para(QByteArray);
    void robot_trackConPosr_para(QByteArray);
    void robot_calibrationPos_para(QByteArray);
    void robot_trackSpeed_para(QByteArray);
    void robot_CalibarteRespond(QByteArray);
    void robot_WaitPoint(QByteArray);
    // vision
    void robot_vision_para(QByteArray);
    void robot_vision_ip(QByteArray);
    void robot_visionpos_para(QByteArray);
    void robot_visionposgesture_para(QByteArray);
    void robot_visionpostrytakephoto_para(QByteArray);
    void robot_receiveVisionDebugPosList(QByteArray);
    // palletising
    void robot_pallet_LocATPara(QByteArray);
    void robot_piece_LocAT(QByteArray);
    void robot_receivePalletData(QByteArray);
    // punching
    void signal_punch_state(QByteArray);
    void signal_receivedMaterialState(QByteArray);
    void signal_receivedControlMode(QByteArray);
    void signal_receivedPunchAmount(QByteArray);
    void signal_receivedPunchEnable(QByteArray);
    void signal_receivedFixtrueAct(QByteArray);
    void signal_receivedPunchDelayTime(QByteArray);
    void signal_receivedPunchTrack(QByteArray);
    void signal_receivedPunchPoint(QByteArray);
    void signal_receivedRunStatus(QByteArray);
    void signal_receivedPunchPopup(QByteArray);
    void singal_Punch_IOPort(QByteArray);
    void singal_Punch_IOStatus(QByteArray);
    void singal_Punch_Interference(QByteArray);
    void singal_Punch_InterferenceSingle(QByteArray);
    void singal_Punch_IOFixture(QByteArray);
    void singal_Punch_variable_cylinder_param(QByteArray);
    // laser cutting, polishing
    void robot_recLaserTechParam(QByteArray);
    void robot_recCutTechParam(QByteArray);
    void robot_recLaserChangerIoSet(QByteArray);
    void robot_recLaserChangerAnalog(QByteArray);
    void robot_recLaserChangerAnalogSet(QByteArray);
    void robot_Polish_Para(QByteArray);
    // screw driving
    void robotReceivedScrewIO(QByteArray);
    void robotReceivedScrewPara(QByteArray);
    void robotReceivedScrewState(QByteArray);
    // IO and Modbus
    void robot_interfereIO_data(QByteArray);
    void robot_receivedIODinAlarm(QByteArray);
    void robot_receivedIODoutAlarm(QByteArray);
    void robot_receivedIODinPortName(QByteArray);
    void robot_receivedIODoutPortName(QByteArray);
    void robot_receivedIOAIPortName(QByteArray);
    void robot_receivedIOAOPortName(QByteArray);
    void robot_receivedModbusProgram_reflash(QByteArray);
    void robot_receivedModbusSlaveParameter(QByteArray);
    void robot_receivedModbusMasterParameter(QByteArray);
    void robot_receivedModbusCheckHeart(QByteArray);
    void robot_receivedUploadEnable(QByteArray);
    void robot_receivedUploadPara(QByteArray);
    void robot_receivedDAformat(QByteArray);
    void robot_receiveCanOpenPara(QByteArray);
    // dynamics, collision, drag teaching, 3-D mouse
    void robot_Decare_Param(QByteArray);
    void robot_EncoderPara(QByteArray);
    void robot_dynaPara(QByteArray);
    void robot_dynaIdentify(QByteArray);
    void robot_collision(QByteArray);
    void robot_torqFeedback(QByteArray);
    void robot_collisionPara(QByteArray);
    void robot_DragPara(QByteArray);
    void robot_DragSwitch(QByteArray);
    void robot_SafeCheck(QByteArray);
    void robot_IdentificationData(QByteArray);
    void robot_Finish(QByteArray);
    void robot_ErrorStop(QByteArray);
    void robot_threeMouse_para(QByteArray);
    void robot_3DMouse_Point(QByteArray);
    void robot_3DMouse_Mark(QByteArray);
    void robot_receiveCollisionDetectDragTeach(QByteArray);
    void robot_receiveClearCollision(QByteArray);
    void robot_receiveBrakeAvoidCrushed(QByteArray);
    void robot_receiveBrakeAvoidCrushedDelay(QByteArray);
    void robot_receiveBrakeAvoidCrushedParam(QByteArray);
    void robot_receiveBrakeAvoidCrushedRecordtorq(QByteArray);
    void robot_receiveAutoModifyAccPara(QByteArray);
    void robot_receiveReceiveAutoModifyAccThresholdpara(QByteArray);
    void robot_receivePayloadPara(QByteArray);
    void robot_receivePayloadNumPara(QByteArray);
    void robotReceivedPosOver(QByteArray);
    void robotReceivedTrackingError(QByteArray);
    void robotReceivedOverlordProtect(QByteArray);
    // synchronised and external axes, multi-robot
    void signal_robot_syncJogSpeed_data(QByteArray);
    void signal_robot_syncEncodeOverflow_data(QByteArray);
    void robot_syncJoint_para(QByteArray);
    void robot_syncZeroPoint(QByteArray);
    void robot_syncSingleCycle(QByteArray);
    void robot_syncAxis_pos(QByteArray);
    void robot_syncAxis_state(QByteArray);
    void robotSyncAxisCalResult(QByteArray);
    void robot_RobotSyncAxle(QByteArray);
    void signal_syncCalibationState(QByteArray);
    void signal_syncPositionerNum(QByteArray);
    void signal_doubleRobotPosition(QByteArray);
    void receive_moreRobot_ResetPosition(QByteArray);
    void robot_receiveTransCoordPos(QByteArray);
    void signal_updateRobotTypeSlave(QByteArray);
    // variables and parameters
    void robot_get_globalVariant(QByteArray);
    void robot_rec_allGlobalPosition(QByteArray);
    void robot_receiveLocalVariantPosP(QByteArray);
    void robot_receiveLocalVariantPosE(QByteArray);
    void robot_receiveLocalVariantValue(QByteArray);
    void signal_receiveBackupParam(QByteArray);
    void signal_receiveBackupRestoreParam(QByteArray);
    void receive_servo_Param(QByteArray);
    void signal_receivedAllowCalibration(QByteArray);
    // ---- end families: signals ---------------------------------------------

    // ---- declared for listeners that connect to them by name; nothing in
    // the library emits them (no report of the controller leads to them) ----
    void robot_job_continueRun(bool);
    void robot_weldManulOperateVisible(int visible);
    void robot_acc_speed();
    void robot_dec_speed();
};
