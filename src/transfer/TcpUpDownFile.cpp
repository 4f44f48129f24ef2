// TcpUpDownFile, the file connection and the host-to-controller side: the
// frame router, the one failure path, the blocking waits and the upload.

#include "transfer/TcpUpDownFile.h"

#include "common/Logging.h"
#include "common/Payload.h"
#include "protocol/Codes.h"
#include "transfer/TransferJson.h"
#include "transfer/TransferPaths.h"

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

using namespace qrx::transfer;
namespace code = qrx::protocol::code;

namespace {

// Unsent bytes the socket may hold before the sender waits for it to drain.
constexpr qint64 kWriteBacklog = 256 * 1024;

} // namespace

TcpUpDownFile::TcpUpDownFile(MainLink link, QObject *parent)
    : QObject(parent), m_link(std::move(link)), m_jobRoot(jobRoot()),
      m_uploading(m_link.uploading ? *m_link.uploading : m_ownUploading)
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
    m_heard.start();
}

TcpUpDownFile::~TcpUpDownFile()
{
    m_connection.disconnect(this);
    m_connection.release();
}

// ---- the file connection, the state and the one way to fail --------------------

bool TcpUpDownFile::connectFileSocket()
{
    if (m_connection.isConnected())
        return true;
    m_connection.open(m_link.address, m_port);
    m_connection.waitForConnection(1000);
    if (!m_connection.isConnected()) {
        fail(tr("socket连接失败....."));
        return false;
    }
    setState(State::Ready);
    return true;
}

void TcpUpDownFile::sendFrame(quint16 command, const QByteArray &payload)
{
    sendBytes(qrx::encodeFrame(command, payload));
}

void TcpUpDownFile::sendBytes(const QByteArray &frames)
{
    if (!m_connection.write(frames))
        return;
    // Streaming: the socket never holds more than a few chunks' worth.
    while (m_connection.bytesToWrite() > kWriteBacklog && m_connection.isConnected()) {
        if (!m_connection.waitForBytesWritten(m_silenceMs))
            break;
    }
}

void TcpUpDownFile::sendMain(quint16 command, const QByteArray &payload)
{
    m_heard.restart(); // the bound counts from the request
    if (m_link.send)
        m_link.send(command, payload);
}

void TcpUpDownFile::onFrame(quint16 command, const QByteArray &payload)
{
    if (m_state == State::Done || m_state == State::Failed)
        return;
    m_heard.restart();
    if (m_link.noteAlive)
        m_link.noteAlive();
    switch (command) {
    case code::UploadAnswer: uploadAnswer(payload); break;
    case code::FileHeader: downloadHeader(payload); break;
    case code::UploadFinished: uploadFinished(payload); break;
    case code::FileBegins: fileBegins(payload); break;
    case code::FileData: fileData(payload); break;
    default: break; // the other codes of the file connection mean nothing to the host
    }
}

void TcpUpDownFile::onConnectionStatus(int status)
{
    if (status != 0 || m_state == State::Idle || m_state == State::Done || m_state == State::Failed)
        return;
    fail(failureText());
}

QString TcpUpDownFile::failureText() const
{
    return m_mode == Upload ? uploadFailureText(m_name) : brokenText();
}

void TcpUpDownFile::setState(State state)
{
    m_state = state;
    if (m_waitLoop)
        m_waitLoop->quit();
}

// A failure because the controller answered no.
void TcpUpDownFile::refuse(const QString &text)
{
    if (m_state != State::Done && m_state != State::Failed)
        m_refused = true;
    fail(text);
}

// Every failure ends here: its text, an empty 0x5525, the connection closed.
void TcpUpDownFile::fail(const QString &text)
{
    if (m_state == State::Done || m_state == State::Failed)
        return;
    qCInfo(lcTransfer).noquote() << text;
    m_lastFailure = text;
    if (m_mode == Upload)
        m_uploading = false;
    if (m_target)
        m_target->cancelWriting();
    m_target.reset(); // the temporary beside the target goes with it
    m_sendFile.close();
    if (m_connection.write(qrx::encodeFrame(code::AbortTransfer, QByteArray())))
        m_connection.waitForBytesWritten(1000);
    m_connection.disconnect(this);
    m_connection.release(1000);
    setState(State::Failed);
}

void TcpUpDownFile::finish()
{
    if (m_state == State::Done || m_state == State::Failed)
        return;
    if (m_mode == Upload)
        m_uploading = false;
    m_connection.disconnect(this);
    m_connection.release(1000);
    setState(State::Done);
}

void TcpUpDownFile::runEvents(int ms)
{
    // Up to ms of this thread's events; a change of state ends it at once.
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit); // a coarse one may end 5 % early
    m_waitLoop = &loop;
    loop.exec();
    m_waitLoop = nullptr;
}

