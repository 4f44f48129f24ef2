#pragma once
// Robot: the controller's state as the host sees it, in three pieces:
//  - RobotState (RobotState.h): the caches, a plain struct;
//  - RobotSignals (RobotSignals.h): the signals hosts and dialogs listen to;
//  - Robot (here): the link it owns, the one entry point of the reports,
//    and the request-and-wait primitives (replyMutex, replyCondition).
//
// The link hands every frame it delivers to take() on the link thread. The
// report table (ReportTable.h) says what each code does: its pure decoder
// writes the caches under cacheMutex, then take() writes the log lines,
// sends what the report asks for, emits the named signals, and wakes every
// thread waiting on replyCondition, so a host thread blocked in a getter is
// woken even when the host runs no event loop of its own.

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <condition_variable>
#include <functional>
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

    // Called on the link thread after each report the Robot took, with its
    // code and whether it woke the waiters (the caches may have changed).
    // Set before the link starts.
    using ReportSink = std::function<void(quint16 code, bool woke)>;
    void setReportSink(ReportSink sink);

    // The one entry point of the reports: the link calls it on its thread
    // with every frame it delivers (ReportTable.h).
    void take(quint16 command, const QByteArray &payload);

    explicit Robot(const QString &ip, QObject *parent = nullptr);
    // The same for a controller port of its own (not linkPort()), with a
    // link that one of the library's shared I/O threads serves (many such
    // Robots share a few threads).
    Robot(const QString &ip, quint16 port, QObject *parent = nullptr);
    // Either, named: the link's own thread or a shared one.
    enum class IoThread { Own, Shared };
    Robot(const QString &ip, quint16 port, IoThread io, QObject *parent = nullptr);
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
    int currentRobot() const { return RobotState::currentRobot(); }
    int overrideRobot() const { return robotOverride.load(); }
    void setCurrentRobot(int robot); // sets the override and the default

    // Copy of the last error, warning or information text (UTF-8).
    std::string lastMessage() const;

    // The mode decoder takes reports only while the Robot is ready. Set by
    // firstStart() and restart() (the link is about to connect, so the
    // controller's first mode report counts), cleared by close().
    void setReady(bool on) { ready.store(on); }
    bool isReady() const { return ready.load(); }

    // When set, the next mode report emits robot_mode_changed even if the
    // mode did not change, then the flag clears. restart() sets it so that
    // listeners learn the mode again after a manual start.
    void forceModeNotification() { modeNotificationForced.store(true); }
    bool takeForceModeNotification() { return modeNotificationForced.exchange(false); }

    // Sleeps for ms while processing the calling thread's events, at most
    // 100 ms per pass; on a shared I/O thread it only sleeps (link/IoThreads.h).
    static void waitingPause(int ms);

    // ---- core: request-and-wait -------------------------------------------
    // Lock replyMutex, send, wait on replyCondition; every report whose row
    // wakes (ReportTable.h) wakes all waiters once it is taken.
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
    // The link's connection result (connected flag, robot_connect_succeed).
    void robot_net_slot_connectSucceed(int status);

private:
    // Wakes every thread waiting on replyCondition.
    void wakeWaiters();

    TcpConnectModule *m_link = nullptr;
    std::mutex m_sinkMutex;
    MessageSink m_messageSink;
    ReportSink m_reportSink;
};
