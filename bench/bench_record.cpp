// What recording a session (QRX_RECORD, qrx_record) costs the link.
//
//  - BM_LinkCpuPerFrame/K: a framed connection in a thread of its own, as
//    the link runs it, reads position reports (0x2F08, 147 bytes) that a
//    peer sends K at a time in one write, and answers each K-th with a
//    query (0x2F07), on which the peer sends the next K: the link reads K
//    frames per pass, every time (K = 1: a request and its answer; K = 16:
//    a burst, where the hand-over weighs most against the framing). Rounds
//    without and with recording alternate; the link thread's CPU time per
//    received frame is "off_us" and "on_us", "ratio" = on/off (goal: at
//    most 1.3) and "median_ratio" the median of the rounds' pairs.
//    "writer_us" is what the recorder's own thread spent per frame (the
//    process's CPU minus the link thread and the peer), beside "idle_us",
//    the same without recording.
//  - BM_HandOver/0: the link thread's part of recording one frame alone
//    (stamp and queue), beside "off_ns", the check made while not recording.
//    BM_HandOver/1: the same frame of a link that another controller's
//    recording (qrxc_record) does not take: the walk over the recorders.

#include "link/FrameCodec.h"
#include "link/FramedConnection.h"
#include "link/SessionRecorder.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QTcpSocket>
#include <QThread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <thread>
#include <vector>

