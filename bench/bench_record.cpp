// What recording a session (QRX_RECORD, qrx_record) costs the link.
//
//  - BM_LinkCpuPerFrame/GAP: a framed connection in a thread of its own, as
//    the link runs it, reads position reports (0x2F08, 147 bytes) that a
//    peer streams GAP microseconds apart (0: as fast as it can), and answers every tenth with a query
//    (0x2F07). Rounds without and with recording alternate; the link
//    thread's CPU time per received frame is "off_us" and "on_us",
//    "ratio" = on/off (goal: at most 1.3). "writer_us" is what the
//    recorder's own thread spent per frame (process CPU minus the link
//    thread and the peer), beside "idle_us", the same without recording.
//  - BM_HandOver: the link thread's part of recording one frame alone
//    (stamp and queue), beside "off_ns", the check made while not recording.

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

#include <atomic>
#include <ctime>
#include <thread>

namespace {

constexpr int kFramesPerRound = 5000;

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

// The controller's side: a blocking socket that streams frames on demand
// and a thread that drains what the host answers.
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
        if (m_fd >= 0)
            ::shutdown(m_fd, SHUT_RDWR);
        if (m_drain.joinable())
            m_drain.join();
        ::close(m_fd);
        ::close(m_listen);
    }
    quint16 port() const { return m_port; }
    void accept()
    {
        m_fd = ::accept(m_listen, nullptr, nullptr);
        m_drain = std::thread([this] {
            m_drainClock = threadClock();
            m_drainReady = true;
            char buffer[65536];
            while (::recv(m_fd, buffer, sizeof buffer, 0) > 0) {
            }
        });
        while (!m_drainReady)
            std::this_thread::yield();
    }
    // Sends n frames, one send() each, gapUs apart (0: at once); returns
    // the CPU seconds it took.
    double stream(int n, const QByteArray &frame, int gapUs)
    {
        const double before = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        auto next = std::chrono::steady_clock::now();
        for (int i = 0; i < n; ++i) {
            ::send(m_fd, frame.constData(), size_t(frame.size()), MSG_NOSIGNAL);
            next += std::chrono::microseconds(gapUs);
            if (gapUs > 0)
                std::this_thread::sleep_until(next);
        }
        return cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - before;
    }
    double drainCpu() const { return cpuSeconds(m_drainClock); }

private:
    int m_listen = -1;
    int m_fd = -1;
    quint16 m_port = 0;
    std::thread m_drain;
    clockid_t m_drainClock{};
    std::atomic<bool> m_drainReady{false};
};

// The host's side: a FramedConnection in a thread with its own event loop.
class Link
{
public:
    explicit Link(quint16 port)
    {
        m_thread.start();
        QObject *context = new QObject;
        context->moveToThread(&m_thread);
        m_context = context;
        QMetaObject::invokeMethod(
            context,
            [this, port] {
                m_clock = threadClock();
                m_connection = new qrx::FramedConnection;
                m_connection->setContext(m_context);
                QObject::connect(m_connection, &qrx::FramedConnection::frameReceived, m_connection,
                                 [this](quint16, const QByteArray &) {
                                     if (++m_received % 10 == 0)
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
    const QByteArray m_query = qrx::encodeFrame(0x2F07, "{\"coord\":0,\"robot\":1}\n");
};

struct Round
{
    double linkCpu;
    double otherCpu; // the process minus the link thread and the peer
};

Round round(Peer &peer, Link &link, int gapUs, bool record, const QString &path)
{
    if (record)
        qrx::SessionRecorder::instance().start(path);
    const int start = link.received();
    const double link0 = link.cpu();
    const double process0 = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
    const double drain0 = peer.drainCpu();
    const double peerCpu = peer.stream(kFramesPerRound, positionFrame(), gapUs);
    while (link.received() < start + kFramesPerRound)
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    if (record)
        qrx::SessionRecorder::instance().stop(); // the writer's last batch counts
    const double linkCpu = link.cpu() - link0;
    const double process = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - process0;
    return {linkCpu, process - linkCpu - peerCpu - (peer.drainCpu() - drain0)};
}

void BM_LinkCpuPerFrame(benchmark::State &state)
{
    Peer peer;
    Link link(peer.port());
    peer.accept();
    while (!link.connected())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const QString path = QDir::temp().filePath(QStringLiteral("bench_record.pcap"));
    double off = 0, on = 0, idle = 0, writer = 0;
    int rounds = 0;
    for (auto _ : state) {
        const Round without = round(peer, link, int(state.range(0)), false, path);
        const Round with = round(peer, link, int(state.range(0)), true, path);
        off += without.linkCpu;
        on += with.linkCpu;
        idle += without.otherCpu;
        writer += with.otherCpu;
        ++rounds;
    }
    const double frames = double(rounds) * kFramesPerRound;
    state.counters["off_us"] = off / frames * 1e6;
    state.counters["on_us"] = on / frames * 1e6;
    state.counters["ratio"] = on / off;
    state.counters["idle_us"] = idle / frames * 1e6;
    state.counters["writer_us"] = writer / frames * 1e6;
    QFile::remove(path);
}
// Frames at once (the reads carry many frames: the hand-over weighs most),
// and 5000 frames a second (one read per frame, as a controller streams).
BENCHMARK(BM_LinkCpuPerFrame)->Arg(0)->Iterations(20)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LinkCpuPerFrame)->Arg(200)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_HandOver(benchmark::State &state)
{
    QTcpSocket socket;
    const QByteArray payload = positionFrame().mid(6, positionFrame().size() - 10);
    const QString path = QDir::temp().filePath(QStringLiteral("bench_handover.pcap"));
    qrx::SessionRecorder &recorder = qrx::SessionRecorder::instance();
    const auto offStart = std::chrono::steady_clock::now();
    constexpr int kChecks = 1000000;
    for (int i = 0; i < kChecks; ++i)
        qrx::recordReceived(socket, 0x2F08, payload);
    const double offNs =
        std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - offStart).count() / kChecks;
    recorder.start(path);
    for (auto _ : state)
        qrx::recordReceived(socket, 0x2F08, payload);
    recorder.stop();
    state.counters["off_ns"] = offNs;
    QFile::remove(path);
}
BENCHMARK(BM_HandOver);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
