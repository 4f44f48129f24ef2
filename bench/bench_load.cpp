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
#include "StreamPeers.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

using namespace qrxbench;

namespace {

constexpr const char *kAddress = "127.6.0.1";
constexpr int kReportsPerSecond = 1000;

void BM_StreamLoad(benchmark::State &state)
{
    const char *secondsText = std::getenv("QRX_LOAD_SECONDS");
    const double window = secondsText ? std::atof(secondsText) : 10.0;
    SimProcess sim(kAddress, kReportsPerSecond);
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
    PlainReader reader(kAddress);
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
