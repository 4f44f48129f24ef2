// File transfer against qrx-sim on loopback: a 64 MiB job file up and down
// through upload_job/download_job, beside baselines of the same run: a raw
// loopback TCP copy of the same bytes, and what the exchange must do with
// them besides moving them: the frame CRC, the MD5 of a job download's
// digest list, and writing them into a committed file (QSaveFile). Also the peak
// memory growth of each transfer (VmHWM after resetting it), and 20 small
// files with the share of the pause between files.
//
// The controller is its own process by default (qrx-sim, as a real one is
// another machine); QRX_BENCH_SIM=thread runs it in this process instead,
// where it shares the process's memory figure and its cores' scheduling.
//
// Each transfer reports whose CPU time it took: host_cpu_ms (this process,
// all threads) and sim_cpu_ms (the controller's process); the raw copy
// reports its own (cpu_ms) beside them. To profile the transfers alone, run
// the bench under perf record -D -1 --control fifo:CTL,ACK with
// QRX_BENCH_PERF=CTL,ACK: the measurement is enabled only while a transfer runs.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "sim/files/FileService.h"
#include "link/FrameCodec.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

#include <arpa/inet.h>
#include <sys/resource.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <sstream>
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

// CPU time (user + system) of another process, in milliseconds.
double processCpuMs(qint64 pid)
{
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const auto end = text.rfind(')'); // fields after the command name, from the state on
    if (end == std::string::npos)
        return 0;
    std::istringstream fields(text.substr(end + 2));
    std::string field;
    double ticks = 0;
    for (int i = 3; i <= 15 && fields >> field; ++i) {
        if (i == 14 || i == 15) // utime, stime
            ticks += std::stod(field);
    }
    return ticks * 1000.0 / double(::sysconf(_SC_CLK_TCK));
}

