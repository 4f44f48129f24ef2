// The process messages that the Robot relays: each arrives at its Robot
// signal byte for byte as the controller sent it, and never ends a pending
// wait; the process handlers that read keys do end it.

#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "link/TcpConnectModule.h"
#include "support/LogCapture.h"

#include <QtTest>

namespace {

// Relays do not parse: JSON with Chinese text, and bytes that are no JSON
// at all (a NUL inside, a byte that is not UTF-8) go through alike.
const QByteArray kJsonPayload = QByteArray("{\"name\":\"机器人2\",\"robot\":2,\"value\":[1.5,-2.0]}\n");
const char kRawBytes[] = "raw\0bytes \xff\xfe end";
const QByteArray kRawPayload = QByteArray(kRawBytes, int(sizeof kRawBytes) - 1);

} // namespace

class tst_Relays : public RobotTestCase
{
    Q_OBJECT

private:
    void addPayloads(const char *name, quint16 code, const char *signal)
    {
        QTest::newRow((QByteArray(name) + ", JSON").constData()) << code << QByteArray(signal) << kJsonPayload;
        QTest::newRow((QByteArray(name) + ", raw").constData()) << code << QByteArray(signal) << kRawPayload;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(startRobot());
    }

    void relayed_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QByteArray>("payload");

