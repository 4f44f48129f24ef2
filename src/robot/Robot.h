#pragma once
// Robot: the controller's state as the host sees it.
//
// A Robot owns the link to one controller (TcpConnectModule on port 6001).
// Every notification of the link is connected, through the table in
// RobotWiring.cpp, to a handler slot here or straight to a Robot signal.
// Handlers run on the link thread (direct connections): they parse the
// payload, store what the host API reads later in the public cache fields
// below, log, emit, and wake every thread waiting on replyCondition. So a
// host thread blocked in a getter is woken even when the host runs no event
// loop of its own.
//
// The cache fields are plain values written by the handlers and read by the
// host API without a lock after a wake (only the flags that several threads
// test in a loop are atomic). Each field's layout is documented here and
// beside the handler that fills it.
//
// Sections: "core" (state store, status handlers, messages) and "families"
// (robot type and kinematics, tools and frames, configuration catalogue,
// process relays). Each section holds only what its own files define.

#include <QByteArray>
#include <QDateTime>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QWaitCondition>

#include <atomic>
#include <initializer_list>
#include <string>

#include "link/LinkTypes.h"
#include "robot/ConfigCatalogue.h"
#include "robot/RobotTypes.h"

// The signed byte of the speed report, by the name its signal uses.
typedef signed char schar;

class QTimer;
class TcpConnectModule;

class Robot : public QObject
{
    Q_OBJECT
public:
    // ---- core: instance, link, sending ------------------------------------

    // The class-wide instance: the existing one, or a new Robot (no parent)
    // for that address when there is none. The form without an address uses
    // the empty address.
    static Robot *instance(const QString &ip);
    static Robot *instance();

    // Time base handed to each new link (300000 by default: 1666 ms checks,
    // 2000 ms time-out checks). Tests set a small one before creating a Robot.
    static void setLinkTimeBase(int timeBase);
    static int linkTimeBase();

    // Controller port handed to each new link (6001 by default).
    static void setLinkPort(quint16 port);
    static quint16 linkPort();

    // The host's error callback: called on the link thread with each error,
    // warning and information text (NUL-terminated UTF-8, valid during the
    // call). Null switches delivery off.
    using ErrorCallback = void (*)(const char *);
    static void setErrorCallback(ErrorCallback callback);

    explicit Robot(const QString &ip, QObject *parent = nullptr);
    ~Robot() override;

    TcpConnectModule *link() const;

    // Hands one frame to the link; false when the link is down. For 0x2101
    // (set operation mode) it first clears replyFlag and stamps
    // lastRequestTime.
    bool send(quint16 command, const QByteArray &payload);

    void firstStart();     // starts the link thread; it then connects
    void restart();        // manual start of a stopped link ("手动开始")
    void close();          // stops the link; resets the class-wide instance
    bool isClosed() const; // true after close(), until restart()

    // The robot that "robot" keys address: the override if non-zero, else
    // the default. Both start at 1; the controller's current-robot report
    // (0x5003) sets both.
    int currentRobot() const;
    int overrideRobot() const { return m_overrideRobot.load(); }
    void setCurrentRobot(int robot); // sets the override and the default

    // Copy of the last error, warning or information text (UTF-8).
    std::string lastMessage() const;

    // The mode handler takes reports only while the Robot is ready. Set by
    // firstStart() and restart() (the link is about to connect, so the
    // controller's first mode report counts), cleared by close().
    void setReady(bool ready) { m_ready.store(ready); }
    bool isReady() const { return m_ready.load(); }

    // When set, the next mode report emits robot_mode_changed even if the
    // mode did not change, then the flag clears. Process-wide; restart()
    // sets it so that listeners learn the mode again after a manual start.
    static void forceModeNotification();
    static bool takeForceModeNotification(); // reads and clears the flag

    // Sleeps for ms while processing the calling thread's events, at most
    // 100 ms per pass.
    static void waitingPause(int ms);

