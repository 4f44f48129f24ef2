// TcpUpDownFile, the controller-to-host side: the job synchronisation by
// MD5, the configuration, log and ENI exports, and the consent polling.

#include "transfer/TcpUpDownFile.h"

#include "common/Logging.h"
#include "protocol/Codes.h"
#include "common/Payload.h"
#include "robot/Robot.h"
#include "transfer/TransferJson.h"
#include "transfer/TransferPaths.h"

#include <QDir>
#include <QFileInfo>

using namespace qrx::transfer;
namespace code = qrx::protocol::code;

namespace {

// Remote job files are named "job/R<n>/<name>"; progress names a job file
// as uploads do, "R<n>/<name>" (its place under robotJob).
QString progressName(bool jobDownload, const QString &requested)
{
    return jobDownload ? requested.mid(4) : requested;
}

} // namespace

// ---- download -----------------------------------------------------------------

void TcpUpDownFile::startDownLoadJobFileFromController()
{
    m_mode = JobDownload;
    if (m_robot)
        m_robot->send(code::StartJobSync, jsonOf({{"robot", m_robot->currentRobot()}}));
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
        m_robot->send(code::RequestFileList, jsonOf({{"num", int(mode)}}));
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
        sendJson(code::ExportFinished, jsonOf({{"finish", "yes"}}));
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
    sendJson(code::RequestFile, jsonOf({{"name", utf8(m_downloadList.at(m_downloadIndex))}}));
}

QString TcpUpDownFile::brokenText() const
{
    return m_mode == LogDownload ? tr("下载日志文件出现问题，请重新下载") : tr("下载文件出现问题，请重新下载");
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
        refuse(refusalText());
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
        return m_jobRoot + QStringLiteral("/robotJob/") + progressName(true, requested);
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
    sendJson(code::FileReady, jsonOf({{"name", utf8(requested)}}));
}

void TcpUpDownFile::fileData(const QByteArray &payload)
{
    const QString requested = m_downloadList.value(m_downloadIndex);
    if (!m_target) {
        fail(brokenText());
        return;
    }
    if (m_received < m_expected) {
        if (m_received + payload.size() > m_expected || m_target->write(payload) != payload.size()) {
            fail(brokenText());
            return;
        }
        m_received += payload.size();
        if (m_progress)
            m_progress(progressName(m_mode == JobDownload, requested), m_received, m_expected);
        return;
    }
    Json::Value v;
    if (!qrx::parsePayload(payload, v) || textOf(v, "finish") != QLatin1String("yes") || !m_target->commit()) {
        fail(brokenText());
        return;
    }
    m_target.reset();
    if (m_progress && m_expected == 0)
        m_progress(progressName(m_mode == JobDownload, requested), 0, 0);
    ++m_filesDone;
    sendJson(code::FileStored, jsonOf({{"name", utf8(requested)}, {"size", Json::Int64(m_received)}}));
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
