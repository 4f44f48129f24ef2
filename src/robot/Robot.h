#pragma once
// Robot: the controller's state as the host sees it, in three pieces:
//  - RobotState (RobotState.h): the caches, a plain struct;
//  - RobotSignals (RobotSignals.h): the signals hosts and dialogs listen to;
//  - Robot (here): the link it owns, the handler slots, and the
//    request-and-wait primitives (replyMutex, replyCondition).
//
// Every notification of the link is connected, through the protocol
// catalogue (protocol/Catalogue.cpp, read by RobotWiring.cpp), to a handler
// slot here or straight to a Robot signal. Handlers run on the link thread
// (direct connections): they parse the payload, store what the host API
// reads later in the caches, log, emit, and wake every thread waiting on
// replyCondition. So a host thread blocked in a getter is woken even when
// the host runs no event loop of its own. The handler families live in
// their own files: StatusHandlers.cpp, RecordHandlers.cpp,
// MessageHandlers.cpp, RobotTypeHandlers.cpp, ToolFrameHandlers.cpp,
// ProcessRelays.cpp; their shared shape is HandlerShape.h.

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <string>

#include "link/LinkTypes.h"
#include "robot/ConfigCatalogue.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"
#include "robot/RobotTypes.h"

class TcpConnectModule;

class Robot : public RobotSignals, public qrx::RobotState
{
    Q_OBJECT
public:
    // ---- core: instance, link, sending ------------------------------------

    // Time base handed to each new link (300000 by default: 1666 ms checks,
    // 2000 ms time-out checks). Tests set a small one before creating a Robot.
    static void setLinkTimeBase(int timeBase);
    static int linkTimeBase();

    // Controller port handed to each new link (6001 by default).
    static void setLinkPort(quint16 port);
    static quint16 linkPort();

    // Where each error, warning and information text goes: called on the
    // link thread with its level (0 error, 1 warning, 2 information) and the
    // text with its prefix, UTF-8 and NUL-terminated. Set before the link
    // starts; empty switches delivery off.
    using MessageSink = std::function<void(int level, const QByteArray &text)>;
    void setMessageSink(MessageSink sink);

    // Called on the link thread after each report that woke the waiters
    // (the caches may have changed). Set before the link starts.
    void setReportSink(std::function<void()> sink);

    explicit Robot(const QString &ip, QObject *parent = nullptr);
    // The same for a controller port of its own (not linkPort()), with a
    // link that one of the library's shared I/O threads serves (many such
    // Robots share a few threads).
    Robot(const QString &ip, quint16 port, QObject *parent = nullptr);
    ~Robot() override;

    TcpConnectModule *link() const;

    // Hands one frame to the link; false when the link is down. For 0x2101
    // (set operation mode) it first clears replyFlag and stamps
    // lastRequestTime.
    bool send(quint16 command, const QByteArray &payload);

    void firstStart();     // starts the link thread; it then connects
    void restart();        // manual start of a stopped link ("手动开始")
    void close();          // stops the link
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
    // mode did not change, then the flag clears. restart() sets it so that
    // listeners learn the mode again after a manual start.
    void forceModeNotification();
    bool takeForceModeNotification(); // reads and clears the flag

    // Sleeps for ms while processing the calling thread's events, at most
    // 100 ms per pass; on a shared I/O thread it only sleeps (link/IoThreads.h).
    static void waitingPause(int ms);

    // ---- core: request-and-wait -------------------------------------------
    // Lock replyMutex, send, wait on replyCondition; every key-reading
    // handler wakes all waiters at its end.
    // Link connected. Follows connectSucceed, which the link façade
    // re-emits in the thread it lives in (the Robot's), so it changes when
    // that thread runs its events.
    std::atomic<quint8> connected{0};
    std::mutex replyMutex;
    std::condition_variable_any replyCondition;
    // Wakes of replyCondition so far: a waiter that looks before it sleeps
    // sees a wake it would otherwise sleep through. Changed under replyMutex.
    std::atomic<quint64> replyWakes{0};
    // Counts a wake and wakes every thread waiting on replyCondition.
    void wakeReplyWaiters();

    // The configuration-file catalogue, filled once at construction.
    const qrx::ConfigCatalogue configCatalogue;
    // Description of a controller configuration file for the robot count
    // held (single-robot catalogue below 2 robots); empty when unknown.
    QString configFileDescription(const QString &fileName) const;

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
    // The same, but a report that holds none of contentKeys is not read
    // (it still wakes the waiters).
    template <typename Read>
    void takeReport(const QByteArray &data, std::initializer_list<const char *> contentKeys, Read &&read);

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
    void takeNumber(const QByteArray &data, const char *key, std::atomic<int> &field, const char *text, NumberSignal notify);

private:
    Robot(const QString &ip, quint16 port, bool sharedIoThread, QObject *parent);
    void storeMessage(const std::string &text);
    // Messages: hands prefix + "data" to the message sink and keeps "data"
    // as the last message. Not delivered (nothing done) without "data".
    struct DeliveredMessage
    {
        bool delivered = false;
        QString data;
        bool hasType = false;
        int type = 0;
    };
    DeliveredMessage deliverMessage(int level, const char *prefix, const QByteArray &payload);

    TcpConnectModule *m_link = nullptr;
    std::atomic<bool> m_forceModeNotification{false};
    std::mutex m_sinkMutex;
    MessageSink m_messageSink;
    std::function<void()> m_reportSink;
    std::atomic<int> m_overrideRobot{1};
    std::atomic<int> m_defaultRobot{1};
    std::atomic<bool> m_ready{false};
    mutable std::mutex m_messageMutex;
    std::string m_lastMessage;
};
