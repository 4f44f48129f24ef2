#pragma once
// The controller's state as the host sees it: the caches the decoders of
// the report table (ReportTable.h) fill on the link thread and the host API
// copies out after a wake. A plain struct: no signals, no link; Robot
// derives from it, so a getter reads robot->servoStatus as before.
//
// Threads: every field is written on the link thread by one decoder (or,
// where noted, by the host API) and read on host threads after the request
// that asked for it was woken. Scalars are atomic, so a read beside a write
// is defined; arrays are written by the decoders and copied by the host API
// under the Robot's cacheMutex, so a copy never mixes two reports.
// Each field's layout is documented here and beside the decoder that fills
// it (the *Decoders.cpp files, Decoders.h).

#include <QDateTime>
#include <QStringList>
#include <QtGlobal>

#include <atomic>
#include <mutex>
#include <string>

namespace qrx {

struct RobotState
{
    // Held while a report is decoded into the caches, and by the host API
    // only while it copies cached array values out.
    mutable std::recursive_mutex cacheMutex;

    // The robot that "robot" keys address: the override if non-zero, else
    // the default. Both start at 1; the current-robot report (0x5003) sets both.
    std::atomic<int> robotOverride{1};
    std::atomic<int> robotDefault{1};
    int currentRobot() const
    {
        const int override = robotOverride.load();
        return override != 0 ? override : robotDefault.load();
    }
    // Mode reports are taken only while ready (the link is about to connect
    // or is connected); modeNotificationForced makes the next one notify
    // even when the mode did not change.
    std::atomic<bool> ready{false};
    std::atomic<bool> modeNotificationForced{false};
    // 0x2B03/0x2B04/0x2B05 "data" of the last error, warning or information.
    std::string lastMessageText;

    // 0x2003 servo report {"mode","robot","status"}
    std::atomic<int> servoStatus{0};                // "status" of the robot shown
    int robotServoStatus[4] = {};       // [robot-1], kept when "mode" is 1
    // 0x2103 mode report {"mode"}
    std::atomic<int> operationMode{0};              // 0 teach, 1 remote, 2 run
    // Kept on purpose, although nothing in the library reads them: they are
    // the mode handshake of the controller's own program (a dialog may wait
    // for the acknowledgement of a mode command by them).
    std::atomic<bool> modeReceived{false}; // a valid mode report was taken
    std::atomic<bool> modeRepeated{false}; // a report carried the mode held
    std::atomic<quint8> replyFlag{0};   // mode acknowledged: cleared by send(0x2101), set by the mode report
    QDateTime lastRequestTime;          // when 0x2101 was last sent (link-free: written by send())
    // 0x2203 coordinate report {"coord","robot"}
    std::atomic<quint8> coordinate{0};              // 0 joint, 1 Cartesian, 2 tool, 3 user
    std::atomic<int> coordinateGate{0};             // while 7, coordinate reports are ignored (set by the host API)
    // 0x2603 speed report {"robot","speed"}
    std::atomic<int> speed{0};                      // 1..100 percent, 101..103 jog steps
    // 0x380C tool report {"curToolNum","robot"}
    std::atomic<int> currentTool{0};
    // 0x2303 deadman report {"deadman"}
    std::atomic<int> deadman{0};
    // 0x2306 deadman wiring {"deadmanMode","deadmanPortOne","deadmanPortTwo"}
    std::atomic<int> deadmanMode{0};
    std::atomic<int> deadmanPortOne{0};
    std::atomic<int> deadmanPortTwo{0};
    // 0x2106 teach type {"teachType"}
    std::atomic<int> teachType{0};
    // 0x3D03 / 0x4919 / 0x9103 running state {"robot","status"}
    std::atomic<int> runningStatus{0};              // 2 means a job is running
    // 0x4919 / 0x9103 job status {"robot","status","continueRun"}
    std::atomic<int> jobStatus{0};
    std::atomic<int> jobContinueRun{0};
    // 0x3504 job file line {"num"}: the line being executed
    std::atomic<int> currentRunLine{0};
    // 0x2F08 position report {"robot","coord","pos"[7],"posDeg"[7]}
    double currentPosition[6] = {};     // "pos"[0..5]
    double jointPosition[6] = {};       // "pos"[0..5] of the last report in "coord" 0
    double cartesianPosition[6] = {};   // "pos"[0..5] of the last report in "coord" 1
    // 0x7013 external-axis position {"robot","coord","pos"[5..]}
    double syncPosition[5] = {};        // "pos"[0..4]
    // 0x3603 / 0x3606 / 0x3609 / 0x360B IO reports {"status"[16]}: port n at [n-1]
    double dout[16] = {};
    double din[16] = {};
    double aout[16] = {};
    double ain[16] = {};
    // 0x560C one global variable {"varName","varType","varValue"}
    std::atomic<double> globalVarValue{0.0};        // "varValue" of the last report, whatever it named
    static constexpr int kGlobalVarCount = 1000; // index = last three digits of the name
    int globalInt[kGlobalVarCount] = {};         // varType 2 ("GI...")
    double globalReal[kGlobalVarCount] = {};     // varType 3 ("GD...")
    quint8 globalBool[kGlobalVarCount] = {};     // varType 1 ("GB..."), 0 or 1
    // 0x5606 one global position {"robot","posName","posValue"[14]}
    // (filled by the global-position decoder)
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
    // robotCount starts at 1 and axisCount at 6, not at 0 like the other
    // fields: before the controller's first reports a Robot drives one
    // six-axis robot, the configuration catalogue then picks the
    // single-robot descriptions, and a DH report that comes before the type
    // report says robot_joint_para(6, ...) rather than 0 axes.
    std::atomic<int> robotCount{1};
    // 0x2E03 robot type (families section fills it)
    std::atomic<int> robotType{0};                  // RobotType code
    std::atomic<int> axisCount{6};

