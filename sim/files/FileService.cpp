#include "sim/files/FileService.h"

#include "common/CompactJson.h"
#include "common/Payload.h"
#include "protocol/Codes.h"
#include "sim/Session.h"
#include "sim/SimHandle.h"
#include "sim/Simulator.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QQueue>
#include <QSaveFile>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

#include <memory>

namespace qrxsim {

namespace {

namespace code = qrx::protocol::code;

constexpr qint64 kChunk = 2048;
constexpr int kFramesPerBlock = 32;
constexpr qint64 kBacklog = 256 * 1024;

QString text(const Json::Value &v, const char *key)
{
    return v[key].isString() ? QString::fromStdString(v[key].asString()) : QString();
}

std::string utf8(const QString &s)
{
    return s.toUtf8().toStdString();
}

bool safeRelative(const QString &path)
{
    if (path.isEmpty() || path.startsWith(QLatin1Char('/')) || path.contains(QLatin1Char('\\')))
        return false;
    const QStringList parts = path.split(QLatin1Char('/'));
    for (const QString &part : parts) {
        if (part.isEmpty() || part == QLatin1String(".") || part == QLatin1String(".."))
            return false;
    }
    return true;
}

} // namespace

// One client of the file port.
class FileSession : public QObject
{
public:
    FileSession(FileService &service, QTcpSocket *socket) : m_service(service), m_socket(socket)
    {
        m_socket->setParent(this);
        // Up to 64 KiB per read, as the host reads: an upload is consumed in
        // pieces that reuse the same memory instead of fresh large buffers.
        m_socket->setReadBufferSize(64 * 1024);
        connect(socket, &QIODevice::readyRead, this, &FileSession::onReadyRead);
        connect(socket, &QIODevice::bytesWritten, this, &FileSession::pump);
        connect(socket, &QAbstractSocket::disconnected, this, &QObject::deleteLater);
    }

private:
    void onReadyRead()
    {
        m_decoder.feed(m_socket->readAll(), [this](quint16 command, const QByteArray &payload) {
            // File data is recorded by its size only: a long upload does not
            // pile up in the record.
            m_service.received.push_back({command, command == code::UploadChunk ? QByteArray::number(payload.size()) : payload});
            handle(command, payload);
        });
    }

    void send(quint16 command, const QByteArray &payload)
    {
        const QByteArray frame = qrx::encodeFrame(command, payload);
        if (m_service.faults.splitFrames) {
            m_out.enqueue(frame.left(frame.size() / 2));
            m_out.enqueue(frame.mid(frame.size() / 2));
        } else {
            m_out.enqueue(frame);
        }
        pump();
    }

    void sendJson(quint16 command, const Json::Value &v) { send(command, qrx::jsonPayload(v)); }

    // Writes queued pieces while the socket's backlog is small, and feeds the
    // queue from the file being sent; split frames go one piece per 2 ms.
    void pump()
    {
        if (m_socket->state() != QAbstractSocket::ConnectedState)
            return;
        while (m_socket->bytesToWrite() < kBacklog) {
            if (m_out.isEmpty() && !produce())
                return;
            if (m_out.isEmpty())
                return;
            m_socket->write(m_out.dequeue());
            if (m_service.faults.splitFrames) {
                m_socket->flush();
                if (!m_out.isEmpty() || m_sending)
                    QTimer::singleShot(2, this, &FileSession::pump);
                return;
            }
        }
    }

    // The next piece of the file being sent; false when there is none. The
    // data goes out up to 32 frames at a time (64 KiB of the file, one read,
    // one write); split frames, one frame at a time.
    bool produce()
    {
        if (!m_sending)
            return false;
        if (m_file.pos() < m_fileSize) {
            const int frames = m_service.faults.splitFrames ? 1 : kFramesPerBlock;
            m_block.resize(int(qMin<qint64>(kChunk * frames, m_fileSize - m_file.pos())));
            const qint64 read = m_file.read(m_block.data(), m_block.size());
            if (read <= 0) { // the file shrank meanwhile: the host hears of it by the size
                m_sending = false;
                m_file.close();
                return false;
            }
            QByteArray out;
            out.reserve(int(read + (read / kChunk + 1) * qrx::kFrameOverhead));
            for (qint64 at = 0; at < read; at += kChunk)
                qrx::appendFrame(out, code::FileData, m_block.constData() + at, int(qMin(kChunk, read - at)));
            if (m_service.faults.splitFrames) {
                m_out.enqueue(out.left(out.size() / 2));
                m_out.enqueue(out.mid(out.size() / 2));
            } else {
                m_out.enqueue(out);
            }
            return true;
        }
        m_sending = false;
        m_file.close();
        Json::Value done(Json::objectValue);
        done["finish"] = "yes";
        m_out.enqueue(qrx::encodeFrame(code::FileData, qrx::jsonPayload(done)));
        return true;
    }

