// What a controller that streams its position costs the library, against a
// real controller process: qrx-sim runs as a process of its own and sends
// 1000 position reports (0x2F08) a second to every host. In the same window
// two hosts take the stream side by side:
//
//  - the library, connected with connect_robot(): "library_cpu_pct" is the
//    process's CPU time minus the reader's and this thread's, as a share of
//    one core (goal: under 3);
//  - its baseline, a plain reader on a thread of its own: blocking read,
//    CRC check, jsoncpp parse of each frame, nothing else: "reader_cpu_pct".
//
// "library_reports" and "reader_reports" count the reports each got, so a
// stream that did not flow cannot pass for a cheap one.
//   bench_load [--benchmark_...]      QRX_LOAD_SECONDS (default 10) per window

#include "api/qrx_host.h"
#include "api/ApiState.h"
#include "robot/Robot.h"
#include "link/TcpConnectModule.h"

#include <benchmark/benchmark.h>
#include <json/reader.h>
#include <zlib.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <thread>

namespace {

constexpr const char *kAddress = "127.6.0.1";
constexpr int kReportsPerSecond = 1000;

double cpuSeconds(clockid_t clock)
{
    timespec ts{};
    clock_gettime(clock, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

// qrx-sim as a child process, streaming; stopped with SIGTERM.
class SimProcess
{
public:
    SimProcess()
    {
        int out[2];
        if (::pipe(out) != 0)
            return;
        m_pid = ::fork();
        if (m_pid == 0) {
            ::dup2(out[1], STDOUT_FILENO);
            ::close(out[0]);
            const std::string rate = std::to_string(kReportsPerSecond);
            ::execl(QRX_SIM_PATH, QRX_SIM_PATH, "--address", kAddress, "--port", "6001", "--position-reports",
                    rate.c_str(), static_cast<char *>(nullptr));
            ::_exit(127);
        }
        ::close(out[1]);
        // Ready once it says it listens (its first line).
        char c = 0;
        while (::read(out[0], &c, 1) == 1 && c != '\n') {
        }
        m_ready = c == '\n';
        ::close(out[0]);
    }
    ~SimProcess()
    {
        if (m_pid > 0) {
            ::kill(m_pid, SIGTERM);
            ::waitpid(m_pid, nullptr, 0);
        }
    }
    bool ready() const { return m_ready; }

private:
    pid_t m_pid = -1;
    bool m_ready = false;
};

// The baseline: reads the stream the plainest way.
class PlainReader
{
public:
    PlainReader()
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_port = htons(6001);
        inet_pton(AF_INET, kAddress, &at.sin_addr);
        m_ok = ::connect(m_fd, reinterpret_cast<sockaddr *>(&at), sizeof at) == 0;
        if (m_ok)
            m_thread = std::thread([this] { run(); });
    }
    ~PlainReader()
    {
        ::shutdown(m_fd, SHUT_RDWR);
        if (m_thread.joinable())
            m_thread.join();
        ::close(m_fd);
    }
    bool ok() const { return m_ok; }
    int reports() const { return m_reports.load(); }
    double cpu() const { return m_cpu.load(); }

private:
    void run()
    {
        std::string buffer;
        char chunk[65536];
        Json::CharReaderBuilder builder;
        std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        for (;;) {
            const ssize_t n = ::recv(m_fd, chunk, sizeof chunk, 0);
            if (n <= 0)
                break;
            buffer.append(chunk, size_t(n));
            size_t at = 0;
            while (buffer.size() - at >= 10) {
                const auto *p = reinterpret_cast<const unsigned char *>(buffer.data() + at);
                if (p[0] != 'N' || p[1] != 'f') {
                    ++at;
                    continue;
                }
                const size_t length = size_t(p[2]) << 8 | p[3];
                if (buffer.size() - at < length + 10)
                    break;
                const uLong crc = crc32(crc32(0L, Z_NULL, 0), p + 2, uInt(length + 4));
                const unsigned char *c = p + 6 + length;
                const uLong sent = uLong(c[0]) << 24 | uLong(c[1]) << 16 | uLong(c[2]) << 8 | c[3];
                const int command = p[4] << 8 | p[5];
                Json::Value value;
                if (crc == sent && command == 0x2F08
                    && reader->parse(reinterpret_cast<const char *>(p + 6),
                                     reinterpret_cast<const char *>(p + 6 + length), &value, nullptr)
                    && value["pos"].size() == 7)
                    m_reports.fetch_add(1);
                at += length + 10;
            }
            buffer.erase(0, at);
            m_cpu.store(cpuSeconds(CLOCK_THREAD_CPUTIME_ID));
        }
    }

    int m_fd = -1;
    bool m_ok = false;
    std::thread m_thread;
    std::atomic<int> m_reports{0};
    std::atomic<double> m_cpu{0.0};
};

void BM_StreamLoad(benchmark::State &state)
{
    const char *secondsText = std::getenv("QRX_LOAD_SECONDS");
    const double window = secondsText ? std::atof(secondsText) : 10.0;
    SimProcess sim;
    if (!sim.ready()) {
        state.SkipWithError("qrx-sim did not start");
        return;
    }
    if (connect_robot(kAddress) != 1) {
        state.SkipWithError("connect_robot failed");
        return;
    }
    std::atomic<int> libraryReports{0};
    // Counted where the link hands the report on (emitted anyway), not at
    // the Robot's text-line signal, which would make the handler build its
    // lines for a listener.
    QObject::connect(qrx::api::apiRobot()->link(), &LinkNotifications::recriveMoreRobotCurPosition,
                     qrx::api::apiRobot(), [&libraryReports] { libraryReports.fetch_add(1, std::memory_order_relaxed); },
                     Qt::DirectConnection);
    PlainReader reader;
    if (!reader.ok()) {
        state.SkipWithError("the plain reader could not connect");
        disconnect_robot();
        return;
    }
    // Both take the stream for a moment before the window opens.
    std::this_thread::sleep_for(std::chrono::seconds(1));
    for (auto _ : state) {
        const int libraryReportsBefore = libraryReports.load(), readerReportsBefore = reader.reports();
        const double processBefore = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
        const double readerBefore = reader.cpu(), selfBefore = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        const auto start = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(std::chrono::duration<double>(window));
        const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const double readerCpu = reader.cpu() - readerBefore;
        const double libraryCpu = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - processBefore - readerCpu
                                  - (cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - selfBefore);
        state.counters["library_cpu_pct"] = 100.0 * libraryCpu / wall;
        state.counters["reader_cpu_pct"] = 100.0 * readerCpu / wall;
        state.counters["library_reports"] = libraryReports.load() - libraryReportsBefore;
        state.counters["reader_reports"] = reader.reports() - readerReportsBefore;
    }
    disconnect_robot();
}

} // namespace

BENCHMARK(BM_StreamLoad)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_MAIN();