namespace {

constexpr int kFramesPerRound = 4800; // a multiple of every burst size

double cpuSeconds(clockid_t clock)
{
    timespec ts{};
    clock_gettime(clock, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

clockid_t threadClock()
{
    clockid_t clock{};
    pthread_getcpuclockid(pthread_self(), &clock);
    return clock;
}

QByteArray positionFrame()
{
    return qrx::encodeFrame(0x2F08, "{\"coord\":0,\"pos\":[100.0,101.25,102.5,103.75,105.0,106.25,107.5],"
                                    "\"posDeg\":[10.0,10.5,11.0,11.5,12.0,12.5,13.0],\"robot\":1}\n");
}

// The controller's side: a blocking socket in a thread of the bench.
class Peer
{
public:
    Peer()
    {
        m_listen = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(m_listen, reinterpret_cast<sockaddr *>(&address), sizeof address);
        ::listen(m_listen, 1);
        socklen_t size = sizeof address;
        ::getsockname(m_listen, reinterpret_cast<sockaddr *>(&address), &size);
        m_port = ntohs(address.sin_port);
    }
    ~Peer()
    {
        ::close(m_fd);
        ::close(m_listen);
    }
    quint16 port() const { return m_port; }
    void accept() { m_fd = ::accept(m_listen, nullptr, nullptr); }
    // Sends n frames, k per write, each k after the host's answer to the
    // last; returns the CPU seconds the peer spent.
    double stream(int n, int k, const QByteArray &frame, int answerSize)
    {
        const double before = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        const QByteArray burst = frame.repeated(k);
        std::vector<char> answer(static_cast<size_t>(answerSize));
        for (int sent = 0; sent < n; sent += k) {
            ::send(m_fd, burst.constData(), size_t(burst.size()), MSG_NOSIGNAL);
            ::recv(m_fd, answer.data(), answer.size(), MSG_WAITALL);
        }
        return cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - before;
    }

private:
    int m_listen = -1;
    int m_fd = -1;
    quint16 m_port = 0;
};

// The host's side: a FramedConnection in a thread with its own event loop.
class Link
{
public:
    static QByteArray query() { return qrx::encodeFrame(0x2F07, "{\"coord\":0,\"robot\":1}\n"); }

    Link(quint16 port, int answerEvery)
    {
        m_thread.start();
        QObject *context = new QObject;
        context->moveToThread(&m_thread);
        m_context = context;
        QMetaObject::invokeMethod(
            context,
            [this, port, answerEvery] {
                m_clock = threadClock();
                m_connection = new qrx::FramedConnection;
                m_connection->setContext(m_context);
                QObject::connect(m_connection, &qrx::FramedConnection::frameReceived, m_connection,
                                 [this, answerEvery](quint16, const QByteArray &) {
                                     if (++m_received % answerEvery == 0)
                                         m_connection->write(m_query);
                                 });
                m_connection->open(QStringLiteral("127.0.0.1"), port);
            },
            Qt::BlockingQueuedConnection);
    }
    ~Link()
    {
        QMetaObject::invokeMethod(
            m_context,
            [this] {
                m_connection->release();
                delete m_connection;
                delete m_context;
            },
            Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }
    bool connected() const { return m_connection->isConnected(); }
    int received() const { return m_received.load(); }
    double cpu() const { return cpuSeconds(m_clock); }

private:
    QThread m_thread;
    QObject *m_context = nullptr;
    qrx::FramedConnection *m_connection = nullptr;
    clockid_t m_clock{};
    std::atomic<int> m_received{0};
    const QByteArray m_query = query();
};

struct Round
{
    double linkCpu;
    double otherCpu; // the process minus the link thread and the peer
};

Round round(Peer &peer, Link &link, int k, bool record, const QString &path)
{
    if (record)
        qrx::SessionRecorder::processWide().start(path);
    const int start = link.received();
    const double link0 = link.cpu();
    const double process0 = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
    const double peerCpu = peer.stream(kFramesPerRound, k, positionFrame(), Link::query().size());
    while (link.received() < start + kFramesPerRound)
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    if (record)
        qrx::SessionRecorder::processWide().stop(); // the writer's last batch counts
    const double linkCpu = link.cpu() - link0;
    const double process = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - process0;
    return {linkCpu, process - linkCpu - peerCpu};
}

void BM_LinkCpuPerFrame(benchmark::State &state)
{
    const int k = int(state.range(0));
    Peer peer;
    Link link(peer.port(), k);
    peer.accept();
    while (!link.connected())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const QString path = QDir::temp().filePath(QStringLiteral("bench_record.pcap"));
    double off = 0, on = 0, idle = 0, writer = 0;
    std::vector<double> ratios;
    for (auto _ : state) {
        const Round without = round(peer, link, k, false, path);
        const Round with = round(peer, link, k, true, path);
        off += without.linkCpu;
        on += with.linkCpu;
        idle += without.otherCpu;
        writer += with.otherCpu;
        ratios.push_back(with.linkCpu / without.linkCpu);
    }
    const double frames = double(ratios.size()) * kFramesPerRound;
    std::sort(ratios.begin(), ratios.end());
    state.counters["off_us"] = off / frames * 1e6;
    state.counters["on_us"] = on / frames * 1e6;
    state.counters["ratio"] = on / off;
    // Other work on the machine lands in single rounds: the median pair.
    state.counters["median_ratio"] = ratios[ratios.size() / 2];
    state.counters["idle_us"] = idle / frames * 1e6;
    state.counters["writer_us"] = writer / frames * 1e6;
    QFile::remove(path);
}
BENCHMARK(BM_LinkCpuPerFrame)->Arg(1)->Iterations(20)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LinkCpuPerFrame)->Arg(16)->Iterations(20)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_HandOver(benchmark::State &state)
{
    QTcpSocket socket;
    const QByteArray payload = positionFrame().mid(6, positionFrame().size() - 10);
    const QString path = QDir::temp().filePath(QStringLiteral("bench_handover.pcap"));
    qrx::SessionRecorder &recorder = qrx::SessionRecorder::processWide();
    const auto offStart = std::chrono::steady_clock::now();
    constexpr int kChecks = 1000000;
    for (int i = 0; i < kChecks; ++i)
        qrx::recordReceived(socket, 0x2F08, payload);
    const double offNs =
        std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - offStart).count() / kChecks;
    // 127.0.9.9:6001 (the socket is not connected: no address of its own).
    qrx::SessionRecorder other({0x7F000909, 6001});
    qrx::SessionRecorder &recording = state.range(0) == 0 ? recorder : other;
    recording.start(path);
    for (auto _ : state)
        qrx::recordReceived(socket, 0x2F08, payload);
    recording.stop();
    state.counters["off_ns"] = offNs;
    QFile::remove(path);
}
BENCHMARK(BM_HandOver)->Arg(0)->Arg(1);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
