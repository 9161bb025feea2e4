#include "commands/ExtractCommand.h"

#include "io/Output.h"
#include "io/Target.h"

#include "AbstractDecoder.h"
#include "TQXDecoder.h"
#include "TQX_DiffCorrIn_Extractor.h"
#include "TQX_DiffCorrIn_MessageInfo.h"
#include "TQX_FormatInfo.h"

#include <CLI/Validators.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace tqx::tool
{

namespace
{

/// The formats, each at the place of its number.
const std::vector<std::string> modes = {"rtcm2", "cmr", "rtcm3", "rtcmv"};

/// Where the extractor expects a decoder of the corrections: writes their bytes out as they are.
class PayloadWriter : public AbstractDecoder
{
public:
    explicit PayloadWriter(Buffer& buffer)
        : AbstractDecoder(QStringLiteral("corrections"), nullptr), out(buffer)
    {
    }

    int32_t decodeMessage(const uint8_t* bytes, uint32_t size) override
    {
        out.append(reinterpret_cast<const char*>(bytes), size);
        return static_cast<int32_t>(size) * 8;
    }

    // There is but one kind of payload.
    void enableAllMessages() override {}
    void disableAllMessages() override {}
    void enableMessageEnum(int32_t) override {}
    void disableMessageEnum(int32_t) override {}
    bool isEnabledMessageEnum(int32_t) const override { return true; }

private:
    Buffer& out;
};

class Corrections : public BlockConsumer
{
public:
    Corrections(Buffer& buffer, uint8_t mode)
        : decoder((TQX_FormatInfo::getInstance(), nullptr)), writer(buffer),
          extractor(&decoder, &writer, mode), number(TQX_DiffCorrIn_MessageInfo::getInstance()
                                                         ->getAttribute(QStringLiteral("blocknr"))
                                                         .toUInt())
    {
    }

    void take(BlockStream& stream, const Block& block) override
    {
        if (block.getNumber() != number)
            return;
        const int32_t result = decoder.decodeMessage(block.data, block.size);
        if (result < 0)
            stream.reportUndecodable(block, result);
    }

private:
    TQXDecoder decoder;
    PayloadWriter writer;
    TQX_DiffCorrIn_Extractor extractor;
    unsigned number;
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
