// The report table: what the state model makes of each code the controller
// sends (ReportTable.h says what the columns mean). Sorted by code, one row
// per code; a code without a row reaches no listener of the Robot (a code
// the catalogue does not know at all goes out as robot_received_data).
//
// Rows with a decoder: the status, record and message families
// (StatusDecoders.cpp, RecordDecoders.cpp, MessageDecoders.cpp). Rows with
// only a notifier: relays, whose signal carries the payload as received and
// wakes nobody. Rows with a handler: the families still on their handler
// slots (robot type and kinematics, tools and frames, process messages).

#include "robot/ReportTable.h"

#include "common/Payload.h"
#include "robot/Decoders.h"
#include "robot/Robot.h"
#include "robot/RobotState.h"

#include <algorithm>
#include <iterator>

namespace qrx {
namespace {

namespace D = decoders;
using S = RobotSignals;
constexpr bool Wakes = true;
constexpr bool NoWake = false;

// A Robot signal that carries the payload as received.
template <void (RobotSignals::*Signal)(QByteArray)>
void relay(RobotSignals &to, const Change &, const QByteArray &payload)
{
    emit(to.*Signal)(payload);
}

constexpr ReportRow kRows[] = {
    {0x2003, D::servo, D::notifyServo, nullptr, Wakes},
    {0x2103, D::mode, D::notifyMode, nullptr, Wakes},
    {0x2106, D::teachType, D::notifyTeachType, nullptr, Wakes},
    {0x2203, D::coordinate, D::notifyCoordinate, nullptr, Wakes},
    {0x2303, D::deadman, D::notifyDeadman, nullptr, Wakes},
    {0x2306, D::deadmanWiring, D::notifyDeadmanWiring, nullptr, Wakes},
    {0x2603, D::speed, D::notifySpeed, nullptr, Wakes},
    {0x2606, nullptr, nullptr, &Robot::robot_net_slot_JointInchSpeed, Wakes},
    {0x2609, nullptr, nullptr, &Robot::robot_net_slot_RectInchSpeed, Wakes},
    {0x260C, nullptr, nullptr, &Robot::robot_net_slot_Sensitivity, Wakes},
    {0x2803, nullptr, nullptr, &Robot::robot_net_slot_InterpolationMode, Wakes},
    {0x2A03, nullptr, D::notifyPositionRelay, nullptr, NoWake},
    {0x2A05, D::motorSpeed, relay<&S::robot_tool_receiveMotorSpeed>, nullptr, Wakes},
    {0x2A07, D::motorTorque, D::notifyMotorTorque, nullptr, Wakes},
    {0x2A09, nullptr, relay<&S::robotReceivedPosOver>, nullptr, NoWake},
    {0x2A0B, D::motorLoad, relay<&S::signal_robotReceivedMotorLoad>, nullptr, Wakes},
    {0x2A13, nullptr, relay<&S::robot_receiveTransCoordPos>, nullptr, NoWake},
    {0x2A16, nullptr, relay<&S::robotReceivedTrackingError>, nullptr, NoWake},
    {0x2A19, nullptr, relay<&S::robotReceivedOverlordProtect>, nullptr, NoWake},
    {0x2B03, D::error, D::notifyError, nullptr, NoWake},
    {0x2B04, D::warning, nullptr, nullptr, NoWake},
    {0x2B05, D::information, nullptr, nullptr, NoWake},
    {0x2C03, nullptr, relay<&S::robot_programtitle_reflash>, nullptr, NoWake},
    {0x2E03, nullptr, nullptr, &Robot::robot_net_slot_RobotType, Wakes},
    {0x2E06, D::robotCount, D::notifyRobotCount, nullptr, Wakes},
    {0x2E09, nullptr, relay<&S::receive_ControlComCycle>, nullptr, NoWake},
    {0x2E0F, nullptr, nullptr, &Robot::robot_net_slot_ServoList, Wakes},
    {0x2E16, nullptr, relay<&S::signal_updateRobotTypeSlave>, nullptr, NoWake},
    {0x2E19, nullptr, relay<&S::robot_RobotSyncAxle>, nullptr, NoWake},
    {0x2E1C, nullptr, relay<&S::robot_ENI>, nullptr, NoWake},
    {0x2F06, nullptr, relay<&S::receive_moreRobot_ResetPosition>, nullptr, NoWake},
    {0x2F08, D::position, D::notifyPosition, nullptr, Wakes},
    {0x2F11, nullptr, relay<&S::signal_doubleRobotPosition>, nullptr, NoWake},
    {0x2F16, nullptr, nullptr, &Robot::robot_net_slot_UnsafePoint, Wakes},
    {0x2F1C, nullptr, relay<&S::robot_receiveReservation>, nullptr, NoWake},
    {0x2F43, nullptr, relay<&S::robot_receivedIODinAlarm>, nullptr, NoWake},
    {0x2F46, nullptr, relay<&S::robot_receivedIODoutAlarm>, nullptr, NoWake},
    {0x2F49, nullptr, relay<&S::robot_receivedIODinPortName>, nullptr, NoWake},
    {0x2F4C, nullptr, relay<&S::robot_receivedIODoutPortName>, nullptr, NoWake},
    {0x2F4F, nullptr, relay<&S::robot_receivedIOAIPortName>, nullptr, NoWake},
    {0x2F52, nullptr, relay<&S::robot_receivedIOAOPortName>, nullptr, NoWake},
    {0x3119, nullptr, relay<&S::signal_mainJob>, nullptr, NoWake},
    {0x3202, nullptr, relay<&S::robot_servoerrordelete>, nullptr, NoWake},
    {0x3205, nullptr, relay<&S::robot_receiveCollisionDetectDragTeach>, nullptr, NoWake},
    {0x3207, nullptr, relay<&S::robot_receiveClearCollision>, nullptr, NoWake},
    {0x3303, nullptr, nullptr, &Robot::robot_net_slot_ZeroSuccess, Wakes},
    {0x330A, D::singleCycle, relay<&S::robot_singlevalue>, nullptr, Wakes},
    {0x3403, nullptr, relay<&S::robot_Rec_ControlVersion>, nullptr, NoWake},
    {0x3501, D::stepEnd, D::notifyStepEnd, nullptr, Wakes},
    {0x3502, D::bwbCommand, D::notifyBwbCommand, nullptr, Wakes},
    {0x3504, D::jobLine, relay<&S::robot_JobfiletoLine>, nullptr, Wakes},
    {0x3603, D::dout, relay<&S::robot_dout_display>, nullptr, Wakes},
    {0x3606, D::din, relay<&S::robot_din_display>, nullptr, Wakes},
    {0x3609, D::aout, relay<&S::robot_aout_display>, nullptr, Wakes},
    {0x360B, D::ain, relay<&S::robot_ain_display>, nullptr, Wakes},
    {0x3803, nullptr, nullptr, &Robot::robot_net_slot_ToolCheck, Wakes},
    {0x3804, nullptr, nullptr, &Robot::robot_net_slot_CountSuccess, Wakes},
    {0x3807, nullptr, nullptr, &Robot::robot_net_slot_ToolParameter, Wakes},
    {0x380C, D::tool, D::notifyTool, nullptr, Wakes},
    {0x3813, nullptr, nullptr, &Robot::robot_net_slot_7MarkedPoint, Wakes},
    {0x3816, nullptr, nullptr, &Robot::robot_net_slot_ToolStatus, Wakes},
    {0x3A03, nullptr, nullptr, &Robot::robot_net_slot_dhParaState, Wakes},
    {0x3B03, nullptr, nullptr, &Robot::robot_net_slot_JointPara, Wakes},
    {0x3B06, nullptr, relay<&S::robot_Decare_Param>, nullptr, NoWake},
    {0x3B09, nullptr, relay<&S::robot_EncoderPara>, nullptr, NoWake},
    {0x3C09, nullptr, nullptr, &Robot::robot_net_slot_UserCoordsReply, Wakes},
    {0x3C0C, nullptr, nullptr, &Robot::robot_net_slot_CurrentUserCoords, Wakes},
    {0x3C0F, nullptr, nullptr, &Robot::robot_net_slot_UserCoordsNote, Wakes},
    {0x3D03, D::runningState, D::notifyRunningState, nullptr, Wakes},
    {0x3E03, nullptr, nullptr, &Robot::robot_net_slot_PresentRobot, Wakes},
    {0x3E05, nullptr, nullptr, &Robot::robot_net_slot_DHParaValue, Wakes},
    {0x3F06, nullptr, nullptr, &Robot::robot_net_slot_VisionRange, Wakes},
    {0x3F09, nullptr, relay<&S::robot_interfereIO_data>, nullptr, NoWake},
    {0x4003, nullptr, nullptr, &Robot::robot_net_slot_WeldEquipmentData, Wakes},
    {0x4006, nullptr, relay<&S::robot_match_data_check>, nullptr, NoWake},
    {0x4009, nullptr, relay<&S::robot_arcset_data_check>, nullptr, NoWake},
    {0x400D, nullptr, relay<&S::robot_waveweld_data_check>, nullptr, NoWake},
    {0x400F, nullptr, relay<&S::robot_waveweld_IUmatch>, nullptr, NoWake},
    {0x4013, nullptr, relay<&S::robot_weldIO_data_get>, nullptr, NoWake},
    {0x4016, nullptr, relay<&S::robot_receiveWeldMonitor>, nullptr, NoWake},
    {0x401C, nullptr, relay<&S::robot_weldEnableState>, nullptr, NoWake},
    {0x401F, nullptr, relay<&S::robot_receivedWelder>, nullptr, NoWake},
    {0x4023, nullptr, relay<&S::robot_receivedWelderState>, nullptr, NoWake},
    {0x4025, nullptr, relay<&S::signal_weldParaNotes>, nullptr, NoWake},
    {0x4027, nullptr, relay<&S::robot_receivedWeldRecord>, nullptr, NoWake},
    {0x402A, nullptr, relay<&S::robot_receiveWeldAdjustment>, nullptr, NoWake},
    {0x4053, nullptr, relay<&S::robot_get_weldIntersectionPoint>, nullptr, NoWake},
    {0x4054, nullptr, relay<&S::robot_get_weldIntersectionCal>, nullptr, NoWake},
    {0x4057, nullptr, relay<&S::robot_get_weldIntersectionPara>, nullptr, NoWake},
    {0x4063, nullptr, relay<&S::robot_receiveOuterWeldTorchParam>, nullptr, NoWake},
    {0x4067, nullptr, relay<&S::robot_receiveOuterWeldType>, nullptr, NoWake},
    {0x4103, nullptr, relay<&S::robot_vision_para>, nullptr, NoWake},
    {0x4106, nullptr, relay<&S::robot_visionpos_para>, nullptr, NoWake},
    {0x4108, nullptr, relay<&S::robot_receiveVisionDebugPosList>, nullptr, NoWake},
    {0x4111, nullptr, relay<&S::robot_visionposgesture_para>, nullptr, NoWake},
    {0x4113, nullptr, relay<&S::robot_visionpostrytakephoto_para>, nullptr, NoWake},
    {0x4115, nullptr, relay<&S::robot_vision_ip>, nullptr, NoWake},
    {0x4132, nullptr, relay<&S::robot_laser_para>, nullptr, NoWake},
    {0x4135, nullptr, relay<&S::signal_sensorType>, nullptr, NoWake},
    {0x4138, nullptr, relay<&S::robot_track_para>, nullptr, NoWake},
    {0x413B, nullptr, relay<&S::robot_search_para>, nullptr, NoWake},
    {0x4141, nullptr, relay<&S::robot_laser_Calibate>, nullptr, NoWake},
    {0x4143, nullptr, relay<&S::robot_laser_CalibateReCord>, nullptr, NoWake},
    {0x4146, nullptr, relay<&S::robot_laser_CalibateResult>, nullptr, NoWake},
    {0x414A, nullptr, relay<&S::signal_calibrated>, nullptr, NoWake},
    {0x4152, nullptr, relay<&S::robot_arc_TrackCOMM>, nullptr, NoWake},
    {0x4155, nullptr, relay<&S::robot_arc_TrackCOMP>, nullptr, NoWake},
    {0x4158, nullptr, relay<&S::robot_arc_hTrackCOMP>, nullptr, NoWake},
    {0x4162, nullptr, relay<&S::signal_arcSearchPara>, nullptr, NoWake},
    {0x4166, nullptr, relay<&S::robot_arc_vol_TrackCOMP>, nullptr, NoWake},
    {0x4171, nullptr, relay<&S::signal_trackSensorType>, nullptr, NoWake},
    {0x4182, nullptr, relay<&S::robot_tcp_para>, nullptr, NoWake},
    {0x4233, nullptr, relay<&S::robot_receivePalletData>, nullptr, NoWake},
    {0x4243, nullptr, relay<&S::robot_pallet_LocATPara>, nullptr, NoWake},
    {0x4249, nullptr, relay<&S::robot_piece_LocAT>, nullptr, NoWake},
    {0x4303, nullptr, relay<&S::robot_receiveControlIp>, nullptr, NoWake},
    {0x4306, nullptr, relay<&S::robot_receiveConntrollerInitState>, nullptr, NoWake},
    {0x4403, nullptr, relay<&S::robot_recLaserChangerIoSet>, nullptr, NoWake},
    {0x4406, nullptr, relay<&S::robot_recLaserTechParam>, nullptr, NoWake},
    {0x4409, nullptr, relay<&S::robot_recLaserChangerAnalog>, nullptr, NoWake},
    {0x440C, nullptr, relay<&S::robot_recCutTechParam>, nullptr, NoWake},
    {0x440F, nullptr, relay<&S::robot_change_CurrentState>, nullptr, NoWake},
    {0x4413, nullptr, relay<&S::robot_change_ShotParameter>, nullptr, NoWake},
    {0x4419, nullptr, relay<&S::robot_recLaserChangerAnalogSet>, nullptr, NoWake},
    {0x4603, nullptr, relay<&S::robot_Polish_Para>, nullptr, NoWake},
    {0x4803, nullptr, relay<&S::robot_trackConBasic_para>, nullptr, NoWake},
    {0x4806, nullptr, relay<&S::robot_trackConTool_para>, nullptr, NoWake},
    {0x4808, nullptr, relay<&S::robot_trackSpeed_para>, nullptr, NoWake},
    {0x480F, nullptr, relay<&S::robot_TrackConUerPoint_para>, nullptr, NoWake},
    {0x4813, nullptr, relay<&S::robot_trackConCalibration_para>, nullptr, NoWake},
    {0x4817, nullptr, relay<&S::robot_trackConSensorPos_para>, nullptr, NoWake},
    {0x4819, nullptr, relay<&S::robot_trackConCaliSensorPoint_para>, nullptr, NoWake},
    {0x481D, nullptr, relay<&S::robot_trackConCaliSensorPos_para>, nullptr, NoWake},
    {0x4832, nullptr, relay<&S::robot_trackConPosr_para>, nullptr, NoWake},
    {0x4834, nullptr, relay<&S::robot_calibrationPos_para>, nullptr, NoWake},
    {0x483C, nullptr, relay<&S::robot_WaitPoint>, nullptr, NoWake},
    {0x483E, nullptr, relay<&S::robot_CalibarteRespond>, nullptr, NoWake},
    {0x4919, D::runningAndJobStatus, D::notifyRunningAndJobStatus, nullptr, Wakes},
    {0x5003, D::currentRobot, D::notifyCurrentRobot, nullptr, Wakes},
    {0x5013, D::cycleIndex, D::notifyCycleIndex, nullptr, Wakes},
    {0x5023, nullptr, relay<&S::robot_runningtime_update>, nullptr, NoWake},
    {0x5033, nullptr, nullptr, &Robot::robot_net_slot_ModbusIoState, Wakes},
    {0x505C, nullptr, relay<&S::robot_ControlSys_Clock>, nullptr, NoWake},
    {0x5066, nullptr, relay<&S::signal_receiveBackupParam>, nullptr, NoWake},
    {0x5068, nullptr, relay<&S::signal_receiveBackupRestoreParam>, nullptr, NoWake},
    {0x5073, nullptr, relay<&S::receive_servo_Param>, nullptr, NoWake},
    {0x5093, nullptr, relay<&S::receive_his_cmd>, nullptr, NoWake},
    {0x50A3, nullptr, relay<&S::robot_runModeAutoMan>, nullptr, NoWake},
    {0x50B3, D::continuousMode, nullptr, nullptr, Wakes},
    {0x50C3, nullptr, relay<&S::signal_gloablAutoRun>, nullptr, NoWake},
    {0x50C6, nullptr, relay<&S::signal_gloablAutoRunState>, nullptr, NoWake},
    {0x5508, nullptr, relay<&S::robot_FileName_Need_DownOrUp>, nullptr, NoWake},
    {0x5533, nullptr, relay<&S::robot_job_Sum_list>, nullptr, NoWake},
    {0x5534, nullptr, relay<&S::robot_job_File_list>, nullptr, NoWake},
    {0x5535, nullptr, D::notifyJobFileInfoFinish, nullptr, NoWake},
    {0x5543, nullptr, relay<&S::robot_ControlLog_list>, nullptr, NoWake},
    {0x5546, nullptr, relay<&S::robot_ControlENI_list>, nullptr, NoWake},
    {0x5603, nullptr, relay<&S::robot_rec_allGlobalPosition>, nullptr, NoWake},
    {0x5606, nullptr, nullptr, &Robot::robot_net_slot_GlobalPosition, Wakes},
    {0x5609, nullptr, relay<&S::robot_get_globalVariant>, nullptr, NoWake},
    {0x560C, D::globalVariable, relay<&S::robot_get_oneglobalVariant>, nullptr, Wakes},
    {0x5613, nullptr, relay<&S::robot_receiveLocalVariantPosP>, nullptr, NoWake},
    {0x5616, nullptr, relay<&S::robot_receiveLocalVariantPosE>, nullptr, NoWake},
    {0x5619, nullptr, relay<&S::robot_receiveLocalVariantValue>, nullptr, NoWake},
    {0x5703, nullptr, relay<&S::robot_receivedModbusProgram_reflash>, nullptr, NoWake},
    {0x5713, nullptr, relay<&S::robot_receivedModbusSlaveParameter>, nullptr, NoWake},
    {0x5717, nullptr, relay<&S::robot_receivedModbusCheckHeart>, nullptr, NoWake},
    {0x5719, nullptr, nullptr, &Robot::robot_net_slot_ModbusState, Wakes},
    {0x5723, nullptr, relay<&S::robot_receivedUploadEnable>, nullptr, NoWake},
    {0x5726, nullptr, relay<&S::robot_receivedUploadPara>, nullptr, NoWake},
    {0x5729, nullptr, relay<&S::robot_receivedDAformat>, nullptr, NoWake},
    {0x5733, nullptr, relay<&S::robotReceivedScrewPara>, nullptr, NoWake},
    {0x5736, nullptr, relay<&S::robotReceivedScrewIO>, nullptr, NoWake},
    {0x5739, nullptr, relay<&S::robotReceivedScrewState>, nullptr, NoWake},
    {0x5746, nullptr, relay<&S::robot_receivedModbusMasterParameter>, nullptr, NoWake},
    {0x7003, nullptr, relay<&S::robot_syncAxis_pos>, nullptr, NoWake},
    {0x7004, nullptr, relay<&S::robot_syncAxis_state>, nullptr, NoWake},
    {0x7006, nullptr, relay<&S::signal_syncCalibationState>, nullptr, NoWake},
    {0x700B, nullptr, relay<&S::signal_syncPositionerNum>, &Robot::robot_net_slot_OutterAxisCount, Wakes},
    {0x700F, nullptr, nullptr, &Robot::robot_net_slot_SyncGroundRail, Wakes},
    {0x7013, D::syncPosition, nullptr, nullptr, Wakes},
    {0x7017, nullptr, nullptr, &Robot::robot_net_slot_COOPERATIVE, Wakes},
    {0x7023, nullptr, relay<&S::robot_syncJoint_para>, nullptr, NoWake},
    {0x7026, nullptr, relay<&S::signal_robot_syncJogSpeed_data>, nullptr, NoWake},
    {0x7029, nullptr, relay<&S::signal_robot_syncEncodeOverflow_data>, nullptr, NoWake},
    {0x7033, nullptr, relay<&S::robot_syncZeroPoint>, nullptr, NoWake},
    {0x7037, nullptr, relay<&S::robot_syncSingleCycle>, nullptr, NoWake},
    {0x7043, nullptr, relay<&S::robotSyncAxisCalResult>, nullptr, NoWake},
    {0x7103, nullptr, nullptr, &Robot::robot_net_slot_ToolCheckFor20, Wakes},
    {0x7104, nullptr, nullptr, &Robot::robot_net_slot_CountSuccessFor20, Wakes},
    {0x7106, nullptr, nullptr, &Robot::robot_net_slot_ResetResultToZeroPoint, Wakes},
    {0x7108, nullptr, nullptr, &Robot::robot_net_slot_ToolStatus, Wakes},
    {0x710B, nullptr, nullptr, &Robot::robot_net_slot_20MarkedPoint, Wakes},
    {0x710E, nullptr, relay<&S::signal_receivedAllowCalibration>, nullptr, NoWake},
    {0x7204, nullptr, nullptr, &Robot::robot_net_slot_CountSuccessFor4, Wakes},
    {0x7206, nullptr, nullptr, &Robot::robot_net_slot_resultForDH, Wakes},
    {0x7208, nullptr, nullptr, &Robot::robot_net_slot_4Point, Wakes},
    {0x7303, nullptr, relay<&S::robot_threeMouse_para>, nullptr, NoWake},
    {0x7306, nullptr, relay<&S::robot_3DMouse_Point>, nullptr, NoWake},
    {0x7309, nullptr, relay<&S::robot_3DMouse_Mark>, nullptr, NoWake},
    {0x7403, nullptr, relay<&S::robot_dynaPara>, nullptr, NoWake},
    {0x7405, nullptr, relay<&S::robot_dynaIdentify>, nullptr, NoWake},
    {0x7408, nullptr, relay<&S::robot_collision>, nullptr, NoWake},
    {0x740B, nullptr, relay<&S::robot_collisionPara>, nullptr, NoWake},
    {0x740E, nullptr, relay<&S::robot_torqFeedback>, nullptr, NoWake},
    {0x7506, nullptr, relay<&S::robot_DragPara>, nullptr, NoWake},
    {0x7603, nullptr, relay<&S::robot_TrackData>, nullptr, NoWake},
    {0x7605, nullptr, relay<&S::robot_SafeCheck>, nullptr, NoWake},
    {0x7607, nullptr, relay<&S::robot_IdentificationData>, nullptr, NoWake},
    {0x7608, nullptr, relay<&S::robot_Finish>, nullptr, NoWake},
    {0x7609, nullptr, relay<&S::robot_TrackRange>, nullptr, NoWake},
    {0x760A, nullptr, relay<&S::robot_ErrorStop>, nullptr, NoWake},
    {0x7703, nullptr, relay<&S::robot_receiveBrakeAvoidCrushed>, nullptr, NoWake},
    {0x7706, nullptr, relay<&S::robot_receiveBrakeAvoidCrushedDelay>, nullptr, NoWake},
    {0x7709, nullptr, relay<&S::robot_receiveBrakeAvoidCrushedParam>, nullptr, NoWake},
    {0x770C, nullptr, relay<&S::robot_receiveBrakeAvoidCrushedRecordtorq>, nullptr, NoWake},
    {0x7803, nullptr, relay<&S::robot_receiveRemoteCtl>, nullptr, NoWake},
    {0x8002, nullptr, relay<&S::signal_receivedMaterialState>, nullptr, NoWake},
    {0x8005, nullptr, relay<&S::signal_receivedControlMode>, nullptr, NoWake},
    {0x8007, nullptr, relay<&S::signal_receivedPunchAmount>, nullptr, NoWake},
    {0x800B, nullptr, relay<&S::signal_receivedPunchEnable>, nullptr, NoWake},
    {0x8010, nullptr, relay<&S::signal_receivedFixtrueAct>, nullptr, NoWake},
    {0x8014, nullptr, relay<&S::signal_punch_state>, nullptr, NoWake},
    {0x8015, nullptr, relay<&S::signal_receivedPunchPopup>, nullptr, NoWake},
    {0x801A, nullptr, relay<&S::signal_ProcessNum>, nullptr, NoWake},
    {0x801D, nullptr, relay<&S::signal_ProcessParame>, nullptr, NoWake},
    {0x8022, nullptr, relay<&S::signal_CommunicationStatus>, nullptr, NoWake},
    {0x802C, nullptr, relay<&S::signal_feederStationSet>, nullptr, NoWake},
    {0x8030, nullptr, relay<&S::singal_Punch_IOPort>, nullptr, NoWake},
    {0x8033, nullptr, relay<&S::singal_Punch_IOStatus>, nullptr, NoWake},
    {0x8035, nullptr, relay<&S::singal_Punch_InterferenceSingle>, nullptr, NoWake},
    {0x8038, nullptr, relay<&S::singal_Punch_Interference>, nullptr, NoWake},
    {0x803B, nullptr, relay<&S::singal_Punch_IOFixture>, nullptr, NoWake},
    {0x803F, nullptr, relay<&S::signal_receivedPunchDelayTime>, nullptr, NoWake},
    {0x8042, nullptr, relay<&S::signal_receivedPunchTrack>, nullptr, NoWake},
    {0x8045, nullptr, relay<&S::signal_receivedPunchPoint>, nullptr, NoWake},
    {0x804D, nullptr, relay<&S::signal_CurTopPoint>, nullptr, NoWake},
    {0x8050, nullptr, relay<&S::singal_Punch_variable_cylinder_param>, nullptr, NoWake},
    {0x8052, nullptr, relay<&S::signal_receivedRunStatus>, nullptr, NoWake},
    {0x8106, nullptr, relay<&S::robot_receiveCanOpenPara>, nullptr, NoWake},
    {0x8132, nullptr, relay<&S::robot_receivePayloadPara>, nullptr, NoWake},
    {0x8142, nullptr, relay<&S::robot_receiveAutoModifyAccPara>, nullptr, NoWake},
    {0x8149, nullptr, relay<&S::robot_receiveReceiveAutoModifyAccThresholdpara>, nullptr, NoWake},
    {0x9103, D::runningAndJobStatus, D::notifyRunningAndJobStatus, nullptr, Wakes},
    {0x9106, nullptr, relay<&S::signal_curRunLine>, nullptr, NoWake},
};

constexpr bool ascending()
{
    for (std::size_t i = 1; i < std::size(kRows); ++i) {
        if (kRows[i - 1].code >= kRows[i].code)
            return false;
    }
    return true;
}
static_assert(ascending(), "report rows sorted by code, one row per code");

} // namespace

const ReportRow *findReportRow(quint16 code)
{
    const ReportRow *end = std::end(kRows);
    const ReportRow *row = std::lower_bound(std::begin(kRows), end, code,
                                            [](const ReportRow &r, quint16 c) { return r.code < c; });
    return (row != end && row->code == code) ? row : nullptr;
}

Change decodeReport(const ReportRow &row, const QByteArray &payload, RobotState &state)
{
    if (!row.decode)
        return {};
    Json::Value report;
    if (!parsePayload(payload, report))
        report = Json::Value();
    return row.decode(report, state);
}

bool notifyReport(const ReportRow &row, const Change &change, RobotSignals &to, const QByteArray &payload)
{
    if (row.notify && (change.taken || !row.decode))
        row.notify(to, change, payload);
    return row.wakes && change.wakes;
}

} // namespace qrx
