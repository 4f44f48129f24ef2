// File transfer against an in-process qrx-sim on loopback: a 64 MiB job file
// up and down through upload_job/download_job, beside a raw loopback TCP copy
// of the same bytes in the same run; the peak memory growth of each transfer
// (VmHWM after resetting it); 20 small files and the share of the pause
// between files.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "sim/files/FileService.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr qint64 kBigFile = 64LL * 1024 * 1024;
const char *const kAddress = "127.9.0.1";

long statusKb(const char *key)
{
    std::ifstream in("/proc/self/status");
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind(key, 0) == 0)
            return std::stol(line.substr(std::string(key).size()));
    }
    return 0;
}

void resetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

void writeBig(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    QByteArray block(1 << 20, 'j');
    for (qint64 done = 0; done < kBigFile; done += block.size()) {
        block[0] = char(done >> 20);
        file.write(block);
    }
}

struct Rig
{
    std::unique_ptr<qrxsim::SimHandle> sim;
    std::unique_ptr<qrxsim::FileServiceHandle> files;
    QTemporaryDir host, controller;

    bool start()
    {
        Robot::setLinkTimeBase(30000);
        sim = std::make_unique<qrxsim::SimHandle>(QString::fromLatin1(kAddress));
        if (!sim->start())
            return false;
        files = std::make_unique<qrxsim::FileServiceHandle>(*sim);
        const QString job = controller.path() + QStringLiteral("/job");
        files->with([&](qrxsim::FileService &service) { service.jobDir = job; });
        qrx_set_job_root(host.path().toUtf8().constData());
        return files->isListening() && connect_robot(kAddress) == 1;
    }
    void clear()
    {
        QDir(host.path() + QStringLiteral("/robotJob")).removeRecursively();
        QDir(controller.path() + QStringLiteral("/job")).removeRecursively();
    }
};

Rig &rig()
{
    static Rig r;
    static bool started = r.start();
    if (!started)
        std::abort();
    return r;
}

void BM_RawLoopbackCopy(benchmark::State &state)
{
    for (auto _ : state) {
        const int server = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        ::inet_pton(AF_INET, "127.9.0.2", &addr.sin_addr);
        ::bind(server, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
        ::listen(server, 1);
        socklen_t len = sizeof addr;
        ::getsockname(server, reinterpret_cast<sockaddr *>(&addr), &len);
        std::thread reader([server] {
            const int peer = ::accept(server, nullptr, nullptr);
            std::vector<char> buffer(64 * 1024);
            while (::read(peer, buffer.data(), buffer.size()) > 0) {
            }
            ::close(peer);
        });
        const int client = ::socket(AF_INET, SOCK_STREAM, 0);
        ::connect(client, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
        std::vector<char> block(64 * 1024, 'r');
        for (qint64 sent = 0; sent < kBigFile;) {
            const ssize_t n = ::write(client, block.data(), block.size());
            if (n <= 0)
                break;
            sent += n;
        }
        ::close(client);
        reader.join();
        ::close(server);
    }
    state.SetBytesProcessed(state.iterations() * kBigFile);
}

void BM_UploadJob64MiB(benchmark::State &state)
{
    Rig &r = rig();
    long peak = 0;
    for (auto _ : state) {
        state.PauseTiming();
        r.clear();
        writeBig(r.host.path() + QStringLiteral("/robotJob/R1/BIG.JBR"));
        resetPeak();
        const long before = statusKb("VmRSS:");
        state.ResumeTiming();
        upload_job();
        state.PauseTiming();
        peak = std::max(peak, statusKb("VmHWM:") - before);
        if (qrx_last_transfer_failed())
            state.SkipWithError("upload failed");
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kBigFile);
    state.counters["peak_growth_MiB"] = double(peak) / 1024.0;
}

void BM_DownloadJob64MiB(benchmark::State &state)
{
    Rig &r = rig();
    long peak = 0;
    for (auto _ : state) {
        state.PauseTiming();
        r.clear();
        writeBig(r.controller.path() + QStringLiteral("/job/R1/BIG.JBR"));
        resetPeak();
        const long before = statusKb("VmRSS:");
        state.ResumeTiming();
        download_job();
        state.PauseTiming();
        peak = std::max(peak, statusKb("VmHWM:") - before);
        if (qrx_last_transfer_failed())
            state.SkipWithError("download failed");
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kBigFile);
    state.counters["peak_growth_MiB"] = double(peak) / 1024.0;
}

// 20 files of 1 KiB: the time, and the share of it that is the 1000 ms pause
// between two files (19 pauses).
void BM_UploadTwentySmallFiles(benchmark::State &state)
{
    Rig &r = rig();
    double share = 0;
    for (auto _ : state) {
        state.PauseTiming();
        r.clear();
        for (int i = 0; i < 20; ++i) {
            QFile file(r.host.path() + QStringLiteral("/robotJob/R2/S%1.JBR").arg(i));
            QDir().mkpath(QFileInfo(file).absolutePath());
            file.open(QIODevice::WriteOnly);
            file.write(QByteArray(1024, 's'));
        }
        state.ResumeTiming();
        QElapsedTimer clock;
        clock.start();
        upload_job();
        share = 19 * 1000.0 / double(clock.elapsed());
    }
    state.counters["pause_share"] = share;
}

BENCHMARK(BM_RawLoopbackCopy)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_UploadJob64MiB)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_DownloadJob64MiB)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_UploadTwentySmallFiles)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    disconnect_robot();
    return 0;
}
