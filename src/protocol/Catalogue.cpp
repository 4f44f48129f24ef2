// The protocol catalogue: one row per command code and direction.
//
// Incoming rows, by column: code, notification, delivery, the Robot member
// it reaches (and a second one), whether the handler wakes waiting calls,
// and for a reply the request it answers. Two rows carry a second
// notification of the same payload (0x4919 and 0x9103: run status and job
// status). A row without a listener is a notification the Robot does not
// listen to on purpose: the pendant's own dialogs parse those payloads from
// the link themselves, and the file transfer listens on its own connection.
//
// Outgoing rows: the named code (Codes.h) and the reply the controller
// answers it with. The incoming reply's pairing and the request's must agree
// (checked at compile time below).

#include "protocol/Catalogue.h"
#include "protocol/SortedRows.h"

#include <algorithm>
#include <iterator>

namespace qrx::protocol {
namespace {

using N = LinkNotifications;
constexpr Direction In = Direction::FromController;
constexpr Delivery Forward = Delivery::Forward;
constexpr Delivery ForwardIfJson = Delivery::ForwardIfJson;
constexpr Delivery TestModeByte = Delivery::TestModeByte;
constexpr Delivery Position = Delivery::Position;
constexpr Delivery NoArgument = Delivery::NoArgument;
constexpr Delivery Connection = Delivery::Connection;
constexpr bool Wakes = true;
constexpr bool NoWake = false;
constexpr Listener none{};

// A handler slot, a Robot signal (relay), by normalised signature.
constexpr Listener slot(const char *member) { return {Listener::Slot, member}; }
constexpr Listener relay(const char *member) { return {Listener::Signal, member}; }

#define note(n) #n, &N::n
#define named(n) n, nullptr
#define request(n, reply) {code::n, Direction::ToController, #n, nullptr, Delivery::None, none, none, NoWake, reply, nullptr, nullptr, none}

constexpr Message kIncoming[] = {
    // Status and modes (0x20..0x28)
    {0x2003, In, note(receivedServoStatus), ForwardIfJson, slot("robot_net_slot_servoChangedProcess(QByteArray)"), none, Wakes, 0x2002},
    {0x2103, In, note(receivedOperationMode), Forward, slot("robot_net_slot_modeProcess(QByteArray)"), none, Wakes, 0x2102},
    {0x2106, In, note(receivedTeachModeType), Forward, slot("robot_net_slot_teachtype(QByteArray)"), none, Wakes, 0},
    {0x2203, In, note(receivedCoordinationMode), Forward, slot("robot_net_slot_coordChangedProcess(QByteArray)"), none, Wakes, 0x2202},
    {0x2303, In, note(receivedDeadmanStatus), Forward, slot("robot_net_slot_deadmanChangedProcess(QByteArray)"), none, Wakes, 0},
    {0x2306, In, note(receivedDeadManMode), Forward, slot("robot_net_slot_DeadManMode(QByteArray)"), none, Wakes, 0},
    {0x2406, In, note(receivedFbCmdMode), Forward, none, none, NoWake, 0},
    {0x2603, In, note(receivedSpeedInfo), ForwardIfJson, slot("robot_net_slot_velocityProcess(QByteArray)"), none, Wakes, 0x2602},
    {0x2606, In, note(receiveJointInchSpeed), Forward, slot("robot_net_slot_JointInchSpeed(QByteArray)"), none, Wakes, 0},
    {0x2609, In, note(receiveRectInchSpeed), Forward, slot("robot_net_slot_RectInchSpeed(QByteArray)"), none, Wakes, 0},
    {0x260C, In, note(recvSensitivity), Forward, slot("robot_net_slot_Sensitivity(QByteArray)"), none, Wakes, 0},
    {0x2703, In, named("receivedTestMode"), TestModeByte, none, none, NoWake, 0x2702},
    {0x2803, In, note(receiveInterpolationMode), Forward, slot("robot_net_slot_InterpolationMode(QByteArray)"), none, Wakes, 0},

    // Position and drive monitoring (0x2A..)
    {0x2A03, In, named("receivedPosition"), Position, relay("robot_position_update(QVector<double>,int,int)"), none, NoWake, 0x2A02},
    {0x2A05, In, note(receiveMotorSpeed), Forward, slot("robot_net_slot_MotorSpeed(QByteArray)"), none, Wakes, 0x2A04},
    {0x2A07, In, note(receiveMotorTorque), Forward, slot("robot_net_slot_MotorTorque(QByteArray)"), none, Wakes, 0x2A06},
    {0x2A09, In, note(receivedPosOver), Forward, relay("robotReceivedPosOver(QByteArray)"), none, NoWake, 0},
    {0x2A0B, In, note(signal_receivedMotorLoad), Forward, slot("robot_net_slot_MotorLoad(QByteArray)"), none, Wakes, 0x2A0A},
    {0x2A13, In, note(receiveTransCoordPos), Forward, relay("robot_receiveTransCoordPos(QByteArray)"), none, NoWake, 0},
    {0x2A16, In, note(receivedTrackingError), Forward, relay("robotReceivedTrackingError(QByteArray)"), none, NoWake, 0},
    {0x2A19, In, note(receivedOverlordProtect), Forward, relay("robotReceivedOverlordProtect(QByteArray)"), none, NoWake, 0},

    // Controller messages (0x2B..)
    {0x2B03, In, note(receivedError), Forward, slot("robot_net_slot_errProcess(QByteArray)"), none, NoWake, 0},
    {0x2B04, In, note(receivedWarning), Forward, slot("robot_net_slot_warnProcess(QByteArray)"), none, NoWake, 0},
    {0x2B05, In, note(receivedInfo), Forward, slot("robot_net_slot_infoProcess(QByteArray)"), none, NoWake, 0},
    {0x2B06, In, note(receivedPopup), Forward, none, none, NoWake, 0},

    // Program title and remote parameters (0x2C..)
    {0x2C03, In, note(receivedRobotProgramTitle), Forward, relay("robot_programtitle_reflash(QByteArray)"), none, NoWake, 0},
    {0x2C06, In, note(receivedReceiveRemotePara), Forward, none, none, NoWake, 0},

    // Robot type and controller configuration (0x2E..)
    {0x2E03, In, note(receivedRobotType), Forward, slot("robot_net_slot_RobotType(QByteArray)"), none, Wakes, 0x2E02},
    {0x2E06, In, note(receiveRobotSum), Forward, slot("robot_net_slot_RobotSum(QByteArray)"), none, Wakes, 0x2E05},
    {0x2E09, In, note(receiveControlComCycle), Forward, relay("receive_ControlComCycle(QByteArray)"), none, NoWake, 0},
    {0x2E0C, In, note(recvSelectFuncton), Forward, none, none, NoWake, 0},
    {0x2E0F, In, note(receivedServoList), Forward, slot("robot_net_slot_ServoList(QByteArray)"), none, Wakes, 0},
    {0x2E16, In, note(receivedRobotTypeSlave), Forward, relay("signal_updateRobotTypeSlave(QByteArray)"), none, NoWake, 0},
    {0x2E19, In, note(receivedRobotSyncAxle), Forward, relay("robot_RobotSyncAxle(QByteArray)"), none, NoWake, 0},
    {0x2E1C, In, note(receivedENI), Forward, relay("robot_ENI(QByteArray)"), none, NoWake, 0},

    // IO configuration, IO state and multi-robot positions (0x2F..)
    {0x2F03, In, note(recriveioparam), Forward, none, none, NoWake, 0},
    {0x2F06, In, note(recriveMoreRobotResetPosition), Forward, relay("receive_moreRobot_ResetPosition(QByteArray)"), none, NoWake, 0},
    {0x2F08, In, note(recriveMoreRobotCurPosition), Forward, slot("robot_net_slot_MoreRobotCurPosition(QByteArray)"), none, Wakes, 0x2F07},
    {0x2F0B, In, note(recriveIoStatus), Forward, none, none, NoWake, 0},
    {0x2F0F, In, note(receiveIOState), Forward, none, none, NoWake, 0},
    {0x2F11, In, note(signal_doubleRobotCurPosition), Forward, relay("signal_doubleRobotPosition(QByteArray)"), none, NoWake, 0},
    {0x2F13, In, note(receiveIOFuncState), Forward, none, none, NoWake, 0},
    {0x2F16, In, note(receiveUnsafePoint), Forward, slot("robot_net_slot_UnsafePoint(QByteArray)"), none, Wakes, 0},
    {0x2F1C, In, note(receiveReservationState), Forward, relay("robot_receiveReservation(QByteArray)"), none, NoWake, 0},
    {0x2F23, In, note(recvIOConfig), Forward, none, none, NoWake, 0},
    {0x2F26, In, note(recvIORemoteOutput), Forward, none, none, NoWake, 0},
    {0x2F33, In, note(receiveSafetySet), Forward, none, none, NoWake, 0},
    {0x2F43, In, note(receivedIODinAlarm), Forward, relay("robot_receivedIODinAlarm(QByteArray)"), none, NoWake, 0},
    {0x2F46, In, note(receivedIODoutAlarm), Forward, relay("robot_receivedIODoutAlarm(QByteArray)"), none, NoWake, 0},
    {0x2F49, In, note(receivedIODinPortName), Forward, relay("robot_receivedIODinPortName(QByteArray)"), none, NoWake, 0},
    {0x2F4C, In, note(receivedIODoutPortName), Forward, relay("robot_receivedIODoutPortName(QByteArray)"), none, NoWake, 0},
    {0x2F4F, In, note(receivedIOAIPortName), Forward, relay("robot_receivedIOAIPortName(QByteArray)"), none, NoWake, 0},
    {0x2F52, In, note(receivedIOAOPortName), Forward, relay("robot_receivedIOAOPortName(QByteArray)"), none, NoWake, 0},

    // Jobs, errors, zero point, version, stepping and IO values (0x31..0x37)
    {0x3119, In, note(signal_receivedMainJob), Forward, relay("signal_mainJob(QByteArray)"), none, NoWake, 0},
    {0x3202, In, note(receiveErrorStatus), Forward, relay("robot_servoerrordelete(QByteArray)"), none, NoWake, 0},
    {0x3205, In, note(receiveCollisionDetectDragTeach), Forward, relay("robot_receiveCollisionDetectDragTeach(QByteArray)"), none, NoWake, 0},
    {0x3207, In, note(receiveClearCollision), Forward, relay("robot_receiveClearCollision(QByteArray)"), none, NoWake, 0},
    {0x3303, In, note(receivedZeroSuccess), Forward, slot("robot_net_slot_ZeroSuccess(QByteArray)"), none, Wakes, 0x3301},
    {0x3306, In, note(receivedEncoderState), Forward, none, none, NoWake, 0},
    {0x330A, In, note(receivedSingleCycleValue), Forward, slot("robot_net_slot_SingleCycleValue(QByteArray)"), none, Wakes, 0x3309},
    {0x3403, In, note(recvControlVersion), Forward, relay("robot_Rec_ControlVersion(QByteArray)"), none, NoWake, 0},
    {0x3501, In, note(receivedStepEndStatus), Forward, slot("robot_net_slot_stepEndProcess(QByteArray)"), none, Wakes, 0},
    {0x3502, In, note(receivedBWBStatus), Forward, slot("robot_net_slot_BWBCommandStatus(QByteArray)"), none, Wakes, 0},
    {0x3504, In, note(receivedJobfileLine), Forward, slot("robot_net_slot_JobfiletoLine(QByteArray)"), none, Wakes, 0},
    {0x3603, In, note(receivedDoutStatus), Forward, slot("robot_net_slot_DoutStatus(QByteArray)"), none, Wakes, 0x3602},
    {0x3606, In, note(receivedDinStatus), Forward, slot("robot_net_slot_DinStatus(QByteArray)"), none, Wakes, 0x3605},
    {0x3609, In, note(receivedAoutStatus), Forward, slot("robot_net_slot_AoutStatus(QByteArray)"), none, Wakes, 0x3608},
    {0x360B, In, note(receivedAinStatus), Forward, slot("robot_net_slot_AinStatus(QByteArray)"), none, Wakes, 0x360A},
    {0x360E, In, note(ReceivedForcedInputStatus), Forward, none, none, NoWake, 0},
    {0x3613, In, note(ReceivedForcedAnalogInputStatus), Forward, none, none, NoWake, 0},

    // Tools, user frames, kinematic parameters and ranges (0x38..0x3F)
    {0x3803, In, note(receivedToolCheck), Forward, slot("robot_net_slot_ToolCheck(QByteArray)"), none, Wakes, 0},
    {0x3804, In, note(receivedCountSuccess), Forward, slot("robot_net_slot_CountSuccess(QByteArray)"), none, Wakes, 0},
    {0x3807, In, note(receivedCountToolData), Forward, slot("robot_net_slot_ToolParameter(QByteArray)"), none, Wakes, 0x3806},
    {0x380C, In, note(receivedToolInfo), Forward, slot("robot_net_slot_ToolChangedProcess(QByteArray)"), none, Wakes, 0x380B},
    {0x3813, In, note(receive7MarkedPoint), Forward, slot("robot_net_slot_7MarkedPoint(QByteArray)"), none, Wakes, 0},
    {0x3816, In, note(signal_receivedAllToolCheck), Forward, slot("robot_net_slot_ToolStatus(QByteArray)"), none, Wakes, 0},
    {0x3A03, In, note(recvDHparaState), Forward, slot("robot_net_slot_dhParaState(QByteArray)"), none, Wakes, 0},
    {0x3B03, In, note(receivedJointPara), Forward, slot("robot_net_slot_JointPara(QByteArray)"), none, Wakes, 0},
    {0x3B06, In, note(receiveDecareParam), Forward, relay("robot_Decare_Param(QByteArray)"), none, NoWake, 0},
    {0x3B09, In, note(receivedEncoderPara), Forward, relay("robot_EncoderPara(QByteArray)"), none, NoWake, 0},
    {0x3C02, In, note(receivedUserSuccess), Forward, none, none, NoWake, 0},
    {0x3C04, In, note(receivedUserCoordsCheck), Forward, none, none, NoWake, 0},
    {0x3C09, In, note(receivedUserCoordsReply), Forward, slot("robot_net_slot_UserCoordsReply(QByteArray)"), none, Wakes, 0x3C0A},
    {0x3C0C, In, note(receivedCurrentUserCoords), ForwardIfJson, slot("robot_net_slot_CurrentUserCoords(QByteArray)"), none, Wakes, 0x3C0B},
    {0x3C0F, In, note(receivedUserCoordsNote), Forward, slot("robot_net_slot_UserCoordsNote(QByteArray)"), none, Wakes, 0},
    {0x3D03, In, note(receivedProRunStatus), Forward, slot("robot_net_slot_prorunstatus(QByteArray)"), none, Wakes, 0x3D02},
    {0x3E03, In, note(receivedPresentRobot), Forward, slot("robot_net_slot_PresentRobot(QByteArray)"), none, Wakes, 0},
    {0x3E05, In, note(receivedDHParaValueRobot), Forward, slot("robot_net_slot_DHParaValue(QByteArray)"), none, Wakes, 0},
    {0x3F03, In, note(receivedRobotRange), Forward, none, none, NoWake, 0},
    {0x3F06, In, note(receivedVisionRange), Forward, slot("robot_net_slot_VisionRange(QByteArray)"), none, Wakes, 0},
    {0x3F09, In, note(receivedInterfereRange), Forward, relay("robot_interfereIO_data(QByteArray)"), none, NoWake, 0},

    // Welding (0x40..)
    {0x4003, In, note(receivedWeldEquipmentData), Forward, slot("robot_net_slot_WeldEquipmentData(QByteArray)"), none, Wakes, 0},
    {0x4006, In, note(receivedCurVolMatData), Forward, relay("robot_match_data_check(QByteArray)"), none, NoWake, 0},
    {0x4009, In, note(receivedArcsettingData), Forward, relay("robot_arcset_data_check(QByteArray)"), none, NoWake, 0},
    {0x400D, In, note(receivedWaveweldData), Forward, relay("robot_waveweld_data_check(QByteArray)"), none, NoWake, 0},
    {0x400F, In, note(receiveWaveIUMatch), Forward, relay("robot_waveweld_IUmatch(QByteArray)"), none, NoWake, 0},
    {0x4013, In, note(receiveWeldIOData), Forward, relay("robot_weldIO_data_get(QByteArray)"), none, NoWake, 0},
    {0x4016, In, note(receiveWeldMonitor), Forward, relay("robot_receiveWeldMonitor(QByteArray)"), none, NoWake, 0},
    {0x401C, In, note(receiveWeldEnableState), Forward, relay("robot_weldEnableState(QByteArray)"), none, NoWake, 0},
    {0x401F, In, note(receivedWelder), Forward, relay("robot_receivedWelder(QByteArray)"), none, NoWake, 0},
    {0x4023, In, note(receivedWelderState), Forward, relay("robot_receivedWelderState(QByteArray)"), none, NoWake, 0},
    {0x4025, In, note(signal_receivedWeldParaNotes), Forward, relay("signal_weldParaNotes(QByteArray)"), none, NoWake, 0},
    {0x4027, In, note(receivedReceiveWeldRecord), Forward, relay("robot_receivedWeldRecord(QByteArray)"), none, NoWake, 0},
    {0x402A, In, note(receiveWeldAdjustment), Forward, relay("robot_receiveWeldAdjustment(QByteArray)"), none, NoWake, 0},
    {0x4053, In, note(receiveweldintersectionPoint), Forward, relay("robot_get_weldIntersectionPoint(QByteArray)"), none, NoWake, 0},
    {0x4054, In, note(receiveWeldintersectionCal), Forward, relay("robot_get_weldIntersectionCal(QByteArray)"), none, NoWake, 0},
    {0x4057, In, note(receiveweldintersectionPara), Forward, relay("robot_get_weldIntersectionPara(QByteArray)"), none, NoWake, 0},
    {0x4063, In, note(receiveOuterWeldTorchParam), Forward, relay("robot_receiveOuterWeldTorchParam(QByteArray)"), none, NoWake, 0},
    {0x4067, In, note(receiveOuterWeldType), Forward, relay("robot_receiveOuterWeldType(QByteArray)"), none, NoWake, 0},

    // Vision, laser sensor and seam tracking (0x41..)
    {0x4103, In, note(receiveVisionParameter), Forward, relay("robot_vision_para(QByteArray)"), none, NoWake, 0},
    {0x4106, In, note(receiveVisionPosParameter), Forward, relay("robot_visionpos_para(QByteArray)"), none, NoWake, 0},
    {0x4108, In, note(receiveVisionDebugPosList), Forward, relay("robot_receiveVisionDebugPosList(QByteArray)"), none, NoWake, 0},
    {0x4111, In, note(receiveVisionPosGesture), Forward, relay("robot_visionposgesture_para(QByteArray)"), none, NoWake, 0},
    {0x4113, In, note(receiveVisionPostrytakephoto), Forward, relay("robot_visionpostrytakephoto_para(QByteArray)"), none, NoWake, 0},
    {0x4115, In, note(receiveVisionIp), Forward, relay("robot_vision_ip(QByteArray)"), none, NoWake, 0},
    {0x4119, In, note(receivevisualcarbinpara), Forward, none, none, NoWake, 0},
    {0x411B, In, note(receiveVisualCarbinPoint), Forward, none, none, NoWake, 0},
    {0x4120, In, note(receiveCaculateVisualCarbinPoint), Forward, none, none, NoWake, 0},
    {0x4121, In, note(caculateVisualCarbinPointFinish), Forward, none, none, NoWake, 0},
    {0x4132, In, note(receivedLaserParameter), Forward, relay("robot_laser_para(QByteArray)"), none, NoWake, 0},
    {0x4135, In, note(signal_receivedSensorType), Forward, relay("signal_sensorType(QByteArray)"), none, NoWake, 0},
    {0x4138, In, note(receivedTrackParameter), Forward, relay("robot_track_para(QByteArray)"), none, NoWake, 0},
    {0x413B, In, note(receivedSearchParameter), Forward, relay("robot_search_para(QByteArray)"), none, NoWake, 0},
    {0x4141, In, note(receivedLaserCalibate), Forward, relay("robot_laser_Calibate(QByteArray)"), none, NoWake, 0},
    {0x4143, In, note(receivedLaserCalibateReCord), Forward, relay("robot_laser_CalibateReCord(QByteArray)"), none, NoWake, 0},
    {0x4146, In, note(receivedLaserCalibateResult), Forward, relay("robot_laser_CalibateResult(QByteArray)"), none, NoWake, 0},
    {0x414A, In, note(signal_calibrated), Forward, relay("signal_calibrated(QByteArray)"), none, NoWake, 0},
    {0x4152, In, note(receivedArcTrackCOMM), Forward, relay("robot_arc_TrackCOMM(QByteArray)"), none, NoWake, 0},
    {0x4155, In, note(receivedArcTrackCOMP), Forward, relay("robot_arc_TrackCOMP(QByteArray)"), none, NoWake, 0},
    {0x4158, In, note(receivedArcHTrackCOMP), Forward, relay("robot_arc_hTrackCOMP(QByteArray)"), none, NoWake, 0},
    {0x4162, In, note(signal_receivedArcSearch), Forward, relay("signal_arcSearchPara(QByteArray)"), none, NoWake, 0},
    {0x4166, In, note(receivedArcVolTrackCOMP), Forward, relay("robot_arc_vol_TrackCOMP(QByteArray)"), none, NoWake, 0},
    {0x4171, In, note(signal_receivedTrackSensorType), Forward, relay("signal_trackSensorType(QByteArray)"), none, NoWake, 0},
    {0x4182, In, note(receiveTCPParameter), Forward, relay("robot_tcp_para(QByteArray)"), none, NoWake, 0},

    // Palletising (0x42..)
    {0x4203, In, note(recvPalletToolParameter), Forward, none, none, NoWake, 0},
    {0x4206, In, note(recvPalletTrayParameter), Forward, none, none, NoWake, 0},
    {0x4209, In, note(recvPalletPositionParameter), Forward, none, none, NoWake, 0},
    {0x420C, In, note(recvPalletWorkpieceParameter), Forward, none, none, NoWake, 0},
    {0x420F, In, note(recvPalletApproachParameter), Forward, none, none, NoWake, 0},
    {0x4212, In, note(recvPalletOverlappingModel), Forward, none, none, NoWake, 0},
    {0x4215, In, note(recvPalletPlaneModel), Forward, none, none, NoWake, 0},
    {0x4217, In, note(recvPalletChangeModel), Forward, none, none, NoWake, 0},
    {0x4219, In, note(recvPalletPlanePreview), Forward, none, none, NoWake, 0},
    {0x421C, In, note(recvPalletState), Forward, none, none, NoWake, 0},
    {0x4223, In, note(recvSwitchPalletMode), Forward, none, none, NoWake, 0},
    {0x4226, In, note(recvPalletEasyPositionParameter), Forward, none, none, NoWake, 0},
    {0x4229, In, note(recvPalletEasyToolParameter), Forward, none, none, NoWake, 0},
    {0x422B, In, note(recvPalletAutoCalculate), Forward, none, none, NoWake, 0},
    {0x422E, In, note(receivealletPlaneCarbin), Forward, none, none, NoWake, 0},
    {0x4233, In, note(receivePalletData), Forward, relay("robot_receivePalletData(QByteArray)"), none, NoWake, 0},
    {0x4243, In, note(recvPalletLocATPara), Forward, relay("robot_pallet_LocATPara(QByteArray)"), none, NoWake, 0},
    {0x4249, In, note(recvPieceLocAT), Forward, relay("robot_piece_LocAT(QByteArray)"), none, NoWake, 0},

    // Controller address, laser cutting (0x43..0x45)
    {0x4303, In, note(receiveControlIp), Forward, relay("robot_receiveControlIp(QByteArray)"), none, NoWake, 0},
    {0x4306, In, note(receiveConntrollerInitState), Forward, relay("robot_receiveConntrollerInitState(QByteArray)"), none, NoWake, 0},
    {0x4403, In, note(receiveChangeIosetData), Forward, relay("robot_recLaserChangerIoSet(QByteArray)"), none, NoWake, 0},
    {0x4406, In, note(receiveLaserTechParam), Forward, relay("robot_recLaserTechParam(QByteArray)"), none, NoWake, 0},
    {0x4409, In, note(receiveChangeLaserAnalog), Forward, relay("robot_recLaserChangerAnalog(QByteArray)"), none, NoWake, 0},
    {0x440C, In, note(receiveCutTechParam), Forward, relay("robot_recCutTechParam(QByteArray)"), none, NoWake, 0},
    {0x440F, In, note(receiveCurrentState), Forward, relay("robot_change_CurrentState(QByteArray)"), none, NoWake, 0},
    {0x4413, In, note(receiveShotParameter), Forward, relay("robot_change_ShotParameter(QByteArray)"), none, NoWake, 0},
    {0x4419, In, note(receiveChangeLaserAnalogSet), Forward, relay("robot_recLaserChangerAnalogSet(QByteArray)"), none, NoWake, 0},

    // Polishing and spraying (0x46..0x47)
    {0x4603, In, note(receivedPolishPara), Forward, relay("robot_Polish_Para(QByteArray)"), none, NoWake, 0},
    {0x4703, In, note(receivedSprayAnalog), Forward, none, none, NoWake, 0},
    {0x4706, In, note(receivedSprayDigital), Forward, none, none, NoWake, 0},
    {0x4709, In, note(receivedSpraySequence), Forward, none, none, NoWake, 0},
    {0x470C, In, note(receivedSprayTrackPara), Forward, none, none, NoWake, 0},
    {0x4713, In, note(receivedSprayHandOperatOne), Forward, none, none, NoWake, 0},
    {0x4716, In, note(receivedSprayHandOperatTwo), Forward, none, none, NoWake, 0},
    {0x4719, In, note(receivedSprayHandOperatThree), Forward, none, none, NoWake, 0},

    // Conveyor tracking and job status (0x48..0x49)
    {0x4803, In, note(receiveTrackConBasic), Forward, relay("robot_trackConBasic_para(QByteArray)"), none, NoWake, 0},
    {0x4806, In, note(receiveTrackConTool), Forward, relay("robot_trackConTool_para(QByteArray)"), none, NoWake, 0},
    {0x4808, In, note(receiveTrackSpeed), Forward, relay("robot_trackSpeed_para(QByteArray)"), none, NoWake, 0},
    {0x480F, In, note(receiveTrackConUerPoint), Forward, relay("robot_TrackConUerPoint_para(QByteArray)"), none, NoWake, 0},
    {0x4813, In, note(receiveCalibrationedPoint), Forward, relay("robot_trackConCalibration_para(QByteArray)"), none, NoWake, 0},
    {0x4817, In, note(receiveSensorPos), Forward, relay("robot_trackConSensorPos_para(QByteArray)"), none, NoWake, 0},
    {0x4819, In, note(receiveCalibrationedSensorPoint), Forward, relay("robot_trackConCaliSensorPoint_para(QByteArray)"), none, NoWake, 0},
    {0x481D, In, note(receiveCalibrationedSensorPos), Forward, relay("robot_trackConCaliSensorPos_para(QByteArray)"), none, NoWake, 0},
    {0x4832, In, note(rceiveTrackConPos), Forward, relay("robot_trackConPosr_para(QByteArray)"), none, NoWake, 0},
    {0x4834, In, note(receiveCalibrationPos), Forward, relay("robot_calibrationPos_para(QByteArray)"), none, NoWake, 0},
    {0x483C, In, note(receiveWaitPoint), Forward, relay("robot_WaitPoint(QByteArray)"), none, NoWake, 0},
    {0x483E, In, note(receiveCalibarteRespond), Forward, relay("robot_CalibarteRespond(QByteArray)"), none, NoWake, 0},
    {0x4919, In, note(receivedProRunStatus), Forward, slot("robot_net_slot_prorunstatus(QByteArray)"), none, Wakes, 0, note(receivedJobStatus), slot("robot_net_slot_JobStatusProcess(QByteArray)")},

    // System (0x50..)
    {0x5003, In, note(receivedChangeRobot), Forward, slot("robot_net_slot_CurRobot(QByteArray)"), none, Wakes, 0x5002},
    {0x5013, In, note(recriveRobotCycleIndex), Forward, slot("robot_net_slot_RobotCycleIndex(QByteArray)"), none, Wakes, 0},
    {0x5023, In, note(receiveRobotRunningTime), Forward, relay("robot_runningtime_update(QByteArray)"), none, NoWake, 0},
    {0x5033, In, note(recriveModbusIoState), Forward, slot("robot_net_slot_ModbusIoState(QByteArray)"), none, Wakes, 0},
    {0x5053, In, note(recvControlNumber), Forward, none, none, NoWake, 0},
    {0x505C, In, note(recvSysClock), Forward, relay("robot_ControlSys_Clock(QByteArray)"), none, NoWake, 0},
    {0x5066, In, note(recvBackup), Forward, relay("signal_receiveBackupParam(QByteArray)"), none, NoWake, 0},
    {0x5068, In, note(recvBackupRestore), Forward, relay("signal_receiveBackupRestoreParam(QByteArray)"), none, NoWake, 0},
    {0x5073, In, note(recvServoPara), Forward, relay("receive_servo_Param(QByteArray)"), none, NoWake, 0},
    {0x5083, In, note(receivedProSelfStart), Forward, none, none, NoWake, 0},
    {0x5093, In, note(receivehistorycmd), Forward, relay("receive_his_cmd(QByteArray)"), none, NoWake, 0},
    {0x50A3, In, note(receivedRunModeAutoMan), Forward, relay("robot_runModeAutoMan(QByteArray)"), none, NoWake, 0},
    {0x50B3, In, note(receivedSocketState), Forward, slot("robot_net_slot_continuousMotionMode(QByteArray)"), none, Wakes, 0},
    {0x50C3, In, note(singal_recvGAutoRun), Forward, relay("signal_gloablAutoRun(QByteArray)"), none, NoWake, 0},
    {0x50C6, In, note(singal_recvGAutoRunState), Forward, relay("signal_gloablAutoRunState(QByteArray)"), none, NoWake, 0},

    // File transfer (0x55..)
    {0x5502, In, note(receiveUploadAnswer), Forward, none, none, NoWake, 0},
    {0x5508, In, note(receiveFileNamesNeedByDownload), Forward, relay("robot_FileName_Need_DownOrUp(QByteArray)"), none, NoWake, 0},
    {0x5533, In, note(recvJobSumlist), Forward, relay("robot_job_Sum_list(QByteArray)"), none, NoWake, 0},
    {0x5534, In, note(recvJobFileList), Forward, relay("robot_job_File_list(QByteArray)"), none, NoWake, 0},
    {0x5535, In, named("recvJobFileInfoFinish"), NoArgument, relay("robot_job_File_Info_Finish()"), none, NoWake, 0},
    {0x5543, In, note(recvControlLoglist), Forward, relay("robot_ControlLog_list(QByteArray)"), none, NoWake, 0},
    {0x5546, In, note(recvControlENIlist), Forward, relay("robot_ControlENI_list(QByteArray)"), none, NoWake, 0},

    // Variables (0x56..)
    {0x5603, In, note(receiveAllGlobalPosition), Forward, relay("robot_rec_allGlobalPosition(QByteArray)"), none, NoWake, 0},
    {0x5606, In, note(receiveGlobalPosition), Forward, slot("robot_net_slot_GlobalPosition(QByteArray)"), none, Wakes, 0x5605},
    {0x5609, In, note(receiveGlobalVariant), Forward, relay("robot_get_globalVariant(QByteArray)"), none, NoWake, 0},
    {0x560C, In, note(receiveOneGlobalVariant), Forward, slot("robot_net_slot_OneGlobalVariant(QByteArray)"), none, Wakes, 0x560B},
    {0x5613, In, note(receiveLocalVariantPosP), Forward, relay("robot_receiveLocalVariantPosP(QByteArray)"), none, NoWake, 0},
    {0x5616, In, note(receiveLocalVariantPosE), Forward, relay("robot_receiveLocalVariantPosE(QByteArray)"), none, NoWake, 0},
    {0x5619, In, note(receiveLocalVariantValue), Forward, relay("robot_receiveLocalVariantValue(QByteArray)"), none, NoWake, 0},
    {0x561C, In, note(receiveGlobalExternPosition), Forward, none, none, NoWake, 0},

    // Modbus and screw fastening (0x57..)
    {0x5703, In, note(receivedModbusProgram), Forward, relay("robot_receivedModbusProgram_reflash(QByteArray)"), none, NoWake, 0},
    {0x5713, In, note(reveivedModbusParameter), Forward, relay("robot_receivedModbusSlaveParameter(QByteArray)"), none, NoWake, 0},
    {0x5717, In, note(reveivedModbusCheckHeart), Forward, relay("robot_receivedModbusCheckHeart(QByteArray)"), none, NoWake, 0},
    {0x5719, In, note(recrivedModbusState), Forward, slot("robot_net_slot_ModbusState(QByteArray)"), none, Wakes, 0},
    {0x5723, In, note(receivedUploadEnable), Forward, relay("robot_receivedUploadEnable(QByteArray)"), none, NoWake, 0},
    {0x5726, In, note(receivedUploadPara), Forward, relay("robot_receivedUploadPara(QByteArray)"), none, NoWake, 0},
    {0x5729, In, note(receivedDAformat), Forward, relay("robot_receivedDAformat(QByteArray)"), none, NoWake, 0},
    {0x5733, In, note(receivedScrewPara), Forward, relay("robotReceivedScrewPara(QByteArray)"), none, NoWake, 0},
    {0x5736, In, note(receivedScrewIO), Forward, relay("robotReceivedScrewIO(QByteArray)"), none, NoWake, 0},
    {0x5739, In, note(receivedScrewState), Forward, relay("robotReceivedScrewState(QByteArray)"), none, NoWake, 0},
    {0x5746, In, note(reveivedModbusMaterParameter), Forward, relay("robot_receivedModbusMasterParameter(QByteArray)"), none, NoWake, 0},

    // External axes and synchronisation (0x70..)
    {0x7003, In, note(recvOutterAxisPos), Forward, relay("robot_syncAxis_pos(QByteArray)"), none, NoWake, 0},
    {0x7004, In, note(recvOutterAxisState), Forward, relay("robot_syncAxis_state(QByteArray)"), none, NoWake, 0},
    {0x7006, In, note(receivedSyncCalibration), Forward, relay("signal_syncCalibationState(QByteArray)"), none, NoWake, 0},
    {0x700B, In, note(receivedSyncPositionerNum), Forward, slot("robot_net_slot_OutterAxisCount(QByteArray)"), relay("signal_syncPositionerNum(QByteArray)"), Wakes, 0},
    {0x700F, In, note(receivedSyncGroundRail), Forward, slot("robot_net_slot_SyncGroundRail(QByteArray)"), none, Wakes, 0},
    {0x7013, In, note(recvCurEXPosition), Forward, slot("robot_net_slot_CurEXPosition(QByteArray)"), none, Wakes, 0x7012},
    {0x7017, In, note(recvCOOPERATIVE), Forward, slot("robot_net_slot_COOPERATIVE(QByteArray)"), none, Wakes, 0},
    {0x7023, In, note(recvSyncJointPara), Forward, relay("robot_syncJoint_para(QByteArray)"), none, NoWake, 0},
    {0x7026, In, note(signal_receivedSyncJogSpeed), Forward, relay("signal_robot_syncJogSpeed_data(QByteArray)"), none, NoWake, 0},
    {0x7029, In, note(signal_ReceiveSyncEncodeOverflow), Forward, relay("signal_robot_syncEncodeOverflow_data(QByteArray)"), none, NoWake, 0},
    {0x7033, In, note(recvSyncZeroPoint), Forward, relay("robot_syncZeroPoint(QByteArray)"), none, NoWake, 0},
    {0x7037, In, note(receiveOuterSingleCycle), Forward, relay("robot_syncSingleCycle(QByteArray)"), none, NoWake, 0},
    {0x7043, In, note(recvOutterCalResult), Forward, relay("robotSyncAxisCalResult(QByteArray)"), none, NoWake, 0},

    // Point calibration (0x71..0x72)
    {0x7103, In, note(receivedToolCheckFor20), Forward, slot("robot_net_slot_ToolCheckFor20(QByteArray)"), none, Wakes, 0},
    {0x7104, In, note(receivedCountSuccessFor20), Forward, slot("robot_net_slot_CountSuccessFor20(QByteArray)"), none, Wakes, 0},
    {0x7106, In, note(receiveResetResultToZeroPoint), Forward, slot("robot_net_slot_ResetResultToZeroPoint(QByteArray)"), none, Wakes, 0},
    {0x7108, In, note(receive20PointState), Forward, slot("robot_net_slot_ToolStatus(QByteArray)"), none, Wakes, 0},
    {0x710B, In, note(receive20MarkedPoint), Forward, slot("robot_net_slot_20MarkedPoint(QByteArray)"), none, Wakes, 0},
    {0x710E, In, note(receivedAllowCalibration), Forward, relay("signal_receivedAllowCalibration(QByteArray)"), none, NoWake, 0},
    {0x7204, In, note(receivedCountSuccessFor4), Forward, slot("robot_net_slot_CountSuccessFor4(QByteArray)"), none, Wakes, 0x7201},
    {0x7206, In, note(receivedresultForDH), Forward, slot("robot_net_slot_resultForDH(QByteArray)"), none, Wakes, 0x7205},
    {0x7208, In, note(received4Point), Forward, slot("robot_net_slot_4Point(QByteArray)"), none, Wakes, 0x7207},


    // The link's heartbeat (0x72..): answered or noted by the connection itself
    {0x7266, In, named("heartbeat"), Connection, none, none, NoWake, 0},
    {0x7267, In, named("heartbeatAnswer"), Connection, none, none, NoWake, 0x7266},
    // 3D mouse (0x73..)
    {0x7303, In, note(receivedThreeMouse), Forward, relay("robot_threeMouse_para(QByteArray)"), none, NoWake, 0},
    {0x7306, In, note(received3DMousePoint), Forward, relay("robot_3DMouse_Point(QByteArray)"), none, NoWake, 0},
    {0x7309, In, note(received3DMouseMark), Forward, relay("robot_3DMouse_Mark(QByteArray)"), none, NoWake, 0},
    {0x730D, In, note(received_threeD_mouse_port), Forward, none, none, NoWake, 0},

    // Dynamics, collision, drag teaching and identification (0x74..0x76)
    {0x7403, In, note(receivedDynaPara), Forward, relay("robot_dynaPara(QByteArray)"), none, NoWake, 0},
    {0x7405, In, note(receivedDynaIdentify), Forward, relay("robot_dynaIdentify(QByteArray)"), none, NoWake, 0},
    {0x7408, In, note(receivedCollision), Forward, relay("robot_collision(QByteArray)"), none, NoWake, 0},
    {0x740B, In, note(receivedCollisionPara), Forward, relay("robot_collisionPara(QByteArray)"), none, NoWake, 0},
    {0x740E, In, note(receivedTorqFeedback), Forward, relay("robot_torqFeedback(QByteArray)"), none, NoWake, 0},
    {0x7502, In, note(receivedDragTrackName), Forward, none, none, NoWake, 0},
    {0x7506, In, note(receivedDragPara), Forward, relay("robot_DragPara(QByteArray)"), none, NoWake, 0},
    {0x7509, In, note(receivedDragTrajParaOnOff), Forward, none, none, NoWake, 0},
    {0x750B, In, note(receivedDragTrajState), Forward, none, none, NoWake, 0},
    {0x7511, In, note(receivedDragMode), Forward, none, none, NoWake, 0},
    {0x7603, In, note(receivedTrackData), Forward, relay("robot_TrackData(QByteArray)"), none, NoWake, 0},
    {0x7605, In, note(receivedSafeCheck), Forward, relay("robot_SafeCheck(QByteArray)"), none, NoWake, 0},
    {0x7607, In, note(receivedIdentificationData), Forward, relay("robot_IdentificationData(QByteArray)"), none, NoWake, 0},
    {0x7608, In, note(receivedFinish), Forward, relay("robot_Finish(QByteArray)"), none, NoWake, 0},
    {0x7609, In, note(receivedTrackRange), Forward, relay("robot_TrackRange(QByteArray)"), none, NoWake, 0},
    {0x760A, In, note(receivedErrorStop), Forward, relay("robot_ErrorStop(QByteArray)"), none, NoWake, 0},

    // Brake protection and remote control (0x77..0x78)
    {0x7703, In, note(receiveBrakeAvoidCrushed), Forward, relay("robot_receiveBrakeAvoidCrushed(QByteArray)"), none, NoWake, 0},
    {0x7706, In, note(receiveBrakeAvoidCrushedDelay), Forward, relay("robot_receiveBrakeAvoidCrushedDelay(QByteArray)"), none, NoWake, 0},
    {0x7709, In, note(receiveBrakeAvoidCrushedParam), Forward, relay("robot_receiveBrakeAvoidCrushedParam(QByteArray)"), none, NoWake, 0},
    {0x770C, In, note(receiveBrakeAvoidCrushedRecordtorq), Forward, relay("robot_receiveBrakeAvoidCrushedRecordtorq(QByteArray)"), none, NoWake, 0},
    {0x7803, In, note(receiveRemoteCtl), Forward, relay("robot_receiveRemoteCtl(QByteArray)"), none, NoWake, 0},

    // Punching line (0x80..)
    {0x8002, In, note(receivedMaterialState), Forward, relay("signal_receivedMaterialState(QByteArray)"), none, NoWake, 0},
    {0x8005, In, note(receivedControlMode), Forward, relay("signal_receivedControlMode(QByteArray)"), none, NoWake, 0},
    {0x8007, In, note(receivedPunchAmount), Forward, relay("signal_receivedPunchAmount(QByteArray)"), none, NoWake, 0},
    {0x800B, In, note(receivedPunchEnable), Forward, relay("signal_receivedPunchEnable(QByteArray)"), none, NoWake, 0},
    {0x8010, In, note(receivedFixtrueAct), Forward, relay("signal_receivedFixtrueAct(QByteArray)"), none, NoWake, 0},
    {0x8014, In, note(receivedPunchState), Forward, relay("signal_punch_state(QByteArray)"), none, NoWake, 0},
    {0x8015, In, note(receivedPunchPopup), Forward, relay("signal_receivedPunchPopup(QByteArray)"), none, NoWake, 0},
    {0x801A, In, note(receivedProcessNum), Forward, relay("signal_ProcessNum(QByteArray)"), none, NoWake, 0},
    {0x801D, In, note(receivedProcessParame), Forward, relay("signal_ProcessParame(QByteArray)"), none, NoWake, 0},
    {0x8020, In, note(receivedOnlineParame), Forward, none, none, NoWake, 0},
    {0x8022, In, note(receivedCommunicationStatus), Forward, relay("signal_CommunicationStatus(QByteArray)"), none, NoWake, 0},
    {0x8025, In, note(receivedFrontStation), Forward, none, none, NoWake, 0},
    {0x8029, In, note(receivedStation), Forward, none, none, NoWake, 0},
    {0x802C, In, note(receivedFeederStation), Forward, relay("signal_feederStationSet(QByteArray)"), none, NoWake, 0},
    {0x8030, In, note(receivePunchIOPortData), Forward, relay("singal_Punch_IOPort(QByteArray)"), none, NoWake, 0},
    {0x8033, In, note(receivePunchStatusData), Forward, relay("singal_Punch_IOStatus(QByteArray)"), none, NoWake, 0},
    {0x8035, In, note(receiveInterferecalibrationData), Forward, relay("singal_Punch_InterferenceSingle(QByteArray)"), none, NoWake, 0},
    {0x8038, In, note(receivePunchInterferenceData), Forward, relay("singal_Punch_Interference(QByteArray)"), none, NoWake, 0},
    {0x803B, In, note(receivePunchFixtureData), Forward, relay("singal_Punch_IOFixture(QByteArray)"), none, NoWake, 0},
    {0x803F, In, note(receivedPunchDelayTime), Forward, relay("signal_receivedPunchDelayTime(QByteArray)"), none, NoWake, 0},
    {0x8042, In, note(receivedPunchTrack), Forward, relay("signal_receivedPunchTrack(QByteArray)"), none, NoWake, 0},
    {0x8045, In, note(receivedPunchPoint), Forward, relay("signal_receivedPunchPoint(QByteArray)"), none, NoWake, 0},
    {0x804D, In, note(receivedCurTopPoint), Forward, relay("signal_CurTopPoint(QByteArray)"), none, NoWake, 0},
    {0x8050, In, note(receive_punch_variable_cylinder_data), Forward, relay("singal_Punch_variable_cylinder_param(QByteArray)"), none, NoWake, 0},
    {0x8052, In, note(receivedRunStatus), Forward, relay("signal_receivedRunStatus(QByteArray)"), none, NoWake, 0},

    // Bus, payload and acceleration tuning (0x81..)
    {0x8103, In, note(receiveBusType), Forward, none, none, NoWake, 0},
    {0x8106, In, note(receiveCanOpenPara), Forward, relay("robot_receiveCanOpenPara(QByteArray)"), none, NoWake, 0},
    {0x8132, In, note(receivePayloadPara), Forward, relay("robot_receivePayloadPara(QByteArray)"), none, NoWake, 0},
    {0x8142, In, note(receiveAutoModifyAccPara), Forward, relay("robot_receiveAutoModifyAccPara(QByteArray)"), none, NoWake, 0},
    {0x8149, In, note(receiveReceiveAutoModifyAccThresholdpara), Forward, relay("robot_receiveReceiveAutoModifyAccThresholdpara(QByteArray)"), none, NoWake, 0},

    // Job run status (0x91..)
    {0x9103, In, note(receivedProRunStatus), Forward, slot("robot_net_slot_prorunstatus(QByteArray)"), none, Wakes, 0, note(receivedJobStatus), slot("robot_net_slot_JobStatusProcess(QByteArray)")},
    {0x9106, In, note(signal_receivedCurRunLine), Forward, slot("slot_robotCurRunLine(QByteArray)"), none, NoWake, 0},

};

constexpr Message kOutgoing[] = {
    request(SetServoStatus, 0x2003),
    request(GetServoStatus, 0x2003),
    request(SetOperationMode, 0x2103),
    request(GetOperationMode, 0x2103),
    request(TeachModeNotice, 0),
    request(SetCoordinationMode, 0x2203),
    request(GetCoordinationMode, 0x2203),
    request(SetDeadman, 0x2303),
    request(PauseJob, 0),
    request(RunJob, 0),
    request(StopJob, 0),
    request(SetSpeed, 0x2603),
    request(GetSpeed, 0x2603),
    request(SetTestMode, 0x2703),
    request(GetTestMode, 0x2703),
    request(JogStep, 0),
    request(StopMove, 0),
    request(GetPosition, 0x2A03),
    request(GetMotorSpeed, 0x2A05),
    request(GetMotorTorque, 0x2A07),
    request(GetMotorLoad, 0x2A0B),
    request(ClearError, 0),
    request(GetRobotType, 0x2E03),
    request(GetRobotCount, 0x2E06),
    request(GetCurrentPosition, 0x2F08),
    request(DeleteJob, 0),
    request(OpenJob, 0),
    request(ClearAllError, 0),
    request(CalibrateZero, 0x3303),
    request(SetZeroShift, 0),
    request(GetSingleCycle, 0x330A),
    request(GetRunningLine, 0),
    request(SetDout, 0),
    request(GetDout, 0x3603),
    request(GetDin, 0x3606),
    request(SetAout, 0),
    request(GetAout, 0x3609),
    request(GetAin, 0x360B),
    request(SetToolData, 0),
    request(GetToolData, 0x3807),
    request(SetCurrentTool, 0),
    request(GetCurrentTool, 0x380C),
    request(SetCurrentUserFrame, 0x3C0C),
    request(GetUserFrame, 0x3C09),
    request(GetCurrentUserFrame, 0x3C0C),
    request(GetRunStatus, 0x3D03),
    request(MoveJoint, 0),
    request(MoveLinear, 0),
    request(MoveCircle, 0),
    request(MoveSpline, 0),
    request(MoveJointExtra, 0),
    request(MoveLinearExtra, 0),
    request(MoveCircleExtra, 0),
    request(GetCurrentRobot, 0x5003),
    request(SetCycleCount, 0),
    request(PostConnection, 0),
    request(UploadStoredNotice, 0),
    request(ContinuousMode, 0),
    request(ContinuousQueue, 0),
    request(ContinuousSuspend, 0),
    request(ContinuousStart, 0),
    request(ContinuousStop, 0),
    request(StartJobSync, 0),
    request(RequestFileList, 0),
    request(SetGlobalPosition, 0),
    request(GetGlobalPosition, 0x5606),
    request(SetGlobalVariable, 0),
    request(GetGlobalVariable, 0x560C),
    request(GetSyncPosition, 0x7013),
    request(SetFourPointParams, 0x7204),
    request(MarkFourPoint, 0),
    request(ApplyFourPointDh, 0x7206),
    request(GetFourPoint, 0x7208),
    request(Heartbeat, 0x7267),
    request(Farewell, 0),
};


#undef note
#undef named
#undef request

static_assert(ascending(kIncoming, std::size(kIncoming)), "incoming rows sorted by code, one row per code");
static_assert(ascending(kOutgoing, std::size(kOutgoing)), "outgoing rows sorted by code, one row per code");

// A reply names the request it answers, and that request names this reply
// (a request may also be acknowledged by the reply of its query: 0x2001 by
// 0x2003, answered to 0x2002).
constexpr bool pairsAgree()
{
    for (const Message &reply : kIncoming) {
        if (reply.pairedWith == 0)
            continue;
        const Message *request = lookup(kOutgoing, std::size(kOutgoing), reply.pairedWith);
        if (!request || request->pairedWith != reply.code)
            return false;
    }
    for (const Message &request : kOutgoing) {
        if (request.pairedWith != 0 && !lookup(kIncoming, std::size(kIncoming), request.pairedWith))
            return false;
    }
    return true;
}
static_assert(pairsAgree(), "every reply's request is answered by that reply");

constexpr bool reportsKnown()
{
    for (quint16 c : {report::Error, report::JobLine, report::ControlNumber, report::ContinuousModeState})
        if (!lookup(kIncoming, std::size(kIncoming), c))
            return false;
    return true;
}
static_assert(reportsKnown(), "every named report has its incoming row");

} // namespace

const Message *find(quint16 code, Direction direction)
{
    return direction == In ? lookup(kIncoming, std::size(kIncoming), code)
                           : lookup(kOutgoing, std::size(kOutgoing), code);
}

const Message *findAny(quint16 code)
{
    const Message *row = find(code, In);
    return row ? row : find(code, Direction::ToController);
}

const char *name(quint16 code)
{
    const Message *row = findAny(code);
    return row ? row->name : nullptr;
}

quint16 replyTo(quint16 requestCode)
{
    const Message *row = find(requestCode, Direction::ToController);
    return row ? row->pairedWith : 0;
}

Rows incoming()
{
    return {kIncoming, int(std::size(kIncoming))};
}

Rows outgoing()
{
    return {kOutgoing, int(std::size(kOutgoing))};
}

} // namespace qrx::protocol
