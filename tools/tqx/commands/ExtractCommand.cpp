#include "commands/ExtractCommand.h"

#include "TQX_DiffCorrIn_Payload.h"
#include "io/Output.h"
#include "io/Target.h"
#include "io/ToolError.h"
#include "output/NeighbourWriter.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"

#include <CLI/Validators.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace tqx::tool
{

using namespace Kor::MessageApi;

namespace
{

/// The formats, each at the place of its number.
const std::vector<std::string> modes = {"rtcm2", "cmr", "rtcm3", "rtcmv"};

/// The kinds of neighbours of blocks, each at the place of its number.
const std::vector<std::string> kinds = {"nmea", "rtcm3", "ascii"};

size_t placeIn(const std::vector<std::string>& names, const std::string& name)
{
    return static_cast<size_t>(std::find(names.begin(), names.end(), name) - names.begin());
}

/// Writes the corrections of one format out as they are.
class Corrections : public BlockConsumer
{
public:
    Corrections(Buffer& buffer, uint8_t format) : m_out(buffer), m_wanted(format) {}

    void take(BlockStream& stream, const Block& block) override
    {
        if (block.getNumber() != m_number)
            return;
        if (const int32_t result = m_decoder.decode(block); result < 0)
            return stream.reportUndecodable(block, result);
        const auto& record = *static_cast<const TQX_DiffCorrIn_s*>(m_decoder.getRecord());
        if (record.Mode != m_wanted)
            return;
        const TQX_Corrections corrections = TQX_correctionsOf(record);
        m_out.append(reinterpret_cast<const char*>(corrections.bytes), corrections.size);
    }

    bool counts(const Block& block) const override { return block.getNumber() == m_number; }

private:
    RecordDecoder m_decoder;
    Buffer& m_out;
    uint8_t m_wanted;
    uint16_t m_number = findType("DiffCorrIn")->blockNumber;
};

} // namespace

ExtractCommand::ExtractCommand(CLI::App& program)
    : Command(
          program, "extract", "Write received corrections, or what is between the blocks",
          "  tqx extract --mode rtcm3 log.tqx -o corrections.rtcm3\n"
          "  tqx extract --mode cmr --where 'Source == \"COM1\"' log.tqx > com1.cmr\n"
          "  tqx extract --between nmea log.tqx -o log.nmea\n"
          "\n"
          "The messages are concatenated as the receiver logged them, RTCM 2 in words of 32\n"
          "bits. See tqx help dump for times and conditions; --limit counts the blocks that\n"
          "hold corrections.\n"
          "\n"
          "Between the blocks a port may send NMEA sentences (complete, with a valid checksum),\n"
          "RTCM 3 frames and ASCII text: lines that end with CR and LF, and prompts. They are\n"
          "written unchanged; --from, --to and --interval treat each like the block before it.\n")
{
    m_streams.addInputs(m_app);
    m_streams.addDamageReport(m_app);
    m_streams.addConditions(m_app);
    CLI::Option* const corrections =
        m_app.add_option("--mode", m_mode, "Format of the corrections")
            ->transform(CLI::IsMember(modes, CLI::ignore_case).description(""))
            ->type_name("rtcm2|cmr|rtcm3|rtcmv");
    m_app
        .add_option("--between", m_between,
                    "Extract what is between the blocks instead of corrections")
        ->transform(CLI::IsMember(kinds, CLI::ignore_case).description(""))
        ->type_name("nmea|rtcm3|ascii")
        ->excludes(corrections)
        ->excludes(m_app.get_option("--where"))
        ->excludes(m_app.get_option("--every"))
        ->excludes(m_app.get_option("--limit"));
    m_app.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus ExtractCommand::run()
{
    if (m_mode.empty() && m_between.empty())
        throw ToolError("extract: --mode or --between is required");
    m_streams.checkBefore(m_target);
    refuseTerminal(m_target);
    Output output(m_target);
    if (!m_between.empty()) {
        NeighbourWriter neighbours(output.getBuffer(),
                                   static_cast<NeighbourKind>(placeIn(kinds, m_between)),
                                   m_streams.getSelection());
        return m_streams.read(neighbours, output);
    }
    Corrections corrections(output.getBuffer(), static_cast<uint8_t>(placeIn(modes, m_mode)));
    return m_streams.read(corrections, output);
}

} // namespace tqx::tool
