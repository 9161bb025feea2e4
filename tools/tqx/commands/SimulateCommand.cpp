#include "commands/SimulateCommand.h"

#include "io/Interrupt.h"
#include "io/Output.h"
#include "io/Progress.h"
#include "io/Target.h"
#include "io/ToolError.h"

#include <CLI/Validators.hpp>
#include <fmt/format.h>

#include <cmath>
#include <cstdlib>

namespace tqx::tool
{

SimulateCommand::SimulateCommand(CLI::App& program)
    : Command(
          program, "simulate", "Make the log of a simulated receiver",
          "  tqx simulate --duration 3600 -o hour.tqx\n"
          "  tqx simulate --track circle --speed 20 --rate 10 --position 48.2,16.37,180 -o "
          "drive.tqx\n"
          "  tqx simulate --start 2404:604790 --duration 30 | tqx info -\n"
          "  tqx simulate --size 1GB --rate 20 -o big.tqx\n"
          "  tqx simulate --rate 10 --duration 60 --seed 7 --damage | tqx info -\n"
          "  tqx simulate --mixed -o mixed.tqx\n"
          "\n"
          "The receiver tracks the nominal constellations of GPS, GLONASS, Galileo and BeiDou on "
          "up\n"
          "to three signals each, and sends measurements that agree with its navigation messages:\n"
          "geometry, clocks, group delays, ionosphere (the broadcast Klobuchar model), "
          "troposphere\n"
          "(Saastamoinen in a standard atmosphere) and noise. The same seed gives the same bytes\n"
          "from one build.\n")
{
    declareLength();
    declareTrack();
    app.add_option("--seed", settings.seed, "Start of the random numbers")
        ->type_name("NUMBER")
        ->capture_default_str();
    app.add_flag("--damage", settings.damage, "Flip bits, cut blocks and put junk between them");
    app.add_flag("--mixed", settings.mixed,
                 "Put NMEA sentences, RTCM 3 frames and replies between the blocks");
    app.add_option("-o,--output", target, "File to write instead of standard output")
        ->type_name("FILE");
}

void SimulateCommand::declareLength()
{
    app.add_option("--start", start, "GNSS time of the first epoch, week 1930 to 4000")
        ->type_name("WEEK:SECONDS")
        ->capture_default_str();
    duration = app.add_option("--duration", settings.duration, "Length of the log in seconds")
                   ->check(CLI::Range(0.0, 1e8).description(""))
                   ->type_name("SECONDS")
                   ->capture_default_str();
    app.add_option("--size", settings.size,
                   "End the log at this size, as 500MB or 1GB; without --duration at no other time")
        ->check([](const std::string& size) {
            return size.rfind('-', 0) == 0 ? size + " is no size" : std::string();
        })
        ->transform(CLI::AsSizeValue(true).description(""))
        ->type_name("BYTES");
    app.add_option("--rate", rate, "Epochs a second; the period must be whole milliseconds")
        ->check(CLI::Range(1e-4, 1000.0).description(""))
        ->type_name("HERTZ")
        ->capture_default_str();
}

void SimulateCommand::declareTrack()
{
    app.add_option(
           "--track", track,
           "How the antenna moves: not at all, on a circle of 200 m radius or on a line eastwards")
        ->check(CLI::IsMember({"static", "circle", "line"}).description(""))
        ->type_name("static|circle|line")
        ->capture_default_str();
    app.add_option("--speed", settings.track.speed, "Speed on the track in metres a second")
        ->check(CLI::Range(0.0, 300.0).description(""))
        ->type_name("SPEED")
        ->capture_default_str();
    app.add_option("--position", position, "Where the track begins: degrees and metres")
        ->expected(3)
        ->delimiter(',')
        ->option_text("LAT,LON,HEIGHT=47.07,15.45,412.3");
}

/// Sets the time of the first epoch. Before week 1930 there were other leap seconds.
void SimulateCommand::readStart()
{
    char* rest = nullptr;
    const double week = std::strtod(start.c_str(), &rest);
    const char* const number = *rest == ':' ? rest + 1 : rest;
    const double seconds = std::strtod(number, &rest);
    const double millis = seconds * 1000;
    if (rest == number || *rest != '\0' || week != std::floor(week) || week < 1930 || week > 4000 ||
        !(seconds >= 0) || seconds >= 604800 || std::fabs(millis - std::round(millis)) > 1e-3)
        throw ToolError(fmt::format("simulate: {} is no start, such as 2400:216000", start));
    settings.week = static_cast<uint16_t>(week);
    settings.towMillis = static_cast<uint32_t>(std::llround(millis));
}

void SimulateCommand::readPosition()
{
    if (position.empty())
        return;
    constexpr double degree = simulation::pi / 180;
    const double height = position[2];
    if (std::fabs(position[0]) > 89 || std::fabs(position[1]) > 180 || height < -500 ||
        height > 20000)
        throw ToolError("simulate: --position needs a latitude up to 89, a longitude up to 180 and "
                        "a height of -500 to 20000");
    settings.track.start = {position[0] * degree, position[1] * degree, height};
}

ExitStatus SimulateCommand::run()
{
    const double period = 1000 / rate;
    if (std::fabs(period - std::round(period)) > 1e-6 * period)
        throw ToolError(
            fmt::format("simulate: {} Hz is a period of {} ms, which is not whole", rate, period));
    settings.periodMillis = static_cast<uint32_t>(std::llround(period));
    using Kind = simulation::TrackSettings::Kind;
    settings.track.kind = track == "circle" ? Kind::Circle
                          : track == "line" ? Kind::Line
                                            : Kind::Static;
    readStart();
    readPosition();
    if (settings.size != 0 && duration->count() == 0)
        settings.duration = 1e8;
    refuseTerminal(target);
    Output output(target);
    Progress progress("simulated", settings.size);
    simulation::simulate(settings, output.getBuffer(), [&](uint64_t size) {
        progress.add(size);
        output.commit();
        return !interrupt::hasCome();
    });
    output.flush();
    return ExitStatus::Done;
}

} // namespace tqx::tool
