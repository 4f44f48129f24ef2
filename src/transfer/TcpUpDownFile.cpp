// TcpUpDownFile, the file connection and the host-to-controller side: the
// frame reader, the one failure path, the blocking waits and the upload.

#include "transfer/TcpUpDownFile.h"

#include "common/CompactJson.h"
#include "common/Logging.h"
#include "protocol/Codes.h"
#include "common/Payload.h"
#include "link/TcpConnectModule.h"
#include "robot/Robot.h"
#include "transfer/TransferJson.h"
#include "transfer/TransferPaths.h"

#include <QAbstractEventDispatcher>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

using namespace qrx::transfer;
namespace code = qrx::protocol::code;

namespace {

// A transfer that hears nothing from the controller for this long is broken.
constexpr int kSilenceMs = 5000;
// Unsent bytes the socket may hold before the sender waits for it to drain.
constexpr qint64 kWriteBacklog = 256 * 1024;

} // namespace

std::atomic<bool> TcpUpDownFile::s_uploading{false};

TcpUpDownFile::TcpUpDownFile(Robot *robot, QString ip, QObject *parent)
    : QObject(parent), m_robot(robot), m_ip(std::move(ip)), m_jobRoot(jobRoot())
{
    // A host thread that is not a Qt thread gets its event dispatcher here,
    // before the socket exists: the socket's notifiers need one to report
    // readable data, and the transfer runs this thread's events while it waits.
    if (!QAbstractEventDispatcher::instance())
        QEventLoop createsTheDispatcher;
    connect(&m_connection, &qrx::FramedConnection::frameReceived, this, &TcpUpDownFile::onFrame,
            Qt::DirectConnection);
    connect(&m_connection, &qrx::FramedConnection::connectSucceed, this, &TcpUpDownFile::onConnectionStatus,
            Qt::DirectConnection);
}

TcpUpDownFile::~TcpUpDownFile()
{
    m_connection.disconnect(this);
    m_connection.release();
}

// ---- the file connection ----------------------------------------------------

bool TcpUpDownFile::connectFileSocket()
{
    if (m_connection.isConnected())
        return true;
    m_connection.open(m_ip, m_port);
    m_connection.waitForConnection(1000);
    if (!m_connection.isConnected()) {
        fail(tr("socket连接失败....."));
        return false;
    }
    m_opened = true;
    return true;
}

void TcpUpDownFile::sendFrame(quint16 command, const QByteArray &payload)
{
    if (!m_connection.write(qrx::encodeFrame(command, payload)))
        return;
    // Streaming: the socket never holds more than a few chunks' worth.
    while (m_connection.bytesToWrite() > kWriteBacklog && m_connection.isConnected()) {
        if (!m_connection.waitForBytesWritten(kSilenceMs))
            break;
    }
}

void TcpUpDownFile::onTcpSocketReadyRead()
{
    // The connection reads and decodes; bytes that arrive while a frame is
    // handled (an upload writes its whole file from the answer's handler)
    // are decoded when that handler returns.
    m_connection.onReadyRead();
}

void TcpUpDownFile::onFrame(quint16 command, const QByteArray &payload)
{
    if (m_finished)
        return;
    if (m_robot)
        m_robot->link()->setLastPingTime(QDateTime::currentDateTimeUtc()); // as the link itself notes it
    if (command >= code::UploadAnswer && command <= code::FileData)
        route(command, payload);
}

void TcpUpDownFile::onConnectionStatus(int status)
{
    if (status == 0 && m_opened)
        onSocketDisconnected();
}

void TcpUpDownFile::route(quint16 command, const QByteArray &payload)
{
    switch (command) {
    case code::UploadAnswer: uploadAnswer(payload); break;
    case code::FileHeader: downloadHeader(payload); break;
    case code::UploadFinished: uploadFinished(payload); break;
    case code::FileBegins: fileBegins(payload); break;
    case code::FileData: fileData(payload); break;
    default: break;
    }
}

void TcpUpDownFile::onSocketDisconnected()
{
    if (m_finished)
        return;
    fail(m_mode == Upload ? m_uploadList.value(m_uploadIndex) + tr(" 上传失败！") : brokenText());
}

// Every failure ends here: its text, an empty 0x5525, the connection closed.
void TcpUpDownFile::refuse(const QString &text)
{
    if (!m_finished)
        m_refused = true;
    fail(text);
}

void TcpUpDownFile::fail(const QString &text)
{
    if (m_finished)
        return;
    qCInfo(lcTransfer).noquote() << text;
    m_lastFailure = text;
    ++m_failed;
    s_uploading = false;
    if (m_target)
        m_target->cancelWriting();
    m_target.reset(); // the temporary beside the target goes with it
    m_sendFile.close();
    if (m_connection.write(qrx::encodeFrame(code::AbortTransfer, QByteArray())))
        m_connection.waitForBytesWritten(1000);
    m_finished = true;
    m_connection.disconnect(this);
    m_connection.release(1000);
    wake();
}

void TcpUpDownFile::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_connection.disconnect(this);
    m_connection.release(1000);
    wake();
}

void TcpUpDownFile::runEventsBriefly()
{
    // Up to 50 ms of this thread's events; wake() ends it at once when the
    // transfer or the file it waits for has ended.
    QEventLoop loop;
    QTimer::singleShot(50, &loop, &QEventLoop::quit);
    m_waitLoop = &loop;
    loop.exec();
    m_waitLoop = nullptr;
}

void TcpUpDownFile::wake()
{
    if (m_waitLoop)
        m_waitLoop->quit();
}

