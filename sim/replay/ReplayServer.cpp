#include "sim/replay/ReplayServer.h"

#include <QDateTime>
#include <QTcpSocket>

namespace qrxsim::replay {

namespace {

QString hex(quint16 code)
{
    return QStringLiteral("0x%1").arg(code, 4, 16, QLatin1Char('0'));
}

QString shown(const QByteArray &payload)
{
    QByteArray text = payload.trimmed();
    if (text.size() > 120)
        text = text.left(117) + "...";
    return QString::fromUtf8(text);
}

} // namespace

ReplaySession::ReplaySession(QTcpSocket *socket, const Script &script, QString name, Say say, QObject *parent)
    : QObject(parent)
    , m_socket(socket)
    , m_script(script)
    , m_name(std::move(name))
    , m_say(std::move(say))
    , m_startMs(QDateTime::currentMSecsSinceEpoch())
{
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    for (int i = 0; i < script.requests.size(); ++i) {
        if (script.requests[i].code != kHeartbeat)
            m_order.append(i);
    }
    m_reports.setSingleShot(true);
    m_reports.setTimerType(Qt::PreciseTimer);
    connect(&m_reports, &QTimer::timeout, this, &ReplaySession::sendDueReports);
    connect(m_socket, &QTcpSocket::readyRead, this, &ReplaySession::onReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, &ReplaySession::onDisconnected);
    sendDueReports();
}

void ReplaySession::onReadyRead()
{
    m_decoder.feed(m_socket->readAll(), [this](quint16 code, const QByteArray &payload) { onRequest(code, payload); });
}

void ReplaySession::onRequest(quint16 code, const QByteArray &payload)
{
    if (code != kHeartbeat)
        checkOrder(code);
    const QVector<int> recorded = m_script.byCode.value(code);
    const int n = m_asked[code]++;
    if (recorded.isEmpty()) {
        // How many heartbeats a host sends depends on how long it stays.
        if (code != kHeartbeat && !m_toldOf.contains(code))
            depart(QStringLiteral("%1 was never sent in the recording; not answered").arg(hex(code)));
        m_toldOf.insert(code);
        return;
    }
    if (n >= recorded.size() && code != kHeartbeat && !m_toldOf.contains(code)) {
        m_toldOf.insert(code);
        depart(QStringLiteral("%1 sent more often than in the recording (%2 times): its last answer repeats")
                   .arg(hex(code))
                   .arg(recorded.size()));
    }
    const Request &request = m_script.requests[recorded[qMin(n, recorded.size() - 1)]];
    if (code != kHeartbeat && n < recorded.size() && request.payload != payload && !m_toldOf.contains(code)) {
        m_toldOf.insert(code);
        depart(QStringLiteral("%1 #%2 differs: %3 where the recording has %4")
                   .arg(hex(code))
                   .arg(n + 1)
                   .arg(shown(payload), shown(request.payload)));
    }
    // Reports the controller sent before this answer keep their place.
    sendReportsUntil(request.answeredAtUs);
    for (const Sent &frame : request.answer)
        send(frame);
}

void ReplaySession::checkOrder(quint16 code)
{
    if (m_orderLeft)
        return;
    if (m_orderAt < m_order.size() && m_script.requests[m_order[m_orderAt]].code == code) {
        ++m_orderAt;
        return;
    }
    m_orderLeft = true;
    depart(m_orderAt < m_order.size()
               ? QStringLiteral("request %1 is %2 where the recording has %3")
                     .arg(m_orderAt + 1)
                     .arg(hex(code), hex(m_script.requests[m_order[m_orderAt]].code))
               : QStringLiteral("request %1 is %2, after the recorded requests ended").arg(m_orderAt + 1).arg(hex(code)));
}

void ReplaySession::sendReportsUntil(qint64 offsetUs)
{
    while (m_nextReport < m_script.reports.size() && m_script.reports[m_nextReport].offsetUs <= offsetUs)
        send(m_script.reports[m_nextReport++].frame);
}

void ReplaySession::sendDueReports()
{
    const qint64 elapsedUs = (QDateTime::currentMSecsSinceEpoch() - m_startMs) * 1000;
    sendReportsUntil(elapsedUs);
    if (m_nextReport < m_script.reports.size())
        m_reports.start(int((m_script.reports[m_nextReport].offsetUs - elapsedUs + 999) / 1000));
}

void ReplaySession::onDisconnected()
{
    m_reports.stop();
    if (!m_orderLeft && m_orderAt < m_order.size())
        depart(QStringLiteral("the host left after %1 of the %2 recorded requests (next: %3)")
                   .arg(m_orderAt)
                   .arg(m_order.size())
                   .arg(hex(m_script.requests[m_order[m_orderAt]].code)));
    deleteLater();
}

void ReplaySession::send(const Sent &frame)
{
    if (m_socket->state() == QAbstractSocket::ConnectedState)
        m_socket->write(qrx::encodeFrame(frame.code, frame.payload));
}

void ReplaySession::depart(const QString &text)
{
    m_say(m_name + QStringLiteral(": ") + text);
}

ReplayServer::ReplayServer(Scripts scripts, ReplaySession::Say say)
    : m_scripts(std::move(scripts))
    , m_say(std::move(say))
{
    connect(&m_main, &QTcpServer::newConnection, this,
            [this] { accept(m_main, m_scripts.mainLink, m_mainCount, QStringLiteral("link")); });
    connect(&m_files, &QTcpServer::newConnection, this,
            [this] { accept(m_files, m_scripts.fileConnection, m_fileCount, QStringLiteral("file connection")); });
}

bool ReplayServer::listen(const QHostAddress &address, quint16 port)
{
    if (!m_main.listen(address, port)) {
        m_say(QStringLiteral("cannot listen on %1:%2: %3").arg(address.toString()).arg(port).arg(m_main.errorString()));
        return false;
    }
    if (!m_files.listen(address, qrx::pcap::kFilePort))
        m_say(QStringLiteral("no file connection: cannot listen on %1:%2: %3")
                  .arg(address.toString())
                  .arg(qrx::pcap::kFilePort)
                  .arg(m_files.errorString()));
    return true;
}

void ReplayServer::accept(QTcpServer &server, const QVector<Script> &scripts, int &count, const QString &kind)
{
    while (QTcpSocket *socket = server.nextPendingConnection()) {
        ++count;
        const QString name = QStringLiteral("%1 %2").arg(kind).arg(count);
        if (scripts.isEmpty()) {
            m_say(name + QStringLiteral(": the recording has no such connection; closed"));
            socket->close();
            socket->deleteLater();
            continue;
        }
        if (count > scripts.size())
            m_say(name + QStringLiteral(": the recording has %1; the last one plays again").arg(scripts.size()));
        new ReplaySession(socket, scripts[qMin(count, int(scripts.size())) - 1], name, m_say, this);
    }
}

} // namespace qrxsim::replay
