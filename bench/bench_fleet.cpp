// Many controllers in one process: qrx-sim --count N (its own process)
// serves N controllers on 127.0.31.1 .. 127.0.31.N, each streaming position
// reports (0x2F08) to every host. For N = 1, 10, 50:
//
//  - "open_s": opening N handles (qrxc_open) and reading each one's position
//    once, one after the other from this thread (goal: under 10 s for 50);
//  - "threads_added" and "rss_KiB_per_controller": what the N open handles
//    added to the process (goal: +16 threads at most, 1 MiB a controller);
//  - in the same window, beside the library, N plain readers (a blocking
//    socket on a thread each, CRC check and jsoncpp parse of each frame)
//    take the same streams: "library_us_per_report" (the process's CPU
//    time minus the readers' and this thread's, per report the library
//    took, counted by each handle's state handler) against
//    "reader_us_per_report"; "cpu_ratio" is the first over the second
//    (goal: 1.2 at most).
//   bench_fleet [--benchmark_...]   QRX_FLEET_SECONDS (default 5) per window,
//                                   QRX_FLEET_RATE (default 100) reports a second per controller

#include "api/qrx_host.h"
#include "StreamPeers.h"

#include <benchmark/benchmark.h>

#include <arpa/inet.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace qrxbench;

namespace {

constexpr const char *kFirstAddress = "127.0.31.1";

std::string addressAt(int n)
{
    in_addr addr{};
    inet_pton(AF_INET, kFirstAddress, &addr);
    addr.s_addr = htonl(ntohl(addr.s_addr) + uint32_t(n));
    char text[INET_ADDRSTRLEN];
    inet_ntop(AF_INET, &addr, text, sizeof text);
    return text;
}

// A line of /proc/self/status ("Threads:", "VmRSS:") as a number.
long statusField(const std::string &field)
{
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key) {
        if (key == field) {
            long value = 0;
            status >> value;
            return value;
        }
        status.ignore(1 << 16, '\n');
    }
    return -1;
}

void countReport(qrx_controller *, void *user)
{
    static_cast<std::atomic<long> *>(user)->fetch_add(1, std::memory_order_relaxed);
}

double envOr(const char *name, double fallback)
{
    const char *text = std::getenv(name);
    return text ? std::atof(text) : fallback;
}

void BM_Fleet(benchmark::State &state)
{
    const int count = int(state.range(0));
    const double window = envOr("QRX_FLEET_SECONDS", 5.0);
    const int rate = int(envOr("QRX_FLEET_RATE", 100.0));
    SimProcess sim(kFirstAddress, rate, count);
    if (!sim.ready()) {
        state.SkipWithError("qrx-sim did not start");
        return;
    }
    std::vector<std::unique_ptr<PlainReader>> readers;
    for (int i = 0; i < count; ++i)
        readers.push_back(std::make_unique<PlainReader>(addressAt(i).c_str()));

    for (auto _ : state) {
        const long threadsBefore = statusField("Threads:");
        const long rssBefore = statusField("VmRSS:");
        std::vector<qrx_controller *> handles;
        std::atomic<long> reports{0};
        const auto openStart = std::chrono::steady_clock::now();
        for (int i = 0; i < count; ++i) {
            qrx_controller *c = qrxc_open_within(addressAt(i).c_str(), 0, 10000);
            if (!c) {
                state.SkipWithError("a controller did not open");
                break;
            }
            double pos[6];
            qrxc_get_current_position(c, pos, 0);
            handles.push_back(c);
        }
        state.counters["open_s"] = std::chrono::duration<double>(std::chrono::steady_clock::now() - openStart).count();
        state.counters["threads_added"] = double(statusField("Threads:") - threadsBefore);
        state.counters["rss_KiB_per_controller"] = double(statusField("VmRSS:") - rssBefore) / count;
        for (qrx_controller *c : handles)
            qrxc_set_state_handler(c, &countReport, &reports);

        // Everyone takes the streams for a moment before the window opens.
        std::this_thread::sleep_for(std::chrono::seconds(1));
        long readerReportsBefore = 0;
        double readerCpuBefore = 0;
        for (const auto &reader : readers) {
            readerReportsBefore += reader->reports();
            readerCpuBefore += reader->cpu();
        }
        const long libraryReportsBefore = reports.load();
        const double processBefore = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
        const double selfBefore = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        std::this_thread::sleep_for(std::chrono::duration<double>(window));
        long readerReports = -readerReportsBefore;
        double readerCpu = -readerCpuBefore;
        for (const auto &reader : readers) {
            readerReports += reader->reports();
            readerCpu += reader->cpu();
        }
        const long libraryReports = reports.load() - libraryReportsBefore;
        const double libraryCpu = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - processBefore - readerCpu
                                  - (cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - selfBefore);
        const double libraryUs = libraryReports ? 1e6 * libraryCpu / double(libraryReports) : 0.0;
        const double readerUs = readerReports ? 1e6 * readerCpu / double(readerReports) : 0.0;
        state.counters["library_reports"] = double(libraryReports);
        state.counters["reader_reports"] = double(readerReports);
        state.counters["library_us_per_report"] = libraryUs;
        state.counters["reader_us_per_report"] = readerUs;
        state.counters["cpu_ratio"] = readerUs > 0 ? libraryUs / readerUs : 0.0;

        for (qrx_controller *c : handles) {
            qrxc_set_state_handler(c, nullptr, nullptr);
            qrxc_close(c);
        }
    }
}

} // namespace

BENCHMARK(BM_Fleet)->Arg(1)->Arg(10)->Arg(50)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_MAIN();