    void handle(quint16 command, const QByteArray &payload)
    {
        // File data is not JSON: only the other frames are parsed.
        Json::Value v;
        if (command != code::UploadChunk)
            qrx::parsePayload(payload, v);
        switch (command) {
        case code::AnnounceUpload: upload(v); break;
        case code::UploadChunk:
            if (m_upload)
                m_upload->write(payload);
            m_uploaded += payload.size();
            break;
        case code::UploadEnd: {
            const bool whole = m_upload && m_uploaded == m_uploadSize && m_upload->commit();
            Json::Value answer(Json::objectValue);
            answer["finish"] = whole ? "yes" : "no";
            answer["name"] = utf8(m_uploadName);
            m_upload.reset();
            sendJson(code::UploadFinished, answer);
            break;
        }
        case code::RequestFile: request(text(v, "name")); break;
        case code::FileReady: m_sending = m_file.isOpen(); pump(); break;
        case code::AbortTransfer:
            m_upload.reset(); // an unfinished upload leaves nothing behind
            m_sending = false;
            m_file.close();
            break;
        default: break;
        }
    }

    void upload(const Json::Value &v)
    {
        m_uploadName = text(v, "name");
        m_uploadSize = v["size"].asInt64();
        m_uploaded = 0;
        m_upload.reset();
        const QString path = m_service.localPath(m_uploadName);
        Json::Value answer(Json::objectValue);
        answer["name"] = utf8(m_uploadName);
        answer["answer"] = "no";
        if (!m_service.faults.refuseUpload && !path.isEmpty() && QDir().mkpath(QFileInfo(path).absolutePath())) {
            m_upload = std::make_unique<QSaveFile>(path);
            if (m_upload->open(QIODevice::WriteOnly))
                answer["answer"] = "yes";
            else
                m_upload.reset();
        }
        sendJson(code::UploadAnswer, answer);
    }

    void request(const QString &name)
    {
        const QString path = m_service.localPath(name);
        m_file.close();
        m_file.setFileName(path);
        Json::Value header(Json::objectValue);
        header["name"] = utf8(name);
        if (path.isEmpty() || !m_file.open(QIODevice::ReadOnly)) {
            header["answer"] = "no";
            sendJson(code::FileHeader, header);
            return;
        }
        header["answer"] = "yes";
        m_fileSize = m_file.size(); // asked once: QFile::size() is a stat call
        header["size"] = Json::Int64(m_fileSize);
        sendJson(code::FileHeader, header);
        if (name.startsWith(QLatin1String("job/")))
            return; // a job file: the host confirms the header with 0x5524
        Json::Value begins(Json::objectValue);
        begins["name"] = utf8(name);
        begins["size"] = Json::Int64(m_fileSize);
        sendJson(code::FileBegins, begins);
    }

    FileService &m_service;
    QTcpSocket *m_socket;
    qrx::FrameDecoder m_decoder;
    QQueue<QByteArray> m_out;
    QFile m_file;
    QByteArray m_block; // the piece of the file being framed
    qint64 m_fileSize = 0;
    bool m_sending = false;
    std::unique_ptr<QSaveFile> m_upload;
    QString m_uploadName;
    qint64 m_uploadSize = 0;
    qint64 m_uploaded = 0;
};

FileService::FileService(Simulator &simulator, QObject *parent) : QObject(parent), m_simulator(simulator)
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            ++connectionCount;
            auto *session = new FileSession(*this, socket);
            session->setParent(this);
        }
    });
}

FileService::~FileService() = default;