// CPU time (user + system, all threads) of this process, in milliseconds.
double ownCpuMs()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval &t) { return double(t.tv_sec) * 1000.0 + double(t.tv_usec) / 1000.0; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// perf's control fifos (QRX_BENCH_PERF=control,ack): "enable" or "disable"
// written, perf's acknowledgement awaited. Nothing without the variable.
void perfControl(const char *command)
{
    const QList<QByteArray> fifos = qgetenv("QRX_BENCH_PERF").split(',');
    if (fifos.size() != 2)
        return;
    std::ofstream(fifos[0].constData()) << command << std::endl;
    std::ifstream ack(fifos[1].constData());
    std::string line;
    std::getline(ack, line);
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

// True once a port of the controller accepts connections (bounded wait).
bool accepts(quint16 port)
{
    QDeadlineTimer deadline(10000);
    while (!deadline.hasExpired()) {
        QTcpSocket probe;
        probe.connectToHost(QString::fromLatin1(kAddress), port);
        if (probe.waitForConnected(500))
            return true;
        QThread::msleep(20);
    }
    return false;
}

struct Rig
{
    std::unique_ptr<qrxsim::SimHandle> sim;
    std::unique_ptr<qrxsim::FileServiceHandle> files;
    std::unique_ptr<QProcess> process;
    QTemporaryDir host, controller;
    const QString hostRoot = host.path(), controllerRoot = controller.path();

    bool start()
    {
        Robot::setLinkTimeBase(30000);
        const QString job = controller.path() + QStringLiteral("/job");
        if (qgetenv("QRX_BENCH_SIM") == "thread") {
            sim = std::make_unique<qrxsim::SimHandle>(QString::fromLatin1(kAddress));
            if (!sim->start())
                return false;
            files = std::make_unique<qrxsim::FileServiceHandle>(*sim);
            files->with([&](qrxsim::FileService &service) { service.jobDir = job; });
            if (!files->isListening())
                return false;
        } else {
            process = std::make_unique<QProcess>();
            process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            process->setStandardOutputFile(QProcess::nullDevice());
            process->start(QStringLiteral(QRX_SIM_BINARY),
                           {QStringLiteral("--address"), QString::fromLatin1(kAddress), QStringLiteral("--job-dir"), job});
            if (!process->waitForStarted() || !accepts(6001) || !accepts(5000))
                return false;
        }
        qrx_set_job_root(host.path().toUtf8().constData());
        return connect_robot(kAddress) == 1;
    }
    void stop()
    {
        disconnect_robot();
        if (process) {
            process->terminate();
            if (!process->waitForFinished(5000))
                process->kill();
            process->waitForFinished(5000);
        }
    }
    void clear()
    {
        QDir(host.path() + QStringLiteral("/robotJob")).removeRecursively();
        QDir(controller.path() + QStringLiteral("/job")).removeRecursively();
    }
};

Rig *g_rig = nullptr;

Rig &rig()
{
    static Rig r;
    static bool started = r.start();
    if (!started)
        std::abort();
    g_rig = &r;
    return r;
}

// A listening socket on a loopback address of the bench's own, any port;
// addr receives where it listens.
int listenOnLoopback(sockaddr_in &addr)
{
    const int server = ::socket(AF_INET, SOCK_STREAM, 0);
    addr.sin_family = AF_INET;
    ::inet_pton(AF_INET, "127.9.0.2", &addr.sin_addr);
    ::bind(server, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
    ::listen(server, 1);
    socklen_t len = sizeof addr;
    ::getsockname(server, reinterpret_cast<sockaddr *>(&addr), &len);
    return server;
}

void BM_RawLoopbackCopy(benchmark::State &state)
{
    for (auto _ : state) {
        sockaddr_in addr{};
        const int server = listenOnLoopback(addr);
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

// The same copy with the bytes' own storage at both ends and no protocol: the
// 64 MiB job file read from the host's folder, sent over loopback TCP in 64
// KiB writes, and received into a committed file (QSaveFile) of the
// controller's folder, as a transfer that loses nothing must end.
void BM_RawLoopbackFileCopy(benchmark::State &state)
{
    Rig &r = rig();
    const QString source = r.host.path() + QStringLiteral("/raw/BIG.JBR");
    const QString target = r.controller.path() + QStringLiteral("/raw/BIG.JBR");
    writeBig(source);
    QDir().mkpath(QFileInfo(target).absolutePath());
    double cpu = 0;
    for (auto _ : state) {
        const double cpuBefore = ownCpuMs();
        sockaddr_in addr{};
        const int server = listenOnLoopback(addr);
        bool stored = false;
        std::thread reader([server, &target, &stored] {
            const int peer = ::accept(server, nullptr, nullptr);
            QSaveFile file(target);
            file.open(QIODevice::WriteOnly);
            std::vector<char> buffer(64 * 1024);
            ssize_t n;
            while ((n = ::read(peer, buffer.data(), buffer.size())) > 0)
                file.write(buffer.data(), n);
            stored = file.commit();
            ::close(peer);
        });
        const int client = ::socket(AF_INET, SOCK_STREAM, 0);
        ::connect(client, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
        QFile file(source);
        file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        std::vector<char> block(64 * 1024);
        qint64 n;
        while ((n = file.read(block.data(), qint64(block.size()))) > 0) {
            for (qint64 sent = 0; sent < n;) {
                const ssize_t w = ::write(client, block.data() + sent, size_t(n - sent));
                if (w <= 0)
                    break;
                sent += w;
            }
        }
        ::close(client);
        reader.join();
        ::close(server);
        cpu += ownCpuMs() - cpuBefore;
        if (!stored)
            state.SkipWithError("cannot write the copy");
        state.PauseTiming();
        QFile::remove(target);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kBigFile);
    state.counters["cpu_ms"] = cpu / double(state.iterations());
}

// The frame check both sides must compute: CRC-32 of 64 MiB in frames of
// 2048 payload bytes (zlib, as the frame format says).
void BM_FrameCrc64MiB(benchmark::State &state)
{
    const QByteArray chunk(2048 + 4, 'c');
    quint32 sum = 0;
    for (auto _ : state) {
        for (qint64 done = 0; done < kBigFile; done += 2048)
            sum ^= qrx::frameCrc(chunk.constData(), chunk.size());
    }
    benchmark::DoNotOptimize(sum);
    state.SetBytesProcessed(state.iterations() * kBigFile);
}

// The digest a job download starts with: the controller announces the MD5
// of each of its job files (and the host hashes a local copy it has).
void BM_Md5Of64MiB(benchmark::State &state)
{
    const QByteArray block(1 << 20, 'm');
    for (auto _ : state) {
        QCryptographicHash hash(QCryptographicHash::Md5);
        for (qint64 done = 0; done < kBigFile; done += block.size())
            hash.addData(block);
        benchmark::DoNotOptimize(hash.result());
    }
    state.SetBytesProcessed(state.iterations() * kBigFile);
}

// What a receiver does with the bytes at the least: 64 MiB written into a new
// file of the transfer's folder in 2048-byte pieces and committed.
void BM_SaveFile64MiB(benchmark::State &state)
{
    Rig &r = rig();
    const QByteArray chunk(2048, 'w');
    const QString path = r.controller.path() + QStringLiteral("/baseline.bin");
    for (auto _ : state) {
        QSaveFile file(path);
        file.open(QIODevice::WriteOnly);
        for (qint64 done = 0; done < kBigFile; done += chunk.size())
            file.write(chunk);
        if (!file.commit())
            state.SkipWithError("cannot write the baseline file");
        state.PauseTiming();
        QFile::remove(path);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kBigFile);
}

// Time of the first file byte of a transfer (progress callback), from the
// start of the call: for a job download, the wait for the digest lists.
std::chrono::steady_clock::time_point g_firstByte;
void noteFirstByte(const char *, long long done, long long)
{
    if (done > 0 && g_firstByte == std::chrono::steady_clock::time_point())
        g_firstByte = std::chrono::steady_clock::now();
}

// One 64 MiB transfer per iteration: prepare() places the file, run() moves
// it; the peak resident growth over the run, the controller's CPU time and
// the wait for the first byte are reported.
template <class Prepare, class Run>
void bigTransfer(benchmark::State &state, Prepare &&prepare, Run &&run)
{
    Rig &r = rig();
    long peak = 0;
    double simCpu = 0, hostCpu = 0, firstByteMs = 0;
    qrx_set_transfer_progress(noteFirstByte);
    for (auto _ : state) {
        state.PauseTiming();
        prepare(r);
        resetPeak();
        const long before = statusKb("VmRSS:");
        const double simBefore = r.process ? processCpuMs(r.process->processId()) : 0;
        const double hostBefore = ownCpuMs();
        g_firstByte = {};
        perfControl("enable");
        const auto start = std::chrono::steady_clock::now();
        state.ResumeTiming();
        run();
        state.PauseTiming();
        perfControl("disable");
        hostCpu += ownCpuMs() - hostBefore;
        firstByteMs += std::chrono::duration<double, std::milli>(g_firstByte - start).count();
        peak = std::max(peak, statusKb("VmHWM:") - before);
        if (r.process)
            simCpu += processCpuMs(r.process->processId()) - simBefore;
        if (qrx_last_transfer_failed())
            state.SkipWithError("transfer failed");
        state.ResumeTiming();
    }
    qrx_set_transfer_progress(nullptr);
    state.SetBytesProcessed(state.iterations() * kBigFile);
    state.counters["peak_growth_MiB"] = double(peak) / 1024.0;
    state.counters["first_byte_ms"] = firstByteMs / double(state.iterations());
    state.counters["host_cpu_ms"] = hostCpu / double(state.iterations());
    if (r.process) // the controller's share of the work, per transfer
        state.counters["sim_cpu_ms"] = simCpu / double(state.iterations());
}

// Both folders emptied, then the big file placed below one of them.
auto placedBelow(const QString Rig::*side, const char *path)
{
    return [side, path](Rig &r) {
        r.clear();
        writeBig((r.*side) + QLatin1String(path));
    };
}

void BM_UploadJob64MiB(benchmark::State &state)
{
    bigTransfer(state, placedBelow(&Rig::hostRoot, "/robotJob/R1/BIG.JBR"), [] { upload_job(); });
}

// The controller hashes its file for the digest list first (a file it has
// not hashed before, as after a change).
void BM_DownloadJob64MiB(benchmark::State &state)
{
    bigTransfer(state, placedBelow(&Rig::controllerRoot, "/job/R1/BIG.JBR"), [] { download_job(); });
}

// The controller knows its file's digest from an earlier synchronisation
// (the file is older than its digest cache's two-second window), so the
// transfer starts at once; the host has no copy.
void BM_DownloadJob64MiBKnownDigest(benchmark::State &state)
{
    Rig &r = rig();
    r.clear();
    const QString remote = r.controller.path() + QStringLiteral("/job/R1/BIG.JBR");
    writeBig(remote);
    QThread::msleep(2100); // set-up, untimed: the file must age past the window
    download_job();        // the controller hashes it once
    bigTransfer(
        state, [](Rig &r) { QDir(r.host.path() + QStringLiteral("/robotJob")).removeRecursively(); },
        [] { download_job(); });
}

// The host holds an older copy: its MD5 must be known before the file is
// asked for. The host hashes it while the request and the controller's
// lists are under way (the controller hashes its own file meanwhile).
void BM_DownloadJob64MiBOverLocalCopy(benchmark::State &state)
{
    bigTransfer(
        state,
        [](Rig &r) {
            placedBelow(&Rig::controllerRoot, "/job/R1/BIG.JBR")(r);
            const QString local = r.host.path() + QStringLiteral("/robotJob/R1/BIG.JBR");
            writeBig(local);
            QFile older(local);
            older.open(QIODevice::ReadWrite);
            older.write("older copy");
        },
        [] { download_job(); });
}

// 20 files of 1 KiB: the time, and the share of it that is the pause between
// two files (19 pauses): the described 1000 ms (range 0 1000), and none at
// all (range 0 0, qrx_set_transfer_pause(0)) for the rest of the cost.
void BM_UploadTwentySmallFiles(benchmark::State &state)
{
    Rig &r = rig();
    const int pause = int(state.range(0));
    qrx_set_transfer_pause(pause);
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
        share = 19 * double(pause) / double(clock.elapsed());
        if (qrx_last_transfer_failed())
            state.SkipWithError("transfer failed");
    }
    qrx_set_transfer_pause(1000);
    state.counters["pause_share"] = share;
}

BENCHMARK(BM_RawLoopbackCopy)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_RawLoopbackFileCopy)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_FrameCrc64MiB)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_Md5Of64MiB)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_SaveFile64MiB)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_UploadJob64MiB)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_DownloadJob64MiB)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_DownloadJob64MiBOverLocalCopy)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_DownloadJob64MiBKnownDigest)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_UploadTwentySmallFiles)->Arg(1000)->Arg(0)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    if (g_rig)
        g_rig->stop();
    return 0;
}
