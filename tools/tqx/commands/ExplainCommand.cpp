#include "commands/ExplainCommand.h"

#include "commands/EachInput.h"
#include "io/Output.h"
#include "io/ToolError.h"
#include "io/UnpackedInput.h"
#include "output/InspectionJson.h"
#include "tqx/log/inspect/BlockLocator.h"
#include "tqx/log/inspect/Explanation.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <charconv>
#include <optional>
#include <utility>

namespace tqx::tool
{

namespace
{

/// Path and offset of FILE@OFFSET; the offset is 0 when there is none.
std::pair<std::string, uint64_t> split(const std::string& place)
{
    const size_t at = place.rfind('@');
    if (at == std::string::npos)
        return {place, 0};
    const std::string number = place.substr(at + 1);
    const bool isHex = number.rfind("0x", 0) == 0;
    uint64_t offset = 0;
    const char* end = number.data() + number.size();
    const auto [stop, error] =
        std::from_chars(number.data() + (isHex ? 2 : 0), end, offset, isHex ? 16 : 10);
    if (stop != end || error != std::errc()) {
        throw ToolError("explain: " + shortened(place) + ": " + shortened(number) +
                        " is not an offset");
    }
    return {place.substr(0, at), offset};
}

/// An input that ends where it cannot be read further, so that a block before that can be
/// explained.
class ReadableInput : public ByteSource
{
public:
    explicit ReadableInput(const std::string& path) : m_input(path) {}

    size_t read(uint8_t* bytes, size_t capacity) override
    {
        return unlessFailed<size_t>([&] { return m_input.read(bytes, capacity); });
    }
    uint64_t skip(uint64_t count) override
    {
        return unlessFailed<uint64_t>([&] { return m_input.skip(count); });
    }
    Place placeOf(uint64_t offset) const override { return m_input.placeOf(offset); }

    /// Throws what the input threw, if it did.
    void check() const
    {
        if (m_failure)
            throw SourceError(*m_failure);
    }

private:
    template<typename Count, typename Action>
    Count unlessFailed(const Action& action)
    {
        if (m_failure)
            return 0;
        try {
            return action();
        } catch (const SourceError& error) {
            m_failure.emplace(error);
            return 0;
        }
    }

    UnpackedInput m_input;
    std::optional<SourceError> m_failure;
};

BlockLocation locateIn(ReadableInput& input, uint64_t offset, const Schema& schema)
{
    try {
        return locateBlock(input, offset, schema);
    } catch (const SourceError&) {
        input.check();
        throw;
    }
}

} // namespace

ExplainCommand::ExplainCommand(CLI::App& program)
    : Command(
          program, "explain", "Show a block byte by byte",
          "  tqx explain log.tqx@404\n"
          "  tqx explain log.tqx@0x194 log.tqx@1784\n"
          "  tqx simulate | tqx explain -@404\n"
          "tqx explain log.tqx.gz@404 # an offset in the decompressed content\n"
          "\n"
          "Shows one row per value: its place in the file and in the block, its bytes, its\n"
          "name, the stored value and its meaning; below, what is wrong with the block. Offsets\n"
          "of blocks come from info, dump and damage reports. Where damage does not begin with\n"
          "a header, one is searched for before the next valid block, up to 1 MiB away.\n"
          "\n"
          "--json writes one object per place, with a row for each value: path names the field,\n"
          "offset and size are its bytes in the block, lowestBit and bits those of a bit range\n"
          "in them; raw is the stored value, value with unit, or name, its meaning. depth and\n"
          "parent (the index of another row) give the sub-block of a row.\n")
{
    m_app
        .add_option("FILE@OFFSET", m_places, "Offset of the block, decimal or hexadecimal with 0x")
        ->type_name("");
    m_descriptions.add(m_app);
    CLI::Option* asJson =
        m_app.add_flag("--json", m_json, "Write one JSON object per place instead of text");
    m_units.add(m_app, "Write units in text as words (meter) or symbols (m)")->excludes(asJson);
    // Standard input, -@0, looks like an option; this lets it through.
    m_app.allow_extras();
}

void ExplainCommand::explain(Output& output, const std::string& place)
{
    const auto [path, offset] = split(place);
    ReadableInput input(path);
    const BlockLocation location = locateIn(input, offset, m_descriptions.getSchema());
    if (!location.hasSync() && location.around) {
        throw SourceError(fmt::format("{}: {}: {}", location.file, offset,
                                      describeNoBlock(location, m_descriptions.getSchema())));
    }
    const Inspection inspection = inspect(location, m_descriptions.getSchema());
    if (m_json) {
        appendInspectionJson(output.getBuffer(), inspection);
    } else {
        if (m_shown)
            output.getBuffer().append('\n');
        ValueStyle style;
        style.hasSymbols = m_units.areSymbols();
        appendExplanation(output.getBuffer(), inspection, style);
    }
    m_shown = true;
    output.commit();
    input.check();
}

ExitStatus ExplainCommand::run()
{
    for (const std::string& extra : m_app.remaining()) {
        if (extra.rfind("-@", 0) != 0) {
            throw ToolError("explain: there is no option " + shortened(extra) +
                            " (see tqx help explain)");
        }
        m_places.push_back(extra);
    }
    if (m_places.empty())
        throw ToolError("explain: FILE@OFFSET is required (see tqx help explain)");
    Output output;
    return forEachInput(output, m_places, [&](const std::string& place) {
        explain(output, place);
        return true;
    });
}

} // namespace tqx::tool
