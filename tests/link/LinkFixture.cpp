#include "LinkFixture.h"

#include <QElapsedTimer>
#include <QTest>

#ifdef Q_OS_UNIX
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace linktest {

const QString kReconnectLine = QStringLiteral("重置网络连接 尝试连接IP");
const QString kCloseLine = QStringLiteral("关闭网络连接");
const QString kTimeoutLine = QStringLiteral("连接超时 主动断开");
const QString kHeadError = QStringLiteral("onTcpSocketReadyRead: head error");
const QString kCrcError = QStringLiteral("onTcpSocketReadyRead: crc32 error");

QString otherAddress(const QString &address)
{
    QStringList parts = address.split(QLatin1Char('.'));
    parts.last() = QString::number(parts.last().toInt() % 250 + 1);
    return parts.join(QLatin1Char('.'));
}

QVector<int> statuses(const QSignalSpy &spy)
{
    QVector<int> result;
    for (const QList<QVariant> &args : spy)
        result.append(args.at(0).toInt());
    return result;
}

int countLinesStartingWith(const LogCapture &log, const QString &prefix)
{
    int n = 0;
    for (const QString &line : log.lines())
        n += line.startsWith(prefix) ? 1 : 0;
    return n;
}

Received::Received(TcpConnectModule &link)
{
    connect(&link, &LinkNotifications::receivedData, this, [this](quint16 command, QByteArray data) {
        if ((command >> 8) == 0x7E)
            frames.append({command, data});
    });
}

bool Received::has(quint16 command) const
{
    for (const auto &f : frames)
        if (f.first == command)
            return true;
    return false;
}

Link::Link(const QString &address, int timeBase)
    : module(address, kPort, timeBase)
    , status(&module, &LinkNotifications::connectSucceed)
{
}

bool waitUp(Link &link, int timeoutMs)
{
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < timeoutMs) {
        if (!link.status.isEmpty() && link.status.last().at(0).toInt() == 1)
            return true;
        link.status.wait(50);
    }
    return false;
}

bool settle(qrxsim::SimHandle &sim, Received &received)
{
    if (!sim.waitForClient())
        return false;
    sim.send(kSettle, "{}\n");
    QElapsedTimer t;
    t.start();
    while (!received.has(kSettle) && t.elapsed() < 10000)
        QTest::qWait(10);
    received.frames.clear();
    return t.elapsed() < 10000;
}

FullListener::FullListener(const QString &address)
{
#ifdef Q_OS_UNIX
    m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (m_fd < 0)
        return;
    const int one = 1;
    ::setsockopt(m_fd, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(kPort);
    ::inet_pton(AF_INET, address.toLatin1().constData(), &addr.sin_addr);
    if (::bind(m_fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0 || ::listen(m_fd, 0) != 0)
        return;
    // Fill the queue until a connect no longer completes.
    for (int i = 0; i < 8; ++i) {
        auto filler = std::make_unique<QTcpSocket>();
        filler->connectToHost(address, kPort);
        const bool done = filler->waitForConnected(300);
        m_fillers.push_back(std::move(filler));
        if (!done) {
            m_fillers.back()->abort();
            m_hanging = true;
            return;
        }
    }
#else
    Q_UNUSED(address)
#endif
}

FullListener::~FullListener()
{
    m_fillers.clear();
#ifdef Q_OS_UNIX
    if (m_fd >= 0)
        ::close(m_fd);
#endif
}

} // namespace linktest
