#include "commands/Command.h"

#include "commands/CutCommand.h"
#include "commands/DumpCommand.h"
#include "commands/EncodeCommand.h"
#include "commands/EphemeridesCommand.h"
#include "commands/ErrorCommand.h"
#include "commands/EventsCommand.h"
#include "commands/ExplainCommand.h"
#include "commands/ExtractCommand.h"
#include "commands/HelpCommand.h"
#include "commands/IndexCommand.h"
#include "commands/InfoCommand.h"
#include "commands/MergeCommand.h"
#include "commands/ObservationsCommand.h"
#include "commands/ReportCommand.h"
#include "commands/RinexCommand.h"
#include "commands/SimulateCommand.h"
#include "commands/SplitCommand.h"
#include "commands/TrackCommand.h"
#include "commands/TypesCommand.h"

namespace tqx::tool
{

Command::Command(CLI::App& program, const std::string& name, const std::string& description,
                 const std::string& examples)
    : m_app(*program.add_subcommand(name, description))
{
    m_app.group("Commands");
    m_app.footer("Examples:\n" + examples);
}

std::vector<std::unique_ptr<Command>> makeCommands(CLI::App& program)
{
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<InfoCommand>(program));
    commands.push_back(std::make_unique<DumpCommand>(program));
    commands.push_back(std::make_unique<ExplainCommand>(program));
    commands.push_back(std::make_unique<CutCommand>(program));
    commands.push_back(std::make_unique<MergeCommand>(program));
    commands.push_back(std::make_unique<SplitCommand>(program));
    commands.push_back(std::make_unique<ExtractCommand>(program));
    commands.push_back(std::make_unique<RinexCommand>(program));
    commands.push_back(std::make_unique<ObservationsCommand>(program));
    commands.push_back(std::make_unique<EphemeridesCommand>(program));
    commands.push_back(std::make_unique<TrackCommand>(program));
    commands.push_back(std::make_unique<EventsCommand>(program));
    commands.push_back(std::make_unique<ReportCommand>(program));
    commands.push_back(std::make_unique<IndexCommand>(program));
    commands.push_back(std::make_unique<TypesCommand>(program));
    commands.push_back(std::make_unique<EncodeCommand>(program));
    commands.push_back(std::make_unique<SimulateCommand>(program));
    commands.push_back(std::make_unique<ErrorCommand>(program));
    commands.push_back(std::make_unique<HelpCommand>(program));
    return commands;
}

} // namespace tqx::tool
