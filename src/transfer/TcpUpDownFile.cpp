// TcpUpDownFile, the file connection and the host-to-controller side: the
// frame reader, the one failure path, the blocking waits and the upload.

#include "transfer/TcpUpDownFile.h"

#include "common/CompactJson.h"
#include "common/Logging.h"
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
    m_socket.setReadBufferSize(4096);
    m_decoder.setLogHeadErrors(false);
    connect(&m_socket, &QIODevice::readyRead, this, &TcpUpDownFile::onTcpSocketReadyRead, Qt::DirectConnection);
    connect(&m_socket, &QAbstractSocket::disconnected, this, &TcpUpDownFile::onSocketDisconnected,
            Qt::DirectConnection);
}

TcpUpDownFile::~TcpUpDownFile()
{
    m_socket.disconnect(this);
    m_socket.abort();
}

// ---- the file connection ----------------------------------------------------

bool TcpUpDownFile::connectFileSocket()
{
    if (m_socket.state() == QAbstractSocket::ConnectedState)
        return true;
    m_socket.connectToHost(m_ip, m_port);
    if (!m_socket.waitForConnected(1000)) {
        fail(tr("socket连接失败....."));
        return false;
    }
    return true;
}

void TcpUpDownFile::sendFrame(quint16 command, const QByteArray &payload)
{
    if (m_socket.state() != QAbstractSocket::ConnectedState)
        return;
    m_socket.write(qrx::encodeFrame(command, payload));
    // Streaming: the socket never holds more than a few chunks' worth.
    while (m_socket.bytesToWrite() > kWriteBacklog && m_socket.state() == QAbstractSocket::ConnectedState) {
        if (!m_socket.waitForBytesWritten(kSilenceMs))
            break;
    }
}

void TcpUpDownFile::onTcpSocketReadyRead()
{
    if (m_inReadyRead)
        return;
    m_inReadyRead = true;
    // Bytes that arrive while a frame is handled (an upload writes its whole
    // file from the answer's handler) are read by the next pass.
    while (m_socket.bytesAvailable() > 0 && !m_finished) {
        m_decoder.feed(m_socket.readAll(), [this](quint16 command, const QByteArray &payload) {
            if (m_finished)
                return;
            if (m_robot)
                m_robot->link()->setLastPingTime(QDateTime::currentDateTime());
            if (command >= 0x5502 && command <= 0x5522)
                route(command, payload);
        });
    }
    m_inReadyRead = false;
}

void TcpUpDownFile::route(quint16 command, const QByteArray &payload)
{
    switch (command) {
    case 0x5502: uploadAnswer(payload); break;
    case 0x5505: downloadHeader(payload); break;
    case 0x5513: uploadFinished(payload); break;
    case 0x5521: fileBegins(payload); break;
    case 0x5522: fileData(payload); break;
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
    if (m_socket.state() == QAbstractSocket::ConnectedState) {
        m_socket.write(qrx::encodeFrame(0x5525, QByteArray()));
        m_socket.waitForBytesWritten(1000);
    }
    m_finished = true;
    m_socket.disconnect(this);
    m_socket.disconnectFromHost();
    if (m_socket.state() != QAbstractSocket::UnconnectedState)
        m_socket.waitForDisconnected(1000);
    m_socket.abort();
}

void TcpUpDownFile::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_socket.disconnect(this);
    if (m_socket.state() == QAbstractSocket::ConnectedState) {
        m_socket.flush();
        m_socket.disconnectFromHost();
        if (m_socket.state() != QAbstractSocket::UnconnectedState)
            m_socket.waitForDisconnected(1000);
    }
    m_socket.abort();
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
        QEventLoop loop;
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
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
            QEventLoop loop;
            QTimer::singleShot(50, &loop, &QEventLoop::quit);
            loop.exec();
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
    sendJson(0x5501, jsonOf({{"name", utf8(remote)}, {"size", Json::Int64(m_sendFile.size())}}));
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
            fail(tr("控制器拒绝上传程序：") + name);
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
    sendJson(0x5512, jsonOf({{"name", utf8(name)}, {"size", Json::Int64(m_sendFile.size())}}));
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
        if (chunk.isEmpty() || m_socket.state() != QAbstractSocket::ConnectedState) {
            fail(name + tr(" 上传失败！"));
            return;
        }
        sendFrame(0x5511, chunk);
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
        m_robot->send(0x5061, jsonOf({{"name", utf8(name)}}));
    ++m_filesDone;
    m_fileDone = true;
}

void TcpUpDownFile::stopDownloadFile()
{
    m_stop = true;
    fail(brokenText());
}

