// Blocks written as JSON Lines, in turns with the same content written through a JSON document
// library: a document is built from given values, which spares it reading records, and dumped. Once
// for the log of a simulated receiver, whose fields have few different values, once for blocks of
// random values.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "Turns.h"
#include "tqx/framing/BlockFramer.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/log/write/ValueJson.h"
#include "tqx/simulation/Simulation.h"

#include <nlohmann/json.hpp>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace
{

using Bytes = std::vector<uint8_t>;
using Document = nlohmann::json;

constexpr int turns = 101;
constexpr size_t mostBlocks = 200;

tqx::Block blockOf(const Bytes& bytes)
{
    return {bytes.data(), static_cast<uint16_t>(bytes.size()), 0};
}

std::vector<Bytes> simulatedBlocks()
{
    tqx::Buffer log;
    tqx::simulation::simulate({}, log);
    tqx::BlockFramer framer;
    framer.append(reinterpret_cast<const uint8_t*>(log.data()), log.size());
    std::vector<Bytes> blocks;
    for (; framer.hasBlock() && blocks.size() < mostBlocks; framer.takeBlock())
        blocks.emplace_back(framer.block().data, framer.block().data + framer.block().size);
    return blocks;
}

std::vector<Bytes> randomBlocks()
{
    std::mt19937_64 random(7);
    std::vector<Bytes> blocks;
    while (blocks.size() < mostBlocks)
        for (const auto* type : mainTypes())
            if (type->hasMessage && blocks.size() < mostBlocks)
                blocks.push_back(randomBlock(*type, {type->highestRevision, 10, 0}, random));
    return blocks;
}

/// The decoded blocks, and their text in each form.
struct Content {
    explicit Content(std::vector<Bytes> all) : blocks(std::move(all))
    {
        for (const Bytes& bytes : blocks) {
            decoders.push_back(std::make_unique<tqx::RecordDecoder>());
            decoders.back()->decode(blockOf(bytes));
        }
    }

    std::vector<Bytes> blocks;
    std::vector<std::unique_ptr<tqx::RecordDecoder>> decoders;
    tqx::FieldFilter everything;
};

/// A document made member by member of the values of another.
Document documentOf(const Document& values)
{
    if (!values.is_structured())
        return values;
    Document document(values.type());
    if (values.is_object())
        for (const auto& [name, value] : values.get_ref<const Document::object_t&>())
            document[name] = documentOf(value);
    else
        for (const Document& value : values)
            document.push_back(documentOf(value));
    return document;
}

using Write = std::function<void(tqx::Buffer& out, size_t index)>;

void besideDocuments(benchmark::State& state, const Content& content, const Write& write)
{
    tqx::Buffer out;
    std::vector<Document> documents;
    size_t characters = 0;
    for (size_t i = 0; i < content.blocks.size(); ++i) {
        out.clear();
        write(out, i);
        characters += out.size();
        documents.push_back(Document::parse(out.view()));
    }
    const TimedWork lines = {1, [&](int) {
                                 for (size_t i = 0; i < documents.size(); ++i) {
                                     out.clear();
                                     write(out, i);
                                     benchmark::DoNotOptimize(out.data());
                                 }
                             }};
    const TimedWork library = {1, [&](int) {
                                   for (const Document& values : documents)
                                       benchmark::DoNotOptimize(documentOf(values).dump());
                               }};
    const std::vector<double> ns = runInTurns(state, {lines, library});
    state.counters["MB/s"] = static_cast<double>(characters) * 1e3 / ns[0];
    state.counters["library_MB/s"] = static_cast<double>(characters) * 1e3 / ns[1];
    state.counters["times_as_fast"] = ns[1] / ns[0];
}

void scaled(benchmark::State& state, const Content& content)
{
    tqx::ValueJson json(content.everything);
    besideDocuments(state, content, [&](tqx::Buffer& out, size_t index) {
        json.write(out, content.decoders[index]->getDecoded());
    });
}

void stored(benchmark::State& state, const Content& content)
{
    tqx::RawJson json(content.everything);
    besideDocuments(state, content, [&](tqx::Buffer& out, size_t index) {
        json.write(out, content.decoders[index]->getDecoded());
    });
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const Content log(simulatedBlocks());
    const Content random(randomBlocks());
    const auto add = [](const char* name, auto function, const Content& content) {
        benchmark::RegisterBenchmark(name, function, std::cref(content))
            ->UseManualTime()
            ->Iterations(turns);
    };
    add("scaled/log", scaled, log);
    add("scaled/random", scaled, random);
    add("raw/log", stored, log);
    add("raw/random", stored, random);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
