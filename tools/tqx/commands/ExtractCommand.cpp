#include "commands/ExtractCommand.h"

#include "TQX_DiffCorrIn_Payload.h"
#include "io/Output.h"
#include "io/Target.h"
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

/// Writes the corrections of one format out as they are.
class Corrections : public BlockConsumer
{
public:
    Corrections(Buffer& buffer, uint8_t format) : out(buffer), wanted(format) {}

    void take(BlockStream& stream, const Block& block) override
    {
        if (block.getNumber() != number)
            return;
        if (const int32_t result = decoder.decode(block); result < 0)
            return stream.reportUndecodable(block, result);
        const auto& record = *static_cast<const TQX_DiffCorrIn_s*>(decoder.getRecord());
        if (record.Mode != wanted)
            return;
        const TQX_Corrections corrections = TQX_correctionsOf(record);
        out.append(reinterpret_cast<const char*>(corrections.bytes), corrections.size);
    }

private:
    RecordDecoder decoder;
    Buffer& out;
    uint8_t wanted;
    uint16_t number = findType("DiffCorrIn")->blockNumber;
};

} // namespace

ExtractCommand::ExtractCommand(CLI::App& program)
    : Command(program, "extract", "Write the corrections of one format that a receiver received",
              "  tqx extract --mode rtcm3 log.tqx -o corrections.rtcm3\n"
              "  tqx extract --mode cmr --where 'Source == \"COM1\"' log.tqx > com1.cmr\n"
              "\n"
              "The messages stand one behind the other, as the receiver wrote them into its log; "
              "RTCM 2\n"
              "in words of 32 bits. See tqx help dump for times and conditions.\n")
{
    streams.addInputs(app);
    streams.addDamageReport(app);
    streams.addConditions(app);
    app.add_option("--mode", mode, "Their format")
        ->required()
        ->transform(CLI::IsMember(modes, CLI::ignore_case).description(""))
        ->type_name("rtcm2|cmr|rtcm3|rtcmv");
    app.add_option("-o,--output", target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus ExtractCommand::run()
{
    streams.checkBefore(target);
    refuseTerminal(target);
    Output output(target);
    const auto number = std::find(modes.begin(), modes.end(), mode) - modes.begin();
    Corrections corrections(output.getBuffer(), static_cast<uint8_t>(number));
    return streams.read(corrections, output);
}

} // namespace tqx::tool
