#include "transfer/TcpUpDownFile.h"

#include "common/CompactJson.h"
#include "common/Logging.h"
#include "common/Payload.h"
#include "link/TcpConnectModule.h"
#include "robot/Robot.h"
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

QByteArray jsonOf(std::initializer_list<std::pair<const char *, Json::Value>> members)
{
    Json::Value v(Json::objectValue);
    for (const auto &m : members)
        v[m.first] = m.second;
    return qrx::jsonPayload(v);
}

std::string utf8(const QString &s)
{
    return s.toUtf8().toStdString();
}

QString textOf(const Json::Value &v, const char *key)
{
    const Json::Value &member = v[key];
    return member.isString() ? QString::fromStdString(member.asString()) : QString();
}

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
    fail(m_mode == LogDownload ? tr("下载日志文件出现问题，请重新下载")
         : m_mode == Upload     ? m_uploadList.value(m_uploadIndex) + tr(" 上传失败！")
                                : tr("下载文件出现问题，请重新下载"));
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
            fail(m_mode == LogDownload ? tr("下载日志文件出现问题，请重新下载") : tr("下载文件出现问题，请重新下载"));
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
    fail(tr("下载文件出现问题，请重新下载"));
}

// ---- download -----------------------------------------------------------------

void TcpUpDownFile::startDownLoadJobFileFromController()
{
    m_mode = JobDownload;
    if (m_robot)
        m_robot->send(0x5532, jsonOf({{"robot", m_robot->currentRobot()}}));
}

void TcpUpDownFile::runJobDownload()
{
    if (m_robot) {
        connect(m_robot, &Robot::robot_job_Sum_list, this, &TcpUpDownFile::recvJobFileSumList);
        connect(m_robot, &Robot::robot_job_File_list, this, &TcpUpDownFile::recvJobFileList);
        connect(m_robot, &Robot::robot_job_File_Info_Finish, this, &TcpUpDownFile::recvJobFileInfoFinish);
    }
    startDownLoadJobFileFromController();
    waitUntilFinished();
}

void TcpUpDownFile::runListExport(Mode mode)
{
    m_mode = mode;
    if (m_robot) {
        connect(m_robot, &Robot::robot_ControlLog_list, this, &TcpUpDownFile::recvControlLogList);
        connect(m_robot, &Robot::robot_ControlENI_list, this, &TcpUpDownFile::recvControlENIList);
        m_robot->send(0x5542, jsonOf({{"num", int(mode)}}));
    }
    waitUntilFinished();
}

void TcpUpDownFile::runNameDownload(Mode mode, const QStringList &names)
{
    m_mode = mode;
    m_downloadList = names;
    m_downloadIndex = -1;
    if (!names.isEmpty() && connectFileSocket())
        requestNext();
    else if (names.isEmpty())
        finish();
    waitUntilFinished();
}

void TcpUpDownFile::recvJobFileSumList(QByteArray data)
{
    Json::Value v;
    if (!qrx::parsePayload(data, v) || !v.isObject())
        return;
    const int robot = v["robot"].isIntegral() ? v["robot"].asInt() : 0;
    const Json::Value &list = v["jobfilelist"];
    if (robot < 1 || robot > 4 || (!list.isNull() && !list.isArray())) {
        fail(tr("控制器发送数据有误"));
        return;
    }
    if (v["listnum"].isIntegral() && v["listnum"].asInt() != int(list.size())) {
        fail(tr("程序发送数目不正确"));
        return;
    }
    const QString folder = jobFolder(m_jobRoot, robot);
    for (const Json::Value &entry : list) {
        const QString name = textOf(entry, "name");
        if (!isPlainName(name)) {
            fail(tr("控制器发送的文件名不安全，已中止传输：") + name);
            return;
        }
        const QString local = folder + QLatin1Char('/') + name;
        if (QFileInfo::exists(local) && fileMd5(local) == textOf(entry, "MD5").toLower())
            continue; // in step already
        // A differing local file stays until its replacement is complete.
        m_downloadList << QStringLiteral("job/R%1/").arg(robot) + name;
    }
    m_listSeen = true;
}

