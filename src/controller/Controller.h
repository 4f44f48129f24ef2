#pragma once
// Controller: everything the library keeps about one controller, in one
// object. It owns the Robot (the link and the state the controller
// reported), the Robot's jog driver, the reply counters of matched replies,
// the link events, the host's settings for it (wait bound, matched replies,
// link-event handler, message handlers, job root, transfer progress) and
// the outcome of its last transfer, and the recording of its frames.
//
// The described functions act on the default controller: it exists for the
// whole process, gets a fresh Robot from each connect_robot() that starts a
// link, and keeps its settings across them. The handle API (qrxc_) opens
// further controllers, each with its own Robot made once at the open.
//
// Threads: host threads call in; the Robot's handlers call the message and
// link-status entries on the link thread (or the Robot's thread). Every
// member is atomic or guarded by one of the controller's own mutexes.

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QtGlobal>

#include "controller/StateSnapshot.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>

class Robot;
struct qrx_controller; // the host's handle (qrx_host.h)

namespace qrx {

class SessionRecorder;

namespace api {
class JogDriver;
}

namespace controller {

// (Its own namespace: qrx::Controller is the C++ host's class of qrx_host.hpp.)
class Controller
{
public:
    // How host callbacks look (the same shapes as in qrx_host.h).
    using LinkEventHandler = void (*)(int event, int reason, void *user);
    using ErrorHandler = void (*)(const char *text);
    using MessageHandler = void (*)(qrx_controller *handle, int level, const char *text, void *user);
    using StateHandler = void (*)(qrx_controller *handle, void *user);
    using TransferProgress = void (*)(const char *file, long long done, long long total);

    // The controller of the described functions (never destroyed).
    static Controller &defaultController();

    // handle: what the host's message and state handlers receive (1 for
    // the default controller); waitBoundMs: the wait bound it starts with.
    explicit Controller(qrx_controller *handle = nullptr, int waitBoundMs = 0);
    ~Controller();
    Controller(const Controller &) = delete;
    Controller &operator=(const Controller &) = delete;

    qrx_controller *handle() const { return m_handle; }

    // ---- the Robot --------------------------------------------------------
    // The Robot, or null before the first one.
    Robot *robot() const;
    // The Robot held for one call: it is not freed, even when replaced,
    // until the matching release(). release() returns a replaced Robot that
    // no call holds any more, for the caller to free (else null).
    Robot *hold();
    [[nodiscard]] Robot *release(Robot *robot);
    // Makes robot (and its jog driver) the controller's, hooking the reply
    // counters, the link events and the messages to its link. Returns the
    // Robot replaced when no call holds it, for the caller to free (else
    // null: the last release() returns it). A null robot detaches.
    [[nodiscard]] Robot *attach(Robot *robot, api::JogDriver *jog);
    api::JogDriver *jogDriver() const { return m_jog.load(); }
    // Set by the first start of a handle's link (it starts once).
    std::atomic<bool> linkStarted{false};

    // ---- wait policy ------------------------------------------------------
    std::atomic<int> waitBoundMs;
    std::atomic<bool> matchedReplies{false};
    // Matched waits under way: only while one runs does a counted reply
    // wake the waiters itself. Changed under the Robot's replyMutex.
    std::atomic<int> matchedWaits{0};
    // Replies taken per code by the current Robot (under its replyMutex).
    quint64 replyCount(quint16 reply) const;

    // ---- link events ------------------------------------------------------
    void setLinkEventHandler(LinkEventHandler handler, void *user);
    // A new connect starts: the next "up" is the first, not "back".
    void restartLinkEvents();
    // Waits up to ms for the link to be up; true when it is.
    bool waitLinkUp(int ms);

    // ---- messages and state -----------------------------------------------
    void setErrorHandler(ErrorHandler handler);
    void setMessageHandler(MessageHandler handler, void *user);
    void setStateHandler(StateHandler handler, void *user);
    // Tells the state handler (if any) when the cached state changed.
    void notifyState();
    // The cached state as it stands (no query, no wait).
    StateSnapshot state() const;
    bool linkUp() const { return m_linkState.load() == LinkState::Up; }

    // ---- refusals -----------------------------------------------------------
    // The controller's refusal of a command the host sent (the host API's
    // refusal extensions read and write it under refusalMutex).
    struct Refusal
    {
        quint16 lastCommand = 0; // the last command sent (0: none yet)
        quint16 answered = 0;    // the command the kept refusal answered (0: none)
        int type = 0;            // its "type" (0 when it had none)
        std::string text;        // its "data"
    };
    std::mutex refusalMutex;
    Refusal refusal;

    // ---- transfer ---------------------------------------------------------
    void setJobRoot(const QString &root); // empty: the default root
    QString jobRoot() const;
    std::atomic<TransferProgress> transferProgress{nullptr};
    // The pause between the files of an upload in ms (-1: the transfer's own).
    std::atomic<int> transferPauseMs{-1};
    // An upload to this controller runs (a second one is turned down).
    std::atomic<bool> uploading{false};
    // refused: the controller itself said no (an answer other than "yes").
    void setTransferOutcome(int failed, bool refused, const QByteArray &text);
    int lastTransferFailed() const;
    bool lastTransferRefused() const;
    QByteArray lastTransferError() const;

    // ---- recording ----------------------------------------------------------
    // Records the frames of the links to ip:port and ip:5000 (this
    // controller's link and file connections), both directions, into path;
    // a recording in progress ends first. An empty path only ends it; the
    // recording also ends with the controller. False, with a warning
    // ("qrx.record"), when path cannot be opened or ip has no IPv4 address.
    bool record(const QString &path, const QString &ip, quint16 port);

private:
    struct ReplyCounts;
    void hookRobot(Robot *robot);
    void countReply(Robot *robot, ReplyCounts &counts, quint16 code);
    void onLinkStatus(Robot *robot, int status);
    void deliverMessage(int level, const QByteArray &text);
    void notifyLink(int event, int reason);

    qrx_controller *const m_handle;

    mutable std::mutex m_robotMutex;
    Robot *m_robot = nullptr;
    std::map<Robot *, int> m_holders;   // calls holding each Robot
    std::map<Robot *, bool> m_retired;  // replaced while held
    std::atomic<api::JogDriver *> m_jog{nullptr};
    std::shared_ptr<ReplyCounts> m_counts;

    // Held while a host handler runs: a setter returns only after a call of
    // the old handler has ended.
    std::recursive_mutex m_handlerMutex;
    LinkEventHandler m_linkHandler = nullptr;
    void *m_linkUser = nullptr;
    ErrorHandler m_errorHandler = nullptr;
    MessageHandler m_messageHandler = nullptr;
    void *m_messageUser = nullptr;
    StateHandler m_stateHandler = nullptr;
    void *m_stateUser = nullptr;

    enum class LinkState { Connecting, Up, Down };
    std::atomic<LinkState> m_linkState{LinkState::Connecting};
    std::mutex m_linkMutex; // for waitLinkUp
    std::condition_variable m_linkChanged;
    StateSnapshot m_lastState; // what the state handler last heard of (under m_handlerMutex)

    mutable std::mutex m_transferMutex;
    QString m_jobRoot;
    int m_lastFailed = 0;
    bool m_lastRefused = false;
    QByteArray m_lastFailure;

    std::mutex m_recordMutex;
    std::unique_ptr<SessionRecorder> m_recorder;
};

} // namespace controller

} // namespace qrx
