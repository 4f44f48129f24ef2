// The protocol catalogue: one row per command code and direction.
//
// Incoming rows, by column: code, the notification's name, how the
// dispatcher delivers it, and for a reply the request it answers. Two rows
// carry a second notification of the same payload (0x4919 and 0x9103: run
// status and job status). What the state model makes of a report is its own
// table (robot/ReportTable.cpp); the link maps the names to its signals.
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

constexpr Direction In = Direction::FromController;
constexpr Delivery Forward = Delivery::Forward;
constexpr Delivery ForwardIfJson = Delivery::ForwardIfJson;
constexpr Delivery TestModeByte = Delivery::TestModeByte;
constexpr Delivery Position = Delivery::Position;
constexpr Delivery NoArgument = Delivery::NoArgument;
constexpr Delivery Connection = Delivery::Connection;

#define request(n, reply) {code::n, Direction::ToController, #n, Delivery::None, reply}

constexpr Message kIncoming[] = {
    // Status and modes (0x20..0x28)
    {0x2003, In, "receivedServoStatus", ForwardIfJson, 0x2002},
    {0x2103, In, "receivedOperationMode", Forward, 0x2102},
    {0x2106, In, "receivedTeachModeType", Forward, 0},
    {0x2203, In, "receivedCoordinationMode", Forward, 0x2202},
    {0x2303, In, "receivedDeadmanStatus", Forward, 0},
    {0x2306, In, "receivedDeadManMode", Forward, 0},
    {0x2406, In, "receivedFbCmdMode", Forward, 0},
    {0x2603, In, "receivedSpeedInfo", ForwardIfJson, 0x2602},
    {0x2606, In, "receiveJointInchSpeed", Forward, 0},
    {0x2609, In, "receiveRectInchSpeed", Forward, 0},
    {0x260C, In, "recvSensitivity", Forward, 0},
    {0x2703, In, "receivedTestMode", TestModeByte, 0x2702},
    {0x2803, In, "receiveInterpolationMode", Forward, 0},

    // Position and drive monitoring (0x2A..)
    {0x2A03, In, "receivedPosition", Position, 0x2A02},
    {0x2A05, In, "receiveMotorSpeed", Forward, 0x2A04},
    {0x2A07, In, "receiveMotorTorque", Forward, 0x2A06},
    {0x2A09, In, "receivedPosOver", Forward, 0},
    {0x2A0B, In, "signal_receivedMotorLoad", Forward, 0x2A0A},
    {0x2A13, In, "receiveTransCoordPos", Forward, 0},
    {0x2A16, In, "receivedTrackingError", Forward, 0},
    {0x2A19, In, "receivedOverlordProtect", Forward, 0},

    // Controller messages (0x2B..)
    {0x2B03, In, "receivedError", Forward, 0},
    {0x2B04, In, "receivedWarning", Forward, 0},
    {0x2B05, In, "receivedInfo", Forward, 0},
    {0x2B06, In, "receivedPopup", Forward, 0},

    // Program title and remote parameters (0x2C..)
    {0x2C03, In, "receivedRobotProgramTitle", Forward, 0},
    {0x2C06, In, "receivedReceiveRemotePara", Forward, 0},

    // Robot type and controller configuration (0x2E..)
    {0x2E03, In, "receivedRobotType", Forward, 0x2E02},
    {0x2E06, In, "receiveRobotSum", Forward, 0x2E05},
    {0x2E09, In, "receiveControlComCycle", Forward, 0},
    {0x2E0C, In, "recvSelectFuncton", Forward, 0},
    {0x2E0F, In, "receivedServoList", Forward, 0},
    {0x2E16, In, "receivedRobotTypeSlave", Forward, 0},
    {0x2E19, In, "receivedRobotSyncAxle", Forward, 0},
    {0x2E1C, In, "receivedENI", Forward, 0},

    // IO configuration, IO state and multi-robot positions (0x2F..)
    {0x2F03, In, "recriveioparam", Forward, 0},
    {0x2F06, In, "recriveMoreRobotResetPosition", Forward, 0},
    {0x2F08, In, "recriveMoreRobotCurPosition", Forward, 0x2F07},
    {0x2F0B, In, "recriveIoStatus", Forward, 0},
    {0x2F0F, In, "receiveIOState", Forward, 0},
    {0x2F11, In, "signal_doubleRobotCurPosition", Forward, 0},
    {0x2F13, In, "receiveIOFuncState", Forward, 0},
    {0x2F16, In, "receiveUnsafePoint", Forward, 0},
    {0x2F1C, In, "receiveReservationState", Forward, 0},
    {0x2F23, In, "recvIOConfig", Forward, 0},
    {0x2F26, In, "recvIORemoteOutput", Forward, 0},
    {0x2F33, In, "receiveSafetySet", Forward, 0},
    {0x2F43, In, "receivedIODinAlarm", Forward, 0},
    {0x2F46, In, "receivedIODoutAlarm", Forward, 0},
    {0x2F49, In, "receivedIODinPortName", Forward, 0},
    {0x2F4C, In, "receivedIODoutPortName", Forward, 0},
    {0x2F4F, In, "receivedIOAIPortName", Forward, 0},
    {0x2F52, In, "receivedIOAOPortName", Forward, 0},

    // Jobs, errors, zero point, version, stepping and IO values (0x31..0x37)
    {0x3119, In, "signal_receivedMainJob", Forward, 0},
    {0x3202, In, "receiveErrorStatus", Forward, 0},
    {0x3205, In, "receiveCollisionDetectDragTeach", Forward, 0},
    {0x3207, In, "receiveClearCollision", Forward, 0},
    {0x3303, In, "receivedZeroSuccess", Forward, 0x3301},
    {0x3306, In, "receivedEncoderState", Forward, 0},
    {0x330A, In, "receivedSingleCycleValue", Forward, 0x3309},
    {0x3403, In, "recvControlVersion", Forward, 0},
    {0x3501, In, "receivedStepEndStatus", Forward, 0},
    {0x3502, In, "receivedBWBStatus", Forward, 0},
    {0x3504, In, "receivedJobfileLine", Forward, 0},
    {0x3603, In, "receivedDoutStatus", Forward, 0x3602},
    {0x3606, In, "receivedDinStatus", Forward, 0x3605},
    {0x3609, In, "receivedAoutStatus", Forward, 0x3608},
    {0x360B, In, "receivedAinStatus", Forward, 0x360A},
    {0x360E, In, "ReceivedForcedInputStatus", Forward, 0},
    {0x3613, In, "ReceivedForcedAnalogInputStatus", Forward, 0},

    // Tools, user frames, kinematic parameters and ranges (0x38..0x3F)
    {0x3803, In, "receivedToolCheck", Forward, 0},
    {0x3804, In, "receivedCountSuccess", Forward, 0},
    {0x3807, In, "receivedCountToolData", Forward, 0x3806},
    {0x380C, In, "receivedToolInfo", Forward, 0x380B},
    {0x3813, In, "receive7MarkedPoint", Forward, 0},
    {0x3816, In, "signal_receivedAllToolCheck", Forward, 0},
    {0x3A03, In, "recvDHparaState", Forward, 0},
    {0x3B03, In, "receivedJointPara", Forward, 0},
    {0x3B06, In, "receiveDecareParam", Forward, 0},
    {0x3B09, In, "receivedEncoderPara", Forward, 0},
    {0x3C02, In, "receivedUserSuccess", Forward, 0},
    {0x3C04, In, "receivedUserCoordsCheck", Forward, 0},
    {0x3C09, In, "receivedUserCoordsReply", Forward, 0x3C0A},
    {0x3C0C, In, "receivedCurrentUserCoords", ForwardIfJson, 0x3C0B},
    {0x3C0F, In, "receivedUserCoordsNote", Forward, 0},
    {0x3D03, In, "receivedProRunStatus", Forward, 0x3D02},
    {0x3E03, In, "receivedPresentRobot", Forward, 0},
    {0x3E05, In, "receivedDHParaValueRobot", Forward, 0},
    {0x3F03, In, "receivedRobotRange", Forward, 0},
    {0x3F06, In, "receivedVisionRange", Forward, 0},
    {0x3F09, In, "receivedInterfereRange", Forward, 0},

    // Welding (0x40..)
    {0x4003, In, "receivedWeldEquipmentData", Forward, 0},
    {0x4006, In, "receivedCurVolMatData", Forward, 0},
    {0x4009, In, "receivedArcsettingData", Forward, 0},
    {0x400D, In, "receivedWaveweldData", Forward, 0},
    {0x400F, In, "receiveWaveIUMatch", Forward, 0},
    {0x4013, In, "receiveWeldIOData", Forward, 0},
    {0x4016, In, "receiveWeldMonitor", Forward, 0},
    {0x401C, In, "receiveWeldEnableState", Forward, 0},
    {0x401F, In, "receivedWelder", Forward, 0},
    {0x4023, In, "receivedWelderState", Forward, 0},
    {0x4025, In, "signal_receivedWeldParaNotes", Forward, 0},
    {0x4027, In, "receivedReceiveWeldRecord", Forward, 0},
    {0x402A, In, "receiveWeldAdjustment", Forward, 0},
    {0x4053, In, "receiveweldintersectionPoint", Forward, 0},
    {0x4054, In, "receiveWeldintersectionCal", Forward, 0},
    {0x4057, In, "receiveweldintersectionPara", Forward, 0},
    {0x4063, In, "receiveOuterWeldTorchParam", Forward, 0},
    {0x4067, In, "receiveOuterWeldType", Forward, 0},

    // Vision, laser sensor and seam tracking (0x41..)
    {0x4103, In, "receiveVisionParameter", Forward, 0},
    {0x4106, In, "receiveVisionPosParameter", Forward, 0},
    {0x4108, In, "receiveVisionDebugPosList", Forward, 0},
    {0x4111, In, "receiveVisionPosGesture", Forward, 0},
    {0x4113, In, "receiveVisionPostrytakephoto", Forward, 0},
    {0x4115, In, "receiveVisionIp", Forward, 0},
    {0x4119, In, "receivevisualcarbinpara", Forward, 0},
    {0x411B, In, "receiveVisualCarbinPoint", Forward, 0},
    {0x4120, In, "receiveCaculateVisualCarbinPoint", Forward, 0},
    {0x4121, In, "caculateVisualCarbinPointFinish", Forward, 0},
    {0x4132, In, "receivedLaserParameter", Forward, 0},
    {0x4135, In, "signal_receivedSensorType", Forward, 0},
    {0x4138, In, "receivedTrackParameter", Forward, 0},
    {0x413B, In, "receivedSearchParameter", Forward, 0},
    {0x4141, In, "receivedLaserCalibate", Forward, 0},
    {0x4143, In, "receivedLaserCalibateReCord", Forward, 0},
    {0x4146, In, "receivedLaserCalibateResult", Forward, 0},
    {0x414A, In, "signal_calibrated", Forward, 0},
    {0x4152, In, "receivedArcTrackCOMM", Forward, 0},
    {0x4155, In, "receivedArcTrackCOMP", Forward, 0},
    {0x4158, In, "receivedArcHTrackCOMP", Forward, 0},
    {0x4162, In, "signal_receivedArcSearch", Forward, 0},
    {0x4166, In, "receivedArcVolTrackCOMP", Forward, 0},
    {0x4171, In, "signal_receivedTrackSensorType", Forward, 0},
    {0x4182, In, "receiveTCPParameter", Forward, 0},

    // Palletising (0x42..)
    {0x4203, In, "recvPalletToolParameter", Forward, 0},
    {0x4206, In, "recvPalletTrayParameter", Forward, 0},
    {0x4209, In, "recvPalletPositionParameter", Forward, 0},
    {0x420C, In, "recvPalletWorkpieceParameter", Forward, 0},
    {0x420F, In, "recvPalletApproachParameter", Forward, 0},
    {0x4212, In, "recvPalletOverlappingModel", Forward, 0},
    {0x4215, In, "recvPalletPlaneModel", Forward, 0},
    {0x4217, In, "recvPalletChangeModel", Forward, 0},
    {0x4219, In, "recvPalletPlanePreview", Forward, 0},
    {0x421C, In, "recvPalletState", Forward, 0},
    {0x4223, In, "recvSwitchPalletMode", Forward, 0},
    {0x4226, In, "recvPalletEasyPositionParameter", Forward, 0},
    {0x4229, In, "recvPalletEasyToolParameter", Forward, 0},
    {0x422B, In, "recvPalletAutoCalculate", Forward, 0},
    {0x422E, In, "receivealletPlaneCarbin", Forward, 0},
    {0x4233, In, "receivePalletData", Forward, 0},
    {0x4243, In, "recvPalletLocATPara", Forward, 0},
    {0x4249, In, "recvPieceLocAT", Forward, 0},

    // Controller address, laser cutting (0x43..0x45)
    {0x4303, In, "receiveControlIp", Forward, 0},
    {0x4306, In, "receiveConntrollerInitState", Forward, 0},
    {0x4403, In, "receiveChangeIosetData", Forward, 0},
    {0x4406, In, "receiveLaserTechParam", Forward, 0},
    {0x4409, In, "receiveChangeLaserAnalog", Forward, 0},
    {0x440C, In, "receiveCutTechParam", Forward, 0},
    {0x440F, In, "receiveCurrentState", Forward, 0},
    {0x4413, In, "receiveShotParameter", Forward, 0},
    {0x4419, In, "receiveChangeLaserAnalogSet", Forward, 0},

    // Polishing and spraying (0x46..0x47)
    {0x4603, In, "receivedPolishPara", Forward, 0},
    {0x4703, In, "receivedSprayAnalog", Forward, 0},
    {0x4706, In, "receivedSprayDigital", Forward, 0},
    {0x4709, In, "receivedSpraySequence", Forward, 0},
    {0x470C, In, "receivedSprayTrackPara", Forward, 0},
    {0x4713, In, "receivedSprayHandOperatOne", Forward, 0},
    {0x4716, In, "receivedSprayHandOperatTwo", Forward, 0},
    {0x4719, In, "receivedSprayHandOperatThree", Forward, 0},

    // Conveyor tracking and job status (0x48..0x49)
    {0x4803, In, "receiveTrackConBasic", Forward, 0},
    {0x4806, In, "receiveTrackConTool", Forward, 0},
    {0x4808, In, "receiveTrackSpeed", Forward, 0},
    {0x480F, In, "receiveTrackConUerPoint", Forward, 0},
    {0x4813, In, "receiveCalibrationedPoint", Forward, 0},
    {0x4817, In, "receiveSensorPos", Forward, 0},
    {0x4819, In, "receiveCalibrationedSensorPoint", Forward, 0},
    {0x481D, In, "receiveCalibrationedSensorPos", Forward, 0},
    {0x4832, In, "rceiveTrackConPos", Forward, 0},
    {0x4834, In, "receiveCalibrationPos", Forward, 0},
    {0x483C, In, "receiveWaitPoint", Forward, 0},
    {0x483E, In, "receiveCalibarteRespond", Forward, 0},
    {0x4919, In, "receivedProRunStatus", Forward, 0, "receivedJobStatus"},

    // System (0x50..)
    {0x5003, In, "receivedChangeRobot", Forward, 0x5002},
    {0x5013, In, "recriveRobotCycleIndex", Forward, 0},
    {0x5023, In, "receiveRobotRunningTime", Forward, 0},
    {0x5033, In, "recriveModbusIoState", Forward, 0},
    {0x5053, In, "recvControlNumber", Forward, 0},
    {0x505C, In, "recvSysClock", Forward, 0},
    {0x5066, In, "recvBackup", Forward, 0},
    {0x5068, In, "recvBackupRestore", Forward, 0},
    {0x5073, In, "recvServoPara", Forward, 0},
    {0x5083, In, "receivedProSelfStart", Forward, 0},
    {0x5093, In, "receivehistorycmd", Forward, 0},
    {0x50A3, In, "receivedRunModeAutoMan", Forward, 0},
    {0x50B3, In, "receivedSocketState", Forward, 0},
    {0x50C3, In, "singal_recvGAutoRun", Forward, 0},
    {0x50C6, In, "singal_recvGAutoRunState", Forward, 0},

    // File transfer (0x55..)
    {0x5502, In, "receiveUploadAnswer", Forward, 0},
    {0x5508, In, "receiveFileNamesNeedByDownload", Forward, 0},
    {0x5533, In, "recvJobSumlist", Forward, 0},
    {0x5534, In, "recvJobFileList", Forward, 0},
    {0x5535, In, "recvJobFileInfoFinish", NoArgument, 0},
    {0x5543, In, "recvControlLoglist", Forward, 0},
    {0x5546, In, "recvControlENIlist", Forward, 0},

    // Variables (0x56..)
    {0x5603, In, "receiveAllGlobalPosition", Forward, 0},
    {0x5606, In, "receiveGlobalPosition", Forward, 0x5605},
    {0x5609, In, "receiveGlobalVariant", Forward, 0},
    {0x560C, In, "receiveOneGlobalVariant", Forward, 0x560B},
    {0x5613, In, "receiveLocalVariantPosP", Forward, 0},
    {0x5616, In, "receiveLocalVariantPosE", Forward, 0},
    {0x5619, In, "receiveLocalVariantValue", Forward, 0},
    {0x561C, In, "receiveGlobalExternPosition", Forward, 0},

    // Modbus and screw fastening (0x57..)
    {0x5703, In, "receivedModbusProgram", Forward, 0},
    {0x5713, In, "reveivedModbusParameter", Forward, 0},
    {0x5717, In, "reveivedModbusCheckHeart", Forward, 0},
    {0x5719, In, "recrivedModbusState", Forward, 0},
    {0x5723, In, "receivedUploadEnable", Forward, 0},
    {0x5726, In, "receivedUploadPara", Forward, 0},
    {0x5729, In, "receivedDAformat", Forward, 0},
    {0x5733, In, "receivedScrewPara", Forward, 0},
    {0x5736, In, "receivedScrewIO", Forward, 0},
    {0x5739, In, "receivedScrewState", Forward, 0},
    {0x5746, In, "reveivedModbusMaterParameter", Forward, 0},

    // External axes and synchronisation (0x70..)
    {0x7003, In, "recvOutterAxisPos", Forward, 0},
    {0x7004, In, "recvOutterAxisState", Forward, 0},
    {0x7006, In, "receivedSyncCalibration", Forward, 0},
    {0x700B, In, "receivedSyncPositionerNum", Forward, 0},
    {0x700F, In, "receivedSyncGroundRail", Forward, 0},
    {0x7013, In, "recvCurEXPosition", Forward, 0x7012},
    {0x7017, In, "recvCOOPERATIVE", Forward, 0},
    {0x7023, In, "recvSyncJointPara", Forward, 0},
    {0x7026, In, "signal_receivedSyncJogSpeed", Forward, 0},
    {0x7029, In, "signal_ReceiveSyncEncodeOverflow", Forward, 0},
    {0x7033, In, "recvSyncZeroPoint", Forward, 0},
    {0x7037, In, "receiveOuterSingleCycle", Forward, 0},
    {0x7043, In, "recvOutterCalResult", Forward, 0},

    // Point calibration (0x71..0x72)
    {0x7103, In, "receivedToolCheckFor20", Forward, 0},
    {0x7104, In, "receivedCountSuccessFor20", Forward, 0},
    {0x7106, In, "receiveResetResultToZeroPoint", Forward, 0},
    {0x7108, In, "receive20PointState", Forward, 0},
    {0x710B, In, "receive20MarkedPoint", Forward, 0},
    {0x710E, In, "receivedAllowCalibration", Forward, 0},
    {0x7204, In, "receivedCountSuccessFor4", Forward, 0x7201},
    {0x7206, In, "receivedresultForDH", Forward, 0x7205},
    {0x7208, In, "received4Point", Forward, 0x7207},


    // The link's heartbeat (0x72..): answered or noted by the connection itself
    {0x7266, In, "heartbeat", Connection, 0},
    {0x7267, In, "heartbeatAnswer", Connection, 0x7266},
    // 3D mouse (0x73..)
    {0x7303, In, "receivedThreeMouse", Forward, 0},
    {0x7306, In, "received3DMousePoint", Forward, 0},
    {0x7309, In, "received3DMouseMark", Forward, 0},
    {0x730D, In, "received_threeD_mouse_port", Forward, 0},

    // Dynamics, collision, drag teaching and identification (0x74..0x76)
    {0x7403, In, "receivedDynaPara", Forward, 0},
    {0x7405, In, "receivedDynaIdentify", Forward, 0},
    {0x7408, In, "receivedCollision", Forward, 0},
    {0x740B, In, "receivedCollisionPara", Forward, 0},
    {0x740E, In, "receivedTorqFeedback", Forward, 0},
    {0x7502, In, "receivedDragTrackName", Forward, 0},
    {0x7506, In, "receivedDragPara", Forward, 0},
    {0x7509, In, "receivedDragTrajParaOnOff", Forward, 0},
    {0x750B, In, "receivedDragTrajState", Forward, 0},
    {0x7511, In, "receivedDragMode", Forward, 0},
    {0x7603, In, "receivedTrackData", Forward, 0},
    {0x7605, In, "receivedSafeCheck", Forward, 0},
    {0x7607, In, "receivedIdentificationData", Forward, 0},
    {0x7608, In, "receivedFinish", Forward, 0},
    {0x7609, In, "receivedTrackRange", Forward, 0},
    {0x760A, In, "receivedErrorStop", Forward, 0},

    // Brake protection and remote control (0x77..0x78)
    {0x7703, In, "receiveBrakeAvoidCrushed", Forward, 0},
    {0x7706, In, "receiveBrakeAvoidCrushedDelay", Forward, 0},
    {0x7709, In, "receiveBrakeAvoidCrushedParam", Forward, 0},
    {0x770C, In, "receiveBrakeAvoidCrushedRecordtorq", Forward, 0},
    {0x7803, In, "receiveRemoteCtl", Forward, 0},

    // Punching line (0x80..)
    {0x8002, In, "receivedMaterialState", Forward, 0},
    {0x8005, In, "receivedControlMode", Forward, 0},
    {0x8007, In, "receivedPunchAmount", Forward, 0},
    {0x800B, In, "receivedPunchEnable", Forward, 0},
    {0x8010, In, "receivedFixtrueAct", Forward, 0},
    {0x8014, In, "receivedPunchState", Forward, 0},
    {0x8015, In, "receivedPunchPopup", Forward, 0},
    {0x801A, In, "receivedProcessNum", Forward, 0},
    {0x801D, In, "receivedProcessParame", Forward, 0},
    {0x8020, In, "receivedOnlineParame", Forward, 0},
    {0x8022, In, "receivedCommunicationStatus", Forward, 0},
    {0x8025, In, "receivedFrontStation", Forward, 0},
    {0x8029, In, "receivedStation", Forward, 0},
    {0x802C, In, "receivedFeederStation", Forward, 0},
    {0x8030, In, "receivePunchIOPortData", Forward, 0},
    {0x8033, In, "receivePunchStatusData", Forward, 0},
    {0x8035, In, "receiveInterferecalibrationData", Forward, 0},
    {0x8038, In, "receivePunchInterferenceData", Forward, 0},
    {0x803B, In, "receivePunchFixtureData", Forward, 0},
    {0x803F, In, "receivedPunchDelayTime", Forward, 0},
    {0x8042, In, "receivedPunchTrack", Forward, 0},
    {0x8045, In, "receivedPunchPoint", Forward, 0},
    {0x804D, In, "receivedCurTopPoint", Forward, 0},
    {0x8050, In, "receive_punch_variable_cylinder_data", Forward, 0},
    {0x8052, In, "receivedRunStatus", Forward, 0},

    // Bus, payload and acceleration tuning (0x81..)
    {0x8103, In, "receiveBusType", Forward, 0},
    {0x8106, In, "receiveCanOpenPara", Forward, 0},
    {0x8132, In, "receivePayloadPara", Forward, 0},
    {0x8142, In, "receiveAutoModifyAccPara", Forward, 0},
    {0x8149, In, "receiveReceiveAutoModifyAccThresholdpara", Forward, 0},

    // Job run status (0x91..)
    {0x9103, In, "receivedProRunStatus", Forward, 0, "receivedJobStatus"},
    {0x9106, In, "signal_receivedCurRunLine", Forward, 0},

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