void TcpUpDownFile::recvJobFileList(QByteArray data)
{
    // The plain name list of one robot: kept for the application's lists.
    Json::Value v;
    if (!qrx::parsePayload(data, v) || !v.isObject())
        return;
    const int robot = v["robot"].asInt();
    if (robot < 1 || robot > 4)
        return;
    const Json::Value &list = v["jobfilelist"];
    if (v["jobfilenum"].isIntegral() && list.isArray() && v["jobfilenum"].asInt() != int(list.size())) {
        qCInfo(lcTransfer).noquote() << tr("控制器发送文件名个数不符");
        return;
    }
    m_jobLists[robot - 1].clear();
    for (const Json::Value &name : list)
        m_jobLists[robot - 1] << QString::fromStdString(name.asString());
}

void TcpUpDownFile::recvJobFileInfoFinish()
{
    if (m_finished || m_mode != JobDownload)
        return;
    slot_startSyncJobFile();
}

void TcpUpDownFile::slot_startSyncJobFile()
{
    emit signal_startSyncJobFile();
    m_downloadIndex = -1;
    if (m_downloadList.isEmpty()) {
        emit reflushprolist();
        emit reflushprolistP();
        emit reflushprolistPunch();
        finish();
        return;
    }
    if (connectFileSocket())
        requestNext();
}

void TcpUpDownFile::requestNext()
{
    ++m_downloadIndex;
    if (m_downloadIndex >= m_downloadList.size()) {
        sendJson(0x5544, jsonOf({{"finish", "yes"}}));
        if (m_mode == JobDownload) {
            emit reflushprolist();
            emit reflushprolistP();
            emit reflushprolistPunch();
        } else if (m_mode == ConfigDownload) {
            emit signal_downLoadConfigFileFinish();
        }
        finish();
        return;
    }
    m_expected = -1;
    m_received = 0;
    sendJson(0x5504, jsonOf({{"name", utf8(m_downloadList.at(m_downloadIndex))}}));
}

QString TcpUpDownFile::refusalText() const
{
    switch (m_mode) {
    case ConfigDownload: return tr("控制器拒绝下载配置文件");
    case LogDownload: return tr("控制器拒绝下载日志文件");
    default: return tr("控制器拒绝下载程序");
    }
}

void TcpUpDownFile::downloadHeader(const QByteArray &payload)
{
    Json::Value v;
    if (!qrx::parsePayload(payload, v))
        return;
    const QString requested = m_downloadList.value(m_downloadIndex);
    if (textOf(v, "answer") != QLatin1String("yes")) {
        fail(refusalText());
        return;
    }
    const QString name = textOf(v, "name");
    if (name != requested) {
        fail(tr("文件名有误：") + requested + QStringLiteral(" -- ") + name);
        return;
    }
    if (!v["size"].isIntegral() || v["size"].asInt64() < 0) {
        fail(tr("程序下载失败：") + requested);
        return;
    }
    m_expected = v["size"].asInt64();
}

QString TcpUpDownFile::localPathFor(const QString &requested) const
{
    if (m_mode == JobDownload) {
        // "job/R<n>/<name>" -> "<root>/robotJob/R<n>/<name>"
        return m_jobRoot + QStringLiteral("/robotJob/") + requested.mid(4);
    }
    return m_targetFolder + QLatin1Char('/') + QFileInfo(requested).fileName();
}

void TcpUpDownFile::fileBegins(const QByteArray &payload)
{
    Json::Value v;
    if (!qrx::parsePayload(payload, v))
        return;
    const QString requested = m_downloadList.value(m_downloadIndex);
    if (m_expected < 0 || textOf(v, "name") != requested) {
        fail(tr("文件名有误：") + requested + QStringLiteral(" -- ") + textOf(v, "name"));
        return;
    }
    const QString path = localPathFor(requested);
    const QString folder = QFileInfo(path).absolutePath();
    const QString base = QFileInfo(requested).fileName();
    if (!QDir().mkpath(folder)) {
        switch (m_mode) {
        case ConfigDownload: fail(tr("无法创建配置文件路径，无法继续下载")); break;
        case LogDownload: fail(tr("无法创建日志文件路径，无法继续下载")); break;
        case EniDownload: fail(tr("无法创建ENI文件路径，无法继续下载")); break;
        default: fail(tr("程序下载失败：") + requested); break;
        }
        return;
    }
    m_target = std::make_unique<QSaveFile>(path);
    if (!m_target->open(QIODevice::WriteOnly)) {
        switch (m_mode) {
        case ConfigDownload: fail(tr("无法创建配置文件【") + base + tr("】失败")); break;
        case LogDownload: fail(tr("无法创建日志文件【") + base + tr("】")); break;
        case EniDownload: fail(tr("无法创建ENI文件【") + base + tr("】")); break;
        default: fail(tr("创建文件失败")); break;
        }
        return;
    }
    m_received = 0;
    sendJson(0x5524, jsonOf({{"name", utf8(requested)}}));
}

