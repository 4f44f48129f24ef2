// What a waiting getter costs beside the network itself, and what a
// controller that streams position reports costs the library.
//
//  - BM_RoundTrip: get_current_position() against a minimal peer that
//    answers 0x2F07 with a 0x2F08 report at once, the same through a handle
//    of its own (qrxc_get_current_position, a link on the library's shared
//    threads, to a peer of its own), and their baseline, a blocking socket
//    that sends the very same 0x2F07 frame to a peer of the same kind and
//    reads the 0x2F08 frame back. The three alternate, one of each per
//    iteration. Medians and 99th percentiles: "raw_median_us",
//    "raw_p99_us", "getter_median_us", "getter_p99_us", "handle_median_us",
//    "handle_p99_us"; the goal is a median at most 1.5 times the raw one
//    ("getter_ratio", "handle_ratio") and a 99th percentile at most twice
//    the raw one ("getter_p99_ratio", "handle_p99_ratio").
//  - BM_MatchedRoundTrip: the same getter with matched replies on (its wait
//    ends only on the 0x2F08 answer) beside the default (any waking reply),
//    alternating, one of each per iteration: "matched_median_us" and
//    "default_median_us".
//  - BM_StreamCpu: the peer streams 1000 position reports a second for a few
//    seconds; "library_cpu_pct" is the process's CPU time minus the peer
//    thread's own, as a share of one core. Its baseline, BM_IdleCpu, is the
//    same connected library with a peer that only answers heartbeats.
//
// The host side runs no Qt application of its own: the library makes one.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/CompactJson.h"
#include "link/FrameCodec.h"
#include "robot/Robot.h"