    // ---- core: state the host API reads -----------------------------------
    // Request-and-wait: lock replyMutex, send, wait on replyCondition; every
    // key-reading handler wakes all waiters at its end.
    // Link connected. Follows connectSucceed, which the link façade
    // re-emits in the thread it lives in (the Robot's), so it changes when
    // that thread runs its events.
    std::atomic<quint8> connected{0};
    QMutex replyMutex;
    QWaitCondition replyCondition;

    // 0x2003 servo report {"mode","robot","status"}
    int servoStatus = 0;                // "status" of the robot shown
    int robotServoStatus[4] = {};       // [robot-1], kept when "mode" is 1
    // 0x2103 mode report {"mode"}
    int operationMode = 0;              // 0 teach, 1 remote, 2 run
    std::atomic<bool> modeReceived{false}; // a valid mode report was taken
    std::atomic<bool> modeRepeated{false}; // a report carried the mode held
    std::atomic<quint8> replyFlag{0};   // mode acknowledged: cleared by send(0x2101), set by the mode report
    QDateTime lastRequestTime;          // when 0x2101 was last sent
    // 0x2203 coordinate report {"coord","robot"}
    quint8 coordinate = 0;              // 0 joint, 1 Cartesian, 2 tool, 3 user
    int coordinateGate = 0;             // while 7, coordinate reports are ignored (set by the host API)
    // 0x2603 speed report {"robot","speed"}
    int speed = 0;                      // 1..100 percent, 101..103 jog steps
    // 0x380C tool report {"curToolNum","robot"}
    int currentTool = 0;
    // 0x2303 deadman report {"deadman"}
    int deadman = 0;
    // 0x2306 deadman wiring {"deadmanMode","deadmanPortOne","deadmanPortTwo"}
    int deadmanMode = 0;
    int deadmanPortOne = 0;
    int deadmanPortTwo = 0;
    // 0x2106 teach type {"teachType"}
    int teachType = 0;
    // 0x3D03 / 0x4919 / 0x9103 running state {"robot","status"}
    int runningStatus = 0;              // 2 means a job is running
    // 0x4919 / 0x9103 job status {"robot","status","continueRun"}
    int jobStatus = 0;
    int jobContinueRun = 0;
    // 0x3504 job file line {"num"}: the line being executed
    int currentRunLine = 0;
    // 0x2F08 position report {"robot","coord","pos"[7],"posDeg"[7]}
    double currentPosition[6] = {};     // "pos"[0..5]
    // 0x7013 external-axis position {"robot","coord","pos"[5..]}
    double syncPosition[5] = {};        // "pos"[0..4]
    // 0x3603 / 0x3606 / 0x3609 / 0x360B IO reports {"status"[16]}: port n at [n-1]
    double dout[16] = {};
    double din[16] = {};
    double aout[16] = {};
    double ain[16] = {};
    // 0x560C one global variable {"varName","varType","varValue"}
    double globalVarValue = 0.0;        // "varValue" of the last report, whatever it named
    static constexpr int kGlobalVarCount = 1000; // index = last three digits of the name
    int globalInt[kGlobalVarCount] = {};         // varType 2 ("GI...")
    double globalReal[kGlobalVarCount] = {};     // varType 3 ("GD...")
    quint8 globalBool[kGlobalVarCount] = {};     // varType 1 ("GB..."), 0 or 1
    // 0x5606 one global position {"robot","posName","posValue"[14]}
    // (filled by the families' global-position handler)
    double globalPosition[14] = {};     // robot axes [0..6], synchronous axes [7..13]
    // 0x2A05 motor speed {"vel"[7],"maxVel"[7],"velSync"[5],"maxVelSync"[5]}
    double motorVel[2][7] = {};         // [0] "vel", [1] "maxVel"
    double motorVelSync[2][5] = {};     // [0] "velSync", [1] "maxVelSync"
    // 0x2A07 motor torque {"torq","maxTorq"[7],"torqSync","maxTorqSync"[5], "theoTorq","maxTheoTorq"[7]}
    double motorTorque[2][7] = {};      // [0] "torq", [1] "maxTorq"
    double motorTorqueSync[2][5] = {};  // [0] "torqSync", [1] "maxTorqSync"
    double motorTheoTorque[2][7] = {};  // [0] "theoTorq", [1] "maxTheoTorq"
    // 0x2A0B motor load {"motorOverload"[7],"motorOverloadSync"[5]}
    double motorOverload[7] = {};
    double motorOverloadSync[5] = {};
    // 0x330A single cycle {"value"[7]}
    double singleCycle[7] = {};
    // 0x50B3 continuous-motion mode {"open"}
    std::atomic<quint8> continuousMotionMode{0};
    // 0x2E06 robot count {"sum"}
    int robotCount = 1;
    // 0x2E03 robot type (families section fills it)
    int robotType = 0;                  // RobotType code
    int axisCount = 6;