void TcpUpDownFile::fileData(const QByteArray &payload)
{
    const QString requested = m_downloadList.value(m_downloadIndex);
    if (!m_target) {
        fail(m_mode == LogDownload ? tr("下载日志文件出现问题，请重新下载") : tr("下载文件出现问题，请重新下载"));
        return;
    }
    if (m_received < m_expected) {
        if (m_received + payload.size() > m_expected || m_target->write(payload) != payload.size()) {
            fail(m_mode == LogDownload ? tr("下载日志文件出现问题，请重新下载") : tr("下载文件出现问题，请重新下载"));
            return;
        }
        m_received += payload.size();
        if (m_progress)
            m_progress(requested, m_received, m_expected);
        return;
    }
    Json::Value v;
    if (!qrx::parsePayload(payload, v) || textOf(v, "finish") != QLatin1String("yes") || !m_target->commit()) {
        fail(m_mode == LogDownload ? tr("下载日志文件出现问题，请重新下载") : tr("下载文件出现问题，请重新下载"));
        return;
    }
    m_target.reset();
    if (m_progress && m_expected == 0)
        m_progress(requested, 0, 0);
    ++m_filesDone;
    sendJson(0x5523, jsonOf({{"name", utf8(requested)}, {"size", Json::Int64(m_received)}}));
    requestNext();
}

// ---- configuration, log and ENI lists --------------------------------------------

void TcpUpDownFile::recvControlLogList(QByteArray data)
{
    if (m_mode == LogDownload)
        receiveList(data, LogDownload);
}

void TcpUpDownFile::recvControlENIList(QByteArray data)
{
    if (m_mode == EniDownload)
        receiveList(data, EniDownload);
}

void TcpUpDownFile::receiveList(const QByteArray &data, Mode mode)
{
    Json::Value v;
    if (m_finished || !qrx::parsePayload(data, v) || !v.isObject())
        return;
    const bool logs = mode == LogDownload;
    const Json::Value &list = v[logs ? "logfilelist" : "ENIfilelist"];
    const QString folder = textOf(v, "absolutepath");
    QStringList names;
    if (list.isArray()) {
        for (const Json::Value &entry : list) {
            const QString name = entry.isString() ? QString::fromStdString(entry.asString()) : QString();
            if (!isPlainName(name)) {
                fail(tr("控制器发送的文件名不安全，已中止传输：") + name);
                return;
            }
            names << (folder.isEmpty() ? name : folder + QLatin1Char('/') + name);
        }
    }
    if (names.isEmpty()) {
        const QString text = logs ? tr("控制器发送的日志列表为空，无法导出控制器日志")
                                  : tr("控制器发送的ENI列表为空，无法导出控制器ENI");
        qCInfo(lcTransfer).noquote() << text;
        m_lastFailure = text;
        ++m_failed;
        finish();
        return;
    }
    for (const QString &name : names) {
        if (!isRelativePath(name.startsWith(QLatin1Char('/')) ? name.mid(1) : name)) {
            fail(tr("控制器发送的文件名不安全，已中止传输：") + name);
            return;
        }
    }
    m_downloadList = names;
    m_downloadIndex = -1;
    if (connectFileSocket())
        requestNext();
}

// ---- consent ------------------------------------------------------------------------

void TcpUpDownFile::slot_existTeachbox(QByteArray data)
{
    Json::Value v;
    if (qrx::parsePayload(data, v))
        m_consent = textOf(v, "answer").toUtf8();
}

void TcpUpDownFile::slot_existTeachboxForController(QByteArray data)
{
    slot_existTeachbox(data);
}

void TcpUpDownFile::slot_autoSyncTeachbox()
{
    // "no": ask again after 500 ms, at most 10 times; "yes": synchronise.
    for (int attempt = 0; attempt < 10 && m_consent != "yes"; ++attempt)
        Robot::waitingPause(500);
    if (m_consent == "yes")
        startDownLoadJobFileFromController();
}
