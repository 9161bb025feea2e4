#include "SimulateCommand.h"

#include "Output.h"
#include "ToolError.h"

#include <CLI/Validators.hpp>
#include <fmt/format.h>

#include <cmath>

namespace tool
{

SimulateCommand::SimulateCommand(CLI::App& program)
    : Command(
          program, "simulate", "Make the log of a simulated receiver",
          "  tqx simulate --duration 3600 -o hour.tqx\n"
          "  tqx simulate --rate 10 --duration 60 --seed 7 --damage | tqx info -\n"
          "\n"
          "A receiver with a static antenna tracks GPS satellites on Kepler orbits. The same seed\n"
          "gives the same bytes from one build.\n")
{
    app.add_option("--duration", settings.duration, "Length of the log in seconds")
        ->check(CLI::Range(0.0, 1e8).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_option("--rate", rate, "Epochs a second; the period must be whole milliseconds")
        ->check(CLI::Range(1e-4, 1000.0).description(""))
        ->type_name("HERTZ")
        ->capture_default_str();
    app.add_option("--seed", settings.seed, "Start of the random numbers")
        ->type_name("NUMBER")
        ->capture_default_str();
    app.add_flag("--damage", settings.damage, "Flip bits, cut blocks and put junk between them");
    app.add_option("-o,--output", target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus SimulateCommand::run()
{
    const double period = 1000 / rate;
    if (std::fabs(period - std::round(period)) > 1e-6 * period)
        throw ToolError(
            fmt::format("simulate: {} Hz is a period of {} ms, which is not whole", rate, period));
    settings.periodMillis = static_cast<uint32_t>(std::llround(period));
    Output output(target);
    simulate(settings, output);
    return ExitStatus::Done;
}

} // namespace tool