        // Every relay, code by code, with a JSON payload.
        const struct { const char *name; quint16 code; const char *signal; } relays[] = {
            {"signal_mainJob", 0x3119, SIGNAL(signal_mainJob(QByteArray))},
            {"robot_servoerrordelete", 0x3202, SIGNAL(robot_servoerrordelete(QByteArray))},
            {"robot_runModeAutoMan", 0x50A3, SIGNAL(robot_runModeAutoMan(QByteArray))},
            {"robot_runningtime_update", 0x5023, SIGNAL(robot_runningtime_update(QByteArray))},
            {"receive_his_cmd", 0x5093, SIGNAL(receive_his_cmd(QByteArray))},
            {"signal_gloablAutoRun", 0x50C3, SIGNAL(signal_gloablAutoRun(QByteArray))},
            {"signal_gloablAutoRunState", 0x50C6, SIGNAL(signal_gloablAutoRunState(QByteArray))},
            {"robot_FileName_Need_DownOrUp", 0x5508, SIGNAL(robot_FileName_Need_DownOrUp(QByteArray))},
            {"robot_job_Sum_list", 0x5533, SIGNAL(robot_job_Sum_list(QByteArray))},
            {"robot_job_File_list", 0x5534, SIGNAL(robot_job_File_list(QByteArray))},
            {"robot_job_File_Info_Finish", 0x5535, SIGNAL(robot_job_File_Info_Finish())},
            {"robot_ControlENI_list", 0x5546, SIGNAL(robot_ControlENI_list(QByteArray))},
            {"robot_ControlLog_list", 0x5543, SIGNAL(robot_ControlLog_list(QByteArray))},
            {"robot_Rec_ControlVersion", 0x3403, SIGNAL(robot_Rec_ControlVersion(QByteArray))},
            {"robot_ControlSys_Clock", 0x505C, SIGNAL(robot_ControlSys_Clock(QByteArray))},
            {"robot_ENI", 0x2E1C, SIGNAL(robot_ENI(QByteArray))},
            {"robot_programtitle_reflash", 0x2C03, SIGNAL(robot_programtitle_reflash(QByteArray))},
            {"receive_ControlComCycle", 0x2E09, SIGNAL(receive_ControlComCycle(QByteArray))},
            {"robot_change_ShotParameter", 0x4413, SIGNAL(robot_change_ShotParameter(QByteArray))},
            {"robot_change_CurrentState", 0x440F, SIGNAL(robot_change_CurrentState(QByteArray))},
            {"robot_receiveConntrollerInitState", 0x4306, SIGNAL(robot_receiveConntrollerInitState(QByteArray))},
            {"robot_receiveControlIp", 0x4303, SIGNAL(robot_receiveControlIp(QByteArray))},
            {"robot_receiveRemoteCtl", 0x7803, SIGNAL(robot_receiveRemoteCtl(QByteArray))},
            {"robot_receiveReservation", 0x2F1C, SIGNAL(robot_receiveReservation(QByteArray))},
            {"signal_CurTopPoint", 0x804D, SIGNAL(signal_CurTopPoint(QByteArray))},
            {"signal_feederStationSet", 0x802C, SIGNAL(signal_feederStationSet(QByteArray))},
            {"signal_ProcessParame", 0x801D, SIGNAL(signal_ProcessParame(QByteArray))},
            {"signal_ProcessNum", 0x801A, SIGNAL(signal_ProcessNum(QByteArray))},
            {"signal_CommunicationStatus", 0x8022, SIGNAL(signal_CommunicationStatus(QByteArray))},
            {"robot_arcset_data_check", 0x4009, SIGNAL(robot_arcset_data_check(QByteArray))},
            {"robot_waveweld_data_check", 0x400D, SIGNAL(robot_waveweld_data_check(QByteArray))},
            {"robot_weldIO_data_get", 0x4013, SIGNAL(robot_weldIO_data_get(QByteArray))},
            {"robot_waveweld_IUmatch", 0x400F, SIGNAL(robot_waveweld_IUmatch(QByteArray))},
            {"robot_match_data_check", 0x4006, SIGNAL(robot_match_data_check(QByteArray))},
            {"robot_receivedWelder", 0x401F, SIGNAL(robot_receivedWelder(QByteArray))},
            {"robot_receivedWelderState", 0x4023, SIGNAL(robot_receivedWelderState(QByteArray))},
            {"robot_receivedWeldRecord", 0x4027, SIGNAL(robot_receivedWeldRecord(QByteArray))},
            {"signal_weldParaNotes", 0x4025, SIGNAL(signal_weldParaNotes(QByteArray))},
            {"robot_receiveWeldAdjustment", 0x402A, SIGNAL(robot_receiveWeldAdjustment(QByteArray))},
            {"robot_receiveWeldMonitor", 0x4016, SIGNAL(robot_receiveWeldMonitor(QByteArray))},
            {"robot_get_weldIntersectionCal", 0x4054, SIGNAL(robot_get_weldIntersectionCal(QByteArray))},
            {"robot_get_weldIntersectionPoint", 0x4053, SIGNAL(robot_get_weldIntersectionPoint(QByteArray))},
            {"robot_get_weldIntersectionPara", 0x4057, SIGNAL(robot_get_weldIntersectionPara(QByteArray))},
            {"robot_weldEnableState", 0x401C, SIGNAL(robot_weldEnableState(QByteArray))},
            {"robot_receiveOuterWeldTorchParam", 0x4063, SIGNAL(robot_receiveOuterWeldTorchParam(QByteArray))},
            {"robot_receiveOuterWeldType", 0x4067, SIGNAL(robot_receiveOuterWeldType(QByteArray))},
            {"robot_tcp_para", 0x4182, SIGNAL(robot_tcp_para(QByteArray))},
            {"robot_laser_para", 0x4132, SIGNAL(robot_laser_para(QByteArray))},
            {"robot_track_para", 0x4138, SIGNAL(robot_track_para(QByteArray))},
            {"robot_search_para", 0x413B, SIGNAL(robot_search_para(QByteArray))},
            {"signal_sensorType", 0x4135, SIGNAL(signal_sensorType(QByteArray))},
            {"signal_trackSensorType", 0x4171, SIGNAL(signal_trackSensorType(QByteArray))},
            {"robot_laser_Calibate", 0x4141, SIGNAL(robot_laser_Calibate(QByteArray))},
            {"robot_laser_CalibateReCord", 0x4143, SIGNAL(robot_laser_CalibateReCord(QByteArray))},
            {"robot_laser_CalibateResult", 0x4146, SIGNAL(robot_laser_CalibateResult(QByteArray))},
            {"robot_arc_TrackCOMM", 0x4152, SIGNAL(robot_arc_TrackCOMM(QByteArray))},
            {"robot_arc_TrackCOMP", 0x4155, SIGNAL(robot_arc_TrackCOMP(QByteArray))},
            {"robot_arc_hTrackCOMP", 0x4158, SIGNAL(robot_arc_hTrackCOMP(QByteArray))},
            {"robot_arc_vol_TrackCOMP", 0x4166, SIGNAL(robot_arc_vol_TrackCOMP(QByteArray))},
            {"signal_arcSearchPara", 0x4162, SIGNAL(signal_arcSearchPara(QByteArray))},
            {"signal_calibrated", 0x414A, SIGNAL(signal_calibrated(QByteArray))},
            {"robot_TrackData", 0x7603, SIGNAL(robot_TrackData(QByteArray))},
            {"robot_TrackRange", 0x7609, SIGNAL(robot_TrackRange(QByteArray))},
            {"robot_trackConBasic_para", 0x4803, SIGNAL(robot_trackConBasic_para(QByteArray))},
            {"robot_TrackConUerPoint_para", 0x480F, SIGNAL(robot_TrackConUerPoint_para(QByteArray))},
            {"robot_trackConTool_para", 0x4806, SIGNAL(robot_trackConTool_para(QByteArray))},
            {"robot_trackConCalibration_para", 0x4813, SIGNAL(robot_trackConCalibration_para(QByteArray))},
            {"robot_trackConCaliSensorPoint_para", 0x4819, SIGNAL(robot_trackConCaliSensorPoint_para(QByteArray))},
            {"robot_trackConCaliSensorPos_para", 0x481D, SIGNAL(robot_trackConCaliSensorPos_para(QByteArray))},
            {"robot_trackConSensorPos_para", 0x4817, SIGNAL(robot_trackConSensorPos_para(QByteArray))},
            {"robot_trackConPosr_para", 0x4832, SIGNAL(robot_trackConPosr_para(QByteArray))},
            {"robot_calibrationPos_para", 0x4834, SIGNAL(robot_calibrationPos_para(QByteArray))},
            {"robot_trackSpeed_para", 0x4808, SIGNAL(robot_trackSpeed_para(QByteArray))},
            {"robot_CalibarteRespond", 0x483E, SIGNAL(robot_CalibarteRespond(QByteArray))},
            {"robot_WaitPoint", 0x483C, SIGNAL(robot_WaitPoint(QByteArray))},
            {"robot_vision_para", 0x4103, SIGNAL(robot_vision_para(QByteArray))},
            {"robot_vision_ip", 0x4115, SIGNAL(robot_vision_ip(QByteArray))},
            {"robot_visionpos_para", 0x4106, SIGNAL(robot_visionpos_para(QByteArray))},
            {"robot_visionposgesture_para", 0x4111, SIGNAL(robot_visionposgesture_para(QByteArray))},
            {"robot_visionpostrytakephoto_para", 0x4113, SIGNAL(robot_visionpostrytakephoto_para(QByteArray))},
            {"robot_receiveVisionDebugPosList", 0x4108, SIGNAL(robot_receiveVisionDebugPosList(QByteArray))},
            {"robot_pallet_LocATPara", 0x4243, SIGNAL(robot_pallet_LocATPara(QByteArray))},
            {"robot_piece_LocAT", 0x4249, SIGNAL(robot_piece_LocAT(QByteArray))},
            {"robot_receivePalletData", 0x4233, SIGNAL(robot_receivePalletData(QByteArray))},
            {"signal_punch_state", 0x8014, SIGNAL(signal_punch_state(QByteArray))},
            {"signal_receivedMaterialState", 0x8002, SIGNAL(signal_receivedMaterialState(QByteArray))},
            {"signal_receivedControlMode", 0x8005, SIGNAL(signal_receivedControlMode(QByteArray))},
            {"signal_receivedPunchAmount", 0x8007, SIGNAL(signal_receivedPunchAmount(QByteArray))},
            {"signal_receivedPunchEnable", 0x800B, SIGNAL(signal_receivedPunchEnable(QByteArray))},
            {"signal_receivedFixtrueAct", 0x8010, SIGNAL(signal_receivedFixtrueAct(QByteArray))},
            {"signal_receivedPunchDelayTime", 0x803F, SIGNAL(signal_receivedPunchDelayTime(QByteArray))},
            {"signal_receivedPunchTrack", 0x8042, SIGNAL(signal_receivedPunchTrack(QByteArray))},
            {"signal_receivedPunchPoint", 0x8045, SIGNAL(signal_receivedPunchPoint(QByteArray))},
            {"signal_receivedRunStatus", 0x8052, SIGNAL(signal_receivedRunStatus(QByteArray))},
            {"signal_receivedPunchPopup", 0x8015, SIGNAL(signal_receivedPunchPopup(QByteArray))},
            {"singal_Punch_IOPort", 0x8030, SIGNAL(singal_Punch_IOPort(QByteArray))},
            {"singal_Punch_IOStatus", 0x8033, SIGNAL(singal_Punch_IOStatus(QByteArray))},
            {"singal_Punch_Interference", 0x8038, SIGNAL(singal_Punch_Interference(QByteArray))},
            {"singal_Punch_InterferenceSingle", 0x8035, SIGNAL(singal_Punch_InterferenceSingle(QByteArray))},
            {"singal_Punch_IOFixture", 0x803B, SIGNAL(singal_Punch_IOFixture(QByteArray))},
            {"singal_Punch_variable_cylinder_param", 0x8050, SIGNAL(singal_Punch_variable_cylinder_param(QByteArray))},
            {"robot_recLaserTechParam", 0x4406, SIGNAL(robot_recLaserTechParam(QByteArray))},
            {"robot_recCutTechParam", 0x440C, SIGNAL(robot_recCutTechParam(QByteArray))},
            {"robot_recLaserChangerIoSet", 0x4403, SIGNAL(robot_recLaserChangerIoSet(QByteArray))},
            {"robot_recLaserChangerAnalog", 0x4409, SIGNAL(robot_recLaserChangerAnalog(QByteArray))},
            {"robot_recLaserChangerAnalogSet", 0x4419, SIGNAL(robot_recLaserChangerAnalogSet(QByteArray))},
            {"robot_Polish_Para", 0x4603, SIGNAL(robot_Polish_Para(QByteArray))},
            {"robotReceivedScrewIO", 0x5736, SIGNAL(robotReceivedScrewIO(QByteArray))},
            {"robotReceivedScrewPara", 0x5733, SIGNAL(robotReceivedScrewPara(QByteArray))},
            {"robotReceivedScrewState", 0x5739, SIGNAL(robotReceivedScrewState(QByteArray))},
            {"robot_interfereIO_data", 0x3F09, SIGNAL(robot_interfereIO_data(QByteArray))},
            {"robot_receivedIODinAlarm", 0x2F43, SIGNAL(robot_receivedIODinAlarm(QByteArray))},
            {"robot_receivedIODoutAlarm", 0x2F46, SIGNAL(robot_receivedIODoutAlarm(QByteArray))},
            {"robot_receivedIODinPortName", 0x2F49, SIGNAL(robot_receivedIODinPortName(QByteArray))},
            {"robot_receivedIODoutPortName", 0x2F4C, SIGNAL(robot_receivedIODoutPortName(QByteArray))},
            {"robot_receivedIOAIPortName", 0x2F4F, SIGNAL(robot_receivedIOAIPortName(QByteArray))},
            {"robot_receivedIOAOPortName", 0x2F52, SIGNAL(robot_receivedIOAOPortName(QByteArray))},
            {"robot_receivedModbusProgram_reflash", 0x5703, SIGNAL(robot_receivedModbusProgram_reflash(QByteArray))},
            {"robot_receivedModbusSlaveParameter", 0x5713, SIGNAL(robot_receivedModbusSlaveParameter(QByteArray))},
            {"robot_receivedModbusMasterParameter", 0x5746, SIGNAL(robot_receivedModbusMasterParameter(QByteArray))},
            {"robot_receivedModbusCheckHeart", 0x5717, SIGNAL(robot_receivedModbusCheckHeart(QByteArray))},
            {"robot_receivedUploadEnable", 0x5723, SIGNAL(robot_receivedUploadEnable(QByteArray))},
            {"robot_receivedUploadPara", 0x5726, SIGNAL(robot_receivedUploadPara(QByteArray))},
            {"robot_receivedDAformat", 0x5729, SIGNAL(robot_receivedDAformat(QByteArray))},
            {"robot_receiveCanOpenPara", 0x8106, SIGNAL(robot_receiveCanOpenPara(QByteArray))},
            {"robot_Decare_Param", 0x3B06, SIGNAL(robot_Decare_Param(QByteArray))},
            {"robot_EncoderPara", 0x3B09, SIGNAL(robot_EncoderPara(QByteArray))},
            {"robot_dynaPara", 0x7403, SIGNAL(robot_dynaPara(QByteArray))},
            {"robot_dynaIdentify", 0x7405, SIGNAL(robot_dynaIdentify(QByteArray))},
            {"robot_collision", 0x7408, SIGNAL(robot_collision(QByteArray))},
            {"robot_torqFeedback", 0x740E, SIGNAL(robot_torqFeedback(QByteArray))},
            {"robot_collisionPara", 0x740B, SIGNAL(robot_collisionPara(QByteArray))},
            {"robot_DragPara", 0x7506, SIGNAL(robot_DragPara(QByteArray))},
            {"robot_SafeCheck", 0x7605, SIGNAL(robot_SafeCheck(QByteArray))},
            {"robot_IdentificationData", 0x7607, SIGNAL(robot_IdentificationData(QByteArray))},
            {"robot_Finish", 0x7608, SIGNAL(robot_Finish(QByteArray))},
            {"robot_ErrorStop", 0x760A, SIGNAL(robot_ErrorStop(QByteArray))},
            {"robot_threeMouse_para", 0x7303, SIGNAL(robot_threeMouse_para(QByteArray))},
            {"robot_3DMouse_Point", 0x7306, SIGNAL(robot_3DMouse_Point(QByteArray))},
            {"robot_3DMouse_Mark", 0x7309, SIGNAL(robot_3DMouse_Mark(QByteArray))},
            {"robot_receiveCollisionDetectDragTeach", 0x3205, SIGNAL(robot_receiveCollisionDetectDragTeach(QByteArray))},
            {"robot_receiveClearCollision", 0x3207, SIGNAL(robot_receiveClearCollision(QByteArray))},
            {"robot_receiveBrakeAvoidCrushed", 0x7703, SIGNAL(robot_receiveBrakeAvoidCrushed(QByteArray))},
            {"robot_receiveBrakeAvoidCrushedDelay", 0x7706, SIGNAL(robot_receiveBrakeAvoidCrushedDelay(QByteArray))},
            {"robot_receiveBrakeAvoidCrushedParam", 0x7709, SIGNAL(robot_receiveBrakeAvoidCrushedParam(QByteArray))},
            {"robot_receiveBrakeAvoidCrushedRecordtorq", 0x770C, SIGNAL(robot_receiveBrakeAvoidCrushedRecordtorq(QByteArray))},
            {"robot_receiveAutoModifyAccPara", 0x8142, SIGNAL(robot_receiveAutoModifyAccPara(QByteArray))},
            {"robot_receiveReceiveAutoModifyAccThresholdpara", 0x8149, SIGNAL(robot_receiveReceiveAutoModifyAccThresholdpara(QByteArray))},
            {"robot_receivePayloadPara", 0x8132, SIGNAL(robot_receivePayloadPara(QByteArray))},
            {"robotReceivedPosOver", 0x2A09, SIGNAL(robotReceivedPosOver(QByteArray))},
            {"robotReceivedTrackingError", 0x2A16, SIGNAL(robotReceivedTrackingError(QByteArray))},
            {"robotReceivedOverlordProtect", 0x2A19, SIGNAL(robotReceivedOverlordProtect(QByteArray))},
            {"signal_robot_syncJogSpeed_data", 0x7026, SIGNAL(signal_robot_syncJogSpeed_data(QByteArray))},
            {"signal_robot_syncEncodeOverflow_data", 0x7029, SIGNAL(signal_robot_syncEncodeOverflow_data(QByteArray))},
            {"robot_syncJoint_para", 0x7023, SIGNAL(robot_syncJoint_para(QByteArray))},
            {"robot_syncZeroPoint", 0x7033, SIGNAL(robot_syncZeroPoint(QByteArray))},
            {"robot_syncSingleCycle", 0x7037, SIGNAL(robot_syncSingleCycle(QByteArray))},
            {"robot_syncAxis_pos", 0x7003, SIGNAL(robot_syncAxis_pos(QByteArray))},
            {"robot_syncAxis_state", 0x7004, SIGNAL(robot_syncAxis_state(QByteArray))},
            {"robotSyncAxisCalResult", 0x7043, SIGNAL(robotSyncAxisCalResult(QByteArray))},
            {"robot_RobotSyncAxle", 0x2E19, SIGNAL(robot_RobotSyncAxle(QByteArray))},
            {"signal_syncCalibationState", 0x7006, SIGNAL(signal_syncCalibationState(QByteArray))},
            {"signal_doubleRobotPosition", 0x2F11, SIGNAL(signal_doubleRobotPosition(QByteArray))},
            {"receive_moreRobot_ResetPosition", 0x2F06, SIGNAL(receive_moreRobot_ResetPosition(QByteArray))},
            {"robot_receiveTransCoordPos", 0x2A13, SIGNAL(robot_receiveTransCoordPos(QByteArray))},
            {"signal_updateRobotTypeSlave", 0x2E16, SIGNAL(signal_updateRobotTypeSlave(QByteArray))},
            {"robot_get_globalVariant", 0x5609, SIGNAL(robot_get_globalVariant(QByteArray))},
            {"robot_rec_allGlobalPosition", 0x5603, SIGNAL(robot_rec_allGlobalPosition(QByteArray))},
            {"robot_receiveLocalVariantPosP", 0x5613, SIGNAL(robot_receiveLocalVariantPosP(QByteArray))},
            {"robot_receiveLocalVariantPosE", 0x5616, SIGNAL(robot_receiveLocalVariantPosE(QByteArray))},
            {"robot_receiveLocalVariantValue", 0x5619, SIGNAL(robot_receiveLocalVariantValue(QByteArray))},
            {"signal_receiveBackupParam", 0x5066, SIGNAL(signal_receiveBackupParam(QByteArray))},
            {"signal_receiveBackupRestoreParam", 0x5068, SIGNAL(signal_receiveBackupRestoreParam(QByteArray))},
            {"receive_servo_Param", 0x5073, SIGNAL(receive_servo_Param(QByteArray))},
            {"signal_receivedAllowCalibration", 0x710E, SIGNAL(signal_receivedAllowCalibration(QByteArray))},
        };
        for (const auto &r : relays)
            QTest::newRow(r.name) << r.code << QByteArray(r.signal) << kJsonPayload;
        // Some with bytes that are no JSON.
        addPayloads("welder", 0x401F, SIGNAL(robot_receivedWelder(QByteArray)));
        addPayloads("punch state", 0x8014, SIGNAL(signal_punch_state(QByteArray)));
        addPayloads("vision parameters", 0x4103, SIGNAL(robot_vision_para(QByteArray)));
        QTest::newRow("empty payload") << quint16(0x5533) << QByteArray(SIGNAL(robot_job_Sum_list(QByteArray)))
                                       << QByteArray();
    }

    void relayed()
    {
        QFETCH(quint16, code);
        QFETCH(QByteArray, signal);
        QFETCH(QByteArray, payload);

        ThreadSpy spy(robot, signal.constData());
        QVERIFY2(spy.isValid(), signal.constData());
        QVERIFY(fixture.sendWithoutWake(code, payload, true));
        QCOMPARE(spy.count(), 1);
        if (!spy.at(0).isEmpty())
            QCOMPARE(spy.at(0).value(0).toByteArray(), payload);
    }

    // The job file list ends with a notification that carries nothing.
    void fileListFinished()
    {
        ThreadSpy spy(robot, SIGNAL(robot_job_File_Info_Finish()));
        QVERIFY(spy.isValid());
        QVERIFY(fixture.sendWithoutWake(0x5535, QByteArray(), true));
        QCOMPARE(spy.count(), 1);
    }

    // Two notifications that the dispatcher never emits are relayed all the
    // same, for whoever emits them on the link.
    void silentNotificationsRelayed_data()
    {
        QTest::addColumn<QByteArray>("notification");
        QTest::addColumn<QByteArray>("signal");
        QTest::newRow("drag switch") << QByteArray("receivedDragSwitch")
                                     << QByteArray(SIGNAL(robot_DragSwitch(QByteArray)));
        QTest::newRow("payload number") << QByteArray("receivePayloadNumPara")
                                        << QByteArray(SIGNAL(robot_receivePayloadNumPara(QByteArray)));
    }

    void silentNotificationsRelayed()
    {
        QFETCH(QByteArray, notification);
        QFETCH(QByteArray, signal);
        ThreadSpy spy(robot, signal.constData());
        QVERIFY(spy.isValid());
        QVERIFY(QMetaObject::invokeMethod(robot->link(), notification.constData(), Qt::DirectConnection,
                                          Q_ARG(QByteArray, kJsonPayload)));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).value(0).toByteArray(), kJsonPayload);
    }

    void keyReadersWake_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("signal"); // empty: none
        QTest::addColumn<QVariant>("argument"); // first argument; invalid: the payload
        QTest::addColumn<QString>("line");       // empty: none

        QTest::newRow("weld equipment")
            << quint16(0x4003)
            << QByteArray("{\"arconConfirm\":2,\"arconDetect\":1,\"arcoffDetect\":3,\"breakRewire\":7,"
                          "\"delAspirated\":5,\"distance\":8.5,\"preAspirated\":4,\"restart\":1,\"time\":9,"
                          "\"velocity\":9.5,\"withdrawwire\":6}\n")
            << QByteArray(SIGNAL(robot_weldCheckData(QByteArray))) << QVariant()
            << QStringLiteral("接收焊接装备数据 arcDetect=1 arcConfirm=2 arcOffDetect=3 preAspirated=4 "
                              "delAspirated=5withdrawwire=6 breakRewire=7 distance=8.5 velocity=9.5");
        QTest::newRow("Modbus state") << quint16(0x5719) << QByteArray("{\"ModbusConnect\":1}\n")
                                      << QByteArray(SIGNAL(robot_Modbus_State(int))) << QVariant(1) << QString();
        QTest::newRow("Modbus and IO state")
            << quint16(0x5033) << QByteArray("{\"ExternIOConnect\":1,\"ModbusConnect\":0}\n")
            << QByteArray(SIGNAL(robot_Modbus_Io_State(int, int))) << QVariant(0) << QString();
        QTest::newRow("vision range") << quint16(0x3F06) << QByteArray("{\"maxX\":500.0,\"minX\":-500.0}\n")
                                      << QByteArray(SIGNAL(robot_visionRange_data_check(QByteArray))) << QVariant()
                                      << QString();
        QTest::newRow("ground rail") << quint16(0x700F) << QByteArray("{\"yConversionRatio\":1.25}\n")
                                     << QByteArray(SIGNAL(signal_robotSyncGroundRail(QByteArray))) << QVariant()
                                     << QString();
        QTest::newRow("cooperative robot") << quint16(0x7017) << QByteArray("{\"cooperativeRobot\":2}\n")
                                           << QByteArray(SIGNAL(robot_recvCOOPERATIVE(int))) << QVariant(2)
                                           << QString();
        QTest::newRow("global position")
            << quint16(0x5606) << QByteArray("{\"posName\":\"GP001\",\"posValue\":[1,2,3],\"robot\":1}\n")
            << QByteArray(SIGNAL(robot_rec_globalPosition(QByteArray))) << QVariant() << QString();
        QTest::newRow("robot list")
            << quint16(0x3E03) << QByteArray("{\"listnum\":3,\"nameList\":[\"自定义\",\"R6-1400\",\"R4-600\"]}\n")
            << QByteArray(SIGNAL(receivePresentRobotList(QStringList)))
            << QVariant(QStringList{QStringLiteral("R6-1400"), QStringLiteral("R4-600"), QStringLiteral("自定义")})
            << QString();
        QTest::newRow("robot list, listnum limits")
            << quint16(0x3E03) << QByteArray("{\"listnum\":1,\"nameList\":[\"R6-1400\",\"R4-600\"]}\n")
            << QByteArray(SIGNAL(receivePresentRobotList(QStringList)))
            << QVariant(QStringList{QStringLiteral("R6-1400")}) << QString();
        QTest::newRow("servo list") << quint16(0x2E0F) << QByteArray("{\"IONum\":1,\"servoNum\":2}\n")
                                    << QByteArray(SIGNAL(signal_updateRobotServoList())) << QVariant()
                                    << QString();
        QTest::newRow("unsafe robots")
            << quint16(0x2F16) << QByteArray("{\"isSync\":[0,1],\"robot\":2,\"safePos\":[0,0]}\n") << QByteArray()
            << QVariant()
            << QStringLiteral("机器人1 不在安全位置 ,  外部轴不在安全位置 ; 机器人2 不在安全位置  )!");
        QTest::newRow("unsafe external axes of one robot")
            << quint16(0x2F16) << QByteArray("{\"isSync\":0,\"robot\":3,\"safePos\":1}\n") << QByteArray()
            << QVariant() << QStringLiteral("机器人3 外部轴不在安全位置  )!");
    }

    void keyReadersWake()
    {
        QFETCH(quint16, code);
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, signal);
        QFETCH(QVariant, argument);
        QFETCH(QString, line);

        LogCapture log;
        std::unique_ptr<ThreadSpy> spy;
        if (!signal.isEmpty()) {
            spy.reset(new ThreadSpy(robot, signal.constData()));
            QVERIFY(spy->isValid());
        }
        QVERIFY(fixture.sendWaking(code, payload, true));
        QVERIFY(fixture.flush());

        if (spy) {
            QCOMPARE(spy->count(), 1);
            const QList<QVariant> args = spy->at(0);
            if (argument.isValid())
                QCOMPARE(args.value(0), argument);
            else if (!args.isEmpty())
                QCOMPARE(args.value(0).toByteArray(), payload);
        }
        if (!line.isEmpty())
            QCOMPARE(log.count(line), 1);
        // Caches are read as the library reads them: under the cache lock.
        std::lock_guard<std::recursive_mutex> cacheLock(robot->cacheMutex);
        if (code == 0x5606)
            QCOMPARE(QVector<double>(robot->globalPosition, robot->globalPosition + 4),
                     (QVector<double>{1, 2, 3, 0}));
        if (code == 0x2E0F)
            QCOMPARE(robot->servoSlaveLabels,
                     (QStringList{QStringLiteral("伺服-1"), QStringLiteral("伺服-2"), QStringLiteral("IO-1")}));
    }

    // All robots in place: nothing to say.
    void safeRobotsSilent()
    {
        LogCapture log;
        fixture.send(0x2F16, "{\"isSync\":[1,1],\"robot\":2,\"safePos\":[1,1]}");
        QVERIFY(fixture.flush());
        QVERIFY(log.lines().filter(QStringLiteral("安全位置")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_Relays)
#include "tst_relays.moc"
