// The controller-to-host vocabulary: which notification each incoming
// command code becomes. Rows are sorted by code (checked at compile time);
// the high byte of a code is its family.

#include "link/DispatchTable.h"

#include <algorithm>
#include <iterator>

namespace qrx {
namespace {

using N = LinkNotifications;
using R = DispatchRow;
constexpr R::Kind Forward = R::Forward;
constexpr R::Kind ForwardIfJson = R::ForwardIfJson;
constexpr R::Kind TestModeByte = R::TestModeByte;
constexpr R::Kind Position = R::Position;
constexpr R::Kind NoArgument = R::NoArgument;

constexpr DispatchRow kRows[] = {
    // Status and modes (0x20..0x28)
    {0x2003, ForwardIfJson, &N::receivedServoStatus},
    {0x2103, Forward, &N::receivedOperationMode},
    {0x2106, Forward, &N::receivedTeachModeType},
    {0x2203, Forward, &N::receivedCoordinationMode},
    {0x2303, Forward, &N::receivedDeadmanStatus},
    {0x2306, Forward, &N::receivedDeadManMode},
    {0x2406, Forward, &N::receivedFbCmdMode},
    {0x2603, ForwardIfJson, &N::receivedSpeedInfo},
    {0x2606, Forward, &N::receiveJointInchSpeed},
    {0x2609, Forward, &N::receiveRectInchSpeed},
    {0x260C, Forward, &N::recvSensitivity},
    {0x2703, TestModeByte, nullptr},
    {0x2803, Forward, &N::receiveInterpolationMode},

    // Position and drive monitoring (0x2A..)
    {0x2A03, Position, nullptr},
    {0x2A05, Forward, &N::receiveMotorSpeed},
    {0x2A07, Forward, &N::receiveMotorTorque},
    {0x2A09, Forward, &N::receivedPosOver},
    {0x2A0B, Forward, &N::signal_receivedMotorLoad},
    {0x2A13, Forward, &N::receiveTransCoordPos},
    {0x2A16, Forward, &N::receivedTrackingError},
    {0x2A19, Forward, &N::receivedOverlordProtect},

    // Controller messages (0x2B..)
    {0x2B03, Forward, &N::receivedError},
    {0x2B04, Forward, &N::receivedWarning},
    {0x2B05, Forward, &N::receivedInfo},
    {0x2B06, Forward, &N::receivedPopup},

    // Program title and remote parameters (0x2C..)
    {0x2C03, Forward, &N::receivedRobotProgramTitle},
    {0x2C06, Forward, &N::receivedReceiveRemotePara},

    // Robot type and controller configuration (0x2E..)
    {0x2E03, Forward, &N::receivedRobotType},
    {0x2E06, Forward, &N::receiveRobotSum},
    {0x2E09, Forward, &N::receiveControlComCycle},
    {0x2E0C, Forward, &N::recvSelectFuncton},
    {0x2E0F, Forward, &N::receivedServoList},
    {0x2E16, Forward, &N::receivedRobotTypeSlave},
    {0x2E19, Forward, &N::receivedRobotSyncAxle},
    {0x2E1C, Forward, &N::receivedENI},

    // IO configuration, IO state and multi-robot positions (0x2F..)
    {0x2F03, Forward, &N::recriveioparam},
    {0x2F06, Forward, &N::recriveMoreRobotResetPosition},
    {0x2F08, Forward, &N::recriveMoreRobotCurPosition},
    {0x2F0B, Forward, &N::recriveIoStatus},
    {0x2F0F, Forward, &N::receiveIOState},
    {0x2F11, Forward, &N::signal_doubleRobotCurPosition},
    {0x2F13, Forward, &N::receiveIOFuncState},
    {0x2F16, Forward, &N::receiveUnsafePoint},
    {0x2F1C, Forward, &N::receiveReservationState},
    {0x2F23, Forward, &N::recvIOConfig},
    {0x2F26, Forward, &N::recvIORemoteOutput},
    {0x2F33, Forward, &N::receiveSafetySet},
    {0x2F43, Forward, &N::receivedIODinAlarm},
    {0x2F46, Forward, &N::receivedIODoutAlarm},
    {0x2F49, Forward, &N::receivedIODinPortName},
    {0x2F4C, Forward, &N::receivedIODoutPortName},
    {0x2F4F, Forward, &N::receivedIOAIPortName},
    {0x2F52, Forward, &N::receivedIOAOPortName},

    // Jobs, errors, zero point, version, stepping and IO values (0x31..0x37)
    {0x3119, Forward, &N::signal_receivedMainJob},
    {0x3202, Forward, &N::receiveErrorStatus},
    {0x3205, Forward, &N::receiveCollisionDetectDragTeach},
    {0x3207, Forward, &N::receiveClearCollision},
    {0x3303, Forward, &N::receivedZeroSuccess},
    {0x3306, Forward, &N::receivedEncoderState},
    {0x330A, Forward, &N::receivedSingleCycleValue},
    {0x3403, Forward, &N::recvControlVersion},
    {0x3501, Forward, &N::receivedStepEndStatus},
    {0x3502, Forward, &N::receivedBWBStatus},
    {0x3504, Forward, &N::receivedJobfileLine},
    {0x3603, Forward, &N::receivedDoutStatus},
    {0x3606, Forward, &N::receivedDinStatus},
    {0x3609, Forward, &N::receivedAoutStatus},
    {0x360B, Forward, &N::receivedAinStatus},
    {0x360E, Forward, &N::ReceivedForcedInputStatus},
    {0x3613, Forward, &N::ReceivedForcedAnalogInputStatus},

    // Tools, user frames, kinematic parameters and ranges (0x38..0x3F)
    {0x3803, Forward, &N::receivedToolCheck},
    {0x3804, Forward, &N::receivedCountSuccess},
    {0x3807, Forward, &N::receivedCountToolData},
    {0x380C, Forward, &N::receivedToolInfo},
    {0x3813, Forward, &N::receive7MarkedPoint},
    {0x3816, Forward, &N::signal_receivedAllToolCheck},
    {0x3A03, Forward, &N::recvDHparaState},
    {0x3B03, Forward, &N::receivedJointPara},
    {0x3B06, Forward, &N::receiveDecareParam},
    {0x3B09, Forward, &N::receivedEncoderPara},
    {0x3C02, Forward, &N::receivedUserSuccess},
    {0x3C04, Forward, &N::receivedUserCoordsCheck},
    {0x3C09, Forward, &N::receivedUserCoordsReply},
    {0x3C0C, ForwardIfJson, &N::receivedCurrentUserCoords},
    {0x3C0F, Forward, &N::receivedUserCoordsNote},
    {0x3D03, Forward, &N::receivedProRunStatus},
    {0x3E03, Forward, &N::receivedPresentRobot},
    {0x3E05, Forward, &N::receivedDHParaValueRobot},
    {0x3F03, Forward, &N::receivedRobotRange},
    {0x3F06, Forward, &N::receivedVisionRange},
    {0x3F09, Forward, &N::receivedInterfereRange},

    // Welding (0x40..)
    {0x4003, Forward, &N::receivedWeldEquipmentData},
    {0x4006, Forward, &N::receivedCurVolMatData},
    {0x4009, Forward, &N::receivedArcsettingData},
    {0x400D, Forward, &N::receivedWaveweldData},
    {0x400F, Forward, &N::receiveWaveIUMatch},
    {0x4013, Forward, &N::receiveWeldIOData},
    {0x4016, Forward, &N::receiveWeldMonitor},
    {0x401C, Forward, &N::receiveWeldEnableState},
    {0x401F, Forward, &N::receivedWelder},
    {0x4023, Forward, &N::receivedWelderState},
    {0x4025, Forward, &N::signal_receivedWeldParaNotes},
    {0x4027, Forward, &N::receivedReceiveWeldRecord},
    {0x402A, Forward, &N::receiveWeldAdjustment},
    {0x4053, Forward, &N::receiveweldintersectionPoint},
    {0x4054, Forward, &N::receiveWeldintersectionCal},
    {0x4057, Forward, &N::receiveweldintersectionPara},
    {0x4063, Forward, &N::receiveOuterWeldTorchParam},
    {0x4067, Forward, &N::receiveOuterWeldType},

    // Vision, laser sensor and seam tracking (0x41..)
    {0x4103, Forward, &N::receiveVisionParameter},
    {0x4106, Forward, &N::receiveVisionPosParameter},
    {0x4108, Forward, &N::receiveVisionDebugPosList},
    {0x4111, Forward, &N::receiveVisionPosGesture},
    {0x4113, Forward, &N::receiveVisionPostrytakephoto},
    {0x4115, Forward, &N::receiveVisionIp},
    {0x4119, Forward, &N::receivevisualcarbinpara},
    {0x411B, Forward, &N::receiveVisualCarbinPoint},
    {0x4120, Forward, &N::receiveCaculateVisualCarbinPoint},
    {0x4121, Forward, &N::caculateVisualCarbinPointFinish},
    {0x4132, Forward, &N::receivedLaserParameter},
    {0x4135, Forward, &N::signal_receivedSensorType},
    {0x4138, Forward, &N::receivedTrackParameter},
    {0x413B, Forward, &N::receivedSearchParameter},
    {0x4141, Forward, &N::receivedLaserCalibate},
    {0x4143, Forward, &N::receivedLaserCalibateReCord},
    {0x4146, Forward, &N::receivedLaserCalibateResult},
    {0x414A, Forward, &N::signal_calibrated},
    {0x4152, Forward, &N::receivedArcTrackCOMM},
    {0x4155, Forward, &N::receivedArcTrackCOMP},
    {0x4158, Forward, &N::receivedArcHTrackCOMP},
    {0x4162, Forward, &N::signal_receivedArcSearch},
    {0x4166, Forward, &N::receivedArcVolTrackCOMP},
    {0x4171, Forward, &N::signal_receivedTrackSensorType},
    {0x4182, Forward, &N::receiveTCPParameter},

    // Palletising (0x42..)
    {0x4203, Forward, &N::recvPalletToolParameter},
    {0x4206, Forward, &N::recvPalletTrayParameter},
    {0x4209, Forward, &N::recvPalletPositionParameter},
    {0x420C, Forward, &N::recvPalletWorkpieceParameter},
    {0x420F, Forward, &N::recvPalletApproachParameter},
    {0x4212, Forward, &N::recvPalletOverlappingModel},
    {0x4215, Forward, &N::recvPalletPlaneModel},
    {0x4217, Forward, &N::recvPalletChangeModel},
    {0x4219, Forward, &N::recvPalletPlanePreview},
    {0x421C, Forward, &N::recvPalletState},
    {0x4223, Forward, &N::recvSwitchPalletMode},
    {0x4226, Forward, &N::recvPalletEasyPositionParameter},
    {0x4229, Forward, &N::recvPalletEasyToolParameter},
    {0x422B, Forward, &N::recvPalletAutoCalculate},
    {0x422E, Forward, &N::receivealletPlaneCarbin},
    {0x4233, Forward, &N::receivePalletData},
    {0x4243, Forward, &N::recvPalletLocATPara},
    {0x4249, Forward, &N::recvPieceLocAT},

    // Controller address, laser cutting (0x43..0x45)
    {0x4303, Forward, &N::receiveControlIp},
    {0x4306, Forward, &N::receiveConntrollerInitState},
    {0x4403, Forward, &N::receiveChangeIosetData},
    {0x4406, Forward, &N::receiveLaserTechParam},
    {0x4409, Forward, &N::receiveChangeLaserAnalog},
    {0x440C, Forward, &N::receiveCutTechParam},
    {0x440F, Forward, &N::receiveCurrentState},
    {0x4413, Forward, &N::receiveShotParameter},
    {0x4419, Forward, &N::receiveChangeLaserAnalogSet},

    // Polishing and spraying (0x46..0x47)
    {0x4603, Forward, &N::receivedPolishPara},
    {0x4703, Forward, &N::receivedSprayAnalog},
    {0x4706, Forward, &N::receivedSprayDigital},
    {0x4709, Forward, &N::receivedSpraySequence},
    {0x470C, Forward, &N::receivedSprayTrackPara},
    {0x4713, Forward, &N::receivedSprayHandOperatOne},
    {0x4716, Forward, &N::receivedSprayHandOperatTwo},
    {0x4719, Forward, &N::receivedSprayHandOperatThree},

    // Conveyor tracking and job status (0x48..0x49)
    {0x4803, Forward, &N::receiveTrackConBasic},
    {0x4806, Forward, &N::receiveTrackConTool},
    {0x4808, Forward, &N::receiveTrackSpeed},
    {0x480F, Forward, &N::receiveTrackConUerPoint},
    {0x4813, Forward, &N::receiveCalibrationedPoint},
    {0x4817, Forward, &N::receiveSensorPos},
    {0x4819, Forward, &N::receiveCalibrationedSensorPoint},
    {0x481D, Forward, &N::receiveCalibrationedSensorPos},
    {0x4832, Forward, &N::rceiveTrackConPos},
    {0x4834, Forward, &N::receiveCalibrationPos},
    {0x483C, Forward, &N::receiveWaitPoint},
    {0x483E, Forward, &N::receiveCalibarteRespond},
    {0x4919, Forward, &N::receivedProRunStatus, &N::receivedJobStatus},

    // System (0x50..)
    {0x5003, Forward, &N::receivedChangeRobot},
    {0x5013, Forward, &N::recriveRobotCycleIndex},
    {0x5023, Forward, &N::receiveRobotRunningTime},
    {0x5033, Forward, &N::recriveModbusIoState},
    {0x5053, Forward, &N::recvControlNumber},
    {0x505C, Forward, &N::recvSysClock},
    {0x5066, Forward, &N::recvBackup},
    {0x5068, Forward, &N::recvBackupRestore},
    {0x5073, Forward, &N::recvServoPara},
    {0x5083, Forward, &N::receivedProSelfStart},
    {0x5093, Forward, &N::receivehistorycmd},
    {0x50A3, Forward, &N::receivedRunModeAutoMan},
    {0x50B3, Forward, &N::receivedSocketState},
    {0x50C3, Forward, &N::singal_recvGAutoRun},
    {0x50C6, Forward, &N::singal_recvGAutoRunState},

    // File transfer (0x55..)
    {0x5502, Forward, &N::receiveUploadAnswer},
    {0x5508, Forward, &N::receiveFileNamesNeedByDownload},
    {0x5533, Forward, &N::recvJobSumlist},
    {0x5534, Forward, &N::recvJobFileList},
    {0x5535, NoArgument, nullptr},
    {0x5543, Forward, &N::recvControlLoglist},
    {0x5546, Forward, &N::recvControlENIlist},

    // Variables (0x56..)
    {0x5603, Forward, &N::receiveAllGlobalPosition},
    {0x5606, Forward, &N::receiveGlobalPosition},
    {0x5609, Forward, &N::receiveGlobalVariant},
    {0x560C, Forward, &N::receiveOneGlobalVariant},
    {0x5613, Forward, &N::receiveLocalVariantPosP},
    {0x5616, Forward, &N::receiveLocalVariantPosE},
    {0x5619, Forward, &N::receiveLocalVariantValue},
    {0x561C, Forward, &N::receiveGlobalExternPosition},

    // Modbus and screw fastening (0x57..)
    {0x5703, Forward, &N::receivedModbusProgram},
    {0x5713, Forward, &N::reveivedModbusParameter},
    {0x5717, Forward, &N::reveivedModbusCheckHeart},
    {0x5719, Forward, &N::recrivedModbusState},
    {0x5723, Forward, &N::receivedUploadEnable},
    {0x5726, Forward, &N::receivedUploadPara},
    {0x5729, Forward, &N::receivedDAformat},
    {0x5733, Forward, &N::receivedScrewPara},
    {0x5736, Forward, &N::receivedScrewIO},
    {0x5739, Forward, &N::receivedScrewState},
    {0x5746, Forward, &N::reveivedModbusMaterParameter},

    // External axes and synchronisation (0x70..)
    {0x7003, Forward, &N::recvOutterAxisPos},
    {0x7004, Forward, &N::recvOutterAxisState},
    {0x7006, Forward, &N::receivedSyncCalibration},
    {0x700B, Forward, &N::receivedSyncPositionerNum},
    {0x700F, Forward, &N::receivedSyncGroundRail},
    {0x7013, Forward, &N::recvCurEXPosition},
    {0x7017, Forward, &N::recvCOOPERATIVE},
    {0x7023, Forward, &N::recvSyncJointPara},
    {0x7026, Forward, &N::signal_receivedSyncJogSpeed},
    {0x7029, Forward, &N::signal_ReceiveSyncEncodeOverflow},
    {0x7033, Forward, &N::recvSyncZeroPoint},
    {0x7037, Forward, &N::receiveOuterSingleCycle},
    {0x7043, Forward, &N::recvOutterCalResult},

    // Point calibration (0x71..0x72)
    {0x7103, Forward, &N::receivedToolCheckFor20},
    {0x7104, Forward, &N::receivedCountSuccessFor20},
    {0x7106, Forward, &N::receiveResetResultToZeroPoint},
    {0x7108, Forward, &N::receive20PointState},
    {0x710B, Forward, &N::receive20MarkedPoint},
    {0x710E, Forward, &N::receivedAllowCalibration},
    {0x7204, Forward, &N::receivedCountSuccessFor4},
    {0x7206, Forward, &N::receivedresultForDH},
    {0x7208, Forward, &N::received4Point},

    // 3D mouse (0x73..)
    {0x7303, Forward, &N::receivedThreeMouse},
    {0x7306, Forward, &N::received3DMousePoint},
    {0x7309, Forward, &N::received3DMouseMark},
    {0x730D, Forward, &N::received_threeD_mouse_port},

    // Dynamics, collision, drag teaching and identification (0x74..0x76)
    {0x7403, Forward, &N::receivedDynaPara},
    {0x7405, Forward, &N::receivedDynaIdentify},
    {0x7408, Forward, &N::receivedCollision},
    {0x740B, Forward, &N::receivedCollisionPara},
    {0x740E, Forward, &N::receivedTorqFeedback},
    {0x7502, Forward, &N::receivedDragTrackName},
    {0x7506, Forward, &N::receivedDragPara},
    {0x7509, Forward, &N::receivedDragTrajParaOnOff},
    {0x750B, Forward, &N::receivedDragTrajState},
    {0x7511, Forward, &N::receivedDragMode},
    {0x7603, Forward, &N::receivedTrackData},
    {0x7605, Forward, &N::receivedSafeCheck},
    {0x7607, Forward, &N::receivedIdentificationData},
    {0x7608, Forward, &N::receivedFinish},
    {0x7609, Forward, &N::receivedTrackRange},
    {0x760A, Forward, &N::receivedErrorStop},

    // Brake protection and remote control (0x77..0x78)
    {0x7703, Forward, &N::receiveBrakeAvoidCrushed},
    {0x7706, Forward, &N::receiveBrakeAvoidCrushedDelay},
    {0x7709, Forward, &N::receiveBrakeAvoidCrushedParam},
    {0x770C, Forward, &N::receiveBrakeAvoidCrushedRecordtorq},
    {0x7803, Forward, &N::receiveRemoteCtl},

    // Punching line (0x80..)
    {0x8002, Forward, &N::receivedMaterialState},
    {0x8005, Forward, &N::receivedControlMode},
    {0x8007, Forward, &N::receivedPunchAmount},
    {0x800B, Forward, &N::receivedPunchEnable},
    {0x8010, Forward, &N::receivedFixtrueAct},
    {0x8014, Forward, &N::receivedPunchState},
    {0x8015, Forward, &N::receivedPunchPopup},
    {0x801A, Forward, &N::receivedProcessNum},
    {0x801D, Forward, &N::receivedProcessParame},
    {0x8020, Forward, &N::receivedOnlineParame},
    {0x8022, Forward, &N::receivedCommunicationStatus},
    {0x8025, Forward, &N::receivedFrontStation},
    {0x8029, Forward, &N::receivedStation},
    {0x802C, Forward, &N::receivedFeederStation},
    {0x8030, Forward, &N::receivePunchIOPortData},
    {0x8033, Forward, &N::receivePunchStatusData},
    {0x8035, Forward, &N::receiveInterferecalibrationData},
    {0x8038, Forward, &N::receivePunchInterferenceData},
    {0x803B, Forward, &N::receivePunchFixtureData},
    {0x803F, Forward, &N::receivedPunchDelayTime},
    {0x8042, Forward, &N::receivedPunchTrack},
    {0x8045, Forward, &N::receivedPunchPoint},
    {0x804D, Forward, &N::receivedCurTopPoint},
    {0x8050, Forward, &N::receive_punch_variable_cylinder_data},
    {0x8052, Forward, &N::receivedRunStatus},

    // Bus, payload and acceleration tuning (0x81..)
    {0x8103, Forward, &N::receiveBusType},
    {0x8106, Forward, &N::receiveCanOpenPara},
    {0x8132, Forward, &N::receivePayloadPara},
    {0x8142, Forward, &N::receiveAutoModifyAccPara},
    {0x8149, Forward, &N::receiveReceiveAutoModifyAccThresholdpara},

    // Job run status (0x91..)
    {0x9103, Forward, &N::receivedProRunStatus, &N::receivedJobStatus},
    {0x9106, Forward, &N::signal_receivedCurRunLine},
};

constexpr bool strictlyAscending()
{
    for (std::size_t i = 1; i < std::size(kRows); ++i) {
        if (kRows[i - 1].code >= kRows[i].code)
            return false;
    }
    return true;
}
static_assert(strictlyAscending(), "dispatch rows must be sorted by code, one row per code");

} // namespace

const DispatchRow *findDispatchRow(quint16 code)
{
    const auto end = std::end(kRows);
    const auto it = std::lower_bound(std::begin(kRows), end, code,
                                     [](const DispatchRow &row, quint16 c) { return row.code < c; });
    return (it != end && it->code == code) ? it : nullptr;
}

int dispatchRowCount()
{
    return int(std::size(kRows));
}

} // namespace qrx