bool FileService::listen(const QHostAddress &address, quint16 port)
{
    // The answers outlive a service removed before the simulator: they then
    // answer nothing.
    QPointer<FileService> self(this);
    m_simulator.setHandler({code::StartJobSync, [self](Session &session, const ReceivedFrame &) {
                                if (self)
                                    self->announceJobs(session);
                            }});
    m_simulator.setHandler({code::RequestFileList, [self](Session &session, const ReceivedFrame &frame) {
                                Json::Value v;
                                if (self && qrx::parsePayload(frame.payload, v))
                                    self->announceList(session, v["num"].asInt());
                            }});
    return m_server.listen(address, port);
}

QString FileService::localPath(const QString &remote) const
{
    if (remote.startsWith(QLatin1String("job/")) && safeRelative(remote.mid(4)) && !jobDir.isEmpty())
        return jobDir + QLatin1Char('/') + remote.mid(4);
    if (remote.startsWith(QLatin1String("config/")) && safeRelative(remote.mid(7)) && !configDir.isEmpty())
        return configDir + QLatin1Char('/') + remote.mid(7);
    const QFileInfo info(remote);
    for (const QString &dir : {logDir, eniDir}) {
        if (!dir.isEmpty() && info.isAbsolute() && info.absolutePath() == QFileInfo(dir).absoluteFilePath()
            && safeRelative(info.fileName()))
            return remote;
    }
    return QString();
}

void FileService::announceJobs(Session &session)
{
    for (int robot = 1; robot <= 4; ++robot) {
        Json::Value list(Json::arrayValue);
        const QDir dir(jobDir + QStringLiteral("/R%1").arg(robot));
        if (!jobDir.isEmpty()) {
            for (const QFileInfo &entry : dir.entryInfoList(QDir::Files, QDir::Name)) {
                Json::Value item(Json::objectValue);
                item["name"] = utf8(entry.fileName());
                item["MD5"] = utf8(m_digests.md5Of(entry.absoluteFilePath()));
                list.append(item);
            }
        }
        Json::Value v(Json::objectValue);
        v["robot"] = robot;
        v["listnum"] = int(list.size());
        v["jobfilelist"] = list;
        session.replyJson(code::JobDigestList, v);
    }
    session.reply(code::JobListsEnd, QByteArray());
}

void FileService::announceList(Session &session, int num)
{
    const bool logs = num == 5;
    if (!logs && num != 10)
        return;
    const QString dir = logs ? logDir : eniDir;
    Json::Value list(Json::arrayValue);
    if (!dir.isEmpty()) {
        for (const QFileInfo &entry : QDir(dir).entryInfoList(QDir::Files, QDir::Name))
            list.append(utf8(entry.fileName()));
    }
    Json::Value v(Json::objectValue);
    v["absolutepath"] = utf8(QFileInfo(dir).absoluteFilePath());
    v[logs ? "logfilenum" : "ENIfilenum"] = int(list.size());
    v[logs ? "logfilelist" : "ENIfilelist"] = list;
    session.replyJson(logs ? code::LogList : code::EniList, v);
}

// ---- test handle ----------------------------------------------------------------

FileServiceHandle::FileServiceHandle(SimHandle &sim, quint16 port) : m_sim(sim)
{
    const QHostAddress address(sim.address());
    m_sim.withSimulator([&](Simulator &simulator) {
        m_service = new FileService(simulator);
        m_listening = m_service->listen(address, port);
    });
}

FileServiceHandle::~FileServiceHandle()
{
    m_sim.withSimulator([&](Simulator &) { delete m_service; });
}

void FileServiceHandle::with(const std::function<void(FileService &)> &fn)
{
    m_sim.withSimulator([&](Simulator &) { fn(*m_service); });
}

QVector<std::pair<quint16, QByteArray>> FileServiceHandle::received()
{
    QVector<std::pair<quint16, QByteArray>> copy;
    with([&](FileService &service) { copy = service.received; });
    return copy;
}

bool FileServiceHandle::waitForFileFrame(quint16 command, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired()) {
        for (const auto &frame : received()) {
            if (frame.first == command)
                return true;
        }
        QThread::msleep(10);
    }
    return false;
}

} // namespace qrxsim
