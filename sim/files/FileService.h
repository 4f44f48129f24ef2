#pragma once
// The simulated controller's file service: a second server (port 5000) that
// stores uploaded job files and sends job, log, ENI and configuration files,
// and the main-link answers that announce them (0x5532 -> 0x5533 per robot
// and 0x5535; 0x5542 {"num":5|10} -> 0x5543 | 0x5546). One file at a time:
//   upload: 0x5501 -> 0x5502 {"answer"}; 0x5511 data, 0x5512 -> 0x5513 {"finish"}
//   job file: 0x5504 -> 0x5505 {"answer","name","size"}; 0x5524 -> 0x5522
//     data, then 0x5522 {"finish":"yes"}
//   configuration, log or ENI file: 0x5504 -> 0x5505, then 0x5521
//     {"name","size"} (the file begins); 0x5524 -> 0x5522 as above
//   0x5525 drops what is under way.
//
// Folders: the job folder holds R1..R4 ("job/R1/A.JBR" is <job dir>/R1/A.JBR);
// log and ENI files are listed with their folder as "absolutepath";
// "config/<name>" is <config dir>/<name>. Faults on request make it misbehave
// for tests. Lives in the simulator's thread.

#include "link/FrameCodec.h"
#include "sim/files/DigestCache.h"

#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTcpServer>
#include <QVector>

#include <functional>
#include <utility>

namespace qrxsim {

class Simulator;
class FileSession;

// (The exchange's other faults are played by the tests' scripted controller.)
struct FileFaults
{
    bool refuseUpload = false; // 0x5502 {"answer":"no"}
    bool splitFrames = false;  // every frame goes out in two writes, 2 ms apart
};

class FileService : public QObject
{
    Q_OBJECT
public:
    explicit FileService(Simulator &simulator, QObject *parent = nullptr);
    ~FileService() override;

    // Starts the file server and installs the main-link answers.
    bool listen(const QHostAddress &address, quint16 port = 5000);
    quint16 port() const { return m_server.serverPort(); }

    QString jobDir, logDir, eniDir, configDir;
    FileFaults faults;

    // Frames received on the file port, in order; a data frame (0x5511) is
    // recorded with its size as decimal text instead of its bytes.
    QVector<std::pair<quint16, QByteArray>> received;
    int connectionCount = 0;
    // How many times a job file was hashed for a digest list.
    int hashedCount() const { return m_digests.hashedCount(); }
    void setDigestTrustWindowMs(int ms) { m_digests.setTrustWindowMs(ms); }

private:
    friend class FileSession;
    void announceJobs(class Session &session);
    void announceList(class Session &session, int num);
    QString localPath(const QString &remote) const; // empty when not served

    Simulator &m_simulator;
    QTcpServer m_server;
    DigestCache m_digests; // of the job files, between synchronisations
};

// For tests: a FileService on a SimHandle's thread, built at construction and
// removed at destruction; with() runs code there with it.
class SimHandle;
class FileServiceHandle
{
public:
    explicit FileServiceHandle(SimHandle &sim, quint16 port = 5000);
    ~FileServiceHandle();
    bool isListening() const { return m_listening; }
    void with(const std::function<void(FileService &)> &fn);
    QVector<std::pair<quint16, QByteArray>> received();
    bool waitForFileFrame(quint16 command, int timeoutMs = 10000);

private:
    SimHandle &m_sim;
    FileService *m_service = nullptr;
    bool m_listening = false;
};

} // namespace qrxsim
