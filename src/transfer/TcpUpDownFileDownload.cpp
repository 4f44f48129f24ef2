// TcpUpDownFile, the controller-to-host side: the job synchronisation by
// MD5, and the configuration, log and ENI exports.

#include "transfer/TcpUpDownFile.h"

#include "common/Logging.h"
#include "common/Payload.h"
#include "protocol/Codes.h"
#include "transfer/TransferJson.h"
#include "transfer/TransferPaths.h"

#include <QDir>
#include <QFileInfo>

using namespace qrx::transfer;
namespace code = qrx::protocol::code;

// ---- starting points ------------------------------------------------------------

void TcpUpDownFile::runJobDownload(int robot)
{
    m_mode = JobDownload;
    setState(State::AwaitingList);
    m_localDigests.start(m_jobRoot);
    sendMain(code::StartJobSync, jsonOf({{"robot", robot}}));
    waitUntilEnded();
}

void TcpUpDownFile::runListExport(Mode mode)
{
    m_mode = mode;
    setState(State::AwaitingList);
    sendMain(code::RequestFileList, jsonOf({{"num", int(mode)}}));
    waitUntilEnded();
}

void TcpUpDownFile::runNameDownload(Mode mode, const QStringList &names)
{
    m_mode = mode;
    m_downloadList = names;
    startDownloads();
    waitUntilEnded();
}

void TcpUpDownFile::startDownloads()
{
    m_downloadIndex = -1;
    if (m_downloadList.isEmpty())
        finish();
    else if (connectFileSocket())
        requestNext();
}

// ---- the job lists of the main link ------------------------------------------------

void TcpUpDownFile::recvJobFileSumList(QByteArray data)
{
    Json::Value v;
    if (m_state != State::AwaitingList || m_mode != JobDownload || !qrx::parsePayload(data, v) || !v.isObject())
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
        if (QFileInfo::exists(local) && m_localDigests.md5Of(local) == textOf(entry, "MD5").toLower())
            continue; // in step already
        // A differing local file stays until its replacement is complete.
        m_downloadList << QStringLiteral("job/R%1/").arg(robot) + name;
    }
}

void TcpUpDownFile::recvJobFileList(QByteArray data)
{
    // The plain name list of one robot: only its count is checked.
    Json::Value v;
    if (m_state != State::AwaitingList || !qrx::parsePayload(data, v) || !v.isObject())
        return;
    const Json::Value &list = v["jobfilelist"];
    if (v["jobfilenum"].isIntegral() && list.isArray() && v["jobfilenum"].asInt() != int(list.size()))
        qCInfo(lcTransfer).noquote() << tr("控制器发送文件名个数不符");
}

void TcpUpDownFile::recvJobFileInfoFinish()
{
    if (m_state == State::AwaitingList && m_mode == JobDownload)
        startDownloads();
}

// ---- the log and ENI lists -----------------------------------------------------------

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
    if (m_state != State::AwaitingList || !qrx::parsePayload(data, v) || !v.isObject())
        return;
    const bool logs = mode == LogDownload;
    const Json::Value &list = v[logs ? "logfilelist" : "ENIfilelist"];
    const QString folder = textOf(v, "absolutepath");
    QStringList names;
    if (list.isArray()) {
        for (const Json::Value &entry : list) {
            const QString name = entry.isString() ? QString::fromStdString(entry.asString()) : QString();
            const QString path = folder.isEmpty() ? name : folder + QLatin1Char('/') + name;
            if (!isPlainName(name) || !isRelativePath(path.startsWith(QLatin1Char('/')) ? path.mid(1) : path)) {
                fail(tr("控制器发送的文件名不安全，已中止传输：") + name);
                return;
            }
            names << path;
        }
    }
    if (names.isEmpty()) {
        fail(logs ? tr("控制器发送的日志列表为空，无法导出控制器日志")
                  : tr("控制器发送的ENI列表为空，无法导出控制器ENI"));
        return;
    }
    m_downloadList = names;
    startDownloads();
}

// ---- one file after the other ------------------------------------------------------------

