#pragma once
// TcpUpDownFile moves files between the host and the controller over a
// connection of its own (controller address, port 5000, the link's frame
// format). Lists and start notices travel over the main link (MainLink.h);
// file bytes over the file connection, a FramedConnection with the file
// connection's options: no heartbeat, no reconnect, partial frames kept.
// One object serves one transfer call and runs in the thread that created it,
// blocking it while files move, never longer than the silence bound after the
// controller was last heard.
//
// The exchange, one file at a time (H host, C controller; F file connection,
// M main link; code names in protocol/Codes.h):
//
//   upload (mode 4), per file of the list, 1000 ms apart (setPauseMs):
//     H->F 0x5501 {"name":"job/R1/A.JBR","size":n}
//     C->F 0x5502 {"answer":"yes"|…}
//     H->F 0x5511 raw bytes, 2048 per frame, sent at once, then 0x5512 {"name","size"}
//     C->F 0x5513 {"finish":…}                     stored
//     H->M 0x5061 {"name":…}                       the main link is told
//   job download (mode 3):
//     H->M 0x5532 {"robot":r}; C->M 0x5533 digest list per robot, 0x5535 at the end;
//     (the local files are hashed meanwhile, LocalDigests.h);
//     every file whose local MD5 differs or that is missing, in order:
//     H->F 0x5504 {"name":"job/R1/A.JBR"}
//     C->F 0x5505 {"answer":"yes","name":"job/R1/A.JBR","size":n}
//     H->F 0x5524 {"name":…}                       ready for the data
//     C->F 0x5522 raw bytes (n in all), then 0x5522 {"finish":…}
//     H->F 0x5523 {"name","size"}                  stored
//   log / ENI export (mode 5 / mode 10), configuration export (mode 1):
//     H->M 0x5542 {"num":5|10}; C->M 0x5543 log list | 0x5546 ENI list
//     (configuration files: the names of the controller's catalogue);
//     per name:
//     H->F 0x5504 {"name":…}
//     C->F 0x5505 {"answer":"yes","name":…,"size":n}
//     C->F 0x5521 {"name":…}                       the file begins: created here
//     H->F 0x5524 {"name":…}, C->F 0x5522 data then {"finish":…}, H->F 0x5523
//     after the last log or ENI file: H->F 0x5544 {"finish":"yes"}.
//   any failure: its text, H->F 0x5525 (empty) when the connection is up,
//   the connection closed (fail(), the one way to end badly).
//
// "finish" ends a file whatever its value, except an explicit "no" or false;
// a download is whole when the header's "size" bytes have come before it.
//
// Controller names are checked before anything is written: a name with "..",
// a leading "/" or "\", a drive letter or (for list entries) any separator is
// refused and the transfer aborted. Nothing is lost: a download is written
// beside its target and renamed into place when its "finish" has come
// (QSaveFile); a local job file whose MD5 differs stays until its replacement
// is complete.

#include "link/FramedConnection.h"
#include "transfer/LocalDigests.h"
#include "transfer/MainLink.h"

#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QSaveFile>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class QEventLoop;

class TcpUpDownFile : public QObject
{
    Q_OBJECT
public:
    enum Mode { ConfigDownload = 1, JobDownload = 3, Upload = 4, LogDownload = 5, EniDownload = 10 };
    // Where the exchange stands; one value at a time.
    enum class State {
        Idle,          // nothing started
        AwaitingList,  // a list was asked for on the main link
        Ready,         // the file connection is up, no file under way
        Announced,     // 0x5501 sent, the controller's answer 0x5502 awaited
        AwaitingStored,// the file's data and 0x5512 sent, 0x5513 awaited
        Requested,     // 0x5504 sent, the header 0x5505 awaited
        AwaitingBegin, // export: header accepted, 0x5521 awaited
        Receiving,     // 0x5524 sent: data frames until "finish"
        Done,
        Failed,
    };
    static constexpr quint16 kFilePort = 5000;
    static constexpr int kChunkSize = 2048;
    static constexpr int kChunksPerWrite = 32; // an upload's frames go to the socket 64 KiB at a time
    static constexpr int kPauseMs = 1000;   // between the files of an upload, by default
    static constexpr int kSilenceMs = 5000; // a controller silent this long breaks the transfer

    explicit TcpUpDownFile(qrx::transfer::MainLink link, QObject *parent = nullptr);
    ~TcpUpDownFile() override;

