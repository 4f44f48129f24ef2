// The report table: what the state model makes of each code the controller
// sends (ReportTable.h says what the columns mean). Sorted by code, one row
// per code; a code without a row reaches no listener of the Robot (a code
// the catalogue does not know at all goes out as robot_received_data).
//
// Rows with a decoder: the families of Decoders.h. Rows with only a
// notifier: relays, whose signal carries the payload as received and wakes
// nobody. A row whose decoder is `parses` hands the payload on once it
// parses, and wakes the waiters.

#include "robot/ReportTable.h"

#include "common/Payload.h"
#include "robot/Decoders.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"

#include <algorithm>
#include <iterator>

namespace qrx {
namespace {

namespace D = decoders;
using S = RobotSignals;
constexpr bool Wakes = true;
constexpr bool NoWake = false;

// Taken when the payload parses (a JSON null literal aside): for reports
// whose reader takes the values from the payload itself.
Change parses(const Json::Value &report, RobotState &)
{
    Change change;
    change.taken = !report.isNull();
    return change;
}

// A Robot signal that carries the payload as received.
template <void (RobotSignals::*Signal)(QByteArray)>
void relay(RobotSignals &to, const Change &, const QByteArray &payload)
{
    emit(to.*Signal)(payload);
}

constexpr ReportRow kRows[] = {
    {0x2003, D::servo, D::notifyServo, Wakes},
    {0x2103, D::mode, D::notifyMode, Wakes},
    {0x2106, D::teachType, D::notifyTeachType, Wakes},
    {0x2203, D::coordinate, D::notifyCoordinate, Wakes},
    {0x2303, D::deadman, D::notifyDeadman, Wakes},
    {0x2306, D::deadmanWiring, D::notifyDeadmanWiring, Wakes},
    {0x2603, D::speed, D::notifySpeed, Wakes},
    {0x2606, D::jointJogLimits, D::notifyJointJogLimits, Wakes},
    {0x2609, parses, relay<&S::robot_rectInchSpeed_data_check>, Wakes},
    {0x260C, D::sensitivity, relay<&S::robot_sensitivity_data_check>, Wakes},
    {0x2803, D::interpolation, relay<&S::robot_interpolationMode_data_check>, Wakes},
    {0x2A03, nullptr, D::notifyPositionRelay, NoWake},
    {0x2A05, D::motorSpeed, relay<&S::robot_tool_receiveMotorSpeed>, Wakes},
    {0x2A07, D::motorTorque, D::notifyMotorTorque, Wakes},
    {0x2A09, nullptr, relay<&S::robotReceivedPosOver>, NoWake},
    {0x2A0B, D::motorLoad, relay<&S::signal_robotReceivedMotorLoad>, Wakes},
    {0x2A13, nullptr, relay<&S::robot_receiveTransCoordPos>, NoWake},
    {0x2A16, nullptr, relay<&S::robotReceivedTrackingError>, NoWake},
    {0x2A19, nullptr, relay<&S::robotReceivedOverlordProtect>, NoWake},
    {0x2B03, D::error, D::notifyError, NoWake},
    {0x2B04, D::warning, nullptr, NoWake},
    {0x2B05, D::information, nullptr, NoWake},
    {0x2C03, nullptr, relay<&S::robot_programtitle_reflash>, NoWake},
    {0x2E03, D::robotType, D::notifyRobotType, Wakes},
    {0x2E06, D::robotCount, D::notifyRobotCount, Wakes},
    {0x2E09, nullptr, relay<&S::receive_ControlComCycle>, NoWake},
    {0x2E0F, D::servoList, D::notifyServoList, Wakes},
    {0x2E16, nullptr, relay<&S::signal_updateRobotTypeSlave>, NoWake},
    {0x2E19, nullptr, relay<&S::robot_RobotSyncAxle>, NoWake},
    {0x2E1C, nullptr, relay<&S::robot_ENI>, NoWake},
    {0x2F06, nullptr, relay<&S::receive_moreRobot_ResetPosition>, NoWake},
    {0x2F08, D::position, D::notifyPosition, Wakes},
    {0x2F11, nullptr, relay<&S::signal_doubleRobotPosition>, NoWake},
    {0x2F16, D::unsafePoint, nullptr, Wakes},
    {0x2F1C, nullptr, relay<&S::robot_receiveReservation>, NoWake},
    {0x2F43, nullptr, relay<&S::robot_receivedIODinAlarm>, NoWake},
    {0x2F46, nullptr, relay<&S::robot_receivedIODoutAlarm>, NoWake},
    {0x2F49, nullptr, relay<&S::robot_receivedIODinPortName>, NoWake},
    {0x2F4C, nullptr, relay<&S::robot_receivedIODoutPortName>, NoWake},
    {0x2F4F, nullptr, relay<&S::robot_receivedIOAIPortName>, NoWake},
    {0x2F52, nullptr, relay<&S::robot_receivedIOAOPortName>, NoWake},
    {0x3119, nullptr, relay<&S::signal_mainJob>, NoWake},
    {0x3202, nullptr, relay<&S::robot_servoerrordelete>, NoWake},
    {0x3205, nullptr, relay<&S::robot_receiveCollisionDetectDragTeach>, NoWake},
    {0x3207, nullptr, relay<&S::robot_receiveClearCollision>, NoWake},
    {0x3303, D::zeroCalibration, relay<&S::robot_zero_success>, Wakes},
    {0x330A, D::singleCycle, relay<&S::robot_singlevalue>, Wakes},
    {0x3403, nullptr, relay<&S::robot_Rec_ControlVersion>, NoWake},
    {0x3501, D::stepEnd, D::notifyStepEnd, Wakes},
    {0x3502, D::bwbCommand, D::notifyBwbCommand, Wakes},
    {0x3504, D::jobLine, relay<&S::robot_JobfiletoLine>, Wakes},
    {0x3603, D::dout, relay<&S::robot_dout_display>, Wakes},
    {0x3606, D::din, relay<&S::robot_din_display>, Wakes},
    {0x3609, D::aout, relay<&S::robot_aout_display>, Wakes},
    {0x360B, D::ain, relay<&S::robot_ain_display>, Wakes},
    {0x3803, D::toolPoint, D::notifyToolPoint, Wakes},
    {0x3804, D::toolResult, D::notifyToolResult, Wakes},
    {0x3807, D::toolParameters, D::notifyToolParameters, Wakes},
    {0x380C, D::tool, D::notifyTool, Wakes},
    {0x3813, D::markedPointOf7, D::notifyMarkedPointOf7, Wakes},
    {0x3816, parses, relay<&S::signal_toolStatus>, Wakes},
    {0x3A03, D::dhState, D::notifyDhState, Wakes},
    {0x3B03, D::jointParameters, D::notifyJointParameters, Wakes},
    {0x3B06, nullptr, relay<&S::robot_Decare_Param>, NoWake},
    {0x3B09, nullptr, relay<&S::robot_EncoderPara>, NoWake},
    {0x3C09, D::userFrame, D::notifyUserFrame, Wakes},
    {0x3C0C, D::currentUserFrame, D::notifyCurrentUserFrame, Wakes},
    {0x3C0F, D::userFrameNote, D::notifyUserFrameNote, Wakes},
    {0x3D03, D::runningState, D::notifyRunningState, Wakes},
    {0x3E03, D::robotList, D::notifyRobotList, Wakes},
    {0x3E05, D::dhValues, D::notifyDhValues, Wakes},
    {0x3F06, parses, relay<&S::robot_visionRange_data_check>, Wakes},
    {0x3F09, nullptr, relay<&S::robot_interfereIO_data>, NoWake},
    {0x4003, D::weldEquipment, relay<&S::robot_weldCheckData>, Wakes},
    {0x4006, nullptr, relay<&S::robot_match_data_check>, NoWake},
    {0x4009, nullptr, relay<&S::robot_arcset_data_check>, NoWake},
    {0x400D, nullptr, relay<&S::robot_waveweld_data_check>, NoWake},
    {0x400F, nullptr, relay<&S::robot_waveweld_IUmatch>, NoWake},
    {0x4013, nullptr, relay<&S::robot_weldIO_data_get>, NoWake},
    {0x4016, nullptr, relay<&S::robot_receiveWeldMonitor>, NoWake},
    {0x401C, nullptr, relay<&S::robot_weldEnableState>, NoWake},
    {0x401F, nullptr, relay<&S::robot_receivedWelder>, NoWake},
    {0x4023, nullptr, relay<&S::robot_receivedWelderState>, NoWake},
    {0x4025, nullptr, relay<&S::signal_weldParaNotes>, NoWake},
    {0x4027, nullptr, relay<&S::robot_receivedWeldRecord>, NoWake},
    {0x402A, nullptr, relay<&S::robot_receiveWeldAdjustment>, NoWake},
    {0x4053, nullptr, relay<&S::robot_get_weldIntersectionPoint>, NoWake},
    {0x4054, nullptr, relay<&S::robot_get_weldIntersectionCal>, NoWake},
    {0x4057, nullptr, relay<&S::robot_get_weldIntersectionPara>, NoWake},
    {0x4063, nullptr, relay<&S::robot_receiveOuterWeldTorchParam>, NoWake},
    {0x4067, nullptr, relay<&S::robot_receiveOuterWeldType>, NoWake},
    {0x4103, nullptr, relay<&S::robot_vision_para>, NoWake},
    {0x4106, nullptr, relay<&S::robot_visionpos_para>, NoWake},
    {0x4108, nullptr, relay<&S::robot_receiveVisionDebugPosList>, NoWake},
    {0x4111, nullptr, relay<&S::robot_visionposgesture_para>, NoWake},
    {0x4113, nullptr, relay<&S::robot_visionpostrytakephoto_para>, NoWake},
    {0x4115, nullptr, relay<&S::robot_vision_ip>, NoWake},
    {0x4132, nullptr, relay<&S::robot_laser_para>, NoWake},
    {0x4135, nullptr, relay<&S::signal_sensorType>, NoWake},
    {0x4138, nullptr, relay<&S::robot_track_para>, NoWake},
    {0x413B, nullptr, relay<&S::robot_search_para>, NoWake},
    {0x4141, nullptr, relay<&S::robot_laser_Calibate>, NoWake},
    {0x4143, nullptr, relay<&S::robot_laser_CalibateReCord>, NoWake},
    {0x4146, nullptr, relay<&S::robot_laser_CalibateResult>, NoWake},
    {0x414A, nullptr, relay<&S::signal_calibrated>, NoWake},
    {0x4152, nullptr, relay<&S::robot_arc_TrackCOMM>, NoWake},
    {0x4155, nullptr, relay<&S::robot_arc_TrackCOMP>, NoWake},
    {0x4158, nullptr, relay<&S::robot_arc_hTrackCOMP>, NoWake},
    {0x4162, nullptr, relay<&S::signal_arcSearchPara>, NoWake},
    {0x4166, nullptr, relay<&S::robot_arc_vol_TrackCOMP>, NoWake},
    {0x4171, nullptr, relay<&S::signal_trackSensorType>, NoWake},
    {0x4182, nullptr, relay<&S::robot_tcp_para>, NoWake},
    {0x4233, nullptr, relay<&S::robot_receivePalletData>, NoWake},
    {0x4243, nullptr, relay<&S::robot_pallet_LocATPara>, NoWake},
    {0x4249, nullptr, relay<&S::robot_piece_LocAT>, NoWake},
    {0x4303, nullptr, relay<&S::robot_receiveControlIp>, NoWake},
    {0x4306, nullptr, relay<&S::robot_receiveConntrollerInitState>, NoWake},
    {0x4403, nullptr, relay<&S::robot_recLaserChangerIoSet>, NoWake},
    {0x4406, nullptr, relay<&S::robot_recLaserTechParam>, NoWake},
    {0x4409, nullptr, relay<&S::robot_recLaserChangerAnalog>, NoWake},
    {0x440C, nullptr, relay<&S::robot_recCutTechParam>, NoWake},
    {0x440F, nullptr, relay<&S::robot_change_CurrentState>, NoWake},
    {0x4413, nullptr, relay<&S::robot_change_ShotParameter>, NoWake},
    {0x4419, nullptr, relay<&S::robot_recLaserChangerAnalogSet>, NoWake},
    {0x4603, nullptr, relay<&S::robot_Polish_Para>, NoWake},
    {0x4803, nullptr, relay<&S::robot_trackConBasic_para>, NoWake},
    {0x4806, nullptr, relay<&S::robot_trackConTool_para>, NoWake},
    {0x4808, nullptr, relay<&S::robot_trackSpeed_para>, NoWake},
    {0x480F, nullptr, relay<&S::robot_TrackConUerPoint_para>, NoWake},
    {0x4813, nullptr, relay<&S::robot_trackConCalibration_para>, NoWake},
    {0x4817, nullptr, relay<&S::robot_trackConSensorPos_para>, NoWake},
    {0x4819, nullptr, relay<&S::robot_trackConCaliSensorPoint_para>, NoWake},
    {0x481D, nullptr, relay<&S::robot_trackConCaliSensorPos_para>, NoWake},
    {0x4832, nullptr, relay<&S::robot_trackConPosr_para>, NoWake},
    {0x4834, nullptr, relay<&S::robot_calibrationPos_para>, NoWake},
    {0x483C, nullptr, relay<&S::robot_WaitPoint>, NoWake},
    {0x483E, nullptr, relay<&S::robot_CalibarteRespond>, NoWake},
    {0x4919, D::runningAndJobStatus, D::notifyRunningAndJobStatus, Wakes},
    {0x5003, D::currentRobot, D::notifyCurrentRobot, Wakes},
    {0x5013, D::cycleIndex, D::notifyCycleIndex, Wakes},
    {0x5023, nullptr, relay<&S::robot_runningtime_update>, NoWake},
    {0x5033, D::modbusIoState, D::notifyModbusIoState, Wakes},
    {0x505C, nullptr, relay<&S::robot_ControlSys_Clock>, NoWake},
    {0x5066, nullptr, relay<&S::signal_receiveBackupParam>, NoWake},
    {0x5068, nullptr, relay<&S::signal_receiveBackupRestoreParam>, NoWake},
    {0x5073, nullptr, relay<&S::receive_servo_Param>, NoWake},
    {0x5093, nullptr, relay<&S::receive_his_cmd>, NoWake},
    {0x50A3, nullptr, relay<&S::robot_runModeAutoMan>, NoWake},
    {0x50B3, D::continuousMode, nullptr, Wakes},
    {0x50C3, nullptr, relay<&S::signal_gloablAutoRun>, NoWake},
    {0x50C6, nullptr, relay<&S::signal_gloablAutoRunState>, NoWake},
    {0x5508, nullptr, relay<&S::robot_FileName_Need_DownOrUp>, NoWake},
    {0x5533, nullptr, relay<&S::robot_job_Sum_list>, NoWake},
    {0x5534, nullptr, relay<&S::robot_job_File_list>, NoWake},
    {0x5535, nullptr, D::notifyJobFileInfoFinish, NoWake},
    {0x5543, nullptr, relay<&S::robot_ControlLog_list>, NoWake},
    {0x5546, nullptr, relay<&S::robot_ControlENI_list>, NoWake},
    {0x5603, nullptr, relay<&S::robot_rec_allGlobalPosition>, NoWake},
    {0x5606, D::globalPosition, relay<&S::robot_rec_globalPosition>, Wakes},
    {0x5609, nullptr, relay<&S::robot_get_globalVariant>, NoWake},
    {0x560C, D::globalVariable, relay<&S::robot_get_oneglobalVariant>, Wakes},
    {0x5613, nullptr, relay<&S::robot_receiveLocalVariantPosP>, NoWake},
    {0x5616, nullptr, relay<&S::robot_receiveLocalVariantPosE>, NoWake},
    {0x5619, nullptr, relay<&S::robot_receiveLocalVariantValue>, NoWake},
    {0x5703, nullptr, relay<&S::robot_receivedModbusProgram_reflash>, NoWake},
    {0x5713, nullptr, relay<&S::robot_receivedModbusSlaveParameter>, NoWake},
    {0x5717, nullptr, relay<&S::robot_receivedModbusCheckHeart>, NoWake},
    {0x5719, D::modbusState, D::notifyModbusState, Wakes},
    {0x5723, nullptr, relay<&S::robot_receivedUploadEnable>, NoWake},
    {0x5726, nullptr, relay<&S::robot_receivedUploadPara>, NoWake},
    {0x5729, nullptr, relay<&S::robot_receivedDAformat>, NoWake},
    {0x5733, nullptr, relay<&S::robotReceivedScrewPara>, NoWake},
    {0x5736, nullptr, relay<&S::robotReceivedScrewIO>, NoWake},
    {0x5739, nullptr, relay<&S::robotReceivedScrewState>, NoWake},
    {0x5746, nullptr, relay<&S::robot_receivedModbusMasterParameter>, NoWake},
    {0x7003, nullptr, relay<&S::robot_syncAxis_pos>, NoWake},
    {0x7004, nullptr, relay<&S::robot_syncAxis_state>, NoWake},
    {0x7006, nullptr, relay<&S::signal_syncCalibationState>, NoWake},
    {0x700B, D::positionerAxes, D::notifyPositionerAxes, Wakes},
    {0x700F, parses, relay<&S::signal_robotSyncGroundRail>, Wakes},
    {0x7013, D::syncPosition, nullptr, Wakes},
    {0x7017, D::cooperativeRobot, D::notifyCooperativeRobot, Wakes},
    {0x7023, nullptr, relay<&S::robot_syncJoint_para>, NoWake},
    {0x7026, nullptr, relay<&S::signal_robot_syncJogSpeed_data>, NoWake},
    {0x7029, nullptr, relay<&S::signal_robot_syncEncodeOverflow_data>, NoWake},
    {0x7033, nullptr, relay<&S::robot_syncZeroPoint>, NoWake},
    {0x7037, nullptr, relay<&S::robot_syncSingleCycle>, NoWake},
    {0x7043, nullptr, relay<&S::robotSyncAxisCalResult>, NoWake},
    {0x7103, D::toolPointFor20, D::notifyToolPointFor20, Wakes},
    {0x7104, D::toolResultFor20, D::notifyToolResultFor20, Wakes},
    {0x7106, D::zeroPointOf20, D::notifyZeroPointOf20, Wakes},
    {0x7108, parses, relay<&S::signal_toolStatus>, Wakes},
    {0x710B, D::markedPointOf20, D::notifyMarkedPointOf20, Wakes},
    {0x710E, nullptr, relay<&S::signal_receivedAllowCalibration>, NoWake},
    {0x7204, D::fourPointResult, relay<&S::robot_count_successFor4>, Wakes},
    {0x7206, D::dhResult, relay<&S::robot_receivedresultForDH>, Wakes},
    {0x7208, D::fourPoint, relay<&S::robot_received4Point>, Wakes},
    {0x7303, nullptr, relay<&S::robot_threeMouse_para>, NoWake},
    {0x7306, nullptr, relay<&S::robot_3DMouse_Point>, NoWake},
    {0x7309, nullptr, relay<&S::robot_3DMouse_Mark>, NoWake},
    {0x7403, nullptr, relay<&S::robot_dynaPara>, NoWake},
    {0x7405, nullptr, relay<&S::robot_dynaIdentify>, NoWake},
    {0x7408, nullptr, relay<&S::robot_collision>, NoWake},
    {0x740B, nullptr, relay<&S::robot_collisionPara>, NoWake},
    {0x740E, nullptr, relay<&S::robot_torqFeedback>, NoWake},
    {0x7506, nullptr, relay<&S::robot_DragPara>, NoWake},
    {0x7603, nullptr, relay<&S::robot_TrackData>, NoWake},
    {0x7605, nullptr, relay<&S::robot_SafeCheck>, NoWake},
    {0x7607, nullptr, relay<&S::robot_IdentificationData>, NoWake},
    {0x7608, nullptr, relay<&S::robot_Finish>, NoWake},
    {0x7609, nullptr, relay<&S::robot_TrackRange>, NoWake},
    {0x760A, nullptr, relay<&S::robot_ErrorStop>, NoWake},
    {0x7703, nullptr, relay<&S::robot_receiveBrakeAvoidCrushed>, NoWake},
    {0x7706, nullptr, relay<&S::robot_receiveBrakeAvoidCrushedDelay>, NoWake},
    {0x7709, nullptr, relay<&S::robot_receiveBrakeAvoidCrushedParam>, NoWake},
    {0x770C, nullptr, relay<&S::robot_receiveBrakeAvoidCrushedRecordtorq>, NoWake},
    {0x7803, nullptr, relay<&S::robot_receiveRemoteCtl>, NoWake},
    {0x8002, nullptr, relay<&S::signal_receivedMaterialState>, NoWake},
    {0x8005, nullptr, relay<&S::signal_receivedControlMode>, NoWake},
    {0x8007, nullptr, relay<&S::signal_receivedPunchAmount>, NoWake},
    {0x800B, nullptr, relay<&S::signal_receivedPunchEnable>, NoWake},
    {0x8010, nullptr, relay<&S::signal_receivedFixtrueAct>, NoWake},
    {0x8014, nullptr, relay<&S::signal_punch_state>, NoWake},
    {0x8015, nullptr, relay<&S::signal_receivedPunchPopup>, NoWake},
    {0x801A, nullptr, relay<&S::signal_ProcessNum>, NoWake},
    {0x801D, nullptr, relay<&S::signal_ProcessParame>, NoWake},
    {0x8022, nullptr, relay<&S::signal_CommunicationStatus>, NoWake},
    {0x802C, nullptr, relay<&S::signal_feederStationSet>, NoWake},
    {0x8030, nullptr, relay<&S::singal_Punch_IOPort>, NoWake},
    {0x8033, nullptr, relay<&S::singal_Punch_IOStatus>, NoWake},
    {0x8035, nullptr, relay<&S::singal_Punch_InterferenceSingle>, NoWake},
    {0x8038, nullptr, relay<&S::singal_Punch_Interference>, NoWake},
    {0x803B, nullptr, relay<&S::singal_Punch_IOFixture>, NoWake},
    {0x803F, nullptr, relay<&S::signal_receivedPunchDelayTime>, NoWake},
    {0x8042, nullptr, relay<&S::signal_receivedPunchTrack>, NoWake},
    {0x8045, nullptr, relay<&S::signal_receivedPunchPoint>, NoWake},
    {0x804D, nullptr, relay<&S::signal_CurTopPoint>, NoWake},
    {0x8050, nullptr, relay<&S::singal_Punch_variable_cylinder_param>, NoWake},
    {0x8052, nullptr, relay<&S::signal_receivedRunStatus>, NoWake},
    {0x8106, nullptr, relay<&S::robot_receiveCanOpenPara>, NoWake},
    {0x8132, nullptr, relay<&S::robot_receivePayloadPara>, NoWake},
    {0x8142, nullptr, relay<&S::robot_receiveAutoModifyAccPara>, NoWake},
    {0x8149, nullptr, relay<&S::robot_receiveReceiveAutoModifyAccThresholdpara>, NoWake},
    {0x9103, D::runningAndJobStatus, D::notifyRunningAndJobStatus, Wakes},
    {0x9106, nullptr, relay<&S::signal_curRunLine>, NoWake},
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
