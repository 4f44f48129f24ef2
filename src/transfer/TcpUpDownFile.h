#pragma once
// TcpUpDownFile moves files between the host and the controller over a
// connection of its own (controller address, port 5000, the link's frame
// format). Lists and start notices travel over the main link; file bytes over
// the file connection. One object serves one transfer call and runs in the
// thread that created it, blocking it while files move.
//
// The exchange, one file at a time (H host, C controller; F file connection,
// M main link). qrx-sim's file service follows this same table; the codes'
// names are in protocol/Codes.h (0x5501 AnnounceUpload … 0x5544
// ExportFinished). The file connection is a FramedConnection with the file
// connection's options: no heartbeat, no reconnect, partial frames kept.
//
//   upload (mode 4), per file of the list, 1000 ms apart:
//     H->F 0x5501 {"name":"job/R1/A.JBR","size":n}
//     C->F 0x5502 {"answer":"yes"|"no","name":...}
//     H->F 0x5511 raw bytes, 2048 per frame (ceil(n/2048) frames)
//     H->F 0x5512 {"name":...,"size":n}            end of the file's data
//     C->F 0x5513 {"finish":"yes"|"no","name":...}  stored, or not
//     H->M 0x5061 {"name":...}                      the main link is told
//   job download (mode 3):
//     H->M 0x5532 {"robot":r}      C->M 0x5533 per robot 1..4, then 0x5535
//   log / ENI export (mode 5 / mode 10):
//     H->M 0x5542 {"num":5|10}     C->M 0x5543 log list | 0x5546 ENI list
//   configuration export (mode 1): the names of the controller's
//     configuration catalogue, requested one by one
//   then, for every name to fetch, in order:
//     H->F 0x5504 {"name":...}
//     C->F 0x5505 {"answer":"yes"|"no","name":...,"size":n}
//     C->F 0x5521 {"name":...,"size":n}             the file begins
//     H->F 0x5524 {"name":...}                      ready for its data
//     C->F 0x5522 raw bytes until n bytes have come, then 0x5522 {"finish":"yes"}
//     H->F 0x5523 {"name":...,"size":n}             stored
//   after the last name:
//     H->F 0x5544 {"finish":"yes"}, then the file connection is closed.
//   any failure: its text, H->F 0x5525 (empty), the connection is closed.
//
// Controller names ("job/R1/A.JBR" requests, list entries) are checked before
// anything is written: a name with "..", a leading "/" or "\", a drive letter
// or (for list entries) any separator is refused and the transfer aborted.
//
// Nothing is lost: a download is written beside its target and renamed into
// place when its last byte has come (QSaveFile). A local job file whose MD5
// differs from the controller's stays in place until its replacement is
// complete, instead of being deleted before the download starts, so a broken
// transfer leaves the old file, never half a file and never none.

#include "link/FramedConnection.h"

#include <QFile>
#include <QObject>
#include <QSaveFile>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class QEventLoop;
class Robot;

class TcpUpDownFile : public QObject
{
    Q_OBJECT
public:
    enum Mode { ConfigDownload = 1, JobDownload = 3, Upload = 4, LogDownload = 5, EniDownload = 10 };
    static constexpr quint16 kFilePort = 5000;
    static constexpr int kChunkSize = 2048;

    // ip: the controller; robot: the main link's side (sends, setLastPingTime,
    // list notifications); may be null for a transfer that needs no main link.
    TcpUpDownFile(Robot *robot, QString ip, QObject *parent = nullptr);
    ~TcpUpDownFile() override;

    // Folder of the local job folders R1..R4 (the job root).
    void setJobRoot(const QString &root) { m_jobRoot = root; }
    void setFilePort(quint16 port) { m_port = port; }
    // Target folder of a configuration, log or ENI export.
    void setTargetFolder(const QString &folder) { m_targetFolder = folder; }
    // Remote folder of an upload ("job/" for job files, "config/" for an import).
    void setRemotePrefix(const QString &prefix) { m_remotePrefix = prefix; }
    // Called with (file name, bytes done, bytes total) as bytes move.
    using Progress = std::function<void(const QString &, qint64, qint64)>;
    void setProgress(Progress progress) { m_progress = std::move(progress); }

