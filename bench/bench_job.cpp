// A job program of 100 000 instructions (a motion-heavy mix: three moves to
// one other instruction, the others cycling through every type code), per
// instruction, each beside a baseline from the same run:
//  - BM_Create: createCommand from its JSON object (class lookup plus
//    fromJson), positions shared through the job's table;
//    baseline BM_JsonCopy: a deep copy of the same JSON objects;
//  - BM_ToJson: toJson of every instruction, then the compact text that goes
//    on the wire; baseline BM_JsonText: the compact text of the same,
//    already built JSON objects;
//  - BM_ToString: the job-file line of every instruction;
//    baseline BM_SnprintfLine: one MOVJ line per instruction formatted by a
//    single snprintf call.

#include "common/CompactJson.h"
#include "job/Instructions.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kInstructions = 100000;

Json::Value moveJson(int i)
{
    Json::Value json = qrx::newCommand(1 + (i % 3))->toJson(); // MOVJ, MOVL, MOVC
    const std::string name = "P" + std::to_string(i % 999);
    json["positionId"] = name;
    json["ParaV"]["data"] = 10.0 + i % 90;
    json["ParaV"]["m_vUnit"] = 1 + i % 2;
    json["ParaPL"]["data"] = i % 5;
    Json::Value pos(Json::objectValue);
    pos["key"] = name;
    pos["ctype"] = 1;
    Json::Value data(Json::arrayValue);
    for (int axis = 0; axis < 21; ++axis)
        data.append(axis < 6 ? 12.5 * axis + i % 7 : 0.0);
    pos["data"] = data;
    json["RobotPos"] = pos;
    return json;
}

const std::vector<Json::Value> &programJson()
{
    static const std::vector<Json::Value> program = [] {
        std::vector<int> others;
        for (int type = 7; type <= 219; ++type) {
            if (qrx::newCommand(type))
                others.push_back(type);
        }
        std::vector<Json::Value> out;
        out.reserve(kInstructions);
        for (int i = 0; i < kInstructions; ++i) {
            if (i % 4 != 3)
                out.push_back(moveJson(i));
            else
                out.push_back(qrx::newCommand(others[std::size_t(i / 4) % others.size()])->toJson());
        }
        return out;
    }();
    return program;
}

struct Program
{
    qrx::PositionTable positions;
    std::vector<std::unique_ptr<qrx::Command>> instructions;
};

const Program &program()
{
    static const Program built = [] {
        Program p;
        for (const Json::Value &json : programJson())
            p.instructions.push_back(qrx::createCommand(json, &p.positions));
        return p;
    }();
    return built;
}

void perInstruction(benchmark::State &state)
{
    state.SetItemsProcessed(state.iterations() * kInstructions);
}

void BM_Create(benchmark::State &state)
{
    const auto &jsons = programJson();
    for (auto _ : state) {
        Program p;
        p.instructions.reserve(jsons.size());
        for (const Json::Value &json : jsons)
            p.instructions.push_back(qrx::createCommand(json, &p.positions));
        benchmark::DoNotOptimize(p.instructions.data());
    }
    perInstruction(state);
}

void BM_JsonCopy(benchmark::State &state)
{
    const auto &jsons = programJson();
    for (auto _ : state) {
        std::vector<Json::Value> copy;
        copy.reserve(jsons.size());
        for (const Json::Value &json : jsons)
            copy.push_back(json);
        benchmark::DoNotOptimize(copy.data());
    }
    perInstruction(state);
}

void BM_ToJson(benchmark::State &state)
{
    const Program &p = program();
    for (auto _ : state) {
        std::size_t bytes = 0;
        for (const auto &command : p.instructions)
            bytes += qrx::compactJson(command->toJson()).size();
        benchmark::DoNotOptimize(bytes);
    }
    perInstruction(state);
}

void BM_JsonText(benchmark::State &state)
{
    const auto &jsons = programJson();
    for (auto _ : state) {
        std::size_t bytes = 0;
        for (const Json::Value &json : jsons)
            bytes += qrx::compactJson(json).size();
        benchmark::DoNotOptimize(bytes);
    }
    perInstruction(state);
}

void BM_ToString(benchmark::State &state)
{
    const Program &p = program();
    for (auto _ : state) {
        std::size_t bytes = 0;
        for (const auto &command : p.instructions)
            bytes += command->toString().size();
        benchmark::DoNotOptimize(bytes);
    }
    perInstruction(state);
}

void BM_SnprintfLine(benchmark::State &state)
{
    for (auto _ : state) {
        std::size_t bytes = 0;
        char line[128];
        for (int i = 0; i < kInstructions; ++i) {
            bytes += std::size_t(std::snprintf(line, sizeof line, "MOVJ P%04d VJ = %g %% PL = %g ACC = %g DEC = %g %g",
                                               i % 999, 10.0 + i % 90, double(i % 5), 0.0, 0.0, 0.0));
            std::string text(line);
            benchmark::DoNotOptimize(text.data());
        }
        benchmark::DoNotOptimize(bytes);
    }
    perInstruction(state);
}

} // namespace

BENCHMARK(BM_Create)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JsonCopy)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToJson)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JsonText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToString)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SnprintfLine)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
