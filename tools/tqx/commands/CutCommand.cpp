#include "commands/CutCommand.h"

#include "io/Output.h"
#include "io/Target.h"

namespace tqx::tool
{

namespace
{

class Copies : public BlockConsumer
{
public:
    explicit Copies(Buffer& buffer) : out(buffer) {}

    void take(BlockStream&, const Block& block) override
    {
        out.append(reinterpret_cast<const char*>(block.data), block.size);
    }

private:
    Buffer& out;
};

} // namespace

CutCommand::CutCommand(CLI::App& program)
    : Command(
          program, "cut", "Copy selected blocks byte for byte",
          "  tqx cut --from 2400:216000 --to 2400:219600 log.tqx -o hour.tqx\n"
          "  tqx cut --type 'PVT*,4014' --every 10 log.tqx -o small.tqx\n"
          "  tqx cut damaged.tqx -o sound.tqx     # all that is sound\n"
          "\n"
          "Only blocks with a sound checksum are copied; what they hold is not looked at, unless\n"
          "--where asks for it. See tqx help dump for times and conditions.\n")
{
    streams.addInputs(app);
    streams.addDamageReport(app);
    streams.addSelection(app);
    app.add_option("-o,--output", target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus CutCommand::run()
{
    streams.checkBefore(target);
    refuseTerminal(target);
    Output output(target);
    Copies copies(output.getBuffer());
    return streams.read(copies, output);
}

} // namespace tqx::tool