    // Blocking forms for the host API: start, then run the calling thread's
    // events until the transfer has ended (or nothing came for a while).
    void runUpload(const QStringList &names);
    void runJobDownload();
    void runListExport(Mode mode);                  // LogDownload or EniDownload
    void runNameDownload(Mode mode, const QStringList &names); // e.g. the configuration files

    bool isFinished() const { return m_finished; }
    int failedCount() const { return m_failed; }
    QString lastFailure() const { return m_lastFailure; }
    // Whether the controller itself said no (answer other than "yes").
    bool refusedByController() const { return m_refused; }
    int filesDone() const { return m_filesDone; }

Q_SIGNALS:
    void reflushprolist();
    void reflushprolistP();
    void reflushprolistPunch();
    void signal_startSyncJobFile();
    void signal_downLoadConfigFileFinish();

public Q_SLOTS:
    void sendfileinfo();
    void startDownLoadJobFileFromController();
    void onTcpSocketReadyRead();
    void stopDownloadFile();
    void slot_startSyncJobFile();
    void recvJobFileSumList(QByteArray data);
    void setUpLoadJobFileName(QStringList jobfilelist);
    void recvJobFileList(QByteArray data);
    void recvJobFileInfoFinish();
    void recvControlLogList(QByteArray data);
    void recvControlENIList(QByteArray data);
    void slot_existTeachbox(QByteArray data);
    void slot_existTeachboxForController(QByteArray data);
    void slot_autoSyncTeachbox();

private:
    void onFrame(quint16 command, const QByteArray &payload);
    void onConnectionStatus(int status);
    void route(quint16 command, const QByteArray &payload);
    bool connectFileSocket();
    void sendFrame(quint16 command, const QByteArray &payload);
    void sendJson(quint16 command, const QByteArray &payload) { sendFrame(command, payload); }
    void fail(const QString &text);
    // A failure because the controller answered no.
    void refuse(const QString &text);
    void finish();
    void waitUntilFinished();
    void runEventsBriefly();
    void wake();
    void uploadAnswer(const QByteArray &payload);
    void uploadFinished(const QByteArray &payload);
    void sendWholeFile();
    void requestNext();
    void downloadHeader(const QByteArray &payload);
    void fileBegins(const QByteArray &payload);
    void fileData(const QByteArray &payload);
    void receiveList(const QByteArray &data, Mode mode);
    void onSocketDisconnected();
    QString localPathFor(const QString &requested) const;
    QString refusalText() const;
    QString brokenText() const;

    Robot *m_robot;
    QString m_ip;
    quint16 m_port = kFilePort;
    // The file connection: no heartbeat, no reconnect, partial frames kept.
    qrx::FramedConnection m_connection{qrx::FramedConnection::fileConnectionOptions()};
    bool m_opened = false; // connected once: a loss from now on breaks the transfer
    Mode m_mode = JobDownload;
    QString m_jobRoot;
    QString m_targetFolder;
    QString m_remotePrefix = QStringLiteral("job/");
    Progress m_progress;

    // upload
    QStringList m_uploadList;
    int m_uploadIndex = -1;
    QFile m_sendFile;
    qint64 m_chunk = kChunkSize;
    qint64 m_remaining = 0;
    bool m_stop = false;
    static std::atomic<bool> s_uploading; // one upload at a time, process-wide
    bool m_fileDone = false;

    // download
    QStringList m_downloadList; // controller names ("job/R1/A.JBR", "a.log")
    int m_downloadIndex = -1;
    std::unique_ptr<QSaveFile> m_target;
    qint64 m_expected = 0;
    qint64 m_received = 0;
    bool m_listSeen = false;
    QStringList m_jobLists[4];
    QByteArray m_consent = "no";

    bool m_finished = false;
    QEventLoop *m_waitLoop = nullptr; // the wait that wake() ends
    int m_failed = 0;
    int m_filesDone = 0;
    QString m_lastFailure;
    bool m_refused = false;
};