    // Tool, frame and calibration results (filled by the families section).
    static constexpr int kToolCount = 32;        // tool numbers 0..31
    double toolParameters[kToolCount][6] = {};   // x, y, z, A, B, C per tool
    int lastToolNum = 0;                          // tool of the last tool-parameter reply
    double fourPointData[9] = {};                 // ask_four_point (0x7208)
    double fourPointResult[5] = {};               // four_point_calculation (0x7204)
    std::atomic<quint8> dhResult{0};              // result_for_DH (0x7206 "apply")
    std::atomic<quint8> zeroCalibrationSuccess{0}; // set by 0x3303, cleared by the host API

    // Jogging (driven by the host API): a 200 ms repeating timer owned by the
    // Robot, the jogging flag and the external-axis jog selection (1: axes
    // 1..5 jog external axes 8..12).
    QTimer *jogTimer = nullptr;
    std::atomic<quint8> jogging{0};
    int externalAxisJog = 0;

    // ---- families: state ---------------------------------------------------
    // (robot type and kinematics, tools and frames, catalogue, relays)
    // Caches filled by ToolFrameHandlers.cpp:
    //   toolParameters[toolNum]  0x3807 "toolDeg"[0..5] (x, y, z, A, B, C),
    //                            toolNum 0..kToolCount-1; lastToolNum = "toolNum"
    //   fourPointData[9]         0x7208: "status"[0..3], "result",
    //                            "length"[0..2], "dtheta"
    //   fourPointResult[5]       0x7204: "result", "length"[0..2], "dtheta"
    //   dhResult                 0x7206: "apply" non-zero
    //   zeroCalibrationSuccess   0x3303: set to 1
    // (a member given as a single number fills the first of its slots)
    int currentUserFrame = 0;           // 0x3C0C "curUserNum"
    int positionerAxisCount = 0;        // 0x700B "AxisNum"
    // 0x2E0F servo and IO slaves: "伺服-1".."伺服-n", then "IO-1".."IO-m".
    // Written on the link thread; read it there (signal_updateRobotServoList).
    QStringList servoSlaveLabels;