    // Tool, frame and calibration results (filled by the families section).
    static constexpr int kToolCount = 32;        // tool numbers 0..31
    double toolParameters[kToolCount][6] = {};   // x, y, z, A, B, C per tool
    std::atomic<int> lastToolNum{0};                          // tool of the last tool-parameter reply
    double fourPointData[9] = {};                 // ask_four_point (0x7208)
    double fourPointResult[5] = {};               // four_point_calculation (0x7204)
    std::atomic<quint8> dhResult{0};              // result_for_DH (0x7206 "apply")
    std::atomic<quint8> zeroCalibrationSuccess{0}; // set by 0x3303, cleared by the host API

    // Jogging (driven by the host API): the jogging flag (kept on purpose:
    // written by start_jogging/stop_jogging for listeners; nothing in the
    // library reads it) and the external-axis jog selection (1: axes 1..5
    // jog external axes 8..12).
    std::atomic<quint8> jogging{0};
    std::atomic<int> externalAxisJog{0};

    // ---- families: state ---------------------------------------------------
    // (robot type and kinematics, tools and frames, catalogue, relays)
    // Caches filled by ToolFrameDecoders.cpp:
    //   toolParameters[toolNum]  0x3807 "toolDeg"[0..5] (x, y, z, A, B, C),
    //                            toolNum 0..kToolCount-1; lastToolNum = "toolNum"
    //   fourPointData[9]         0x7208: "status"[0..3], "result",
    //                            "length"[0..2], "dtheta"
    //   fourPointResult[5]       0x7204: "result", "length"[0..2], "dtheta"
    //   dhResult                 0x7206: "apply" non-zero
    //   zeroCalibrationSuccess   0x3303: set to 1
    // (a member given as a single number fills the first of its slots)
    std::atomic<int> currentUserFrame{0};           // 0x3C0C "curUserNum"
    std::atomic<int> positionerAxisCount{0};        // 0x700B "AxisNum"
    // 0x2E0F servo and IO slaves: "伺服-1".."伺服-n", then "IO-1".."IO-m".
    // Written on the link thread; read it there (signal_updateRobotServoList).
    QStringList servoSlaveLabels;

    // ---- end families: state -----------------------------------------------
};

} // namespace qrx