    // Folder of the local job folders R1..R4 (the job root).
    void setJobRoot(const QString &root) { m_jobRoot = root; }
    void setFilePort(quint16 port) { m_port = port; }
    void setSilenceMs(int ms) { m_silenceMs = ms; }
    void setPauseMs(int ms) { m_pauseMs = ms; } // between the files of an upload
    // Target folder of a configuration, log or ENI export.
    void setTargetFolder(const QString &folder) { m_targetFolder = folder; }
    // Remote folder of an upload ("job/" for job files, "config/" for an import).
    void setRemotePrefix(const QString &prefix) { m_remotePrefix = prefix; }
    // Called with (file name, bytes done, bytes total) as bytes move.
    using Progress = std::function<void(const QString &, qint64, qint64)>;
    void setProgress(Progress progress) { m_progress = std::move(progress); }

    // Blocking: each starts its transfer and runs the calling thread's events
    // until it has ended.
    void runUpload(const QStringList &names);
    void runJobDownload(int robot);
    void runListExport(Mode mode);                             // LogDownload or EniDownload
    void runNameDownload(Mode mode, const QStringList &names); // e.g. the configuration files

    State state() const { return m_state; }
    int failedCount() const { return m_state == State::Failed ? 1 : 0; }
    QString lastFailure() const { return m_lastFailure; }
    // Whether the controller itself said no (answer other than "yes").
    bool refusedByController() const { return m_refused; }
    int filesDone() const { return m_filesDone; }

public Q_SLOTS:
    // The main link's notifications (0x5533, 0x5534, 0x5535, 0x5543, 0x5546).
    void recvJobFileSumList(QByteArray data);
    void recvJobFileList(QByteArray data);
    void recvJobFileInfoFinish();
    void recvControlLogList(QByteArray data);
    void recvControlENIList(QByteArray data);

private:
    void onFrame(quint16 command, const QByteArray &payload);
    void onConnectionStatus(int status);
    bool connectFileSocket();
    void sendFrame(quint16 command, const QByteArray &payload);
    void sendBytes(const QByteArray &frames); // whole frames, the backlog kept bounded
    void sendMain(quint16 command, const QByteArray &payload);
    void setState(State state);
    void fail(const QString &text);
    // A failure because the controller answered no.
    void refuse(const QString &text);
    QString progressName() const;
    void finish();
    void waitWhile(State busy1, State busy2 = State::Idle, State busy3 = State::Idle);
    void waitUntilEnded();
    void runEvents(int ms);
    // upload
    void sendfileinfo(const QString &name);
    void uploadAnswer(const QByteArray &payload);
    void sendWholeFile(const QString &name);
    void uploadFinished(const QByteArray &payload);
    QString uploadFailureText(const QString &name) const;
    // download
    void startDownloads();
    void requestNext();
    void downloadHeader(const QByteArray &payload);
    void fileBegins(const QByteArray &payload);
    bool openTarget();
    void fileData(const QByteArray &payload);
    void receiveList(const QByteArray &data, Mode mode);
    QString refusalText() const;
    QString brokenText() const;
    QString failureText() const; // of a broken exchange in the current mode

    qrx::transfer::MainLink m_link;
    quint16 m_port = kFilePort;
    int m_silenceMs = kSilenceMs;
    int m_pauseMs = kPauseMs;
    // The file connection: no heartbeat, no reconnect, partial frames kept.
    qrx::FramedConnection m_connection{qrx::FramedConnection::fileConnectionOptions()};
    State m_state = State::Idle;
    Mode m_mode = JobDownload;
    QString m_jobRoot;
    QString m_targetFolder;
    QString m_remotePrefix = QStringLiteral("job/");
    Progress m_progress;
    QElapsedTimer m_heard;               // since the controller was last heard (or asked)
    QEventLoop *m_waitLoop = nullptr;    // the wait that a change of state ends

    // the file in progress: its name, and for a download its size and target
    QString m_name;
    QFile m_sendFile;
    std::unique_ptr<QSaveFile> m_target;
    qint64 m_expected = 0;
    qint64 m_received = 0;
    std::atomic<bool> m_ownUploading{false};
    std::atomic<bool> &m_uploading; // the controller's flag (MainLink::uploading) or the own one

    qrx::transfer::LocalDigests m_localDigests; // of a job download, taken while the lists come
    QStringList m_downloadList; // controller names ("job/R1/A.JBR", "a.log")
    int m_downloadIndex = -1;
    int m_filesDone = 0;
    QString m_lastFailure;
    bool m_refused = false;
};