    // The configuration-file catalogue, filled once at construction.
    const qrx::ConfigCatalogue configCatalogue;
    // Description of a controller configuration file for the robot count
    // held (single-robot catalogue below 2 robots); empty when unknown.
    QString configFileDescription(const QString &fileName) const;
    // ---- end families: state -----------------------------------------------

public Q_SLOTS:
    // ---- core: handlers ----------------------------------------------------
    void robot_net_slot_connectSucceed(int status);
    void robot_net_slot_receivedDataProcess(quint16 command, QByteArray data);
    void robot_net_slot_runningStatusProcess(quint8 mode);
    void robot_net_slot_servoChangedProcess(const QByteArray &data);
    void robot_net_slot_modeProcess(const QByteArray &data);
    void robot_net_slot_coordChangedProcess(const QByteArray &data);
    void robot_net_slot_velocityProcess(const QByteArray &data);
    void robot_net_slot_MoreRobotCurPosition(const QByteArray &data);
    void robot_net_slot_deadmanChangedProcess(const QByteArray &data);
    void robot_net_slot_DeadManMode(const QByteArray &data);
    void robot_net_slot_ToolChangedProcess(const QByteArray &data);
    void robot_net_slot_teachtype(const QByteArray &data);
    void robot_net_slot_prorunstatus(const QByteArray &data);
    void robot_net_slot_JobStatusProcess(const QByteArray &data);
    void robot_net_slot_stepEndProcess(const QByteArray &data);
    void robot_net_slot_BWBCommandStatus(const QByteArray &data);
    void robot_net_slot_JobfiletoLine(const QByteArray &data);
    void slot_robotCurRunLine(const QByteArray &data);
    void robot_net_slot_DoutStatus(const QByteArray &data);
    void robot_net_slot_DinStatus(const QByteArray &data);
    void robot_net_slot_AoutStatus(const QByteArray &data);
    void robot_net_slot_AinStatus(const QByteArray &data);
    void robot_net_slot_SingleCycleValue(const QByteArray &data);
    void robot_net_slot_RobotCycleIndex(const QByteArray &data);
    void robot_net_slot_MotorSpeed(const QByteArray &data);
    void robot_net_slot_MotorTorque(const QByteArray &data);
    void robot_net_slot_MotorLoad(const QByteArray &data);
    void robot_net_slot_OneGlobalVariant(const QByteArray &data);
    void robot_net_slot_CurEXPosition(const QByteArray &data);
    void robot_net_slot_RobotSum(const QByteArray &data);
    void robot_net_slot_CurRobot(const QByteArray &data);
    void robot_net_slot_continuousMotionMode(const QByteArray &data);
    void robot_net_slot_errProcess(const QByteArray &data);
    void robot_net_slot_warnProcess(const QByteArray &data);
    void robot_net_slot_infoProcess(const QByteArray &data);
    // ---- families: handlers ------------------------------------------------
    // robot type and kinematics (RobotTypeHandlers.cpp)
    void robot_net_slot_RobotType(const QByteArray &data);
    void robot_net_slot_JointPara(const QByteArray &data);
    void robot_net_slot_JointInchSpeed(const QByteArray &data);
    void robot_net_slot_RectInchSpeed(const QByteArray &data);
    void robot_net_slot_InterpolationMode(const QByteArray &data);
    void robot_net_slot_Sensitivity(const QByteArray &data);
    void robot_net_slot_OutterAxisCount(const QByteArray &data);
    void robot_net_slot_DHParaValue(const QByteArray &data);
    void robot_net_slot_dhParaState(const QByteArray &data);
    // tools, user frames, calibration (ToolFrameHandlers.cpp)
    void robot_net_slot_ToolParameter(const QByteArray &data);
    void robot_net_slot_UserCoordsReply(const QByteArray &data);
    void robot_net_slot_CurrentUserCoords(const QByteArray &data);
    void robot_net_slot_UserCoordsNote(const QByteArray &data);
    void robot_net_slot_ToolCheck(const QByteArray &data);
    void robot_net_slot_ToolCheckFor20(const QByteArray &data);
    void robot_net_slot_20MarkedPoint(const QByteArray &data);
    void robot_net_slot_7MarkedPoint(const QByteArray &data);
    void robot_net_slot_ToolStatus(const QByteArray &data);
    void robot_net_slot_CountSuccess(const QByteArray &data);
    void robot_net_slot_CountSuccessFor20(const QByteArray &data);
    void robot_net_slot_ResetResultToZeroPoint(const QByteArray &data);
    void robot_net_slot_4Point(const QByteArray &data);
    void robot_net_slot_CountSuccessFor4(const QByteArray &data);
    void robot_net_slot_resultForDH(const QByteArray &data);
    void robot_net_slot_ZeroSuccess(const QByteArray &data);
    // process messages that read keys (ProcessRelays.cpp)
    void robot_net_slot_WeldEquipmentData(const QByteArray &data);
    void robot_net_slot_ModbusState(const QByteArray &data);
    void robot_net_slot_ModbusIoState(const QByteArray &data);
    void robot_net_slot_VisionRange(const QByteArray &data);
    void robot_net_slot_SyncGroundRail(const QByteArray &data);
    void robot_net_slot_COOPERATIVE(const QByteArray &data);
    void robot_net_slot_GlobalPosition(const QByteArray &data);
    void robot_net_slot_PresentRobot(const QByteArray &data);
    void robot_net_slot_ServoList(const QByteArray &data);
    void robot_net_slot_UnsafePoint(const QByteArray &data);
    // ---- end families: handlers --------------------------------------------

Q_SIGNALS:
    // ---- core: signals, in their order ------------------------------------
    void robot_coord_changed(uchar coord);
    void robot_servo_changed(QByteArray servoStatus);
    void robot_speed_changed(schar speed);
    void robot_mode_changed(OperationMode mode);
    void robot_running_status_changed(uchar mode);
    void robot_position_update(QVector<double> pos, int coord, int robot);
    void robot_job_continueRun(bool);
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
    // relays: the payload as received (RobotWiring.cpp, families rows)
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
    void robot_weldManulOperateVisible(int visible);
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
    void robot_acc_speed();
    void robot_dec_speed();
    void signal_receivedAllowCalibration(QByteArray);
    // ---- end families: signals ---------------------------------------------

protected:
    // Wakes every thread waiting on replyCondition.
    void wakeWaiters();
    // Wakes the waiters when a handler returns, whichever way it returns.
    class WakeAtEnd
    {
    public:
        explicit WakeAtEnd(Robot *robot) : m_robot(robot) {}
        ~WakeAtEnd() { m_robot->wakeWaiters(); }
        WakeAtEnd(const WakeAtEnd &) = delete;
        WakeAtEnd &operator=(const WakeAtEnd &) = delete;