#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double cpuSeconds(clockid_t clock)
{
    timespec ts{};
    clock_gettime(clock, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

QByteArray positionFrame()
{
    Json::Value report(Json::objectValue);
    report["robot"] = 1;
    report["coord"] = 0;
    for (int i = 0; i < 7; ++i) {
        report["pos"].append(100.0 + i * 1.25);
        report["posDeg"].append(10.0 + i * 0.5);
    }
    return qrx::encodeFrame(0x2F08, qrx::jsonPayload(report));
}

QByteArray queryFrame()
{
    Json::Value query(Json::objectValue);
    query["coord"] = 0;
    query["robot"] = 1;
    return qrx::encodeFrame(0x2F07, qrx::jsonPayload(query));
}

bool writeAll(int fd, const QByteArray &bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::send(fd, bytes.constData() + done, size_t(bytes.size() - done), MSG_NOSIGNAL);
        if (n <= 0)
            return false;
        done += n;
    }
    return true;
}

// A controller reduced to what is measured: answers heartbeats and position
// queries, and streams position reports on request. Plain sockets on a
// thread of its own.
class Peer
{
public:
    explicit Peer(const char *address)
    {
        m_server = ::socket(AF_INET, SOCK_STREAM, 0);
        const int one = 1;
        setsockopt(m_server, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_port = htons(6001);
        inet_pton(AF_INET, address, &at.sin_addr);
        m_ok = ::bind(m_server, reinterpret_cast<sockaddr *>(&at), sizeof at) == 0 && ::listen(m_server, 4) == 0;
        m_thread = std::thread([this] { run(); });
    }
    ~Peer()
    {
        m_stop = true;
        m_thread.join();
        ::close(m_server);
    }
    bool ok() const { return m_ok; }
    void setStreaming(bool on) { m_streaming = on; }
    int streamed() const { return m_streamed; }
    int received() const { return m_received; }
    // CPU seconds the peer thread has used so far.
    double cpu() const { return m_cpu.load(); }

private:
    void run()
    {
        const QByteArray position = positionFrame();
        qrx::FrameDecoder decoder;
        int client = -1;
        Clock::time_point nextReport = Clock::now();
        char buffer[65536];
        while (!m_stop) {
            pollfd fds{client >= 0 ? client : m_server, POLLIN, 0};
            ::poll(&fds, 1, m_streaming ? 0 : 1);
            if (client < 0) {
                if (fds.revents & POLLIN) {
                    client = ::accept(m_server, nullptr, nullptr);
                    const int one = 1;
                    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
                }
            } else if (fds.revents & POLLIN) {
                const ssize_t n = ::recv(client, buffer, sizeof buffer, 0);
                if (n <= 0) {
                    ::close(client);
                    client = -1;
                    continue;
                }
                for (const qrx::Frame &frame : decoder.feed(QByteArray::fromRawData(buffer, int(n)))) {
                    ++m_received;
                    if (frame.command == 0x7266)
                        writeAll(client, qrx::encodeFrame(0x7267, frame.payload));
                    else if (frame.command == 0x2F07)
                        writeAll(client, position);
                }
            }
            if (m_streaming && client >= 0 && Clock::now() >= nextReport) {
                writeAll(client, position);
                ++m_streamed;
                nextReport += std::chrono::milliseconds(1);
                if (Clock::now() > nextReport + std::chrono::milliseconds(50))
                    nextReport = Clock::now(); // fell behind: no burst
            } else if (m_streaming) {
                std::this_thread::sleep_until(std::min(nextReport, Clock::now() + std::chrono::microseconds(200)));
            }
            m_cpu.store(cpuSeconds(CLOCK_THREAD_CPUTIME_ID));
        }
        if (client >= 0)
            ::close(client);
    }

    int m_server = -1;
    bool m_ok = false;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_streaming{false};
    std::atomic<int> m_streamed{0};
    std::atomic<int> m_received{0};
    std::atomic<double> m_cpu{0.0};
    std::thread m_thread;
};

const char kLibraryPeer[] = "127.4.0.1";
const char kRawPeer[] = "127.4.0.2";
const char kHandlePeer[] = "127.41.0.1";

// One library connection for the whole run.
Peer &libraryPeer()
{
    static Peer peer(kLibraryPeer);
    static const bool connected = [] {
        Robot::setLinkTimeBase(30000);
        return connect_robot(kLibraryPeer) == 1;
    }();
    (void)connected;
    return peer;
}

// A handle of its own, to a peer of its own, for the whole run.
qrx_controller *handle()
{
    static Peer peer(kHandlePeer);
    static qrx_controller *const c = qrxc_open(kHandlePeer, 6001);
    return c;
}

// The value below which the share q of the samples lies.
double percentile(std::vector<double> values, double q)
{
    if (values.empty())
        return 0.0;
    const auto at = values.begin() + long(double(values.size() - 1) * q);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

double median(std::vector<double> values)
{
    return percentile(std::move(values), 0.5);
}

// A blocking client of its own peer: the same query frame out, the same
// report frame back, no library in between.
class RawClient
{
public:
    explicit RawClient(const char *address)
        : m_peer(address), m_query(queryFrame()), m_answer(size_t(positionFrame().size()))
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_port = htons(6001);
        inet_pton(AF_INET, address, &at.sin_addr);
        const int one = 1;
        setsockopt(m_fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        m_ok = m_peer.ok() && ::connect(m_fd, reinterpret_cast<sockaddr *>(&at), sizeof at) == 0;
    }
    ~RawClient() { ::close(m_fd); }
    bool ok() const { return m_ok; }

    void pingPong()
    {
        writeAll(m_fd, m_query);
        std::size_t got = 0;
        while (got < m_answer.size()) {
            const ssize_t n = ::recv(m_fd, m_answer.data() + got, m_answer.size() - got, 0);
            if (n <= 0)
                break;
            got += std::size_t(n);
        }
    }

private:
    Peer m_peer;
    QByteArray m_query;
    std::vector<char> m_answer;
    int m_fd = -1;
    bool m_ok = false;
};

template <class F>
double microseconds(F &&f)
{
    const auto start = Clock::now();
    f();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

// Each iteration times one raw ping-pong and one round trip of each
// getter, one right after the other, so that all see the same load of the
// machine.
void BM_RoundTrip(benchmark::State &state)
{
    libraryPeer();
    RawClient raw(kRawPeer);
    qrx_controller *const c = handle();
    if (!connection_status() || !c || !raw.ok()) {
        state.SkipWithError("peers not reachable");
        return;
    }
    double pos[6] = {};
    double handlePos[6] = {};
    std::vector<double> rawSamples;
    std::vector<double> getterSamples;
    std::vector<double> handleSamples;
    for (auto _ : state) {
        rawSamples.push_back(microseconds([&] { raw.pingPong(); }));
        getterSamples.push_back(microseconds([&] { get_current_position(pos, 0); }));
        handleSamples.push_back(microseconds([&] { qrxc_get_current_position(c, handlePos, 0); }));
    }
    benchmark::DoNotOptimize(pos);
    benchmark::DoNotOptimize(handlePos);
    const double rawMedian = median(rawSamples);
    const double rawP99 = percentile(rawSamples, 0.99);
    const auto report = [&](const std::string &name, const std::vector<double> &samples) {
        state.counters[name + "_median_us"] = median(samples);
        state.counters[name + "_p99_us"] = percentile(samples, 0.99);
        state.counters[name + "_ratio"] = median(samples) / rawMedian;
        state.counters[name + "_p99_ratio"] = percentile(samples, 0.99) / rawP99;
    };
    state.counters["raw_median_us"] = rawMedian;
    state.counters["raw_p99_us"] = rawP99;
    report("getter", getterSamples);
    report("handle", handleSamples);
    if (pos[0] != 100.0 || handlePos[0] != 100.0)
        state.SkipWithError("a getter did not return the peer's position");
}

// Matched replies beside the default, on the same connection and peer.
void BM_MatchedRoundTrip(benchmark::State &state)
{
    libraryPeer();
    if (!connection_status()) {
        state.SkipWithError("library not connected");
        return;
    }
    double pos[6] = {};
    std::vector<double> plainSamples;
    std::vector<double> matchedSamples;
    for (auto _ : state) {
        qrx_set_matched_replies(0);
        plainSamples.push_back(microseconds([&] { get_current_position(pos, 0); }));
        qrx_set_matched_replies(1);
        matchedSamples.push_back(microseconds([&] { get_current_position(pos, 0); }));
    }
    qrx_set_matched_replies(0);
    benchmark::DoNotOptimize(pos);
    state.counters["default_median_us"] = median(plainSamples);
    state.counters["matched_median_us"] = median(matchedSamples);
    state.counters["ratio"] = median(matchedSamples) / median(plainSamples);
    if (pos[0] != 100.0)
        state.SkipWithError("the getter did not return the peer's position");
}

// The library's share of one core while the peer streams (or not).
void measureCpu(benchmark::State &state, bool streaming)
{
    Peer &peer = libraryPeer();
    if (!connection_status()) {
        state.SkipWithError("library not connected");
        return;
    }
    Robot *robot = qrx::api::apiRobot();
    const double seconds = 3.0;
    for (auto _ : state) {
        peer.setStreaming(streaming);
        std::this_thread::sleep_for(std::chrono::milliseconds(300)); // settle
        const int streamedBefore = peer.streamed();
        const int receivedBefore = peer.received();
        const double process0 = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
        const double peer0 = peer.cpu();
        const auto wall0 = Clock::now();
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        const double process1 = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
        const double peer1 = peer.cpu();
        const double wall = std::chrono::duration<double>(Clock::now() - wall0).count();
        peer.setStreaming(false);
        state.counters["library_cpu_pct"] = 100.0 * ((process1 - process0) - (peer1 - peer0)) / wall;
        state.counters["reports_per_s"] = (peer.streamed() - streamedBefore) / wall;
        state.counters["host_frames_per_s"] = (peer.received() - receivedBefore) / wall;
    }
    benchmark::DoNotOptimize(robot->currentPosition[0]);
}

void BM_IdleCpu(benchmark::State &state) { measureCpu(state, false); }
void BM_StreamCpu(benchmark::State &state) { measureCpu(state, true); }

} // namespace

BENCHMARK(BM_RoundTrip)->Iterations(20000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MatchedRoundTrip)->Iterations(20000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_IdleCpu)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StreamCpu)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