void TcpUpDownFile::requestNext()
{
    if (++m_downloadIndex >= m_downloadList.size()) {
        if (m_mode == LogDownload || m_mode == EniDownload)
            sendFrame(code::ExportFinished, jsonOf({{"finish", "yes"}}));
        finish();
        return;
    }
    m_name = m_downloadList.at(m_downloadIndex);
    m_expected = -1;
    m_received = 0;
    setState(State::Requested);
    sendFrame(code::RequestFile, jsonOf({{"name", utf8(m_name)}}));
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
    if (m_state != State::Requested) {
        fail(failureText()); // a header nobody asked for
        return;
    }
    if (!qrx::parsePayload(payload, v))
        return;
    if (textOf(v, "answer") != QLatin1String("yes")) {
        fail(refusalText());
        return;
    }
    const QString name = textOf(v, "name");
    if (name != m_name) {
        fail(tr("文件名有误：") + m_name + QStringLiteral(" -- ") + name);
        return;
    }
    if (!v["size"].isIntegral() || v["size"].asInt64() < 0) {
        fail(tr("程序下载失败：") + m_name);
        return;
    }
    m_expected = v["size"].asInt64();
    if (m_mode != JobDownload) {
        setState(State::AwaitingBegin); // the controller announces the file with 0x5521
        return;
    }
    if (openTarget()) { // a job file: the host confirms at once
        setState(State::Receiving);
        sendFrame(code::FileReady, jsonOf({{"name", utf8(m_name)}}));
    }
}

void TcpUpDownFile::fileBegins(const QByteArray &payload)
{
    Json::Value v;
    if (m_state != State::AwaitingBegin) {
        fail(failureText());
        return;
    }
    if (!qrx::parsePayload(payload, v))
        return;
    if (v.isObject() && v.isMember("name") && textOf(v, "name") != m_name) {
        fail(tr("文件名有误：") + m_name + QStringLiteral(" -- ") + textOf(v, "name"));
        return;
    }
    if (openTarget()) {
        setState(State::Receiving);
        sendFrame(code::FileReady, jsonOf({{"name", utf8(m_name)}}));
    }
}

// Creates the file being downloaded beside its place (QSaveFile); false,
// after the failure, when its folder or the file cannot be made.
bool TcpUpDownFile::openTarget()
{
    const QString path = m_mode == JobDownload ? m_jobRoot + QStringLiteral("/robotJob/") + m_name.mid(4)
                                               : m_targetFolder + QLatin1Char('/') + QFileInfo(m_name).fileName();
    const QString base = QFileInfo(m_name).fileName();
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        switch (m_mode) {
        case ConfigDownload: fail(tr("无法创建配置文件路径，无法继续下载")); break;
        case LogDownload: fail(tr("无法创建日志文件路径，无法继续下载")); break;
        case EniDownload: fail(tr("无法创建ENI文件路径，无法继续下载")); break;
        default: fail(tr("程序下载失败：") + m_name); break;
        }
        return false;
    }
    m_target = std::make_unique<QSaveFile>(path);
    if (!m_target->open(QIODevice::WriteOnly)) {
        switch (m_mode) {
        case ConfigDownload: fail(tr("无法创建配置文件【") + base + tr("】失败")); break;
        case LogDownload: fail(tr("无法创建日志文件【") + base + tr("】")); break;
        case EniDownload: fail(tr("无法创建ENI文件【") + base + tr("】")); break;
        default: fail(tr("创建文件失败")); break;
        }
        return false;
    }
    m_received = 0;
    return true;
}

void TcpUpDownFile::fileData(const QByteArray &payload)
{
    if (m_state != State::Receiving || !m_target) {
        fail(failureText());
        return;
    }
    if (m_received < m_expected) { // the header's size tells data from the closing frame
        if (m_received + payload.size() > m_expected || m_target->write(payload) != payload.size()) {
            fail(brokenText());
            return;
        }
        m_received += payload.size();
        if (m_progress)
            m_progress(m_name, m_received, m_expected);
        return;
    }
    Json::Value v;
    if (!qrx::parsePayload(payload, v) || !finishes(v) || !m_target->commit()) {
        fail(brokenText());
        return;
    }
    m_target.reset();
    if (m_progress && m_expected == 0)
        m_progress(m_name, 0, 0);
    ++m_filesDone;
    sendFrame(code::FileStored, jsonOf({{"name", utf8(m_name)}, {"size", Json::Int64(m_received)}}));
    requestNext();
}