    private:
        Robot *m_robot;
    };

    // The shape of every handler that reads a JSON report: parses the
    // payload (text up to its first NUL), hands the root to
    // read(const Json::Value &) when it parses, and wakes the waiters at
    // the end either way. Defined in robot/HandlerShape.h.
    template <typename Read>
    void takeReport(const QByteArray &data, Read &&read);

    // Reports that fill cache arrays and hand the payload on as received:
    // once the payload parses, each array member is copied into its cache
    // (element by element, at most count), then every signal in notify is
    // emitted with the payload.
    struct CacheArray
    {
        const char *key;
        double *out;
        int count;
    };
    using PayloadSignal = void (Robot::*)(QByteArray);
    void takePayload(const QByteArray &data, std::initializer_list<CacheArray> arrays,
                    std::initializer_list<PayloadSignal> notify);

    // Reports of one number: field = the key's value, log line text (Robot
    // context) with the number as %1, then notify(field).
    using NumberSignal = void (Robot::*)(int);
    void takeNumber(const QByteArray &data, const char *key, int &field, const char *text, NumberSignal notify);

private:
    void storeMessage(const std::string &text);
    // Messages: hands prefix + "data" to the host callback and keeps "data"
    // as the last message. Not delivered (nothing done) without "data".
    struct DeliveredMessage
    {
        bool delivered = false;
        QString data;
        bool hasType = false;
        int type = 0;
    };
    DeliveredMessage deliverMessage(const char *prefix, const QByteArray &payload);

    TcpConnectModule *m_link = nullptr;
    std::atomic<int> m_overrideRobot{1};
    std::atomic<int> m_defaultRobot{1};
    std::atomic<bool> m_ready{false};
    mutable QMutex m_messageMutex;
    std::string m_lastMessage;
};
