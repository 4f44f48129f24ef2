#pragma once
// The named command codes the library sends. Every one of them has its row
// in the catalogue (Catalogue.cpp), which also says the reply the controller
// answers it with. Incoming codes are named by their notification there; the
// few reports that answer no request are also named below, for the
// simulated controller that sends them.

#include <QtGlobal>

namespace qrx::protocol::code {

enum : quint16 {
    // servo, modes, coordinates, deadman
    SetServoStatus = 0x2001,
    GetServoStatus = 0x2002,
    SetOperationMode = 0x2101,
    GetOperationMode = 0x2102,
    TeachModeNotice = 0x2105, // sent by the Robot when the controller reports teach mode
    SetCoordinationMode = 0x2201,
    GetCoordinationMode = 0x2202,
    SetDeadman = 0x2301,
    // jobs
    PauseJob = 0x2401,
    RunJob = 0x2501,
    StopJob = 0x2503,
    // speed, test mode, jogging, position
    SetSpeed = 0x2601,
    GetSpeed = 0x2602,
    SetTestMode = 0x2701,
    GetTestMode = 0x2702,
    JogStep = 0x2901,
    StopMove = 0x2902,
    GetPosition = 0x2A02,
    GetMotorSpeed = 0x2A04,
    GetMotorTorque = 0x2A06,
    GetMotorLoad = 0x2A0A,
    ClearError = 0x2B01,
    GetRobotType = 0x2E02,
    GetRobotCount = 0x2E05,
    GetCurrentPosition = 0x2F07,
    DeleteJob = 0x3111,
    OpenJob = 0x3114,
    ClearAllError = 0x3201,
    CalibrateZero = 0x3301,
    SetZeroShift = 0x3307,
    GetSingleCycle = 0x3309,
    GetRunningLine = 0x3503,
    // IO
    SetDout = 0x3601,
    GetDout = 0x3602,
    GetDin = 0x3605,
    SetAout = 0x3607,
    GetAout = 0x3608,
    GetAin = 0x360A,
    // tools and user frames
    SetToolData = 0x3805,
    GetToolData = 0x3806,
    SetCurrentTool = 0x380A,
    GetCurrentTool = 0x380B,
    SetCurrentUserFrame = 0x3C08,
    GetUserFrame = 0x3C0A,
    GetCurrentUserFrame = 0x3C0B,
    GetRunStatus = 0x3D02,
    // motion
    MoveJoint = 0x4501,
    MoveLinear = 0x4502,
    MoveCircle = 0x4503,
    MoveSpline = 0x4504,
    MoveJointExtra = 0x4507,
    MoveLinearExtra = 0x4508,
    MoveCircleExtra = 0x4509,
    // system, continuous motion, variables
    GetCurrentRobot = 0x5002,
    SetCycleCount = 0x5011,
    PostConnection = 0x5052,
    ContinuousMode = 0x50B1,
    ContinuousQueue = 0x50B4,
    ContinuousSuspend = 0x50B7,
    ContinuousStart = 0x50B8,
    ContinuousStop = 0x50B9,
    SetGlobalPosition = 0x5604,
    GetGlobalPosition = 0x5605,
    SetGlobalVariable = 0x5607,
    GetGlobalVariable = 0x560B,
    // external axes, four-point calibration
    GetSyncPosition = 0x7012,
    SetFourPointParams = 0x7201,
    MarkFourPoint = 0x7202,
    ApplyFourPointDh = 0x7205,
    GetFourPoint = 0x7207,
    // the link's own
    Heartbeat = 0x7266,
    HeartbeatAnswer = 0x7267,
    Farewell = 0x7277,
};

// The file exchange (TcpUpDownFile, qrx-sim's file service). Requests on the
// main link, which also have their rows among the outgoing ones:
enum : quint16 {
    UploadStoredNotice = 0x5061, // an uploaded file is stored: {"name"}
    StartJobSync = 0x5532,       // {"robot"}: send the digest lists of R1..R4
    RequestFileList = 0x5542,    // {"num": 5 logs | 10 ENI files}
};

// The main link's notifications of the file exchange, for the side that
// sends them (qrx-sim); the library knows them by their notification.
enum : quint16 {
    JobDigestList = 0x5533, // recvJobSumlist
    JobNameList = 0x5534,   // recvJobFileList
    JobListsEnd = 0x5535,   // recvJobFileInfoFinish
    LogList = 0x5543,       // recvControlLoglist
    EniList = 0x5546,       // recvControlENIlist
};

// The file connection (port 5000), both directions; every one has its row in
// the file connection's table of the catalogue.
enum : quint16 {
    AnnounceUpload = 0x5501, // host: {"name","size"}
    UploadAnswer = 0x5502,   // controller: {"answer","name"}
    RequestFile = 0x5504,    // host: {"name"}
    FileHeader = 0x5505,     // controller: {"answer","name","size"}
    UploadChunk = 0x5511,    // host: up to 2048 raw bytes
    UploadEnd = 0x5512,      // host: {"name","size"}
    UploadFinished = 0x5513, // controller: {"finish","name"}
    FileBegins = 0x5521,     // controller: {"name","size"}
    FileData = 0x5522,       // controller: raw bytes, then {"finish":"yes"}
    FileStored = 0x5523,     // host: {"name","size"}
    FileReady = 0x5524,      // host: {"name"}
    AbortTransfer = 0x5525,  // host: empty; the connection is closed next
    ExportFinished = 0x5544, // host: {"finish":"yes"} after the last file
};

} // namespace qrx::protocol::code

// Reports the controller sends that answer no request of the library's (an
// answered query names its reply through replyTo() instead). Each has its
// incoming row in the catalogue.
namespace qrx::protocol::report {

enum : quint16 {
    Error = 0x2B03,               // {"data","type"}: the controller refused or failed something
    JobLine = 0x3504,             // {"num"}: the line the running job is at
    ControlNumber = 0x5053,       // {"controlNumber","robot"}: after the post-connection request
    ContinuousModeState = 0x50B3, // {"open","robot"}: continuous motion open or closed
};

} // namespace qrx::protocol::report