void TcpUpDownFile::waitWhile(State busy1, State busy2, State busy3)
{
    // Runs this thread's events (socket, queued list notifications) while the
    // exchange stands in one of the busy states; a controller that stays
    // silent past the bound breaks it.
    const auto busy = [&] { return m_state == busy1 || m_state == busy2 || m_state == busy3; };
    while (busy()) {
        runEvents(qBound(1, int(m_silenceMs - m_heard.elapsed()), 50));
        if (busy() && m_heard.elapsed() > m_silenceMs)
            fail(failureText());
    }
}

void TcpUpDownFile::waitUntilEnded()
{
    while (m_state != State::Done && m_state != State::Failed)
        waitWhile(m_state);
}

// ---- upload -------------------------------------------------------------------

void TcpUpDownFile::runUpload(const QStringList &names)
{
    if (m_uploading.exchange(true)) {
        fail(tr("上传文件中，不允许上传文件"));
        return;
    }
    m_mode = Upload;
    if (!connectFileSocket())
        return;
    for (int i = 0; i < names.size() && m_state == State::Ready; ++i) {
        if (i > 0 && m_pauseMs > 0)
            runEvents(m_pauseMs); // a frame that comes meanwhile is unexpected: it fails the upload
        if (m_state != State::Ready)
            break;
        sendfileinfo(names.at(i));
        waitWhile(State::Announced, State::AwaitingStored);
    }
    finish();
}

QString TcpUpDownFile::uploadFailureText(const QString &name) const
{
    const QString base = QFileInfo(name).fileName();
    if (base == QLatin1String("qrx.out") || base == QLatin1String("qrx2.out"))
        return tr("上传控制器软件失败");
    if (m_remotePrefix == QLatin1String("config/"))
        return tr("导入配置文件失败");
    return name + tr(" 上传失败！");
}

void TcpUpDownFile::sendfileinfo(const QString &name)
{
    m_name = name;
    m_sendFile.close();
    const bool job = m_remotePrefix == QLatin1String("job/");
    m_sendFile.setFileName(job ? m_jobRoot + QStringLiteral("/robotJob/") + name : name);
    if (!m_sendFile.open(QIODevice::ReadOnly)) {
        fail(tr("无法读取上传程序：") + name);
        return;
    }
    const QString remote = m_remotePrefix + (job ? name : QFileInfo(name).fileName());
    setState(State::Announced);
    m_heard.restart();
    sendFrame(code::AnnounceUpload, jsonOf({{"name", utf8(remote)}, {"size", Json::Int64(m_sendFile.size())}}));
}

void TcpUpDownFile::uploadAnswer(const QByteArray &payload)
{
    Json::Value v;
    if (m_state != State::Announced) {
        fail(failureText()); // an answer nobody asked for
        return;
    }
    if (!qrx::parsePayload(payload, v))
        return;
    if (textOf(v, "answer") != QLatin1String("yes")) {
        refuse(tr("控制器拒绝上传程序：") + m_name);
        return;
    }
    sendWholeFile(m_name);
    if (m_state != State::Announced)
        return;
    setState(State::AwaitingStored);
    sendFrame(code::UploadEnd, jsonOf({{"name", utf8(m_name)}, {"size", Json::Int64(m_sendFile.size())}}));
}

void TcpUpDownFile::sendWholeFile(const QString &name)
{
    // Without waiting for acknowledgements: 2048 bytes per 0x5511, the last,
    // shorter piece as a final one. The file is read kChunksPerWrite chunks
    // at a time and their frames go to the socket in one write.
    const qint64 total = m_sendFile.size();
    qint64 remaining = total;
    QByteArray block, frames;
    while (remaining > 0) {
        block.resize(int(qMin<qint64>(qint64(kChunkSize) * kChunksPerWrite, remaining)));
        const qint64 read = m_sendFile.read(block.data(), block.size());
        if (read <= 0) {
            fail(tr("文件【") + name + tr("】无法打开"));
            return;
        }
        if (!m_connection.isConnected()) {
            fail(uploadFailureText(name));
            return;
        }
        frames.clear();
        for (qint64 at = 0; at < read; at += kChunkSize)
            qrx::appendFrame(frames, code::UploadChunk, block.constData() + at, int(qMin<qint64>(kChunkSize, read - at)));
        sendBytes(frames);
        for (qint64 at = 0; at < read; at += kChunkSize) {
            remaining -= qMin<qint64>(kChunkSize, read - at);
            if (m_progress)
                m_progress(name, total - remaining, total);
        }
    }
}

void TcpUpDownFile::uploadFinished(const QByteArray &payload)
{
    Json::Value v;
    if (m_state != State::AwaitingStored || !qrx::parsePayload(payload, v) || !finishes(v)) {
        fail(failureText());
        return;
    }
    m_sendFile.close();
    qCInfo(lcTransfer).noquote() << (m_remotePrefix == QLatin1String("config/") ? tr("导入配置参数文件-%1")
                                                                                : tr("导入程序-%1"))
                                        .arg(m_name);
    sendMain(code::UploadStoredNotice, jsonOf({{"name", utf8(m_name)}}));
    ++m_filesDone;
    setState(State::Ready);
}
