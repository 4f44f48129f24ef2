// Frame decoder throughput, each figure beside its baseline:
//  - a stream of valid 1 KiB frames, against zlib's crc32 alone over the
//    same bytes, both in one call and in the per-frame calls that decoding
//    makes (the decoder must reach at least 80 % of it);
//  - 1 MiB of garbage followed by one frame, against 1 MiB of valid frames
//    (skipping garbage must cost under 10 times as much).
// Log lines are switched off: the head errors of the garbage would
// otherwise measure the logger.

#include "link/FrameCodec.h"

#include <QByteArray>
#include <QLoggingCategory>
#include <benchmark/benchmark.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kStreamBytes = 1 << 20;
constexpr int kFrameBytes = 1024;
constexpr quint16 kCommand = 0x2F08;

// Valid frames of kFrameBytes each, filling kStreamBytes.
const QByteArray &validStream()
{
    static const QByteArray stream = [] {
        QByteArray bytes;
        bytes.reserve(kStreamBytes);
        std::mt19937 random(42);
        int n = 0;
        while (bytes.size() + kFrameBytes <= kStreamBytes) {
            QByteArray payload(kFrameBytes - qrx::kFrameOverhead, Qt::Uninitialized);
            for (char &c : payload)
                c = char(random());
            payload[0] = char('0' + n++ % 10);
            bytes.append(qrx::encodeFrame(kCommand, payload));
        }
        return bytes;
    }();
    return stream;
}

// kStreamBytes of random bytes without a frame head, then one frame.
const QByteArray &garbageStream()
{
    static const QByteArray stream = [] {
        QByteArray bytes(kStreamBytes, Qt::Uninitialized);
        std::mt19937 random(7);
        for (char &c : bytes) {
            c = char(random());
            if (c == 0x4E)
                c = 0x4F;
        }
        bytes.append(qrx::encodeFrame(kCommand, QByteArray("{\"last\":1}\n")));
        return bytes;
    }();
    return stream;
}

void quiet()
{
    QLoggingCategory::setFilterRules(QStringLiteral("qrx.*=false"));
}

int decodeAll(const QByteArray &stream)
{
    qrx::FrameDecoder decoder;
    int frames = 0;
    decoder.feed(stream, [&frames](quint16, const QByteArray &payload) {
        benchmark::DoNotOptimize(payload.constData());
        ++frames;
    });
    return frames;
}

void BM_Crc32Alone(benchmark::State &state)
{
    const QByteArray &stream = validStream();
    for (auto _ : state) {
        uLong crc = crc32(0L, Z_NULL, 0);
        crc = crc32(crc, reinterpret_cast<const Bytef *>(stream.constData()), uInt(stream.size()));
        benchmark::DoNotOptimize(crc);
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
}
BENCHMARK(BM_Crc32Alone);

// The CRC work that decoding cannot avoid: one crc32 per frame over the
// bytes it covers (length, code, payload).
void BM_Crc32PerFrame(benchmark::State &state)
{
    const QByteArray &stream = validStream();
    for (auto _ : state) {
        for (int at = 0; at + kFrameBytes <= stream.size(); at += kFrameBytes) {
            const quint32 crc = qrx::frameCrc(stream.constData() + at + 2, kFrameBytes - 6);
            benchmark::DoNotOptimize(crc);
        }
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
}
BENCHMARK(BM_Crc32PerFrame);

void BM_DecodeValidFrames(benchmark::State &state)
{
    quiet();
    const QByteArray &stream = validStream();
    const int expected = stream.size() / kFrameBytes;
    for (auto _ : state) {
        if (decodeAll(stream) != expected)
            state.SkipWithError("frames lost");
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
}
BENCHMARK(BM_DecodeValidFrames);

void BM_DecodeGarbageThenFrame(benchmark::State &state)
{
    quiet();
    const QByteArray &stream = garbageStream();
    for (auto _ : state) {
        if (decodeAll(stream) != 1)
            state.SkipWithError("the frame after the garbage was lost");
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
}
BENCHMARK(BM_DecodeGarbageThenFrame);

// The garbage fed in socket-sized reads (4 KiB), as the link sees it.
void BM_DecodeGarbageInReads(benchmark::State &state)
{
    quiet();
    const QByteArray &stream = garbageStream();
    constexpr int kRead = 4096;
    for (auto _ : state) {
        qrx::FrameDecoder decoder;
        int frames = 0;
        for (int at = 0; at < stream.size(); at += kRead)
            decoder.feed(stream.mid(at, kRead), [&frames](quint16, const QByteArray &) { ++frames; });
        if (frames != 1)
            state.SkipWithError("the frame after the garbage was lost");
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
}
BENCHMARK(BM_DecodeGarbageInReads);

// Prints the usual table, then each figure against its baseline.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    RatioReporter()
        : ConsoleReporter(isatty(fileno(stdout)) ? OO_ColorTabular : OO_Tabular)
    {
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.error_occurred || run.iterations == 0)
                continue;
            // With repetitions the median stands for the name; else the run.
            const std::string name = run.run_name.function_name;
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median")
                continue;
            cpuNs[name] = run.GetAdjustedCPUTime();
        }
    }
    void Finalize() override
    {
        ConsoleReporter::Finalize();
        printRatio("decoding valid frames, throughput vs crc32 in one call", "BM_Crc32Alone",
                   "BM_DecodeValidFrames", "at least 80 %");
        printRatio("decoding valid frames, throughput vs crc32 per frame", "BM_Crc32PerFrame",
                   "BM_DecodeValidFrames", "at least 80 %");
        printRatio("1 MiB garbage and a frame, time vs 1 MiB valid frames", "BM_DecodeGarbageThenFrame",
                   "BM_DecodeValidFrames", "under 10x", true);
    }

private:
    void printRatio(const char *what, const std::string &base, const std::string &measured,
                    const char *goal, bool timeRatio = false)
    {
        if (!cpuNs.count(base) || !cpuNs.count(measured))
            return;
        const double ratio = cpuNs[base] / cpuNs[measured];
        if (timeRatio)
            std::printf("%-58s %6.2fx   (goal: %s)\n", what, ratio, goal);
        else
            std::printf("%-58s %6.1f %%  (goal: %s)\n", what, 100.0 * ratio, goal);
    }

    std::map<std::string, double> cpuNs;
};

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
