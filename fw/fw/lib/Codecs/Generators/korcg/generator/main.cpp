#include "emit/Emitters.h"
#include "model/Limits.h"
#include "model/Selection.h"
#include "read/Addition.h"
#include "read/Keys.h"
#include "read/Load.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace korcg::generator;

struct Options {
    std::string description;
    std::string added;
    std::string output;
    std::vector<std::string> types;
    std::string only;
    bool listOutputs = false;
    bool check = false;
    int edition = 0;
    bool updateLedger = false;
    bool keys = false;
};

int report(const Errors& errors)
{
    for (const std::string& line : errors.report())
        fmt::print(stderr, "{}\n", line);
    fmt::print(stderr, "{} error{}\n", errors.count(), errors.count() == 1 ? "" : "s");
    return 1;
}

std::filesystem::path ledgerPath(const std::string& description)
{
    return std::filesystem::path(description) / "ledger.txt";
}

/// A description that has one edition only needs no ledger.
Ledger readLedger(const std::string& description, const Options& options, Errors& errors)
{
    const std::filesystem::path path = ledgerPath(description);
    std::ifstream stream(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    return Ledger(path.string(), text, options.updateLedger, errors);
}

void writeLedger(const std::string& description, const Ledger& ledger)
{
    std::ofstream stream(ledgerPath(description), std::ios::binary | std::ios::trunc);
    stream << ledger.text();
    stream.close();
    if (!stream)
        throw std::runtime_error(ledgerPath(description).string() + ": cannot be written");
}

void addDescriptions(Format& format, const Options& options, Errors& errors)
{
    const std::vector<Source> sources = readSources(options.added, errors);
    Ledger ledger = readLedger(options.added, options, errors);
    if (!errors.empty())
        return;
    addTypes(format, sources, ledger, errors);
    if (errors.empty() && ledger.hasGrown())
        writeLedger(options.added, ledger);
}

int generate(const Options& options)
{
    Errors errors;
    const std::vector<Source> sources = readSources(options.description, errors);
    if (!errors.empty())
        return report(errors);
    Ledger ledger = readLedger(options.description, options, errors);
    Format format = loadWithHistory(sources, errors, {options.edition, &ledger});
    if (errors.empty() && ledger.hasGrown())
        writeLedger(options.description, ledger);
    if (errors.empty() && !options.added.empty())
        addDescriptions(format, options, errors);
    const Selection selection = select(format, options.types, errors);
    if (!errors.empty())
        return report(errors);
    if (options.check)
        return 0;

    Output output(options.output, options.listOutputs);
    if (options.only.empty() || options.only == "codec")
        emitCodec(format, selection, output);
    if (options.only.empty() || options.only == "facts")
        emitFacts(format, selection, output);
    if (options.only.empty() || options.only == "messages")
        emitMessages(format, selection, output);
    if (options.only.empty() || options.only == "metadata")
        emitMetadata(selection, output);
    // For people, so it is written only when asked for.
    if (options.only == "reference")
        emitReference(format, selection, output);
    if (options.only == "names")
        emitNames(selection, output);
    if (options.listOutputs) {
        for (const std::string& name : output.names())
            fmt::print("{}\n", name);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app(
        "Generates the codec, messages and metadata of a block format from its description",
        "korcg-generate");
    app.add_option("--description", options.description, "Directory of the description (*.yaml)");
    app.add_option("--added", options.added,
                   "Directory of a description that adds types to the format, with a ledger.txt "
                   "of its own");
    app.add_option("--output", options.output, "Directory that receives the generated files");
    app.add_option("--types", options.types,
                   "Emit only these types and the sub-blocks that they hold")
        ->delimiter(',');
    app.add_option("--only", options.only, "Emit one kind of output")
        ->check(CLI::IsMember({"codec", "facts", "messages", "metadata", "reference", "names"}));
    app.add_flag("--list-outputs", options.listOutputs,
                 "Print the names of the files that would be written, one a line");
    app.add_flag("--check", options.check, "Read and check the description, write nothing");
    app.add_option("--edition", options.edition,
                   "Generate what the format had in this edition; without it, the latest")
        ->check(CLI::Range(1, latestEdition));
    app.add_flag("--update-ledger", options.updateLedger,
                 "Give numbers to what later editions added, in ledger.txt of the description");
    app.add_flag("--keys", options.keys, "Print the page of the keys that a description may have");
    CLI11_PARSE(app, argc, argv);

    if (options.keys) {
        fmt::print("{}", keysPage());
        return 0;
    }
    if (options.description.empty()) {
        fmt::print(stderr, "korcg-generate: --description is missing\n");
        return 1;
    }
    if (options.output.empty() && !options.listOutputs && !options.check) {
        fmt::print(stderr, "korcg-generate: --output is missing\n");
        return 1;
    }
    try {
        return generate(options);
    } catch (const std::exception& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return 1;
    }
}
