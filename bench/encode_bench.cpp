// JSON Lines encoded as blocks, in turns with the parsing of the same lines by a JSON document
// library alone. Once for the log of a simulated receiver, once for blocks of random values.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "Turns.h"
#include "tqx/framing/BlockFramer.h"
#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/simulation/Simulation.h"

#include <nlohmann/json.hpp>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace
{

using Bytes = std::vector<uint8_t>;

constexpr int turns = 101;
constexpr size_t mostLines = 200;

/// The line of a block; empty when its fields alone would not restore it.
std::string lineOf(const uint8_t* data, size_t size)
{
    static const tqx::FieldFilter everything;
    static tqx::RawJson json(everything);
    tqx::RecordDecoder decoder;
    if (decoder.decode({data, static_cast<uint16_t>(size), 0}) <= 0)
        return "";
    tqx::Buffer line;
    json.write(line, decoder.getDecoded());
    std::string text(line.view());
    return text.find("\"bytes\"") == std::string::npos ? text : "";
}

std::vector<std::string> simulatedLines()
{
    tqx::Buffer log;
    tqx::simulation::simulate({}, log);
    tqx::BlockFramer framer;
    framer.append(reinterpret_cast<const uint8_t*>(log.data()), log.size());
    std::vector<std::string> lines;
    for (; framer.hasBlock() && lines.size() < mostLines; framer.takeBlock())
        lines.push_back(lineOf(framer.block().data, framer.block().size));
    return lines;
}

std::vector<std::string> randomLines()
{
    std::mt19937_64 random(7);
    std::vector<std::string> lines;
    while (lines.size() < mostLines)
        for (const auto* type : mainTypes())
            if (type->hasMessage && lines.size() < mostLines) {
                const Bytes block = randomBlock(*type, {type->highestRevision, 10, 0}, random);
                lines.push_back(lineOf(block.data(), block.size()));
            }
    return lines;
}

void encode(benchmark::State& state, const std::vector<std::string>& lines)
{
    tqx::LineEncoder encoder;
    size_t characters = 0;
    for (const std::string& line : lines) {
        characters += line.size();
        if (!line.empty() &&
            lineOf(encoder.encode(line).data(), encoder.encode(line).size()) != line)
            std::abort();
    }
    const auto ofEach = [&lines](const auto& work) {
        return TimedWork{1, [&lines, work](int) {
                             for (const std::string& line : lines)
                                 if (!line.empty())
                                     work(line);
                         }};
    };
    const std::vector<double> ns =
        runInTurns(state, {ofEach([&encoder](const std::string& line) {
                               benchmark::DoNotOptimize(encoder.encode(line).data());
                           }),
                           ofEach([](const std::string& line) {
                               benchmark::DoNotOptimize(nlohmann::json::parse(line));
                           })});
    state.counters["MB/s"] = static_cast<double>(characters) * 1e3 / ns[0];
    state.counters["parse_MB/s"] = static_cast<double>(characters) * 1e3 / ns[1];
    state.counters["rate_of_parsing"] = ns[1] / ns[0];
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const std::vector<std::string> log = simulatedLines();
    const std::vector<std::string> random = randomLines();
    const auto add = [](const char* name, const std::vector<std::string>& lines) {
        benchmark::RegisterBenchmark(name, encode, std::cref(lines))
            ->UseManualTime()
            ->Iterations(turns);
    };
    add("encode/log", log);
    add("encode/random", random);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
