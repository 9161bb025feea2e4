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
    explicit Copies(Buffer& buffer) : m_out(buffer) {}

    void take(BlockStream&, const Block& block) override
    {
        m_out.append(reinterpret_cast<const char*>(block.data), block.size);
    }

private:
    Buffer& m_out;
};

} // namespace

CutCommand::CutCommand(CLI::App& program)
    : Command(program, "cut", "Copy selected blocks byte for byte",
              "  tqx cut --from 2400:216000 --to 2400:219600 log.tqx -o hour.tqx\n"
              "  tqx cut --type 'PVT*,4014' --every 10 log.tqx -o small.tqx\n"
              "  tqx cut damaged.tqx -o valid.tqx     # all that is valid\n"
              "\n"
              "Only blocks with a valid checksum are copied; their content is not checked, unless\n"
              "--where asks for it. See tqx help dump for times and conditions.\n")
{
    m_streams.addInputs(m_app);
    m_streams.addDamageReport(m_app);
    m_streams.addSelection(m_app);
    m_app.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus CutCommand::run()
{
    m_streams.checkBefore(m_target);
    refuseTerminal(m_target);
    Output output(m_target);
    Copies copies(output.getBuffer());
    return m_streams.read(copies, output);
}

} // namespace tqx::tool