void TcpUpDownFile::waitUntilFinished()
{
    // Runs this thread's events (socket, queued list notifications) until the
    // transfer ends; a controller that stays silent too long breaks it.
    QElapsedTimer quiet;
    quiet.start();
    QDateTime lastSeen;
    int lastFiles = -1;
    qint64 lastReceived = -1;
    while (!m_finished) {
        runEventsBriefly();
        if (m_filesDone != lastFiles || m_received != lastReceived) {
            lastFiles = m_filesDone;
            lastReceived = m_received;
            quiet.restart();
        }
        if (quiet.elapsed() > kSilenceMs)
            fail(brokenText());
    }
}

// ---- upload -------------------------------------------------------------------

void TcpUpDownFile::setUpLoadJobFileName(QStringList jobfilelist)
{
    if (s_uploading) {
        qCInfo(lcTransfer).noquote() << tr("上传文件中，不允许上传文件");
        m_lastFailure = tr("上传文件中，不允许上传文件");
        ++m_failed;
        return;
    }
    m_mode = Upload;
    m_uploadList = jobfilelist;
    m_uploadIndex = -1;
    if (!connectFileSocket())
        return;
    for (int i = 0; i < m_uploadList.size() && !m_finished; ++i) {
        if (i > 0)
            Robot::waitingPause(1000);
        m_uploadIndex = i;
        m_fileDone = false;
        sendfileinfo();
        QElapsedTimer quiet;
        quiet.start();
        qint64 seen = m_remaining;
        while (!m_fileDone && !m_finished) {
            runEventsBriefly();
            if (m_remaining != seen) {
                seen = m_remaining;
                quiet.restart();
            }
            if (quiet.elapsed() > kSilenceMs)
                fail(m_uploadList.at(i) + tr(" 上传失败！"));
        }
    }
    finish();
}

void TcpUpDownFile::runUpload(const QStringList &names)
{
    setUpLoadJobFileName(names);
    finish();
}

void TcpUpDownFile::sendfileinfo()
{
    const QString name = m_uploadList.value(m_uploadIndex);
    m_sendFile.close();
    const bool job = m_remotePrefix == QLatin1String("job/");
    m_sendFile.setFileName(job ? m_jobRoot + QStringLiteral("/robotJob/") + name : name);
    if (!m_sendFile.open(QIODevice::ReadOnly)) {
        fail(tr("无法读取上传程序：") + name);
        return;
    }
    const QString remote = m_remotePrefix + (job ? name : QFileInfo(name).fileName());
    sendJson(code::AnnounceUpload, jsonOf({{"name", utf8(remote)}, {"size", Json::Int64(m_sendFile.size())}}));
    m_chunk = kChunkSize;
    m_remaining = m_sendFile.size();
}

void TcpUpDownFile::uploadAnswer(const QByteArray &payload)
{
    Json::Value v;
    if (!qrx::parsePayload(payload, v))
        return;
    const QString name = m_uploadList.value(m_uploadIndex);
    if (textOf(v, "answer") != QLatin1String("yes")) {
        if (m_mode == Upload) {
            s_uploading = false;
            refuse(tr("控制器拒绝上传程序：") + name);
        }
        return;
    }
    if (!m_sendFile.isOpen()) {
        fail(tr("文件【") + name + tr("】无法打开"));
        return;
    }
    s_uploading = true;
    sendWholeFile();
    if (m_finished)
        return;
    sendJson(code::UploadEnd, jsonOf({{"name", utf8(name)}, {"size", Json::Int64(m_sendFile.size())}}));
    s_uploading = false;
}

void TcpUpDownFile::sendWholeFile()
{
    // Without waiting for acknowledgements: 2048 bytes per 0x5511, the last,
    // shorter piece as a final one.
    const QString name = m_uploadList.value(m_uploadIndex);
    const qint64 total = m_sendFile.size();
    m_remaining = total;
    m_chunk = kChunkSize;
    while (m_remaining > 0 && !m_stop && !m_finished) {
        const QByteArray chunk = m_sendFile.read(qMin(m_chunk, m_remaining));
        if (chunk.isEmpty() || !m_connection.isConnected()) {
            fail(name + tr(" 上传失败！"));
            return;
        }
        sendFrame(code::UploadChunk, chunk);
        m_remaining -= chunk.size();
        if (m_progress)
            m_progress(name, total - m_remaining, total);
    }
}

void TcpUpDownFile::uploadFinished(const QByteArray &payload)
{
    Json::Value v;
    if (!qrx::parsePayload(payload, v))
        return;
    const QString name = m_uploadList.value(m_uploadIndex);
    m_sendFile.close();
    if (textOf(v, "finish") != QLatin1String("yes")) {
        const QString base = QFileInfo(name).fileName();
        if (base == QLatin1String("qrx.out") || base == QLatin1String("qrx2.out"))
            fail(tr("上传控制器软件失败"));
        else if (m_remotePrefix == QLatin1String("config/"))
            fail(tr("导入配置文件失败"));
        else
            fail(name + tr(" 上传失败！"));
        return;
    }
    qCInfo(lcTransfer).noquote() << (m_remotePrefix == QLatin1String("config/") ? tr("导入配置参数文件-%1")
                                                                                : tr("导入程序-%1"))
                                        .arg(name);
    if (m_robot)
        m_robot->send(code::UploadStoredNotice, jsonOf({{"name", utf8(name)}}));
    ++m_filesDone;
    m_fileDone = true;
    wake();
}

void TcpUpDownFile::stopDownloadFile()
{
    m_stop = true;
    fail(brokenText());
}

