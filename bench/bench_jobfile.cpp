// Reading and writing a job file of one million instruction lines of mixed
// families (half moves, the rest cycling through every type code that has a
// line form), beside a baseline from the same run:
//  - BM_ReadJobFile: the reader over the file's bytes (scanner, grammar,
//    instruction objects); baseline BM_GetlineBaseline: std::getline over
//    the same file. Counters: lines/s (CPU time; the wall time is in the
//    Time column; freeing the program afterwards is not timed) and the peak
//    memory per instruction: the heap the program holds after the read plus
//    the scanner's copy of the file, which lives during the read (heap figures from mallinfo2, so that memory freed
//    earlier in the process does not hide the growth).
//  - BM_WriteJobFile: the writer; baseline BM_CopyBaseline: writing the
//    same bytes with one ofstream write.

#include "job/Instructions.h"
#include "job/JobProgram.h"
#include "job/JobReadDriver.h"
#include "job/LineForms.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <sstream>
#include <string>
#include <malloc.h>

namespace {

constexpr int kLines = 1000000;
const char *const kFile = "/tmp/qrx_bench_jobfile.JBR";

// Bytes of the heap in use.
std::size_t heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::unique_ptr<qrx::JobProgram> makeProgram()
{
    auto job = std::make_unique<qrx::JobProgram>();
    job->name = "BENCH";
    auto pos = std::make_unique<qrx::RobotPos>();
    pos->key = "P0001";
    pos->ctype = 1;
    job->positions.insert(std::move(pos));
    std::vector<int> types;
    for (int type = 0; type <= 219; ++type) {
        if (!qrx::lineForms(type).empty())
            types.push_back(type);
    }
    for (int i = 0; i < kLines - 2; ++i) {
        if (i % 2 == 0) {
            auto move = std::make_unique<qrx::MoveCommand>(1 + i % 3);
            move->m_positionId = "P0001";
            move->paraV->data = 10 + i % 90;
            move->paraPl->data = i % 5;
            job->insert(std::move(move));
        } else {
            job->insert(qrx::newLineCommand(types[std::size_t(i / 2) % types.size()]));
        }
    }
    return job;
}

const std::string &fileText()
{
    static const std::string text = [] {
        const std::string written = makeProgram()->text("2026.11.22 10:00:00");
        std::ofstream(kFile, std::ios::binary) << written;
        return written;
    }();
    return text;
}

std::string readBytes()
{
    std::ifstream in(kFile, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void BM_ReadJobFile(benchmark::State &state)
{
    fileText();
    qrx::lineForms(1); // the forms are built once per process, not per read
    double perInstruction = 0;
    for (auto _ : state) {
        const std::string text = readBytes();
        const std::size_t before = heapInUse();
        std::ostringstream out;
        auto program = qrx::JobReadDriver(out).read(text);
        if (!program)
            state.SkipWithError("the file does not read");
        perInstruction = double(heapInUse() - before + text.size()) / kLines;
        benchmark::DoNotOptimize(program.get());
        state.PauseTiming(); // freeing the program is not reading it
        program.reset();
        state.ResumeTiming();
    }
    state.counters["lines/s"] = benchmark::Counter(double(kLines) * double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["peak_bytes_per_instruction"] = perInstruction;
}

void BM_GetlineBaseline(benchmark::State &state)
{
    fileText();
    for (auto _ : state) {
        std::ifstream in(kFile, std::ios::binary);
        std::string line;
        long lines = 0;
        while (std::getline(in, line))
            ++lines;
        benchmark::DoNotOptimize(lines);
    }
    state.counters["lines/s"] = benchmark::Counter(double(kLines) * double(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_WriteJobFile(benchmark::State &state)
{
    fileText();
    std::ostringstream out;
    auto program = qrx::JobReadDriver(out).read(readBytes());
    for (auto _ : state) {
        std::ofstream file("/tmp/qrx_bench_jobfile_out.JBR", std::ios::binary | std::ios::trunc);
        program->write(file, "2026.11.22 10:00:00");
    }
    state.counters["lines/s"] = benchmark::Counter(double(kLines) * double(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_CopyBaseline(benchmark::State &state)
{
    const std::string &text = fileText();
    for (auto _ : state) {
        std::ofstream file("/tmp/qrx_bench_jobfile_out.JBR", std::ios::binary | std::ios::trunc);
        file.write(text.data(), std::streamsize(text.size()));
    }
    state.counters["lines/s"] = benchmark::Counter(double(kLines) * double(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(BM_GetlineBaseline)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReadJobFile)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_CopyBaseline)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_WriteJobFile)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_MAIN();
